#pragma once

#include <QDockWidget>
#include <QList>

#include <memory>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QValidator;

namespace kesu::toolvok {

class Pattern;
class VokGUI;
class WaveData;

// The "Pulse Properties View" dock: state, value and duration of the selected
// pulse, and scale, repeat and forever for the whole selection. Every change
// goes to the live wave first and then onto the undo stack as one step.
class EditDlg : public QDockWidget
{
    Q_OBJECT
public:
    EditDlg(VokGUI* owner, QWidget* parent);

    void LoadData(WaveData* wave, const QList<Pattern*>& selection);

public Q_SLOTS:
    void onEditState(int index);
    void onEditDuration();
    void onEditValue();
    void onEditScale();
    void onEditRepeat();
    void onEditForever();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void disableAll();
    void enable(QLineEdit* edit, bool enabled, bool writable);
    void fillStates(bool bus);
    void showPulse(const Pattern* pulse);
    // Shows a message while the handlers stand still, so that the focus
    // leaving an edit for the message box is not taken as an edit.
    void refuse(const QString& message);
    // Records the change from `before` to the live wave as one undo step.
    void push(std::unique_ptr<WaveData> before);
    // Takes the owner's selection again after an edit may have merged pulses
    // away, keeping what the edits left in the line edits.
    void resync();

    VokGUI* owner_;
    WaveData* wave_ = nullptr;
    QList<Pattern*> selection_;
    QComboBox* state_;
    QLineEdit* duration_;
    QLineEdit* value_;
    // Bus values are typed in the radix the buses are shown in.
    QValidator* hexDigits_;
    QValidator* numberDigits_;
    QLineEdit* scale_;
    QLineEdit* repeat_;
    QCheckBox* forever_;
    bool busy_ = false;
};

} // namespace kesu::toolvok
