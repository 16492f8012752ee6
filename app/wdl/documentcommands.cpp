// wdl dump and wdl format: the document as read, as JSON or as saved text.
#include "wdlcommand.h"

#include "documentjson.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QJsonDocument>

using namespace kesu::toolvok;

namespace wdl {

namespace {

int printDocument(const QStringList& args, QByteArray (*render)(const WaveformData&))
{
    if (args.size() != 2)
        return usage(QStringLiteral("'%1' takes one file").arg(args.first()));
    WaveformData document;
    if (!readDocument(args.at(1), document))
        return Failed;
    if (!writeOut(render(document))) {
        err() << "wdl: cannot write the output" << Qt::endl;
        return Failed;
    }
    return Ok;
}

QByteArray asJson(const WaveformData& document)
{
    return QJsonDocument(documentToJson(document)).toJson(QJsonDocument::Indented);
}

} // namespace

int dumpCommand(const QStringList& args)
{
    return printDocument(args, asJson);
}

int formatCommand(const QStringList& args)
{
    return printDocument(args, formatWaveform);
}

} // namespace wdl
