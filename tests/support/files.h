#pragma once

// Files as the tests and the user's other programs see them.
#include <QDateTime>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace testfiles {

inline QString exampleFile(const QString& name)
{
    return QStringLiteral(VOK_SOURCE_DIR "/examples/") + name;
}

inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Whether every byte reached the file.
[[nodiscard]] inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// The path of name in dir, holding bytes; a test cannot go on without it.
inline QString writtenFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    if (!writeFile(path, bytes))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

// A copy the user may save over (sources may be checked out read-only).
[[nodiscard]] inline bool copyWritable(const QString& from, const QString& to)
{
    QFile::remove(to);
    return QFile::copy(from, to) && QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
}

// Pushes the file's modification time forward, as another program saving it would.
[[nodiscard]] inline bool touchLater(const QString& path, int seconds)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite)
        && file.setFileTime(QDateTime::currentDateTime().addSecs(seconds), QFileDevice::FileModificationTime);
}

} // namespace testfiles
