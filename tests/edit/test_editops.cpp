// Edit operations as the view, menus and keys drive them: the text they leave, the signals they send.
#include "undocommands.h"

#include "guifixture.h"

#include <limits>

#include <QScrollBar>

using namespace guitest;

namespace {

const QByteArray kA = "a { A I Default NRZ 0 1 50 } = 0 10 1 20 0 30 1 40;";
const QByteArray kD = "d[3:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 3 10 4 10 5 10;";
const QByteArray kDoc = wdl({kA, "z { A I Default NRZ 0 1 50 } = 0 10;", "x { A I Default NRZ 0 1 50 } = 1 10 2 10;",
                             "h { A I Default NRZ 0 1 50 } = 1 10 3 10;", kD, "m[3:0] { B I Default NRZ 0 1 50 } = 7 10 F 10;",
                             "n[3:0] { B I Default NRZ 0 1 50 } = 9 10;", "w[7:0] { B I Default NRZ 0 1 50 } = 12 10 34 10;",
                             "k[3:0] { B I Default NRZ 0 1 50 } = 1 10 DonTCare 10;",
                             "b { A I Default NRZ 0 1 50 } = 0 10 1 10(0 10 1 10)##;",
                             "e[3:0] { B I Default NRZ 0 1 50 } = 7 10 7 10 1 10 2 10 3 10 4 10 4 10 6 10;"});

} // namespace

class TestEditOps : public QObject
{
    Q_OBJECT

