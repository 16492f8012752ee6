#pragma once

#include <QDockWidget>

namespace kesu::toolvok {

class VokGUI;
class WaveData;

// The "Waveform Properties View" dock: the active wave's kind, offset and
// segments.
class WaveDataDlg : public QDockWidget
{
    Q_OBJECT
public:
    WaveDataDlg(VokGUI* owner, QWidget* parent);

    void LoadData(WaveData* wave);

private:
    VokGUI* owner_;
    WaveData* wave_ = nullptr;
};

} // namespace kesu::toolvok
