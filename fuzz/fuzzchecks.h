// The properties the fuzz targets hold the readers to, shared with the test
// that replays every input the fuzzers ever found.
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace fuzzchecks {

// Each reads the bytes as a file of its kind and answers what went wrong,
// empty when nothing did. Memory faults and undefined behaviour are left to
// the sanitizers, which stop the run where they happen.

// The waveform file reader on any bytes.
QString readWaveform(const uint8_t* data, size_t size);

// The node-list reader on any bytes.
QString readNodeList(const uint8_t* data, size_t size);

// Read, write with the writer, read again: the second document must be the
// first, and writing it again must give the same text.
QString roundTrip(const uint8_t* data, size_t size);

using Check = QString (*)(const uint8_t*, size_t);

// The check of a fuzz target by its name ("reader", "nodelist", "roundtrip"),
// null for any other name.
Check checkNamed(const QString& target);

} // namespace fuzzchecks
