#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTimer>
#include <QUndoStack>
#include <QtTest>

#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <memory>

using namespace kesu::toolvok;

namespace {
const char* const Document = "%MASTERCLOCKMULT = 1;\n"
                             "%SMALLESTUNIT = 9;\n"
                             "%AUTOASSIGN = 0;\n"
                             "%DECIMALS = 0;\n"
                             "%ENDTIME = 1000;\n"
                             "a { A I Default NRZ 0 1 50 } = 0 100 1 100 0 800;\n"
                             "b { A O Default NRZ 0 1 50 } = 1 1000;\n"
                             "bus[2:0] { A I Default NRZ 0 1 50 } = 0 500 7 500;\n"
                             "c { A B Default NRZ 0 1 50 } = 0 1000;\n";

constexpr int RowHeight = 40;

} // namespace

class TestNameList : public QObject
{
    Q_OBJECT

    QTemporaryDir dir_;
    std::unique_ptr<VokGUI> gui_;
    WaveLstView* list_ = nullptr;
    QMimeData mime_;

    WaveformData* doc() const { return gui_->document(); }
    WaveData* wave(const char* name) const { return doc()->findWavebyName(QLatin1String(name)); }

    QStringList titles() const
    {
        QStringList t;
        for (int row = 0; row < list_->itemModel()->rowCount(); ++row)
            t.append(list_->itemModel()->item(row)->text());
        return t;
    }

    QStringList order() const
    {
        QStringList names;
        for (const WaveData* w : doc()->waves)
            names.append(w->name);
        return names;
    }

    static QPoint rowPoint(int row) { return QPoint(40, row * RowHeight + RowHeight / 2); }

    void press(int row, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        QTimer watchdog;
        watchdog.setSingleShot(true);
        connect(&watchdog, &QTimer::timeout, [] { QDrag::cancel(); });
        watchdog.start(2000);
        QTest::mousePress(list_->viewport(), Qt::LeftButton, mods, rowPoint(row));
        QTest::mouseRelease(list_->viewport(), Qt::LeftButton, mods, rowPoint(row));
    }

    void doubleClick(int row)
    {
        QTimer watchdog;
        watchdog.setSingleShot(true);
        connect(&watchdog, &QTimer::timeout, [] { QDrag::cancel(); });
        watchdog.start(2000);
        QTest::mouseDClick(list_->viewport(), Qt::LeftButton, Qt::NoModifier, rowPoint(row));
    }

    bool enter(QPoint pos)
    {
        QDragEnterEvent event(pos, Qt::MoveAction | Qt::CopyAction, &mime_, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list_->viewport(), &event);
        return event.isAccepted() && event.dropAction() == Qt::MoveAction;
    }

    bool dragOver(QPoint pos)
    {
        QDragMoveEvent move(pos, Qt::MoveAction, &mime_, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list_->viewport(), &move);
        return move.isAccepted();
    }

    bool drop(QPoint pos)
    {
        QDropEvent event(pos, Qt::MoveAction, &mime_, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list_->viewport(), &event);
        return event.isAccepted();
    }

    int currentRow() const { return list_->currentIndex().row(); }

private Q_SLOTS:
    void init()
    {
        QVERIFY(dir_.isValid());
        const QString path = dir_.filePath(QStringLiteral("names.wdl"));
        QVERIFY(toolfixture::writeFile(path, Document));
        gui_ = toolfixture::openShown(path, QSize(1000, 600));
        QVERIFY(gui_);
        list_ = gui_->waveList();
        QCOMPARE(order(), (QStringList{"a", "b", "bus[2:0]", "c"}));
    }

    void cleanup()
    {
        gui_.reset();
        list_ = nullptr;
    }

    void busTitleFollowsExpansion()
    {
        WaveData* bus = wave("bus[2:0]");
        bus->name = QStringLiteral("D");
        list_->updateWaveTitle(bus);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) D I", "c B"}));

