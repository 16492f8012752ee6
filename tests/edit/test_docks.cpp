// The property docks driven through their widgets: the saved text, refusals, one undo step each
// (undoing and redoing a run of such steps: test_randomedits).
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include "biginteger.h"
#include "wavesummary.h"

#include "guifixture.h"
#include "modalanswerer.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace guitest;

namespace {

const QByteArray kAHead = "a { A I Default NRZ 0 1 50 } = ";
const QByteArray kA = kAHead + "0 10 1 20 0 30 1 40;";
const QByteArray kEHead = "e { A I Default NRZ 0 1 50 } = ";
const QByteArray kNHead = "n[3:0] { B I Default NRZ 0 1 50 } = ";
const QList<QByteArray> kWaves{"$pat = 0 2 1 4;", "$q = 1 3 0 5;", "$bp[3:0] = 1 10 2 10;", kA,
                               "d[7:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 F 10;", kEHead + "0 10 1 10(0 10 1 10)##;",
                               kNHead + "DonTCare 10 1 10 HighZ 5;",
                               "g { A I Default NRZ 0 1 50 } = 0 2000000000 1 5 0 2000000000;"};
const QByteArray kDoc = wdl(kWaves);

// kDoc with the line of the wave that `edited` begins with replaced.
QByteArray docWith(const QByteArray& edited)
{
    const qsizetype from = kDoc.indexOf('\n' + edited.left(edited.indexOf(' ') + 1)) + 1;
    return QByteArray(kDoc).replace(from, kDoc.indexOf('\n', from) - from, edited);
}

class Docks : public Tool
{
public:
    explicit Docks(const QByteArray& text = kDoc) : Tool(text) { editMode(true); }

    // A control of either dock by its name.
    template <typename W = QWidget> W* control(const QString& name) const
    {
        W* found = gui->editDlg()->findChild<W*>(name);
        return found ? found : gui->waveDataDlg()->findChild<W*>(name);
    }

    // Pulses picked with the mouse: the views load the selection.
    void pick(const QString& name, const QList<int>& indexes) const
    {
        select(name, indexes);
        gui->waveDataDlg()->LoadData(wave(name));
        gui->LoadEditData();
    }
};

// Types into an edit and presses Enter (the validator filters keys as it would), picks a combo entry by index
// or clicks a box; the message box text ("": none).
QString use(QWidget* control, const QString& input)
{
    ModalAnswerer answerer({press(QMessageBox::Ok)});
    if (auto* edit = qobject_cast<QLineEdit*>(control)) {
        edit->selectAll();
        QTest::keyClicks(edit, input);
        QTest::keyClick(edit, Qt::Key_Return);
    } else if (auto* combo = qobject_cast<QComboBox*>(control))
        combo->setCurrentIndex(input.toInt());
    else if (auto* box = qobject_cast<QCheckBox*>(control))
        box->click();
    return answerer.seen.isEmpty() ? QString() : answerer.seen.first().text;
}

} // namespace

