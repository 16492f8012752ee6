#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRectF>

class QRubberBand;
class QWidget;

namespace kesu::toolvok {

// The host's navigator. While zoom-area mode is on it takes the mouse on the
// views it watches: a rectangle dragged with the left button asks the tool to
// show that area, one dragged with the right button to zoom out around it; a
// click without extent asks for one zoom step. Escape leaves the mode.
class BaseNavigator : public QObject
{
    Q_OBJECT
public:
    enum Navigating { NoNavigation = 0, ZoomIn = 1, ZoomOut = 2 };

    explicit BaseNavigator(QObject* parent = nullptr);
    ~BaseNavigator() override;

    bool isZooming() const { return zooming_; }

    virtual void updateView(QObject* source, Navigating kind, int steps) = 0;
    virtual void updateView(QObject* source, Navigating kind, QRectF area) = 0;

public Q_SLOTS:
    void onZooming(bool on);

Q_SIGNALS:
    // The navigator leaves zoom-area mode by itself (Escape).
    void sigQuitZooming();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

    // The rectangle that updateView receives for a band dragged on source, in
    // source's pixels; a tool whose views share one time axis maps it to the
    // widget whose coordinates it reads.
    virtual QRectF navigatorArea(QObject* source, const QRectF& band) const;

private:
    bool mouseEvent(QWidget* view, QEvent* event);
    void dropBand();

    bool zooming_ = false;
    // The band being dragged, a child of the view it is drawn on.
    QPointer<QRubberBand> band_;
    QPoint bandOrigin_;
    Qt::MouseButton bandButton_ = Qt::NoButton;
};

} // namespace kesu::toolvok
