// Opaque fills and lines written straight into the pixels under a raster
// painter. A wave row at the fit zoom asks for tens of thousands of fills of a
// pixel or two and of short slanted lines; through the painter each pays for
// its state checks, span set-up and pen changes, many times the pixels
// themselves.
#pragma once

#include <QColor>
#include <QImage>
#include <QLine>
#include <QPoint>
#include <QRect>
#include <QRgb>

#include <vector>

class QPainter;

namespace kesu::toolvok {

class DirectFill
{
public:
    // Writes pixels only when the painter draws into an image of 32-bit
    // pixels, moved by whole pixels at most, laying pixels over what is
    // there; otherwise the painter draws.
    explicit DirectFill(QPainter& painter);
    bool active() const { return bits_ != nullptr; }
    // r in the painter's coordinates.
    void fill(const QRect& r, const QColor& color);
    // A solid aliased line of whole-pixel ends and width 1 or 2, on exactly
    // the pixels the painter's own stroker gives it; false leaves the line
    // to the painter (one far from whole, or not inside the clip).
    bool line(const QLine& l, int width, QRgb pixel);

private:
    QPainter& painter_;
    uchar* bits_ = nullptr;
    qsizetype bytesPerLine_ = 0;
    QPoint offset_;
    std::vector<QRect> clip_;   // in the image's pixels
    bool aliased_ = false;
};

} // namespace kesu::toolvok
