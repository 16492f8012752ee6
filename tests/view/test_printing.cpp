// Printed pages: one page at the setup's scale, ranges cut into pages, PDF output, page setup.
#include "guifixture.h"
#include "modalanswerer.h"
#include "pageprinter.h"
#include "pagesetupdlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPainter>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QSpinBox>

using namespace guitest;

namespace {
const QRgb Blue = qRgb(0, 0, 255), Red = qRgb(255, 0, 0), Black = qRgb(0, 0, 0), White = qRgb(255, 255, 255);

// a: 0, 1, 0 ten steps each; b: 5 then don't care; c: 1 then 0 five each (offset and tail below).
const QByteArray Pair = wdl({"a { A I Default NRZ 0 1 50 } = 0 10 1 10 0 10;",
                             "b[3:0] { A I Default NRZ 0 1 50 } = 5 10 DonTCare 10;",
                             "c { A I Default NRZ 0 1 50 } = 1 5 0 5;"});

QByteArray waves(int n)
{
    QList<QByteArray> lines;
    for (int i = 0; i < n; ++i)
        lines << QByteArray("w") + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 10 1 10;";
    return wdl(lines);
}

// Thousands of segments of 1 to 30 ticks a row, now and then a wide one.
QByteArray crowded()
{
    QByteArray a = "a { A I Default NRZ 0 1 50 } =", c = "c { A I Default NRZ 0 1 50 } =", b = "b[3:0] { A I Default NRZ 0 1 50 } =";
    for (int j = 0; j < 6000; ++j) {
        const QByteArray d = " " + QByteArray::number(j % 300 == 0 ? 1500 : 1 + j * j % 29);
        a += (j % 97 == 0 ? " DonTCare" : j * 7 % 3 ? " 1" : " 0") + d;
        c += QByteArray(j % 13 ? " 1" : " 0") + d;
        b += " " + QByteArray::number(j % 16, 16) + d;
    }
    return wdl({a + ";", b + ";", c + ";"});
}
} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstPage_data()
    {
        addColumns<int, bool, bool>({"scale", "names", "ruler"});
        QTest::newRow("2 px per step, bare") << 10 << false << false;
        QTest::newRow("20 px per step, names") << 100 << true << false;
        QTest::newRow("40 px per step, names and ruler") << 200 << true << true;
        QTest::newRow("20 px per step, ruler") << 100 << false << true;
    }
    void firstPage()
    {
        QFETCH(int, scale); QFETCH(bool, names); QFETCH(bool, ruler);
        Tool tool(Pair);
        tool->changeStep(1);
        tool.wave("c")->offset = 10;
        tool.wave("c")->foreverIndex = 0;
        tool->printSettings() = {0, 0, PrintSettings::All, scale, names, false, ruler};
        QImage page(1400, 600, QImage::Format_RGB32);
        page.fill(Qt::white);
        PagePrinter printer(*tool.gui, page.size());
        // The name column: "b[3:0]" at 8 pixels a character, and 10 more.
        const int startX = names ? 58 : 0;
        QCOMPARE(printer.startX(), startX);
        int firstRow = 0;
        quint64 pageStart = 0;
        QPainter painter(&page);
        printer.paintPage(&painter, 0, firstRow, pageStart, tool->getMaxEnd());
        painter.end();
        const int pps = scale / 5, top = ruler ? 60 : 0;
        auto at = [&](int step, int y) { return page.pixel(startX + step * pps, top + y); };
        // a's low, edges and high; b's outline; c low before its offset, then its tail to the end.
        const std::tuple<int, int, QRgb> probes[] = {
            {5, 40, Blue},  {5, 10, White}, {10, 25, Blue}, {15, 10, Blue},  {15, 40, White}, {20, 25, Blue},
            {25, 40, Blue}, {7, 50, Blue},  {7, 80, Blue},  {5, 120, Blue},  {12, 90, Blue},  {17, 120, Blue},
            {22, 90, Blue}, {27, 120, Blue}, {32, 120, White}};
        for (const auto& [step, y, color] : probes)
            QVERIFY2(at(step, y) == color, qPrintable(QStringLiteral("step %1, y %2").arg(step).arg(y)));
        QCOMPARE(count(page, Blue, QRect(startX + 31 * pps, top, 1400 - startX - 31 * pps, 80)), 0);
        QVERIFY(count(page, Red, QRect(startX + 10 * pps + 1, top + 50, 10 * pps - 2, 30)) > 0);
        // Dotted lines under the rows; the names and their separator; the ruler.
        QVERIFY(count(page, Black, QRect(0, top + 48, 1000, 1)) > 100);
        QCOMPARE(std::tuple(count(page, Black, QRect(0, top + 1, qMax(1, startX - 1), 38)) > 0,
                            page.pixel(startX, 300) == Black, page.pixel(1390, 60) == Black,
                            count(page, Black, QRect(startX + 1, 44, 1390 - startX, 3)) > 0),
                 std::tuple(names, names, ruler, ruler));
        // One page held it all: the next starts a page width later.
        QCOMPARE(pageStart, qMin<quint64>(tool->getMaxEnd(), quint64((1400 - startX) / pps)));
    }

    void pages_data()
    {
        // waves 0: crowded(), at 100 units a step
        addColumns<int, int, int, quint64, int>({"waves", "height", "scale", "end", "pages"});
        // From 40, 1000 px wide: 50 steps a page at 20 px, 500 at 2 px; ruler and 13 rows fit 600 px.
        QTest::newRow("one page") << 2 << 600 << 100 << quint64(80) << 1;
        QTest::newRow("rows past the bottom") << 20 << 600 << 100 << quint64(80) << 2;
        QTest::newRow("rows, then time") << 20 << 600 << 100 << quint64(160) << 6;
        QTest::newRow("time at 2 px per step") << 2 << 600 << 10 << quint64(1240) << 3;
        QTest::newRow("empty range") << 2 << 600 << 100 << quint64(40) << 0;
        QTest::newRow("too short for a row") << 3 << 90 << 100 << quint64(440) << 1;
        // Dozens of segments a pixel column, drawn once a column.
        QTest::newRow("crowded") << 0 << 600 << 10 << quint64(100040) << 2;
        QTest::newRow("crowded, finer") << 0 << 600 << 40 << quint64(30040) << 3;
    }
    void pages()
    {
        QFETCH(int, waves); QFETCH(int, height); QFETCH(int, scale); QFETCH(quint64, end);
        Tool tool(waves ? ::waves(waves) : crowded());
        tool->changeStep(waves ? 1 : 100);
        tool->printSettings() = {40, end, PrintSettings::Customized, scale, false};
        // Pages painted column by column look exactly as with every segment drawn.
        QImage picture[2];
        for (bool every : {false, true}) {
            QImage& page = picture[every];
            page = QImage(1000, height, QImage::Format_RGB32);
            page.fill(Qt::white);
            QPainter painter(&page);
            PagePrinter printer(*tool.gui, page.size());
            printer.setDrawEverySegment(every);
            QTEST(printer.printPages(painter, [] { return true; }), "pages");
        }
        QCOMPARE(picture[0], picture[1]);
    }

    // The menu commands, with their dialogs answered as a user would.
    void commands()
    {
        Tool tool(waves(40));
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("print.pdf"));
        tool->printer()->setOutputFormat(QPrinter::PdfFormat);
        tool->printer()->setOutputFileName(pdf);
        int previewed = 0;
        const auto accept = [](QWidget* w) { static_cast<QDialog*>(w)->accept(); };
        auto preview = [&](QWidget* w) { previewed = w->findChild<QPrintPreviewWidget*>()->pageCount(); w->close(); };
        const auto ok = [](QWidget* w) { w->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click(); };
        ModalAnswerer answerer({act(accept), act(preview), act(ok)});
        tool->filePrint();
        QVERIFY(toolfixture::readFile(pdf).count("/Type /Page\n") >= 2);
        tool->filePrintPreview();
        QVERIFY(previewed >= 2);
        // OK stores what the dialog was opened with.
        tool->printSettings().timeScale = 50;
        tool->filePageSetup();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(tool->printSettings().timeScale, 50);
    }

    // File > Export Image...: the view's range at the screen's scale.
    void exportImage()
    {
        Tool tool(Pair);
        tool->changeStep(1);
        tool->printSettings().printName = tool->printSettings().printRuler = false;
        QTemporaryDir dir;
        const QString png = dir.filePath(QStringLiteral("view.png"));
        ModalAnswerer answerer({choose(png), press(QMessageBox::Ok)});
        tool->action(VokGUI::ActExportImage)->trigger();
        const QImage image(png);
        QCOMPARE(image.size(), QSize(int(tool->getEndTime() - tool->startTime()) * 20 + 12, 3 * 40 + 10));
        // Signal a low and the bus's top edge from the view's left edge on.
        expectPixels(image, {{10, 40, Blue}, {10, 50, Blue}});
        // Only the three formats are written.
        QVERIFY(!tool->exportImage(dir.filePath(QStringLiteral("view.jpg"))));
        VERIFY_ANSWERED(answerer);
        QVERIFY(answerer.said().value(1).contains(QStringLiteral("not a .pdf, .svg or .png")));
    }

    void customizedRange_data()
    {
        addColumns<QString, QString, QString>({"start", "end", "error"});
        QTest::newRow("no start") << "" << "20" << "Please input Start Time.";
        QTest::newRow("bad start") << "x1" << "20" << "Invalid Start Time.";
        QTest::newRow("no end") << "5" << "" << "Please input End Time.";
        QTest::newRow("bad end") << "5" << "2..0" << "Invalid End Time.";
        QTest::newRow("taken") << "5" << "20" << "";
    }
    void customizedRange()
    {
        QFETCH(QString, start); QFETCH(QString, end); QFETCH(QString, error);
        Tool tool(Pair);
        PageSetupDlg dlg(tool->printer(), tool.gui.get());
        QCOMPARE(dlg.rangeBox()->itemText(2), QStringLiteral("Print Cusomized Range"));
        dlg.rangeBox()->setCurrentIndex(2);
        dlg.startEdit()->setText(start);
        dlg.endEdit()->setText(end);
        dlg.scaleBox()->setValue(35);
        dlg.rulerBox()->setChecked(false);
        const bool taken = error.isEmpty();
        ModalAnswerer answerer(taken ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
        dlg.buttonBox()->button(QDialogButtonBox::Ok)->click();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), taken ? QStringList{} : QStringList{error});
        const PrintSettings& s = tool->printSettings();
        QCOMPARE(dlg.result(), taken ? int(QDialog::Accepted) : 0);
        QCOMPARE(std::tuple(s.printRangeType, s.timeScale, s.printRuler, s.printStart),
                 taken ? std::tuple(2, 35, false, quint64(5)) : std::tuple(0, 100, true, quint64(0)));
    }

    void fitPage()
    {
        Tool tool(Pair);
        tool->changeStep(1);
        PageSetupDlg dlg(tool->printer(), tool.gui.get());
        dlg.nameBox()->setChecked(false);
        dlg.rangeBox()->setCurrentIndex(2);
        auto fit = [&](const char* start, const char* end) {
            dlg.fitBox()->setChecked(false);
            dlg.startEdit()->setText(QString::fromLatin1(start));
            dlg.endEdit()->setText(QString::fromLatin1(end));
            dlg.fitBox()->setChecked(true);
            QVERIFY(!dlg.rangeBox()->isEnabled() && !dlg.scaleBox()->isEnabled() && dlg.startEdit()->isReadOnly());
        };
        // Three steps across a page: the widest scale; thousands: the narrowest.
        fit("7", "10");
        QCOMPARE(dlg.scaleBox()->value(), 200);
        fit("0", "5000");
        QCOMPARE(dlg.scaleBox()->value(), 10);
        // A range of no length keeps the scale it had.
        dlg.fitBox()->setChecked(false);
        dlg.scaleBox()->setValue(42);
        fit("7", "7");
        QCOMPARE(dlg.scaleBox()->value(), 42);
        // 25 steps, then room for the names: a narrower page, a smaller scale.
        fit("7", "32");
        const int bare = dlg.scaleBox()->value();
        dlg.nameBox()->setChecked(true);
        QVERIFY2(dlg.scaleBox()->value() < bare && bare < 200, qPrintable(QString::number(bare)));
        // The paper set up for printing counts: sideways, the range is drawn wider.
        tool->printer()->setPageOrientation(QPageLayout::Landscape);
        dlg.nameBox()->setChecked(false);
        QVERIFY(dlg.scaleBox()->value() > bare);
        QVERIFY(tool->printSettings().fitPage);
        dlg.fitBox()->setChecked(false);
        QVERIFY(!tool->printSettings().fitPage && dlg.rangeBox()->isEnabled() && dlg.scaleBox()->isEnabled());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestPrinting)

#include "test_printing.moc"
