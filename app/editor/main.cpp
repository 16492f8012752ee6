// waveform-editor: the tool in a window of its own.
#include "vokgui.h"

#include <QApplication>
#include <QCommandLineParser>

using namespace kesu::toolvok;

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
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("a waveform document (.wdl) to open"),
                                 QStringLiteral("[file]"));
    parser.process(app);

    QString project;
    VokGUI tool(nullptr, parser.positionalArguments(), project, true);
    tool.initialize();
    tool.resize(1200, 760);
    tool.show();
    return app.exec();
}
