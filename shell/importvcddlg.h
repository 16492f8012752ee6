// Import VCD: which variables of a value change dump become waves, and the
// time range taken.
#pragma once

#include "vcdimport.h"

#include <QDialog>

class QDialogButtonBox;
class QLineEdit;
class QListWidget;

namespace kesu::toolvok {

class ImportVcdDlg : public QDialog
{
    Q_OBJECT
public:
    // Reads the dump's declarations; readable() is false, with the reason
    // in error(), for a file that cannot be read or is no dump.
    ImportVcdDlg(const QString& path, QWidget* parent);

    bool readable() const { return m_error.isEmpty(); }
    const QString& error() const { return m_error; }
    // The checked variables by path, and the range typed.
    VcdImportOptions options() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void onOK();
    void onHelp();

private:
    void readDeclarations(const QString& path);

    QListWidget* m_signals;
    QLineEdit* m_from;
    QLineEdit* m_to;
    QDialogButtonBox* m_buttons;
    int m_magnitude = 1;
    int m_exponent = 9;
    QString m_error;
};

} // namespace kesu::toolvok
