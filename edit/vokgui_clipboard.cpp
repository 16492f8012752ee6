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

// Merges equal neighbours of patterns[from, to) in place of that range;
// returns how many segments left it, appending them to removed.
qsizetype mergeRange(const QList<Pattern*>& in, qsizetype from, qsizetype to, QList<Pattern*>& out,
                     QList<Pattern*>& removed)
{
    const qsizetype before = removed.size();
    for (qsizetype i = from; i < to; ++i) {
        Pattern* p = in.at(i);
        if (i > from && out.last()->value == p->value) {
            out.last()->duration = addDurations(out.last()->duration, p->duration);
            removed.append(p);
        } else {
            out.append(p);
        }
    }
    return removed.size() - before;
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
    // The head (before the forever segment) and the repeated tail merge each
    // in itself, never across their border. One pass keeps large waves cheap.
    const qsizetype count = wave->patterns.size();
    const qint32 forever = wave->foreverIndex;
    const qsizetype headEnd = forever == -1 ? count : qBound(qsizetype(0), qsizetype(forever), count);
    QList<Pattern*> merged;
    merged.reserve(count);
    QList<Pattern*> removed;
    const qsizetype headMerges = mergeRange(wave->patterns, 0, headEnd, merged, removed);
    if (forever != -1)
        mergeRange(wave->patterns, headEnd, count, merged, removed);
    else if (headEnd < count)
        merged.append(wave->patterns.mid(headEnd));
    if (!removed.isEmpty()) {
        wave->patterns.swap(merged);
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

    std::unique_ptr<WaveData> before(snapshotOf(wave));
    const bool taken = wave->addData(p);
    m_undoStack->push(new EditPatternCommand(wave, before.get(), this));
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
    std::unique_ptr<WaveData> before(snapshotOf(m_sel.activeWave));
    discardSegments(m_sel.takeFrom(m_sel.activeWave));
    mergeAfterEdit(m_sel.activeWave);
    changeRange(-1, -1);
    m_editDlg->LoadData(nullptr, m_sel.segments);
    m_undoStack->push(new EditPatternCommand(m_sel.activeWave, before.get(), this));
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
    std::unique_ptr<WaveData> before(snapshotOf(m_sel.activeWave));
    m_sel.activeWave->selected = false;
    m_sel.clipboard = m_sel.takeFrom(m_sel.activeWave);
    m_sel.segments.clear();
    // The cut segments live on in the clipboard; the views must let go of them.
    const QSet<Pattern*> cut(m_sel.clipboard.cbegin(), m_sel.clipboard.cend());
    forgetSegments([&cut](const Pattern* p) { return cut.contains(const_cast<Pattern*>(p)); });
    mergeAfterEdit(m_sel.activeWave);
    m_editDlg->LoadData(nullptr, m_sel.segments);
    m_waveDataDlg->LoadData(m_sel.activeWave);
    m_undoStack->push(new CutPatternCommand(m_sel.activeWave, before.get(), this));
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
    std::unique_ptr<WaveData> before(snapshotOf(m_sel.activeWave));
    for (Pattern* p : std::as_const(m_sel.clipboard)) {
        if (m_sel.fromCut) {
            p->wave->removeData(p);
            m_sel.activeWave->insertData(p, insertionPoint);
        } else {
            m_sel.activeWave->insertData(new Pattern(p->value, p->duration), insertionPoint);
        }
    }
    discardSegments(m_sel.takeFrom(m_sel.activeWave));
    mergeAfterEdit(m_sel.activeWave);
    if (m_sel.fromCut)
        m_sel.clipboard.clear();   // a cut pastes once: its segments now belong to the wave

    m_sel.activeWave->selected = false;
    m_sel.segments.clear();
    m_editDlg->LoadData(m_sel.activeWave, m_sel.segments);
    m_undoStack->push(new EditPatternCommand(m_sel.activeWave, before.get(), this));
    Q_EMIT pastedataChanged(false);
    Q_EMIT editdataChanged(false);
    Refresh();
}

} // namespace kesu::toolvok
