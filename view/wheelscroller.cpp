#include "wheelscroller.h"

#include "voknavigator.h"
#include "vokgui.h"

#include <QApplication>
#include <QScrollBar>
#include <QWheelEvent>

namespace kesu::toolvok {

namespace {
constexpr int NotchDelta = 120;   // QWheelEvent's eighths of a degree per notch
} // namespace

WheelScroller::WheelScroller(VokGUI* owner) : QObject(owner), owner_(owner) {}

int WheelScroller::notches(int& rest, int delta)
{
    rest += delta;
    const int n = rest / NotchDelta;
    rest -= n * NotchDelta;
    return n;
}

bool WheelScroller::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    const auto* wheel = static_cast<QWheelEvent*>(event);
    const QPoint delta = wheel->angleDelta();
    const Qt::KeyboardModifiers mods = wheel->modifiers();

    if (mods & Qt::ControlModifier) {
        const int n = notches(zoomRest_, delta.y() != 0 ? delta.y() : delta.x());
        if (n > 0)
            owner_->navigator()->updateView(watched, BaseNavigator::ZoomIn, n);
        else if (n < 0)
            owner_->navigator()->updateView(watched, BaseNavigator::ZoomOut, -n);
        return true;
    }
    // A sideways wheel scrolls the time axis without Shift.
    const bool alongTime = (mods & Qt::ShiftModifier) || (delta.y() == 0 && delta.x() != 0);
    const int lines = QApplication::wheelScrollLines();
    if (alongTime) {
        const int n = notches(timeRest_, delta.y() != 0 ? delta.y() : delta.x());
        QScrollBar* bar = owner_->waveHBar();
        bar->setValue(bar->value() - n * lines * bar->singleStep());
    } else {
        const int n = notches(rowRest_, delta.y());
        QScrollBar* bar = owner_->waveVBar();
        bar->setValue(bar->value() - n * lines * bar->singleStep());
    }
    return true;
}

} // namespace kesu::toolvok
