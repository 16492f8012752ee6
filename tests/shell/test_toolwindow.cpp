// The tool window's contract with the host: names, titles, wiring, command availability,
// help that lands everywhere, and further windows from New and Open that close again.
#include "basehelp.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "shelltest.h"
#include "toolhost.h"
#include "wavedatadlg.h"
#include "waveview.h"

namespace {

QString textOf(const QString& path) { return QString::fromUtf8(readFile(path)); }

QStringList literalsIn(const QString& text)
{
    QStringList found;
    for (const QRegularExpressionMatch& m : QRegularExpression(QStringLiteral("\"(\\w+)\"")).globalMatch(text))
        found << m.captured(1);
    return found;
}

void collectActions(const QList<QAction*>& actions, QList<QAction*>& out)
{
    for (QAction* a : actions) {
        if (a->isSeparator() || out.contains(a))
            continue;
        out << a;
        // The recent files are the user's documents, not commands.
        if (a->menu() && a->menu()->objectName() != QLatin1String("recentFilesMenu"))
            collectActions(a->menu()->actions(), out);
    }
}

} // namespace

class TestToolWindow : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;

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

    // Names, titles and the dirty mark; help from keys and menus everywhere; hosted, the wiring by name.
    void namesTitlesHelpAndWiring()
    {
        // A quoted name, as shells and hosts pass paths with spaces.
        const auto gui = openTool(QLatin1Char('"') + m_file + QLatin1Char('"'));
        const QString title = QStringLiteral("Waveform Editor (Stand-alone) - ") + m_file;
        QCOMPARE((QStringList{gui->windowTitle(), gui->fullFileName(), gui->fileName(), gui->getVirtualFileName()}),
                 (QStringList{title, m_file, QStringLiteral("counter.wdl"), m_file}));
        QVERIFY(!gui->document()->waves.isEmpty() && gui->getModifiedFileList().isEmpty());
        gui->SetDirtyBit();
        gui->SetDirtyBit();   // never two marks
        QCOMPARE(QStringList{gui->windowTitle()} + gui->getModifiedFileList(), (QStringList{title + '*', m_file}));
        QVERIFY(gui->needToBeClosed(11, 0) && !gui->needToBeClosed(10, 0));

        auto f1 = [](QObject* target) {
            QKeyEvent event(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier);
            QCoreApplication::sendEvent(target, &event);
        };
        const QString main = QStringLiteral(":/help/waveform_editor.html");
        f1(gui->waveView());
        QCOMPARE(BaseHelp::currentPage(), main + QStringLiteral("#wave_display"));
        QVERIFY(BaseHelp::helpWindow()->isVisible());
        f1(gui.get());
        QCOMPARE(BaseHelp::currentPage(), main);
        // Each dock has its own page.
        for (const auto& [dock, page] : QList<std::pair<QDockWidget*, const char*>>{{gui->editDlg(), "pulse_property"},
                 {gui->waveDataDlg(), "waveform_property"}, {gui->patternDlg(), "insert_pattern"}}) {
            f1(dock->widget()->findChildren<QWidget*>().last());
            QCOMPARE(BaseHelp::currentPage(), QStringLiteral(":/help/%1.html").arg(QLatin1String(page)));
        }
        BaseHelp::helpWindow()->hide();
        gui->sharedAction(QStringLiteral("help"))->trigger();
        QVERIFY(BaseHelp::helpWindow()->isVisible());
        // What's-this texts are the marked sections of the pages.
        QCOMPARE(BaseHelp::getWhatsThisText(QStringLiteral("waveform_editor"), QStringLiteral("wave_display")),
                 QStringLiteral("<a name=\"wave_display\"></a>Mouse and keys"));
        BaseHelp::helpWindow()->hide();

        // Hosted, a missing file opens untitled, with nothing on disk to name.
        const auto hosted = openTool(m_dir.filePath(QStringLiteral("missing.wdl")), false);
        QVERIFY(hosted->windowTitle().startsWith(QStringLiteral("Waveform Editor - Untitled ")));
        hosted->SetDirtyBit();
        QVERIFY(hosted->getModifiedFileList().isEmpty());
        // The host wires by name: shared actions, and signatures that exist on the tool.
        const QMetaObject* meta = hosted->metaObject();
        for (const Connection* c : *hosted->activeConnections()) {
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
        const auto gui = openTool(m_file);
        // Wave, marker and editing commands; shared save as, undo, redo, save, cut, paste.
        auto enabled = [&gui] {
            QString states;
            const int ids[] = {VokGUI::ActDupWave, VokGUI::ActHideWave, VokGUI::ActNextChange, VokGUI::ActJumpEnd, -1,
                               VokGUI::ActHideMarker, VokGUI::ActJumpMarker, -1, VokGUI::ActEditMode, VokGUI::ActNewWave,
                               VokGUI::ActImportWave, VokGUI::ActShowWave, VokGUI::ActRemoveWave, VokGUI::ActTimeSettings, -1};
            for (int id : ids)
                states += id < 0 ? ' ' : gui->action(id)->isEnabled() ? '1' : '0';
            for (const char* name : {"save as", "undo", "redo", "save", "cut", "paste"})
                states += gui->sharedAction(QLatin1String(name))->isEnabled() ? '1' : '0';
            return states;
        };
        QCOMPARE(enabled(), QString("0000 00 111111 100000"));
        gui->waveList()->setCurrentIndex(gui->waveList()->itemModel()->index(1, 0));
        QCOMPARE(enabled(), QString("1111 00 111111 100000"));
        gui->action(VokGUI::ActPlaceMarker)->trigger();
        QCOMPARE(enabled(), QString("1111 11 111111 100000"));
        // An edit, its segment selected and copied.
        gui->action(VokGUI::ActEditMode)->setChecked(true);
        WaveData* wave = gui->waveList()->waveAt(1);
        gui->addEditData(wave->getEndTime() + 10);
        gui->selection() = {wave->patterns.last()};
        gui->copyData();
        gui->onEditDataChanged();
        QCOMPARE(enabled(), QString("1111 11 111111 110111"));
        gui->changeReadonlyMode(true);
        QCOMPARE(enabled(), QString("1111 11 000000 000000"));
        QVERIFY(!gui->action(VokGUI::ActEditMode)->isChecked() && gui->selection().isEmpty());
        // Nothing the tool does meanwhile offers editing again.
        gui->selection() = {wave->patterns.last()};
        gui->onEditDataChanged();
        gui->onUndoChanged(true);
        gui->SetDirtyBit();
        QCOMPARE(enabled(), QString("1111 11 000000 000000"));
        // Back in query mode: no selection to cut, nothing to paste onto.
        gui->changeReadonlyMode(false);
        QCOMPARE(enabled(), QString("1111 11 111111 110100"));
    }

    // The topic of every help call in the sources (a literal, or a name defined in that file), and every link of every page.
    void everyPlaceResolves_data()
    {
        QTest::addColumn<QString>("location");
        QTest::newRow("main") << BaseHelp::locationOf(QStringLiteral("WAVE_EDITOR"));
        const QRegularExpression call(QStringLiteral("(?:open\\w*HelpUrl|getWhatsThisText)\\(\\s*([^,;]*)"));
        for (const char* dir : {"host", "shell", "edit", "view"}) {
            QDirIterator files(QStringLiteral(VOK_SOURCE_DIR "/") + QLatin1String(dir), {QStringLiteral("*.cpp")});
            while (files.hasNext()) {
                const QString source = textOf(files.next());
                for (const QRegularExpressionMatch& m : call.globalMatch(source)) {
                    QStringList topics = literalsIn(m.captured(1));
                    const QString name = m.captured(1).section(QLatin1Char('('), -1).remove(QLatin1Char(')')).trimmed();
                    if (topics.isEmpty() && !name.isEmpty())
                        topics = literalsIn(QRegularExpression(QStringLiteral("\\b%1\\s*=([^;]*);").arg(name)).match(source).captured(1));
                    topics.removeDuplicates();
                    for (const QString& topic : std::as_const(topics))
                        QTest::addRow("%s %s", qPrintable(files.fileName()), qPrintable(topic)) << BaseHelp::locationOf(topic);
                }
            }
        }
        const QStringList pages = QDir(QStringLiteral(":/help")).entryList({QStringLiteral("*.html")});
        QVERIFY(pages.size() >= 17);
        for (const QString& page : pages)
            for (const QRegularExpressionMatch& m : QRegularExpression("href=\"([^\"]*)\"").globalMatch(textOf(":/help/" + page)))
                QTest::addRow("%s -> %s", qPrintable(page), qPrintable(m.captured(1)))
                    << ":/help/" + (m.captured(1).startsWith('#') ? page : QString()) + m.captured(1);
    }
    void everyPlaceResolves()
    {
        QFETCH(QString, location);
        // "page#section": the page exists and marks the section by name or id.
        const QString text = textOf(location.section(QLatin1Char('#'), 0, 0)), section = location.section(QLatin1Char('#'), 1);
        QVERIFY2(!text.isEmpty() && (section.isEmpty() || text.contains(QStringLiteral("name=\"%1\"").arg(section))
                                     || text.contains(QStringLiteral("id=\"%1\"").arg(section))), qPrintable(location));
    }

    // Menus and tool bars of a real window against the command and shortcut pages.
    void everyCommandAndShortcutDescribed()
    {
        auto gui = laidOutTool();
        QList<QAction*> actions;
        // The menus' own titles are no commands.
        for (QAction* menu : gui->menuBar()->actions())
            collectActions(menu->menu()->actions(), actions);
        for (QToolBar* bar : gui->findChildren<QToolBar*>())
            collectActions(bar->actions(), actions);
        QVERIFY(actions.size() > 40);
        const QString commands = textOf(":/help/commands.html"), shortcuts = textOf(":/help/shortcuts.html");
        for (QAction* a : std::as_const(actions)) {
            const QString name = QString(a->text()).remove(QLatin1Char('&'));
            QVERIFY2(commands.contains(QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped())), qPrintable(name));
            // The main key; a desktop may add alternatives of its own.
            const QString keyText = a->shortcut().toString(QKeySequence::PortableText);
            const QRegularExpression entry(QStringLiteral("(>|/ )%1( /|<)").arg(QRegularExpression::escape(keyText)));
            QVERIFY2(keyText.isEmpty() || entry.match(shortcuts).hasMatch(), qPrintable(name + QLatin1Char(' ') + keyText));
        }
    }

    // Further windows from New and Open, found again by any spelling; closed, they go.
    void furtherWindowsComeAndGo()
    {
        ToolHost host([](const QStringList& files) -> BasGUITool* { return openTool(files.value(0), false).release(); });
        QSignalSpy raised(&host, &ToolHost::toolRaised), closed(&host, &ToolHost::lastToolClosed);
        const int n = VokGUI::untitledCounter();
        auto* first = qobject_cast<VokGUI*>(host.open({}));
        QVERIFY(first && first->isVisible() && !first->isStandalone());
        // Nothing is asked: the first document is not being closed.
        auto answerer = std::make_unique<ModalAnswerer>(QList<Answer>{choose(m_file), choose(m_file)});
        first->sharedAction(QStringLiteral("new"))->trigger();
        first->fileOpen();
        QVERIFY(answerer->problems.isEmpty() && answerer->seen.size() == 1);
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
        second->sharedAction(QStringLiteral("open"))->trigger();
        VERIFY_ANSWERED(*answerer);
        answerer.reset();
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

        // Unmodified and named: closed without a question and deleted; its file opens anew.
        QPointer<BasGUITool> named = shown;
        QVERIFY(closeAnswering(named, {}) && named.isNull() && !host.toolFor(m_file));
        QPointer<BasGUITool> again = host.open({m_file});
        QCOMPARE(host.tools().size(), 3);
        QVERIFY(closeAnswering(again, {}));
        // Cancel on the save question keeps the window, and the host keeps it.
        QPointer<BasGUITool> untitled = first;
        QVERIFY(!closeAnswering(untitled, {press(QMessageBox::Cancel)}));
        QVERIFY(untitled && untitled->isVisible());
        QCOMPARE(host.tools().size(), 2);
        QVERIFY(closeAnswering(untitled, {press(QMessageBox::No)}) && untitled.isNull());
        QCOMPARE(closed.size(), 0);
        // The last window going ends the session.
        QVERIFY(closeAnswering(second, {press(QMessageBox::No)}));
        QCOMPARE(closed.size(), 1);
        // A factory that makes no tool opens nothing.
        ToolHost empty([](const QStringList&) -> BasGUITool* { return nullptr; });
        QVERIFY(!empty.open({m_file}) && empty.tools().isEmpty());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolWindow)

#include "test_toolwindow.moc"
