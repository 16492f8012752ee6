#include "directfill.h"

#include <QPaintEngine>
#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <cmath>

namespace kesu::toolvok {

DirectFill::DirectFill(QPainter& painter)
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
    // The painter has the image's pixels to itself while it is active:
    // writing through the constant pointer detaches nothing.
    bits_ = const_cast<uchar*>(image->constBits());
    bytesPerLine_ = image->bytesPerLine();
}

void DirectFill::fill(const QRect& r, QRgb pixel)
{
    const QRect target = r.translated(offset_);
    for (const QRect& c : clip_) {
        const QRect part = target & c;
        if (part.isEmpty())
            continue;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(bits_ + y * bytesPerLine_);
            std::fill_n(line + part.left(), part.width(), pixel);
        }
    }
}

} // namespace kesu::toolvok
