// One paint of the wave area, or of one horizontal band of it: the walk over
// the shown waves with all the state a paint keeps from segment to segment
// and from row to row. Bands of one picture are painted by WavePaint objects
// of their own, so they can run side by side.
#pragma once

#include "linebatch.h"
#include "rowpainter.h"
#include "viewport.h"

#include <QColor>
#include <QList>

#include <string>

class QPainter;

namespace kesu::toolvok {

class Selection;
class WaveData;

// What a paint reads and never changes.
struct WavePaintSetup
{
    const QList<WaveData*>* waves = nullptr;
    const Selection* selection = nullptr;
    Viewport vp;
    RowStyle style;
    bool guideline = false;
    // Draw every primitive on its own: the reference picture.
    bool direct = false;
    int width = 0;
    int height = 0;
};

class WavePaint
{
public:
    WavePaint(QPainter& painter, const WavePaintSetup& setup);

    // Draws the wave whose first row is rowIndex: its leading offset, its
    // segments and its repeated forever tail, then the guide line.
    void paintWave(WaveData* wave, int rowIndex);
    void drawWave(bool clone, WaveData* wave, int from, int to);

    void setRowTop(int rowIndex);
    LineBatch& batch() { return batch_; }
    int primitives() const { return primitives_; }

private:
    void drawLeadingOffset(const WaveData* wave, float w);
    // How many repetitions of a tail of the given period, begun at from,
    // end within pixel column `column`.
    quint64 repetitionsWithin(int column, quint64 from, quint64 period) const;

    const WavePaintSetup& setup_;
    const Viewport& vp_;
    int primitives_ = 0;
    LineBatch batch_;
    RowPainter row_;
    std::string previousValue_;
    int rowIndex_ = 0;
    // Where the next segment of the row begins, in whole ticks: every x comes
    // from such a time, so a row drawn from its middle has the pixels of one
    // drawn from its first segment.
    quint64 exactTime_ = 0;
    bool rangeDrawn_ = false;
};

} // namespace kesu::toolvok
