// wdl render: each format read back (its errors: test_wdl).
#include <QImage>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include "datatable.h"
#include "files.h"
#include "programs.h"

namespace {

// A signal low then high, a bus 5 then don't care, ten steps each.
const QByteArray Pair = "%SMALLESTUNIT = 9;\n"
                        "a { A I Default NRZ 0 1 50 } = 0 10 1 10;\n"
                        "bus[3:0] { A I Default NRZ 0 1 50 } = 5 10 DonTCare 10;\n";

QByteArray waves(int n)
{
    QByteArray text;
    for (int i = 0; i < n; ++i)
        text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 10 1 10;\n";
    return text;
}

} // namespace

class TestRender : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

    QString file(const QString& name) const { return tmp_.filePath(name); }
    QString file(const QString& name, const QByteArray& bytes) { return testfiles::writtenFile(tmp_, name, bytes); }

private Q_SLOTS:
    // Probes "Cx,y": Blue waves, Red don't care, White background, blacK text.
    void png_data()
    {
        addColumns<QStringList, QSize, QString>({"options", "size", "probes"});
        // 20 steps at 40 pixels (the widest scale) and a little room right.
        QTest::newRow("fitted") << QStringList{} << QSize(812, 90) << "B200,40 B600,10 W600,40 B200,50 R500,60";
        QTest::newRow("from 10 at 20 px") << QStringList{"--from", "10", "--scale", "100"} << QSize(212, 90)
                                          << "B100,10 W100,40 R100,60 W205,10";
        // "bus[3:0]": a name column of 8 characters at 8 pixels and 10 more.
        QTest::newRow("names and ruler") << QStringList{"--names", "--ruler", "--to", "10"} << QSize(74 + 412, 150)
                                         << "K75,60 B274,100 W274,70 B274,110";
    }
    void png()
    {
        QFETCH(QStringList, options);
        QFETCH(QSize, size);
        QFETCH(QString, probes);
        const QString out = file(QStringLiteral("pair.png"));
        QCOMPARE(testprograms::wdl(QStringList{"render", file("pair.wdl", Pair), "-out=" + out} + options).code, 0);
        const QImage image(out);
        QCOMPARE(image.size(), size);
        const QMap<QChar, QRgb> colors{{'B', qRgb(0, 0, 255)}, {'R', qRgb(255, 0, 0)}, {'W', qRgb(255, 255, 255)},
                                       {'K', qRgb(0, 0, 0)}};
        for (const QString& probe : probes.split(QLatin1Char(' '))) {
            const QStringList xy = probe.mid(1).split(QLatin1Char(','));
            const QPoint at(xy[0].toInt(), xy[1].toInt());
            // Hatching leaves gaps: red is looked for in the probe's row.
            bool found = false;
            for (int dx = 0; dx < (probe[0] == 'R' ? 20 : 1); ++dx)
                found = found || image.pixel(at + QPoint(dx, 0)) == colors.value(probe[0]);
            QVERIFY2(found, qPrintable(probe));
        }
    }

    void svgIsXmlWithEveryName()
    {
        const QString out = file(QStringLiteral("pair.svg"));
        QCOMPARE(testprograms::wdl({"render", file("pair.wdl", Pair), "-out=" + out, "--names"}).code, 0);
        QXmlStreamReader xml(testfiles::readFile(out));
        QString text;
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::Characters)
                text += xml.text();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        for (const char* name : {"a", "bus[3:0]", "0101"})
            QVERIFY2(text.contains(QLatin1String(name)), name);
    }

    // A page holds 16 rows and 40 steps at the widest scale; pages go down, then across.
    void pdfPages_data()
    {
        addColumns<int, QStringList, int>({"waves", "options", "pages"});
        QTest::newRow("one page") << 3 << QStringList{"--ruler"} << 1;
        QTest::newRow("rows over three pages") << 40 << QStringList{"--ruler"} << 3;
        QTest::newRow("and across time") << 20 << QStringList{"--ruler", "--to", "100", "--scale", "200"} << 4;
    }
    void pdfPages()
    {
        QFETCH(int, waves);
        QFETCH(QStringList, options);
        QFETCH(int, pages);
        const QString pdfinfo = QStandardPaths::findExecutable(QStringLiteral("pdfinfo"));
        if (pdfinfo.isEmpty())
            QSKIP("pdfinfo (poppler-utils) is not installed");
        const QString out = file(QStringLiteral("waves.pdf"));
        QCOMPARE(testprograms::wdl(QStringList{"render", file("waves.wdl", ::waves(waves)), "-out=" + out} + options).code, 0);
        const QRegularExpression count(QStringLiteral("Pages:\\s+(\\d+)"));
        QCOMPARE(count.match(QString::fromLatin1(testprograms::run(pdfinfo, {out}).out)).captured(1).toInt(), pages);
    }
};

QTEST_GUILESS_MAIN(TestRender)
#include "test_render.moc"
