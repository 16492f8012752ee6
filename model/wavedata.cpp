#include "wavedata.h"

#include <vector>

namespace kesu::toolvok {

namespace {
// Durations are signed and widened with their sign before being added to the
// unsigned time axis; unsigned arithmetic keeps the wrap-around well defined.
inline quint64 advance(quint64 t, qint32 duration)
{
    return t + static_cast<quint64>(static_cast<qint64>(duration));
}

inline qint32 addDurations(qint32 a, qint32 b)
{
    return static_cast<qint32>(static_cast<quint32>(a) + static_cast<quint32>(b));
}
} // namespace

WaveData::WaveData(const QString& waveName) : name(waveName) {}

WaveData::~WaveData()
{
    qDeleteAll(patterns);
}

Pattern* WaveData::findPattern(quint64 t) const
{
    const int index = segmentIndexAt(t);
    return index < 0 ? nullptr : patterns.at(index);
}

quint64 WaveData::getEndTime() const
{
    return segmentStart(int(patterns.size()));
}

quint64 WaveData::getPatternStart(const Pattern* p) const
{
    // Finding p is a walk along the list in any case; adding the durations on
    // the way costs little more, and needs no index.
    quint64 start = offset;
    for (const Pattern* q : patterns) {
        if (q == p)
            return start;
        start = advance(start, q->duration);
    }
    return NoTime;
}

quint64 WaveData::getNextChange(quint64 t) const
{
    // The offset itself is not a change point: a time before it yields the end
    // of the first segment.
    const int index = firstSegmentEndingAfter(t);
    return index == patterns.size() ? NoTime : segmentStart(index + 1);
}

std::string WaveData::getLastValue() const
{
    return patterns.isEmpty() ? std::string(Values::DontCare) : patterns.last()->value;
}

bool WaveData::addData(Pattern* p)
{
    if (p->duration == 0)
        return false;
    if (!patterns.isEmpty()) {
        Pattern* last = patterns.last();
        if (Values::melts(last->value, p->value, isBus)) {
            last->duration = addDurations(last->duration, p->duration);
            segmentsChanged(int(patterns.size() - 1));
            return false;
        }
    }
    segmentsChanged(int(patterns.size()));
    patterns.append(p);
    p->wave = this;
    if (p->forever)
        foreverIndex = static_cast<qint32>(patterns.size() - 1);
    return true;
}

void WaveData::insertData(Pattern* p, Pattern* before)
{
    const qsizetype k = before ? patterns.indexOf(before) : -1;
    segmentsChanged(int(k < 0 ? patterns.size() : k));
    if (k < 0) {
        patterns.append(p);
    } else {
        patterns.insert(k, p);
        if (foreverIndex >= k)
            ++foreverIndex;
    }
    p->wave = this;
}

void WaveData::insertPattern(Pattern* p, const WaveData* source)
{
    if (!source || source->patterns.isEmpty())
        return;
    // Copy first: source may be this very wave.
    std::vector<std::pair<std::string, qint32>> copy;
    copy.reserve(static_cast<size_t>(source->patterns.size()));
    for (const Pattern* s : source->patterns)
        copy.emplace_back(s->value, s->duration);

    // A segment outside every list (wave not this one) need not be looked for.
    const qsizetype at = p->wave == this ? patterns.indexOf(p) : -1;
    segmentsChanged(int(at < 0 ? patterns.size() : at));
    p->value = copy.front().first;
    p->duration = copy.front().second;
    const qsizetype extra = static_cast<qsizetype>(copy.size()) - 1;
    if (extra == 0)
        return;

    // Each further segment goes in front of the one placed before it, so the
    // pattern lands reversed: n-1, ..., 1, then p holding segment 0.
    QList<Pattern*> block;
    block.reserve(extra);
    for (qsizetype i = extra; i >= 1; --i) {
        auto* q = new Pattern(copy[static_cast<size_t>(i)].first, copy[static_cast<size_t>(i)].second);
        q->wave = this;
        block.append(q);
    }
    if (at < 0) {
        // p is detached: segment 1 is appended and the rest go in front of it.
        const qsizetype end = patterns.size();
        patterns.append(block);
        if (foreverIndex >= end && extra > 1)
            foreverIndex += static_cast<qint32>(extra - 1);
    } else {
        QList<Pattern*> rebuilt;
        rebuilt.reserve(patterns.size() + extra);
        rebuilt.append(patterns.mid(0, at));
        rebuilt.append(block);
        rebuilt.append(patterns.mid(at));
        patterns.swap(rebuilt);
        if (foreverIndex >= at)
            foreverIndex += static_cast<qint32>(extra);
    }
}

void WaveData::removeData(Pattern* p)
{
    const qsizetype k = patterns.indexOf(p);
    if (k < 0)
        return;
    segmentsChanged(int(k));
    if (foreverIndex > k)
        --foreverIndex;
    else if (foreverIndex == k && k == patterns.size() - 1)
        foreverIndex = -1;
    // When the forever segment itself goes and is not last, the tail now
    // starts at the segment after it.
    patterns.removeAt(k);
}

std::pair<int, int> WaveData::spanOf(const QList<Pattern*>& which) const
{
    if (which.isEmpty())
        return {-1, -1};
    const QSet<const Pattern*> set(which.cbegin(), which.cend());
    const auto inSet = [&set](const Pattern* p) { return set.contains(p); };
    const qsizetype at = patterns.indexOf(which.first());
    if (at >= 0) {
        qsizetype lo = at;
        qsizetype hi = at;
        while (lo > 0 && inSet(patterns.at(lo - 1)))
            --lo;
        while (hi + 1 < patterns.size() && inSet(patterns.at(hi + 1)))
            ++hi;
        if (hi - lo + 1 == set.size())
            return {int(lo), int(hi)};
    }
    // Scattered, or partly elsewhere: look at every segment.
    int lo = -1;
    int hi = -1;
    for (qsizetype i = 0; i < patterns.size(); ++i) {
        if (inSet(patterns.at(i))) {
            lo = lo < 0 ? int(i) : lo;
            hi = int(i);
        }
    }
    return {lo, hi};
}

QList<Pattern*> WaveData::takeSegments(const QList<Pattern*>& which, int first, int last)
{
    QList<Pattern*> taken;
    const qsizetype size = patterns.size();
    if (which.isEmpty() || first < 0 || last < first || last >= size)
        return taken;
    const QSet<const Pattern*> set(which.cbegin(), which.cend());
    const qsizetype tail = foreverIndex;
    qsizetype keptBeforeTail = tail < first ? tail : first;
    // Segments outside [first, last] all stay.
    bool tailSurvives = tail >= 0 && (tail < first || last + 1 < size);
    qsizetype kept = first;
    for (qsizetype i = first; i <= last; ++i) {
        Pattern* p = patterns.at(i);
        if (set.contains(p)) {
            taken.append(p);
            continue;
        }
        if (i < tail)
            ++keptBeforeTail;
        tailSurvives = tailSurvives || (tail >= 0 && i >= tail);
        patterns[kept++] = p;
    }
    if (taken.isEmpty())
        return taken;
    patterns.remove(kept, taken.size());
    // The tail starts at the first segment of it that is left; with none
    // left there is no tail.
    if (tail >= size)
        foreverIndex = qint32(tail - taken.size());
    else if (tail >= 0)
        foreverIndex = tailSurvives ? qint32(tail > last ? tail - taken.size() : keptBeforeTail) : -1;
    segmentsChanged(first);
    return taken;
}

QList<Pattern*> WaveData::duplicateData(const WaveData* source)
{
    QList<Pattern*> surplus;
    if (!source || source == this)
        return surplus;
    group = source->group;
    polarity = source->polarity;
    spareInt = source->spareInt;
    waveType = source->waveType;
    offset = source->offset;
    formatValue = source->formatValue;
    formatRatio = source->formatRatio;
    isBus = source->isBus;
    isPattern = source->isPattern;
    busWidth = source->busWidth;
    visible = source->visible;
    foreverIndex = source->foreverIndex;
    elements = source->elements;
    // Any segment may change: the index is counted anew, which costs no more
    // than the copy itself.
    segmentsChanged(0);

    const qsizetype count = source->patterns.size();
    for (qsizetype i = 0; i < count; ++i) {
        const Pattern* s = source->patterns.at(i);
        if (i < patterns.size()) {
            Pattern* own = patterns.at(i);
            own->value = s->value;
            own->duration = s->duration;
            own->forever = s->forever;
        } else {
            auto* q = new Pattern(s->value, s->duration);
            q->forever = s->forever;
            if (!addData(q))
                delete q;   // merged into the last segment: nobody else can reach it
        }
    }
    while (patterns.size() > count)
        surplus.prepend(patterns.takeLast());
    foreverIndex = source->foreverIndex;
    return surplus;
}

QList<Pattern*> copyExactly(WaveData* target, const WaveData* source)
{
    if (!source || source == target)
        return {};
    // Blank segments first, so that duplicateData only overwrites: its
    // appending would fold equal neighbours together, a forever tail's first
    // segment into an equal one before it among them.
    while (target->patterns.size() < source->patterns.size()) {
        auto* blank = new Pattern;
        blank->wave = target;
        target->patterns.append(blank);
    }
    target->segmentsChanged(0);
    return target->duplicateData(source);
}

WaveData* snapshotOf(const WaveData* source)
{
    auto* copy = new WaveData(source->name);
    copyExactly(copy, source);   // an empty wave has no surplus
    return copy;
}

} // namespace kesu::toolvok
