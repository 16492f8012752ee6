// Saves that cannot lose data: a child process (savechild) saves an edited
// document the way the editor does and is killed at every step of the save,
// loses its folder at every step, or meets a file size limit, a full disk or a
// read-only folder. Whatever happens, the file on disk is the old version or
// the whole new one, and a save that did not finish says so.
// VOK_SAVE_TRIALS=N runs at least N trials (more document sizes).
#include "saveedit.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace kesu::toolvok;

namespace {
QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
}

struct Child {
    int exitCode = -1;
    bool killed = false;
    int steps = 0;
};

Child runChild(const QString& path, int segments, const QString& fault, qint64 n)
{
    QProcess process;
    process.start(QStringLiteral(VOK_SAVECHILD_PATH),
                  {path, QString::number(segments), fault, QString::number(n)});
    Child child;
    if (!process.waitForFinished(60000))
        return child;
    child.killed = process.exitStatus() == QProcess::CrashExit;
    child.exitCode = process.exitCode();
    const QByteArray out = process.readAllStandardOutput();
    const qsizetype at = out.indexOf("steps ");
    if (at >= 0)
        child.steps = out.mid(at + 6, out.indexOf('\n', at) - at - 6).toInt();
    return child;
}

// Kills the child a random number of microseconds (below spread) after it
// starts its save; whether it had finished by then or not.
Child killAtRandom(const QString& path, int segments, int spread)
{
    QProcess process;
    process.start(QStringLiteral(VOK_SAVECHILD_PATH), {path, QString::number(segments), QStringLiteral("none"), "0"});
    Child child;
    while (!process.canReadLine() && process.waitForReadyRead(60000)) {
    }
    usleep(QRandomGenerator::global()->bounded(spread));
    process.kill();
    process.waitForFinished(60000);
    child.killed = process.exitStatus() == QProcess::CrashExit;
    child.exitCode = process.exitCode();
    return child;
}

// A small tmpfs of its own, when the tests run as root: a disk that really
// fills up and a folder that really is read-only.
struct SmallDisk {
    explicit SmallDisk(const QString& folder, const char* options) : m_folder(folder.toLocal8Bit())
    {
        mounted = geteuid() == 0 && ::mount("tmpfs", m_folder.constData(), "tmpfs", 0, options) == 0;
    }
    bool remountReadOnly()
    {
        return ::mount("tmpfs", m_folder.constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    ~SmallDisk()
    {
        if (mounted)
            ::umount2(m_folder.constData(), MNT_DETACH);
    }
    bool mounted = false;
    QByteArray m_folder;
};
} // namespace

class TestSaveFaults : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QByteArray m_old;
    int m_trials = 0;
    int m_lost = 0;   // bytes of the old version gone without the new one in place

    // A fresh folder holding the old version; its path and the file's.
    QString freshFile(const QString& name)
    {
        const QString folder = m_dir.filePath(name);
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("/doc.wdl");
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(m_old) != m_old.size())
            return {};
        return path;
    }

    static QByteArray newVersion(const QByteArray& old, int segments)
    {
        WaveformData document;
        document.loadText(QString::fromUtf8(old));
        saveedit::addStressWave(document, segments);
        return formatWaveform(document);
    }

    // Counts the trial; fails the test when the file is neither version.
    bool onDisk(const QString& path, const QByteArray& newText, const char* what)
    {
        ++m_trials;
        const QByteArray now = readAll(path);
        if (now == m_old || now == newText)
            return true;
        m_lost += int(m_old.size());
        qWarning("%s: the file is neither version (%lld bytes)", what, qint64(now.size()));
        return false;
    }

    static QList<int> sizes() { return {2000, 30000}; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_old = readAll(QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl"));
    }

    void killedAtEveryStep()
    {
        for (const int segments : sizes()) {
            const QByteArray newText = newVersion(m_old, segments);
            const QString dry = freshFile(QStringLiteral("dry"));
            const Child whole = runChild(dry, segments, QStringLiteral("none"), 0);
            QCOMPARE(whole.exitCode, 0);
            QCOMPARE(readAll(dry), newText);
            QVERIFY(whole.steps >= 4);
            for (int n = 1; n <= whole.steps; ++n) {
                const QString path = freshFile(QStringLiteral("kill"));
                const Child child = runChild(path, segments, QStringLiteral("kill"), n);
                QVERIFY2(child.killed, qPrintable(QStringLiteral("step %1 of %2").arg(n).arg(whole.steps)));
                QVERIFY(onDisk(path, newText, "killed"));
            }
        }
    }

    // The rest of the trials asked for: kills at random moments of the save.
    void killedAtRandom()
    {
        const int wanted = qMax(10, qEnvironmentVariableIntValue("VOK_SAVE_TRIALS") - 2 * m_trials - 3);
        int newOnDisk = 0;
        for (int i = 0; i < wanted; ++i) {
            const int segments = sizes().at(i % 2);
            const QByteArray newText = newVersion(m_old, segments);
            const QString path = freshFile(QStringLiteral("random"));
            const Child child = killAtRandom(path, segments, 20000);
            QVERIFY(onDisk(path, newText, "killed at random"));
            newOnDisk += readAll(path) == newText;
        }
        qInfo("killed at random: %d trials, %d with the new version on disk", wanted, newOnDisk);
    }

    void folderRemovedAtEveryStep()
    {
        for (const int segments : sizes()) {
            const Child whole = runChild(freshFile(QStringLiteral("dry")), segments, QStringLiteral("none"), 0);
            for (int n = 1; n <= whole.steps; ++n) {
                const QString path = freshFile(QStringLiteral("removed"));
                const Child child = runChild(path, segments, QStringLiteral("remove"), n);
                ++m_trials;
                // The save reports the failure, and no part of a file comes back.
                QCOMPARE(child.exitCode, 1);
                QVERIFY(!QFileInfo::exists(QFileInfo(path).absolutePath()));
            }
        }
    }

    void writeRefused_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("file size limit") << "limit";
        QTest::newRow("full disk") << "full";
        QTest::newRow("read-only folder") << "readonly";
    }
    void writeRefused()
    {
        QFETCH(QString, fault);
        const int segments = 30000;
        const QByteArray newText = newVersion(m_old, segments);
        const QString folder = m_dir.filePath(fault);
        QDir(folder).removeRecursively();
        QVERIFY(QDir().mkpath(folder));
        // 64 KiB: room for the old version, not for the new one.
        SmallDisk disk(folder, "size=64k");
        if (fault != QLatin1String("limit") && !disk.mounted && (fault == QLatin1String("full") || geteuid() == 0))
            QSKIP("needs a tmpfs of its own (root)");
        const QString path = freshFile(fault);
        QVERIFY(!path.isEmpty());
        QVERIFY(newText.size() > 64 * 1024);
        if (fault == QLatin1String("readonly"))
            QVERIFY(disk.mounted ? disk.remountReadOnly() : QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const Child child = runChild(path, segments, fault == QLatin1String("limit") ? fault : QStringLiteral("none"),
                                     newText.size() / 2);
        QCOMPARE(child.exitCode, 1);
        QVERIFY(onDisk(path, newText, qPrintable(fault)));
        QCOMPARE(readAll(path), m_old);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"doc.wdl"});
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void cleanupTestCase()
    {
        qInfo("save trials: %d, bytes lost: %d", m_trials, m_lost);
        QCOMPARE(m_lost, 0);
    }
};

QTEST_GUILESS_MAIN(TestSaveFaults)
#include "test_savefaults.moc"
