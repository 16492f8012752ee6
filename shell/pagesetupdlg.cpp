#include "pagesetupdlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "vokgui.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSpinBox>

namespace kesu::toolvok {

namespace {
const QString kTopic = QStringLiteral("page_setup");
// The name column the fit leaves room for, in pixels on paper.
constexpr int NameColumn = 80;
} // namespace

PageSetupDlg::PageSetupDlg(QPrinter* printer, VokGUI* gui)
    : QDialog(gui), m_printer(printer), m_gui(gui), m_range(new QComboBox(this)), m_start(new QLineEdit(this)),
      m_end(new QLineEdit(this)), m_scale(new QSpinBox(this)), m_name(new QCheckBox(QStringLiteral("Print Name"), this)),
      m_ruler(new QCheckBox(QStringLiteral("Print Ruler"), this)),
      m_fit(new QCheckBox(QStringLiteral("Fit Page"), this)),
      m_system(new QPushButton(QStringLiteral("System Page Setup"), this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this))
{
    setWindowTitle(QStringLiteral("Page Setup"));
    m_range->addItems({QStringLiteral("Print All"), QStringLiteral("Print Current Range"),
                       QStringLiteral("Print Cusomized Range")});
    m_scale->setRange(10, 200);
    m_scale->setSingleStep(1);

    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("Print Range:"), m_range);
    form->addRow(QStringLiteral("Start Time:"), m_start);
    form->addRow(QStringLiteral("End Time:"), m_end);
    form->addRow(QStringLiteral("Time Scale:"), m_scale);
    form->addRow(m_name);
    form->addRow(m_ruler);
    form->addRow(m_fit);
    form->addRow(m_system);
    form->addRow(m_buttons);

    const std::pair<QWidget*, const char*> help[] = {{m_range, "print_range"}, {m_scale, "time_scale"},
                                                     {m_name, "print_name"},   {m_ruler, "print_ruler"},
                                                     {m_fit, "fit_page"},      {m_system, "system_page_setup"}};
    for (const auto& [widget, key] : help) {
        widget->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QString::fromLatin1(key)));
        widget->installEventFilter(this);
    }
    installEventFilter(this);

    const PrintSettings& s = gui->printSettings();
    m_range->setCurrentIndex(qBound(0, s.printRangeType, 2));
    m_scale->setValue(s.timeScale);
    m_name->setChecked(s.printName);
    m_ruler->setChecked(s.printRuler);
    onChangeType();
    if (s.fitPage) {
        m_fit->setChecked(true);
        onFitPage();
    }

    connect(m_range, &QComboBox::currentIndexChanged, this, &PageSetupDlg::onChangeType);
    connect(m_name, &QCheckBox::toggled, this, &PageSetupDlg::onShowName);
    connect(m_fit, &QCheckBox::toggled, this, &PageSetupDlg::onFitPage);
    connect(m_system, &QPushButton::clicked, this, &PageSetupDlg::onPageSetup);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &PageSetupDlg::onOK);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &PageSetupDlg::onCancel);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &PageSetupDlg::onHelp);
}

void PageSetupDlg::onChangeType()
{
    const int type = m_range->currentIndex();
    quint64 start = 0, end = m_gui->getMaxEnd();
    if (type == PrintSettings::CurrentRange) {
        start = m_gui->startTime();
        end = m_gui->getEndTime();
    } else if (type == PrintSettings::Customized) {
        start = m_gui->printSettings().printStart;
        end = m_gui->printSettings().printEnd;
    }
    m_start->setText(m_gui->getTimeString(start, true));
    m_end->setText(m_gui->getTimeString(end, true));
    m_start->setEnabled(type == PrintSettings::Customized);
    m_end->setEnabled(type == PrintSettings::Customized);
}

bool PageSetupDlg::readRange(quint64& start, quint64& end)
{
    const int type = m_range->currentIndex();
    if (type == PrintSettings::All) {
        start = 0;
        end = m_gui->getMaxEnd();
        return true;
    }
    if (type == PrintSettings::CurrentRange) {
        start = m_gui->startTime();
        end = m_gui->getEndTime();
        return true;
    }
    auto read = [this](QLineEdit* edit, quint64& t, const char* missing, const char* invalid) {
        if (edit->text().isEmpty()) {
            VokGUI::showerrormsg(QString::fromLatin1(missing), this);
            return false;
        }
        bool ok = false;
        t = m_gui->convertTime(ok, edit->text());
        if (!ok)
            VokGUI::showerrormsg(QString::fromLatin1(invalid), this);
        return ok;
    };
    return read(m_start, start, "Please input Start Time.", "Invalid Start Time.")
           && read(m_end, end, "Please input End Time.", "Invalid End Time.");
}

void PageSetupDlg::enableRange(bool on)
{
    m_range->setEnabled(on);
    m_start->setReadOnly(!on);
    m_end->setReadOnly(!on);
    m_scale->setEnabled(on);
    if (on) {
        onChangeType();
    } else {
        m_start->setEnabled(false);
        m_end->setEnabled(false);
    }
}

void PageSetupDlg::onFitPage()
{
    m_gui->printSettings().fitPage = m_fit->isChecked();
    if (!m_fit->isChecked()) {
        enableRange(true);
        return;
    }
    quint64 start = 0, end = 0;
    if (!readRange(start, end))
        return;
    // The paper chosen under "System Page Setup", as printing will use it.
    const QRect page = m_printer->pageRect(QPrinter::DevicePixel).toRect();
    const int r = page.right() - page.left();
    const qint64 usable = m_name->isChecked() ? r - (NameColumn - 1) : r + 1;
    const quint64 steps = end > start ? (end - start) / m_gui->step() : 0;
    // A range shorter than one step has no scale to fit: the scale stays.
    if (steps > 0) {
        const qint64 q = usable / static_cast<qint64>(qMin<quint64>(steps, quint64(INT64_MAX)));
        const float scale = static_cast<float>(q) / 20.0f * 100.0f;
        m_scale->setValue(static_cast<int>(qBound(-1.0e9f, scale, 1.0e9f)));
    }
    enableRange(false);
}

void PageSetupDlg::onShowName()
{
    if (m_fit->isChecked())
        onFitPage();
}

void PageSetupDlg::onPageSetup()
{
    QPageSetupDialog(m_printer, this).exec();
}

void PageSetupDlg::onOK()
{
    quint64 start = 0, end = 0;
    if (m_range->currentIndex() == PrintSettings::Customized && !readRange(start, end))
        return;
    PrintSettings& s = m_gui->printSettings();
    s.printStart = start;
    s.printEnd = end;
    s.printRangeType = m_range->currentIndex();
    s.timeScale = m_scale->value();
    s.printName = m_name->isChecked();
    s.printRuler = m_ruler->isChecked();
    s.fitPage = m_fit->isChecked();
    accept();
}

void PageSetupDlg::onCancel()
{
    reject();
}

void PageSetupDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(kTopic);
}

bool PageSetupDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
