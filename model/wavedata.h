#pragma once

#include "pattern.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

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

    // Time look-ups search an index of segment start times, brought up to
    // date by the first look-up after a change, from the first segment that
    // changed on. While no duration is negative and the wave ends before the
    // end of the time axis, start times rise and a look-up is a binary
    // search; otherwise it is a pass over the index, with the answers of a
    // walk along the list. getPatternStart has to walk the list to find p.
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
    // The lowest and highest index of the segments of which that the list
    // holds ({-1, -1} for none). A run of neighbours, as a selection made by
    // dragging is, costs one search and its own length.
    std::pair<int, int> spanOf(const QList<Pattern*>& which) const;
    // Takes the segments of which that lie in [first, last] out of the list,
    // the forever index following as if each went by removeData; returns
    // them in list order, still alive.
    QList<Pattern*> takeSegments(const QList<Pattern*>& which, int first, int last);
    // Returns the segments that no longer fit (source is shorter): they leave
    // the list without being deleted, since views and undo commands may still
    // hold them; the caller decides their fate.
    QList<Pattern*> duplicateData(const WaveData* source);

    // The index of the segment that covers t, as findPattern finds it (the
    // time where one segment ends and the next begins belongs to the earlier
    // one); -1 before the offset, after the end, and on an empty wave.
    int segmentIndexAt(quint64 t) const;
    // The index of the first segment that ends after t: where drawing from t
    // on begins. patterns.size() when the wave ends at or before t.
    int firstSegmentEndingAfter(quint64 t) const;
    // Where segment index begins: offset plus the durations before it; the
    // end of the wave for index patterns.size().
    quint64 segmentStart(int index) const;
    // Whether start times rise with the index (no negative duration, no end
    // past the time axis): what lets a look-up stand in for a walk.
    bool timesRise() const
    {
        updateIndex();
        return indexIsMonotonic();
    }
    // Every change to `patterns` or to a segment's duration made outside
    // these member functions must be reported: segments from fromIndex on
    // were inserted, removed or resized. Changing `offset` needs no report.
    void segmentsChanged(int fromIndex = 0)
    {
        const qsizetype keep = qsizetype(fromIndex < 0 ? 0 : fromIndex) + 1;
        if (keep < knownStarts_)
            knownStarts_ = keep;
    }
    // Whether the index, brought up to date as a look-up would, agrees with
    // the durations: false means a change went unreported. For tests.
    bool indexConsistent() const;

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

private:
    void updateIndex() const;
    bool indexIsMonotonic() const;

    // starts_[i]: the durations of segments 0..i-1 summed, as an offset from
    // `offset`, for i up to patterns.size(); the first knownStarts_ entries
    // are right. Relative, so that a new offset needs no rebuild.
    mutable std::vector<quint64> starts_;
    mutable qsizetype knownStarts_ = 0;
    // The first segment of negative duration among those the known entries
    // cover, or -1: with one, start times may go backwards.
    mutable qsizetype firstNegative_ = -1;
};

// duplicateData, but segment for segment: equal neighbours of source stay
// apart in target. Returns target's surplus segments, as duplicateData does.
QList<Pattern*> copyExactly(WaveData* target, const WaveData* source);

// A new wave of the same name holding a copy of every attribute and segment of
// source: the undo commands' snapshots, and the copies that go into a document.
WaveData* snapshotOf(const WaveData* source);

} // namespace kesu::toolvok
