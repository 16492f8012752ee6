// VHDL test vectors: an entity without ports whose architecture drives one
// signal per wave from a process of its own, with waits in whole numbers of
// the largest time unit that keeps each wait exact.
#include "writers.h"

#include "waveformdata.h"

#include <vector>

namespace kesu::toolvok {

namespace {

// Segment durations repeat a great deal: the text of short waits is made
// once.
class WaitTexts
{
public:
    // In a forever loop a wait also ends when the simulation does.
    WaitTexts(int exponent, bool inLoop) : exponent_(exponent), inLoop_(inLoop), texts_(4096) {}
    const std::string& operator()(quint64 ticks)
    {
        if (ticks >= texts_.size()) {
            other_ = text(ticks);
            return other_;
        }
        std::string& known = texts_[size_t(ticks)];
        if (known.empty())
            known = text(ticks);
        return known;
    }

private:
    std::string text(quint64 ticks) const
    {
        return (inLoop_ ? " wait until finished for " : " wait for ") + vhdlTime(ticks, exponent_)
            + (inLoop_ ? "; exit when finished;\n" : ";\n");
    }

    int exponent_;
    bool inLoop_;
    std::vector<std::string> texts_;
    std::string other_;
};

// Each segment is one line: the assignment, made in place in line_, and
// the wait.
class VhdlWave
{
public:
    VhdlWave(const ExportSignal& signal, int exponent, OutputStream& out)
        : signal_(signal), out_(out), waits_(exponent, false), loopWaits_(exponent, true)
    {
        const char quote = signal.vector ? '"' : '\'';
        line_ = "      " + signal.id.toStdString() + " <= " + quote;
        literalAt_ = line_.size();
        line_ += std::string(size_t(signal.width), ' ') + quote + ';';
    }

    // indent: 4 or 6 blanks.
    void assign(const std::string& value, int indent)
    {
        valueBits(value, signal_.wave->isBus, signal_.width, true, line_.data() + literalAt_);
        out_.put(line_.data() + 6 - indent, line_.size() - 6 + size_t(indent));
    }

    void wait(quint64 ticks) { out_ << waits_(ticks); }

    // The segments of a forever loop are those indented by 6.
    void segments(int from, int to, int indent)
    {
        WaitTexts& waits = indent == 6 ? loopWaits_ : waits_;
        for (int i = from; i < to; ++i) {
            const Pattern* p = signal_.wave->patterns.at(i);
            if (p->duration == 0)
                continue;
            assign(p->value, indent);
            out_ << waits(quint64(p->duration));
        }
    }

private:
    const ExportSignal& signal_;
    OutputStream& out_;
    WaitTexts waits_;
    WaitTexts loopWaits_;
    std::string line_;
    size_t literalAt_ = 0;
};

} // namespace

QSet<QByteArray> vhdlOwnNames()
{
    // Not the entity's name: a signal may hide it, nothing inside refers to it.
    return {"vectors", "ieee", "std", "std_logic_1164", "std_logic", "std_logic_vector", "now", "finished",
            "boolean", "true", "false"};
}

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
    if (wave.offset > 0 || !signal.drawn) {
        writer.assign(Values::DontCare, 4);
        if (wave.offset > 0)
            writer.wait(wave.offset);
        else
            out << '\n';
    }
    const int count = int(wave.patterns.size());
    writer.segments(0, signal.tailStart < 0 ? count : signal.tailStart, 4);
    if (signal.tailStart >= 0) {
        out << "    while not finished loop\n";
        writer.segments(signal.tailStart, count, 6);
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
    out << "  signal finished : boolean := false;\nbegin\n";
    // A stopped stream writes nothing more: the waves left are not worked out.
    for (size_t i = 0; i < plan.signals.size() && out.ok(); ++i)
        writeVhdlStimulus(plan, plan.signals[i], out);
    out << "\n  -- the end: forever loops stop\n  process\n  begin\n    wait for "
        << vhdlTime(plan.endTime, plan.tickExponent) << ";\n    finished <= true;\n    wait;\n  end process;\n"
        << "end architecture vectors;\n";
}

} // namespace kesu::toolvok
