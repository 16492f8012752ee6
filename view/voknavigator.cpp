#include "voknavigator.h"

#include "rulerview.h"
#include "vokgui.h"
#include "waveview.h"

#include <cmath>
#include <limits>

namespace kesu::toolvok {

VokNavigator::VokNavigator(VokGUI* owner) : BaseNavigator(owner), owner_(owner) {}

void VokNavigator::updateView(QObject*, Navigating kind, int steps)
{
    for (int i = 0; i < steps; ++i) {
        if (kind == ZoomIn)
            owner_->zoomIn();
        else if (kind == ZoomOut)
            owner_->zoomOut();
    }
}

QRectF VokNavigator::navigatorArea(QObject* source, const QRectF& band) const
{
    // The wave view's x = 0 is the ruler's originX: both start at the start
    // time. The rows play no part in a zoom.
    if (source == owner_->waveView())
        return band.translated(owner_->rulerView()->originX, 0);
    return band;
}

void VokNavigator::updateView(QObject*, Navigating kind, QRectF area)
{
    const RulerView* ruler = owner_->rulerView();
    const quint64 start = owner_->startTime();
    const quint64 step = owner_->step();
    const int origin = ruler->originX;
    if (kind == ZoomIn) {
        auto timeAt = [&](double x) -> quint64 {
            if (origin > x)
                return start;
            const qint32 pixels = static_cast<qint32>(std::trunc(x)) - origin;
            return start + quint64(pixels / Viewport::PixelsPerStep) * step;
        };
        owner_->zoomRange(timeAt(area.x()), timeAt(area.x() + area.width()));
    } else if (kind == ZoomOut) {
        const double w = ruler->width() - origin;
        // Without a width, or without a time area, there is no span to show.
        if (area.width() <= 0 || w <= 0)
            return;
        const double span = w * w / area.width() / Viewport::PixelsPerStep * double(step);
        const quint64 wide = span >= double(std::numeric_limits<quint64>::max())
            ? std::numeric_limits<quint64>::max() : static_cast<quint64>(span);
        const quint64 a = start > wide / 2 ? start - wide / 2 : 0;
        // Centred on the old start time, not on the area.
        owner_->zoomRange(a, a + wide);
    }
}

} // namespace kesu::toolvok
