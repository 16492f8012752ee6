// What goes wrong is said in one line, with a non-zero status, and an
// existing output file is left as it was: through `wdl export`, which hands
// its arguments to ExportWaveforms, and through ExportWaveforms itself with
// the arguments in any order.
#include "exportwaveforms.h"
#include "simulation.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <unistd.h>

namespace {

const QByteArray kept = "kept as it was\n";

// ExportWaveforms with stderr caught in a file.
int exportCatching(const QStringList& args, const QString& errPath, QByteArray& err)
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
    err = readFile(errPath);
    return code;
}

} // namespace

class TestExportErrors : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

private Q_SLOTS:
    void initTestCase()
    {
        const QByteArray head = "%SMALLESTUNIT = 9;\n%ENDTIME = 100;\n";
        const std::pair<const char*, QByteArray> docs[] = {
            {"case", "clk { A I Default NRZ 0 1 50 } = 1 5;\nCLK { A I Default NRZ 0 1 50 } = 0 5;\n"},
            {"bus", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5;\nd { A I Default NRZ 0 1 50 } = 0 5;\n"},
            {"uut", "UUT { A I Default NRZ 0 1 50 } = 1 5;\n"},
            {"value", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5 1F 5;\n"},
            {"tick", "%SMALLESTUNIT = 12;\n%DECIMALS = 4;\n"},
            {"long", "%SMALLESTUNIT = 3;\n%ENDTIME = 10000000000;\n"},
            {"negative", "n[-1:2] { A I Default NRZ 0 1 50 } = 1 5;\n"},
        };
        for (const auto& [name, text] : docs)
            QVERIFY(writeFile(tmp_.filePath(QLatin1String(name) + QStringLiteral(".wdl")), head + text));
    }

    void errors_data()
    {
        QTest::addColumn<QStringList>("args");   // wdl export's, or ExportWaveforms' in the "dialog" rows
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");    // a part of stderr, of stdout when code is 0; "@" is the folder
        const QString good = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
        const QString doc = QStringLiteral("@/%1.wdl");
        QTest::newRow("tf") << QStringList{"tf", good, "-out=@/out"} << 0 << "";
        QTest::newRow("-vcd") << QStringList{"-vcd", good, "-out=@/out"} << 0 << "";
        QTest::newRow("list") << QStringList{"--list"} << 0 << "tb\t-vhdl94\tVHDL test bench\n";
        QTest::newRow("unknown type") << QStringList{"sv", good, "-out=@/out"} << 2 << "unknown export type 'sv'";
        QTest::newRow("no output") << QStringList{"vht", good} << 2 << "takes a type, a file and -out=OUTPUT";
        QTest::newRow("output without -out=") << QStringList{"tf", good, "@/out"} << 1 << "unexpected argument \"@/out\"";
        QTest::newRow("-out= alone") << QStringList{"tf", good, "-out="} << 1 << "-out= names no file";
        QTest::newRow("missing input") << QStringList{"tf", "@/none.wdl", "-out=@/out"} << 1 << "cannot read @/none.wdl";
        QTest::newRow("input is a folder") << QStringList{"tb", "@", "-out=@/out"} << 1 << "cannot read @: it is a folder";
        QTest::newRow("no such output folder") << QStringList{"tf", good, "-out=@/none/out"} << 1 << "cannot write @/none/out";
        QTest::newRow("output is a folder") << QStringList{"vcd", good, "-out=@"} << 1 << "cannot write @";
        QTest::newRow("VHDL ignores case") << QStringList{"vht", doc.arg("case"), "-out=@/out"} << 1
                                           << "waves \"clk\" and \"CLK\" would both be CLK in VHDL";
        QTest::newRow("a bus and a signal") << QStringList{"tf", doc.arg("bus"), "-out=@/out"} << 1
                                            << "waves \"d[3:0]\" and \"d\" would both be d in Verilog";
        QTest::newRow("the bench's own names") << QStringList{"tb", doc.arg("uut"), "-out=@/out"} << 1
                                               << "wave \"UUT\" would be UUT, a name the export declares itself";
        QTest::newRow("no hex value") << QStringList{"tf", doc.arg("value"), "-out=@/out"} << 1
                                      << "wave \"d[3:0]\" has the value \"1F\" at 5, which is no 4-bit value";
        QTest::newRow("tick below 1 fs") << QStringList{"vcd", doc.arg("tick"), "-out=@/out"} << 1
                                         << "the tick (smallest unit 12, 4 decimals) is not between 1 fs and 1 s";
        QTest::newRow("beyond VHDL's time") << QStringList{"vht", doc.arg("long"), "-out=@/out"} << 1
                                            << "the end time, 10000000000 ticks, is beyond the time range of VHDL";
        QTest::newRow("negative bit") << QStringList{"tb", doc.arg("negative"), "-out=@/out"} << 1
                                      << "wave \"n[-1:2]\" has a negative bit number";
        // The dialog hands over the option names themselves.
        QTest::newRow("dialog: no arguments") << QStringList{} << 1 << "no export type given";
        QTest::newRow("dialog: two types") << QStringList{"-vhdl93", "-vcd", good, "-out=@/out"} << 1
                                   << "two export types given: -vhdl93 and -vcd";
        QTest::newRow("dialog: unknown option") << QStringList{"-verilog", "-o", good, "-out=@/out"} << 1 << "unknown option -o";
        QTest::newRow("dialog: no input") << QStringList{"-out=@/out", "-vhdl94"} << 1 << "no input file given";
        QTest::newRow("dialog: no output file") << QStringList{"-vhdl94", good} << 1 << "no output file given (-out=FILE)";
        QTest::newRow("dialog: output first") << QStringList{"-out=@/out", good, "-verilog"} << 0 << "";
    }
    void errors()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        args.replaceInStrings(QStringLiteral("@"), tmp_.path());
        message.replace(QStringLiteral("@"), tmp_.path());
        const QString out = args.filter(QStringLiteral("-out=")).value(0).mid(5);
        QVERIFY(writeFile(tmp_.filePath(QStringLiteral("out")), kept));
        QByteArray stdOut, err;
        int result = 0;
        if (QByteArray(QTest::currentDataTag()).startsWith("dialog")) {
            result = exportCatching(args, tmp_.filePath(QStringLiteral("stderr")), err);
        } else {
            QProcess wdl;
            wdl.start(QStringLiteral(VOK_WDL_PATH), QStringList{"export"} + args);
            QVERIFY(wdl.waitForFinished(60000));
            result = wdl.exitCode();
            stdOut = wdl.readAllStandardOutput();
            err = wdl.readAllStandardError();
        }
        QCOMPARE(result, code);
        if (code == 2)
            QVERIFY2(err.contains(message.toLocal8Bit()) && err.contains("export TYPE FILE -out=OUTPUT"), err.constData());
        if (code == 1)
            QVERIFY2(err.startsWith("export: ") && err.count('\n') == 1 && err.contains(message.toLocal8Bit()), err.constData());
        if (code == 0)
            QVERIFY2(stdOut.contains(message.toLocal8Bit()) && err.isEmpty(), err.constData());
        if (code == 0 && !out.isEmpty())
            QVERIFY(readFile(out).startsWith(args.contains("-vcd") ? "$comment" : "// Verilog test vectors of counter.wdl"));
        else if (QFileInfo(out).isFile())
            QCOMPARE(readFile(out), kept);
    }
};

QTEST_GUILESS_MAIN(TestExportErrors)
#include "test_exporterrors.moc"
