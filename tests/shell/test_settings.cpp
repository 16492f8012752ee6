// What the editor remembers between runs, the Options dialog, recent files,
// dropped documents, progress with Cancel, and colours following the palette.
#include "basehelp.h"
#include "editdlg.h"
#include "exportwaveforms.h"
#include "optionsdlg.h"
#include "patterndlg.h"
#include "progressgate.h"
#include "recentfiles.h"
#include "shelltest.h"
#include "wavedatadlg.h"

#include <QPrinter>

// Name list width, radix, auto-save, guide line, docks shown, colours 1 to 7.
static QString state(VokGUI& gui)
{
    QString s = QStringLiteral("%1 r%2 a%3 g%4 %5%6%7").arg(gui.splitter()->sizes().value(0)).arg(gui.busRadix())
                    .arg(gui.autoSave()).arg(int(gui.showGuideline())).arg(int(!gui.waveDataDlg()->isHidden()))
                    .arg(int(!gui.editDlg()->isHidden())).arg(int(!gui.patternDlg()->isHidden()));
    for (const QColor& c : gui.colors().mid(1))
        s += ' ' + c.name().mid(1, 2);
    return s;
}
static const QString kDefaults = "150 r0 a0 g0 110 ff 00 a0 00 00 ff a0";

class TestSettings : public QObject
{
    Q_OBJECT
    QTemporaryDir dir_;
    const QString ini_ = qEnvironmentVariable("XDG_CONFIG_HOME") + "/Vostranelle/WAVE_EDITOR.ini";

    // The splitter has its real sizes only once the window is laid out.
    std::unique_ptr<VokGUI> tool(bool titled = true) { return openShown(titled ? doc("doc.wdl", 0) : QString(), QSize(1200, 700)); }

    // `waves` waves of 1,000 pulses (600: about 3 MB, read in several pieces).
    QString doc(const QString& name, int waves = 1)
    {
        const QString path = dir_.filePath(name);
        QByteArray text = "%ENDTIME = 10000;\n";
        for (int i = 0; i < waves; ++i)
            text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } =" + QByteArray(" 0 5 1 5").repeated(500) + ";\n";
        if (!QFileInfo::exists(path) && !writeFile(path, text))
            qWarning("cannot write %s", qPrintable(path));
        return path;
    }
    // The recent files the menu offers, by base name.
    static QString entries(QMenu* menu)
    {
        Q_EMIT menu->aboutToShow();
        QStringList names;
        for (QAction* a : menu->actions())
            if (!a->data().toString().isEmpty())
                names << QFileInfo(a->data().toString()).completeBaseName();
        return names.join(' ');
    }

