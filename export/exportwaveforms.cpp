#include "exportwaveforms.h"

#include "waveformdata.h"
#include "wavereader.h"
#include "writers.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

namespace kesu::toolvok {

namespace {

// What ExportWaveforms returns when its progress stopped it.
constexpr int Stopped = 2;

struct Format {
    const char* option;
    std::optional<Language> language;   // of the identifiers, if the format has any
    void (*write)(const ExportPlan&, OutputStream&);
};

const Format formats[] = {
    {"-verilog", Language::Verilog, writeVerilogVectors},
    {"-vhdl93", Language::Vhdl, writeVhdlVectors},
    {"-vhdl94", Language::Vhdl, writeVhdlTestBench},
    {"-vcd", Language::Vcd, writeVcd},
    {"-wavejson", std::nullopt, writeWaveJson},
};

struct Arguments {
    const Format* format = nullptr;
    QString input;
    QString output;
};

int fail(const QString& problem)
{
    std::fprintf(stderr, "export: %s\n", problem.toLocal8Bit().constData());
    return 1;
}

QString parseArguments(int argc, char** argv, Arguments& args)
{
    bool outputGiven = false;
    for (int i = 0; i < argc; ++i) {
        const QByteArray arg(argv[i] ? argv[i] : "");
        const Format* format = std::find_if(std::begin(formats), std::end(formats),
                                            [&arg](const Format& f) { return arg == f.option; });
        if (format != std::end(formats)) {
            if (args.format)
                return QStringLiteral("two export types given: %1 and %2").arg(QLatin1String(args.format->option), arg);
            args.format = format;
        } else if (arg.startsWith("-out=")) {
            args.output = QString::fromLocal8Bit(arg.mid(5));
            outputGiven = true;
        } else if (arg.startsWith('-')) {
            return QStringLiteral("unknown option %1").arg(QString::fromLocal8Bit(arg));
        } else if (!args.input.isEmpty() || arg.isEmpty()) {
            return QStringLiteral("unexpected argument \"%1\"").arg(QString::fromLocal8Bit(arg));
        } else {
            args.input = QString::fromLocal8Bit(arg);
        }
    }
    if (!args.format)
        return QStringLiteral("no export type given (-verilog, -vhdl93, -vhdl94, -vcd or -wavejson)");
    if (args.input.isEmpty())
        return QStringLiteral("no input file given");
    if (args.output.isEmpty())
        return outputGiven ? QStringLiteral("-out= names no file") : QStringLiteral("no output file given (-out=FILE)");
    return {};
}

QString readDocument(const QString& path, WaveformData& document, const Progress& progress, bool& stopped)
{
    QFile file(path);
    if (QFileInfo(path).isDir())
        return QStringLiteral("cannot read %1: it is a folder").arg(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
    stopped = !WaveReader(document).readDevice(file, progress);
    if (file.error() != QFileDevice::NoError)
        return QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
    // What was read before the failing line is no document to export: the
    // stimulus would silently end early.
    if (!stopped && document.loadError.isSet())
        return QStringLiteral("cannot read %1 completely: %2").arg(path, document.loadError.text());
    return {};
}

// The header comments carry the file name; the languages' comments only
// promise printable ASCII.
QString printable(QString text)
{
    for (QChar& c : text) {
        if (c.unicode() < 32 || c.unicode() > 126)
            c = QLatin1Char('?');
    }
    return text;
}

} // namespace

int ExportWaveforms(int argc, char** argv, const Progress& progress)
{
    Arguments args;
    const QString problem = parseArguments(argc, argv, args);
    if (!problem.isEmpty())
        return fail(problem);

    WaveformData document;
    bool stopped = false;
    const QString unreadable = readDocument(args.input, document, progress, stopped);
    if (!unreadable.isEmpty())
        return fail(unreadable);
    if (stopped)
        return Stopped;

    ExportPlan plan;
    plan.source = printable(QFileInfo(args.input).fileName());
    const bool testBench = args.format->write == writeVhdlTestBench;
    plan.design = designName(QFileInfo(testBench ? args.input : args.output).completeBaseName());
    QSet<QByteArray> reserved;
    if (testBench)
        reserved = testBenchNames(plan.design);
    else if (args.format->language == Language::Vhdl)
        reserved = vhdlOwnNames();
    QString invalid;
    if (!makePlan(document, args.format->language, reserved, plan, invalid))
        return fail(QStringLiteral("%1: %2").arg(args.input, invalid));

    // Nothing replaces the output file unless all of it was written.
    QSaveFile file(args.output);
    if (!file.open(QIODevice::WriteOnly))
        return fail(QStringLiteral("cannot write %1: %2").arg(args.output, file.errorString()));
    OutputStream out(file);
    out.setProgress(progress);
    args.format->write(plan, out);
    if (!out.flush() && out.stopped())
        return Stopped;
    if (!out.ok() || !file.commit())
        return fail(QStringLiteral("cannot write %1: %2").arg(args.output, file.errorString()));
    return 0;
}

} // namespace kesu::toolvok
