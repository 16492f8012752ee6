// The wave view's mouse handlers: picking a wave and a time range, dragging a
// pattern edge, and the cursor time that the ruler shows.
//
// An edge drag changes the live wave at every mouse move, so that the picture
// follows the mouse, and becomes one undo step only at the release: the copy
// of the wave taken at the press is the command's "before" state.
#include "waveview.h"

#include "biginteger.h"
#include "rulerview.h"
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

// The active wave as it was when the edge drag under way began; null outside
// a drag. One mouse is dragged at a time, so the whole module shares it.
WaveData* oldwave = nullptr;
// The view whose drag the copy belongs to, so that a view going away frees
// only its own.
const WaveView* oldwaveOwner = nullptr;

void dropOldwave()
{
    delete oldwave;
    oldwave = nullptr;
    oldwaveOwner = nullptr;
}

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
    quint64 tailStart = wave.offset;
    for (qsizetype i = 0; i < wave.foreverIndex; ++i)
        tailStart += static_cast<quint64>(static_cast<qint64>(wave.patterns.at(i)->duration));
    qint64 period = 0;
    for (qsizetype i = wave.foreverIndex; i < count; ++i)
        period += wave.patterns.at(i)->duration;
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

WaveView::~WaveView()
{
    if (oldwaveOwner == this)
        dropOldwave();
}

const WaveData* WaveView::dragOrigin()
{
    return oldwave;
}

bool WaveView::isDraggingEdge() const
{
    return oldwave && oldwaveOwner == this;
}

