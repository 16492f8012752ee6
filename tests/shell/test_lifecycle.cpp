#include "vokgui.h"
#include "baseusrsettings.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "wavewriter.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QUndoStack>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

#include <unistd.h>

namespace {
const QString kStandalone = QStringLiteral("Waveform Editor (Stand-alone)");
const QString kSaveChanges = QStringLiteral("Do you want to save your changes?");
const QStringList kOpenFilters{QStringLiteral("Waveform File (*.wdl)"), QStringLiteral("All Files (*)")};
const QStringList kSaveAsFilters{QStringLiteral("WAveform File (*.wdl)"), QStringLiteral("All Files (*)")};

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray writerText(const VokGUI& gui)
{
    return formatWaveform(*gui.document());
}

// A user's edit: in edit mode, a click beyond the end of the wave's last
// segment appends a segment of the next value up to the click.
void appendSegment(VokGUI& gui, const QString& waveName, quint64 upTo)
{
    gui.action(VokGUI::ActEditMode)->setChecked(true);
    QCOMPARE(gui.mode(), int(VokGUI::ModeEdit));
    WaveData* wave = gui.document()->findWavebyName(waveName);
    QVERIFY(wave);
    const int row = gui.waveList()->rowOf(wave);
    QVERIFY(row >= 0);
    gui.waveList()->setCurrentIndex(gui.waveList()->itemModel()->index(row, 0));
    gui.addEditData(upTo);
}

QTimer* autoSaveTimer(VokGUI& gui)
{
    const QList<QTimer*> timers = gui.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    return timers.size() == 1 ? timers.first() : nullptr;
}

// Makes a folder read-only for the test's life and gives it back writable,
// so that the temporary folder can be removed.
constexpr uid_t NobodyId = 65534;

class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString& path) : m_path(path)
    {
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup
                                          | QFile::ReadOther | QFile::ExeOther);
    }
    ~ReadOnlyFolder()
    {
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    bool blocksWrites() const
    {
        QFile probe(m_path + QStringLiteral("/.probe"));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.close();
            probe.remove();
            return false;
        }
        return true;
    }

private:
    QString m_path;
};

} // namespace

