// The document's life in a stand-alone window, the dialogs answered as a user would.
#include "vokgui.h"
#include "baseusrsettings.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "wavewriter.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

namespace {

void setAutoSaveIndex(int index)
{
    BaseUsrSettings settings(QStringLiteral("WAVE_EDITOR"));
    settings.setValue(QStringLiteral("auto_save"), QString::number(index));
    settings.settings().sync();
}

} // namespace

class TestLifecycle : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;   // a copy of counter.wdl, fresh for every test
    QString m_other;  // a copy of cpu_bus.wdl
    QByteArray m_original;
    QString m_project;

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        m_other = m_dir.filePath(QStringLiteral("cpu_bus.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("cpu_bus.wdl")), m_other));
        m_original = readFile(m_file);
        setAutoSaveIndex(0);
    }

    // The save question on the way out: only Yes saves, only Cancel on closing keeps it.
    void saveQuestion_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("saved");
        QTest::addColumn<QString>("fileAfter");   // "same", "other" or "none"
        QTest::addColumn<bool>("modifiedAfter");
        const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel;
        QTest::newRow("close, cancel") << "close" << cancel << false << "same" << true;
        QTest::newRow("close, yes saves and stays") << "close" << yes << true << "same" << false;
        QTest::newRow("save asks nothing") << "save" << 0 << true << "same" << false;
        QTest::newRow("close, no") << "close" << no << false << "none" << false;
        QTest::newRow("window, cancel") << "window" << cancel << false << "same" << true;
        QTest::newRow("window, no") << "window" << no << false << "same" << false;
        QTest::newRow("open, cancel still opens") << "open" << cancel << false << "other" << false;
        QTest::newRow("new, yes") << "new" << yes << true << "none" << false;
    }
    void saveQuestion()
    {
        QFETCH(QString, command);
        QFETCH(int, answer);
        QFETCH(bool, saved);
        QFETCH(QString, fileAfter);
        QFETCH(bool, modifiedAfter);
        const auto shown = openShown(m_file, QSize(800, 500));
        QVERIFY(shown);
        VokGUI& gui = *shown;
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QByteArray edited = savedText(gui);
        QVERIFY(edited.contains("\nrst_n { A I Default NRZ 0 1 50 } = 0 25 1 375 0 100;\n"));
        const int n = VokGUI::untitledCounter();

        QList<Answer> answers;
        if (answer)
            answers << press(QMessageBox::StandardButton(answer));
        if (command == QLatin1String("open"))
            answers.prepend(choose(m_other));
        ModalAnswerer answerer(answers);
        if (command == QLatin1String("close"))
            gui.fileClose();
        else if (command == QLatin1String("window"))
            QCOMPARE(gui.close(), answer != QMessageBox::Cancel);
        else
            gui.sharedAction(command)->trigger();
        // Our own save is no change by another program: nothing more is asked.
        gui.onActivated();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said().mid(command == QLatin1String("open")),
                 answer ? QStringList{"Do you want to save your changes?"} : QStringList());

        QCOMPARE(readFile(m_file), saved ? edited : m_original);
        if (saved)   // read back, the file is the document saved
            QCOMPARE(writerTextOfFile(m_file), edited);
        QCOMPARE(gui.isModified(), modifiedAfter);
        QCOMPARE(gui.isVisible(), command != QLatin1String("window") || answer == QMessageBox::Cancel);
        if (gui.isVisible()) {
            QCOMPARE(gui.sharedAction(QStringLiteral("save"))->isEnabled(), modifiedAfter);
            QCOMPARE(gui.windowTitle().endsWith(QLatin1Char('*')), modifiedAfter);
        }
        if (fileAfter == QLatin1String("same")) {
            QCOMPARE(gui.fullFileName(), m_file);
        } else if (fileAfter == QLatin1String("other")) {
            QCOMPARE(gui.fullFileName(), m_other);
            QCOMPARE(savedText(gui), writerTextOfFile(m_other));
        } else {
            QVERIFY(gui.fullFileName().isEmpty());
            QVERIFY(gui.document()->waves.isEmpty());
            QVERIFY(!gui.autoSaveTimer()->isActive());
            if (command == QLatin1String("new"))
                QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n));
        }
    }

    void openAndNewWithoutQuestions()
    {
        const int n = VokGUI::untitledCounter();
        VokGUI gui(nullptr, QStringList(), m_project, true);
        QVERIFY(gui.initialize());
        QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n));
        {   // Untitled, even unmodified, it is offered for saving; the dialog starts in the working folder.
            ModalAnswerer answerer({choose(m_file), press(QMessageBox::No)});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.said(), (QStringList{"Open Existing Waveform File", "Do you want to save your changes?"}));
            QCOMPARE(answerer.seen[0].directory, QDir::currentPath());
        }
        // Opened this way the short name is the whole path.
        QCOMPARE(gui.title(), m_file);
        {   // Cancelled: nothing changes; the dialog now starts where the last file came from.
            ModalAnswerer answerer({dismiss()});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen[0].directory, m_dir.path());
            QCOMPARE(gui.fullFileName(), m_file);
        }
        {   // Named and unmodified: no question; New takes the next number.
            ModalAnswerer answerer({choose(m_other)});
            gui.fileOpen();
            gui.fileNew();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n + 1));
        }
    }

    void saveAs()
    {
        VokGUI untitled(nullptr, QStringList(), m_project, true);
        QVERIFY(untitled.initialize());
        const QString first = m_dir.filePath(QStringLiteral("first.wdl"));
        {   // Save of an untitled document is a save as; cancelled, nothing is saved.
            ModalAnswerer answerer({dismiss(), choose(first)});
            QVERIFY(!untitled.onSave());
            QVERIFY(untitled.fullFileName().isEmpty());
            QVERIFY(untitled.onSave());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.said(), (QStringList{"Save Waveform File", "Save Waveform File"}));
            QCOMPARE(answerer.seen[1].directory, QDir::currentPath());
        }
        QCOMPARE(untitled.title(), QStringLiteral("first.wdl"));
        QCOMPARE(readFile(first), savedText(untitled));

        // A named document's save as starts at its own file and leaves the original alone.
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("oe_n"), 420);
        const QString copy = m_dir.filePath(QStringLiteral("copy.wdl"));
        {
            ModalAnswerer answerer({choose(copy)});
            gui.sharedAction(QStringLiteral("save as"))->trigger();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen[0].preselected, m_file);
        }
        QVERIFY(readFile(copy).contains("\noe_n { A I Default NRZ 0 1 50 } = 0 360 1 40 0 20;\n"));
        QCOMPARE(readFile(copy), savedText(gui));
        QCOMPARE(readFile(m_file), m_original);
        QCOMPARE(gui.windowTitle(), "Waveform Editor (Stand-alone) - " + copy);
        QVERIFY(!gui.isModified());

        {   // A save as that cannot write keeps the name and title it had.
            gui.SetDirtyBit();
            const QString nowhere = m_dir.filePath(QStringLiteral("no_such_folder/x.wdl"));
            ModalAnswerer answerer({choose(nowhere), press(QMessageBox::Ok)});
            QVERIFY(!gui.fileSaveAs());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen[1].text, QStringLiteral("Cannot open waveform file ") + nowhere);
            QCOMPARE(gui.fullFileName() + gui.title(), copy + QStringLiteral("copy.wdl*"));
        }
        {   // Untitled, even unmodified, closing asks; Yes means choosing a name.
            VokGUI closing(nullptr, QStringList(), m_project, true);
            QVERIFY(closing.initialize());
            const QString named = m_dir.filePath(QStringLiteral("named_on_close.wdl"));
            ModalAnswerer answerer({press(QMessageBox::Yes), choose(named)});
            QVERIFY(closing.close());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(readFile(named), savedText(closing));
        }
    }

    // A file read only in part opens read-only, says why, and is never saved over.
    void incompleteFileOpensReadOnly()
    {
        const QByteArray text = "w { A I Default NRZ 0 1 50 } = 0 5;\n\nw { A I Default NRZ 0 1 50 } = 0 5;\n";
        QVERIFY(writeFile(m_file, text));
        VokGUI gui(nullptr, QStringList(), m_project, true);
        QVERIFY(gui.initialize());
        {
            ModalAnswerer answerer({choose(m_file), press(QMessageBox::No), press(QMessageBox::Ok)});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QVERIFY2(answerer.said().value(2).contains("line 2: the reading stops at this empty line"),
                     qPrintable(answerer.said().value(2)));
            QCOMPARE(answerer.seen.value(2).icon, QMessageBox::Critical);
        }
        QVERIFY(gui.isReadOnly());
        QCOMPARE(gui.document()->waves.first()->patterns.size(), 1);   // what came before the problem
        gui.onActivated();
        QVERIFY(gui.isReadOnly());
        {
            ModalAnswerer answerer({choose(m_file), press(QMessageBox::Ok)});
            QVERIFY(!gui.fileSaveAs());
            VERIFY_ANSWERED(answerer);
            QVERIFY2(answerer.said().value(1).contains("not saved over"), qPrintable(answerer.said().value(1)));
        }
        QCOMPARE(readFile(m_file), text);
        QCOMPARE(gui.fullFileName(), m_file);
    }

    void changesOnDisk()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        const QByteArray shown = savedText(gui);
        // Another program writes a different document, a minute later.
        QVERIFY(writeFile(m_file, readFile(m_other)));
        QVERIFY(touchLater(m_file, 60));
        {   // No keeps the shown version, modified, and asks no second time. Yes:
            // test_diskevents changedWhileActive, through the same check.
            ModalAnswerer answerer({press(QMessageBox::No)});
            gui.onActivated();
            gui.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.said(), QStringList{"The file was modified by another program. Do you want to reload it?"});
            QCOMPARE(savedText(gui), shown);
            QVERIFY(gui.isModified());
        }

        // Deleted: asked once per tool; No keeps it open and named, Yes closes the window.
        VokGUI drop(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(drop.initialize());
        drop.show();
        QVERIFY(QTest::qWaitForWindowExposed(&drop));
        QVERIFY(QFile::remove(m_file));
        {
            ModalAnswerer answerer({press(QMessageBox::No), press(QMessageBox::Yes)});
            gui.onActivated();
            gui.onActivated();
            drop.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen[0].title, QStringLiteral("Close non-existing file"));
            const QString gone = QStringLiteral("The file \"%1\" doesn't exist any more. Close it?").arg(m_file);
            QCOMPARE(answerer.said(), QStringList(2, gone));
        }
        QCOMPARE(gui.fullFileName(), m_file);
        QVERIFY(!gui.closedByHost());
        QVERIFY(!drop.isVisible());
        QVERIFY(drop.closedByHost());
    }

    // The stored index picks the interval (0 and 2: test_settings); the timer
    // saves and keeps running, but not over a read-only document.
    void autoSave_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("interval");   // 0: off
        QTest::newRow("5 minutes") << 1 << 300000;
        QTest::newRow("off") << 3 << 0;
        QTest::newRow("beyond") << 7 << 0;
    }
    void autoSave()
    {
        QFETCH(int, index);
        QFETCH(int, interval);
        setAutoSaveIndex(index);
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        QTimer* timer = gui.autoSaveTimer();
        QCOMPARE(timer->isActive() ? timer->interval() : 0, interval);
        if (!interval)
            return;
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        QSignalSpy saved(&gui, &BasGUITool::sigFileSaved);
        ModalAnswerer answerer({});
        timer->start(1);
        QVERIFY(saved.wait(5000));
        QCOMPARE(readFile(m_file), savedText(gui));
        QVERIFY(!gui.isModified());
        QCOMPARE(gui.statusBar()->currentMessage(), QStringLiteral("Auto saving..."));
        QCOMPARE(timer->interval(), interval);
        QVERIFY(timer->isActive());

        gui.changeReadonlyMode(true);
        gui.SetDirtyBit();
        timer->start(1);
        QTest::qWait(100);
        QCOMPARE(saved.size(), 1);
        VERIFY_ANSWERED(answerer);
        QVERIFY(answerer.seen.isEmpty());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestLifecycle)

#include "test_lifecycle.moc"
