// Verilog test vectors: one module without ports, a reg per wave and an
// initial block per wave that assigns each segment's value and waits out its
// duration. Delays are whole ticks, the timescale unit.
#include "writers.h"

#include "waveformdata.h"

namespace kesu::toolvok {

namespace {

void writeDelay(quint64 ticks, OutputStream& out)
{
    // Unsized numbers are only sure to hold 32 bits.
    const bool wide = ticks > 0x7fffffffU;
    out << (wide ? "#(64'd" : "#");
    out.number(ticks) << (wide ? ");" : ";");
}

// Each segment is one line: the assignment, made in place in line_, and
// the delay.
class VerilogWave
{
public:
    VerilogWave(const ExportSignal& signal, OutputStream& out) : signal_(signal), out_(out)
    {
        line_ = "      " + signal.id.toStdString() + " = " + std::to_string(signal.width) + "'b";
        literalAt_ = line_.size();
        line_ += std::string(size_t(signal.width), ' ') + "; ";
    }

    // indent: 4 or 6 blanks.
    void assign(const std::string& value, int indent)
    {
        valueBits(value, signal_.wave->isBus, signal_.width, false, line_.data() + literalAt_);
        out_.put(line_.data() + 6 - indent, line_.size() - 6 + size_t(indent));
    }

    void segments(int from, int to, int indent)
    {
        for (int i = from; i < to; ++i) {
            const Pattern* p = signal_.wave->patterns.at(i);
            if (p->duration == 0)
                continue;
            assign(p->value, indent);
            writeDelay(quint64(p->duration), out_);
            out_ << '\n';
        }
    }

private:
    const ExportSignal& signal_;
    OutputStream& out_;
    std::string line_;
    size_t literalAt_ = 0;
};

void writeWave(const ExportSignal& signal, OutputStream& out)
{
    const WaveData& wave = *signal.wave;
    VerilogWave writer(signal, out);
    out << "\n  // " << wave.name.toLatin1() << "\n  initial begin\n";
    if (wave.offset > 0 || !signal.drawn) {
        writer.assign(Values::DontCare, 4);
        if (wave.offset > 0)
            writeDelay(wave.offset, out);
        out << '\n';
    }
    const int count = int(wave.patterns.size());
    writer.segments(0, signal.tailStart < 0 ? count : signal.tailStart, 4);
    if (signal.tailStart >= 0) {
        out << "    forever begin\n";
        writer.segments(signal.tailStart, count, 6);
        out << "    end\n";
    }
    out << "  end\n";
}

} // namespace

void writeVerilogVectors(const ExportPlan& plan, OutputStream& out)
{
    const TimeUnit tick = timeUnitOf(plan.tickExponent);
    const std::string unit = std::to_string(tick.magnitude) + tick.unit;
    out << "// Verilog test vectors of " << plan.source.toUtf8() << "\n// " << timeBaseText(plan) << "\n\n";
    out << "`timescale " << unit << " / " << unit << "\n\nmodule " << plan.design << ";\n";
    // Ranges keep the direction the document gave them.
    out << "  // verilator lint_off LITENDIAN\n";
    for (const ExportSignal& signal : plan.signals) {
        out << "  reg ";
        if (signal.vector)
            out << '[' << std::to_string(signal.left) << ':' << std::to_string(signal.right) << "] ";
        out << signal.id << ";\n";
    }
    // A stopped stream writes nothing more: the waves left are not worked out.
    for (size_t i = 0; i < plan.signals.size() && out.ok(); ++i)
        writeWave(plan.signals[i], out);
    out << "\n  initial begin\n    ";
    writeDelay(plan.endTime, out);
    out << "\n    $finish;\n  end\nendmodule\n";
}

} // namespace kesu::toolvok
