#pragma once

#include <QtGlobal>

namespace kesu::toolvok {

// Which stretch of the time axis and which rows the wave drawing shows, and
// the conversions between times and pixels. The conversions depend on these
// values alone, so a printed page can use its own viewport, with its own
// scale, under the same rules as the screen.
struct Viewport
{
    // One step of time is this many pixels wide on the screen.
    static constexpr int PixelsPerStep = 20;
    static constexpr float PixelsPerStepF = 20.0f;
    // Every wave row, and every bit row of an expanded bus.
    static constexpr int RowHeight = 40;
    // Within a row: the high level, the middle and the low level.
    static constexpr int HighLevel = 10;
    static constexpr int MidLevel = 25;
    static constexpr int LowLevel = 40;
    // Zooming walks no further out than this.
    static constexpr quint64 MaxStep = 100000;

    // The time at the left edge.
    quint64 startTime = 0;
    // Time units per step; never 0.
    quint64 step = 1;
    // The row shown at the top (the vertical scroll position).
    int firstRow = 0;
    // Pixels per step: the screen's, or a printed page's own.
    int pixelsPerStep = PixelsPerStep;

    void setStep(quint64 s) { step = s == 0 ? 1 : s; }

    // Pixels for a duration, in single precision as all drawing computes.
    float widthOf(float duration) const
    {
        return duration / static_cast<float>(step) * static_cast<float>(pixelsPerStep);
    }
    // The x of a time at or right of the start time.
    float xOf(quint64 t) const { return widthOf(static_cast<float>(t - startTime)); }
    // The x of any time, negative left of the start time.
    float xAt(quint64 t) const
    {
        return t >= startTime ? xOf(t) : -widthOf(static_cast<float>(startTime - t));
    }
    // The x of a fractional time (a selection end).
    float xOfExact(double t) const { return widthOf(static_cast<float>(t - static_cast<double>(startTime))); }

    // The time under a pixel, unrounded: selection ends.
    double exactTimeAt(int x) const
    {
        return static_cast<double>(x) / pixelsPerStep * static_cast<double>(step) + static_cast<double>(startTime);
    }
    // The time under a pixel on whole steps: the cursor and the ruler. Left
    // of the time axis is still its start.
    quint64 snappedTimeAt(int x) const { return quint64(qMax(0, x) / pixelsPerStep) * step + startTime; }
    // The time a press puts the cursor at: the pixel's share of a step.
    quint64 pressTimeAt(int x) const { return quint64(qMax(0, x)) * step / quint64(pixelsPerStep) + startTime; }

    // How much time a view of the given width shows in whole steps.
    quint64 span(int width) const { return quint64(qMax(0, width) / pixelsPerStep) * step; }
    // The time at the right edge of a view of the given width.
    quint64 endTime(int width) const
    {
        return static_cast<quint64>(static_cast<float>(startTime)
                                    + static_cast<float>(step) * static_cast<float>(width)
                                        / static_cast<float>(pixelsPerStep));
    }

    // The row under a y, counted from the top of the document.
    int rowAt(int y) const { return y / RowHeight + firstRow; }
    // The top of a row in pixels.
    int rowTop(int row) const { return (row - firstRow) * RowHeight; }

    // The 1-2-5 sequence of steps that zooming walks.
    static quint64 zoomedIn(quint64 step);
    static quint64 zoomedOut(quint64 step);
    // The step that fits a time range into a view of the given width, rounded
    // up past its leading digit so that the range fits with room to spare.
    static quint64 fittingStep(quint64 range, int width);
};

} // namespace kesu::toolvok
