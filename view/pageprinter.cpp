#include "pageprinter.h"

#include "vokgui.h"

#include <QGuiApplication>

namespace kesu::toolvok {

PagePrinter::PagePrinter(const VokGUI& gui, QSize area)
    : PagePainter(*gui.document(), gui.printSettings(), gui.step(), gui.rowStyle(QGuiApplication::font()), area),
      gui_(gui)
{
}

void PagePrinter::printRange(const VokGUI& gui, quint64& start, quint64& end)
{
    const PrintSettings& s = gui.printSettings();
    switch (s.printRangeType) {
    case PrintSettings::CurrentRange:
        start = gui.startTime();
        end = gui.getEndTime();
        break;
    case PrintSettings::Customized:
        start = s.printStart;
        end = s.printEnd;
        break;
    default:
        start = 0;
        end = gui.getMaxEnd();
    }
}

int PagePrinter::printPages(QPainter& painter, const std::function<bool()>& newPage)
{
    quint64 start = 0, end = 0;
    printRange(gui_, start, end);
    return PagePainter::printPages(painter, start, end, newPage);
}

} // namespace kesu::toolvok
