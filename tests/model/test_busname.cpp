// Bus names as read, and the names of duplicated waves: a copy of every kind
// of wave, saved and read back, is a wave of the same kind, width and values
// as its original.

#include "busname.h"
#include "modeltestutil.h"
#include "wavewriter.h"

#include <QtTest>

using namespace kesu::toolvok;
using namespace modeltest;

class TestBusName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void duplicateReadsBackAlike_data()
    {
        QTest::addColumn<QString>("declaration");
        QTest::addColumn<int>("earlier");   // copies made before this one
        QTest::addColumn<QString>("copy");
        QTest::addColumn<QStringList>("elements");   // of the copy as read back
        const QString attr = " { B O Default NRZ 0 1 50 } = ";
        QTest::newRow("single") << "clk" + attr + "0 5 1 5 2 3 3 4;" << 0 << "clk_0" << QStringList{};
        QTest::newRow("single again") << "clk" + attr + "0 5 1 5;" << 2 << "clk_2" << QStringList{};
        QTest::newRow("copy of a copy") << "clk_0" + attr + "0 5 1 5;" << 0 << "clk_0_0" << QStringList{};
        QTest::newRow("range") << "d[3:0]" + attr + "A 5 3 5 DonTCare 2 HighZ 1;" << 1 << "d_1[3:0]"
                               << QStringList{"d_1[3]", "d_1[2]", "d_1[1]", "d_1[0]"};
        QTest::newRow("rising range") << "[0:2]" + attr + "7 5 3 5;" << 0 << "_0[0:2]"
                                      << QStringList{"_0[0]", "_0[1]", "_0[2]"};
        QTest::newRow("one-bit range") << "e[2:2]" + attr + "0 5 2 5 3 1;" << 0 << "e_0[2:2]" << QStringList{};
        QTest::newRow("run") << "[cnt0...cnt3]" + attr + "DonTCare 5 0 45 2 10 3 10 A 10 HighZ 40;" << 0
                             << "[cnt_a0...cnt_a3]"
                             << QStringList{"cnt_a[0]", "cnt_a[1]", "cnt_a[2]", "cnt_a[3]"};
        QTest::newRow("run, second copy") << "[q7...q5]" + attr + "5 10 2 10;" << 1 << "[q_b7...q_b5]"
                                          << QStringList{"q_b[7]", "q_b[6]", "q_b[5]"};
        QTest::newRow("run after z") << "[c1...c2]" + attr + "3 10;" << 26 << "[c_aa1...c_aa2]"
                                     << QStringList{"c_aa[1]", "c_aa[2]"};
        QTest::newRow("one-bit run") << "[c5...c5]" + attr + "1 10 0 3;" << 0 << "[c_a5...c_a5]"
                                     << QStringList{"c_a[5]"};
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
        QFETCH(QString, declaration);
        QFETCH(int, earlier);
        QFETCH(QString, copy);
        QFETCH(QStringList, elements);
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
        QVERIFY(back);
        QCOMPARE((QList<bool>{back->isBus, back->isPattern}), (QList<bool>{original->isBus, original->isPattern}));
        QCOMPARE(back->elements, elements);
        QCOMPARE(back->busWidth, qMax(1, int(elements.size())));
        QCOMPARE(segments(back), segments(original));
        QVERIFY(!segments(back).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestBusName)
#include "test_busname.moc"
