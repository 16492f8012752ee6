#include "basguitool.h"

#include "aboutdialog.h"
#include "basehelp.h"
#include "optionsdlg.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

// The icons live in a static library: without a reference to their
// initialiser the linker drops them.
static void initHostResources()
{
    Q_INIT_RESOURCE(host);
}

namespace kesu::toolvok {

namespace {

struct SharedActionInfo {
    const char* name;
    const char* text;
    // The theme's icon; ours of that name when the theme has none.
    const char* icon;
    QKeySequence::StandardKey key;
    // The key most desktops use, for when the platform gives none (a plain
    // X session has no Save As key, for one).
    const char* usualKey;
};

// The frame's standard commands.
const SharedActionInfo sharedInfo[] = {
    {"new", "&New", "document-new", QKeySequence::New, "Ctrl+N"},
    {"open", "&Open...", "document-open", QKeySequence::Open, "Ctrl+O"},
    {"save", "&Save", "document-save", QKeySequence::Save, "Ctrl+S"},
    {"save as", "Save &As...", "document-save-as", QKeySequence::SaveAs, "Ctrl+Shift+S"},
    {"page setup", "Page Set&up...", "document-page-setup", QKeySequence::UnknownKey, nullptr},
    {"print preview", "Print Pre&view...", "document-print-preview", QKeySequence::UnknownKey, nullptr},
    {"print", "&Print...", "document-print", QKeySequence::Print, "Ctrl+P"},
    {"close", "&Close", "window-close", QKeySequence::Close, "Ctrl+W"},
    {"undo", "&Undo", "edit-undo", QKeySequence::Undo, "Ctrl+Z"},
    {"redo", "&Redo", "edit-redo", QKeySequence::Redo, "Ctrl+Shift+Z"},
    {"cut", "Cu&t", "edit-cut", QKeySequence::Cut, "Ctrl+X"},
    {"copy", "&Copy", "edit-copy", QKeySequence::Copy, "Ctrl+C"},
    {"paste", "&Paste", "edit-paste", QKeySequence::Paste, "Ctrl+V"},
    {"clear", "Cl&ear", "edit-delete", QKeySequence::UnknownKey, nullptr},
    {"zoom in", "Zoom &In", "zoom-in", QKeySequence::ZoomIn, "Ctrl++"},
    {"zoom out", "Zoom &Out", "zoom-out", QKeySequence::ZoomOut, "Ctrl+-"},
    {"zoom fit", "Zoom &Fit", "zoom-fit-best", QKeySequence::UnknownKey, "Ctrl+0"},
    {"zoom area", "Zoom &Area", "zoom-select", QKeySequence::UnknownKey, nullptr},
    {"refresh", "&Refresh", "view-refresh", QKeySequence::Refresh, "F5"},
    {"detach", "&Detach", "window-new", QKeySequence::UnknownKey, nullptr},
    {"attach", "A&ttach", "window", QKeySequence::UnknownKey, nullptr},
    {"about", "&About...", "help-about", QKeySequence::UnknownKey, nullptr},
    {"help", "&Help", "help-contents", QKeySequence::HelpContents, "F1"},
};

QIcon ownIcon(const char* name)
{
    QIcon icon;
    for (const int size : {22, 32})
        icon.addFile(QStringLiteral(":/host/images/%1/%2.png").arg(size).arg(QLatin1String(name)), QSize(size, size));
    return icon;
}

} // namespace

BasGUITool::BasGUITool(QWidget* parent, bool standalone) : QMainWindow(parent), m_standalone(standalone)
{
    initHostResources();
}

BasGUITool::~BasGUITool() = default;

const QStringList& BasGUITool::sharedActionNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (const auto& info : sharedInfo)
            list.append(QLatin1String(info.name));
        return list;
    }();
    return names;
}

QString BasGUITool::stdMenuTitle(int menu)
{
    static const char* const titles[] = {"&File", "&Edit", "&View", "&Tools", "&Window", "&Help"};
    return menu >= 0 && menu <= 5 ? QString::fromLatin1(titles[menu]) : QString();
}

bool BasGUITool::initialize()
{
    if (m_sharedActions.isEmpty())
        createSharedActions();
    if (!m_framed) {
        m_framed = true;
        buildMenuBar();
        buildToolBars();
    }
    // Hosted or not, the frame answers the tool's request for its options.
    OptionsDlg::serve(this);
    return true;
}

