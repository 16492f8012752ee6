// Resolution of the "$" references once the whole file is read: each
// placeholder laid down by the reader becomes the named pattern's segments.
#include "wavereader.h"

#include "runlist.h"
#include "waveformdata.h"
#include "wdltext.h"

#include <QHash>
#include <QSet>

#include <string>
#include <unordered_map>
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
    else if (foreverDropped)
        rebuilt.at(newForever)->forever = true;
    wave->patterns.swap(rebuilt);
    wave->segmentsChanged(0);
    wave->foreverIndex = static_cast<qint32>(newForever);
    qDeleteAll(dropped);
}

// A pattern's segments keep their text when laid into a wave of the other
// kind, where the writer would write some of it as a reserved word or digit:
// they take the value a saved file gives back.
void readBackValues(WaveData* wave)
{
    for (Pattern* p : std::as_const(wave->patterns)) {
        const std::string& v = p->value;
        if (wave->isBus ? v == "DonTCare" || v == "HighZ" : v == "2" || v == "3")
            p->value = wdltext::valueOf(v, wave->isBus);
    }
}

// Whether references laid a segment of no duration (copied from a pattern), or
// neighbours side by side unmelted that would melt otherwise when the saved
// file is read: beyond 32 bits, down to no duration, or taking the start of
// the forever tail into the segment before it.
bool meltsOtherwise(const WaveData& wave)
{
    qint32 run = 0;
    bool melted = false;
    const std::string* last = nullptr;
    for (const Pattern* p : wave.patterns) {
        if (p->duration == 0)
            return true;
        if (last && melts(*last, p->value, wave.isBus)) {
            if (p->forever || !addDuration(run, p->duration))
                return true;
            melted = true;
        } else {
            if (melted && run == 0)
                return true;
            run = p->duration;
            melted = false;
        }
        last = &p->value;
    }
    return melted && run == 0;
}

// Walks the references melted into one wave's segments, in order, and hands
// each that lays something down (its pattern has segments beyond the one the
// gone placeholder took) to visit, which answers whether to go on. A stretch
// that lays nothing down is passed over whole, however often it repeats.
class MeltedWalk
{
public:
    using Blocks = std::vector<std::vector<MeltedRefs>>;
    MeltedWalk(const Blocks& blocks, const std::vector<const WaveData*>& sources, const WaveData* wave)
        : blocks_(blocks), sources_(sources), wave_(wave)
    {
    }

    // size(): the wave's segments so far; visit(source, count): false stops.
    template <class Size, class Visit> bool walk(const MeltedRefs& refs, const Size& size, const Visit& visit)
    {
        if (refs.block < 0) {
            const WaveData* source = sources_[size_t(refs.name)];
            for (qint64 k = 0; k < refs.times; ++k) {
                const qint64 count = !source ? 0 : source == wave_ ? size() : source->patterns.size();
                if (count <= 1)
                    return true;
                if (!visit(source, count))
                    return false;
            }
            return true;
        }
        const Life life = lifeOf(refs.block);
        for (qint64 k = 0; k < refs.times && (life.others || (life.self && size() > 1)); ++k) {
            for (const MeltedRefs& inner : blocks_[size_t(refs.block)]) {
                if (!walk(inner, size, visit))
                    return false;
            }
        }
        return true;
    }

private:
    // Whether a stretch holds references to other patterns of more than one
    // segment, and to the wave itself (which lays down only once it has grown).
    struct Life {
        bool others = false;
        bool self = false;
    };

    Life lifeOf(qint32 block)
    {
        const auto known = lives_.find(block);
        if (known != lives_.end())
            return known->second;
        Life life;
        for (const MeltedRefs& inner : blocks_[size_t(block)]) {
            if (inner.block >= 0) {
                const Life sub = lifeOf(inner.block);
                life.others |= sub.others;
                life.self |= sub.self;
            } else if (const WaveData* source = sources_[size_t(inner.name)]) {
                life.self |= source == wave_;
                life.others |= source != wave_ && source->patterns.size() > 1;
            }
        }
        lives_.emplace(block, life);
        return life;
    }

    const Blocks& blocks_;
    const std::vector<const WaveData*>& sources_;
    const WaveData* wave_;
    std::unordered_map<qint32, Life> lives_;
};

} // namespace

qint32 WaveReader::nameId(std::string_view token)
{
    const auto [it, added] = nameIds_.try_emplace(std::string(token), qint32(names_.size()));
    if (added)
        names_.push_back(wdltext::toQString(token));
    return it->second;
}

void WaveReader::placeInList(WaveData* wave, Pattern* placeholder, qint32 name)
{
    placeholders_.push_back({wave, placeholder, {name, -1, 1}, firstLine_});
}

void WaveReader::placeMelted(WaveData* wave, const MeltedRefs& refs)
{
    if (!placeholders_.empty()) {
        Placeholder& last = placeholders_.back();
        if (last.wave == wave && !last.segment && last.refs.sameAs(refs)) {
            last.refs.times += refs.times;
            return;
        }
    }
    placeholders_.push_back({wave, nullptr, refs, firstLine_});
}

