#include "rulerview.h"
#include "voknavigator.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QInputDialog>
#include <QMessageBox>
#include <QPointer>
#include <QRubberBand>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QWheelEvent>
#include <QtTest>

#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <functional>
#include <memory>

using namespace kesu::toolvok;

namespace {
// "a" changes at 100 and 200 and ends at 1000; "long" ends at 100000; thirty
// more rows give the vertical bar a range.
QByteArray document()
{
    QByteArray text = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 0;\n%DECIMALS = 0;\n"
                      "%ENDTIME = 100000;\n"
                      "a { A I Default NRZ 0 1 50 } = 0 100 1 100 0 800;\n"
                      "long { A O Default NRZ 0 1 50 } = 0 50000 1 50000;\n";
    for (int i = 0; i < 30; ++i)
        text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 1000;\n";
    return text;
}

} // namespace

class TestNavigation : public QObject
{
    Q_OBJECT

    QTemporaryDir dir_;
    std::unique_ptr<VokGUI> gui_;
    WaveView* view_ = nullptr;
    RulerView* ruler_ = nullptr;

    WaveData* wave(const char* name) const { return gui_->document()->findWavebyName(QLatin1String(name)); }
    int viewWidth() const { return view_->width(); }

    void setView(quint64 start, quint64 step)
    {
        gui_->setStartTime(start);
        gui_->changeStep(step);
    }

    // The width of a range whose raw step (range x 20 / view width) is r.
    quint64 rangeFor(quint64 r) const { return (r * quint64(viewWidth()) + 19) / 20; }

    void mouse(QEvent::Type type, Qt::MouseButton button, QPoint pos)
    {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
        QMouseEvent event(type, QPointF(pos), view_->mapToGlobal(QPointF(pos)), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(view_, &event);
    }

    void wheel(QWidget* target, QPoint angle, Qt::KeyboardModifiers mods)
    {
        const QPointF pos(target->width() / 2, target->height() / 2);
        QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), angle, Qt::NoButton, mods, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(target, &event);
    }

    QRubberBand* band() const { return view_->findChild<QRubberBand*>(); }

