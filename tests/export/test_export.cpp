// Exports run through the real simulators and imported back; faults are one line, a non-zero status and an untouched output
// file, through `wdl export` and through ExportWaveforms with its arguments in any order.
#include "datatable.h"
#include "exportwaveforms.h"
#include "simulation.h"
#include "timetext.h"
#include "waveformdata.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cstdio>
#include <random>
#include <unistd.h>

namespace {

QByteArray num(quint64 n) { return QByteArray::number(n); }

QByteArray header(int unit, int decimals, quint64 endTime)
{
    return "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = " + num(unit) + ";\n%AUTOASSIGN = 0;\n%DECIMALS = " + num(decimals)
        + ";\n%ENDTIME = " + num(endTime) + ";\n";
}

// Random values of every kind for a wave of width bits (0: a single signal).
struct Values {
    std::mt19937 random;
    int below(int n) { return int(random() % quint32(n)); }
    QByteArray segments(int width, int count)
    {
        QByteArray text;
        for (int i = 0; i < count; ++i)
            text += ' ' + value(width) + ' ' + num(1 + below(40));
        return text;
    }
    QByteArray value(int width)
    {
        const int pick = below(10);
        if (pick < 2)
            return width ? (pick ? "HighZ" : "DonTCare") : (pick ? "3" : "2");
        if (!width)
            return num(pick & 1);
        QByteArray hex;
        for (int bits = width; bits > 0; bits -= 4)
            hex.prepend(QByteArray::number(below(bits >= 4 ? 16 : 1 << bits), 16));
        return below(4) ? hex : "00" + hex;   // leading zeros are allowed
    }
};

// Signals, buses of 1 to 256 bits both ways, element lists, escaped names, offsets, repeats, forever tails.
QByteArray generatedDocument(int unit, int decimals, quint32 seed)
{
    static const std::pair<const char*, int> waves[] = {
        {"s", 0}, {"[one0...one0]", 1}, {"n[3:0]", 4}, {"m[0:12]", 13}, {"w[63:0]", 64}, {"h[0:255]", 256},
        {"e[p,q,r]", 3}, {"module", 0}, {"a.b", 0}, {"signal[5:2]", 4}, {"Clk", 0}};
    Values values{std::mt19937(seed)};
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

const QByteArray kept = "kept as it was\n";

// ExportWaveforms with stderr caught in a file.
Run exportCatching(const QStringList& args, const QString& errPath)
{
    std::vector<QByteArray> bytes;
    std::vector<char*> argv;
    for (const QString& arg : args)
        argv.push_back(bytes.emplace_back(arg.toLocal8Bit()).data());
    std::fflush(stderr);
    const int saved = dup(2);
    FILE* sink = std::fopen(errPath.toLocal8Bit().constData(), "w");
    dup2(fileno(sink), 2);
    const int code = kesu::toolvok::ExportWaveforms(int(argv.size()), argv.data());
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    std::fclose(sink);
    return {code, {}, readFile(errPath)};
}

} // namespace

class TestExport : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;
    const QString usage_ = QString::fromUtf8(testprograms::wdl({QStringLiteral("--help")}).out);

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
        // Several megabytes of dump: words cross the VCD reader's buffer.
        QByteArray wide = "%ENDTIME = 0;\nh[255:0] { A I Default NRZ 0 1 50 } =";
        for (int i = 0; i < 20000; ++i)
            wide += ' ' + QByteArray::number(0x9e3779b97f4a7c15ULL * quint64(i + 1), 16) + ' ' + num(i % 7 + 1);
        QTest::newRow("a long dump") << wide + ";\n";
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
        quint64 end = 0, backEnd = 0;
        const Dump all = readVcd(vcd, ~quint64(0), &end), expected = readVcd(vcd, end);
        // Imported and exported again, the dump keeps every change.
        const Run back = testprograms::wdl({"import-vcd", "doc.vcd", "-out=back.wdl"}, dir);
        QVERIFY2(back.code == 0 && back.out.isEmpty() && back.err.isEmpty(), back.err.constData());
        QCOMPARE(exportFile("-vcd", dir + QStringLiteral("/back.wdl"), dir + QStringLiteral("/back.vcd")), 0);
        QCOMPARE(differenceOf(all, readVcd(readFile(dir + QStringLiteral("/back.vcd")), ~quint64(0), &backEnd)), QString());
        QCOMPARE(backEnd, end);
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
        QVERIFY2(run.code == 0 && run.out.isEmpty(), run.out.constData());
        run = runProgram(dir, QStringLiteral("vvp"), {"-n", "sim.vvp"});
        QVERIFY2(run.code == 0, run.out.constData());
        QCOMPARE(differenceOf(expected, readVcd(readFile(dir + QStringLiteral("/iverilog.vcd")), end)), QString());
        run = runProgram(dir, QStringLiteral("verilator"), {"--lint-only", "--timing", "doc.verilog"});
        QVERIFY2(run.code == 0, run.out.constData());

