// The outline of one bus value, as the wave view and the printed page both
// draw it: a hexagon whose tips are 5 pixels deep or, drawn narrow (a value
// under 20 pixels, or a picked one on screen), two tips that meet in the
// middle. A value that began left of the drawing has no left tip.
#pragma once

namespace kesu::toolvok {

constexpr float BusBevel = 5.0f;
constexpr float NarrowBus = 20.0f;

// line(x1, y1, x2, y2) draws one stroke of the outline.
template <typename Line>
void busOutline(float x, float w, bool narrow, bool startedLeft, int high, int mid, int low, Line&& line)
{
    const float tip = narrow ? w / 2.0f : BusBevel;
    if (startedLeft) {
        line(x, high, x + w - tip, high);
        line(x, low, x + w - tip, low);
    } else {
        line(x, mid, x + tip, high);
        line(x, mid, x + tip, low);
        if (!narrow) {
            line(x + tip, high, x + w - tip, high);
            line(x + tip, low, x + w - tip, low);
        }
    }
    line(x + w, mid, x + w - tip, high);
    line(x + w, mid, x + w - tip, low);
}

} // namespace kesu::toolvok