bool WaveView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::MouseButtonPress) {
        const auto* mouse = static_cast<const QMouseEvent*>(event);
        if (mouse->modifiers() == Qt::ShiftModifier) {
            if (!isDraggingEdge()) {
                const WaveData* wave = owner_->activeWave();
                // Right of the wave's end there is no pattern to stretch.
                if (wave && selectionStart >= static_cast<double>(wave->getEndTime())) {
                    stretchDrag = false;
                    highlightOff = false;
                    selectionIsRange = false;
                } else {
                    stretchDrag = true;
                }
            }
        } else {
            stretchDrag = false;
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
    WaveformData* doc = owner_->document();
    for (WaveData* wave : std::as_const(doc->waves))
        wave->selected = false;
    snappedStart = snappedEnd = 0;
    const quint64 step = qMax<quint64>(1, owner_->step());
    cursorTime = static_cast<quint64>(qMax(0, x)) * step / PixelsPerStep + owner_->startTime();
    pressTime_ = cursorTime;

    RulerView* ruler = owner_->rulerView();
    auto markRuler = [&]() {
        ruler->rangeActive = true;
        ruler->rangeStart = ruler->rangeEnd = snappedTimeAt(x);
        ruler->update();
    };

    if (mode == VokGUI::ModeEdit) {
        if (!owner_->activeWave())
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
            selectionIsRange = true;
            selectionStart = selectionEnd = exactTimeAt(x);
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
    WaveData* wave = owner_->activeWave();
    const QList<Pattern*>& selected = owner_->selection();
    if (!wave || selected.size() != 1)
        return false;
    const double lo = qMin(selectionStart, selectionEnd);
    const double hi = qMax(selectionStart, selectionEnd);
    const double t = static_cast<double>(cursorTime);
    if (t < lo || t > hi || !(lo < static_cast<double>(wave->getEndTime())))
        return false;
    Pattern* p = selected.first();
    const qsizetype k = wave->patterns.indexOf(p);
    if (k < 0)
        return false;

    WaveData* before = nullptr;
    Pattern* left = nullptr;
    Pattern* right = nullptr;
    patternCreated = false;
    if (stretchDrag) {
        dragLeftEdge = false;
        left = p;
    } else if (t < lo + p->duration / 2.0) {
        dragLeftEdge = true;
        right = p;
        if (k > 0) {
            left = wave->patterns.at(k - 1);
        } else {
            // The wave's first edge has nothing on its left to give or take
            // time: a one-unit pattern is made there to do it.
            before = snapshotOf(wave);
            left = new Pattern(valueBelow(p->value, wave->isBus ? wave->busWidth : 1), 1);
            wave->insertData(left, p);
            patternCreated = true;
        }
    } else {
        dragLeftEdge = false;
        left = p;
        right = k + 1 < wave->patterns.size() ? wave->patterns.at(k + 1) : nullptr;
    }

    pressX = x;
    edgeMoved = false;
    draggedPatterns.clear();
    oldDurations.clear();
    newDurations.clear();
    for (Pattern* q : {left, right}) {
        if (q) {
            draggedPatterns.append(q);
            oldDurations.append(q->duration);
        }
    }
    selectedPattern = left;
    selectedPattern2 = right;
    highlightOff = true;
    // The dragged selection stays this wave's, so that the release gathers it
    // again rather than reading the release as a click past the wave's end.
    wave->selected = true;
    dropOldwave();
    oldwave = before ? before : snapshotOf(wave);
    oldwaveOwner = this;
    return true;
}

void WaveView::mouseMoveEvent(QMouseEvent* event)
{
    const int x = event->position().toPoint().x();
    const int mode = owner_->mode();
    mouseX = x;
    owner_->changePointX(qMax(0, x));

    if (mode == VokGUI::ModeEdit && selectionIsRange) {
        selectionEnd = exactTimeAt(x);
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
        ruler->rangeEnd = snappedTimeAt(x);
    ruler->update();
    QWidget::mouseMoveEvent(event);
}

void WaveView::dragEdge(int x)
{
    // An edit or an undo under the drag may have taken a dragged pattern out
    // of its wave: the drag then has nothing left to move.
    if (draggedPatterns.size() != oldDurations.size() || !selectedPattern
        || draggedPatterns.first() != selectedPattern)
        return;
    Pattern* left = selectedPattern;
    Pattern* right = selectedPattern2;
    const qint64 step = static_cast<qint64>(qMax<quint64>(1, owner_->step()));
    constexpr qint64 Longest = std::numeric_limits<qint32>::max();

    qint64 delta = static_cast<qint64>((x - pressX) / PixelsPerStep) * step;
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

    pressX = cut ? pressX + static_cast<int>(delta * PixelsPerStep / step) : x;
    left->duration = static_cast<qint32>(left->duration + delta);
    if (right)
        right->duration = static_cast<qint32>(right->duration - delta);
    edgeMoved = true;

    // The selection keeps covering the picked pattern, with the same
    // half-unit insets as the snapping of the paint.
    const Pattern* picked = dragLeftEdge && right ? right : left;
    if (const WaveData* wave = picked->wave) {
        const double start = static_cast<double>(wave->getPatternStart(picked));
        selectionStart = start + 0.5;
        selectionEnd = start + picked->duration - 0.5;
    }
    qDebug() << "edit time end:" << selectionEnd;
    update();
}

void WaveView::finishEdgeDrag()
{
    newDurations.clear();
    for (const Pattern* p : std::as_const(draggedPatterns))
        newDurations.append(p->duration);
    // A pattern made at the press changed the wave even when nothing moved
    // after it: that too is undone in one step.
    if ((edgeMoved || patternCreated) && oldwave) {
        if (WaveData* wave = owner_->document()->findWavebyName(oldwave->name))
            owner_->undoStack()->push(new EditPatternCommand(wave, oldwave, owner_));
    }
    forgetEdgeDrag();
    owner_->SetDirtyBit();
}

void WaveView::cancelEdgeDrag()
{
    if (isDraggingEdge())
        forgetEdgeDrag();
}

void WaveView::forgetEdgeDrag()
{
    edgeMoved = false;
    patternCreated = false;
    dropOldwave();
    highlightOff = false;
    stretchDrag = false;
    selectedPattern = selectedPattern2 = nullptr;
    draggedPatterns.clear();
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
    releasePoint = pos;
    cursorTime = pos.x() <= 0 ? 0 : snappedTimeAt(pos.x());
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
        if (selectionIsRange) {
            selectionIsRange = false;
            selectionEnd = exactTimeAt(pos.x());
            WaveData* wave = owner_->activeWave();
            if (wave && spansRepetitions(*wave, pressTime_, cursorTime)) {
                wave->selected = false;
                // Nothing stays selected that the picture no longer shows.
                owner_->selection().clear();
                owner_->LoadEditData();
                owner_->onEditDataChanged();
                owner_->Refresh();
                QWidget::mouseReleaseEvent(event);
                return;
            }
        }
        collectNow();
        if (owner_->selection().isEmpty()) {
            // Nothing under the selection: a click right of the wave's end
            // extends the wave up to it.
            selectionEnd = qMax(0.0, exactTimeAt(pos.x()));
            owner_->addEditData(static_cast<quint64>(selectionEnd));
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
