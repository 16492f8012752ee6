#pragma once

// Shapes the icon drawings share. Every drawing works on a 32 by 32 grid;
// save() scales it to the size asked for.
#include <QColor>
#include <QPainter>
#include <QString>

#include <functional>

namespace iconkit {

using Drawing = std::function<void(QPainter&)>;

const QColor ink(30, 60, 140);
const QColor wave(0, 110, 220);
const QColor outline(70, 70, 80);
const QColor paper(252, 252, 252);
const QColor green(0, 150, 60);
const QColor red(200, 30, 30);

// Writes the drawing as a size x size PNG; false when the file could not be written.
bool save(const QString& path, int size, const Drawing& draw);

QPen pen(const QColor& color, qreal width);
// A sheet of paper with a folded top right corner, optionally with lines of text.
void sheet(QPainter& p, const QRectF& r, bool text = false);
// A filled arrow head with its tip at `tip`, pointing along `direction`.
void arrowHead(QPainter& p, QPointF tip, QPointF direction, qreal length, qreal halfWidth, const QColor& color);
void plus(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width = 3);
void minus(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width = 3);
void cross(QPainter& p, QPointF centre, qreal arm, const QColor& color, qreal width = 3);
// A magnifying glass: the lens around `centre` and its handle to the lower right.
void magnifier(QPainter& p, QPointF centre, qreal radius);
// A floppy disk filling r.
void disk(QPainter& p, const QRectF& r);

} // namespace iconkit