        for (const QString& std : {QStringLiteral("93c"), QStringLiteral("08")}) {
            const QString failed = runGhdl(dir, std, {"doc.vhdl93"}, "doc", {"--vcd=ghdl" + std + ".vcd"}, run);
            QVERIFY2(failed.isEmpty(), qPrintable(failed));
            // The loops stop with the signal finished, at the end time.
            quint64 last = 0;
            Dump simulated = readVcd(readFile(dir + "/ghdl" + std + ".vcd"), end, &last);
            QVERIFY2(simulated.remove("finished") == 1 && last <= end, qPrintable(QString::number(last)));
            const QString difference = differenceOf(expected, simulated);
            QVERIFY2(difference.isEmpty(), qPrintable("ghdl --std=" + std + ": " + difference));
        }
    }

    // Outputs drawn as copies of the inputs: a copying design passes, one inverting r fails r's checks only.
    void testBenchChecksTheDesign_data()
    {
        addColumns<QString, int, int, QByteArray>({"std", "unit", "decimals", "rIs"});
        QTest::newRow("copy, VHDL-93, half ticks") << "93c" << 9 << 1 << QByteArray("s");
        QTest::newRow("copy, VHDL-2008, 1 fs ticks") << "08" << 12 << 3 << QByteArray("s");
        QTest::newRow("inverted, VHDL-93") << "93c" << 6 << 0 << QByteArray("not s");
    }
    void testBenchChecksTheDesign()
    {
        QFETCH(QString, std); QFETCH(int, unit); QFETCH(int, decimals); QFETCH(QByteArray, rIs);
        const QString dir = tmp_.filePath(QStringLiteral("tb%1").arg(QTest::currentDataTag()[0] == 'c' ? unit : 0));
        QVERIFY(QDir().mkpath(dir));
        Values values{std::mt19937(7)};
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
            QRegularExpression(QStringLiteral("dut_tb: (\\d+) checks passed, (\\d+) checks failed")).match(QString::fromLatin1(run.out));
        QVERIFY2(counts.hasMatch() && counts.captured(1).toInt() > 8, run.out.constData());
        const int failed = counts.captured(2).toInt();
        const QStringList errors = QString::fromLatin1(run.out).split(QLatin1Char('\n')).filter(QStringLiteral("(report error)"));
        QCOMPARE(errors.size(), failed);
        QCOMPARE(failed > 0, rIs != "s");
        for (const QString& error : errors)
            QVERIFY2(error.contains(QLatin1String("): r at ")) && error.contains(QLatin1String(": expected "))
                         && error.contains(QLatin1String(", got ")), qPrintable(error));
    }

    void errors_data()
    {
        // args: wdl export's, or ExportWaveforms' in the "dialog" rows; message: stderr's line ("export: " before it
        // on 1), a part of stdout on 0; "@": the folder
        addColumns<QStringList, int, QString>({"args", "code", "message"});
        const QString good = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
        QTest::newRow("tf") << QStringList{"tf", good, "-out=@/out"} << 0 << "";
        QTest::newRow("-vcd") << QStringList{"-vcd", good, "-out=@/out"} << 0 << "";
        QTest::newRow("list") << QStringList{"--list"} << 0 << "tb\t-vhdl94\tVHDL test bench\n";
        QTest::newRow("unknown type") << QStringList{"sv", good, "-out=@/out"} << 2
                                      << "wdl: unknown export type 'sv' (wdl export --list)";
        QTest::newRow("no output") << QStringList{"vht", good} << 2 << "wdl: 'export' takes a type, a file and -out=OUTPUT";
        QTest::newRow("output without -out=") << QStringList{"tf", good, "@/out"} << 1 << "unexpected argument \"@/out\"";
        QTest::newRow("-out= alone") << QStringList{"tf", good, "-out="} << 1 << "-out= names no file";
        QTest::newRow("missing input") << QStringList{"tf", "@/none.wdl", "-out=@/out"} << 1
                                       << "cannot read @/none.wdl: No such file or directory";
        QTest::newRow("input is a folder") << QStringList{"tb", "@", "-out=@/out"} << 1 << "cannot read @: it is a folder";
        QTest::newRow("no such output folder") << QStringList{"tf", good, "-out=@/none/out"} << 1
                                               << "cannot write @/none/out: No such file or directory";
        QTest::newRow("output is a folder") << QStringList{"vcd", good, "-out=@"} << 1
                                            << "cannot write @: Filename refers to a directory";
        // Documents the exports refuse: the row's name, export type, waves (after %SMALLESTUNIT = 9 and
        // %ENDTIME = 100) and the problem.
        const std::array<const char*, 4> refused[] = {
            {"VHDL ignores case", "vht", "clk { A I Default NRZ 0 1 50 } = 1 5;\nCLK { A I Default NRZ 0 1 50 } = 0 5;\n",
             "waves \"clk\" and \"CLK\" would both be CLK in VHDL"},
            {"a bus and a signal", "tf", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5;\nd { A I Default NRZ 0 1 50 } = 0 5;\n",
             "waves \"d[3:0]\" and \"d\" would both be d in Verilog"},
            {"the bench's own names", "tb", "UUT { A I Default NRZ 0 1 50 } = 1 5;\n",
             "wave \"UUT\" would be UUT, a name the export declares itself"},
            {"no hex value", "tf", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5 1F 5;\n",
             "wave \"d[3:0]\" has the value \"1F\" at 5, which is no 4-bit value"},
            {"tick below 1 fs", "vcd", "%SMALLESTUNIT = 12;\n%DECIMALS = 4;\n",
             "the tick (smallest unit 12, 4 decimals) is not between 1 fs and 1 s"},
            {"beyond VHDL's time", "vht", "%SMALLESTUNIT = 3;\n%ENDTIME = 10000000000;\n",
             "the end time, 10000000000 ticks, is beyond the time range of VHDL"},
            {"negative bit", "tb", "n[-1:2] { A I Default NRZ 0 1 50 } = 1 5;\n",
             "wave \"n[-1:2]\" has a negative bit number, which a std_logic_vector cannot have"},
        };
        for (const auto& [row, type, waves, problem] : refused) {
            const QString doc = tmp_.filePath(QString::fromLatin1(row).replace(QRegularExpression("\\W"), "_") + ".wdl");
            QVERIFY(writeFile(doc, QByteArray("%SMALLESTUNIT = 9;\n%ENDTIME = 100;\n") + waves));
            QTest::newRow(row) << QStringList{type, doc, "-out=@/out"} << 1 << doc + ": " + problem;
        }
        const QString melted = tmp_.filePath(QStringLiteral("melted.wdl"));
        QVERIFY(writeFile(melted, "%ENDTIME = 10;\na { A I Default NRZ 0 1 50 } = 1 2000000000 1 2000000000;\n"));
        QTest::newRow("read only in part") << QStringList{"tf", melted, "-out=@/out"} << 1 << "cannot read " + melted
            + " completely: line 2: equal segments here melt into one longer than 2147483647 time units";
        // The dialog hands over the option names themselves.
        QTest::newRow("dialog: no arguments") << QStringList{} << 1
                                              << "no export type given (-verilog, -vhdl93, -vhdl94, -vcd or -wavejson)";
        QTest::newRow("dialog: two types") << QStringList{"-vhdl93", "-vcd", good, "-out=@/out"} << 1
                                   << "two export types given: -vhdl93 and -vcd";
        QTest::newRow("dialog: unknown option") << QStringList{"-verilog", "-o", good, "-out=@/out"} << 1 << "unknown option -o";
        QTest::newRow("dialog: no input") << QStringList{"-out=@/out", "-vhdl94"} << 1 << "no input file given";
        QTest::newRow("dialog: no output file") << QStringList{"-vhdl94", good} << 1 << "no output file given (-out=FILE)";
        QTest::newRow("dialog: output first") << QStringList{"-out=@/out", good, "-verilog"} << 0 << "";
    }
    void errors()
    {
        QFETCH(QStringList, args); QFETCH(int, code); QFETCH(QString, message);
        args.replaceInStrings(QStringLiteral("@"), tmp_.path());
        message.replace(QStringLiteral("@"), tmp_.path());
        const QString out = args.filter(QStringLiteral("-out=")).value(0).mid(5);
        QVERIFY(writeFile(tmp_.filePath(QStringLiteral("out")), kept));
        const Run run = QByteArray(QTest::currentDataTag()).startsWith("dialog")
            ? exportCatching(args, tmp_.filePath(QStringLiteral("stderr"))) : testprograms::wdl(QStringList{"export"} + args);
        QCOMPARE(run.code, code);
        if (code == 0)
            QVERIFY2(run.out.contains(message.toLocal8Bit()) && run.err.isEmpty(), run.err.constData());
        else   // one line; for a wrong command line the usage follows
            QCOMPARE(QString::fromLocal8Bit(run.err), (code == 1 ? "export: " : "") + message + '\n' + (code == 2 ? usage_ : QString()));
        if (code == 0 && !out.isEmpty())
            QVERIFY(readFile(out).startsWith(args.contains("-vcd") ? "$comment" : "// Verilog test vectors of counter.wdl"));
        else if (QFileInfo(out).isFile())
            QCOMPARE(readFile(out), kept);
    }
};

QTEST_GUILESS_MAIN(TestExport)
#include "test_export.moc"
