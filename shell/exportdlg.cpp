#include "exportdlg.h"

#include "basehelp.h"
#include "exportwaveforms.h"
#include "progressgate.h"
#include "vokgui.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFileDialog>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace kesu::toolvok {

namespace {

struct ExportType {
    const char* text;
    const char* extension;
    const char* filter;
    const char* option;
};
const ExportType types[] = {
    {"tf", ".tf", "Verilog Test Vector(*.tf);;All Files (*)", "-verilog"},
    {"vht", ".vht", "VHDL Test Vector(*.vht);;All Files (*)", "-vhdl93"},
    {"tb", ".tb", "VHDL Test Bench(*.tb);;All Files (*)", "-vhdl94"},
};

// The text after the last "." becomes the extension; without a "." the
// extension is added.
QString withExtension(const QString& path, const QString& extension)
{
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    return (dot < 0 ? path : path.left(dot)) + extension;
}

} // namespace

QStringList ExportDlg::m_extensions;

ExportDlg::ExportDlg(const QString& inputPath, QWidget* parent) : QDialog(parent), m_path(inputPath)
{
    setWindowTitle(QStringLiteral("Export Waveform File"));
    setModal(true);
    m_extensions.clear();
    m_input = new QLineEdit(inputPath, this);
    m_output = new QLineEdit(this);
    m_type = new QComboBox(this);
    for (const ExportType& type : types) {
        m_extensions << QLatin1String(type.extension);
        m_type->addItem(QLatin1String(type.text));
    }
    m_output->setText(withExtension(inputPath, m_extensions.first()));
    m_input->setObjectName(QStringLiteral("input"));
    m_output->setObjectName(QStringLiteral("output"));
    m_type->setWhatsThis(BaseHelp::getWhatsThisText(QStringLiteral("export_wave"), QStringLiteral("export_type")));
    auto* browseInput = new QPushButton(QStringLiteral("Browse"), this);
    auto* browseOutput = new QPushButton(QStringLiteral("Browse"), this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);

    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Input File"), this), 0, 0);
    grid->addWidget(m_input, 0, 1);
    grid->addWidget(browseInput, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Output File"), this), 1, 0);
    grid->addWidget(m_output, 1, 1);
    grid->addWidget(browseOutput, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Export Type"), this), 2, 0);
    grid->addWidget(m_type, 2, 1);
    grid->addWidget(buttons, 3, 0, 1, 3);
    grid->setColumnMinimumWidth(1, 360);

    connect(browseInput, &QPushButton::clicked, this, &ExportDlg::onSelInput);
    connect(browseOutput, &QPushButton::clicked, this, &ExportDlg::onSelOutput);
    connect(m_type, &QComboBox::currentIndexChanged, this, &ExportDlg::onTypeState);
    connect(buttons, &QDialogButtonBox::accepted, this, &ExportDlg::onOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExportDlg::onCancel);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &ExportDlg::onHelp);
    installEventFilter(this);
    for (QWidget* child : findChildren<QWidget*>())
        child->installEventFilter(this);
}

bool ExportDlg::eventFilter(QObject* watched, QEvent* event)
{
    // Every key release is taken here, not only F1's.
    if (event->type() == QEvent::KeyRelease) {
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1)
            onHelp();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void ExportDlg::onSelInput()
{
    const QString name = QFileDialog::getOpenFileName(this, QStringLiteral("Open Existing Waveform File"), m_path,
                                                      QStringLiteral("Waveform File (*.wdl);;All Files (*)"));
    if (!name.isEmpty())
        m_input->setText(name);
}

void ExportDlg::onSelOutput()
{
    // An open dialog on purpose: the user picks among existing files.
    const QString name = QFileDialog::getOpenFileName(this, QStringLiteral("Select Output File"), m_path,
                                                      QLatin1String(types[m_type->currentIndex()].filter));
    if (!name.isEmpty())
        m_output->setText(name);
}

void ExportDlg::onTypeState(int index)
{
    if (index >= 0 && index < m_extensions.size())
        m_output->setText(withExtension(m_output->text(), m_extensions.at(index)));
}

void ExportDlg::onOK()
{
    const QString input = m_input->text();
    const QString output = m_output->text();
    if (input.isEmpty() || output.isEmpty()) {
        VokGUI::showerrormsg(QStringLiteral("Please input file name."), this);
        return;
    }
    if (!QFile::exists(input)) {
        VokGUI::showerrormsg(QStringLiteral("The input file does not exist."), this);
        return;
    }
    QFile created(output);
    const bool existed = created.exists();
    if (!existed && !created.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        VokGUI::showerrormsg(QStringLiteral("Cannot open output file for writing."), this);
        return;
    }
    created.close();
    // Sized to fit: no path is too long.
    QByteArray args[] = {types[m_type->currentIndex()].option, input.toLocal8Bit(), "-out=" + output.toLocal8Bit()};
    char* argv[] = {args[0].data(), args[1].data(), args[2].data()};
    ProgressGate progress(this, QStringLiteral("Exporting %1...").arg(QFileInfo(output).fileName()));
    const int result = ExportWaveforms(3, argv, progress.callback());
    if (progress.cancelled()) {
        // As if the export had never been asked for: the dialog stays open.
        if (!existed)
            QFile::remove(output);
        return;
    }
    if (result != 0)
        QMessageBox::critical(this, QStringLiteral("Error"), QStringLiteral("Error is found when exporting."), QMessageBox::Ok);
    accept();
}

void ExportDlg::onCancel()
{
    reject();
}

void ExportDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(QStringLiteral("export_wave"));
}

} // namespace kesu::toolvok

namespace kesu::toolvok {

void VokGUI::fileExport()
{
    ExportDlg dialog(fullFileName(), this);
    dialog.exec();
}

} // namespace kesu::toolvok
