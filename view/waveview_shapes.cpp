// The wave area's compound shapes: the stretch before a wave's offset, bus
// outlines, don't-care and high-impedance boxes and the shading of clones.
#include "waveview_batch.h"

#include "busoutline.h"
#include "selection.h"
#include "vokgui.h"
#include "wavedata.h"

#include <QPainter>

namespace kesu::toolvok {

void WaveView::drawCloneBlock(QPainter& painter, int x, int y, int width, int height)
{
    static const QBrush clone(Qt::gray, Qt::Dense6Pattern);
    painter.setPen(Qt::NoPen);
    painter.setBrush(clone);
    painter.drawRect(x, y, width, height);
}

void WaveView::drawLeadingOffset(const WaveData* wave, float w)
{
    Batch& batch = *batch_;
    const float x = xCursor;
    if (x > static_cast<float>(width() + 1))
        return;
    if (!wave->isBus) {
        batch.line(RowLayer, owner_->color_signal, 1, px(x), lowY, px(x + w), lowY);
        return;
    }
    // Before its offset a bus reads as 0.
    if (rowIndex >= vp_.firstRow) {
        const bool narrow = w < Viewport::PixelsPerStepF;
        drawBusShape(RowLayer, owner_->color_bus, false, x, w, narrow, vp_.startTime != 0);
        if (!narrow)
            batch.letter(RowLayer, owner_->color_bus, px(x + w / 2.0f - static_cast<float>(fontSize / 2)), lowY - 8,
                         Batch::LetterZero);
    }
    if (!wave->expandFlag)
        return;
    for (int j = qMax(0, vp_.firstRow - rowIndex - 1); j < wave->busWidth; ++j) {
        const int low = vp_.rowTop(rowIndex + j + 1) + Viewport::LowLevel;
        if (low - Viewport::LowLevel >= height())
            break;
        batch.line(bitLayer(j), Qt::black, 1, px(x), low, px(x + w), low);
    }
}

void WaveView::drawBusShape(int layer, const QColor& color, bool dotted, float x, float w, bool narrow,
                            bool startedLeft)
{
    Batch& batch = *batch_;
    const QPen dots(color, 1, Qt::DotLine);
    auto line = [&](float x1, int y1, float x2, int y2) {
        if (dotted)
            batch.styledLine(layer, dots, px(x1), y1, px(x2), y2);
        else
            batch.line(layer, color, 1, px(x1), y1, px(x2), y2);
    };
    busOutline(x, w, narrow, startedLeft, highY, midY, lowY, line);
}

void WaveView::drawSpecialBox(int layer, bool dontCare, bool picked, bool shapes, float x, float w, int high,
                              int low)
{
    Batch& batch = *batch_;
    // The box covers the pattern's pixel columns up to the one where the next
    // pattern begins.
    const int left = px(x);
    const int right = px(x + w) - 1;
    if (picked) {
        if (shapes)
            batch.rect(layer, dontCare ? batch.dontCareDots : batch.highZDots, Qt::NoBrush,
                       QRect(left, high, right - left, low - 1 - high));
        return;
    }
    if (shapes) {
        if (dontCare)
            batch.rect(layer, Qt::NoPen, batch.hatch, QRect(left, high, right - left + 1, low - high));
        else
            batch.rect(layer, batch.highZPen, Qt::NoBrush, QRect(left, high, right - left, low - 1 - high));
    }
    // The letter sits centred on the pattern and may reach a little left of
    // it, so it is drawn for patterns just beyond the right edge too.
    batch.letter(layer, dontCare ? owner_->color_x : QColor(Qt::gray),
                 px(x + w / 2.0f - static_cast<float>(fontSize / 2)), low - 8,
                 dontCare ? Batch::LetterX : Batch::LetterZ);
}

quint64 WaveView::repetitionsWithin(int column, quint64 from, quint64 period) const
{
    // The last time still in the column, from the scale and then made exact
    // against the very conversion that places the pixels.
    const quint64 span = (quint64(column) + 1) * vp_.step / quint64(vp_.pixelsPerStep);
    quint64 last = vp_.startTime + span;
    if (last < from)
        return 0;
    while (last > from && px(vp_.xAt(last)) > column)
        --last;
    while (px(vp_.xAt(last + 1)) <= column)
        ++last;
    return (last - from) / period;
}

int WaveView::drawColumn(const WaveData* wave, int first, int to, int column, const std::string*& prev,
                        Kind& prevKind)
{
    // At a zoom that puts many segments into one pixel column, their lines
    // all fall on that column: a level pixel or a line from high to low. The
    // column gets the union once instead of a line per segment. Boxes, picked
    // segments and anything reaching past the column end the run: they draw
    // on their own, in their order.
    const Selection& selection = sel();
    const bool bus = wave->isBus;
    bool high = false, low = false, edge = false;
    Pattern* const* list = wave->patterns.constData();
    int i = first;
    for (; i < to; ++i) {
        const Pattern* p = list[i];
        const qint32 d = p->duration;
        if (d == 0)
            continue;
        if (d < 0 || p == selection.picked || p == selection.picked2)
            break;
        const Kind kind = kindOf(p->value);
        if (isSpecial(kind))
            break;
        const quint64 end = exactTime_ + static_cast<quint64>(d);
        const float x = vp_.xAt(end);
        if (px(x) != column)
            break;
        if (bus) {
            edge = true;
        } else if (kind != Kind::Other) {
            edge = edge || (!isSpecial(prevKind) && differs(kind, p->value, prevKind, *prev));
            (kind == Kind::One ? high : low) = true;
        }
        exactTime_ = end;
        xCursor = x;
        prev = &p->value;
        prevKind = kind;
    }
    Batch& batch = *batch_;
    const QColor& color = bus ? owner_->color_bus : owner_->color_signal;
    if (edge)
        batch.line(RowLayer, color, 1, column, highY, column, lowY);
    if (high && !edge)
        batch.line(RowLayer, color, 1, column, highY, column, highY);
    if (low && !edge)
        batch.line(RowLayer, color, 1, column, lowY, column, lowY);
    return i;
}

} // namespace kesu::toolvok
