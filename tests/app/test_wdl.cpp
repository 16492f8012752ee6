// Runs the wdl executable as a user would and checks what it prints and how
// it exits.
#include "waveformdata.h"
#include "wavewriter.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace kesu::toolvok;

namespace {

struct Run {
    bool finished = false;
    QProcess::ExitStatus status = QProcess::CrashExit;
    int code = -1;
    QByteArray out;
    QByteArray err;
};

Run wdl(const QStringList& args, int timeoutMs = 60000)
{
    QProcess process;
    process.start(QStringLiteral(VOK_WDL_PATH), args);
    Run run;
    run.finished = process.waitForStarted() && process.waitForFinished(timeoutMs);
    if (!run.finished) {
        process.kill();
        process.waitForFinished();
    }
    run.status = process.exitStatus();
    run.code = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}


// Leans on the reader's less obvious rules: repeats, multipliers, reversed
// "$" references, merging, and long lines the writer wraps.
const QByteArray messyDocument =
    "%ENDTIME = 123456789012;\n"
    "%SMALLESTUNIT = 6;\n"
    "$p = 1 5 0 2;\n"
    "a { C B Default R1 3 9 -4 } = 1 3 $p 1 4 2 6 3 1;\n"
    "b { Z X Default ?? 0 1 50 } = (1 5 0 5)#3 (1 2)*4 0 1 0 1;\n"
    "bus[0:7] { D G Default RZ 0 1 50 } = (AA 1 55 1)#20 HighZ 2 HighZ 3(DonTCare 7)##;\n"
    "unknown { A I Default NRZ 0 1 50 } = $missing 1 1;\n";

} // namespace

class TestWdl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dumpShowsEveryField();
    void formatReproducesExamples_data();
    void formatReproducesExamples();
    void formatMatchesInProcessWriter();
    void unreadableInputFailsWithOneLine();
    void usageErrors_data();
    void usageErrors();
    void helpAndVersion_data();
    void helpAndVersion();
    void survivesGarbage();

private:
    QTemporaryDir tmp_;
};

void TestWdl::dumpShowsEveryField()
{
    const QString path = tmp_.filePath(QStringLiteral("small.wdl"));
    writeFile(path,
              "%MASTERCLOCKMULT = 3;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 1;\n%DECIMALS = 2;\n%ENDTIME = 5000;\n"
              "$p = 1 5 0 2;\n"
              "clk { B I Default NRZ 7 2 40 } = 0 10(1 5 0 5)##;\n"
              "d[3:0] { H O Default RC 0 1 50 } = A 10 DonTCare 4 HighZ 6;\n"
              "s { A B Default R1 0 1 50 } = 1 3 $p 1 4 2 6;\n");
    const Run run = wdl({QStringLiteral("dump"), path});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());

    // Counts and flags must come out as integers, never as 5000.0 or 1e3.
    static const QRegularExpression notInteger(QStringLiteral(":\\s*-?[0-9]+[.eE]"));
    QVERIFY2(!notInteger.match(QString::fromUtf8(run.out)).hasMatch(), run.out.constData());
    // The reference expands in reverse order: "0 2" before "1 5".
    const char* expected = R"({"masterClockMult": 3, "smallestUnit": 9, "autoAssign": 1, "decimals": 2, "endTime": 5000,
      "waves": [
        {"name": "$p", "group": 1, "polarity": 5, "spareInt": 0, "waveType": 0, "offset": 0, "formatValue": 1,
         "formatRatio": 50, "isBus": false, "isPattern": true, "busWidth": 1, "elements": [], "visible": true,
         "foreverIndex": -1, "patterns": [S("1", 5), S("0", 2)]},
        {"name": "clk", "group": 2, "polarity": 0, "spareInt": 0, "waveType": 1, "offset": 7, "formatValue": 2,
         "formatRatio": 40, "isBus": false, "isPattern": false, "busWidth": 1, "elements": [], "visible": true,
         "foreverIndex": 1, "patterns": [S("0", 10), F("1", 5), S("0", 5)]},
        {"name": "d[3:0]", "group": 8, "polarity": 1, "spareInt": 0, "waveType": 4, "offset": 0, "formatValue": 1,
         "formatRatio": 50, "isBus": true, "isPattern": false, "busWidth": 4, "elements": ["d[3]", "d[2]", "d[1]",
         "d[0]"], "visible": true, "foreverIndex": -1, "patterns": [S("A", 10), S("-1", 4), S("-2", 6)]},
        {"name": "s", "group": 1, "polarity": 2, "spareInt": 0, "waveType": 3, "offset": 0, "formatValue": 1,
         "formatRatio": 50, "isBus": false, "isPattern": false, "busWidth": 1, "elements": [], "visible": true,
         "foreverIndex": -1, "patterns": [S("1", 3), S("0", 2), S("1", 5), S("1", 4), S("-1", 6)]}]})";
    QString json = QString::fromLatin1(expected);
    json.replace(QRegularExpression(QStringLiteral("([SF])\\(\"([^\"]*)\", (\\d+)\\)")),
                 QStringLiteral("{\"value\": \"\\2\", \"duration\": \\3, \"forever\": \\1}"));
    json.replace(QStringLiteral("forever\": S"), QStringLiteral("forever\": false"))
        .replace(QStringLiteral("forever\": F"), QStringLiteral("forever\": true"));
    QCOMPARE(QJsonDocument::fromJson(run.out).object(), QJsonDocument::fromJson(json.toUtf8()).object());
}

