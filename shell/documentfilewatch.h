// Tells when the document's file changes on disk while the program runs,
// also when another program replaces it by renaming a new file over it,
// which ends a watch on the file itself.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>

namespace kesu::toolvok {

class DocumentFileWatch : public QObject
{
    Q_OBJECT
public:
    explicit DocumentFileWatch(QObject* parent);
    // An empty path watches nothing.
    void watch(const QString& path);

Q_SIGNALS:
    void changed();

private:
    void onFolderChanged();

    QFileSystemWatcher m_watcher;
    QString m_path;
};

} // namespace kesu::toolvok
