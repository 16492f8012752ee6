// The waveform file writer: its exact text, and that what it writes reads
// back into a document that writes the same text (every written field survives).

#include "modeltestutil.h"
#include "wavewriter.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

#include <limits>
#include <tuple>

using namespace kesu::toolvok;
using namespace modeltest;

namespace {

const QByteArray DefaultHeader = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 12;\n%AUTOASSIGN = 0;\n"
                                 "%DECIMALS = 0;\n%ENDTIME = 1000;\n";

std::unique_ptr<WaveformData> reread(const QByteArray& text)
{
    return load(QString::fromUtf8(text));
}

// A document of the kinds of waves the editor makes, every field spread over its range.
std::unique_ptr<WaveformData> generate(quint32 seed)
{
    QRandomGenerator r(seed);
    auto doc = std::make_unique<WaveformData>();
    std::tie(doc->masterClockMult, doc->smallestUnit, doc->autoAssign, doc->decimals) =
        std::make_tuple(r.bounded(-5, 100), 3 * (1 + r.bounded(4)), r.bounded(3), r.bounded(4));
    doc->endTime = r.bounded(2) ? r.generate64() : r.bounded(100000);
    for (int i = 0, count = r.bounded(9); i < count; ++i) {
        WaveData* w = nullptr;
        const int kind = r.bounded(6);
        if (kind == 0) {   // names the reader must not take for buses
            const QStringList names{"s%1", QString::fromUtf8("größe_%1"), "x%1[3]", "e%1[2:2]", "n%1.q"};
            w = new WaveData(names.at(r.bounded(int(names.size()))).arg(i));
        } else if (kind == 1) {
            const int hi = r.bounded(16), lo = (hi + 1 + r.bounded(15)) % 16;
            w = new WaveData(QString("b%1[%2:%3]").arg(i).arg(hi).arg(lo));
            WaveformData::genExpandWave(w, QString("b%1").arg(i), hi, lo);
        } else if (kind == 2) {
            w = new WaveData(QString("l%1[a%1,b%1,c%1]").arg(i));
            w->elements = QStringList{QString("a%1").arg(i), QString("b%1").arg(i), QString("c%1").arg(i)};
        } else if (kind == 3) {
            const int a = r.bounded(40), b = r.bounded(40);
            w = new WaveData(QString("[run%1...zz%2]").arg(a).arg(b));
            WaveformData::genExpandWave(w, "run", a, b);
        } else {
            w = new WaveData(QString("$p%1").arg(i));
            w->isPattern = true;
            w->polarity = 5;
        }
        w->isBus = !w->elements.isEmpty();
        w->busWidth = qMax(1, int(w->elements.size()));
        if (!w->isPattern) {
            std::tie(w->group, w->polarity, w->waveType, w->spareInt) =
                std::make_tuple(r.bounded(9), r.bounded(5), r.bounded(5), r.bounded(100));
            w->offset = r.bounded(2) ? r.generate64() : r.bounded(1000);
            w->formatValue = r.generate64();
            w->formatRatio = qint16(r.bounded(65536) - 32768);
            w->visible = r.bounded(2);
        }

        const int n = r.bounded(2) ? r.bounded(4) : r.bounded(40);
        std::string previous;
        for (int k = 0; k < n; ++k) {
            std::string value;
            do {
                const int pick = r.bounded(6);
                if (pick < 2)
                    value = pick ? "-1" : "-2";
                else if (!w->isBus)
                    value = pick % 2 ? "1" : "0";
                else if (pick == 2 && !previous.empty())
                    value = previous;   // a bus keeps equal neighbours apart
                else
                    value = QString::number(r.generate64() >> r.bounded(64), 16).toStdString();
            } while (value == previous && (!w->isBus || Values::isSpecial(value)));
            qint32 duration = r.bounded(10) ? r.bounded(1, 100000) : -r.bounded(1, 1000);
            if (r.bounded(30) == 0)
                duration = r.bounded(2) ? std::numeric_limits<qint32>::min() : std::numeric_limits<qint32>::max();
            w->insertData(new Pattern(value, duration), nullptr);
            previous = value;
        }
        if (n > 0 && r.bounded(3) == 0) {
            w->foreverIndex = r.bounded(n);
            w->patterns.at(w->foreverIndex)->forever = true;
        }
        doc->addWave(w);
    }
    return doc;
}

} // namespace

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
        QTest::newRow("empty wave, forever index") << "w" << "" << QList<qint64>{1, 3, 0, 0, 1, 50, 0, 0, 0}
                                                   << QByteArray("w { A T Default None 0 1 50 } =)##;\n");
        QTest::newRow("clk") << "clk" << "0:10 (1:5 0:5" << QList<qint64>{1, 0, 1, 0, 1, 50, 0, 0, -2}
                             << QByteArray("clk { A I Default NRZ 0 1 50 } = 0 10(1 5 0 5)##;\n");
        QTest::newRow("pattern") << "$p" << "1:5 0:2" << QList<qint64>{3, 5, 2, 9, 9, 9, 0, 1, -2}
                                 << QByteArray("$p = 1 5 0 2;\n");
        QTest::newRow("group 0") << "w" << "" << QList<qint64>{0, 1, 2, 0, 1, 50, 0, 0, -2} << QByteArray("w { A O Default RZ 0 1 50 } =;\n");
        QTest::newRow("group 8") << "w" << "" << QList<qint64>{8, 2, 3, 0, 1, 50, 0, 0, -2} << QByteArray("w { H B Default R1 0 1 50 } =;\n");
        QTest::newRow("group 9") << "w" << "" << QList<qint64>{9, 4, 4, 0, 1, 50, 0, 0, -2} << QByteArray("w { I G Default RC 0 1 50 } =;\n");
        QTest::newRow("polarity 5") << "w" << "" << QList<qint64>{2, 5, 7, 0, 1, 50, 0, 0, -2} << QByteArray("w { B Default None 0 1 50 } =;\n");
        QTest::newRow("bus values") << "d[3:0]" << "-1:3 -2:4 1F:5 1F:6 0:1" << QList<qint64>{1, 0, 1, 0, 1, 50, 1, 0, -2}
                                    << QByteArray("d[3:0] { A I Default NRZ 0 1 50 } = DonTCare 3 HighZ 4 1F 5 1F 6 0 1;\n");
        QTest::newRow("single values") << "s" << "-1:3 -2:4 1:5 0:6" << plain
                                       << QByteArray("s { A T Default None 0 1 50 } = 2 3 3 4 1 5 0 6;\n");
        QTest::newRow("extreme numbers") << "w" << "1:-5 0:-2147483648 1:2147483647"
                                         << QList<qint64>{1, 3, 0, -1, 0, -32768, 0, 0, -2}
                                         << QByteArray("w { A T Default None 18446744073709551615 0 -32768 } ="
                                                       " 1 -5 0 -2147483648 1 2147483647;\n");
        QTest::newRow("two forever marks") << "w" << "(1:1 (0:1" << QList<qint64>{1, 3, 0, 0, 1, 50, 0, 0, 0}
                                           << QByteArray("w { A T Default None 0 1 50 } =(1 1(0 1)##;\n");
        QTest::newRow("utf-8 name") << QString::fromUtf8("größe") << "1:1" << plain
                                    << QByteArray("gr\xc3\xb6\xc3\x9f" "e { A T Default None 0 1 50 } = 1 1;\n");
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
        QCOMPARE(formatWaveform(doc), DefaultHeader + expected);
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
        auto* eleven = new WaveData("e");
        for (int i = 0; i < 11; ++i)
            eleven->insertData(new Pattern(i % 2 ? "1" : "0", 1), nullptr);
        eleven->patterns.at(4)->forever = true;
        eleven->foreverIndex = 4;
        doc.ClearAll();
        doc.addWave(eleven);
        QCOMPARE(formatWaveform(doc),
                 DefaultHeader + "e { A T Default None 0 1 50 } = 0 1 1 1 0 1 1 1(0 1 1 1 0 1 1 1 0 1 1 1 0 1\n)##;\n");
        QCOMPARE(reread(formatWaveform(doc))->waves.first()->foreverIndex, 4);
    }

    void devices()
    {
        auto doc = generate(7);
        QBuffer buffer;
        QVERIFY(buffer.open(QIODevice::WriteOnly));
        QVERIFY(writeWaveform(*doc, buffer));
        QCOMPARE(buffer.data(), formatWaveform(*doc));
    }

    void roundTripGenerated()
    {
        for (quint32 seed = 1; seed <= 40; ++seed) {
            const QByteArray text = formatWaveform(*generate(seed));
            QVERIFY2(formatWaveform(*reread(text)) == text, qPrintable(QString("seed %1").arg(seed)));
        }
    }
};

QTEST_GUILESS_MAIN(TestWriter)
#include "test_writer.moc"