    // The values of a wave's saved line: what follows " = ", without the ';'.
    static QByteArray values(const Window& t, const QString& name)
    {
        return t.line(name).split('=').value(1).trimmed().chopped(1);
    }

private Q_SLOTS:
    void editOperations_data()
    {
        // Steps: "s=NAME:i,j" selects segments, "+=NAME:i" adds one, "e=T" clicks T past the current wave's
        // end; x cut, c copy, v paste, d clear (D: Delete key), 2 duplicate. Then the changed waves and the steps.
        addColumns<QString, QStringList, int>({"script", "changed", "steps"});
        // Past the end comes the next value: 0 and 1 alternate, a bus counts on and wraps to 0.
        const QStringList extended{"a=0 10 1 20 0 30 1 40 0 5", "z=0 10 1 5", "x=1 10 2 10 0 5", "h=1 10 3 10 0 5",
                                   "d[3:0]=1 10 2 10 3 10 4 10 5 10 6 5", "m[3:0]=7 10 F 10 0 5", "n[3:0]=9 10 A 5",
                                   "w[7:0]=12 10 34 10 35 5", "k[3:0]=1 10 DonTCare 10 0 5"};
        for (const QString& result : extended) {
            const QString name = result.section(QLatin1Char('='), 0, 0);
            QTest::addRow("extend %s", qPrintable(name)) << "s=" + name + ": e=5" << QStringList{result} << 1;
        }
        QTest::newRow("extend at the end") << "s=a: e=0" << QStringList{"a=0 10 1 20 0 30 1 40"} << 1;
        QTest::newRow("clear") << "s=a:1 d" << QStringList{"a=0 40 1 40"} << 1;
        // Equal neighbours far from the edit merge too.
        QTest::newRow("clear merges far") << "s=e[3:0]:3 d" << QStringList{"e[3:0]=7 20 1 10 3 10 4 20 6 10"} << 1;
        QTest::newRow("clear apart") << "s=d[3:0]:1,3 D" << QStringList{"d[3:0]=1 10 3 10 5 10"} << 1;
        QTest::newRow("clear leaves another wave's") << "s=a:1 +=z:0 d" << QStringList{"a=0 40 1 40", "z=0 10"} << 1;
        QTest::newRow("cut") << "s=d[3:0]:1,2,3 x" << QStringList{"d[3:0]=1 10 5 10"} << 1;
        QTest::newRow("cut pastes once") << "s=d[3:0]:1,2,3 x s=d[3:0]:1 v s=d[3:0]:0 v"
                                         << QStringList{"d[3:0]=1 10 2 10 3 10 4 10"} << 2;
        QTest::newRow("copy pastes again") << "s=a:0,1 c s=z:0 v s=z:1 v" << QStringList{"z=0 20 1 20", "a=0 10 1 20 0 30 1 40"}
                                           << 2;
        QTest::newRow("paste leaves another wave's") << "s=a:0 c s=a:0 +=z:0 v"
                                                     << QStringList{"a=0 10 1 20 0 30 1 40", "z=0 10"} << 1;
        QTest::newRow("bus onto single") << "s=d[3:0]:0 c s=a:0 v" << QStringList{"a=0 10 1 20 0 30 1 40"} << 0;
        QTest::newRow("narrow onto wide") << "s=d[3:0]:0 c s=w[7:0]:0 v" << QStringList{"w[7:0]=12 10 34 10"} << 0;
        QTest::newRow("single onto bus") << "s=a:0 c s=m[3:0]:0 v" << QStringList{"m[3:0]=7 10 F 10"} << 0;
        QTest::newRow("same width") << "s=d[3:0]:0 c s=m[3:0]:1 v" << QStringList{"m[3:0]=7 10 1 10"} << 1;
        // The head before a forever tail and the tail merge each in itself.
        QTest::newRow("head merges") << "s=a:0 c s=b:1 v" << QStringList{"b=0 20(0 10 1 10)##"} << 1;
        QTest::newRow("tail merges") << "s=a:0 c s=b:1 v s=b:2 v" << QStringList{"b=0 20(0 20)##"} << 2;
        QTest::newRow("duplicate keeps them apart") << "s=a:0 c s=b:1 v 2" << QStringList{"b_0=0 20(0 10 1 10)##"} << 2;
        QTest::newRow("clear into the tail") << "s=a:0 c s=b:1 v s=b:1,2 d" << QStringList{"b=0 20"} << 2;
    }
    void editOperations()
    {
        QFETCH(QString, script); QFETCH(QStringList, changed);
        Window t(kDoc);
        t.editMode(true);
        for (const QString& step : script.split(QLatin1Char(' '))) {
            const QString arg = step.section(QLatin1Char('='), 1);
            const QString name = arg.section(QLatin1Char(':'), 0, -2);
            QList<int> indexes;
            for (const QString& i : arg.section(QLatin1Char(':'), -1).split(QLatin1Char(','), Qt::SkipEmptyParts))
                indexes << i.toInt();
            switch (step.at(0).toLatin1()) {
            case 's': t.select(name, indexes); break;
            case '+': t->selection() << t.wave(name)->patterns.at(indexes.first()); break;
            case 'e': t->addEditData(t->activeWave()->getEndTime() + arg.toULongLong()); break;
            case 'x': t->cutData(); break;
            case 'c': t->copyData(); break;
            case 'v': t->pasteData(); break;
            case 'd': t->clearData(); break;
            case 'D': QTest::keyRelease(t.view(), Qt::Key_Delete); break;
            case '2': t->dupWave(); break;
            }
        }
        for (const QString& result : changed)
            QCOMPARE(values(t, result.section(QLatin1Char('='), 0, 0)), result.section(QLatin1Char('='), 1).toUtf8());
        QTEST(t.steps(), "steps");   // their undo: test_randomedits
    }

