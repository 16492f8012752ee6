// Draws the tool's icons. Run once after changing a drawing:
//   make_icons shell/images
// The PNG files it writes are kept in the repository.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <functional>

namespace {

constexpr int Size = 32;
const QColor ink(30, 60, 140);
const QColor wave(0, 110, 220);

void save(const QString& dir, const char* name, const std::function<void(QPainter&)>& draw)
{
    QImage image(Size, Size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    p.end();
    image.save(QDir(dir).filePath(QLatin1String(name)));
}

// A square wave across the icon, the shape every icon here starts from.
void pulse(QPainter& p, int top, int bottom, QColor color = wave)
{
    p.setPen(QPen(color, 2.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const QPointF points[] = {{2, qreal(bottom)}, {9, qreal(bottom)}, {9, qreal(top)}, {18, qreal(top)},
                              {18, qreal(bottom)}, {25, qreal(bottom)}, {25, qreal(top)}, {30, qreal(top)}};
    p.drawPolyline(points, 8);
}

void plus(QPainter& p, QPointF c, QColor color)
{
    p.setPen(QPen(color, 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(c - QPointF(5, 0), c + QPointF(5, 0));
    p.drawLine(c - QPointF(0, 5), c + QPointF(0, 5));
}

void cross(QPainter& p, QPointF c, QColor color)
{
    p.setPen(QPen(color, 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(c - QPointF(5, 5), c + QPointF(5, 5));
    p.drawLine(c + QPointF(-5, 5), c + QPointF(5, -5));
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

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QString dir = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(".");
    QDir().mkpath(dir);

    save(dir, "waveform_editor.png", [](QPainter& p) {
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
    });
    save(dir, "edit_mode.png", [](QPainter& p) {
        pulse(p, 6, 16);
        p.setPen(QPen(QColor(200, 120, 0), 1));
        p.setBrush(QColor(255, 190, 60));
        QPainterPath pencil;
        pencil.moveTo(8, 30); pencil.lineTo(10, 24); pencil.lineTo(26, 8); pencil.lineTo(30, 12);
        pencil.lineTo(14, 28); pencil.closeSubpath();
        p.drawPath(pencil);
    });
    save(dir, "new_wave.png", [](QPainter& p) {
        pulse(p, 4, 14);
        plus(p, {24, 24}, QColor(0, 150, 60));
    });
    save(dir, "show_waves.png", [](QPainter& p) {
        pulse(p, 4, 12);
        p.setPen(QPen(ink, 2));
        p.setBrush(Qt::white);
        p.drawEllipse(QRectF(6, 18, 20, 11));
        p.setBrush(ink);
        p.drawEllipse(QRectF(13, 20, 6, 7));
    });
    save(dir, "hide_waves.png", [](QPainter& p) {
        pulse(p, 4, 12, QColor(150, 170, 200));
        p.setPen(QPen(ink, 2));
        p.setBrush(Qt::white);
        p.drawEllipse(QRectF(6, 18, 20, 11));
        p.setPen(QPen(QColor(200, 30, 30), 2.5));
        p.drawLine(QPointF(6, 30), QPointF(26, 17));
    });
    save(dir, "remove_waves.png", [](QPainter& p) {
        pulse(p, 4, 14);
        cross(p, {24, 24}, QColor(200, 30, 30));
    });
    save(dir, "place_marker.png", [](QPainter& p) {
        flag(p, QColor(220, 30, 30));
        plus(p, {25, 24}, QColor(0, 150, 60));
    });
    save(dir, "remove_marker.png", [](QPainter& p) {
        flag(p, QColor(230, 140, 140));
        cross(p, {24, 24}, QColor(200, 30, 30));
    });
    return 0;
}
