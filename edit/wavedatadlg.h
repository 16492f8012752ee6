#pragma once

#include <QDockWidget>

class QComboBox;
class QLabel;
class QLineEdit;

namespace kesu::toolvok {

class TextEdit;
class VokGUI;
class WaveData;

// The "Waveform Properties View" dock: the active wave's name, kind and
// offset, and a read-only summary of its patterns.
class WaveDataDlg : public QDockWidget
{
    Q_OBJECT
public:
    WaveDataDlg(VokGUI* owner, QWidget* parent);

    void LoadData(WaveData* wave);
    TextEdit* summary() const { return summary_; }

public Q_SLOTS:
    void onChangeType();
    void onChangeOffset();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The wave the handlers may change: the remembered one while it is
    // still the active wave.
    WaveData* editable() const;
    void refuse(const QString& message);

    VokGUI* owner_;
    WaveData* wave_ = nullptr;
    TextEdit* summary_;
    QLabel* name_;
    QComboBox* type_;
    QLineEdit* offset_;
};

} // namespace kesu::toolvok
