// Every export goes through the real simulators: the Verilog and VHDL test
// vectors must compile without a warning and drive exactly the waves of the
// document's own VCD; the test bench must pass a design that copies its
// inputs to its outputs and catch one that inverts an output.
#include "simulation.h"
#include "timetext.h"
#include "waveformdata.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <random>

namespace {

QByteArray num(quint64 n) { return QByteArray::number(n); }

QByteArray header(int unit, int decimals, quint64 endTime)
{
    return "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = " + num(unit) + ";\n%AUTOASSIGN = 0;\n%DECIMALS = " + num(decimals)
        + ";\n%ENDTIME = " + num(endTime) + ";\n";
}

// Random values of every kind for a wave of width bits (0: a single signal).
class Values
{
public:
    explicit Values(quint32 seed) : random_(seed) {}
    int below(int n) { return int(random_() % quint32(n)); }
    QByteArray value(int width)
    {
        const int pick = below(10);
        if (pick == 0)
            return width ? "DonTCare" : "2";
        if (pick == 1)
            return width ? "HighZ" : "3";
        if (!width)
            return num(pick & 1);
        QByteArray hex;
        for (int bits = width; bits > 0; bits -= 4)
            hex.prepend(QByteArray::number(below(bits >= 4 ? 16 : 1 << bits), 16));
        return below(4) ? hex : "00" + hex;   // leading zeros are allowed
    }
    QByteArray segments(int width, int count)
    {
        QByteArray text;
        for (int i = 0; i < count; ++i)
            text += ' ' + value(width) + ' ' + num(1 + below(40));
        return text;
    }

private:
    std::mt19937 random_;
};

// Signals, buses of 1 to 256 bits in both directions, an element list,
// names that need escaping, offsets, repeats and forever tails.
QByteArray generatedDocument(int unit, int decimals, quint32 seed)
{
    static const std::pair<const char*, int> waves[] = {
        {"s", 0}, {"[one0...one0]", 1}, {"n[3:0]", 4}, {"m[0:12]", 13}, {"w[63:0]", 64}, {"h[0:255]", 256},
        {"e[p,q,r]", 3}, {"module", 0}, {"a.b", 0}, {"signal[5:2]", 4}, {"Clk", 0}};
    Values values(seed);
    QByteArray doc = header(unit, decimals, seed % 2 ? 1500 : 10);
    doc += "$pat = 1 3 0 4;\n";
    int index = 0;
    for (const auto& [name, width] : waves) {
        const int offset = values.below(3) ? values.below(60) : 0;
        doc += name + QByteArray(" { A ") + "IOBTG"[values.below(5)] + " Default NRZ " + num(offset) + " 1 50 } ="
            + values.segments(width, 1 + values.below(5));
        doc += " (" + values.segments(width, 2).mid(1) + ")#3" + values.segments(width, 2);
        if (index % 3 == 0)
            doc += " (" + values.segments(width, 1 + values.below(3)).mid(1) + ")##";
        doc += width == 0 && index == 0 ? " $pat;\n" : ";\n";
        ++index;
    }
    return doc;
}

} // namespace

class TestExportSim : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

