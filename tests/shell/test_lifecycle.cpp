// The document's life in a stand-alone window, the dialogs answered as a user would.
#include "baseusrsettings.h"
#include "shelltest.h"

class TestLifecycle : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;   // a copy of counter.wdl, fresh for every test
    QString m_other;  // a copy of cpu_bus.wdl
    QByteArray m_original;

private Q_SLOTS:
    void init()
    {
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        m_other = m_dir.filePath(QStringLiteral("cpu_bus.wdl"));
        QVERIFY(copyWritable(exampleFile("counter.wdl"), m_file) && copyWritable(exampleFile("cpu_bus.wdl"), m_other));
        m_original = readFile(m_file);
    }

    // The save question on the way out: only Yes saves, only Cancel on closing keeps it.
    void saveQuestion_data()
    {
        // fileAfter none: an empty untitled document
        addColumns<QString, int, bool, QString, bool>({"command", "answer", "saved", "fileAfter", "modifiedAfter"});
        const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel;
        QTest::newRow("close, cancel") << "close" << cancel << false << "counter.wdl" << true;
        QTest::newRow("close, yes saves and stays") << "close" << yes << true << "counter.wdl" << false;
        QTest::newRow("save asks nothing") << "save" << 0 << true << "counter.wdl" << false;
        QTest::newRow("close, no") << "close" << no << false << "" << false;
        QTest::newRow("window, cancel") << "window" << cancel << false << "counter.wdl" << true;
        QTest::newRow("window, no") << "window" << no << false << "counter.wdl" << false;
        QTest::newRow("open, cancel still opens") << "open" << cancel << false << "cpu_bus.wdl" << false;
        QTest::newRow("new, yes") << "new" << yes << true << "" << false;
    }
    void saveQuestion()
    {
        QFETCH(QString, command); QFETCH(int, answer); QFETCH(bool, saved);
        QFETCH(QString, fileAfter); QFETCH(bool, modifiedAfter);
        const auto shown = openShown(m_file, QSize(800, 500));
        QVERIFY(shown);
        VokGUI& gui = *shown;
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QByteArray edited = savedText(gui);
        QVERIFY(edited.contains("\nrst_n { A I Default NRZ 0 1 50 } = 0 25 1 375 0 100;\n"));
        const int n = VokGUI::untitledCounter();

        QList<Answer> answers = answer ? QList<Answer>{press(QMessageBox::StandardButton(answer))} : QList<Answer>();
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
        const Seen question = answerer.seen.value(command == QLatin1String("open"));
        QVERIFY(!answer || (question.icon == QMessageBox::Question && question.buttons == (QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel)));

        QCOMPARE(readFile(m_file), saved ? edited : m_original);
        if (saved)   // read back, the file is the document saved
            QCOMPARE(writerTextOfFile(m_file), edited);
        QCOMPARE(gui.isModified(), modifiedAfter);
        QCOMPARE(gui.isVisible(), command != QLatin1String("window") || answer == QMessageBox::Cancel);
        if (gui.isVisible())   // save offered and the title marked just while modified
            QCOMPARE((QList<bool>{gui.sharedAction("save")->isEnabled(), gui.windowTitle().endsWith('*')}), QList<bool>(2, modifiedAfter));
        QCOMPARE(gui.fullFileName(), fileAfter.isEmpty() ? QString() : m_dir.filePath(fileAfter));
        if (command == QLatin1String("open"))
            QCOMPARE(savedText(gui), writerTextOfFile(m_other));
        if (fileAfter.isEmpty())
            QVERIFY(gui.document()->waves.isEmpty() && !gui.autoSaveTimer()->isActive());
        if (command == QLatin1String("new"))
            QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n));
    }

    // Only an untitled document is offered for saving first; the dialog starts
    // in the working folder, then where the last file came from.
    void openAndNew()
    {
        const int n = VokGUI::untitledCounter();
        const auto gui = openTool();
        QCOMPARE(gui->title(), QStringLiteral("Untitled %1").arg(n));
        ModalAnswerer answerer({choose(m_file), press(QMessageBox::No), dismiss(), choose(m_other)});
        gui->fileOpen();
        QCOMPARE(gui->title(), m_file);   // opened this way the short name is the whole path
        gui->fileOpen();
        QCOMPARE(gui->fullFileName(), m_file);
        gui->fileOpen();
        gui->fileNew();
        VERIFY_ANSWERED(answerer);
        const QString open = QStringLiteral("Open Existing Waveform File");
        QCOMPARE(answerer.said(), (QStringList{open, "Do you want to save your changes?", open, open}));
        QCOMPARE(answerer.seen[0].directory, QDir::currentPath());
        QCOMPARE(answerer.seen[2].directory, m_dir.path());
        QCOMPARE(gui->title(), QStringLiteral("Untitled %1").arg(n + 1));
    }

    // Save of an untitled document is a save as; cancelled, nothing is saved. A named document's save as starts at
    // its own file and leaves the original alone; one that cannot write keeps the name and title it had.
    // Untitled, even unmodified, closing asks; Yes means choosing a name.
    void saveAs()
    {
        const auto untitled = openTool();
        const auto gui = openTool(m_file);
        const auto closing = openTool();
        appendSegment(*gui, QStringLiteral("oe_n"), 420);
        const QString first = m_dir.filePath("first.wdl"), copy = m_dir.filePath("copy.wdl");
        const QString nowhere = m_dir.filePath("no_such_folder/x.wdl"), named = m_dir.filePath("named_on_close.wdl");
        ModalAnswerer answerer({dismiss(), choose(first), choose(copy), choose(nowhere), press(QMessageBox::Ok),
                                press(QMessageBox::Yes), choose(named)});
        QVERIFY(!untitled->onSave() && untitled->fullFileName().isEmpty());
        QVERIFY(untitled->onSave());
        QCOMPARE(untitled->title(), QStringLiteral("first.wdl"));
        QCOMPARE(readFile(first), savedText(*untitled));
        gui->sharedAction(QStringLiteral("save as"))->trigger();
        QVERIFY(readFile(copy).contains("\noe_n { A I Default NRZ 0 1 50 } = 0 360 1 40 0 20;\n"));
        QCOMPARE(readFile(copy), savedText(*gui));
        QCOMPARE(readFile(m_file), m_original);
        QCOMPARE(gui->windowTitle(), "Waveform Editor (Stand-alone) - " + copy);
        QVERIFY(!gui->isModified());
        gui->SetDirtyBit();
        QVERIFY(!gui->fileSaveAs());
        QCOMPARE(gui->fullFileName() + gui->title(), copy + QStringLiteral("copy.wdl*"));
        QVERIFY(closing->close());
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said().mid(0, 2), (QStringList{"Save Waveform File", "Save Waveform File"}));
        QCOMPARE(answerer.seen[1].directory, QDir::currentPath());
        QCOMPARE(answerer.seen[2].preselected, m_file);
        QCOMPARE(answerer.seen[4].text, QStringLiteral("Cannot open waveform file ") + nowhere);
        QCOMPARE(readFile(named), savedText(*closing));
    }

    // A file read only in part opens read-only, says why, and is never saved over.
    void incompleteFileOpensReadOnly()
    {
        const QByteArray text = "w { A I Default NRZ 0 1 50 } = 0 5;\n\nw { A I Default NRZ 0 1 50 } = 0 5;\n";
        QVERIFY(writeFile(m_file, text));
        const auto gui = openTool();
        ModalAnswerer answerer({choose(m_file), press(QMessageBox::No), press(QMessageBox::Ok), choose(m_file),
                                press(QMessageBox::Ok)});
        gui->fileOpen();
        QVERIFY(gui->isReadOnly());
        QCOMPARE(gui->document()->waves.first()->patterns.size(), 1);   // what came before the problem
        gui->onActivated();
        QVERIFY(gui->isReadOnly() && !gui->fileSaveAs());
        VERIFY_ANSWERED(answerer);
        const QStringList said = answerer.said();
        QVERIFY2(said.value(2).contains("line 2: the reading stops at this empty line"), qPrintable(said.value(2)));
        QCOMPARE(answerer.seen.value(2).icon, QMessageBox::Critical);
        QVERIFY2(said.value(4).contains("not saved over"), qPrintable(said.value(4)));
        QCOMPARE(readFile(m_file), text);
        QCOMPARE(gui->fullFileName(), m_file);
    }

    // The stored index picks the interval (0 and 2: test_settings); the timer
    // saves and keeps running, but not over a read-only document.
    void autoSave_data()
    {
        addColumns<int, int>({"index", "interval"});   // interval 0: off
        QTest::newRow("5 minutes") << 1 << 300000;
        QTest::newRow("off") << 3 << 0;
        QTest::newRow("beyond") << 7 << 0;
    }
    void autoSave()
    {
        QFETCH(int, index); QFETCH(int, interval);
        BaseUsrSettings(QStringLiteral("WAVE_EDITOR")).setValue(QStringLiteral("auto_save"), QString::number(index));
        const auto gui = openTool(m_file);
        QTimer* timer = gui->autoSaveTimer();
        QCOMPARE(timer->isActive() ? timer->interval() : 0, interval);
        if (!interval)
            return;
        appendSegment(*gui, QStringLiteral("rst_n"), 500);
        QSignalSpy saved(gui.get(), &BasGUITool::sigFileSaved);
        ModalAnswerer answerer({});
        timer->start(1);
        QVERIFY(saved.wait(5000));
        QCOMPARE(readFile(m_file), savedText(*gui));
        QVERIFY(!gui->isModified() && timer->isActive());
        QCOMPARE(gui->statusBar()->currentMessage(), QStringLiteral("Auto saving..."));
        QCOMPARE(timer->interval(), interval);

        gui->changeReadonlyMode(true);
        gui->SetDirtyBit();
        timer->start(1);
        QTest::qWait(100);
        QCOMPARE(saved.size(), 1);
        VERIFY_ANSWERED(answerer);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestLifecycle)

#include "test_lifecycle.moc"
