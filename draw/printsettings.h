#pragma once

#include <QtGlobal>

namespace kesu::toolvok {

// What the page setup chose; the tool window keeps it and the settings
// file carries it between sessions.
struct PrintSettings
{
    enum RangeType { All = 0, CurrentRange = 1, Customized = 2 };
    quint64 printStart = 0;
    quint64 printEnd = 0;
    int printRangeType = All;
    // 10 to 200; a fifth of it is the pixels per step on paper.
    int timeScale = 100;
    bool printName = true;
    bool fitPage = false;
    bool printRuler = true;
    int pixelsPerStep() const { return qMax(1, timeScale / 5); }
};

} // namespace kesu::toolvok
