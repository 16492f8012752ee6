// VCD in and WaveJSON out, through `wdl`: simulator dumps, options, faults, WaveDrom (our own VCD: test_export).
#include "datatable.h"
#include "simulation.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QByteArray vcdHead = "$timescale 1 ns $end\n$scope module top $end\n$var wire 1 ! clk $end\n"
                           "$var reg 4 # d [3:0] $end\n$var real 64 % r $end\n$upscope $end\n$enddefinitions $end\n";
const QByteArray vcdBody = "#0\n$dumpvars\n0!\nbxxxx #\nr0.5 %\n$end\n#5\n1!\nb1010 #\n#10\n0!\nb1z1z #\n"
                           "#15\nb1 #\nU!\n#20\nH!\nbzzzz #\n#30\n";

} // namespace

class TestVcdImport : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

    QString file(const QString& name) const { return tmp_.filePath(name); }

private Q_SLOTS:
    // Each simulator's dump, imported and exported again, keeps every change but the real's.
    void simulatorDumpsComeIn_data()
    {
        addColumns<QString, QByteArray>({"simulator", "source"});
        QTest::newRow("iverilog") << "iverilog" << QByteArray(
            "`timescale 1ns/100ps\nmodule top;\n  reg clk = 0;\n  reg [7:0] d;\n  wire [0:3] w;\n  real r = 1.5;\n"
            "  assign w = clk ? 4'b1001 : 4'bzzzz;\n  always #2.5 clk = !clk;\n"
            "  initial begin\n    $dumpfile(\"sim.vcd\");\n    $dumpvars(0, top);\n"
            "    #3.3 d = 8'hA5;\n    #4 d = 8'bxxxxxxxx;\n    #1.1 d = 8'h0F; r = 2.5;\n    #10 $finish;\n  end\nendmodule\n");
        QTest::newRow("ghdl") << "ghdl" << QByteArray(
            "library ieee;\nuse ieee.std_logic_1164.all;\nentity top is\nend entity;\narchitecture sim of top is\n"
            "  signal clk : std_logic := '0';\n  signal d : std_logic_vector(7 downto 0) := (others => '0');\n"
            "  signal r : real := 1.5;\nbegin\n  clk <= not clk after 5 ns when now < 40 ns;\n"
            "  process begin\n    wait for 7 ns; d <= x\"A5\";\n    wait for 8 ns; d <= (others => 'Z');\n"
            "    wait for 2 ns; d <= x\"3C\"; r <= 2.5;\n    wait;\n  end process;\nend architecture;\n");
    }
    void simulatorDumpsComeIn()
    {
        QFETCH(QString, simulator); QFETCH(QByteArray, source);
        const QString dir = file(simulator);
        QVERIFY(QDir().mkpath(dir));
        Run run;
        if (simulator == QLatin1String("iverilog")) {
            QVERIFY(writeFile(dir + "/top.v", source));
            run = runProgram(dir, simulator, {"-o", "sim.vvp", "top.v"});
            QVERIFY2(run.code == 0, run.out.constData());
            run = runProgram(dir, QStringLiteral("vvp"), {"-n", "sim.vvp"});
            QVERIFY2(run.code == 0, run.out.constData());
        } else {
            QVERIFY(writeFile(dir + "/top.vhd", source));
            const QString failed = runGhdl(dir, QStringLiteral("08"), {"top.vhd"}, "top", {"--vcd=sim.vcd"}, run);
            QVERIFY2(failed.isEmpty(), qPrintable(failed));
        }
        run = testprograms::wdl({"import-vcd", "sim.vcd", "-out=sim.wdl"}, dir);
        QVERIFY2(run.code == 0 && run.err == "wdl: sim.vcd: skipped the real variable top.r\n", run.err.constData());
        QCOMPARE(exportFile("-vcd", dir + "/sim.wdl", dir + "/back.vcd"), 0);
        // A change at the last time stamp, where the document ends, lasts no time.
        quint64 end = 0;
        readVcd(readFile(dir + "/sim.vcd"), ~quint64(0), &end);
        Dump simulated = readVcd(readFile(dir + "/sim.vcd"), end);
        QCOMPARE(simulated.remove("r"), 1);
        QCOMPARE(differenceOf(simulated, readVcd(readFile(dir + "/back.vcd"), end)), QString());
    }

    // The time settings and waves a dump and options make, or the one line saying what is wrong.
    void importsExactly_data()
    {
        addColumns<QByteArray, QStringList>({"vcd", "options"});
        QTest::addColumn<QByteArray>("expected");   // from %SMALLESTUNIT on, or stderr of a failure
        const QByteArray dump = vcdHead + vcdBody;
        QTest::newRow("all") << dump << QStringList{} << QByteArray(
            "%SMALLESTUNIT = 9; %AUTOASSIGN = 0; %DECIMALS = 0; %ENDTIME = 30;\n"
            "clk { A I Default NRZ 0 1 50 } = 0 5 1 5 0 5 2 5 1 10;\n"
            "d[3:0] { A I Default NRZ 5 1 50 } = A 5 DonTCare 5 1 5 HighZ 10;\n");
        QTest::newRow("chosen and cropped, 10 ns") << QByteArray(dump).replace("1 ns", "10ns")
            << QStringList{"--signals", "top.d,clk", "--from", "80 ns", "--to", "25"} << QByteArray(
            "%SMALLESTUNIT = 9; %AUTOASSIGN = 0; %DECIMALS = 0; %ENDTIME = 170;\n"
            "clk { A I Default NRZ 0 1 50 } = 1 20 0 50 2 50 1 50;\n"
            "d[3:0] { A I Default NRZ 0 1 50 } = A 20 DonTCare 50 1 50 HighZ 50;\n");
        QTest::newRow("1 fs, one-bit range") << QByteArray("$timescale 1fs $end\n$var reg 1 a v[2] $end\n$enddefinitions $end\n#3\n1a\n#9\n")
            << QStringList{} << QByteArray("%SMALLESTUNIT = 12; %AUTOASSIGN = 0; %DECIMALS = 3; %ENDTIME = 9;\n"
                                           "v[2:2] { A I Default NRZ 3 1 50 } = 1 6;\n");
        QTest::newRow("the real alone") << dump << QStringList{"--signals", "r"}
            << QByteArray("skipped the real variable top.r\nthe dump has no variable of bits to import");
        const std::pair<const char*, QByteArray> faults[] = {
            {"line 7: the file ends before $enddefinitions", vcdHead.left(vcdHead.indexOf("$enddef"))},
            {"line 1: the timescale \"3ns\" is not 1, 10 or 100 of s, ms, us, ns, ps or fs", "$timescale 3 ns $end\n"},
            {"line 2: $var needs a type, a width of at least 1, a code and a name", "\n$var wire 0 ! a $end\n"},
            {"line 1: \"x\" where a declaration was expected", "x"},
            {"line 9: no variable has the code \"?\"", vcdHead + "#0\n1?\n"},
            {"line 10: \"#1a\" is no time stamp", vcdHead + "#0\n1!\n#1a\n"},
            {"line 9: the time goes back from 5 to 4", vcdHead + "#5\n#4\n"},
            {"line 8: \"b102\" is no binary value", vcdHead + "b102 #\n"},
            {"line 8: the value \"b10\" names no variable", vcdHead + "b10\n#3\n"},
            {"line 8: 10101 is no value of the 4-bit d[3:0]", vcdHead + "b10101 #\n"},
            {"line 8: \"$scope\" among the value changes", vcdHead + "$scope module x $end\n"},
            {"line 8: $comment has no $end", vcdHead + "$comment unfinished\n"},
            {"the dump has no variable q", dump + "\n--signals=q,clk"},
            {"1.5ns is no time in whole units of the dump (1 ns)", dump + "\n--from=1.5ns"},
            {"clk keeps one value for 3000000000 time units from 5 on; a segment lasts at most 2147483647",
             vcdHead + "#5\n1!\n#3000000005\n0!\n#3000000009\n"},
        };
        for (const auto& [message, text] : faults) {
            const qsizetype option = text.indexOf("\n--");
            QTest::newRow(message) << (option < 0 ? text : text.left(option)) << (option < 0 ? QStringList{} : QStringList{text.mid(option + 1)})
                                   << QByteArray(message);
        }
    }
    void importsExactly()
    {
        QFETCH(QByteArray, vcd); QFETCH(QStringList, options); QFETCH(QByteArray, expected);
        QVERIFY(writeFile(file("in.vcd"), vcd));
        QFile::remove(file("out.wdl"));
        const Run run = testprograms::wdl(QStringList{"import-vcd", "in.vcd", "-out=out.wdl"} + options, tmp_.path());
        if (expected.startsWith('%')) {
            QVERIFY2(run.code == 0, run.err.constData());
            const QList<QByteArray> lines = readFile(file("out.wdl")).split('\n');
            QCOMPARE(lines.mid(1, 4).join(' ') + '\n' + lines.mid(5).join('\n'), expected);
        } else {
            QCOMPARE(run.code, 1);
            // Notes on what was left out may come first.
            QVERIFY2(run.err.endsWith("wdl: in.vcd: " + expected.replace("\n", "\nwdl: in.vcd: ") + '\n'),
                     run.err.constData());
            QVERIFY(!QFileInfo::exists(file("out.wdl")));
        }
    }

    // Steps of the common divisor: x before the offset, an "=" per bus segment, tails up to the end. The
    // examples as kept in data/. Every lane as long as the others, drawn by WaveDrom where installed.
    void waveJson_data()
    {
        addColumns<QByteArray, QByteArray>({"document", "expected"});
        auto json = [](const char* lane, const char* step) {
            return "{\"signal\": [\n  " + QByteArray(lane) + "\n],\n\"foot\": {\"text\": \"step " + step + "\"}}\n";
        };
        const QByteArray w = " { A I Default NRZ 0 1 50 } =";
        QTest::newRow("offset and z") << QByteArray("%ENDTIME = 20;\na { A I Default NRZ 5 1 50 } = 1 5 3 5 0 5;\n")
                                      << json(R"({"name": "a", "wave": "x1z0"})", "5 ps");
        QTest::newRow("bus") << "%ENDTIME = 40;\nd[7:0]" + w + " 5A 10 5A 10 DonTCare 10;\n"
                             << json(R"({"name": "d[7:0]", "wave": "==x.", "data": ["5A", "5A"]})", "10 ps");
        QTest::newRow("tail, a quote") << "%ENDTIME = 12;\nsay\"c" + w + "(1 2 0 4)##;\n"
                                       << json("{\"name\": \"say\\\"c\", \"wave\": \"10.10.\"}", "2 ps");
        QTest::newRow("tenths of a ns") << "%SMALLESTUNIT = 9;\n%DECIMALS = 1;\n%ENDTIME = 30;\na" + w + " 1 10 0 20;\n"
                                        << json(R"({"name": "a", "wave": "10."})", "1 ns");
        for (const char* name : {"counter", "cpu_bus"})
            QTest::newRow(name) << readFile(exampleFile(name + QStringLiteral(".wdl")))
                                << readFile(QStringLiteral(VOK_SOURCE_DIR "/tests/export/data/") + name + ".json");
    }
    void waveJson()
    {
        QFETCH(QByteArray, document); QFETCH(QByteArray, expected);
        QVERIFY(writeFile(file("doc.wdl"), document));
        const Run run = testprograms::wdl({"export", "wavejson", "doc.wdl", "-out=doc.json"}, tmp_.path());
        QVERIFY2(run.code == 0, run.err.constData());
        QCOMPARE(readFile(file("doc.json")), expected);
        const QJsonArray lanes = QJsonDocument::fromJson(expected).object().value("signal").toArray();
        for (const QJsonValue& lane : lanes) {
            const QString wave = lane["wave"].toString();
            QCOMPARE(wave.size(), lanes[0]["wave"].toString().size());
            QCOMPARE(wave.count(QLatin1Char('=')), lane["data"].toArray().size());
        }
        const Run root = runProgram(tmp_.path(), QStringLiteral("npm"), {"root", "-g"});
        const QString modules = QString::fromLocal8Bit(root.out).trimmed();
        if (root.code != 0 || !QFileInfo::exists(modules + "/wavedrom"))
            QSKIP("the wavedrom package is not installed (npm install -g wavedrom)");
        QVERIFY(writeFile(file("render.js"),
            "const w = require('" + modules.toUtf8() + "/wavedrom');\nconst src = require(process.argv[2]);\n"
            "process.stdout.write(w.onml.stringify(w.renderAny(0, src, w.waveSkin)));\n"));
        const Run drawn = runProgram(tmp_.path(), QStringLiteral("node"), {"render.js", file("doc.json")});
        QVERIFY2(drawn.code == 0 && drawn.out.startsWith("<svg"), drawn.out.left(2000).constData());
        for (const QJsonValue& lane : lanes) {
            const QString name = lane["name"].toString();
            QVERIFY2(drawn.out.contains(">" + name.toHtmlEscaped().toUtf8() + "<"), qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(TestVcdImport)
#include "test_vcdimport.moc"
