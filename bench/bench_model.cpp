// Throughput and memory benchmark of the waveform model: builds a large
// document, writes it to a file, reads the file back and checks that the two
// documents are equal.
//
// Each phase group runs in a child process of its own, so that the peak
// resident size a phase reports is its own and not left over from another:
// the writer child generates and writes, the reader child reads, builds every
// wave's start-time index, times look-ups, measures what the document holds,
// and then compares it against a regenerated copy one wave at a time (the
// comparison never holds a second full document).
//
//   bench_model [--waves N] [--segments M] [--seed S] [--repeat R] [--keep]
//
// Each phase reports wall clock and processor time; on a shared machine the
// second is the steadier one. The file goes to the temporary directory and
// is read back from the page cache, so the read figure is parsing, not disk.

#include "generated_document.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryFile>

#include <malloc.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

using namespace kesu::toolvok;

namespace {

struct Options {
    qint64 waves = 1000;
    qint64 segments = 10000;
    quint64 seed = 1;
    int repeat = 1;
    bool keep = false;
};

void setHeader(WaveformData& doc, const Options& opt)
{
    doc.masterClockMult = 1;
    doc.smallestUnit = 12;
    doc.autoAssign = 0;
    doc.decimals = 0;
    // Every wave ends before this: offsets stay below 1000, durations at 1000.
    doc.endTime = quint64(opt.segments + 1) * 1000;
}

// ---------------------------------------------------------------------------
// Measuring

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Processor time of this process: on a shared machine the wall clock also
// counts the time other programs had the processor, this does not.
double cpuNow()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

// Wall and processor time of one phase.
struct Stopwatch {
    double wall = now();
    double cpu = cpuNow();
    void stop(double& wallOut, double& cpuOut) const
    {
        wallOut = now() - wall;
        cpuOut = cpuNow() - cpu;
    }
};

struct Resident {
    qint64 rssKb = 0;
    qint64 hwmKb = 0;
};

Resident resident()
{
    Resident r;
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f)
        return r;
    char line[256];
    while (std::fgets(line, sizeof line, f)) {
        if (std::strncmp(line, "VmRSS:", 6) == 0)
            r.rssKb = std::atoll(line + 6);
        else if (std::strncmp(line, "VmHWM:", 6) == 0)
            r.hwmKb = std::atoll(line + 6);
    }
    std::fclose(f);
    return r;
}

qint64 maxRssKb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Bytes the allocator has handed out and not taken back: unlike the resident
// size, this does not depend on whether freed memory went back to the system.
qint64 heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

double mb(qint64 bytes) { return double(bytes) / (1024.0 * 1024.0); }
double mbKb(qint64 kb) { return double(kb) / 1024.0; }

// What a child sends back through its pipe; plain data only.
struct Report {
    bool ok = false;
    double generateSec = 0, writeSec = 0, readSec = 0, indexSec = 0, lookupSec = 0, verifySec = 0, freeSec = 0;
    double generateCpu = 0, writeCpu = 0, readCpu = 0, indexCpu = 0, lookupCpu = 0, verifyCpu = 0, freeCpu = 0;
    qint64 baseRssKb = 0;
    qint64 generatedRssKb = 0, generatedHwmKb = 0, writtenHwmKb = 0;
    qint64 readRssKb = 0, readHwmKb = 0, verifiedHwmKb = 0, maxRssKb = 0;
    qint64 heapBefore = 0, heapGenerated = 0, heapRead = 0, heapIndexed = 0;
    qint64 indexedRssKb = 0, lookups = 0;
    qint64 fileBytes = 0, waves = 0, segments = 0;
    char message[512] = {};
};

void say(Report& r, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::vsnprintf(r.message, sizeof r.message, format, args);
    va_end(args);
}

// ---------------------------------------------------------------------------
// The phases, each run inside its child

