// The bus forms of a wave name, and the names of copies of waves.
#pragma once

#include <QString>
#include <QStringList>

namespace kesu::toolvok {

class WaveformData;

// A wave name as the reader takes it apart.
struct BusName {
    enum Form {
        Single,   // no bus: no brackets, a one-bit range "d[2:2]", or nothing known inside
        Range,    // "d[7:0]": base "d", bits from 7 to 0
        Run,      // "[cnt0...cnt3]": base "cnt", bits from 0 to 3
        List,     // "din[d1,d0]": the elements by name
    };
    Form form = Single;
    QString base;
    int from = 0;
    int to = 0;
    QStringList elements;

    // Bits of a Range or Run, elements of a List, 1 for a single signal.
    qint64 width() const;
};

BusName parseBusName(const QString& name);

// The first free name for a copy of the wave named name: "_" and a copy
// number go in front of the bus brackets ("d[3:0]" gives "d_0[3:0]", then
// "d_1[3:0]"). A run must stay a run of the same bits, and there its digits
// are the bit numbers, so the copy number goes inside in letters:
// "[cnt0...cnt3]" gives "[cnt_a0...cnt_a3]", then "[cnt_b0...cnt_b3]".
QString duplicateWaveName(const WaveformData& document, const QString& name);

} // namespace kesu::toolvok
