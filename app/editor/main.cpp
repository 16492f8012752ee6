// waveform-editor: the tool in a window of its own or, with --hosted, in
// windows opened by a small host, one per document.
#include "toolhost.h"
#include "vokgui.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>

using namespace kesu::toolvok;

namespace {
// A roomy first size, but never larger than the screen: on a small or
// scaled screen a taller window would hide the docks' tabs below its edge.
QSize firstSize()
{
    QSize size(1200, 760);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        size = size.boundedTo(screen->availableGeometry().size());
    return size;
}
} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("waveform-editor"));
    QApplication::setApplicationVersion(QStringLiteral(VOK_VERSION));
    QApplication::setOrganizationName(QStringLiteral("Vostranelle"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/waveform_editor.png")));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Draws the stimulus waveforms of a digital design."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption hosted(QStringLiteral("hosted"),
                                    QStringLiteral("Run under a host: New and Open open further windows, "
                                                   "one document each."));
    parser.addOption(hosted);
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("a waveform document (.wdl) to open"),
                                 QStringLiteral("[file]"));
    parser.process(app);

    QString project;
    if (parser.isSet(hosted)) {
        ToolHost host([&project](const QStringList& files) -> BasGUITool* {
            auto* tool = new VokGUI(nullptr, files, project, false);
            tool->initialize();
            tool->resize(firstSize());
            return tool;
        });
        QObject::connect(&host, &ToolHost::lastToolClosed, &app, &QCoreApplication::quit);
        host.open(parser.positionalArguments());
        return app.exec();
    }

    VokGUI tool(nullptr, parser.positionalArguments(), project, true);
    tool.initialize();
    tool.resize(firstSize());
    tool.show();
    return app.exec();
}
