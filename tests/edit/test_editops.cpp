// The edit operations of the tool window as the wave view, the menus and the
// keyboard drive them: the document text they leave and the availability
// signals they send to the actions.
#include "undocommands.h"

#include "guifixture.h"
#include "sandboxedtestmain.h"
#include "waveview.h"

#include <limits>

#include <QKeyEvent>
#include <QScrollBar>
#include <QUndoStack>

using namespace kesu::toolvok;
using namespace guitest;

namespace {

const QByteArray kA = "a { A I Default NRZ 0 1 50 } = 0 10 1 20 0 30 1 40;";
const QByteArray kZ = "z { A I Default NRZ 0 1 50 } = 0 10;";
const QByteArray kX = "x { A I Default NRZ 0 1 50 } = 1 10 2 10;";
const QByteArray kH = "h { A I Default NRZ 0 1 50 } = 1 10 3 10;";
const QByteArray kD = "d[3:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 3 10 4 10 5 10;";
const QByteArray kM = "m[3:0] { B I Default NRZ 0 1 50 } = 7 10 F 10;";
const QByteArray kN = "n[3:0] { B I Default NRZ 0 1 50 } = 9 10;";
const QByteArray kW = "w[7:0] { B I Default NRZ 0 1 50 } = 12 10 34 10;";
const QByteArray kK = "k[3:0] { B I Default NRZ 0 1 50 } = 1 10 DonTCare 10;";
const QByteArray kB = "b { A I Default NRZ 0 1 50 } = 0 10 1 10(0 10 1 10)##;";
const QByteArray kDoc = wdl({kA, kZ, kX, kH, kD, kM, kN, kW, kK, kB});

QByteArray single(const char* name, const char* segments)
{
    return QByteArray(name) + " { A I Default NRZ 0 1 50 } = " + segments + ';';
}
QByteArray bus(const char* name, const char* segments)
{
    return QByteArray(name) + " { B I Default NRZ 0 1 50 } = " + segments + ';';
}

} // namespace

