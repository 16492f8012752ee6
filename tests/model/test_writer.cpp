// The writer's exact text, and copies of every kind of wave reading back as their originals.

#include "busname.h"
#include "datatable.h"
#include "modeltestutil.h"
#include "wavewriter.h"

#include <QBuffer>
#include <QtTest>

#include <tuple>

using namespace kesu::toolvok;
using namespace modeltest;

// Every field away from its default: the header must write what the document holds.
static const QByteArray Header = "%MASTERCLOCKMULT = -3;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 2;\n%DECIMALS = 3;\n"
                                 "%ENDTIME = 18446744073709551615;\n";

class TestWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statements_data()
    {
        addColumns<QString, QString>({"name", "segs"});
        // group, polarity, waveType, offset, formatValue, formatRatio, isBus, isPattern, foreverIndex (-2: as marked)
        addColumns<QList<qint64>, QByteArray>({"attrs", "expected"});
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
        // A name the reader must read back as a single wave.
        QTest::newRow("not a bus") << "x[3]" << "1:1 0:2" << plain << QByteArray("x[3] { A T Default None 0 1 50 } = 1 1 0 2;\n");
        QStringList many;
        for (int i = 1; i <= 25; ++i)
            many << QStringLiteral("%1:%2").arg(1 - i % 2).arg(i);
        QTest::newRow("line feeds") << "w" << many.join(' ') << plain << QByteArray("w { A T Default None 0 1 50 } = 0 1 1 2 0 3"
            " 1 4 0 5 1 6 0 7 1 8 0 9 1 10 0 11\n 1 12 0 13 1 14 0 15 1 16 0 17 1 18 0 19 1 20 0 21\n 1 22 0 23 1 24 0 25;\n");
        // Eleven segments: the line feed before ")##;", which still ends the statement.
        QTest::newRow("line feed in a tail") << "e" << "0:1 1:1 0:1 1:1 (0:1 1:1 0:1 1:1 0:1 1:1 0:1" << plain
            << QByteArray("e { A T Default None 0 1 50 } = 0 1 1 1 0 1 1 1(0 1 1 1 0 1 1 1 0 1 1 1 0 1\n)##;\n");
    }
    void statements()
    {
        QFETCH(QString, name); QFETCH(QString, segs); QFETCH(QList<qint64>, attrs); QFETCH(QByteArray, expected);
        WaveformData doc;
        std::tie(doc.masterClockMult, doc.smallestUnit, doc.autoAssign, doc.decimals) = std::make_tuple(-3, 9, 2, 3);
        doc.endTime = NoTime;
        auto wave = makeWave(name, segs);
        std::tie(wave->group, wave->polarity, wave->waveType) = std::make_tuple(attrs[0], attrs[1], attrs[2]);
        std::tie(wave->offset, wave->formatValue, wave->formatRatio) = std::make_tuple(attrs[3], attrs[4], attrs[5]);
        std::tie(wave->isBus, wave->isPattern) = std::make_tuple(attrs[6], attrs[7]);
        if (attrs[8] != -2)
            wave->foreverIndex = qint32(attrs[8]);
        doc.addWave(wave.release());
        QBuffer device;
        QVERIFY(device.open(QIODevice::WriteOnly) && writeWaveform(doc, device));
        QCOMPARE(device.data(), Header + expected);
        // States the editor never makes are written as they are, but need not read back.
        if (!QByteArray(QTest::currentDataTag()).startsWith("odd"))
            QCOMPARE(formatWaveform(*load(QString::fromUtf8(device.data()))), device.data());
    }

    void duplicateReadsBackAlike_data()
    {
        // earlier: copies made before this one; elements: of the copy as read back
        addColumns<QString, int, QString, QStringList>({"declaration", "earlier", "copy", "elements"});
        // Plain names, copies of copies and ranges counting on: test_editops' duplicateNaming.
        const QString attr = " { B O Default NRZ 0 1 50 } = ";
        QTest::newRow("rising range") << "[0:2]" + attr + "7 5 3 5;" << 0 << "_0[0:2]" << QStringList{"_0[0]", "_0[1]", "_0[2]"};
        QTest::newRow("one-bit range") << "e[2:2]" + attr + "0 5 2 5 3 1;" << 0 << "e_0[2:2]" << QStringList{};
        QTest::newRow("run") << "[cnt0...cnt3]" + attr + "DonTCare 5 0 45 2 10 3 10 A 10 HighZ 40;" << 0 << "[cnt_a0...cnt_a3]"
                             << QStringList{"cnt_a[0]", "cnt_a[1]", "cnt_a[2]", "cnt_a[3]"};
        QTest::newRow("run after z") << "[c1...c2]" + attr + "3 10;" << 26 << "[c_aa1...c_aa2]"
                                     << QStringList{"c_aa[1]", "c_aa[2]"};
        QTest::newRow("one-bit run") << "[c5...c5]" + attr + "1 10 0 3;" << 0 << "[c_a5...c_a5]" << QStringList{"c_a[5]"};
        QTest::newRow("run without first digit") << "[abc...x3]" + attr + "F 10;" << 0 << "[abc_a0...abc_a3]"
                                                 << QStringList{"abc_a[0]", "abc_a[1]", "abc_a[2]", "abc_a[3]"};
        QTest::newRow("run with other last letters") << "[a2...b0]" + attr + "6 10;" << 0 << "[a_a2...a_a0]"
                                                     << QStringList{"a_a[2]", "a_a[1]", "a_a[0]"};
        QTest::newRow("element list") << "din[d2,d1,d0]" + attr + "HighZ 4 5 20 DonTCare 2;" << 0
                                      << "din_0[d2,d1,d0]" << QStringList{"d2", "d1", "d0"};
        QTest::newRow("bare element list") << "[x,y]" + attr + "3 4;" << 0 << "_0[x,y]" << QStringList{"x", "y"};
        QTest::newRow("named pattern") << "$p = 0 2 1 4;" << 0 << "$p_0" << QStringList{};
    }
    void duplicateReadsBackAlike()
    {
        QFETCH(QString, declaration); QFETCH(int, earlier); QFETCH(QString, copy); QFETCH(QStringList, elements);
        auto doc = load(declaration);
        QCOMPARE(doc->waves.size(), 1);
        const WaveData* original = doc->waves.first();
        for (int i = 0; i <= earlier; ++i) {
            WaveData* duplicate = snapshotOf(original);
            duplicate->name = duplicateWaveName(*doc, original->name);
            doc->addWave(duplicate);
        }
        QCOMPARE(doc->waves.last()->name, copy);

        auto reread = load(QString::fromUtf8(formatWaveform(*doc)));
        QCOMPARE(reread->waves.size(), doc->waves.size());
        const WaveData* back = reread->findWavebyName(copy);
        QVERIFY(back && !segments(back).isEmpty());
        auto fields = [](const WaveData* w, const QStringList& elements, int width) {
            return QString("%1%2 %3 [%4] %5").arg(w->isBus).arg(w->isPattern).arg(width).arg(elements.join(','), segments(w));
        };
        QCOMPARE(fields(back, back->elements, back->busWidth), fields(original, elements, qMax(1, int(elements.size()))));
    }
};

QTEST_GUILESS_MAIN(TestWriter)
#include "test_writer.moc"
