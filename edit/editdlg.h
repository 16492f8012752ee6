#pragma once

#include <QDockWidget>
#include <QList>

namespace kesu::toolvok {

class Pattern;
class VokGUI;
class WaveData;

// The "Pulse Properties View" dock: the selected pulses of the active wave.
class EditDlg : public QDockWidget
{
    Q_OBJECT
public:
    EditDlg(VokGUI* owner, QWidget* parent);

    void LoadData(WaveData* wave, const QList<Pattern*>& selection);

private:
    VokGUI* owner_;
    WaveData* wave_ = nullptr;
};

} // namespace kesu::toolvok
