// The form dialogs as a user drives them: Export (proposed names, refusals, a failed
// export, browsing, help), Add New Wave and Time Settings (their work undone and redone).
#include "basehelp.h"
#include "exportdlg.h"
#include "guifixture.h"
#include "newwavedlg.h"
#include "settimedlg.h"
#include "shelltest.h"

namespace {

const char* const counter = VOK_SOURCE_DIR "/examples/counter.wdl";

QLineEdit* edit(ExportDlg& dialog, const char* name) { return dialog.findChild<QLineEdit*>(QLatin1String(name)); }

// For the Add New Wave and Time Settings dialogs.
const QByteArray kSmallDoc = guitest::wdl({"$pat = 0 2 1 4;", "a { A I Default NRZ 0 1 50 } = 0 10;",
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

class TestFormDialogs : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

private Q_SLOTS:
    // Names proposed from the input and the type, browsing for both files, help.
    void proposesNamesBrowsesAndHelps()
    {
        ExportDlg noDot(QStringLiteral("design"), nullptr);
        QCOMPARE(edit(noDot, "output")->text(), QStringLiteral("design.tf"));
        ExportDlg dialog(QStringLiteral("/work/d.x/design.wdl"), nullptr);
        auto* type = dialog.findChild<QComboBox*>();
        QCOMPARE(edit(dialog, "input")->text() + ' ' + edit(dialog, "output")->text(),
                 QStringLiteral("/work/d.x/design.wdl /work/d.x/design.tf"));
        for (const QString& ext : QStringList{"vht", "tb"}) {
            type->setCurrentText(ext);
            QCOMPARE(edit(dialog, "output")->text(), "/work/d.x/design." + ext);
        }
        dialog.show();
        const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly);
        ModalAnswerer answerer({choose(QStringLiteral(VOK_SOURCE_DIR "/examples/cpu_bus.wdl")), choose(QString(counter))});
        buttons.at(0)->click();
        buttons.at(1)->click();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said() + answerer.seen.at(0).filters + answerer.seen.at(1).filters,
                 (QStringList{"Open Existing Waveform File", "Select Output File", "Waveform File (*.wdl)", "All Files (*)",
                              "VHDL Test Bench(*.tb)", "All Files (*)"}));
        QCOMPARE(answerer.seen.at(1).acceptMode, QFileDialog::AcceptOpen);
        QCOMPARE(edit(dialog, "input")->text() + ' ' + edit(dialog, "output")->text(),
                 QStringLiteral(VOK_SOURCE_DIR "/examples/cpu_bus.wdl ") + counter);

        QTest::keyRelease(edit(dialog, "output"), Qt::Key_F1);
        QCOMPARE(BaseHelp::currentPage(), QStringLiteral(":/help/export_wave.html"));
        QVERIFY(!type->whatsThis().isEmpty());
        BaseHelp::helpWindow()->hide();
    }

