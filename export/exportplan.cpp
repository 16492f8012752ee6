#include "exportplan.h"

#include "busname.h"
#include "waveformdata.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace kesu::toolvok {

namespace {

const char* languageName(Language language)
{
    return language == Language::Vhdl ? "VHDL" : language == Language::Verilog ? "Verilog" : "VCD";
}

// -1 for a character that is no hexadecimal digit.
int hexDigit(char c)
{
    static const auto table = [] {
        std::array<signed char, 256> digits{};
        digits.fill(-1);
        for (int d = 0; d < 10; ++d)
            digits['0' + d] = qint8(d);
        for (int d = 0; d < 6; ++d)
            digits['a' + d] = digits['A' + d] = qint8(10 + d);
        return digits;
    }();
    return table[static_cast<unsigned char>(c)];
}

// The bus of the wave as a vector: its name without the brackets and its
// range as declared; an element list counts down from its width.
bool describeSignal(const WaveData& wave, std::optional<Language> language, ExportSignal& signal, QString& error)
{
    const BusName bus = wave.isBus ? parseBusName(wave.name) : BusName();
    QString name = wave.name;
    if (bus.form == BusName::Range || bus.form == BusName::Run) {
        name = bus.base;
        signal.left = bus.from;
        signal.right = bus.to;
        signal.width = int(bus.width());
        signal.vector = true;
    } else if (wave.isBus) {
        const qsizetype bracket = wave.name.indexOf(QLatin1Char('['));
        name = bracket > 0 ? wave.name.left(bracket) : wave.name;
        signal.width = qMax(1, wave.busWidth);
        signal.left = signal.width - 1;
        signal.vector = true;
    }
    if (!language)
        return true;
    signal.id = identifierFor(name, *language);
    if (signal.id.isEmpty()) {
        error = QStringLiteral("wave \"%1\" cannot be named in %2").arg(wave.name, QLatin1String(languageName(*language)));
        return false;
    }
    if (language == Language::Vhdl && (signal.left < 0 || signal.right < 0)) {
        error = QStringLiteral("wave \"%1\" has a negative bit number, which a std_logic_vector cannot have").arg(wave.name);
        return false;
    }
    return true;
}

// The wave's end: its offset and every duration.
quint64 endOf(const WaveData& wave)
{
    quint64 end = wave.offset;
    for (const Pattern* p : wave.patterns)
        end += quint64(qint64(p->duration));
    return end;
}

// Also raises endTime to the wave's end.
bool checkSegments(const WaveData& wave, ExportSignal& signal, quint64& endTime, QString& error)
{
    std::string bits(size_t(signal.width), ' ');
    quint64 time = wave.offset;
    quint64 tailLength = 0;
    for (int i = 0; i < wave.patterns.size(); ++i) {
        const Pattern* p = wave.patterns.at(i);
        if (p->duration < 0) {
            error = QStringLiteral("wave \"%1\" has a segment of negative duration at %2").arg(wave.name).arg(time);
            return false;
        }
        if (!valueBits(p->value, wave.isBus, signal.width, false, bits.data())) {
            error = QStringLiteral("wave \"%1\" has the value \"%2\" at %3, which is no %4-bit value")
                        .arg(wave.name, QString::fromStdString(p->value)).arg(time).arg(signal.width);
            return false;
        }
        time += quint64(p->duration);
        signal.drawn = signal.drawn || p->duration > 0;
        if (wave.foreverIndex >= 0 && i >= wave.foreverIndex)
            tailLength += quint64(p->duration);
    }
    // A tail of no length would repeat without time passing.
    signal.tailStart = tailLength > 0 ? wave.foreverIndex : -1;
    endTime = qMax(endTime, time);
    return true;
}

// The identifier becomes the wave's, unless another wave or the export
// itself (a null wave in taken) has it already.
bool claimIdentifier(const WaveData& wave, const QByteArray& id, Language language,
                     QHash<QByteArray, const WaveData*>& taken, QString& error)
{
    const QByteArray key = identifierKey(id, language);
    const auto other = taken.constFind(key);
    if (other == taken.constEnd()) {
        taken.insert(key, &wave);
        return true;
    }
    const QString shown = QString::fromLatin1(id.trimmed());
    error = other.value() ? QStringLiteral("waves \"%1\" and \"%2\" would both be %3 in %4")
                                .arg(other.value()->name, wave.name, shown, QLatin1String(languageName(language)))
                          : QStringLiteral("wave \"%1\" would be %2, a name the export declares itself").arg(wave.name, shown);
    return false;
}

bool checkTick(const WaveformData& document, ExportPlan& plan, QString& error)
{
    plan.tickExponent = document.smallestUnit + document.decimals;
    if (plan.tickExponent >= 0 && plan.tickExponent <= 15)
        return true;
    error = QStringLiteral("the tick (smallest unit %1, %2 decimals) is not between 1 fs and 1 s")
                .arg(document.smallestUnit).arg(document.decimals);
    return false;
}

bool checkEndTime(std::optional<Language> language, const ExportPlan& plan, QString& error)
{
    using Wide = unsigned __int128;
    Wide femtoseconds = plan.endTime;
    for (int e = plan.tickExponent; e < 15; ++e)
        femtoseconds *= 10;
    // VHDL counts time in signed 64-bit femtoseconds.
    if (language != Language::Vhdl || femtoseconds <= Wide(std::numeric_limits<qint64>::max()))
        return true;
    error = QStringLiteral("the end time, %1 ticks, is beyond the time range of VHDL").arg(plan.endTime);
    return false;
}

} // namespace

