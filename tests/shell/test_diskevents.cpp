// Saves that fail keep the document modified; another program's change is noticed at once while active, a deletion
// on activation, and a save asks before replacing a changed file; a window killed mid-edit leaves a copy offered next.
#include "recoverycopy.h"
#include "shelltest.h"

#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

namespace {
const QString kReload = QStringLiteral("The file was modified by another program. Do you want to reload it?");

// Another program's save: in place, or beside and renamed over the file as careful programs do; a second later.
bool otherProgramSaves(const QString& path, const QByteArray& text, bool rename)
{
    const QString target = rename ? path + QStringLiteral(".new") : path;
    return writeFile(target, text) && touchLater(target, 1) && (!rename || ::rename(qPrintable(target), qPrintable(path)) == 0);
}

// The child: opens the file (none: an untitled document), edits it, prints the edited
// document, waits for its recovery copy, and then dies at once or closes the window.
int editAndEnd(const QString& file, bool crash)
{
    auto gui = openTool(file);
    gui->findChild<RecoveryCopy*>()->setInterval(50);
    if (file.isEmpty()) {
        auto* wave = new WaveData(QStringLiteral("typed"));
        wave->insertData(new Pattern("1", 40), nullptr);
        gui->document()->addWave(wave);
        gui->SetDirtyBit();
    } else {
        appendSegment(*gui, gui->document()->waves.first()->name, 500);
    }
    std::fputs(formatWaveform(*gui->document()).constData(), stdout);
    std::fflush(stdout);
    if (!QTest::qWaitFor([] { return !QDir(RecoveryCopy::folder()).entryList({QStringLiteral("*.json")}).isEmpty(); }, 20000))
        return 3;
    if (crash)
        std::raise(SIGKILL);
    return 0;
}

} // namespace

class TestDiskEvents : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QByteArray m_other;

