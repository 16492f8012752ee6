// Printed pages: the ruler, the name column and the waves of one page at the
// page setup's scale, and the walk over pages down the waves and across time.
#include "pageprinter.h"

#include "busoutline.h"

#include "printsettings.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveview_batch.h"
#include "waveformdata.h"

#include <QApplication>
#include <QPainter>

namespace kesu::toolvok {

namespace {
constexpr int FontSize = 8;

int ipx(float v)
{
    return static_cast<int>(qBound(-1.0e9f, v, 1.0e9f));
}
bool isLevel(const std::string& v)
{
    return v == "0" || v == "1";
}
bool isSpecial(const std::string& v)
{
    return v == "-1" || v == "-2";
}
} // namespace

PagePrinter::PagePrinter(const VokGUI& gui, QSize area)
    : gui_(gui), pagewidth(area.width()), pageheight(area.height()), pps(gui.printSettings().pixelsPerStep())
{
    if (gui.printSettings().printName) {
        qsizetype longest = 0;
        for (const WaveData* wave : std::as_const(gui.document()->waves))
            longest = qMax(longest, wave->name.length());
        g_startx = static_cast<int>(longest) * 8 + 10;
    }
    vp_.pixelsPerStep = pps;
    vp_.setStep(gui.step());
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
    quint64 pageStart = 0, end = 0;
    printRange(gui_, pageStart, end);
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

void PagePrinter::paintPage(QPainter* painter, int /*page*/, int& firstRow, quint64& pageStart, quint64 end)
{
    const PrintSettings& s = gui_.printSettings();
    const int header = s.printRuler ? RulerHeight : 0;
    QFont font = QApplication::font();
    font.setPointSize(FontSize);
    font.setFamily(QStringLiteral("Arial"));
    font.setWeight(QFont::Bold);
    painter->save();
    painter->setFont(font);
    previousValue_ = "-1";
    vp_.startTime = pageStart;
    if (s.printRuler)
        paintRuler(*painter, pageStart);

    const QList<WaveData*>& waves = gui_.document()->waves;
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
        if (s.printName) {
            painter->setPen(Qt::black);
            painter->drawText(0, top + Viewport::MidLevel + 5, wave.name);
        }
        paintWave(*painter, wave, top, end);
        painter->setPen(QPen(Qt::black, 1, Qt::DotLine));
        painter->drawLine(0, low + 8, pagewidth, low + 8);
    }
    if (s.printName) {
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

void PagePrinter::paintRuler(QPainter& painter, quint64 pageStart)
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
        const QString label = gui_.getTimeString(t, false);
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

void PagePrinter::paintWave(QPainter& painter, const WaveData& wave, int top, quint64 end)
{
    high_ = top + Viewport::HighLevel;
    mid_ = top + Viewport::MidLevel;
    low_ = top + Viewport::LowLevel;
    const float right = static_cast<float>(pagewidth - g_startx);
    const quint64 start = vp_.startTime;
    painter.save();
    painter.setClipRect(QRect(g_startx, top, pagewidth - g_startx + 1, Viewport::RowHeight + 1));
    painter.translate(g_startx, 0);
    WaveView::Batch batch(painter, primitives_, direct_, gui_.color_x);
    batch_ = &batch;

    quint64 t = wave.offset;
    if (t > start && t < end) {
        const float w = vp_.xOf(t);
        if (wave.isBus) {
            paintBus(painter, QStringLiteral("0"), 0, w, start != 0);
        } else {
            batch.line(RowLayer, gui_.color_signal, 1, 0, low_, ipx(w), low_);
        }
        previousValue_ = "0";
    }
    const int count = static_cast<int>(wave.patterns.size());
    // Segments that end left of the page draw nothing and change no state:
    // the index finds the first one that shows.
    int from = 0;
    if (t < start && wave.timesRise()) {
        from = wave.firstSegmentEndingAfter(start);
        t = wave.segmentStart(from);
    }
    // Walks segments [from, to); false once the page's width or the range's
    // end is passed.
    auto walk = [&](int from, int to) {
        for (int i = from; i < to; ++i) {
            const Pattern* p = wave.patterns.at(i);
            if (p->duration == 0)
                continue;
            const quint64 begin = t;
            t += static_cast<quint64>(static_cast<qint64>(p->duration));
            if (t <= start)
                continue;
            const float x = begin <= start ? 0.0f : vp_.xAt(begin);
            if (begin >= end || x > right)
                return false;
            const int column = ipx(x);
            if (!direct_ && x != 0.0f && column == ipx(vp_.xAt(t))) {
                t = begin;
                const int next = paintColumn(wave, i, to, column, t, end);
                if (next > i) {
                    i = next - 1;
                    continue;
                }
                t = begin + static_cast<quint64>(static_cast<qint64>(p->duration));
            }
            paintSegment(painter, wave, p->value, x, vp_.xAt(t) - x, begin < start);
            previousValue_ = p->value;
        }
        return true;
    };
    if (walk(from, count) && wave.foreverIndex >= 0 && wave.foreverIndex < count) {
        qint64 period = 0;
        for (int i = wave.foreverIndex; i < count; ++i)
            period += wave.patterns.at(i)->duration;
        while (period > 0) {
            // Repetitions wholly left of the page only move the time on.
            if (t < start && start - t >= quint64(period))
                t += (start - t) / quint64(period) * quint64(period);
            const quint64 before = t;
            if (!walk(wave.foreverIndex, count) || t <= before)
                break;
        }
    }
    batch.flushAll();
    batch_ = nullptr;
    painter.restore();
}

void PagePrinter::paintSegment(QPainter& painter, const WaveData& wave, const std::string& value, float x, float w,
                               bool startedLeft)
{
    if (isSpecial(value)) {
        paintBox(painter, value == "-1", x, w);
        return;
    }
    if (wave.isBus) {
        paintBus(painter, gui_.getBusValueString(value, wave.busWidth), x, w, startedLeft);
        return;
    }
    if (!isLevel(value))
        return;
    const QColor& color = gui_.color_signal;
    const int level = value == "1" ? high_ : low_;
    if (x != 0.0f && isLevel(previousValue_) && previousValue_ != value)
        batch_->line(RowLayer, color, 1, ipx(x), high_, ipx(x), low_);
    batch_->line(RowLayer, color, 1, ipx(x), level, ipx(x + w), level);
}

int PagePrinter::paintColumn(const WaveData& wave, int first, int to, int column, quint64& t, quint64 end)
{
    // Many segments in one pixel column: their lines all fall on it, a level
    // pixel or a line from high to low (a narrow bus is one too). The column
    // gets their union once. Boxes, wide segments and the page's edges end
    // the run; they draw on their own.
    const float right = static_cast<float>(pagewidth - g_startx);
    bool high = false, low = false, edge = false;
    const std::string* prev = &previousValue_;
    Kind prevKind = kindOf(previousValue_);
    int i = first;
    for (; i < to; ++i) {
        const Pattern* p = wave.patterns.at(i);
        const qint32 d = p->duration;
        if (d == 0)
            continue;
        const Kind kind = kindOf(p->value);
        if (d < 0 || isSpecial(kind) || t >= end || vp_.xAt(t) > right)
            break;
        const quint64 next = t + static_cast<quint64>(d);
        if (ipx(vp_.xAt(next)) != column)
            break;
        const bool level = kind == Kind::Zero || kind == Kind::One;
        if (wave.isBus) {
            edge = true;
        } else if (level) {
            edge = edge || ((prevKind == Kind::Zero || prevKind == Kind::One) && kind != prevKind);
            (kind == Kind::One ? high : low) = true;
        }
        t = next;
        prev = &p->value;
        prevKind = kind;
    }
    if (prev != &previousValue_)
        previousValue_ = *prev;
    const QColor& color = wave.isBus ? gui_.color_bus : gui_.color_signal;
    if (edge)
        batch_->line(RowLayer, color, 1, column, high_, column, low_);
    if (high && !edge)
        batch_->line(RowLayer, color, 1, column, high_, column, high_);
    if (low && !edge)
        batch_->line(RowLayer, color, 1, column, low_, column, low_);
    return i;
}

void PagePrinter::paintBus(QPainter& painter, const QString& text, float x, float w, bool startedLeft)
{
    const QColor& color = gui_.color_bus;
    auto line = [&](float x1, int y1, float x2, int y2) {
        batch_->line(RowLayer, color, 1, ipx(x1), y1, ipx(x2), y2);
    };
    busOutline(x, w, w < NarrowBus, startedLeft, high_, mid_, low_, line);
    const int length = static_cast<int>(text.length());
    if (w >= NarrowBus && static_cast<float>(FontSize * length) < w) {
        // Text goes over the lines gathered before it, as it would unbatched.
        batch_->flush(RowLayer);
        painter.setPen(color);
        painter.drawText(ipx(x + w / 2.0f - static_cast<float>(FontSize * length / 2)), low_ - 8, text);
    }
}

void PagePrinter::paintBox(QPainter& painter, bool dontCare, float x, float w)
{
    const int left = ipx(x);
    const int right = ipx(x + w) - 1;
    const QColor letterColor = dontCare ? gui_.color_x : QColor(Qt::gray);
    batch_->flush(RowLayer);
    // A box narrower than a pixel has no hatch to show; skipping it spares
    // the print a pattern object per box.
    if (dontCare && right >= left) {
        painter.fillRect(QRect(left, high_, right - left + 1, low_ - high_), QBrush(gui_.color_x, Qt::BDiagPattern));
    } else if (!dontCare) {
        painter.setPen(QColor(Qt::gray));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRect(left, high_, right - left, low_ - 1 - high_));
    }
    painter.setPen(letterColor);
    painter.drawText(ipx(x + w / 2.0f - static_cast<float>(FontSize / 2)), low_ - 8,
                     dontCare ? QStringLiteral("X") : QStringLiteral("Z"));
}

} // namespace kesu::toolvok
