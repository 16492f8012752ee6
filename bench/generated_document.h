#pragma once

#include "wavedata.h"

#include <memory>

namespace kesu::toolvok {

// Wave `index` of the benchmarks' generated document. One wave in four is a
// bus of 8 to 64 bits, about one in a hundred ends in a forever tail, and no
// two neighbours are equal, so the wave reads back from its file unchanged.
// The same seed and index always give the same wave.
std::unique_ptr<WaveData> makeGeneratedWave(quint64 seed, qint64 index, qint64 segments);

} // namespace kesu::toolvok