void TestWdl::formatReproducesExamples_data()
{
    QTest::addColumn<QString>("path");
    const QDir dir(QStringLiteral(VOK_SOURCE_DIR "/examples"));
    const QStringList files = dir.entryList({QStringLiteral("*.wdl")}, QDir::Files, QDir::Name);
    QVERIFY2(files.size() >= 2, "the examples are missing");
    for (const QString& file : files)
        QTest::newRow(qPrintable(file)) << dir.filePath(file);
}

void TestWdl::formatReproducesExamples()
{
    QFETCH(QString, path);
    const Run run = wdl({QStringLiteral("format"), path});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, readAll(path));
}

void TestWdl::formatMatchesInProcessWriter()
{
    const QString path = tmp_.filePath(QStringLiteral("messy.wdl"));
    writeFile(path, messyDocument);
    WaveformData document;
    document.loadText(QString::fromUtf8(messyDocument));
    const Run run = wdl({QStringLiteral("format"), path});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, formatWaveform(document));
}

void TestWdl::unreadableInputFailsWithOneLine()
{
    const QString missing = tmp_.filePath(QStringLiteral("no such file.wdl"));
    const QString directory = tmp_.path();
    for (const QString& path : {missing, directory}) {
        for (const char* command : {"dump", "format"}) {
            const Run run = wdl({QLatin1String(command), path});
            QCOMPARE(run.status, QProcess::NormalExit);
            QCOMPARE(run.code, 1);
            QCOMPARE(run.out, QByteArray());
            QVERIFY2(run.err.endsWith('\n') && run.err.count('\n') == 1, run.err.constData());
            QVERIFY2(run.err.contains(path.toUtf8()), run.err.constData());
        }
    }
}

void TestWdl::usageErrors_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("problem");
    const QString file = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
    QTest::newRow("no arguments") << QStringList{} << "no command";
    QTest::newRow("unknown command") << QStringList{"print", file} << "unknown command 'print'";
    QTest::newRow("dump without file") << QStringList{"dump"} << "takes one file";
    QTest::newRow("format with two files") << QStringList{"format", file, file} << "takes one file";
    QTest::newRow("unknown option") << QStringList{"--colour", "dump", file} << "colour";
}

void TestWdl::usageErrors()
{
    QFETCH(QStringList, args);
    QFETCH(QString, problem);
    const Run run = wdl(args);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY2(run.err.startsWith("wdl: "), run.err.constData());
    QVERIFY2(run.err.contains(problem.toUtf8()), run.err.constData());
    QVERIFY2(run.err.contains("Usage:") && run.err.contains("format FILE"), run.err.constData());
}

void TestWdl::helpAndVersion_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("expected");   // the whole output, or a part after "Usage:"
    for (const char* option : {"--help", "-h", "--help-all"})
        QTest::newRow(option) << option << QByteArray("dump FILE");
    for (const char* option : {"--version", "-v"})
        QTest::newRow(option) << option << QByteArray("wdl " VOK_VERSION "\n");
}

void TestWdl::helpAndVersion()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, expected);
    const Run run = wdl({option});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    if (option.contains(QLatin1String("-v")))
        QCOMPARE(run.out, expected);
    else
        QVERIFY2(run.out.contains("Usage:") && run.out.contains(expected) && run.out.contains("format FILE"),
                 run.out.constData());
}

void TestWdl::survivesGarbage()
{
    // Plain random bytes mostly stop at the first empty line, so half the
    // inputs draw from the format's own characters to reach deeper.
    static const QByteArray alphabet = "{}()##**$$==;;[]:,... 0123456789ABFHZ%IOBGTDefaultNRZx-\n \t";
    std::mt19937 random(20240611);
    const qsizetype sizes[] = {1, 100, 4096, 65536, 1 << 20};
    int n = 0;
    for (const bool textual : {false, true}) {
        for (const qsizetype size : sizes) {
            QByteArray bytes(size, Qt::Uninitialized);
            for (char& c : bytes) {
                const unsigned r = random();
                c = textual ? alphabet.at(r % alphabet.size()) : static_cast<char>(r & 0xFF);
            }
            const QString path = tmp_.filePath(QStringLiteral("garbage%1.wdl").arg(n++));
            writeFile(path, bytes);
            for (const char* command : {"dump", "format"}) {
                const Run run = wdl({QLatin1String(command), path}, 60000);
                const QByteArray what = path.toUtf8() + ' ' + command + ": " + run.err.left(2000);
                QVERIFY2(run.finished, what.constData());
                QVERIFY2(run.status == QProcess::NormalExit && run.code == 0, what.constData());
                if (QByteArray(command) == "dump")
                    QVERIFY2(QJsonDocument::fromJson(run.out).object().value("waves").isArray(), what.constData());
                else
                    QVERIFY(run.out.startsWith("%MASTERCLOCKMULT = "));
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestWdl)
#include "test_wdl.moc"
