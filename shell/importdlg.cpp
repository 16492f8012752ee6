#include "importdlg.h"

#include "basehelp.h"
#include "dialoghelp.h"
#include "nodelist.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelistmodel.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSet>
#include <QUndoStack>
#include <QVBoxLayout>

#include <numeric>
#include <tuple>

namespace kesu::toolvok {

namespace {

const QString kTopic = QStringLiteral("import_wave");

const QString kArrowHelp = QStringLiteral(
    "<p><b>></b> - Adds the signals selected in the Import Wave list box to the Selected Wave list box.</p> "
    "<p><b>>></b> - Adds all the signals listed in the Import Wave list box to the Selected Wave list box.</p> "
    "<p><b>&lt;</b> - Deletes the signals selected in the Selected Wave list box.</p> "
    "<p><b>&lt;&lt;</b> - Clears all the signals listed in the Selected Wave list box.</p>");

// The waves that an import command adds copies of, kept for as long as the
// command lives on the undo stack, since the dialog that read them is gone by
// the time the command is redone.
class ImportedWaves : public QUndoCommand
{
public:
    ImportedWaves(QList<WaveData*> waves, QUndoCommand* command) : QUndoCommand(command), waves_(std::move(waves)) {}
    ~ImportedWaves() override { qDeleteAll(waves_); }

private:
    QList<WaveData*> waves_;
};

} // namespace

ImportDlg::ImportDlg(QString startPath, QWidget* parent)
    : QDialog(parent), m_gui(qobject_cast<VokGUI*>(parent)), m_startPath(std::move(startPath)),
      m_filters(5, true), m_leftModel(new WaveListModel(this)), m_rightModel(new WaveListModel(this)),
      m_left(makeList(m_leftModel)), m_right(makeList(m_rightModel)),
      m_browse(new QPushButton(QStringLiteral("Browse"), this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this))
{
    setWindowTitle(QStringLiteral("Import Wave"));
    setModal(true);
    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Imported Wave"), this), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Selected Wave"), this), 0, 2);
    grid->addWidget(m_left, 1, 0);
    grid->addWidget(makeArrowButtons(), 1, 1);
    grid->addWidget(m_right, 1, 2);
    grid->addWidget(makeFilterGroup(), 2, 0, 1, 2);
    grid->addWidget(m_browse, 2, 2, Qt::AlignRight | Qt::AlignBottom);
    grid->addWidget(m_buttons, 3, 0, 1, 3);

    m_left->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("imported_wave")));
    m_right->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("selected_wave")));
    m_browse->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("browse")));
    for (QObject* watched : {static_cast<QObject*>(this), static_cast<QObject*>(m_left),
                             static_cast<QObject*>(m_right), static_cast<QObject*>(m_browse)})
        watched->installEventFilter(this);

    connect(m_browse, &QPushButton::clicked, this, &ImportDlg::onBrowse);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &ImportDlg::onOK);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &ImportDlg::onCancel);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &ImportDlg::onHelp);
    resize(620, 460);
    onChangeSelection();
}

ImportDlg::~ImportDlg()
{
    qDeleteAll(m_imported);
}

QListView* ImportDlg::makeList(WaveListModel* model)
{
    auto* list = new QListView(this);
    list->setModel(model);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Rows of one height need no measuring: a long list fills at once.
    list->setUniformItemSizes(true);
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, &ImportDlg::onChangeSelection);
    return list;
}

QWidget* ImportDlg::makeFilterGroup()
{
    auto* group = new QGroupBox(QStringLiteral("Filter"), this);
    group->setWhatsThis(BaseHelp::getWhatsThisText(kTopic, QStringLiteral("filter")));
    auto* row = new QHBoxLayout(group);
    // "TextPt" is the label the users know.
    for (const char* label : {"Input", "Output", "Bidir", "TextPt", "Global"}) {
        auto* box = new QCheckBox(QString::fromLatin1(label), group);
        box->setChecked(true);
        connect(box, &QCheckBox::stateChanged, this, &ImportDlg::onChangeFilter);
        row->addWidget(box);
        m_filterBoxes.append(box);
    }
    return group;
}

