// `wdl import-vcd` beside GTKWave's vcd2fst on the same dump: the benchmark
// document (1,000 waves of 10,000 segments by default) exported as a VCD,
// then each program run under /usr/bin/time -v, turn about, and the median
// wall time and peak memory of each printed. A last run imports three
// signals only, which must cost memory for their segments, not the file.
//
//   bench_vcdimport [--waves N] [--segments M] [--seed S] [--repeat R] [--dump FILE]
//
// --dump keeps the VCD in FILE, and uses FILE as it is when it exists.
#include "exportwaveforms.h"
#include "generated_document.h"
#include "processrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>
#include <cstring>
#include <vector>

using namespace kesu::toolvok;

namespace {

// "Elapsed (wall clock) time (h:mm:ss or m:ss): 0:03.21" and
// "Maximum resident set size (kbytes): 12345" from time -v.
ProcessRun timed(const QString& program, const QStringList& args)
{
    QProcess process;
    process.start(QStringLiteral("/usr/bin/time"), QStringList{"-v", program} + args);
    ProcessRun m;
    if (!process.waitForFinished(-1))
        return m;
    const QString report = QString::fromLocal8Bit(process.readAllStandardError());
    const QRegularExpressionMatch wall =
        QRegularExpression(QStringLiteral("Elapsed \\(wall clock\\).*: (?:(\\d+):)?(\\d+):([\\d.]+)")).match(report);
    const QRegularExpressionMatch peak = QRegularExpression(QStringLiteral("Maximum resident set size.*: (\\d+)")).match(report);
    m.ok = process.exitCode() == 0 && wall.hasMatch() && peak.hasMatch();
    m.seconds = wall.captured(1).toDouble() * 3600 + wall.captured(2).toDouble() * 60 + wall.captured(3).toDouble();
    m.peakKb = peak.captured(1).toLongLong();
    for (const char* kind : {"User", "System"}) {
        const QRegularExpression line(QStringLiteral("%1 time \\(seconds\\): ([\\d.]+)").arg(QLatin1String(kind)));
        m.cpu += line.match(report).captured(1).toDouble();
    }
    if (!m.ok)
        std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(program), qPrintable(report));
    return m;
}

bool writeDump(const QString& dump, const RunOptions& opt, const QDir& scratch)
{
    const QString document = scratch.filePath(QStringLiteral("bench.wdl"));
    if (!writeGeneratedDocument(document, opt.seed, opt.waves, opt.segments))
        return false;
    QByteArray args[] = {"-vcd", document.toLocal8Bit(), "-out=" + dump.toLocal8Bit()};
    char* argv[] = {args[0].data(), args[1].data(), args[2].data()};
    return ExportWaveforms(3, argv) == 0;
}

// Value changes: the lines that are neither time stamps nor declarations.
qint64 changesIn(const QString& dump)
{
    QFile file(dump);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    qint64 changes = 0;
    bool body = false;
    char line[4096];
    for (qint64 n; (n = file.readLine(line, sizeof line)) > 0;) {
        if (!body)
            body = std::strncmp(line, "$enddefinitions", 15) == 0;
        else if (line[0] != '#' && line[0] != '$')
            ++changes;
    }
    return changes;
}

} // namespace

int main(int argc, char** argv)
{
    const RunOptions opt = parseRunOptions(argc, argv, "--dump");
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/bench_vcdimport-XXXXXX"));
    const QString dump = opt.kept.isEmpty() ? dir.filePath(QStringLiteral("bench.vcd")) : opt.kept;
    if (!QFile::exists(dump) && !writeDump(dump, opt, QDir(dir.path()))) {
        std::fprintf(stderr, "bench_vcdimport: cannot write %s\n", qPrintable(dump));
        return 1;
    }
    std::printf("%s: %.0f MB, %lld value changes, median of %d runs\n\n", qPrintable(QFileInfo(dump).fileName()),
                double(QFile(dump).size()) / 1e6, qlonglong(changesIn(dump)), opt.repeat);

    const QString wdl = QStringLiteral(VOK_WDL_PATH);
    const QString imported = dir.filePath(QStringLiteral("imported.wdl"));
    const QString fst = dir.filePath(QStringLiteral("bench.fst"));
    std::vector<ProcessRun> ours, theirs;
    for (int r = 0; r < opt.repeat; ++r) {
        ours.push_back(timed(wdl, {"import-vcd", dump, "-out=" + imported}));
        theirs.push_back(timed(QStringLiteral("vcd2fst"), {dump, fst}));
    }
    const ProcessRun three = timed(wdl, {"import-vcd", dump, "-out=" + imported, "--signals", "sig0,sig1,data3"});
    std::printf("%-32s %9s %10s %10s\n", "job", "time", "processor", "peak");
    const std::pair<const char*, ProcessRun> rows[] = {
        {"wdl import-vcd, every signal", median(ours)},
        {"vcd2fst", median(theirs)},
        {"wdl import-vcd, three signals", three},
    };
    bool ok = true;
    for (const auto& [name, m] : rows) {
        std::printf("%-32s %8.2fs %9.2fs %7.0f MB%s\n", name, m.seconds, m.cpu, double(m.peakKb) / 1024, m.ok ? "" : "  FAILED");
        ok = ok && m.ok;
    }
    return ok ? 0 : 1;
}
