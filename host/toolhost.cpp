#include "toolhost.h"

#include "basguitool.h"

#include <QDir>
#include <QFileInfo>
#include <QPoint>

#include <utility>

namespace kesu::toolvok {

namespace {

// One spelling per file, so that a link, a relative name or a quoted name
// finds the window already showing it.
QString sameFile(QString file)
{
    if (file.size() >= 2 && file.startsWith(QLatin1Char('"')) && file.endsWith(QLatin1Char('"')))
        file = file.mid(1, file.size() - 2);
    if (file.isEmpty())
        return {};
    const QFileInfo info(file);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
}

} // namespace

ToolHost::ToolHost(Factory factory, QObject* parent) : QObject(parent), m_factory(std::move(factory)) {}

ToolHost::~ToolHost()
{
    // Windows still open when the host goes (the event loop ended first).
    const QList<BasGUITool*> tools = std::exchange(m_tools, {});
    for (BasGUITool* tool : tools) {
        disconnect(tool, nullptr, this, nullptr);
        delete tool;
    }
}

BasGUITool* ToolHost::toolFor(const QString& file) const
{
    const QString wanted = sameFile(file);
    if (wanted.isEmpty())
        return nullptr;
    for (BasGUITool* tool : m_tools) {
        if (!tool->fullFileName().isEmpty() && sameFile(tool->fullFileName()) == wanted)
            return tool;
    }
    return nullptr;
}

BasGUITool* ToolHost::open(const QStringList& files, BasGUITool* from)
{
    if (!files.isEmpty()) {
        if (BasGUITool* shown = toolFor(files.first())) {
            if (shown->isMinimized())
                shown->showNormal();
            else
                shown->show();
            shown->raise();
            shown->activateWindow();
            Q_EMIT toolRaised(shown);
            return shown;
        }
    }
    BasGUITool* tool = m_factory ? m_factory(files) : nullptr;
    if (!tool)
        return nullptr;
    tool->setAttribute(Qt::WA_DeleteOnClose, true);
    connect(tool, &BasGUITool::sigToProbe, this, &ToolHost::onToProbe);
    // The pointer is only compared once the window is gone, never used.
    connect(tool, &QObject::destroyed, this, [this, tool] {
        m_tools.removeAll(tool);
        if (m_tools.isEmpty())
            Q_EMIT lastToolClosed();
    });
    m_tools.append(tool);
    if (from)
        tool->move(from->pos() + QPoint(30, 30));
    tool->show();
    tool->raise();
    tool->activateWindow();
    Q_EMIT toolOpened(tool);
    return tool;
}

void ToolHost::onToProbe(const QString& /*tool*/, BasGUITool* from, const QStringList& files, int /*where*/)
{
    // One kind of tool, the factory's; every request is for another document.
    open(files, from);
}

} // namespace kesu::toolvok
