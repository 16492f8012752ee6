// The tool window's contract with the host: names and titles, the modified
// mark, the wiring the host makes by name, which commands the user's steps
// make available, message boxes and help.
#include "vokgui.h"
#include "basehelp.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"
#include "wavelstview.h"
#include "waveformdata.h"
#include "waveview.h"

#include <QAction>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

class TestToolWindow : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QString m_project;

private Q_SLOTS:
    void init()
    {
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
    }

    void namesTitlesAndModes()
    {
        // A quoted name, as shells and hosts pass paths with spaces.
        VokGUI gui(nullptr, QStringList{QLatin1Char('"') + m_file + QLatin1Char('"')}, m_project, true);
        QVERIFY(gui.initialize());
        const QString title = QStringLiteral("Waveform Editor (Stand-alone) - ") + m_file;
        QCOMPARE(gui.toolName(), QStringLiteral("WAVE_EDITOR"));
        QString name, shortTitle;
        QIcon icon;
        gui.toolGUIInfo(name, shortTitle, icon);
        QCOMPARE(name + QLatin1Char('/') + shortTitle, QStringLiteral("Waveform Editor/Waveform Editor"));
        QCOMPARE(gui.windowTitle(), title);
        QCOMPARE(gui.fullFileName(), m_file);
        QCOMPARE(gui.fileName(), QStringLiteral("counter.wdl"));
        QCOMPARE(gui.getVirtualFileName(), m_file);
        QVERIFY(!gui.document()->waves.isEmpty());
        QVERIFY(gui.getModifiedFileList().isEmpty());
        gui.SetDirtyBit();
        gui.SetDirtyBit();   // never two marks
        QCOMPARE(gui.windowTitle(), title + QLatin1Char('*'));
        QCOMPARE(gui.getModifiedFileList(), QStringList{m_file});
        QVERIFY(gui.needToBeClosed(11, 0));
        QVERIFY(!gui.needToBeClosed(10, 0));

        // Hosted, the window offers detach and attach and no Options.
        VokGUI hosted(nullptr, QStringList{m_dir.filePath(QStringLiteral("missing.wdl"))}, m_project, false);
        hosted.initialize();
        QVERIFY(hosted.windowTitle().startsWith(QStringLiteral("Waveform Editor - Untitled ")));
        hosted.SetDirtyBit();
        QVERIFY(hosted.getModifiedFileList().isEmpty());   // nothing on disk to name
        QCOMPARE(*hosted.stdMenuItems(WindowMenu), (QStringList{"detach", "attach"}));
        QVERIFY(gui.stdMenuItems(WindowMenu)->isEmpty());
        QVERIFY(!hosted.myMenuItems(ToolsMenu));
        QVERIFY(hosted.action(VokGUI::ActOptions));
        QCOMPARE(*gui.myMenuItems(ToolsMenu), QList<QAction*>{gui.action(VokGUI::ActOptions)});
        QVERIFY(!gui.stdMenuItems(ToolsMenu) && !gui.stdMenuItems(StdMenu(6)));
    }

    void hostWiringResolves()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, false);
        gui.initialize();
        // The host wires these by name: each name must be a shared action and
        // each tool-side signature must exist on the tool.
        const QMetaObject* meta = gui.metaObject();
        QCOMPARE(gui.activeConnections()->size(), 38);
        for (const Connection* c : *gui.activeConnections()) {
            const bool toolSends = c->sender.isNull();
            const QString own = toolSends ? c->signal : c->slot;
            const QByteArray norm = QMetaObject::normalizedSignature(own.mid(1).toLatin1().constData());
            QVERIFY2(BasGUITool::sharedActionNames().contains(toolSends ? c->receiver : c->sender), qPrintable(own));
            QVERIFY2(own.startsWith(QLatin1Char('2')) ? meta->indexOfSignal(norm) >= 0 : meta->indexOfSlot(norm) >= 0,
                     qPrintable(own));
        }

        // Default layout: the two property docks shown and docked, patterns hidden.
        gui.patternDlg()->show();
        gui.waveDataDlg()->hide();
        gui.editDlg()->setFloating(true);
        gui.onDefLayout();
        QVERIFY(!gui.waveDataDlg()->isHidden() && !gui.editDlg()->isHidden() && gui.patternDlg()->isHidden());
        QVERIFY(!gui.editDlg()->isFloating());
    }

    // What the user's steps make available, and what read-only takes away.
    void availability()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        gui.initialize();
        auto enabled = [&gui](const QList<int>& ids) {
            QList<bool> states;
            for (int id : ids)
                states << gui.action(id)->isEnabled();
            return states;
        };
        const QList<int> waveCommands{VokGUI::ActDupWave, VokGUI::ActHideWave, VokGUI::ActNextChange, VokGUI::ActJumpEnd};
        const QList<int> markerCommands{VokGUI::ActHideMarker, VokGUI::ActJumpMarker};
        QCOMPARE(enabled(waveCommands), QList<bool>(4, false));
        QCOMPARE(enabled(markerCommands), QList<bool>(2, false));
        gui.waveList()->setCurrentIndex(gui.waveList()->itemModel()->index(1, 0));
        QCOMPARE(enabled(waveCommands), QList<bool>(4, true));
        gui.action(VokGUI::ActPlaceMarker)->trigger();
        QCOMPARE(enabled(markerCommands), QList<bool>(2, true));

        const QList<int> editCommands{VokGUI::ActEditMode, VokGUI::ActNewWave, VokGUI::ActImportWave,
                                      VokGUI::ActShowWave, VokGUI::ActRemoveWave, VokGUI::ActTimeSettings};
        QCOMPARE(enabled(editCommands), QList<bool>(6, true));
        gui.action(VokGUI::ActEditMode)->setChecked(true);
        gui.changeReadonlyMode(true);
        QCOMPARE(enabled(editCommands), QList<bool>(6, false));
        QVERIFY(!gui.action(VokGUI::ActEditMode)->isChecked());
        QVERIFY(!gui.sharedAction(QStringLiteral("save as"))->isEnabled());
        gui.changeReadonlyMode(false);
        QCOMPARE(enabled(editCommands), QList<bool>(6, true));
        QVERIFY(gui.sharedAction(QStringLiteral("save as"))->isEnabled());
    }

    void messageBoxes_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("icon");
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("answer");
        const int ok = QMessageBox::Ok;
        QTest::newRow("error") << 0 << int(QMessageBox::Critical) << ok << ok;
        QTest::newRow("confirm") << 1 << int(QMessageBox::Question)
                                 << int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel) << int(QMessageBox::Cancel);
        QTest::newRow("warning") << 2 << int(QMessageBox::Warning) << ok << ok;
        QTest::newRow("information") << 3 << int(QMessageBox::Information) << ok << ok;
    }
    void messageBoxes()
    {
        QFETCH(int, kind);
        QFETCH(int, icon);
        QFETCH(int, buttons);
        QFETCH(int, answer);
        QMessageBox::StandardButton (*const show[])(const QString&, QWidget*) = {
            &VokGUI::showerrormsg, &VokGUI::showconfirmmsg, &VokGUI::showwarnmsg, &VokGUI::showmsg};
        QWidget parent;
        ModalAnswerer answerer({press(QMessageBox::StandardButton(answer))});
        QCOMPARE(int(show[kind](QStringLiteral("some text"), &parent)), answer);
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.seen[0].title, QStringLiteral("Waveform Editor"));
        QCOMPARE(answerer.seen[0].text, QStringLiteral("some text"));
        QCOMPARE(int(answerer.seen[0].icon), icon);
        QCOMPARE(int(answerer.seen[0].buttons), buttons);
    }

    void helpFromKeysAndMenus()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        gui.initialize();
        auto f1 = [](QObject* target) {
            QKeyEvent event(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier);
            QCoreApplication::sendEvent(target, &event);
        };
        const QString main = QStringLiteral(":/help/waveform_editor.html");
        f1(gui.waveView());
        QCOMPARE(BaseHelp::currentPage(), main + QStringLiteral("#wave_display"));
        QVERIFY(BaseHelp::helpWindow()->isVisible());
        f1(&gui);
        QCOMPARE(BaseHelp::currentPage(), main);
        BaseHelp::helpWindow()->hide();
        gui.sharedAction(QStringLiteral("help"))->trigger();
        QVERIFY(BaseHelp::helpWindow()->isVisible());
        // What's-this texts are the marked sections of the pages.
        QCOMPARE(BaseHelp::getWhatsThisText(QStringLiteral("waveform_editor"), QStringLiteral("wave_display")),
                 QStringLiteral("<a name=\"wave_display\"></a>Mouse and keys"));
        BaseHelp::helpWindow()->hide();
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolWindow)

#include "test_toolwindow.moc"
