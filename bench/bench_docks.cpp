// The property docks on long waves: a single signal and a bus of (by default)
// 100,000 segments each in a shown offscreen tool window in edit mode. Times
//
//   - loading the Waveform Properties summary of the wave and painting it,
//   - the Pulse Properties edits through the dock's own handlers: a value
//     (one bus pulse), a duration (one pulse), scale by 2 and repeat x100 of
//     10 pulses in the middle of the wave,
//
// and one undo and one redo of each edit. Every figure is the median
// wall-clock time of R runs (default 9); each run starts from the same wave
// and an empty undo stack.
//
//   bench_docks [--segments N] [--repeat R] [--seed S]

#include "editdlg.h"
#include "editbench.h"
#include "benchtool.h"
#include "generated_document.h"
#include "vokgui.h"
#include "wavedata.h"
#include "wavedatadlg.h"
#include "wavesummary.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QUndoStack>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

using namespace kesu::toolvok;

namespace {

using namespace editbench;

[[noreturn]] void fail(const char* what, const char* row)
{
    std::fprintf(stderr, "%s: %s\n", row, what);
    std::exit(1);
}

} // namespace

int main(int argc, char** argv)
{
    Options opt;
    if (!parse(argc, argv, opt)) {
        std::fprintf(stderr, "usage: bench_docks [--segments N (>= 100)] [--repeat R] [--seed S]\n");
        return 2;
    }
    BenchTool tool(argc, argv);
    const std::unique_ptr<VokGUI>& gui = tool.gui;
    // Waves 0 and 3 of the generated document: a single signal and a bus.
    WaveData* signal = makeGeneratedWave(opt.seed, 0, opt.segments).release();
    WaveData* bus = makeGeneratedWave(opt.seed, 3, opt.segments).release();
    gui->addWave(signal);
    gui->addWave(bus);
    gui->resize(1280, 720);
    gui->show();
    gui->waveDataDlg()->raise();
    QApplication::processEvents();
    gui->action(VokGUI::ActEditMode)->setChecked(true);
    QUndoStack* stack = gui->undoStack();
    EditDlg* dlg = gui->editDlg();

    auto pick = [&](WaveData* wave, qsizetype count) {
        gui->setActiveWave(wave);
        gui->selection() = wave->patterns.mid(wave->patterns.size() / 2, count);
        gui->changeRange(0.5, 10.5);
        gui->LoadEditData();
    };
    auto type = [&](const char* edit, const QString& text, void (EditDlg::*handler)()) {
        dlg->findChild<QLineEdit*>(QLatin1String(edit))->setText(text);
        (dlg->*handler)();
    };
    // Times one edit, its undo and its redo, then undoes it again so that the
    // next run starts from the same wave.
    auto measure = [&](Row& row, WaveData* wave, qsizetype count, const std::function<void()>& edit) {
        const qsizetype segments = wave->patterns.size();
        for (int r = 0; r < opt.repeat; ++r) {
            pick(wave, count);
            const int before = stack->index();
            row.edit.push_back(elapsedMs(edit));
            if (stack->index() != before + 1)
                fail("pushed no command", row.name);
            row.undo.push_back(elapsedMs([&] { gui->undo(); }));
            row.redo.push_back(elapsedMs([&] { gui->redo(); }));
            gui->undo();
            if (wave->patterns.size() != segments)
                fail("undo left another number of segments", row.name);
            // The next push would first delete this undone step and its two
            // copies of the wave; that belongs to no edit measured here.
            stack->clear();
        }
    };

    std::vector<double> summaryMs;
    WaveSummaryModel* summary = gui->waveDataDlg()->summary()->summary();
    for (int r = 0; r < opt.repeat; ++r) {
        gui->waveDataDlg()->LoadData(nullptr);
        summaryMs.push_back(elapsedMs([&] {
            gui->waveDataDlg()->LoadData(signal);
            gui->waveDataDlg()->summary()->viewport()->repaint();
        }));
        if (summary->rowCount() < signal->patterns.size() + 1)
            fail("summary lost lines", "summary");
    }

    Row value{"value (1 bus pulse)", {}, {}, {}};
    measure(value, bus, 1, [&] { type("value", QStringLiteral("0x5A"), &EditDlg::onEditValue); });
    Row duration{"duration (1 pulse)", {}, {}, {}};
    measure(duration, signal, 1, [&] { type("duration", QStringLiteral("12345"), &EditDlg::onEditDuration); });
    Row scale{"scale 10 pulses x2", {}, {}, {}};
    measure(scale, signal, 10, [&] { type("scale", QStringLiteral("2"), &EditDlg::onEditScale); });
    Row repeat{"repeat 10 pulses x100", {}, {}, {}};
    measure(repeat, signal, 10, [&] { type("repeat", QStringLiteral("100"), &EditDlg::onEditRepeat); });

    std::printf("waves of %lld segments; median of %d runs, in ms\n", static_cast<long long>(opt.segments),
                opt.repeat);
    std::printf("  %-24s %9.3f\n", "load summary and paint", median(summaryMs));
    std::printf("  %-24s %9s %9s %9s\n", "edit", "edit", "undo", "redo");
    for (const Row* row : {&value, &duration, &scale, &repeat}) {
        std::printf("  %-24s %9.3f %9.3f %9.3f\n", row->name, median(row->edit), median(row->undo),
                    median(row->redo));
    }
    gui->ClearAll();
    return 0;
}
