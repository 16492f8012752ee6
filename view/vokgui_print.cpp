// Printing and print preview of the document, and the page setup.
#include "vokgui.h"

#include "pageprinter.h"
#include "pagesetupdlg.h"
#include "progressgate.h"

#include <QFile>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace kesu::toolvok {

namespace {
// Prints every page of the range on the printer; an empty range begins no
// print job at all. A long print shows its progress; Cancel stops the job
// and takes away the file it was writing.
void printOn(VokGUI& gui, QPrinter* printer, QSize area)
{
    quint64 start = 0, end = 0;
    PagePrinter::printRange(gui, start, end);
    if (end <= start)
        return;
    ProgressGate progress(&gui, VokGUI::tr("Printing..."));
    const Progress pageDone = progress.callback();
    int pages = 0;
    QPainter painter(printer);
    PagePrinter(gui, area).printPages(painter, [&] { return pageDone(++pages, 0) && printer->newPage(); });
    if (!progress.cancelled())
        return;
    printer->abort();
    painter.end();
    if (!printer->outputFileName().isEmpty())
        QFile::remove(printer->outputFileName());
}
} // namespace

void VokGUI::paintPage(QPainter* painter, int page, int& firstRow, quint64& pageStart, quint64 end)
{
    const QRect area = painter->viewport();
    PagePrinter(*this, area.size()).paintPage(painter, page, firstRow, pageStart, end);
}

void VokGUI::filePrint()
{
    QPrintDialog dialog(m_printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // The printer's page less a fixed border.
    const QRect page = m_printer->pageRect(QPrinter::DevicePixel).toRect();
    printOn(*this, m_printer, QSize(page.width() - 50, page.height() - 50));
}

void VokGUI::filePrintPreview()
{
    QPrintPreviewDialog preview(m_printer, this);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, &VokGUI::PreviewPages);
    preview.exec();
}

void VokGUI::PreviewPages(QPrinter* printer)
{
    // The preview takes the page margins off instead of the fixed border.
    const QRect page = printer->pageRect(QPrinter::DevicePixel).toRect();
    const QMargins margins = printer->pageLayout().marginsPixels(printer->resolution());
    printOn(*this, printer,
            QSize(page.width() - margins.left() - margins.right(), page.height() - margins.top() - margins.bottom()));
}

void VokGUI::filePageSetup()
{
    PageSetupDlg(m_printer, this).exec();
}

} // namespace kesu::toolvok
