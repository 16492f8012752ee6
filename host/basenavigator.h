#pragma once

#include <QObject>
#include <QRectF>

namespace kesu::toolvok {

// The host's navigator: while zoom-area mode is on it turns mouse gestures on
// the watched view into zoom requests that the tool carries out.
class BaseNavigator : public QObject
{
    Q_OBJECT
public:
    enum Navigating { NoNavigation = 0, ZoomIn = 1, ZoomOut = 2 };

    explicit BaseNavigator(QObject* parent = nullptr);

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

private:
    bool zooming_ = false;
};

} // namespace kesu::toolvok
