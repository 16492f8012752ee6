#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QPrinter;
class QPushButton;
class QSpinBox;

namespace kesu::toolvok {

class VokGUI;

// "Page Setup": which time range is printed at which scale, and whether
// the names and the ruler go on the page. OK stores the choice in the
// tool window.
class PageSetupDlg : public QDialog
{
    Q_OBJECT
public:
    PageSetupDlg(QPrinter* printer, VokGUI* gui);

    QComboBox* rangeBox() const { return m_range; }
    QLineEdit* startEdit() const { return m_start; }
    QLineEdit* endEdit() const { return m_end; }
    QSpinBox* scaleBox() const { return m_scale; }
    QCheckBox* nameBox() const { return m_name; }
    QCheckBox* rulerBox() const { return m_ruler; }
    QCheckBox* fitBox() const { return m_fit; }
    QPushButton* systemButton() const { return m_system; }
    QDialogButtonBox* buttonBox() const { return m_buttons; }

public Q_SLOTS:
    void onChangeType();
    void onShowName();
    void onFitPage();
    void onPageSetup();
    void onOK();
    void onCancel();
    void onHelp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The range the dialog shows; false, after saying why, when the
    // customized times do not read.
    bool readRange(quint64& start, quint64& end);
    void enableRange(bool on);

    QPrinter* m_printer;
    VokGUI* m_gui;
    QComboBox* m_range;
    QLineEdit* m_start;
    QLineEdit* m_end;
    QSpinBox* m_scale;
    QCheckBox* m_name;
    QCheckBox* m_ruler;
    QCheckBox* m_fit;
    QPushButton* m_system;
    QDialogButtonBox* m_buttons;
};

} // namespace kesu::toolvok
