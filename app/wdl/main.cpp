// wdl: reads, checks and converts waveform documents without a display.
#include "documentjson.h"
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

int usage(const QCommandLineParser& parser, const QString& problem)
{
    if (!problem.isEmpty())
        err() << "wdl: " << problem << Qt::endl;
    err() << parser.helpText() << Qt::flush;
    return Usage;
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
        "  format FILE   print the document as the editor saves it"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("dump or format"));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("the waveform document"));

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
