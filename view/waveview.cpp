// Painting of the wave area: every shown wave as rows of level lines, bus
// shapes and don't-care / high-impedance boxes, with the selection, the marker
// and the cursor on top.
#include "waveview.h"

#include "biginteger.h"
#include "selection.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "rowpainter.h"

#include <QPaintEvent>
#include <QPainter>

#include <optional>
#include <string>

namespace kesu::toolvok {

WaveView::WaveView(VokGUI* owner, QWidget* parent) : QWidget(parent), owner_(owner)
{
    setAutoFillBackground(true);
    setAttribute(Qt::WA_MouseTracking);
    setFocusPolicy(Qt::ClickFocus);
    setPalette(QPalette(owner->color_back));
    // The mouse interaction watches the view's own events first.
    installEventFilter(this);
}

Selection& WaveView::sel() const
{
    return owner_->selectionState();
}

const Viewport& WaveView::view() const
{
    return owner_->viewport();
}

void WaveView::setMarkerTime(quint64 t)
{
    markerTime_ = t;
    update();
}

void WaveView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const RowStyle style = owner_->rowStyle(font());
    painter.setFont(style.font);
    fontSize = RowStyle::FontSize;
    vp_ = view();
    const quint64 startTime = vp_.startTime;
    const int firstVisibleRow = vp_.firstRow;
    hiddenCount = 0;
    rowIndex = 0;
    bitRowsAbove = 0;
    previousValue.assign(1, static_cast<char>(0xff));
    primitives_ = 0;

    // directPaint draws every primitive on its own: the reference picture
    // the gathered painting must equal pixel for pixel.
    LineBatch batch(painter, primitives_, property("directPaint").toBool(), owner_->color_x);
    batch_ = &batch;
    RowPainter row(batch, style, vp_);
    row_ = &row;

    const int viewWidth = width();
    const int viewHeight = height();
    const float rightEdge = static_cast<float>(viewWidth + 1);
    for (WaveData* wave : std::as_const(owner_->document()->waves)) {
        if (!wave->visible) {
            ++hiddenCount;
            continue;
        }
        const int bitRows = wave->isBus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
        const int rows = 1 + bitRows;
        if (rowIndex + rows <= firstVisibleRow) {
            rowIndex += rows;
            continue;
        }
        rowTop = vp_.rowTop(rowIndex);
        // Below the bottom edge nothing shows.
        if (rowTop >= viewHeight)
            break;
        row.setTop(rowTop);
        highY = row.highY();
        lowY = row.lowY();
        xCursor = 0;
        rangeDrawn_ = false;

        if (wave->offset > startTime) {
            const float w = vp_.xOf(wave->offset);
            drawLeadingOffset(wave, w);
            xCursor += w;
            previousValue = "0";
        }

        exactTime_ = wave->offset;
        const int count = static_cast<int>(wave->patterns.size());
        drawWave(false, painter, wave, 0, count);

        const int tail = wave->foreverIndex;
        if (tail >= 0 && tail < count) {
            qint64 period = 0;
            bool forward = true;
            bool letters = false;
            for (int i = tail; i < count; ++i) {
                const qint32 d = wave->patterns.at(i)->duration;
                period += d;
                forward = forward && d >= 0;
                letters = letters || isSpecial(kindOf(wave->patterns.at(i)->value));
            }
            while (vp_.xAt(exactTime_) <= rightEdge) {
                // Repetitions wholly left of the view move the time on and
                // nothing else: skip them in one stride.
                if (forward && period > 0 && exactTime_ < startTime && startTime - exactTime_ >= quint64(period))
                    exactTime_ += (startTime - exactTime_) / quint64(period) * quint64(period);
                const quint64 timeBefore = exactTime_;
                drawWave(true, painter, wave, tail, count);
                // A tail that takes no time would repeat for ever, and one
                // that runs off the end of the time axis has nothing to show.
                if (period <= 0 || exactTime_ <= timeBefore)
                    break;
                // Without letters a repetition draws only opaque shapes, so
                // drawing it again in the same pixel column changes nothing:
                // the repetitions that would fall into it again are skipped.
                const int column = px(vp_.xAt(exactTime_));
                if (!letters && forward && timeBefore > startTime && px(vp_.xAt(timeBefore)) == column)
                    exactTime_ += quint64(period) * repetitionsWithin(column, exactTime_, quint64(period));
            }
        }
        batch.flushAll();

        if (owner_->showGuideline())
            batch.styledLine(RowLayer, QPen(Qt::black, 1, Qt::DotLine), 0, lowY + 8, viewWidth, lowY + 8);
        if (bitRows > 0 && rowIndex + 1 < firstVisibleRow)
            bitRowsAbove += firstVisibleRow - rowIndex - 1;
        rowIndex += rows;
    }

