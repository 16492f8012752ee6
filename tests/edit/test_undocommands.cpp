// The deliberate quirks of each undo command (plain undo/redo exactness: test_randomedits).
#include "undocommands.h"

#include "guifixture.h"
#include "wavekind.h"

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

} // namespace

class TestUndoCommands : public QObject
{
    Q_OBJECT

    // Undoes one step of a document just saved: whether that left it modified.
    static bool undoDirties(Window& t) { return t->ResetDirtyBit(), t->undoStack()->undo(), t->isModified(); }

private Q_SLOTS:
    void nodeParaTypeAndOffsetQuirks()
    {
        Window t(kDoc);
        WaveData* x = snapshotOf(t.wave("c"));
        x->name = "x";
        t->undoStack()->push(new AddWaveCommand(x, t.gui.get()));
        WaveData* live = t.wave("x");
        // What the Waveform Properties view does before it pushes.
        live->polarity = WaveKind::Pattern;
        live->isPattern = true;
        live->name = "$x";
        t->undoStack()->push(new NodeParaCommand(live, WaveKind::Input, 0, t.gui.get()));
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kC, kD, kE, kF, "$x = 0 100;"}));
        t->undoStack()->undo();
        QCOMPARE(t->waveList()->itemModel()->item(t->waveList()->rowOf(live))->text(), "$x I");
        // The add no longer finds "x": the document keeps "$x" yet turns dirty.
        QVERIFY(undoDirties(t));
        QCOMPARE(t.docOrder(), kAll + QStringList{"$x"});
        // A type change keeps only 32 bits of the offset it restores.
        WaveData* b = t.wave("b");
        b->polarity = WaveKind::Bidir;
        b->offset = (quint64(1) << 31) + 5;
        t->undoStack()->push(new NodeParaCommand(b, WaveKind::Output, 0, t.gui.get()));
        QCOMPARE(t.line("b"), QByteArray("b { A B Default NRZ 18446744071562067973 1 50 } = 1 5 0 5;"));
        QCOMPARE(t->waveList()->itemModel()->item(2)->text(), "b B");
        QVERIFY(undoDirties(t));
        QCOMPARE(t->waveList()->itemModel()->item(2)->text(), "b O");
    }

    void delAndCutRestoreWhatTheyRecorded()
    {
        Window t(kDoc);
        t->setActiveWave(t.wave("a"));
        t->undoStack()->push(new DelWaveCommand({t.wave("a"), t.wave("c")}, t.gui.get()));
        QCOMPARE(t.listRows(), (QStringList{"$pat", "b", "d[3:0]", "e", "f[3:0]"}));
        QVERIFY(!t->activeWave());
        t->undoStack()->undo();
        QCOMPARE(t.saved(), kDoc);
        // Listed last-first: c goes back to index 3 while a is missing, so after d.
        t->undoStack()->push(new DelWaveCommand({t.wave("c"), t.wave("a")}, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.saved(), wdl({kPat, kA, kB, kD, kC, kE, kF}));
        QCOMPARE(t.listRows(), t.docOrder());
        // A wave of no document is appended; an empty list still turns dirty.
        std::unique_ptr<WaveData> stranger(snapshotOf(t.wave("c")));
        stranger->name = "zz";
        t->undoStack()->push(new DelWaveCommand({stranger.get()}, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.docOrder().last(), "zz");
        t->undoStack()->push(new DelWaveCommand({}, t.gui.get()));
        QVERIFY(undoDirties(t));
        // A cut undone and redone.
        WaveData* a = t.wave("a");
        std::unique_ptr<WaveData> before(snapshotOf(a));
        for (int i : {2, 1}) {
            Pattern* p = a->patterns[i];
            a->removeData(p);
            delete p;
        }
        t->undoStack()->push(new CutPatternCommand(a, before.get(), t.gui.get()));
        t->undoStack()->undo();
        // The redo removes the pulses the undo put back, from the selection too.
        t->selection() = {a->patterns[0], a->patterns[1]};
        t->undoStack()->redo();
        QCOMPARE(t.line("a"), QByteArray("a { A I Default NRZ 0 1 50 } = 0 10 1 40;"));
        QCOMPARE(t->selection(), QList<Pattern*>{a->patterns[0]});
    }

    void foreverUndoRestoresWhatRedoMerged_data()
    {
        addColumns<QString, int, QByteArray, QByteArray>({"name", "index", "redone", "undone"});
        // A bus keeps equal neighbours apart until an edit merges them.
        QTest::newRow("bus tail off") << "f[3:0]" << -1 << QByteArray("f[3:0] { B I Default NRZ 0 1 50 } = 1 20 2 10;") << kF;
        // The tail's start one pulse earlier.
        QTest::newRow("earlier") << "e" << 1 << QByteArray("e { A I Default NRZ 0 1 50 } = 0 10(1 10 0 10 1 10)##;") << kE;
    }
    void foreverUndoRestoresWhatRedoMerged()
    {
        QFETCH(QString, name); QFETCH(int, index);
        Window t(kDoc);
        WaveData* w = t.wave(name);
        // The Pulse Properties view clears the old mark before it pushes.
        w->patterns[w->foreverIndex]->forever = false;
        t->undoStack()->push(new ForeverCommand(w, index, t.gui.get()));
        QTEST(t.line(name), "redone");
        QVERIFY(undoDirties(t));
        QTEST(t.line(name), "undone");
    }

    void editPatternFindsTheWaveByName()
    {
        Window t(kDoc);
        WaveData* a = t.wave("a");
        std::unique_ptr<WaveData> before(snapshotOf(a));
        a->patterns[1]->value = "0";
        t->mergeAfterEdit(a);
        t->undoStack()->push(new EditPatternCommand(a, before.get(), t.gui.get()));
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
        t->removeWave(t.wave("a"));
        QVERIFY(!undoDirties(t));
    }

    void moveWaveGoesByDocumentPlaces()
    {
        // With b hidden, row 2 is c, which sits at document position 3.
        Window t(kDoc);
        t->undoStack()->push(new HideWaveCommand(t.wave("b"), t.gui.get()));
        WaveData* a = t.wave("a");
        t->undoStack()->push(new moveWaveCommand(a, 1, 2, t.gui.get()));
        const QStringList moved{"$pat", "b", "c", "a", "d[3:0]", "e", "f[3:0]"};
        QCOMPARE(t.docOrder(), moved);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "c", "a", "d[3:0]", "e", "f[3:0]"}));
        // Removed and put back, the wave is found again by its name.
        t->undoStack()->push(new DelWaveCommand({t.wave("b"), a}, t.gui.get()));
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), moved);
        QVERIFY(!t.wave("b")->visible);
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), kAll);
        QCOMPARE(t.listRows(), (QStringList{"$pat", "a", "c", "d[3:0]", "e", "f[3:0]"}));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestUndoCommands)

#include "test_undocommands.moc"
