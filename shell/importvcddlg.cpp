#include "importvcddlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "vcdreader.h"
#include "vokgui.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

namespace kesu::toolvok {

namespace {
const QString kTopic = QStringLiteral("import_vcd");
const char* const kUnits[] = {"s", "ms", "us", "ns", "ps", "fs"};
} // namespace

ImportVcdDlg::ImportVcdDlg(const QString& path, QWidget* parent)
    : QDialog(parent), m_signals(new QListWidget(this)), m_from(new QLineEdit(this)), m_to(new QLineEdit(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this))
{
    setWindowTitle(QStringLiteral("Import VCD"));
    setModal(true);
    readDeclarations(path);
    const QString unit = QStringLiteral("%1 %2").arg(m_magnitude).arg(QLatin1String(kUnits[m_exponent / 3]));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Signals of %1").arg(QFileInfo(path).fileName()), this));
    layout->addWidget(m_signals);
    auto* range = new QFormLayout;
    range->addRow(QStringLiteral("From:"), m_from);
    range->addRow(QStringLiteral("To:"), m_to);
    layout->addLayout(range);
    layout->addWidget(new QLabel(QStringLiteral("Times with a unit (150 ns) or in units of the dump (%1).").arg(unit), this));
    layout->addWidget(m_buttons);
    m_from->setPlaceholderText(QStringLiteral("start of the dump"));
    m_to->setPlaceholderText(QStringLiteral("end of the dump"));

    m_signals->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("signals")));
    m_from->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("range")));
    m_to->setWhatsThis(m_from->whatsThis());
    for (QObject* watched : {static_cast<QObject*>(this), static_cast<QObject*>(m_signals),
                             static_cast<QObject*>(m_from), static_cast<QObject*>(m_to)})
        watched->installEventFilter(this);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &ImportVcdDlg::onOK);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &ImportVcdDlg::onHelp);
    resize(420, 460);
}

void ImportVcdDlg::readDeclarations(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = file.errorString();
        return;
    }
    VcdReader reader(file);
    if (!reader.readHeader()) {
        m_error = reader.error();
        return;
    }
    m_magnitude = reader.unitMagnitude();
    m_exponent = reader.unitExponent();
    for (const VcdVariable& var : reader.variables()) {
        auto* item = new QListWidgetItem(QString::fromUtf8(var.path() + var.range), m_signals);
        item->setData(Qt::UserRole, QString::fromUtf8(var.path() + var.range));
        if (var.holdsBits()) {
            item->setCheckState(Qt::Checked);
        } else {
            // Shown so that the user sees why it does not come along.
            item->setText(item->text() + QStringLiteral(" (%1, not imported)").arg(QString::fromUtf8(var.type)));
            item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
        }
    }
}

VcdImportOptions ImportVcdDlg::options() const
{
    VcdImportOptions options;
    for (int i = 0; i < m_signals->count(); ++i) {
        const QListWidgetItem* item = m_signals->item(i);
        if (item->checkState() == Qt::Checked)
            options.signalNames << item->data(Qt::UserRole).toString();
    }
    options.from = m_from->text().trimmed();
    options.to = m_to->text().trimmed();
    return options;
}

void ImportVcdDlg::onOK()
{
    const VcdImportOptions chosen = options();
    if (chosen.signalNames.isEmpty()) {
        VokGUI::showwarnmsg(QStringLiteral("Choose at least one signal."), this);
        return;
    }
    quint64 from = 0, to = NoTime;
    for (const auto& [text, time] : {std::pair{chosen.from, &from}, std::pair{chosen.to, &to}}) {
        if (!text.isEmpty() && !vcdTimeOf(text, m_magnitude, m_exponent, *time)) {
            VokGUI::showwarnmsg(QStringLiteral("\"%1\" is no time in whole units of the dump.").arg(text), this);
            return;
        }
    }
    if (from >= to) {
        VokGUI::showwarnmsg(QStringLiteral("From must come before To."), this);
        return;
    }
    accept();
}

void ImportVcdDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(kTopic);
}

bool ImportVcdDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
