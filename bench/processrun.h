// One timed run of a child process, as the export and VCD import benchmarks
// measure it, the run of median wall time among repeats, and their options.
#pragma once

#include <QString>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

struct ProcessRun {
    double seconds = 0;
    double cpu = 0;   // user and system: steadier than the wall clock on a shared machine
    qint64 peakKb = 0;
    qint64 bytes = 0; // what the run wrote, where it writes a file
    bool ok = false;
};

inline ProcessRun median(std::vector<ProcessRun> runs)
{
    std::sort(runs.begin(), runs.end(), [](const ProcessRun& a, const ProcessRun& b) { return a.seconds < b.seconds; });
    return runs[runs.size() / 2];
}

// The options both benchmarks take; `keepFlag` names the file kept between runs.
struct RunOptions {
    qint64 waves = 1000;
    qint64 segments = 10000;
    quint64 seed = 1;
    int repeat = 3;
    QString kept;
};

// Takes the option at argv[i] and its value when it is one of the common
// ones, moving i onto the value; false leaves i where it was.
inline bool takeRunOption(int argc, char** argv, int& i, RunOptions& opt)
{
    if (i + 1 >= argc)
        return false;
    const char* name = argv[i];
    const char* value = argv[i + 1];
    if (!std::strcmp(name, "--waves"))
        opt.waves = std::atoll(value);
    else if (!std::strcmp(name, "--segments"))
        opt.segments = std::atoll(value);
    else if (!std::strcmp(name, "--seed"))
        opt.seed = std::strtoull(value, nullptr, 10);
    else if (!std::strcmp(name, "--repeat"))
        opt.repeat = std::max(1, std::atoi(value));
    else
        return false;
    ++i;
    return true;
}

inline RunOptions parseRunOptions(int argc, char** argv, const char* keepFlag)
{
    RunOptions opt;
    for (int i = 1; i + 1 < argc; ++i) {
        if (takeRunOption(argc, argv, i, opt))
            continue;
        if (!std::strcmp(argv[i], keepFlag))
            opt.kept = QString::fromLocal8Bit(argv[++i]);
    }
    return opt;
}
