#include "segmentrange.h"

#include "wavedata.h"

#include <algorithm>

namespace kesu::toolvok {

namespace {

bool same(const Pattern* a, const Pattern* b)
{
    return a->value == b->value && a->duration == b->duration && a->spare == b->spare && a->forever == b->forever;
}

bool same(const SegmentRange::Segment& a, const Pattern* b)
{
    return a.value == b->value && a.duration == b->duration && a.spare == b->spare && a.forever == b->forever;
}

// How many segments at the head and at the tail of a before-range of
// beforeCount segments equal those of after's [first, first + afterCount);
// head and tail never overlap.
template<typename BeforeAt>
std::pair<int, int> commonEnds(int beforeCount, BeforeAt beforeAt, const WaveData& after, int first, int afterCount)
{
    const int shorter = std::min(beforeCount, afterCount);
    int head = 0;
    while (head < shorter && same(beforeAt(head), after.patterns.at(first + head)))
        ++head;
    int tail = 0;
    while (tail < shorter - head
           && same(beforeAt(beforeCount - 1 - tail), after.patterns.at(first + afterCount - 1 - tail)))
        ++tail;
    return {head, tail};
}

// The length in after of a range of beforeCount segments at first, in a wave
// that had beforeWaveCount segments: the edit inside it changed the length
// of the wave by as much as its own.
int afterLength(int first, int beforeCount, int beforeWaveCount, const WaveData& after)
{
    const int length = beforeCount + int(after.patterns.size()) - beforeWaveCount;
    return std::clamp(length, 0, std::max(0, int(after.patterns.size()) - first));
}

} // namespace

SegmentRange::SegmentRange(const WaveData& wave, int first, int count)
    : waveCount_(int(wave.patterns.size())), foreverIndex_(wave.foreverIndex)
{
    first_ = std::clamp(first, 0, waveCount_);
    count = std::clamp(count, 0, waveCount_ - first_);
    segments_.reserve(size_t(count));
    for (int i = first_; i < first_ + count; ++i) {
        const Pattern* p = wave.patterns.at(i);
        segments_.push_back({p->value, p->duration, p->spare, p->forever});
    }
}

bool SegmentRange::applyTo(WaveData& wave, int currentCount, QList<Pattern*>* lost) const
{
    const int size = int(wave.patterns.size());
    if (first_ > size || currentCount < 0 || currentCount > size - first_)
        return false;
    const int count = this->count();
    if (count > currentCount) {
        wave.patterns.insert(first_ + currentCount, count - currentCount, nullptr);
        for (int i = first_ + currentCount; i < first_ + count; ++i) {
            auto* p = new Pattern;
            p->wave = &wave;
            wave.patterns[i] = p;
        }
    } else if (count < currentCount) {
        const QList<Pattern*> gone = wave.patterns.mid(first_ + count, currentCount - count);
        wave.patterns.remove(first_ + count, currentCount - count);
        if (lost)
            lost->append(gone);
        else
            qDeleteAll(gone);
    }
    for (int i = 0; i < count; ++i) {
        Pattern* p = wave.patterns.at(first_ + i);
        const Segment& s = segments_[size_t(i)];
        p->value = s.value;
        p->duration = s.duration;
        p->spare = s.spare;
        p->forever = s.forever;
    }
    wave.foreverIndex = foreverIndex_;
    wave.segmentsChanged(first_);
    return true;
}

SegmentRange SegmentRange::slice(int from, int count) const
{
    SegmentRange part;
    from = std::clamp(from, 0, this->count());
    count = std::clamp(count, 0, this->count() - from);
    part.first_ = first_ + from;
    part.waveCount_ = waveCount_;
    part.foreverIndex_ = foreverIndex_;
    part.segments_.assign(segments_.begin() + from, segments_.begin() + from + count);
    return part;
}

bool SegmentChange::isEmpty() const
{
    return before.count() == 0 && after.count() == 0 && before.foreverIndex() == after.foreverIndex();
}

bool SegmentChange::undo(WaveData& wave, QList<Pattern*>* lost) const
{
    return before.applyTo(wave, after.count(), lost);
}

bool SegmentChange::redo(WaveData& wave, QList<Pattern*>* lost) const
{
    return after.applyTo(wave, before.count(), lost);
}

SegmentChange narrowChange(const SegmentRange& before, const WaveData& after)
{
    const int first = std::min(before.first(), int(after.patterns.size()));
    const int afterCount = afterLength(first, before.count(), before.waveCount(), after);
    const auto [head, tail] = commonEnds(
        before.count(), [&before](int i) -> const SegmentRange::Segment& { return before.segments()[size_t(i)]; },
        after, first, afterCount);
    return {before.slice(head, before.count() - head - tail), SegmentRange(after, first + head, afterCount - head - tail)};
}

SegmentChange narrowChange(const WaveData& before, const WaveData& after, int first, int end)
{
    const int beforeSize = int(before.patterns.size());
    first = std::clamp(first, 0, std::min(beforeSize, int(after.patterns.size())));
    end = end < 0 ? beforeSize : std::clamp(end, first, beforeSize);
    const int afterCount = afterLength(first, end - first, beforeSize, after);
    const auto [head, tail] = commonEnds(
        end - first, [&before, first](int i) { return before.patterns.at(first + i); }, after, first, afterCount);
    return {SegmentRange(before, first + head, end - first - head - tail),
            SegmentRange(after, first + head, afterCount - head - tail)};
}

SegmentRange mergeableRange(const WaveData& wave, int first, int end)
{
    const int size = int(wave.patterns.size());
    int lo = std::clamp(first - 1, 0, size);
    int hi = std::clamp(end + 1, lo, size);
    const auto equalAt = [&wave](int i) { return Values::same(wave.patterns.at(i - 1)->value, wave.patterns.at(i)->value); };
    for (int i = 1; i <= lo; ++i) {
        if (equalAt(i)) {
            lo = i - 1;
            break;
        }
    }
    for (int i = size - 1; i >= hi; --i) {
        if (equalAt(i)) {
            hi = i + 1;
            break;
        }
    }
    return SegmentRange(wave, lo, hi - lo);
}

} // namespace kesu::toolvok
