#include "undocommands.h"

#include "patterndlg.h"
#include "vokgui.h"
#include "wavedata.h"
#include "wavekind.h"
#include "wavedatadlg.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include <QHash>

namespace kesu::toolvok {

namespace {
WaveData* find(VokGUI* gui, const QString& name)
{
    return gui->document()->findWavebyName(name);
}

void markForever(WaveData* wave, qint32 index)
{
    if (index >= 0 && index < wave->patterns.size())
        wave->patterns.at(index)->forever = true;
}
} // namespace

// --- AddWaveCommand ---------------------------------------------------------

AddWaveCommand::AddWaveCommand(WaveData* wave, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), wave_(wave), gui_(gui)
{
}

AddWaveCommand::~AddWaveCommand()
{
    delete wave_;
}

void AddWaveCommand::undo()
{
    if (WaveData* live = find(gui_, wave_->name)) {
        const bool pattern = live->polarity == WaveKind::Pattern;
        gui_->removeWave(live);
        if (pattern)
            gui_->patternDlg()->LoadData();
    }
    gui_->SetDirtyBit();
}

void AddWaveCommand::redo()
{
    WaveData* copy = snapshotOf(wave_);
    gui_->addWave(copy);
    if (copy->polarity == WaveKind::Pattern)
        gui_->patternDlg()->LoadData();
    gui_->SetDirtyBit();
}

// --- DelWaveCommand ---------------------------------------------------------

DelWaveCommand::DelWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), gui_(gui)
{
    const QList<WaveData*>& all = gui->document()->waves;
    for (const WaveData* wave : waves) {
        snapshots_.append(snapshotOf(wave));
        positions_.append(static_cast<int>(all.indexOf(wave)));
    }
}

DelWaveCommand::~DelWaveCommand()
{
    qDeleteAll(snapshots_);
}

void DelWaveCommand::undo()
{
    for (qsizetype i = 0; i < snapshots_.size(); ++i) {
        WaveData* copy = snapshotOf(snapshots_.at(i));
        const bool pattern = copy->polarity == WaveKind::Pattern;
        gui_->insertWave(copy, positions_.at(i));
        if (pattern)
            gui_->patternDlg()->LoadData();
    }
    gui_->SetDirtyBit();
}

void DelWaveCommand::redo()
{
    for (const WaveData* snapshot : snapshots_) {
        if (WaveData* live = find(gui_, snapshot->name)) {
            const bool pattern = live->polarity == WaveKind::Pattern;
            gui_->removeWave(live);
            if (pattern)
                gui_->patternDlg()->LoadData();
        }
    }
    gui_->SetDirtyBit();
}

// --- ShowWaveCommand and HideWaveCommand ------------------------------------

ShowWaveCommand::ShowWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), gui_(gui)
{
    for (const WaveData* wave : waves)
        names_.append(wave->name);
}

void ShowWaveCommand::undo()
{
    for (const QString& name : names_) {
        if (WaveData* live = find(gui_, name))
            gui_->hideWave(live);
    }
}

void ShowWaveCommand::redo()
{
    for (const QString& name : names_) {
        if (WaveData* live = find(gui_, name)) {
            live->visible = true;
            gui_->showWave(live);
        }
    }
}

HideWaveCommand::HideWaveCommand(WaveData* wave, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), name_(wave->name), gui_(gui)
{
}

void HideWaveCommand::undo()
{
    if (WaveData* live = find(gui_, name_)) {
        live->visible = true;
        gui_->showWave(live);
    }
}

void HideWaveCommand::redo()
{
    if (WaveData* live = find(gui_, name_))
        gui_->hideWave(live);
}

// --- ForeverCommand ---------------------------------------------------------

ForeverCommand::ForeverCommand(WaveData* wave, int foreverIndex, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), name_(wave->name), newIndex_(foreverIndex), oldIndex_(wave->foreverIndex), gui_(gui),
      snapshot_(snapshotOf(wave))
{
}

ForeverCommand::~ForeverCommand()
{
    delete snapshot_;
}

void ForeverCommand::undo()
{
    WaveData* live = find(gui_, name_);
    if (!live)
        return;
    gui_->discardSegments(copyExactly(live, snapshot_));
    live->foreverIndex = oldIndex_;
    markForever(live, oldIndex_);
    if (live == gui_->activeWave())
        gui_->waveDataDlg()->LoadData(live);
    gui_->Refresh();
    gui_->SetDirtyBit();
}

void ForeverCommand::redo()
{
    WaveData* live = find(gui_, name_);
    if (!live)
        return;
    live->foreverIndex = newIndex_;
    markForever(live, newIndex_);
    gui_->mergeAfterEdit(live);
    gui_->Refresh();
    gui_->SetDirtyBit();
}

// --- EditPatternCommand and CutPatternCommand -------------------------------

EditPatternCommand::EditPatternCommand(WaveData* after, WaveData* before, VokGUI* gui, QUndoCommand* parent)
    : EditPatternCommand(after, narrowChange(*before, *after), gui, parent)
{
}

