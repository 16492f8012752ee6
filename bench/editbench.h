// What the edit and dock benchmarks share: their options, a timer and the
// rows of edit, undo and redo times they print.
#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace editbench {

struct Options {
    qint64 segments = 100000;
    int repeat = 9;
    quint64 seed = 1;
};

inline bool parse(int argc, char** argv, Options& opt)
{
    for (int i = 1; i < argc; ++i) {
        const bool more = i + 1 < argc;
        if (!std::strcmp(argv[i], "--segments") && more)
            opt.segments = std::atoll(argv[++i]);
        else if (!std::strcmp(argv[i], "--repeat") && more)
            opt.repeat = std::max(1, std::atoi(argv[++i]));
        else if (!std::strcmp(argv[i], "--seed") && more)
            opt.seed = std::strtoull(argv[++i], nullptr, 10);
        else
            return false;
    }
    return opt.segments >= 100;
}

inline double elapsedMs(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

inline double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

struct Row {
    const char* name;
    std::vector<double> edit, undo, redo;
};

} // namespace editbench