private Q_SLOTS:
    void init()
    {
        m_file = m_dir.filePath(QStringLiteral("doc/counter.wdl"));
        QVERIFY(QDir().mkpath(QFileInfo(m_file).absolutePath()) && copyWritable(exampleFile("counter.wdl"), m_file));
        m_other = readFile(exampleFile(QStringLiteral("cpu_bus.wdl")));
    }

    void failedSave_data()
    {
        QTest::addColumn<QString>("fault");   // folder removed, file size limit, read-only folder
        for (const char* fault : {"removed", "limit", "read-only"})
            QTest::newRow(fault) << QString(fault);
    }
    void failedSave()
    {
        QFETCH(QString, fault);
        const QByteArray original = readFile(m_file);
        const QString folder = QFileInfo(m_file).absolutePath();
        const auto gui = openTool(m_file);
        appendSegment(*gui, QStringLiteral("rst_n"), 500);
        const QString title = gui->windowTitle();
        ModalAnswerer answerer({press(QMessageBox::Ok)});
        bool saved = true;
        if (fault == QLatin1String("removed")) {
            QVERIFY(QDir(folder).removeRecursively());
            saved = gui->onSave();
        } else if (fault == QLatin1String("limit")) {
            rlimit before{};
            getrlimit(RLIMIT_FSIZE, &before);
            const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{rlim_t(original.size() / 2), before.rlim_max};
            setrlimit(RLIMIT_FSIZE, &limit);
            saved = gui->onSave();
            setrlimit(RLIMIT_FSIZE, &before);
            std::signal(SIGXFSZ, oldHandler);
        } else {
            // Root writes into read-only folders all the same: it saves as nobody.
            const bool root = ::geteuid() == 0;
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
            if (root)
                QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther);
            QVERIFY(!root || ::seteuid(65534) == 0);
            const bool blocked = !QFile(folder + QStringLiteral("/probe")).open(QIODevice::WriteOnly);
            saved = gui->onSave();
            QVERIFY(!root || ::seteuid(0) == 0);
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QVERIFY(blocked);
        }
        QVERIFY(!saved && gui->isModified());
        QCOMPARE(QFileInfo::exists(m_file), fault != QLatin1String("removed"));
        QCOMPARE(readFile(m_file), fault == QLatin1String("removed") ? QByteArray() : original);
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), QStringList{"Cannot open waveform file " + m_file});
        QCOMPARE(gui->windowTitle(), title);
    }

    // Noticed while the window is active, without waiting for the next activation.
    void changedWhileActive_data()
    {
        addColumns<bool, int>({"rename", "answer"});
        QTest::newRow("in place, reload") << false << int(QMessageBox::Yes);
        QTest::newRow("in place, keep") << false << int(QMessageBox::No);
        QTest::newRow("renamed over, keep") << true << int(QMessageBox::No);
        QTest::newRow("renamed over, reload") << true << int(QMessageBox::Yes);
    }
    void changedWhileActive()
    {
        QFETCH(bool, rename); QFETCH(int, answer);
        const auto gui = openShown(m_file, QSize(800, 500));
        QVERIFY(gui);
        const QByteArray shown = savedText(*gui);
        const bool reload = answer == QMessageBox::Yes;
        // Reloaded, the next change is noticed as well.
        for (int round = 0; round < (reload ? 2 : 1); ++round) {
            QApplication::setActiveWindow(gui.get());
            QVERIFY(QTest::qWaitForWindowActive(gui.get()));
            ModalAnswerer answerer({press(QMessageBox::StandardButton(answer))});
            QVERIFY(otherProgramSaves(m_file, m_other, rename));
            QTRY_COMPARE(answerer.said(), QStringList{kReload});
            VERIFY_ANSWERED(answerer);
        }
        QCOMPARE(savedText(*gui), reload ? writerTextOfFile(m_file) : shown);
        QCOMPARE(gui->isModified(), !reload);
        // Kept, the save asks before replacing the other program's file;
        // either way our own save is no change by another program.
        ModalAnswerer after(reload ? QList<Answer>() : QList<Answer>{press(QMessageBox::Yes)});
        gui->onActivated();   // kept, nothing is asked again
        QVERIFY(gui->onSave());
        QTest::qWait(300);
        VERIFY_ANSWERED(after);
        QCOMPARE(readFile(m_file), savedText(*gui));
    }

    // Deleted under its windows: asked once per window; No keeps it open and named, Yes closes it.
    void deletedFile()
    {
        const auto gui = openTool(m_file);
        const auto drop = openShown(m_file, QSize(800, 500));
        QVERIFY(drop && QFile::remove(m_file));
        ModalAnswerer answerer({press(QMessageBox::No), press(QMessageBox::Yes)});
        gui->onActivated();
        gui->onActivated();
        drop->onActivated();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.seen[0].title, QStringLiteral("Close non-existing file"));
        const QString gone = QStringLiteral("The file \"%1\" doesn't exist any more. Close it?").arg(m_file);
        QCOMPARE(answerer.said(), QStringList(2, gone));
        QCOMPARE(gui->fullFileName(), m_file);
        QVERIFY(!gui->closedByHost() && !drop->isVisible() && drop->closedByHost());
    }

    // A file another program changed since it was opened: a save asks before replacing it, the auto-save leaves it.
    void saveAsksFirst_data()
    {
        QTest::addColumn<int>("answer");   // 0: the auto-save
        QTest::newRow("save, yes") << int(QMessageBox::Yes);
        QTest::newRow("save, no") << int(QMessageBox::No);
        QTest::newRow("auto-save") << 0;
    }
    void saveAsksFirst()
    {
        QFETCH(int, answer);
        const bool replaced = answer == QMessageBox::Yes;
        const auto gui = openTool(m_file);   // never active
        appendSegment(*gui, QStringLiteral("rst_n"), 500);
        QVERIFY(otherProgramSaves(m_file, m_other, false));
        const QByteArray edited = savedText(*gui);
        ModalAnswerer answerer(answer ? QList<Answer>{press(QMessageBox::StandardButton(answer))} : QList<Answer>());
        if (answer)
            QCOMPARE(gui->onSave(), replaced);
        else
            gui->onAutoSave();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said().join(""), answer ? QStringLiteral("The file \"%1\" was changed by another program since it was "
                                                                   "opened here. Replace it with this document?").arg(m_file) : "");
        QCOMPARE(readFile(m_file), replaced ? edited : m_other);
        QCOMPARE(gui->isModified(), !replaced);
    }

    void killedMidEdit_data()
    {
        addColumns<bool, QString, int>({"untitled", "end", "answer"});   // answer 0: no offer
        QTest::newRow("named, restore") << false << "crash" << int(QMessageBox::Yes);
        QTest::newRow("named, discard") << false << "crash" << int(QMessageBox::No);
        QTest::newRow("untitled, restore") << true << "crash" << int(QMessageBox::Yes);
        QTest::newRow("named, clean quit") << false << "clean" << 0;
    }
    void killedMidEdit()
    {
        QFETCH(bool, untitled); QFETCH(QString, end); QFETCH(int, answer);
        const QByteArray original = readFile(m_file);

        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), untitled ? QString() : m_file, end});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus() == QProcess::CrashExit, end == QLatin1String("crash"));
        const QByteArray edited = child.readAllStandardOutput();
        QVERIFY(edited.contains("%ENDTIME"));
        QCOMPARE(readFile(m_file), original);

        ModalAnswerer answerer(answer ? QList<Answer>{press(QMessageBox::StandardButton(answer))} : QList<Answer>());
        const QDateTime started = QDateTime::currentDateTime();
        const auto gui = laidOutTool();
        VERIFY_ANSWERED(answerer);
        QVERIFY(answer || QDir(RecoveryCopy::folder()).isEmpty());
        if (!answer)
            return;
        const QString text = answerer.seen.value(0).text;
        QVERIFY2(text.contains(untitled ? QStringLiteral("\"Untitled 1\"") : '"' + m_file + '"'), qPrintable(text));
        const QDateTime written =
            QDateTime::fromString(text.section(QStringLiteral(" kept at "), 1).chopped(1), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY2(written.isValid() && written.secsTo(started) >= 0 && written.secsTo(started) < 60, qPrintable(text));

        const bool restored = answer == QMessageBox::Yes;
        QCOMPARE(savedText(*gui), restored ? edited : formatWaveform(WaveformData()));
        QCOMPARE(gui->fullFileName() + (gui->isModified() ? "*" : ""), restored ? (untitled ? "*" : m_file + '*') : QString());
        // Nothing is offered twice.
        ModalAnswerer none({});
        const auto next = laidOutTool();
        QVERIFY(none.seen.isEmpty());
        QCOMPARE(QDir(RecoveryCopy::folder()).entryList({"*.json"}).size(), restored ? 1 : 0);
        if (restored && !untitled) {   // saved, the copy goes
            QVERIFY(gui->onSave());
            QCOMPARE(readFile(m_file), edited);
            QVERIFY(QDir(RecoveryCopy::folder()).entryList({"*.json"}).isEmpty());
        }
    }

    // A copy is written no sooner and no more often than the interval after a change.
    void interval()
    {
        int written = 0;
        RecoveryCopy copy([&written] { ++written; return RecoveryCopy::Document{{}, "t", {}, "x"}; }, nullptr);
        copy.setInterval(300);
        for (int round = 1; round <= 2; ++round) {
            copy.changed();
            QTest::qWait(100);
            copy.changed();
            QCOMPARE(written, round - 1);
            QTRY_COMPARE(written, round);
        }
        copy.discard();
        QVERIFY(QDir(RecoveryCopy::folder()).entryList(QDir::Files).isEmpty());
    }
};

// With --child FILE crash|clean (empty FILE: untitled), the child; else the tests, in a sandbox the child shares.
int main(int argc, char** argv)
{
    // The copies live in the program's own data folder, named after it.
    QApplication::setApplicationName(QStringLiteral("waveform-editor"));
    QApplication::setOrganizationName(QStringLiteral("Vostranelle"));
    if (argc == 4 && qstrcmp(argv[1], "--child") == 0) {
        QApplication app(argc, argv);
        return editAndEnd(QString::fromLocal8Bit(argv[2]), qstrcmp(argv[3], "crash") == 0);
    }
    QTemporaryDir sandbox;
    qputenv("XDG_CONFIG_HOME", sandbox.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", sandbox.path().toLocal8Bit());
    QApplication app(argc, argv);
    TestDiskEvents test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_diskevents.moc"