    if (startTime < markerTime_) {
        const float x = vp_.xOf(markerTime_);
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::red, 1, px(x), 0, px(x), viewHeight);
    }
    const int mode = owner_->mode();
    if (startTime < cursorTime_ && (mode == VokGUI::ModeQuery || mode == VokGUI::ModeEdit)) {
        const float x = vp_.xOf(cursorTime_);
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::black, 1, px(x), 0, px(x), viewHeight);
    }
    batch.rect(RowLayer, QPen(palette().dark().color()), Qt::NoBrush, QRect(0, 0, viewWidth - 1, viewHeight - 1));
    batch.flushAll();
    batch_ = nullptr;
    row_ = nullptr;
}

void WaveView::drawWave(bool clone, QPainter& painter, WaveData* wave, int from, int to)
{
    // Called on its own, outside a paint, the wave still goes through a batch.
    std::optional<LineBatch> own;
    std::optional<RowStyle> ownStyle;
    std::optional<RowPainter> ownRow;
    if (!batch_) {
        own.emplace(painter, primitives_, false, owner_->color_x);
        batch_ = &*own;
        ownStyle.emplace(owner_->rowStyle(font()));
        ownRow.emplace(*own, *ownStyle, vp_);
        ownRow->setTop(rowTop);
        row_ = &*ownRow;
    }
    LineBatch& batch = *batch_;
    RowPainter& row = *row_;

    const quint64 startTime = vp_.startTime;
    const int firstVisibleRow = vp_.firstRow;
    const float rightEdge = static_cast<float>(width() + 1);
    const int viewHeight = height();
    const bool bus = wave->isBus;
    const int bitRows = bus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
    const int firstBitRow = qMax(0, firstVisibleRow - rowIndex - 1);
    const bool busRowShown = rowIndex >= firstVisibleRow;

    const Selection& selection = sel();
    const bool selecting = selection.isEditing() && wave->selected && selection.hasRange();
    const double lo = selection.lo();
    const double hi = selection.hi();
    const bool perPattern = selecting && !selection.isRange && !selection.highlightOff && busRowShown;

    // The value drawn last; a pattern's own text while the walk goes on.
    const std::string* prev = &previousValue;
    Kind prevKind = kindOf(previousValue);
    // The bus value of the pattern drawn last, read for the bit rows' edges.
    BigInteger lastNumber;
    const std::string* lastNumberOf = nullptr;

    from = qMax(0, from);
    to = qMin(to, static_cast<int>(wave->patterns.size()));
    // Segments that end left of the view draw nothing and leave every state
    // but the time alone: the index finds the first one that shows.
    const bool rises = wave->timesRise();
    if (exactTime_ < startTime && from < to && rises) {
        const quint64 base = wave->segmentStart(from);
        const quint64 ahead = startTime - exactTime_;
        const int first = ahead > ~quint64(0) - base ? to : qMin(to, wave->firstSegmentEndingAfter(base + ahead));
        if (first > from) {
            exactTime_ += wave->segmentStart(first) - base;
            from = first;
        }
    }
    // A clone block narrower than a pixel paints nothing, so clones collapse too.
    const bool columns = !batch.isDirect() && bitRows == 0 && !selecting;
    RowPainter::Limit crowdLimit;
    crowdLimit.picked = selection.picked;
    crowdLimit.picked2 = selection.picked2;
    Pattern* const* list = wave->patterns.constData();
    for (int i = from; i < to; ++i) {
        Pattern* p = list[i];
        const qint32 d = p->duration;
        if (d == 0)
            continue;
        const quint64 begin = exactTime_;
        exactTime_ += static_cast<quint64>(static_cast<qint64>(d));
        if (exactTime_ <= startTime)
            continue;

        const float x = begin <= startTime ? 0.0f : vp_.xAt(begin);
        const float end = vp_.xAt(exactTime_);
        const float w = end - x;
        const bool rangeDue = selecting && selection.isRange && !rangeDrawn_;
        if (rises && !rangeDue && x - static_cast<float>(fontSize) > rightEdge) {
            // Nothing further right shows; the walk would only move the time
            // on and leave the last value for the next row to compare with.
            exactTime_ = begin + (wave->segmentStart(to) - wave->segmentStart(i));
            xCursor = vp_.xAt(exactTime_);
            for (int k = to - 1; k >= i; --k) {
                if (list[k]->duration != 0) {
                    prev = &list[k]->value;
                    break;
                }
            }
            break;
        }
        if (columns && x != 0.0f && px(x) == px(end) && x <= rightEdge) {
            exactTime_ = begin;
            const int next = row.column(*wave, i, to, px(x), exactTime_, prev, prevKind, crowdLimit);
            if (next > i) {
                xCursor = vp_.xAt(exactTime_);
                i = next - 1;
                continue;
            }
            exactTime_ = begin + static_cast<quint64>(d);
        }
        const std::string& value = p->value;
        const Kind kind = kindOf(value);
        const bool picked = !clone && (p == selection.picked || p == selection.picked2);
        const float left = qMin(x, x + w);
        // Letters reach up to half a font size left of their pattern.
        if (left - static_cast<float>(fontSize) <= rightEdge) {
            const bool shapes = left <= rightEdge;
            const bool dontCare = kind == Kind::DontCare;
            const bool highZ = kind == Kind::HighZ;
            const bool levels = kind == Kind::One || kind == Kind::Zero;
            if (!bus || busRowShown) {
                if (clone && shapes && (bus || levels))
                    batch.cloneBlock(RowLayer, px(x), highY, px(x + w) - px(x), lowY - highY);
                RowPainter::Look look;
                look.edge = x != 0.0f && RowPainter::edgeBefore(kind, value, prevKind, *prev);
                look.startedLeft = begin < startTime;
                look.picked = picked;
                look.shapes = shapes;
                row.segment(*wave, value, kind, x, w, look);
            }

            if (bitRows > 0) {
                BigInteger number;
                bool edges = false;
                BigInteger before;
                if (!dontCare && !highZ && shapes) {
                    number = BigInteger(value, 16);
                    if (!isSpecial(prevKind)) {
                        before = prev == lastNumberOf ? lastNumber : BigInteger(*prev, 16);
                        edges = number.isNumber() && before.isNumber();
                    }
                }
                for (int j = firstBitRow; j < bitRows; ++j) {
                    const int top = vp_.rowTop(rowIndex + j + 1);
                    if (top >= viewHeight)
                        break;
                    const int high = top + Viewport::HighLevel;
                    const int low = top + Viewport::LowLevel;
                    if (dontCare || highZ) {
                        row.box(bitLayer(j), dontCare, picked, shapes, x, w, high, low);
                        continue;
                    }
                    if (!shapes)
                        break;
                    const int bit = wave->busWidth - 1 - j;
                    const bool set = number.bitAt(bit);
                    const int level = set ? high : low;
                    batch.line(bitLayer(j), Qt::black, 1, px(x), level, px(x + w), level);
                    if (edges && before.bitAt(bit) != set)
                        batch.line(bitLayer(j), Qt::black, 1, px(x), high, px(x), low);
                }
                if (shapes && !dontCare && !highZ) {
                    lastNumber = std::move(number);
                    lastNumberOf = &value;
                }
            }
        }

        if (selecting) {
            if (selection.isRange) {
                // Every pattern of the row marks the same range: once is enough.
                if (!rangeDrawn_) {
                    const float a = vp_.xOfExact(lo);
                    const float b = vp_.xOfExact(hi);
                    batch.line(SelectionLayer, Qt::black, 2, px(a), highY - 5, px(b), highY - 5);
                    batch.line(SelectionLayer, Qt::black, 2, px(a), lowY + 5, px(b), lowY + 5);
                    rangeDrawn_ = true;
                }
            } else if (perPattern) {
                const double end = static_cast<double>(exactTime_);
                const double start = end - static_cast<double>(d);
                if (left <= rightEdge && touchesRange(start, end, lo, hi)) {
                    batch.line(SelectionLayer, Qt::black, 2, px(x), highY - 5, px(x + w), highY - 5);
                    batch.line(SelectionLayer, Qt::black, 2, px(x), lowY + 5, px(x + w), lowY + 5);
                }
            }
        }

        xCursor = end;
        prev = &value;
        prevKind = kind;
    }
    if (prev != &previousValue)
        previousValue = *prev;
    if (own) {
        own->flushAll();
        batch_ = nullptr;
        row_ = nullptr;
    }
}

} // namespace kesu::toolvok
