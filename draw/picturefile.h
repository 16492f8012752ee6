#pragma once

#include "rowstyle.h"

#include <QString>

#include <optional>

namespace kesu::toolvok {

class WaveformData;

// A stretch of a document drawn as the printed pages draw it, for a file.
struct PictureJob
{
    quint64 from = 0;
    quint64 to = 0;
    // Time units per step; 0 takes the step that zooming to fit gives for the
    // page's width (a PDF) or for FitWidth pixels (an image).
    quint64 step = 0;
    // As in the page setup: 10 to 200, a fifth of it pixels per step; 0 fits
    // the range into that width as Fit Page does.
    int timeScale = 0;
    bool names = false;
    bool ruler = false;
    RowStyle style;

    static constexpr int FitWidth = 1600;
};

enum class PictureFormat { Pdf, Svg, Png };

// The format a file name asks for by its suffix, if it is one of ours.
std::optional<PictureFormat> pictureFormat(const QString& path);

// Writes the job to path: a PDF laid out in landscape pages as the print
// laid them out, or all rows of the range in one SVG or PNG picture. The
// file is replaced only once it is whole; on failure error says why.
bool writePicture(const WaveformData& document, const PictureJob& job, const QString& path, QString& error);

} // namespace kesu::toolvok
