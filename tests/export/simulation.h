// Running exports and simulators, and reading what they dump.
#pragma once

#include "files.h"
#include "programs.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

using testprograms::Run;
// stdout and stderr together in out, as a terminal shows them.
inline Run runProgram(const QString& dir, const QString& program, const QStringList& args)
{
    return testprograms::run(program, args, dir, QProcess::MergedChannels);
}
// Runs top through ghdl -a, -e, -r in std (93c, 08); the failing step and its output, or empty.
QString runGhdl(const QString& dir, const QString& std, const QStringList& files, const QString& top,
                const QStringList& runOptions, Run& run);

// ExportWaveforms in this process, as the Export dialog calls it.
int exportFile(const char* option, const QString& input, const QString& output);

// Each signal's changes in fs, lower case at full width: the last one per time, none before `end` that
// changes nothing or at/after it. lastTime: the last timestamp (our own VCD's end time).
using Changes = std::vector<std::pair<quint64, QByteArray>>;
using Dump = QMap<QByteArray, Changes>;
Dump readVcd(const QByteArray& text, quint64 end, quint64* lastTime = nullptr);

// The first difference between two dumps, or empty when they are equal.
QString differenceOf(const Dump& expected, const Dump& actual);

using namespace testfiles;
