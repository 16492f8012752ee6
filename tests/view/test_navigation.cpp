// Zoom, scroll, jumps and the marker through actions, the zoom-area mouse and the wheel.
#include "guifixture.h"
#include "modalanswerer.h"

#include <QRubberBand>
#include <QScrollBar>
#include <QWheelEvent>

using namespace guitest;

namespace {
// "a" changes at 100 and 200, ends at 1000; "long" ends at 100000; 30 rows more to scroll.
QByteArray document()
{
    QList<QByteArray> waves{"a { A I Default NRZ 0 1 50 } = 0 100 1 100 0 800;",
                            "long { A O Default NRZ 0 1 50 } = 0 50000 1 50000;"};
    for (int i = 0; i < 30; ++i)
        waves << "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 1000;";
    return wdl(waves).replace("%ENDTIME = 400;", "%ENDTIME = 100000;");
}
} // namespace

class TestNavigation : public QObject
{
    Q_OBJECT

    std::unique_ptr<Window> w_;
    VokGUI* gui_ = nullptr;
    WaveView* view_ = nullptr;

    int viewWidth() const { return view_->width(); }
    void setView(quint64 start, quint64 step) { guitest::setView(*gui_, start, step); }

    // The cursor at t by a query-mode click at pixel 1 (a release takes whole steps).
    quint64 setCursor(quint64 t)
    {
        const quint64 start = gui_->startTime();
        gui_->setStartTime(t);
        w_->click(1, 10);
        gui_->setStartTime(start);
        return view_->cursorTime();
    }

    void wheel(QWidget* target, QPoint angle, Qt::KeyboardModifiers mods)
    {
        const QPointF pos(target->width() / 2, target->height() / 2);
        QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), angle, Qt::NoButton, mods, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(target, &event);
    }

    QRubberBand* band() const { return view_->findChild<QRubberBand*>(); }
    // Runs Jump to Time with those answers; what the windows said.
    QStringList jumpToTime(const QList<Answer>& answers)
    {
        ModalAnswerer answerer(answers);
        gui_->JumptoTime();
        return answerer.problems + answerer.said();
    }