void writePhase(const Options& opt, const QString& path, Report& r)
{
    r.baseRssKb = resident().rssKb;
    r.heapBefore = heapInUse();

    Stopwatch watch;
    auto doc = std::make_unique<WaveformData>();
    setHeader(*doc, opt);
    for (qint64 i = 0; i < opt.waves; ++i) {
        doc->addWave(makeGeneratedWave(opt.seed, i, opt.segments).release());
        r.segments += opt.segments;
    }
    r.waves = doc->waves.size();
    watch.stop(r.generateSec, r.generateCpu);
    const Resident generated = resident();
    r.generatedRssKb = generated.rssKb;
    r.generatedHwmKb = generated.hwmKb;
    r.heapGenerated = heapInUse();

    watch = Stopwatch();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        say(r, "cannot open %s for writing: %s", qPrintable(path), qPrintable(file.errorString()));
        return;
    }
    const bool written = writeWaveform(*doc, file);
    file.close();
    watch.stop(r.writeSec, r.writeCpu);
    r.writtenHwmKb = resident().hwmKb;
    if (!written || file.error() != QFileDevice::NoError) {
        say(r, "writing %s failed: %s", qPrintable(path), qPrintable(file.errorString()));
        return;
    }
    r.fileBytes = QFile(path).size();

    watch = Stopwatch();
    doc.reset();
    watch.stop(r.freeSec, r.freeCpu);
    r.maxRssKb = maxRssKb();
    r.ok = true;
}

// Compares one read wave with its regenerated original; false with a message
// at the first difference.
bool sameWave(const WaveData& got, const WaveData& want, qint64 index, Report& r)
{
    auto fail = [&](const char* what) {
        say(r, "wave %lld (%s): %s differs", qlonglong(index), qPrintable(want.name), what);
        return false;
    };
    if (got.name != want.name)
        return fail("name");
    if (got.group != want.group || got.polarity != want.polarity || got.waveType != want.waveType
        || got.offset != want.offset || got.formatValue != want.formatValue || got.formatRatio != want.formatRatio)
        return fail("attributes");
    if (got.isBus != want.isBus || got.isPattern != want.isPattern || got.busWidth != want.busWidth
        || got.elements != want.elements)
        return fail("bus form");
    if (got.foreverIndex != want.foreverIndex)
        return fail("forever index");
    if (got.patterns.size() != want.patterns.size()) {
        say(r, "wave %lld (%s): %lld segments read, %lld written", qlonglong(index), qPrintable(want.name),
            qlonglong(got.patterns.size()), qlonglong(want.patterns.size()));
        return false;
    }
    for (qsizetype k = 0; k < got.patterns.size(); ++k) {
        const Pattern* a = got.patterns.at(k);
        const Pattern* b = want.patterns.at(k);
        if (a->value != b->value || a->duration != b->duration || a->forever != b->forever || a->wave != &got) {
            say(r, "wave %lld (%s) segment %lld: read %s/%d%s, written %s/%d%s", qlonglong(index),
                qPrintable(want.name), qlonglong(k), a->value.c_str(), a->duration, a->forever ? " forever" : "",
                b->value.c_str(), b->duration, b->forever ? " forever" : "");
            return false;
        }
    }
    return true;
}