bool valueBits(const std::string& value, bool bus, int width, bool upperCase, char* out)
{
    if (Values::isSpecial(value)) {
        const char c = Values::isDontCare(value) ? 'x' : 'z';
        std::fill(out, out + width, upperCase ? char(c - 32) : c);
        return true;
    }
    if (!bus) {
        if (value.size() != 1 || (value[0] != '0' && value[0] != '1'))
            return false;
        out[0] = value[0];
        return true;
    }
    static const char nibbles[16][4] = {{'0','0','0','0'}, {'0','0','0','1'}, {'0','0','1','0'}, {'0','0','1','1'},
        {'0','1','0','0'}, {'0','1','0','1'}, {'0','1','1','0'}, {'0','1','1','1'}, {'1','0','0','0'},
        {'1','0','0','1'}, {'1','0','1','0'}, {'1','0','1','1'}, {'1','1','0','0'}, {'1','1','0','1'},
        {'1','1','1','0'}, {'1','1','1','1'}};
    if (value.empty())
        return false;
    int end = width;   // the digits are laid down from the right
    for (auto digit = value.rbegin(); digit != value.rend(); ++digit) {
        const int v = hexDigit(*digit);
        if (v < 0)
            return false;
        if (end >= 4) {
            std::memcpy(out + end - 4, nibbles[v], 4);
            end -= 4;
        } else {
            // The top digit: only its low bits fit; set bits above the width do not.
            if (v >> end != 0)
                return false;
            std::memcpy(out, nibbles[v] + 4 - end, size_t(end));
            end = 0;
        }
    }
    std::fill(out, out + end, '0');
    return true;
}

bool makePlan(const WaveformData& document, std::optional<Language> language, const QSet<QByteArray>& reserved,
              ExportPlan& plan, QString& error)
{
    plan.document = &document;
    if (!checkTick(document, plan, error))
        return false;
    // Ends summed here: the waves' own look-ups would build a start-time
    // index of every segment only to read its last entry.
    plan.endTime = document.endTime;
    QHash<QByteArray, const WaveData*> taken;
    for (const QByteArray& name : reserved)
        taken.insert(identifierKey(name, language.value()), nullptr);
    for (const WaveData* wave : document.waves) {
        if (wave->isPattern || wave->polarity == 5) {
            // Named patterns are already laid down in the waves that use them.
            plan.endTime = qMax(plan.endTime, endOf(*wave));
            continue;
        }
        ExportSignal signal;
        signal.wave = wave;
        if (!describeSignal(*wave, language, signal, error) || !checkSegments(*wave, signal, plan.endTime, error)
            || (language && !claimIdentifier(*wave, signal.id, *language, taken, error)))
            return false;
        plan.signals.push_back(signal);
    }
    return checkEndTime(language, plan, error);
}

TimeUnit timeUnitOf(int exponent)
{
    static const char* const units[] = {"s", "ms", "us", "ns", "ps", "fs"};
    const int unit = (exponent + 2) / 3;
    const int magnitude = unit * 3 - exponent == 2 ? 100 : unit * 3 - exponent == 1 ? 10 : 1;
    return {magnitude, units[unit]};
}

std::string vhdlTime(quint64 count, int exponent)
{
    static const char* const units[] = {" sec", " ms", " us", " ns", " ps", " fs"};
    for (; exponent % 3 != 0; ++exponent)
        count *= 10;
    while (exponent > 0 && count % 1000 == 0 && count != 0) {
        count /= 1000;
        exponent -= 3;
    }
    return std::to_string(count) + units[exponent / 3];
}

std::string timeBaseText(const ExportPlan& plan)
{
    const TimeUnit tick = timeUnitOf(plan.tickExponent);
    return "tick " + std::to_string(tick.magnitude) + ' ' + tick.unit + ", end time " + std::to_string(plan.endTime)
        + " ticks";
}

} // namespace kesu::toolvok
