#pragma once

#include <QString>
#include <QtGlobal>
#include <string>

namespace kesu::toolvok {

class WaveformData;

// Times are tick counts; one tick is 10^-decimals of the smallest unit, and
// the smallest unit is a power-of-ten exponent of the second (3 ms, 6 us,
// 9 ns, 12 ps). These are the widget-free conversions behind the editor's
// time and bus value text.
namespace TimeText {

// " ms", " us", " ns" or " ps"; empty for any other unit.
QString unitText(int smallestUnit);

// "1,234.5 ps": thousands separators, up to three decimals without trailing
// zeros.
QString timeString(quint64 ticks, bool withUnit, int smallestUnit, int decimals);

// Reads what timeString writes, with or without a unit; a number without a
// unit is a tick count. ok is false for text that is not a time or does not
// come to a whole number of ticks.
quint64 parseTime(bool& ok, const QString& text, int smallestUnit, int decimals);

// Radix setting 0 binary, 1 octal, 2 decimal, 3 hexadecimal to its base.
int radixBase(int radixSetting);

// A hexadecimal bus value in the base of the radix setting; binary shows
// every bit of the width.
QString busValueString(const std::string& hexValue, int width, int radixSetting);

// The largest end time over the document's waves; 0 without waves.
quint64 maxEnd(const WaveformData& document);

} // namespace TimeText
} // namespace kesu::toolvok
