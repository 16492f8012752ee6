// The wave list dialogs driven as a user does, then their work undone and redone; every menu slot's dialog and help.
#include "basehelp.h"
#include "guifixture.h"
#include "importdlg.h"
#include "importvcddlg.h"
#include "shelltest.h"
#include "wavelistdlg.h"
#include "wavelistmodel.h"

namespace {

const QByteArray kNodes = "clk i\nrst_n i\nq[0] o\nq[1] o\nio b\ntp n\nvdd r\nodd X\na o\nclk o\n";
const QByteArray kBinary("\x7f" "ELF\x02\0\0 i\n", 10);
const QHash<QString, QString> kBadFileMessages{{"!missing", "Cannot open NAF file %1"},
    {"!binary", "%1 is not a NAF node list."}, {"!empty", "The NAF file %1 lists no nodes."}};
const QByteArray kDoc = "%SMALLESTUNIT = 9;\n$pat = 0 2 1 4;\na { A I Default NRZ 0 1 50 } = 0 10;\n"
                        "b { A O Default NRZ 0 1 50 } = 1 5;\nc { A I Default NRZ 0 1 50 } = 0 7;\n"
                        "d[3:0] { B B Default NRZ 0 1 50 } = 3 10;\ne { A G Default NRZ 0 1 50 } = 1 4;\n";

// "name:polarity" of each wave.
QString names(const QList<WaveData*>& waves)
{
    QStringList out;
    for (const WaveData* w : waves)
        out << w->name + ':' + QString::number(w->polarity);
    return out.join(' ');
}

// The waves of a dialog's list or of the tool's name list, by row.
QString rowNames(const QStandardItemModel* model)
{
    QStringList out;
    for (int row = 0; row < model->rowCount(); ++row)
        out << static_cast<const WaveItem*>(model->item(row))->wave->name;
    return out.join(' ');
}

// Ctrl+clicks the rows of these waves, in this order.
void pick(QListView* list, const QStringList& wanted)
{
    const auto* model = static_cast<const WaveListModel*>(list->model());
    for (const QString& name : wanted) {
        const int row = int(rowNames(model).split(' ').indexOf(name));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          list->visualRect(model->index(row, 0)).center());
    }
}

} // namespace

class TestDialogs : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    std::unique_ptr<VokGUI> gui;

