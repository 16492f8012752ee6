#include "directfill.h"

#include <QPaintEngine>
#include <QPainter>
#include <QRegion>

#include <QPen>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace kesu::toolvok {

namespace {

// A line of whole-pixel ends covers the same pixels wherever it lies, moved
// by whole pixels, as long as no clipping cuts it: its pixels are learnt once
// per shape from the painter itself, so they are the painter's by
// construction. Bands paint in threads of their own, each with its shapes.
constexpr int MaxExtent = 64;
constexpr int Margin = 4;

const std::vector<QPoint>& shapeOf(int dx, int dy, int width)
{
    thread_local std::unordered_map<int, std::vector<QPoint>> shapes;
    const int key = ((dx + MaxExtent) * (2 * MaxExtent + 1) + (dy + MaxExtent)) * 3 + width;
    const auto known = shapes.find(key);
    if (known != shapes.end())
        return known->second;
    const QPoint from(Margin + std::max(0, -dx), Margin + std::max(0, -dy));
    QImage probe(std::abs(dx) + 2 * Margin + 1, std::abs(dy) + 2 * Margin + 1, QImage::Format_ARGB32_Premultiplied);
    probe.fill(Qt::transparent);
    {
        QPainter painter(&probe);
        painter.setPen(QPen(Qt::black, width));
        painter.drawLine(from, from + QPoint(dx, dy));
    }
    std::vector<QPoint> pixels;
    for (int y = 0; y < probe.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(probe.constScanLine(y));
        for (int x = 0; x < probe.width(); ++x) {
            if (qAlpha(line[x]) != 0)
                pixels.emplace_back(x - from.x(), y - from.y());
        }
    }
    return shapes.emplace(key, std::move(pixels)).first->second;
}

} // namespace

DirectFill::DirectFill(QPainter& painter) : painter_(painter)
{
    QPaintEngine* engine = painter.paintEngine();
    if (!engine || engine->type() != QPaintEngine::Raster || !engine->paintDevice()
        || engine->paintDevice()->devType() != QInternal::Image)
        return;
    auto* image = static_cast<QImage*>(engine->paintDevice());
    const QImage::Format format = image->format();
    if ((format != QImage::Format_RGB32 && format != QImage::Format_ARGB32
         && format != QImage::Format_ARGB32_Premultiplied)
        || image->devicePixelRatio() != 1.0 || painter.compositionMode() != QPainter::CompositionMode_SourceOver
        || painter.opacity() != 1.0)
        return;
    const QTransform& t = painter.deviceTransform();
    if (t.type() > QTransform::TxTranslate || t.dx() != std::floor(t.dx()) || t.dy() != std::floor(t.dy()))
        return;
    offset_ = QPoint(int(t.dx()), int(t.dy()));
    QRegion clip(image->rect());
    if (!engine->systemClip().isEmpty())
        clip &= engine->systemClip();
    if (painter.hasClipping())
        clip &= t.map(painter.clipRegion());
    clip_.assign(clip.begin(), clip.end());
    aliased_ = !painter.testRenderHint(QPainter::Antialiasing);
    // The painter has the image's pixels to itself while it is active:
    // writing through the constant pointer detaches nothing.
    bits_ = const_cast<uchar*>(image->constBits());
    bytesPerLine_ = image->bytesPerLine();
}

void DirectFill::fill(const QRect& r, const QColor& color)
{
    if (!active() || color.alpha() != 255) {
        painter_.fillRect(r, color);
        return;
    }
    const QRgb pixel = color.rgba();
    const int left = r.left() + offset_.x();
    const int top = r.top() + offset_.y();
    const int right = left + r.width();   // past the last column
    const int bottom = top + r.height();
    for (const QRect& c : clip_) {
        const int x0 = std::max(left, c.left());
        const int x1 = std::min(right, c.left() + c.width());
        const int y1 = std::min(bottom, c.top() + c.height());
        for (int y = std::max(top, c.top()); y < y1 && x0 < x1; ++y)
            std::fill(reinterpret_cast<QRgb*>(bits_ + y * bytesPerLine_) + x0,
                      reinterpret_cast<QRgb*>(bits_ + y * bytesPerLine_) + x1, pixel);
    }
}

bool DirectFill::line(const QLine& l, int width, QRgb pixel)
{
    const int dx = l.dx();
    const int dy = l.dy();
    if (!aliased_ || (width != 1 && width != 2) || std::abs(dx) > MaxExtent || std::abs(dy) > MaxExtent)
        return false;
    const QPoint from = l.p1() + offset_;
    const QRect reach = QRect(from, from + QPoint(dx, dy)).normalized().adjusted(-Margin, -Margin, Margin, Margin);
    if (std::none_of(clip_.begin(), clip_.end(), [&](const QRect& c) { return c.contains(reach); }))
        return false;
    for (const QPoint& p : shapeOf(dx, dy, width)) {
        auto* line = reinterpret_cast<QRgb*>(bits_ + (from.y() + p.y()) * bytesPerLine_);
        line[from.x() + p.x()] = pixel;
    }
    return true;
}

} // namespace kesu::toolvok
