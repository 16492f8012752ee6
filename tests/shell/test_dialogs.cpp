// The Import Wave and Show/Remove Waves dialogs driven as a user does, the
// menu slots that open every dialog, and every dialog's help.
#include "basehelp.h"
#include "importdlg.h"
#include "wavedata.h"
#include "wavelistdlg.h"
#include "wavelistmodel.h"
#include "wavelstview.h"

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QListView>
#include <QTemporaryDir>
#include <QUndoStack>

using namespace kesu::toolvok;

namespace {

const QByteArray kNodes = "clk i\nrst_n i\nq[0] o\nq[1] o\nio b\ntp n\nvdd r\nodd X\na o\nclk o\n";
const QByteArray kDoc = "%SMALLESTUNIT = 9;\n$pat = 0 2 1 4;\na { A I Default NRZ 0 1 50 } = 0 10;\n"
                        "b { A O Default NRZ 0 1 50 } = 1 5;\nc { A I Default NRZ 0 1 50 } = 0 7;\n"
                        "d[3:0] { B B Default NRZ 0 1 50 } = 3 10;\ne { A G Default NRZ 0 1 50 } = 1 4;\n";

QStringList names(const QList<WaveData*>& waves, bool withKind = false)
{
    QStringList out;
    for (const WaveData* w : waves)
        out << (withKind ? w->name + ':' + QString::number(w->polarity) : w->name);
    return out;
}

QStringList rowNames(const WaveListModel* model)
{
    QStringList out;
    for (int row = 0; row < model->rowCount(); ++row)
        out << model->waveAt(row)->name;
    return out;
}

// Ctrl+clicks the rows of these waves, in this order.
void pick(QListView* list, const QStringList& wanted)
{
    const auto* model = static_cast<const WaveListModel*>(list->model());
    for (const QString& name : wanted) {
        const int row = int(rowNames(model).indexOf(name));
        QVERIFY2(row >= 0, qPrintable(name));
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
    std::unique_ptr<VokGUI> open()
    {
        if (!toolfixture::writeFile(path("doc.wdl"), kDoc) || !toolfixture::writeFile(path("design.naf"), kNodes))
            return nullptr;
        return toolfixture::openShown(path("doc.wdl"), QSize(900, 600));
    }

private Q_SLOTS:
    void import_data()
    {
        QTest::addColumn<QString>("steps");  // -k/+k untick/tick kind k; >> all; >a,b and <a,b pick and move
        QTest::addColumn<QStringList>("imported");
        const QStringList all{"clk:0", "rst_n:0", "q[0]:1", "q[1]:1", "io:2", "tp:3", "vdd:4", "odd:3"};
        auto without = [&](QStringList names) {
            QStringList out = all;
            for (const QString& n : names)
                out.removeAll(n);
            return out;
        };
        QTest::newRow("all, known and repeated names once") << ">>" << all;
        QTest::newRow("no Input") << "-0 >>" << without({"clk:0", "rst_n:0"}) + QStringList{"clk:1"};
        QTest::newRow("no Output") << "-1 >>" << without({"q[0]:1", "q[1]:1"});
        QTest::newRow("no Bidir") << "-2 >>" << without({"io:2"});
        QTest::newRow("no TextPt") << "-3 >>" << without({"tp:3", "odd:3"});
        QTest::newRow("no Global, ticked again") << "-4 +4 -4 >>" << without({"vdd:4"});
        QTest::newRow("filter keeps the chosen") << ">> -0 -1" << all;
        QTest::newRow("some, in list order") << ">vdd,clk" << QStringList{"clk:0", "vdd:4"};
        QTest::newRow("some taken back") << ">> <q[1],io" << without({"q[1]:1", "io:2"});
        QTest::newRow("all taken back") << ">> <<" << QStringList{};
        QTest::newRow("none") << "" << QStringList{};
        QTest::newRow("only a known name") << ">a" << QStringList{};
    }
    void import()
    {
        QFETCH(QString, steps);
        QFETCH(QStringList, imported);
        auto gui = open();
        QVERIFY(gui);
        // The bits of an expanded bus stay in the name list when an import is undone.
        WaveData* bus = gui->document()->findWavebyName("d[3:0]");
        bus->expandFlag = true;
        gui->waveList()->expandBus(gui->waveList()->itemModel()->index(gui->waveList()->rowOf(bus), 0));
        auto listRows = [&] { return gui->waveList()->itemModel()->rowCount(); };
        QCOMPARE(listRows(), 10);
        ImportDlg dialog(gui->fullFileName(), gui.get());
        dialog.show();
        {
            ModalAnswerer answerer({choose(path("design.naf"))});
            QTest::mouseClick(dialog.browseButton(), Qt::LeftButton);
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.value(0).title, QStringLiteral("Open Existing Waveform File"));
            QCOMPARE(answerer.seen.value(0).filters, (QStringList{"NAF File (*.naf)", "All Files (*)"}));
        }
        QCOMPARE(dialog.importedModel()->rowCount(), 10);
        QVERIFY(dialog.addAllButton()->isEnabled() && !dialog.addButton()->isEnabled());
        for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
            if (step == ">>" || step == "<<") {
                QTest::mouseClick(step == ">>" ? dialog.addAllButton() : dialog.delAllButton(), Qt::LeftButton);
            } else if (step.front() == '-' || step.front() == '+') {
                QCheckBox* box = dialog.filterBox(step.mid(1).toInt());
                QCOMPARE(box->isChecked(), step.front() == '-');
                QTest::mouseClick(box, Qt::LeftButton);
            } else {
                const bool adding = step.front() == '>';
                pick(adding ? dialog.importedList() : dialog.selectedList(), step.mid(1).split(','));
                QVERIFY(adding ? dialog.addButton()->isEnabled() : dialog.delButton()->isEnabled());
                QTest::mouseClick(adding ? dialog.addButton() : dialog.delButton(), Qt::LeftButton);
            }
        }
        dialog.buttonBox()->button(QDialogButtonBox::Ok)->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        const QStringList before{"$pat", "a", "b", "c", "d[3:0]", "e"};
        QCOMPARE(names(gui->document()->waves.mid(6), true), imported);
        QCOMPARE(gui->undoStack()->count(), 1);
        for (int round = 0; round < 2; ++round) {
            gui->undoStack()->undo();
            QCOMPARE(names(gui->document()->waves), before);
            QCOMPARE(listRows(), 10);
            gui->undoStack()->redo();
            QCOMPARE(names(gui->document()->waves.mid(6), true), imported);
            QCOMPARE(listRows(), 10 + imported.size());
        }
    }