void readPhase(const Options& opt, const QString& path, Report& r)
{
    r.baseRssKb = resident().rssKb;
    r.heapBefore = heapInUse();

    Stopwatch watch;
    auto doc = std::make_unique<WaveformData>();
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            say(r, "cannot open %s for reading: %s", qPrintable(path), qPrintable(file.errorString()));
            return;
        }
        doc->loadData(file);
    }
    watch.stop(r.readSec, r.readCpu);
    const Resident read = resident();
    r.readRssKb = read.rssKb;
    r.readHwmKb = read.hwmKb;
    r.heapRead = heapInUse();
    r.waves = doc->waves.size();
    for (const WaveData* wave : std::as_const(doc->waves))
        r.segments += wave->patterns.size();

    // The first time look-up on each wave builds its start-time index.
    watch = Stopwatch();
    quint64 sink = 0;
    for (const WaveData* wave : std::as_const(doc->waves))
        sink += wave->getEndTime();
    watch.stop(r.indexSec, r.indexCpu);
    r.indexedRssKb = resident().rssKb;
    r.heapIndexed = heapInUse();

    // Then look-ups at spread times, as painting and hit-testing ask them.
    watch = Stopwatch();
    quint64 t = opt.seed;
    for (int round = 0; round < 100; ++round) {
        for (const WaveData* wave : std::as_const(doc->waves)) {
            t = t * 6364136223846793005ULL + 1442695040888963407ULL;
            const quint64 at = wave->offset + (t >> 33) % std::max<quint64>(1, wave->getEndTime() - wave->offset);
            sink += quintptr(wave->findPattern(at)) + wave->getNextChange(at);
            r.lookups += 2;
        }
    }
    watch.stop(r.lookupSec, r.lookupCpu);
    // Used, so that the look-ups are not optimised away.
    const volatile quint64 kept = sink;
    (void)kept;

    watch = Stopwatch();
    WaveformData header;
    setHeader(header, opt);
    bool same = true;
    if (doc->masterClockMult != header.masterClockMult || doc->smallestUnit != header.smallestUnit
        || doc->autoAssign != header.autoAssign || doc->decimals != header.decimals
        || doc->endTime != header.endTime) {
        say(r, "header settings differ");
        same = false;
    } else if (r.waves != opt.waves) {
        say(r, "%lld waves read, %lld written", qlonglong(r.waves), qlonglong(opt.waves));
        same = false;
    }
    for (qint64 i = 0; same && i < opt.waves; ++i)
        same = sameWave(*doc->waves.at(i), *makeGeneratedWave(opt.seed, i, opt.segments), i, r);
    watch.stop(r.verifySec, r.verifyCpu);
    r.verifiedHwmKb = resident().hwmKb;

    watch = Stopwatch();
    doc.reset();
    watch.stop(r.freeSec, r.freeCpu);
    r.maxRssKb = maxRssKb();
    r.ok = same;
}

// Runs `phase` in a forked child named `name` (so that a profiler can tell
// the phases apart) and returns what it reported.
template<typename Phase>
bool runChild(const char* name, Phase phase, Report& out)
{
    int fds[2];
    if (pipe(fds) != 0) {
        std::perror("pipe");
        return false;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid < 0) {
        std::perror("fork");
        return false;
    }
    if (pid == 0) {
        close(fds[0]);
        prctl(PR_SET_NAME, name);
        Report r;
        phase(r);
        const char* p = reinterpret_cast<const char*>(&r);
        size_t left = sizeof r;
        while (left > 0) {
            const ssize_t n = write(fds[1], p, left);
            if (n <= 0)
                _exit(3);
            p += n;
            left -= size_t(n);
        }
        // Skips static destructors: the child has nothing left worth tearing down.
        _exit(0);
    }
    close(fds[1]);
    char* p = reinterpret_cast<char*>(&out);
    size_t got = 0;
    while (got < sizeof out) {
        const ssize_t n = read(fds[0], p + got, sizeof out - got);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        got += size_t(n);
    }
    close(fds[0]);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {}
    if (got != sizeof out || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        if (WIFSIGNALED(status))
            std::fprintf(stderr, "%s: child killed by signal %d\n", name, WTERMSIG(status));
        else
            std::fprintf(stderr, "%s: child failed (exit status %d)\n", name, WEXITSTATUS(status));
        return false;
    }
    return true;
}

bool parseCount(const char* text, qint64 min, qint64& out)
{
    char* end = nullptr;
    errno = 0;
    const long long v = std::strtoll(text, &end, 10);
    if (errno != 0 || !end || *end != '\0' || v < min)
        return false;
    out = v;
    return true;
}

int usage(const char* argv0)
{
    std::fprintf(stderr,
                 "usage: %s [--waves N] [--segments M] [--seed S] [--repeat R] [--keep]\n"
                 "  --waves N     waves in the document (default 1000)\n"
                 "  --segments M  segments per wave (default 10000)\n"
                 "  --seed S      generator seed (default 1)\n"
                 "  --repeat R    run each phase R times and report the fastest (default 1)\n"
                 "  --keep        keep the written file and print its path\n",
                 argv0);
    return 2;
}

