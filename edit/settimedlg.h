#pragma once

#include <QDialog>

class QComboBox;
class QDialogButtonBox;

namespace kesu::toolvok {

class VokGUI;

// "Time Settings": the document's time unit and the precision of its times,
// one undoable change on OK.
class setTimeDlg : public QDialog
{
    Q_OBJECT
public:
    explicit setTimeDlg(QWidget* parent);

    QComboBox* precisionBox() const { return m_precision; }
    QComboBox* unitBox() const { return m_unit; }
    QDialogButtonBox* buttonBox() const { return m_buttons; }

public Q_SLOTS:
    void onOK();
    void onCancel();
    void onHelp();
    void onChangeUnit();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    VokGUI* m_gui;
    QComboBox* m_precision;
    QComboBox* m_unit;
    QDialogButtonBox* m_buttons;
};

} // namespace kesu::toolvok
