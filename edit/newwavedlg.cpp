#include "newwavedlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "newwave.h"
#include "undocommands.h"
#include "vokgui.h"
#include "waveformdata.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QUndoStack>
#include <QVBoxLayout>

namespace kesu::toolvok {

NewWaveDlg::NewWaveDlg(QWidget* parent)
    : QDialog(parent), m_gui(qobject_cast<VokGUI*>(parent)), m_name(new QLineEdit(this)),
      m_polarity(new QComboBox(this)), m_add(new QPushButton(QStringLiteral("Add"), this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Help, this))
{
    setWindowTitle(QStringLiteral("Add New Wave"));
    setModal(true);
    m_polarity->addItems({QStringLiteral("Input"), QStringLiteral("Output"), QStringLiteral("Bidir"),
                          QStringLiteral("Test Pt"), QStringLiteral("Global"), QStringLiteral("Pattern")});
    m_name->setPlaceholderText(QStringLiteral("clk, d[7:0], [a0...a3] or a,b,c"));
    m_add->setDefault(true);
    m_buttons->addButton(m_add, QDialogButtonBox::ActionRole);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Wave Name"), m_name);
    form->addRow(QStringLiteral("Polarity"), m_polarity);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_buttons);

    m_name->setWhatsThis(BaseHelp::getWhatsThisText(QStringLiteral("add_wave"), QStringLiteral("wave_name")));
    m_polarity->setWhatsThis(BaseHelp::getWhatsThisText(QStringLiteral("add_wave"), QStringLiteral("polarity")));
    for (QObject* watched : {static_cast<QObject*>(this), static_cast<QObject*>(m_name),
                             static_cast<QObject*>(m_polarity), static_cast<QObject*>(m_add)})
        watched->installEventFilter(this);

    connect(m_add, &QPushButton::clicked, this, &NewWaveDlg::onAdd);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &NewWaveDlg::onCancel);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &NewWaveDlg::onHelp);
    resize(360, sizeHint().height());
}

void NewWaveDlg::onAdd()
{
    QString message;
    WaveData* wave = makeNewWave(*m_gui->document(), m_name->text(), m_polarity->currentIndex(), message);
    if (!wave) {
        VokGUI::showerrormsg(message, this);
        return;
    }
    m_gui->undoStack()->push(new AddWaveCommand(wave, m_gui));
    // Ready for the next name: typing replaces the one just added.
    m_name->selectAll();
    m_name->setFocus();
}

void NewWaveDlg::onCancel()
{
    reject();
}

void NewWaveDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(QStringLiteral("add_wave"));
}

bool NewWaveDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
