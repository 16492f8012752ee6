#pragma once

#include "waveformdata.h"

#include <QByteArray>

#include <memory>

namespace kesu::toolvok {

// A small random document that any valid file could hold: every header
// setting and time unit, single signals, buses of up to 256 bits in all three
// name forms, named patterns and forever tails; and a file that reads back
// into exactly that document, written as a person might write it, with
// references to the patterns, repeated and scaled groups and statements
// broken over lines. The same seed always gives the same document and text.
struct RandomDocument {
    std::unique_ptr<WaveformData> document;
    QByteArray text;
};

RandomDocument makeRandomDocument(quint64 seed);

} // namespace kesu::toolvok
