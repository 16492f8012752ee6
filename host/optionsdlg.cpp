#include "optionsdlg.h"

#include "basehelp.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace kesu::toolvok {

namespace {
const char* const HelpTopic = "options";

const char* const colorNames[] = {"Background", "Wave names", "Highlight", "Single-bit waves",
                                  "Buses", "Unknown values (X)", "High impedance (Z)"};

QIcon swatch(const QColor& color)
{
    QPixmap pixmap(40, 16);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::darkGray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}
} // namespace

OptionsDlg::OptionsDlg(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Options"));

    m_radix = new QComboBox(this);
    m_radix->addItems({tr("Binary"), tr("Octal"), tr("Decimal"), tr("Hexadecimal")});
    m_autoSave = new QComboBox(this);
    m_autoSave->addItems({tr("Every minute"), tr("Every 5 minutes"), tr("Every 10 minutes"), tr("Off")});
    m_guideline = new QCheckBox(tr("Show the guide line under the mouse"), this);
    auto* display = new QGroupBox(tr("Display"), this);
    auto* displayForm = new QFormLayout(display);
    displayForm->addRow(tr("Bus radix:"), m_radix);
    displayForm->addRow(tr("Auto save:"), m_autoSave);
    displayForm->addRow(m_guideline);

    auto* colorBox = new QGroupBox(tr("Colors"), this);
    auto* colorForm = new QFormLayout(colorBox);
    m_colors = QList<QColor>(ColorCount, QColor(Qt::black));
    for (int i = 1; i < ColorCount; ++i) {
        auto* button = new QToolButton(colorBox);
        button->setObjectName(QStringLiteral("color%1").arg(i));
        button->setIconSize(QSize(40, 16));
        button->setToolTip(tr("Choose the color of: %1").arg(tr(colorNames[i - 1])));
        connect(button, &QToolButton::clicked, this, [this, i] { pickColor(i); });
        m_colorButtons.append(button);
        colorForm->addRow(tr(colorNames[i - 1]) + QLatin1Char(':'), button);
        showColor(i);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help,
                                         this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this,
            [] { BaseHelp::openDialogHelpUrl(QLatin1String(HelpTopic)); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(display);
    layout->addWidget(colorBox);
    layout->addWidget(buttons);
    setOptions(0, 0, false);
}

void OptionsDlg::setOptions(int busRadix, int autoSave, bool guideline)
{
    m_radix->setCurrentIndex(busRadix >= 0 && busRadix <= 3 ? busRadix : 0);
    // Every index from 3 up means off.
    m_autoSave->setCurrentIndex(qBound(0, autoSave, 3));
    m_guideline->setChecked(guideline);
}

void OptionsDlg::setColors(const QList<QColor>& colors)
{
    for (int i = 0; i < ColorCount; ++i) {
        if (colors.value(i).isValid())
            m_colors[i] = colors.at(i);
        if (i > 0)
            showColor(i);
    }
}

int OptionsDlg::busRadix() const
{
    return m_radix->currentIndex();
}

int OptionsDlg::autoSave() const
{
    return m_autoSave->currentIndex();
}

bool OptionsDlg::guideline() const
{
    return m_guideline->isChecked();
}

void OptionsDlg::pickColor(int i)
{
    // Qt's own picker: the same on every desktop.
    const QColor chosen = QColorDialog::getColor(m_colors.at(i), this, tr(colorNames[i - 1]),
                                                 QColorDialog::DontUseNativeDialog);
    if (!chosen.isValid())
        return;
    m_colors[i] = chosen;
    showColor(i);
}

void OptionsDlg::showColor(int i)
{
    m_colorButtons.at(i - 1)->setIcon(swatch(m_colors.at(i)));
}

void OptionsDlg::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1) {
        BaseHelp::openDialogHelpUrl(QLatin1String(HelpTopic));
        return;
    }
    QDialog::keyPressEvent(event);
}

void OptionsDlg::serve(QWidget* tool)
{
    if (!tool || tool->metaObject()->indexOfSignal("sigOptionDialog()") < 0
        || tool->findChild<OptionsServer*>(QString(), Qt::FindDirectChildrenOnly))
        return;
    auto* server = new OptionsServer(tool);
    connect(tool, SIGNAL(sigOptionDialog()), server, SLOT(openDialog()));
}

OptionsServer::OptionsServer(QWidget* tool) : QObject(tool), m_tool(tool) {}

void OptionsServer::openDialog()
{
    QWidget* tool = m_tool;
    if (!tool)
        return;
    OptionsDlg dialog(tool);
    dialog.setOptions(tool->property("busRadix").toInt(), tool->property("autoSave").toInt(),
                      tool->property("guideline").toBool());
    dialog.setColors(tool->property("colors").value<QList<QColor>>());
    if (dialog.exec() != QDialog::Accepted || !m_tool)
        return;
    QMetaObject::invokeMethod(tool, "applyOptions", Q_ARG(int, dialog.busRadix()), Q_ARG(int, dialog.autoSave()),
                              Q_ARG(bool, dialog.guideline()));
    QMetaObject::invokeMethod(tool, "applyColors", Q_ARG(QList<QColor>, dialog.colors()));
}

} // namespace kesu::toolvok
