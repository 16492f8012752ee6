// Edit time on one long wave: builds a single signal of (by default) 100,000
// segments in an offscreen tool window in edit mode, and times through the
// tool window's own operations:
//
//   - extend by a click after the end of the wave,
//   - clear of 10 selected segments in the middle,
//   - copy of 10 segments in the middle, and paste of them over 10 others,
//
// and one undo and one redo of each edit. Every figure is the median
// wall-clock time of R runs (default 9); each run starts from the same wave.
//
//   bench_edit [--segments N] [--repeat R] [--seed S]

#include "editbench.h"
#include "benchtool.h"
#include "generated_document.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QItemSelectionModel>
#include <QStandardItemModel>
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

} // namespace

int main(int argc, char** argv)
{
    Options opt;
    if (!parse(argc, argv, opt)) {
        std::fprintf(stderr, "usage: bench_edit [--segments N (>= 100)] [--repeat R] [--seed S]\n");
        return 2;
    }
    BenchTool tool(argc, argv);
    const std::unique_ptr<VokGUI>& gui = tool.gui;

    // Wave 0 of the generated document is a single signal without a tail.
    WaveData* wave = makeGeneratedWave(opt.seed, 0, opt.segments).release();
    gui->addWave(wave);
    gui->action(VokGUI::ActEditMode)->setChecked(true);
    // Picked in the name list, as a click on its row would.
    WaveLstView* list = gui->waveList();
    list->selectionModel()->setCurrentIndex(list->itemModel()->index(list->rowOf(wave), 0),
                                            QItemSelectionModel::ClearAndSelect);
    gui->setActiveWave(wave);
    QUndoStack* stack = gui->undoStack();
    const qsizetype count = wave->patterns.size();
    const qsizetype middle = count / 2;

    auto select = [&](qsizetype from) {
        gui->selection() = wave->patterns.mid(from, 10);
    };
    // Times one edit, its undo and its redo, then undoes it again so that the
    // next run starts from the same wave.
    auto measure = [&](Row& row, const std::function<void()>& prepare, const std::function<void()>& edit) {
        for (int r = 0; r < opt.repeat; ++r) {
            prepare();
            const int before = stack->index();
            row.edit.push_back(elapsedMs(edit));
            if (stack->index() != before + 1) {
                std::fprintf(stderr, "%s pushed no command\n", row.name);
                std::exit(1);
            }
            row.undo.push_back(elapsedMs([&] { gui->undo(); }));
            row.redo.push_back(elapsedMs([&] { gui->redo(); }));
            gui->undo();
            if (wave->patterns.size() != count) {
                std::fprintf(stderr, "%s: undo left %lld segments, not %lld\n", row.name,
                             static_cast<long long>(wave->patterns.size()), static_cast<long long>(count));
                std::exit(1);
            }
        }
    };

    Row extend{"extend by a click", {}, {}, {}};
    measure(extend, [&] { gui->selection().clear(); }, [&] { gui->addEditData(wave->getEndTime() + 10); });

    Row clear{"clear 10 segments", {}, {}, {}};
    measure(clear, [&] { select(middle); }, [&] { gui->clearData(); });

    std::vector<double> copyMs;
    for (int r = 0; r < opt.repeat; ++r) {
        select(middle);
        copyMs.push_back(elapsedMs([&] { gui->copyData(); }));
    }

    Row paste{"paste 10 over 10", {}, {}, {}};
    measure(paste, [&] { select(middle + count / 4); }, [&] { gui->pasteData(); });

    std::printf("one wave of %lld segments; median of %d runs, in ms\n", static_cast<long long>(count), opt.repeat);
    std::printf("  %-20s %9s %9s %9s\n", "operation", "edit", "undo", "redo");
    for (const Row* row : {&extend, &clear}) {
        std::printf("  %-20s %9.3f %9.3f %9.3f\n", row->name, median(row->edit), median(row->undo),
                    median(row->redo));
    }
    // Ten small allocations: below the timer's useful resolution in ms.
    const double copy = median(copyMs);
    if (copy < 0.001)
        std::printf("  %-20s %9s %9s %9s\n", "copy 10 segments", "<0.001", "-", "-");
    else
        std::printf("  %-20s %9.3f %9s %9s\n", "copy 10 segments", copy, "-", "-");
    std::printf("  %-20s %9.3f %9.3f %9.3f\n", paste.name, median(paste.edit), median(paste.undo),
                median(paste.redo));
    gui->ClearAll();
    return 0;
}