private Q_SLOTS:
    void initTestCase()
    {
        w_ = std::make_unique<Window>(document(), QSize(1000, 600));
        gui_ = w_->gui.get();
        view_ = w_->view();
        // The cases below pick ranges for views between these widths.
        QVERIFY2(viewWidth() > 400 && viewWidth() <= 1000, qPrintable(QString::number(viewWidth())));
    }

    void init()
    {
        gui_->sharedAction(QStringLiteral("zoom area"))->setChecked(false);
        gui_->setActiveWave(w_->wave(QStringLiteral("a")));
        setCursor(0);
        view_->setMarkerTime(NoTime);
        setView(0, 1);
        gui_->Refresh();
    }

    void cleanupTestCase() { w_.reset(); }

    void zoomStepsFitAndLeavingTheZoomArea()
    {
        const QList<quint64> sequence{1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000, 100000};
        setView(700, 1);
        for (const char* action : {"zoom out", "zoom in"}) {
            QList<quint64> walk{gui_->step()};
            for (int i = 0; i < 20; ++i) {
                gui_->sharedAction(QLatin1String(action))->trigger();
                if (gui_->step() != walk.last())
                    walk.append(gui_->step());
            }
            if (action[5] == 'i')
                std::reverse(walk.begin(), walk.end());
            QCOMPARE(walk, sequence);
            QCOMPARE(gui_->startTime(), quint64(700));
        }
        // Odd steps (from a fit) double out or drop to 1 in.
        for (auto [zoom, after] : {std::pair(&VokGUI::zoomOut, 6), std::pair(&VokGUI::zoomIn, 1)}) {
            setView(0, 3);
            (gui_->*zoom)();
            QCOMPARE(gui_->step(), quint64(after));
        }
        gui_->changeStep(0);
        QCOMPARE(gui_->step(), quint64(1));
        // Fit shows the whole document, then leaves the zoom-area mode for the checked one.
        for (bool edit : {true, false}) {
            gui_->action(VokGUI::ActEditMode)->setChecked(edit);
            gui_->setMode(VokGUI::ModeZoomArea);
            setView(4321, 3);
            gui_->sharedAction(QStringLiteral("zoom fit"))->trigger();
            // 100000 x 20 / width lies between 2000 and 4999 for these widths.
            QCOMPARE(std::pair(gui_->startTime(), gui_->step()), std::pair(quint64(0), quint64(5000)));
            QCOMPARE(gui_->mode(), edit ? int(VokGUI::ModeEdit) : int(VokGUI::ModeQuery));
        }
        gui_->action(VokGUI::ActEditMode)->setChecked(false);
        // Escape leaves the zoom-area mode.
        QAction* zoomArea = gui_->sharedAction(QStringLiteral("zoom area"));
        zoomArea->setChecked(true);
        QSignalSpy quit(gui_, &VokGUI::sigQuitZooming);
        w_->press(100, 10);
        w_->move(200, 10);
        QVERIFY(band() && band()->isVisible());
        QTest::keyClick(view_, Qt::Key_Escape);
        QCOMPARE(std::tuple(quit.count(), gui_->isZooming(), zoomArea->isChecked(), band() && band()->isVisible()),
                 std::tuple(1, false, false, false));
        // Unchecking the action ends the mode and drops a band being dragged.
        zoomArea->setChecked(true);
        setView(0, 10);
        w_->press(100, 10);
        w_->move(300, 10);
        zoomArea->setChecked(false);
        QVERIFY(!gui_->isZooming() && !(band() && band()->isVisible()));
        w_->release(300, 10);
        QCOMPARE(std::pair(gui_->step(), gui_->startTime()), std::pair(quint64(10), quint64(0)));
    }

    void zoomRangeRoundsUpPastTheLeadingDigit_data()
    {
        addColumns<quint64, quint64>({"raw", "step"});
        for (auto [raw, step] : QList<QPair<quint64, quint64>>{{20, 50}, {50, 100}, {12, 20}, {0, 1}, {1, 2}, {4, 5},
                                                                {150, 200}, {99999, 100000}, {5000000, 100000}})
            QTest::addRow("%llu", raw) << raw << step;
    }
    void zoomRangeRoundsUpPastTheLeadingDigit()
    {
        QFETCH(quint64, raw);
        setView(0, 7);
        // A range whose raw step (range x 20 / view width) is raw.
        gui_->zoomRange(1234, 1234 + qMax<quint64>(1, (raw * quint64(viewWidth()) + 19) / 20));
        QTEST(gui_->step(), "step");
        // The tool's bar follows: its value is the start in steps.
        QCOMPARE(std::tuple(gui_->startTime(), gui_->waveHBar()->value(), gui_->waveHBar()->maximum()),
                 std::tuple(quint64(1234), int(1234 / gui_->step()), int(100000 / gui_->step() + 5)));
    }

    void zoomRangeOfOnePointRecentresOnTheCursor()
    {
        // One step in, centred on the cursor, never left of 0; step 1 stays.
        const quint64 w = quint64(viewWidth());
        const struct { quint64 step, cursor, after, start; } cases[] = {
            {10, 20000, 5, 20000 - 5 * w / 40}, {10, 30, 5, 0}, {1, 5000, 1, 5000 - w / 40},
        };
        for (const auto& c : cases) {
            setView(300, c.step);
            setCursor(c.cursor);
            gui_->zoomRange(77, 77);
            QCOMPARE(std::pair(gui_->step(), gui_->startTime()), std::pair(c.after, c.start));
        }
    }

    void zoomArea_data()
    {
        using Time = quint64;
        addColumns<Time, Time, Qt::MouseButton, int, int, Time, Time>(
            {"start", "step", "button", "fromX", "toX", "startAfter", "stepAfter"});
        // Pixels 100 and 300 are [15000, 25000]: a raw step of 200000 / width, 200 to 499.
        QTest::newRow("left drag") << Time(10000) << Time(1000) << Qt::LeftButton << 300 << 100 << Time(15000) << Time(500);
        QTest::newRow("left click") << Time(15000) << Time(500) << Qt::LeftButton << 40 << 40 << Time(15000) << Time(200);
        // Out around the old start: a quarter-width band shows four views of step 10, raw step ~40.
        const int timeArea = gui_->rulerView()->width() - gui_->rulerView()->originX;
        const auto span = static_cast<quint64>(double(timeArea) * timeArea / (timeArea / 4) / 20 * 10.0);
        QTest::newRow("right drag") << Time(60000) << Time(10) << Qt::RightButton << 200 + timeArea / 4 << 200
                                    << 60000 - span / 2 << Time(50);
        QTest::newRow("right drag near 0") << Time(100) << Time(10) << Qt::RightButton << 200 << 200 + timeArea / 4
                                           << Time(0) << Time(50);
        QTest::newRow("right click") << Time(0) << Time(50) << Qt::RightButton << 200 << 200 << Time(0) << Time(100);
    }
    void zoomArea()
    {
        QFETCH(quint64, start); QFETCH(quint64, step); QFETCH(Qt::MouseButton, button); QFETCH(int, fromX);
        QFETCH(int, toX);
        setView(start, step);
        const quint64 cursor = setCursor(777);
        gui_->sharedAction(QStringLiteral("zoom area"))->setChecked(true);
        QVERIFY(gui_->isZooming());
        w_->send(QEvent::MouseButtonPress, fromX, 70, button);
        w_->send(QEvent::MouseMove, toX, 30, button);
        if (fromX != toX)
            QCOMPARE(band()->geometry(), QRect(QPoint(qMin(fromX, toX), 30), QPoint(qMax(fromX, toX), 70)));
        QCOMPARE(gui_->step(), step);   // nothing before the release
        w_->send(QEvent::MouseButtonRelease, toX, 30, button);
        QVERIFY(!band() || !band()->isVisible());
        QTEST(gui_->startTime(), "startAfter");
        QTEST(gui_->step(), "stepAfter");
        // The press went to the navigator, not to the view.
        QCOMPARE(view_->cursorTime(), cursor);
    }

    void wheels()
    {
        QScrollBar* rows = gui_->waveVBar();
        const int lines = QApplication::wheelScrollLines();
        QVERIFY(rows->maximum() > 3 * lines);
        for (QWidget* target : {static_cast<QWidget*>(view_), gui_->waveList()->viewport()}) {
            // Ctrl: one zoom step per notch; half notches add up.
            setView(400, 100);
            const QList<QPair<int, quint64>> zooms{{120, 50}, {-360, 500}, {120, 200}, {60, 200}, {60, 100}};
            for (auto [delta, after] : zooms) {
                wheel(target, QPoint(0, delta), Qt::ControlModifier);
                QCOMPARE(gui_->step(), after);
            }
            QCOMPARE(gui_->startTime(), quint64(400));
            // Plain: rows; Shift or sideways: the time axis, in steps.
            rows->setValue(0);
            gui_->Refresh();
            const struct { QPoint angle; Qt::KeyboardModifiers mods; int row; quint64 start; } scrolls[] = {
                {{0, -120}, Qt::NoModifier, lines, 400}, {{0, -240}, Qt::NoModifier, 3 * lines, 400},
                {{0, 120}, Qt::NoModifier, 2 * lines, 400}, {{0, 1200}, Qt::NoModifier, 0, 400},
                {{0, -120}, Qt::ShiftModifier, 0, 400 + quint64(lines) * 100},
                {{-240, 0}, Qt::NoModifier, 0, 400 + quint64(lines) * 300},
                {{0, 12000}, Qt::ShiftModifier, 0, 0},
            };
            for (const auto& s : scrolls) {
                wheel(target, s.angle, s.mods);
                QCOMPARE(std::pair(gui_->viewport().firstRow, gui_->startTime()), std::pair(s.row, s.start));
            }
        }
    }

    void jumps_data()
    {
        addColumns<QString, quint64, int, quint64>({"wave", "cursor", "action", "landed"});
        // The view shows step 10; "a" changes at 100 and 200 and ends at 1000.
        QTest::newRow("left to 0") << "a" << quint64(10) << int(VokGUI::ActTickLeft) << quint64(0);
        QTest::newRow("left") << "a" << quint64(17) << int(VokGUI::ActTickLeft) << quint64(7);
        QTest::newRow("10 left to 0") << "a" << quint64(100) << int(VokGUI::ActLeft10) << quint64(0);
        QTest::newRow("10 left") << "a" << quint64(150) << int(VokGUI::ActLeft10) << quint64(50);
        QTest::newRow("right from none") << "a" << NoTime << int(VokGUI::ActTickRight) << quint64(10);
        QTest::newRow("right") << "a" << quint64(10) << int(VokGUI::ActTickRight) << quint64(20);
        QTest::newRow("10 right from none") << "a" << NoTime << int(VokGUI::ActRight10) << quint64(100);
        QTest::newRow("10 right") << "a" << quint64(20) << int(VokGUI::ActRight10) << quint64(120);
        QTest::newRow("right stops at the end") << "a" << quint64(995) << int(VokGUI::ActTickRight) << quint64(1000);
        QTest::newRow("zero") << "a" << quint64(120) << int(VokGUI::ActJumpZero) << quint64(0);
        QTest::newRow("next change") << "a" << quint64(0) << int(VokGUI::ActNextChange) << quint64(100);
        QTest::newRow("next change again") << "a" << quint64(100) << int(VokGUI::ActNextChange) << quint64(200);
        QTest::newRow("end") << "a" << quint64(0) << int(VokGUI::ActJumpEnd) << quint64(1000);
        QTest::newRow("far end") << "long" << quint64(0) << int(VokGUI::ActJumpEnd) << quint64(100000);
        QTest::newRow("next without a wave") << "" << quint64(150) << int(VokGUI::ActNextChange) << quint64(150);
        QTest::newRow("end without a wave") << "" << quint64(150) << int(VokGUI::ActJumpEnd) << quint64(150);
    }
    void jumps()
    {
        QFETCH(QString, wave); QFETCH(quint64, cursor); QFETCH(int, action); QFETCH(quint64, landed);
        setView(0, 10);
        gui_->setActiveWave(w_->wave(wave));
        QCOMPARE(setCursor(cursor), cursor);
        gui_->action(action)->trigger();
        QCOMPARE(view_->cursorTime(), landed);
        // A jump brings the cursor into view; no jump leaves the view alone.
        QVERIFY(landed == cursor ? gui_->startTime() == 0 : gui_->startTime() <= landed);
        QVERIFY(gui_->startTime() + quint64(viewWidth() / 20) * 10 >= landed);
    }

    void theMarkerAndJumpToTime()
    {
        QSignalSpy marked(gui_, &VokGUI::markChanged);
        QVERIFY(!gui_->isMarked());
        setCursor(420);
        gui_->action(VokGUI::ActPlaceMarker)->trigger();
        QCOMPARE(std::pair(view_->markerTime(), gui_->isMarked()), std::pair(quint64(420), true));
        setCursor(10);
        gui_->action(VokGUI::ActJumpMarker)->trigger();
        QCOMPARE(view_->cursorTime(), quint64(420));
        gui_->action(VokGUI::ActHideMarker)->trigger();
        QCOMPARE(std::tuple(view_->markerTime(), gui_->isMarked(), marked.count()), std::tuple(NoTime, false, 2));
        // Jump to Time takes a typed time.
        setCursor(5);
        const QString title = QStringLiteral("Jump to Time");
        QCOMPARE(jumpToTime({type("150")}), QStringList{title});
        QCOMPARE(view_->cursorTime(), quint64(150));
        jumpToTime({type("0.3us")});   // the document's unit is ns
        QCOMPARE(view_->cursorTime(), quint64(300));
        QCOMPARE(jumpToTime({type("abc"), press(QMessageBox::Ok)}), (QStringList{title, "Invalid time."}));
        // An empty answer and a cancel do nothing, and show nothing more.
        QCOMPARE(jumpToTime({type("")}), QStringList{title});
        QCOMPARE(jumpToTime({dismiss()}), QStringList{title});
        QCOMPARE(view_->cursorTime(), quint64(300));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestNavigation)

#include "test_navigation.moc"
