// The mouse on the wave view: ranges, edge drags, cursor and modes, as text and undo stack see them.
#include "guifixture.h"

using namespace guitest;

namespace {
// [0,2) 0, [2,5) 1, [5,9) 0, [9,10) 1
const QByteArray LineA = "a { A I Default NRZ 0 1 50 } = 0 2 1 3 0 4 1 1;";
const QByteArray LineB = "b { A I Default NRZ 0 1 50 } = 1 6 0 6;";
} // namespace

class TestWaveInteraction : public QObject
{
    Q_OBJECT

    std::unique_ptr<Window> w_;

    Window& open(const QList<QByteArray>& lines, bool edit = true)
    {
        w_ = std::make_unique<Window>(wdl(lines));
        w_->editMode(edit);
        return *w_;
    }

private Q_SLOTS:
    void cleanup() { w_.reset(); }

    // A drag picks each segment it touches, snapping to their middles; a tail once, never across repeats.
    void rangeSelectionSnapsToSegmentEdges_data()
    {
        // picked empty: nothing selected
        addColumns<int, double, double, QList<int>, double, double>({"row", "from", "to", "picked", "start", "end"});
        QTest::newRow("drag") << 0 << 3.3 << 6.5 << QList<int>{1, 2} << 2.5 << 8.5;
        QTest::newRow("leftwards, other wave") << 1 << 7.5 << 0.5 << QList<int>{0, 1} << 0.5 << 11.5;
        QTest::newRow("covering") << 0 << 0.5 << 9.5 << QList<int>{0, 1, 2, 3} << 0.5 << 9.5;
        QTest::newRow("click") << 0 << 3.5 << 3.5 << QList<int>{1} << 2.5 << 4.5;
        QTest::newRow("click on an edge") << 0 << 5.0 << 5.0 << QList<int>{1, 2} << 2.5 << 8.5;
        // clk: 4 units, then a tail of 6 repeated.
        QTest::newRow("tail") << 2 << 5.0 << 9.0 << QList<int>{1, 2} << 4.5 << 9.5;
        QTest::newRow("head and tail") << 2 << 1.0 << 9.0 << QList<int>{0, 1, 2} << 0.5 << 9.5;
        QTest::newRow("a later repetition") << 2 << 17.5 << 20.0 << QList<int>{1, 2} << 16.5 << 21.5;
        QTest::newRow("across repetitions") << 2 << 5.0 << 11.0 << QList<int>{} << 0.0 << 0.0;
    }
    void rangeSelectionSnapsToSegmentEdges()
    {
        QFETCH(int, row); QFETCH(double, from); QFETCH(double, to); QFETCH(QList<int>, picked);
        Window& w = open({LineA, LineB, "clk { A I Default NRZ 0 1 50 } = 0 4(1 3 0 3)##;"});
        w.drag(timeX(from), timeX(to), rowY(row));
        WaveData* wave = w->document()->waves.at(row);
        QCOMPARE(w->activeWave(), wave);
        QCOMPARE(std::pair(w->selection(), wave->selected), std::pair(w.segments(wave->name, picked), !picked.isEmpty()));
        for (WaveData* other : w->document()->waves)
            QVERIFY(other == wave || !other->selected);
        if (!picked.isEmpty()) {
            QTEST(w->getRangeStart() + 0.5, "start");
            QTEST(w->getRangeEnd() + 0.5, "end");
        }
        QCOMPARE(w.view()->cursorTime(), quint64(to));
        QCOMPARE(w.steps(), 0);
    }

