#include "documentfilewatch.h"

#include <QFileInfo>

namespace kesu::toolvok {

DocumentFileWatch::DocumentFileWatch(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this] {
        // A file replaced by a rename is a new file: watch that one.
        if (QFileInfo::exists(m_path) && !m_watcher.files().contains(m_path))
            m_watcher.addPath(m_path);
        Q_EMIT changed();
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &DocumentFileWatch::onFolderChanged);
}

void DocumentFileWatch::watch(const QString& path)
{
    if (path == m_path && (path.isEmpty() || m_watcher.files().contains(path)))
        return;
    if (!m_watcher.files().isEmpty())
        m_watcher.removePaths(m_watcher.files());
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    m_path = path;
    if (path.isEmpty())
        return;
    m_watcher.addPath(QFileInfo(path).absolutePath());
    if (QFileInfo::exists(path))
        m_watcher.addPath(path);
}

void DocumentFileWatch::onFolderChanged()
{
    // Only the file's coming back concerns us; its changes and its going
    // come through the watch on the file.
    if (QFileInfo::exists(m_path) && !m_watcher.files().contains(m_path)) {
        m_watcher.addPath(m_path);
        Q_EMIT changed();
    }
}

} // namespace kesu::toolvok
