#include "documentfile.h"

#include "wavewriter.h"

#include <QSaveFile>

namespace kesu::toolvok {

bool saveWaveformFile(const WaveformData& document, const QString& path, QString* error)
{
    // QSaveFile writes beside the file and renames over it on commit; never
    // let it fall back to writing the file in place when the folder is
    // read-only, which is exactly what could leave half a file behind.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    // commit() takes a write the disk cut short (a full disk, a file size
    // limit) for a whole one and would put the truncated file in place: flush
    // first, and commit only what reached the disk whole.
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate) && writeWaveform(document, file) && file.flush()
        && file.size() == file.pos() && file.commit())
        return true;
    if (error)
        *error = file.errorString();
    file.cancelWriting();
    return false;
}

} // namespace kesu::toolvok