void BasGUITool::createSharedActions()
{
    for (const auto& info : sharedInfo) {
        auto* action = new QAction(QString::fromLatin1(info.text), this);
        action->setObjectName(QLatin1String(info.name));
        action->setIcon(QIcon::fromTheme(QLatin1String(info.icon), ownIcon(info.icon)));
        if (info.key != QKeySequence::UnknownKey)
            action->setShortcuts(info.key);
        if (action->shortcuts().isEmpty() && info.usualKey)
            action->setShortcut(QKeySequence(QLatin1String(info.usualKey)));
        m_sharedActions.insert(QLatin1String(info.name), action);
    }
    if (QAction* zoomArea = m_sharedActions.value(QStringLiteral("zoom area")))
        zoomArea->setCheckable(true);
    // The frame's own commands; the tool wires the rest by name.
    connect(m_sharedActions.value(QStringLiteral("close")), &QAction::triggered, this, &QWidget::close);
    connect(m_sharedActions.value(QStringLiteral("about")), &QAction::triggered, this, &BasGUITool::onHelpAbout);
    connect(m_sharedActions.value(QStringLiteral("help")), &QAction::triggered, this, &BasGUITool::onHelpHelp);
    connect(m_sharedActions.value(QStringLiteral("detach")), &QAction::triggered, this,
            [this] { Q_EMIT sigAttachRequest(this, false); });
    connect(m_sharedActions.value(QStringLiteral("attach")), &QAction::triggered, this,
            [this] { Q_EMIT sigAttachRequest(this, true); });
}

void BasGUITool::buildMenuBar()
{
    for (int m = FileMenu; m <= HelpMenu; ++m) {
        const QStringList* names = stdMenuItems(static_cast<StdMenu>(m));
        const QList<QAction*>* own = myMenuItems(static_cast<StdMenu>(m));
        const bool hasNames = names && !names->isEmpty();
        const bool hasOwn = own && !own->isEmpty();
        if (!hasNames && !hasOwn)
            continue;
        QMenu* menu = menuBar()->addMenu(stdMenuTitle(m));
        menu->setObjectName(QStringLiteral("menu%1").arg(m));
        if (hasNames) {
            for (const QString& name : *names) {
                if (QAction* action = sharedAction(name))
                    menu->addAction(action);
            }
        }
        if (hasOwn) {
            if (hasNames)
                menu->addSeparator();
            menu->addActions(*own);
        }
    }
}

void BasGUITool::buildToolBars()
{
    if (const QStringList* buttons = stdToolbarButtons(); buttons && !buttons->isEmpty()) {
        QToolBar* bar = addToolBar(QStringLiteral("Standard"));
        bar->setObjectName(QStringLiteral("standardToolBar"));
        for (const QString& name : *buttons) {
            if (QAction* action = sharedAction(name))
                bar->addAction(action);
        }
    }
    if (needSpecialToolBar()) {
        m_specialToolBar = new QToolBar(toolName().isEmpty() ? QStringLiteral("Tool") : toolName(), this);
        m_specialToolBar->setObjectName(QStringLiteral("specialToolBar"));
        addToolBar(specialToolBarArea(), m_specialToolBar);
    }
}

void BasGUITool::toolGUIInfo(QString& name, QString& title, QIcon& icon)
{
    name = toolName();
    title = windowTitle();
    icon = windowIcon();
}

QStringList BasGUITool::getModifiedFileList() const
{
    if (isModified() && !fullFileName().isEmpty())
        return {fullFileName()};
    return {};
}

bool BasGUITool::needToBeClosed(int reason, int)
{
    // 11: the host shuts down; 10: the common data files change.
    if (reason == 11)
        return true;
    if (reason == 10)
        return isCommonDataFile();
    return false;
}

void BasGUITool::addButtonOnSpecialToolBar(QAction* action)
{
    if (m_specialToolBar)
        m_specialToolBar->addAction(action);
}

void BasGUITool::addSeparatorOnSpecialToolBar()
{
    if (m_specialToolBar)
        m_specialToolBar->addSeparator();
}

void BasGUITool::addWidgetOnSpecialToolBar(QWidget* widget)
{
    if (m_specialToolBar)
        m_specialToolBar->addWidget(widget);
}

QList<QDockWidget*> BasGUITool::getDockWidget() const
{
    return findChildren<QDockWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void BasGUITool::onClose(bool byHost)
{
    m_closeArgument = byHost;
    close();
}

void BasGUITool::onAttached(bool attached, QWidget*)
{
    m_attached = attached;
}

void BasGUITool::onHelpAbout()
{
    QString name, title;
    QIcon icon;
    toolGUIInfo(name, title, icon);
    AboutDialog(title, title, icon, this).exec();
}

void BasGUITool::onHelpHelp()
{
    BaseHelp::openHelpUrl(toolName());
}

bool BasGUITool::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        onActivated();
    else if (event->type() == QEvent::WindowDeactivate)
        onDeactivated();
    return QMainWindow::event(event);
}

QMenu* BasGUITool::createPopupMenu()
{
    return QMainWindow::createPopupMenu();
}

void BasGUITool::closeEvent(QCloseEvent* event)
{
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}

} // namespace kesu::toolvok
