// The walk over the shown waves that paints them: level lines, bus shapes,
// boxes, repeated forever tails, the selection marks and the guide lines.
#include "wavepaint.h"

#include "biginteger.h"
#include "selection.h"
#include "wavedata.h"

#include <QPainter>

namespace kesu::toolvok {

WavePaint::WavePaint(QPainter& painter, const WavePaintSetup& setup)
    : setup_(setup),
      vp_(setup.vp),
      batch_(painter, primitives_, setup.direct, setup.style.dontCare),
      row_(batch_, setup.style, vp_),
      previousValue_(1, static_cast<char>(0xff))
{
}

void WavePaint::setRowTop(int rowIndex)
{
    rowIndex_ = rowIndex;
    row_.setTop(vp_.rowTop(rowIndex));
}

void WavePaint::paintWave(WaveData* wave, int rowIndex)
{
    setRowTop(rowIndex);
    rangeDrawn_ = false;
    const quint64 startTime = vp_.startTime;
    const float rightEdge = static_cast<float>(setup_.width + 1);

    if (wave->offset > startTime) {
        const float w = vp_.xOf(wave->offset);
        drawLeadingOffset(wave, w);
        previousValue_ = "0";
    }

    exactTime_ = wave->offset;
    const int count = static_cast<int>(wave->patterns.size());
    drawWave(false, wave, 0, count);

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
            drawWave(true, wave, tail, count);
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
    batch_.flushAll();

    const int guideY = row_.lowY() + 8;
    if (setup_.guideline)
        batch_.styledLine(RowLayer, QPen(Qt::black, 1, Qt::DotLine), 0, guideY, setup_.width, guideY);
}

void WavePaint::drawWave(bool clone, WaveData* wave, int from, int to)
{
    LineBatch& batch = batch_;
    RowPainter& row = row_;
    const int highY = row.highY();
    const int lowY = row.lowY();

    const quint64 startTime = vp_.startTime;
    const int firstVisibleRow = vp_.firstRow;
    const float rightEdge = static_cast<float>(setup_.width + 1);
    const int viewHeight = setup_.height;
    const bool bus = wave->isBus;
    const int bitRows = bus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
    const int firstBitRow = qMax(0, firstVisibleRow - rowIndex_ - 1);
    const bool busRowShown = rowIndex_ >= firstVisibleRow;

    const Selection& selection = *setup_.selection;
    const bool selecting = selection.isEditing() && wave->selected && selection.hasRange();
    const double lo = selection.lo();
    const double hi = selection.hi();
    const bool perPattern = selecting && !selection.isRange && !selection.highlightOff && busRowShown;

    // The value drawn last; a pattern's own text while the walk goes on.
    const std::string* prev = &previousValue_;
    Kind prevKind = kindOf(previousValue_);
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
        if (rises && !rangeDue && x - static_cast<float>(RowStyle::FontSize) > rightEdge) {
            // Nothing further right shows; the walk would only move the time
            // on and leave the last value for the next row to compare with.
            exactTime_ = begin + (wave->segmentStart(to) - wave->segmentStart(i));
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
        if (left - static_cast<float>(RowStyle::FontSize) <= rightEdge) {
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
                    const int top = vp_.rowTop(rowIndex_ + j + 1);
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

        prev = &value;
        prevKind = kind;
    }
    if (prev != &previousValue_)
        previousValue_ = *prev;
}

void WavePaint::drawLeadingOffset(const WaveData* wave, float w)
{
    LineBatch& batch = batch_;
    // A leading offset shows only while the view starts before it, so it
    // always begins at the left edge.
    const float x = 0;
    // Before its offset a bus reads as 0; its bit rows are low.
    if (!wave->isBus || rowIndex_ >= vp_.firstRow)
        row_.leadingOffset(wave->isBus, x, w, vp_.startTime != 0);
    if (!wave->isBus || !wave->expandFlag)
        return;
    for (int j = qMax(0, vp_.firstRow - rowIndex_ - 1); j < wave->busWidth; ++j) {
        const int low = vp_.rowTop(rowIndex_ + j + 1) + Viewport::LowLevel;
        if (low - Viewport::LowLevel >= setup_.height)
            break;
        batch.line(bitLayer(j), Qt::black, 1, px(x), low, px(x + w), low);
    }
}

quint64 WavePaint::repetitionsWithin(int column, quint64 from, quint64 period) const
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

} // namespace kesu::toolvok
