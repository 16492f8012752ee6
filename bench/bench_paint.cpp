// Paint time of the wave view: builds a large document in memory (by default
// 1,000 waves of 10,000 segments, one wave in four a bus; --one-wave: one
// wave of 10,000,000) and renders a 1600 x 900 wave view of it offscreen at
// four places: the fit zoom, and step 1 at time 0, in the middle and at the
// end of the time axis. --place NAME (fit, start, middle, end) measures one.
//
//   bench_paint [--waves N] [--segments M] [--one-wave] [--repeat R] [--seed S]
//               [--place NAME] [--png DIR] [--bands B]
//
// Each figure is the median wall-clock time of R paints (default 15), with
// the number of primitives the paint drew. --png writes the pictures;
// --bands paints in B bands side by side (default: as the view decides).

#include "benchtool.h"
#include "generated_document.h"
#include "processrun.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "waveview.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace kesu::toolvok;

namespace {

struct Options : RunOptions {
    QString pngDir;
    QString place;
    int bands = 0;
};

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Figure {
    double medianMs = 0;
    double minMs = 0;
    int primitives = 0;
};

Figure measure(WaveView* view, int repeat, QImage& image)
{
    std::vector<double> ms;
    for (int i = 0; i < repeat; ++i) {
        const double t0 = now();
        view->render(&image);
        ms.push_back((now() - t0) * 1000.0);
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.front(), view->lastPaintPrimitives()};
}

bool parse(int argc, char** argv, Options& opt)
{
    opt.repeat = 15;
    for (int i = 1; i < argc; ++i) {
        const bool more = i + 1 < argc;
        if (takeRunOption(argc, argv, i, opt))
            continue;
        if (!std::strcmp(argv[i], "--one-wave"))
            opt.waves = 1, opt.segments = 10000000;
        else if (!std::strcmp(argv[i], "--place") && more)
            opt.place = QString::fromLocal8Bit(argv[++i]);
        else if (!std::strcmp(argv[i], "--bands") && more)
            opt.bands = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--png") && more)
            opt.pngDir = QString::fromLocal8Bit(argv[++i]);
        else
            return false;
    }
    return opt.waves > 0 && opt.segments > 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options opt;
    if (!parse(argc, argv, opt)) {
        std::fprintf(stderr, "usage: bench_paint [--waves N] [--segments M] [--one-wave] [--repeat R] [--seed S] "
                             "[--place fit|start|middle|end] [--png DIR] [--bands B]\n");
        return 2;
    }
    BenchTool tool(argc, argv);
    const std::unique_ptr<VokGUI>& gui = tool.gui;

    const double t0 = now();
    for (qint64 i = 0; i < opt.waves; ++i)
        gui->document()->addWave(makeGeneratedWave(opt.seed, i, opt.segments).release());
    const double built = now() - t0;

    WaveView* view = gui->waveView();
    QImage image(1600, 900, QImage::Format_RGB32);
    // The first render lays the hidden window out; the size set after it stays.
    gui->render(&image);
    view->resize(1600, 900);
    if (opt.bands > 0)
        view->setProperty("paintBands", opt.bands);
    gui->Refresh();
    const quint64 end = gui->getMaxEnd();

    std::printf("document: %lld waves x %lld segments, built in %.2f s; time axis 0..%llu\n",
                static_cast<long long>(opt.waves), static_cast<long long>(opt.segments), built, static_cast<unsigned long long>(end));
    std::printf("view 1600 x 900, median of %d paints\n", opt.repeat);

    struct Place {
        const char* name;
        const char* file;
        quint64 start;
        quint64 step;   // 0: the fit zoom
    };
    const Place places[] = {
        {"fit zoom", "fit.png", 0, 0},
        {"step 1 at time 0", "start.png", 0, 1},
        {"step 1 mid-axis", "middle.png", end / 2, 1},
        {"step 1 at the end", "end.png", end - qMin(end, quint64(1600 / Viewport::PixelsPerStep)), 1},
    };
    for (const Place& place : places) {
        if (!opt.place.isEmpty() && !QLatin1String(place.file).startsWith(opt.place))
            continue;
        if (place.step == 0) {
            gui->viewZoomfit();
        } else {
            gui->setStartTime(place.start);
            gui->changeStep(place.step);
        }
        const Figure f = measure(view, opt.repeat, image);
        std::printf("  %-18s start %-10llu step %-6llu %8.2f ms  (min %.2f)  %7d primitives\n", place.name,
                    static_cast<unsigned long long>(gui->startTime()), static_cast<unsigned long long>(gui->step()),
                    f.medianMs, f.minMs, f.primitives);
        if (!opt.pngDir.isEmpty())
            image.save(QDir(opt.pngDir).filePath(QLatin1String(place.file)));
    }
    gui->ClearAll();
    return 0;
}