EditPatternCommand::EditPatternCommand(WaveData* wave, SegmentChange change, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), name_(wave->name), change_(std::move(change)), gui_(gui)
{
    // A wave outside the document (a copy made for the command) is not the
    // edited live wave: the first redo must apply the change like any other.
    pending_ = find(gui, name_) == wave;
}

void EditPatternCommand::restore(bool toAfter, bool reloadProperties)
{
    WaveData* live = find(gui_, name_);
    if (!live)
        return;
    if (pending_) {
        pending_ = false;
    } else {
        QList<Pattern*> lost;
        if (toAfter)
            change_.redo(*live, &lost);
        else
            change_.undo(*live, &lost);
        gui_->discardSegments(lost);
    }
    if (reloadProperties && live == gui_->activeWave())
        gui_->waveDataDlg()->LoadData(live);
    gui_->Refresh();
    gui_->SetDirtyBit();
}

void EditPatternCommand::undo()
{
    pending_ = false;
    restore(false, true);
}

void EditPatternCommand::redo()
{
    restore(true, true);
}

void CutPatternCommand::undo()
{
    pending_ = false;
    restore(false, false);
}

void CutPatternCommand::redo()
{
    restore(true, false);
}

// --- NodeParaCommand --------------------------------------------------------

NodeParaCommand::NodeParaCommand(WaveData* wave, int oldPolarity, int oldOffset, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), name_(wave->name), oldPolarity_(oldPolarity), oldOffset_(oldOffset),
      newPolarity_(wave->polarity), newOffset_(static_cast<qint32>(static_cast<quint32>(wave->offset))), gui_(gui)
{
}

void NodeParaCommand::apply(qint32 polarity, qint32 offset)
{
    WaveData* live = find(gui_, name_);
    if (!live)
        return;
    live->polarity = polarity;
    live->offset = static_cast<quint64>(static_cast<qint64>(offset));
    gui_->waveList()->updateWaveTitle(live);
    gui_->DisplayData();
    gui_->Refresh();
    gui_->SetDirtyBit();
}

void NodeParaCommand::undo()
{
    apply(oldPolarity_, oldOffset_);
}

void NodeParaCommand::redo()
{
    apply(newPolarity_, newOffset_);
}

// --- TimeUnitCommand --------------------------------------------------------

TimeUnitCommand::TimeUnitCommand(int unit, int precision, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), oldUnit_(gui->document()->smallestUnit), oldPrecision_(gui->document()->decimals),
      newUnit_(unit), newPrecision_(precision), gui_(gui)
{
}

void TimeUnitCommand::apply(qint32 unit, qint32 precision)
{
    gui_->document()->decimals = precision;
    gui_->document()->smallestUnit = unit;
    gui_->Refresh();
    gui_->SetDirtyBit();
}

void TimeUnitCommand::undo()
{
    apply(oldUnit_, oldPrecision_);
}

void TimeUnitCommand::redo()
{
    apply(newUnit_, newPrecision_);
}

// --- ImportWaveCommand ------------------------------------------------------

ImportWaveCommand::ImportWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), waves_(waves), gui_(gui)
{
}

void ImportWaveCommand::undo()
{
    // Names are looked up in one pass: an import brings thousands.
    QHash<QString, WaveData*> byName;
    for (WaveData* live : std::as_const(gui_->document()->waves))
        byName.insert(live->name, byName.value(live->name, live));
    QList<WaveData*> live;
    for (const WaveData* wave : waves_) {
        if (WaveData* found = byName.value(wave->name))
            live.append(found);
    }
    gui_->removeWaves(live);
}

void ImportWaveCommand::redo()
{
    QList<WaveData*> copies;
    for (const WaveData* wave : waves_)
        copies.append(snapshotOf(wave));
    gui_->addWaves(copies);
}

// --- moveWaveCommand --------------------------------------------------------

moveWaveCommand::moveWaveCommand(WaveData* wave, int from, int to, VokGUI* gui, QUndoCommand* parent)
    : QUndoCommand(parent), wave_(wave), from_(from), to_(to), gui_(gui), name_(wave->name)
{
    // The rows become document positions now: what is expanded, collapsed
    // or hidden until the undo must not change where the wave goes back to.
    const QList<WaveData*>& waves = gui->document()->waves;
    documentFrom_ = static_cast<int>(waves.indexOf(wave));
    const WaveData* target = gui->waveList()->waveAt(to);
    documentTo_ = target ? static_cast<int>(waves.indexOf(target)) : qBound(0, to, int(waves.size()) - 1);
}

WaveData* moveWaveCommand::wave() const
{
    // Undoing a removal or redoing a duplication puts a new copy in the
    // document; the name finds it where the remembered pointer cannot.
    const QList<WaveData*>& waves = gui_->document()->waves;
    if (waves.contains(wave_) && wave_->name == name_)
        return wave_;
    return gui_->document()->findWavebyName(name_);
}

void moveWaveCommand::undo()
{
    if (WaveData* live = wave())
        gui_->moveWave(live, documentTo_, documentFrom_);
}

void moveWaveCommand::redo()
{
    if (WaveData* live = wave())
        gui_->moveWave(live, documentFrom_, documentTo_);
}

} // namespace kesu::toolvok