qint32 WaveReader::addBlock(const MeltedRefs* refs, size_t count)
{
    qint64 references = 0;
    for (size_t k = 0; k < count; ++k)
        references += referencesOf(refs[k]);
    blocks_.emplace_back(refs, refs + count);
    blockReferences_.push_back(references);
    return qint32(blocks_.size() - 1);
}

void WaveReader::publishPlaceholders()
{
    for (const Placeholder& p : placeholders_) {
        if (p.segment)
            p.wave->patternNames.insert(p.segment, names_[size_t(p.refs.name)]);
    }
    placeholders_.clear();
    blocks_.clear();
    blockReferences_.clear();
}

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
    QSet<const WaveData*> expanded;
    std::vector<const WaveData*> sources;
    sources.reserve(names_.size());
    for (const QString& name : names_)
        sources.push_back(byName.value(name, nullptr));
    for (size_t first = 0, end = 0; first < placeholders_.size(); first = end) {
        WaveData* const wave = placeholders_[first].wave;
        QHash<Pattern*, const WaveData*> listed;
        std::vector<MeltedRefs> melted;
        // The cost is known before anything is laid down: a wave that refers
        // to itself grows with each melted reference, so its size is followed.
        // Copies count as well as what is laid: each pattern the placeholders
        // take is copied once, and each melted reference copies its pattern.
        qint64 size = wave->patterns.size();
        qint64 cost = 0;
        QSet<const WaveData*> copied;
        for (end = first; end < placeholders_.size() && placeholders_[end].wave == wave; ++end) {
            const Placeholder& p = placeholders_[end];
            if (!p.segment) {
                melted.push_back(p.refs);
                continue;
            }
            const WaveData* source = sources[size_t(p.refs.name)];
            const qint64 count = source ? source->patterns.size() : 0;
            listed.insert(p.segment, source);
            size += count - 1;
            if (source && !copied.contains(source)) {
                copied.insert(source);
                cost += count;
            }
            cost = std::min(cost + count, budget_ + 1);
        }
        MeltedWalk walk(blocks_, sources, wave);
        const auto simulatedSize = [&size] { return size; };
        const auto spendOn = [&](const WaveData*, qint64 count) {
            size = std::min(size + count - 1, budget_ + 1);
            cost = std::min(cost + 2 * count, budget_ + 1);
            return cost <= budget_;
        };
        for (size_t k = 0; k < melted.size() && cost <= budget_; ++k)
            walk.walk(melted[k], simulatedSize, spendOn);
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
        const auto waveSize = [wave] { return qint64(wave->patterns.size()); };
        const auto lay = [wave](const WaveData* source, qint64) {
            Pattern gone("0", 1);
            wave->insertPattern(&gone, source);
            return true;
        };
        for (const MeltedRefs& refs : melted)
            walk.walk(refs, waveSize, lay);
        readBackValues(wave);
        expanded.insert(wave);
    }
    placeholders_.clear();
    blocks_.clear();
    blockReferences_.clear();
    readBackWaves(expanded);
}

void WaveReader::readBackWaves(const QSet<const WaveData*>& expanded)
{
    for (size_t w = 0; w < laidWaves_.size(); ++w) {
        WaveData* const wave = laidWaves_[w].wave;
        if (!laidWaves_[w].voids && !(expanded.contains(wave) && meltsOtherwise(*wave)))
            continue;
        // Laid down again as the reader lays the written text: a segment of
        // no duration cancels a forever mark, and one that melts drops it.
        QList<Pattern*> kept;
        kept.reserve(wave->patterns.size());
        qint32 forever = -1;
        qsizetype next = 0;
        bool tooLong = false;
        const auto drop = [wave](Pattern* p) {
            wave->patternNames.remove(p);
            delete p;
        };
        for (; next < wave->patterns.size() && !tooLong; ++next) {
            Pattern* p = wave->patterns.at(next);
            const bool mark = p->forever && wave->foreverIndex != -1;
            p->forever = false;
            if (p->duration != 0 && (kept.isEmpty() || !melts(kept.last()->value, p->value, wave->isBus))) {
                p->forever = mark;
                if (mark)
                    forever = qint32(kept.size());
                kept.append(p);
                continue;
            }
            tooLong = p->duration != 0 && !addDuration(kept.last()->duration, p->duration);
            drop(p);
            // Melted down to no duration, it goes too: what comes next may
            // melt into the segment before it.
            if (!tooLong && !kept.isEmpty() && kept.last()->duration == 0) {
                if (forever == kept.size() - 1)
                    forever = -1;
                drop(kept.takeLast());
            }
        }
        // Melting beyond 32 bits fails that reading where it fails this one:
        // the wave ends before the segment, and no later wave is read.
        for (qsizetype k = next; k < wave->patterns.size(); ++k)
            drop(wave->patterns.at(k));
        wave->patterns.swap(kept);
        wave->foreverIndex = forever;
        wave->segmentsChanged(0);
        if (tooLong) {
            for (size_t later = w + 1; later < laidWaves_.size(); ++later)
                doc_.removeWave(laidWaves_[later].wave);
            laidWaves_.resize(w + 1);
            failed_ = true;
            doc_.loadError = {laidWaves_[w].line, meltReason()};
        }
    }
    laidWaves_.clear();
}

} // namespace kesu::toolvok
