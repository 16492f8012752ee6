// Opaque fills written straight into the pixels under a raster painter. A
// wave row at the fit zoom asks for tens of thousands of fills of a pixel or
// two; through the painter each pays for its state checks and span set-up,
// which cost many times the pixels themselves.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRgb>

#include <vector>

class QPainter;

namespace kesu::toolvok {

class DirectFill
{
public:
    // Active only when the painter draws into an image of 32-bit pixels,
    // moved by whole pixels at most, laying pixels over what is there
    // (otherwise the painter's own fill must do).
    explicit DirectFill(QPainter& painter);
    bool active() const { return bits_ != nullptr; }
    // r in the painter's coordinates; pixel: an opaque colour.
    void fill(const QRect& r, QRgb pixel);

private:
    uchar* bits_ = nullptr;
    qsizetype bytesPerLine_ = 0;
    QPoint offset_;
    std::vector<QRect> clip_;   // in the image's pixels
};

} // namespace kesu::toolvok
