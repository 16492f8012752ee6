// Undo by ranges: an edit recorded as the smallest range that differs, put
// back and done again on the live wave, which must read as before and after.

#include "modeltestutil.h"
#include "segmentrange.h"

#include <QtTest>

#include <utility>

using namespace kesu::toolvok;
using namespace modeltest;

namespace {

// Replaces segments [first, first + count) of the wave by those of a
// segments() text, as an edit would, and sets its forever index.
void edit(WaveData& wave, int first, int count, const QString& replacement, qint32 foreverIndex)
{
    qDeleteAll(wave.patterns.mid(first, count));
    wave.patterns.remove(first, count);
    auto source = makeWave("s", replacement);
    for (Pattern* p : std::exchange(source->patterns, {})) {
        wave.patterns.insert(first++, p);
        p->wave = &wave;
    }
    wave.segmentsChanged(0);
    wave.foreverIndex = foreverIndex;
}

} // namespace

class TestSegmentRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void undoRedo_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<int>("first");         // the range the edit was told to touch
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<int>("forever");       // foreverIndex after the edit
        QTest::addColumn<QList<int>>("change"); // narrowed: first, before count, after count
        QTest::newRow("start") << "0:1 1:2 0:3 1:4" << 0 << 2 << "1:9" << -1 << QList<int>{0, 2, 1};
        QTest::newRow("middle") << "0:1 1:2 0:3 1:4" << 1 << 2 << "1:2 1:5 0:3" << -1 << QList<int>{2, 0, 1};
        QTest::newRow("end") << "0:1 1:2 0:3 1:4" << 3 << 1 << "1:4 0:8" << -1 << QList<int>{4, 0, 1};
        QTest::newRow("emptied") << "0:1 1:2" << 0 << 2 << "" << -1 << QList<int>{0, 2, 0};
        QTest::newRow("filled") << "" << 0 << 0 << "1:4 0:4" << -1 << QList<int>{0, 0, 2};
        QTest::newRow("told more than changed") << "0:1 1:2 0:3 1:4" << 0 << 4 << "0:1 1:7 0:3 1:4" << -1
                                                << QList<int>{1, 1, 1};
        QTest::newRow("nothing changed") << "0:1 1:2 0:3" << 0 << 3 << "0:1 1:2 0:3" << -1 << QList<int>{3, 0, 0};
        QTest::newRow("equal runs") << "0:1 0:1 0:1" << 0 << 3 << "0:1 0:1 0:1 0:1" << -1 << QList<int>{3, 0, 1};
        QTest::newRow("only the forever index") << "0:1 (1:2 0:3" << 0 << 3 << "0:1 (1:2 0:3" << 0
                                                << QList<int>{3, 0, 0};
        QTest::newRow("forever start moves") << "0:1 (1:2 0:3" << 1 << 2 << "1:2 (0:3" << 2 << QList<int>{1, 2, 2};
        QTest::newRow("forever head removed") << "0:1 1:2 (0:3 1:1" << 0 << 2 << "" << 0 << QList<int>{0, 2, 0};
        QTest::newRow("forever tail added") << "0:1 1:2" << 2 << 0 << "(0:3 1:1" << 2 << QList<int>{2, 0, 2};
    }
    void undoRedo()
    {
        QFETCH(QString, wave);
        QFETCH(int, first);
        QFETCH(int, count);
        QFETCH(QString, replacement);
        QFETCH(int, forever);
        QFETCH(QList<int>, change);
        auto w = makeWave("w", wave, 10);
        const qint32 foreverBefore = w->foreverIndex;
        const QList<Pattern*> outside = w->patterns.mid(0, first) + w->patterns.mid(first + count);
        const SegmentRange before(*w, first, count);
        edit(*w, first, count, replacement, forever);
        const QString after = segments(w.get());

        const SegmentChange narrowed = narrowChange(before, *w);
        QCOMPARE((QList<int>{narrowed.before.first(), narrowed.before.count(), narrowed.after.count()}), change);
        QCOMPARE(narrowed.isEmpty(), change.at(1) + change.at(2) == 0 && forever == foreverBefore);
        QCOMPARE(narrowed.after.first(), change.at(0));
        // A whole copy of the wave narrows to the same range.
        auto copy = makeWave("w", wave, 10);
        const SegmentChange whole = narrowChange(*copy, *w);
        QCOMPARE((QList<int>{whole.before.first(), whole.before.count(), whole.after.count()}), change);

        for (int round = 0; round < 2; ++round) {
            QVERIFY(narrowed.undo(*w));
            QCOMPARE(segments(w.get()), wave);
            QCOMPARE(w->foreverIndex, foreverBefore);
            QVERIFY(w->indexConsistent());
            QVERIFY(narrowed.redo(*w));
            QCOMPARE(segments(w.get()), after);
            QCOMPARE(w->foreverIndex, forever);
            QVERIFY(w->indexConsistent());
        }
        // Segments outside the edit are the very same objects still.
        for (Pattern* p : outside)
            QVERIFY(w->patterns.contains(p));
        for (const Pattern* p : std::as_const(w->patterns))
            QCOMPARE(p->wave, w.get());
    }

    // What the wave loses goes back to the caller when asked for, and is
    // deleted otherwise; a range that is not in the wave changes nothing.
    void lostSegments()
    {
        auto w = makeWave("w", "0:1 1:2 0:3 1:4");
        const QList<Pattern*> was = w->patterns;
        const SegmentRange shorter(*makeWave("s", "1:9"), 0, 1);
        QList<Pattern*> lost;
        QVERIFY(shorter.applyTo(*w, 3, &lost));   // segments 0..2 become one
        QCOMPARE(segments(w.get()), QString("1:9 1:4"));
        QCOMPARE(lost, was.mid(1, 2));
        QCOMPARE(w->patterns, (QList<Pattern*>{was[0], was[3]}));
        qDeleteAll(lost);
        QVERIFY(shorter.applyTo(*w, 2));   // deleted: the leak checker watches
        QVERIFY(!shorter.applyTo(*w, 2));
        QVERIFY(!shorter.applyTo(*w, -1));
        QVERIFY(!SegmentRange(*makeWave("s", "0:1 1:1 0:1"), 2, 1).applyTo(*w, 0));
        QCOMPARE(segments(w.get()), QString("1:9"));
    }
};

QTEST_GUILESS_MAIN(TestSegmentRange)
#include "test_segmentrange.moc"
