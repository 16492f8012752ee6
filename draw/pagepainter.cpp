// Printed pages: the ruler, the name column and the waves of one page at the
// page setup's scale, and the walk over pages down the waves and across time.
#include "pagepainter.h"

#include "rowpainter.h"
#include "wavedata.h"
#include "waveformdata.h"

#include <QPainter>

namespace kesu::toolvok {

PagePainter::PagePainter(const WaveformData& document, const PrintSettings& settings, quint64 step,
                         const RowStyle& style, QSize area)
    : document_(document),
      settings_(settings),
      style_(style),
      pagewidth(area.width()),
      pageheight(area.height()),
      g_startx(nameColumn(document, settings)),
      pps(settings.pixelsPerStep())
{
    vp_.pixelsPerStep = pps;
    vp_.setStep(step);
}

int PagePainter::nameColumn(const WaveformData& document, const PrintSettings& settings)
{
    if (!settings.printName)
        return 0;
    qsizetype longest = 0;
    for (const WaveData* wave : std::as_const(document.waves))
        longest = qMax(longest, wave->name.length());
    return static_cast<int>(longest) * 8 + 10;
}

int PagePainter::printPages(QPainter& painter, quint64 pageStart, quint64 end, const std::function<bool()>& newPage)
{
    if (end <= pageStart)
        return 0;
    int firstRow = 0;
    int page = 0;
    for (;;) {
        paintPage(&painter, page++, firstRow, pageStart, end);
        if (pageStart >= end || !newPage())
            return page;
    }
}

void PagePainter::paintPage(QPainter* painter, int /*page*/, int& firstRow, quint64& pageStart, quint64 end)
{
    const int header = settings_.printRuler ? RulerHeight : 0;
    painter->save();
    painter->setFont(style_.font);
    previousValue_ = "-1";
    vp_.startTime = pageStart;
    if (settings_.printRuler)
        paintRuler(*painter, pageStart);

    const QList<WaveData*>& waves = document_.waves;
    const int count = static_cast<int>(waves.size());
    bool full = false;
    int row = firstRow;
    for (; row < count; ++row) {
        const int top = Viewport::RowHeight * (row - firstRow) + header;
        const int low = top + Viewport::LowLevel;
        if (low > pageheight) {
            full = true;
            break;
        }
        const WaveData& wave = *waves.at(row);
        if (settings_.printName) {
            painter->setPen(Qt::black);
            painter->drawText(0, top + Viewport::MidLevel + 5, wave.name);
        }
        paintWave(*painter, wave, top, end);
        painter->setPen(QPen(Qt::black, 1, Qt::DotLine));
        painter->drawLine(0, low + 8, pagewidth, low + 8);
    }
    if (settings_.printName) {
        painter->setPen(Qt::black);
        painter->drawLine(g_startx, header, g_startx, pageheight);
    }
    painter->restore();

    if (full && row > firstRow) {
        firstRow = row;
        return;
    }
    firstRow = 0;
    // A page that holds not even one row would repeat for ever: the print
    // ends with it.
    if (full) {
        pageStart = end;
        return;
    }
    // Every wave is on the page: move on in time. A page too narrow for one
    // step still moves on by one, so that the walk over the range ends.
    const quint64 steps = quint64(qMax(1, (pagewidth - g_startx) / pps));
    const quint64 advance = steps * vp_.step;
    pageStart = advance > end - qMin(end, pageStart) ? end : pageStart + advance;
}

void PagePainter::paintRuler(QPainter& painter, quint64 pageStart)
{
    painter.setPen(Qt::black);
    painter.drawLine(0, RulerHeight, pagewidth, RulerHeight);
    const quint64 step = vp_.step;
    int x = g_startx;
    quint64 t = pageStart;
    if (t % (10 * step) != 0) {
        t = t / step * step;
        const quint64 k = t / step;
        // Only the quotient decides: past the tenth step a page starts
        // straight away with a labelled tick.
        for (quint64 i = 0; k != 0 && k < 10 && i < 10 - k; ++i) {
            painter.drawLine(x, 50, x, RulerHeight);
            x += pps;
            t += step;
        }
    }
    while (x <= pagewidth) {
        const QString label = TimeText::timeString(t, false, document_.smallestUnit, document_.decimals);
        const int half = 5 * static_cast<int>(label.length());
        x = qMax(x, half);
        painter.drawLine(x, 45, x, RulerHeight);
        painter.drawText(x - half, 40, label);
        for (int i = 0; i < 9; ++i) {
            x += pps;
            t += step;
            if (x >= pagewidth)
                return;
            painter.drawLine(x, 50, x, RulerHeight);
        }
        x += pps;
        t += step;
    }
}

void PagePainter::paintWave(QPainter& painter, const WaveData& wave, int top, quint64 end)
{
    painter.save();
    painter.setClipRect(QRect(g_startx, top, pagewidth - g_startx + 1, Viewport::RowHeight + 1));
    painter.translate(g_startx, 0);
    {
        LineBatch batch(painter, primitives_, direct_, style_.dontCare);
        RowPainter row(batch, style_, vp_);
        row.setTop(top);
        row.drawRow(wave, end, static_cast<float>(pagewidth - g_startx), previousValue_);
    }
    painter.restore();
}

} // namespace kesu::toolvok