    void importRefusesBadFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");  // null: no such file
        QTest::addColumn<QString>("message");   // %1 the path
        QTest::addColumn<int>("rowsAfter");
        QTest::newRow("missing") << QByteArray() << "Cannot open NAF file %1" << 10;
        QTest::newRow("binary") << QByteArray("\x7f" "ELF\x02\x01\x01\0\0\0 i\n", 13) << "%1 is not a NAF node list." << 10;
        QTest::newRow("no nodes") << QByteArray("just_a_name\n\n") << "The NAF file %1 lists no nodes." << 0;
    }
    void importRefusesBadFiles()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, message);
        QFETCH(int, rowsAfter);
        auto gui = open();
        QVERIFY(gui);
        ImportDlg dialog(gui->fullFileName(), gui.get());
        dialog.show();
        QVERIFY(dialog.loadNodeList(path("design.naf")));
        QTest::mouseClick(dialog.addAllButton(), Qt::LeftButton);
        const QString bad = path("bad.naf");
        QFile::remove(bad);
        QVERIFY(bytes.isNull() || toolfixture::writeFile(bad, bytes));
        ModalAnswerer answerer({press(QMessageBox::Ok)});
        QCOMPARE(dialog.loadNodeList(bad), !bytes.isNull() && rowsAfter == 0);
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.seen.value(0).title, QStringLiteral("Waveform Editor"));
        QCOMPARE(answerer.seen.value(0).text, message.arg(bad));
        QCOMPARE(dialog.importedModel()->rowCount(), rowsAfter);
        QCOMPARE(dialog.selectedModel()->rowCount(), rowsAfter);
        QCOMPARE(dialog.startPath(), rowsAfter ? path("design.naf") : bad);
    }

    void showAndRemove_data()
    {
        QTest::addColumn<bool>("showMode");
        QTest::addColumn<QStringList>("hidden");
        QTest::addColumn<int>("unticked");  // a filter box, -1 none
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QStringList>("picked");
        QTest::addColumn<QStringList>("after");  // the name list's rows
        const QStringList all{"$pat", "a", "b", "c", "d[3:0]", "e"};
        QTest::newRow("remove two, picked last first")
            << false << QStringList{} << -1 << all << QStringList{"c", "a"} << QStringList{"$pat", "b", "d[3:0]", "e"};
        QTest::newRow("remove without patterns listed")
            << false << QStringList{} << 5 << all.mid(1) << QStringList{"e", "b"} << QStringList{"$pat", "a", "c", "d[3:0]"};
        QTest::newRow("remove a hidden one") << false << QStringList{"b"} << 0 << QStringList{"$pat", "b", "d[3:0]", "e"}
                                             << QStringList{"b", "$pat"} << QStringList{"a", "c", "d[3:0]", "e"};
        QTest::newRow("show two of three") << true << QStringList{"a", "c", "e"} << -1 << QStringList{"a", "c", "e"}
                                           << QStringList{"e", "a"} << QStringList{"$pat", "a", "b", "d[3:0]", "e"};
        QTest::newRow("show without Global listed") << true << QStringList{"a", "e"} << 4 << QStringList{"a"}
                                                    << QStringList{"a"} << QStringList{"$pat", "a", "b", "c", "d[3:0]"};
        QTest::newRow("show, nothing hidden") << true << QStringList{} << -1 << QStringList{} << QStringList{} << all;
    }
    void showAndRemove()
    {
        QFETCH(bool, showMode);
        QFETCH(QStringList, hidden);
        QFETCH(int, unticked);
        QFETCH(QStringList, listed);
        QFETCH(QStringList, picked);
        QFETCH(QStringList, after);
        auto gui = open();
        QVERIFY(gui);
        for (const QString& name : hidden)
            gui->hideWave(gui->document()->findWavebyName(name));
        const QByteArray saved = toolfixture::savedText(*gui);
        auto shownRows = [&] {
            QStringList rows;
            for (int row = 0; row < gui->waveList()->itemModel()->rowCount(); ++row)
                rows << gui->waveList()->waveAt(row)->name;
            return rows;
        };
        const QStringList rowsBefore = shownRows();
        WaveListDlg dialog(showMode, gui.get());
        dialog.show();
        QCOMPARE(dialog.windowTitle(), showMode ? QStringLiteral("Show Waves") : QStringLiteral("Remove Waves"));
        if (unticked >= 0)
            QTest::mouseClick(dialog.filterBox(unticked), Qt::LeftButton);
        QCOMPARE(rowNames(dialog.model()), listed);
        if (listed.isEmpty()) {
            QVERIFY(!dialog.actionButton()->isEnabled());
            return;
        }
        pick(dialog.waveList(), picked);
        gui->ResetDirtyBit();
        QTest::mouseClick(dialog.actionButton(), Qt::LeftButton);
        QVERIFY(dialog.isVisible() && gui->isModified());
        QStringList left = listed;
        for (const QString& name : picked)
            left.removeAll(name);
        QCOMPARE(rowNames(dialog.model()), left);
        QCOMPARE(shownRows(), after);
        QCOMPARE(gui->undoStack()->count(), 1);
        gui->undoStack()->undo();
        QCOMPARE(toolfixture::savedText(*gui), saved);
        QCOMPARE(shownRows(), rowsBefore);
        gui->undoStack()->redo();
        QCOMPARE(shownRows(), after);
    }

    // Every menu slot opens its dialog; F1 and Help open the dialog's own
    // page, and its what's-this texts say something.
    void slotsOpenDialogsWithHelp_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("topic");
        QTest::newRow("new wave") << QByteArray("newWave") << "Add New Wave" << "add_wave";
        QTest::newRow("time") << QByteArray("editTimeUnit") << "Time Settings" << "time_setting";
        QTest::newRow("import") << QByteArray("importWave") << "Import Wave" << "import_wave";
        QTest::newRow("show") << QByteArray("showWave") << "Show Waves" << "show_wave";
        QTest::newRow("remove") << QByteArray("removeWave") << "Remove Waves" << "remove_wave";
    }
    void slotsOpenDialogsWithHelp()
    {
        QFETCH(QByteArray, slot);
        QFETCH(QString, title);
        QFETCH(QString, topic);
        auto gui = open();
        QVERIFY(gui);
        const QString page = ":/help/" + topic + ".html";
        QStringList seen;
        for (int round = 0; round < 2; ++round) {
            QTimer::singleShot(0, this, [&] {
                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                QVERIFY(dialog);
                seen << dialog->windowTitle();
                BaseHelp::openHelpUrl();
                QTest::keyRelease(dialog, Qt::Key_F1);
                QCOMPARE(BaseHelp::currentPage(), page);
                BaseHelp::openHelpUrl();
                dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Help)->click();
                QCOMPARE(BaseHelp::currentPage(), page);
                for (const QWidget* w : dialog->findChildren<QAbstractItemView*>())
                    QVERIFY(w->whatsThis().size() > 40);
                for (const QWidget* w : dialog->findChildren<QComboBox*>())
                    QVERIFY(w->whatsThis().size() > 40);
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
        QStringList expected{title, title};
        if (slot == "importWave")  // the second time the file dialog starts at the node list
            expected = QStringList{title, "doc.wdl", title, "design.naf"};
        QCOMPARE(seen, expected);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestDialogs)

#include "test_dialogs.moc"
