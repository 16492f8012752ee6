// The tool window's contract with the host: names, titles, wiring, command
// availability, message boxes, help, and further windows from New and Open.
#include "vokgui.h"
#include "basehelp.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "toolhost.h"
#include "wavedatadlg.h"
#include "wavedata.h"
#include "wavelstview.h"
#include "waveformdata.h"
#include "waveview.h"
#include "wavewriter.h"

#include <QAction>
#include <QKeyEvent>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
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

    ToolHost::Factory hostedTools()
    {
        return [this](const QStringList& files) -> BasGUITool* {
            auto* tool = new VokGUI(nullptr, files, m_project, false);
            tool->initialize();
            tool->resize(800, 500);
            return tool;
        };
    }

    // Closes the window, answering the save question, and lets a deleted window go.
    static bool closeAnswering(BasGUITool* tool, QList<Answer> answers)
    {
        ModalAnswerer answerer(answers);
        const bool closed = tool->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return closed && answerer.problems.isEmpty() && answerer.unanswered() == 0;
    }

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
        QCOMPARE((QStringList{gui.windowTitle(), gui.fullFileName(), gui.fileName(), gui.getVirtualFileName()}),
                 (QStringList{title, m_file, QStringLiteral("counter.wdl"), m_file}));
        QVERIFY(!gui.document()->waves.isEmpty());
        QVERIFY(gui.getModifiedFileList().isEmpty());
        gui.SetDirtyBit();
        gui.SetDirtyBit();   // never two marks
        QCOMPARE(gui.windowTitle(), title + QLatin1Char('*'));
        QCOMPARE(gui.getModifiedFileList(), QStringList{m_file});
        QVERIFY(gui.needToBeClosed(11, 0));
        QVERIFY(!gui.needToBeClosed(10, 0));

        // Hosted, a missing file opens untitled, with nothing on disk to name.
        VokGUI hosted(nullptr, QStringList{m_dir.filePath(QStringLiteral("missing.wdl"))}, m_project, false);
        hosted.initialize();
        QVERIFY(hosted.windowTitle().startsWith(QStringLiteral("Waveform Editor - Untitled ")));
        hosted.SetDirtyBit();
        QVERIFY(hosted.getModifiedFileList().isEmpty());
        // The host wires by name: shared actions, and signatures that exist on the tool.
        const QMetaObject* meta = hosted.metaObject();
        for (const Connection* c : *hosted.activeConnections()) {
            const bool toolSends = c->sender.isNull();
            const QString own = toolSends ? c->signal : c->slot;
            const QByteArray norm = QMetaObject::normalizedSignature(own.mid(1).toLatin1().constData());
            QVERIFY2(BasGUITool::sharedActionNames().contains(toolSends ? c->receiver : c->sender), qPrintable(own));
            QVERIFY2(own.startsWith(QLatin1Char('2')) ? meta->indexOfSignal(norm) >= 0 : meta->indexOfSlot(norm) >= 0,
                     qPrintable(own));
        }
    }

    // The docks' first layout, View menu toggles, close buttons, and the next start.
    void layoutAndToggles()
    {
        QSettings(QSettings::IniFormat, QSettings::UserScope, "Vostranelle", "WAVE_EDITOR").clear();
        auto gui = openShown(m_file, QSize(1280, 720));
        QVERIFY(gui);
        auto docks = [&gui] { return QList<QDockWidget*>{gui->waveDataDlg(), gui->editDlg(), gui->patternDlg()}; };
        auto viewAction = [&gui](int i) { return gui->myMenuItems(ViewMenu)->at(4 + i); };
        auto shownAndChecked = [&] {
            QList<bool> states;
            for (int i = 0; i < 3; ++i)
                states << !docks()[i]->isHidden() << viewAction(i)->isChecked();
            return states;
        };
        // First start: both property views tabbed, each with room; no Pattern View.
        QCOMPARE(shownAndChecked(), (QList<bool>{true, true, true, true, false, false}));
        for (QDockWidget* dock : docks()) {
            dock->raise();
            QVERIFY(QTest::qWaitFor([dock] { return dock->isVisible() || dock->isHidden(); }));
            const QSize need = dock->widget()->minimumSizeHint();
            QVERIFY(dock->isHidden() || (dock->widget()->width() >= need.width() && dock->widget()->height() >= need.height()));
        }
        viewAction(2)->trigger();
        QVERIFY(QTest::qWaitFor([&] { return docks()[2]->isVisible(); }));
        viewAction(0)->trigger();
        QCOMPARE(shownAndChecked(), (QList<bool>{false, false, true, true, true, true}));
        docks()[1]->close();   // its title bar's close button
        QCOMPARE(shownAndChecked(), (QList<bool>{false, false, false, false, true, true}));
        viewAction(1)->trigger();
        gui->close();
        gui.reset();
        // The next start shows what the user left.
        gui = openShown(m_file, QSize(1280, 720));
        QCOMPARE(shownAndChecked(), (QList<bool>{false, false, true, true, true, true}));
        // The default layout docks the property views again and hides the patterns.
        gui->editDlg()->setFloating(true);
        gui->onDefLayout();
        QCOMPARE(shownAndChecked(), (QList<bool>{true, true, true, true, false, false}));
        QVERIFY(!gui->editDlg()->isFloating());
    }

    // What the user's steps make available, and what read-only takes away and gives back.
    void availability()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        gui.initialize();
        // Wave, marker and editing commands; shared save as, undo, redo, save, cut, paste.
        auto enabled = [&gui] {
            QString states;
            const int ids[] = {VokGUI::ActDupWave, VokGUI::ActHideWave, VokGUI::ActNextChange, VokGUI::ActJumpEnd, -1,
                               VokGUI::ActHideMarker, VokGUI::ActJumpMarker, -1, VokGUI::ActEditMode, VokGUI::ActNewWave,
                               VokGUI::ActImportWave, VokGUI::ActShowWave, VokGUI::ActRemoveWave, VokGUI::ActTimeSettings, -1};
            for (int id : ids)
                states += id < 0 ? ' ' : gui.action(id)->isEnabled() ? '1' : '0';
            for (const char* name : {"save as", "undo", "redo", "save", "cut", "paste"})
                states += gui.sharedAction(QLatin1String(name))->isEnabled() ? '1' : '0';
            return states;
        };
        QCOMPARE(enabled(), QString("0000 00 111111 100000"));
        gui.waveList()->setCurrentIndex(gui.waveList()->itemModel()->index(1, 0));
        QCOMPARE(enabled(), QString("1111 00 111111 100000"));
        gui.action(VokGUI::ActPlaceMarker)->trigger();
        QCOMPARE(enabled(), QString("1111 11 111111 100000"));
        // An edit, its segment selected and copied.
        gui.action(VokGUI::ActEditMode)->setChecked(true);
        WaveData* wave = gui.waveList()->waveAt(1);
        gui.addEditData(wave->getEndTime() + 10);
        gui.selection() = {wave->patterns.last()};
        gui.copyData();
        gui.onEditDataChanged();
        QCOMPARE(enabled(), QString("1111 11 111111 110111"));
        gui.changeReadonlyMode(true);
        QCOMPARE(enabled(), QString("1111 11 000000 000000"));
        QVERIFY(!gui.action(VokGUI::ActEditMode)->isChecked() && gui.selection().isEmpty());
        // Nothing the tool does meanwhile offers editing again.
        gui.selection() = {wave->patterns.last()};
        gui.onEditDataChanged();
        gui.onUndoChanged(true);
        gui.SetDirtyBit();
        QCOMPARE(enabled(), QString("1111 11 000000 000000"));
        // Back in query mode: no selection to cut, nothing to paste onto.
        gui.changeReadonlyMode(false);
        QCOMPARE(enabled(), QString("1111 11 111111 110100"));
    }

    void messageBoxes()
    {
        using Show = QMessageBox::StandardButton (*)(const QString&, QWidget*);
        const QMessageBox::StandardButtons ok = QMessageBox::Ok, ync = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        const std::tuple<Show, QMessageBox::Icon, QMessageBox::StandardButtons> boxes[] = {
            {&VokGUI::showerrormsg, QMessageBox::Critical, ok}, {&VokGUI::showconfirmmsg, QMessageBox::Question, ync},
            {&VokGUI::showwarnmsg, QMessageBox::Warning, ok}, {&VokGUI::showmsg, QMessageBox::Information, ok}};
        for (const auto& [show, icon, buttons] : boxes) {
            const auto answer = buttons == ok ? QMessageBox::Ok : QMessageBox::Cancel;
            ModalAnswerer answerer({press(answer)});
            QWidget parent;
            QCOMPARE(show(QStringLiteral("some text"), &parent), answer);
            VERIFY_ANSWERED(answerer);
            const Seen& box = answerer.seen[0];
            QCOMPARE((QStringList{box.title, box.text}), (QStringList{"Waveform Editor", "some text"}));
            QVERIFY(box.icon == icon && box.buttons == buttons);
        }
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
        // Each dock has its own page.
        const QList<std::pair<QDockWidget*, const char*>> docks{{gui.editDlg(), "pulse_property"},
            {gui.waveDataDlg(), "waveform_property"}, {gui.patternDlg(), "insert_pattern"}};
        for (const auto& [dock, page] : docks) {
            f1(dock->widget()->findChildren<QWidget*>().last());
            QCOMPARE(BaseHelp::currentPage(), QStringLiteral(":/help/%1.html").arg(QLatin1String(page)));
        }
        BaseHelp::helpWindow()->hide();
        gui.sharedAction(QStringLiteral("help"))->trigger();
        QVERIFY(BaseHelp::helpWindow()->isVisible());
        // What's-this texts are the marked sections of the pages.
        QCOMPARE(BaseHelp::getWhatsThisText(QStringLiteral("waveform_editor"), QStringLiteral("wave_display")),
                 QStringLiteral("<a name=\"wave_display\"></a>Mouse and keys"));
        BaseHelp::helpWindow()->hide();
    }

    void newAndOpenBringFurtherWindows()
    {
        ToolHost host(hostedTools());
        QSignalSpy raised(&host, &ToolHost::toolRaised);
        const int n = VokGUI::untitledCounter();
        auto* first = qobject_cast<VokGUI*>(host.open({}));
        QVERIFY(first && first->isVisible() && !first->isStandalone());
        {   // Nothing is asked: the first document is not being closed.
            ModalAnswerer answerer({choose(m_file)});
            first->sharedAction(QStringLiteral("new"))->trigger();
            first->fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
        }
        QCOMPARE(host.tools().size(), 3);
        auto* second = qobject_cast<VokGUI*>(host.tools().at(1));
        QCOMPARE(second->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n + 1));
        QCOMPARE(second->pos(), first->pos() + QPoint(30, 30));
        auto* shown = qobject_cast<VokGUI*>(host.toolFor(m_file));
        QVERIFY(shown && shown->isVisible());
        QCOMPARE(formatWaveform(*shown->document()), writerTextOfFile(m_file));
        QCOMPARE(first->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n));

        // The same file asked for from another window: its window comes to the front.
        second->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(second));
        {
            ModalAnswerer answerer({choose(m_file)});
            second->sharedAction(QStringLiteral("open"))->trigger();
            VERIFY_ANSWERED(answerer);
        }
        QCOMPARE(raised.size(), 1);
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(shown));
        // Other spellings of the same file find it too; minimised, it comes back.
        const QString link = m_dir.filePath(QStringLiteral("link.wdl"));
        QVERIFY(QFile::link(m_file, link));
        shown->showMinimized();
        QCOMPARE(host.open({QLatin1Char('"') + m_file + QLatin1Char('"')}), shown);
        QCOMPARE(host.open({link}), shown);
        QVERIFY(!shown->isMinimized());
        QCOMPARE(host.tools().size(), 3);
    }

    void closedWindowsGo()
    {
        ToolHost host(hostedTools());
        QSignalSpy last(&host, &ToolHost::lastToolClosed);
        QPointer<BasGUITool> named = host.open({m_file});
        QPointer<BasGUITool> untitled = host.open({});
        // Unmodified and named: closed without a question and deleted; its file opens anew.
        QVERIFY(closeAnswering(named, {}));
        QVERIFY(named.isNull());
        QVERIFY(!host.toolFor(m_file));
        QPointer<BasGUITool> again = host.open({m_file});
        QCOMPARE(host.tools().size(), 2);
        QVERIFY(closeAnswering(again, {}));
        // Cancel on the save question keeps the window, and the host keeps it.
        QVERIFY(!closeAnswering(untitled, {press(QMessageBox::Cancel)}));
        QVERIFY(untitled && untitled->isVisible());
        QCOMPARE(host.tools().size(), 1);
        QCOMPARE(last.size(), 0);
        // The last window going ends the session.
        QVERIFY(closeAnswering(untitled, {press(QMessageBox::No)}));
        QVERIFY(untitled.isNull());
        QCOMPARE(last.size(), 1);
        // A factory that makes no tool opens nothing.
        ToolHost empty([](const QStringList&) -> BasGUITool* { return nullptr; });
        QVERIFY(!empty.open({m_file}) && empty.tools().isEmpty());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolWindow)

#include "test_toolwindow.moc"
