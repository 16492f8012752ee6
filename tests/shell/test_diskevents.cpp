// Saves that fail keep the document modified; another program's change is
// noticed at once while active, and a save asks before replacing it.
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include <QAction>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace kesu::toolvok;
using namespace toolfixture;

namespace {
const QString kReload = QStringLiteral("The file was modified by another program. Do you want to reload it?");

// Another program's save: written in place, or written beside and renamed
// over the file as careful programs do; either way a second later.
bool otherProgramSaves(const QString& path, const QByteArray& text, bool rename)
{
    const QString target = rename ? path + QStringLiteral(".new") : path;
    return writeFile(target, text) && touchLater(target, 1) && (!rename || ::rename(qPrintable(target), qPrintable(path)) == 0);
}
} // namespace

class TestDiskEvents : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QByteArray m_other;
    QString m_project;

private Q_SLOTS:
    void init()
    {
        m_file = m_dir.filePath(QStringLiteral("doc/counter.wdl"));
        QVERIFY(QDir().mkpath(QFileInfo(m_file).absolutePath()));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
        m_other = readFile(exampleFile(QStringLiteral("cpu_bus.wdl")));
    }

    void failedSave_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("folder removed") << "removed";
        QTest::newRow("file size limit") << "limit";
        QTest::newRow("read-only folder") << "read-only";
    }
    void failedSave()
    {
        QFETCH(QString, fault);
        const QByteArray original = readFile(m_file);
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QString title = gui.windowTitle();
        ModalAnswerer answerer({press(QMessageBox::Ok)});
        bool saved = true;
        if (fault == QLatin1String("removed")) {
            QVERIFY(QDir(QFileInfo(m_file).absolutePath()).removeRecursively());
            saved = gui.onSave();
            QVERIFY(!QFileInfo::exists(m_file));
        } else if (fault == QLatin1String("read-only")) {
            // Root writes into read-only folders all the same: it saves as nobody.
            const QString folder = QFileInfo(m_file).absolutePath();
            const bool root = ::geteuid() == 0;
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
            if (root)
                QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther);
            QVERIFY(!root || ::seteuid(65534) == 0);
            const bool blocked = !QFile(folder + QStringLiteral("/probe")).open(QIODevice::WriteOnly);
            saved = gui.onSave();
            QVERIFY(!root || ::seteuid(0) == 0);
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QVERIFY(blocked);
            QCOMPARE(readFile(m_file), original);
        } else {
            rlimit before{};
            getrlimit(RLIMIT_FSIZE, &before);
            const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{rlim_t(original.size() / 2), before.rlim_max};
            setrlimit(RLIMIT_FSIZE, &limit);
            saved = gui.onSave();
            setrlimit(RLIMIT_FSIZE, &before);
            std::signal(SIGXFSZ, oldHandler);
            QCOMPARE(readFile(m_file), original);
        }
        QVERIFY(!saved);
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), QStringList{"Cannot open waveform file " + m_file});
        QVERIFY(gui.isModified());
        QCOMPARE(gui.windowTitle(), title);
    }

    // Noticed while the window is active, without waiting for the next activation.
    void changedWhileActive_data()
    {
        QTest::addColumn<bool>("rename");
        QTest::addColumn<int>("answer");
        QTest::newRow("in place, reload") << false << int(QMessageBox::Yes);
        QTest::newRow("renamed over, keep") << true << int(QMessageBox::No);
        QTest::newRow("renamed over, reload") << true << int(QMessageBox::Yes);
    }
    void changedWhileActive()
    {
        QFETCH(bool, rename);
        QFETCH(int, answer);
        const auto gui = openShown(m_file, QSize(800, 500));
        QVERIFY(gui);
        QApplication::setActiveWindow(gui.get());
        QVERIFY(QTest::qWaitForWindowActive(gui.get()));
        const QByteArray shown = savedText(*gui);
        {
            ModalAnswerer answerer({press(QMessageBox::StandardButton(answer))});
            QVERIFY(otherProgramSaves(m_file, m_other, rename));
            QTRY_COMPARE(answerer.said(), QStringList{kReload});
            VERIFY_ANSWERED(answerer);
        }
        const bool reload = answer == QMessageBox::Yes;
        if (reload) {
            QApplication::setActiveWindow(gui.get());
            QVERIFY(QTest::qWaitForWindowActive(gui.get()));
            ModalAnswerer again({press(QMessageBox::Yes)});
            QVERIFY(otherProgramSaves(m_file, m_other, rename));
            QTRY_COMPARE(again.said(), QStringList{kReload});
            VERIFY_ANSWERED(again);
        }
        QCOMPARE(savedText(*gui), reload ? writerTextOfFile(m_file) : shown);
        QCOMPARE(gui->isModified(), !reload);
        // Kept, the save asks before replacing the other program's file;
        // either way our own save is no change by another program.
        ModalAnswerer after(reload ? QList<Answer>() : QList<Answer>{press(QMessageBox::Yes)});
        QVERIFY(gui->onSave());
        QTest::qWait(300);
        VERIFY_ANSWERED(after);
        QCOMPARE(after.seen.size(), reload ? 0 : 1);
        QCOMPARE(readFile(m_file), savedText(*gui));
    }

    // A document whose file another program changed since it was opened asks
    // before a save replaces it; the auto-save leaves it alone.
    void saveAsksFirst_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("save, yes") << "save" << true;
        QTest::newRow("save, no") << "save" << false;
        QTest::newRow("auto-save") << "auto" << false;
    }
    void saveAsksFirst()
    {
        QFETCH(QString, how);
        QFETCH(bool, replaced);
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);   // never active
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        QVERIFY(otherProgramSaves(m_file, m_other, false));
        const QByteArray edited = savedText(gui);
        QList<Answer> answers;
        if (how == QLatin1String("save"))
            answers << press(replaced ? QMessageBox::Yes : QMessageBox::No);
        ModalAnswerer answerer(answers);
        if (how == QLatin1String("save"))
            QCOMPARE(gui.onSave(), replaced);
        else
            gui.onAutoSave();
        VERIFY_ANSWERED(answerer);
        if (!answers.isEmpty())
            QCOMPARE(answerer.said(),
                     QStringList{QStringLiteral("The file \"%1\" was changed by another program since it was "
                                                "opened here. Replace it with this document?").arg(m_file)});
        QCOMPARE(readFile(m_file), replaced ? edited : m_other);
        QCOMPARE(gui.isModified(), !replaced);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestDiskEvents)

#include "test_diskevents.moc"
