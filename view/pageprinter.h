#pragma once

#include "pagepainter.h"

namespace kesu::toolvok {

class VokGUI;

// The tool window's pages: its document, print settings, step and colours
// laid out by the page painter.
class PagePrinter : public PagePainter
{
public:
    PagePrinter(const VokGUI& gui, QSize area);

    // The time range the page setup asks for; empty when end <= start.
    static void printRange(const VokGUI& gui, quint64& start, quint64& end);

    // Paints every page of the page setup's range.
    int printPages(QPainter& painter, const std::function<bool()>& newPage);

private:
    const VokGUI& gui_;
};

} // namespace kesu::toolvok