        doubleClick(2);
        QVERIFY(bus->expandFlag);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(-) D I", "bus[2]", "bus[1]", "bus[0]", "c B"}));
        for (int row = 3; row <= 5; ++row) {
            QCOMPARE(list_->waveAt(row), nullptr);
        }
        QCOMPARE(list_->waveAt(6), wave("c"));

        doubleClick(2);
        QVERIFY(!bus->expandFlag);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) D I", "c B"}));
        // Double clicks elsewhere expand nothing.
        doubleClick(0);
        doubleClick(3);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) D I", "c B"}));
    }

    void collapsingRemovesOneRowPerElement()
    {
        WaveData* bus = wave("bus[2:0]");
        bus->elements = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z"), QStringLiteral("w"),
                         QStringLiteral("v")};
        doubleClick(2);
        QCOMPARE(list_->itemModel()->rowCount(), 4 + 5);
        QCOMPARE(list_->waveAt(8), wave("c"));
        doubleClick(2);
        QCOMPARE(list_->itemModel()->rowCount(), 4);
        QCOMPARE(list_->waveAt(3), wave("c"));
    }

    void layoutUpdatesTheToolBars()
    {
        WaveData* bus = wave("bus[2:0]");
        for (int i = 0; i < 40; ++i)
            bus->elements.append(QStringLiteral("e%1").arg(i));
        QCOMPARE(gui_->waveVBar()->maximum(), 0);
        bus->expandFlag = true;
        list_->expandBus(list_->itemModel()->index(2, 0));   // no Refresh: only the layout
        QTRY_VERIFY(list_->verticalScrollBar()->maximum() > 0);
        QCOMPARE(gui_->waveVBar()->maximum(), list_->verticalScrollBar()->maximum());
        QCOMPARE(gui_->waveVBar()->pageStep(), list_->verticalScrollBar()->pageStep());
    }

    void pickingARowMakesItsWaveActive()
    {
        WaveData* a = wave("a");
        WaveData* b = wave("b");
        press(0);
        QCOMPARE(gui_->activeWave(), a);
        QVERIFY(a->selected);

        gui_->selection().append(a->patterns.first());
        press(1);
        QCOMPARE(currentRow(), 1);
        QCOMPARE(gui_->activeWave(), b);
        QVERIFY(b->selected);
        QVERIFY(!a->selected);
        QVERIFY(gui_->selection().isEmpty());
        QCOMPARE(gui_->undoStack()->count(), 0);
    }

    void elementRowsAndEmptySpaceHaveNoWave()
    {
        WaveData* bus = wave("bus[2:0]");
        doubleClick(2);
        press(2);
        QCOMPARE(gui_->activeWave(), bus);
        QVERIFY(bus->selected);
        press(4);
        QCOMPARE(currentRow(), 4);
        QCOMPARE(gui_->activeWave(), nullptr);
        QVERIFY(!bus->selected);

        // Below the last row: no current row at all.
        press(1);
        gui_->selection().append(wave("b")->patterns.first());
        press(20);
        QVERIFY(!list_->currentIndex().isValid());
        QCOMPARE(gui_->activeWave(), nullptr);
    }

    void modifiersAndReadOnlyStartNoMove()
    {
        press(0);
        QVERIFY(enter(rowPoint(0)));
        QVERIFY(drop(rowPoint(0)));
        QVERIFY(!list_->moving);
        // With a modifier the press is the list's own: it picks, moves nothing.
        press(1, Qt::ControlModifier);
        QVERIFY(!list_->moving);
        gui_->changeReadonlyMode(true);
        press(2);
        QCOMPARE(gui_->activeWave(), wave("bus[2:0]"));
        QVERIFY(!list_->moving);
        gui_->changeReadonlyMode(false);
        press(2);
        QVERIFY(list_->moving);
    }

    void dragMovesOneStepPerRow()
    {
        WaveData* a = wave("a");
        press(0);
        QVERIFY(list_->moving);
        QVERIFY(enter(rowPoint(0)));

        QVERIFY(dragOver(rowPoint(1)));
        QCOMPARE(order(), (QStringList{"b", "a", "bus[2:0]", "c"}));

        QVERIFY(dragOver(rowPoint(3)));
        QCOMPARE(order(), (QStringList{"b", "bus[2:0]", "c", "a"}));
        QCOMPARE(titles(), (QStringList{"b O", "(+) bus[2:0] I", "c B", "a I"}));
        QCOMPARE(currentRow(), 3);
        QCOMPARE(gui_->undoStack()->count(), 2);
        QCOMPARE(gui_->activeWave(), a);
        QVERIFY(a->selected);
        QVERIFY(drop(rowPoint(3)));

        gui_->undo();
        QCOMPARE(order(), (QStringList{"b", "a", "bus[2:0]", "c"}));
        gui_->undo();
        QCOMPARE(order(), (QStringList{"a", "b", "bus[2:0]", "c"}));

        // Upwards as well, and a collapsed bus may be dragged.
        press(2);
        QVERIFY(enter(rowPoint(2)));
        QVERIFY(dragOver(rowPoint(0)));
        QCOMPARE(order(), (QStringList{"bus[2:0]", "a", "b", "c"}));
        QCOMPARE(currentRow(), 0);
        QCOMPARE(gui_->activeWave(), wave("bus[2:0]"));
    }

    void refusedDrops()
    {
        doubleClick(2);   // the bus is expanded: rows a, b, bus, three elements, c
        QCOMPARE(list_->itemModel()->rowCount(), 7);
        press(0);
        QVERIFY(enter(rowPoint(0)));
        // An element row is no target.
        QVERIFY(!dragOver(rowPoint(4)));
        // Neither is the space below the rows.
        QVERIFY(!dragOver(rowPoint(9)));
        // Nor an expanded bus.
        QVERIFY(!dragOver(rowPoint(2)));
        QCOMPARE(gui_->undoStack()->count(), 0);

        // An expanded bus cannot be dragged either.
        press(2);
        QVERIFY(enter(rowPoint(2)));
        QVERIFY(!dragOver(rowPoint(6)));

        // Collapsed again, it moves.
        doubleClick(2);
        press(2);
        QVERIFY(enter(rowPoint(2)));
        QVERIFY(dragOver(rowPoint(3)));
        QCOMPARE(order(), (QStringList{"a", "b", "c", "bus[2:0]"}));
        QCOMPARE(gui_->undoStack()->count(), 1);
    }

    void undoneMovesFollowTheDocumentWhateverWasExpanded()
    {
        // c dragged above b and the bus, the bus expanded, both moves undone.
        press(3);
        QVERIFY(enter(rowPoint(3)));
        QVERIFY(dragOver(rowPoint(2)));
        QVERIFY(dragOver(rowPoint(1)));
        QVERIFY(drop(rowPoint(1)));
        doubleClick(3);
        QCOMPARE(titles(), (QStringList{"a I", "c B", "b O", "(-) bus[2:0] I", "bus[2]", "bus[1]", "bus[0]"}));
        gui_->undo();
        gui_->undo();
        QCOMPARE(order(), (QStringList{"a", "b", "bus[2:0]", "c"}));
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(-) bus[2:0] I", "bus[2]", "bus[1]", "bus[0]", "c B"}));
        gui_->redo();
        QCOMPARE(titles(), (QStringList{"a I", "b O", "c B", "(-) bus[2:0] I", "bus[2]", "bus[1]", "bus[0]"}));
        gui_->undo();
        // Collapsing takes the bus's own rows, and a click on the drawing
        // picks the wave drawn there.
        doubleClick(2);
        QCOMPARE(titles(), (QStringList{"a I", "b O", "(+) bus[2:0] I", "c B"}));
        gui_->action(VokGUI::ActEditMode)->setChecked(true);
        QTest::mouseClick(gui_->waveView(), Qt::LeftButton, {}, QPoint(30, 3 * RowHeight + 20));
        QCOMPARE(gui_->activeWave(), wave("c"));
        QCOMPARE(gui_->selection(), QList<Pattern*>{wave("c")->patterns.first()});
    }
};

VOK_SANDBOXED_TEST_MAIN(TestNameList)

#include "test_namelist.moc"
