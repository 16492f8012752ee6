// Runs the wdl executable as a user would and checks what it prints and how
// it exits.
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "files.h"

namespace {

struct Run {
    bool finished = false;
    int code = -1;   // -1 also when it crashed
    QByteArray out, err;
};

Run wdl(const QStringList& args)
{
    QProcess process;
    process.start(QStringLiteral(VOK_WDL_PATH), args);
    Run run;
    run.finished = process.waitForFinished(60000);
    run.code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace

class TestWdl : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

    QString written(const QString& name, const QByteArray& bytes)
    {
        const QString path = tmp_.filePath(name);
        return testfiles::writeFile(path, bytes) ? path : QString();
    }

private Q_SLOTS:
    void dumpShowsEveryField()
    {
        const Run run = wdl({QStringLiteral("dump"),
                             written(QStringLiteral("small.wdl"),
                                     "%MASTERCLOCKMULT = 3;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 1;\n%DECIMALS = 2;\n"
                                     "%ENDTIME = 5000;\n$p = 1 5 0 2;\n"
                                     "clk { B I Default NRZ 7 2 40 } = 0 10(1 5 0 5)##;\n"
                                     "d[3:0] { H O Default RC 0 1 50 } = A 10 DonTCare 4 HighZ 6;\n")});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        // Counts and flags must come out as integers, never as 5000.0 or 1e3.
        static const QRegularExpression notInteger(QStringLiteral(":\\s*-?[0-9]+[.eE]"));
        QVERIFY2(!notInteger.match(QString::fromUtf8(run.out)).hasMatch(), run.out.constData());
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
             "d[0]"], "visible": true, "foreverIndex": -1, "patterns": [S("A", 10), S("-1", 4), S("-2", 6)]}]})";
        QString json = QString::fromLatin1(expected);
        json.replace(QRegularExpression(QStringLiteral("([SF])\\(\"([^\"]*)\", (\\d+)\\)")),
                     QStringLiteral("{\"value\": \"\\2\", \"duration\": \\3, \"forever\": \\1}"));
        json.replace(QStringLiteral("forever\": S"), QStringLiteral("forever\": false"))
            .replace(QStringLiteral("forever\": F"), QStringLiteral("forever\": true"));
        QCOMPARE(QJsonDocument::fromJson(run.out).object(), QJsonDocument::fromJson(json.toUtf8()).object());
    }

    void formatReproducesExamples_data()
    {
        QTest::addColumn<QString>("path");
        const QDir dir(QStringLiteral(VOK_SOURCE_DIR "/examples"));
        for (const QString& file : dir.entryList({QStringLiteral("*.wdl")}, QDir::Files))
            QTest::newRow(qPrintable(file)) << dir.filePath(file);
    }
    void formatReproducesExamples()
    {
        QFETCH(QString, path);
        const Run run = wdl({QStringLiteral("format"), path});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, testfiles::readFile(path));
    }

    // 1: the file cannot be read, one line on stderr naming it; 2: a usage
    // error, the problem and the usage on stderr.
    void exitCodes_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("out");   // a part of stdout; empty: nothing
        QTest::addColumn<QString>("err");      // a part of stderr
        const QString file = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
        const QString missing = tmp_.filePath(QStringLiteral("no such file.wdl"));
        QTest::newRow("missing file") << QStringList{"dump", missing} << 1 << QByteArray() << missing;
        QTest::newRow("a folder") << QStringList{"format", tmp_.path()} << 1 << QByteArray() << tmp_.path();
        const QString huge = written(QStringLiteral("huge.wdl"), "w { A I Default NRZ 0 1 50 } = 0 1;\n"
                                                                 "v { A I Default NRZ 0 1 50 } = (1 1 0 1)#99999999;\n");
        QTest::newRow("beyond a limit") << QStringList{"format", huge} << 1 << QByteArray()
                                        << "huge.wdl completely: line 2: the file lays down more than 67108864 segments";
        QTest::newRow("no arguments") << QStringList{} << 2 << QByteArray() << "no command";
        QTest::newRow("unknown command") << QStringList{"print", file} << 2 << QByteArray() << "unknown command 'print'";
        QTest::newRow("no file") << QStringList{"dump"} << 2 << QByteArray() << "takes one file";
        QTest::newRow("two files") << QStringList{"format", file, file} << 2 << QByteArray() << "takes one file";
        QTest::newRow("unknown option") << QStringList{"--colour", "dump", file} << 2 << QByteArray() << "colour";
        QTest::newRow("version") << QStringList{"--version"} << 0 << QByteArray("wdl " VOK_VERSION "\n") << "";
        QTest::newRow("help") << QStringList{"--help"} << 0 << QByteArray("Usage: wdl") << "";
    }
    void exitCodes()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QByteArray, out);
        QFETCH(QString, err);
        const Run run = wdl(args);
        QCOMPARE(run.code, code);
        QVERIFY2(out.isEmpty() ? run.out.isEmpty() : run.out.contains(out), run.out.constData());
        QVERIFY2(run.err.contains(err.toUtf8()), run.err.constData());
        if (code == 1)
            QVERIFY2(run.err.startsWith("wdl: ") && run.err.count('\n') == 1 && run.err.endsWith('\n'), run.err.constData());
        if (code == 2)
            QVERIFY2(run.err.startsWith("wdl: ") && run.err.contains("Usage:") && run.err.contains("format FILE"),
                     run.err.constData());
    }
};

QTEST_GUILESS_MAIN(TestWdl)
#include "test_wdl.moc"
