// The wave view's cursor, jumps and the selection that follows the document:
// the wave of a row, and gathering the selected patterns.
#include "waveview.h"

#include "selection.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"

namespace kesu::toolvok {

namespace {
// The rows a shown wave takes: one, and one per bit of an expanded bus.
int rowsOf(const WaveData* wave)
{
    return 1 + (wave->isBus && wave->expandFlag ? qMax(0, wave->busWidth) : 0);
}
} // namespace

WaveData* WaveView::waveAtY(int y) const
{
    const int row = view().rowAt(y);
    int first = 0;
    for (WaveData* wave : std::as_const(owner_->document()->waves)) {
        // A hidden wave has no row, as in the picture and the name list.
        if (!wave->visible)
            continue;
        if (first == row)
            return wave;
        first += rowsOf(wave);
        if (first > row)
            return nullptr;   // a bit row of an expanded bus
    }
    return nullptr;
}

void WaveView::collectSelection()
{
    Selection& s = sel();
    SegmentPick all;
    if (s.isEditing() && !s.isRange && !s.highlightOff && s.hasRange()) {
        int row = 0;
        for (const WaveData* wave : std::as_const(owner_->document()->waves)) {
            if (!wave->visible)
                continue;
            // A wave scrolled out above the view is not picked from.
            if (wave->selected && row >= view().firstRow) {
                const SegmentPick pick = pickSegments(*wave, s.rangeStart, s.rangeEnd);
                if (!pick.segments.isEmpty()) {
                    if (all.segments.isEmpty())
                        all.snappedStart = pick.snappedStart;
                    all.snappedEnd = pick.snappedEnd;
                    all.segments += pick.segments;
                }
            }
            row += rowsOf(wave);
        }
    }
    s.adopt(all);
    update();
}

void WaveView::Jumpto(quint64 t)
{
    const WaveData* wave = owner_->activeWave();
    if (!wave)
        return;
    t = qMin(t, wave->getEndTime());
    cursorTime_ = t;
    const Viewport& vp = view();
    const quint64 span = vp.span(width());
    if (t > vp.startTime + span || t < vp.startTime) {
        const quint64 half = span / 2;
        owner_->setStartTime(t > half ? (t - half) / vp.step * vp.step : 0);
    }
}

void WaveView::reselect()
{
    const int x = releasePoint_.x();
    const int y = releasePoint_.y();
    const Viewport& vp = view();
    Selection& s = sel();
    cursorTime_ = vp.snappedTimeAt(x);
    // The row is an index into the document's waves as they stand, without
    // the press's counting of hidden waves and bit rows.
    const int row = vp.rowAt(y);
    const QList<WaveData*>& waves = owner_->document()->waves;
    const double t = static_cast<double>(cursorTime_);
    if (row >= 0 && row < waves.size() && !waves.at(row)->selected) {
        waves.at(row)->selected = true;
        owner_->selectWave(y);
        s.isRange = true;
        s.rangeStart = s.rangeEnd = vp.exactTimeAt(x);
    } else if (s.segments.size() == 1 && t >= s.lo() && t <= s.hi()) {
        // Still inside the one selected pattern: the selection stands.
        if (t >= s.rangeStart + s.segments.first()->duration)
            return;
        s.rangeEnd = vp.exactTimeAt(x);
    } else {
        owner_->selectWave(y);
        s.rangeStart = s.rangeEnd = vp.exactTimeAt(x);
    }
    if (s.highlightOff) {
        s.highlightOff = false;
        s.picked = s.picked2 = nullptr;
        owner_->SetDirtyBit();
    }
    collectSelection();
    owner_->LoadEditData();
    update();
    owner_->onEditDataChanged();
}

} // namespace kesu::toolvok
