// What the editor remembers between runs, the options the host's dialog
// hands back, and that dialog driven as a user does.
#include "baseusrsettings.h"
#include "optionsdlg.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"
#include "waveview.h"

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QAction>
#include <QColorDialog>
#include <QComboBox>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>

using namespace kesu::toolvok;

namespace {

const QByteArray kDoc = "%SMALLESTUNIT = 9;\nd[3:0] { B I Default NRZ 0 1 50 } = A 10;\n";

QString settingsPath()
{
    return QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).filePath(QStringLiteral("Vostranelle/WAVE_EDITOR.ini"));
}

// What a tool window took from the settings, in the order of the keys. The
// wave view takes whatever width the name list leaves.
QString state(VokGUI& gui)
{
    const QList<int> sizes = gui.splitter()->sizes();
    QStringList colors;
    for (const QColor& c : gui.colors().mid(1))
        colors << c.name();
    return QStringLiteral("%1 r%2 a%3 g%4 docks%5%6%7 %8")
        .arg(sizes.value(0)).arg(gui.busRadix()).arg(gui.autoSave())
        .arg(int(gui.showGuideline())).arg(int(!gui.waveDataDlg()->isHidden()))
        .arg(int(!gui.editDlg()->isHidden())).arg(int(!gui.patternDlg()->isHidden())).arg(colors.join(' '));
}

const QString kDefaults = "150 r0 a0 g0 docks110 #ffffff #000000 #a0a0a4 #0000ff #0000ff #ff0000 #a0a0a4";

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

    QTemporaryDir dir_;
    QString project_;

    std::unique_ptr<VokGUI> tool(bool titled = true)
    {
        const QString path = dir_.filePath(QStringLiteral("doc.wdl"));
        if (titled && !toolfixture::writeFile(path, kDoc))
            return nullptr;
        auto gui = std::make_unique<VokGUI>(nullptr, titled ? QStringList{path} : QStringList(), project_, true);
        gui->initialize();
        gui->resize(1200, 700);
        gui->show();
        if (!QTest::qWaitForWindowExposed(gui.get()))
            return nullptr;
        return gui;
    }