class TestLifecycle : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;       // a copy of counter.wdl, fresh for every test
    QByteArray m_original;
    QString m_project;

    void setAutoSaveIndex(const QString& index)
    {
        BaseUsrSettings settings(QStringLiteral("WAVE_EDITOR"));
        settings.setValue(QStringLiteral("auto_save"), index);
        settings.settings().sync();
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
        m_original = readAll(m_file);
        QVERIFY(!m_original.isEmpty());
        setAutoSaveIndex(QStringLiteral("0"));
    }

    void cleanup()
    {
        // Tests leave no dialog behind; a stray one would answer the next test.
        QVERIFY(!QApplication::activeModalWidget());
    }

    void editSaveAndReopen()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        QCOMPARE(gui.windowTitle(), kStandalone + QStringLiteral(" - ") + m_file);
        QCOMPARE(gui.title(), QStringLiteral("counter.wdl"));
        QVERIFY(!gui.isModified());
        QVERIFY(!gui.sharedAction(QStringLiteral("save"))->isEnabled());

        appendSegment(gui, QStringLiteral("rst_n"), 500);
        QVERIFY(gui.isModified());
        QCOMPARE(gui.windowTitle(), kStandalone + QStringLiteral(" - ") + m_file + QLatin1Char('*'));
        QVERIFY(gui.sharedAction(QStringLiteral("save"))->isEnabled());

        // Saving a named document asks nothing.
        {
            ModalAnswerer answerer({});
            gui.sharedAction(QStringLiteral("save"))->trigger();
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }
        const QByteArray text = readAll(m_file);
        QCOMPARE(text, writerText(gui));
        QVERIFY(text.contains("\nrst_n { A I Default NRZ 0 1 50 } = 0 25 1 375 0 100;\n"));
        QVERIFY(!gui.isModified());
        QCOMPARE(gui.windowTitle(), kStandalone + QStringLiteral(" - ") + m_file);
        // Our own save is no change by another program.
        {
            ModalAnswerer answerer({});
            gui.onActivated();
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }

        // Reopened, the document is the one saved, segment for segment.
        VokGUI reopened(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(reopened.initialize());
        QCOMPARE(writerText(reopened), text);
        QVERIFY(!reopened.isModified());
    }

    void openThroughTheDialog()
    {
        const QString other = m_dir.filePath(QStringLiteral("cpu_bus.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("cpu_bus.wdl")), other));

        VokGUI gui(nullptr, QStringList(), m_project, true);
        QVERIFY(gui.initialize());
        {   // Nothing loaded yet: the dialog starts in the working folder.
            // Untitled, even unmodified, the document is offered for saving.
            ModalAnswerer answerer({choose(m_file), press(QMessageBox::No)});
            gui.sharedAction(QStringLiteral("open"))->trigger();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 2);
            const Seen& dialog = answerer.seen[0];
            QCOMPARE(dialog.title, QStringLiteral("Open Existing Waveform File"));
            QCOMPARE(dialog.directory, QDir::currentPath());
            QCOMPARE(answerer.seen[1].text, kSaveChanges);
        }
        QCOMPARE(gui.fullFileName(), m_file);
        // Opened this way the short name is the whole path.
        QCOMPARE(gui.title(), m_file);
        QCOMPARE(writerText(gui), writerTextOfFile(m_file));
        QVERIFY(!gui.isModified());

        {   // Cancelled: the document stays, and nothing is asked.
            ModalAnswerer answerer({dismiss()});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            // Now the dialog starts where the last file came from.
            QCOMPARE(answerer.seen[0].directory, m_dir.path());
            QCOMPARE(gui.fullFileName(), m_file);
        }
        {   // An unmodified named document goes without a question.
            ModalAnswerer answerer({choose(other)});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(gui.fullFileName(), other);
            QCOMPARE(writerText(gui), writerTextOfFile(other));
        }
        {   // Cancel on the save question still replaces the document, unsaved.
            appendSegment(gui, gui.document()->waves.first()->name, 5000);
            QVERIFY(gui.isModified());
            const QByteArray before = readAll(other);
            ModalAnswerer answerer({choose(m_file), press(QMessageBox::Cancel)});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 2);
            QCOMPARE(gui.fullFileName(), m_file);
            QVERIFY(!gui.isModified());
            QCOMPARE(readAll(other), before);
        }
        {   // Yes saves the old document before the new one comes in.
            appendSegment(gui, QStringLiteral("rst_n"), 450);
            const QByteArray edited = writerText(gui);
            ModalAnswerer answerer({choose(other), press(QMessageBox::Yes)});
            gui.fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(readAll(m_file), edited);
            QCOMPARE(gui.fullFileName(), other);
            QCOMPARE(writerText(gui), writerTextOfFile(other));
        }
    }

    void saveAs()
    {
        VokGUI gui(nullptr, QStringList(), m_project, true);
        QVERIFY(gui.initialize());
        const QString first = m_dir.filePath(QStringLiteral("first.wdl"));
        QFile::remove(first);

        {   // Cancelled: nothing saved, still untitled.
            ModalAnswerer answerer({dismiss()});
            QVERIFY(!gui.onSave());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QVERIFY(gui.fullFileName().isEmpty());
        }
        {   // Save of an untitled document is a save as.
            ModalAnswerer answerer({choose(first)});
            QVERIFY(gui.onSave());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            const Seen& dialog = answerer.seen[0];
            QCOMPARE(dialog.title, QStringLiteral("Save Waveform File"));
            QCOMPARE(dialog.directory, QDir::currentPath());
        }
        QCOMPARE(gui.fullFileName(), first);
        QCOMPARE(gui.title(), QStringLiteral("first.wdl"));
        QCOMPARE(gui.windowTitle(), kStandalone + QStringLiteral(" - ") + first);
        QCOMPARE(readAll(first), writerText(gui));

        // A named document's save as starts at its own file.
        const QString second = m_dir.filePath(QStringLiteral("second.wdl"));
        QFile::remove(second);
        gui.SetDirtyBit();
        {
            ModalAnswerer answerer({choose(second)});
            gui.sharedAction(QStringLiteral("save as"))->trigger();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].directory, m_dir.path());
            QCOMPARE(answerer.seen[0].preselected, first);
        }
        QCOMPARE(gui.fullFileName(), second);
        QCOMPARE(gui.title(), QStringLiteral("second.wdl"));
        QCOMPARE(readAll(second), readAll(first));
        QVERIFY(!gui.isModified());

        // A loaded document saved under a new name: the copy is the writer's text.
        VokGUI loaded(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(loaded.initialize());
        appendSegment(loaded, QStringLiteral("oe_n"), 420);
        const QString copy = m_dir.filePath(QStringLiteral("copy.wdl"));
        QFile::remove(copy);
        {
            ModalAnswerer answerer({choose(copy)});
            QVERIFY(loaded.fileSaveAs());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen[0].preselected, m_file);
        }
        QCOMPARE(readAll(copy), writerText(loaded));
        QVERIFY(readAll(copy).contains("\noe_n { A I Default NRZ 0 1 50 } = 0 360 1 40 0 20;\n"));
        QCOMPARE(readAll(m_file), m_original);
        QCOMPARE(loaded.windowTitle(), kStandalone + QStringLiteral(" - ") + copy);

        {   // A save as that cannot write keeps the name and title it had.
            loaded.SetDirtyBit();
            const QString nowhere = m_dir.filePath(QStringLiteral("no_such_folder/x.wdl"));
            ModalAnswerer answerer({choose(nowhere), press(QMessageBox::Ok)});
            QVERIFY(!loaded.fileSaveAs());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 2);
            QCOMPARE(answerer.seen[1].text, QStringLiteral("Cannot open waveform file ") + nowhere);
            QCOMPARE(loaded.fullFileName(), copy);
            QCOMPARE(loaded.title(), QStringLiteral("copy.wdl*"));
            QVERIFY(loaded.isModified());
            QVERIFY(!QFileInfo::exists(nowhere));
        }
    }

    void closeTheDocument()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QByteArray edited = writerText(gui);

        {   // Cancel: nothing happens.
            ModalAnswerer answerer({press(QMessageBox::Cancel)});
            gui.fileClose();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].text, kSaveChanges);
            QCOMPARE(gui.fullFileName(), m_file);
            QVERIFY(gui.isModified());
            QCOMPARE(readAll(m_file), m_original);
        }
        {   // Yes saves and keeps the document open.
            ModalAnswerer answerer({press(QMessageBox::Yes)});
            gui.fileClose();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(readAll(m_file), edited);
            QVERIFY(!gui.isModified());
        }
        {   // No closes without saving; nothing is left marked as modified.
            appendSegment(gui, QStringLiteral("rst_n"), 600);
            QVERIFY(gui.isModified());
            ModalAnswerer answerer({press(QMessageBox::No)});
            gui.fileClose();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(readAll(m_file), edited);
            QVERIFY(gui.fullFileName().isEmpty());
            QVERIFY(gui.document()->waves.isEmpty());
            QVERIFY(!gui.isModified());
            QVERIFY(!gui.sharedAction(QStringLiteral("save"))->isEnabled());
            QVERIFY(!autoSaveTimer(gui)->isActive());
        }
    }

    void closeTheWindow()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        gui.resize(900, 600);
        gui.show();
        QVERIFY(QTest::qWaitForWindowExposed(&gui));

        {   // Unmodified and named: it just closes.
            ModalAnswerer answerer({});
            QVERIFY(gui.close());
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
            QVERIFY(!gui.isVisible());
        }
        gui.show();
        QVERIFY(QTest::qWaitForWindowExposed(&gui));
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QByteArray edited = writerText(gui);
        {   // Cancel keeps the window and the changes.
            ModalAnswerer answerer({press(QMessageBox::Cancel)});
            QVERIFY(!gui.close());
            VERIFY_ANSWERED(answerer);
            QVERIFY(gui.isVisible());
            QVERIFY(gui.isModified());
            QCOMPARE(readAll(m_file), m_original);
        }
        {   // Yes saves, then the window goes.
            ModalAnswerer answerer({press(QMessageBox::Yes)});
            QVERIFY(gui.close());
            VERIFY_ANSWERED(answerer);
            QVERIFY(!gui.isVisible());
            QCOMPARE(readAll(m_file), edited);
        }

        // Untitled, even unmodified, it asks; Yes means choosing a name.
        VokGUI untitled(nullptr, QStringList(), m_project, true);
        QVERIFY(untitled.initialize());
        untitled.show();
        QVERIFY(QTest::qWaitForWindowExposed(&untitled));
        const QString named = m_dir.filePath(QStringLiteral("named_on_close.wdl"));
        QFile::remove(named);
        {
            ModalAnswerer answerer({press(QMessageBox::Yes), choose(named)});
            QVERIFY(untitled.close());
            VERIFY_ANSWERED(answerer);
            QVERIFY(!untitled.isVisible());
            QCOMPARE(readAll(named), writerText(untitled));
        }
    }

    void untitledNumbering()
    {
        const int n = VokGUI::untitledCounter();
        VokGUI gui(nullptr, QStringList(), m_project, true);
        QVERIFY(gui.initialize());
        QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n));
        for (int k = 1; k <= 2; ++k) {
            ModalAnswerer answerer({press(QMessageBox::No)});
            gui.sharedAction(QStringLiteral("new"))->trigger();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].text, kSaveChanges);
            QCOMPARE(gui.title(), QStringLiteral("Untitled %1").arg(n + k));
        }
        QCOMPARE(VokGUI::untitledCounter(), n + 3);
        // Another tool goes on with the same count.
        VokGUI next(nullptr, QStringList(), m_project, true);
        QVERIFY(next.initialize());
        QCOMPARE(next.title(), QStringLiteral("Untitled %1").arg(n + 3));

        // A named, unmodified document is replaced without a question.
        VokGUI named(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(named.initialize());
        {
            ModalAnswerer answerer({});
            named.fileNew();
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
            QCOMPARE(named.title(), QStringLiteral("Untitled %1").arg(n + 4));
            QVERIFY(named.fullFileName().isEmpty());
            QVERIFY(named.document()->waves.isEmpty());
        }
    }

    void changesOnDisk()
    {
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        const QByteArray shown = writerText(gui);

        // Another program writes a different document, a minute later.
        const QByteArray other = readAll(exampleFile(QStringLiteral("cpu_bus.wdl")));
        QVERIFY(writeFile(m_file, other));
        QVERIFY(touchLater(m_file, 60));
        {   // No: the shown version stays and now counts as modified.
            ModalAnswerer answerer({press(QMessageBox::No)});
            gui.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].text,
                     QStringLiteral("The file was modified by another program. Do you want to reload it?"));
            QCOMPARE(writerText(gui), shown);
            QVERIFY(gui.isModified());
            QCOMPARE(readAll(m_file), other);
        }
        {   // The new time is remembered: no second question.
            ModalAnswerer answerer({});
            gui.onActivated();
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }
        QVERIFY(touchLater(m_file, 120));
        {   // Yes: the file's content replaces the shown one.
            ModalAnswerer answerer({press(QMessageBox::Yes)});
            gui.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(writerText(gui), writerTextOfFile(m_file));
            QVERIFY(writerText(gui) != shown);
            QVERIFY(!gui.isModified());
        }

        // Deleted: asked once per tool; No keeps it open and named.
        VokGUI keep(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(keep.initialize());
        VokGUI drop(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(drop.initialize());
        drop.show();
        QVERIFY(QTest::qWaitForWindowExposed(&drop));
        QVERIFY(QFile::remove(m_file));
        {
            ModalAnswerer answerer({press(QMessageBox::No)});
            keep.onActivated();
            keep.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].title, QStringLiteral("Close non-existing file"));
            QCOMPARE(answerer.seen[0].text, QStringLiteral("The file \"%1\" doesn't exist any more. Close it?").arg(m_file));
            QCOMPARE(keep.fullFileName(), m_file);
            QVERIFY(!keep.closedByHost());
        }
        {   // Yes closes the window as the host would.
            ModalAnswerer answerer({press(QMessageBox::Yes)});
            drop.onActivated();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QVERIFY(!drop.isVisible());
            QVERIFY(drop.closedByHost());
        }
    }

    void failedSaveKeepsTheFile()
    {
        QDir(m_dir.path()).mkdir(QStringLiteral("locked"));
        const QString folder = m_dir.filePath(QStringLiteral("locked"));
        const QString path = folder + QStringLiteral("/counter.wdl");
        QVERIFY(copyWritable(m_file, path));

        VokGUI gui(nullptr, QStringList{path}, m_project, true);
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        const QString title = gui.windowTitle();

        ReadOnlyFolder locked(folder);
        // Root writes into read-only folders all the same: the save then runs
        // as an ordinary user, who may pass through the test's folder.
        const bool root = ::geteuid() == 0;
        if (root)
            QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther);
        {
            ModalAnswerer answerer({press(QMessageBox::Ok)});
            if (root)
                QVERIFY(::seteuid(NobodyId) == 0);
            QVERIFY(locked.blocksWrites());
            const bool saved = gui.onSave();
            if (root)
                QVERIFY(::seteuid(0) == 0);
            QVERIFY(!saved);
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
            QCOMPARE(answerer.seen[0].text, QStringLiteral("Cannot open waveform file ") + path);
        }
        QCOMPARE(readAll(path), m_original);
        QVERIFY(gui.isModified());
        QCOMPARE(gui.windowTitle(), title);
    }

    void autoSave()
    {
        struct Case { const char* index; int interval; };
        const Case cases[] = {{"0", 60000}, {"1", 300000}, {"2", 600000}, {"3", 0}, {"7", 0}};
        for (const Case& c : cases) {
            setAutoSaveIndex(QLatin1String(c.index));
            VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
            QVERIFY(gui.initialize());
            QTimer* timer = autoSaveTimer(gui);
            QVERIFY(timer);
            QVERIFY2(timer->isActive() == (c.interval != 0), c.index);
            if (c.interval)
                QVERIFY2(timer->interval() == c.interval, c.index);
            // An untitled document has nowhere to be saved to.
            VokGUI untitled(nullptr, QStringList(), m_project, true);
            QVERIFY(untitled.initialize());
            QVERIFY2(!autoSaveTimer(untitled)->isActive(), c.index);
        }

        // The timer's save writes the edited document and restarts the wait.
        setAutoSaveIndex(QStringLiteral("1"));
        VokGUI gui(nullptr, QStringList{m_file}, m_project, true);
        QVERIFY(gui.initialize());
        appendSegment(gui, QStringLiteral("rst_n"), 500);
        QTimer* timer = autoSaveTimer(gui);
        QSignalSpy saved(&gui, &BasGUITool::sigFileSaved);
        {
            ModalAnswerer answerer({});
            timer->start(1);
            QVERIFY(saved.wait(5000));
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }
        QCOMPARE(saved.size(), 1);
        QCOMPARE(readAll(m_file), writerText(gui));
        QVERIFY(!gui.isModified());
        QCOMPARE(gui.statusBar()->currentMessage(), QStringLiteral("Auto saving..."));
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 300000);

        {   // A read-only document is not written behind the user's back.
            gui.changeReadonlyMode(true);
            const QByteArray before = readAll(m_file);
            ModalAnswerer answerer({});
            timer->start(1);
            QTest::qWait(100);
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
            QCOMPARE(saved.size(), 1);
            QCOMPARE(readAll(m_file), before);
            gui.changeReadonlyMode(false);
        }
        // Closed, the document leaves nothing for the timer to save.
        gui.fileClose();
        QVERIFY(!timer->isActive());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestLifecycle)

#include "test_lifecycle.moc"
