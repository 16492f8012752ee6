#pragma once

#include "wavedata.h"

#include <QList>
#include <QString>
#include <QStringList>

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

    // The file reader (WaveReader), one for each call. Forgiving by design:
    // bad statements are skipped and numbers that do not convert count as 0.
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
};

} // namespace kesu::toolvok