    // The clipboard's signals, what it owns, and how it lets go of removed waves.
    void clipboard()
    {
        Window t(kDoc);
        t.editMode(true);
        t.select("d[3:0]", {1, 2, 3});
        Spies pasteEdit(t.gui.get(), &VokGUI::pastedataChanged, &VokGUI::editdataChanged);
        const QList<Pattern*> taken = t->selection();
        t->cutData();
        QCOMPARE(t->clipboard(), taken);
        QVERIFY(t->isFromCut() && !t.wave("d[3:0]")->selected);
        QCOMPARE(pasteEdit.take(), (QList<QList<bool>>{{false}, {false}}));
        // Paste is offered for a selection on a wave of the clipboard's shape.
        for (const char* name : {"a", "m[3:0]"}) {
            t.select(QString::fromLatin1(name), {0});
            t->onEditDataChanged();
            QCOMPARE(pasteEdit.take().first().last(), name[0] == 'm');
        }
        t->pasteData();
        QVERIFY(t->clipboard().isEmpty());
        QCOMPARE(pasteEdit.take(), (QList<QList<bool>>{{false}, {false}}));
        // A copy is the clipboard's own; copying nothing empties it.
        t.select("a", {0, 1});
        pasteEdit.take();
        t->copyData();
        QCOMPARE(pasteEdit.take().first(), QList<bool>{true});
        QVERIFY(!t.wave("a")->patterns.contains(t->clipboard()[0]));
        QCOMPARE(t->clipboard()[1]->wave, t.wave("a"));
        t->selection().clear();
        t->copyData();
        QCOMPARE(pasteEdit.take().first(), QList<bool>{false});
        QVERIFY(t->clipboard().isEmpty());
        // Removed, d takes its cut pulses off the clipboard; another wave's removal leaves a copy.
        t.select("d[3:0]", {0, 1});
        t->cutData();
        Spies paste(t.gui.get(), &VokGUI::pastedataChanged);
        t->undoStack()->push(new DelWaveCommand({t.wave("d[3:0]")}, t.gui.get()));
        QVERIFY(t->clipboard().isEmpty());
        const QList<bool> offered = paste.take().first();
        QVERIFY(!offered.isEmpty() && !offered.contains(true));
        t->undo();
        t.select("a", {0});
        t->copyData();
        t.select("z", {0});
        t->clearData();
        QCOMPARE(t->clipboard().size(), 1);
        t->undoStack()->push(new DelWaveCommand({t.wave("a")}, t.gui.get()));
        QVERIFY(t->clipboard().isEmpty());
        t.select("m[3:0]", {0});
        t->copyData();
        t->ClearAll();
        QVERIFY(t->clipboard().isEmpty() && t->selection().isEmpty() && !t->activeWave());
        QCOMPARE(std::pair(t.steps(), t.saved()), std::pair(0, kHeader));
    }

    void extendByClickRefusesAndUndoDropsTheRange()
    {
        Window t(kDoc);
        t.editMode(true);
        WaveData* a = t.wave("a");
        t.select("a", {});
        t->addEditData(99);   // before the end
        t.editMode(false);
        t->addEditData(200);   // query mode
        t.editMode(true);
        t->waveList()->setCurrentIndex(QModelIndex());
        t->addEditData(200);   // no current row
        QCOMPARE(t.steps(), 0);
        // Far beyond the scroll range: the bar grows to reach the new end.
        t.select("a", {});
        const quint64 step = t->step();
        t->waveHBar()->setMaximum(1);
        const quint64 far = a->getEndTime() + step * 50;
        t->addEditData(far);
        QCOMPARE(t->waveHBar()->maximum(), int(far / step + 5));
        // A segment holds at most 2^31 - 1 units: a longer gap is refused.
        const quint64 max = quint64(std::numeric_limits<qint32>::max());
        t->addEditData(far + max + 1);
        QCOMPARE(t.steps(), 1);
        t->addEditData(far + max);
        QCOMPARE(a->patterns.last()->duration, std::numeric_limits<qint32>::max());
        // A clear undone, then redone.
        t.select("a", {1});
        t->clearData();
        for (bool undoing : {true, false}) {
            t->changeRange(10, 30);
            a->selected = true;
            Spies edit(t.gui.get(), &VokGUI::editdataChanged);
            undoing ? t->undo() : t->redo();
            // Both drop the selection; only undo also drops the range (which says so once more).
            QVERIFY(!a->selected && t->selection().isEmpty());
            QCOMPARE(t->selectionState().rangeStart, undoing ? -1.0 : 10.0);
            QCOMPARE(edit.take().first(), undoing ? (QList<bool>{false, false}) : QList<bool>{false});
        }
    }

