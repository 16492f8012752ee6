#pragma once

#include "printsettings.h"
#include "rowstyle.h"
#include "viewport.h"

#include <QSize>

#include <functional>
#include <string>

class QPainter;

namespace kesu::toolvok {

class WaveData;
class WaveformData;

// Lays a document out on pages of a given printable area: the ruler on top,
// the names at the left, the waves at the page setup's time scale. Pages go
// down the waves first, then across the time axis. Needs no widgets, so a
// printer, a PDF or SVG file and an image all get the same pages.
class PagePainter
{
public:
    static constexpr int RulerHeight = 60;

    // step: time units per step on the page's time axis.
    PagePainter(const WaveformData& document, const PrintSettings& settings, quint64 step, const RowStyle& style,
                QSize area);

    // Paints every page of [start, end); newPage runs between two pages and
    // may refuse. Returns how many pages were painted; none for an empty range.
    int printPages(QPainter& painter, quint64 start, quint64 end, const std::function<bool()>& newPage);

    // Paints one page and moves firstRow and pageStart on to the next one.
    void paintPage(QPainter* painter, int page, int& firstRow, quint64& pageStart, quint64 end);

    int startX() const { return g_startx; }
    // The width of the name column the settings give for the document.
    static int nameColumn(const WaveformData& document, const PrintSettings& settings);
    // Draws every segment on its own: the reference the gathered picture
    // must equal pixel for pixel.
    void setDrawEverySegment(bool on) { direct_ = on; }

private:
    void paintRuler(QPainter& painter, quint64 pageStart);
    void paintWave(QPainter& painter, const WaveData& wave, int top, quint64 end);

    const WaveformData& document_;
    const PrintSettings settings_;
    const RowStyle style_;
    int pagewidth;
    int pageheight;
    // Where the time axis starts: right of the name column.
    int g_startx = 0;
    int pps;
    // The page's own view of the time axis, x counted from g_startx.
    Viewport vp_;
    std::string previousValue_;
    bool direct_ = false;
    int primitives_ = 0;
};

} // namespace kesu::toolvok
