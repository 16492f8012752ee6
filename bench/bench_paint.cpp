// Paint time of the wave view: builds a large document in memory (by default
// 1,000 waves of 10,000 segments, one wave in four a bus) and renders a
// 1600 x 900 wave view of it offscreen at three places: the fit zoom, step 1
// at time 0, and step 1 in the middle of the time axis.
//
//   bench_paint [--waves N] [--segments M] [--repeat R] [--seed S] [--png DIR]
//
// Each figure is the median wall-clock time of R paints (default 15), with
// the number of primitives the paint drew. --png writes the pictures.

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

struct Options {
    int waves = 1000;
    int segments = 10000;
    int repeat = 15;
    quint64 seed = 1;
    QString pngDir;
};

// splitmix64
class Rng
{
public:
    explicit Rng(quint64 seed) : state_(seed) {}
    quint64 next()
    {
        quint64 z = (state_ += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    quint64 below(quint64 n) { return next() % n; }

private:
    quint64 state_;
};

std::string hexOf(quint64 v)
{
    char digits[20];
    const auto r = std::to_chars(digits, digits + sizeof digits, v, 16);
    return std::string(digits, r.ptr);
}

// Levels and bus values at random, 3 % don't care and 2 % high impedance,
// durations 1 to 1000, offsets below 1000; about one wave in a hundred ends
// in a forever tail.
WaveData* makeWave(Rng& rng, int index, int segments)
{
    const bool bus = index % 4 == 3;
    const int width = bus ? 8 + int(rng.below(57)) : 1;
    auto* wave = new WaveData(bus ? QStringLiteral("data%1[%2:0]").arg(index).arg(width - 1)
                                  : QStringLiteral("sig%1").arg(index));
    wave->isBus = bus;
    wave->busWidth = width;
    wave->offset = rng.below(1000);
    const quint64 mask = width >= 64 ? ~quint64(0) : (quint64(1) << width) - 1;
    const int foreverAt = index % 100 == 42 ? segments - 1 - int(rng.below(std::min(segments, 64))) : -1;
    wave->patterns.reserve(segments);
    std::string previous;
    for (int k = 0; k < segments; ++k) {
        std::string value;
        do {
            const quint64 pick = rng.below(100);
            if (pick < 3)
                value = Values::DontCare;
            else if (pick < 5)
                value = Values::HighZ;
            else if (!bus)
                value = pick & 1 ? "1" : "0";
            else
                value = hexOf(rng.next() & mask);
        } while (value == previous);
        auto* p = new Pattern(value, qint32(1 + rng.below(1000)));
        p->forever = k == foreverAt;
        wave->insertData(p, nullptr);
        previous = std::move(value);
    }
    wave->foreverIndex = foreverAt;
    return wave;
}

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
    for (int i = 1; i < argc; ++i) {
        const bool more = i + 1 < argc;
        if (!std::strcmp(argv[i], "--waves") && more)
            opt.waves = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--segments") && more)
            opt.segments = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--repeat") && more)
            opt.repeat = std::max(1, std::atoi(argv[++i]));
        else if (!std::strcmp(argv[i], "--seed") && more)
            opt.seed = std::strtoull(argv[++i], nullptr, 10);
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
        std::fprintf(stderr, "usage: bench_paint [--waves N] [--segments M] [--repeat R] [--seed S] [--png DIR]\n");
        return 2;
    }
    // Offscreen, and with the user's settings kept out of reach.
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QString project;
    auto gui = std::make_unique<VokGUI>(nullptr, QStringList{}, project, true);
    gui->initialize();

    const double t0 = now();
    Rng rng(opt.seed);
    for (int i = 0; i < opt.waves; ++i)
        gui->document()->addWave(makeWave(rng, i, opt.segments));
    const double built = now() - t0;

    WaveView* view = gui->waveView();
    QImage image(1600, 900, QImage::Format_RGB32);
    // The first render lays the hidden window out; the size set after it stays.
    gui->render(&image);
    view->resize(1600, 900);
    gui->Refresh();
    const quint64 end = gui->getMaxEnd();

    std::printf("document: %d waves x %d segments, built in %.2f s; time axis 0..%llu\n", opt.waves, opt.segments,
                built, static_cast<unsigned long long>(end));
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
    };
    for (const Place& place : places) {
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
