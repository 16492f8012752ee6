// The undoable commands on a loaded document: the deliberate quirks of each
// command's redo and undo in the saved text, the name list and the dirty state.
// Plain undo/redo exactness is left to the random-edit test.
#include "undocommands.h"

#include "guifixture.h"
#include "sandboxedtestmain.h"

#include <QUndoStack>

using namespace kesu::toolvok;
using namespace guitest;

namespace {

const QByteArray kPat = "$pat = 0 2 1 4;";
const QByteArray kA = "a { A I Default NRZ 0 1 50 } = 0 10 1 20 0 30 1 40;";
const QByteArray kB = "b { A O Default NRZ 0 1 50 } = 1 5 0 5;";
const QByteArray kC = "c { A I Default NRZ 0 1 50 } = 0 100;";
const QByteArray kD = "d[3:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 F 10;";
const QByteArray kE = "e { A I Default NRZ 0 1 50 } = 0 10 1 10(0 10 1 10)##;";
const QByteArray kF = "f[3:0] { B I Default NRZ 0 1 50 } = 1 10(1 10 2 10)##;";
const QByteArray kDoc = wdl({kPat, kA, kB, kC, kD, kE, kF});
const QStringList kAll{"$pat", "a", "b", "c", "d[3:0]", "e", "f[3:0]"};

WaveData* newWave(const QString& name, const QList<QPair<const char*, int>>& segments)
{
    auto* w = new WaveData(name);
    w->polarity = 0;
    w->waveType = 1;
    for (const auto& s : segments) {
        auto* p = new Pattern(s.first, s.second);
        if (!w->addData(p))
            delete p;
    }
    return w;
}

} // namespace

class TestUndoCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addWaveAddsAFreshCopyEachRedo()
    {
        Window t(kDoc);
        WaveData* given = newWave(QStringLiteral("n"), {{"1", 7}, {"0", 3}});
        t->undoStack()->push(new AddWaveCommand(given, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, kE, kF, "n { A I Default NRZ 0 1 50 } = 1 7 0 3;"}));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QVERIFY(t->isModified());
        t->undoStack()->redo();
        QVERIFY(t.wave("n") != given);
    }

    void typeChangeToPatternOutlivesUndoOfTheAdd()
    {
        Window t(kDoc);
        t->undoStack()->push(new AddWaveCommand(newWave(QStringLiteral("x"), {{"1", 7}}), t.gui.get()));
        WaveData* live = t.wave(QStringLiteral("x"));
        // What the Waveform Properties view does before it pushes.
        const int oldPolarity = live->polarity;
        const int oldOffset = static_cast<int>(live->offset);
        live->polarity = 5;
        live->isPattern = true;
        live->name = QStringLiteral("$x");
        t->undoStack()->push(new NodeParaCommand(live, oldPolarity, oldOffset, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, kE, kF, "$x = 1 7;"}));

        t->undoStack()->undo();
        QCOMPARE(live->polarity, 0);
        QCOMPARE(live->name, QStringLiteral("$x"));
        QCOMPARE(t->waveList()->itemModel()->item(t->waveList()->rowOf(live))->text(), QStringLiteral("$x I"));
        // The add no longer finds "x": the document keeps "$x" yet turns dirty.
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), kAll + QStringList{"$x"});
        QVERIFY(t->isModified());
    }

    void delWaveReinsertsAtRecordedPositions()
    {
        Window t(kDoc);
        t->setActiveWave(t.wave(QStringLiteral("a")));
        QSignalSpy active(t.gui.get(), &VokGUI::activeWaveChanged);
        t->undoStack()->push(new DelWaveCommand({t.wave("a"), t.wave("c")}, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kB, kD, kE, kF}));
        QCOMPARE(t.listRows(), (QStringList{"$pat", "b", "d[3:0]", "e", "f[3:0]"}));
        QCOMPARE(emitted(active), QList<bool>{false});
        QVERIFY(!t->activeWave());
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);

        // Listed last-first: c goes back to index 3 while a is still missing,
        // so it lands after d.
        t->undoStack()->push(new DelWaveCommand({t.wave("c"), t.wave("a")}, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kD, kC, kE, kF}));
        QCOMPARE(t.listRows(), t.docOrder());
    }

    void delWaveOfAStrangerAppendsOnUndo()
    {
        Window t(kDoc);
        std::unique_ptr<WaveData> stranger(newWave(QStringLiteral("zz"), {{"0", 1}}));
        t->ResetDirtyBit();
        t->undoStack()->push(new DelWaveCommand({stranger.get()}, t.gui.get()));
        QCOMPARE(t.saved(), kDoc);
        QVERIFY(t->isModified());
        t->undoStack()->undo();
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, kE, kF, "zz { A I Default NRZ 0 1 50 } = 0 1;"}));

        t->ResetDirtyBit();
        t->undoStack()->push(new DelWaveCommand({}, t.gui.get()));
        QVERIFY(t->isModified());
    }

    void showAndHideNeverTouchTheDirtyBit()
    {
        Window t(kDoc);
        WaveData* b = t.wave(QStringLiteral("b"));
        b->selected = true;
        QSignalSpy dirty(t.gui.get(), &VokGUI::fileChanged);
        t->undoStack()->push(new HideWaveCommand(b, t.gui.get()));
        QVERIFY(!b->visible && !b->selected);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "a", "c", "d[3:0]", "e", "f[3:0]"}));

        WaveData* d = t.wave(QStringLiteral("d[3:0]"));
        t->hideWave(d);
        t->undoStack()->push(new ShowWaveCommand({d, b}, t.gui.get()));
        QCOMPARE(t.listRows(), kAll);
        t->undoStack()->undo();
        QVERIFY(!b->visible && !d->visible);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "a", "c", "e", "f[3:0]"}));
        QVERIFY(dirty.isEmpty());
        QVERIFY(!t->isModified());
    }

    void foreverUndoRestoresWhatRedoMerged()
    {
        Window t(kDoc);
        // A bus keeps equal neighbours apart until an edit merges them; the
        // Pulse Properties view clears the old mark before switching forever off.
        WaveData* f = t.wave(QStringLiteral("f[3:0]"));
        f->patterns[f->foreverIndex]->forever = false;
        t->undoStack()->push(new ForeverCommand(f, -1, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, kE, "f[3:0] { B I Default NRZ 0 1 50 } = 1 20 2 10;"}));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        QCOMPARE(f->foreverIndex, 1);
        QVERIFY(t->isModified());

        // On a single signal the pulse before the tail takes the tail's first value.
        WaveData* e = t.wave(QStringLiteral("e"));
        e->patterns[1]->value = "0";
        e->patterns[2]->forever = false;
        t->undoStack()->push(new ForeverCommand(e, -1, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, "e { A I Default NRZ 0 1 50 } = 0 30 1 10;", kF}));
        t->undoStack()->undo();
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, "e { A I Default NRZ 0 1 50 } = 0 10 0 10(0 10 1 10)##;", kF}));
        QCOMPARE(e->foreverIndex, 2);
    }

    void foreverMovesTheTailStart()
    {
        // Moving the tail's start one pulse earlier; the caller clears the old mark first.
        Window t(kDoc);
        WaveData* e = t.wave(QStringLiteral("e"));
        e->patterns[2]->forever = false;
        t->undoStack()->push(new ForeverCommand(e, 1, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, "e { A I Default NRZ 0 1 50 } = 0 10(1 10 0 10 1 10)##;", kF}));
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        QVERIFY(!e->patterns[1]->forever);
    }

    void editPatternFindsTheWaveByName()
    {
        Window t(kDoc);
        WaveData* a = t.wave(QStringLiteral("a"));
        std::unique_ptr<WaveData> before(snapshotOf(a));
        a->patterns[1]->value = "0";
        t->mergeAfterEdit(a);
        t->undoStack()->push(new EditPatternCommand(a, before.get(), t.gui.get()));
        before.reset();
        const QByteArray edited = wdl({kPat, "a { A I Default NRZ 0 1 50 } = 0 60 1 40;", kB, kC, kD, kE, kF});
        QCOMPARE(t.saved(), edited);

        // Removed and put back: another object of the same name.
        t->undoStack()->push(new DelWaveCommand({a}, t.gui.get()));
        t->undoStack()->undo();
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        t->undoStack()->redo();
        QCOMPARE(t.saved(), edited);

        // Gone for good: nothing to restore, and nothing turns dirty.
        t->removeWave(t.wave(QStringLiteral("a")));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QVERIFY(!t->isModified());
        QCOMPARE(t.saved(), wdl({kPat, kB, kC, kD, kE, kF}));
    }

    void cutPatternDropsSurplusFromTheSelection()
    {
        Window t(kDoc);
        WaveData* a = t.wave(QStringLiteral("a"));
        std::unique_ptr<WaveData> before(snapshotOf(a));
        for (int i : {2, 1}) {
            Pattern* p = a->patterns[i];
            a->removeData(p);
            delete p;
        }
        t->undoStack()->push(new CutPatternCommand(a, before.get(), t.gui.get()));
        const QByteArray cut = wdl({kPat, "a { A I Default NRZ 0 1 50 } = 0 10 1 40;", kB, kC, kD, kE, kF});
        QCOMPARE(t.saved(), cut);
        t->undoStack()->undo();
        // The last two pulses no longer exist after the redo: a selection
        // that held one of them lets go of it.
        t->selection() = {a->patterns[0], a->patterns[3]};
        t->undoStack()->redo();
        QCOMPARE(t.saved(), cut);
        QCOMPARE(t->selection(), QList<Pattern*>{a->patterns[0]});
    }

    void nodeParaKeepsOnlyThirtyTwoBitsOfOffset()
    {
        Window t(kDoc);
        WaveData* b = t.wave(QStringLiteral("b"));
        b->polarity = 2;
        b->offset = (quint64(1) << 31) + 5;
        t->undoStack()->push(new NodeParaCommand(b, 1, 0, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, "b { A B Default NRZ 18446744071562067973 1 50 } = 1 5 0 5;", kC, kD, kE, kF}));
        QCOMPARE(t->waveList()->itemModel()->item(2)->text(), QStringLiteral("b B"));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t->waveList()->itemModel()->item(2)->text(), QStringLiteral("b O"));
        QVERIFY(t->isModified());
        t->undoStack()->redo();

        b->offset = 1000;
        t->undoStack()->push(new NodeParaCommand(b, 2, -2147483643, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(b->offset, quint64(18446744071562067973ULL));
    }

    void timeUnitMarksDirtyEvenUnchanged()
    {
        Window t(kDoc);
        t->undoStack()->push(new TimeUnitCommand(9, 0, t.gui.get()));
        QVERIFY(t->isModified());
        QCOMPARE(t.saved(), kDoc);
        t->undoStack()->push(new TimeUnitCommand(12, 3, t.gui.get()));
        QByteArray changed = kDoc;
        changed.replace("%SMALLESTUNIT = 9;", "%SMALLESTUNIT = 12;").replace("%DECIMALS = 0;", "%DECIMALS = 3;");
        QCOMPARE(t.saved(), changed);
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        QVERIFY(t->isModified());
    }

    void importTwiceOverLeavesOneCopy()
    {
        Window t(kDoc);
        std::unique_ptr<WaveData> p(newWave(QStringLiteral("p"), {{"1", 3}}));
        std::unique_ptr<WaveData> q(newWave(QStringLiteral("q"), {{"-2", 4}}));
        QSignalSpy dirty(t.gui.get(), &VokGUI::fileChanged);
        t->undoStack()->push(new ImportWaveCommand({p.get(), q.get()}, t.gui.get()));
        QVERIFY(!dirty.isEmpty() && !emitted(dirty).contains(false));
        const QByteArray imported = wdl({kPat, kA, kB, kC, kD, kE, kF, "p { A I Default NRZ 0 1 50 } = 1 3;",
                                         "q { A I Default NRZ 0 1 50 } = 3 4;"});
        QCOMPARE(t.saved(), imported);
        QVERIFY(t.wave("p") != p.get());
        for (int round = 0; round < 2; ++round) {
            t->undoStack()->undo();
            QCOMPARE(t.listRows(), kAll);
            t->undoStack()->redo();
            QCOMPARE(t.saved(), imported);
        }
    }

    void moveWaveFindsAReinsertedCopyByName()
    {
        Window t(kDoc);
        WaveData* a = t.wave(QStringLiteral("a"));
        t->undoStack()->push(new moveWaveCommand(a, 1, 3, t.gui.get()));
        const QByteArray moved = wdl({kPat, kB, kC, kA, kD, kE, kF});
        QCOMPARE(t.saved(), moved);
        QCOMPARE(t.listRows(), t.docOrder());
        t->undoStack()->push(new DelWaveCommand({a}, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.saved(), moved);
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        QCOMPARE(t.listRows(), kAll);
    }

    void hiddenWavesKeepRowsAndDocumentApart()
    {
        // Rows count shown waves only; with b hidden, row 2 is c, which sits
        // at document position 3.
        Window t(kDoc);
        t->undoStack()->push(new HideWaveCommand(t.wave(QStringLiteral("b")), t.gui.get()));
        t->undoStack()->push(new moveWaveCommand(t.wave(QStringLiteral("a")), 1, 2, t.gui.get()));
        const QStringList movedDoc{"$pat", "b", "c", "a", "d[3:0]", "e", "f[3:0]"};
        QCOMPARE(t.listRows(), (QStringList{"$pat", "c", "a", "d[3:0]", "e", "f[3:0]"}));
        QCOMPARE(t.docOrder(), movedDoc);
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), kAll);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "a", "c", "d[3:0]", "e", "f[3:0]"}));
        t->undoStack()->redo();

        // The hidden wave removed and brought back keeps its place and gets no row.
        t->undoStack()->push(new DelWaveCommand({t.wave(QStringLiteral("b")), t.wave(QStringLiteral("e"))},
                                                t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), movedDoc);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "c", "a", "d[3:0]", "e", "f[3:0]"}));
        QVERIFY(!t.wave(QStringLiteral("b"))->visible);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestUndoCommands)

#include "test_undocommands.moc"
