// The wave view's cursor and jumps.
#include "waveview.h"

#include "vokgui.h"
#include "wavedata.h"

namespace kesu::toolvok {

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

} // namespace kesu::toolvok