    void clickPastTheEndAndSelectedWaves()
    {
        Window& w = open({LineA, LineB, "c { A I Default NRZ 0 1 50 } = 0 3;", "d { A I Default NRZ 0 1 50 } = 1 3;"});
        // A click past the end extends the wave; in query mode the same click only moves the cursor: otherModes.
        w.click(timeX(14), rowY(0));
        QCOMPARE(std::pair(w.line("a"), w.steps()), std::pair(QByteArray(LineA).replace(";", " 0 4;"), 1));
        QCOMPARE(w->selection(), QList<Pattern*>{w.wave("a")->patterns.last()});
        // At most one wave stays selected, the first.
        const QList<WaveData*> waves = w->document()->waves;
        for (bool edit : {false, true}) {
            w.editMode(edit);
            w.press(40, rowY(3));
            // Whatever else marked waves while the button was down...
            waves.at(1)->selected = waves.at(2)->selected = waves.at(3)->selected = true;
            w.release(40, rowY(3));
            QCOMPARE((QList<bool>{waves[0]->selected, waves[1]->selected, waves[2]->selected, waves[3]->selected}),
                     (QList<bool>{false, true, false, false}));
        }
    }

    void edgeDragIsOneUndoStep_data()
    {
        addColumns<QByteArray, int, int, bool, QList<int>, QByteArray>(
            {"text", "clickX", "pressX", "shift", "moves", "dragged"});
        const QByteArray s = "s { A I Default NRZ 0 1 50 } = ", bus = "s[3:0] { A I Default NRZ 0 1 50 } = ";
        auto add = [](const char* name, const QByteArray& text, int clickX, int pressX, bool shift,
                      const QList<int>& moves, const QByteArray& dragged) {
            QTest::newRow(name) << text << clickX << pressX << shift << moves << dragged;
        };
        // Pressed below the last wave, in the right or the left half of [2,5).
        add("right edge", LineA, 70, 90, false, {110, 130}, "0 2 1 5 0 2 1 1");
        add("left edge", LineA, 130, 120, false, {100, 80}, "0 2 1 1 0 6 1 1");
        // Shift stretches the one pattern: everything after it moves on.
        add("stretch", LineA, 70, 90, true, {110}, "0 2 1 4 0 4 1 1");
        add("less than a step", LineA, 70, 90, false, {95}, "0 2 1 3 0 4 1 1");
        // Below 1 the edge never goes; it then waits until the mouse comes back.
        add("clamped", LineA, 70, 90, false, {1000, -2000, -1900, 70}, "0 2 1 2 0 5 1 1");
        // The first pattern's left edge makes one of the other value in front, moved or not.
        add("in front of low", s + "0 2 1 3;", 30, 20, false, {-400, 40}, "1 2 0 1 1 3");
        add("in front of high", s + "1 2 0 3;", 30, 20, false, {-400, 40}, "0 2 1 1 0 3");
        add("in front of bus zero", bus + "0 2 5 3;", 30, 20, false, {-400, 40}, "F 2 0 1 5 3");
        add("made, not moved", s + "0 2 1 3;", 30, 20, false, {20}, "1 1 0 2 1 3");
    }
    void edgeDragIsOneUndoStep()
    {
        QFETCH(QByteArray, text); QFETCH(int, clickX); QFETCH(int, pressX); QFETCH(bool, shift);
        QFETCH(QList<int>, moves); QFETCH(QByteArray, dragged);
        Window& w = open({text, LineB});
        const QByteArray before = w.saved();
        const QByteArray expected = text.left(text.indexOf(" = ") + 3) + dragged + ";";
        w.click(clickX, rowY(0));
        w.press(pressX, rowY(3), shift ? Qt::ShiftModifier : Qt::NoModifier);
        QVERIFY(w.view()->isDraggingEdge());
        for (int x : moves)
            w.move(x, rowY(3));
        w.release(moves.last(), rowY(3));
        QVERIFY(!w.view()->isDraggingEdge());
        QCOMPARE(std::tuple(w.saved().split('\n').at(5), w.line("b"), w.steps()),
                 std::tuple(expected, LineB, expected == text ? 0 : 1));
        w->undo();
        QCOMPARE(w.saved(), before);
    }

