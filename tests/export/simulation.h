// Running exports and simulators, and reading what they dump.
#pragma once

#include "files.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

struct Run {
    int code = -1;         // -1 also when the program crashed or did not finish
    QByteArray output;     // stdout and stderr together
};
Run runProgram(const QString& dir, const QString& program, const QStringList& args);
// Analyses, elaborates and runs top with ghdl in the standard (93c, 08); the
// failing step and its output, or empty. run: the last step's.
QString runGhdl(const QString& dir, const QString& std, const QStringList& files, const QString& top,
                const QStringList& runOptions, Run& run);

// ExportWaveforms in this process, as the Export dialog calls it.
int exportFile(const char* option, const QString& input, const QString& output);

// Each signal's value changes, times in femtoseconds, values in lower case
// and at full width. Changes at one time count as the last of them, values
// that do not change are dropped, and so is everything at or after `end`.
// lastTime: the last timestamp, which in our own VCD is the end time.
using Changes = std::vector<std::pair<quint64, QByteArray>>;
using Dump = QMap<QByteArray, Changes>;
Dump readVcd(const QByteArray& text, quint64 end, quint64* lastTime = nullptr);

// The first difference between two dumps, or empty when they are equal.
QString differenceOf(const Dump& expected, const Dump& actual);

using namespace testfiles;
