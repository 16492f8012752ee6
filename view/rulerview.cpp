// The time scale above the waves, lined up with the wave drawing: both read
// the tool window's viewport.
#include "rulerview.h"

#include "vokgui.h"

#include <QAction>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygon>

namespace kesu::toolvok {

namespace {
constexpr int PixelsPerStep = Viewport::PixelsPerStep;
}

RulerView::RulerView(VokGUI* owner, QWidget* parent) : QFrame(parent), owner_(owner)
{
    setAutoFillBackground(true);
    setAttribute(Qt::WA_MouseTracking);
    setPalette(QPalette(owner->color_back));
}

quint64 RulerView::timeAt(int x) const
{
    return owner_->viewport().snappedTimeAt(x - originX);
}

void RulerView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QFont font = this->font();
    font.setPointSize(10);
    painter.setFont(font);

    const int h = height();
    const int half = h / 2;
    const Viewport& vp = owner_->viewport();
    const quint64 start = vp.startTime;
    const quint64 step = vp.step;

    // The time under the mouse, in the name column left of the axis.
    const quint64 mouseTime = vp.snappedTimeAt(mouseX);
    const QString mouseText = owner_->getTimeString(mouseTime, true);
    const QColor ink = owner_->color_names;
    painter.setPen(ink);
    painter.drawText(originX / 2 - 5 * int(mouseText.length()), half + 5, mouseText);

    const quint64 lo = qMin(rangeStart, rangeEnd);
    const quint64 hi = qMax(rangeStart, rangeEnd);
    const bool marking = rangeActive && lo != hi;
    // A step is marked when it shares more than an end point with the range.
    auto marked = [&](quint64 t) { return marking && t < hi && t + step > lo; };

    int x = originX;
    quint64 t = start;
    auto stepBox = [&]() {
        painter.setPen(Qt::white);
        painter.setBrush(Qt::black);
        painter.drawRect(QRect(x, half + 15, PixelsPerStep - 1, h - 1 - (half + 15)));
        painter.setPen(ink);
    };
    auto minorTick = [&]() {
        if (marked(t))
            stepBox();
        else
            painter.drawLine(x, half + 15, x, h);
        x += PixelsPerStep;
        t += step;
    };

    // Major ticks fall on multiples of ten steps counted from the start's
    // remainder, so a start off the step grid keeps its offset on every label.
    const quint64 decade = 10 * step;
    if (start % decade != 0) {
        const quint64 k = (start % decade) / step;
        for (quint64 i = 0; i < 10 - k && x <= width(); ++i)
            minorTick();
    }
    while (x <= width()) {
        if (marked(t)) {
            painter.drawLine(x, half + 10, x, half + 15);
            stepBox();
        } else {
            painter.drawLine(x, half + 10, x, h);
        }
        const QString label = owner_->getTimeString(t, false);
        painter.drawText(x - 5 * int(label.length()), half, label);
        x += PixelsPerStep;
        t += step;
        for (int i = 0; i < 9 && x <= width(); ++i)
            minorTick();
    }

    const QColor dark = palette().dark().color();
    const int tipX = originX + mouseX;
    const QPolygon pointer({QPoint(tipX, h - 1 - 9), QPoint(tipX - 4, h - 1 - 14), QPoint(tipX + 4, h - 1 - 14)});
    painter.setPen(dark);
    painter.setBrush(ink);
    painter.drawPolygon(pointer);

    painter.setBrush(Qt::NoBrush);
    painter.drawRect(0, 0, width() - 1, height() - 1);
}

void RulerView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        rangeActive = true;
        rangeStart = rangeEnd = timeAt(event->position().toPoint().x());
        update();
    }
    QFrame::mousePressEvent(event);
}

void RulerView::mouseMoveEvent(QMouseEvent* event)
{
    mouseX = qMax(0, event->position().toPoint().x() - originX);
    // Only a zoom keeps a range going; anything else marked ends here.
    if (rangeActive && owner_->isZooming())
        rangeEnd = owner_->viewport().snappedTimeAt(mouseX);
    else
        rangeActive = false;
    update();
}

void RulerView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton || owner_->mode() != VokGUI::ModeZoomArea) {
        rangeActive = false;
        update();
        return;
    }
    // Any other button leaves the zoom-area mode.
    const QAction* edit = owner_->action(VokGUI::ActEditMode);
    owner_->setMode(edit && edit->isChecked() ? VokGUI::ModeEdit : VokGUI::ModeQuery);
    owner_->setModeCursor();
}

} // namespace kesu::toolvok
