// The VHDL test bench: the design as a component whose ports are the waves
// by kind, stimulus for what goes in, and for every Output wave a checker
// that compares the design's output with the drawing in the middle of each
// drawn segment. A last process reports the counts at the end time.
#include "writers.h"

#include "waveformdata.h"

namespace kesu::toolvok {

namespace {

enum Kind { Input = 0, Output = 1, Bidir = 2, TestPoint = 3, Global = 4 };

const char* portMode(int polarity)
{
    switch (polarity) {
    case Input:
    case Global:
        return "in";
    case Output:
        return "out";
    case Bidir:
        return "inout";
    }
    return nullptr;
}

QByteArray vhdlString(const QString& text)
{
    return '"' + text.toLatin1().replace('"', "\"\"") + '"';
}

const char* const helpers = R"(
  type check_counts is array (natural range <>) of natural;
  signal passed_checks, failed_checks : check_counts(0 to %1) := (others => 0);
  signal finished : boolean := false;

  function image_of(v : std_logic_vector) return string is
    variable text : string(1 to v'length);
    variable i : natural := 0;
  begin
    for k in v'range loop
      i := i + 1;
      text(i) := std_logic'image(v(k))(2);
    end loop;
    return text;
  end function image_of;

  procedure check(actual, expected : std_logic_vector; name : string;
                  variable passed, failed : inout natural;
                  signal passed_count, failed_count : out natural) is
  begin
    if actual = expected then
      passed := passed + 1;
      passed_count <= passed;
    else
      failed := failed + 1;
      failed_count <= failed;
      report name & " at " & time'image(now) & ": expected " & image_of(expected) & ", got " & image_of(actual)
        severity error;
    end if;
  end procedure check;
begin
)";

// Checks fall in the middle of segments, which for an odd number of ticks is
// half a tick: the checker counts tenths of ticks where VHDL has them.
class Checker
{
public:
    Checker(const ExportPlan& plan, const ExportSignal& signal, OutputStream& out)
        : plan_(plan), signal_(signal), out_(out), literal_(size_t(signal.width), ' ')
    {
        fine_ = plan.tickExponent < 15;
        scale_ = fine_ ? 10 : 1;
        end_ = plan.endTime * scale_;
    }

    void write(int index)
    {
        const WaveData& wave = *signal_.wave;
        out_ << "\n  -- checks " << wave.name.toLatin1() << "\n  process\n    variable passed, failed : natural := 0;\n"
             << "    procedure expect(value : std_logic_vector) is\n    begin\n      check("
             << (signal_.vector ? signal_.id : "(0 => " + signal_.id + ')') << ", value, " << vhdlString(wave.name)
             << ", passed, failed, passed_checks(" << std::to_string(index) << "), failed_checks("
             << std::to_string(index) << "));\n    end procedure expect;\n  begin\n";
        const int count = int(wave.patterns.size());
        const int prefixEnd = signal_.tailStart < 0 ? count : signal_.tailStart;
        quint64 start = wave.offset * scale_;
        start = segments(0, prefixEnd, start, "    ", false);
        if (signal_.tailStart >= 0) {
            waitUntil(start, "    ");
            out_ << "    while not finished loop\n";
            segments(signal_.tailStart, count, start, "      ", true);
            out_ << "    end loop;\n";
        }
        out_ << "    wait;\n  end process;\n";
    }

private:
    int exponent() const { return plan_.tickExponent + (fine_ ? 1 : 0); }

    // In the forever loop a wait also ends when the simulation does.
    void waitUntil(quint64 time, const char* indent, bool inLoop = false)
    {
        if (time > now_) {
            out_ << indent << (inLoop ? "wait until finished for " : "wait for ") << vhdlTime(time - now_, exponent())
                 << (inLoop ? "; exit when finished;\n" : ";\n");
        }
        now_ = time;
    }