    // Runs Jump to Time, typing each text into the time dialog in turn
    // ("cancel" cancels it) and pressing Ok on message boxes; returns what showed.
    QStringList jumpToTime(QStringList typed)
    {
        QStringList shown;
        QPointer<QDialog> last;
        QElapsedTimer clock;
        clock.start();
        QTimer poll;
        connect(&poll, &QTimer::timeout, [&] {
            auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!modal || modal == last) {
                if (modal && clock.elapsed() > 5000)
                    modal->reject();
                return;
            }
            last = modal;
            auto* box = qobject_cast<QMessageBox*>(modal);
            auto* input = qobject_cast<QInputDialog*>(modal);
            shown << (box ? box->windowTitle() + QLatin1Char('|') + box->text() : modal->windowTitle());
            if (box && box->button(QMessageBox::Ok)) {
                box->button(QMessageBox::Ok)->click();
            } else if (input && !typed.isEmpty() && typed.first() != QLatin1String("cancel")) {
                input->setTextValue(typed.takeFirst());
                input->accept();
            } else {
                modal->reject();
            }
        });
        poll.start(10);
        gui_->JumptoTime();
        return shown;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(dir_.isValid());
        const QString path = dir_.filePath(QStringLiteral("nav.wdl"));
        QVERIFY(toolfixture::writeFile(path, document()));
        gui_ = toolfixture::openShown(path, QSize(1000, 600));
        QVERIFY(gui_);
        view_ = gui_->waveView();
        ruler_ = gui_->rulerView();
        QCOMPARE(gui_->document()->waves.size(), 32);
        // The cases below pick ranges for views between these widths.
        QVERIFY2(viewWidth() > 400 && viewWidth() <= 1000, qPrintable(QString::number(viewWidth())));
        QVERIFY(ruler_->originX > 0);
    }

    void init()
    {
        gui_->sharedAction(QStringLiteral("zoom area"))->setChecked(false);
        gui_->setActiveWave(wave("a"));
        view_->cursorTime = 0;
        view_->markerTime = NoTime;
        setView(0, 1);
        gui_->Refresh();
    }

    void cleanupTestCase() { gui_.reset(); }

    void zoomWalksTheOneTwoFiveSequence()
    {
        const QList<quint64> sequence{1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000,
                                      100000};
        setView(700, 1);
        for (bool out : {true, false}) {
            QList<quint64> walk{gui_->step()};
            for (int i = 0; i < 20; ++i) {
                out ? gui_->zoomOut() : gui_->zoomIn();
                if (gui_->step() != walk.last())
                    walk.append(gui_->step());
            }
            if (!out)
                std::reverse(walk.begin(), walk.end());
            QCOMPARE(walk, sequence);
            QCOMPARE(gui_->startTime(), quint64(700));
        }
    }

    void zoomLimitsAndOddSteps()
    {
        // {step, zoom out?, step after}: capped at both ends, odd steps double or drop to 1.
        const struct { quint64 step; bool out; quint64 after; } cases[] = {
            {1, false, 1}, {100000, true, 100000}, {3, true, 6}, {3, false, 1}, {80000, true, 100000},
        };
        for (const auto& c : cases) {
            setView(0, c.step);
            c.out ? gui_->zoomOut() : gui_->zoomIn();
            QCOMPARE(gui_->step(), c.after);
        }
        gui_->changeStep(0);
        QCOMPARE(gui_->step(), quint64(1));

        // The shared actions do the same.
        setView(0, 10);
        gui_->sharedAction(QStringLiteral("zoom in"))->trigger();
        QCOMPARE(gui_->step(), quint64(5));
        gui_->sharedAction(QStringLiteral("zoom out"))->trigger();
        QCOMPARE(gui_->step(), quint64(10));
    }

    void zoomRangeRoundsUpPastTheLeadingDigit()
    {
        const struct { quint64 raw, step; } cases[] = {
            {20, 50}, {50, 100}, {12, 20}, {0, 1}, {1, 2}, {4, 5}, {5, 10}, {99, 100}, {150, 200},
            {99999, 100000}, {100001, 100000}, {5000000, 100000},
        };
        for (const auto& c : cases) {
            setView(0, 7);
            const quint64 a = 1234;
            gui_->zoomRange(a, a + qMax<quint64>(1, rangeFor(c.raw)));
            QVERIFY2(gui_->step() == c.step, qPrintable(QStringLiteral("raw %1 gave %2").arg(c.raw).arg(gui_->step())));
            QCOMPARE(gui_->startTime(), a);
        }
        // The tool's bar follows: its value is the start in steps.
        QCOMPARE(gui_->waveHBar()->value(), int(1234 / 100000));
        gui_->zoomRange(5000, 5000 + rangeFor(20));
        QCOMPARE(gui_->waveHBar()->value(), 5000 / 50);
        QCOMPARE(gui_->waveHBar()->maximum(), 100000 / 50 + 5);
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
            view_->cursorTime = c.cursor;
            gui_->zoomRange(77, 77);
            QCOMPARE(gui_->step(), c.after);
            QCOMPARE(gui_->startTime(), c.start);
        }
    }

    void fitShowsTheWholeDocument()
    {
        for (bool edit : {true, false}) {
            gui_->action(VokGUI::ActEditMode)->setChecked(edit);
            gui_->setMode(VokGUI::ModeZoomArea);
            setView(4321, 3);
            gui_->sharedAction(QStringLiteral("zoom fit"))->trigger();
            QCOMPARE(gui_->startTime(), quint64(0));
            // 100000 x 20 / width lies between 2000 and 4999 for these widths.
            QCOMPARE(gui_->step(), quint64(5000));
            QCOMPARE(gui_->mode(), edit ? int(VokGUI::ModeEdit) : int(VokGUI::ModeQuery));
        }
        gui_->action(VokGUI::ActEditMode)->setChecked(false);
    }

    void draggingAnAreaZoomsIntoIt()
    {
        QAction* zoomArea = gui_->sharedAction(QStringLiteral("zoom area"));
        zoomArea->setChecked(true);
        QVERIFY(gui_->isZooming());

        setView(10000, 1000);
        const quint64 cursor = view_->cursorTime = 777;
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, QPoint(300, 70));
        mouse(QEvent::MouseMove, Qt::LeftButton, QPoint(250, 110));
        mouse(QEvent::MouseMove, Qt::LeftButton, QPoint(100, 30));
        QVERIFY(band());
        QVERIFY(band()->isVisible());
        QCOMPARE(band()->geometry(), QRect(QPoint(100, 30), QPoint(300, 70)));
        // Nothing happens before the release.
        QCOMPARE(gui_->step(), quint64(1000));
        mouse(QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(100, 30));
        QVERIFY(!band() || !band()->isVisible());

        // Pixels 100 and 300 are steps 5 and 15: [15000, 25000], so the raw
        // step is 200000 / width, between 200 and 499.
        QCOMPARE(gui_->startTime(), quint64(15000));
        QCOMPARE(gui_->step(), quint64(500));
        // The press went to the navigator, not to the view.
        QCOMPARE(view_->cursorTime, cursor);

        // A click without extent zooms in one step, keeping the start.
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, QPoint(40, 10));
        mouse(QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(40, 50));
        QCOMPARE(gui_->step(), quint64(200));
        QCOMPARE(gui_->startTime(), quint64(15000));
    }

    void rightDraggingZoomsOutAroundTheStart()
    {
        gui_->sharedAction(QStringLiteral("zoom area"))->setChecked(true);
        setView(60000, 10);
        const int timeArea = ruler_->width() - ruler_->originX;
        const int bandWidth = timeArea / 4;
        mouse(QEvent::MouseButtonPress, Qt::RightButton, QPoint(200 + bandWidth, 40));
        mouse(QEvent::MouseMove, Qt::RightButton, QPoint(200, 80));
        QVERIFY(band() && band()->isVisible());
        mouse(QEvent::MouseButtonRelease, Qt::RightButton, QPoint(200, 80));

        const auto span = static_cast<quint64>(double(timeArea) * timeArea / bandWidth / 20 * 10.0);
        // Centred on the old start, not on the area; the span is about four
        // views of step 10, so the raw step is about 40.
        QCOMPARE(gui_->startTime(), 60000 - span / 2);
        QCOMPARE(gui_->step(), quint64(50));

        // Near time 0 the range starts at 0.
        setView(100, 10);
        mouse(QEvent::MouseButtonPress, Qt::RightButton, QPoint(200, 40));
        mouse(QEvent::MouseButtonRelease, Qt::RightButton, QPoint(200 + bandWidth, 40));
        QCOMPARE(gui_->startTime(), quint64(0));
        QCOMPARE(gui_->step(), quint64(50));

        // A right click zooms out one step.
        mouse(QEvent::MouseButtonPress, Qt::RightButton, QPoint(200, 40));
        mouse(QEvent::MouseButtonRelease, Qt::RightButton, QPoint(200, 40));
        QCOMPARE(gui_->step(), quint64(100));
    }

    void leavingZoomMode()
    {
        QAction* zoomArea = gui_->sharedAction(QStringLiteral("zoom area"));
        zoomArea->setChecked(true);
        QSignalSpy quit(gui_.get(), &VokGUI::sigQuitZooming);
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, QPoint(100, 10));
        mouse(QEvent::MouseMove, Qt::LeftButton, QPoint(200, 10));
        QVERIFY(band() && band()->isVisible());
        QTest::keyClick(view_, Qt::Key_Escape);
        QCOMPARE(quit.count(), 1);
        QVERIFY(!gui_->isZooming());
        QVERIFY(!zoomArea->isChecked());
        QVERIFY(!band() || !band()->isVisible());

        // Unchecking the action ends the mode and drops a band being dragged.
        zoomArea->setChecked(true);
        setView(0, 10);
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, QPoint(100, 10));
        mouse(QEvent::MouseMove, Qt::LeftButton, QPoint(300, 10));
        zoomArea->setChecked(false);
        QVERIFY(!gui_->isZooming());
        QVERIFY(!band() || !band()->isVisible());
        mouse(QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(300, 10));
        QCOMPARE(gui_->step(), quint64(10));
        QCOMPARE(gui_->startTime(), quint64(0));
    }

    void ctrlWheelZoomsOneStepPerNotch()
    {
        for (QWidget* target : {static_cast<QWidget*>(view_), gui_->waveList()->viewport()}) {
            setView(400, 100);
            wheel(target, QPoint(0, 120), Qt::ControlModifier);
            QCOMPARE(gui_->step(), quint64(50));
            wheel(target, QPoint(0, -360), Qt::ControlModifier);
            QCOMPARE(gui_->step(), quint64(500));
            wheel(target, QPoint(0, 120), Qt::ControlModifier);
            QCOMPARE(gui_->step(), quint64(200));
            // Half notches add up.
            wheel(target, QPoint(0, 60), Qt::ControlModifier);
            QCOMPARE(gui_->step(), quint64(200));
            wheel(target, QPoint(0, 60), Qt::ControlModifier);
            QCOMPARE(gui_->step(), quint64(100));
            QCOMPARE(gui_->startTime(), quint64(400));
        }
    }

    void wheelScrollsRowsAndShiftWheelScrollsTime()
    {
        QScrollBar* rows = gui_->waveVBar();
        QScrollBar* time = gui_->waveHBar();
        const int lines = QApplication::wheelScrollLines();
        QVERIFY(rows->maximum() > 2 * lines);
        for (QWidget* target : {static_cast<QWidget*>(view_), gui_->waveList()->viewport()}) {
            rows->setValue(0);
            setView(0, 100);
            gui_->Refresh();
            wheel(target, QPoint(0, -120), Qt::NoModifier);
            QCOMPARE(rows->value(), lines);
            wheel(target, QPoint(0, -240), Qt::NoModifier);
            QCOMPARE(rows->value(), 3 * lines);
            wheel(target, QPoint(0, 120), Qt::NoModifier);
            QCOMPARE(view_->firstVisibleRow, 2 * lines);
            wheel(target, QPoint(0, 1200), Qt::NoModifier);
            QCOMPARE(view_->firstVisibleRow, 0);

            // Shift: the time axis, in steps.
            wheel(target, QPoint(0, -120), Qt::ShiftModifier);
            QCOMPARE(time->value(), lines);
            QCOMPARE(gui_->startTime(), quint64(lines * 100));
            // A sideways wheel does the same without Shift.
            wheel(target, QPoint(-240, 0), Qt::NoModifier);
            QCOMPARE(gui_->startTime(), quint64(3 * lines * 100));
            wheel(target, QPoint(0, 120), Qt::ShiftModifier);
            QCOMPARE(gui_->startTime(), quint64(2 * lines * 100));
            wheel(target, QPoint(0, 12000), Qt::ShiftModifier);
            QCOMPARE(gui_->startTime(), quint64(0));
            QCOMPARE(view_->firstVisibleRow, 0);
        }
    }

    void stepJumpsFromTheEdges()
    {
        setView(0, 10);
        view_->cursorTime = 10;
        gui_->JumptoLeft();
        QCOMPARE(view_->cursorTime, quint64(0));
        view_->cursorTime = 17;
        gui_->JumptoLeft();
        QCOMPARE(view_->cursorTime, quint64(7));

        view_->cursorTime = 100;
        gui_->JumptoLeft10();
        QCOMPARE(view_->cursorTime, quint64(0));
        view_->cursorTime = 150;
        gui_->JumptoLeft10();
        QCOMPARE(view_->cursorTime, quint64(50));

        view_->cursorTime = NoTime;
        gui_->JumptoRight();
        QCOMPARE(view_->cursorTime, quint64(10));
        gui_->JumptoRight();
        QCOMPARE(view_->cursorTime, quint64(20));
        gui_->JumptoRight10();
        QCOMPARE(view_->cursorTime, quint64(120));

        // The actions reach the same jumps.
        gui_->action(VokGUI::ActTickLeft)->trigger();
        QCOMPARE(view_->cursorTime, quint64(110));
        gui_->action(VokGUI::ActJumpZero)->trigger();
        QCOMPARE(view_->cursorTime, quint64(0));
    }

    void jumpsAlongTheActiveWave()
    {
        setView(0, 10);
        view_->cursorTime = 0;
        gui_->JumptoNext();
        QCOMPARE(view_->cursorTime, quint64(100));
        gui_->JumptoNext();
        QCOMPARE(view_->cursorTime, quint64(200));
        gui_->JumptoEnd();
        QCOMPARE(view_->cursorTime, quint64(1000));
        gui_->JumptoZero();
        QCOMPARE(view_->cursorTime, quint64(0));

        // Far jumps bring the cursor into view.
        gui_->setActiveWave(wave("long"));
        gui_->JumptoEnd();
        QCOMPARE(view_->cursorTime, quint64(100000));
        QVERIFY(gui_->startTime() <= 100000);
        QVERIFY(gui_->startTime() + quint64(viewWidth() / 20) * 10 >= 100000);

        // Without an active wave, Next and End do nothing.
        gui_->setActiveWave(nullptr);
        view_->cursorTime = 150;
        const quint64 start = gui_->startTime();
        gui_->JumptoNext();
        gui_->JumptoEnd();
        QCOMPARE(view_->cursorTime, quint64(150));
        QCOMPARE(gui_->startTime(), start);
    }

    void theMarker()
    {
        QVERIFY(!gui_->isMarked());
        view_->cursorTime = 420;
        gui_->placeMarker();
        QCOMPARE(view_->markerTime, quint64(420));
        QVERIFY(gui_->isMarked());

        view_->cursorTime = 10;
        gui_->JumptoMarker();
        QCOMPARE(view_->cursorTime, quint64(420));

        gui_->hideMarker();
        QCOMPARE(view_->markerTime, NoTime);
        QVERIFY(!gui_->isMarked());
    }

    void jumpToTypedTime()
    {
        view_->cursorTime = 5;
        QCOMPARE(jumpToTime({"150"}), QStringList{"Jump to Time"});
        QCOMPARE(view_->cursorTime, quint64(150));
        // Units convert: the document's unit is ns.
        jumpToTime({"0.3us"});
        QCOMPARE(view_->cursorTime, quint64(300));
        QCOMPARE(jumpToTime({"abc"}), (QStringList{"Jump to Time", "Waveform Editor|Invalid time."}));
        // An empty answer and a cancel do nothing, and show nothing more.
        QCOMPARE(jumpToTime({""}).size(), 1);
        QCOMPARE(jumpToTime({"cancel"}).size(), 1);
        QCOMPARE(view_->cursorTime, quint64(300));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestNavigation)

#include "test_navigation.moc"
