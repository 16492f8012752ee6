// Recent files, dropped documents, progress with Cancel, and colours following the palette.
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

    // `waves` waves of 1,000 pulses (600: about 3 MB, read in several pieces).
    QString doc(const QString& name, int waves = 1)
    {
        const QString path = dir_.filePath(name);
        QByteArray text = "%ENDTIME = 10000;\n";
        for (int i = 0; i < waves; ++i)
            text += "w" + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } =" + QByteArray(" 0 5 1 5").repeated(500) + ";\n";
        if (!QFileInfo::exists(path) && !testfiles::writeFile(path, text))
            qWarning("cannot write %s", qPrintable(path));
        return path;
    }
    std::unique_ptr<VokGUI> tool(const QStringList& files = {})
    {
        auto gui = std::make_unique<VokGUI>(nullptr, files, project_, true);
        gui->initialize();
        return gui;
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

private Q_SLOTS:
    void init()
    {
        QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Vostranelle", "WAVE_EDITOR");
        RecentFiles(settings).clear();
    }

    // Newest first, at most eight, a deleted one taken off with a note; below
    // Open; the same in a second window; Clear empties it.
    void recentFilesMenu_data()
    {
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<QString>("deleted");
        QTest::addColumn<QStringList>("menu");
        QTest::newRow("newest first, once") << QStringList{"a.wdl", "b.wdl", "a.wdl"} << QString()
                                            << QStringList{"a.wdl", "b.wdl", "start.wdl"};
        QTest::newRow("at most eight") << QStringList{"0.wdl", "1.wdl", "2.wdl", "3.wdl", "4.wdl", "5.wdl", "6.wdl",
                                                      "7.wdl", "8.wdl"} << QString()
                                       << QStringList{"8.wdl", "7.wdl", "6.wdl", "5.wdl", "4.wdl", "3.wdl", "2.wdl", "1.wdl"};
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
        QVERIFY(deleted.isEmpty() || QFile::remove(dir_.filePath(deleted)));
        QCOMPARE(entries(gui->recentFilesMenu()), menu);
        QCOMPARE(gui->statusBar()->currentMessage().section(": ", 1), deleted.isEmpty() ? "" : dir_.filePath(deleted));
        const QList<QAction*> file = gui->menuBar()->actions().first()->menu()->actions();
        QCOMPARE(file.indexOf(gui->recentFilesMenu()->menuAction()), file.indexOf(gui->sharedAction("open")) + 1);
        QCOMPARE(entries(tool()->recentFilesMenu()), menu);
        gui->recentFilesMenu()->actions().last()->trigger();   // Clear Recent Files
        QCOMPARE(entries(gui->recentFilesMenu()), QStringList());
    }

    // What is dropped, whether the window takes it, what it then shows.
    void dropDocument_data()
    {
        QTest::addColumn<QStringList>("dropped");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("shown");
        QTest::newRow("document") << QStringList{"drop.wdl"} << 0 << "drop.wdl";
        QTest::newRow("upper-case suffix") << QStringList{"DROP.WDL"} << 0 << "DROP.WDL";
        QTest::newRow("text file") << QStringList{"notes.txt"} << 0 << "start.wdl";
        QTest::newRow("folder named .wdl") << QStringList{"dir.wdl"} << 0 << "start.wdl";
        QTest::newRow("first of several") << QStringList{"notes.txt", "drop.wdl", "b.wdl"} << 0 << "drop.wdl";
        QTest::newRow("unsaved, not saved") << QStringList{"drop.wdl"} << int(QMessageBox::No) << "drop.wdl";
    }
    void dropDocument()
    {
        QFETCH(QStringList, dropped);
        QFETCH(int, answer);
        QFETCH(QString, shown);
        QVERIFY(QDir(dir_.path()).mkpath("dir.wdl"));
        auto gui = tool({doc("start.wdl")});
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
        QTest::addColumn<QString>("work");
        QTest::addColumn<bool>("cancel");
        QTest::newRow("open, cancelled") << "open" << true;
        QTest::newRow("open, run through") << "open" << false;
        QTest::newRow("print, cancelled") << "print" << true;
    }
    void longWorkWithProgress()
    {
        QFETCH(QString, work);
        QFETCH(bool, cancel);
        const QString big = doc("big.wdl", 600);
        auto gui = tool({work == "print" ? big : doc("start.wdl")});
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
        QCOMPARE(gui->fullFileName(), kept ? dir_.filePath("start.wdl") : big);
        QCOMPARE(gui->document()->waves.size(), kept ? 1 : 600);
        QCOMPARE(gui->isModified(), kept);
        QCOMPARE(entries(gui->recentFilesMenu()).value(0), kept ? "start.wdl" : "big.wdl");
        QVERIFY(!QFileInfo::exists(dir_.filePath("big.pdf")));
    }

    // A stopped export returns 2 and leaves the output as it was.
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
        QByteArray args[] = {"-vcd", doc("big.wdl", 600).toLocal8Bit(), "-out=" + output.toLocal8Bit()};
        char* argv[] = {args[0].data(), args[1].data(), args[2].data()};
        int calls = 0;
        QTEST(ExportWaveforms(3, argv, [&](qint64, qint64) { return ++calls != stopAt; }), "result");
        QVERIFY(stopAt ? calls == stopAt : calls >= 4);
        QCOMPARE(testfiles::readFile(output) == "before", stopAt != 0);
    }

    // A dark palette darkens the colours the user left alone; only a chosen one is stored.
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
        QCOMPARE(gui->colors().mid(1), (QList<QColor>{QColor(30, 30, 34), QColor(220, 220, 220), QColor(90, 90, 100),
                 QColor(90, 160, 255), QColor(90, 160, 255), QColor(Qt::green), QColor(150, 150, 150)}));
        QApplication::setPalette(light);
        QCOMPARE(gui->color_back, light.color(QPalette::Base));
        gui.reset();
        const QByteArray ini = testfiles::readFile(qEnvironmentVariable("XDG_CONFIG_HOME") + "/Vostranelle/WAVE_EDITOR.ini");
        QVERIFY(ini.contains("color_x=") && !ini.contains("color_back="));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestComfort)

#include "test_comfort.moc"