    // Returns where the last segment ends. Inside the loop the round's
    // times are its first round's: now_ goes back to the round's start.
    quint64 segments(int from, int to, quint64 start, const char* indent, bool inLoop)
    {
        const quint64 roundStart = start;
        for (int i = from; i < to; ++i) {
            const Pattern* p = signal_.wave->patterns.at(i);
            const quint64 duration = quint64(p->duration) * scale_;
            const quint64 middle = start + duration / 2;
            start += duration;
            if (p->duration == 0 || Values::isDontCare(p->value) || middle >= end_ || (!fine_ && p->duration < 2))
                continue;
            waitUntil(middle, indent, inLoop);
            valueBits(p->value, signal_.wave->isBus, signal_.width, true, literal_.data());
            out_ << indent << "expect(\"" << literal_ << "\");\n";
        }
        if (inLoop) {
            waitUntil(start, indent, true);
            now_ = roundStart;
        }
        return start;
    }

    const ExportPlan& plan_;
    const ExportSignal& signal_;
    OutputStream& out_;
    std::string literal_;
    bool fine_ = true;
    quint64 scale_ = 10;
    quint64 end_ = 0;
    quint64 now_ = 0;
};

} // namespace

QSet<QByteArray> testBenchNames(const QByteArray& design)
{
    return vhdlOwnNames()
        + QSet<QByteArray>{design, design + "_tb", "uut", "bench", "check_counts", "passed_checks", "failed_checks", "image_of",
                           "check", "expect", "passed", "failed", "natural", "positive", "integer", "string", "time"};
}

void writeVhdlTestBench(const ExportPlan& plan, OutputStream& out)
{
    const QByteArray& design = plan.design;
    out << "-- VHDL test bench of " << plan.source.toLatin1() << " for the design " << design << "\n-- "
        << timeBaseText(plan) << "\n\nlibrary ieee;\nuse ieee.std_logic_1164.all;\n\nentity " << design
        << "_tb is\nend entity " << design << "_tb;\n\narchitecture bench of " << design << "_tb is\n  component "
        << design << " is\n";
    QByteArray ports;
    QByteArray map;
    std::vector<const ExportSignal*> outputs;
    for (const ExportSignal& signal : plan.signals) {
        const char* mode = portMode(signal.wave->polarity);
        if (!mode)
            continue;
        ports += (ports.isEmpty() ? "    port (\n      " : ";\n      ") + signal.id + " : " + mode + ' '
            + vhdlType(signal);
        map += (map.isEmpty() ? "" : ", ") + signal.id + " => " + signal.id;
        if (signal.wave->polarity == Output)
            outputs.push_back(&signal);
    }
    if (!ports.isEmpty())
        out << ports << "\n    );\n";
    out << "  end component " << design << ";\n\n";
    for (const ExportSignal& signal : plan.signals)
        out << "  signal " << signal.id << " : " << vhdlType(signal) << ";\n";
    out << QByteArray(helpers).replace("%1", QByteArray::number(qint64(outputs.size()) - 1));
    out << "  uut : " << design;
    if (!map.isEmpty())
        out << " port map (" << map << ')';
    out << ";\n";
    for (const ExportSignal& signal : plan.signals) {
        const int kind = signal.wave->polarity;
        if (out.ok() && (kind == Input || kind == Bidir || kind == Global))
            writeVhdlStimulus(plan, signal, out);
    }
    for (size_t i = 0; i < outputs.size(); ++i)
        Checker(plan, *outputs[i], out).write(int(i));
    out << "\n  -- the end: the counts of all checkers\n  process\n    variable passed, failed : natural := 0;\n  begin\n"
        << "    wait for " << vhdlTime(plan.endTime, plan.tickExponent) << ";\n"
        << "    for i in passed_checks'range loop\n      passed := passed + passed_checks(i);\n"
        << "      failed := failed + failed_checks(i);\n    end loop;\n    finished <= true;\n    report \"" << design
        << "_tb: \" & integer'image(passed) & \" checks passed, \" & integer'image(failed) & \" checks failed\";\n"
        << "    wait;\n  end process;\nend architecture bench;\n";
}

} // namespace kesu::toolvok
