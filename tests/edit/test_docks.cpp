// The three property docks driven through their widgets on documents read
// from files: what each control writes into the saved text, what it refuses,
// and that each change is one undo step.
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"
#include "biginteger.h"
#include "wavesummary.h"
#include "waveview.h"

#include "edittestutil.h"
#include "modalanswerer.h"
#include "sandboxedtestmain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QUndoStack>

using namespace kesu::toolvok;
using namespace edittest;

namespace {

const QByteArray kPat = "$pat = 0 2 1 4;";
const QByteArray kQ = "$q = 1 3 0 5;";
const QByteArray kBp = "$bp[3:0] = 1 10 2 10;";
const QByteArray kA = "a { A I Default NRZ 0 1 50 } = 0 10 1 20 0 30 1 40;";
const QByteArray kD = "d[7:0] { B I Default NRZ 0 1 50 } = 1 10 2 10 F 10;";
const QByteArray kE = "e { A I Default NRZ 0 1 50 } = 0 10 1 10(0 10 1 10)##;";
const QByteArray kN = "n[3:0] { B I Default NRZ 0 1 50 } = DonTCare 10 1 10 HighZ 5;";
const QList<QByteArray> kWaves{kPat, kQ, kBp, kA, kD, kE, kN};
const QByteArray kDoc = wdl(kWaves);

// kDoc with the line of one wave replaced.
QByteArray docWith(const QByteArray& original, const QByteArray& edited)
{
    QList<QByteArray> waves = kWaves;
    waves[waves.indexOf(original)] = edited;
    return wdl(waves);
}

QByteArray line(const char* head, const QByteArray& segments)
{
    return QByteArray(head) + " = " + segments + ';';
}

class Docks : public Tool
{
public:
    explicit Docks(const QByteArray& text = kDoc) : Tool(text) { editMode(true); }

    template <typename W> W* pulse(const char* name) const { return gui->editDlg()->findChild<W*>(name); }
    template <typename W> W* waveData(const char* name) const { return gui->waveDataDlg()->findChild<W*>(name); }

    // Pulses picked with the mouse: the views load the selection.
    void pick(const QString& name, const QList<int>& indexes) const
    {
        select(name, indexes);
        gui->waveDataDlg()->LoadData(wave(name));
        gui->LoadEditData();
    }
    int steps() const { return gui->undoStack()->count(); }
};

// Typing the text and pressing Enter; the validator filters keys as it would.
void type(QLineEdit* edit, const QString& text)
{
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

// A message expected from the edit ("" for none), answered with Ok.
void typeExpecting(QLineEdit* edit, const QString& text, const QString& message)
{
    ModalAnswerer answerer(message.isEmpty() ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
    type(edit, text);
    QVERIFY2(answerer.problems.isEmpty(), qPrintable(answerer.problems.join("; ")));
    QCOMPARE(answerer.seen.isEmpty() ? QString() : answerer.seen.first().text, message);
}

} // namespace

class TestDocks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void state_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<int>("pulse");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QByteArray>("original");
        QTest::addColumn<QByteArray>("edited");
        // Only Set Value merges equal neighbours.
        QTest::newRow("low") << "a" << 1 << 0 << kA << line("a { A I Default NRZ 0 1 50 }", "0 10 0 20 0 30 1 40");
        QTest::newRow("dont care") << "a" << 1 << 2 << kA << line("a { A I Default NRZ 0 1 50 }", "0 10 2 20 0 30 1 40");
        QTest::newRow("high-z") << "a" << 0 << 3 << kA << line("a { A I Default NRZ 0 1 50 }", "3 10 1 20 0 30 1 40");
        QTest::newRow("bus dont care") << "d[7:0]" << 2 << 1 << kD
                                       << line("d[7:0] { B I Default NRZ 0 1 50 }", "1 10 2 10 DonTCare 10");
        QTest::newRow("bus high-z") << "d[7:0]" << 0 << 2 << kD
                                    << line("d[7:0] { B I Default NRZ 0 1 50 }", "HighZ 10 2 10 F 10");
        QTest::newRow("set value merges") << "n[3:0]" << 0 << 0 << kN
                                          << line("n[3:0] { B I Default NRZ 0 1 50 }", "1 20 HighZ 5");
    }
    void state()
    {
        QFETCH(QString, wave);
        QFETCH(int, pulse);
        QFETCH(int, entry);
        QFETCH(QByteArray, original);
        QFETCH(QByteArray, edited);
        Docks t;
        t.pick(wave, {pulse});
        auto* combo = t.pulse<QComboBox>("state");
        QVERIFY(combo->isEnabled());
        combo->setCurrentIndex(entry);
        QCOMPARE(t.saved(), docWith(original, edited));
        QCOMPARE(t.steps(), 1);
        t->undo();
        QCOMPARE(t.saved(), kDoc);
    }

