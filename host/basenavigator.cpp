#include "basenavigator.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRubberBand>
#include <QWidget>

namespace kesu::toolvok {

BaseNavigator::BaseNavigator(QObject* parent) : QObject(parent) {}

BaseNavigator::~BaseNavigator()
{
    // The band belongs to the view it is drawn on, which may outlive us.
    delete band_;
}

void BaseNavigator::onZooming(bool on)
{
    zooming_ = on;
    if (!on)
        dropBand();
}

void BaseNavigator::dropBand()
{
    if (band_) {
        band_->hide();
        band_->deleteLater();
    }
    band_ = nullptr;
    bandButton_ = Qt::NoButton;
}

QRectF BaseNavigator::navigatorArea(QObject*, const QRectF& band) const
{
    return band;
}

bool BaseNavigator::eventFilter(QObject* watched, QEvent* event)
{
    if (!zooming_)
        return QObject::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        zooming_ = false;
        dropBand();
        Q_EMIT sigQuitZooming();
        return true;
    }
    if (auto* view = qobject_cast<QWidget*>(watched))
        return mouseEvent(view, event);
    return QObject::eventFilter(watched, event);
}

bool BaseNavigator::mouseEvent(QWidget* view, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* press = static_cast<QMouseEvent*>(event);
        if (!band_ && (press->button() == Qt::LeftButton || press->button() == Qt::RightButton)) {
            bandOrigin_ = press->position().toPoint();
            bandButton_ = press->button();
            band_ = new QRubberBand(QRubberBand::Rectangle, view);
            band_->setGeometry(QRect(bandOrigin_, QSize()));
            band_->show();
        }
        // No press reaches the view while zooming: it would select or edit.
        return true;
    }
    case QEvent::MouseMove: {
        if (!band_)
            return false;   // plain moves still track the time under the mouse
        const QPoint to = static_cast<QMouseEvent*>(event)->position().toPoint();
        // Both corners inside, whichever way the band is dragged.
        band_->setGeometry(QRect(QPoint(qMin(bandOrigin_.x(), to.x()), qMin(bandOrigin_.y(), to.y())),
                                 QPoint(qMax(bandOrigin_.x(), to.x()), qMax(bandOrigin_.y(), to.y()))));
        return true;
    }
    case QEvent::MouseButtonRelease: {
        const auto* release = static_cast<QMouseEvent*>(event);
        if (!band_ || release->button() != bandButton_)
            return true;
        const QPoint end = release->position().toPoint();
        const Navigating kind = bandButton_ == Qt::LeftButton ? ZoomIn : ZoomOut;
        dropBand();
        const QRectF area(QPointF(qMin(bandOrigin_.x(), end.x()), qMin(bandOrigin_.y(), end.y())),
                          QPointF(qMax(bandOrigin_.x(), end.x()), qMax(bandOrigin_.y(), end.y())));
        // A click has no area to show: it zooms by one step.
        if (area.width() <= 0)
            updateView(view, kind, 1);
        else
            updateView(view, kind, navigatorArea(view, area));
        return true;
    }
    case QEvent::MouseButtonDblClick:
        return true;
    default:
        return false;
    }
}

} // namespace kesu::toolvok
