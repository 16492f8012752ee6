// Print time of the whole generated document: 1,000 waves of 10,000 segments
// (by default) at the fit zoom, every page printed to a PDF file the way the
// print preview lays them out, with the time scale Fit Page gives.
//
//   bench_print [--waves N] [--segments M] [--seed S]

#include "benchtool.h"
#include "generated_document.h"
#include "printsettings.h"
#include "vokgui.h"
#include "waveformdata.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QPrinter>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace kesu::toolvok;

int main(int argc, char** argv)
{
    int waves = 1000;
    int segments = 10000;
    quint64 seed = 1;
    for (int i = 1; i < argc; ++i) {
        const bool more = i + 1 < argc;
        if (!std::strcmp(argv[i], "--waves") && more)
            waves = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--segments") && more)
            segments = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--seed") && more)
            seed = std::strtoull(argv[++i], nullptr, 10);
        else {
            std::fprintf(stderr, "usage: bench_print [--waves N] [--segments M] [--seed S]\n");
            return 2;
        }
    }
    BenchTool tool(argc, argv);
    const std::unique_ptr<VokGUI>& gui = tool.gui;
    for (int i = 0; i < waves; ++i)
        gui->document()->addWave(makeGeneratedWave(seed, i, segments).release());
    QImage image(1600, 900, QImage::Format_RGB32);
    gui->render(&image);
    gui->Refresh();
    gui->viewZoomfit();

    QPrinter printer(QPrinter::ScreenResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(tool.scratch(QStringLiteral("doc.pdf")));
    // Fit Page's rule: the range over the usable width, in steps.
    PrintSettings& print = gui->printSettings();
    print.printRangeType = PrintSettings::All;
    print.fitPage = true;
    const quint64 steps = std::max<quint64>(1, gui->getMaxEnd() / std::max<quint64>(1, gui->step()));
    const int width = printer.pageRect(QPrinter::DevicePixel).toRect().width() - 79;
    print.timeScale = std::clamp(int(float(quint64(width) / steps) / 20.0f * 100.0f), 10, 200);

    // The processor time too: on a machine shared with builds the wall clock
    // says more about the neighbours than about the print.
    auto cpu = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
               + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    };
    QElapsedTimer timer;
    timer.start();
    const double cpuBefore = cpu();
    gui->PreviewPages(&printer);
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    const double cpuSeconds = cpu() - cpuBefore;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%d waves x %d segments, step %llu, time scale %d: printed in %.2f s (%.2f s of processor time), "
                "PDF %.1f MB, peak %.0f MB\n",
                waves, segments, static_cast<unsigned long long>(gui->step()), print.timeScale, seconds, cpuSeconds,
                double(QFileInfo(printer.outputFileName()).size()) / 1e6, double(usage.ru_maxrss) / 1024.0);
    return 0;
}