class TestDocks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pulseControls_data()
    {
        // edited empty: the document stays as it was; span: the selected range afterwards, end minus start
        addColumns<QString, QList<int>, QString, QString, QString, QByteArray, int>(
            {"wave", "pulses", "control", "input", "message", "edited", "span"});
        const QList<int> one{1}, two{0, 1};
        const QString overflow = "The duration is overflowed.";
        auto add = [](const char* name, const QString& wave, const QList<int>& pulses, const QString& control,
                      const QString& input, const QString& message, const QByteArray& edited, int span = -1) {
            QTest::newRow(name) << wave << pulses << control << input << message << edited << span;
        };
        // Only Set Value merges equal neighbours.
        add("low", "a", one, "state", "0", "", kAHead + "0 10 0 20 0 30 1 40;");
        add("dont care", "a", one, "state", "2", "", kAHead + "0 10 2 20 0 30 1 40;");
        add("high-z", "a", {0}, "state", "3", "", kAHead + "3 10 1 20 0 30 1 40;");
        add("bus dont care", "d[7:0]", {2}, "state", "1", "", "d[7:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 DonTCare 10;");
        add("bus high-z", "d[7:0]", {0}, "state", "2", "", "d[7:0] { B I Default NRZ 0 1 50 } = HighZ 10 2 10 F 10;");
        add("set value merges", "n[3:0]", {0}, "state", "0", "", kNHead + "1 20 HighZ 5;");
        add("duration", "a", one, "duration", "25", "", kAHead + "0 10 1 25 0 30 1 40;", 24);
        add("duration with unit", "a", one, "duration", "2 ns", "", kAHead + "0 10 1 2 0 30 1 40;", 1);
        add("same duration", "a", one, "duration", "20 ns", "", {});
        add("not a time", "a", one, "duration", "abc", "Invalid duration.", {});
        add("duration 0", "a", one, "duration", "0", "Invalid duration.", {});
        add("duration past 32 bits", "a", one, "duration", "3000000000", overflow, {});
        add("scale 2", "a", two, "scale", "2", "", kAHead + "0 20 1 40 0 30 1 40;", 59);
        add("scale hex", "a", {3}, "scale", "0x3", "", kAHead + "0 10 1 20 0 30 1 120;", 119);
        add("scale 1", "a", two, "scale", "1", "", {});
        add("scale 0", "a", {0}, "scale", "0", overflow, {});
        add("scale too far", "a", {0}, "scale", "300000000", overflow, {});
        add("scale past 64 bits", "a", {0}, "scale", "99999999999999999999", overflow, {});
        add("repeat 3", "a", two, "repeat", "3", "", kAHead + "0 10 1 20 0 10 1 20 0 10 1 20 0 30 1 40;", 89);
        // A copy whose first value is the value before it joins that pulse.
        add("repeat joins", "a", {0, 1, 2}, "repeat", "2", "", kAHead + "0 10 1 20 0 40 1 20 0 30 1 40;", 119);
        add("repeat 0 adds nothing", "a", two, "repeat", "0", "", kA);
        add("repeat hex reads 0", "a", two, "repeat", "0x5", "", kA);
        add("repeat too many", "a", two, "repeat", "99999999", "The repeat count is too large.", {});
        add("repeat joins past 32 bits", "g", {0, 1, 2}, "repeat", "2", overflow, {});
        add("forever from here", "a", {2, 3}, "forever", "", "", kAHead + "0 10 1 20(0 30 1 40)##;");
        add("forever off", "e", {2}, "forever", "", "", kEHead + "0 10 1 10 0 10 1 10;");
        add("forever off from before", "e", {1, 2}, "forever", "", "", kEHead + "0 10 1 10 0 10 1 10;");
        add("output", "a", {0}, "polarity", "1", "", "a { A O Default NRZ 0 1 50 } = 0 10 1 20 0 30 1 40;");
        add("offset", "a", {0}, "offset", "100", "", "a { A I Default NRZ 100 1 50 } = 0 10 1 20 0 30 1 40;");
        add("offset with unit", "d[7:0]", {0}, "offset", "7 ns", "", "d[7:0] { B I Default NRZ 7 1 50 } = 1 10 2 10 F 10;");
        add("offset not a time", "a", {0}, "offset", "x1", "Invalid offset.", {});
        add("offset past 32 bits", "a", {0}, "offset", "3000000000", "The offset is overflowed.", {});
    }
    void pulseControls()
    {
        QFETCH(QString, wave); QFETCH(QList<int>, pulses); QFETCH(QString, control); QFETCH(QString, input);
        QFETCH(QString, message); QFETCH(QByteArray, edited); QFETCH(int, span);
        Docks t;
        t.pick(wave, pulses);
        t->changeRange(0, 1);
        QCOMPARE(t.control<QLabel>("name")->text(), wave);
        QWidget* widget = t.control(control);
        QVERIFY(widget->isEnabled());
        QCOMPARE(use(widget, input), message);
        QCOMPARE(std::pair(t.saved(), t.steps()), edited.isEmpty() ? std::pair(kDoc, 0) : std::pair(docWith(edited), 1));
        if (span >= 0)
            QCOMPARE(qint64(t->getRangeEnd()) - qint64(t->getRangeStart()), span);
        if (auto* edit = qobject_cast<QLineEdit*>(widget); edit && control != "duration" && control != "offset" && message.isEmpty())
            QCOMPARE(edit->text(), QStringLiteral("1"));
        t->undo();
        QCOMPARE(t.saved(), kDoc);
    }

    // What the docks show for the pulses picked: the Forever box, Repeat, State and the wave's summary.
    void shownForAPick_data()
    {
        // summary empty: not looked at
        addColumns<QString, QList<int>, bool, bool, QString>({"wave", "pulses", "enabled", "checked", "summary"});
        QTest::newRow("single pulse") << "a" << QList<int>{1} << false << false << "";
        QTest::newRow("up to the end") << "a" << QList<int>{2, 3} << true << false << "";
        QTest::newRow("named pattern") << "$q" << QList<int>{0, 1} << false << false << "";
        QTest::newRow("in the tail") << "e" << QList<int>{3} << true << true << "";
        QTest::newRow("before the tail") << "e" << QList<int>{0} << false << false
                                         << "e - Input\nData - 0x0 - 10\nData - 0x1 - 10\n(...) Repeat Forever\n"
                                            "Data - 0x0 - 10\nData - 0x1 - 10\n";
        QTest::newRow("bus") << "d[7:0]" << QList<int>{0} << false << false
                             << "d[7:0] - Input\nData - 0x1 - 10\nData - 0x2 - 10\nData - 0xF - 10\n";
        QTest::newRow("x and z") << "n[3:0]" << QList<int>{0} << false << false
                                 << "n[3:0] - Input\nData - X - 10\nData - 0x1 - 10\nData - Z - 5\n";
        QTest::newRow("pattern") << "$pat" << QList<int>{0} << false << false
                                 << "$pat - Pattern\nData - 0x0 - 2\nData - 0x1 - 4\n";
    }
    void shownForAPick()
    {
        QFETCH(QString, wave); QFETCH(QList<int>, pulses); QFETCH(bool, checked); QFETCH(QString, summary);
        Docks t;
        t.pick(wave, pulses);
        QTEST(t.control<QCheckBox>("forever")->isEnabled(), "enabled");
        QCOMPARE(t.control<QCheckBox>("forever")->isChecked(), checked);
        QCOMPARE(t.control<QLineEdit>("repeat")->text(), checked ? QStringLiteral("##") : QStringLiteral("1"));
        QCOMPARE(t.control<QComboBox>("state")->isEnabled(), pulses.size() == 1 && !checked);
        if (!summary.isEmpty())
            QCOMPARE(t->waveDataDlg()->summary()->summary()->text(), summary);
    }

    void busValue_data()
    {
        // stored empty: refused as wider than the bus
        addColumns<int, int, QString, QString, QString>({"width", "radix", "shown", "typed", "stored"});
        // Refusal per radix: the 8-bit rows; the width check at 256 bits and beyond: test_timetext's agreesWithGmp.
        const QString f64(64, QLatin1Char('F'));
        const QString max256 = QString::fromStdString(BigInteger(f64.toStdString(), 16).toString(10));
        QTest::newRow("hex prefix") << 8 << 3 << "0x1" << "0x1F" << "1F";
        QTest::newRow("hex too wide") << 4 << 3 << "0x1" << "0x1F" << "";
        QTest::newRow("hex without prefix") << 8 << 3 << "0x1" << "ab" << "ab";
        QTest::newRow("binary") << 8 << 0 << "00000001" << "11110000" << "F0";
        QTest::newRow("binary digit 2") << 8 << 0 << "00000001" << "102" << "";
        QTest::newRow("octal") << 8 << 1 << "1" << "377" << "FF";
        QTest::newRow("octal too wide") << 8 << 1 << "1" << "400" << "";
        QTest::newRow("decimal") << 8 << 2 << "1" << "255" << "FF";
        QTest::newRow("decimal too wide") << 8 << 2 << "1" << "256" << "";
        QTest::newRow("prefix beats radix") << 8 << 0 << "00000001" << "0x7e" << "7e";
        QTest::newRow("256 hex") << 256 << 3 << "0x1" << "0x" + f64 << f64;
        QTest::newRow("257 hex") << 256 << 3 << "0x1" << "0x1" + QString(64, '0') << "";
        QTest::newRow("256 binary") << 256 << 0 << QString(255, '0') + "1" << "1" + QString(255, '0')
                                    << "8" + QString(63, '0');
        QTest::newRow("256 octal") << 256 << 1 << "1" << "1" + QString(85, '7') << f64;
        QTest::newRow("256 decimal") << 256 << 2 << "1" << max256 << f64;
    }
    void busValue()
    {
        QFETCH(int, width); QFETCH(int, radix); QFETCH(QString, typed); QFETCH(QString, stored);
        const QString name = QStringLiteral("b[%1:0]").arg(width - 1);
        const QByteArray head = name.toLatin1() + " { B I Default NRZ 0 1 50 } = ";
        const QByteArray original = wdl({head + "1 10 2 10;"});
        Docks t(original);
        t->setBusRadix(radix);
        t.pick(name, {0});
        auto* value = t.control<QLineEdit>("value");
        QTEST(value->text(), "shown");
        QCOMPARE(use(value, typed), stored.isEmpty() ? "The bit number of the value is over the bus width." : "");
        QCOMPARE(std::pair(t.saved(), t.steps()),
                 stored.isEmpty() ? std::pair(original, 0) : std::pair(wdl({head + stored.toLatin1() + " 10 2 10;"}), 1));
        t->undo();
        QCOMPARE(t.saved(), original);
    }

    void patternKindKeepsTheDollarOnUndo()
    {
        Docks t(wdl(kWaves + QList<QByteArray>{"q { A I Default NRZ 0 1 50 } = 1 5;"}));
        t.pick("q", {0});
        QCOMPARE(use(t.control<QComboBox>("polarity"), "5"), QStringLiteral("The name is used."));
        QCOMPARE(t.steps(), 0);
        t.pick("a", {0});
        use(t.control<QComboBox>("polarity"), "5");
        QVERIFY(t.saved().contains("\n$a = 0 10 1 20 0 30 1 40;\n"));
        QCOMPARE(t->patternDlg()->list()->model()->rowCount(), 4);
        t->undo();
        QVERIFY(t.wave("$a") && !t.wave("a"));
        QCOMPARE(t.wave("$a")->polarity, 0);
        QCOMPARE(t->patternDlg()->list()->model()->rowCount(), 3);
        // A named pattern shows its kind and offset, changeable neither.
        t.pick("$pat", {0});
        QVERIFY(!t.control<QComboBox>("polarity")->isEnabled());
        QCOMPARE(t.control<QComboBox>("polarity")->currentIndex(), 5);
        QCOMPARE(t.control<QLineEdit>("offset")->text(), QStringLiteral("0"));
    }

    void insertPatterns_data()
    {
        // patterns in picking order; edited empty: Insert stays disabled
        addColumns<QString, int, QString, QByteArray>({"wave", "pulse", "patterns", "edited"});
        QTest::newRow("one, merging") << "a" << 1 << "$pat" << kAHead + "0 12 1 24 0 30 1 40;";
        QTest::newRow("two in picking order") << "a" << 2 << "$pat $q" << kAHead + "0 10 1 20 0 2 1 7 0 35 1 40;";
        QTest::newRow("picked the other way") << "a" << 2 << "$q $pat" << kAHead + "0 10 1 23 0 7 1 4 0 30 1 40;";
        QTest::newRow("into the tail") << "e" << 3 << "$q" << kEHead + "0 10 1 10(0 10 1 3 0 5 1 10)##;";
        QTest::newRow("bus as wide") << "n[3:0]" << 1 << "$bp[3:0]" << kNHead + "DonTCare 10 1 10 2 10 1 10 HighZ 5;";
        QTest::newRow("bus, other width") << "d[7:0]" << 0 << "$bp[3:0]" << QByteArray();
        QTest::newRow("bus into a signal") << "a" << 0 << "$bp[3:0]" << QByteArray();
        QTest::newRow("signal into a bus") << "n[3:0]" << 0 << "$pat" << QByteArray();
        QTest::newRow("into a pattern") << "$q" << 0 << "$pat" << QByteArray();
    }
    void insertPatterns()
    {
        QFETCH(QString, wave); QFETCH(int, pulse); QFETCH(QString, patterns); QFETCH(QByteArray, edited);
        Docks t;
        PatternDlg* dlg = t->patternDlg();
        dlg->LoadData();
        t.pick(wave, {pulse});
        QAbstractItemModel* model = dlg->list()->model();
        for (const QString& name : patterns.split(' ')) {
            const QModelIndexList found = model->match(model->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
            dlg->list()->selectionModel()->select(found.value(0), QItemSelectionModel::Select);
        }
        QCOMPARE(dlg->insertButton()->isEnabled(), !edited.isEmpty());
        // Read-only takes every editing control away until it ends.
        t->changeReadonlyMode(true);
        QVERIFY(!dlg->insertButton()->isEnabled());
        t.pick(wave, {pulse});
        for (const char* name : {"state", "duration", "value", "scale", "polarity", "offset"})
            QVERIFY2(!t.control(name)->isEnabled(), name);
        t->changeReadonlyMode(false);
        t.editMode(true);
        t.pick(wave, {pulse});
        dlg->insertButton()->click();
        QCOMPARE(t.saved(), edited.isEmpty() ? kDoc : docWith(edited));
        if (edited.isEmpty())
            return;
        QVERIFY(t->selection().isEmpty() && !dlg->insertButton()->isEnabled());
        QCOMPARE(t.steps(), 1);
        t->undo();
        QCOMPARE(t.saved(), kDoc);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestDocks)
#include "test_docks.moc"