private Q_SLOTS:
    void init()
    {
        QFile::remove(ini_) || QDir(ini_).removeRecursively();
        // What a window could not write to the folder stays pending in the process.
        QSettings(ini_, QSettings::IniFormat).clear();
    }

    // Values not of the key's type read as defaults ("/": an unreadable folder); the next window reads what the last wrote.
    void storedSettings_data()
    {
        addColumns<QByteArray, QString>({"file", "expected"});
        QTest::addColumn<QString>("next");   // a short colour list leaves the last colour
        const QString next = "230 r3 a2 g1 010 ff 00 00 00 ff 80 a0";
        QTest::newRow("first start") << QByteArray() << kDefaults << next;
        QTest::newRow("unreadable") << QByteArray("/") << kDefaults << QString();
        QTest::newRow("binary") << QByteArray("\x7f" "ELF\0\xff[General]\0=\n", 16) << kDefaults << next;
        QTest::newRow("wrong") << QByteArray("[General]\nmain_splitter_0=-5\nbus_radix=hex\nauto_save=-1\nshow_guideline"
                                             "=yes\nshow_propview=\ncolor_back=no colour\n") << kDefaults << next;
        QTest::newRow("stored") << QByteArray("[General]\nmain_splitter_0=200\nbus_radix=2\nauto_save=7\nshow_guideline"
                                              "=1\nshow_dataview=0\nshow_patternview=1\ncolor_z=#abcdef\n")
                                << "200 r2 a7 g1 011 ff 00 a0 00 00 ff ab" << "230 r3 a2 g1 011 ff 00 00 00 ff 80 ab";
    }
    void storedSettings()
    {
        QFETCH(QByteArray, file);
        QVERIFY(QDir().mkpath(file == "/" ? ini_ : QFileInfo(ini_).path()) && (file.size() < 2 || writeFile(ini_, file)));
        auto first = tool();
        QTEST(state(*first), "expected");
        const QList<int> sizes = first->splitter()->sizes();
        first->splitter()->setSizes({230, sizes.at(0) + sizes.at(1) - 230});
        first->applyOptions(3, 2, true);
        first->applyColors({Qt::black, Qt::yellow, Qt::darkBlue, Qt::cyan, Qt::green, Qt::magenta, Qt::darkRed});
        first->waveDataDlg()->hide();
        first.reset();
        if (file == "/")
            return;
        QVERIFY(readFile(ini_).contains("auto_save=2\nbus_radix=3\n"));
        auto next = tool();
        QTEST(state(*next), "next");
    }

    // OK applies, restarting auto-save only on a new interval (never untitled); Cancel nothing.
    void optionsDialog_data()
    {
        addColumns<int, int>({"autoSave", "interval"});   // interval 0: stopped
        QTest::newRow("new interval") << 2 << 600000;
        QTest::newRow("same interval") << 0 << 60000;
        QTest::newRow("off") << 3 << 0;
        QTest::newRow("untitled") << 1 << 0;
        QTest::newRow("cancel") << 1 << 60000;
    }
    void optionsDialog()
    {
        QFETCH(int, autoSave);
        const bool ok = QTest::currentDataTag() != QByteArray("cancel");
        auto gui = tool(QTest::currentDataTag() != QByteArray("untitled"));
        const auto click = [](QAbstractButton* b) { QMetaObject::invokeMethod(b, "click", Qt::QueuedConnection); };
        QString shown;
        ModalAnswerer answers({act([&](QWidget* w) {
            const QList<QComboBox*> boxes = w->findChildren<QComboBox*>();
            shown = boxes.at(0)->currentText() + '/' + boxes.at(1)->currentText();
            boxes.at(0)->setCurrentIndex(2);
            boxes.at(1)->setCurrentIndex(autoSave);
            w->findChild<QCheckBox*>()->setChecked(true);
            click(static_cast<OptionsDlg*>(w)->colorButton(5));
        }), act([](QWidget* w) {
            static_cast<QColorDialog*>(w)->setCurrentColor(QColor(0x12, 0x34, 0x56));
            static_cast<QColorDialog*>(w)->accept();
        }), act([&](QWidget* w) {
            auto* buttons = w->findChild<QDialogButtonBox*>();
            buttons->button(QDialogButtonBox::Help)->click();
            click(buttons->button(ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel));
        })});
        QTest::qWait(60);
        const int left = gui->autoSaveTimer()->remainingTime();
        gui->action(VokGUI::ActOptions)->trigger();
        VERIFY_ANSWERED(answers);
        QCOMPARE(answers.seen.value(0).title + ' ' + shown, "Options Binary/Every minute");
        QVERIFY(BaseHelp::currentPage().endsWith("/options.html"));
        QCOMPARE(state(*gui), ok ? QString("150 r2 a%1 g1 110 ff 00 a0 00 12 ff a0").arg(autoSave) : kDefaults);
        QTEST(gui->autoSaveTimer()->isActive() ? gui->autoSaveTimer()->interval() : 0, "interval");
        QCOMPARE(gui->autoSaveTimer()->remainingTime() > left, autoSave == 2);
    }

    // Newest first, at most eight, a deleted one taken off with a note; below Open; the same in a second window; Clear empties it.
    void recentFilesMenu_data()
    {
        addColumns<QString, QString, QString>({"opened", "deleted", "menu"});
        QTest::newRow("newest first, once") << "a b a" << "" << "a b start";
        QTest::newRow("at most eight") << "0 1 2 3 4 5 6 7 8" << "" << "8 7 6 5 4 3 2 1";
        QTest::newRow("missing taken off") << "a gone c" << "gone" << "c a start";
    }
    void recentFilesMenu()
    {
        QFETCH(QString, opened); QFETCH(QString, deleted); QFETCH(QString, menu);
        auto gui = openTool(doc("start.wdl"));
        for (const QString& name : opened.split(' '))
            gui->openFile(doc(name + ".wdl"));
        const QString gone = deleted.isEmpty() ? QString() : dir_.filePath(deleted + ".wdl");
        QVERIFY(gone.isEmpty() || QFile::remove(gone));
        QCOMPARE(entries(gui->recentFilesMenu()), menu);
        QCOMPARE(gui->statusBar()->currentMessage().section(": ", 1), gone);
        const QList<QAction*> file = gui->menuBar()->actions().first()->menu()->actions();
        QCOMPARE(file.indexOf(gui->recentFilesMenu()->menuAction()), file.indexOf(gui->sharedAction("open")) + 1);
        QCOMPARE(entries(openTool()->recentFilesMenu()), menu);
        gui->recentFilesMenu()->actions().last()->trigger();   // Clear Recent Files
        QCOMPARE(entries(gui->recentFilesMenu()), QString());
    }

    // What is dropped, whether the window takes it, what it then shows.
    void dropDocument_data()
    {
        addColumns<QStringList, int, QString>({"dropped", "answer", "shown"});
        QTest::newRow("document") << QStringList{"drop.wdl"} << 0 << "drop.wdl";
        QTest::newRow("upper-case suffix") << QStringList{"DROP.WDL"} << 0 << "DROP.WDL";
        QTest::newRow("text file") << QStringList{"notes.txt"} << 0 << "start.wdl";
        QTest::newRow("folder named .wdl") << QStringList{"dir.wdl"} << 0 << "start.wdl";
        QTest::newRow("first of several") << QStringList{"notes.txt", "drop.wdl", "b.wdl"} << 0 << "drop.wdl";
        QTest::newRow("unsaved, not saved") << QStringList{"drop.wdl"} << int(QMessageBox::No) << "drop.wdl";
    }
    void dropDocument()
    {
        QFETCH(QStringList, dropped); QFETCH(int, answer); QFETCH(QString, shown);
        QVERIFY(QDir(dir_.path()).mkpath("dir.wdl"));
        auto gui = openTool(doc("start.wdl"));
        if (answer)
            gui->SetDirtyBit();
        QMimeData data;
        for (const QString& name : dropped)
            data.setUrls(data.urls() << QUrl::fromLocalFile(name.endsWith(".txt") || name == "dir.wdl" ? dir_.filePath(name) : doc(name)));
        ModalAnswerer answerer(answer ? QList<Answer>{press(QMessageBox::StandardButton(answer))} : QList<Answer>());
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(gui.get(), &enter);
        QCOMPARE(enter.isAccepted(), shown != "start.wdl");
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        if (enter.isAccepted())
            QCoreApplication::sendEvent(gui.get(), &drop);
        QTRY_COMPARE(gui->fullFileName(), dir_.filePath(shown));
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), answer ? QStringList{"Do you want to save your changes?"} : QStringList());
    }

    // Open cancelled keeps document, changes and recent files; print cancelled leaves no file.
    void longWorkWithProgress_data()
    {
        addColumns<QString, bool>({"work", "cancel"});
        QTest::newRow("open, cancelled") << "open" << true;
        QTest::newRow("open, run through") << "open" << false;
        QTest::newRow("print, cancelled") << "print" << true;
    }
    void longWorkWithProgress()
    {
        QFETCH(QString, work); QFETCH(bool, cancel);
        const QString big = doc("big.wdl", 600);
        auto gui = openTool(work == "print" ? big : doc("start.wdl"));
        auto answerer = cancel && work == "open" ? std::make_unique<ModalAnswerer>(QList<Answer>{press(QMessageBox::No)}) : nullptr;
        if (answerer)
            gui->SetDirtyBit();
        bool shown = false;
        QTimer watch;
        connect(&watch, &QTimer::timeout, [&] {
            if (auto* dialog = gui->findChild<QProgressDialog*>("progressGate"); dialog && dialog->isVisible()) {
                shown = true;
                if (cancel)
                    dialog->cancel();
            }
        });
        watch.start(0);
        ProgressGate::delayMs = 0;
        QPrinter printer(QPrinter::ScreenResolution);
        printer.setOutputFileName(dir_.filePath("big.pdf"));
        gui->printSettings().timeScale = 200;
        if (work == "open")
            gui->openFile(big);
        else
            gui->PreviewPages(&printer);
        ProgressGate::delayMs = 500;
        QVERIFY(shown);
        if (answerer)
            VERIFY_ANSWERED(*answerer);
        const bool kept = cancel && work == "open";
        // The file, its waves, modified, the newest recent file.
        QCOMPARE(QStringLiteral("%1 %2 %3 %4").arg(gui->fullFileName()).arg(gui->document()->waves.size()).arg(gui->isModified())
                     .arg(entries(gui->recentFilesMenu()).section(' ', 0, 0)),
                 kept ? dir_.filePath("start.wdl") + " 1 1 start" : big + " 600 0 big");
        QVERIFY(!QFileInfo::exists(dir_.filePath("big.pdf")));
    }

    // A stopped export returns 2 and leaves the output as it was.
    void exportWithProgress_data()
    {
        addColumns<int, int>({"stopAt", "result"});   // stopAt: the call that answers false, 0 never
        QTest::newRow("stopped reading") << 1 << 2;
        QTest::newRow("stopped writing") << 4 << 2;
        QTest::newRow("run through") << 0 << 0;
    }
    void exportWithProgress()
    {
        QFETCH(int, stopAt);
        const QString output = dir_.filePath("big.vcd");
        QVERIFY(writeFile(output, "before"));
        QByteArray args[] = {"-vcd", doc("big.wdl", 600).toLocal8Bit(), "-out=" + output.toLocal8Bit()};
        char* argv[] = {args[0].data(), args[1].data(), args[2].data()};
        int calls = 0;
        QTEST(ExportWaveforms(3, argv, [&](qint64, qint64) { return ++calls != stopAt; }), "result");
        QVERIFY(stopAt ? calls == stopAt : calls >= 4);
        QCOMPARE(readFile(output) == "before", stopAt != 0);
    }

    // A dark palette darkens the colours the user left alone; only a chosen one is stored.
    void colorsFollowThePalette()
    {
        const QPalette light = QApplication::palette();
        auto gui = openTool();
        QCOMPARE(gui->color_back, light.color(QPalette::Base));
        gui->applyColors({QColor(), QColor(), QColor(), QColor(), QColor(), QColor(), QColor(Qt::green)});
        QPalette dark = light;
        dark.setColor(QPalette::Base, QColor(30, 30, 34));
        dark.setColor(QPalette::Text, QColor(220, 220, 220));
        QApplication::setPalette(dark);
        QCOMPARE(gui->colors().mid(1), (QList<QColor>{QColor(30, 30, 34), QColor(220, 220, 220), QColor(90, 90, 100),
                 QColor(90, 160, 255), QColor(90, 160, 255), QColor(Qt::green), QColor(150, 150, 150)}));
        QApplication::setPalette(light);
        QCOMPARE(gui->color_back, light.color(QPalette::Base));
        gui.reset();
        QVERIFY(readFile(ini_).contains("color_x=") && !readFile(ini_).contains("color_back="));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestSettings)

#include "test_settings.moc"
