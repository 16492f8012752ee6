#pragma once

#include <QString>

namespace kesu::toolvok {

class WaveformData;

// Saves the document under path. The text goes to a new file beside the old
// one, is flushed to the disk, and only then takes the old one's place, so
// that whatever stops the save (a crash, a full disk, a folder gone or made
// read-only) the file on disk is either the previous version or the whole
// new one. On failure, error (when given) says why.
bool saveWaveformFile(const WaveformData& document, const QString& path, QString* error = nullptr);

} // namespace kesu::toolvok
