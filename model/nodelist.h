// The node list of a design (.naf): one node a line, its name and a kind letter.
#pragma once

#include <QList>
#include <QString>

class QIODevice;

namespace kesu::toolvok {

class WaveData;

// The polarity a kind letter stands for: "i" Input, "o" Output, "b" Bidir,
// "n" Test Pt, "r" Global; any other text leaves a new wave's Test Pt.
int nodePolarity(QStringView letter);

// One wave per node line, in file order, each hidden (visible false) until the
// user picks it; the caller owns them. Lines of fewer than two space-separated
// parts are skipped; parts after the second are ignored.
QList<WaveData*> parseNodeList(QStringView text);

// Far more than any design's node list (some two million nodes): a file this
// big is something else, and reading it whole could exhaust the memory.
constexpr qint64 MaxNodeListBytes = qint64(64) << 20;

struct NodeListRead {
    enum Status { Read, NotText, TooLarge };
    Status status = Read;
    QList<WaveData*> nodes;  // owned by the caller; empty unless Read
};

// Reads the device to its end. A file holding NUL bytes or bytes that are not
// UTF-8 is some other kind of file, not a node list, and one of more than
// limit bytes is not read on: nothing of either is taken.
NodeListRead readNodeList(QIODevice& device, qint64 limit = MaxNodeListBytes);

} // namespace kesu::toolvok
