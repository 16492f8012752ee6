// WaveData's list surgery and WaveformData's document operations on hand-built waves.

#include "datatable.h"
#include "modeltestutil.h"
#include "segmentrange.h"
#include "timetext.h"

#include <QtTest>

#include <tuple>
#include <utility>

using namespace kesu::toolvok;
using namespace modeltest;

static QString state(const WaveData* w)
{
    return segments(w) + " forever " + QString::number(w->foreverIndex) + (w->indexConsistent() ? "" : " stale index");
}

class TestWaveData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // In front of the forever segment itself the tail still starts at it; forever marks are not copied.
    void insertions()
    {
        auto w = makeWave("w", "0:1 1:2 (0:3");
        Pattern* c = w->patterns.at(2);
        auto* x = new Pattern("1", 9);
        w->insertData(x, w->patterns.at(1));
        QCOMPARE(x->wave, w.get());
        w->insertData(new Pattern("-1", 5), c);
        Pattern stranger("0", 1);
        w->insertData(new Pattern("-2", 6), &stranger);
        w->insertData(new Pattern("1", 7), nullptr);
        QCOMPARE(state(w.get()), QString("0:1 1:9 1:2 -1:5 (0:3 -2:6 1:7 forever 4"));   // no merging

        w = makeWave("w", "0:7 1:8 (0:9");
        Pattern* p = w->patterns.at(1);
        w->insertPattern(p, makeWave("$p", "1:1 0:2 (-1:3").get());
        QCOMPARE(w->patterns.at(3), p);
        w->insertPattern(w->patterns.at(4), makeWave("$q", "1:4 0:5").get());
        w->insertPattern(p, makeWave("$e", "").get());
        w->insertPattern(w->patterns.at(0), makeWave("$o", "-2:4").get());
        QCOMPARE(state(w.get()), QString("-2:4 -1:3 0:2 1:1 0:5 (1:4 forever 5"));
        for (const Pattern* q : std::as_const(w->patterns))
            QCOMPARE(q->wave, w.get());

        // A segment outside the list takes the first source segment; the rest is appended at the end, still reversed.
        w = makeWave("v", "0:11 1:4");
        w->insertPattern(&stranger, makeWave("$r", "1:5 0:2 1:7").get());
        QCOMPARE(QString("%1:%2 | ").arg(QString::fromStdString(stranger.value)).arg(stranger.duration) + segments(w.get()),
                 QString("1:5 | 0:11 1:4 1:7 0:2"));
    }

    void removeData_data()
    {
        addColumns<int, int, int>({"forever", "removed", "expected"});
        QTest::newRow("no tail") << -1 << 1 << -1;
        QTest::newRow("before tail") << 2 << 1 << 1;
        QTest::newRow("tail start, not last") << 2 << 2 << 2;
        QTest::newRow("tail start, last") << 3 << 3 << -1;
        QTest::newRow("after tail") << 1 << 3 << 1;
    }
    void removeData()
    {
        QFETCH(int, removed);
        auto w = makeWave("w", "0:1 1:2 0:3 1:4");
        QFETCH(int, forever);
        w->foreverIndex = forever;
        std::unique_ptr<Pattern> p(w->patterns.at(removed));
        w->removeData(p.get());
        QTEST(w->foreverIndex, "expected");
        QVERIFY(!w->patterns.contains(p.get()));
        QCOMPARE(p->duration, removed + 1);   // handed back untouched
        Pattern stranger("0", 1);
        w->removeData(&stranger);
        QCOMPARE(w->patterns.size(), 3);
    }

    // Taking segments at once ends as removing them one by one, for every subset and tail of five segments.
    void takeSegmentsMatchesRemoveData()
    {
        for (int forever = -1; forever < 5; ++forever) {
            for (int subset = 1; subset < 32; ++subset) {
                auto one = makeWave("w", "0:1 1:2 0:3 1:4 0:5");
                auto all = makeWave("w", "0:1 1:2 0:3 1:4 0:5");
                one->foreverIndex = all->foreverIndex = forever;
                QList<Pattern*> which;
                for (int i = 0; i < 5; ++i) {
                    if (subset & (1 << i)) {
                        which.append(all->patterns.at(i));
                        std::unique_ptr<Pattern> gone(one->patterns.at(i - int(which.size()) + 1));
                        one->removeData(gone.get());
                    }
                }
                const auto [first, last] = all->spanOf(which);
                const QList<Pattern*> taken = all->takeSegments(which, first, last);
                QVERIFY2(taken == which && segments(all.get()) == segments(one.get())
                             && all->foreverIndex == one->foreverIndex && all->indexConsistent(),
                         qPrintable(QStringLiteral("forever %1, subset %2").arg(forever).arg(subset)));
                qDeleteAll(taken);
            }
        }
    }

    void duplicateData()
    {
        auto source = makeWave("src", "A:1 A:2 (-1:3", 77, true);
        std::tie(source->group, source->polarity, source->spareInt, source->waveType, source->busWidth,
                 source->formatValue, source->formatRatio) = std::make_tuple(5, 2, 9, 4, 8, quint64(123), qint16(-12));
        source->isPattern = source->selected = source->expandFlag = true;
        source->visible = false;
        source->elements = QStringList{"a", "b"};
        auto target = makeWave("dst", "0:9 1:9 0:9");
        Pattern* reused = target->patterns.at(0);
        target->duplicateData(source.get());
        // Everything but the name and the selection and expansion state.
        QCOMPARE((QList<QVariant>{target->name, target->group, target->polarity, target->spareInt, target->waveType,
                                  target->offset, target->formatValue, target->formatRatio, target->busWidth,
                                  target->foreverIndex, target->isBus, target->isPattern, target->visible,
                                  target->selected, target->expandFlag, target->elements, segments(target.get())}),
                 (QList<QVariant>{"dst", 5, 2, 9, 4, quint64(77), quint64(123), qint16(-12), 8, 2, true, true, false,
                                  false, false, QStringList{"a", "b"}, "A:1 A:2 (-1:3"}));
        QCOMPARE(target->patterns.at(0), reused);

        // New segments merge as appended; the tail index is the source's whatever merging and marks say.
        auto grow = makeWave("g", "0:5");
        auto marks = makeWave("m", "1:1 1:2 (0:3 (1:3");
        marks->foreverIndex = 2;
        grow->duplicateData(marks.get());
        QCOMPARE(state(grow.get()), QString("1:3 (0:3 (1:3 forever 2"));

        // Surplus segments leave the list and go back to the caller.
        auto shrink = makeWave("t", "0:1 1:2 (0:3");
        const QList<Pattern*> surplus = shrink->duplicateData(makeWave("s", "1:4").get());
        QCOMPARE(state(shrink.get()) + QString(", %1 back").arg(surplus.size()), QString("1:4 forever -1, 2 back"));
        qDeleteAll(surplus);
    }

    void document()
    {
        WaveformData doc;
        auto *a = new WaveData("clk"), *b = new WaveData("clk"), *c = new WaveData("data"), *d = new WaveData("en");
        for (WaveData* w : {a, b, c, d})
            doc.addWave(w);
        QCOMPARE(doc.findWavebyName("clk"), a);
        QCOMPARE(doc.findWavebyName("CLK"), nullptr);
        QCOMPARE(doc.removeWave(c), 2);
        QCOMPARE(doc.waves, QList<WaveData*>({a, b, d}));
        WaveData outsider("x");
        QCOMPARE(doc.removeWave(&outsider), -1);

        doc.loadText("%ENDTIME = 5000;\n%DECIMALS = 2;\n");
        doc.ClearAll();
        QVERIFY(doc.waves.isEmpty());
        QCOMPARE(doc.endTime, quint64(5000));
        QCOMPARE(doc.decimals, 2);
        // The end of the latest wave, a negative last duration included.
        QCOMPARE(TimeText::maxEnd(doc), quint64(0));
        doc.addWave(makeWave("a", "0:10 1:20", 100).release());
        doc.addWave(makeWave("b", "", 700).release());
        doc.addWave(makeWave("c", "1:40").release());
        QCOMPARE(TimeText::maxEnd(doc), quint64(700));
        doc.addWave(makeWave("d", "1:400 0:-50", 400).release());
        QCOMPARE(TimeText::maxEnd(doc), quint64(750));

        WaveData names("d");
        names.elements << "pre";
        WaveformData::genExpandWave(&names, "d", 2, 0);
        WaveformData::genExpandWave(&names, "q", -1, 1);
        QCOMPARE(names.elements, QStringList({"pre", "d[2]", "d[1]", "d[0]", "q[-1]", "q[0]", "q[1]"}));
    }

    void checkBusElements_data()
    {
        // elements empty: a single wave; message empty: accepted
        addColumns<QString, QStringList, QString>({"name", "elements", "message"});
        const QString conflict = "The wave you are adding conflicts to an existing wave. ";
        const QString ofBus = conflict + "It is element of the exsited bus wave.";
        const QString added = conflict + "Some elements of the bus wave have been added.";
        QTest::newRow("element of bus") << "d[2]" << QStringList() << ofBus;
        QTest::newRow("case differs") << "D[2]" << QStringList() << QString();
        QTest::newRow("same name as a single") << "x" << QStringList() << QString();
        QTest::newRow("bus holds a single") << "n[1:0]" << QStringList{"z", "x"} << added;
        QTest::newRow("bus shares a listed element") << "m[q]" << QStringList{"q"} << added;
        QTest::newRow("bus shares a range element") << "n[1:0]" << QStringList{"d[1]", "d[0]"} << added;
        QTest::newRow("disjoint bus of same name") << "d[3:0]" << QStringList{"k[1]", "k[0]"} << QString();
    }
    void checkBusElements()
    {
        QFETCH(QString, name); QFETCH(QStringList, elements); QFETCH(QString, message);
        auto doc = load("d[3:0]" + Attr + "0 1;\nx" + Attr + "0 1;\ne[p,q]" + Attr + "0 1;\n");
        WaveData candidate(name);
        candidate.isBus = !elements.isEmpty();
        candidate.elements = elements;
        QString got;
        QCOMPARE(doc->checkBusElements(&candidate, got), message.isEmpty());
        QCOMPARE(got, message);
    }

    void undoRedo_data()
    {
        // first, count: the range the edit was told to touch; forever: foreverIndex after the edit; change: narrowed to
        // first, before count, after count
        addColumns<QString, int, int, QString, int, QList<int>>({"wave", "first", "count", "replacement", "forever", "change"});
        QTest::newRow("start") << "0:1 1:2 0:3 1:4" << 0 << 2 << "1:9" << -1 << QList<int>{0, 2, 1};
        QTest::newRow("middle") << "0:1 1:2 0:3 1:4" << 1 << 2 << "1:2 1:5 0:3" << -1 << QList<int>{2, 0, 1};
        QTest::newRow("end") << "0:1 1:2 0:3 1:4" << 3 << 1 << "1:4 0:8" << -1 << QList<int>{4, 0, 1};
        QTest::newRow("emptied") << "0:1 1:2" << 0 << 2 << "" << -1 << QList<int>{0, 2, 0};
        QTest::newRow("filled") << "" << 0 << 0 << "1:4 0:4" << -1 << QList<int>{0, 0, 2};
        QTest::newRow("told more than changed") << "0:1 1:2 0:3 1:4" << 0 << 4 << "0:1 1:7 0:3 1:4" << -1 << QList<int>{1, 1, 1};
        QTest::newRow("nothing changed") << "0:1 1:2 0:3" << 0 << 3 << "0:1 1:2 0:3" << -1 << QList<int>{3, 0, 0};
        QTest::newRow("equal runs") << "0:1 0:1 0:1" << 0 << 3 << "0:1 0:1 0:1 0:1" << -1 << QList<int>{3, 0, 1};
        QTest::newRow("only the forever index") << "0:1 (1:2 0:3" << 0 << 3 << "0:1 (1:2 0:3" << 0 << QList<int>{3, 0, 0};
        QTest::newRow("forever start moves") << "0:1 (1:2 0:3" << 1 << 2 << "1:2 (0:3" << 2 << QList<int>{1, 2, 2};
        QTest::newRow("forever head removed") << "0:1 1:2 (0:3 1:1" << 0 << 2 << "" << 0 << QList<int>{0, 2, 0};
        QTest::newRow("forever tail added") << "0:1 1:2" << 2 << 0 << "(0:3 1:1" << 2 << QList<int>{2, 0, 2};
    }
    void undoRedo()
    {
        QFETCH(QString, wave); QFETCH(int, first); QFETCH(int, count); QFETCH(QString, replacement);
        QFETCH(int, forever); QFETCH(QList<int>, change);
        auto w = makeWave("w", wave, 10);
        const qint32 foreverBefore = w->foreverIndex;
        const QList<Pattern*> outside = w->patterns.mid(0, first) + w->patterns.mid(first + count);
        const SegmentRange before(*w, first, count);
        // Segments [first, first + count) replaced as an edit would.
        qDeleteAll(w->patterns.mid(first, count));
        w->patterns.remove(first, count);
        int at = first;
        for (Pattern* p : std::exchange(makeWave("s", replacement)->patterns, {})) {
            w->patterns.insert(at++, p);
            p->wave = w.get();
        }
        w->segmentsChanged(0);
        w->foreverIndex = forever;
        const QString original = wave + " forever " + QString::number(foreverBefore);
        const QString edited = segments(w.get()) + " forever " + QString::number(forever);

        auto range = [](const SegmentChange& c) { return QList<int>{c.before.first(), c.before.count(), c.after.count()}; };
        const SegmentChange narrowed = narrowChange(before, *w);
        QCOMPARE(range(narrowed), change);
        // A whole copy of the wave narrows to the same range.
        QCOMPARE(range(narrowChange(*makeWave("w", wave, 10), *w)), change);
        QCOMPARE(narrowed.isEmpty(), change.at(1) + change.at(2) == 0 && forever == foreverBefore);
        QCOMPARE(narrowed.after.first(), change.at(0));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(narrowed.undo(*w));
            QCOMPARE(state(w.get()), original);
            QVERIFY(narrowed.redo(*w));
            QCOMPARE(state(w.get()), edited);
        }
        // Segments outside the edit are the very same objects still.
        for (Pattern* p : outside)
            QVERIFY(w->patterns.contains(p));
        for (const Pattern* p : std::as_const(w->patterns))
            QCOMPARE(p->wave, w.get());
    }

    // Lost segments go to the caller when asked, are deleted otherwise; a range not in the wave changes nothing.
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

QTEST_GUILESS_MAIN(TestWaveData)
#include "test_wavedata.moc"
