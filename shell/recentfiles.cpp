#include "recentfiles.h"

#include <QFileInfo>
#include <QSettings>

namespace kesu::toolvok {

namespace {
const QString Key = QStringLiteral("recent_files");
}

QStringList RecentFiles::files() const
{
    // Re-read each time: another window of the program may have changed it.
    QStringList list = settings_.value(Key).toStringList();
    list.removeAll(QString());
    return list.mid(0, MaxFiles);
}

void RecentFiles::add(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList list = files();
    list.removeAll(absolute);
    list.prepend(absolute);
    store(list.mid(0, MaxFiles));
}

void RecentFiles::remove(const QString& path)
{
    QStringList list = files();
    if (list.removeAll(path) > 0)
        store(list);
}

void RecentFiles::clear()
{
    settings_.remove(Key);
}

QStringList RecentFiles::pruneMissing()
{
    QStringList kept;
    QStringList missing;
    for (const QString& path : files())
        (QFileInfo(path).isFile() ? kept : missing) << path;
    if (!missing.isEmpty())
        store(kept);
    return missing;
}

void RecentFiles::store(const QStringList& files)
{
    settings_.setValue(Key, files);
}

} // namespace kesu::toolvok
