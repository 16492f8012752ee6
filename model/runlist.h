// Where the reader lays segments: straight into a wave (WaveSink), or, for
// the body of a repeated group, into a list of runs (RunList) that is then
// laid down as often as the group asks. Both merge equal neighbours as the
// wave's own appending does, so a repeat costs what it lays down: a body
// that melts into one segment is one segment, however often repeated.
#pragma once

#include "pattern.h"
#include "wavedata.h"
#include "wavereader.h"

#include <string>
#include <vector>

namespace kesu::toolvok {

using Values::melts;

// Adds to a duration; false when the sum leaves the 32-bit range.
inline bool addDuration(qint32& into, qint64 more)
{
    const qint64 sum = qint64(into) + more;
    if (sum < INT32_MIN || sum > INT32_MAX)
        return false;
    into = qint32(sum);
    return true;
}

inline QString meltReason()
{
    return QStringLiteral("equal segments here melt into one longer than %1 time units").arg(INT32_MAX);
}

// One segment to be: a value, its duration, and the "$" references it holds
// (the one whose placeholder starts it, and those that melted into it).
struct Run {
    std::string value;
    qint32 duration = 0;
    qint32 head = -1;
    size_t refsBegin = 0;   // in RunList::refs
    size_t refsEnd = 0;
};

class RunList
{
public:
    explicit RunList(bool bus) : bus_(bus) {}

    // false: the merged duration would leave the 32-bit range.
    bool lay(std::string value, qint32 duration, qint32 head, const MeltedRefs* melted, size_t count)
    {
        note(false);
        if (!runs.empty() && melts(runs.back().value, value, bus_)) {
            if (!addDuration(runs.back().duration, duration))
                return false;
            if (head >= 0)
                melt({head, -1, 1});
        } else {
            runs.push_back(Run{std::move(value), duration, head, refs.size(), refs.size()});
        }
        for (size_t k = 0; k < count; ++k)
            melt(melted[k]);
        return true;
    }
    // More references melted into the last run; the same again in a row
    // only counts up.
    void melt(const MeltedRefs& more)
    {
        Run& last = runs.back();
        if (last.refsEnd > last.refsBegin && refs.back().sameAs(more)) {
            refs.back().times += more.times;
            return;
        }
        refs.push_back(more);
        last.refsEnd = refs.size();
    }
    // A segment of no duration: nothing is laid, but it was the first.
    void voidLeaf() { note(true); }
    void startWith(bool isVoid) { note(isVoid); }
    void markNext(bool) {}
    bool bus() const { return bus_; }
    void reserve(size_t more, size_t moreRefs)
    {
        runs.reserve(runs.size() + more);
        refs.reserve(refs.size() + moreRefs);
    }

    std::vector<Run> runs;
    std::vector<MeltedRefs> refs;
    // Whether anything was laid, and whether the first thing laid had no
    // duration: a forever mark would go to it and be lost.
    bool started = false;
    bool leadingVoid = false;

private:
    void note(bool isVoid)
    {
        if (!started) {
            started = true;
            leadingVoid = isVoid;
        }
    }
    bool bus_;
};

class WaveSink
{
public:
    WaveSink(WaveReader& reader, WaveData* wave) : reader_(reader), wave_(wave) {}

    bool lay(std::string value, qint32 duration, qint32 head, const MeltedRefs* melted, size_t count)
    {
        const bool mark = markPending_;
        markPending_ = false;
        QList<Pattern*>& list = wave_->patterns;
        if (!list.isEmpty() && melts(list.last()->value, value, wave_->isBus)) {
            if (!addDuration(list.last()->duration, duration))
                return false;
            voids_ = voids_ || list.last()->duration == 0;
            wave_->segmentsChanged(int(list.size() - 1));
            if (head >= 0)
                reader_.placeMelted(wave_, {head, -1, 1});
        } else {
            auto* p = new Pattern(std::move(value), duration);
            voids_ = voids_ || duration == 0;
            p->forever = mark;
            wave_->segmentsChanged(int(list.size()));
            list.append(p);
            p->wave = wave_;
            if (mark)
                wave_->foreverIndex = qint32(list.size() - 1);
            if (head >= 0)
                reader_.placeInList(wave_, p, head);
        }
        for (size_t k = 0; k < count; ++k)
            reader_.placeMelted(wave_, melted[k]);
        return true;
    }
    void melt(const MeltedRefs& refs) { reader_.placeMelted(wave_, refs); }
    // The forever mark goes to the first thing laid; one of no duration
    // takes it along.
    void voidLeaf() { markPending_ = false; }
    void startWith(bool isVoid)
    {
        if (isVoid)
            markPending_ = false;
    }
    void markNext(bool on) { markPending_ = on; }
    void reserve(size_t more, size_t) { wave_->patterns.reserve(wave_->patterns.size() + qsizetype(more)); }
    // Whether a segment was left without duration, by melting or by a run
    // that melted to none.
    bool voids() const { return voids_; }

private:
    WaveReader& reader_;
    WaveData* wave_;
    bool markPending_ = false;
    bool voids_ = false;
};

// What a stretch of text would lay down, found without laying it: the runs it
// leaves after merging, their first and last values, the references in them
// and what expanding it would spend.
struct RunSummary {
    qint64 runs = 0;
    qint64 refs = 0;
    qint64 work = 0;
    std::string first;
    std::string last;
};

} // namespace kesu::toolvok
