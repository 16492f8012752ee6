#pragma once

#include <QStringList>

class QMenu;
class QSettings;

namespace kesu::toolvok {

// The documents opened or saved last, newest first, as absolute paths in the
// user's settings, so every window and the next start share them.
class RecentFiles
{
public:
    static constexpr int MaxFiles = 8;

    explicit RecentFiles(QSettings& settings) : settings_(settings) {}

    QStringList files() const;
    void add(const QString& path);
    void remove(const QString& path);
    void clear();
    // Takes the files that no longer exist off the list and returns them.
    QStringList pruneMissing();

private:
    void store(const QStringList& files);

    QSettings& settings_;
};

} // namespace kesu::toolvok
