#pragma once

#include <QFrame>

namespace kesu::toolvok {

class VokGUI;

// The time scale above the waves: a tick per step and a labelled tick every
// ten, the time under the mouse, and a range marked with the mouse.
class RulerView : public QFrame
{
    Q_OBJECT
public:
    RulerView(VokGUI* owner, QWidget* parent);

    // The time of a pixel x, snapped to whole steps.
    quint64 timeAt(int x) const;

    int originX = 0;
    int mouseX = 0;
    quint64 rangeStart = 0;
    quint64 rangeEnd = 0;
    bool rangeActive = false;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    VokGUI* owner_;
};

} // namespace kesu::toolvok
