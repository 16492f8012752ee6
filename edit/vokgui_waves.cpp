// Adding, removing, moving, showing, hiding and duplicating whole waves.
#include "vokgui.h"

#include "busname.h"
#include "undocommands.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QSet>
#include <QStandardItemModel>
#include <QUndoStack>

namespace kesu::toolvok {

void VokGUI::forgetWave(WaveData* wave)
{
    if (m_sel.activeWave == wave)
        setActiveWave(nullptr);
    auto ofWave = [wave](const Pattern* p) { return p->wave == wave; };
    forgetSegments(ofWave);
    // Clipboard segments remember their source wave, which paste consults.
    if (std::any_of(m_sel.clipboard.cbegin(), m_sel.clipboard.cend(), ofWave)) {
        dropClipboard();
        Q_EMIT pastedataChanged(false);
    }
}

// The name list shows only visible waves (and the bits of expanded buses),
// so its rows and the document's positions are kept apart: rows are found
// from the waves around them.

void VokGUI::addWave(WaveData* wave)
{
    m_data->addWave(wave);
    if (wave->visible)
        m_waveList->addWave(wave);
    Refresh();
    SetDirtyBit();
}

void VokGUI::removeWave(WaveData* wave)
{
    if (!m_data->waves.contains(wave))
        return;
    forgetWave(wave);
    m_waveList->removeWave(wave);
    m_data->removeWave(wave);
    Refresh();
    SetDirtyBit();
}

// An import brings thousands of waves, and its undo takes them away again:
// one pass over the name list and the document, and one refresh, not one of
// each per wave.

void VokGUI::addWaves(const QList<WaveData*>& waves)
{
    for (WaveData* wave : waves) {
        m_data->addWave(wave);
        if (wave->visible)
            m_waveList->addWave(wave);
    }
    Refresh();
    SetDirtyBit();
}

void VokGUI::removeWaves(const QList<WaveData*>& waves)
{
    const QSet<const WaveData*> wanted(waves.cbegin(), waves.cend());
    QSet<const WaveData*> gone;
    for (WaveData* wave : std::as_const(m_data->waves)) {
        if (wanted.contains(wave)) {
            forgetWave(wave);
            gone.insert(wave);
        }
    }
    if (gone.isEmpty())
        return;
    // A wave's row takes the element rows of its expanded bus with it.
    QStandardItemModel* rows = m_waveList->itemModel();
    QList<bool> drop(rows->rowCount());
    bool dropping = false;
    for (int row = 0; row < rows->rowCount(); ++row) {
        if (const WaveData* wave = m_waveList->waveAt(row))
            dropping = gone.contains(wave);
        drop[row] = dropping;
    }
    for (int end = int(drop.size()); end > 0;) {
        int begin = end - 1;
        while (drop[end - 1] && begin > 0 && drop[begin - 1])
            --begin;
        if (drop[end - 1])
            rows->removeRows(begin, end - begin);
        end = begin;
    }
    m_data->waves.removeIf([&gone](const WaveData* wave) { return gone.contains(wave); });
    qDeleteAll(gone);
    Refresh();
    SetDirtyBit();
}

void VokGUI::insertWave(WaveData* wave, int index)
{
    // A position that no longer exists (or was never found) appends.
    if (index < 0 || index > m_data->waves.size())
        index = static_cast<int>(m_data->waves.size());
    m_data->waves.insert(index, wave);
    if (wave->visible)
        m_waveList->insertWave(wave, m_waveList->rowForPlaceOf(wave));
    Refresh();
    SetDirtyBit();
}

void VokGUI::moveWave(WaveData* wave, int from, int to)
{
    // Positions are the document's: the name list's rows depend on what is
    // hidden and expanded at the time, the document's order does not.
    const qsizetype count = m_data->waves.size();
    const qsizetype now = m_data->waves.indexOf(wave);
    if (now < 0 || to < 0 || to >= count)
        return;
    m_data->waves.move(now, to);
    m_waveList->moveWave(wave, from, to);
    Refresh();
    SetDirtyBit();
}

void VokGUI::showWave(WaveData*)
{
    // Rebuilt from scratch so that the rows keep the document's order.
    m_waveList->clearWaves();
    for (WaveData* wave : std::as_const(m_data->waves)) {
        if (wave->visible)
            m_waveList->addWave(wave);
    }
    Refresh();
}

void VokGUI::hideWave(WaveData* wave)
{
    wave->visible = false;
    m_waveList->removeWave(wave);
    wave->expandFlag = false;
    wave->selected = false;
    Refresh();
}

void VokGUI::hideWave()
{
    if (WaveData* wave = m_waveList->waveAt(m_waveList->currentIndex().row()))
        m_undoStack->push(new HideWaveCommand(wave, this));
}

void VokGUI::dupWave()
{
    if (!m_sel.activeWave)
        return;
    const QString copyName = duplicateWaveName(*m_data, m_sel.activeWave->name);
    WaveData* copy = snapshotOf(m_sel.activeWave);
    copy->name = copyName;
    m_undoStack->push(new AddWaveCommand(copy, this));
}

} // namespace kesu::toolvok
