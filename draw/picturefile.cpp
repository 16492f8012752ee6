// Pictures of a document in files: PDF pages, or one SVG or PNG picture.
#include "picturefile.h"

#include "pagepainter.h"
#include "waveformdata.h"

#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

namespace kesu::toolvok {

namespace {
// Pixels on paper are the screen's, so a page holds what a screen would.
constexpr int Resolution = 96;
// An image past this many pixels would take gigabytes.
constexpr qint64 MaxPixels = qint64(1) << 28;

// The page setup of a job for pictures `width` pixels wide, and its step.
struct Layout
{
    PrintSettings settings;
    quint64 step = 1;
    int names = 0;   // the width of the name column
};

Layout layoutOf(const WaveformData& document, const PictureJob& job, int width)
{
    Layout l;
    l.settings.printStart = job.from;
    l.settings.printEnd = job.to;
    l.settings.printRangeType = PrintSettings::Customized;
    l.settings.printName = job.names;
    l.settings.printRuler = job.ruler;
    l.names = PagePainter::nameColumn(document, l.settings);
    const int usable = width - l.names;
    // Without a step, the one the wave view's zoom to fit would take; without
    // a scale, Fit Page's: the range over the usable width.
    l.step = job.step != 0 ? job.step : Viewport::fittingStep(job.to - job.from, usable);
    int scale = job.timeScale;
    if (scale == 0) {
        const quint64 steps = qMax<quint64>(1, (job.to - job.from) / l.step);
        scale = static_cast<int>(static_cast<float>(quint64(qMax(0, usable)) / steps) / 20.0f * 100.0f);
    }
    l.settings.timeScale = qBound(10, scale, 200);
    return l;
}

bool writePdf(const WaveformData& document, const PictureJob& job, QSaveFile& file)
{
    QPdfWriter writer(&file);
    writer.setResolution(Resolution);
    writer.setPageOrientation(QPageLayout::Landscape);
    writer.setPageMargins(QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter);
    writer.setCreator(QStringLiteral("Waveform Editor"));
    writer.setTitle(QFileInfo(file.fileName()).completeBaseName());
    const QSize area = writer.pageLayout().paintRectPixels(Resolution).size();
    const Layout layout = layoutOf(document, job, area.width());
    PagePainter pages(document, layout.settings, layout.step, job.style, area);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    pages.printPages(painter, job.from, job.to, [&writer] { return writer.newPage(); });
    return painter.end();
}

} // namespace

std::optional<PictureFormat> pictureFormat(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("pdf"))
        return PictureFormat::Pdf;
    if (suffix == QLatin1String("svg"))
        return PictureFormat::Svg;
    if (suffix == QLatin1String("png"))
        return PictureFormat::Png;
    return std::nullopt;
}

bool writePicture(const WaveformData& document, const PictureJob& job, const QString& path, QString& error)
{
    const std::optional<PictureFormat> format = pictureFormat(path);
    if (!format) {
        error = QStringLiteral("%1: not a .pdf, .svg or .png file").arg(path);
        return false;
    }
    if (job.to <= job.from) {
        error = QStringLiteral("the range to draw is empty");
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    bool drawn = false;
    if (*format == PictureFormat::Pdf) {
        drawn = writePdf(document, job, file);
    } else {
        // One picture as wide as the range and as tall as all rows.
        const Layout layout = layoutOf(document, job, PictureJob::FitWidth);
        const int names = layout.names;
        const quint64 step = layout.step;
        const quint64 steps = (job.to - job.from + step - 1) / step;
        // A little room right of the range for the last ruler label.
        const qint64 width = names + qint64(qMin<quint64>(steps, 1u << 24)) * layout.settings.pixelsPerStep() + 12;
        const qint64 height = (job.ruler ? PagePainter::RulerHeight : 0)
                            + qint64(document.waves.size()) * Viewport::RowHeight + 10;
        if (width * height > MaxPixels || width > 32767 || height > 32767) {
            error = QStringLiteral("a picture of %1 x %2 pixels is too large: draw a shorter range or at a "
                                   "smaller scale")
                        .arg(width)
                        .arg(height);
            return false;
        }
        const QSize size(static_cast<int>(width), static_cast<int>(height));
        PagePainter page(document, layout.settings, step, job.style, size);
        auto paint = [&](QPaintDevice& device) {
            QPainter painter(&device);
            painter.fillRect(QRect(QPoint(), size), Qt::white);
            page.printPages(painter, job.from, job.to, [] { return false; });
        };
        if (*format == PictureFormat::Svg) {
            QSvgGenerator svg;
            svg.setOutputDevice(&file);
            svg.setSize(size);
            svg.setViewBox(QRect(QPoint(), size));
            svg.setResolution(Resolution);
            svg.setTitle(QFileInfo(path).completeBaseName());
            paint(svg);
            drawn = true;
        } else {
            QImage image(size, QImage::Format_RGB32);
            paint(image);
            drawn = image.save(&file, "PNG");
        }
    }
    if (!drawn || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace kesu::toolvok
