// A value change dump made into a document: the waves of a simulation, to
// be edited into stimulus.
#pragma once

#include <QString>
#include <QStringList>

class QIODevice;

namespace kesu::toolvok {

class WaveformData;

struct VcdImportOptions {
    // The variables to take, by reference ("clk"), path ("top.clk") or
    // either with the range ("d[7:0]"); empty: every variable of bits.
    QStringList signalNames;
    // Where the document begins and ends in the dump's time: a time with its
    // unit ("150 ns", "1.5us") or a number of the dump's own units; empty
    // for the dump's start and its last time stamp.
    QString from;
    QString to;
};

// Reads the dump in one pass into document, which is empty: each chosen
// variable becomes an Input wave, a bus from two bits on; x is don't care,
// z high impedance (a vector partly z is don't care); times count from
// `from`. The time settings show the dump's unit: "10 ns" is nanoseconds,
// and every dump time ten ticks. notes: what was left out and why. False
// with the reason, "line N: ..." for a fault of the dump.
bool importVcd(QIODevice& device, const VcdImportOptions& options, WaveformData& document, QStringList& notes,
               QString& error);

} // namespace kesu::toolvok
