// Segment lists and their groups. A plain group, or one that only scales its
// durations, is read straight into whatever holds it: nesting does not copy.
// A repeated group's body is read once into a list of runs and laid down as
// often as asked, each time merging at the seams as the wave would. Before a
// group is expanded its cost is measured without laying anything down, so a
// file asking for more than the reader's limits fails at once.
#include "runlist.h"
#include "waveformdata.h"
#include "wdltext.h"

#include <algorithm>

namespace kesu::toolvok {

using namespace wdltext;

namespace {

// Measures saturate here, far above every limit.
constexpr qint64 Saturated = qint64(1) << 62;

qint64 sum(qint64 a, qint64 b)
{
    return std::min(a + b, Saturated);
}

qint64 product(qint64 a, qint64 b)
{
    return a != 0 && b > Saturated / a ? Saturated : std::min(a * b, Saturated);
}

struct GroupToken {
    Bytes body;
    GroupSuffix suffix;
};

GroupToken splitGroup(Bytes token)
{
    const size_t close = token.rfind(')');
    const bool closed = close != Bytes::npos && close > 0;
    return {closed ? token.substr(1, close - 1) : token.substr(1),
            readSuffix(closed ? token.substr(close + 1) : Bytes())};
}

// Appends what a later piece of text lays down to what came before it.
void append(RunSummary& s, RunSummary& piece, bool bus)
{
    s.work = sum(s.work, piece.work);
    s.refs = sum(s.refs, piece.refs);
    if (piece.runs == 0)
        return;
    if (s.runs == 0) {
        s.runs = piece.runs;
        s.first = std::move(piece.first);
    } else {
        s.runs = sum(s.runs, piece.runs) - (melts(s.last, piece.first, bus) ? 1 : 0);
    }
    s.last = std::move(piece.last);
}

} // namespace

QString WaveReader::budgetReason() const
{
    return QStringLiteral("the file lays down more than %1 segments, repeats and pattern references counted")
        .arg(segmentLimit_);
}

bool WaveReader::spend(qint64 segments, const char* at)
{
    if (segments <= budget_) {
        budget_ -= segments;
        return true;
    }
    failAt(at, budgetReason());
    return false;
}

bool WaveReader::layStatement(Bytes segments, WaveData* wave)
{
    WaveSink sink(*this, wave);
    readSegments(segments, sink, Scope{1, 0, wave->isBus});
    return sink.voids();
}

void WaveReader::readGroupBody(const QString& body, QList<Pattern*>& out, WaveData* wave)
{
    const QByteArray bytes = body.toUtf8();
    const Bytes text(bytes.constData(), size_t(bytes.size()));
    statement_ = text;
    firstLine_ = 1;
    lineStarts_ = nullptr;
    const Scope scope{1, 1, wave->isBus};
    RunSummary need;
    measureSegments(text, scope, need);
    if (!failed_ && need.work > budget_)
        failAt(text.data(), budgetReason());
    if (failed_)
        return;
    RunList runs(wave->isBus);
    readSegments(text, runs, scope);
    for (const Run& run : runs.runs) {
        auto* p = new Pattern(run.value, run.duration);
        if (run.head >= 0)
            wave->patternNames.insert(p, names_[size_t(run.head)]);
        out.append(p);
    }
}

bool WaveReader::nextToken(Tokenizer& tokens, Bytes& token)
{
    if (failed_ || !tokens.next(token))
        return false;
    if (tokens.passedStray())
        failAt(tokens.stray(), QStringLiteral("a \")\" here closes no group"));
    else if (tokens.holdsLooseHash(token))
        failAt(token.data(), QStringLiteral("a \"#\" here follows no group"));
    return !failed_;
}

template <class Sink>
void WaveReader::readSegments(Bytes text, Sink& sink, Scope scope)
{
    Tokenizer tokens(text);
    Bytes token;
    while (nextToken(tokens, token)) {
        if (token.front() == '$') {
            layLeaf(sink, std::string("0"), 1, nameId(token), scope, token);
        } else if (token.front() == '(') {
            if (scope.depth == 0 && !affordGroup(token, scope.bus))
                return;
            readGroup(token, sink, scope);
        } else {
            // A value without a duration after it is dropped.
            Bytes duration;
            if (!nextToken(tokens, duration))
                break;
            layLeaf(sink, valueOf(token, scope.bus), durationOf(duration), -1, scope, token);
        }
    }
}

template <class Sink>
void WaveReader::layLeaf(Sink& sink, std::string value, qint32 duration, qint32 name, Scope scope, Bytes at)
{
    if (!spend(1, at.data()))
        return;
    const qint64 scaled = qint64(duration) * scope.scale;
    if (scaled == 0) {
        sink.voidLeaf();
    } else if (scaled < INT32_MIN || scaled > INT32_MAX) {
        failAt(at.data(), QStringLiteral("a duration times its group's factor exceeds %1 time units").arg(INT32_MAX));
    } else if (!sink.lay(std::move(value), qint32(scaled), name, nullptr, 0)) {
        failAt(at.data(), meltReason());
    }
}

bool WaveReader::tooDeep(Bytes token, int depth)
{
    if (depth < readlimits::MaxGroupDepth)
        return false;
    failAt(token.data(), QStringLiteral("groups nest deeper than %1 levels").arg(readlimits::MaxGroupDepth));
    return true;
}

template <class Sink>
void WaveReader::readGroup(Bytes token, Sink& sink, Scope scope)
{
    const GroupToken group = splitGroup(token);
    if (tooDeep(token, scope.depth))
        return;
    // "#0", "#" alone and "*0" lay nothing down, references included.
    if (group.suffix.repeats <= 0 || group.suffix.multiplier == 0)
        return;
    const qint64 scale = scope.scale * group.suffix.multiplier;
    if (scale < INT32_MIN || scale > INT32_MAX) {
        failAt(token.data(), QStringLiteral("the factors of nested groups multiply beyond %1").arg(INT32_MAX));
        return;
    }
    const Scope inner{scale, scope.depth + 1, scope.bus};
    if (group.suffix.repeats == 1) {
        // "##" marks the start of the forever tail only at the top level.
        const bool mark = group.suffix.forever && scope.depth == 0;
        if (mark)
            sink.markNext(true);
        readSegments(group.body, sink, inner);
        if (mark)
            sink.markNext(false);
        return;
    }
    RunList body(scope.bus);
    readSegments(group.body, body, inner);
    if (!failed_)
        layRepeated(body, group.suffix.repeats, sink, token);
}

template <class Sink>
void WaveReader::layRepeated(const RunList& body, qint64 times, Sink& sink, Bytes at)
{
    if (!body.started)
        return;
    sink.startWith(body.leadingVoid);
    if (body.runs.empty())
        return;
    // Each run's references are laid down as one stretch, kept once: the
    // copies below cost a few bytes each, not one entry per reference.
    std::vector<MeltedRefs> stretches;
    stretches.reserve(body.runs.size());
    for (const Run& run : body.runs) {
        const size_t count = run.refsEnd - run.refsBegin;
        stretches.push_back(count == 1 ? body.refs[run.refsBegin]
                            : count > 1 ? MeltedRefs{-1, addBlock(body.refs.data() + run.refsBegin, count), 1}
                                        : MeltedRefs{});
    }
    const Run& first = body.runs.front();
    if (body.runs.size() == 1 && melts(first.value, first.value, body.bus())) {
        // One segment, however often: the durations add up, and every copy's
        // references melt into it.
        const qint64 refsEach = referencesIn(body, first.refsBegin, first.refsEnd) + (first.head >= 0 ? 1 : 0);
        if (refsEach > 0 && times > budget_ / refsEach) {
            failAt(at.data(), budgetReason());
            return;
        }
        if (!spend(1 + times * refsEach, at.data()))
            return;
        const qint64 total = first.duration == 0 ? 0 : times > INT32_MAX ? Saturated : first.duration * times;
        if (total < INT32_MIN || total > INT32_MAX) {
            failAt(at.data(), meltReason());
            return;
        }
        const size_t count = first.refsEnd - first.refsBegin;
        if (!sink.lay(first.value, qint32(total), first.head, &stretches.front(), count > 0 ? 1 : 0)) {
            failAt(at.data(), meltReason());
            return;
        }
        if (times > 1 && refsEach > 0) {
            std::vector<MeltedRefs> again;
            if (first.head >= 0)
                again.push_back({first.head, -1, 1});
            if (count > 0)
                again.push_back(stretches.front());
            sink.melt(again.size() == 1 ? MeltedRefs{again[0].name, again[0].block, again[0].times * (times - 1)}
                                        : MeltedRefs{-1, addBlock(again.data(), again.size()), times - 1});
        }
        return;
    }
    const qint64 each = qint64(body.runs.size()) + referencesIn(body, 0, body.refs.size());
    if (times > budget_ / each) {
        failAt(at.data(), budgetReason());
        return;
    }
    spend(times * each, at.data());
    const size_t withRefs = size_t(std::count_if(stretches.begin(), stretches.end(),
                                                 [](const MeltedRefs& r) { return r.name >= 0 || r.block >= 0; }));
    sink.reserve(size_t(times) * body.runs.size(), size_t(times) * withRefs);
    for (qint64 r = 0; r < times; ++r) {
        for (size_t k = 0; k < body.runs.size(); ++k) {
            const Run& run = body.runs[k];
            if (!sink.lay(run.value, run.duration, run.head, &stretches[k], run.refsEnd > run.refsBegin ? 1 : 0)) {
                failAt(at.data(), meltReason());
                return;
            }
        }
    }
}

qint64 WaveReader::referencesIn(const RunList& list, size_t begin, size_t end) const
{
    qint64 n = 0;
    for (size_t k = begin; k < end; ++k)
        n += referencesOf(list.refs[k]);
    return n;
}

bool WaveReader::affordGroup(Bytes token, bool bus)
{
    // Without a repeat inside, a group lays down no more than its text holds.
    const GroupToken group = splitGroup(token);
    if (group.suffix.repeats <= 1 && !contains(group.body, '#'))
        return true;
    RunSummary need;
    measureGroup(token, Scope{1, 0, bus}, need);
    if (!failed_ && need.work > budget_)
        failAt(token.data(), budgetReason());
    return !failed_;
}

void WaveReader::measureSegments(Bytes text, Scope scope, RunSummary& into)
{
    Tokenizer tokens(text);
    Bytes token;
    while (into.work <= budget_ && nextToken(tokens, token)) {
        RunSummary piece;
        if (token.front() == '$') {
            piece = {1, 1, 1, "0", "0"};
        } else if (token.front() == '(') {
            measureGroup(token, scope, piece);
        } else {
            Bytes duration;
            if (!nextToken(tokens, duration))
                break;
            piece.work = 1;
            if (durationOf(duration) != 0) {
                piece.runs = 1;
                piece.first = piece.last = valueOf(token, scope.bus);
            }
        }
        append(into, piece, scope.bus);
    }
}

void WaveReader::measureGroup(Bytes token, Scope scope, RunSummary& into)
{
    const GroupToken group = splitGroup(token);
    if (tooDeep(token, scope.depth))
        return;
    const qint64 times = group.suffix.repeats;
    if (times <= 0 || group.suffix.multiplier == 0)
        return;
    RunSummary body;
    measureSegments(group.body, Scope{1, scope.depth + 1, scope.bus}, body);
    if (times == 1 || body.runs == 0) {
        into = std::move(body);
        return;
    }
    const bool seamMelts = melts(body.last, body.first, scope.bus);
    into.refs = product(times, body.refs);
    if (body.runs == 1 && seamMelts) {
        into.runs = 1;
        into.work = sum(body.work, sum(1, into.refs));
    } else {
        into.runs = product(times, body.runs) - (seamMelts ? times - 1 : 0);
        into.work = sum(body.work, product(times, sum(body.runs, body.refs)));
    }
    into.first = std::move(body.first);
    into.last = std::move(body.last);
}

} // namespace kesu::toolvok
