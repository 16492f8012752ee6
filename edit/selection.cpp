#include "selection.h"

#include <QSet>

namespace kesu::toolvok {

bool touchesRange(double start, double end, double lo, double hi)
{
    if (lo == hi)
        return start <= lo && end >= lo;
    return (start >= lo && start <= hi) || (end >= lo && end <= hi) || (start <= lo && end >= hi);
}

SegmentPick pickSegments(const WaveData& wave, double a, double b)
{
    SegmentPick pick;
    const double lo = qMin(a, b);
    const double hi = qMax(a, b);
    const qsizetype count = wave.patterns.size();
    // Durations widen with their sign, as the drawing adds them.
    quint64 t = wave.offset;
    // Only a repeated tail can meet a segment twice.
    QSet<const Pattern*> taken;
    bool repeating = false;
    // Walks patterns [from, count); false once a segment starts right of hi.
    auto walk = [&](qsizetype from) {
        for (qsizetype i = from; i < count; ++i) {
            Pattern* p = wave.patterns.at(i);
            const qint32 d = p->duration;
            if (d == 0)
                continue;
            t += static_cast<quint64>(static_cast<qint64>(d));
            const double end = static_cast<double>(t);
            const double start = end - static_cast<double>(d);
            if (start > hi)
                return false;
            if (!touchesRange(start, end, lo, hi))
                continue;
            if (pick.segments.isEmpty())
                pick.snappedStart = start + 0.5;
            pick.snappedEnd = end - 0.5;
            if (repeating && taken.contains(p))
                continue;
            pick.segments.append(p);
            if (repeating)
                taken.insert(p);
        }
        return true;
    };
    if (!walk(0))
        return pick;

    const qsizetype tail = wave.foreverIndex;
    if (tail < 0 || tail >= count)
        return pick;
    qint64 period = 0;
    for (qsizetype i = tail; i < count; ++i) {
        if (wave.patterns.at(i)->duration < 0)
            return pick;
        period += wave.patterns.at(i)->duration;
    }
    if (period <= 0)
        return pick;
    repeating = true;
    for (const Pattern* p : std::as_const(pick.segments))
        taken.insert(p);
    // Repetitions wholly left of the range only move the time on.
    if (static_cast<double>(t) < lo)
        t += (static_cast<quint64>(lo) - t) / quint64(period) * quint64(period);
    while (static_cast<double>(t) <= hi && walk(tail)) {
    }
    return pick;
}

Selection::~Selection()
{
    qDeleteAll(clipboard);
}

void Selection::adopt(const SegmentPick& pick)
{
    segments = pick.segments;
    if (pick.snappedStart != pick.snappedEnd) {
        rangeStart = pick.snappedStart;
        rangeEnd = pick.snappedEnd;
    }
}

void Selection::forget(const std::function<bool(const Pattern*)>& gone)
{
    segments.removeIf(gone);
    drag.patterns.removeIf(gone);
    if (picked && gone(picked))
        picked = nullptr;
    if (picked2 && gone(picked2))
        picked2 = nullptr;
}

void Selection::discard(const QList<Pattern*>& gone)
{
    if (gone.isEmpty())
        return;
    const QSet<const Pattern*> set(gone.cbegin(), gone.cend());
    forget([&set](const Pattern* p) { return set.contains(p); });
    qDeleteAll(set);
}

void Selection::dropClipboard()
{
    // The views may still point at cut segments from before the cut.
    const QList<Pattern*> held = std::exchange(clipboard, {});
    discard(held);
}

QList<Pattern*> Selection::takeFrom(WaveData* wave)
{
    // Anything else in the selection still belongs to its own wave.
    const auto [first, last] = wave->spanOf(segments);
    const QList<Pattern*> removed = wave->takeSegments(segments, first, last);
    QSet<const Pattern*> gone(removed.cbegin(), removed.cend());
    // In the order of the selection: a cut pastes them in that order.
    QList<Pattern*> taken;
    for (Pattern* p : std::as_const(segments)) {
        if (gone.remove(p))
            taken.append(p);
    }
    return taken;
}

void Selection::endDrag()
{
    drag.origin.reset();
    drag.patterns.clear();
    drag.moved = false;
    drag.created = false;
    drag.stretch = false;
    highlightOff = false;
    picked = picked2 = nullptr;
}

} // namespace kesu::toolvok
