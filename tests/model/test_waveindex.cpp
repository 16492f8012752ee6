// The start-time index behind a wave's time look-ups: the same answers as
// walking the list, on odd durations and after random edits, and cheap
// updates after an edit near the end.

#include "modeltestutil.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

using namespace kesu::toolvok;
using namespace modeltest;

namespace {

// The look-ups as plain walks over the list, summing durations from the
// offset with their sign, as the index must answer them.
int walkIndexAt(const WaveData& w, quint64 t)
{
    quint64 end = w.offset;
    for (int i = 0; i < w.patterns.size(); ++i) {
        const bool beforeStart = t < end;
        end += quint64(qint64(w.patterns.at(i)->duration));
        if (!beforeStart && t <= end)
            return i;
    }
    return -1;
}

int walkFirstEndingAfter(const WaveData& w, quint64 t)
{
    quint64 end = w.offset;
    for (int i = 0; i < w.patterns.size(); ++i) {
        end += quint64(qint64(w.patterns.at(i)->duration));
        if (end > t)
            return i;
    }
    return int(w.patterns.size());
}

QList<quint64> walkStarts(const WaveData& w)
{
    QList<quint64> starts{w.offset};
    for (const Pattern* p : w.patterns)
        starts.append(starts.last() + quint64(qint64(p->duration)));
    return starts;
}

// The ends of the time axis and boundaries with their neighbours: every
// boundary, or with a generator some random ones and random times.
QList<quint64> probeTimes(const WaveData& w, QRandomGenerator* random = nullptr)
{
    QList<quint64> times{0, 1, NoTime, NoTime - 1, w.offset - 1};
    const QList<quint64> starts = walkStarts(w);
    for (int k = 0; k < (random ? 12 : starts.size()); ++k) {
        const quint64 b = starts.at(random ? random->bounded(int(starts.size())) : k);
        times << b - 1 << b << b + 1;
    }
    for (int k = 0; random && k < 8; ++k)
        times << w.offset + random->bounded(quint64(2000)) - 100;
    return times;
}

// Empty when every look-up agrees with the walks, else the first difference.
QString disagreement(const WaveData& w, QRandomGenerator* random = nullptr)
{
    const QList<quint64> starts = walkStarts(w);
    for (int i = 0; i < starts.size(); ++i) {
        if (w.segmentStart(i) != starts.at(i))
            return QString("segmentStart(%1)").arg(i);
    }
    if (w.getEndTime() != starts.last())
        return "getEndTime";
    for (quint64 t : probeTimes(w, random)) {
        const int at = walkIndexAt(w, t);
        const int after = walkFirstEndingAfter(w, t);
        const quint64 next = after == w.patterns.size() ? NoTime : starts.at(after + 1);
        if (w.segmentIndexAt(t) != at || w.findPattern(t) != (at < 0 ? nullptr : w.patterns.at(at)))
            return QString("segmentIndexAt(%1)").arg(t);
        if (w.firstSegmentEndingAfter(t) != after || w.getNextChange(t) != next)
            return QString("getNextChange(%1)").arg(t);
    }
    for (const Pattern* p : w.patterns) {
        if (w.getPatternStart(p) != starts.at(w.patterns.indexOf(p)))
            return "getPatternStart";
    }
    return {};
}

const char* const Values[] = {"0", "1", "-1", "-2"};

Pattern* randomSegment(QRandomGenerator& random, int longest = 20)
{
    return new Pattern(Values[random.bounded(4)], qint32(random.bounded(longest + 1)));
}

} // namespace

class TestWaveIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookupsAsWalks_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<quint64>("offset");
        QTest::newRow("plain") << "0:10 1:20" << quint64(100);
        QTest::newRow("empty") << "" << quint64(42);
        QTest::newRow("zero durations") << "0:0 1:5 0:0 1:0 0:7 1:0" << quint64(3);
        QTest::newRow("negative duration") << "0:10 1:-4 0:20" << quint64(100);
        QTest::newRow("negative first") << "0:-5 1:10 0:3" << quint64(0);
        QTest::newRow("wraps past the end") << "0:10 1:10 0:10" << NoTime - 15;
        QTest::newRow("ends on the last time") << "0:10 1:5" << NoTime - 15;
        QTest::newRow("high offset") << "0:10 1:10" << (quint64(1) << 63);
        QTest::newRow("largest durations") << "1:2147483647 0:2147483647 1:2147483647" << quint64(7);
        QTest::newRow("smallest duration") << "1:5 0:-2147483648 1:5" << quint64(1);
    }
    void lookupsAsWalks()
    {
        QFETCH(QString, wave);
        QFETCH(quint64, offset);
        auto w = makeWave("w", wave, offset);
        QCOMPARE(disagreement(*w), QString());
        QVERIFY(w->indexConsistent());
        // A new offset moves every start without a report.
        w->offset += 1000;
        QCOMPARE(disagreement(*w), QString());
        QCOMPARE(w->segmentStart(-1), NoTime);
        QCOMPARE(w->segmentStart(int(w->patterns.size()) + 1), NoTime);
    }

    // Each member function that changes the list, in random order, with the
    // look-ups asked between some edits only, so that stale parts pile up.
    void randomEdits_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<bool>("bus");
        for (quint32 seed : {1u, 2u, 3u, 4u, 5u, 6u})
            QTest::addRow("seed %u%s", seed, seed % 2 ? "" : " bus") << seed << (seed % 2 == 0);
    }
    void randomEdits()
    {
        QFETCH(quint32, seed);
        QFETCH(bool, bus);
        QRandomGenerator random(seed);
        auto w = makeWave("w", "1:5 0:5", 10, bus);
        auto other = makeWave("o", "1:3 -2:4 0:2", 0, bus);
        QList<Pattern*> loose;
        for (int step = 0; step < 600; ++step) {
            const int count = int(w->patterns.size());
            Pattern* somewhere = count ? w->patterns.at(random.bounded(count)) : nullptr;
            switch (random.bounded(9)) {
            case 0:
            case 1: {
                Pattern* p = randomSegment(random);
                if (!w->addData(p))
                    delete p;
                break;
            }
            case 2:
                w->insertData(randomSegment(random), random.bounded(4) ? somewhere : nullptr);
                break;
            case 3:
                if (somewhere && count > 2) {
                    w->removeData(somewhere);
                    delete somewhere;
                }
                break;
            case 4:
                if (somewhere && count < 200)
                    w->insertPattern(somewhere, random.bounded(2) ? other.get() : w.get());
                break;
            case 5:
                // Now and then the whole wave becomes a copy of another one,
                // which grows in between.
                if (random.bounded(8) == 0) {
                    loose << (random.bounded(2) ? w->duplicateData(other.get()) : copyExactly(w.get(), other.get()));
                } else {
                    Pattern* p = randomSegment(random);
                    if (!other->addData(p))
                        delete p;
                }
                break;
            case 6:
                if (somewhere) {
                    // A direct write, reported as every caller outside must.
                    somewhere->duration = qint32(random.bounded(-3, 30));
                    w->segmentsChanged(int(w->patterns.indexOf(somewhere)));
                }
                break;
            case 7:
                if (somewhere && count > 2) {
                    const int at = int(w->patterns.indexOf(somewhere));
                    w->patterns.removeAt(at);
                    w->segmentsChanged(at);
                    delete somewhere;
                }
                break;
            case 8:
                w->offset = random.bounded(2) ? random.bounded(quint64(100)) : NoTime - random.bounded(quint64(500));
                break;
            }
            if (random.bounded(3) == 0) {
                QVERIFY2(w->indexConsistent(), qPrintable(QString("step %1").arg(step)));
                const QString differs = disagreement(*w, &random);
                QVERIFY2(differs.isEmpty(), qPrintable(QString("step %1: %2").arg(step).arg(differs)));
            }
        }
        qDeleteAll(loose);
    }

    void unreportedChangeIsCaught()
    {
        auto w = makeWave("w", "0:10 1:20 0:30", 0);
        QCOMPARE(w->findPattern(15), w->patterns.at(1));
        w->patterns.at(0)->duration = 20;
        QVERIFY(!w->indexConsistent());
        w->segmentsChanged(0);
        QVERIFY(w->indexConsistent());
        QCOMPARE(w->findPattern(15), w->patterns.at(0));
    }

    // An edit near the end of a long wave re-adds only the last durations;
    // one at the start re-adds all of them. Timed against each other, so that
    // the check holds on a slow or busy machine and under sanitizers.
    void editNearTheEndIsCheap()
    {
        const int segments = 200000;
        WaveData w("w");
        for (int i = 0; i < segments; ++i)
            w.addData(new Pattern(i % 2 ? "1" : "0", 1 + i % 7));
        quint64 sum = 0;
        auto editAndLookUp = [&w, &sum](int at, int rounds) {
            QElapsedTimer timer;
            timer.start();
            for (int r = 0; r < rounds; ++r) {
                w.patterns.at(at)->duration += r % 2 ? -1 : 1;
                w.segmentsChanged(at);
                sum += w.getNextChange(w.getEndTime() - 2);
            }
            return timer.nsecsElapsed();
        };
        const qint64 atStart = editAndLookUp(0, 200);
        const qint64 atEnd = editAndLookUp(segments - 3, 200);
        QVERIFY(sum > 0);
        QVERIFY2(atEnd * 20 < atStart, qPrintable(QString("end %1 ns, start %2 ns").arg(atEnd).arg(atStart)));
        QVERIFY(w.indexConsistent());
    }
};

QTEST_GUILESS_MAIN(TestWaveIndex)
#include "test_waveindex.moc"
