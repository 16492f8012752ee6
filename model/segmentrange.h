// Copies of part of a wave, so that an undo step keeps only what an edit
// changed rather than two copies of the whole wave.
#pragma once

#include "pattern.h"

#include <QList>

#include <string>
#include <vector>

namespace kesu::toolvok {

class WaveData;

// A copy of the segments [first, first + count) of a wave, with the wave's
// forever index and segment count at the time.
class SegmentRange
{
public:
    struct Segment {
        std::string value;
        qint32 duration = 0;
        bool spare = false;
        bool forever = false;
    };

    SegmentRange() = default;
    // The range is clamped to the wave.
    SegmentRange(const WaveData& wave, int first, int count);

    int first() const { return first_; }
    int count() const { return int(segments_.size()); }
    int waveCount() const { return waveCount_; }
    qint32 foreverIndex() const { return foreverIndex_; }
    const std::vector<Segment>& segments() const { return segments_; }

    // Puts the copy in place of segments [first, first + currentCount) of the
    // wave and gives the wave this copy's forever index. Segment objects are
    // reused in order, so that pointers to them stay good; only what the wave
    // gains is allocated, and what it loses goes to *lost, or is deleted when
    // lost is null. False, changing nothing, when the range is not in the wave.
    bool applyTo(WaveData& wave, int currentCount, QList<Pattern*>* lost = nullptr) const;

    // Segments [from, from + count) of this copy, as a range of their own.
    SegmentRange slice(int from, int count) const;

private:
    int first_ = 0;
    int waveCount_ = 0;
    qint32 foreverIndex_ = -1;
    std::vector<Segment> segments_;
};

// An edit as the smallest range that differs: the segments there before it
// and after it.
struct SegmentChange {
    SegmentRange before;
    SegmentRange after;

    // No segment changed and the forever index stayed.
    bool isEmpty() const;
    bool undo(WaveData& wave, QList<Pattern*>* lost = nullptr) const;
    bool redo(WaveData& wave, QList<Pattern*>* lost = nullptr) const;
};

// The change an edit made to a wave: before is a copy, taken before the edit,
// of a range that covers all the edit touched; after is the wave now. The
// common head and tail of the two segment lists are left out.
SegmentChange narrowChange(const SegmentRange& before, const WaveData& after);
// The same from a whole copy of the wave before the edit, whose segments
// [first, end) cover the edit (end -1: to the last segment).
SegmentChange narrowChange(const WaveData& before, const WaveData& after, int first = 0, int end = -1);

// A copy of segments [first, end) of wave and one neighbour either side,
// widened to every pair of equal neighbours the wave holds: all that an edit
// there and the merging of equal neighbours after it can change.
SegmentRange mergeableRange(const WaveData& wave, int first, int end);

} // namespace kesu::toolvok
