#pragma once

#include <QDialog>
#include <QStringList>

class QComboBox;
class QLineEdit;

namespace kesu::toolvok {

// Names a saved waveform file, an output file and an export type, and hands
// them to the export library. The exporter reads the file from disk, so
// unsaved edits are not exported.
class ExportDlg : public QDialog
{
    Q_OBJECT

public:
    ExportDlg(const QString& inputPath, QWidget* parent);

    // The output extensions by type index, shared by every dialog.
    static const QStringList& extensions() { return m_extensions; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void onSelInput();
    void onSelOutput();
    void onTypeState(int index);
    void onOK();
    void onCancel();
    void onHelp();

private:
    static QStringList m_extensions;
    QLineEdit* m_input = nullptr;
    QLineEdit* m_output = nullptr;
    QComboBox* m_type = nullptr;
    QString m_path;
};

} // namespace kesu::toolvok
