#pragma once

#include "biginteger.h"

#include <QList>
#include <QString>

namespace kesu::toolvok {

class Pattern;
class WaveData;

// The Pulse Properties View's edits of a selection, apart from its widgets.
// Each either changes the wave completely or, when refused, not at all.
namespace PulseEdits {

// A number typed with the "0x" prefix is hexadecimal, any other in `base`.
BigInteger readNumber(const QString& text, int base);

enum class Outcome { Unchanged, Done, Invalid, Overflow, TooMany };

// Multiplies every duration by the scale typed. A product that leaves 32
// bits, turns negative or shrinks a duration refuses the whole scale.
// `total` receives the sum of the new durations.
Outcome scaleDurations(const QList<Pattern*>& selection, const QString& text, quint64& total);

// Repeats the selection (pulses of `wave` in wave order) so that it occurs
// `count` times in a row; where a copy begins with the value its
// predecessor ends with, the two join. The new pulses are appended to
// `added`; `total` receives the selection's span times count.
Outcome repeatSelection(WaveData* wave, const QList<Pattern*>& selection, qint64 count, QList<Pattern*>& added,
                        quint64& total);

// The repeat count typed: decimal only, so "0x" text counts as 0.
qint64 readRepeatCount(const QString& text, bool& tooLarge);

} // namespace PulseEdits
} // namespace kesu::toolvok
