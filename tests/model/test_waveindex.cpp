// The start-time index behind time look-ups (segment starts, the last value): walk answers, kept right by every edit, cheap near the end.

#include "datatable.h"
#include "modeltestutil.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

using namespace kesu::toolvok;
using namespace modeltest;

class TestWaveIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookupsAsWalks_data()
    {
        addColumns<QString, quint64>({"wave", "offset"});
        QTest::newRow("plain") << "0:10 1:20" << quint64(100);
        QTest::newRow("empty") << "" << quint64(42);
        QTest::newRow("zero durations") << "0:0 1:5 0:0 1:0 0:7 1:0" << quint64(3);
        QTest::newRow("negative durations") << "0:-5 1:10 0:3 1:-4 0:20" << quint64(0);
        QTest::newRow("wraps past the end") << "0:10 1:10 0:10" << NoTime - 15;
        QTest::newRow("ends on the last time") << "0:10 1:5" << NoTime - 15;
        QTest::newRow("extreme durations") << "1:2147483647 0:2147483647 0:-2147483648 1:5" << quint64(7);
    }
    void lookupsAsWalks()
    {
        QFETCH(QString, wave); QFETCH(quint64, offset);
        auto w = makeWave("w", wave, offset);
        for (quint64 shift : {0, 1000}) {   // a new offset needs no report
            w->offset = offset + shift;
            // The walks: a boundary belongs to the segment that ends there.
            QList<quint64> ends{w->offset};
            for (const Pattern* p : std::as_const(w->patterns))
                ends << ends.last() + quint64(qint64(p->duration));
            QList<quint64> times{0, NoTime, w->offset - 1};
            for (quint64 b : ends)
                times << b - 1 << b << b + 1;
            for (quint64 t : times) {
                int at = -1, after = int(w->patterns.size());
                for (int i = int(w->patterns.size()) - 1; i >= 0; --i) {
                    if (!(t < ends[i]) && t <= ends[i + 1])
                        at = i;
                    if (ends[i + 1] > t)
                        after = i;
                }
                QCOMPARE(w->segmentIndexAt(t), at);
                QCOMPARE(w->findPattern(t), at < 0 ? nullptr : w->patterns.at(at));
                QCOMPARE(w->firstSegmentEndingAfter(t), after);
                QCOMPARE(w->getNextChange(t), after < w->patterns.size() ? ends[after + 1] : NoTime);
            }
            for (int i = 0; i < ends.size(); ++i) {
                QCOMPARE(w->segmentStart(i), ends[i]);
                QCOMPARE(w->getPatternStart(w->patterns.value(i)), i < w->patterns.size() ? ends[i] : NoTime);
            }
            // The last value, or "-1" (don't care) for no segment at all.
            QCOMPARE(w->getLastValue(), w->patterns.isEmpty() ? std::string("-1") : w->patterns.last()->value);
            QCOMPARE(w->getEndTime(), ends.last());
            QCOMPARE(w->segmentStart(int(ends.size())), NoTime);
        }
    }

    // Every list-changing member in random order, looked up only now and then so that stale parts pile up.
    void randomEdits_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed : {1u, 2u, 3u, 4u, 5u, 6u})
            QTest::addRow("seed %u", seed) << seed;
    }
    void randomEdits()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        auto w = makeWave("w", "1:5 0:5", 10, seed % 2 == 0);
        auto other = makeWave("o", "1:3 -2:4 0:2", 0, seed % 2 == 0);
        const char* const values[] = {"0", "1", "-1", "-2"};
        auto segment = [&] { return new Pattern(values[random.bounded(4)], random.bounded(-1, 20)); };
        QList<Pattern*> loose;
        for (int step = 0; step < 600; ++step) {
            const int count = int(w->patterns.size());
            const int at = random.bounded(qMax(count, 1));
            Pattern* p = count ? w->patterns.at(at) : nullptr;
            switch (random.bounded(7)) {
            case 0:
                loose << segment();
                if ((random.bounded(3) ? w : other)->addData(loose.last()))
                    loose.removeLast();
                break;
            case 1:
                w->insertData(segment(), random.bounded(4) ? p : nullptr);
                break;
            case 2:
                if (count > 2)
                    w->removeData(loose.emplace_back(p));
                break;
            case 3:
                if (p && count < 200)
                    w->insertPattern(p, random.bounded(2) ? other.get() : w.get());
                break;
            case 4:
                if (random.bounded(8) == 0)
                    loose << (random.bounded(2) ? w->duplicateData(other.get()) : copyExactly(w.get(), other.get()));
                break;
            case 5:   // a direct write, reported as every caller outside must
                if (p) {
                    p->duration = random.bounded(-3, 30);
                    w->segmentsChanged(at);
                }
                break;
            default:
                w->offset = random.bounded(2) ? random.bounded(100) : NoTime - random.bounded(500);
            }
            // Brings the index up to date as any look-up would.
            if (random.bounded(3) == 0)
                QVERIFY2(w->indexConsistent(), qPrintable(QString("step %1").arg(step)));
        }
        qDeleteAll(loose);
        // An unreported change is what the check is for.
        w->patterns.first()->duration += 1;
        QVERIFY(!w->indexConsistent());
    }

    // An edit near the end recounts only the last durations: timed against one at the start (busy machines).
    void editNearTheEndIsCheap()
    {
        const int segments = 200000;
        WaveData w("w");
        for (int i = 0; i < segments; ++i)
            w.addData(new Pattern(i % 2 ? "1" : "0", 1 + i % 7));
        quint64 sum = 0;
        auto editAt = [&w, &sum](int at) {
            QElapsedTimer timer;
            timer.start();
            for (int round = 0; round < 200; ++round) {
                w.patterns.at(at)->duration += round % 2 ? -1 : 1;
                w.segmentsChanged(at);
                sum += w.getNextChange(w.getEndTime() - 2);
            }
            return timer.nsecsElapsed();
        };
        const qint64 atStart = editAt(0);
        const qint64 atEnd = editAt(segments - 3);
        QVERIFY(sum > 0 && w.indexConsistent());
        QVERIFY2(atEnd * 20 < atStart, qPrintable(QString("end %1 ns, start %2 ns").arg(atEnd).arg(atStart)));
    }
};

QTEST_GUILESS_MAIN(TestWaveIndex)
#include "test_waveindex.moc"
