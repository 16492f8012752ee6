// The tool's own icons: waves and markers, at 32 pixels.
#include "iconkit.h"

#include <QDir>
#include <QPainterPath>

using namespace iconkit;

namespace {

// A square wave across the icon, the shape every icon here starts from.
void pulse(QPainter& p, int top, int bottom, QColor color = wave)
{
    p.setPen(QPen(color, 2.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const QPointF points[] = {{2, qreal(bottom)}, {9, qreal(bottom)}, {9, qreal(top)}, {18, qreal(top)},
                              {18, qreal(bottom)}, {25, qreal(bottom)}, {25, qreal(top)}, {30, qreal(top)}};
    p.drawPolyline(points, 8);
}

void flag(QPainter& p, QColor color)
{
    p.setPen(QPen(color, 2.5));
    p.drawLine(QPointF(12, 4), QPointF(12, 30));
    QPainterPath banner;
    banner.moveTo(12, 4);
    banner.lineTo(24, 8);
    banner.lineTo(12, 12);
    banner.closeSubpath();
    p.fillPath(banner, color);
}

void eye(QPainter& p)
{
    p.setPen(QPen(ink, 2));
    p.setBrush(Qt::white);
    p.drawEllipse(QRectF(6, 18, 20, 11));
}

} // namespace

// The program's own icon, also drawn at the desktop's sizes.
void editorIcon(QPainter& p)
{
    p.setBrush(QColor(245, 248, 255));
    p.setPen(QPen(ink, 1.5));
    p.drawRoundedRect(QRectF(1, 1, 30, 30), 5, 5);
    pulse(p, 7, 15);
    p.setPen(QPen(QColor(0, 150, 90), 2));
    QPainterPath bus;
    bus.moveTo(3, 24); bus.lineTo(6, 20); bus.lineTo(14, 20); bus.lineTo(17, 24);
    bus.lineTo(14, 28); bus.lineTo(6, 28); bus.closeSubpath();
    bus.moveTo(17, 24); bus.lineTo(20, 20); bus.lineTo(29, 20);
    bus.moveTo(17, 24); bus.lineTo(20, 28); bus.lineTo(29, 28);
    p.drawPath(bus);
}

// A waveform document: a sheet of paper with a pulse on it.
void documentIcon(QPainter& p)
{
    sheet(p, QRectF(5, 2, 22, 28));
    p.setPen(QPen(wave, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const QPointF points[] = {{8, 23}, {12, 23}, {12, 14}, {18, 14}, {18, 23}, {24, 23}};
    p.drawPolyline(points, 6);
}

bool drawToolIcons(const QString& dir)
{
    const QDir out(dir);
    const std::pair<const char*, Drawing> icons[] = {
        {"waveform_editor.png", editorIcon},
        {"edit_mode.png", [](QPainter& p) {
             pulse(p, 6, 16);
             p.setPen(QPen(QColor(200, 120, 0), 1));
             p.setBrush(QColor(255, 190, 60));
             QPainterPath pencil;
             pencil.moveTo(8, 30); pencil.lineTo(10, 24); pencil.lineTo(26, 8); pencil.lineTo(30, 12);
             pencil.lineTo(14, 28); pencil.closeSubpath();
             p.drawPath(pencil);
         }},
        {"new_wave.png", [](QPainter& p) {
             pulse(p, 4, 14);
             plus(p, {24, 24}, 5, QColor(0, 150, 60));
         }},
        {"show_waves.png", [](QPainter& p) {
             pulse(p, 4, 12);
             eye(p);
             p.setBrush(ink);
             p.drawEllipse(QRectF(13, 20, 6, 7));
         }},
        {"hide_waves.png", [](QPainter& p) {
             pulse(p, 4, 12, QColor(150, 170, 200));
             eye(p);
             p.setPen(QPen(QColor(200, 30, 30), 2.5));
             p.drawLine(QPointF(6, 30), QPointF(26, 17));
         }},
        {"remove_waves.png", [](QPainter& p) {
             pulse(p, 4, 14);
             cross(p, {24, 24}, 5, red);
         }},
        {"place_marker.png", [](QPainter& p) {
             flag(p, QColor(220, 30, 30));
             plus(p, {25, 24}, 5, QColor(0, 150, 60));
         }},
        {"remove_marker.png", [](QPainter& p) {
             flag(p, QColor(230, 140, 140));
             cross(p, {24, 24}, 5, red);
         }},
    };
    bool ok = true;
    for (const auto& [name, draw] : icons)
        ok = save(out.filePath(QLatin1String(name)), 32, draw) && ok;
    return ok;
}

bool drawDesktopIcons(const QString& dir)
{
    // The sizes of the freedesktop.org "hicolor" theme that menus and file
    // managers look for.
    const QDir out(dir);
    bool ok = true;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString folder = QStringLiteral("%1x%1").arg(size);
        ok = out.mkpath(folder + QStringLiteral("/apps")) && out.mkpath(folder + QStringLiteral("/mimetypes")) && ok;
        ok = save(out.filePath(folder + QStringLiteral("/apps/waveform-editor.png")), size, editorIcon) && ok;
        ok = save(out.filePath(folder + QStringLiteral("/mimetypes/application-x-waveform-document.png")), size,
                  documentIcon) && ok;
    }
    return ok;
}
