// The wave view's mouse handlers: picking a wave and a time range, dragging a
// pattern edge, and the cursor time that the ruler shows.
//
// The drag's state lives in the tool window's Selection, which keyboard edits
// and undo consult too.
#include "waveview.h"

#include "biginteger.h"
#include "rulerview.h"
#include "selection.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"

#include <QAction>
#include <QDebug>
#include <QMouseEvent>
#include <QUndoStack>

#include <limits>

namespace kesu::toolvok {

namespace {

// Which repetition of the forever tail a time falls in; the head before the
// tail goes with the tail's first showing, which is the real patterns too.
quint64 repetitionOf(quint64 t, quint64 tailStart, quint64 period)
{
    return t <= tailStart ? 0 : (t - tailStart) / period;
}

// Whether a and b lie in different repetitions of the wave's forever tail.
// Every repetition is drawn from the same patterns, so a selection from one
// into the next would gather them twice.
bool spansRepetitions(const WaveData& wave, quint64 a, quint64 b)
{
    const qsizetype count = wave.patterns.size();
    if (wave.foreverIndex < 0 || wave.foreverIndex >= count)
        return false;
    // The index holds both sums; a wave of millions is not walked per move.
    const quint64 tailStart = wave.segmentStart(wave.foreverIndex);
    const auto period = static_cast<qint64>(wave.segmentStart(int(count)) - tailStart);
    if (period <= 0)
        return false;
    return repetitionOf(a, tailStart, quint64(period)) != repetitionOf(b, tailStart, quint64(period));
}

// The value "one below" v at the given width, so that a pattern made in front
// of v always shows an edge: on a single signal (width 1) "0" and "1" swap,
// on a bus the number wraps within its bits, and don't care or high impedance
// (not numbers) become all ones.
std::string valueBelow(const std::string& v, int width)
{
    return BigInteger(v, 16).minusOne(qMax(1, width)).toString(16);
}

} // namespace

WaveView::~WaveView() = default;

const WaveData* WaveView::dragOrigin() const
{
    return sel().drag.origin.get();
}

bool WaveView::isDraggingEdge() const
{
    return sel().drag.active();
}

bool WaveView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::MouseButtonPress) {
        Selection& s = sel();
        const auto* mouse = static_cast<const QMouseEvent*>(event);
        if (mouse->modifiers() == Qt::ShiftModifier) {
            if (!isDraggingEdge()) {
                const WaveData* wave = s.activeWave;
                // Right of the wave's end there is no pattern to stretch.
                if (wave && s.rangeStart >= static_cast<double>(wave->getEndTime())) {
                    s.drag.stretch = false;
                    s.highlightOff = false;
                    s.isRange = false;
                } else {
                    s.drag.stretch = true;
                }
            }
        } else {
            s.drag.stretch = false;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void WaveView::mousePressEvent(QMouseEvent* event)
{
    const int mode = owner_->mode();
    if (event->button() != Qt::LeftButton || mode == VokGUI::ModeIgnore) {
        QWidget::mousePressEvent(event);
        return;
    }
    if (isDraggingEdge()) {
        // The release of the last drag never came (the grab was taken away):
        // end that drag first, then read this press's Shift afresh.
        finishEdgeDrag();
        eventFilter(this, event);
    }

    const int x = event->position().toPoint().x();
    const int y = event->position().toPoint().y();
    const Viewport& vp = view();
    Selection& s = sel();
    for (WaveData* wave : std::as_const(owner_->document()->waves))
        wave->selected = false;
    cursorTime_ = vp.pressTimeAt(x);
    pressTime_ = cursorTime_;

    RulerView* ruler = owner_->rulerView();
    auto markRuler = [&]() {
        ruler->rangeActive = true;
        ruler->rangeStart = ruler->rangeEnd = vp.snappedTimeAt(x);
        ruler->update();
    };

    if (mode == VokGUI::ModeEdit) {
        if (!s.activeWave)
            owner_->selectWave(y);
        bool range = true;
        WaveData* hit = waveAtY(y);
        if (hit && !hit->selected)
            hit->selected = true;
        else
            range = !startEdgeDrag(x);
        if (range) {
            // Picking the row may reset the selection times: set them after.
            owner_->selectWave(y);
            s.isRange = true;
            s.rangeStart = s.rangeEnd = vp.exactTimeAt(x);
            markRuler();
        }
    } else {
        markRuler();
    }
    update();
    QWidget::mousePressEvent(event);
    // Handled here: the frame around must not see it as its own click.
    event->accept();
}

bool WaveView::startEdgeDrag(int x)
{
    Selection& s = sel();
    WaveData* wave = s.activeWave;
    if (!wave || s.segments.size() != 1)
        return false;
    const double lo = s.lo();
    const double t = static_cast<double>(cursorTime_);
    if (t < lo || t > s.hi() || !(lo < static_cast<double>(wave->getEndTime())))
        return false;
    Pattern* p = s.segments.first();
    // The selection begins where its segment does, so the index usually
    // finds it at once; a selection in a repetition of the tail still looks.
    qsizetype k = wave->firstSegmentEndingAfter(static_cast<quint64>(lo));
    if (k >= wave->patterns.size() || wave->patterns.at(k) != p)
        k = wave->patterns.indexOf(p);
    if (k < 0)
        return false;

    EdgeDrag& drag = s.drag;
    WaveData* before = nullptr;
    Pattern* left = nullptr;
    Pattern* right = nullptr;
    drag.created = false;
    if (drag.stretch) {
        drag.leftEdge = false;
        left = p;
    } else if (t < lo + p->duration / 2.0) {
        drag.leftEdge = true;
        right = p;
        if (k > 0) {
            left = wave->patterns.at(k - 1);
        } else {
            // The wave's first edge has nothing on its left to give or take
            // time: a one-unit pattern is made there to do it.
            before = snapshotOf(wave);
            left = new Pattern(valueBelow(p->value, wave->isBus ? wave->busWidth : 1), 1);
            wave->insertData(left, p);
            drag.created = true;
        }
    } else {
        drag.leftEdge = false;
        left = p;
        right = k + 1 < wave->patterns.size() ? wave->patterns.at(k + 1) : nullptr;
    }

    drag.pressX = x;
    drag.moved = false;
    drag.patterns.clear();
    drag.oldDurations.clear();
    drag.newDurations.clear();
    for (Pattern* q : {left, right}) {
        if (q) {
            drag.patterns.append(q);
            drag.oldDurations.append(q->duration);
        }
    }
    s.picked = left;
    s.picked2 = right;
    s.highlightOff = true;
    // The dragged selection stays this wave's, so that the release gathers it
    // again rather than reading the release as a click past the wave's end.
    wave->selected = true;
    drag.origin.reset(before ? before : snapshotOf(wave));
    return true;
}

void WaveView::mouseMoveEvent(QMouseEvent* event)
{
    const int x = event->position().toPoint().x();
    const int mode = owner_->mode();
    Selection& s = sel();
    mouseX_ = x;
    owner_->changePointX(qMax(0, x));

    if (mode == VokGUI::ModeEdit && s.isRange) {
        s.rangeEnd = view().exactTimeAt(x);
        update();
    }
    if (isDraggingEdge()) {
        // A release that never arrived (a dialog or the zoom-area mode took
        // it) ends the drag here rather than letting a hover resize pulses.
        if (mode == VokGUI::ModeEdit && (event->buttons() & Qt::LeftButton))
            dragEdge(x);
        else
            finishEdgeDrag();
    }

    RulerView* ruler = owner_->rulerView();
    if (ruler->rangeActive && owner_->isZooming())
        ruler->rangeEnd = view().snappedTimeAt(x);
    ruler->update();
    QWidget::mouseMoveEvent(event);
}

void WaveView::dragEdge(int x)
{
    Selection& s = sel();
    EdgeDrag& drag = s.drag;
    // An edit or an undo under the drag may have taken a dragged pattern out
    // of its wave: the drag then has nothing left to move.
    if (drag.patterns.size() != drag.oldDurations.size() || !s.picked || drag.patterns.first() != s.picked)
        return;
    Pattern* left = s.picked;
    Pattern* right = s.picked2;
    const qint64 step = static_cast<qint64>(view().step);
    constexpr qint64 Longest = std::numeric_limits<qint32>::max();

    qint64 delta = static_cast<qint64>((x - drag.pressX) / PixelsPerStep) * step;
    // Neither pattern may fall below one unit, nor grow past what a duration
    // holds.
    qint64 most = Longest - left->duration;
    if (right)
        most = qMin<qint64>(most, right->duration - 1);
    qint64 least = 1 - static_cast<qint64>(left->duration);
    if (right)
        least = qMax<qint64>(least, right->duration - Longest);
    bool cut = false;
    if (delta > 0 && delta > most) {
        delta = qMax<qint64>(0, most);
        cut = true;
    } else if (delta < 0 && delta < least) {
        delta = qMin<qint64>(0, least);
        cut = true;
    }
    if (delta == 0)
        return;

    drag.pressX = cut ? drag.pressX + static_cast<int>(delta * PixelsPerStep / step) : x;
    left->duration = static_cast<qint32>(left->duration + delta);
    if (right)
        right->duration = static_cast<qint32>(right->duration - delta);
    drag.moved = true;

    // The selection keeps covering the picked pattern, with the same
    // half-unit insets as the snapping of a pick.
    const Pattern* picked = drag.leftEdge && right ? right : left;
    if (const WaveData* wave = picked->wave) {
        const double start = static_cast<double>(wave->getPatternStart(picked));
        s.rangeStart = start + 0.5;
        s.rangeEnd = start + picked->duration - 0.5;
    }
    qDebug() << "edit time end:" << s.rangeEnd;
    update();
}

void WaveView::finishEdgeDrag()
{
    Selection& s = sel();
    EdgeDrag& drag = s.drag;
    drag.newDurations.clear();
    for (const Pattern* p : std::as_const(drag.patterns))
        drag.newDurations.append(p->duration);
    // A pattern made at the press changed the wave even when nothing moved
    // after it: that too is undone in one step.
    if ((drag.moved || drag.created) && drag.origin) {
        if (WaveData* wave = owner_->document()->findWavebyName(drag.origin->name))
            owner_->undoStack()->push(new EditPatternCommand(wave, drag.origin.get(), owner_));
    }
    s.endDrag();
    owner_->SetDirtyBit();
}

void WaveView::cancelEdgeDrag()
{
    if (isDraggingEdge())
        sel().endDrag();
}

void WaveView::mouseReleaseEvent(QMouseEvent* event)
{
    const int mode = owner_->mode();
    if (event->button() != Qt::LeftButton && mode == VokGUI::ModeZoomArea) {
        const QAction* edit = owner_->action(VokGUI::ActEditMode);
        owner_->setMode(edit && edit->isChecked() ? VokGUI::ModeEdit : VokGUI::ModeQuery);
        owner_->setModeCursor();
        QWidget::mouseReleaseEvent(event);
        return;
    }

    const QPoint pos = event->position().toPoint();
    const Viewport& vp = view();
    Selection& s = sel();
    releasePoint_ = pos;
    cursorTime_ = pos.x() <= 0 ? 0 : vp.snappedTimeAt(pos.x());
    // A drag ends at its release whatever the mode became meanwhile: its
    // change is on the wave already and must reach the undo stack.
    if (isDraggingEdge())
        finishEdgeDrag();

    QList<WaveData*>& waves = owner_->document()->waves;
    if (mode != VokGUI::ModeEdit) {
        RulerView* ruler = owner_->rulerView();
        ruler->rangeActive = false;
        ruler->update();
    } else {
        if (s.isRange) {
            s.isRange = false;
            s.rangeEnd = vp.exactTimeAt(pos.x());
            WaveData* wave = s.activeWave;
            if (wave && spansRepetitions(*wave, pressTime_, cursorTime_)) {
                wave->selected = false;
                // Nothing stays selected that the picture no longer shows.
                s.segments.clear();
                owner_->LoadEditData();
                owner_->onEditDataChanged();
                owner_->Refresh();
                QWidget::mouseReleaseEvent(event);
                return;
            }
        }
        collectSelection();
        if (s.segments.isEmpty()) {
            // Nothing under the selection: a click right of the wave's end
            // extends the wave up to it.
            s.rangeEnd = qMax(0.0, vp.exactTimeAt(pos.x()));
            owner_->addEditData(static_cast<quint64>(s.rangeEnd));
            update();
        }
        owner_->LoadEditData();
    }

    int selectedWaves = 0;
    for (const WaveData* wave : std::as_const(waves))
        selectedWaves += wave->selected ? 1 : 0;
    for (qsizetype i = waves.size() - 1; i >= 0 && selectedWaves > 1; --i) {
        if (waves.at(i)->selected) {
            waves.at(i)->selected = false;
            --selectedWaves;
        }
    }
    update();
    owner_->onEditDataChanged();
    QWidget::mouseReleaseEvent(event);
}

} // namespace kesu::toolvok
