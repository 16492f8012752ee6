// The tool's actions, its menu and tool bar lists, and the wiring of the
// host's shared actions.
#include "vokgui.h"

#include "menuinfo.h"
#include "voknavigator.h"

#include <QAction>
#include <QMenu>
#include <QUndoStack>

namespace kesu::toolvok {

void VokGUI::createActions()
{
    for (int i = 0; i < CResource::getSize(); ++i) {
        const vok_MenuInfo& info = CResource::m_MenuInfo[i];
        auto* action = new QAction(tr(info.text), this);
        action->setStatusTip(tr(info.tip));
        action->setToolTip(tr(info.tip));
        if (info.icon[0] != '\0')
            action->setIcon(QIcon(QLatin1String(info.icon)));
        m_actionMap.insert(info.id, action);
    }
    m_actionMap.value(ActEditMode)->setCheckable(true);
}

void VokGUI::buildMenuLists()
{
    auto separator = [this] {
        auto* s = new QAction(this);
        s->setSeparator(true);
        return s;
    };
    m_menuItems[FileMenu] = {action(ActImportVcd), action(ActExport), action(ActExportImage)};
    m_menuItems[FileMenu].append(m_recentMenu->menuAction());
    m_menuItems[EditMenu] = {action(ActEditMode), separator(), action(ActNewWave), action(ActImportWave),
                             action(ActDupWave), action(ActShowWave), action(ActHideWave),
                             action(ActRemoveWave), separator(), action(ActTimeSettings)};
    for (int id : {ActNextChange, ActJumpMarker, ActJumpTime, ActJumpZero, ActJumpEnd, ActTickLeft,
                   ActTickRight, ActLeft10, ActRight10})
        m_jumpMenu->addAction(action(id));
    m_menuItems[ViewMenu] = {action(ActPlaceMarker), action(ActHideMarker), m_jumpMenu->menuAction(), separator()};
    m_menuItems[ViewMenu].append(m_viewActions.mid(0, 3));
    if (isStandalone())
        m_menuItems[ToolsMenu] = {action(ActOptions)};

    m_stdMenuNames[FileMenu] = {QStringLiteral("new"), QStringLiteral("open"), QStringLiteral("save"),
                                QStringLiteral("save as"), QStringLiteral("page setup"),
                                QStringLiteral("print preview"), QStringLiteral("print"), QStringLiteral("close")};
    m_stdMenuNames[EditMenu] = {QStringLiteral("undo"), QStringLiteral("redo"), QStringLiteral("cut"),
                                QStringLiteral("copy"), QStringLiteral("paste"), QStringLiteral("clear")};
    m_stdMenuNames[ViewMenu] = {QStringLiteral("zoom in"), QStringLiteral("zoom out"), QStringLiteral("zoom fit"),
                                QStringLiteral("zoom area"), QStringLiteral("refresh")};
    if (!isStandalone())
        m_stdMenuNames[WindowMenu] = {QStringLiteral("detach"), QStringLiteral("attach")};
    m_stdMenuNames[HelpMenu] = {QStringLiteral("about"), QStringLiteral("help")};
    m_toolbarNames = {QStringLiteral("new"), QStringLiteral("open"), QStringLiteral("save"),
                      QStringLiteral("print"), QStringLiteral("print preview"), QStringLiteral("undo"),
                      QStringLiteral("redo"), QStringLiteral("cut"), QStringLiteral("copy"),
                      QStringLiteral("paste"), QStringLiteral("refresh"), QStringLiteral("zoom in"),
                      QStringLiteral("zoom out"), QStringLiteral("zoom fit"), QStringLiteral("zoom area"),
                      QStringLiteral("about"), QStringLiteral("help")};
}

QList<QAction*>* VokGUI::myMenuItems(StdMenu menu)
{
    if (menu >= FileMenu && menu <= ViewMenu)
        return &m_menuItems[menu];
    if (menu == ToolsMenu && isStandalone())
        return &m_menuItems[ToolsMenu];
    return nullptr;
}

QStringList* VokGUI::stdMenuItems(StdMenu menu)
{
    // Tools has no shared commands; Window has them only when hosted.
    if (menu == ToolsMenu || menu < FileMenu || menu > HelpMenu)
        return nullptr;
    return &m_stdMenuNames[menu];
}

QStringList* VokGUI::stdToolbarButtons()
{
    return &m_toolbarNames;
}

void VokGUI::connectShared(const char* name, const char* signal, const QObject* receiver, const char* slot)
{
    if (QAction* shared = sharedAction(QLatin1String(name)))
        connect(shared, signal, receiver, slot);
}

void VokGUI::enableShared(const char* name, const char* toolSignal)
{
    if (QAction* shared = sharedAction(QLatin1String(name)))
        connect(this, toolSignal, shared, SLOT(setEnabled(bool)));
}

void VokGUI::initMyMenus()
{
    connectShared("new", SIGNAL(triggered()), this, SLOT(fileNew()));
    connectShared("open", SIGNAL(triggered()), this, SLOT(fileOpen()));
    connectShared("save", SIGNAL(triggered()), this, SLOT(onSave()));
    enableShared("save", SIGNAL(fileChanged(bool)));
    connectShared("save as", SIGNAL(triggered()), this, SLOT(fileSaveAs()));
    enableShared("save as", SIGNAL(editAvailable(bool)));
    connectShared("page setup", SIGNAL(triggered()), this, SLOT(filePageSetup()));
    connectShared("print preview", SIGNAL(triggered()), this, SLOT(filePrintPreview()));
    connectShared("print", SIGNAL(triggered()), this, SLOT(filePrint()));
    connectShared("undo", SIGNAL(triggered()), this, SLOT(undo()));
    enableShared("undo", SIGNAL(undoAvailable(bool)));
    connect(m_undoStack, &QUndoStack::canUndoChanged, this, &VokGUI::onUndoChanged);
    connectShared("redo", SIGNAL(triggered()), this, SLOT(redo()));
    enableShared("redo", SIGNAL(redoAvailable(bool)));
    connect(m_undoStack, &QUndoStack::canRedoChanged, this, &VokGUI::onRedoChanged);
    for (const char* name : {"cut", "copy", "clear"})
        enableShared(name, SIGNAL(editdataChanged(bool)));
    connectShared("cut", SIGNAL(triggered()), this, SLOT(cutData()));
    connectShared("copy", SIGNAL(triggered()), this, SLOT(copyData()));
    connectShared("clear", SIGNAL(triggered()), this, SLOT(clearData()));
    connectShared("paste", SIGNAL(triggered()), this, SLOT(pasteData()));
    enableShared("paste", SIGNAL(pastedataChanged(bool)));
    connectShared("zoom in", SIGNAL(triggered()), this, SLOT(viewZoomin()));
    connectShared("zoom out", SIGNAL(triggered()), this, SLOT(viewZoomout()));
    connectShared("zoom fit", SIGNAL(triggered()), this, SLOT(viewZoomfit()));
    connectShared("refresh", SIGNAL(triggered()), this, SLOT(Refresh()));

    // Zoom area: the shared toggle becomes the tool's own signal, which both
    // the navigator and the tool follow; the navigator leaving the mode by
    // itself toggles the shared action back.
    connectShared("zoom area", SIGNAL(toggled(bool)), this, SIGNAL(sigZoomarea(bool)));
    connect(this, &VokGUI::sigZoomarea, m_navigator, &BaseNavigator::onZooming);
    connect(this, &VokGUI::sigZoomarea, this, &VokGUI::onZooming);
    connect(m_navigator, &BaseNavigator::sigQuitZooming, this, &VokGUI::sigQuitZooming);
    if (QAction* zoomArea = sharedAction(QStringLiteral("zoom area")))
        connect(this, &VokGUI::sigQuitZooming, zoomArea, &QAction::toggle);

    wireTableActions();
    for (int id : {ActEditMode, ActNewWave, ActShowWave, ActHideWave, ActRemoveWave, ActPlaceMarker, ActHideMarker})
        addButtonOnSpecialToolBar(action(id));
    for (int i = 0; i < CResource::getSize(); ++i) {
        const vok_MenuInfo& info = CResource::m_MenuInfo[i];
        if (info.shortcut[0] != '\0')
            action(info.id)->setShortcut(QKeySequence(tr(info.shortcut)));
    }
}

void VokGUI::wireTableActions()
{
    struct Wiring { int id; void (VokGUI::*slot)(); void (VokGUI::*enabler)(bool); };
    const Wiring wiring[] = {
        {ActExport, &VokGUI::fileExport, nullptr},
        {ActImportVcd, &VokGUI::fileImportVcd, nullptr},
        {ActExportImage, &VokGUI::fileExportImage, nullptr},
        {ActNewWave, &VokGUI::newWave, &VokGUI::editAvailable},
        {ActImportWave, &VokGUI::importWave, &VokGUI::editAvailable},
        {ActDupWave, &VokGUI::dupWave, &VokGUI::activeWaveChanged},
        {ActShowWave, &VokGUI::showWave, &VokGUI::editAvailable},
        {ActHideWave, &VokGUI::hideWave, &VokGUI::activeWaveChanged},
        {ActRemoveWave, &VokGUI::removeWave, &VokGUI::editAvailable},
        {ActTimeSettings, &VokGUI::editTimeUnit, &VokGUI::editAvailable},
        {ActPlaceMarker, &VokGUI::placeMarker, nullptr},
        {ActHideMarker, &VokGUI::hideMarker, &VokGUI::markChanged},
        {ActNextChange, &VokGUI::JumptoNext, &VokGUI::activeWaveChanged},
        {ActJumpMarker, &VokGUI::JumptoMarker, &VokGUI::markChanged},
        {ActJumpTime, &VokGUI::JumptoTime, nullptr},
        {ActJumpZero, &VokGUI::JumptoZero, nullptr},
        {ActJumpEnd, &VokGUI::JumptoEnd, &VokGUI::activeWaveChanged},
        {ActTickLeft, &VokGUI::JumptoLeft, nullptr},
        {ActTickRight, &VokGUI::JumptoRight, nullptr},
        {ActLeft10, &VokGUI::JumptoLeft10, nullptr},
        {ActRight10, &VokGUI::JumptoRight10, nullptr},
    };
    for (const Wiring& w : wiring) {
        QAction* a = action(w.id);
        connect(a, &QAction::triggered, this, w.slot);
        if (w.enabler)
            connect(this, w.enabler, a, &QAction::setEnabled);
    }
    connect(action(ActEditMode), &QAction::toggled, this, &VokGUI::onChangeMode);
    connect(this, &VokGUI::editAvailable, action(ActEditMode), &QAction::setEnabled);
    if (isStandalone())
        connect(action(ActOptions), &QAction::triggered, this, &VokGUI::sigOptionDialog);
}

void VokGUI::initMyConnections()
{
    struct Record { const char* sender; const char* signal; const char* receiver; const char* slot; };
    static const Record records[] = {
        {nullptr, "2alwaysAvailable(bool)", "page setup", "1setEnabled(bool)"},
        {"page setup", "2triggered()", nullptr, "1filePageSetup()"},
        {nullptr, "2alwaysAvailable(bool)", "print preview", "1setEnabled(bool)"},
        {"print preview", "2triggered()", nullptr, "1filePrintPreview()"},
        {nullptr, "2alwaysAvailable(bool)", "print", "1setEnabled(bool)"},
        {"print", "2triggered()", nullptr, "1filePrint()"},
        {nullptr, "2fileChanged(bool)", "save", "1setEnabled(bool)"},
        {"save", "2triggered()", nullptr, "1onSave()"},
        {nullptr, "2editAvailable(bool)", "save as", "1setEnabled(bool)"},
        {"save as", "2triggered()", nullptr, "1fileSaveAs()"},
        {nullptr, "2undoAvailable(bool)", "undo", "1setEnabled(bool)"},
        {"undo", "2triggered()", nullptr, "1undo()"},
        {nullptr, "2redoAvailable(bool)", "redo", "1setEnabled(bool)"},
        {"redo", "2triggered()", nullptr, "1redo()"},
        {nullptr, "2editdataChanged(bool)", "copy", "1setEnabled(bool)"},
        {"copy", "2triggered()", nullptr, "1copyData()"},
        {nullptr, "2editdataChanged(bool)", "cut", "1setEnabled(bool)"},
        {"cut", "2triggered()", nullptr, "1cutData()"},
        {nullptr, "2pastedataChanged(bool)", "paste", "1setEnabled(bool)"},
        {"paste", "2triggered()", nullptr, "1pasteData()"},
        {nullptr, "2editdataChanged(bool)", "clear", "1setEnabled(bool)"},
        {"clear", "2triggered()", nullptr, "1clearData()"},
        {nullptr, "2alwaysAvailable(bool)", "zoom in", "1setEnabled(bool)"},
        {"zoom in", "2triggered()", nullptr, "1viewZoomin()"},
        {nullptr, "2alwaysAvailable(bool)", "zoom out", "1setEnabled(bool)"},
        {"zoom out", "2triggered()", nullptr, "1viewZoomout()"},
        {nullptr, "2alwaysAvailable(bool)", "zoom fit", "1setEnabled(bool)"},
        {"zoom fit", "2triggered()", nullptr, "1viewZoomfit()"},
        {nullptr, "2alwaysAvailable(bool)", "zoom area", "1setEnabled(bool)"},
        {nullptr, "2sigZoomAreaChecked(bool)", "zoom area", "1setChecked(bool)"},
        {nullptr, "2sigQuitZooming()", "zoom area", "1toggle()"},
        {"zoom area", "2toggled(bool)", nullptr, "2sigZoomarea(bool)"},
        {nullptr, "2alwaysAvailable(bool)", "refresh", "1setEnabled(bool)"},
        {"refresh", "2triggered()", nullptr, "1Refresh()"},
        {nullptr, "2alwaysAvailable(bool)", "about", "1setEnabled(bool)"},
        {"about", "2triggered()", nullptr, "1onHelpAbout()"},
        {nullptr, "2alwaysAvailable(bool)", "help", "1setEnabled(bool)"},
        {"help", "2triggered()", nullptr, "1onHelpHelp()"},
    };
    auto text = [](const char* s) { return s ? QString::fromLatin1(s) : QString(); };
    for (const Record& r : records)
        m_connections.append(new Connection{text(r.sender), text(r.signal), text(r.receiver), text(r.slot)});
}

} // namespace kesu::toolvok
