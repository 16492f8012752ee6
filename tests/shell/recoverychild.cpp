// recoverychild FILE|- crash|clean: opens FILE (or an untitled document) in
// a tool window, edits it, prints the edited document, waits for its recovery
// copy, and then dies at once (crash) or closes the window and quits (clean).
#include "recoverycopy.h"
#include "toolfixture.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <csignal>
#include <cstdio>

using namespace kesu::toolvok;

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    // The copies live in the program's own data folder, named after it.
    QApplication::setApplicationName(QStringLiteral("waveform-editor"));
    QApplication::setOrganizationName(QStringLiteral("Vostranelle"));
    const QStringList args = app.arguments();
    if (args.size() != 3)
        return 2;
    QString project;
    const QStringList files = args[1] == QLatin1String("-") ? QStringList() : QStringList{args[1]};
    auto* gui = new VokGUI(nullptr, files, project, true);
    gui->findChild<RecoveryCopy*>()->setInterval(50);
    gui->initialize();
    if (files.isEmpty()) {
        auto* wave = new WaveData(QStringLiteral("typed"));
        wave->insertData(new Pattern("1", 40), nullptr);
        gui->document()->addWave(wave);
        gui->SetDirtyBit();
    } else {
        toolfixture::appendSegment(*gui, gui->document()->waves.first()->name, 500);
    }
    std::fputs(formatWaveform(*gui->document()).constData(), stdout);
    std::fflush(stdout);
    const QDir folder(RecoveryCopy::folder());
    QElapsedTimer waited;
    waited.start();
    while (folder.entryList({QStringLiteral("*.json")}).isEmpty() && waited.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    if (args[2] == QLatin1String("crash"))
        std::raise(SIGKILL);
    delete gui;
    return 0;
}
