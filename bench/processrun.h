// One timed run of a child process, as the export and VCD import benchmarks
// measure it, and the run of median wall time among repeats.
#pragma once

#include <QtGlobal>

#include <algorithm>
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
