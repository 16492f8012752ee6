#pragma once

#include "undocommands.h"

#include <memory>

namespace kesu::toolvok {

// The EditPatternCommand of an edit the docks have already made to the live
// wave. It keeps the caller's copy of the wave from before the edit rather
// than copying it again, skips the first redo (the wave is edited already),
// and copies the edited wave only when it is first undone: on a wave of a
// hundred thousand pulses each copy is a large part of an edit's time.
class DockEditCommand : public EditPatternCommand
{
public:
    DockEditCommand(WaveData* live, std::unique_ptr<WaveData> before, VokGUI* gui);
    ~DockEditCommand() override = default;
    void undo() override;
    void redo() override;

private:
    QString name_;
    bool pushed_ = false;
};

} // namespace kesu::toolvok
