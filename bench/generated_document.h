#pragma once

#include "wavedata.h"

#include <memory>

namespace kesu::toolvok {

// Wave `index` of the benchmarks' generated document. One wave in four is a
// bus of 8 to 64 bits, about one in a hundred ends in a forever tail, and no
// two neighbours are equal, so the wave reads back from its file unchanged.
// The same seed and index always give the same wave.
std::unique_ptr<WaveData> makeGeneratedWave(quint64 seed, qint64 index, qint64 segments);

// The whole generated document of `waves` waves, saved to `path` as the
// editor saves it.
bool writeGeneratedDocument(const QString& path, quint64 seed, qint64 waves, qint64 segments);

// For the benchmarks that build a tool window: offscreen unless a platform is
// asked for, and with the user's settings kept in `config`, out of reach.
void sandboxToolSettings(const QString& config);

} // namespace kesu::toolvok
