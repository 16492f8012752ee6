// Editing the segments of the active wave: extending by a click, clear, cut,
// copy and paste, and the merging of equal neighbours after an edit.
//
// Ownership: a segment belongs to the list of its wave, or to the clipboard
// once a cut took it out; everything else that leaves a wave is deleted here,
// after the selection state forgot it.
#include "vokgui.h"

#include "biginteger.h"
#include "editdlg.h"
#include "undocommands.h"
#include "wavedata.h"
#include "wavedatadlg.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QScrollBar>
#include <QSet>
#include <QUndoStack>

#include <limits>
#include <memory>

namespace kesu::toolvok {

namespace {
qint32 addDurations(qint32 a, qint32 b)
{
    return static_cast<qint32>(static_cast<quint32>(a) + static_cast<quint32>(b));
}

// The segments of the wave that an edit of the selected ones and the merging
// after it can change, for its undo step.
SegmentRange rangeOfEdit(const WaveData& wave, const QList<Pattern*>& selection)
{
    const auto [first, last] = wave.spanOf(selection);
    return first < 0 ? mergeableRange(wave, 0, 0) : mergeableRange(wave, first, last + 1);
}

std::string nextValue(const WaveData* wave)
{
    const std::string last = wave->getLastValue();
    if (wave->isBus) {
        if (Values::isSpecial(last))
            return "0";
        return BigInteger(last, 16).plusOne(wave->busWidth).toString(16);
    }
    return last == "0" ? "1" : "0";
}
} // namespace

void VokGUI::forgetSegments(const std::function<bool(const Pattern*)>& gone)
{
    m_sel.forget(gone);
}

void VokGUI::discardSegments(const QList<Pattern*>& segments)
{
    m_sel.discard(segments);
}

void VokGUI::dropClipboard()
{
    m_sel.dropClipboard();
}

void VokGUI::finishMouseEdit()
{
    if (m_waveView->isDraggingEdge())
        m_waveView->finishEdgeDrag();
}

void VokGUI::resetForever(WaveData* wave)
{
    if (wave->foreverIndex != -1 && wave->foreverIndex < wave->patterns.size())
        wave->patterns.at(wave->foreverIndex)->forever = true;
}

void VokGUI::mergeAfterEdit(WaveData* wave)
{
    mergeNeighbours(wave, 0, int(wave->patterns.size()));
}

void VokGUI::mergeEditedRange(WaveData* wave, const SegmentRange& before)
{
    // Every pair of equal neighbours lay inside the copied range; the edit
    // changed the wave's length inside it.
    const int grown = int(wave->patterns.size()) - before.waveCount();
    mergeNeighbours(wave, before.first(), before.first() + before.count() + grown);
}

void VokGUI::mergeNeighbours(WaveData* wave, int from, int to)
{
    // The head (before the forever segment) and the repeated tail merge each
    // in itself, never across their border. The list is rewritten only from
    // the first merge on.
    QList<Pattern*>& list = wave->patterns;
    const qsizetype count = list.size();
    const qsizetype end = qBound(qsizetype(0), qsizetype(to), count);
    const qint32 forever = wave->foreverIndex;
    const qsizetype border = forever == -1 ? count : qBound(qsizetype(0), qsizetype(forever), count);
    qsizetype i = qMax(qsizetype(from), qsizetype(0)) + 1;
    while (i < end && (i == border || !Values::same(list.at(i - 1)->value, list.at(i)->value)))
        ++i;
    if (i < end) {
        wave->segmentsChanged(int(i - 1));
        QList<Pattern*> removed;
        qsizetype headMerges = 0;
        qsizetype kept = i - 1;
        for (; i < end; ++i) {
            Pattern* p = list.at(i);
            Pattern* last = list.at(kept);
            if (i != border && Values::same(last->value, p->value)) {
                last->duration = addDurations(last->duration, p->duration);
                removed.append(p);
                headMerges += i < border ? 1 : 0;
            } else {
                list[++kept] = p;
            }
        }
        list.remove(kept + 1, end - kept - 1);
        if (forever != -1)
            wave->foreverIndex = static_cast<qint32>(forever - headMerges);
        discardSegments(removed);
    }
    resetForever(wave);
}

void VokGUI::addEditData(quint64 time)
{
    if (m_sel.mode != ModeEdit)
        return;
    WaveData* wave = m_waveList->waveAt(m_waveList->currentIndex().row());
    if (!wave)
        return;
    // The end is a walk over every segment: once is enough.
    const quint64 end = wave->getEndTime();
    // A segment holds at most 2^31 - 1 units; a click further out is refused
    // rather than wrapped into a negative length.
    if (end > time || time - end > quint64(std::numeric_limits<qint32>::max()))
        return;
    finishMouseEdit();
    auto* p = new Pattern(nextValue(wave), static_cast<qint32>(time - end));
    const quint64 step = m_viewport.step;
    if (time / step > quint64(m_waveHBar->maximum()))
        m_waveHBar->setMaximum(static_cast<int>(qMin<quint64>(time / step + 5, INT_MAX)));

    // Only the last segment can take the new one in.
    const SegmentRange before(*wave, int(wave->patterns.size()) - 1, 1);
    const bool taken = wave->addData(p);
    m_undoStack->push(new EditPatternCommand(wave, narrowChange(before, *wave), this));
    // A click right at the end makes a segment of no length, which no wave takes.
    if (taken)
        m_sel.segments.append(p);
    else
        delete p;
}

void VokGUI::clearData()
{
    if (m_sel.segments.isEmpty() || !m_sel.activeWave)
        return;
    finishMouseEdit();
    const SegmentRange before = rangeOfEdit(*m_sel.activeWave, m_sel.segments);
    discardSegments(m_sel.takeFrom(m_sel.activeWave));
    mergeEditedRange(m_sel.activeWave, before);
    changeRange(-1, -1);
    m_editDlg->LoadData(nullptr, m_sel.segments);
    m_undoStack->push(new EditPatternCommand(m_sel.activeWave, narrowChange(before, *m_sel.activeWave), this));
    m_sel.segments.clear();
    Refresh();
}

void VokGUI::cutData()
{
    if (m_sel.segments.isEmpty() || !m_sel.activeWave)
        return;
    finishMouseEdit();
    m_sel.fromCut = true;
    dropClipboard();
    const SegmentRange before = rangeOfEdit(*m_sel.activeWave, m_sel.segments);
    m_sel.activeWave->selected = false;
    m_sel.clipboard = m_sel.takeFrom(m_sel.activeWave);
    m_sel.segments.clear();
    // The cut segments live on in the clipboard; the views must let go of them.
    const QSet<Pattern*> cut(m_sel.clipboard.cbegin(), m_sel.clipboard.cend());
    forgetSegments([&cut](const Pattern* p) { return cut.contains(const_cast<Pattern*>(p)); });
    mergeEditedRange(m_sel.activeWave, before);
    m_editDlg->LoadData(nullptr, m_sel.segments);
    m_waveDataDlg->LoadData(m_sel.activeWave);
    m_undoStack->push(new CutPatternCommand(m_sel.activeWave, narrowChange(before, *m_sel.activeWave), this));
    Q_EMIT pastedataChanged(false);
    Q_EMIT editdataChanged(false);
}

void VokGUI::copyData()
{
    m_sel.fromCut = false;
    dropClipboard();
    for (const Pattern* p : std::as_const(m_sel.segments)) {
        auto* copy = new Pattern(p->value, p->duration);
        copy->wave = p->wave;
        copy->spare = p->spare;
        copy->forever = p->forever;
        m_sel.clipboard.append(copy);
    }
    Q_EMIT pastedataChanged(!m_sel.segments.isEmpty());
}

void VokGUI::pasteData()
{
    if (m_sel.clipboard.isEmpty() || m_sel.segments.isEmpty() || !m_sel.activeWave)
        return;
    const WaveData* source = m_sel.clipboard.first()->wave;
    if (!source || source->isBus != m_sel.activeWave->isBus
        || (source->isBus && source->busWidth != m_sel.activeWave->busWidth))
        return;
    finishMouseEdit();

    Pattern* insertionPoint = m_sel.segments.first();
    const SegmentRange before = rangeOfEdit(*m_sel.activeWave, m_sel.segments);
    for (Pattern* p : std::as_const(m_sel.clipboard)) {
        if (m_sel.fromCut) {
            p->wave->removeData(p);
            m_sel.activeWave->insertData(p, insertionPoint);
        } else {
            m_sel.activeWave->insertData(new Pattern(p->value, p->duration), insertionPoint);
        }
    }
    discardSegments(m_sel.takeFrom(m_sel.activeWave));
    mergeEditedRange(m_sel.activeWave, before);
    if (m_sel.fromCut)
        m_sel.clipboard.clear();   // a cut pastes once: its segments now belong to the wave

    m_sel.activeWave->selected = false;
    m_sel.segments.clear();
    m_editDlg->LoadData(m_sel.activeWave, m_sel.segments);
    m_undoStack->push(new EditPatternCommand(m_sel.activeWave, narrowChange(before, *m_sel.activeWave), this));
    Q_EMIT pastedataChanged(false);
    Q_EMIT editdataChanged(false);
    Refresh();
}

} // namespace kesu::toolvok
