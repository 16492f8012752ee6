#include "recoverycopy.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

namespace kesu::toolvok {

namespace {
QString lockPath(const QString& copyFile)
{
    return copyFile.left(copyFile.size() - int(qstrlen(".json"))) + QStringLiteral(".lock");
}

// A lock of our own: held while the program lives, it tells other programs
// that the copy beside it is not left behind. Only a dead holder makes it
// stale, never its age: a document may stay open for weeks.
std::unique_ptr<QLockFile> takeLock(const QString& path)
{
    auto lock = std::make_unique<QLockFile>(path);
    lock->setStaleLockTime(0);
    return lock->tryLock(0) ? std::move(lock) : nullptr;
}
} // namespace

RecoveryCopy::RecoveryCopy(std::function<Document()> source, QObject* parent)
    : QObject(parent), m_source(std::move(source))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &RecoveryCopy::writeNow);
}

RecoveryCopy::~RecoveryCopy()
{
    discard();
}

QString RecoveryCopy::folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/recovery");
}

void RecoveryCopy::changed()
{
    if (!m_timer.isActive())
        m_timer.start(m_interval);
}

void RecoveryCopy::discard()
{
    m_timer.stop();
    if (m_base.isEmpty())
        return;
    QFile::remove(m_base + QStringLiteral(".json"));
    m_lock.reset();   // unlocking removes the lock file
    m_base.clear();
}

bool RecoveryCopy::writeNow()
{
    m_timer.stop();
    if (m_base.isEmpty()) {
        if (!QDir().mkpath(folder()))
            return false;
        const QString base = folder() + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces);
        m_lock = takeLock(base + QStringLiteral(".lock"));
        if (!m_lock)
            return false;
        m_base = base;
    }
    const Document document = m_source();
    const QJsonObject json{
        {QStringLiteral("file"), document.path},
        {QStringLiteral("title"), document.title},
        {QStringLiteral("fileTime"), document.fileTime.toMSecsSinceEpoch()},
        {QStringLiteral("written"), QDateTime::currentDateTime().toString(Qt::ISODateWithMs)},
        {QStringLiteral("text"), QString::fromUtf8(document.text)},
    };
    // Written beside and renamed over the last copy: a crash while writing
    // leaves the previous copy.
    QSaveFile file(m_base + QStringLiteral(".json"));
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(json).toJson(QJsonDocument::Compact)) >= 0
        && file.commit();
}

QList<RecoveryCopy::Copy> RecoveryCopy::leftovers()
{
    QList<Copy> copies;
    const QDir dir(folder());
    for (const QFileInfo& info : dir.entryInfoList({QStringLiteral("*.json")}, QDir::Files)) {
        if (!takeLock(lockPath(info.absoluteFilePath())))
            continue;   // a running program's document
        QFile file(info.absoluteFilePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
        Copy copy;
        copy.file = info.absoluteFilePath();
        copy.written = QDateTime::fromString(json.value(QStringLiteral("written")).toString(), Qt::ISODateWithMs);
        copy.document.path = json.value(QStringLiteral("file")).toString();
        copy.document.title = json.value(QStringLiteral("title")).toString();
        copy.document.fileTime = QDateTime::fromMSecsSinceEpoch(json.value(QStringLiteral("fileTime")).toInteger());
        copy.document.text = json.value(QStringLiteral("text")).toString().toUtf8();
        if (copy.written.isValid())
            copies.append(copy);
    }
    std::sort(copies.begin(), copies.end(), [](const Copy& a, const Copy& b) { return a.written > b.written; });
    return copies;
}

void RecoveryCopy::remove(const Copy& copy)
{
    QFile::remove(copy.file);
    QFile::remove(lockPath(copy.file));
}

} // namespace kesu::toolvok
