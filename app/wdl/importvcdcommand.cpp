// wdl import-vcd: a simulation's value change dump made into a document.
#include "wdlcommand.h"

#include "documentfile.h"
#include "vcdimport.h"
#include "waveformdata.h"

#include <QCommandLineParser>

using namespace kesu::toolvok;

namespace wdl {

int importVcdCommand(const QStringList& args)
{
    QCommandLineParser parser;
    // "-out=DOC.wdl", as wdl export spells it, beside "--signals a,b".
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption out(QStringLiteral("out"), QString(), QStringLiteral("file"));
    const QCommandLineOption signalList(QStringLiteral("signals"), QString(), QStringLiteral("names"));
    const QCommandLineOption from(QStringLiteral("from"), QString(), QStringLiteral("time"));
    const QCommandLineOption to(QStringLiteral("to"), QString(), QStringLiteral("time"));
    parser.addOptions({out, signalList, from, to});
    if (!parser.parse(args))
        return usage(parser.errorText());
    if (parser.positionalArguments().size() != 1 || parser.value(out).isEmpty())
        return usage(QStringLiteral("'import-vcd' takes a file and -out=DOC.wdl"));
    const QString input = parser.positionalArguments().first();
    const QString output = parser.value(out);

    QFile file(input);
    if (!openInput(file))
        return Failed;
    VcdImportOptions options;
    options.signalNames = parser.value(signalList).split(QLatin1Char(','), Qt::SkipEmptyParts);
    options.from = parser.value(from);
    options.to = parser.value(to);
    WaveformData document;
    QStringList notes;
    QString error;
    const bool imported = importVcd(file, options, document, notes, error);
    for (const QString& note : std::as_const(notes))
        err() << "wdl: " << input << ": " << note << Qt::endl;
    if (!imported) {
        err() << "wdl: " << input << ": " << error << Qt::endl;
        return Failed;
    }
    // The document replaces the output only once all of it is written.
    if (!saveWaveformFile(document, output, &error)) {
        err() << "wdl: cannot write " << output << ": " << error << Qt::endl;
        return Failed;
    }
    return Ok;
}

} // namespace wdl
