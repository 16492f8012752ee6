#pragma once

// The save trials' edit: a wave long enough that the new text is written in several pieces.
#include "wavedata.h"
#include "waveformdata.h"

namespace saveedit {

inline void addStressWave(kesu::toolvok::WaveformData& document, int segments)
{
    auto* wave = new kesu::toolvok::WaveData(QStringLiteral("stress"));
    for (int i = 0; i < segments; ++i)
        wave->insertData(new kesu::toolvok::Pattern(i % 2 ? "1" : "0", 1 + i % 7), nullptr);
    document.addWave(wave);
    document.endTime += 1;
}

} // namespace saveedit