    void busValue_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("radix");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");   // empty: refused as wider than the bus
        const QString f64(64, QLatin1Char('F'));
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
        QTest::newRow("257 binary") << 256 << 0 << QString(255, '0') + "1" << "1" + QString(256, '0') << "";
        QTest::newRow("256 octal") << 256 << 1 << "1" << "1" + QString(85, '7') << f64;
        QTest::newRow("257 octal") << 256 << 1 << "1" << "2" + QString(85, '0') << "";
        const QString max256 = QString::fromStdString(BigInteger(f64.toStdString(), 16).toString(10));
        const QString over256 = QString::fromStdString(BigInteger("1" + std::string(64, '0'), 16).toString(10));
        QTest::newRow("256 decimal") << 256 << 2 << "1" << max256 << f64;
        QTest::newRow("257 decimal") << 256 << 2 << "1" << over256 << "";
    }
    void busValue()
    {
        QFETCH(int, width);
        QFETCH(int, radix);
        QFETCH(QString, shown);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        const QByteArray head = "b[" + QByteArray::number(width - 1) + ":0] { B I Default NRZ 0 1 50 }";
        const QByteArray original = wdl({line(head, "1 10 2 10")});
        Docks t(original);
        t->setBusRadix(radix);
        t.pick("b[" + QString::number(width - 1) + ":0]", {0});
        auto* value = t.pulse<QLineEdit>("value");
        QCOMPARE(value->text(), shown);
        typeExpecting(value, typed, stored.isEmpty() ? "The bit number of the value is over the bus width." : "");
        QCOMPARE(t.saved(), stored.isEmpty() ? original : wdl({line(head, stored.toLatin1() + " 10 2 10")}));
        QCOMPARE(t.steps(), stored.isEmpty() ? 0 : 1);
    }

    void duration_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("segments");
        QTest::newRow("ticks") << "25" << "" << QByteArray("0 10 1 25 0 30 1 40");
        QTest::newRow("with unit") << "2 ns" << "" << QByteArray("0 10 1 2 0 30 1 40");
        QTest::newRow("same") << "20 ns" << "" << QByteArray("0 10 1 20 0 30 1 40");
        QTest::newRow("not a time") << "abc" << "Invalid duration." << QByteArray("0 10 1 20 0 30 1 40");
        QTest::newRow("zero") << "0" << "Invalid duration." << QByteArray("0 10 1 20 0 30 1 40");
        QTest::newRow("past 32 bits") << "3000000000" << "The duration is overflowed." << QByteArray("0 10 1 20 0 30 1 40");
    }
    void duration()
    {
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QByteArray, segments);
        Docks t;
        t.pick("a", {1});
        auto* edit = t.pulse<QLineEdit>("duration");
        QCOMPARE(edit->text(), QStringLiteral("20 ns"));
        typeExpecting(edit, typed, message);
        QCOMPARE(t.saved(), docWith(kA, line("a { A I Default NRZ 0 1 50 }", segments)));
        QCOMPARE(t.steps(), segments.contains(" 20 0") ? 0 : 1);
        QCOMPARE(edit->text(), t->getTimeString(quint64(t.wave("a")->patterns[1]->duration), true));
    }

    void scaleAndRepeat_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QList<int>>("pulses");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("segments");
        QTest::addColumn<int>("span");   // selected range after the edit, end minus start
        const QByteArray same = "0 10 1 20 0 30 1 40";
        QTest::newRow("scale 2") << "scale" << QList<int>{0, 1} << "2" << "" << QByteArray("0 20 1 40 0 30 1 40") << 59;
        QTest::newRow("scale hex") << "scale" << QList<int>{3} << "0x3" << "" << QByteArray("0 10 1 20 0 30 1 120") << 119;
        QTest::newRow("scale 1") << "scale" << QList<int>{0, 1} << "1" << "" << same << -1;
        QTest::newRow("scale 0") << "scale" << QList<int>{0} << "0" << "The duration is overflowed." << same << -1;
        QTest::newRow("scale too far") << "scale" << QList<int>{0} << "300000000" << "The duration is overflowed." << same << -1;
        QTest::newRow("scale past 64 bits") << "scale" << QList<int>{0} << "99999999999999999999"
                                           << "The duration is overflowed." << same << -1;
        QTest::newRow("repeat 3") << "repeat" << QList<int>{0, 1} << "3" << ""
                                  << QByteArray("0 10 1 20 0 10 1 20 0 10 1 20 0 30 1 40") << 89;
        // The copy's first pulse has the value of the last selected one: they join.
        QTest::newRow("repeat joins") << "repeat" << QList<int>{0, 1, 2} << "2" << ""
                                      << QByteArray("0 10 1 20 0 40 1 20 0 30 1 40") << 119;
        QTest::newRow("repeat 0") << "repeat" << QList<int>{0, 1} << "0" << "" << same << -1;
        QTest::newRow("repeat hex reads 0") << "repeat" << QList<int>{0, 1} << "0x5" << "" << same << -1;
        QTest::newRow("repeat too many") << "repeat" << QList<int>{0, 1} << "99999999" << "The repeat count is too large."
                                         << same << -1;
    }
    void scaleAndRepeat()
    {
        QFETCH(QString, control);
        QFETCH(QList<int>, pulses);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QByteArray, segments);
        QFETCH(int, span);
        Docks t;
        t.pick("a", pulses);
        t->changeRange(0, 1);
        auto* edit = t.pulse<QLineEdit>(control.toLatin1());
        typeExpecting(edit, typed, message);
        QCOMPARE(t.saved(), docWith(kA, line("a { A I Default NRZ 0 1 50 }", segments)));
        const bool pushed = message.isEmpty() && typed != "1";
        QCOMPARE(t.steps(), pushed ? 1 : 0);
        if (span >= 0)
            QCOMPARE(qint64(t->getRangeEnd()) - qint64(t->getRangeStart()), span);
        if (pushed) {
            QCOMPARE(edit->text(), QStringLiteral("1"));
            t->undo();
            QCOMPARE(t.saved(), kDoc);
        }
    }

    void forever_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<QList<int>>("pulses");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<QByteArray>("toggled");
        QTest::newRow("single pulse") << "a" << QList<int>{1} << false << false << QByteArray();
        QTest::newRow("up to the end") << "a" << QList<int>{2, 3} << true << false
                                       << line("a { A I Default NRZ 0 1 50 }", "0 10 1 20(0 30 1 40)##");
        QTest::newRow("tail off") << "e" << QList<int>{2} << true << true
                                  << line("e { A I Default NRZ 0 1 50 }", "0 10 1 10 0 10 1 10");
        QTest::newRow("tail moves earlier") << "e" << QList<int>{1, 2} << true << true
                                            << line("e { A I Default NRZ 0 1 50 }", "0 10 1 10 0 10 1 10");
    }
    void forever()
    {
        QFETCH(QString, wave);
        QFETCH(QList<int>, pulses);
        QFETCH(bool, enabled);
        QFETCH(bool, checked);
        QFETCH(QByteArray, toggled);
        Docks t;
        t.pick(wave, pulses);
        auto* box = t.pulse<QCheckBox>("forever");
        QCOMPARE(box->isEnabled(), enabled);
        QCOMPARE(box->isChecked(), checked);
        QCOMPARE(t.pulse<QLineEdit>("repeat")->text(), checked ? QStringLiteral("##") : QStringLiteral("1"));
        if (!enabled)
            return;
        box->click();
        const QByteArray original = wave == "a" ? kA : kE;
        QCOMPARE(t.saved(), docWith(original, toggled));
        QCOMPARE(t.pulse<QLineEdit>("repeat")->text(), checked ? QStringLiteral("1") : QStringLiteral("##"));
        t->undo();
        QCOMPARE(t.saved(), kDoc);
        QCOMPARE(t.steps(), 1);
    }

    void waveProperties_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("edited");
        QTest::newRow("output") << "a" << "polarity" << "1" << "" << QByteArray(line("a { A O Default NRZ 0 1 50 }", "0 10 1 20 0 30 1 40"));
        QTest::newRow("offset") << "a" << "offset" << "100" << "" << QByteArray(line("a { A I Default NRZ 100 1 50 }", "0 10 1 20 0 30 1 40"));
        QTest::newRow("offset with unit") << "d[7:0]" << "offset" << "7 ns" << ""
                                          << QByteArray(line("d[7:0] { B I Default NRZ 7 1 50 }", "1 10 2 10 F 10"));
        QTest::newRow("offset not a time") << "a" << "offset" << "x1" << "Invalid offset." << QByteArray();
        QTest::newRow("offset past 32 bits") << "a" << "offset" << "3000000000" << "The offset is overflowed." << QByteArray();
        QTest::newRow("pattern name taken") << "q" << "polarity" << "5" << "The name is used." << QByteArray();
    }
    void waveProperties()
    {
        QFETCH(QString, wave);
        QFETCH(QString, control);
        QFETCH(QString, input);
        QFETCH(QString, message);
        QFETCH(QByteArray, edited);
        const QByteArray withQ = wdl(kWaves + QList<QByteArray>{"q { A I Default NRZ 0 1 50 } = 1 5;"});
        Docks t(wave == "q" ? withQ : kDoc);
        t.pick(wave, {0});
        QCOMPARE(t.waveData<QLabel>("name")->text(), wave);
        {
            ModalAnswerer answerer(message.isEmpty() ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
            if (control == "offset")
                type(t.waveData<QLineEdit>("offset"), input);
            else
                t.waveData<QComboBox>("polarity")->setCurrentIndex(input.toInt());
            QCOMPARE(answerer.seen.isEmpty() ? QString() : answerer.seen.first().text, message);
        }
        const QByteArray original = wave == "q" ? withQ : kDoc;
        QCOMPARE(t.saved(), edited.isEmpty() ? original : docWith(wave == "a" ? kA : kD, edited));
        QCOMPARE(t.steps(), edited.isEmpty() ? 0 : 1);
        QCOMPARE(t.waveData<QComboBox>("polarity")->currentIndex(), t.wave(wave)->polarity);
        if (!edited.isEmpty()) {
            t->undo();
            QCOMPARE(t.saved(), original);
        }
    }

    void patternRuleKeepsTheDollarOnUndo()
    {
        Docks t;
        t.pick("a", {0});
        t.waveData<QComboBox>("polarity")->setCurrentIndex(5);
        QCOMPARE(t.saved(), docWith(kA, "$a = 0 10 1 20 0 30 1 40;"));
        QCOMPARE(t.gui->patternDlg()->list()->model()->rowCount(), 4);
        t->undo();
        WaveData* a = t.wave("$a");
        QVERIFY(a && !t.wave("a"));
        QCOMPARE(a->polarity, 0);
        QCOMPARE(t.gui->patternDlg()->list()->model()->rowCount(), 3);
        // A named pattern shows its kind and offset, changeable neither.
        t.pick("$pat", {0});
        auto* polarity = t.waveData<QComboBox>("polarity");
        QVERIFY(!polarity->isEnabled() && polarity->currentIndex() == 5);
        QCOMPARE(t.waveData<QLineEdit>("offset")->text(), QStringLiteral("0"));
    }

    void summary_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<QString>("text");
        QTest::newRow("bus") << "d[7:0]" << "d[7:0] - Input\nData - 0x1 - 10\nData - 0x2 - 10\nData - 0xF - 10\n";
        QTest::newRow("x and z") << "n[3:0]" << "n[3:0] - Input\nData - X - 10\nData - 0x1 - 10\nData - Z - 5\n";
        QTest::newRow("forever") << "e" << "e - Input\nData - 0x0 - 10\nData - 0x1 - 10\n(...) Repeat Forever\n"
                                           "Data - 0x0 - 10\nData - 0x1 - 10\n";
        QTest::newRow("pattern") << "$pat" << "$pat - Pattern\nData - 0x0 - 2\nData - 0x1 - 4\n";
    }
    void summary()
    {
        QFETCH(QString, wave);
        QFETCH(QString, text);
        Docks t;
        t.pick(wave, {0});
        QCOMPARE(t->waveDataDlg()->summary()->summary()->text(), text);
    }

    void insertPatterns_data()
    {
        QTest::addColumn<QString>("wave");
        QTest::addColumn<int>("pulse");
        QTest::addColumn<QStringList>("patterns");
        QTest::addColumn<QByteArray>("original");
        QTest::addColumn<QByteArray>("edited");   // empty: Insert stays disabled
        QTest::newRow("one, merging") << "a" << 1 << QStringList{"$pat"} << kA
                                      << line("a { A I Default NRZ 0 1 50 }", "0 12 1 24 0 30 1 40");
        QTest::newRow("two in picking order") << "a" << 2 << QStringList{"$pat", "$q"} << kA
                                              << line("a { A I Default NRZ 0 1 50 }", "0 10 1 20 0 2 1 7 0 35 1 40");
        QTest::newRow("picked the other way") << "a" << 2 << QStringList{"$q", "$pat"} << kA
                                              << line("a { A I Default NRZ 0 1 50 }", "0 10 1 23 0 7 1 4 0 30 1 40");
        QTest::newRow("into the tail") << "e" << 3 << QStringList{"$q"} << kE
                                       << line("e { A I Default NRZ 0 1 50 }", "0 10 1 10(0 10 1 3 0 5 1 10)##");
        QTest::newRow("bus of that width") << "n[3:0]" << 1 << QStringList{"$bp[3:0]"} << kN
                                           << line("n[3:0] { B I Default NRZ 0 1 50 }", "DonTCare 10 1 10 2 10 1 10 HighZ 5");
        QTest::newRow("bus of another width") << "d[7:0]" << 0 << QStringList{"$bp[3:0]"} << kD << QByteArray();
        QTest::newRow("bus into a signal") << "a" << 0 << QStringList{"$bp[3:0]"} << kA << QByteArray();
        QTest::newRow("signal into a bus") << "n[3:0]" << 0 << QStringList{"$pat"} << kN << QByteArray();
        QTest::newRow("into a pattern") << "$q" << 0 << QStringList{"$pat"} << kQ << QByteArray();
    }
    void insertPatterns()
    {
        QFETCH(QString, wave);
        QFETCH(int, pulse);
        QFETCH(QStringList, patterns);
        QFETCH(QByteArray, original);
        QFETCH(QByteArray, edited);
        Docks t;
        PatternDlg* dlg = t->patternDlg();
        dlg->LoadData();
        t.pick(wave, {pulse});
        for (const QString& name : patterns) {
            const QModelIndexList found = dlg->list()->model()->match(dlg->list()->model()->index(0, 0),
                                                                      Qt::DisplayRole, name, 1, Qt::MatchExactly);
            QCOMPARE(found.size(), 1);
            dlg->list()->selectionModel()->select(found.first(), QItemSelectionModel::Select);
        }
        QCOMPARE(dlg->insertButton()->isEnabled(), !edited.isEmpty());
        t->changeReadonlyMode(true);
        QVERIFY(!dlg->insertButton()->isEnabled());
        t->changeReadonlyMode(false);
        t.editMode(true);
        t.pick(wave, {pulse});
        QVERIFY(dlg->insertButton()->isEnabled() == !edited.isEmpty());
        dlg->insertButton()->click();
        QCOMPARE(t.saved(), edited.isEmpty() ? kDoc : docWith(original, edited));
        if (edited.isEmpty())
            return;
        QVERIFY(t->selection().isEmpty() && !dlg->insertButton()->isEnabled());
        QCOMPARE(t.steps(), 1);
        t->undo();
        QCOMPARE(t.saved(), kDoc);
    }

    void readOnlyDisablesEveryEditingWidget()
    {
        Docks t;
        t.pick("d[7:0]", {0});
        const QList<QWidget*> editing{t.pulse<QComboBox>("state"), t.pulse<QLineEdit>("duration"),
                                      t.pulse<QLineEdit>("value"), t.pulse<QLineEdit>("scale"),
                                      t.waveData<QComboBox>("polarity"), t.waveData<QLineEdit>("offset")};
        auto enabled = [&editing] {
            QList<bool> states;
            for (QWidget* w : editing)
                states << w->isEnabled();
            return states;
        };
        QCOMPARE(enabled(), QList<bool>(editing.size(), true));
        t->changeReadonlyMode(true);
        QCOMPARE(enabled(), QList<bool>(editing.size(), false));
        t->changeReadonlyMode(false);
        t.editMode(true);
        t.pick("d[7:0]", {0});
        QCOMPARE(enabled(), QList<bool>(editing.size(), true));
    }

    void everyDockThenUndoEverything()
    {
        Docks t;
        const QByteArray original = t.saved();
        t.pick("a", {1});
        t.pulse<QComboBox>("state")->setCurrentIndex(2);
        t.pick("a", {0});
        type(t.pulse<QLineEdit>("duration"), "15");
        t.pick("a", {0, 1});
        type(t.pulse<QLineEdit>("scale"), "2");
        t.pick("a", {0, 1});
        type(t.pulse<QLineEdit>("repeat"), "4");
        t.pick("a", {8, 9});
        t.pulse<QCheckBox>("forever")->click();
        t.pick("d[7:0]", {1});
        type(t.pulse<QLineEdit>("value"), "0x3C");
        t.pick("d[7:0]", {1});
        type(t.waveData<QLineEdit>("offset"), "5");
        t.waveData<QComboBox>("polarity")->setCurrentIndex(2);
        t.pick("a", {2});
        t->patternDlg()->list()->selectionModel()->select(t->patternDlg()->list()->model()->index(0, 0),
                                                          QItemSelectionModel::Select);
        t->patternDlg()->insertButton()->click();
        QCOMPARE(t.steps(), 9);
        QCOMPARE(t.saved(), wdl({kPat, kQ, kBp,
                                 "a { A I Default NRZ 0 1 50 } = 0 30 2 40 0 2 1 4 0 30 2 40 0 30 2 40 0 30 2 40(0 30\n"
                                 " 1 40)##;",
                                 "d[7:0] { B B Default NRZ 5 1 50 } = 1 10 3C 10 F 10;", kE, kN}));
        // The steps copy the edited wave only when first undone: a redo after
        // that must still bring back every edit.
        const QByteArray edited = t.saved();
        for (int round = 0; round < 2; ++round) {
            while (t->undoStack()->canUndo())
                t->undo();
            QCOMPARE(t.saved(), original);
            while (t->undoStack()->canRedo())
                t->redo();
            QCOMPARE(t.saved(), edited);
        }
    }

    void layoutAndToggles()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("doc.wdl");
        QVERIFY(toolfixture::writeFile(path, kDoc));
        QSettings(QSettings::IniFormat, QSettings::UserScope, "Vostranelle", "WAVE_EDITOR").clear();
        auto gui = toolfixture::openShown(path, QSize(1280, 720));
        QVERIFY(gui);
        auto docks = [&gui] { return QList<QDockWidget*>{gui->waveDataDlg(), gui->editDlg(), gui->patternDlg()}; };
        auto viewAction = [&gui](int i) { return gui->myMenuItems(ViewMenu)->at(4 + i); };
        auto shownAndChecked = [&] {
            QList<bool> states;
            for (int i = 0; i < 3; ++i)
                states << !docks()[i]->isHidden() << viewAction(i)->isChecked();
            return states;
        };
        // First start: both property views, tabbed, and no Pattern View.
        QCOMPARE(shownAndChecked(), (QList<bool>{true, true, true, true, false, false}));
        for (QDockWidget* dock : docks()) {
            if (dock->isVisible()) {
                const QSize need = dock->widget()->minimumSizeHint();
                QVERIFY2(dock->widget()->width() >= need.width() && dock->widget()->height() >= need.height(),
                         qPrintable(dock->windowTitle() + QString(" %1x%2 < %3x%4").arg(dock->widget()->width()).arg(dock->widget()->height()).arg(need.width()).arg(need.height())));
            }
        }
        QAction* patternView = viewAction(2);
        patternView->trigger();
        QVERIFY(QTest::qWaitFor([&] { return docks()[2]->isVisible(); }));
        QAction* dataView = viewAction(0);
        dataView->trigger();
        QCOMPARE(shownAndChecked(), (QList<bool>{false, false, true, true, true, true}));
        gui->close();
        gui.reset();
        // The next start shows what the user left.
        gui = toolfixture::openShown(path, QSize(1280, 720));
        QCOMPARE(shownAndChecked(), (QList<bool>{false, false, true, true, true, true}));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestDocks)
#include "test_docks.moc"
