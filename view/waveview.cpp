// Painting of the wave area: every shown wave as rows of level lines, bus
// shapes and don't-care / high-impedance boxes, with the selection, the marker
// and the cursor on top.
#include "waveview.h"

#include "biginteger.h"
#include "selection.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "rowpainter.h"
#include "wavepaint.h"

#include <QPaintEvent>
#include <QPainter>

#include <string>

namespace kesu::toolvok {

WaveView::WaveView(VokGUI* owner, QWidget* parent) : QWidget(parent), owner_(owner)
{
    setAutoFillBackground(true);
    setAttribute(Qt::WA_MouseTracking);
    setFocusPolicy(Qt::ClickFocus);
    setPalette(QPalette(owner->color_back));
    // The mouse interaction watches the view's own events first.
    installEventFilter(this);
}

Selection& WaveView::sel() const
{
    return owner_->selectionState();
}

const Viewport& WaveView::view() const
{
    return owner_->viewport();
}

void WaveView::setMarkerTime(quint64 t)
{
    markerTime_ = t;
    update();
}

WavePaintSetup WaveView::paintSetup() const
{
    WavePaintSetup setup;
    setup.waves = &owner_->document()->waves;
    setup.selection = &sel();
    setup.vp = view();
    setup.style = owner_->rowStyle(font());
    setup.guideline = owner_->showGuideline();
    setup.direct = directPaint_;
    setup.width = width();
    setup.height = height();
    return setup;
}

WaveView::ShownRows WaveView::shownWaves(const WavePaintSetup& setup) const
{
    ShownRows shown;
    int row = 0;
    const int firstVisibleRow = setup.vp.firstRow;
    for (WaveData* wave : *setup.waves) {
        if (!wave->visible) {
            ++shown.hidden;
            continue;
        }
        const int bitRows = wave->isBus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
        const int rows = 1 + bitRows;
        if (row + rows > firstVisibleRow) {
            // Below the bottom edge nothing shows.
            if (setup.vp.rowTop(row) >= setup.height)
                break;
            shown.waves.push_back({wave, row});
            if (bitRows > 0 && row + 1 < firstVisibleRow)
                shown.bitRowsAbove += firstVisibleRow - row - 1;
        }
        row += rows;
    }
    shown.rows = row;
    return shown;
}

void WaveView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const WavePaintSetup setup = paintSetup();
    painter.setFont(setup.style.font);
    const ShownRows rows = shownWaves(setup);
    hiddenCount = rows.hidden;
    rowIndex = rows.rows;
    bitRowsAbove = rows.bitRowsAbove;
    const std::vector<ShownWave>& shown = rows.waves;
    primitives_ = 0;
    const int bands = bandCount(setup, shown);
    if (bands > 1)
        paintBands(painter, setup, shown, bands);

    WavePaint paint(painter, setup);
    if (bands <= 1) {
        for (const ShownWave& s : shown)
            paint.paintWave(s.wave, s.row);
    }
    const float rightEdge = static_cast<float>(setup.width + 1);
    const quint64 startTime = setup.vp.startTime;
    LineBatch& batch = paint.batch();
    if (startTime < markerTime_) {
        const float x = setup.vp.xOf(markerTime_);
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::red, 1, px(x), 0, px(x), setup.height);
    }
    const int mode = owner_->mode();
    if (startTime < cursorTime_ && (mode == VokGUI::ModeQuery || mode == VokGUI::ModeEdit)) {
        const float x = setup.vp.xOf(cursorTime_);
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::black, 1, px(x), 0, px(x), setup.height);
    }
    batch.rect(RowLayer, QPen(palette().dark().color()), Qt::NoBrush,
               QRect(0, 0, setup.width - 1, setup.height - 1));
    batch.flushAll();
    primitives_ += paint.primitives();
}

void WaveView::drawWave(bool clone, QPainter& painter, WaveData* wave, int from, int to)
{
    const WavePaintSetup setup = paintSetup();
    for (const ShownWave& s : shownWaves(setup).waves) {
        if (s.wave == wave) {
            WavePaint paint(painter, setup);
            paint.setRowTop(s.row);
            paint.drawWave(clone, wave, from, to);
            paint.batch().flushAll();
            primitives_ = paint.primitives();
            return;
        }
    }
}

} // namespace kesu::toolvok
