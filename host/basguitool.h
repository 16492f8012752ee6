#pragma once

#include "connection.h"

#include <QIcon>
#include <QList>
#include <QMainWindow>
#include <QMap>
#include <QStringList>

class QAction;
class QDockWidget;
class QMenu;
class QSettings;
class QToolBar;

namespace kesu::toolvok {

// The base of every tool window. The host creates a tool, initialises it,
// activates, attaches and detaches it and asks it about its files; the tool
// answers through these virtual operations. Standard commands ("new", "save",
// "undo", "zoom in", ...) are actions shared by name; stand-alone, the tool's
// own frame creates them and builds the menu bar and tool bars from the lists
// the tool returns.
class BasGUITool : public QMainWindow
{
    Q_OBJECT
public:
    BasGUITool(QWidget* parent, bool standalone);
    ~BasGUITool() override;

    // The names of the shared actions, in the order a frame creates them.
    static const QStringList& sharedActionNames();
    // The title of a standard menu.
    static QString stdMenuTitle(int menu);

    virtual bool initialize();
    virtual QString toolName() const { return QString(); }
    virtual QString fullTitle() const { return m_fullTitle; }
    virtual QString title() const { return m_title; }
    virtual void toolGUIInfo(QString& name, QString& title, QIcon& icon);
    virtual QString fileName() const { return QString(); }
    virtual QString fullFileName() const { return QString(); }
    virtual QString getVirtualFileName() const { return QString(); }
    virtual bool isModified() const { return false; }
    virtual QStringList getModifiedFileList() const;
    virtual bool isCommonDataFile() const { return false; }
    virtual QStringList needWhichDBfile() const { return {}; }
    virtual bool needToBeClosed(int reason, int detail);
    virtual bool isStandalone() const { return m_standalone; }
    virtual bool isAttached() const { return m_attached; }
    virtual QList<Connection*>* activeConnections() { return nullptr; }
    virtual QStringList* stdMenuItems(StdMenu) { return nullptr; }
    virtual QList<QAction*>* myMenuItems(StdMenu) { return nullptr; }
    virtual QList<QMenu*>* myMenus() { return nullptr; }
    virtual QStringList* stdToolbarButtons() { return nullptr; }
    virtual bool needSpecialToolBar() const { return false; }
    virtual Qt::ToolBarArea specialToolBarArea() const { return Qt::TopToolBarArea; }
    virtual void addButtonOnSpecialToolBar(QAction* action);
    virtual void addSeparatorOnSpecialToolBar();
    virtual void addWidgetOnSpecialToolBar(QWidget* widget);
    virtual QList<QDockWidget*> getDockWidget() const;

    // The shared action of that name, or null when the frame has none.
    QAction* sharedAction(const QString& name) const { return m_sharedActions.value(name); }
    const QMap<QString, QAction*>& sharedActions() const { return m_sharedActions; }
    QToolBar* specialToolBar() const { return m_specialToolBar; }
    bool closedByHost() const { return m_closeArgument; }

public Q_SLOTS:
    virtual bool maybeSave() { return true; }
    virtual void onClose(bool byHost);
    virtual bool onSave() { return true; }
    virtual void onActivated() {}
    virtual void onDeactivated() {}
    virtual void onToolSwitched(bool) {}
    virtual void onAttached(bool attached, QWidget* frame);
    virtual void onDefLayout() {}
    virtual void onLoadLayout(QSettings*) {}
    virtual void onSaveLayout(QSettings*) {}
    virtual void onFlowRunning(bool) {}
    virtual void onLockData() {}
    virtual void onReleaseData() {}
    virtual void onProbing(const QString&) {}
    virtual void onDataChanged() {}
    virtual void onDBAvailable(bool) {}
    virtual void onSystemBusy(bool) {}
    virtual void onHelpAbout();
    virtual void onHelpHelp();

Q_SIGNALS:
    // Asks the host to open a tool of that name on the files (none: a new
    // document).
    void sigToProbe(const QString& tool, BasGUITool* from, const QStringList& files, int where);
    void sigFileSaved(const QString& path);
    void sigTitleChange(BasGUITool* tool);
    // Stand-alone "detach"/"attach" requests for the hosting frame.
    void sigAttachRequest(BasGUITool* tool, bool attach);

protected:
    bool event(QEvent* event) override;
    QMenu* createPopupMenu() override;
    void closeEvent(QCloseEvent* event) override;

    // Gives the tool the shared actions of a host frame (hosted) instead of
    // creating its own.
    void useSharedActions(const QMap<QString, QAction*>& actions) { m_sharedActions = actions; }

    QString m_title;
    QString m_fullTitle;

private:
    void createSharedActions();
    void buildMenuBar();
    void buildToolBars();

    bool m_standalone;
    bool m_attached = false;
    bool m_closeArgument = false;
    bool m_framed = false;
    QMap<QString, QAction*> m_sharedActions;
    QToolBar* m_specialToolBar = nullptr;
};

} // namespace kesu::toolvok
