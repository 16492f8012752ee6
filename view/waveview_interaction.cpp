// The wave view's cursor, jumps and the selection that follows the document:
// the time of a pixel, the wave of a row, and gathering the selected patterns.
#include "waveview.h"

#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"

#include <QImage>

namespace kesu::toolvok {

double WaveView::exactTimeAt(int x) const
{
    return static_cast<double>(x) / PixelsPerStep * static_cast<double>(qMax<quint64>(1, owner_->step()))
        + static_cast<double>(owner_->startTime());
}

quint64 WaveView::snappedTimeAt(int x) const
{
    // Left of the wave area is still the start of the view.
    return quint64(qMax(0, x) / PixelsPerStep) * qMax<quint64>(1, owner_->step()) + owner_->startTime();
}

WaveData* WaveView::waveAtY(int y) const
{
    const int row = y / RowHeight + firstVisibleRow;
    int first = 0;
    for (WaveData* wave : std::as_const(owner_->document()->waves)) {
        // A hidden wave has no row, as in the picture and the name list.
        if (!wave->visible)
            continue;
        if (first == row)
            return wave;
        first += 1 + (wave->isBus && wave->expandFlag ? qMax(0, wave->busWidth) : 0);
        if (first > row)
            return nullptr;   // a bit row of an expanded bus
    }
    return nullptr;
}

void WaveView::collectNow()
{
    owner_->selection().clear();
    collectSelection = true;
    // The patterns are gathered by a paint that must happen now, whether or
    // not the window can show one at this moment: paint into a scratch pixel
    // (everything is clipped away, the walk over the waves is the same), and
    // let the screen catch up with an ordinary update.
    QImage scratch(1, 1, QImage::Format_RGB32);
    render(&scratch, QPoint(), QRegion(0, 0, 1, 1));
    collectSelection = false;
    update();
}

void WaveView::Jumpto(quint64 t)
{
    const WaveData* wave = owner_->activeWave();
    if (!wave)
        return;
    t = qMin(t, wave->getEndTime());
    cursorTime = t;
    const quint64 step = owner_->step();
    const quint64 span = quint64(width() / PixelsPerStep) * step;
    const quint64 start = owner_->startTime();
    if (t > start + span || t < start) {
        const quint64 half = span / 2;
        owner_->setStartTime(t > half ? (t - half) / step * step : 0);
    }
}

void WaveView::reselect()
{
    const int x = releasePoint.x();
    const int y = releasePoint.y();
    cursorTime = snappedTimeAt(x);
    // The row is an index into the document's waves as they stand, without
    // the press's counting of hidden waves and bit rows.
    const int row = y / RowHeight + firstVisibleRow;
    const QList<WaveData*>& waves = owner_->document()->waves;
    const QList<Pattern*>& selected = owner_->selection();
    const double lo = qMin(selectionStart, selectionEnd);
    const double hi = qMax(selectionStart, selectionEnd);
    const double t = static_cast<double>(cursorTime);
    if (row >= 0 && row < waves.size() && !waves.at(row)->selected) {
        waves.at(row)->selected = true;
        owner_->selectWave(y);
        selectionIsRange = true;
        selectionStart = selectionEnd = exactTimeAt(x);
    } else if (selected.size() == 1 && t >= lo && t <= hi) {
        // Still inside the one selected pattern: the selection stands.
        if (t >= selectionStart + selected.first()->duration)
            return;
        selectionEnd = exactTimeAt(x);
    } else {
        owner_->selectWave(y);
        selectionStart = selectionEnd = exactTimeAt(x);
    }
    if (highlightOff) {
        highlightOff = false;
        selectedPattern = selectedPattern2 = nullptr;
        owner_->SetDirtyBit();
    }
    collectNow();
    owner_->LoadEditData();
    update();
    owner_->onEditDataChanged();
}

} // namespace kesu::toolvok