struct Best {
    double wall = 1e300;
    double cpu = 1e300;
    void take(double w, double c)
    {
        wall = std::min(wall, w);
        cpu = std::min(cpu, c);
    }
};

// aim 0: the target has a limit only.
const char* verdict(double value, double limit, double aim)
{
    if (value >= limit)
        return "OVER LIMIT";
    if (aim <= 0)
        return "ok";
    return value < aim ? "ok, within aim" : "ok, above aim";
}

} // namespace

int main(int argc, char** argv)
{
    Options opt;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        qint64 v = 0;
        auto value = [&](qint64 min) { return i + 1 < argc && parseCount(argv[++i], min, v); };
        if (arg == "--waves" && value(1) && v <= 100000000)
            opt.waves = v;
        else if (arg == "--segments" && value(1) && v <= std::numeric_limits<qint32>::max())
            opt.segments = v;
        else if (arg == "--seed" && value(0))
            opt.seed = quint64(v);
        else if (arg == "--repeat" && value(1) && v <= 100)
            opt.repeat = int(v);
        else if (arg == "--keep")
            opt.keep = true;
        else
            return usage(argv[0]);
    }

    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/bench_model-XXXXXX.wdl"));
    file.setAutoRemove(!opt.keep);
    if (!file.open()) {
        std::fprintf(stderr, "cannot create a temporary file: %s\n", qPrintable(file.errorString()));
        return 1;
    }
    const QString path = file.fileName();
    file.close();

    const qint64 total = opt.waves * opt.segments;
    std::printf("bench_model: %lld waves x %lld segments = %lld segments (seed %llu, %d run%s)\n",
                qlonglong(opt.waves), qlonglong(opt.segments), qlonglong(total),
                static_cast<unsigned long long>(opt.seed), opt.repeat, opt.repeat == 1 ? "" : "s");

    // Every run of a phase is a fresh process; the fastest one is reported
    // (wall and processor time each at their own minimum), memory figures
    // come from the last run (they do not vary between runs).
    Report w, rd;
    Best generate, write, read, index, lookup;
    for (int run = 0; run < opt.repeat; ++run) {
        if (!runChild("bench-write", [&](Report& r) { writePhase(opt, path, r); }, w))
            return 1;
        if (!w.ok) {
            std::fprintf(stderr, "write phase: %s\n", w.message);
            return 1;
        }
        generate.take(w.generateSec, w.generateCpu);
        write.take(w.writeSec, w.writeCpu);
    }
    for (int run = 0; run < opt.repeat; ++run) {
        if (!runChild("bench-read", [&](Report& r) { readPhase(opt, path, r); }, rd))
            return 1;
        read.take(rd.readSec, rd.readCpu);
        index.take(rd.indexSec, rd.indexCpu);
        lookup.take(rd.lookupSec, rd.lookupCpu);
        if (!rd.ok)
            break;
    }

    const double segs = double(std::max<qint64>(total, 1));
    std::printf("file: %s\n      %.1f MB, %.2f bytes/segment on disk\n\n", qPrintable(path), mb(w.fileBytes),
                double(w.fileBytes) / segs);

    std::printf("%-10s %9s %9s %10s   %s\n", "phase", "seconds", "cpu s", "peak MB", "process");
    auto row = [](const char* phase, double wall, double cpu, qint64 peakKb, const char* process) {
        std::printf("%-10s %9.3f %9.3f %10.1f   %s\n", phase, wall, cpu, mbKb(peakKb), process);
    };
    row("generate", generate.wall, generate.cpu, w.generatedHwmKb, "writer");
    row("write", write.wall, write.cpu, w.writtenHwmKb, "writer");
    row("free", w.freeSec, w.freeCpu, w.maxRssKb, "writer");
    row("read", read.wall, read.cpu, rd.readHwmKb, "reader");
    row("index", index.wall, index.cpu, rd.indexedRssKb, "reader");
    row("lookups", lookup.wall, lookup.cpu, rd.indexedRssKb, "reader");
    row("verify", rd.verifySec, rd.verifyCpu, rd.verifiedHwmKb, "reader");
    row("free", rd.freeSec, rd.freeCpu, rd.maxRssKb, "reader");
    std::printf("(peak MB: the process's resident high-water mark at the end of the phase, ru_maxrss for 'free')\n\n");

    const qint64 readGrowth = (rd.readHwmKb - rd.baseRssKb) * 1024;
    const qint64 heldResident = (rd.readRssKb - rd.baseRssKb) * 1024;
    const qint64 heldHeap = rd.heapRead - rd.heapBefore;
    const qint64 builtHeap = w.heapGenerated - w.heapBefore;
    const double readSegs = double(std::max<qint64>(rd.segments, 1));
    std::printf("write: %.1f MB/s of file, %.1f M segments/s\n", mb(w.fileBytes) / std::max(write.wall, 1e-9),
                double(total) / std::max(write.wall, 1e-9) / 1e6);
    std::printf("read:  %.1f MB/s of file, %.1f M segments/s\n", mb(w.fileBytes) / std::max(read.wall, 1e-9),
                double(rd.segments) / std::max(read.wall, 1e-9) / 1e6);
    std::printf("read peak growth: %.1f MB above the %.1f MB the reader started with\n", mb(readGrowth),
                mbKb(rd.baseRssKb));
    std::printf("held after read:  %.1f MB resident, %.1f bytes/segment; heap in use %.1f MB, %.1f bytes/segment\n",
                mb(heldResident), double(heldResident) / readSegs, mb(heldHeap), double(heldHeap) / readSegs);
    const qint64 indexedResident = (rd.indexedRssKb - rd.baseRssKb) * 1024;
    const qint64 indexedHeap = rd.heapIndexed - rd.heapBefore;
    std::printf("held with index:  %.1f MB resident, %.1f bytes/segment; heap in use %.1f MB, %.1f bytes/segment\n",
                mb(indexedResident), double(indexedResident) / readSegs, mb(indexedHeap),
                double(indexedHeap) / readSegs);
    std::printf("look-ups: %lld (findPattern and getNextChange at random times), %.0f ns each\n",
                qlonglong(rd.lookups), lookup.wall * 1e9 / double(std::max<qint64>(rd.lookups, 1)));
    std::printf("held when built:  heap in use %.1f MB, %.1f bytes/segment (generated in memory, never read)\n",
                mb(builtHeap), double(builtHeap) / segs);
    if (total < 1000000)
        std::printf("(with under a million segments the per-segment memory figures are mostly fixed costs)\n");
    std::printf("\n");

    if (rd.ok)
        std::printf("verify: ok, %lld waves and %lld segments read back equal\n", qlonglong(rd.waves),
                    qlonglong(rd.segments));
    else
        std::printf("verify: FAILED: %s\n", rd.message);

    // Neither count is right on its own: the resident growth can include freed
    // file buffers the allocator kept, and the allocator's count misses memory
    // mapped past it (a segment pool, say). The larger one is the safe one.
    const double peakMb = mbKb(std::max(w.maxRssKb, rd.maxRssKb));
    // What an editor holds once it has drawn every wave: segments and indexes.
    const double perSegment = double(std::max(indexedHeap, indexedResident)) / readSegs;
    std::printf("\ntargets:\n");
    std::printf("  read       %8.3f s          limit 5 s,    aim 1.4 s   %s\n", read.wall, verdict(read.wall, 5, 1.4));
    std::printf("  write      %8.3f s          limit 3 s,    aim 0.5 s   %s\n", write.wall, verdict(write.wall, 3, 0.5));
    std::printf("  peak       %8.1f MB         limit 2048 MB             %s\n", peakMb, verdict(peakMb, 2048, 0));
    std::printf("  in memory  %8.1f B/segment  limit 100 B               %s\n", perSegment, verdict(perSegment, 100, 0));
    if (opt.keep)
        std::printf("\nkept %s\n", qPrintable(path));
    return rd.ok ? 0 : 1;
}
