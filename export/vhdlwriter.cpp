// VHDL test vectors: an entity without ports whose architecture drives one
// signal per wave from a process of its own, with waits in whole numbers of
// the largest time unit that keeps each wait exact.
#include "writers.h"

#include "waveformdata.h"

#include <unordered_map>

namespace kesu::toolvok {

namespace {

// Segment durations repeat a great deal; their text is kept once made.
class WaitTexts
{
public:
    explicit WaitTexts(int exponent) : exponent_(exponent) {}
    const std::string& operator()(quint64 ticks)
    {
        auto found = texts_.find(ticks);
        if (found == texts_.end())
            found = texts_.emplace(ticks, " wait for " + vhdlTime(ticks, exponent_) + ";\n").first;
        return found->second;
    }

private:
    int exponent_;
    std::unordered_map<quint64, std::string> texts_;
};

class VhdlWave
{
public:
    VhdlWave(const ExportSignal& signal, int exponent, OutputStream& out)
        : signal_(signal), out_(out), waits_(exponent), literal_(size_t(signal.width), ' ')
    {
        const char quote = signal.vector ? '"' : '\'';
        assign_ = signal.id + " <= " + quote;
        close_ = std::string(1, quote) + ';';
    }

    void assign(const std::string& value, const char* indent)
    {
        valueBits(value, signal_.wave->isBus, signal_.width, true, literal_.data());
        out_ << indent << assign_ << literal_ << close_;
    }

    void wait(quint64 ticks) { out_ << waits_(ticks); }

    void segments(int from, int to, const char* indent)
    {
        for (int i = from; i < to; ++i) {
            const Pattern* p = signal_.wave->patterns.at(i);
            if (p->duration == 0)
                continue;
            assign(p->value, indent);
            wait(quint64(p->duration));
        }
    }

private:
    const ExportSignal& signal_;
    OutputStream& out_;
    WaitTexts waits_;
    std::string literal_;
    QByteArray assign_;
    std::string close_;
};

} // namespace

QByteArray vhdlType(const ExportSignal& signal)
{
    if (!signal.vector)
        return "std_logic";
    return "std_logic_vector(" + QByteArray::number(signal.left) + (signal.left < signal.right ? " to " : " downto ")
        + QByteArray::number(signal.right) + ')';
}

void writeVhdlStimulus(const ExportPlan& plan, const ExportSignal& signal, OutputStream& out)
{
    const WaveData& wave = *signal.wave;
    VhdlWave writer(signal, plan.tickExponent, out);
    out << "\n  -- " << wave.name.toLatin1() << "\n  process\n  begin\n";
    if (wave.offset > 0 || wave.patterns.isEmpty()) {
        writer.assign(Values::DontCare, "    ");
        if (wave.offset > 0)
            writer.wait(wave.offset);
        else
            out << '\n';
    }
    const int count = int(wave.patterns.size());
    writer.segments(0, signal.tailStart < 0 ? count : signal.tailStart, "    ");
    if (signal.tailStart >= 0) {
        // The last round may run past the end time: nothing looks there.
        out << "    while now < " << vhdlTime(plan.endTime, plan.tickExponent) << " loop\n";
        writer.segments(signal.tailStart, count, "      ");
        out << "    end loop;\n";
    }
    out << "    wait;\n  end process;\n";
}

void writeVhdlVectors(const ExportPlan& plan, OutputStream& out)
{
    out << "-- VHDL test vectors of " << plan.source.toLatin1() << "\n-- " << timeBaseText(plan) << "\n\n";
    out << "library ieee;\nuse ieee.std_logic_1164.all;\n\nentity " << plan.design << " is\nend entity "
        << plan.design << ";\n\narchitecture vectors of " << plan.design << " is\n";
    for (const ExportSignal& signal : plan.signals)
        out << "  signal " << signal.id << " : " << vhdlType(signal) << ";\n";
    out << "begin\n";
    for (const ExportSignal& signal : plan.signals)
        writeVhdlStimulus(plan, signal, out);
    out << "end architecture vectors;\n";
}

} // namespace kesu::toolvok
