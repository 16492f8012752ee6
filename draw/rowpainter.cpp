// One wave row, drawn the same on the screen and on paper.
#include "rowpainter.h"

#include "busoutline.h"
#include "wavedata.h"

namespace kesu::toolvok {

RowPainter::RowPainter(LineBatch& batch, const RowStyle& style, const Viewport& vp)
    : batch_(batch), style_(style), vp_(vp)
{
}

void RowPainter::setTop(int top)
{
    high_ = top + Viewport::HighLevel;
    mid_ = top + Viewport::MidLevel;
    low_ = top + Viewport::LowLevel;
}

void RowPainter::segment(const WaveData& wave, const std::string& value, Kind kind, float x, float w,
                         const Look& look)
{
    if (isSpecial(kind)) {
        box(RowLayer, kind == Kind::DontCare, look.picked, look.shapes, x, w, high_, low_);
        return;
    }
    if (!look.shapes)
        return;
    if (wave.isBus)
        busValue(value, wave.busWidth, x, w, look.picked, look.startedLeft);
    else if (kind == Kind::One || kind == Kind::Zero)
        level(kind == Kind::One, look.edge, look.picked, x, w);
}

void RowPainter::level(bool one, bool edge, bool dotted, float x, float w)
{
    const QColor& color = style_.signal;
    const int y = one ? high_ : low_;
    if (edge)
        batch_.line(RowLayer, color, 1, px(x), high_, px(x), low_);
    if (dotted)
        batch_.styledLine(RowLayer, QPen(color, 1, Qt::DotLine), px(x), y, px(x + w), y);
    else
        batch_.line(RowLayer, color, 1, px(x), y, px(x + w), y);
}

void RowPainter::busValue(const std::string& value, int busWidth, float x, float w, bool picked, bool startedLeft)
{
    busShape(RowLayer, picked, x, w, w < NarrowBus || picked, startedLeft);
    // No text of one or more characters fits a value of a font size or
    // less, so its text is not even made.
    constexpr int size = RowStyle::FontSize;
    if (w <= static_cast<float>(size))
        return;
    const QString text = style_.busText(value, busWidth);
    const int length = static_cast<int>(text.length());
    if (static_cast<float>(size * length) < w)
        batch_.text(RowLayer, style_.bus, px(x + w / 2.0f - static_cast<float>(size * length / 2)), low_ - 8, text);
}

void RowPainter::busShape(int layer, bool dotted, float x, float w, bool narrow, bool startedLeft)
{
    const QColor& color = style_.bus;
    auto line = [&](float x1, int y1, float x2, int y2) {
        if (dotted)
            batch_.styledLine(layer, QPen(color, 1, Qt::DotLine), px(x1), y1, px(x2), y2);
        else
            batch_.line(layer, color, 1, px(x1), y1, px(x2), y2);
    };
    busOutline(x, w, narrow, startedLeft, high_, mid_, low_, line);
}

void RowPainter::box(int layer, bool dontCare, bool picked, bool shapes, float x, float w, int high, int low)
{
    // The box covers the pattern's pixel columns up to the one where the next
    // pattern begins.
    const int left = px(x);
    const int right = px(x + w) - 1;
    if (picked) {
        if (shapes)
            batch_.rect(layer, dontCare ? batch_.dontCareDots : batch_.highZDots, Qt::NoBrush,
                        QRect(left, high, right - left, low - 1 - high));
        return;
    }
    if (shapes) {
        if (dontCare)
            batch_.rect(layer, Qt::NoPen, batch_.hatch, QRect(left, high, right - left + 1, low - high));
        else
            batch_.rect(layer, batch_.highZPen, Qt::NoBrush, QRect(left, high, right - left, low - 1 - high));
    }
    // The letter sits centred on the pattern and may reach a little left of
    // it, so it is drawn for patterns just beyond the right edge too.
    letter(layer, dontCare ? LineBatch::LetterX : LineBatch::LetterZ, x, w, low);
}

void RowPainter::letter(int layer, LineBatch::Letter which, float x, float w, int low)
{
    const QColor& color = which == LineBatch::LetterX   ? style_.dontCare
                          : which == LineBatch::LetterZ ? style_.highZ
                                                        : style_.bus;
    batch_.letter(layer, color, px(x + w / 2.0f - static_cast<float>(RowStyle::FontSize / 2)), low - 8, which);
}

void RowPainter::leadingOffset(bool bus, float x, float w, bool startedLeft)
{
    if (!bus) {
        batch_.line(RowLayer, style_.signal, 1, px(x), low_, px(x + w), low_);
        return;
    }
    const bool narrow = w < NarrowBus;
    busShape(RowLayer, false, x, w, narrow, startedLeft);
    if (!narrow)
        letter(RowLayer, LineBatch::LetterZero, x, w, low_);
}

int RowPainter::column(const WaveData& wave, int first, int to, int column, quint64& time, const std::string*& prev,
                       Kind& prevKind, const Limit& limit)
{
    // At a zoom that puts many segments into one pixel column, their lines
    // all fall on that column: a level pixel or a line from high to low (a
    // narrow bus is one too). The column gets the union once instead of a
    // line per segment. Boxes, picked segments, anything reaching past the
    // column and the limit end the run: they draw on their own, in order.
    const bool bus = wave.isBus;
    const bool bounded = limit.right < std::numeric_limits<float>::max() || limit.end != Limit().end;
    bool high = false, low = false, edge = false;
    Pattern* const* list = wave.patterns.constData();
    int i = first;
    for (; i < to; ++i) {
        const Pattern* p = list[i];
        const qint32 d = p->duration;
        if (d == 0)
            continue;
        if (d < 0 || p == limit.picked || p == limit.picked2)
            break;
        const Kind kind = kindOf(p->value);
        if (isSpecial(kind) || (bounded && (time >= limit.end || vp_.xAt(time) > limit.right)))
            break;
        const quint64 end = time + static_cast<quint64>(d);
        if (px(vp_.xAt(end)) != column)
            break;
        if (bus) {
            edge = true;
        } else if (kind != Kind::Other) {
            edge = edge || edgeBefore(kind, p->value, prevKind, *prev);
            (kind == Kind::One ? high : low) = true;
        }
        time = end;
        prev = &p->value;
        prevKind = kind;
    }
    const QColor& color = bus ? style_.bus : style_.signal;
    if (edge)
        batch_.line(RowLayer, color, 1, column, high_, column, low_);
    if (high && !edge)
        batch_.line(RowLayer, color, 1, column, high_, column, high_);
    if (low && !edge)
        batch_.line(RowLayer, color, 1, column, low_, column, low_);
    return i;
}

void RowPainter::drawRow(const WaveData& wave, quint64 end, float right, std::string& previous)
{
    const quint64 start = vp_.startTime;
    quint64 t = wave.offset;
    if (t > start && t < end) {
        leadingOffset(wave.isBus, 0.0f, vp_.xOf(t), start != 0);
        previous = "0";
    }
    const std::string* prev = &previous;
    Kind prevKind = kindOf(previous);
    const int count = static_cast<int>(wave.patterns.size());
    // Segments that end left of the drawing change nothing: the index finds
    // the first one that shows.
    int from = 0;
    if (t < start && wave.timesRise()) {
        from = wave.firstSegmentEndingAfter(start);
        t = wave.segmentStart(from);
    }
    const Limit limit{end, right};
    const bool columns = !batch_.isDirect();
    // Walks segments [from, to); false once right or end is passed.
    auto walk = [&](int from, int to) {
        for (int i = from; i < to; ++i) {
            const Pattern* p = wave.patterns.at(i);
            const qint64 d = p->duration;
            if (d == 0)
                continue;
            const quint64 begin = t;
            t += static_cast<quint64>(d);
            if (t <= start)
                continue;
            const float x = begin <= start ? 0.0f : vp_.xAt(begin);
            if (begin >= end || x > right)
                return false;
            if (columns && x != 0.0f && px(x) == px(vp_.xAt(t))) {
                t = begin;
                const int next = column(wave, i, to, px(x), t, prev, prevKind, limit);
                if (next > i) {
                    i = next - 1;
                    continue;
                }
                t = begin + static_cast<quint64>(d);
            }
            const Kind kind = kindOf(p->value);
            Look look;
            look.startedLeft = begin < start;
            look.edge = x != 0.0f && edgeBefore(kind, p->value, prevKind, *prev);
            segment(wave, p->value, kind, x, vp_.xAt(t) - x, look);
            prev = &p->value;
            prevKind = kind;
        }
        return true;
    };
    if (walk(from, count) && wave.foreverIndex >= 0 && wave.foreverIndex < count) {
        qint64 period = 0;
        for (int i = wave.foreverIndex; i < count; ++i)
            period += wave.patterns.at(i)->duration;
        while (period > 0) {
            // Repetitions wholly left of the drawing only move the time on.
            if (t < start && start - t >= quint64(period))
                t += (start - t) / quint64(period) * quint64(period);
            const quint64 before = t;
            if (!walk(wave.foreverIndex, count) || t <= before)
                break;
        }
    }
    if (prev != &previous)
        previous = *prev;
}

} // namespace kesu::toolvok
