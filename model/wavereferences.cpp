// Resolution of the "$" references once the whole file is read: each
// placeholder laid down by the reader becomes the named pattern's segments.
#include "wavereader.h"

#include "waveformdata.h"

#include <QHash>
#include <QSet>

#include <string>
#include <utility>
#include <vector>

namespace kesu::toolvok {

namespace {

void expandListedReferences(WaveData* wave, const QHash<Pattern*, const WaveData*>& listed)
{
    if (listed.isEmpty())
        return;
    // One pass over the wave does what expanding each placeholder in turn with
    // insertPattern (or dropping it with removeData) would, without walking
    // the list once per reference.
    using Segments = std::vector<std::pair<std::string, qint32>>;
    QHash<const WaveData*, Segments> snapshots;
    for (const WaveData* source : listed) {
        if (source && !snapshots.contains(source)) {
            Segments copy;
            copy.reserve(static_cast<size_t>(source->patterns.size()));
            for (const Pattern* s : source->patterns)
                copy.emplace_back(s->value, s->duration);
            snapshots.insert(source, std::move(copy));
        }
    }
    QList<Pattern*> rebuilt;
    rebuilt.reserve(wave->patterns.size());
    QList<Pattern*> dropped;
    const qsizetype oldForever = wave->foreverIndex;
    qsizetype newForever = oldForever;
    bool foreverDropped = false;
    for (qsizetype i = 0; i < wave->patterns.size(); ++i) {
        Pattern* segment = wave->patterns.at(i);
        const auto found = listed.constFind(segment);
        if (found == listed.cend()) {
            rebuilt.append(segment);
        } else if (!found.value()) {
            dropped.append(segment);
            if (i == oldForever) {
                newForever = rebuilt.size();
                foreverDropped = true;
            }
            continue;
        } else {
            const Segments& source = snapshots[found.value()];
            for (size_t k = source.size(); k-- > 1;) {
                auto* q = new Pattern(source[k].first, source[k].second);
                q->wave = wave;
                rebuilt.append(q);
            }
            if (!source.empty()) {
                segment->value = source.front().first;
                segment->duration = source.front().second;
            }
            rebuilt.append(segment);
        }
        if (i == oldForever)
            newForever = rebuilt.size() - 1;
    }
    // A dropped forever segment hands the tail to the segment after it, or
    // ends the tail when it was the last.
    if (foreverDropped && newForever >= rebuilt.size())
        newForever = -1;
    wave->patterns.swap(rebuilt);
    wave->segmentsChanged(0);
    wave->foreverIndex = static_cast<qint32>(newForever);
    qDeleteAll(dropped);
}

} // namespace

void WaveReader::resolvePatternReferences()
{
    QHash<QString, WaveData*> byName;
    for (WaveData* wave : std::as_const(doc_.waves)) {
        if (!byName.contains(wave->name))
            byName.insert(wave->name, wave);
    }
    // One statement makes one wave and all its placeholders, so each wave's
    // placeholders stand together, in document order: a pattern is resolved
    // before a later wave uses it.
    for (size_t first = 0, end = 0; first < placeholders_.size(); first = end) {
        WaveData* const wave = placeholders_[first].wave;
        QHash<Pattern*, const WaveData*> listed;
        std::vector<std::pair<const WaveData*, qint64>> melted;   // the source, how many times
        // The cost is known before anything is laid down: a wave that refers
        // to itself grows with each melted reference, so its size is followed.
        // Copies count as well as what is laid: each pattern the placeholders
        // take is copied once, and each melted reference copies its pattern.
        qint64 size = wave->patterns.size();
        qint64 cost = 0;
        QSet<const WaveData*> copied;
        for (end = first; end < placeholders_.size() && placeholders_[end].wave == wave; ++end) {
            const Placeholder& p = placeholders_[end];
            const WaveData* source = byName.value(names_[size_t(p.name)], nullptr);
            const qint64 count = source ? source->patterns.size() : 0;
            if (p.segment) {
                listed.insert(p.segment, source);
                size += count - 1;
                if (source && !copied.contains(source)) {
                    copied.insert(source);
                    cost += count;
                }
                cost = std::min(cost + count, budget_ + 1);
            } else if (source && (source == wave || source->patterns.size() > 1)) {
                // A one-segment pattern only fills the placeholder that is gone.
                melted.emplace_back(source, p.times);
            }
        }
        for (const auto& [source, times] : melted) {
            for (qint64 k = 0; k < times && cost <= budget_; ++k) {
                const qint64 count = source == wave ? size : source->patterns.size();
                size = std::min(size + count - 1, budget_ + 1);
                cost = std::min(cost + 2 * count, budget_ + 1);
            }
        }
        // Unaffordable references stay the one-unit placeholders they are.
        if (cost > budget_) {
            fail(placeholders_[first].line, budgetReason());
            continue;
        }
        budget_ -= cost;
        expandListedReferences(wave, listed);
        // A placeholder that melted into the segment before it takes the
        // pattern's first segment with it; the rest lands, reversed, at the
        // end of the wave.
        for (const auto& [source, times] : melted) {
            for (qint64 k = 0; k < times && source->patterns.size() > 1; ++k) {
                Pattern gone("0", 1);
                wave->insertPattern(&gone, source);
            }
        }
    }
    placeholders_.clear();
}

} // namespace kesu::toolvok
