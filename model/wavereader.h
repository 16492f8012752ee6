// The waveform file reader. One reader lives for one load: it holds the
// working state (the repeat budget, the group depth, the "$" placeholders
// still to resolve) so that the document it fills carries none of it.
#pragma once

#include "progress.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <string_view>

class QIODevice;

namespace kesu::toolvok {

class Pattern;
class WaveData;
class WaveformData;

class WaveReader
{
public:
    explicit WaveReader(WaveformData& doc);
    WaveReader(const WaveReader&) = delete;
    WaveReader& operator=(const WaveReader&) = delete;

    // Whole loads: every statement, then the "$" references resolved.
    // False when progress stopped the read: the document holds only a part
    // and is for the caller to throw away.
    bool readDevice(QIODevice& file, const Progress& progress = {});
    void readText(const QString& text);

    // One statement, UTF-8 bytes; its "$" references wait for
    // resolvePatternReferences().
    void compileStatement(std::string_view statement);
    // A group's body read into new segments that are not laid into the wave.
    void readGroupBody(const QString& body, QList<Pattern*>& out, WaveData* wave);
    static QStringList tokens(const QString& text);

    // Each placeholder becomes its named pattern's segments, or leaves its
    // wave when no pattern of that name was read.
    void resolvePatternReferences();

private:
    // out null: lay the segments straight into the wave (the top level).
    void readSegments(std::string_view text, QList<Pattern*>* out, WaveData* wave);
    void readGroup(std::string_view token, WaveData* wave, QList<Pattern*>* out);
    void lay(Pattern* p, bool placeholder, WaveData* wave, QList<Pattern*>* out);
    Pattern* newPlaceholder(WaveData* wave, const QString& reference);

    WaveformData& doc_;
    // Segments that repeat counts may still lay down; a guard against a few
    // bytes of text asking for billions of segments.
    qint64 repeatBudget_;
    int groupDepth_ = 0;
    // Placeholders for "$" references with their waves, in the order made.
    QList<QPair<WaveData*, Pattern*>> placeholders_;
};

} // namespace kesu::toolvok
