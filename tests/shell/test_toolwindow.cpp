#include "vokgui.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"
#include "basehelp.h"
#include "waveview.h"
#include "waveformdata.h"

#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaObject>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

namespace {
const QString kStandaloneTitle = QStringLiteral("Waveform Editor (Stand-alone)");

QList<QAction*> sharedActions(const BasGUITool& tool, const QStringList& names)
{
    QList<QAction*> list;
    for (const QString& name : names)
        list.append(tool.sharedAction(name));
    return list;
}

QList<QAction*> toolActions(const VokGUI& gui, const QList<int>& ids)
{
    QList<QAction*> list;
    for (int id : ids)
        list.append(gui.action(id));
    return list;
}

} // namespace

class TestToolWindow : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
    }

    void hostContract()
    {
        QString project;
        VokGUI gui(nullptr, QStringList{m_file}, project, true);
        QVERIFY(gui.initialize());
        QCOMPARE(gui.toolName(), QStringLiteral("WAVE_EDITOR"));
        QString name, title;
        QIcon icon;
        gui.toolGUIInfo(name, title, icon);
        QCOMPARE(name, QStringLiteral("Waveform Editor"));
        QCOMPARE(title, QStringLiteral("Waveform Editor"));
        QCOMPARE(gui.windowTitle(), kStandaloneTitle + QStringLiteral(" - ") + m_file);
        QCOMPARE(gui.fullFileName(), m_file);
        QCOMPARE(gui.fileName(), QStringLiteral("counter.wdl"));
        QCOMPARE(gui.getVirtualFileName(), m_file);
        QVERIFY(!gui.document()->waves.isEmpty());

        QVERIFY(gui.getModifiedFileList().isEmpty());
        gui.SetDirtyBit();
        QCOMPARE(gui.getModifiedFileList(), QStringList{m_file});
        gui.SetDirtyBit();   // never two marks
        QCOMPARE(gui.windowTitle(), kStandaloneTitle + QStringLiteral(" - ") + m_file + QLatin1Char('*'));
        gui.ResetDirtyBit();
        QCOMPARE(gui.windowTitle(), kStandaloneTitle + QStringLiteral(" - ") + m_file);

        QVERIFY(gui.needToBeClosed(11, 0));
        QVERIFY(!gui.needToBeClosed(10, 0));
        QVERIFY(!gui.needToBeClosed(3, 0));

        // A quoted name, as shells and hosts pass paths with spaces.
        VokGUI quoted(nullptr, QStringList{QLatin1Char('"') + m_file + QLatin1Char('"')}, project, true);
        quoted.initialize();
        QCOMPARE(quoted.fullFileName(), m_file);
        QCOMPARE(quoted.document()->waves.size(), gui.document()->waves.size());

        // The untitled counter is class-wide: two tools take consecutive numbers.
        const int n = VokGUI::untitledCounter();
        const QString missing = m_dir.filePath(QStringLiteral("missing.wdl"));
        VokGUI first(nullptr, QStringList{missing}, project, true);
        first.initialize();
        VokGUI second(nullptr, QStringList{missing}, project, false);
        second.initialize();
        QCOMPARE(first.title(), QStringLiteral("Untitled %1").arg(n));
        QCOMPARE(second.title(), QStringLiteral("Untitled %1").arg(n + 1));
        QCOMPARE(first.windowTitle(), kStandaloneTitle + QStringLiteral(" - Untitled %1").arg(n));
        QCOMPARE(second.windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n + 1));
        first.SetDirtyBit();
        QVERIFY(first.isModified());
        QVERIFY(first.getModifiedFileList().isEmpty());

        // Menus the host merges: Tools and Window depend on the mode.
        QVERIFY(first.myMenuItems(ToolsMenu));
        QCOMPARE(*first.myMenuItems(ToolsMenu), toolActions(first, {VokGUI::ActOptions}));
        QVERIFY(!second.myMenuItems(ToolsMenu));
        QVERIFY(first.stdMenuItems(WindowMenu) && first.stdMenuItems(WindowMenu)->isEmpty());
        QCOMPARE(*second.stdMenuItems(WindowMenu), (QStringList{"detach", "attach"}));
        QVERIFY(second.action(VokGUI::ActOptions));
    }

    void menusAndConnections()
    {
        QString project;
        VokGUI gui(nullptr, QStringList{m_file}, project, false);
        gui.initialize();

        QCOMPARE(*gui.myMenuItems(FileMenu), toolActions(gui, {VokGUI::ActExport}));

        const QList<QAction*> view = *gui.myMenuItems(ViewMenu);
        QCOMPARE(view.size(), 7);
        QCOMPARE(view.mid(0, 2), toolActions(gui, {65, 66}));
        QVERIFY(view[2]->menu());
        QCOMPARE(view[2]->text(), QStringLiteral("Jump to"));
        QCOMPARE(view[2]->menu()->actions(), toolActions(gui, {67, 68, 69, 70, 71, 72, 73, 74, 75}));
        QVERIFY(view[3]->isSeparator());
        QStringList viewTexts;
        for (QAction* a : view.mid(4)) {
            QVERIFY(a->isCheckable());
            viewTexts << a->text();
        }
        QCOMPARE(viewTexts, (QStringList{"Waveform Properties View", "Pulse Properties View", "Pattern View"}));

        // The host wires these by name; each name must be a shared action and
        // each tool-side signature must resolve on the tool.
        const QList<Connection*>& records = *gui.activeConnections();
        QVERIFY(!records.isEmpty());
        const QMetaObject* meta = gui.metaObject();
        auto resolves = [meta](const QString& sig) {
            const QByteArray norm = QMetaObject::normalizedSignature(sig.mid(1).toLatin1().constData());
            return sig.startsWith(QLatin1Char('2')) ? meta->indexOfSignal(norm) >= 0 : meta->indexOfSlot(norm) >= 0;
        };
        for (const Connection* c : records) {
            const QString& shared = c->sender.isNull() ? c->receiver : c->sender;
            QVERIFY2(BasGUITool::sharedActionNames().contains(shared), qPrintable(shared));
            QVERIFY2(resolves(c->sender.isNull() ? c->signal : c->slot), qPrintable(c->signal + c->slot));
        }

        // Default layout: two property docks shown and docked, patterns hidden.
        gui.patternDlg()->show();
        gui.waveDataDlg()->hide();
        gui.editDlg()->setFloating(true);
        gui.onDefLayout();
        QVERIFY(!gui.waveDataDlg()->isHidden());
        QVERIFY(!gui.editDlg()->isHidden());
        QVERIFY(gui.patternDlg()->isHidden());
        for (QDockWidget* dock : gui.getDockWidget())
            QVERIFY(!dock->isFloating());
    }

    void actionMap()
    {
        QString project;
        VokGUI gui(nullptr, QStringList{m_file}, project, true);
        gui.initialize();
        const QMap<int, QString> texts = {
            {20, "Export..."}, {37, "Edit Mode"}, {38, "New Wave..."}, {39, "Import Wave..."},
            {40, "Duplicate Wave"}, {41, "Show Wave.."}, {42, "Hide Wave"}, {43, "Remove Wave..."},
            {45, "Insert Pattern..."}, {48, "Timing Settings..."}, {65, "Place Marker"}, {66, "Hide Marker"},
            {67, "Next Change"}, {68, "Marker"}, {69, "Time..."}, {70, "Time=0"}, {71, "Time=End"},
            {72, "Tick Left"}, {73, "Tick Right"}, {74, "10 Left"}, {75, "10 Right"}, {91, "Options..."}};
        QCOMPARE(gui.actionMap().keys(), texts.keys());
        const QMap<int, QKeySequence> keys = {
            {37, QKeySequence(Qt::Key_F2)}, {67, QKeySequence(Qt::Key_Plus)}, {68, QKeySequence(Qt::Key_Minus)},
            {70, QKeySequence(Qt::Key_Home)}, {71, QKeySequence(Qt::Key_End)}, {72, QKeySequence(Qt::Key_Left)},
            {73, QKeySequence(Qt::Key_Right)}, {74, QKeySequence(Qt::SHIFT | Qt::Key_Left)},
            {75, QKeySequence(Qt::SHIFT | Qt::Key_Right)}};
        for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
            QAction* a = gui.action(it.key());
            const QByteArray id = QByteArray::number(it.key());
            QVERIFY2(a->text() == it.value(), id.constData());
            QVERIFY2(a->shortcut() == keys.value(it.key()), id.constData());
        }
        QVERIFY(gui.action(37)->isCheckable());

        // Each availability signal switches exactly its own actions.
        auto allOn = [&gui] {
            Q_EMIT gui.editAvailable(true);
            Q_EMIT gui.activeWaveChanged(true);
            Q_EMIT gui.markChanged(true);
        };
        auto disabledAfter = [&](void (VokGUI::*signal)(bool)) {
            allOn();
            (gui.*signal)(false);
            QList<int> off;
            for (auto it = gui.actionMap().cbegin(); it != gui.actionMap().cend(); ++it)
                if (!it.value()->isEnabled())
                    off << it.key();
            return off;
        };
        QCOMPARE(disabledAfter(&VokGUI::editAvailable), (QList<int>{37, 38, 39, 41, 43, 48}));
        QCOMPARE(disabledAfter(&VokGUI::activeWaveChanged), (QList<int>{40, 42, 67, 71}));
        QCOMPARE(disabledAfter(&VokGUI::markChanged), (QList<int>{66, 68}));

        gui.action(VokGUI::ActEditMode)->setChecked(true);
        gui.changeReadonlyMode(true);
        QVERIFY(gui.isReadOnly());
        QVERIFY(!gui.action(VokGUI::ActEditMode)->isChecked());
        QVERIFY(!gui.action(VokGUI::ActEditMode)->isEnabled());
        QVERIFY(!gui.sharedAction(QStringLiteral("save as"))->isEnabled());
        gui.changeReadonlyMode(false);
        QVERIFY(gui.sharedAction(QStringLiteral("save as"))->isEnabled());
        QVERIFY(gui.action(VokGUI::ActEditMode)->isEnabled());
    }

    void standaloneFrame()
    {
        QString project;
        VokGUI gui(nullptr, QStringList{m_file}, project, true);
        gui.initialize();
        gui.resize(1000, 700);
        gui.show();
        QVERIFY(QTest::qWaitForWindowExposed(&gui));

        QStringList titles;
        for (QAction* a : gui.menuBar()->actions())
            titles << a->text().remove(QLatin1Char('&'));
        QCOMPARE(titles, (QStringList{"File", "Edit", "View", "Tools", "Help"}));
        const QList<QAction*> menus = gui.menuBar()->actions();
        auto expect = [&](const QStringList& shared, const QList<QAction*>& own) {
            QList<QAction*> list = sharedActions(gui, shared);
            if (!shared.isEmpty() && !own.isEmpty())
                list.append(nullptr);   // the separator
            list.append(own);
            return list;
        };
        auto actual = [](QAction* menu) {
            QList<QAction*> list;
            for (QAction* a : menu->menu()->actions())
                list.append(a->isSeparator() && a->parent() == menu->menu() ? nullptr : a);
            return list;
        };
        QCOMPARE(actual(menus[0]), expect(*gui.stdMenuItems(FileMenu), *gui.myMenuItems(FileMenu)));
        QCOMPARE(actual(menus[1]), expect(*gui.stdMenuItems(EditMenu), *gui.myMenuItems(EditMenu)));
        QCOMPARE(actual(menus[2]), expect(*gui.stdMenuItems(ViewMenu), *gui.myMenuItems(ViewMenu)));
        QCOMPARE(actual(menus[3]), toolActions(gui, {VokGUI::ActOptions}));
        QCOMPARE(actual(menus[4]), sharedActions(gui, {"about", "help"}));

        auto* standard = gui.findChild<QToolBar*>(QStringLiteral("standardToolBar"));
        QVERIFY(standard);
        QCOMPARE(standard->actions(), sharedActions(gui, *gui.stdToolbarButtons()));
        QCOMPARE(gui.specialToolBar()->actions(), toolActions(gui, {37, 38, 41, 42, 43, 65, 66}));
    }

    void messageBoxes()
    {
        struct Case {
            QMessageBox::StandardButton (*show)(const QString&, QWidget*);
            QMessageBox::Icon icon;
            QMessageBox::StandardButtons buttons;
            QMessageBox::StandardButton answer;
        };
        const Case cases[] = {
            {&VokGUI::showerrormsg, QMessageBox::Critical, QMessageBox::Ok, QMessageBox::Ok},
            {&VokGUI::showconfirmmsg, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
             QMessageBox::Cancel},
            {&VokGUI::showwarnmsg, QMessageBox::Warning, QMessageBox::Ok, QMessageBox::Ok},
            {&VokGUI::showmsg, QMessageBox::Information, QMessageBox::Ok, QMessageBox::Ok},
        };
        QWidget parent;
        for (const Case& c : cases) {
            ModalAnswerer answerer({press(c.answer)});
            QCOMPARE(c.show(QStringLiteral("some text"), &parent), c.answer);
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].title, QStringLiteral("Waveform Editor"));
            QCOMPARE(answerer.seen[0].text, QStringLiteral("some text"));
            QCOMPARE(answerer.seen[0].icon, c.icon);
            QCOMPARE(answerer.seen[0].buttons, c.buttons);
        }
    }

    void helpFromKeysAndMenus()
    {
        QString project;
        VokGUI gui(nullptr, QStringList{m_file}, project, true);
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
        QCOMPARE(BaseHelp::currentPage(), main);
        // What's-this texts are the marked sections of the pages.
        QCOMPARE(BaseHelp::getWhatsThisText(QStringLiteral("waveform_editor"), QStringLiteral("wave_display")),
                 QStringLiteral("<a name=\"wave_display\"></a>Mouse and keys"));
        BaseHelp::helpWindow()->hide();
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolWindow)

#include "test_toolwindow.moc"
