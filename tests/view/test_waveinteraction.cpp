#include "rulerview.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <memory>

using namespace kesu::toolvok;

namespace {
const QByteArray Header = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 0;\n"
                          "%DECIMALS = 0;\n%ENDTIME = 400;\n";

// [0,2) 0, [2,5) 1, [5,9) 0, [9,10) 1
const QByteArray LineA = "a { A I Default NRZ 0 1 50 } = 0 2 1 3 0 4 1 1;";
const QByteArray LineB = "b { A I Default NRZ 0 1 50 } = 1 6 0 6;";

// The y of the middle of a row.
constexpr int row(int r)
{
    return r * WaveView::RowHeight + WaveView::RowHeight / 2;
}

} // namespace

class TestWaveInteraction : public QObject
{
    Q_OBJECT

    QTemporaryDir dir_;
    std::unique_ptr<VokGUI> gui_;
    WaveView* view_ = nullptr;
    RulerView* ruler_ = nullptr;
    Qt::MouseButtons held_;

    // Opens the waves (one file line each) as the user opens a file, shows the
    // window and puts the time scale at start 0, one unit per 20 pixels.
    void open(const QList<QByteArray>& lines, bool editMode = true)
    {
        gui_.reset();
        held_ = {};
        const QString path = dir_.filePath(QStringLiteral("doc.wdl"));
        QVERIFY(toolfixture::writeFile(path, Header + lines.join('\n') + '\n'));
        gui_ = toolfixture::openShown(path, QSize(1400, 700));
        QVERIFY(gui_);
        view_ = gui_->waveView();
        ruler_ = gui_->rulerView();
        gui_->setStartTime(0);
        gui_->changeStep(1);
        view_->firstVisibleRow = 0;
        gui_->action(VokGUI::ActEditMode)->setChecked(editMode);
        QCOMPARE(gui_->mode(), editMode ? int(VokGUI::ModeEdit) : int(VokGUI::ModeQuery));
        // Rows 0 to 4 and 20 time units must show.
        QVERIFY2(view_->width() >= 400 && view_->height() >= 200,
                 qPrintable(QStringLiteral("view %1x%2").arg(view_->width()).arg(view_->height())));
    }

    WaveData* wave(const char* name) const { return gui_->document()->findWavebyName(QLatin1String(name)); }

    QByteArray saved() const { return toolfixture::savedText(*gui_); }

    // The saved line of one wave.
    QByteArray line(const char* name) const
    {
        for (const QByteArray& l : saved().split('\n')) {
            if (l.startsWith(QByteArray(name) + " {"))
                return l;
        }
        return {};
    }

    // "value:duration" per segment.
    static QString segments(const WaveData* w)
    {
        QStringList items;
        for (const Pattern* p : w->patterns)
            items << QStringLiteral("%1:%2").arg(QString::fromStdString(p->value)).arg(p->duration);
        return items.join(QLatin1Char(' '));
    }

    void send(QEvent::Type type, int x, int y, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        if (type == QEvent::MouseButtonPress)
            held_ |= button;
        else if (type == QEvent::MouseButtonRelease)
            held_ &= ~Qt::MouseButtons(button);
        const QPointF pos(x, y);
        QMouseEvent event(type, pos, view_->mapToGlobal(pos), type == QEvent::MouseMove ? Qt::NoButton : button,
                          held_, modifiers);
        QApplication::sendEvent(view_, &event);
    }
    void press(int x, int y, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        send(QEvent::MouseButtonPress, x, y, Qt::LeftButton, modifiers);
    }
    void move(int x, int y) { send(QEvent::MouseMove, x, y); }
    void release(int x, int y, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, x, y, button);
    }
    void click(int x, int y)
    {
        press(x, y);
        release(x, y);
    }

