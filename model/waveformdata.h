#pragma once

#include "wavedata.h"

#include <QList>
#include <QString>
#include <QStringList>

class QIODevice;

namespace kesu::toolvok {

// Why a file could not be read completely: the line (1-based) and the reason.
// Empty when the whole file was read.
struct LoadError {
    qint64 line = 0;
    QString reason;
    bool isSet() const { return !reason.isEmpty(); }
    QString text() const { return QStringLiteral("line %1: %2").arg(line).arg(reason); }
};

// The document: five header settings and the waves in display and file order.
// Owns its waves.
class WaveformData
{
public:
    WaveformData() = default;
    ~WaveformData();
    WaveformData(const WaveformData&) = delete;
    WaveformData& operator=(const WaveformData&) = delete;

    // Becomes `other`: its waves (which it no longer holds), settings and
    // load problem; this document's own waves are deleted.
    void takeFrom(WaveformData&& other);
    void addWave(WaveData* wave);
    int removeWave(WaveData* wave);
    WaveData* findWavebyName(const QString& name) const;
    void ClearAll();
    bool checkBusElements(const WaveData* wave, QString& message) const;
    static void genExpandWave(WaveData* wave, const QString& base, int from, int to);

    // The file reader (WaveReader), one for each call. Forgiving by design:
    // bad statements are skipped and numbers that do not convert count as 0.
    // What it cannot take in completely (a limit reached, a read failing,
    // text after an empty line or an unfinished last statement) it keeps in
    // loadError: the document then holds what was read before that line.
    void loadData(QIODevice& file);
    void loadText(const QString& text);
    void CompilerLine(const QString& statement);
    static QStringList parseValues(const QString& text);
    void processSubPattern(const QString& body, QList<Pattern*>& out, WaveData* wave);

    qint32 masterClockMult = 1;
    qint32 smallestUnit = 12;
    qint32 autoAssign = 0;
    qint32 decimals = 0;
    quint64 endTime = 1000;
    QList<WaveData*> waves;
    LoadError loadError;

private:
    // Member by member, so takeFrom carries every field added later too.
    WaveformData& operator=(WaveformData&&) = default;
};

} // namespace kesu::toolvok
