// What goes wrong is said in one line, with a non-zero status, and an
// existing output file is left as it was: through ExportWaveforms as the
// Export dialog calls it and through `wdl export`.
#include "exportwaveforms.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <unistd.h>

namespace {

const char* const kept = "kept as it was\n";

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

// Runs ExportWaveforms with stderr caught in a file.
int exportCatching(QStringList args, QByteArray& err, const QString& errPath)
{
    std::vector<QByteArray> bytes;
    std::vector<char*> argv;
    for (const QString& arg : args)
        bytes.push_back(arg.toLocal8Bit());
    for (QByteArray& b : bytes)
        argv.push_back(b.data());
    std::fflush(stderr);
    const int saved = dup(2);
    FILE* sink = std::fopen(errPath.toLocal8Bit().constData(), "w");
    dup2(fileno(sink), 2);
    const int code = kesu::toolvok::ExportWaveforms(int(argv.size()), argv.data());
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    std::fclose(sink);
    err = readAll(errPath);
    return code;
}

} // namespace

class TestExportErrors : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;
    QString path(const char* name) const { return tmp_.filePath(QLatin1String(name)); }

    void cases()
    {
        QTest::addColumn<QStringList>("args");   // the wdl export arguments; "@" stands for the folder
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");    // a part of stderr; of stdout when code is 0
        const QString good = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
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
        const QString doc = QStringLiteral("@/%1.wdl");
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
    }

    void check(int code, int expectedCode, const QByteArray& err, const QString& message, const QStringList& args)
    {
        QCOMPARE(code, expectedCode);
        const QStringList outs = args.filter(QStringLiteral("-out="));
        const QString out = outs.isEmpty() ? QString() : outs.first().mid(5);
        if (code == 1) {
            QVERIFY2(err.startsWith("export: ") && err.count('\n') == 1 && err.contains(message.toLocal8Bit()), err.constData());
            if (QFileInfo(out).isFile())
                QCOMPARE(readAll(out), QByteArray(kept));
        } else if (code == 0 && !out.isEmpty()) {
            const bool verilog = args.first() == "tf" || args.first() == "-verilog";
            QVERIFY(readAll(out).startsWith(verilog ? "// Verilog test vectors of counter.wdl" : "$comment"));
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        const char* const head = "%SMALLESTUNIT = 9;\n%ENDTIME = 100;\n";
        const std::pair<const char*, QByteArray> docs[] = {
            {"case", "clk { A I Default NRZ 0 1 50 } = 1 5;\nCLK { A I Default NRZ 0 1 50 } = 0 5;\n"},
            {"bus", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5;\nd { A I Default NRZ 0 1 50 } = 0 5;\n"},
            {"uut", "UUT { A I Default NRZ 0 1 50 } = 1 5;\n"},
            {"value", "d[3:0] { A I Default NRZ 0 1 50 } = 1 5 1F 5;\n"},
            {"tick", "%SMALLESTUNIT = 12;\n%DECIMALS = 4;\n"},
            {"long", "%SMALLESTUNIT = 3;\n%ENDTIME = 10000000000;\n"},
            {"negative", "n[-1:2] { A I Default NRZ 0 1 50 } = 1 5;\n"},
        };
        for (const auto& [name, text] : docs) {
            QFile file(tmp_.filePath(QLatin1String(name) + QStringLiteral(".wdl")));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(head + text) > 0);
        }
    }
    void init()
    {
        QFile file(path("out"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(kept) > 0);
    }

    void wdlExport_data() { cases(); }
    void wdlExport()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        args.replaceInStrings(QStringLiteral("@"), tmp_.path());
        message.replace(QStringLiteral("@"), tmp_.path());
        QProcess wdl;
        wdl.start(QStringLiteral(VOK_WDL_PATH), QStringList{"export"} + args);
        QVERIFY(wdl.waitForFinished(60000));
        const QByteArray out = wdl.readAllStandardOutput();
        const QByteArray err = wdl.readAllStandardError();
        if (code == 2)
            QVERIFY2(err.contains(message.toLocal8Bit()) && err.contains("export TYPE FILE -out=OUTPUT"), err.constData());
        else if (code == 0)
            QVERIFY2(out.contains(message.toLocal8Bit()) && err.isEmpty(), err.constData());
        check(wdl.exitCode(), code, err, message, args);
    }

    // The dialog hands over the option names themselves, in any order.
    void exportWaveforms_data()
    {
        cases();
        QTest::newRow("no arguments") << QStringList{} << 1 << "no export type given";
        QTest::newRow("two types") << QStringList{"-vhdl93", "-vcd", "@/case.wdl", "-out=@/out"} << 1
                                   << "two export types given: -vhdl93 and -vcd";
        QTest::newRow("unknown option") << QStringList{"-verilog", "-o", "@/case.wdl", "-out=@/out"} << 1 << "unknown option -o";
        QTest::newRow("no input") << QStringList{"-out=@/out", "-vhdl94"} << 1 << "no input file given";
        QTest::newRow("no output") << QStringList{"-vhdl94", "@/case.wdl"} << 1 << "no output file given (-out=FILE)";
        QTest::newRow("output first") << QStringList{"-out=@/out", "@/case.wdl", "-vcd"} << 0 << "";
    }
    void exportWaveforms()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        if (code == 2 || args.value(0) == "--list")
            QSKIP("wdl's own usage");
        static const QMap<QString, QString> options{{"tf", "-verilog"}, {"vht", "-vhdl93"}, {"tb", "-vhdl94"}, {"vcd", "-vcd"}};
        if (options.contains(args.value(0)))
            args[0] = options.value(args.value(0));
        args.replaceInStrings(QStringLiteral("@"), tmp_.path());
        message.replace(QStringLiteral("@"), tmp_.path());
        QByteArray err;
        const int result = exportCatching(args, err, path("stderr"));
        check(result, code, err, message, args);
    }
};

QTEST_GUILESS_MAIN(TestExportErrors)
#include "test_exporterrors.moc"
