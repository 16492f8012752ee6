#include "voknavigator.h"

#include "rulerview.h"
#include "vokgui.h"

#include <cmath>

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
            return start + quint64(pixels / 20) * step;
        };
        owner_->zoomRange(timeAt(area.x()), timeAt(area.x() + area.width()));
    } else if (kind == ZoomOut) {
        const double w = ruler->width() - origin;
        const quint64 span = area.width() > 0 ? static_cast<quint64>(w * w / area.width() / 20 * double(step)) : 0;
        const quint64 a = start > span / 2 ? start - span / 2 : 0;
        // Centred on the old start time, not on the area.
        owner_->zoomRange(a, a + span);
    }
}

} // namespace kesu::toolvok
