// A crowded picture (a whole document at the fit zoom) is painted in
// horizontal bands side by side, one per processor. Bands are cut between
// waves, and every band draws the wave above it too, whose low line and
// marks reach into the band, so the picture is the one a single walk from
// the top draws.
#include "waveview.h"

#include "vokgui.h"
#include "wavedata.h"
#include "wavepaint.h"

#include <QImage>
#include <QPainter>
#include <QThread>

#include <future>
#include <optional>

namespace kesu::toolvok {

namespace {

// Below this many segments in view a paint takes a millisecond or two: not
// worth a thread.
constexpr qint64 CrowdedSegments = 20000;
constexpr int MaxBands = 8;

qint64 segmentsInView(const WaveData& wave, quint64 start, quint64 end)
{
    const int count = static_cast<int>(wave.patterns.size());
    if (!wave.timesRise() || wave.foreverIndex >= 0)
        return count;
    return wave.firstSegmentEndingAfter(end) - wave.firstSegmentEndingAfter(start);
}

// Each band's first wave (an index into shown), cut by rows so that bands
// hold about as many rows.
std::vector<int> bandStarts(const std::vector<WaveView::ShownWave>& shown, int bands)
{
    const int firstRow = shown.front().row;
    const int rows = shown.back().row + 1 - firstRow;
    std::vector<int> starts;
    for (size_t i = 0; i < shown.size(); ++i) {
        if (starts.empty() || shown[i].row - firstRow >= rows * int(starts.size()) / bands)
            starts.push_back(int(i));
    }
    return starts;
}

} // namespace

int WaveView::bandCount(const WavePaintSetup& setup, const std::vector<ShownWave>& shown) const
{
    if (forcedBands_ > 0)
        return qBound(1, forcedBands_, qMax(1, int(shown.size())));
    if (setup.direct || shown.size() < 2)
        return 1;
    const int cores = qMin(MaxBands, QThread::idealThreadCount());
    if (cores < 2)
        return 1;
    const quint64 end = setup.vp.endTime(setup.width);
    qint64 segments = 0;
    for (const ShownWave& s : shown)
        segments += segmentsInView(*s.wave, setup.vp.startTime, end);
    return segments < CrowdedSegments ? 1 : qMin(cores, int(shown.size()));
}

void WaveView::paintBands(QPainter& painter, const WavePaintSetup& setup, const std::vector<ShownWave>& shown,
                          int bands)
{
    const std::vector<int> starts = bandStarts(shown, bands);
    // The waves' start-time indexes fill in lazily on first use: fill them
    // here, before the bands read them side by side.
    for (const ShownWave& s : shown)
        s.wave->timesRise();
    const qreal ratio = devicePixelRatioF();
    const QBrush background = palette().brush(backgroundRole());
    struct Band
    {
        int top = 0;
        QImage image;
        int primitives = 0;
    };
    std::vector<Band> out(starts.size());
    // The first band is drawn straight into the view; the others into images
    // of their own, laid over it afterwards, which also covers whatever the
    // first band's last row draws below its bottom. The background is opaque,
    // so the images need no alpha and are copied rather than blended.
    auto paintBand = [&](size_t b) {
        const int first = starts[b];
        const int last = b + 1 < starts.size() ? starts[b + 1] : int(shown.size());
        Band& band = out[b];
        std::optional<QPainter> own;
        if (b > 0) {
            band.top = setup.vp.rowTop(shown[size_t(first)].row);
            const int bottom = b + 1 < starts.size() ? setup.vp.rowTop(shown[size_t(last)].row) : setup.height;
            band.image = QImage(qCeil(setup.width * ratio), qCeil((bottom - band.top) * ratio),
                                QImage::Format_RGB32);
            band.image.setDevicePixelRatio(ratio);
            own.emplace(&band.image);
            own->fillRect(QRect(0, 0, setup.width, bottom - band.top), background);
            own->translate(0, -band.top);
            own->setFont(setup.style.font);
        }
        WavePaint paint(own ? *own : painter, setup);
        // A row's low line and marks reach into the row below it: the wave
        // above the band is drawn too, cut at the band's top. The value a row
        // compares its first segment with shows only at the view's left
        // edge, under the frame, so it need not be carried down.
        if (first > 0)
            paint.paintWave(shown[size_t(first - 1)].wave, shown[size_t(first - 1)].row);
        for (int i = first; i < last; ++i)
            paint.paintWave(shown[size_t(i)].wave, shown[size_t(i)].row);
        paint.batch().flushAll();
        band.primitives = paint.primitives();
    };
    std::vector<std::future<void>> others;
    for (size_t b = 1; b < out.size(); ++b)
        others.push_back(std::async(std::launch::async, paintBand, b));
    paintBand(0);
    for (auto& f : others)
        f.get();
    for (const Band& band : out) {
        if (!band.image.isNull())
            painter.drawImage(QPointF(0, band.top), band.image);
        primitives_ += band.primitives;
    }
}

} // namespace kesu::toolvok
