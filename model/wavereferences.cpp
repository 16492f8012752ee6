// Resolution of the "$" references once the whole file is read: each
// placeholder laid down by the reader becomes the named pattern's segments.
#include "wavereader.h"

#include "waveformdata.h"

#include <QHash>

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
    QHash<WaveData*, QList<Pattern*>> perWave;
    for (const auto& [wave, placeholder] : std::as_const(placeholders_))
        perWave[wave].append(placeholder);
    placeholders_.clear();

    for (WaveData* wave : std::as_const(doc_.waves)) {
        const auto found = perWave.constFind(wave);
        if (found == perWave.cend())
            continue;
        QHash<Pattern*, const WaveData*> listed;
        QList<Pattern*> detached;
        for (Pattern* placeholder : *found) {
            const WaveData* source = byName.value(wave->patternNames.value(placeholder), nullptr);
            if (placeholder->wave)
                listed.insert(placeholder, source);
            else
                detached.append(placeholder);
        }
        expandListedReferences(wave, listed);
        // A placeholder that merged into the segment before it is no longer in
        // the wave: it takes the pattern's first segment and the rest lands,
        // reversed, at the end of the wave.
        for (Pattern* placeholder : std::as_const(detached)) {
            if (const WaveData* source = byName.value(wave->patternNames.value(placeholder), nullptr))
                wave->insertPattern(placeholder, source);
            delete placeholder;
        }
        // The placeholders are resolved; keep no pointers that may dangle later.
        wave->patternNames.clear();
    }
}

} // namespace kesu::toolvok
