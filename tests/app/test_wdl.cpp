// Runs the wdl executable as a user would and checks what it prints and how
// it exits.
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "datatable.h"
#include "files.h"
#include "programs.h"

using testprograms::wdl;

class TestWdl : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;
    const QString usage_ = QString::fromUtf8(wdl({QStringLiteral("--help")}).out);

    QString written(const QString& name, const QByteArray& bytes) { return testfiles::writtenFile(tmp_, name, bytes); }

private Q_SLOTS:
    void dumpShowsEveryField()
    {
        const auto run = wdl({QStringLiteral("dump"),
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
        const auto run = wdl({QStringLiteral("format"), path});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, testfiles::readFile(path));
    }

    // 0: no word on stderr; 1: the file cannot be read or drawn, one line on stderr; 2: a usage error, the
    // problem and the usage on stderr. An existing output survives a failure.
    void exitCodes_data()
    {
        addColumns<QStringList, int>({"args", "code"});
        QTest::addColumn<QString>("line");   // the first line of stdout on success, of stderr on failure
        const QString file = QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl");
        const QString missing = tmp_.filePath(QStringLiteral("no such file.wdl"));
        QTest::newRow("missing file") << QStringList{"dump", missing} << 1
                                      << "wdl: cannot read " + missing + ": No such file or directory";
        QTest::newRow("a folder") << QStringList{"format", tmp_.path()} << 1
                                  << "wdl: cannot read " + tmp_.path() + ": Is a directory";
        const QString huge = written(QStringLiteral("huge.wdl"), "w { A I Default NRZ 0 1 50 } = 0 1;\n"
                                                                 "v { A I Default NRZ 0 1 50 } = (1 1 0 1)#99999999;\n");
        QTest::newRow("beyond a limit") << QStringList{"format", huge} << 1
            << "wdl: cannot read " + huge + " completely: line 2: the file lays down more than 67108864 segments, repeats"
                                           " and pattern references counted";
        QTest::newRow("no arguments") << QStringList{} << 2 << "wdl: no command given";
        QTest::newRow("unknown command") << QStringList{"print", file} << 2 << "wdl: unknown command 'print'";
        QTest::newRow("no file") << QStringList{"dump"} << 2 << "wdl: 'dump' takes one file";
        QTest::newRow("two files") << QStringList{"format", file, file} << 2 << "wdl: 'format' takes one file";
        QTest::newRow("unknown option") << QStringList{"--colour", "dump", file} << 2 << "wdl: unknown option '--colour'";
        QTest::newRow("version") << QStringList{"--version"} << 0 << "wdl " VOK_VERSION;
        QTest::newRow("help") << QStringList{"--help"} << 0 << "Usage: wdl [options] command [arguments]";
        // A signal low then high, a bus 5 then don't care, ten steps each.
        const QString in = written(QStringLiteral("pair.wdl"), "%SMALLESTUNIT = 9;\na { A I Default NRZ 0 1 50 } = 0 10 1 10;\n"
                                                               "bus[3:0] { A I Default NRZ 0 1 50 } = 5 10 DonTCare 10;\n");
        const QString old = "-out=" + tmp_.filePath(QStringLiteral("old.png"));
        auto render = [&](const QStringList& more) { return QStringList{"render", in, old} + more; };
        const QString format = "wdl: render: -out= must name a .pdf, .svg or .png file";
        QTest::newRow("render: no output") << QStringList{"render", in} << 2 << format;
        QTest::newRow("render: unknown format") << QStringList{"render", in, "-out=x.jpg"} << 2 << format;
        QTest::newRow("render: scale too small") << render({"--scale", "5"}) << 2 << "wdl: render: --scale takes 10 to 200, not '5'";
        QTest::newRow("render: scale no number") << render({"--scale", "x"}) << 2 << "wdl: render: --scale takes 10 to 200, not 'x'";
        QTest::newRow("render: no time") << render({"--from", "1x"}) << 2 << "wdl: render: --from is no time: '1x'";
        QTest::newRow("render: unknown option") << render({"--colour"}) << 2 << "wdl: render: Unknown option 'colour'.";
        QTest::newRow("render: two inputs") << render({in}) << 2 << "wdl: 'render' takes one file and -out=FILE.pdf|.svg|.png";
        QTest::newRow("render: missing input") << QStringList{"render", missing, old} << 1
                                               << "wdl: cannot read " + missing + ": No such file or directory";
        QTest::newRow("render: empty range") << render({"--from", "20"}) << 1 << "wdl: the range to draw is empty";
        QTest::newRow("render: no folder") << QStringList{"render", in, "-out=/no/such/folder/x.png"} << 1
                                           << "wdl: cannot write /no/such/folder/x.png: No such file or directory";
    }
    void exitCodes()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, line);
        const QString old = written(QStringLiteral("old.png"), "not overwritten");
        const auto run = wdl(args);
        QCOMPARE(run.code, code);
        if (code == 0)
            QCOMPARE(QString::fromUtf8(run.out.left(run.out.indexOf('\n')) + run.err), line);
        else
            QCOMPARE(QString::fromUtf8(run.out + run.err), line + '\n' + (code == 2 ? usage_ : QString()));
        QCOMPARE(testfiles::readFile(old), QByteArray("not overwritten"));
    }
};

QTEST_GUILESS_MAIN(TestWdl)
#include "test_wdl.moc"
