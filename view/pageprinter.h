#pragma once

#include "viewport.h"
#include "waveview.h"

#include <QSize>

#include <functional>
#include <string>

class QPainter;

namespace kesu::toolvok {

class VokGUI;
class WaveData;

// Lays the document out on pages of a given printable area: the ruler on
// top, the names at the left, the waves at the page setup's time scale.
// Pages go down the waves first, then across the time axis.
class PagePrinter
{
public:
    static constexpr int RulerHeight = 60;

    PagePrinter(const VokGUI& gui, QSize area);

    // The time range the page setup asks for; empty when end <= start.
    static void printRange(const VokGUI& gui, quint64& start, quint64& end);

    // Paints every page of the range; newPage runs between two pages and
    // may refuse. Returns how many pages were painted.
    int printPages(QPainter& painter, const std::function<bool()>& newPage);

    // Paints one page and moves firstRow and pageStart on to the next one.
    void paintPage(QPainter* painter, int page, int& firstRow, quint64& pageStart, quint64 end);

    int startX() const { return g_startx; }
    // Draws every segment on its own: the reference the gathered picture
    // must equal pixel for pixel.
    void setDrawEverySegment(bool on) { direct_ = on; }

private:
    void paintRuler(QPainter& painter, quint64 pageStart);
    void paintWave(QPainter& painter, const WaveData& wave, int top, quint64 end);
    void paintSegment(QPainter& painter, const WaveData& wave, const std::string& value, float x, float w,
                      bool startedLeft);
    int paintColumn(const WaveData& wave, int first, int to, int column, quint64& t, quint64 end);
    void paintBus(QPainter& painter, const QString& text, float x, float w, bool startedLeft);
    void paintBox(QPainter& painter, bool dontCare, float x, float w);

    const VokGUI& gui_;
    int pagewidth;
    int pageheight;
    // Where the time axis starts: right of the name column.
    int g_startx = 0;
    int pps;
    // The page's own view of the time axis, x counted from g_startx.
    Viewport vp_;
    int high_ = 0, mid_ = 0, low_ = 0;
    std::string previousValue_;
    bool direct_ = false;
    WaveView::Batch* batch_ = nullptr;
    int primitives_ = 0;
};

} // namespace kesu::toolvok
