// wdl: reads, checks and converts waveform documents without a display.
#include "documentjson.h"
#include "exportwaveforms.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTextStream>

#include <cstdio>

using namespace kesu::toolvok;

namespace {

enum Exit { Ok = 0, Failed = 1, Usage = 2 };

QTextStream& err()
{
    static QTextStream stream(stderr);
    return stream;
}

// Opens and reads a document; on failure says why on stderr.
bool readDocument(const QString& path, WaveformData& document)
{
    QFile file(path);
    if (QFileInfo(path).isDir()) {
        err() << "wdl: cannot read " << path << ": Is a directory" << Qt::endl;
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        err() << "wdl: cannot read " << path << ": " << file.errorString() << Qt::endl;
        return false;
    }
    document.loadData(file);
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

// The export types by their short names, as the Export dialog lists them,
// and by the exporter's own options.
struct ExportType {
    const char* name;
    const char* option;
    const char* what;
};
const ExportType exportTypes[] = {
    {"tf", "-verilog", "Verilog test vectors"},
    {"vht", "-vhdl93", "VHDL test vectors"},
    {"tb", "-vhdl94", "VHDL test bench"},
    {"vcd", "-vcd", "value change dump"},
};

const ExportType* exportType(const QString& text)
{
    for (const ExportType& type : exportTypes) {
        if (text == QLatin1String(type.name) || text == QLatin1String(type.option))
            return &type;
    }
    return nullptr;
}

int usage(const QCommandLineParser& parser, const QString& problem)
{
    if (!problem.isEmpty())
        err() << "wdl: " << problem << Qt::endl;
    err() << parser.helpText() << Qt::flush;
    return Usage;
}

int exportCommand(const QCommandLineParser& parser, const QStringList& args)
{
    if (args.size() == 2 && args.at(1) == QLatin1String("--list")) {
        QTextStream out(stdout);
        for (const ExportType& type : exportTypes)
            out << type.name << '\t' << type.option << '\t' << type.what << '\n';
        return Ok;
    }
    if (args.size() != 4)
        return usage(parser, QStringLiteral("'export' takes a type, a file and -out=OUTPUT"));
    const ExportType* type = exportType(args.at(1));
    if (!type)
        return usage(parser, QStringLiteral("unknown export type '%1' (wdl export --list)").arg(args.at(1)));
    QByteArray input = args.at(2).toLocal8Bit();
    QByteArray output = args.at(3).toLocal8Bit();
    QByteArray option(type->option);
    char* argv[] = {option.data(), input.data(), output.data()};
    return ExportWaveforms(3, argv) == 0 ? Ok : Failed;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("wdl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VOK_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads, checks and converts waveform documents (.wdl).\n\n"
        "Commands:\n"
        "  dump FILE     print the document as read, as JSON\n"
        "  format FILE   print the document as the editor saves it\n"
        "  export TYPE FILE -out=OUTPUT\n"
        "                write the document as TYPE: tf, vht, tb or vcd\n"
        "  export --list name the export types"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("dump, format or export"));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("the waveform document"));

    // After the command everything is its own: export takes "-out=FILE".
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (!parser.parse(QCoreApplication::arguments()))
        return usage(parser, parser.errorText());
    // --help-all comes with addHelpOption and is listed in the help text; a
    // console tool has no Qt options to add, so it shows the same text.
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all"))) {
        QTextStream(stdout) << parser.helpText();
        return Ok;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        QTextStream(stdout) << "wdl " << QCoreApplication::applicationVersion() << Qt::endl;
        return Ok;
    }

    const QStringList args = parser.positionalArguments();
    if (args.isEmpty())
        return usage(parser, QStringLiteral("no command given"));
    const QString command = args.first();
    if (command == QLatin1String("export"))
        return exportCommand(parser, args);
    if (command != QLatin1String("dump") && command != QLatin1String("format"))
        return usage(parser, QStringLiteral("unknown command '%1'").arg(command));
    if (args.size() != 2)
        return usage(parser, QStringLiteral("'%1' takes one file").arg(command));

    WaveformData document;
    if (!readDocument(args.at(1), document))
        return Failed;
    const QByteArray out = command == QLatin1String("dump")
        ? QJsonDocument(documentToJson(document)).toJson(QJsonDocument::Indented)
        : formatWaveform(document);
    if (!writeOut(out)) {
        err() << "wdl: cannot write the output" << Qt::endl;
        return Failed;
    }
    return Ok;
}
