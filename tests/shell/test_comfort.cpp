// Desktop comforts of the tool window: recent files in the File menu, a
// document dropped onto the window, and drawing colours that follow the
// desktop's palette unless the user chose them.
#include "exportwaveforms.h"
#include "progressgate.h"
#include "recentfiles.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"
#include "modalanswerer.h"

#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPrinter>
#include <QProgressDialog>
#include <QSettings>
#include <QStatusBar>

using namespace kesu::toolvok;

class TestComfort : public QObject
{
    Q_OBJECT
    QTemporaryDir dir_;
    QString project_;

    QString doc(const QString& name)
    {
        const QString path = dir_.filePath(name);
        if (!QFileInfo::exists(path) && !testfiles::writeFile(path, "%ENDTIME = 9;\nw { A I Default NRZ 0 1 50 } = 1 9;\n"))
            qWarning("cannot write %s", qPrintable(path));
        return path;
    }
    std::unique_ptr<VokGUI> tool(const QStringList& files = {})
    {
        auto gui = std::make_unique<VokGUI>(nullptr, files, project_, true);
        gui->initialize();
        return gui;
    }
    // 600 waves of 1,000 pulses: about 3 MB, read in several pieces.
    QString bigDocument()
    {
        const QString path = dir_.filePath("big.wdl");
        if (QFileInfo::exists(path))
            return path;
        QByteArray text = "%ENDTIME = 10000;\n";
        const QByteArray pulses = QByteArray("0 5 1 5 ").repeated(500);
        for (int i = 0; i < 600; ++i)
            text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = " + pulses + ";\n";
        if (!testfiles::writeFile(path, text))
            qWarning("cannot write %s", qPrintable(path));
        return path;
    }
    static QStringList entries(QMenu* menu)
    {
        Q_EMIT menu->aboutToShow();
        QStringList names;
        for (QAction* a : menu->actions())
            if (!a->data().toString().isEmpty())
                names << QFileInfo(a->data().toString()).fileName();
        return names;
    }
    static void sendDrop(QWidget* window, const QStringList& paths, bool& accepted)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& p : paths)
            urls << QUrl::fromLocalFile(p);
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        accepted = enter.isAccepted();
        if (!accepted)
            return;
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &drop);
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init()
    {
        QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Vostranelle", "WAVE_EDITOR");
        RecentFiles(settings).clear();
    }

    // Opened files in order, then files deleted before the menu is shown:
    // the menu, newest first, at most eight, the deleted ones taken off with
    // a note in the status bar. A second window shows the same list.
    void recentFilesMenu_data()
    {
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<QString>("deleted");
        QTest::addColumn<QStringList>("menu");
        QTest::newRow("one") << QStringList{"a.wdl"} << QString() << QStringList{"a.wdl", "start.wdl"};
        QTest::newRow("newest first, once") << QStringList{"a.wdl", "b.wdl", "a.wdl"} << QString()
                                            << QStringList{"a.wdl", "b.wdl", "start.wdl"};
        QTest::newRow("at most eight") << QStringList{"f0.wdl", "f1.wdl", "f2.wdl", "f3.wdl", "f4.wdl", "f5.wdl",
                                                      "f6.wdl", "f7.wdl", "f8.wdl"}
                                       << QString()
                                       << QStringList{"f8.wdl", "f7.wdl", "f6.wdl", "f5.wdl", "f4.wdl", "f3.wdl",
                                                      "f2.wdl", "f1.wdl"};
        QTest::newRow("missing taken off") << QStringList{"a.wdl", "gone.wdl", "c.wdl"} << QString("gone.wdl")
                                           << QStringList{"c.wdl", "a.wdl", "start.wdl"};
    }
    void recentFilesMenu()
    {
        QFETCH(QStringList, opened);
        QFETCH(QString, deleted);
        QFETCH(QStringList, menu);
        auto gui = tool({doc("start.wdl")});
        for (const QString& name : opened)
            gui->openFile(doc(name));
        QCOMPARE(gui->fullFileName(), dir_.filePath(opened.last()));
        if (!deleted.isEmpty())
            QVERIFY(QFile::remove(dir_.filePath(deleted)));
        QCOMPARE(entries(gui->recentFilesMenu()), menu);
        QCOMPARE(gui->statusBar()->currentMessage().contains(deleted), true);
        QCOMPARE(gui->statusBar()->currentMessage().isEmpty(), deleted.isEmpty());
        // Right below Open in the File menu.
        const QList<QAction*> file = gui->menuBar()->actions().first()->menu()->actions();
        QCOMPARE(file.indexOf(gui->recentFilesMenu()->menuAction()),
                 file.indexOf(gui->sharedAction(QStringLiteral("open"))) + 1);
        QCOMPARE(entries(tool()->recentFilesMenu()), menu);
    }

    // An entry whose file went away after the menu was shown: a note, the
    // entry goes, the open document stays. Clear empties the list.
    void recentFileGoneAndClear()
    {
        auto gui = tool({doc("start.wdl")});
        gui->openFile(doc("later.wdl"));
        QMenu* menu = gui->recentFilesMenu();
        QCOMPARE(entries(menu), (QStringList{"later.wdl", "start.wdl"}));
        QVERIFY(QFile::remove(dir_.filePath("start.wdl")));
        ModalAnswerer answerer({press(QMessageBox::Ok)});
        menu->actions().at(1)->trigger();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said().value(0), "The file \"" + dir_.filePath("start.wdl")
                                                + "\" no longer exists. It was taken off the recent files.");
        QCOMPARE(gui->fullFileName(), dir_.filePath("later.wdl"));
        QCOMPARE(entries(menu), QStringList{"later.wdl"});
        menu->actions().last()->trigger();
        QCOMPARE(entries(menu), QStringList());
        QVERIFY(!menu->actions().last()->isEnabled());
    }

    // What is dropped, whether the window takes it, and what it then shows;
    // with unsaved changes the usual question comes first.
    void dropDocument_data()
    {
        QTest::addColumn<QStringList>("dropped");
        QTest::addColumn<bool>("modified");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("shown");
        QTest::newRow("document") << QStringList{"drop.wdl"} << false << 0 << "drop.wdl";
        QTest::newRow("upper-case suffix") << QStringList{"DROP.WDL"} << false << 0 << "DROP.WDL";
        QTest::newRow("text file") << QStringList{"notes.txt"} << false << 0 << "start.wdl";
        QTest::newRow("folder named .wdl") << QStringList{"dir.wdl"} << false << 0 << "start.wdl";
        QTest::newRow("first document of several") << QStringList{"notes.txt", "drop.wdl", "b.wdl"} << false << 0
                                                   << "drop.wdl";
        QTest::newRow("unsaved, not saved") << QStringList{"drop.wdl"} << true << int(QMessageBox::No) << "drop.wdl";
    }
    void dropDocument()
    {
        QFETCH(QStringList, dropped);
        QFETCH(bool, modified);
        QFETCH(int, answer);
        QFETCH(QString, shown);
        QVERIFY(QDir(dir_.path()).mkpath("dir.wdl"));
        auto gui = tool({doc("start.wdl")});
        if (modified)
            gui->SetDirtyBit();
        QStringList paths;
        for (const QString& name : dropped)
            paths << (name.endsWith(".txt") || name == "dir.wdl" ? dir_.filePath(name) : doc(name));
        ModalAnswerer answerer(answer ? QList<Answer>{press(QMessageBox::StandardButton(answer))} : QList<Answer>());
        bool accepted = false;
        sendDrop(gui.get(), paths, accepted);
        QCOMPARE(accepted, shown != "start.wdl");
        QTRY_COMPARE(gui->fullFileName(), dir_.filePath(shown));
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), answer ? QStringList{"Do you want to save your changes?"} : QStringList());
    }

    // A document of a few MB opened with the progress dialog at once: Cancel
    // leaves the open document, its name and the recent files as they were;
    // without Cancel the document opens.
    void openWithProgress_data()
    {
        QTest::addColumn<bool>("cancel");
        QTest::newRow("cancelled") << true;
        QTest::newRow("run through") << false;
    }
    void openWithProgress()
    {
        QFETCH(bool, cancel);
        const QString big = bigDocument();
        auto gui = tool({doc("start.wdl")});
        // Unsaved changes: the question comes first, and they stay after Cancel.
        if (cancel)
            gui->SetDirtyBit();
        ProgressGate::delayMs = 0;
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
        auto answerer = cancel ? std::make_unique<ModalAnswerer>(QList<Answer>{press(QMessageBox::No)}) : nullptr;
        gui->openFile(big);
        ProgressGate::delayMs = 500;
        if (answerer)
            VERIFY_ANSWERED(*answerer);
        QVERIFY(shown);
        QCOMPARE(gui->fullFileName(), cancel ? dir_.filePath("start.wdl") : big);
        QCOMPARE(gui->document()->waves.size(), cancel ? 1 : 600);
        QCOMPARE(gui->isModified(), cancel);
        QCOMPARE(entries(gui->recentFilesMenu()).value(0), cancel ? "start.wdl" : "big.wdl");
    }

    // An export stopped while reading or while writing returns 2 and leaves
    // the output as it was; one that runs through replaces it.
    void exportWithProgress_data()
    {
        QTest::addColumn<int>("stopAt");   // the call that answers false; 0 never
        QTest::addColumn<int>("result");
        QTest::newRow("stopped reading") << 1 << 2;
        QTest::newRow("stopped writing") << 4 << 2;
        QTest::newRow("run through") << 0 << 0;
    }
    void exportWithProgress()
    {
        QFETCH(int, stopAt);
        const QString output = dir_.filePath("big.vcd");
        QVERIFY(testfiles::writeFile(output, "before"));
        QByteArray args[] = {"-vcd", bigDocument().toLocal8Bit(), "-out=" + output.toLocal8Bit()};
        char* argv[] = {args[0].data(), args[1].data(), args[2].data()};
        int calls = 0;
        QTEST(ExportWaveforms(3, argv, [&](qint64, qint64) { return ++calls != stopAt; }), "result");
        QVERIFY(stopAt ? calls == stopAt : calls >= 4);
        QCOMPARE(testfiles::readFile(output) == "before", stopAt != 0);
    }

    // Printing the big document to PDF at a time scale that makes many pages:
    // Cancel ends the print and leaves no file behind.
    void printWithProgress()
    {
        auto gui = tool({bigDocument()});
        gui->printSettings().timeScale = 200;
        QPrinter printer(QPrinter::ScreenResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        const QString pdf = dir_.filePath("big.pdf");
        printer.setOutputFileName(pdf);
        ProgressGate::delayMs = 0;
        QTimer watch;
        connect(&watch, &QTimer::timeout, [&] {
            if (auto* dialog = gui->findChild<QProgressDialog*>("progressGate"); dialog && dialog->isVisible()) {
                dialog->cancel();
            }
        });
        watch.start(0);
        gui->PreviewPages(&printer);
        ProgressGate::delayMs = 500;
        QVERIFY(!QFileInfo::exists(pdf));
    }

    // A dark palette turns the colours the user left alone dark; a colour the
    // user chose stays, and only that one is stored.
    void colorsFollowThePalette()
    {
        const QPalette light = QApplication::palette();
        auto gui = tool();
        QCOMPARE(gui->color_back, light.color(QPalette::Base));
        gui->applyColors({QColor(), QColor(), QColor(), QColor(), QColor(), QColor(), QColor(Qt::green)});
        QPalette dark = light;
        dark.setColor(QPalette::Base, QColor(30, 30, 34));
        dark.setColor(QPalette::Text, QColor(220, 220, 220));
        QApplication::setPalette(dark);
        const QList<QColor> expected = VokGUI::defaultColors(dark);
        QCOMPARE(gui->color_back, QColor(30, 30, 34));
        QCOMPARE(gui->color_names, QColor(220, 220, 220));
        QCOMPARE(gui->color_signal, expected.at(3));
        QVERIFY(gui->color_signal.lightness() > 128);
        QCOMPARE(gui->color_x, QColor(Qt::green));
        QApplication::setPalette(light);
        QCOMPARE(gui->color_back, light.color(QPalette::Base));
        gui.reset();
        const QByteArray ini = testfiles::readFile(qEnvironmentVariable("XDG_CONFIG_HOME") + "/Vostranelle/WAVE_EDITOR.ini");
        QVERIFY(ini.contains("color_x="));
        QVERIFY(!ini.contains("color_back="));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestComfort)

#include "test_comfort.moc"
