#pragma once

#include "pattern.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace kesu::toolvok {

// One wave: a single signal, a bus, or a named pattern definition. Owns its
// segments; operations that take a segment out of the list hand it back to the
// caller, who decides whether to delete it.
class WaveData
{
public:
    explicit WaveData(const QString& name);
    ~WaveData();
    WaveData(const WaveData&) = delete;
    WaveData& operator=(const WaveData&) = delete;

    Pattern* findPattern(quint64 t) const;
    quint64 getEndTime() const;
    quint64 getPatternStart(const Pattern* p) const;
    quint64 getNextChange(quint64 t) const;
    std::string getLastValue() const;

    // Returns whether the wave took p into its list; when it did not (zero
    // duration, or merged into the last segment) p still belongs to the caller.
    bool addData(Pattern* p);
    void insertData(Pattern* p, Pattern* before);
    void insertPattern(Pattern* p, const WaveData* source);
    void removeData(Pattern* p);
    // Returns the segments that no longer fit (source is shorter): they leave
    // the list without being deleted, since views and undo commands may still
    // hold them; the caller decides their fate.
    QList<Pattern*> duplicateData(const WaveData* source);

    QString name;
    qint32 group = 1;
    qint32 polarity = 3;
    qint32 spareInt = 0;
    qint32 waveType = 0;
    quint64 offset = 0;
    quint64 formatValue = 1;
    qint16 formatRatio = 50;
    bool isBus = false;
    bool isPattern = false;
    bool expandFlag = false;
    QStringList elements;
    qint32 busWidth = 1;
    bool selected = false;
    bool visible = true;
    qint32 foreverIndex = -1;
    QList<Pattern*> patterns;
    QMap<Pattern*, QString> patternNames;
};

// duplicateData, but segment for segment: equal neighbours of source stay
// apart in target. Returns target's surplus segments, as duplicateData does.
QList<Pattern*> copyExactly(WaveData* target, const WaveData* source);

// A new wave of the same name holding a copy of every attribute and segment of
// source: the undo commands' snapshots, and the copies that go into a document.
WaveData* snapshotOf(const WaveData* source);

} // namespace kesu::toolvok
