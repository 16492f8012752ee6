// Which segments a time range selects and where it snaps: the rule that the
// mouse and the drawing share, on waves read from their file text.
#include "selection.h"
#include "wavereader.h"
#include "waveformdata.h"

#include <QBuffer>
#include <QtTest>

using namespace kesu::toolvok;

class TestSelection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pickSnapsToTouchedSegments_data()
    {
        QTest::addColumn<QByteArray>("segments");
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<QList<int>>("picked");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        // [0,1] [1,3] [3,5] [5,6]
        const QByteArray four = "0 1 1 2 0 2 1 1";
        QTest::newRow("backwards range") << four << 4.2 << 1.3 << QList<int>{1, 2} << 1.5 << 4.5;
        QTest::newRow("one point") << four << 2.0 << 2.0 << QList<int>{1} << 1.5 << 2.5;
        QTest::newRow("an edge point") << four << 3.0 << 3.0 << QList<int>{1, 2} << 1.5 << 4.5;
        QTest::newRow("covering") << four << 0.5 << 5.5 << QList<int>{0, 1, 2, 3} << 0.5 << 5.5;
        QTest::newRow("past the end") << four << 7.0 << 9.0 << QList<int>{} << 0.0 << 0.0;
        // Offset 4, then a tail of 6 repeated: a later repetition picks the
        // tail's own segments, each once.
        const QByteArray tail = "0 4(1 3 0 3)##";
        QTest::newRow("head and tail") << tail << 1.0 << 9.0 << QList<int>{0, 1, 2} << 0.5 << 9.5;
        QTest::newRow("far repetition") << tail << 6004.5 << 6005.0 << QList<int>{1} << 6004.5 << 6006.5;
        QTest::newRow("across repetitions") << tail << 8.0 << 14.0 << QList<int>{2, 1} << 7.5 << 15.5;
    }
    void pickSnapsToTouchedSegments()
    {
        QFETCH(QByteArray, segments);
        QFETCH(QList<int>, picked);
        QBuffer file;
        file.setData("%DECIMALS = 0;\nw { A I Default NRZ 0 1 50 } = " + segments + ";\n");
        QVERIFY(file.open(QIODevice::ReadOnly));
        WaveformData doc;
        doc.loadData(file);
        QCOMPARE(doc.waves.size(), 1);
        const WaveData& wave = *doc.waves.first();
        QFETCH(double, a);
        QFETCH(double, b);
        const SegmentPick pick = pickSegments(wave, a, b);
        QList<int> indexes;
        for (const Pattern* p : pick.segments)
            indexes << int(wave.patterns.indexOf(p));
        QCOMPARE(indexes, picked);
        if (!picked.isEmpty()) {
            QTEST(pick.snappedStart, "start");
            QTEST(pick.snappedEnd, "end");
        }
    }
};

QTEST_GUILESS_MAIN(TestSelection)
#include "test_selection.moc"
