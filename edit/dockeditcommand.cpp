#include "dockeditcommand.h"

#include "vokgui.h"
#include "wavedata.h"
#include "wavedatadlg.h"
#include "waveformdata.h"

namespace kesu::toolvok {

namespace {
// What the base class copies at construction, when only a name is needed.
std::unique_ptr<WaveData> nameOnly(const QString& name)
{
    return std::make_unique<WaveData>(name);
}
} // namespace

DockEditCommand::DockEditCommand(WaveData* live, std::unique_ptr<WaveData> before, VokGUI* gui)
    : EditPatternCommand(nameOnly(live->name).get(), nameOnly(live->name).get(), gui), name_(live->name)
{
    delete before_;
    before_ = before.release();
    delete after_;
    after_ = nullptr;
}

void DockEditCommand::undo()
{
    if (!after_) {
        // Everything pushed later is undone by now: the live wave is as this
        // edit left it.
        WaveData* live = gui_->document()->findWavebyName(name_);
        if (!live)
            return;
        after_ = snapshotOf(live);
    }
    EditPatternCommand::undo();
}

void DockEditCommand::redo()
{
    if (pushed_) {
        EditPatternCommand::redo();
        return;
    }
    pushed_ = true;
    WaveData* live = gui_->document()->findWavebyName(name_);
    if (!live)
        return;
    if (live == gui_->activeWave())
        gui_->waveDataDlg()->LoadData(live);
    gui_->Refresh();
    gui_->SetDirtyBit();
}

} // namespace kesu::toolvok
