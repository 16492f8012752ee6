#pragma once

#include <QtGlobal>

namespace kesu::toolvok {

// The kind of a wave (its `polarity`): the direction of a design signal, or a
// named pattern that other waves refer to.
namespace WaveKind {
constexpr qint32 Input = 0;
constexpr qint32 Output = 1;
constexpr qint32 Bidir = 2;
constexpr qint32 TestPoint = 3;
constexpr qint32 Global = 4;
constexpr qint32 Pattern = 5;

// Whether the kind is one of a design's signals (and so has a kind letter).
constexpr bool isSignal(qint32 kind)
{
    return kind >= Input && kind <= Global;
}
} // namespace WaveKind

// The waveform type of a wave (its `waveType`).
namespace WaveType {
constexpr qint32 None = 0;
constexpr qint32 NRZ = 1;
constexpr qint32 RZ = 2;
constexpr qint32 R1 = 3;
constexpr qint32 RC = 4;
} // namespace WaveType

} // namespace kesu::toolvok
