// The waveform file writer: its exact text, and that what it writes reads
// back into a document that writes the same text, so every written field survives.

#include "modeltestutil.h"
#include "wavewriter.h"

#include <QBuffer>
#include <QtTest>

#include <tuple>

using namespace kesu::toolvok;
using namespace modeltest;

static const QByteArray DefaultHeader = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 12;\n%AUTOASSIGN = 0;\n"
                                        "%DECIMALS = 0;\n%ENDTIME = 1000;\n";

static std::unique_ptr<WaveformData> reread(const QByteArray& text)
{
    return load(QString::fromUtf8(text));
}

class TestWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void header()
    {
        WaveformData doc;
        QCOMPARE(formatWaveform(doc), DefaultHeader);
        std::tie(doc.masterClockMult, doc.smallestUnit, doc.autoAssign, doc.decimals) = std::make_tuple(-3, 9, 2, 3);
        doc.endTime = NoTime;
        QCOMPARE(formatWaveform(doc), QByteArray("%MASTERCLOCKMULT = -3;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 2;\n"
                                                 "%DECIMALS = 3;\n%ENDTIME = 18446744073709551615;\n"));
        QCOMPARE(formatWaveform(*reread(formatWaveform(doc))), formatWaveform(doc));
    }

    void statements_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("segs");
        // group, polarity, waveType, offset, formatValue, formatRatio, isBus, isPattern, foreverIndex (-2: as marked)
        QTest::addColumn<QList<qint64>>("attrs");
        QTest::addColumn<QByteArray>("expected");
        const QList<qint64> plain{1, 3, 0, 0, 1, 50, 0, 0, -2};
        QTest::newRow("empty wave") << "w" << "" << plain << QByteArray("w { A T Default None 0 1 50 } =;\n");
        QTest::newRow("odd: empty wave, forever index") << "w" << "" << QList<qint64>{1, 3, 0, 0, 1, 50, 0, 0, 0}
                                                   << QByteArray("w { A T Default None 0 1 50 } =)##;\n");
        QTest::newRow("clk") << "clk" << "0:10 (1:5 0:5" << QList<qint64>{1, 0, 1, 0, 1, 50, 0, 0, -2}
                             << QByteArray("clk { A I Default NRZ 0 1 50 } = 0 10(1 5 0 5)##;\n");
        QTest::newRow("pattern") << "$p" << "1:5 0:2" << QList<qint64>{3, 5, 2, 9, 9, 9, 0, 1, -2}
                                 << QByteArray("$p = 1 5 0 2;\n");
        QTest::newRow("group 0") << "w" << "" << QList<qint64>{0, 1, 2, 0, 1, 50, 0, 0, -2} << QByteArray("w { A O Default RZ 0 1 50 } =;\n");
        QTest::newRow("group 8") << "w" << "" << QList<qint64>{8, 2, 3, 0, 1, 50, 0, 0, -2} << QByteArray("w { H B Default R1 0 1 50 } =;\n");
        QTest::newRow("bus values") << "d[3:0]" << "-1:3 -2:4 1F:5 1F:6 0:1" << QList<qint64>{1, 0, 1, 0, 1, 50, 1, 0, -2}
                                    << QByteArray("d[3:0] { A I Default NRZ 0 1 50 } = DonTCare 3 HighZ 4 1F 5 1F 6 0 1;\n");
        QTest::newRow("single values") << "s" << "-1:3 -2:4 1:5 0:6" << plain
                                       << QByteArray("s { A T Default None 0 1 50 } = 2 3 3 4 1 5 0 6;\n");
        QTest::newRow("extreme numbers") << "w" << "1:-5 0:-2147483648 1:2147483647"
                                         << QList<qint64>{1, 3, 0, -1, 0, -32768, 0, 0, -2}
                                         << QByteArray("w { A T Default None 18446744073709551615 0 -32768 } ="
                                                       " 1 -5 0 -2147483648 1 2147483647;\n");
        QTest::newRow("odd: two forever marks") << "w" << "(1:1 (0:1" << QList<qint64>{1, 3, 0, 0, 1, 50, 0, 0, 0}
                                           << QByteArray("w { A T Default None 0 1 50 } =(1 1(0 1)##;\n");
        QTest::newRow("utf-8 name") << QString::fromUtf8("größe") << "1:1" << plain
                                    << QByteArray("gr\xc3\xb6\xc3\x9f" "e { A T Default None 0 1 50 } = 1 1;\n");
        // Names the reader must read back as the same kind of wave.
        QTest::newRow("list bus") << "l[a,b]" << "3:1 -2:2" << QList<qint64>{1, 0, 1, 0, 1, 50, 1, 0, -2}
                                  << QByteArray("l[a,b] { A I Default NRZ 0 1 50 } = 3 1 HighZ 2;\n");
        QTest::newRow("run bus") << "[r2...x0]" << "A:1" << QList<qint64>{1, 0, 1, 0, 1, 50, 1, 0, -2}
                                 << QByteArray("[r2...x0] { A I Default NRZ 0 1 50 } = A 1;\n");
        QTest::newRow("not a bus") << "x[3]" << "1:1 0:2" << plain << QByteArray("x[3] { A T Default None 0 1 50 } = 1 1 0 2;\n");
    }
    void statements()
    {
        QFETCH(QString, name);
        QFETCH(QString, segs);
        QFETCH(QList<qint64>, attrs);
        QFETCH(QByteArray, expected);
        WaveformData doc;
        auto wave = makeWave(name, segs);
        std::tie(wave->group, wave->polarity, wave->waveType) = std::make_tuple(attrs[0], attrs[1], attrs[2]);
        std::tie(wave->offset, wave->formatValue, wave->formatRatio) = std::make_tuple(attrs[3], attrs[4], attrs[5]);
        std::tie(wave->isBus, wave->isPattern) = std::make_tuple(attrs[6], attrs[7]);
        if (attrs[8] != -2)
            wave->foreverIndex = qint32(attrs[8]);
        doc.addWave(wave.release());
        QBuffer device;
        QVERIFY(device.open(QIODevice::WriteOnly) && writeWaveform(doc, device));
        QCOMPARE(device.data(), DefaultHeader + expected);
        // States the editor never makes are written as they are, but need not read back.
        if (!QByteArray(QTest::currentDataTag()).startsWith("odd"))
            QCOMPARE(formatWaveform(*reread(device.data())), device.data());
    }

    void lineFeeds()
    {
        WaveformData doc;
        auto* w = new WaveData("w");
        for (int i = 0; i < 25; ++i)
            w->insertData(new Pattern(i % 2 ? "1" : "0", i + 1), nullptr);
        doc.addWave(w);
        QCOMPARE(formatWaveform(doc), DefaultHeader + "w { A T Default None 0 1 50 } = 0 1 1 2 0 3 1 4 0 5 1 6 0 7 1 8 0 9 "
                                                      "1 10 0 11\n 1 12 0 13 1 14 0 15 1 16 0 17 1 18 0 19 1 20 0 21\n"
                                                      " 1 22 0 23 1 24 0 25;\n");

        // Exactly eleven segments: the line feed comes before the ";", and the
        // line that holds only ")##;" still ends the statement.
        doc.ClearAll();
        doc.addWave(makeWave("e", "0:1 1:1 0:1 1:1 (0:1 1:1 0:1 1:1 0:1 1:1 0:1").release());
        QCOMPARE(formatWaveform(doc),
                 DefaultHeader + "e { A T Default None 0 1 50 } = 0 1 1 1 0 1 1 1(0 1 1 1 0 1 1 1 0 1 1 1 0 1\n)##;\n");
        QCOMPARE(reread(formatWaveform(doc))->waves.first()->foreverIndex, 4);
    }
};

QTEST_GUILESS_MAIN(TestWriter)
#include "test_writer.moc"