    void duplicateNaming()
    {
        Window t(wdl({kA, kD}));
        t.list()->setCurrentIndex(QModelIndex());
        t->dupWave();   // no active wave
        QCOMPARE(t.steps(), 0);
        for (const char* name : {"a", "a", "a_0", "d[3:0]", "d[3:0]"}) {
            t->setActiveWave(t.wave(QString::fromLatin1(name)));
            t->dupWave();
        }
        QCOMPARE(t.listRows(), (QStringList{"a", "d[3:0]", "a_0", "a_1", "a_0_0", "d_0[3:0]", "d_1[3:0]"}));
        QCOMPARE(values(t, "d_1[3:0]"), values(t, "d[3:0]"));
    }

    void hideAndShow()
    {
        Window t(kDoc);
        QAction* hide = t->action(VokGUI::ActHideWave);
        t.list()->setCurrentIndex(QModelIndex());
        QVERIFY(!hide->isEnabled());   // no current row
        t->hideWave();
        QCOMPARE(t.steps(), 0);
        t.select("x", {});
        WaveData* x = t.wave("x");
        t->hideWave();
        QVERIFY(!x->visible && !x->selected);
        QCOMPARE(t.listRows(), (QStringList{"a", "z", "h", "d[3:0]", "m[3:0]", "n[3:0]", "w[7:0]", "k[3:0]", "b", "e[3:0]"}));
        QVERIFY(!t->isModified());
        // Undone, x is back and no row is current: there is nothing to hide.
        t->undo();
        QCOMPARE(t.listRows(), t.docOrder());
        QVERIFY(!t.list()->currentIndex().isValid() && !hide->isEnabled());
        t.list()->setCurrentIndex(t.list()->itemModel()->index(2, 0));
        QVERIFY(hide->isEnabled());
        hide->trigger();
        QVERIFY(!x->visible);
        // Showing rebuilds the whole list from the document's visible waves.
        t.wave("a")->visible = false;
        t->showWave(t.wave("z"));
        QCOMPARE(t.listRows(), (QStringList{"z", "h", "d[3:0]", "m[3:0]", "n[3:0]", "w[7:0]", "k[3:0]", "b", "e[3:0]"}));
        // Neither hiding nor showing is a change to save, nor their undoing.
        t->undo();
        t->undoStack()->push(new ShowWaveCommand({x}, t.gui.get()));
        QVERIFY(x->visible);
        t->undo();
        QVERIFY(!x->visible && !t->isModified());
    }

    void activeWaveAndModes()
    {
        Window t(kDoc);
        Spies active(t.gui.get(), &VokGUI::activeWaveChanged, &VokGUI::busWaveSelected);
        t->setActiveWave(t.wave("d[3:0]"));
        t->setActiveWave(t.wave("a"));
        t->setActiveWave(nullptr);
        QCOMPARE(active.take(), (QList<QList<bool>>{{true, true, false}, {true, false, false}}));
        Spies spies(t.gui.get(), &VokGUI::viewmodeChanged, &VokGUI::editdataChanged, &VokGUI::pastedataChanged);
        t.editMode(true);
        QCOMPARE(t->mode(), int(VokGUI::ModeEdit));
        QCOMPARE(spies.take(), (QList<QList<bool>>{{true}, {false}, {false}}));
        t.select("a", {1});
        t->copyData();
        t.select("z", {0});
        spies.take();
        t->onEditDataChanged();
        QCOMPARE(spies.take(), (QList<QList<bool>>{{}, {true}, {true}}));
        t.editMode(false);   // leaving edit mode drops the selection
        QVERIFY(t->mode() == VokGUI::ModeQuery && t->selection().isEmpty());
        QCOMPARE(spies.take(), (QList<QList<bool>>{{false}, {false}, {false}}));
        // A click 85 pixels down lands in the third row.
        t->selectWave(85);
        QCOMPARE(t->waveList()->currentIndex().row(), 2);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestEditOps)

#include "test_editops.moc"
