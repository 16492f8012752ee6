// wdl render: the waves drawn as the printed pages draw them, into a PDF,
// SVG or PNG file, without a display.
#include "wdlcommand.h"

#include "picturefile.h"
#include "timetext.h"
#include "waveformdata.h"

#include <QCommandLineParser>

using namespace kesu::toolvok;

namespace wdl {

namespace {

// Reads a time option as the document writes times; absent gives fallback.
bool readTime(const QCommandLineParser& parser, const QString& name, const WaveformData& document,
              quint64 fallback, quint64& t)
{
    t = fallback;
    if (!parser.isSet(name))
        return true;
    bool ok = false;
    t = TimeText::parseTime(ok, parser.value(name), document.smallestUnit, document.decimals);
    return ok;
}

} // namespace

int renderCommand(const QStringList& args)
{
    QCommandLineParser parser;
    // "-out=FILE" as export takes it, and "--out FILE" alike.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({
        {QStringLiteral("out"), QString(), QStringLiteral("FILE")},
        {QStringLiteral("from"), QString(), QStringLiteral("T")},
        {QStringLiteral("to"), QString(), QStringLiteral("T")},
        {QStringLiteral("scale"), QString(), QStringLiteral("N")},
        {QStringLiteral("names"), QString()},
        {QStringLiteral("ruler"), QString()},
    });
    if (!parser.parse(args))
        return usage(QStringLiteral("render: %1").arg(parser.errorText()));
    const QStringList inputs = parser.positionalArguments();
    if (inputs.size() != 1)
        return usage(QStringLiteral("'render' takes one file and -out=FILE.pdf|.svg|.png"));
    const QString out = parser.value(QStringLiteral("out"));
    if (out.isEmpty() || !pictureFormat(out))
        return usage(QStringLiteral("render: -out= must name a .pdf, .svg or .png file"));
    PictureJob job;
    if (parser.isSet(QStringLiteral("scale"))) {
        bool ok = false;
        job.timeScale = parser.value(QStringLiteral("scale")).toInt(&ok);
        if (!ok || job.timeScale < 10 || job.timeScale > 200)
            return usage(QStringLiteral("render: --scale takes 10 to 200, not '%1'")
                             .arg(parser.value(QStringLiteral("scale"))));
    }
    job.names = parser.isSet(QStringLiteral("names"));
    job.ruler = parser.isSet(QStringLiteral("ruler"));
    job.style.font = RowStyle::waveFont(job.style.font);

    WaveformData document;
    if (!readDocument(inputs.first(), document))
        return Failed;
    for (const char* name : {"from", "to"}) {
        const QString option = QLatin1String(name);
        quint64& t = option == QLatin1String("from") ? job.from : job.to;
        if (!readTime(parser, option, document, option == QLatin1String("to") ? TimeText::maxEnd(document) : 0, t))
            return usage(QStringLiteral("render: --%1 is no time: '%2'").arg(option, parser.value(option)));
    }
    QString error;
    if (!writePicture(document, job, out, error)) {
        err() << "wdl: " << error << Qt::endl;
        return Failed;
    }
    return Ok;
}

} // namespace wdl
