// A save (savechild) killed, robbed of its folder or refused a write leaves the old file or the whole new
// one. VOK_SAVE_TRIALS=N runs at least N trials.
#include "files.h"
#include "saveedit.h"
#include "wavewriter.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace kesu::toolvok;

using testfiles::readFile;

namespace {
struct Child { bool killed = false; int exitCode = -1; int steps = 0; };

// Runs savechild; killAfterUs >= 0 kills it that long after its save began.
Child runChild(const QString& path, int segments, const QString& fault, qint64 n, int killAfterUs = -1)
{
    QProcess process;
    process.start(QStringLiteral(VOK_SAVECHILD_PATH), {path, QString::number(segments), fault, QString::number(n)});
    if (killAfterUs >= 0) {
        while (!process.canReadLine() && process.waitForReadyRead(60000)) {
        }
        usleep(useconds_t(killAfterUs));
        process.kill();
    }
    process.waitForFinished(60000);
    static const QRegularExpression steps(QStringLiteral("steps (\\d+)"));
    return {process.exitStatus() == QProcess::CrashExit, process.exitCode(),
            steps.match(QString::fromLatin1(process.readAllStandardOutput())).captured(1).toInt()};
}
} // namespace

class TestSaveFaults : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QByteArray m_old;
    int m_trials = 0;
    const QList<int> m_sizes{2000, 30000};

    QString freshFile(const QString& name)
    {
        const QString folder = m_dir.filePath(name);
        QDir(folder).removeRecursively();
        const QString path = folder + QStringLiteral("/doc.wdl");
        return QDir().mkpath(folder) && testfiles::writeFile(path, m_old) ? path : QString();
    }

    QByteArray newVersion(int segments) const
    {
        WaveformData document;
        document.loadText(QString::fromUtf8(m_old));
        saveedit::addStressWave(document, segments);
        return formatWaveform(document);
    }

    bool oldOrNew(const QString& path, const QByteArray& newText)
    {
        ++m_trials;
        return QList{m_old, newText}.contains(readFile(path));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_old = readFile(QStringLiteral(VOK_SOURCE_DIR "/examples/counter.wdl"));
    }

    // Killed or its folder removed before each step, then killed at random moments.
    void interruptedAtEveryStep()
    {
        for (const int segments : m_sizes) {
            const QByteArray newText = newVersion(segments);
            const QString dry = freshFile(QStringLiteral("dry"));
            const Child whole = runChild(dry, segments, QStringLiteral("none"), 0);
            QCOMPARE(readFile(dry), newText);
            QVERIFY(whole.steps >= 4);
            for (int n = 1; n <= whole.steps; ++n) {
                QString path = freshFile(QStringLiteral("kill"));
                QVERIFY2(runChild(path, segments, QStringLiteral("kill"), n).killed, qPrintable(QString::number(n)));
                QVERIFY(oldOrNew(path, newText));
                path = freshFile(QStringLiteral("removed"));
                QCOMPARE(runChild(path, segments, QStringLiteral("remove"), n).exitCode, 1);
                ++m_trials;   // the failure is reported and no part of a file comes back
                QVERIFY(!QFileInfo::exists(QFileInfo(path).absolutePath()));
            }
        }
        const int random = qMax(10, qEnvironmentVariableIntValue("VOK_SAVE_TRIALS") - m_trials - 3);
        int newOnDisk = 0;
        for (int i = 0; i < random; ++i) {
            const int segments = m_sizes.at(i % 2);
            const QString path = freshFile(QStringLiteral("random"));
            runChild(path, segments, QStringLiteral("none"), 0, QRandomGenerator::global()->bounded(20000));
            QVERIFY(oldOrNew(path, newVersion(segments)));
            newOnDisk += readFile(path) != m_old;
        }
        qInfo("%d trials, %d killed at random, %d of those with the new version on disk", m_trials, random, newOnDisk);
    }

    void writeRefused_data()
    {
        QTest::addColumn<QString>("fault");   // a file size limit, a full disk, a read-only folder
        for (const char* fault : {"limit", "full", "readonly"})
            QTest::newRow(fault) << QString(fault);
    }
    void writeRefused()
    {
        QFETCH(QString, fault);
        const QByteArray newText = newVersion(30000);
        const QByteArray folder = m_dir.filePath(fault).toLocal8Bit();
        QVERIFY(QDir().mkpath(folder));
        // As root, a 64 KiB tmpfs: room for the old version only, and truly read-only.
        const bool root = geteuid() == 0;
        const bool mounted = root && ::mount("tmpfs", folder, "tmpfs", 0, "size=64k") == 0;
        const auto unmount = qScopeGuard([&] { mounted && ::umount2(folder, MNT_DETACH); });
        if (fault != QLatin1String("limit") && !mounted && (fault == QLatin1String("full") || root))
            QSKIP("needs a tmpfs of its own (root)");
        const QString path = freshFile(fault);
        QVERIFY(newText.size() > 64 * 1024);
        if (fault == QLatin1String("readonly"))
            QVERIFY(mounted ? ::mount("tmpfs", folder, "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0
                            : QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const bool limit = fault == QLatin1String("limit");
        QCOMPARE(runChild(path, 30000, limit ? fault : QStringLiteral("none"), newText.size() / 2).exitCode, 1);
        QCOMPARE(readFile(path), m_old);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"doc.wdl"});
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
};

QTEST_GUILESS_MAIN(TestSaveFaults)
#include "test_savefaults.moc"
