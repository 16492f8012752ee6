// The wave area's stretch before a wave's offset and the skipping of tail
// repetitions that fall into one pixel column.
#include "waveview.h"

#include "rowpainter.h"
#include "wavedata.h"

#include <QPainter>

namespace kesu::toolvok {

void WaveView::drawLeadingOffset(const WaveData* wave, float w)
{
    LineBatch& batch = *batch_;
    const float x = xCursor;
    if (x > static_cast<float>(width() + 1))
        return;
    // Before its offset a bus reads as 0; its bit rows are low.
    if (!wave->isBus || rowIndex >= vp_.firstRow)
        row_->leadingOffset(wave->isBus, x, w, vp_.startTime != 0);
    if (!wave->isBus || !wave->expandFlag)
        return;
    for (int j = qMax(0, vp_.firstRow - rowIndex - 1); j < wave->busWidth; ++j) {
        const int low = vp_.rowTop(rowIndex + j + 1) + Viewport::LowLevel;
        if (low - Viewport::LowLevel >= height())
            break;
        batch.line(bitLayer(j), Qt::black, 1, px(x), low, px(x + w), low);
    }
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

} // namespace kesu::toolvok
