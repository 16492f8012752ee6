#pragma once

#include "timetext.h"

#include <QColor>
#include <QFont>

#include <string>

namespace kesu::toolvok {

// How wave rows look: their colours, the text of bus values and the font,
// the same for the screen, the printed page and an exported picture. The
// defaults are a fresh tool's.
struct RowStyle
{
    QColor signal = Qt::blue;
    QColor bus = Qt::blue;
    QColor dontCare = Qt::red;
    // High impedance is always grey, whatever the colour settings.
    QColor highZ = Qt::gray;
    // 0 binary, 1 octal, 2 decimal, 3 hexadecimal.
    int busRadix = 0;
    QFont font;
    // Letters are placed by this size, not by the font's metrics.
    static constexpr int FontSize = 8;

    QString busText(const std::string& value, int width) const
    {
        return TimeText::busValueString(value, width, busRadix);
    }
    // The waves' text: the given font at 8 points, Arial, bold.
    static QFont waveFont(QFont base)
    {
        base.setPointSize(FontSize);
        base.setFamily(QStringLiteral("Arial"));
        base.setWeight(QFont::Bold);
        return base;
    }
};

} // namespace kesu::toolvok
