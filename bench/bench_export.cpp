// Time and memory of each export of the benchmark document (1,000 waves of
// 10,000 segments by default), beside reading it alone and reading and
// writing it back as the editor saves it (what `wdl format` does).
//
//   bench_export [--waves N] [--segments M] [--seed S] [--repeat R] [--document FILE]
//
// --document keeps the generated document in FILE, and uses FILE as it is
// when it exists.
//
// Each run is a child process of its own, so that its peak resident size is
// its own. Every export reads the document itself, as the Export dialog's
// call does; "beyond reading" subtracts the median of the read-only runs.
// Output goes to the temporary directory (the page cache, not the disk).

#include "exportwaveforms.h"
#include "generated_document.h"
#include "processrun.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

using namespace kesu::toolvok;

namespace {

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Runs job in a child; its wall time, peak resident size and the size of
// the file it wrote come back through a pipe.
ProcessRun inChild(const std::function<bool()>& job, const QString& output)
{
    int fds[2];
    ProcessRun result;
    if (pipe(fds) != 0)
        return result;
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        const double start = now();
        result.ok = job();
        result.seconds = now() - start;
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        result.peakKb = usage.ru_maxrss;
        result.cpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
            + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
        result.bytes = output.isEmpty() ? 0 : QFile(output).size();
        const bool sent = write(fds[1], &result, sizeof result) == ssize_t(sizeof result);
        _exit(sent ? 0 : 1);
    }
    close(fds[1]);
    const bool got = pid > 0 && read(fds[0], &result, sizeof result) == ssize_t(sizeof result);
    close(fds[0]);
    if (pid > 0)
        waitpid(pid, nullptr, 0);
    if (!got)
        result.ok = false;
    if (!output.isEmpty())
        QFile::remove(output);
    return result;
}

bool readDocument(const QString& path, WaveformData& document)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    document.loadData(file);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const RunOptions opt = parseRunOptions(argc, argv, "--document");
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/bench_export-XXXXXX"));
    const QString input = opt.kept.isEmpty() ? dir.filePath(QStringLiteral("bench.wdl")) : opt.kept;
    const ProcessRun made = QFile::exists(input)
        ? ProcessRun{0, 0, 0, 0, true}
        : inChild([&] { return writeGeneratedDocument(input, opt.seed, opt.waves, opt.segments); }, QString());
    if (!made.ok) {
        std::fprintf(stderr, "bench_export: cannot write %s\n", qPrintable(input));
        return 1;
    }
    std::printf("%lld waves x %lld segments, %.0f MB of text, median of %d runs\n\n", qlonglong(opt.waves),
                qlonglong(opt.segments), double(QFile(input).size()) / 1e6, opt.repeat);
    std::printf("%-8s %10s %15s %10s %15s %10s %12s\n", "job", "time", "beyond reading", "processor", "beyond reading",
                "peak", "output");

    struct Job {
        const char* name;
        const char* option;   // nullptr: no export
    };
    const Job jobs[] = {{"read", nullptr}, {"format", nullptr}, {"tf", "-verilog"}, {"vht", "-vhdl93"},
                        {"tb", "-vhdl94"}, {"vcd", "-vcd"}};
    double readSeconds = 0;
    double readCpu = 0;
    bool ok = true;
    for (const Job& job : jobs) {
        const QString output = dir.filePath(QStringLiteral("out.") + QLatin1String(job.name));
        std::vector<ProcessRun> runs;
        for (int r = 0; r < opt.repeat; ++r) {
            runs.push_back(inChild([&] {
                if (job.option) {
                    QByteArray args[] = {job.option, input.toLocal8Bit(), "-out=" + output.toLocal8Bit()};
                    char* list[] = {args[0].data(), args[1].data(), args[2].data()};
                    return ExportWaveforms(3, list) == 0;
                }
                WaveformData document;
                if (!readDocument(input, document))
                    return false;
                QFile file(output);
                return !std::strcmp(job.name, "read") || (file.open(QIODevice::WriteOnly) && writeWaveform(document, file));
            }, std::strcmp(job.name, "read") ? output : QString()));
            ok = ok && runs.back().ok;
        }
        const ProcessRun m = median(runs);
        if (!std::strcmp(job.name, "read")) {
            readSeconds = m.seconds;
            readCpu = m.cpu;
        }
        std::printf("%-8s %9.2fs %14.2fs %9.2fs %14.2fs %7.0f MB %9.0f MB%s\n", job.name, m.seconds,
                    m.seconds - readSeconds, m.cpu, m.cpu - readCpu, double(m.peakKb) / 1024.0, double(m.bytes) / 1e6,
                    m.ok ? "" : "  FAILED");
    }
    return ok ? 0 : 1;
}
