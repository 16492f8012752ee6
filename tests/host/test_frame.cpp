// The host's frame: shared actions with icons and keys without a theme, menus and bars from the tool's lists.
#include "basguitool.h"

#include <QAction>
#include <QMenuBar>
#include <QSignalSpy>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "sandboxedtestmain.h"

using namespace kesu::toolvok;

namespace {

// Every shared action on its tool bar, some in menus, and one action of its own.
class BareTool : public BasGUITool
{
public:
    BareTool() : BasGUITool(nullptr, true) {}

    QStringList* stdMenuItems(StdMenu m) override
    {
        m_names = m == FileMenu ? QStringList{"new", "save as"} : m == HelpMenu ? QStringList{"about"} : QStringList();
        return &m_names;
    }
    QList<QAction*>* myMenuItems(StdMenu m) override
    {
        m_own = m == FileMenu || m == EditMenu ? QList<QAction*>{own} : QList<QAction*>();
        return &m_own;
    }
    QStringList* stdToolbarButtons() override { return &(m_names = sharedActionNames()); }
    bool needSpecialToolBar() const override { return true; }

    QAction* own = new QAction(QStringLiteral("Own"), this);

private:
    QStringList m_names;
    QList<QAction*> m_own;
};

QStringList texts(const QList<QAction*>& actions)
{
    QStringList list;
    for (const QAction* a : actions)
        list << (a->isSeparator() ? QStringLiteral("|") : a->text().remove(QLatin1Char('&')));
    return list;
}

} // namespace

class TestFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Icons and keys without a theme or platform binding; menus and bars from the tool's lists.
    void actionsKeysMenusAndBars()
    {
        BareTool tool;
        QVERIFY(tool.initialize());
        QCOMPARE(tool.sharedActions().size(), BasGUITool::sharedActionNames().size());
        for (QAction* action : tool.sharedActions())
            QVERIFY2(!action->icon().pixmap(22).isNull(), qPrintable(action->objectName()));
        // Every button of the tool bar shows its icon, not its text.
        auto* bar = tool.findChild<QToolBar*>(QStringLiteral("standardToolBar"));
        QVERIFY(bar);
        QCOMPARE(bar->actions().size(), BasGUITool::sharedActionNames().size());
        for (QAction* action : bar->actions()) {
            auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
            QVERIFY2(button && button->toolButtonStyle() == Qt::ToolButtonIconOnly && !button->icon().isNull(),
                     qPrintable(action->objectName()));
        }
        // Offscreen, like a plain X session, has no Save As binding.
        tool.show();
        tool.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&tool));
        for (const auto& [action, key] : {std::pair("save as", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)),
                                          std::pair("zoom fit", QKeySequence(Qt::CTRL | Qt::Key_0))}) {
            QSignalSpy triggered(tool.sharedAction(action), &QAction::triggered);
            QTest::keySequence(&tool, key);
            QVERIFY2(triggered.size() == 1, action);
        }
        QStringList menus;
        for (QAction* menu : tool.menuBar()->actions())
            menus << menu->text().remove(QLatin1Char('&')) + QStringLiteral(": ")
                    + texts(menu->menu()->actions()).join(QLatin1Char(' '));
        // Shared actions, a separator, the tool's own; empty menus are left out.
        QCOMPARE(menus, (QStringList{"File: New Save As... | Own", "Edit: Own", "Help: About..."}));
        QCOMPARE(tool.findChild<QMenu*>(QStringLiteral("menu0"))->actions().at(1), tool.sharedAction("save as"));
        tool.addButtonOnSpecialToolBar(tool.own);
        tool.addSeparatorOnSpecialToolBar();
        QCOMPARE(texts(tool.specialToolBar()->actions()), (QStringList{"Own", "|"}));
        // Built once, however often the host initialises.
        tool.initialize();
        QCOMPARE(tool.menuBar()->actions().size(), 3);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestFrame)

#include "test_frame.moc"
