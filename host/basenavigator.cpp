#include "basenavigator.h"

#include <QEvent>
#include <QKeyEvent>

namespace kesu::toolvok {

BaseNavigator::BaseNavigator(QObject* parent) : QObject(parent) {}

void BaseNavigator::onZooming(bool on)
{
    zooming_ = on;
}

bool BaseNavigator::eventFilter(QObject* watched, QEvent* event)
{
    if (zooming_ && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        zooming_ = false;
        Q_EMIT sigQuitZooming();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kesu::toolvok
