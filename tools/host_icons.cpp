// The shared actions' own icons, used where the desktop's icon theme has
// none. Named after the theme icons they stand in for, at 22 and 32 pixels.
#include "iconkit.h"

#include <QDir>
#include <QPainterPath>

using namespace iconkit;

namespace {

void folder(QPainter& p)
{
    QPainterPath back;
    back.moveTo(3, 7); back.lineTo(11, 7); back.lineTo(14, 10); back.lineTo(27, 10);
    back.lineTo(27, 26); back.lineTo(3, 26); back.closeSubpath();
    p.setPen(pen(QColor(160, 110, 20), 1.5));
    p.setBrush(QColor(225, 170, 50));
    p.drawPath(back);
    const QPointF flap[] = {{8, 14}, {30, 14}, {26, 26}, {3, 26}};
    p.setBrush(QColor(250, 205, 90));
    p.drawPolygon(flap, 4);
}

void printer(QPainter& p, bool withPaper)
{
    p.setPen(pen(outline, 1.5));
    p.setBrush(paper);
    p.drawRect(QRectF(9, 3, 14, 9));
    p.setBrush(QColor(160, 165, 175));
    p.drawRoundedRect(QRectF(3, 11, 26, 12), 2, 2);
    p.setPen(Qt::NoPen);
    p.setBrush(green);
    p.drawEllipse(QPointF(25, 15), 1.5, 1.5);
    if (!withPaper)
        return;
    p.setPen(pen(outline, 1.5));
    p.setBrush(paper);
    p.drawRect(QRectF(8, 19, 16, 10));
    p.setPen(pen(QColor(150, 160, 180), 1.5));
    p.drawLine(QPointF(11, 23), QPointF(21, 23));
    p.drawLine(QPointF(11, 26), QPointF(18, 26));
}

// An arrow bending round from the lower right to the left, where it points.
void bentArrow(QPainter& p)
{
    QPainterPath bend;
    bend.moveTo(26, 27);
    bend.cubicTo(29, 15, 21, 10, 11, 12);
    p.setPen(pen(wave, 4));
    p.setBrush(Qt::NoBrush);
    p.drawPath(bend);
    arrowHead(p, {3, 12.5}, {-1, 0.05}, 10, 7, wave);
}

void circle(QPainter& p, const QColor& color)
{
    p.setPen(pen(color.darker(130), 1.5));
    p.setBrush(color);
    p.drawEllipse(QPointF(16, 16), 13, 13);
}

void window(QPainter& p)
{
    p.setPen(pen(outline, 1.5));
    p.setBrush(paper);
    p.drawRect(QRectF(3, 10, 20, 18));
    p.setBrush(wave);
    p.drawRect(QRectF(3, 10, 20, 4));
}

void dashedFrame(QPainter& p, const QRectF& r)
{
    QPen dashes(wave, 1.5, Qt::DashLine);
    dashes.setDashPattern({2, 1.5});
    p.setPen(dashes);
    p.setBrush(Qt::NoBrush);
    p.drawRect(r);
}

const std::pair<const char*, Drawing> icons[] = {
    {"document-new", [](QPainter& p) {
         sheet(p, {6, 3, 20, 26});
         p.setPen(Qt::NoPen);
         p.setBrush(green);
         p.drawEllipse(QPointF(23, 23), 7.5, 7.5);
         plus(p, {23, 23}, 4, Qt::white, 2.5);
     }},
    {"document-open", [](QPainter& p) { folder(p); }},
    {"document-save", [](QPainter& p) { disk(p, {4, 4, 24, 24}); }},
    {"document-save-as", [](QPainter& p) {
         disk(p, {2, 2, 21, 21});
         p.setPen(pen(QColor(160, 90, 0), 1));
         p.setBrush(QColor(255, 190, 60));
         QPainterPath pencil;
         pencil.moveTo(13, 30); pencil.lineTo(14, 25); pencil.lineTo(26, 13); pencil.lineTo(30, 17);
         pencil.lineTo(18, 29); pencil.closeSubpath();
         p.drawPath(pencil);
     }},
    {"document-page-setup", [](QPainter& p) {
         sheet(p, {5, 3, 22, 26});
         dashedFrame(p, {9, 11, 14, 14});
     }},
    {"document-print-preview", [](QPainter& p) {
         sheet(p, {3, 2, 19, 25}, true);
         magnifier(p, {19, 18}, 6);
     }},
    {"document-print", [](QPainter& p) { printer(p, true); }},
    {"window-close", [](QPainter& p) {
         circle(p, QColor(205, 50, 50));
         cross(p, {16, 16}, 5.5, Qt::white, 3.5);
     }},
    {"edit-undo", [](QPainter& p) { bentArrow(p); }},
    {"edit-redo", [](QPainter& p) {
         p.translate(32, 0);
         p.scale(-1, 1);
         bentArrow(p);
     }},
    {"edit-cut", [](QPainter& p) {
         p.setPen(pen(QColor(90, 95, 105), 2.5));
         p.drawLine(QPointF(9, 3), QPointF(20, 21));
         p.drawLine(QPointF(23, 3), QPointF(12, 21));
         p.setPen(pen(red, 2.5));
         p.setBrush(Qt::NoBrush);
         p.drawEllipse(QPointF(10, 25), 4.5, 4.5);
         p.drawEllipse(QPointF(22, 25), 4.5, 4.5);
         p.setPen(Qt::NoPen);
         p.setBrush(outline);
         p.drawEllipse(QPointF(16, 13.5), 1.5, 1.5);
     }},
    {"edit-copy", [](QPainter& p) {
         sheet(p, {3, 2, 17, 21});
         sheet(p, {12, 9, 17, 21}, true);
     }},
    {"edit-paste", [](QPainter& p) {
         p.setPen(pen(QColor(120, 80, 30), 1.5));
         p.setBrush(QColor(185, 135, 70));
         p.drawRoundedRect(QRectF(5, 5, 22, 25), 2, 2);
         p.setPen(pen(outline, 1));
         p.setBrush(paper);
         p.drawRect(QRectF(9, 9, 14, 17));
         p.setBrush(QColor(180, 185, 195));
         p.drawRoundedRect(QRectF(11, 2, 10, 6), 1.5, 1.5);
         p.setPen(pen(QColor(150, 160, 180), 1.5));
         for (qreal y : {14.0, 18.0, 22.0})
             p.drawLine(QPointF(12, y), QPointF(20, y));
     }},
    {"edit-delete", [](QPainter& p) {
         p.setPen(pen(outline, 1.5));
         p.drawLine(QPointF(4, 28), QPointF(28, 28));
         p.translate(16, 15);
         p.rotate(-35);
         p.setBrush(QColor(240, 130, 150));
         p.drawRoundedRect(QRectF(-12, -6, 24, 12), 2, 2);
         p.setBrush(QColor(120, 150, 215));
         p.drawRoundedRect(QRectF(-12, -6, 9, 12), 2, 2);
     }},
    {"zoom-in", [](QPainter& p) {
         magnifier(p, {13, 13}, 9);
         plus(p, {13, 13}, 4.5, ink);
     }},
    {"zoom-out", [](QPainter& p) {
         magnifier(p, {13, 13}, 9);
         minus(p, {13, 13}, 4.5, ink);
     }},
    {"zoom-fit-best", [](QPainter& p) {
         magnifier(p, {13, 13}, 9);
         p.setPen(pen(ink, 2));
         p.drawLine(QPointF(9, 13), QPointF(17, 13));
         arrowHead(p, {7, 13}, {-1, 0}, 4, 3.5, ink);
         arrowHead(p, {19, 13}, {1, 0}, 4, 3.5, ink);
     }},
    {"zoom-select", [](QPainter& p) {
         dashedFrame(p, {3, 3, 17, 14});
         magnifier(p, {19, 18}, 7);
     }},
    {"view-refresh", [](QPainter& p) {
         QPainterPath arc;
         arc.arcMoveTo(QRectF(6, 6, 20, 20), 50);
         arc.arcTo(QRectF(6, 6, 20, 20), 50, 270);
         p.setPen(pen(green, 3.5));
         p.setBrush(Qt::NoBrush);
         p.drawPath(arc);
         // The arc ends at 320 degrees, heading up and to the right.
         arrowHead(p, {28.5, 17}, {0.64, -0.77}, 9, 6, green);
     }},
    {"window-new", [](QPainter& p) {
         window(p);
         p.setPen(pen(green, 3));
         p.drawLine(QPointF(14, 20), QPointF(24, 10));
         arrowHead(p, {30, 4}, {1, -1}, 9, 6, green);
     }},
    {"window", [](QPainter& p) {
         window(p);
         p.setPen(pen(green, 3));
         p.drawLine(QPointF(29, 4), QPointF(19, 14));
         arrowHead(p, {13, 20}, {-1, 1}, 9, 6, green);
     }},
    {"help-about", [](QPainter& p) {
         circle(p, QColor(40, 110, 200));
         p.setPen(Qt::NoPen);
         p.setBrush(Qt::white);
         p.drawEllipse(QPointF(16, 9.5), 2.3, 2.3);
         p.drawRoundedRect(QRectF(14, 14, 4, 11), 1, 1);
     }},
    {"help-contents", [](QPainter& p) {
         circle(p, QColor(40, 110, 200));
         QPainterPath hook;
         hook.moveTo(11.5, 12.5);
         hook.cubicTo(11.5, 6.5, 20.5, 6.5, 20.5, 12);
         hook.cubicTo(20.5, 15.5, 16, 16, 16, 19.5);
         p.setPen(pen(Qt::white, 3.5));
         p.setBrush(Qt::NoBrush);
         p.drawPath(hook);
         p.setPen(Qt::NoPen);
         p.setBrush(Qt::white);
         p.drawEllipse(QPointF(16, 24.5), 2.3, 2.3);
     }},
};

} // namespace

bool drawHostIcons(const QString& dir)
{
    bool ok = true;
    for (const int size : {22, 32}) {
        const QDir out(QStringLiteral("%1/%2").arg(dir).arg(size));
        ok = out.mkpath(QStringLiteral(".")) && ok;
        for (const auto& [name, draw] : icons)
            ok = save(out.filePath(QLatin1String(name) + QStringLiteral(".png")), size, draw) && ok;
    }
    return ok;
}