class TestEditOps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extendByClickFollowsTheLastValue()
    {
        Window t(kDoc);
        t.editMode(true);
        QSignalSpy undoable(t.gui.get(), &VokGUI::undoAvailable);
        for (const char* name : {"a", "z", "x", "h", "d[3:0]", "m[3:0]", "n[3:0]", "w[7:0]", "k[3:0]"}) {
            t.select(QString::fromLatin1(name), {});
            WaveData* w = t.wave(QString::fromLatin1(name));
            t->addEditData(w->getEndTime() + 5);
            QCOMPARE(t->selection(), QList<Pattern*>{w->patterns.last()});
        }
        QCOMPARE(emitted(undoable), QList<bool>(9, true));
        QCOMPARE(t.saved(), wdl({single("a", "0 10 1 20 0 30 1 40 0 5"), single("z", "0 10 1 5"),
                                 single("x", "1 10 2 10 0 5"), single("h", "1 10 3 10 0 5"),
                                 bus("d[3:0]", "1 10 2 10 3 10 4 10 5 10 6 5"), bus("m[3:0]", "7 10 F 10 0 5"),
                                 bus("n[3:0]", "9 10 A 5"), bus("w[7:0]", "12 10 34 10 35 5"),
                                 bus("k[3:0]", "1 10 DonTCare 10 0 5"), kB}));
    }

    void extendByClickPreconditions()
    {
        Window t(kDoc);
        t.editMode(true);
        WaveData* a = t.wave(QStringLiteral("a"));
        t.select(QStringLiteral("a"), {});
        // Right at the end: a step on the stack, but no pulse of no length.
        t->addEditData(100);
        QCOMPARE(t->undoStack()->count(), 1);
        QVERIFY(t->selection().isEmpty());

        t->addEditData(99);   // before the end
        t.editMode(false);
        t->addEditData(200);   // query mode
        t.editMode(true);
        t->waveList()->setCurrentIndex(QModelIndex());
        t->addEditData(200);   // no current row
        QCOMPARE(t->undoStack()->count(), 1);
        QCOMPARE(t.saved(), kDoc);

        // Far beyond the scroll range: the bar grows to reach the new end.
        t.select(QStringLiteral("a"), {});
        const quint64 step = t->step();
        t->waveHBar()->setMaximum(1);
        const quint64 far = a->getEndTime() + step * 50;
        t->addEditData(far);
        QCOMPARE(t->waveHBar()->maximum(), int(far / step + 5));
        QCOMPARE(a->getEndTime(), far);

        // A segment holds at most 2^31 - 1 units: a longer gap is refused.
        const quint64 end = a->getEndTime();
        const quint64 max = quint64(std::numeric_limits<qint32>::max());
        t->addEditData(end + max + 1);
        QCOMPARE(t->undoStack()->count(), 2);
        t->addEditData(end + max);
        QCOMPARE(a->patterns.last()->duration, std::numeric_limits<qint32>::max());
    }

    void clearTakesTimeOut()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("a"), {1});
        QSignalSpy edit(t.gui.get(), &VokGUI::editdataChanged);
        t->clearData();
        QCOMPARE(t.saved(), wdl({single("a", "0 40 1 40"), kZ, kX, kH, kD, kM, kN, kW, kK, kB}));
        QVERIFY(t->selection().isEmpty());
        QCOMPARE(emitted(edit), QList<bool>{false});
        t->clearData();   // nothing selected
        QCOMPARE(t->undoStack()->count(), 1);

        // Two pulses apart, by the Delete key on the wave view.
        t->undo();
        t.select(QStringLiteral("d[3:0]"), {1, 3});
        QKeyEvent del(QEvent::KeyRelease, Qt::Key_Delete, Qt::NoModifier);
        QVERIFY(QCoreApplication::sendEvent(t->waveView(), &del));
        QCOMPARE(t.saved(), wdl({kA, kZ, kX, kH, bus("d[3:0]", "1 10 3 10 5 10"), kM, kN, kW, kK, kB}));
    }

    void cutPastesOnce()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("d[3:0]"), {1, 2, 3});
        const QList<Pattern*> taken = t->selection();
        QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
        QSignalSpy edit(t.gui.get(), &VokGUI::editdataChanged);
        t->cutData();
        QCOMPARE(t.saved(), wdl({kA, kZ, kX, kH, bus("d[3:0]", "1 10 5 10"), kM, kN, kW, kK, kB}));
        QCOMPARE(t->clipboard(), taken);
        QVERIFY(t->isFromCut());
        QVERIFY(!t.wave(QStringLiteral("d[3:0]"))->selected);
        QCOMPARE(emittedAll({&paste, &edit}), (QList<QList<bool>>{{false}, {false}}));

        // Three cut pulses over one: they go in front of it, it goes.
        t.select(QStringLiteral("d[3:0]"), {1});
        t->onEditDataChanged();
        QCOMPARE(emitted(paste).last(), true);
        paste.clear();
        edit.clear();
        t->pasteData();
        const QByteArray pasted = wdl({kA, kZ, kX, kH, bus("d[3:0]", "1 10 2 10 3 10 4 10"), kM, kN, kW, kK, kB});
        QCOMPARE(t.saved(), pasted);
        QVERIFY(t->clipboard().isEmpty());
        QCOMPARE(emittedAll({&paste, &edit}), (QList<QList<bool>>{{false}, {false}}));
        t.select(QStringLiteral("d[3:0]"), {0});
        t->pasteData();
        QCOMPARE(t->undoStack()->count(), 2);
    }

    void copyPastesManyTimes()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("a"), {0, 1});
        QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
        t->copyData();
        QCOMPARE(emitted(paste), QList<bool>{true});
        QVERIFY(!t->isFromCut());
        WaveData* a = t.wave(QStringLiteral("a"));
        QVERIFY(!a->patterns.contains(t->clipboard()[0]));
        QCOMPARE(t->clipboard()[1]->wave, a);

        t.select(QStringLiteral("z"), {0});
        t->pasteData();
        QCOMPARE(t.saved(), wdl({kA, single("z", "0 10 1 20"), kX, kH, kD, kM, kN, kW, kK, kB}));
        t.select(QStringLiteral("z"), {1});
        t->pasteData();   // the pasted 0 meets the 0 before it
        QCOMPARE(t.saved(), wdl({kA, single("z", "0 20 1 20"), kX, kH, kD, kM, kN, kW, kK, kB}));
        QCOMPARE(t->clipboard().size(), 2);

        t->selection().clear();
        paste.clear();
        t->copyData();   // nothing selected: nothing to paste
        QCOMPARE(emitted(paste), QList<bool>{false});
        QVERIFY(t->clipboard().isEmpty());
    }

    void pasteRefusesOtherShapes()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("d[3:0]"), {0});
        t->copyData();
        for (const char* target : {"a", "w[7:0]"}) {
            t.select(QString::fromLatin1(target), {0});
            QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
            t->onEditDataChanged();
            t->pasteData();
            QCOMPARE(emitted(paste), QList<bool>{false});
        }
        t.select(QStringLiteral("a"), {0});
        t->copyData();
        t.select(QStringLiteral("m[3:0]"), {0});
        t->pasteData();
        QCOMPARE(t->undoStack()->count(), 0);

        t.select(QStringLiteral("d[3:0]"), {0});
        t->copyData();
        t.select(QStringLiteral("m[3:0]"), {1});
        t->pasteData();   // another bus of the same width takes it
        QCOMPARE(t.saved(), wdl({kA, kZ, kX, kH, kD, bus("m[3:0]", "7 10 1 10"), kN, kW, kK, kB}));
    }

    void mergingStopsAtTheForeverStart()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("a"), {0});
        t->copyData();
        t.select(QStringLiteral("b"), {1});
        t->pasteData();
        WaveData* b = t.wave(QStringLiteral("b"));
        const QByteArray headMerged = wdl({kA, kZ, kX, kH, kD, kM, kN, kW, kK, single("b", "0 20(0 10 1 10)##")});
        QCOMPARE(t.saved(), headMerged);
        QCOMPARE(b->foreverIndex, 1);
        t.select(QStringLiteral("b"), {2});
        t->pasteData();   // merges within the tail only
        QCOMPARE(t.saved(), wdl({kA, kZ, kX, kH, kD, kM, kN, kW, kK, single("b", "0 20(0 20)##")}));
        t->undo();

        // Equal values on both sides of the tail's start stay two pulses
        // through a copy of the wave and through the undo of a clear.
        t->setActiveWave(b);
        t->dupWave();
        QCOMPARE(t.saved(), headMerged + single("b_0", "0 20(0 10 1 10)##") + '\n');
        t->undo();
        t.select(QStringLiteral("b"), {1, 2});
        t->clearData();
        QCOMPARE(t.saved(), wdl({kA, kZ, kX, kH, kD, kM, kN, kW, kK, single("b", "0 20")}));
        t->undo();
        QCOMPARE(t.saved(), headMerged);
    }

    void clipboardLetsGoOfRemovedWaves()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("d[3:0]"), {0, 1});
        t->cutData();
        QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
        t->undoStack()->push(new DelWaveCommand({t.wave("d[3:0]")}, t.gui.get()));
        QVERIFY(t->clipboard().isEmpty());
        QVERIFY(!paste.isEmpty() && !emitted(paste).contains(true));
        t->undo();

        t.select(QStringLiteral("a"), {0});
        t->copyData();
        t.select(QStringLiteral("z"), {0});
        t->clearData();
        QCOMPARE(t->clipboard().size(), 1);   // another wave's removal leaves it
        t->undoStack()->push(new DelWaveCommand({t.wave("a")}, t.gui.get()));
        QVERIFY(t->clipboard().isEmpty());

        t.select(QStringLiteral("m[3:0]"), {0});
        t->copyData();
        t->ClearAll();
        QVERIFY(t->clipboard().isEmpty() && t->selection().isEmpty());
        QCOMPARE(t->undoStack()->count(), 0);
        QVERIFY(!t->activeWave());
        QCOMPARE(t.saved(), kHeader);
    }

    void duplicateNaming()
    {
        Window t(wdl({kA, kD}));
        t.list()->setCurrentIndex(QModelIndex());
        QSignalSpy active(t.gui.get(), &VokGUI::activeWaveChanged);
        t->dupWave();   // no active wave
        QCOMPARE(t->undoStack()->count(), 0);
        for (const char* name : {"a", "a", "a_0", "d[3:0]", "d[3:0]"}) {
            t->setActiveWave(t.wave(QString::fromLatin1(name)));
            t->dupWave();
        }
        QCOMPARE(t.listRows(), (QStringList{"a", "d[3:0]", "a_0", "a_1", "a_0_0", "d_0[3:0]", "d_1[3:0]"}));
        QCOMPARE(t.saved(), wdl({kA, kD, single("a_0", "0 10 1 20 0 30 1 40"), single("a_1", "0 10 1 20 0 30 1 40"),
                                 single("a_0_0", "0 10 1 20 0 30 1 40"), bus("d_0[3:0]", "1 10 2 10 3 10 4 10 5 10"),
                                 bus("d_1[3:0]", "1 10 2 10 3 10 4 10 5 10")}));
        QCOMPARE(emitted(active), QList<bool>(5, true));
    }

    void hideAndShow()
    {
        Window t(kDoc);
        QAction* hide = t->action(VokGUI::ActHideWave);
        t.list()->setCurrentIndex(QModelIndex());
        QVERIFY(!hide->isEnabled());   // no current row
        t->hideWave();
        QCOMPARE(t->undoStack()->count(), 0);
        t.select(QStringLiteral("x"), {});
        WaveData* x = t.wave(QStringLiteral("x"));
        t->hideWave();
        QVERIFY(!x->visible && !x->selected);
        QCOMPARE(t.listRows(), (QStringList{"a", "z", "h", "d[3:0]", "m[3:0]", "n[3:0]", "w[7:0]", "k[3:0]", "b"}));
        QVERIFY(!t->isModified());
        // Undone, x is back and no row is current: there is nothing to hide.
        t->undo();
        QCOMPARE(t.listRows(), t.docOrder());
        QVERIFY(!t.list()->currentIndex().isValid());
        QVERIFY(!hide->isEnabled());
        t.list()->setCurrentIndex(t.list()->itemModel()->index(2, 0));
        QVERIFY(hide->isEnabled());
        hide->trigger();
        QVERIFY(!x->visible);

        // Showing rebuilds the whole list from the document's visible waves.
        t.wave(QStringLiteral("a"))->visible = false;
        t->showWave(t.wave(QStringLiteral("z")));
        QCOMPARE(t.listRows(), (QStringList{"z", "h", "d[3:0]", "m[3:0]", "n[3:0]", "w[7:0]", "k[3:0]", "b"}));
    }

    void activeWaveAndModes()
    {
        Window t(kDoc);
        QSignalSpy active(t.gui.get(), &VokGUI::activeWaveChanged);
        QSignalSpy isBus(t.gui.get(), &VokGUI::busWaveSelected);
        t->setActiveWave(t.wave(QStringLiteral("d[3:0]")));
        t->setActiveWave(t.wave(QStringLiteral("a")));
        t->setActiveWave(nullptr);
        QCOMPARE(emittedAll({&active, &isBus}), (QList<QList<bool>>{{true, true, false}, {true, false, false}}));

        QSignalSpy view(t.gui.get(), &VokGUI::viewmodeChanged);
        QSignalSpy edit(t.gui.get(), &VokGUI::editdataChanged);
        QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
        const QList<QSignalSpy*> spies{&view, &edit, &paste};
        t.editMode(true);
        QCOMPARE(t->mode(), int(VokGUI::ModeEdit));
        QCOMPARE(emittedAll(spies), (QList<QList<bool>>{{true}, {false}, {false}}));

        t.select(QStringLiteral("a"), {1});
        t->copyData();
        t.select(QStringLiteral("z"), {0});
        emittedAll(spies);
        t->onEditDataChanged();
        QCOMPARE(emittedAll(spies), (QList<QList<bool>>{{}, {true}, {true}}));

        t.editMode(false);   // leaving edit mode drops the selection
        QCOMPARE(t->mode(), int(VokGUI::ModeQuery));
        QVERIFY(t->selection().isEmpty());
        QCOMPARE(emittedAll(spies), (QList<QList<bool>>{{false}, {false}, {false}}));

        // A click 85 pixels down lands in the third row.
        t->selectWave(85);
        QCOMPARE(t->waveList()->currentIndex().row(), 2);
    }

    void readOnlyModeSilencesEditing()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("a"), {0});
        t->addEditData(200);
        t.select(QStringLiteral("a"), {0});

        QSignalSpy undo(t.gui.get(), &VokGUI::undoAvailable);
        QSignalSpy redo(t.gui.get(), &VokGUI::redoAvailable);
        QSignalSpy file(t.gui.get(), &VokGUI::fileChanged);
        QSignalSpy view(t.gui.get(), &VokGUI::viewmodeChanged);
        QSignalSpy editable(t.gui.get(), &VokGUI::editAvailable);
        QSignalSpy edit(t.gui.get(), &VokGUI::editdataChanged);
        QSignalSpy paste(t.gui.get(), &VokGUI::pastedataChanged);
        QSignalSpy always(t.gui.get(), &VokGUI::alwaysAvailable);
        const QList<QSignalSpy*> spies = {&undo, &redo, &file, &view, &editable, &edit, &paste, &always};
        t->changeReadonlyMode(true);
        QVERIFY(t->isReadOnly());
        QCOMPARE(t->mode(), int(VokGUI::ModeQuery));
        QVERIFY(t->selection().isEmpty());
        QCOMPARE(emittedAll(spies),
                 (QList<QList<bool>>{{false}, {false}, {false}, {false, false}, {false}, {false}, {false}, {true}}));

        t->selection() = {t.wave(QStringLiteral("a"))->patterns[0]};
        t->onEditDataChanged();
        t->onUndoChanged(true);
        t->SetDirtyBit();
        QCOMPARE(emittedAll(spies), (QList<QList<bool>>{{false}, {}, {false}, {}, {}, {false}, {false}, {}}));

        t->changeReadonlyMode(false);   // still in query mode
        QCOMPARE(emittedAll(spies),
                 (QList<QList<bool>>{{true}, {false}, {true}, {true}, {true}, {false}, {false}, {true}}));
        QCOMPARE(t->mode(), int(VokGUI::ModeQuery));
    }

    void undoDropsTheRangeRedoKeepsIt()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select(QStringLiteral("a"), {1});
        t->clearData();
        WaveData* a = t.wave(QStringLiteral("a"));
        for (bool undoing : {true, false}) {
            t->changeRange(10, 30);
            a->selected = true;
            QSignalSpy edit(t.gui.get(), &VokGUI::editdataChanged);
            if (undoing)
                t->undo();
            else
                t->redo();
            QVERIFY(!a->selected);
            QCOMPARE(t.sel().rangeStart, undoing ? -1.0 : 10.0);
            // Both drop the selection; only undo also drops the range (which says so once more).
            QVERIFY(t->selection().isEmpty());
            QCOMPARE(emitted(edit), undoing ? (QList<bool>{false, false}) : QList<bool>{false});
        }
    }

    void segmentsOfAnotherWaveInTheSelectionSurviveClearAndPaste()
    {
        Window t(kDoc);
        t.editMode(true);
        WaveData* z = t.wave(QStringLiteral("z"));
        Pattern* foreign = z->patterns.first();
        t.select(QStringLiteral("a"), {1});
        t->selection().append(foreign);
        t->clearData();
        QCOMPARE(z->patterns.first(), foreign);   // still there, not freed (ASan would say)
        QCOMPARE(foreign->duration, 10);

        t.select(QStringLiteral("a"), {0});
        t->copyData();
        t.select(QStringLiteral("a"), {0});
        t->selection().append(foreign);
        t->pasteData();
        QCOMPARE(z->patterns.first(), foreign);
        QCOMPARE(t.saved(), wdl({single("a", "0 40 1 40"), kZ, kX, kH, kD, kM, kN, kW, kK, kB}));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestEditOps)

#include "test_editops.moc"
