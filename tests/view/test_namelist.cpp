// The name list under the mouse: titles, bus expansion, the active wave, row drags with undo.
#include "guifixture.h"

#include <QDrag>
#include <QMimeData>
#include <QScrollBar>
#include <QTimer>

using namespace guitest;

namespace {
const QByteArray Document = wdl({"a { A I Default NRZ 0 1 50 } = 0 100 1 100 0 800;",
                                 "b { A O Default NRZ 0 1 50 } = 1 1000;",
                                 "bus[2:0] { A I Default NRZ 0 1 50 } = 0 500 7 500;",
                                 "c { A B Default NRZ 0 1 50 } = 0 1000;"});
} // namespace

class TestNameList : public QObject
{
    Q_OBJECT

    std::unique_ptr<Window> w_;
    QMimeData mime_;

    QStringList titles() const
    {
        QStringList t;
        for (int row = 0; row < w_->list()->itemModel()->rowCount(); ++row)
            t.append(w_->list()->itemModel()->item(row)->text());
        return t;
    }
    static QPoint at(int row) { return QPoint(40, rowY(row)); }
    // Offscreen no drag ends on its own: a watchdog cancels it.
    void press(int row, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        QTimer::singleShot(2000, [] { QDrag::cancel(); });
        QTest::mousePress(w_->list()->viewport(), Qt::LeftButton, mods, at(row));
        QTest::mouseRelease(w_->list()->viewport(), Qt::LeftButton, mods, at(row));
    }
    template <typename Event>
    bool sendDrag(int row)
    {
        Event event(at(row), Qt::MoveAction, &mime_, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(w_->list()->viewport(), &event);
        return event.isAccepted();
    }

private Q_SLOTS:
    void init() { w_ = std::make_unique<Window>(Document, QSize(1000, 600)); }
    void cleanup() { w_.reset(); }

    void busTitlesExpansionAndBars()
    {
        WaveData* bus = w_->wave("bus[2:0]");
        bus->name = "D";
        w_->list()->updateWaveTitle(bus);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) D I", "c B"}));
        w_->doubleClickRow(2);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(-) D I", "bus[2]", "bus[1]", "bus[0]", "c B"}));
        QCOMPARE(w_->listRows(), (QStringList{"a", "b", "D", "bus[2]", "bus[1]", "bus[0]", "c"}));
        w_->doubleClickRow(2);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) D I", "c B"}));
        // One row per element, however many there are.
        bus->elements << "x" << "y";
        w_->doubleClickRow(2);
        QCOMPARE(w_->listRows(), (QStringList{"a", "b", "D", "bus[2]", "bus[1]", "bus[0]", "x", "y", "c"}));
        w_->doubleClickRow(2);
        QCOMPARE(w_->listRows(), (QStringList{"a", "b", "D", "c"}));
        // Double clicks elsewhere expand nothing.
        w_->doubleClickRow(0);
        w_->doubleClickRow(3);
        QCOMPARE(titles().size(), 4);
        // Expanded without a Refresh, the layout alone brings the tool's bar along.
        for (int i = 0; i < 40; ++i)
            bus->elements.append(QStringLiteral("e%1").arg(i));
        QCOMPARE(w_->gui->waveVBar()->maximum(), 0);
        bus->expandFlag = true;
        w_->list()->expandBus(w_->list()->itemModel()->index(2, 0));
        QTRY_VERIFY(w_->list()->verticalScrollBar()->maximum() > 0);
        QCOMPARE(w_->gui->waveVBar()->maximum(), w_->list()->verticalScrollBar()->maximum());
        QCOMPARE(w_->gui->waveVBar()->pageStep(), w_->list()->verticalScrollBar()->pageStep());
    }

    void pickingARowMakesItsWaveActiveOrStartsAMove()
    {
        // With a modifier or read-only, a press starts no move.
        press(1, Qt::ControlModifier);
        QVERIFY(!w_->list()->moving);
        w_->gui->changeReadonlyMode(true);
        press(2);
        QCOMPARE(w_->gui->activeWave(), w_->wave("bus[2:0]"));
        QVERIFY(!w_->list()->moving);
        w_->gui->changeReadonlyMode(false);
        press(2);
        QVERIFY(w_->list()->moving);
        QVERIFY(sendDrag<QDragEnterEvent>(2) && sendDrag<QDropEvent>(2));
        QVERIFY(!w_->list()->moving);
        WaveData *a = w_->wave("a"), *b = w_->wave("b");
        press(0);
        QCOMPARE(w_->gui->activeWave(), a);
        w_->gui->selection().append(a->patterns.first());
        press(1);
        QCOMPARE(w_->gui->activeWave(), b);
        QVERIFY(b->selected && !a->selected && w_->gui->selection().isEmpty());
        // An element row and the space below the rows have no wave.
        w_->doubleClickRow(2);
        press(4);
        QCOMPARE(w_->list()->currentIndex().row(), 4);
        QCOMPARE(w_->gui->activeWave(), nullptr);
        press(20);
        QVERIFY(!w_->list()->currentIndex().isValid());
        QCOMPARE(w_->steps(), 0);
    }

    void dragMovesOneStepPerRow_data()
    {
        // expand: a bus row double-clicked first, or -1
        addColumns<int, int, QList<int>, QList<bool>, QStringList>({"expand", "from", "over", "accepted", "order"});
        const QList<bool> all{true, true, true, true}, refused{true, false, false, true};
        const QStringList unmoved{"a", "b", "bus[2:0]", "c"};
        QTest::newRow("down") << -1 << 0 << QList<int>{1, 3} << all << QStringList{"b", "bus[2:0]", "c", "a"};
        QTest::newRow("a bus up") << -1 << 2 << QList<int>{0, 0} << all << QStringList{"bus[2:0]", "a", "b", "c"};
        // Element rows, the space below and expanded buses are no targets; an expanded bus stays put.
        QTest::newRow("onto an element") << 2 << 0 << QList<int>{4, 9} << refused << unmoved;
        QTest::newRow("onto an expanded bus") << 2 << 0 << QList<int>{2, 1} << QList<bool>{true, false, true, true}
                                              << QStringList{"b", "a", "bus[2:0]", "c"};
        QTest::newRow("an expanded bus") << 2 << 2 << QList<int>{6, 0} << refused << unmoved;
    }
    void dragMovesOneStepPerRow()
    {
        QFETCH(int, expand); QFETCH(int, from); QFETCH(QList<int>, over); QFETCH(QStringList, order);
        if (expand >= 0)
            w_->doubleClickRow(expand);
        WaveData* dragged = w_->list()->waveAt(from);
        // The row's wave dragged over the rows in turn, as the mouse crosses them.
        press(from);
        QList<bool> accepted{sendDrag<QDragEnterEvent>(from)};
        for (int row : over)
            accepted << sendDrag<QDragMoveEvent>(row);
        QTEST(accepted << sendDrag<QDropEvent>(over.last()), "accepted");
        QCOMPARE(w_->docOrder(), order);
        QCOMPARE(w_->listRows(), w_->drawnRows());
        if (order != QStringList{"a", "b", "bus[2:0]", "c"}) {
            QCOMPARE(w_->gui->activeWave(), dragged);
            QCOMPARE(w_->list()->waveAt(w_->list()->currentIndex().row()), dragged);
        }
        // One step per row crossed, each undone on its own.
        while (w_->gui->undoStack()->canUndo()) {
            w_->gui->undo();
            QCOMPARE(w_->listRows(), w_->drawnRows());
        }
        QCOMPARE(w_->docOrder(), (QStringList{"a", "b", "bus[2:0]", "c"}));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestNameList)

#include "test_namelist.moc"
