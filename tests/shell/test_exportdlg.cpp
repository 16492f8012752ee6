// The Export dialog as a user drives it: proposed names, refusals, a failed export, browsing, help.
#include "basehelp.h"
#include "exportdlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "files.h"
#include "modalanswerer.h"
#include "sandboxedtestmain.h"

using namespace kesu::toolvok;

namespace {

const char* const counter = VOK_SOURCE_DIR "/examples/counter.wdl";

QLineEdit* edit(ExportDlg& dialog, const char* name) { return dialog.findChild<QLineEdit*>(QLatin1String(name)); }

} // namespace

class TestExportDlg : public QObject
{
    Q_OBJECT

    QTemporaryDir tmp_;

private Q_SLOTS:
    void proposesNamesAndFollowsTheType()
    {
        ExportDlg dialog(QStringLiteral("/work/d.x/design.wdl"), nullptr);
        auto* type = dialog.findChild<QComboBox*>();
        QCOMPARE(edit(dialog, "input")->text(), QStringLiteral("/work/d.x/design.wdl"));
        QCOMPARE(edit(dialog, "output")->text(), QStringLiteral("/work/d.x/design.tf"));
        for (const QString& ext : {"vht", "tb"}) {
            type->setCurrentText(ext);
            QCOMPARE(edit(dialog, "output")->text(), "/work/d.x/design." + ext);
        }
        ExportDlg noDot(QStringLiteral("design"), nullptr);
        QCOMPARE(edit(noDot, "output")->text(), QStringLiteral("design.tf"));
    }

    void ok_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");   // "@" is the temporary folder
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("title");    // of the box that comes up; empty for none
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("written");   // how the output file begins afterwards
        const QString error = QStringLiteral("Waveform Editor");
        QTest::newRow("no input") << "" << "@/a.tf" << 0 << error << "Please input file name." << QByteArray();
        QTest::newRow("no output") << counter << "" << 0 << error << "Please input file name." << QByteArray();
        QTest::newRow("missing input") << "@/none.wdl" << "@/a.tf" << 0 << error << "The input file does not exist."
                                       << QByteArray();
        QTest::newRow("output folder missing") << counter << "@/none/a.tf" << 0 << error
                                               << "Cannot open output file for writing." << QByteArray();
        QTest::newRow("new output") << counter << "@/new.vht" << 1 << "" << "" << QByteArray("-- VHDL test vectors of counter.wdl");
        QTest::newRow("export fails") << "@/clash.wdl" << "@/clash.vht" << 1 << "Error" << "Error is found when exporting."
                                      << QByteArray();
    }
    void ok()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(int, type);
        QFETCH(QString, title);
        QFETCH(QString, text);
        QFETCH(QByteArray, written);
        QVERIFY(testfiles::writeFile(tmp_.filePath(QStringLiteral("clash.wdl")),
                                     "a { A I Default NRZ 0 1 50 } = 1 5;\nA { A I Default NRZ 0 1 50 } = 0 5;\n"));
        input.replace(QLatin1Char('@'), tmp_.path());
        output.replace(QLatin1Char('@'), tmp_.path());

        ExportDlg dialog(QString(counter), nullptr);
        dialog.findChild<QComboBox*>()->setCurrentIndex(type);
        edit(dialog, "input")->setText(input);
        edit(dialog, "output")->setText(output);
        dialog.show();
        ModalAnswerer answerer(title.isEmpty() ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        QTRY_COMPARE(answerer.seen.size(), title.isEmpty() ? 0 : 1);
        VERIFY_ANSWERED(answerer);
        if (!title.isEmpty()) {
            QCOMPARE(answerer.seen.first().title, title);
            QCOMPARE(answerer.seen.first().text, text);
            QCOMPARE(answerer.seen.first().icon, QMessageBox::Critical);
        }
        // A refusal keeps the dialog open as typed; an export, failed or not, closes it.
        const bool refused = title.startsWith(QLatin1String("Waveform"));
        QCOMPARE(dialog.isVisible(), refused);
        QCOMPARE(dialog.result(), refused ? 0 : int(QDialog::Accepted));
        QCOMPARE(edit(dialog, "output")->text(), output);
        // The output is made before the export runs, so a failed one leaves it empty.
        QCOMPARE(QFile::exists(output), !refused);
        QVERIFY2(testfiles::readFile(output).startsWith(written), testfiles::readFile(output).left(80).constData());
    }

    void browseAndHelp()
    {
        ExportDlg dialog(QString(counter), nullptr);
        dialog.findChild<QComboBox*>()->setCurrentIndex(2);
        dialog.show();
        const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly);
        ModalAnswerer answerer({choose(QStringLiteral(VOK_SOURCE_DIR "/examples/cpu_bus.wdl")), choose(QString(counter))});
        buttons.at(0)->click();
        buttons.at(1)->click();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.seen.at(0).title, QStringLiteral("Open Existing Waveform File"));
        QCOMPARE(answerer.seen.at(0).filters, (QStringList{"Waveform File (*.wdl)", "All Files (*)"}));
        QCOMPARE(answerer.seen.at(1).title, QStringLiteral("Select Output File"));
        QCOMPARE(answerer.seen.at(1).filters, (QStringList{"VHDL Test Bench(*.tb)", "All Files (*)"}));
        QCOMPARE(answerer.seen.at(1).acceptMode, QFileDialog::AcceptOpen);
        QCOMPARE(edit(dialog, "input")->text(), QStringLiteral(VOK_SOURCE_DIR "/examples/cpu_bus.wdl"));
        QCOMPARE(edit(dialog, "output")->text(), QString(counter));

        QTest::keyRelease(edit(dialog, "output"), Qt::Key_F1);
        QCOMPARE(BaseHelp::currentPage(), QStringLiteral(":/help/export_wave.html"));
        QVERIFY(!dialog.findChild<QComboBox*>()->whatsThis().isEmpty());
        BaseHelp::helpWindow()->hide();
    }
};

VOK_SANDBOXED_TEST_MAIN(TestExportDlg)
#include "test_exportdlg.moc"
