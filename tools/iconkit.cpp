#include "iconkit.h"

#include <QImage>
#include <QPainterPath>
#include <QtMath>

namespace iconkit {

bool save(const QString& path, int size, const Drawing& draw)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 32.0, size / 32.0);
    draw(p);
    p.end();
    return image.save(path);
}

QPen pen(const QColor& color, qreal width)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void sheet(QPainter& p, const QRectF& r, bool text)
{
    const qreal fold = r.width() / 3;
    QPainterPath page;
    page.moveTo(r.topLeft());
    page.lineTo(r.right() - fold, r.top());
    page.lineTo(r.right(), r.top() + fold);
    page.lineTo(r.bottomRight());
    page.lineTo(r.bottomLeft());
    page.closeSubpath();
    p.setPen(pen(outline, 1.5));
    p.setBrush(paper);
    p.drawPath(page);
    QPainterPath corner;
    corner.moveTo(r.right() - fold, r.top());
    corner.lineTo(r.right() - fold, r.top() + fold);
    corner.lineTo(r.right(), r.top() + fold);
    p.setBrush(QColor(215, 218, 225));
    p.drawPath(corner);
    if (!text)
        return;
    p.setPen(pen(QColor(150, 160, 180), 1.5));
    for (qreal y = r.top() + fold + 3; y < r.bottom() - 2; y += 4)
        p.drawLine(QPointF(r.left() + 3, y), QPointF(r.right() - 3, y));
}

void arrowHead(QPainter& p, QPointF tip, QPointF direction, qreal length, qreal halfWidth, const QColor& color)
{
    const qreal norm = qSqrt(QPointF::dotProduct(direction, direction));
    const QPointF along = direction / norm;
    const QPointF across(-along.y(), along.x());
    const QPointF base = tip - along * length;
    const QPointF head[] = {tip, base + across * halfWidth, base - across * halfWidth};
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawPolygon(head, 3);
}

void plus(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width)
{
    p.setPen(pen(color, width));
    p.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    p.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
}

void minus(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width)
{
    p.setPen(pen(color, width));
    p.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
}

void cross(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width)
{
    p.setPen(pen(color, width));
    p.drawLine(centre - QPointF(arm, arm), centre + QPointF(arm, arm));
    p.drawLine(centre + QPointF(-arm, arm), centre + QPointF(arm, -arm));
}

void magnifier(QPainter& p, QPointF centre, qreal radius)
{
    const QPointF rim = centre + QPointF(radius, radius) * 0.72;
    p.setPen(pen(QColor(60, 60, 70), 4.5));
    p.drawLine(rim, rim + QPointF(radius, radius) * 0.75);
    p.setPen(pen(ink, 2.5));
    p.setBrush(QColor(220, 235, 255));
    p.drawEllipse(centre, radius, radius);
}

void disk(QPainter& p, const QRectF& r)
{
    const qreal u = r.width() / 24;   // the drawing's own unit
    p.setPen(pen(QColor(20, 50, 110), 1.5));
    p.setBrush(QColor(45, 95, 180));
    p.drawRoundedRect(r, 2 * u, 2 * u);
    p.setPen(Qt::NoPen);
    p.setBrush(paper);
    p.drawRect(QRectF(r.left() + 5 * u, r.top() + 1.5 * u, 14 * u, 9 * u));
    p.setBrush(QColor(200, 205, 215));
    p.drawRect(QRectF(r.left() + 6 * u, r.top() + 15 * u, 12 * u, 9 * u));
    p.setBrush(QColor(45, 95, 180));
    p.drawRect(QRectF(r.left() + 13 * u, r.top() + 17 * u, 3 * u, 5 * u));
}

} // namespace iconkit
