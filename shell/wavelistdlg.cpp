#include "wavelistdlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "patterndlg.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelistmodel.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QUndoStack>
#include <QVBoxLayout>

namespace kesu::toolvok {

WaveListDlg::WaveListDlg(bool showMode, QWidget* parent)
    : QDialog(parent), m_showMode(showMode), m_gui(qobject_cast<VokGUI*>(parent)), m_model(new WaveListModel(this)),
      m_list(new QListView(this)),
      m_action(new QPushButton(showMode ? QStringLiteral("Show") : QStringLiteral("Remove"), this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Help, this)), m_filters(6, true)
{
    setWindowTitle(showMode ? QStringLiteral("Show Waves") : QStringLiteral("Remove Waves"));
    setModal(true);
    m_list->setModel(m_model);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformItemSizes(true);
    m_buttons->addButton(m_action, QDialogButtonBox::ActionRole);

    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Wave List"), this), 0, 0);
    grid->addWidget(m_list, 1, 0);
    grid->addWidget(makeFilterGroup(), 1, 1);
    grid->addWidget(m_buttons, 2, 0, 1, 2);

    const QString topic = showMode ? QStringLiteral("show_wave") : QStringLiteral("remove_wave");
    m_list->setWhatsThis(BaseHelp::getWhatsThisText(topic, QStringLiteral("wave_list")));
    m_action->setWhatsThis(BaseHelp::getWhatsThisText(topic, QStringLiteral("action")));
    for (QObject* watched : {static_cast<QObject*>(this), static_cast<QObject*>(m_list)})
        watched->installEventFilter(this);

    reloadWaves();
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &WaveListDlg::onChangeSelection);
    connect(m_action, &QPushButton::clicked, this, &WaveListDlg::onShowRemove);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &WaveListDlg::onCancel);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &WaveListDlg::onHelp);
    resize(420, 420);
}

QWidget* WaveListDlg::makeFilterGroup()
{
    auto* group = new QGroupBox(QStringLiteral("Filter"), this);
    group->setWhatsThis(BaseHelp::getWhatsThisText(m_showMode ? QStringLiteral("show_wave")
                                                              : QStringLiteral("remove_wave"),
                                                   QStringLiteral("filter")));
    auto* column = new QVBoxLayout(group);
    // "TextPt" is the label the users know.
    for (const char* label : {"Input", "Output", "Bidir", "TextPt", "Global", "Pattern"}) {
        auto* box = new QCheckBox(QString::fromLatin1(label), group);
        box->setChecked(true);
        connect(box, &QCheckBox::stateChanged, this, &WaveListDlg::onChangeFilter);
        column->addWidget(box);
        m_filterBoxes.append(box);
    }
    column->addStretch();
    return group;
}

void WaveListDlg::reloadWaves()
{
    QList<WaveData*> waves;
    for (WaveData* wave : std::as_const(m_gui->document()->waves)) {
        if (!m_showMode || !wave->visible)
            waves.append(wave);
    }
    m_model->setWaves(waves, m_filters);
    onChangeSelection();
}

void WaveListDlg::onChangeFilter()
{
    for (int kind = 0; kind < m_filterBoxes.size(); ++kind)
        m_filters[kind] = m_filterBoxes.at(kind)->isChecked();
    reloadWaves();
}

void WaveListDlg::onChangeSelection()
{
    m_action->setEnabled(m_list->currentIndex().isValid());
}

void WaveListDlg::onShowRemove()
{
    // In list order, which is document order: undoing a removal puts each
    // wave back at its old place only when the earlier ones go back first.
    const QList<int> rows = WaveListModel::selectedRows(m_list->selectionModel());
    QList<WaveData*> waves;
    for (int row : rows) {
        WaveData* wave = m_model->waveAt(row);
        wave->selected = false;
        waves.append(wave);
    }
    // The list takes a current row with the focus, which enables the button
    // before anything is chosen: nothing chosen changes nothing.
    if (waves.isEmpty())
        return;
    if (m_showMode)
        m_gui->undoStack()->push(new ShowWaveCommand(waves, m_gui));
    else
        m_gui->undoStack()->push(new DelWaveCommand(waves, m_gui));
    m_model->removeRowList(rows);
    m_gui->patternDlg()->LoadData();
    m_gui->SetDirtyBit();
    onChangeSelection();
}

void WaveListDlg::onCancel()
{
    reject();
}

void WaveListDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(m_showMode ? QStringLiteral("show_wave") : QStringLiteral("remove_wave"));
}

bool WaveListDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
