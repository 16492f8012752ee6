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
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate) && writeWaveform(document, file) && file.commit())
        return true;
    if (error)
        *error = file.errorString();
    file.cancelWriting();
    return false;
}

} // namespace kesu::toolvok
