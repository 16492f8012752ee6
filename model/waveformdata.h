#pragma once

#include "wavedata.h"

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <string_view>

class QIODevice;

namespace kesu::toolvok {

// The document: five header settings and the waves in display and file order.
// Owns its waves.
class WaveformData
{
public:
    WaveformData() = default;
    ~WaveformData();
    WaveformData(const WaveformData&) = delete;
    WaveformData& operator=(const WaveformData&) = delete;

    void addWave(WaveData* wave);
    int removeWave(WaveData* wave);
    WaveData* findWavebyName(const QString& name) const;
    void ClearAll();
    bool checkBusElements(const WaveData* wave, QString& message) const;
    static void genExpandWave(WaveData* wave, const QString& base, int from, int to);

    // The file reader. Forgiving by design: bad statements are skipped and
    // numbers that do not convert count as 0.
    void loadData(QIODevice& file);
    void loadText(const QString& text);
    void CompilerLine(const QString& statement);
    static QStringList parseValues(const QString& text);
    void processSubPattern(const QString& body, QList<Pattern*>& out, WaveData* wave);

    qint32 masterClockMult = 1;
    qint32 smallestUnit = 12;
    qint32 autoAssign = 0;
    qint32 decimals = 0;
    quint64 endTime = 1000;
    QList<WaveData*> waves;

private:
    void resolvePatternReferences();
    void expandListedReferences(WaveData* wave, const QHash<Pattern*, const WaveData*>& listed);
    friend class StatementReader;
    // The reader works on UTF-8 bytes; the QString entry points convert once.
    void beginLoad();
    void compileStatement(std::string_view statement);
    // out null: lay the segments straight into the wave (the top level).
    void readSegments(std::string_view text, QList<Pattern*>* out, WaveData* wave);
    void readGroup(std::string_view token, WaveData* wave, QList<Pattern*>* out);
    void lay(Pattern* p, bool placeholder, WaveData* wave, QList<Pattern*>* out);
    Pattern* newPlaceholder(WaveData* wave, const QString& reference);

    // Segments that repeat counts may still lay down during one load; a guard
    // against a few bytes of text asking for billions of segments.
    qint64 repeatBudget_ = 0;
    int groupDepth_ = 0;
    // Placeholders for "$" references with their waves, in the order made.
    QList<QPair<WaveData*, Pattern*>> placeholders_;
};

} // namespace kesu::toolvok
