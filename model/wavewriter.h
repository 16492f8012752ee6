#pragma once

#include <QByteArray>

class QIODevice;

namespace kesu::toolvok {

class WaveformData;

// The waveform file writer: every field of every wave in a fixed layout that
// the reader reads back into an equal document. Text is UTF-8, lines end in a
// single line feed.
QByteArray formatWaveform(const WaveformData& document);

// Streams the same text into an open device; false when the device refused
// part of it.
bool writeWaveform(const WaveformData& document, QIODevice& device);

} // namespace kesu::toolvok
