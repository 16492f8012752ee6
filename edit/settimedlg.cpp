#include "settimedlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "undocommands.h"
#include "vokgui.h"
#include "waveformdata.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QUndoStack>

namespace kesu::toolvok {

namespace {

const QStringList kPrecisions = {QStringLiteral("1.0"), QStringLiteral("0.1"), QStringLiteral("0.01"),
                                 QStringLiteral("0.001")};
constexpr int PicosecondIndex = 3;
constexpr int Picoseconds = 12;

} // namespace

setTimeDlg::setTimeDlg(QWidget* parent)
    : QDialog(parent), m_gui(qobject_cast<VokGUI*>(parent)), m_precision(new QComboBox(this)),
      m_unit(new QComboBox(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this))
{
    setWindowTitle(QStringLiteral("Time Settings"));
    m_precision->addItems(kPrecisions);
    m_unit->addItems({QStringLiteral("ms"), QStringLiteral("us"), QStringLiteral("ns"), QStringLiteral("ps")});
    connect(m_unit, &QComboBox::currentIndexChanged, this, &setTimeDlg::onChangeUnit);

    auto* label = new QLabel(QStringLiteral("Time Unit"), this);
    auto* grid = new QGridLayout(this);
    grid->addWidget(label, 0, 0);
    grid->addWidget(m_precision, 1, 0);
    grid->addWidget(m_unit, 2, 0);
    grid->addWidget(m_buttons, 3, 0);

    const QString help = BaseHelp::getWhatsThisText(QStringLiteral("time_setting"), QStringLiteral("time_unit"));
    for (QWidget* w : {static_cast<QWidget*>(m_precision), static_cast<QWidget*>(m_unit), static_cast<QWidget*>(label)})
        w->setWhatsThis(help);
    for (QObject* watched : {static_cast<QObject*>(this), static_cast<QObject*>(m_precision),
                             static_cast<QObject*>(m_unit)})
        watched->installEventFilter(this);

    connect(m_buttons, &QDialogButtonBox::accepted, this, &setTimeDlg::onOK);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &setTimeDlg::onCancel);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &setTimeDlg::onHelp);

    // The unit goes in second: on ps its change narrows the precisions.
    m_precision->setCurrentIndex(qBound(0, int(m_gui->document()->decimals), int(kPrecisions.size()) - 1));
    m_unit->setCurrentIndex(qBound(0, int(m_gui->document()->smallestUnit) / 3 - 1, PicosecondIndex));
}

void setTimeDlg::onChangeUnit()
{
    // A precision finer than one picosecond is never offered.
    if (m_unit->currentIndex() != PicosecondIndex) {
        if (m_precision->count() == kPrecisions.size())
            return;
        m_precision->clear();
        m_precision->addItems(kPrecisions);
    } else {
        if (m_precision->count() == 1)
            return;
        m_precision->clear();
        m_precision->addItem(kPrecisions.first());
        m_precision->setCurrentIndex(0);
    }
}

void setTimeDlg::onOK()
{
    const int precision = m_precision->currentIndex();
    const int unit = m_unit->currentIndex() * 3 + 3;
    if (unit == Picoseconds && precision != 0) {
        VokGUI::showerrormsg(QStringLiteral("The minimum time unit that Waveform Editor can support is 1ps."), this);
        return;
    }
    m_gui->undoStack()->push(new TimeUnitCommand(unit, precision, m_gui));
    accept();
}

void setTimeDlg::onCancel()
{
    reject();
}

void setTimeDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(QStringLiteral("time_setting"));
}

bool setTimeDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