    void edgeDragOnTheBitRowsOfABus()
    {
        // An expanded bus: the bus row, then one row per bit, then the wave b.
        Window& w = open({"v[1:0] { A I Default NRZ 0 1 50 } = 0 2 3 3 1 2;", LineB});
        w.doubleClickRow(0);
        QVERIFY(w.wave("v[1:0]")->expandFlag);
        w.click(70, rowY(0));
        QCOMPARE(w->selection(), w.segments("v[1:0]", {1}));
        // A bit row is no wave's first row: the press drags the edge.
        w.press(90, rowY(2));
        QVERIFY(w.view()->isDraggingEdge());
        w.move(50, rowY(2));
        w.release(50, rowY(2));
        QCOMPARE(w.line("v[1:0]"), QByteArray("v[1:0] { A I Default NRZ 0 1 50 } = 0 2 3 1 1 4;"));
        // b's row comes after the two bit rows.
        w.click(30, rowY(3));
        QCOMPARE(w->activeWave(), w.wave("b"));
        QCOMPARE(w->selection(), w.segments("b", {0}));
    }

    void dragsEndBeforeAnythingElseEdits()
    {
        Window& w = open({LineA});
        // [2,5) picked, its right edge pressed below the wave and dragged to x.
        auto dragEdge = [&w](int x) { w.click(70, rowY(0)), w.press(90, rowY(3)), w.move(x, rowY(3)); };
        const QByteArray once("a { A I Default NRZ 0 1 50 } = 0 2 1 4 0 3 1 1;");
        // A swallowed release: the next buttonless move ends the drag as one step.
        dragEdge(110);
        w.held = {};
        w.move(150, rowY(3));
        QCOMPARE(std::pair(w.line("a"), w.steps()), std::pair(once, 1));
        // Undo with the button down: the drag becomes its own step first.
        dragEdge(130);
        w->undo();
        QVERIFY(!w.view()->isDraggingEdge());
        QCOMPARE(std::pair(w.line("a"), w.steps()), std::pair(once, 2));
        // A new document mid-drag forgets the drag: nothing reaches its stack.
        dragEdge(110);
        QVERIFY(w.view()->dragOrigin());
        w->CloseFile();
        QVERIFY(!w.view()->dragOrigin());
        w.release(110, rowY(3));
        QCOMPARE(std::pair(w.steps(), w->isModified()), std::pair(0, false));
    }

    void otherModes()
    {
        Window& w = open({LineA, LineB}, false);
        RulerView* ruler = w->rulerView();
        setView(*w.gui, 100, 10);
        // Query mode, past the waves' ends: the press marks the ruler, the release sets the cursor; nothing changes.
        w.press(65, rowY(0));
        QCOMPARE(std::tuple(ruler->rangeActive, ruler->rangeStart, w.view()->cursorTime()),
                 std::tuple(true, quint64(130), quint64(132)));
        w.move(125, rowY(0));
        QCOMPARE(ruler->rangeEnd, quint64(130));   // outside a zoom it stays
        w.release(125, rowY(0));
        QCOMPARE(std::pair(ruler->rangeActive, w.view()->cursorTime()), std::pair(false, quint64(160)));
        w.drag(40, -30, rowY(0));
        QVERIFY(w->selection().isEmpty());
        QCOMPARE(std::tuple(w.view()->cursorTime(), w.line("a"), w.steps()), std::tuple(quint64(0), LineA, 0));
        // Mode 1 ignores presses.
        w->setMode(VokGUI::ModeIgnore);
        w.press(150, rowY(0));
        QCOMPARE(std::pair(ruler->rangeActive, w.view()->cursorTime()), std::pair(false, quint64(0)));
        // A right release leaves the zoom-area mode for the checked mode.
        for (bool edit : {true, false}) {
            w.editMode(edit);
            w->viewZoomto();
            w.click(40, rowY(0));
            QCOMPARE(w->mode(), int(VokGUI::ModeZoomArea));
            w.send(QEvent::MouseButtonPress, 60, rowY(0), Qt::RightButton);
            w.send(QEvent::MouseButtonRelease, 60, rowY(0), Qt::RightButton);
            QCOMPARE(w->mode(), edit ? int(VokGUI::ModeEdit) : int(VokGUI::ModeQuery));
            QCOMPARE(w.view()->cursor().shape(), edit ? Qt::IBeamCursor : Qt::ArrowCursor);
        }
    }
};

VOK_SANDBOXED_TEST_MAIN(TestWaveInteraction)
#include "test_waveinteraction.moc"