private Q_SLOTS:
    void init()
    {
        QVERIFY(writeFile(path("doc.wdl"), kDoc) && writeFile(path("design.naf"), kNodes));
        QVERIFY(gui = openShown(path("doc.wdl"), QSize(900, 600)));
    }
    void cleanup() { gui.reset(); }

    void import_data()
    {
        // -k/+k untick/tick kind k; >> all; >a,b and <a,b pick and move; !file read a bad file
        addColumns<QString, QString>({"steps", "imported"});
        const QString all = "clk:0 rst_n:0 q[0]:1 q[1]:1 io:2 tp:3 vdd:4 odd:3";
        QTest::newRow("all, known and repeated names once") << ">>" << all;
        QTest::newRow("no Input") << "-0 >>" << "q[0]:1 q[1]:1 io:2 tp:3 vdd:4 odd:3 clk:1";
        QTest::newRow("no Output") << "-1 >>" << "clk:0 rst_n:0 io:2 tp:3 vdd:4 odd:3";
        QTest::newRow("no Bidir") << "-2 >>" << "clk:0 rst_n:0 q[0]:1 q[1]:1 tp:3 vdd:4 odd:3";
        QTest::newRow("no TextPt") << "-3 >>" << "clk:0 rst_n:0 q[0]:1 q[1]:1 io:2 vdd:4";
        QTest::newRow("no Global, ticked again") << "-4 +4 -4 >>" << "clk:0 rst_n:0 q[0]:1 q[1]:1 io:2 tp:3 odd:3";
        QTest::newRow("filter keeps the chosen") << ">> -0 -1" << all;
        QTest::newRow("some, in list order") << ">vdd,clk" << "clk:0 vdd:4";
        QTest::newRow("some taken back") << ">> <q[1],io" << "clk:0 rst_n:0 q[0]:1 tp:3 vdd:4 odd:3";
        QTest::newRow("all taken back") << ">> <<" << "";
        QTest::newRow("only a known name") << ">a" << "";
        QTest::newRow("missing file, list kept") << ">> !missing" << all;
        QTest::newRow("binary file, list kept") << ">> !binary" << all;
        QTest::newRow("file without nodes, list emptied") << ">> !empty" << "";
    }
    void import()
    {
        QFETCH(QString, steps);
        WaveData* bus = gui->document()->findWavebyName("d[3:0]");
        bus->expandFlag = true;  // its bits stay in the name list when an import is undone
        gui->waveList()->expandBus(gui->waveList()->itemModel()->index(gui->waveList()->rowOf(bus), 0));
        auto listRows = [&] { return gui->waveList()->itemModel()->rowCount(); };
        ImportDlg dialog(gui->fullFileName(), gui.get());
        dialog.show();
        {
            ModalAnswerer browsing({choose(path("design.naf"))});
            QTest::mouseClick(dialog.browseButton(), Qt::LeftButton);
            VERIFY_ANSWERED(browsing);
            QCOMPARE(browsing.said() + browsing.seen.value(0).filters,
                     (QStringList{"Open Existing Waveform File", "NAF File (*.naf)", "All Files (*)"}));
        }
        QCOMPARE(dialog.importedModel()->rowCount(), 10);
        QVERIFY(dialog.addAllButton()->isEnabled() && !dialog.addButton()->isEnabled());
        for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
            if (step == ">>" || step == "<<") {
                QTest::mouseClick(step == ">>" ? dialog.addAllButton() : dialog.delAllButton(), Qt::LeftButton);
            } else if (step.front() == '-' || step.front() == '+') {
                QTest::mouseClick(dialog.filterBox(step.mid(1).toInt()), Qt::LeftButton);
            } else if (step.front() == '!') {
                const QString bad = path("bad.naf");
                QFile::remove(bad);
                QVERIFY(step == "!missing" || writeFile(bad, step == "!binary" ? kBinary : "name_only\n"));
                ModalAnswerer answerer({press(QMessageBox::Ok)});
                QCOMPARE(dialog.loadNodeList(bad), step == "!empty");
                VERIFY_ANSWERED(answerer);
                QCOMPARE(answerer.seen.value(0).text, kBadFileMessages.value(step).arg(bad));
                QCOMPARE(answerer.seen.value(0).icon, step == "!empty" ? QMessageBox::Information : QMessageBox::Critical);
            } else {
                const bool adding = step.front() == '>';
                pick(adding ? dialog.importedList() : dialog.selectedList(), step.mid(1).split(','));
                QVERIFY(adding ? dialog.addButton()->isEnabled() : dialog.delButton()->isEnabled());
                QTest::mouseClick(adding ? dialog.addButton() : dialog.delButton(), Qt::LeftButton);
            }
        }
        dialog.buttonBox()->button(QDialogButtonBox::Ok)->click();
        QVERIFY(dialog.result() == QDialog::Accepted && gui->undoStack()->count() == 1);
        for (int round = 0; round < 2; ++round) {
            QTEST(names(gui->document()->waves.mid(6)), "imported");
            QCOMPARE(listRows(), 10 + gui->document()->waves.size() - 6);
            gui->undoStack()->undo();
            QCOMPARE(names(gui->document()->waves), QStringLiteral("$pat:5 a:0 b:1 c:0 d[3:0]:2 e:4"));
            QCOMPARE(listRows(), 10);
            gui->undoStack()->redo();
        }
    }

    // File > Import VCD: a new untitled document; a faulty dump or Cancel keeps the old one.
    void importVcd_data()
    {
        // steps: -name unticks, from:T and to:T type, "edit" changes the document first;
        // outcome: the waves, the unit and the end, or the last message shown
        addColumns<QByteArray, QString, QString>({"vcd", "steps", "outcome"});
        const QByteArray vcd = "$timescale 10ns $end\n$scope module top $end\n$var wire 1 ! clk $end\n"
                               "$var reg 4 # d [3:0] $end\n$var real 64 % r $end\n$upscope $end\n$enddefinitions $end\n"
                               "#0\n0!\nb0 #\n#2\n1!\nbz #\n#4\n";
        QTest::newRow("every signal") << vcd << "" << "clk:0 d[3:0]:0 unit 9 end 40";
        QTest::newRow("one, cropped") << vcd << "-top.d[3:0] from:10ns to:3" << "clk:0 unit 9 end 20";
        QTest::newRow("changes kept") << vcd << "edit" << "Do you want to save your changes?";
        QByteArray wide = vcd;
        QTest::newRow("a bus too wide, a name twice")
            << wide.insert(wide.indexOf("$upscope"), "$var wire 70000 & w $end\n$var wire 1 ' clk $end\n") << ""
            << "clk:0 d[3:0]:0 unit 9 end 40|Imported @, except:\nskipped top.clk, declared twice\nskipped w[69999:0], a bus too wide";
        QTest::newRow("faulty dump") << vcd.left(60) << "" << "Cannot import @: line 3: $var has no $end";
        // A refused choice warns and keeps the dialog open; it is cancelled then.
        QTest::newRow("no signal") << vcd << "-top.clk -top.d[3:0]" << "Choose at least one signal.";
        QTest::newRow("between units") << vcd << "from:15ns" << "\"15ns\" is no time in whole units of the dump.";
        QTest::newRow("from after to") << vcd << "from:3 to:2" << "From must come before To.";
    }
    void importVcd()
    {
        QFETCH(QByteArray, vcd); QFETCH(QString, steps); QFETCH(QString, outcome);
        QVERIFY(writeFile(path("sim.vcd"), vcd));
        const bool imported = outcome.contains(" unit ");
        const QString note = outcome.section('|', 1).replace('@', path("sim.vcd"));
        outcome = outcome.section('|', 0, 0);
        if (steps == "edit")
            gui->SetDirtyBit();
        QList<Answer> answers{choose(path("sim.vcd"))};
        if (!outcome.startsWith("Cannot")) {
            answers << act([&](QWidget* modal) {
                auto* dialog = qobject_cast<ImportVcdDlg*>(modal);
                QVERIFY(dialog);
                auto* list = dialog->findChild<QListWidget*>();
                QCOMPARE(list->item(2)->text(), QStringLiteral("top.r (real, not imported)"));
                QTest::keyRelease(list, Qt::Key_F1);
                QCOMPARE(BaseHelp::currentPage(), QStringLiteral(":/help/import_vcd.html"));
                QVERIFY(list->whatsThis().size() > 40);
                BaseHelp::helpWindow()->hide();
                for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
                    if (step.startsWith('-'))
                        list->findItems(step.mid(1), Qt::MatchExactly).value(0)->setCheckState(Qt::Unchecked);
                    else if (step.startsWith("from:") || step.startsWith("to:"))
                        dialog->findChildren<QLineEdit*>().value(step.startsWith("to:"))->setText(step.section(':', 1));
                }
                // Queued: a refused choice brings up a warning of its own.
                QTimer::singleShot(0, dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                                   &QAbstractButton::click);
            });
        }
        const bool warned = !imported && !outcome.startsWith("Cannot") && steps != "edit";
        if (!note.isEmpty())
            answers << press(QMessageBox::Ok);
        if (warned)
            answers << press(QMessageBox::Ok) << act([](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); });
        else if (!imported)
            answers << press(steps == "edit" ? QMessageBox::Cancel : QMessageBox::Ok);
        const QByteArray before = savedText(*gui);
        ModalAnswerer answerer(answers);
        gui->fileImportVcd();
        VERIFY_ANSWERED(answerer);
        if (imported) {
            const WaveformData* doc = gui->document();
            QCOMPARE(QStringLiteral("%1 unit %2 end %3").arg(names(doc->waves)).arg(doc->smallestUnit).arg(doc->endTime), outcome);
            QVERIFY(gui->isModified() && gui->fullFileName().isEmpty() && gui->windowTitle().contains("Untitled"));
            QCOMPARE(answerer.said().size() == 3 ? answerer.said().constLast() : QString(), note);
            return;
        }
        // A warning comes before the dialog's cancelling.
        QCOMPARE(answerer.said().value(answerer.said().size() - (warned ? 2 : 1)), outcome.replace('@', path("sim.vcd")));
        QCOMPARE(savedText(*gui), before);
    }

    void showAndRemove_data()
    {
        // unticked: a filter box, -1 none; after: the name list's rows
        addColumns<bool, QString, int, QString, QString, QString>({"showMode", "hidden", "unticked", "listed", "picked", "after"});
        const QString all = "$pat a b c d[3:0] e";
        QTest::newRow("remove two, picked last first") << false << "" << -1 << all << "c a" << "$pat b d[3:0] e";
        QTest::newRow("remove, patterns unlisted") << false << "" << 5 << "a b c d[3:0] e" << "e b" << "$pat a c d[3:0]";
        QTest::newRow("remove a hidden one") << false << "b" << 0 << "$pat b d[3:0] e" << "b $pat" << "a c d[3:0] e";
        QTest::newRow("show two of three") << true << "a c e" << -1 << "a c e" << "e a" << "$pat a b d[3:0] e";
        QTest::newRow("show, Global unlisted") << true << "a e" << 4 << "a" << "a" << "$pat a b c d[3:0]";
        QTest::newRow("show, nothing hidden") << true << "" << -1 << "" << "" << all;
        QTest::newRow("remove, a current row but nothing picked") << false << "" << -1 << all << "" << all;
    }
    void showAndRemove()
    {
        QFETCH(bool, showMode); QFETCH(QString, hidden); QFETCH(int, unticked);
        QFETCH(QString, listed); QFETCH(QString, picked);
        for (const QString& name : hidden.split(' ', Qt::SkipEmptyParts))
            gui->hideWave(gui->document()->findWavebyName(name));
        const QByteArray saved = savedText(*gui);
        const QString rowsBefore = rowNames(gui->waveList()->itemModel());
        WaveListDlg dialog(showMode, gui.get());
        dialog.show();
        if (unticked >= 0)
            QTest::mouseClick(dialog.filterBox(unticked), Qt::LeftButton);
        QCOMPARE(rowNames(dialog.model()), listed);
        QVERIFY(!listed.isEmpty() || !dialog.actionButton()->isEnabled());
        if (listed.isEmpty())
            return;
        pick(dialog.waveList(), picked.split(' ', Qt::SkipEmptyParts));
        if (picked.isEmpty())
            dialog.waveList()->selectionModel()->setCurrentIndex(dialog.model()->index(0, 0), QItemSelectionModel::NoUpdate);
        gui->ResetDirtyBit();
        QTest::mouseClick(dialog.actionButton(), Qt::LeftButton);
        if (picked.isEmpty()) {
            QVERIFY(!gui->isModified() && gui->undoStack()->count() == 0);
            return;
        }
        QVERIFY(dialog.isVisible() && gui->isModified());
        QCOMPARE(dialog.model()->rowCount(), listed.count(' ') - picked.count(' '));  // the shown or removed go
        QTEST(rowNames(gui->waveList()->itemModel()), "after");
        QCOMPARE(gui->undoStack()->count(), 1);
        gui->undoStack()->undo();
        QCOMPARE(savedText(*gui), saved);
        QCOMPARE(rowNames(gui->waveList()->itemModel()), rowsBefore);
        gui->undoStack()->redo();
        QTEST(rowNames(gui->waveList()->itemModel()), "after");
    }

    // Every menu slot opens its dialog; F1 and Help open its page; what's-this texts say something.
    void slotsOpenDialogsWithHelp_data()
    {
        addColumns<QByteArray, QString>({"slot", "topic"});   // the dialog's title is the row's name
        QTest::newRow("Add New Wave") << QByteArray("newWave") << "add_wave";
        QTest::newRow("Time Settings") << QByteArray("editTimeUnit") << "time_setting";
        QTest::newRow("Import Wave") << QByteArray("importWave") << "import_wave";
        QTest::newRow("Show Waves") << QByteArray("showWave") << "show_wave";
        QTest::newRow("Remove Waves") << QByteArray("removeWave") << "remove_wave";
        QTest::newRow("Page Setup") << QByteArray("filePageSetup") << "page_setup";
    }
    void slotsOpenDialogsWithHelp()
    {
        QFETCH(QByteArray, slot); QFETCH(QString, topic);
        const QString title = QString::fromLatin1(QTest::currentDataTag());
        const QString page = ":/help/" + topic + ".html";
        QStringList seen;
        for (int round = 0; round < 2; ++round) {
            QTimer::singleShot(0, this, [&] {
                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                QVERIFY(dialog);
                seen << dialog->windowTitle();
                QTest::keyRelease(dialog, Qt::Key_F1);
                QCOMPARE(BaseHelp::currentPage(), page);
                BaseHelp::openHelpUrl();
                dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Help)->click();
                QCOMPARE(BaseHelp::currentPage(), page);
                for (const QWidget* w : dialog->findChildren<QWidget*>())
                    QVERIFY(!(w->inherits("QAbstractItemView") || w->inherits("QComboBox")) || w->whatsThis().size() > 40);
                if (auto* import = qobject_cast<ImportDlg*>(dialog)) {
                    seen << QFileInfo(import->startPath()).fileName();
                    if (round == 0)
                        import->loadNodeList(path("design.naf"));
                }
                dialog->reject();
            });
            QVERIFY(QMetaObject::invokeMethod(gui.get(), slot.constData()));
        }
        BaseHelp::helpWindow()->hide();
        // The second time the import's file dialog starts at the node list.
        QCOMPARE(seen.join('|'), slot == "importWave" ? title + "|doc.wdl|" + title + "|design.naf" : title + '|' + title);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestDialogs)

#include "test_dialogs.moc"
