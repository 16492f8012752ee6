#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

namespace kesu::toolvok {

class BasGUITool;

// A minimal host: it owns a set of tool windows, one document each. When a
// tool asks for another document (New, Open), the host opens a further
// window for it, or raises the window that already shows that file. Windows
// are deleted when they close; lastToolClosed() follows the last one.
class ToolHost : public QObject
{
    Q_OBJECT
public:
    // Builds and initialises a tool on the files (none: a new document). The
    // host takes ownership; a null tool means none could be made.
    using Factory = std::function<BasGUITool*(const QStringList& files)>;

    explicit ToolHost(Factory factory, QObject* parent = nullptr);
    ~ToolHost() override;

    // Shows the window of the first file, opening one unless a window already
    // shows that file; an empty list opens an untitled document.
    BasGUITool* open(const QStringList& files, BasGUITool* from = nullptr);

    // The window showing this file, if any.
    BasGUITool* toolFor(const QString& file) const;
    const QList<BasGUITool*>& tools() const { return m_tools; }

Q_SIGNALS:
    void toolOpened(kesu::toolvok::BasGUITool* tool);
    void toolRaised(kesu::toolvok::BasGUITool* tool);
    void lastToolClosed();

private Q_SLOTS:
    void onToProbe(const QString& tool, kesu::toolvok::BasGUITool* from, const QStringList& files, int where);

private:
    Factory m_factory;
    QList<BasGUITool*> m_tools;
};

} // namespace kesu::toolvok
