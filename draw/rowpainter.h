#pragma once

#include "linebatch.h"
#include "rowstyle.h"
#include "viewport.h"

#include <limits>
#include <string>

namespace kesu::toolvok {

class Pattern;
class WaveData;

// Draws one wave row: level lines and their edges, bus outlines with their
// values, don't-care and high-impedance boxes with their letters, and runs
// of segments crowded into one pixel column, drawn once. The wave view and
// printed or exported pages draw their rows through it, so the two pictures
// follow the same rules; all it needs is a batch to draw into, the look and
// the time axis.
class RowPainter
{
public:
    RowPainter(LineBatch& batch, const RowStyle& style, const Viewport& vp);

    // The row's three levels, from its top.
    void setTop(int top);
    int highY() const { return high_; }
    int midY() const { return mid_; }
    int lowY() const { return low_; }
    LineBatch& batch() const { return batch_; }

    // A level segment begins with an edge when its value changed, unless the
    // one before was a box (and never at the row's left end).
    static bool edgeBefore(Kind kind, const std::string& value, Kind prevKind, const std::string& prev)
    {
        return !isSpecial(prevKind) && differs(kind, value, prevKind, prev);
    }

    // How one segment is drawn besides its value.
    struct Look
    {
        bool edge = false;        // a level change at its left end
        bool startedLeft = false; // it began left of the drawing
        bool picked = false;      // dotted, as the picked patterns of an edit
        bool shapes = true;       // false: only a letter may still reach in
    };
    // One segment of the row at [x, x + w).
    void segment(const WaveData& wave, const std::string& value, Kind kind, float x, float w, const Look& look);

    // The pieces of a segment.
    void level(bool one, bool edge, bool dotted, float x, float w);
    void busValue(const std::string& value, int busWidth, float x, float w, bool picked, bool startedLeft);
    void busShape(int layer, bool dotted, float x, float w, bool narrow, bool startedLeft);
    void box(int layer, bool dontCare, bool picked, bool shapes, float x, float w, int high, int low);
    // A box's "X" or "Z", or the "0" before a bus's offset: centred on
    // [x, x + w) with its baseline 8 pixels above low.
    void letter(int layer, LineBatch::Letter which, float x, float w, int low);
    // Before a wave's offset a signal is low and a bus reads 0.
    void leadingOffset(bool bus, float x, float w, bool startedLeft);

    // Where a crowded run must end besides a segment leaving its column.
    struct Limit
    {
        quint64 end = std::numeric_limits<quint64>::max();
        float right = std::numeric_limits<float>::max();
        const Pattern* picked = nullptr;
        const Pattern* picked2 = nullptr;
    };
    // Draws the run of plain segments from `first` on that begins and ends
    // in pixel column `column` as that column once; returns the index after
    // the run and leaves time and the previous value after it.
    int column(const WaveData& wave, int first, int to, int column, quint64& time, const std::string*& prev,
               Kind& prevKind, const Limit& limit);

    // A whole row as pages show it, from the time axis's start up to end,
    // cut at right, the forever tail repeated. previous carries the value
    // drawn last from row to row.
    void drawRow(const WaveData& wave, quint64 end, float right, std::string& previous);

private:
    LineBatch& batch_;
    const RowStyle& style_;
    const Viewport& vp_;
    int high_ = Viewport::HighLevel;
    int mid_ = Viewport::MidLevel;
    int low_ = Viewport::LowLevel;
};

} // namespace kesu::toolvok
