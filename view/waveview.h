#pragma once

#include "viewport.h"

#include <QList>
#include <QPoint>
#include <QWidget>

#include <string>
#include <vector>

class QPainter;

namespace kesu::toolvok {

enum class Kind;
class Pattern;
struct WavePaintSetup;
class Selection;
class VokGUI;
class WaveData;

// The drawing area: every visible wave as rows on the time axis, with the
// selection, the marker and the cursor. Reads the document, the viewport and
// the selection from its owner and keeps only the cursor, the marker and
// what a paint or a gesture needs.
class WaveView : public QWidget
{
    Q_OBJECT
    // For tests and benchmarks: draw every primitive on its own, the
    // reference picture; force a number of bands (reset: the view decides).
    Q_PROPERTY(bool directPaint MEMBER directPaint_)
    Q_PROPERTY(int paintBands MEMBER forcedBands_ RESET resetPaintBands)
public:
    static constexpr int RowHeight = Viewport::RowHeight;
    static constexpr int PixelsPerStep = Viewport::PixelsPerStep;

    WaveView(VokGUI* owner, QWidget* parent);
    ~WaveView() override;

    // Moves the cursor to t (cut to the active wave's end) and scrolls the
    // view to it when it lies outside.
    void Jumpto(quint64 t);
    // Replays the last release after the document changed, so that the
    // selection follows the edited wave.
    void reselect();

    void drawWave(bool clone, QPainter& painter, WaveData* wave, int from, int to);

    // The second vertical line, set by clicks and jumps.
    quint64 cursorTime() const { return cursorTime_; }
    // The marker line; NoTime hides it.
    quint64 markerTime() const { return markerTime_; }
    void setMarkerTime(quint64 t);

    // Whether a press started an edge drag that its release has not ended.
    bool isDraggingEdge() const;
    // Ends the edge drag under way as its release would, with its one undo
    // step; edits from the keyboard call it so that they never interleave
    // with a half-made drag.
    void finishEdgeDrag();
    // Forgets the edge drag under way without touching the document: the
    // document it began in is going away.
    void cancelEdgeDrag();
    // The copy of the wave taken when the edge drag under way began (the
    // state its undo returns to); null between drags.
    const WaveData* dragOrigin() const;

    // A wave a paint shows, with the row it begins at.
    struct ShownWave
    {
        WaveData* wave;
        int row;
    };

    // How many primitives the last paint drew; lets tests and the benchmark
    // check that painting costs what is visible, not what exists.
    int lastPaintPrimitives() const { return primitives_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    VokGUI* owner_;
    Selection& sel() const;
    const Viewport& view() const;

    quint64 cursorTime_ = 0;
    quint64 markerTime_ = 0;
    // The last x seen by a mouse move.
    int mouseX_ = 0;
    // The cursor time of the press that began the current gesture.
    quint64 pressTime_ = 0;
    QPoint releasePoint_;

    // Mouse interaction helpers (waveview_mouse.cpp, waveview_interaction.cpp).
    WaveData* waveAtY(int y) const;
    bool startEdgeDrag(int x);
    void dragEdge(int x);
    // Gathers the segments under the selected range into the selection and
    // snaps the range to their edges.
    void collectSelection();

    // How many primitives the last paint drew.
    int primitives_ = 0;
    bool directPaint_ = false;
    int forcedBands_ = 0;
    void resetPaintBands() { forcedBands_ = 0; }
    // Counted by every paint, as the rows above the view leave them.
    int hiddenCount = 0;
    int rowIndex = 0;
    int bitRowsAbove = 0;

    WavePaintSetup paintSetup() const;
    // The shown waves from the first visible row down to the bottom edge,
    // with what the rows leave counted (the paint keeps the counts).
    struct ShownRows
    {
        std::vector<ShownWave> waves;
        int hidden = 0;
        int rows = 0;
        int bitRowsAbove = 0;
    };
    ShownRows shownWaves(const WavePaintSetup& setup) const;
    // How many bands the paint runs side by side: 1 unless the view is
    // crowded, or as many as forced.
    int bandCount(const WavePaintSetup& setup, const std::vector<ShownWave>& shown) const;
    void paintBands(QPainter& painter, const WavePaintSetup& setup, const std::vector<ShownWave>& shown, int bands);
};

} // namespace kesu::toolvok