    void ok_data()
    {
        // "@": the temporary folder; the box: "title: text" of the error shown; written: how the output begins
        addColumns<QString, QString, int, QString, QByteArray>({"input", "output", "type", "box", "written"});
        const QString noName = "Waveform Editor: Please input file name.";
        QTest::newRow("no input") << "" << "@/a.tf" << 0 << noName << QByteArray();
        QTest::newRow("no output") << counter << "" << 0 << noName << QByteArray();
        QTest::newRow("missing input") << "@/none.wdl" << "@/a.tf" << 0 << "Waveform Editor: The input file does not exist." << QByteArray();
        QTest::newRow("output folder missing") << counter << "@/none/a.tf" << 0 << "Waveform Editor: Cannot open output file for writing." << QByteArray();
        QTest::newRow("new output") << counter << "@/new.vht" << 1 << "" << QByteArray("-- VHDL test vectors of counter.wdl");
        QTest::newRow("export fails") << "@/clash.wdl" << "@/clash.vht" << 1 << "Error: Error is found when exporting." << QByteArray();
    }
    void ok()
    {
        QFETCH(QString, input); QFETCH(QString, output); QFETCH(int, type); QFETCH(QString, box);
        QVERIFY(writeFile(tmp_.filePath(QStringLiteral("clash.wdl")),
                          "a { A I Default NRZ 0 1 50 } = 1 5;\nA { A I Default NRZ 0 1 50 } = 0 5;\n"));
        input.replace(QLatin1Char('@'), tmp_.path());
        output.replace(QLatin1Char('@'), tmp_.path());

        ExportDlg dialog(QString(counter), nullptr);
        dialog.findChild<QComboBox*>()->setCurrentIndex(type);
        edit(dialog, "input")->setText(input);
        edit(dialog, "output")->setText(output);
        dialog.show();
        ModalAnswerer answerer(box.isEmpty() ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        QTRY_COMPARE(answerer.seen.size(), box.isEmpty() ? 0 : 1);
        VERIFY_ANSWERED(answerer);
        for (const Seen& seen : std::as_const(answerer.seen))
            QCOMPARE(seen.title + ": " + seen.text + (seen.icon == QMessageBox::Critical ? "" : " (not critical)"), box);
        // A refusal keeps the dialog open as typed; an export, failed or not, closes it.
        const bool refused = box.startsWith(QLatin1String("Waveform"));
        QCOMPARE(dialog.isVisible(), refused);
        QCOMPARE(dialog.result(), refused ? 0 : int(QDialog::Accepted));
        QCOMPARE(edit(dialog, "output")->text(), output);
        // The output is made before the export runs, so a failed one leaves it empty.
        QCOMPARE(QFile::exists(output), !refused);
        QTEST(readFile(output).left(35), "written");
    }

    void addNewWave_data()
    {
        addColumns<QString, int, QString>({"typed", "kind", "outcome"});  // the wave added, or the message shown
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
    }
    void addNewWave()
    {
        QFETCH(QString, typed); QFETCH(int, kind); QFETCH(QString, outcome);
        const bool refused = outcome.endsWith('.');
        guitest::Tool t(kSmallDoc);
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
            QCOMPARE(answerer.seen.value(0).text + (answerer.seen.value(0).icon == QMessageBox::Critical ? "" : " (no error)"), outcome);
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
        // the indexes picked (precision -1: none); the precisions offered, @ the current one, on opening -> after
        addColumns<int, int, int, int, QString>({"unit", "decimals", "newUnit", "newDecimals", "offered"});
        const QString all = "1.0 0.1 0.01 0.001";
        QTest::newRow("ps to ns") << 12 << 0 << 2 << -1 << "1.0 @1.0 ps -> " + all + " @1.0";
        QTest::newRow("ns to us keeps 0.01") << 9 << 2 << 1 << -1 << all + " @0.01 ns -> " + all + " @0.01";
        QTest::newRow("us to ms, 0.001") << 6 << 0 << 0 << 3 << all + " @1.0 us -> " + all + " @0.001";
        QTest::newRow("ns to ps narrows") << 9 << 3 << 3 << -1 << all + " @0.001 ns -> 1.0 @1.0";
        QTest::newRow("unchanged") << 9 << 1 << 2 << -1 << all + " @0.1 ns -> " + all + " @0.1";
    }
    void timeSettings()
    {
        QFETCH(int, unit); QFETCH(int, decimals); QFETCH(int, newUnit); QFETCH(int, newDecimals);
        QByteArray text = kSmallDoc;
        text.replace("%SMALLESTUNIT = 9;", "%SMALLESTUNIT = " + QByteArray::number(unit) + ';');
        text.replace("%DECIMALS = 0;", "%DECIMALS = " + QByteArray::number(decimals) + ';');
        guitest::Tool t(text);
        setTimeDlg dialog(t.gui.get());
        dialog.show();
        const QString opened = items(dialog.precisionBox()) + ' ' + dialog.unitBox()->currentText();
        dialog.unitBox()->setCurrentIndex(newUnit);
        if (newDecimals >= 0)
            dialog.precisionBox()->setCurrentIndex(newDecimals);
        QTEST(opened + " -> " + items(dialog.precisionBox()), "offered");
        t->ResetDirtyBit();
        dialog.buttonBox()->button(QDialogButtonBox::Ok)->click();
        QVERIFY(dialog.result() == QDialog::Accepted && t->undoStack()->count() == 1 && t->isModified());
        QCOMPARE(qMakePair(t->document()->smallestUnit, t->document()->decimals),
                 qMakePair(newUnit * 3 + 3, dialog.precisionBox()->currentIndex()));
        t->ResetDirtyBit();
        t->undoStack()->undo();
        QCOMPARE(t.saved(), text);
        QVERIFY(t->isModified());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestFormDialogs)
#include "test_formdialogs.moc"
