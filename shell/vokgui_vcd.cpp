// File > Import VCD: a simulation's dump becomes a new, untitled document.
// A new document rather than waves added to this one, since the dump brings
// its own time unit, which the waves already drawn may not fit.
#include "vokgui.h"

#include "importvcddlg.h"
#include "waveformdata.h"

#include <QFile>
#include <QFileDialog>

#include <memory>

namespace kesu::toolvok {

void VokGUI::fileImportVcd()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Import VCD"), dialogFolder(),
                                                      tr("Value Change Dump (*.vcd);;All Files (*)"), nullptr,
                                                      QFileDialog::DontUseNativeDialog);
    if (path.isEmpty())
        return;
    ImportVcdDlg dialog(path, this);
    if (!dialog.readable()) {
        showerrormsg(tr("Cannot import %1: %2").arg(path, dialog.error()), this);
        return;
    }
    if (dialog.exec() != QDialog::Accepted)
        return;
    auto imported = std::make_unique<WaveformData>();
    QFile file(path);
    QStringList notes;
    QString error = tr("cannot open the file");
    if (!file.open(QIODevice::ReadOnly) || !importVcd(file, dialog.options(), *imported, notes, error)) {
        showerrormsg(tr("Cannot import %1: %2").arg(path, error), this);
        return;
    }
    if (!maybeSave())
        return;
    CloseFile();
    m_title = QStringLiteral("Untitled %1").arg(m_untitleNum++);
    m_fullTitle = m_toolTitle + QStringLiteral(" - ") + m_title;
    NewFile();
    // The dump's time base; what a dump does not set starts at its default.
    m_data->takeFrom(std::move(*imported));
    showDocument();
    SetDirtyBit();
    // Only what the dialog could not tell: the signals it lists come along.
    if (!notes.isEmpty())
        showwarnmsg(tr("Imported %1, except:\n%2").arg(path, notes.join(QLatin1Char('\n'))), this);
}

} // namespace kesu::toolvok
