// The start-time index of a wave: what lets drawing and hit-testing begin at
// the first visible segment of a wave of millions instead of at segment 0.
#include "wavedata.h"

#include <algorithm>

namespace kesu::toolvok {

void WaveData::updateIndex() const
{
    const qsizetype count = patterns.size();
    const size_t needed = size_t(count) + 1;
    if (knownStarts_ == qsizetype(needed) && starts_.size() == needed)
        return;
    qsizetype from = std::min({knownStarts_, qsizetype(starts_.size()), qsizetype(needed)});

    // A first build takes exactly what it needs, as after a load; a wave that
    // keeps growing by edits gets some room, and one that shrank a lot gives
    // its room back.
    if (starts_.capacity() < needed) {
        starts_.reserve(starts_.empty() ? needed : needed + needed / 16);
    } else if (starts_.capacity() > 2 * needed + 64) {
        std::vector<quint64> smaller;
        smaller.reserve(needed);
        smaller.assign(starts_.begin(), starts_.begin() + from);
        starts_.swap(smaller);
    }
    starts_.resize(needed);

    if (from == 0) {
        starts_[0] = 0;
        from = 1;
    }
    // Entry i covers the durations of segments 0..i-1: recount from the first
    // duration that no known entry covers.
    const qsizetype firstUncovered = from - 1;
    if (firstNegative_ >= firstUncovered)
        firstNegative_ = -1;
    quint64 sum = starts_[size_t(firstUncovered)];
    Pattern* const* list = patterns.constData();
    for (qsizetype i = firstUncovered; i < count; ++i) {
        const qint32 duration = list[i]->duration;
        if (duration < 0 && firstNegative_ < 0)
            firstNegative_ = i;
        // Widened with its sign; unsigned arithmetic wraps as the linear sum does.
        sum += static_cast<quint64>(static_cast<qint64>(duration));
        starts_[size_t(i) + 1] = sum;
    }
    knownStarts_ = qsizetype(needed);
}

bool WaveData::indexIsMonotonic() const
{
    // Non-negative durations never wrap the relative sums; the absolute times
    // rise steadily unless the offset pushes the end past the time axis.
    return firstNegative_ < 0 && starts_.back() <= ~quint64(0) - offset;
}

int WaveData::segmentIndexAt(quint64 t) const
{
    updateIndex();
    const qsizetype count = patterns.size();
    if (indexIsMonotonic()) {
        if (count == 0 || t < offset)
            return -1;
        // The first segment whose end is at or after t begins at or before it.
        const auto ends = starts_.cbegin() + 1;
        const auto found = std::lower_bound(ends, ends + count, t - offset);
        return found == ends + count ? -1 : int(found - ends);
    }
    for (qsizetype i = 0; i < count; ++i) {
        const quint64 start = offset + starts_[size_t(i)];
        const quint64 end = offset + starts_[size_t(i) + 1];
        if (!(t < start) && t <= end)
            return int(i);
    }
    return -1;
}

int WaveData::firstSegmentEndingAfter(quint64 t) const
{
    updateIndex();
    const qsizetype count = patterns.size();
    if (indexIsMonotonic()) {
        if (t < offset)
            return 0;
        const auto ends = starts_.cbegin() + 1;
        return int(std::upper_bound(ends, ends + count, t - offset) - ends);
    }
    for (qsizetype i = 0; i < count; ++i) {
        if (offset + starts_[size_t(i) + 1] > t)
            return int(i);
    }
    return int(count);
}

quint64 WaveData::segmentStart(int index) const
{
    if (index < 0 || index > patterns.size())
        return NoTime;
    updateIndex();
    return offset + starts_[size_t(index)];
}

bool WaveData::indexConsistent() const
{
    updateIndex();
    if (starts_.size() != size_t(patterns.size()) + 1 || starts_.front() != 0)
        return false;
    quint64 sum = 0;
    qsizetype negative = -1;
    for (qsizetype i = 0; i < patterns.size(); ++i) {
        const qint32 duration = patterns.at(i)->duration;
        if (duration < 0 && negative < 0)
            negative = i;
        sum += static_cast<quint64>(static_cast<qint64>(duration));
        if (starts_[size_t(i) + 1] != sum)
            return false;
    }
    return negative == firstNegative_;
}

} // namespace kesu::toolvok
