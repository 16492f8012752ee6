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
    m_selection.removeIf(gone);
    m_waveView->pendingPatterns.removeIf(gone);
    m_waveView->draggedPatterns.removeIf(gone);
    if (m_waveView->selectedPattern && gone(m_waveView->selectedPattern))
        m_waveView->selectedPattern = nullptr;
    if (m_waveView->selectedPattern2 && gone(m_waveView->selectedPattern2))
        m_waveView->selectedPattern2 = nullptr;
}

void VokGUI::discardSegments(const QList<Pattern*>& segments)
{
    if (segments.isEmpty())
        return;
    const QSet<Pattern*> gone(segments.cbegin(), segments.cend());
    forgetSegments([&gone](const Pattern* p) { return gone.contains(const_cast<Pattern*>(p)); });
    qDeleteAll(gone);
}

void VokGUI::dropClipboard()
{
    // Cut segments still waiting for their paste belong to nobody else; the
    // views may still point at them from before the cut.
    discardSegments(m_clipboard);
    m_clipboard.clear();
}

void VokGUI::finishMouseEdit()
{
    if (m_waveView->isDraggingEdge())
        m_waveView->finishEdgeDrag();
}

QList<Pattern*> VokGUI::takeSelectedSegments()
{
    // Only what the active wave really holds is taken: anything else in the
    // selection still belongs to its own wave.
    const auto [first, last] = m_activeWave->spanOf(m_selection);
    const QList<Pattern*> removed = m_activeWave->takeSegments(m_selection, first, last);
    QSet<const Pattern*> gone(removed.cbegin(), removed.cend());
    // In the order of the selection: a cut pastes them in that order.
    QList<Pattern*> taken;
    for (Pattern* p : std::as_const(m_selection)) {
        if (gone.remove(p))
            taken.append(p);
    }
    return taken;
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
    if (m_mode != ModeEdit)
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
    if (time / m_step > quint64(m_waveHBar->maximum()))
        m_waveHBar->setMaximum(static_cast<int>(qMin<quint64>(time / m_step + 5, INT_MAX)));

    // Only the last segment can take the new one in.
    const SegmentRange before(*wave, int(wave->patterns.size()) - 1, 1);
    const bool taken = wave->addData(p);
    m_undoStack->push(new EditPatternCommand(wave, narrowChange(before, *wave), this));
    // A click right at the end makes a segment of no length, which no wave takes.
    if (taken)
        m_selection.append(p);
    else
        delete p;
}

void VokGUI::clearData()
{
    if (m_selection.isEmpty() || !m_activeWave)
        return;
    finishMouseEdit();
    const SegmentRange before = rangeOfEdit(*m_activeWave, m_selection);
    discardSegments(takeSelectedSegments());
    mergeEditedRange(m_activeWave, before);
    changeRange(-1, -1);
    m_editDlg->LoadData(nullptr, m_selection);
    m_undoStack->push(new EditPatternCommand(m_activeWave, narrowChange(before, *m_activeWave), this));
    m_selection.clear();
    Refresh();
}

void VokGUI::cutData()
{
    if (m_selection.isEmpty() || !m_activeWave)
        return;
    finishMouseEdit();
    m_fromCut = true;
    dropClipboard();
    const SegmentRange before = rangeOfEdit(*m_activeWave, m_selection);
    m_activeWave->selected = false;
    m_clipboard = takeSelectedSegments();
    m_selection.clear();
    // The cut segments live on in the clipboard; the views must let go of them.
    const QSet<Pattern*> cut(m_clipboard.cbegin(), m_clipboard.cend());
    forgetSegments([&cut](const Pattern* p) { return cut.contains(const_cast<Pattern*>(p)); });
    mergeEditedRange(m_activeWave, before);
    m_editDlg->LoadData(nullptr, m_selection);
    m_waveDataDlg->LoadData(m_activeWave);
    m_undoStack->push(new CutPatternCommand(m_activeWave, narrowChange(before, *m_activeWave), this));
    Q_EMIT pastedataChanged(false);
    Q_EMIT editdataChanged(false);
}

void VokGUI::copyData()
{
    m_fromCut = false;
    dropClipboard();
    for (const Pattern* p : std::as_const(m_selection)) {
        auto* copy = new Pattern(p->value, p->duration);
        copy->wave = p->wave;
        copy->spare = p->spare;
        copy->forever = p->forever;
        m_clipboard.append(copy);
    }
    Q_EMIT pastedataChanged(!m_selection.isEmpty());
}

void VokGUI::pasteData()
{
    if (m_clipboard.isEmpty() || m_selection.isEmpty() || !m_activeWave)
        return;
    const WaveData* source = m_clipboard.first()->wave;
    if (!source || source->isBus != m_activeWave->isBus
        || (source->isBus && source->busWidth != m_activeWave->busWidth))
        return;
    finishMouseEdit();

    Pattern* insertionPoint = m_selection.first();
    const SegmentRange before = rangeOfEdit(*m_activeWave, m_selection);
    for (Pattern* p : std::as_const(m_clipboard)) {
        if (m_fromCut) {
            p->wave->removeData(p);
            m_activeWave->insertData(p, insertionPoint);
        } else {
            m_activeWave->insertData(new Pattern(p->value, p->duration), insertionPoint);
        }
    }
    discardSegments(takeSelectedSegments());
    mergeEditedRange(m_activeWave, before);
    if (m_fromCut)
        m_clipboard.clear();   // a cut pastes once: its segments now belong to the wave

    m_activeWave->selected = false;
    m_selection.clear();
    m_editDlg->LoadData(m_activeWave, m_selection);
    m_undoStack->push(new EditPatternCommand(m_activeWave, narrowChange(before, *m_activeWave), this));
    Q_EMIT pastedataChanged(false);
    Q_EMIT editdataChanged(false);
    Refresh();
}

} // namespace kesu::toolvok
