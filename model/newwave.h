// The wave a user asks for by name in the Add New Wave dialog.
#pragma once

#include <QString>

namespace kesu::toolvok {

class WaveData;
class WaveformData;

// The widest bus a user may add by name.
constexpr int MaxNewBusBits = 256;

// Builds the wave that the typed name and the chosen polarity (5 for a named
// pattern) describe, ready to be added to document: "d[7:0]" a bus of bits
// d[7] to d[0], "[a0...a3]" one of bits a[0] to a[3], "a,b,c" or "x[a,b,c]" a
// bus of the listed elements, anything else a single signal. Returns null with
// the reason for the user in message when the name is malformed, taken, or
// clashes with the bits of a bus already there. The caller owns the wave.
WaveData* makeNewWave(const WaveformData& document, const QString& typed, int polarity, QString& message);

} // namespace kesu::toolvok