QWidget* ImportDlg::makeArrowButtons()
{
    auto* column = new QWidget(this);
    auto* layout = new QVBoxLayout(column);
    layout->addStretch();
    for (auto [button, text, slot] : {std::tuple{&m_add, ">", &ImportDlg::onAdd},
                                      std::tuple{&m_addAll, ">>", &ImportDlg::onAddAll},
                                      std::tuple{&m_del, "<", &ImportDlg::onDel},
                                      std::tuple{&m_delAll, "<<", &ImportDlg::onDelAll}}) {
        *button = new QPushButton(QString::fromLatin1(text), column);
        (*button)->setAutoDefault(false);
        (*button)->setWhatsThis(kArrowHelp);
        connect(*button, &QPushButton::clicked, this, slot);
        layout->addWidget(*button);
    }
    layout->addStretch();
    return column;
}

void ImportDlg::onBrowse()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open Existing Waveform File"), m_startPath,
                                                      QStringLiteral("NAF File (*.naf);;All Files (*)"));
    if (!path.isEmpty())
        loadNodeList(path);
}

bool ImportDlg::loadNodeList(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        VokGUI::showerrormsg(QStringLiteral("Cannot open NAF file ") + path, this);
        return false;
    }
    NodeListRead read = readNodeList(file);
    if (read.status != NodeListRead::Read) {
        const char* why = read.status == NodeListRead::NotText ? "%1 is not a NAF node list."
                                                                : "%1 is too large for a NAF node list.";
        VokGUI::showerrormsg(QString::fromLatin1(why).arg(path), this);
        return false;
    }
    m_rightModel->clearRows();
    m_leftModel->clearRows();
    qDeleteAll(m_imported);
    m_imported = std::move(read.nodes);
    m_startPath = path;
    reloadWaves();
    onChangeSelection();
    if (m_imported.isEmpty())
        VokGUI::showmsg(QStringLiteral("The NAF file %1 lists no nodes.").arg(path), this);
    return true;
}

void ImportDlg::reloadWaves()
{
    m_leftModel->setWaves(m_imported, m_filters);
    onChangeSelection();
}

void ImportDlg::onChangeFilter()
{
    for (int kind = 0; kind < m_filterBoxes.size(); ++kind)
        m_filters[kind] = m_filterBoxes.at(kind)->isChecked();
    reloadWaves();
}

void ImportDlg::choose(const QList<int>& leftRows)
{
    QList<WaveData*> chosen;
    for (int row : leftRows) {
        WaveData* wave = m_leftModel->waveAt(row);
        if (wave && !wave->visible) {
            wave->visible = true;
            chosen.append(wave);
        }
    }
    m_rightModel->appendWaves(chosen);
    onChangeSelection();
}

void ImportDlg::onAdd()
{
    choose(WaveListModel::selectedRows(m_left->selectionModel()));
}

void ImportDlg::onAddAll()
{
    QList<int> rows(m_leftModel->rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    choose(rows);
}

void ImportDlg::onDel()
{
    const QList<int> rows = WaveListModel::selectedRows(m_right->selectionModel());
    for (int row : rows)
        m_rightModel->waveAt(row)->visible = false;
    m_rightModel->removeRowList(rows);
    onChangeSelection();
}

void ImportDlg::onDelAll()
{
    m_rightModel->clearRows();
    for (WaveData* wave : std::as_const(m_imported))
        wave->visible = false;
    onChangeSelection();
}

void ImportDlg::onChangeSelection()
{
    m_add->setEnabled(m_left->currentIndex().isValid());
    m_addAll->setEnabled(m_leftModel->rowCount() > 0);
    m_del->setEnabled(m_right->currentIndex().isValid());
    m_delAll->setEnabled(m_rightModel->rowCount() > 0);
}

void ImportDlg::onOK()
{
    // Each name once: the commands find waves by name, so a node listed twice
    // is imported as one wave.
    QSet<QString> names;
    for (const WaveData* wave : std::as_const(m_gui->document()->waves))
        names.insert(wave->name);
    QList<WaveData*> chosen;
    QList<WaveData*> kept;
    for (WaveData* wave : std::as_const(m_imported)) {
        if (wave->visible && !names.contains(wave->name)) {
            names.insert(wave->name);
            chosen.append(wave);
        } else {
            kept.append(wave);
        }
    }
    m_imported = kept;
    auto* command = new ImportWaveCommand(chosen, m_gui);
    new ImportedWaves(chosen, command);
    m_gui->undoStack()->push(command);
    accept();
}

void ImportDlg::onCancel()
{
    reject();
}

void ImportDlg::onHelp()
{
    BaseHelp::openDialogHelpUrl(kTopic);
}

bool ImportDlg::eventFilter(QObject* watched, QEvent* event)
{
    return takeHelpKey(event, [this] { onHelp(); }) || QDialog::eventFilter(watched, event);
}

} // namespace kesu::toolvok
