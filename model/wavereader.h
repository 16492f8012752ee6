// The waveform file reader. One reader lives for one load: it holds the
// working state (what the file may still lay down, the "$" placeholders still
// to resolve, where the current statement's lines begin) so that the document
// it fills carries none of it.
//
// Every count the file asks for is paid for before it is laid down: a few
// bytes of text cannot make the reader work or allocate beyond its limits.
// What exceeds a limit stops the reading with a LoadError on the document.
#pragma once

#include "progress.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class QIODevice;

namespace kesu::toolvok {

class Pattern;
class WaveData;
class WaveformData;
class RunList;
class WaveSink;
struct RunSummary;
namespace wdltext {
class Tokenizer;
}

namespace readlimits {
// How deep groups may nest: far beyond real documents, and shallow enough for
// the reader's recursion on any thread's stack.
inline constexpr int MaxGroupDepth = 256;
// Segments one file may lay down or copy, repeats and pattern references
// counted: about 4 GB of segments.
inline constexpr qint64 MaxSegments = qint64(1) << 26;
// Element names the buses of one file may declare in all.
inline constexpr qint64 MaxBusElements = qint64(1) << 20;
} // namespace readlimits

// "$" references that melted into the segment before them, in a row: one
// name, or (block >= 0) a stretch of them that a repeat laid down again and
// again, kept once however often.
struct MeltedRefs {
    qint32 name = -1;
    qint32 block = -1;   // in WaveReader's blocks
    qint64 times = 1;
    bool sameAs(const MeltedRefs& o) const { return name == o.name && block == o.block; }
};

class WaveReader
{
public:
    // segmentLimit: what the file may lay down or copy; lower than the
    // default only where a caller must keep each load small (the fuzz checks).
    explicit WaveReader(WaveformData& doc, qint64 segmentLimit = readlimits::MaxSegments);
    ~WaveReader();
    WaveReader(const WaveReader&) = delete;
    WaveReader& operator=(const WaveReader&) = delete;

    // Whole loads: every statement, then the "$" references resolved.
    // False when progress stopped the read: the document holds only a part
    // and is for the caller to throw away.
    bool readDevice(QIODevice& file, const Progress& progress = {});
    void readText(const QString& text);

    // One statement, UTF-8 bytes; its "$" references wait for
    // resolvePatternReferences(). lineStarts: where each of its lines begins
    // in it, for naming the line of a problem (none: one line).
    void compileStatement(std::string_view statement, qint64 firstLine = 1,
                          const std::vector<size_t>* lineStarts = nullptr);
    // A group's body read into new segments that are not laid into the wave;
    // equal neighbours come out merged, as the wave would merge them.
    void readGroupBody(const QString& body, QList<Pattern*>& out, WaveData* wave);
    static QStringList tokens(const QString& text);

    // Each placeholder becomes its named pattern's segments, or leaves its
    // wave when no pattern of that name was read.
    void resolvePatternReferences();
    // Records each placeholder still waiting in its wave's patternNames, for
    // callers that compile statements one at a time.
    void publishPlaceholders();
    // Each wave as a reading of the saved file gives it back, where that
    // differs in what it draws: a segment that melting left without duration
    // goes, and neighbours that references laid side by side melt where the
    // forever tail would start or 32 bits would not hold them (which fails
    // the reading there).
    void readBackWaves(const QSet<const WaveData*>& expanded);

    bool failed() const { return failed_; }
    // Stops the reading: the first problem is the one the document keeps.
    void fail(qint64 line, const QString& reason);
    void failAt(const char* at, const QString& reason) { fail(lineOf(at), reason); }

private:
    friend class WaveSink;
    struct Scope {
        qint64 scale = 1;   // the product of the enclosing groups' factors
        int depth = 0;
        bool bus = false;
    };

    // Group expansion (wavegroups.cpp).
    // True when a segment laid down has no duration (melting can leave one).
    bool layStatement(std::string_view segments, WaveData* wave);
    template <class Sink> void readSegments(std::string_view text, Sink& sink, Scope scope);
    template <class Sink> void readGroup(std::string_view token, Sink& sink, Scope scope);
    template <class Sink>
    void layLeaf(Sink& sink, std::string value, qint32 duration, qint32 name, Scope scope, std::string_view at);
    template <class Sink> void layRepeated(const RunList& body, qint64 times, Sink& sink, std::string_view at);
    // The next token, false at the end or when it breaks the format's
    // structure (which fails the reading).
    bool nextToken(wdltext::Tokenizer& tokens, std::string_view& token);
    bool affordGroup(std::string_view token, bool bus);
    // Fails the reading when a group at depth would nest too deep.
    bool tooDeep(std::string_view token, int depth);
    void measureSegments(std::string_view text, Scope scope, RunSummary& into);
    void measureGroup(std::string_view token, Scope scope, RunSummary& into);

    bool spend(qint64 segments, const char* at);
    QString budgetReason() const;
    qint32 nameId(std::string_view token);
    void placeInList(WaveData* wave, Pattern* placeholder, qint32 name);
    void placeMelted(WaveData* wave, const MeltedRefs& refs);
    qint32 addBlock(const MeltedRefs* refs, size_t count);
    // How many references refs[begin, end) of a list stand for: each counts
    // against the limit, however it is kept.
    qint64 referencesIn(const RunList& list, size_t begin, size_t end) const;
    qint64 referencesOf(const MeltedRefs& refs) const
    {
        return refs.block < 0 ? refs.times : refs.times * blockReferences_[size_t(refs.block)];
    }
    qint64 lineOf(const char* at) const;

    WaveformData& doc_;
    const qint64 segmentLimit_;
    qint64 budget_;
    qint64 elementBudget_ = readlimits::MaxBusElements;
    bool failed_ = false;

    // The statement being compiled, for lineOf.
    std::string_view statement_;
    qint64 firstLine_ = 1;
    const std::vector<size_t>* lineStarts_ = nullptr;

    // "$" references in the order laid down. A placeholder that melted into
    // the segment before it has no segment of its own (null): its pattern's
    // further segments land at the end of the wave.
    struct Placeholder {
        WaveData* wave;
        Pattern* segment;
        MeltedRefs refs;   // the name alone when segment is set
        qint64 line;
    };
    std::vector<Placeholder> placeholders_;
    // What repeats melted, each stretch once: a reference costs what it lays
    // down, not what the repeats around it multiply it into.
    std::vector<std::vector<MeltedRefs>> blocks_;
    std::vector<qint64> blockReferences_;   // how many references each stands for
    std::vector<QString> names_;
    std::unordered_map<std::string, qint32> nameIds_;
    // The waves of whole statements, with the line each starts on.
    struct LaidWave {
        WaveData* wave;
        qint64 line;
        bool voids;   // holds a segment of no duration
    };
    std::vector<LaidWave> laidWaves_;
};

} // namespace kesu::toolvok
