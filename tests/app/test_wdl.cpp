// Runs the wdl executable as a user would: what it prints, how it exits, and the pictures render writes, read back.
#include <QDir>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include "datatable.h"
#include "files.h"
#include "programs.h"

using testprograms::wdl;

// A signal low then high, a bus 5 then don't care, ten steps each.
const QByteArray Pair = "%SMALLESTUNIT = 9;\na { A I Default NRZ 0 1 50 } = 0 10 1 10;\n"
                        "bus[3:0] { A I Default NRZ 0 1 50 } = 5 10 DonTCare 10;\n";

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
        QVERIFY2(run.code == 0 && run.err.isEmpty(), run.err.constData());
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
        QVERIFY2(run.code == 0 && run.err.isEmpty(), run.err.constData());
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
        const QString in = written(QStringLiteral("pair.wdl"), Pair);
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
        QFETCH(QStringList, args); QFETCH(int, code); QFETCH(QString, line);
        const QString old = written(QStringLiteral("old.png"), "not overwritten");
        const auto run = wdl(args);
        QCOMPARE(run.code, code);
        if (code == 0)
            QCOMPARE(QString::fromUtf8(run.out.left(run.out.indexOf('\n')) + run.err), line);
        else
            QCOMPARE(QString::fromUtf8(run.out + run.err), line + '\n' + (code == 2 ? usage_ : QString()));
        QCOMPARE(testfiles::readFile(old), QByteArray("not overwritten"));
    }

    // PNG: "WxH" and probes "Cx,y" (Blue waves, Red don't care, White background, blacK text); SVG: words of its
    // text; PDF: pages, of 16 rows and 40 steps at the widest scale, going down, then across.
    void render_data()
    {
        addColumns<int, QStringList, QString, QString>({"waves", "options", "out", "expected"});   // waves 0: Pair
        // 20 steps at 40 pixels (the widest scale) and a little room right.
        QTest::newRow("fitted") << 0 << QStringList{} << "pair.png" << "812x90 B200,40 B600,10 W600,40 B200,50 R500,60";
        QTest::newRow("from 10 at 20 px") << 0 << QStringList{"--from", "10", "--scale", "100"} << "pair.png"
                                          << "212x90 B100,10 W100,40 R100,60 W205,10";
        // "bus[3:0]": a name column of 8 characters at 8 pixels and 10 more.
        QTest::newRow("names and ruler") << 0 << QStringList{"--names", "--ruler", "--to", "10"} << "pair.png"
                                         << "486x150 K75,60 B274,100 W274,70 B274,110";
        QTest::newRow("svg with every name") << 0 << QStringList{"--names"} << "pair.svg" << "a bus[3:0] 0101";
        // Pages, then the words the pages show: the box letters go to a PDF as glyph runs of their own.
        QTest::newRow("pdf with names and letters") << 0 << QStringList{"--names"} << "pair.pdf" << "1 a bus[3:0] X";
        QTest::newRow("one page") << 3 << QStringList{"--ruler"} << "waves.pdf" << "1";
        QTest::newRow("rows over three pages") << 40 << QStringList{"--ruler"} << "waves.pdf" << "3";
        QTest::newRow("and across time") << 20 << QStringList{"--ruler", "--to", "100", "--scale", "200"} << "waves.pdf" << "4";
    }
    void render()
    {
        QFETCH(int, waves); QFETCH(QStringList, options); QFETCH(QString, out); QFETCH(QString, expected);
        const QString pdfinfo = QStandardPaths::findExecutable(QStringLiteral("pdfinfo"));
        if (out.endsWith(QLatin1String(".pdf")) && pdfinfo.isEmpty())
            QSKIP("pdfinfo (poppler-utils) is not installed");
        QByteArray text = waves ? QByteArray() : Pair;
        for (int i = 0; i < waves; ++i)
            text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 10 1 10;\n";
        out = tmp_.filePath(out);
        QCOMPARE(wdl(QStringList{"render", written("in.wdl", text), "-out=" + out} + options).code, 0);
        QStringList words = expected.split(QLatin1Char(' '));
        if (out.endsWith(QLatin1String(".png"))) {
            const QImage image(out);
            QCOMPARE(QStringLiteral("%1x%2").arg(image.width()).arg(image.height()), words.takeFirst());
            const QMap<QChar, QRgb> colors{{'B', qRgb(0, 0, 255)}, {'R', qRgb(255, 0, 0)}, {'W', qRgb(255, 255, 255)},
                                           {'K', qRgb(0, 0, 0)}};
            for (const QString& probe : std::as_const(words)) {
                const QStringList xy = probe.mid(1).split(QLatin1Char(','));
                const QPoint at(xy[0].toInt(), xy[1].toInt());
                // Hatching leaves gaps: red is looked for in the probe's row.
                bool found = false;
                for (int dx = 0; dx < (probe[0] == 'R' ? 20 : 1); ++dx)
                    found = found || image.pixel(at + QPoint(dx, 0)) == colors.value(probe[0]);
                QVERIFY2(found, qPrintable(probe));
            }
        } else if (out.endsWith(QLatin1String(".svg"))) {
            QXmlStreamReader xml(testfiles::readFile(out));
            QString shown;
            while (!xml.atEnd()) {
                if (xml.readNext() == QXmlStreamReader::Characters)
                    shown += xml.text();
            }
            QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
            for (const QString& word : std::as_const(words))
                QVERIFY2(shown.contains(word), qPrintable(word));
        } else {
            const QRegularExpression count(QStringLiteral("Pages:\\s+(\\d+)"));
            QCOMPARE(count.match(QString::fromLatin1(testprograms::run(pdfinfo, {out}).out)).captured(1), words.takeFirst());
            const QString shown = QString::fromUtf8(testprograms::run(QStringLiteral("pdftotext"), {out, "-"}).out);
            for (const QString& word : std::as_const(words))
                QVERIFY2(shown.contains(word), qPrintable(shown));
        }
    }
};

QTEST_GUILESS_MAIN(TestWdl)
#include "test_wdl.moc"
