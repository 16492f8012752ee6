// Printed pages: what one page shows at the page setup's scale, how a range
// is cut into pages, a print to a PDF file, and the page setup dialog.
#include "guifixture.h"
#include "modalanswerer.h"
#include "pageprinter.h"
#include "pagesetupdlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPrinter>
#include <QSpinBox>

#include "sandboxedtestmain.h"

using namespace guitest;

namespace {
const QRgb Blue = QColor(Qt::blue).rgb();
const QRgb Red = QColor(Qt::red).rgb();
const QRgb Black = QColor(Qt::black).rgb();
const QRgb White = QColor(Qt::white).rgb();

// A signal 0, 1, 0 ten steps each, and a bus 5 then don't care.
const QByteArray Pair = wdl({"a { A I Default NRZ 0 1 50 } = 0 10 1 10 0 10;",
                             "b[3:0] { A I Default NRZ 0 1 50 } = 5 10 DonTCare 10;"});

int count(const QImage& image, QRgb color, QRect area)
{
    int n = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            n += image.pixel(x, y) == color;
    return n;
}

QByteArray waves(int n)
{
    QList<QByteArray> lines;
    for (int i = 0; i < n; ++i)
        lines << QByteArray("w") + QByteArray::number(i) + " { A I Default NRZ 0 1 50 } = 0 10 1 10;";
    return wdl(lines);
}

void setRange(VokGUI& gui, quint64 start, quint64 end)
{
    PrintSettings& s = gui.printSettings();
    s.printRangeType = PrintSettings::Customized;
    s.printStart = start;
    s.printEnd = end;
}
} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstPage_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<bool>("names");
        QTest::addColumn<bool>("ruler");
        QTest::addColumn<int>("startX");
        QTest::newRow("2 px per step, bare") << 10 << false << false << 0;
        QTest::newRow("20 px per step, names") << 100 << true << false << 6 * 8 + 10;
        QTest::newRow("40 px per step, names and ruler") << 200 << true << true << 6 * 8 + 10;
        QTest::newRow("20 px per step, ruler") << 100 << false << true << 0;
    }
    void firstPage()
    {
        QFETCH(int, scale);
        QFETCH(bool, names);
        QFETCH(bool, ruler);
        QFETCH(int, startX);
        Tool tool(Pair);
        tool->changeStep(1);
        PrintSettings& s = tool->printSettings();
        s = PrintSettings{};
        s.timeScale = scale;
        s.printName = names;
        s.printRuler = ruler;
        QImage page(1400, 600, QImage::Format_RGB32);
        page.fill(Qt::white);
        PagePrinter printer(*tool.gui, page.size());
        QCOMPARE(printer.startX(), startX);
        int firstRow = 0;
        quint64 pageStart = 0;
        {
            QPainter painter(&page);
            printer.paintPage(&painter, 0, firstRow, pageStart, tool->getMaxEnd());
        }
        const int pps = scale / 5;
        const int top = ruler ? 60 : 0;
        auto at = [&](int step, int y) { return page.pixel(startX + step * pps, top + y); };
        // The signal: low, the rising edge, high, the falling edge.
        QCOMPARE(at(5, 40), Blue);
        QCOMPARE(at(5, 10), White);
        QCOMPARE(at(10, 25), Blue);
        QCOMPARE(at(15, 10), Blue);
        QCOMPARE(at(15, 40), White);
        QCOMPARE(at(20, 25), Blue);
        QCOMPARE(at(25, 40), Blue);
        // Nothing past the range's end.
        QCOMPARE(count(page, Blue, QRect(startX + 31 * pps, top, 1400 - startX - 31 * pps, 80)), 0);
        // The bus outline, then the don't-care box in red.
        QCOMPARE(at(7, 40 + 10), Blue);
        QCOMPARE(at(7, 40 + 40), Blue);
        QVERIFY(count(page, Red, QRect(startX + 10 * pps + 1, top + 50, 10 * pps - 2, 30)) > 0);
        // A dotted line under every row, across the page.
        QVERIFY(count(page, Black, QRect(0, top + 48, 1000, 1)) > 100);
        QVERIFY(count(page, Black, QRect(0, top + 88, 1000, 1)) > 100);
        // The names and their separator.
        QCOMPARE(count(page, Black, QRect(0, top + 1, qMax(1, startX - 1), 38)) > 0, names);
        QCOMPARE(page.pixel(startX, 300) == Black, names);
        // The ruler's line and labels.
        QCOMPARE(page.pixel(1390, 60) == Black, ruler);
        QCOMPARE(count(page, Black, QRect(startX + 1, 44, 1390 - startX, 3)) > 0, ruler);
        // One page held it all: the next starts a page width later.
        QCOMPARE(firstRow, 0);
        QCOMPARE(pageStart, qMin<quint64>(tool->getMaxEnd(), quint64((1400 - startX) / pps)));
    }

    void pages_data()
    {
        QTest::addColumn<int>("waves");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("scale");
        QTest::addColumn<quint64>("start");
        QTest::addColumn<quint64>("end");
        QTest::addColumn<int>("pages");
        // 1000 pixels wide: 50 steps a page at 20 px, 500 at 2 px; the
        // ruler and 13 rows fit 600 pixels.
        QTest::newRow("one page") << 2 << 600 << 100 << quint64(0) << quint64(40) << 1;
        QTest::newRow("rows past the bottom") << 20 << 600 << 100 << quint64(0) << quint64(40) << 2;
        QTest::newRow("rows, then time") << 20 << 600 << 100 << quint64(0) << quint64(120) << 6;
        QTest::newRow("time at 2 px per step") << 2 << 600 << 10 << quint64(0) << quint64(1200) << 3;
        QTest::newRow("empty range") << 2 << 600 << 100 << quint64(40) << quint64(40) << 0;
        QTest::newRow("reversed range") << 2 << 600 << 100 << quint64(40) << quint64(10) << 0;
        QTest::newRow("too short for a row") << 3 << 90 << 100 << quint64(0) << quint64(400) << 1;
    }
    void pages()
    {
        QFETCH(int, waves);
        QFETCH(int, height);
        QFETCH(int, scale);
        QFETCH(quint64, start);
        QFETCH(quint64, end);
        QFETCH(int, pages);
        Tool tool(::waves(waves));
        tool->changeStep(1);
        tool->printSettings() = PrintSettings{};
        tool->printSettings().printName = false;
        tool->printSettings().timeScale = scale;
        setRange(*tool.gui, start, end);
        QImage page(1000, height, QImage::Format_RGB32);
        QPainter painter(&page);
        QCOMPARE(PagePrinter(*tool.gui, page.size()).printPages(painter, [] { return true; }), pages);
    }

    void printsToPdf()
    {
        Tool tool(waves(40));
        tool->changeStep(1);
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("out.pdf"));
        QPrinter printer(QPrinter::ScreenResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        tool->PreviewPages(&printer);
        QFile file(pdf);
        QVERIFY(file.open(QIODevice::ReadOnly));
        // 40 rows do not fit one page: the walk goes down before it goes on.
        QVERIFY(file.readAll().count("/Type /Page\n") >= 2);

        setRange(*tool.gui, 10, 10);
        const QString none = dir.filePath(QStringLiteral("none.pdf"));
        printer.setOutputFileName(none);
        tool->PreviewPages(&printer);
        QVERIFY(!QFile::exists(none));
    }

    void customizedRange_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("error");
        QTest::newRow("no start") << "" << "20" << "Please input Start Time.";
        QTest::newRow("bad start") << "x1" << "20" << "Invalid Start Time.";
        QTest::newRow("no end") << "5" << "" << "Please input End Time.";
        QTest::newRow("bad end") << "5" << "2..0" << "Invalid End Time.";
        QTest::newRow("taken") << "5" << "20" << "";
    }
    void customizedRange()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, error);
        Tool tool(Pair);
        PageSetupDlg dlg(tool->printer(), tool.gui.get());
        QCOMPARE(dlg.windowTitle(), QStringLiteral("Page Setup"));
        QCOMPARE(dlg.rangeBox()->itemText(2), QStringLiteral("Print Cusomized Range"));
        QVERIFY(!dlg.startEdit()->isEnabled());
        dlg.rangeBox()->setCurrentIndex(2);
        QVERIFY(dlg.startEdit()->isEnabled());
        dlg.startEdit()->setText(start);
        dlg.endEdit()->setText(end);
        dlg.scaleBox()->setValue(35);
        dlg.rulerBox()->setChecked(false);
        ModalAnswerer answerer(error.isEmpty() ? QList<Answer>{} : QList<Answer>{press(QMessageBox::Ok)});
        dlg.buttonBox()->button(QDialogButtonBox::Ok)->click();
        VERIFY_ANSWERED(answerer);
        QCOMPARE(answerer.said(), error.isEmpty() ? QStringList{} : QStringList{error});
        const PrintSettings& s = tool->printSettings();
        QCOMPARE(dlg.result(), error.isEmpty() ? int(QDialog::Accepted) : 0);
        QCOMPARE(s.printRangeType, error.isEmpty() ? 2 : 0);
        QCOMPARE(s.timeScale, error.isEmpty() ? 35 : 100);
        QCOMPARE(s.printRuler, !error.isEmpty());
        if (error.isEmpty())
            QCOMPARE(std::make_pair(s.printStart, s.printEnd), std::make_pair(quint64(5), quint64(20)));
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
            QVERIFY(dlg.rangeBox()->isEnabled() && dlg.scaleBox()->isEnabled() && !dlg.startEdit()->isReadOnly());
            dlg.startEdit()->setText(QString::fromLatin1(start));
            dlg.endEdit()->setText(QString::fromLatin1(end));
            dlg.fitBox()->setChecked(true);
            QVERIFY(!dlg.rangeBox()->isEnabled() && !dlg.scaleBox()->isEnabled() && dlg.startEdit()->isReadOnly());
            QVERIFY(tool->printSettings().fitPage);
        };
        // Three steps across a page: as wide as the scale goes; thousands:
        // as narrow.
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
        dlg.fitBox()->setChecked(false);
        QVERIFY(!tool->printSettings().fitPage);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestPrinting)

#include "test_printing.moc"
