// wdl: reads, checks and converts waveform documents without a display.
#include "wdlcommand.h"

#include "waveformdata.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <cstring>
#include <memory>

using namespace kesu::toolvok;

namespace wdl {

namespace {

const Command commands[] = {
    {"dump", dumpCommand, "dump FILE     print the document as read, as JSON"},
    {"format", formatCommand, "format FILE   print the document as the editor saves it"},
    {"export", exportCommand,
     "export TYPE FILE -out=OUTPUT\n"
     "                write the document as TYPE: tf, vht, tb, vcd or wavejson\n"
     "  export --list name the export types"},
    {"import-vcd", importVcdCommand,
     "import-vcd FILE.vcd -out=DOC.wdl [--signals a,b,...] [--from TIME] [--to TIME]\n"
     "                make a value change dump a document"},
    {"render", renderCommand,
     "render FILE -out=OUTPUT.pdf|.svg|.png [--from T] [--to T] [--scale N] [--names] [--ruler]\n"
     "                draw the waves as printed: PDF pages or one picture", true},
};

QString helpText()
{
    QString text = QStringLiteral("Usage: wdl [options] command [arguments]\n"
                                  "Reads, checks and converts waveform documents (.wdl).\n\n"
                                  "Commands:\n");
    for (const Command& command : commands)
        text += QStringLiteral("  ") + QString::fromUtf8(command.help) + QLatin1Char('\n');
    text += QStringLiteral("\nOptions:\n"
                           "  -h, --help     show this help\n"
                           "  -v, --version  show the version\n");
    return text;
}

// Whether the command named first draws; known before the application is made.
bool draws(int argc, char** argv)
{
    for (const Command& command : commands) {
        if (argc > 1 && std::strcmp(argv[1], command.name) == 0)
            return command.draws;
    }
    return false;
}

QtMessageHandler qtMessages = nullptr;

// A GUI application without a display asks for a runtime folder it never
// uses; the warning about it would be a stray line in a batch run's errors.
void withoutRuntimeFolderWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg && message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR")))
        return;
    qtMessages(type, context, message);
}

} // namespace

QTextStream& err()
{
    static QTextStream stream(stderr);
    return stream;
}

bool openInput(QFile& file)
{
    const QString path = file.fileName();
    if (QFileInfo(path).isDir()) {
        err() << "wdl: cannot read " << path << ": Is a directory" << Qt::endl;
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        err() << "wdl: cannot read " << path << ": " << file.errorString() << Qt::endl;
        return false;
    }
    return true;
}

bool readDocument(const QString& path, WaveformData& document)
{
    QFile file(path);
    if (!openInput(file))
        return false;
    document.loadData(file);
    // A document read only in part is never worked on as if it were whole.
    if (document.loadError.isSet()) {
        err() << "wdl: cannot read " << path << " completely: " << document.loadError.text() << Qt::endl;
        return false;
    }
    if (file.error() != QFileDevice::NoError) {
        err() << "wdl: cannot read " << path << ": " << file.errorString() << Qt::endl;
        return false;
    }
    return true;
}

bool writeOut(const QByteArray& bytes)
{
    return std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout)
            == static_cast<size_t>(bytes.size())
        && std::fflush(stdout) == 0;
}

int usage(const QString& problem)
{
    if (!problem.isEmpty())
        err() << "wdl: " << problem << Qt::endl;
    err() << helpText() << Qt::flush;
    return Usage;
}

} // namespace wdl

int main(int argc, char** argv)
{
    // Drawing needs fonts and so a GUI application, but never a display.
    const bool draws = wdl::draws(argc, argv);
    if (draws) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        wdl::qtMessages = qInstallMessageHandler(wdl::withoutRuntimeFolderWarning);
    }
    const std::unique_ptr<QCoreApplication> app(draws ? new QGuiApplication(argc, argv)
                                                      : new QCoreApplication(argc, argv));
    QCoreApplication::setApplicationName(QStringLiteral("wdl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VOK_VERSION));

    // Options before the command are wdl's own; everything after the command
    // belongs to it (export takes "-out=FILE", render "--scale N").
    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty())
        return wdl::usage(QStringLiteral("no command given"));
    const QString first = args.first();
    if (first == QLatin1String("-h") || first == QLatin1String("--help") || first == QLatin1String("--help-all")) {
        QTextStream(stdout) << wdl::helpText();
        return wdl::Ok;
    }
    if (first == QLatin1String("-v") || first == QLatin1String("--version")) {
        QTextStream(stdout) << "wdl " << QCoreApplication::applicationVersion() << Qt::endl;
        return wdl::Ok;
    }
    if (first.startsWith(QLatin1Char('-')))
        return wdl::usage(QStringLiteral("unknown option '%1'").arg(first));
    for (const wdl::Command& command : wdl::commands) {
        if (first == QLatin1String(command.name))
            return command.run(args);
    }
    return wdl::usage(QStringLiteral("unknown command '%1'").arg(first));
}
