#pragma once

#include "wavedata.h"

#include <QList>

#include <functional>
#include <memory>

namespace kesu::toolvok {

// The interaction modes: what a press on the wave area does.
namespace InteractionMode {
constexpr int Ignore = 1;     // presses on the wave area are ignored
constexpr int ZoomArea = 2;   // a temporary mode that a right-button release leaves
constexpr int Query = 3;
constexpr int Edit = 4;
} // namespace InteractionMode

// What a time range on a wave selects: the segments it touches, in time
// order, and the range snapped to their outer edges. The snapped ends lie
// half a unit inside the first and the last segment, so that they stay
// strictly inside them.
struct SegmentPick
{
    QList<Pattern*> segments;
    double snappedStart = 0;
    double snappedEnd = 0;
};

// Whether the segment [start, end] is touched by the range [lo, hi]: one of
// its ends lies inside, or it covers the range; a range of one point touches
// the segments that hold it.
bool touchesRange(double start, double end, double lo, double hi);

// The segments of the wave that the range between a and b (in either order)
// touches, the forever tail repeated as the drawing shows it; each segment
// once.
SegmentPick pickSegments(const WaveData& wave, double a, double b);

// A pattern edge being dragged with the mouse. The drag changes the live wave
// at every move so that the picture follows the mouse, and becomes one undo
// step at the release, with origin as the state the undo returns to.
struct EdgeDrag
{
    std::unique_ptr<WaveData> origin;   // the wave as it was at the press
    QList<Pattern*> patterns;           // the two patterns around the edge
    QList<qint32> oldDurations;
    QList<qint32> newDurations;
    int pressX = 0;                     // where the drag last took effect
    bool leftEdge = false;              // the picked pattern's left edge
    bool stretch = false;               // Shift: one pattern grows, the rest moves on
    bool moved = false;
    bool created = false;               // the press made a pattern in front of the first

    bool active() const { return origin != nullptr; }
};

// The editing state of a tool window: mode, active wave, the selected time
// range and segments, the picked patterns, the edge drag under way and the
// clipboard. Only the clipboard's segments are owned here: copies, or cut
// segments waiting for their paste.
class Selection
{
public:
    Selection() = default;
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    ~Selection();

    int mode = InteractionMode::Query;
    WaveData* activeWave = nullptr;

    // The selected time range; zero means unset. Either end may be the larger.
    double rangeStart = 0;
    double rangeEnd = 0;
    // The range is shown as a free stretch of time while the mouse drags it.
    bool isRange = false;
    // An edge drag shows its patterns without the per-segment highlight.
    bool highlightOff = false;
    QList<Pattern*> segments;
    // The patterns on both sides of a dragged edge, drawn dotted.
    Pattern* picked = nullptr;
    Pattern* picked2 = nullptr;
    EdgeDrag drag;

    QList<Pattern*> clipboard;
    bool fromCut = false;

    double lo() const { return qMin(rangeStart, rangeEnd); }
    double hi() const { return qMax(rangeStart, rangeEnd); }
    bool hasRange() const { return rangeStart != 0 && rangeEnd != 0; }
    bool isEditing() const { return mode == InteractionMode::Edit; }

    // Takes what the range picked as the selected segments, and snaps the
    // range to them unless the snapped ends coincide.
    void adopt(const SegmentPick& pick);

    // Lets go of the segments for which gone holds, without deleting them.
    void forget(const std::function<bool(const Pattern*)>& gone);
    // Forgets the segments and deletes them.
    void discard(const QList<Pattern*>& gone);
    // Empties the clipboard, deleting what it owns.
    void dropClipboard();
    // Takes the selected segments that the wave really holds out of it.
    QList<Pattern*> takeFrom(WaveData* wave);
    // Ends the edge drag's state without an undo step.
    void endDrag();
};

} // namespace kesu::toolvok
