#pragma once

#include <QList>
#include <QPoint>
#include <QWidget>

#include <string>

class QPainter;

namespace kesu::toolvok {

class Pattern;
class VokGUI;
class WaveData;

// The drawing area: every visible wave as rows on the time axis, with the
// selection, the marker and the cursor. Reads the document and the view
// state from its owner and keeps only drawing and selection state.
class WaveView : public QWidget
{
    Q_OBJECT
public:
    static constexpr int RowHeight = 40;
    static constexpr int PixelsPerStep = 20;

    WaveView(VokGUI* owner, QWidget* parent);
    ~WaveView() override;

    // Moves the cursor to t (cut to the active wave's end) and scrolls the
    // view to it when it lies outside.
    void Jumpto(quint64 t);
    // Replays the last release after the document changed, so that the
    // selection follows the edited wave.
    void reselect();

    void drawWave(bool clone, QPainter& painter, WaveData* wave, int from, int to);
    static void drawCloneBlock(QPainter& painter, int x, int y, int width, int height);

    // State read and written by the interaction, navigation and edit code.
    int firstVisibleRow = 0;
    quint64 markerTime = 0;
    quint64 cursorTime = 0;
    double selectionStart = 0;
    double selectionEnd = 0;
    double snappedStart = 0;
    double snappedEnd = 0;
    bool selectionIsRange = false;
    bool highlightOff = false;
    bool collectSelection = false;
    Pattern* selectedPattern = nullptr;
    Pattern* selectedPattern2 = nullptr;
    QList<Pattern*> pendingPatterns;
    QList<Pattern*> draggedPatterns;
    QList<WaveData*> pendingWaves;

    // Mouse interaction state (waveview_mouse.cpp).
    int mouseX = 0;
    bool patternCreated = false;
    bool edgeMoved = false;
    bool dragLeftEdge = false;
    int pressX = 0;
    bool stretchDrag = false;
    QList<qint32> oldDurations;
    QList<qint32> newDurations;
    QPoint releasePoint;

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
    static const WaveData* dragOrigin();

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

    // Mouse interaction helpers (waveview_mouse.cpp, waveview_interaction.cpp).
    double exactTimeAt(int x) const;
    quint64 snappedTimeAt(int x) const;
    WaveData* waveAtY(int y) const;
    bool startEdgeDrag(int x);
    void dragEdge(int x);
    void forgetEdgeDrag();
    // Repaints at once with collectSelection set, so that the paint gathers
    // the patterns under the selection into the owner's list.
    void collectNow();
    // The cursor time of the press that began the current gesture.
    quint64 pressTime_ = 0;

    // Per-paint state, set afresh at the start of every paint.
    int fontSize = 8;
    std::string previousValue;
    quint64 startTime = 0;
    quint64 step = 1;
    int hiddenCount = 0;
    int rowIndex = 0;
    int bitRowsAbove = 0;
    int rowHeight = RowHeight;
    int rowTop = 0;
    float timeCursor = 0;
    float xCursor = 0;
    int levelY = 10;
    int highY = 0;
    int lowY = 0;
    int midY = 0;
    int timeSum = 0;
    int primitives_ = 0;

    // Collects the lines of a paint so that runs of sub-pixel segments cost
    // one painter call instead of thousands; defined in waveview.cpp.
    class Batch;
    Batch* batch_ = nullptr;
    // False while a row below the bottom edge is only walked to collect the
    // selection.
    bool paintRows_ = true;
    // The row's time in whole ticks alongside the single-precision
    // timeCursor, for the selection's edges.
    quint64 exactTime_ = 0;
    bool rangeDrawn_ = false;

    bool collectsFrom(const WaveData* wave) const;
    void drawLeadingOffset(const WaveData* wave, float w);
    void drawBusShape(int layer, const QColor& color, bool dotted, float x, float w, bool narrow, bool startedLeft);
    void drawSpecialBox(int layer, bool dontCare, bool picked, bool shapes, float x, float w, int high, int low);
};

} // namespace kesu::toolvok
