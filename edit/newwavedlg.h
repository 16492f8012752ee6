#pragma once

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QPushButton;

namespace kesu::toolvok {

class VokGUI;

// "Add New Wave": adds one wave per press of Add, each undoable on its own,
// and stays open for the next until it is cancelled.
class NewWaveDlg : public QDialog
{
    Q_OBJECT
public:
    explicit NewWaveDlg(QWidget* parent);

    QLineEdit* nameEdit() const { return m_name; }
    QComboBox* polarityBox() const { return m_polarity; }
    QPushButton* addButton() const { return m_add; }
    QDialogButtonBox* buttonBox() const { return m_buttons; }

public Q_SLOTS:
    void onAdd();
    void onCancel();
    void onHelp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    VokGUI* m_gui;
    QLineEdit* m_name;
    QComboBox* m_polarity;
    QPushButton* m_add;
    QDialogButtonBox* m_buttons;
};

} // namespace kesu::toolvok