private Q_SLOTS:
    void cleanup()
    {
        gui_.reset();
    }

    void rangeSelectionSnapsToSegmentEdges()
    {
        open({LineA, LineB});
        WaveData* a = wave("a");
        // 3.3 to 6.5: the segments [2,5) and [5,9), snapped half a unit inside.
        press(66, row(0));
        QCOMPARE(view_->cursorTime, quint64(3));
        move(130, row(0));
        release(130, row(0));

        QCOMPARE(gui_->activeWave(), a);
        QVERIFY(a->selected);
        QVERIFY(!wave("b")->selected);
        QCOMPARE(gui_->selection(), (QList<Pattern*>{a->patterns.at(1), a->patterns.at(2)}));
        QCOMPARE(view_->selectionStart, 2.5);
        QCOMPARE(view_->selectionEnd, 8.5);
        QCOMPARE(view_->cursorTime, quint64(6));

        // Dragged leftwards on the other wave: b becomes the active wave.
        WaveData* b = wave("b");
        press(150, row(1));
        move(20, row(1));
        release(10, row(1));
        QCOMPARE(gui_->activeWave(), b);
        QVERIFY(b->selected);
        QVERIFY(!a->selected);
        QCOMPARE(gui_->selection(), QList<Pattern*>{b->patterns.at(0)} << b->patterns.at(1));
        QCOMPARE(view_->selectionStart, 0.5);
        QCOMPARE(view_->selectionEnd, 11.5);

        // A click takes the one segment under it; on an edge, both that meet.
        click(70, row(0));
        QCOMPARE(gui_->selection(), QList<Pattern*>{a->patterns.at(1)});
        QCOMPARE(view_->selectionStart, 2.5);
        QCOMPARE(view_->selectionEnd, 4.5);
        click(100, row(0));
        QCOMPARE(gui_->selection(), (QList<Pattern*>{a->patterns.at(1), a->patterns.at(2)}));
        // Selecting changes no document.
        QCOMPARE(gui_->undoStack()->count(), 0);
    }

    void clickPastTheEndExtendsTheWave()
    {
        open({LineA, LineB});
        click(280, row(0));   // time 14; a ends at 10
        QCOMPARE(line("a"), QByteArray("a { A I Default NRZ 0 1 50 } = 0 2 1 3 0 4 1 1 0 4;"));
        WaveData* a = wave("a");
        QCOMPARE(gui_->selection(), QList<Pattern*>{a->patterns.last()});
        QCOMPARE(view_->selectionEnd, 14.0);
        QCOMPARE(gui_->undoStack()->count(), 1);
        gui_->undo();
        QCOMPARE(line("a"), LineA);

        // Only edit mode extends a wave.
        gui_->action(VokGUI::ActEditMode)->setChecked(false);
        click(300, row(1));
        QCOMPARE(line("b"), LineB);
        QVERIFY(gui_->selection().isEmpty());
    }

    void selectionAcrossForeverRepetitionsIsDropped()
    {
        open({"clk { A I Default NRZ 0 1 50 } = 0 4(1 3 0 3)##;"});
        WaveData* clk = wave("clk");
        // The tail starts at 4 and repeats every 6: 5 and 9 share a repetition.
        press(100, row(0));
        release(180, row(0));
        QCOMPARE(gui_->selection(), (QList<Pattern*>{clk->patterns.at(1), clk->patterns.at(2)}));
        QVERIFY(clk->selected);

        // 5 to 11: from the first repetition into the second.
        press(100, row(0));
        move(220, row(0));
        release(220, row(0));
        QVERIFY(!clk->selected);
        QVERIFY(gui_->selection().isEmpty());

        // The head goes with the first repetition: 1 to 9 stays.
        press(20, row(0));
        release(180, row(0));
        QCOMPARE(gui_->selection(), (QList<Pattern*>{clk->patterns.at(0), clk->patterns.at(1), clk->patterns.at(2)}));
    }

    void atMostOneWaveStaysSelectedTheFirst()
    {
        open({LineA, LineB, "c { A I Default NRZ 0 1 50 } = 0 3;", "d { A I Default NRZ 0 1 50 } = 1 3;"});
        const QList<WaveData*> waves = gui_->document()->waves;
        for (int mode : {int(VokGUI::ModeQuery), int(VokGUI::ModeEdit)}) {
            gui_->setMode(mode);
            press(40, row(3));
            // Whatever else marked waves while the button was down...
            waves.at(1)->selected = waves.at(2)->selected = waves.at(3)->selected = true;
            release(40, row(3));
            QCOMPARE(waves.at(0)->selected, false);
            QCOMPARE(waves.at(1)->selected, true);
            QCOMPARE(waves.at(2)->selected, false);
            QCOMPARE(waves.at(3)->selected, false);
        }
    }

    void edgeDragIsOneUndoStep_data()
    {
        QTest::addColumn<int>("clickX");
        QTest::addColumn<int>("pressX");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<int>("toX");
        QTest::addColumn<QByteArray>("dragged");
        QTest::addColumn<int>("selected");
        // Pressed below the last wave, in the right or the left half of the selection.
        QTest::newRow("right edge") << 70 << 90 << false << 130 << QByteArray("0 2 1 5 0 2 1 1") << 1;
        QTest::newRow("left edge") << 130 << 120 << false << 80 << QByteArray("0 2 1 1 0 6 1 1") << 2;
        // Shift stretches the one pattern: everything after it moves on.
        QTest::newRow("stretch") << 70 << 90 << true << 110 << QByteArray("0 2 1 4 0 4 1 1") << -1;
    }
    void edgeDragIsOneUndoStep()
    {
        QFETCH(int, clickX);
        QFETCH(int, pressX);
        QFETCH(bool, shift);
        QFETCH(int, toX);
        QFETCH(QByteArray, dragged);
        QFETCH(int, selected);
        open({LineA, LineB});
        const QByteArray before = saved();
        const QByteArray expected = "a { A I Default NRZ 0 1 50 } = " + dragged + ";";
        click(clickX, row(0));
        press(pressX, row(3), shift ? Qt::ShiftModifier : Qt::NoModifier);
        move((pressX + toX) / 2, row(3));
        move(toX, row(3));
        release(toX, row(3));
        QCOMPARE(line("a"), expected);
        QCOMPARE(line("b"), LineB);
        if (selected >= 0)
            QCOMPARE(gui_->selection(), QList<Pattern*>{wave("a")->patterns.at(selected)});
        QCOMPARE(gui_->undoStack()->count(), 1);
        gui_->undo();
        QCOMPARE(saved(), before);
        gui_->redo();
        QCOMPARE(line("a"), expected);
    }

    void pressWithoutMoveLeavesNoStep()
    {
        open({LineA});
        click(70, row(0));
        press(90, row(3));
        move(95, row(3));
        release(95, row(3));
        QCOMPARE(gui_->undoStack()->count(), 0);
        QCOMPARE(line("a"), LineA);
    }

    void edgeDragsKeepEveryDurationAtLeastOne()
    {
        open({LineA});
        WaveData* a = wave("a");
        click(70, row(0));
        press(90, row(3));
        // Far right: [5,9) gives all but one unit.
        move(1000, row(3));
        QCOMPARE(segments(a), QStringLiteral("0:2 1:6 0:1 1:1"));
        // Far left: [2,...) keeps one unit.
        move(-2000, row(3));
        QCOMPARE(segments(a), QStringLiteral("0:2 1:1 0:6 1:1"));
        // The edge waits where it stopped until the mouse comes back there.
        move(-1900, row(3));
        QCOMPARE(segments(a), QStringLiteral("0:2 1:1 0:6 1:1"));
        move(70, row(3));
        QCOMPARE(segments(a), QStringLiteral("0:2 1:2 0:5 1:1"));
        release(70, row(3));
        QCOMPARE(line("a"), QByteArray("a { A I Default NRZ 0 1 50 } = 0 2 1 2 0 5 1 1;"));
        QCOMPARE(gui_->undoStack()->count(), 1);
        gui_->undo();
        QCOMPARE(line("a"), LineA);
    }

    void leftEdgeOfTheFirstPatternMakesOneInFront_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("dragged");
        QTest::newRow("low") << QByteArray("s { A I Default NRZ 0 1 50 } = 0 2 1 3;")
                             << QByteArray("s { A I Default NRZ 0 1 50 } = 1 2 0 1 1 3;");
        QTest::newRow("high") << QByteArray("s { A I Default NRZ 0 1 50 } = 1 2 0 3;")
                              << QByteArray("s { A I Default NRZ 0 1 50 } = 0 2 1 1 0 3;");
        QTest::newRow("bus zero wraps") << QByteArray("s[3:0] { A I Default NRZ 0 1 50 } = 0 2 5 3;")
                                        << QByteArray("s[3:0] { A I Default NRZ 0 1 50 } = F 2 0 1 5 3;");
        QTest::newRow("bus") << QByteArray("s[7:0] { A I Default NRZ 0 1 50 } = A0 2 5 3;")
                             << QByteArray("s[7:0] { A I Default NRZ 0 1 50 } = 9F 2 A0 1 5 3;");
    }

    void leftEdgeOfTheFirstPatternMakesOneInFront()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, dragged);
        open({text});
        const QByteArray before = saved();
        WaveData* s = gui_->document()->waves.first();
        click(30, row(0));   // [0,2), selected as 0.5 to 1.5
        QCOMPARE(gui_->selection(), QList<Pattern*>{s->patterns.at(0)});
        press(20, row(3));   // time 1, its left half
        QCOMPARE(s->patterns.size(), 3);
        move(40, row(3));
        move(-400, row(3));   // the made pattern keeps its one unit
        move(40, row(3));
        release(40, row(3));
        QCOMPARE(saved().split('\n').at(5), dragged);
        QCOMPARE(gui_->undoStack()->count(), 1);
        gui_->undo();
        QCOMPARE(saved(), before);

        // Made and not moved: still a change of its own, undone in one step.
        click(30, row(0));
        press(20, row(3));
        release(20, row(3));
        QCOMPARE(s->patterns.size(), 3);
        QCOMPARE(gui_->undoStack()->index(), 1);
        gui_->undo();
        QCOMPARE(saved(), before);
    }

    void edgeDragOnTheBitRowsOfABus()
    {
        // An expanded bus: the bus row, then one row per bit, then the wave b.
        open({"v[1:0] { A I Default NRZ 0 1 50 } = 0 2 3 3 1 2;", LineB});
        WaveData* v = wave("v[1:0]");
        v->expandFlag = true;
        gui_->waveList()->expandBus(gui_->waveList()->itemModel()->index(0, 0));
        gui_->Refresh();
        click(70, row(0));   // [2,5)
        QCOMPARE(gui_->selection(), QList<Pattern*>{v->patterns.at(1)});
        // A bit row is no wave's first row: the press drags the edge.
        press(90, row(2));
        QVERIFY(view_->isDraggingEdge());
        move(50, row(2));
        release(50, row(2));
        QCOMPARE(line("v[1:0]"), QByteArray("v[1:0] { A I Default NRZ 0 1 50 } = 0 2 3 1 1 4;"));
        // b's row comes after the two bit rows.
        click(30, row(3));
        QCOMPARE(gui_->activeWave(), wave("b"));
        QCOMPARE(gui_->selection(), QList<Pattern*>{wave("b")->patterns.at(0)});
    }

    void viewGoneMidDragLeavesNothingBehind()
    {
        open({LineA});
        click(70, row(0));
        press(90, row(3));
        move(130, row(3));
        QVERIFY(view_->isDraggingEdge());
        QCOMPARE(segments(WaveView::dragOrigin()), QStringLiteral("0:2 1:3 0:4 1:1"));
        // The window goes with the button still down: the copy taken at the
        // press goes with it.
        gui_.reset();
        QVERIFY(!WaveView::dragOrigin());
    }

    void lostReleaseEndsTheDragAtTheNextHover()
    {
        // A swallowed release: the next buttonless move ends the drag as one step.
        open({LineA});
        click(70, row(0));
        press(90, row(3));
        move(110, row(3));
        held_ = {};
        move(150, row(3));
        QCOMPARE(segments(wave("a")), QStringLiteral("0:2 1:4 0:3 1:1"));
        QCOMPARE(gui_->undoStack()->count(), 1);
        gui_->undo();
        QCOMPARE(segments(wave("a")), QStringLiteral("0:2 1:3 0:4 1:1"));
    }

    void keyboardEditsAndNewDocumentsEndTheDragFirst()
    {
        open({LineA});
        click(70, row(0));
        press(90, row(3));
        move(110, row(3));
        // Undo with the button still down: the drag becomes its own step
        // first, and that step is what is undone.
        gui_->undo();
        QVERIFY(!view_->isDraggingEdge());
        QCOMPARE(segments(wave("a")), QStringLiteral("0:2 1:3 0:4 1:1"));
        QCOMPARE(gui_->undoStack()->count(), 1);

        // A new document mid-drag forgets the drag: nothing of the old
        // document is pushed into the new one.
        click(70, row(0));
        press(90, row(3));
        move(110, row(3));
        gui_->CloseFile();
        QVERIFY(!view_->isDraggingEdge());
        release(110, row(3));
        QCOMPARE(gui_->undoStack()->count(), 0);
        QVERIFY(!gui_->isModified());
    }

    void releaseAtOrLeftOfZeroPutsTheCursorAtZero()
    {
        open({LineA}, false);
        gui_->setStartTime(5);
        press(40, row(0));
        QCOMPARE(view_->cursorTime, quint64(7));
        release(45, row(0));
        QCOMPARE(view_->cursorTime, quint64(7));
        press(40, row(0));
        release(-30, row(0));
        QCOMPARE(view_->cursorTime, quint64(0));
    }

    void queryModePressMarksTheRuler()
    {
        open({LineA, LineB}, false);
        gui_->setStartTime(100);
        gui_->changeStep(10);
        press(65, row(0));
        QVERIFY(ruler_->rangeActive);
        QCOMPARE(ruler_->rangeStart, quint64(130));
        QCOMPARE(view_->cursorTime, quint64(132));
        // Outside a zoom the range does not follow the mouse.
        move(125, row(0));
        QCOMPARE(ruler_->rangeEnd, quint64(130));
        release(125, row(0));
        QVERIFY(!ruler_->rangeActive);
        QCOMPARE(view_->cursorTime, quint64(160));
        // Query mode selects nothing and changes nothing.
        QVERIFY(gui_->selection().isEmpty());
        QCOMPARE(gui_->undoStack()->count(), 0);
    }

    void modeOneIgnoresPresses()
    {
        open({LineA});
        click(70, row(0));
        const QList<Pattern*> selection = gui_->selection();
        gui_->setMode(VokGUI::ModeIgnore);
        ruler_->rangeActive = false;
        press(150, row(0));
        QCOMPARE(view_->cursorTime, quint64(3));
        QVERIFY(!ruler_->rangeActive);
        QVERIFY(wave("a")->selected);
        QCOMPARE(gui_->selection(), selection);
    }

    void rightReleaseLeavesTheZoomAreaMode()
    {
        for (bool edit : {true, false}) {
            open({LineA}, edit);
            gui_->viewZoomto();
            QCOMPARE(gui_->mode(), int(VokGUI::ModeZoomArea));
            // The left button does not end it.
            press(40, row(0));
            release(40, row(0));
            QCOMPARE(gui_->mode(), int(VokGUI::ModeZoomArea));
            send(QEvent::MouseButtonPress, 60, row(0), Qt::RightButton);
            send(QEvent::MouseButtonRelease, 60, row(0), Qt::RightButton);
            QCOMPARE(gui_->mode(), edit ? int(VokGUI::ModeEdit) : int(VokGUI::ModeQuery));
            QCOMPARE(view_->cursor().shape(), edit ? Qt::IBeamCursor : Qt::ArrowCursor);
        }
    }
};

VOK_SANDBOXED_TEST_MAIN(TestWaveInteraction)
#include "test_waveinteraction.moc"
