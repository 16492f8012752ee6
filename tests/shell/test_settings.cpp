// What the editor remembers between runs, and the Options dialog.
#include "basehelp.h"
#include "editdlg.h"
#include "optionsdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QSettings>
#include <QSplitter>
#include <QToolButton>

using namespace kesu::toolvok;

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

    std::unique_ptr<VokGUI> tool(bool titled = true)
    {
        const QString doc = dir_.filePath("doc.wdl");
        const bool named = titled && toolfixture::writeFile(doc, "%ENDTIME = 9;\n");
        // The splitter has its real sizes only once the window is laid out.
        return toolfixture::openShown(named ? doc : QString(), QSize(1200, 700));
    }

private Q_SLOTS:
    void init()
    {
        QFile::remove(ini_) || QDir(ini_).removeRecursively();
        // What a window could not write to the folder stays pending in the process.
        QSettings(ini_, QSettings::IniFormat).clear();
    }

    // Values not of the key's type read as defaults ("/": an unreadable folder);
    // the next window reads what the last wrote.
    void storedSettings_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("expected");
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
        QVERIFY(QDir().mkpath(file == "/" ? ini_ : QFileInfo(ini_).path()));
        QVERIFY(file.size() < 2 || toolfixture::writeFile(ini_, file));
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
        QVERIFY(toolfixture::readFile(ini_).contains("auto_save=2\nbus_radix=3\n"));
        auto next = tool();
        QTEST(state(*next), "next");
    }

    // OK applies, restarting auto-save only on a new interval (never untitled); Cancel nothing.
    void optionsDialog_data()
    {
        QTest::addColumn<int>("autoSave");
        QTest::addColumn<int>("interval");   // 0: stopped
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
};

VOK_SANDBOXED_TEST_MAIN(TestSettings)
#include "test_settings.moc"