private Q_SLOTS:
    void vectorsSimulateAsDrawn_data()
    {
        QTest::addColumn<QByteArray>("document");
        const QDir examples(QStringLiteral(VOK_SOURCE_DIR "/examples"));
        for (const QString& file : examples.entryList({QStringLiteral("*.wdl")}, QDir::Files))
            QTest::newRow(qPrintable(file)) << readFile(examples.filePath(file));
        quint32 seed = 1;
        for (const int unit : {3, 6, 9, 12}) {
            for (int decimals = 0; decimals <= 3; ++decimals, ++seed)
                QTest::addRow("unit %d, %d decimals", unit, decimals) << generatedDocument(unit, decimals, seed);
        }
        // Delays beyond 32 bits; without forever tails, which would repeat all the way.
        QTest::newRow("late") << header(12, 0, 10) + "late { A I Default NRZ 3000000000 1 50 } = 1 5 0 7;\n"
                                 "bus[7:0] { A O Default NRZ 4294967296 1 50 } = 5A 2147483647 HighZ 9;\n";
    }
    void vectorsSimulateAsDrawn()
    {
        QFETCH(QByteArray, document);
        const QString dir = tmp_.filePath(QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('_')));
        QVERIFY(QDir().mkpath(dir));
        const QString input = dir + QStringLiteral("/doc.wdl");
        QVERIFY(writeFile(input, document));
        for (const char* type : {"-vcd", "-verilog", "-vhdl93"})
            QCOMPARE(exportFile(type, input, dir + QStringLiteral("/doc.") + QLatin1String(type + 1)), 0);

        const QByteArray vcd = readFile(dir + QStringLiteral("/doc.vcd"));
        quint64 end = 0;
        readVcd(vcd, ~quint64(0), &end);
        const Dump expected = readVcd(vcd, end);
        // The simulation ends where the model says the document ends.
        kesu::toolvok::WaveformData model;
        model.loadText(QString::fromUtf8(document));
        quint64 tick = 1;
        for (int e = model.smallestUnit + model.decimals; e < 15; ++e)
            tick *= 10;
        QCOMPARE(end, qMax(model.endTime, kesu::toolvok::TimeText::maxEnd(model)) * tick);
        const QByteArray tf = readFile(dir + QStringLiteral("/doc.verilog"));
        const QByteArray timescale = tf.mid(tf.indexOf("`timescale"), tf.indexOf('\n', tf.indexOf("`timescale")) - tf.indexOf("`timescale"));
        QVERIFY(tf.startsWith("// Verilog test vectors of doc.wdl\n// tick "));
        QVERIFY(writeFile(dir + QStringLiteral("/dump.v"),
                          timescale + "\nmodule dump;\n  initial begin\n    $dumpfile(\"iverilog.vcd\");\n"
                                      "    $dumpvars(0, doc);\n  end\nendmodule\n"));

        Run run = runProgram(dir, QStringLiteral("iverilog"), {"-g2005", "-Wall", "-o", "sim.vvp", "doc.verilog", "dump.v"});
        QVERIFY2(run.code == 0 && run.output.isEmpty(), run.output.constData());
        run = runProgram(dir, QStringLiteral("vvp"), {"-n", "sim.vvp"});
        QVERIFY2(run.code == 0, run.output.constData());
        QString difference = differenceOf(expected, readVcd(readFile(dir + QStringLiteral("/iverilog.vcd")), end));
        QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("iverilog: ") + difference));
        run = runProgram(dir, QStringLiteral("verilator"), {"--lint-only", "--timing", "doc.verilog"});
        QVERIFY2(run.code == 0, run.output.constData());

        for (const QString& std : {QStringLiteral("93c"), QStringLiteral("08")}) {
            const QString failed = runGhdl(dir, std, {"doc.vhdl93"}, "doc", {"--vcd=ghdl" + std + ".vcd"}, run);
            QVERIFY2(failed.isEmpty(), qPrintable(failed));
            // The loops stop with the signal finished, at the end time.
            quint64 last = 0;
            Dump simulated = readVcd(readFile(dir + "/ghdl" + std + ".vcd"), end, &last);
            QVERIFY2(simulated.remove("finished") == 1 && last <= end, qPrintable(QString::number(last)));
            difference = differenceOf(expected, simulated);
            QVERIFY2(difference.isEmpty(), qPrintable("ghdl --std=" + std + ": " + difference));
        }
    }

    // The test bench of a document whose Output waves are drawn as copies of
    // its Input waves, run against a design that copies them (no check may
    // fail) or that inverts r (the checks of r, and only those, fail).
    void testBenchChecksTheDesign_data()
    {
        QTest::addColumn<QString>("std");
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QByteArray>("rIs");
        QTest::newRow("copy, VHDL-93, half ticks") << "93c" << 9 << 1 << QByteArray("s");
        QTest::newRow("copy, VHDL-2008, 1 fs ticks") << "08" << 12 << 3 << QByteArray("s");
        QTest::newRow("inverted, VHDL-93") << "93c" << 6 << 0 << QByteArray("not s");
    }
    void testBenchChecksTheDesign()
    {
        QFETCH(QString, std);
        QFETCH(int, unit);
        QFETCH(int, decimals);
        QFETCH(QByteArray, rIs);
        const QString dir = tmp_.filePath(QStringLiteral("tb%1").arg(QTest::currentDataTag()[0] == 'c' ? unit : 0));
        QVERIFY(QDir().mkpath(dir));
        Values values(7);
        const QByteArray bus = values.segments(8, 12);
        const QByteArray bit = values.segments(0, 5) + " 2 6 (1 7 0 9 3 5)##";
        QVERIFY(writeFile(dir + QStringLiteral("/dut.wdl"), header(unit, decimals, 700)
            + "d[7:0] { A I Default NRZ 3 1 50 } =" + bus + ";\nq[7:0] { A O Default NRZ 3 1 50 } =" + bus
            + ";\ns { A I Default NRZ 0 1 50 } =" + bit + ";\nr { A O Default NRZ 0 1 50 } =" + bit
            + ";\nio[0:3] { A B Default NRZ 0 1 50 } = HighZ 10 5 11 HighZ 30;\n"
              "g { A G Default NRZ 0 1 50 } = 1 20 0 21;\ntp { A T Default NRZ 0 1 50 } = 1 5;\n"));
        QVERIFY(writeFile(dir + QStringLiteral("/dut.vhd"),
            "library ieee;\nuse ieee.std_logic_1164.all;\nentity dut is\n  port (d : in std_logic_vector(7 downto 0);"
            " q : out std_logic_vector(7 downto 0); s : in std_logic; r : out std_logic;"
            " io : inout std_logic_vector(0 to 3); g : in std_logic);\nend entity dut;\n"
            "architecture copy of dut is\nbegin\n  q <= d;\n  r <= " + rIs + ";\n  io <= (others => 'Z');\nend architecture copy;\n"));
        QCOMPARE(exportFile("-vhdl94", dir + QStringLiteral("/dut.wdl"), dir + QStringLiteral("/dut_tb.vhd")), 0);

        Run run;
        const QString problem = runGhdl(dir, std, {"dut.vhd", "dut_tb.vhd"}, "dut_tb", {}, run);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
        const QRegularExpressionMatch counts =
            QRegularExpression(QStringLiteral("dut_tb: (\\d+) checks passed, (\\d+) checks failed")).match(QString::fromLatin1(run.output));
        QVERIFY2(counts.hasMatch(), run.output.constData());
        const int failed = counts.captured(2).toInt();
        QVERIFY2(counts.captured(1).toInt() > 8, run.output.constData());
        const QStringList errors = QString::fromLatin1(run.output).split(QLatin1Char('\n')).filter(QStringLiteral("(report error)"));
        QCOMPARE(errors.size(), failed);
        QCOMPARE(failed > 0, rIs != "s");
        for (const QString& error : errors)
            QVERIFY2(error.contains(QLatin1String("): r at ")) && error.contains(QLatin1String(": expected "))
                         && error.contains(QLatin1String(", got ")), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestExportSim)
#include "test_exportsim.moc"
