// wdl export: a saved document written for a simulator.
#include "wdlcommand.h"

#include "exportwaveforms.h"

namespace wdl {

namespace {

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
    {"wavejson", "-wavejson", "WaveJSON for WaveDrom"},
};

const ExportType* exportType(const QString& text)
{
    for (const ExportType& type : exportTypes) {
        if (text == QLatin1String(type.name) || text == QLatin1String(type.option))
            return &type;
    }
    return nullptr;
}

} // namespace

int exportCommand(const QStringList& args)
{
    if (args.size() == 2 && args.at(1) == QLatin1String("--list")) {
        QTextStream out(stdout);
        for (const ExportType& type : exportTypes)
            out << type.name << '\t' << type.option << '\t' << type.what << '\n';
        return Ok;
    }
    if (args.size() != 4)
        return usage(QStringLiteral("'export' takes a type, a file and -out=OUTPUT"));
    const ExportType* type = exportType(args.at(1));
    if (!type)
        return usage(QStringLiteral("unknown export type '%1' (wdl export --list)").arg(args.at(1)));
    QByteArray input = args.at(2).toLocal8Bit();
    QByteArray output = args.at(3).toLocal8Bit();
    QByteArray option(type->option);
    char* argv[] = {option.data(), input.data(), output.data()};
    return kesu::toolvok::ExportWaveforms(3, argv) == 0 ? Ok : Failed;
}

} // namespace wdl
