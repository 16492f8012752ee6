// File > Export Image...: the view's range as a PDF, SVG or PNG file, drawn
// as wdl render draws it.
#include "vokgui.h"

#include "basehelp.h"
#include "picturefile.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace kesu::toolvok {

void VokGUI::fileExportImage()
{
    const QString topic = QStringLiteral("export_image");
    QFileDialog dialog(this, QStringLiteral("Export Image"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // Qt's own dialog, which carries the what's-this text.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters({QStringLiteral("PDF Files (*.pdf)"), QStringLiteral("SVG Files (*.svg)"),
                           QStringLiteral("PNG Files (*.png)")});
    dialog.setDefaultSuffix(QStringLiteral("pdf"));
    connect(&dialog, &QFileDialog::filterSelected, &dialog,
            [&dialog](const QString& filter) { dialog.setDefaultSuffix(filter.section(QLatin1String("*."), 1, 1).left(3)); });
    dialog.setWhatsThis(BaseHelp::getWhatsThisText(topic, QStringLiteral("file_name")));
    if (!fullFileName().isEmpty()) {
        const QFileInfo document(fullFileName());
        dialog.setDirectory(document.absolutePath());
        dialog.selectFile(document.completeBaseName() + QStringLiteral(".pdf"));
    }
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        exportImage(dialog.selectedFiles().constFirst());
}

bool VokGUI::exportImage(const QString& path)
{
    PictureJob job;
    job.from = startTime();
    job.to = getEndTime();
    job.step = step();
    // The screen's 20 pixels a step.
    job.timeScale = 100;
    job.names = m_print.printName;
    job.ruler = m_print.printRuler;
    job.style = rowStyle(QApplication::font());
    QString error;
    if (writePicture(*m_data, job, path, error))
        return true;
    showerrormsg(error, this);
    return false;
}

} // namespace kesu::toolvok
