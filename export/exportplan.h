// What every export needs to know of a document, checked once: the time
// base, where the simulation ends, and each wave as a signal of the target
// language. The writers can then write without a failure path of their own.
#pragma once

#include "identifiers.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace kesu::toolvok {

class WaveData;
class WaveformData;

struct ExportSignal {
    const WaveData* wave = nullptr;
    QByteArray id;          // the identifier as written; none without a language
    int width = 1;
    bool vector = false;    // declared with a range, even of one bit
    qint64 left = 0;        // the range as declared, left bound first
    qint64 right = 0;
    int tailStart = -1;     // first segment of a forever tail that repeats, or -1
    bool drawn = false;     // some segment lasts: else the wave is unknown throughout
};

struct ExportPlan {
    const WaveformData* document = nullptr;
    QString source;         // the input file, named in the header
    QByteArray design;      // module or entity name
    int tickExponent = 12;  // one tick is 10^-tickExponent s
    quint64 endTime = 0;    // in ticks: the later of the end time and the latest wave end
    std::vector<ExportSignal> signals;
};

// Fills plan for language; false with the reason in error (one line) when
// the document cannot be written exactly. Each wave gets an identifier of
// the language that no other wave has, nor the names in reserved, which the
// export itself declares; without a language the waves keep their names,
// repeats and all, and get no identifier.
bool makePlan(const WaveformData& document, std::optional<Language> language, const QSet<QByteArray>& reserved,
              ExportPlan& plan, QString& error);

// The value's bits, most significant first, into out (width characters):
// '0', '1', and don't care or high impedance as x or z in the case asked
// for. False for text that is no value or does not fit the width.
bool valueBits(const std::string& value, bool bus, int width, bool upperCase, char* out);

// A power of ten of the second as a magnitude (1, 10 or 100) of a unit
// ("s", "ms", "us", "ns", "ps", "fs"): exponent 10 is 100 ps.
struct TimeUnit {
    int magnitude;
    const char* unit;
};
TimeUnit timeUnitOf(int exponent);

// count units of 10^-exponent s as a VHDL time: a whole number of the
// largest unit that keeps it exact ("1500 ps", "2 ns"). The caller keeps the
// time within VHDL's range (makePlan checks the end time).
std::string vhdlTime(quint64 count, int exponent);

// The header's words for the time base: "tick 100 ps, end time 4000 ticks".
std::string timeBaseText(const ExportPlan& plan);

} // namespace kesu::toolvok
