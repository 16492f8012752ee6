#pragma once

#include <QObject>

namespace kesu::toolvok {

class VokGUI;

// The mouse wheel over the wave view and the name list: rows by default, the
// time axis with Shift (or a sideways wheel), one zoom step per notch with
// Ctrl. Everything goes through the tool window's own scroll bars and zoom, so
// the views stay in step exactly as when the bars are dragged.
class WheelScroller : public QObject
{
    Q_OBJECT
public:
    explicit WheelScroller(VokGUI* owner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Whole notches in delta, keeping the rest of a fine-grained wheel for
    // the next event; positive is away from the user.
    int notches(int& rest, int delta);

    VokGUI* owner_;
    int zoomRest_ = 0;
    int rowRest_ = 0;
    int timeRest_ = 0;
};

} // namespace kesu::toolvok
