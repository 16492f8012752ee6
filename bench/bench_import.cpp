// Import of a large node list through the Import Wave dialog, in an offscreen
// tool window on an empty document. Writes a node list of N nodes (default
// 100,000, kinds in turn i, o, b, n, r) and times, through the dialog's own
// buttons and check boxes:
//
//   - reading the list and filling the Imported Wave list (shown and painted),
//   - filtering: unticking Input, and ticking it again,
//   - choosing the first K nodes (default 10,000) with ">",
//   - OK, which adds them to the document as one undo step,
//   - undo and redo of that step.
//
//   bench_import [--nodes N] [--chosen K]

#include "importdlg.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "wavelistmodel.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFile>
#include <QItemSelectionModel>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUndoStack>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

using namespace kesu::toolvok;

namespace {

double timed(const std::function<void()>& step)
{
    QElapsedTimer clock;
    clock.start();
    step();
    QApplication::processEvents();
    return double(clock.nsecsElapsed()) / 1e6;
}

bool writeNodeList(const QString& path, int nodes)
{
    static const char kinds[] = {'i', 'o', 'b', 'n', 'r'};
    QByteArray text;
    for (int i = 0; i < nodes; ++i)
        text += "top/core/node_" + QByteArray::number(i) + ' ' + kinds[i % 5] + '\n';
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

int main(int argc, char** argv)
{
    int nodes = 100000;
    int chosen = 10000;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--nodes"))
            nodes = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--chosen"))
            chosen = std::atoi(argv[i + 1]);
    }
    if (qgetenv("QT_QPA_PLATFORM").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const QString list = dir.filePath(QStringLiteral("design.naf"));
    if (!writeNodeList(list, nodes)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(list));
        return 1;
    }
    QString project;
    VokGUI gui(nullptr, {}, project, true);
    gui.initialize();
    gui.resize(1200, 800);
    gui.show();

    ImportDlg dialog(dir.path(), &gui);
    dialog.show();
    QApplication::processEvents();
    const double fill = timed([&] { dialog.loadNodeList(list); });
    const double filterOff = timed([&] { dialog.filterBox(0)->click(); });
    const double filterOn = timed([&] { dialog.filterBox(0)->click(); });
    const QModelIndex first = dialog.importedModel()->index(0, 0);
    const QModelIndex last = dialog.importedModel()->index(qMin(chosen, nodes) - 1, 0);
    dialog.importedList()->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    dialog.importedList()->selectionModel()->select(QItemSelection(first, last), QItemSelectionModel::Select);
    const double choose = timed([&] { dialog.addButton()->click(); });
    const double ok = timed([&] { dialog.buttonBox()->button(QDialogButtonBox::Ok)->click(); });
    const qsizetype imported = gui.document()->waves.size();
    const double undo = timed([&] { gui.undoStack()->undo(); });
    const qsizetype afterUndo = gui.document()->waves.size();
    const double redo = timed([&] { gui.undoStack()->redo(); });

    std::printf("nodes %d, chosen %d, waves after OK %lld, after undo %lld, after redo %lld\n", nodes, chosen,
                qint64(imported), qint64(afterUndo), qint64(gui.document()->waves.size()));
    std::printf("read and fill the list  %8.1f ms\n", fill);
    std::printf("filter: untick Input    %8.1f ms\n", filterOff);
    std::printf("filter: tick Input      %8.1f ms\n", filterOn);
    std::printf("choose with \">\"         %8.1f ms\n", choose);
    std::printf("OK (import command)     %8.1f ms\n", ok);
    std::printf("undo                    %8.1f ms\n", undo);
    std::printf("redo                    %8.1f ms\n", redo);
    gui.undoStack()->clear();
    return imported == chosen && afterUndo == 0 && gui.document()->waves.size() == chosen ? 0 : 1;
}
