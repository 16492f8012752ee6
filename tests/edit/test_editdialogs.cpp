// The Add New Wave and Time Settings dialogs driven as a user does: type,
// pick, press, answer the message box; then undo and redo what they did.
#include "newwavedlg.h"
#include "settimedlg.h"

#include "guifixture.h"
#include "modalanswerer.h"
#include "sandboxedtestmain.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QUndoStack>

using namespace kesu::toolvok;
using namespace guitest;

namespace {

const QByteArray kDoc = wdl({"$pat = 0 2 1 4;", "a { A I Default NRZ 0 1 50 } = 0 10;",
                             "x[p,q] { B I Default NRZ 0 1 50 } = 1 10;"});

QString describe(const WaveData* w)
{
    const QString bits = w->elements.isEmpty() ? QString() : ' ' + w->elements.first() + ".." + w->elements.last();
    return w->name + (w->isBus ? QString(" bus %1").arg(w->busWidth) : " single") + " kind " + QString::number(w->polarity) + bits;
}

QString items(const QComboBox* box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts << box->itemText(i);
    return texts.join(' ') + " @" + box->currentText();
}

} // namespace

class TestEditDialogs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addNewWave_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("outcome");  // the wave added, or the message shown
        const QString badBus = "Invalid bus name.", badChar = "The wave name contains invalid character.";
        const QString clash = "The wave you are adding conflicts to an existing wave. ";
        QTest::newRow("empty") << "" << 0 << "Invalid wave name.";
        QTest::newRow("taken") << "a" << 1 << "The name is used.";
        QTest::newRow("single") << "clk_2" << 1 << "clk_2 single kind 1";
        QTest::newRow("bit range") << "d[7:0]" << 0 << "d[7:0] bus 8 kind 0 d[7]..d[0]";
        QTest::newRow("one-bit range") << "s[3:3]" << 2 << "s[3:3] single kind 2 s[3]..s[3]";
        QTest::newRow("256 bits") << "w[0:255]" << 0 << "w[0:255] bus 256 kind 0 w[0]..w[255]";
        QTest::newRow("257 bits") << "w[0:256]" << 0 << "Don't support bus over 256 bits.";
        QTest::newRow("257 bits, bad base") << "1w[256:0]" << 0 << "Don't support bus over 256 bits.";
        QTest::newRow("range, bad base") << "1d[3:0]" << 0 << badChar;
        QTest::newRow("range of three parts") << "d[7:0:1]" << 0 << badBus;
        QTest::newRow("run") << "[a0...a3]" << 3 << "[a0...a3] bus 4 kind 3 a[0]..a[3]";
        QTest::newRow("run, other prefix") << "[a0...b3]" << 0 << badBus;
        QTest::newRow("run without digit") << "[ab...ac]" << 0 << badBus;
        QTest::newRow("list") << "u,v,w" << 0 << "u,v,w bus 3 kind 0 u..w";
        QTest::newRow("bracketed list") << "m[g,h]" << 4 << "m[g,h] bus 2 kind 4 g..h";
        QTest::newRow("list, bad element") << "a2,1b" << 0 << badChar;
        QTest::newRow("bad single") << "1abc" << 0 << badChar;
        QTest::newRow("pattern") << "p1" << 5 << "$p1 single kind 5";
        QTest::newRow("pattern taken") << "pat" << 5 << "The name is used.";
        QTest::newRow("bit of a bus") << "p" << 0 << clash + "It is element of the exsited bus wave.";
        QTest::newRow("bits of a bus") << "q,z" << 0 << clash + "Some elements of the bus wave have been added.";
        QTest::newRow("bit that is a wave") << "k,a" << 0 << clash + "Some elements of the bus wave have been added.";
    }
    void addNewWave()
    {
        QFETCH(QString, typed);
        QFETCH(int, kind);
        QFETCH(QString, outcome);
        const bool refused = outcome.endsWith('.');
        Tool t(kDoc);
        NewWaveDlg dialog(t.gui.get());
        dialog.show();
        QTest::keyClicks(dialog.nameEdit(), typed);
        dialog.polarityBox()->setCurrentIndex(kind);
        ModalAnswerer answerer(refused ? QList<Answer>{press(QMessageBox::Ok)} : QList<Answer>{});
        QTest::mouseClick(dialog.addButton(), Qt::LeftButton);
        VERIFY_ANSWERED(answerer);
        QVERIFY(dialog.isVisible());
        const QStringList before{"$pat", "a", "x[p,q]"};
        if (refused) {
            QCOMPARE(answerer.seen.value(0).text, outcome);
            QCOMPARE(answerer.seen.value(0).icon, QMessageBox::Critical);
            QVERIFY(t.docOrder() == before && t->undoStack()->count() == 0);
            return;
        }
        QCOMPARE(describe(t->document()->waves.last()), outcome);
        t->undoStack()->undo();
        QCOMPARE(t.docOrder(), before);
        t->undoStack()->redo();
        QCOMPARE(describe(t->document()->waves.last()), outcome);
    }

    void timeSettings_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("newUnit");      // index picked in the unit box
        QTest::addColumn<int>("newDecimals");  // index picked in the precision box, -1 none
        QTest::addColumn<QString>("offered");  // precisions, @ the current one, on opening -> after the picks
        const QString all = "1.0 0.1 0.01 0.001";
        QTest::newRow("ps to ns") << 12 << 0 << 2 << -1 << "1.0 @1.0 ps -> " + all + " @1.0";
        QTest::newRow("ns to us keeps 0.01") << 9 << 2 << 1 << -1 << all + " @0.01 ns -> " + all + " @0.01";
        QTest::newRow("us to ms, 0.001") << 6 << 0 << 0 << 3 << all + " @1.0 us -> " + all + " @0.001";
        QTest::newRow("ns to ps narrows") << 9 << 3 << 3 << -1 << all + " @0.001 ns -> 1.0 @1.0";
        QTest::newRow("unchanged") << 9 << 1 << 2 << -1 << all + " @0.1 ns -> " + all + " @0.1";
    }
    void timeSettings()
    {
        QFETCH(int, unit);
        QFETCH(int, decimals);
        QFETCH(int, newUnit);
        QFETCH(int, newDecimals);
        QFETCH(QString, offered);
        QByteArray text = kDoc;
        text.replace("%SMALLESTUNIT = 9;", "%SMALLESTUNIT = " + QByteArray::number(unit) + ';');
        text.replace("%DECIMALS = 0;", "%DECIMALS = " + QByteArray::number(decimals) + ';');
        Tool t(text);
        setTimeDlg dialog(t.gui.get());
        dialog.show();
        const QString opened = items(dialog.precisionBox()) + ' ' + dialog.unitBox()->currentText();
        dialog.unitBox()->setCurrentIndex(newUnit);
        if (newDecimals >= 0)
            dialog.precisionBox()->setCurrentIndex(newDecimals);
        QCOMPARE(opened + " -> " + items(dialog.precisionBox()), offered);
        t->ResetDirtyBit();
        dialog.buttonBox()->button(QDialogButtonBox::Ok)->click();
        QVERIFY(dialog.result() == QDialog::Accepted && t->undoStack()->count() == 1 && t->isModified());
        QCOMPARE(QPair(t->document()->smallestUnit, t->document()->decimals),
                 QPair(newUnit * 3 + 3, dialog.precisionBox()->currentIndex()));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t.saved(), text);
        QVERIFY(t->isModified());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestEditDialogs)

#include "test_editdialogs.moc"