private Q_SLOTS:
    void init()
    {
        QDir(settingsPath()).removeRecursively();
        QFile::remove(settingsPath());
    }

    // Whatever is stored, a window opens; anything that is not what the key
    // holds reads as its default.
    void storedSettings_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("expected");
        QTest::newRow("first start") << QByteArray() << kDefaults;
        QTest::newRow("binary") << QByteArray("\x7f" "ELF\0\xff\xfe[General]\0=\n\x01", 17) << kDefaults;
        QTest::newRow("wrong types") << QByteArray("[General]\nmain_splitter_0=wide\nmain_splitter_1=1, 2\n"
                                                   "bus_radix=hex\nauto_save=@Invalid()\nshow_guideline=yes\n"
                                                   "show_dataview=true\nshow_propview=\nshow_patternview=2\n"
                                                   "color_back=no colour\ncolor_x=@Variant(garbage)\n")
                                     << kDefaults;
        QTest::newRow("out of range") << QByteArray("[General]\nmain_splitter_0=-5\nmain_splitter_1=0\n"
                                                    "bus_radix=4\nauto_save=-1\n")
                                      << kDefaults;
        QTest::newRow("stored") << QByteArray("[General]\nmain_splitter_0=200\nmain_splitter_1=500\nbus_radix=2\n"
                                              "auto_save=7\nshow_guideline=1\nshow_dataview=0\nshow_propview=1\n"
                                              "show_patternview=1\ncolor_back=#102030\ncolor_z=#abcdef\n")
                                << "200 r2 a7 g1 docks011 #102030 #000000 #a0a0a4 #0000ff #0000ff #ff0000 #abcdef";
    }
    void storedSettings()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, expected);
        QVERIFY(QDir().mkpath(QFileInfo(settingsPath()).path()));
        QVERIFY(file.isEmpty() || toolfixture::writeFile(settingsPath(), file));
        auto gui = tool();
        QVERIFY(gui);
        QCOMPARE(state(*gui), expected);
    }

    // A settings file that cannot be read (here a folder in its place) gives
    // the defaults, and the window still closes cleanly.
    void unreadableSettings()
    {
        QVERIFY(QDir().mkpath(settingsPath()));
        auto gui = tool();
        QCOMPARE(state(*gui), kDefaults);
    }

    // One window's options, colours, docks and splitter are the next one's.
    void nextWindowReadsWhatTheLastWrote()
    {
        {
            auto first = tool();
            first->splitter()->setSizes({230, 470});
            first->applyOptions(3, 2, true);
            first->applyColors({Qt::black, Qt::yellow, Qt::darkBlue, Qt::cyan, Qt::green, Qt::magenta,
                                Qt::darkRed, Qt::darkGray});
            first->waveDataDlg()->hide();
            first->patternDlg()->show();
        }
        const QByteArray stored = toolfixture::readFile(settingsPath());
        QVERIFY2(stored.contains("bus_radix=3\n") && stored.contains("auto_save=2\n")
                     && stored.contains("show_guideline=1\n"), stored);
        auto next = tool();
        QCOMPARE(state(*next), "230 r3 a2 g1 docks011 #ffff00 #000080 #00ffff #00ff00 #ff00ff #800000 #808080");
        QCOMPARE(next->action(VokGUI::ActOptions)->isEnabled(), true);
    }

    // The timer is restarted only when the interval changes, and never for
    // a document with nowhere to be saved to.
    void autoSaveInterval_data()
    {
        QTest::addColumn<bool>("titled");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("interval");   // 0: stopped
        QTest::addColumn<bool>("restarted");
        QTest::newRow("unchanged") << true << 0 << 60000 << false;
        QTest::newRow("five minutes") << true << 1 << 300000 << true;
        QTest::newRow("ten minutes") << true << 2 << 600000 << true;
        QTest::newRow("off") << true << 3 << 0 << false;
        QTest::newRow("beyond off") << true << 9 << 0 << false;
        QTest::newRow("untitled") << false << 1 << 0 << false;
    }
    void autoSaveInterval()
    {
        QFETCH(bool, titled);
        QFETCH(int, index);
        QFETCH(int, interval);
        QFETCH(bool, restarted);
        auto gui = tool(titled);
        QTimer* timer = gui->autoSaveTimer();
        QCOMPARE(timer->isActive(), titled);
        QTest::qWait(60);
        const int left = timer->remainingTime();
        gui->applyOptions(1, index, true);
        QCOMPARE(gui->autoSave(), index);
        QCOMPARE(timer->isActive() ? timer->interval() : 0, interval);
        if (interval)
            QCOMPARE(timer->remainingTime() > left, restarted);
        QCOMPARE(state(*gui).section(' ', 1, 3), QStringLiteral("r1 a%1 g1").arg(index));
    }

    // Entry 0 belongs to the host; a short list or an invalid colour leaves
    // the colours it does not name as they were.
    void colors_data()
    {
        QTest::addColumn<QList<QColor>>("given");
        QTest::addColumn<QString>("expected");
        const QList<QColor> eight{Qt::red, Qt::black, Qt::white, Qt::yellow, Qt::cyan, Qt::green, Qt::blue, Qt::darkRed};
        QTest::newRow("eight") << eight << "#000000 #ffffff #ffff00 #00ffff #00ff00 #0000ff #800000";
        QTest::newRow("three") << eight.mid(0, 3) << "#000000 #ffffff #a0a0a4 #0000ff #0000ff #ff0000 #a0a0a4";
        QTest::newRow("invalid") << QList<QColor>{Qt::red, QColor(), Qt::white} << "#ffffff #ffffff #a0a0a4 #0000ff "
                                                                                    "#0000ff #ff0000 #a0a0a4";
        QTest::newRow("none") << QList<QColor>() << kDefaults.section(' ', 5);
    }
    void colors()
    {
        QFETCH(QList<QColor>, given);
        QFETCH(QString, expected);
        auto gui = tool();
        gui->applyColors(given);
        QCOMPARE(state(*gui).section(' ', 5), expected);
        QCOMPARE(gui->waveView()->palette().color(QPalette::Window), gui->color_back);
    }

    // Tools > Options opens the host's dialog on the window's settings; OK
    // applies what was picked, colours from the picker included; Cancel
    // nothing.
    void optionsDialog_data()
    {
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("expected");
        QTest::newRow("ok") << true << "r2 a1 g1 docks110 #ffffff #000000 #a0a0a4 #0000ff #123456 #ff0000 #a0a0a4";
        QTest::newRow("cancel") << false << kDefaults.section(' ', 1, 3) + " docks110 " + kDefaults.section(' ', 5);
    }
    void optionsDialog()
    {
        QFETCH(bool, ok);
        QFETCH(QString, expected);
        auto gui = tool();
        QString shownRadix, shownInterval;
        const auto click = [](QAbstractButton* b) { QMetaObject::invokeMethod(b, "click", Qt::QueuedConnection); };
        ModalAnswerer answers({
            act([&](QWidget* w) {
                auto* dlg = qobject_cast<OptionsDlg*>(w);
                QVERIFY(dlg);
                shownRadix = dlg->findChildren<QComboBox*>().at(0)->currentText();
                shownInterval = dlg->findChildren<QComboBox*>().at(1)->currentText();
                dlg->findChildren<QComboBox*>().at(0)->setCurrentIndex(2);
                dlg->findChildren<QComboBox*>().at(1)->setCurrentIndex(1);
                dlg->findChild<QCheckBox*>()->setChecked(true);
                click(dlg->colorButton(5));
            }),
            act([](QWidget* w) {
                auto* picker = qobject_cast<QColorDialog*>(w);
                QVERIFY(picker);
                QCOMPARE(picker->currentColor(), QColor(Qt::blue));
                picker->setCurrentColor(QColor(0x12, 0x34, 0x56));
                picker->accept();
            }),
            act([&](QWidget* w) {
                auto* buttons = w->findChild<QDialogButtonBox*>();
                click(buttons->button(ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel));
            }),
        });
        gui->action(VokGUI::ActOptions)->trigger();
        VERIFY_ANSWERED(answers);
        QCOMPARE(answers.seen.value(0).title, "Options");
        QCOMPARE(shownRadix + '/' + shownInterval, "Binary/Every minute");
        QCOMPARE(state(*gui).section(' ', 1), expected);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestSettings)
#include "test_settings.moc"
