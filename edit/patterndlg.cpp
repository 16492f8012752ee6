#include "patterndlg.h"

#include "dockhelp.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QUndoStack>
#include <QVBoxLayout>

#include <memory>

namespace kesu::toolvok {

namespace {
constexpr int PatternKind = 5;
} // namespace

QSize ListView::sizeHint() const
{
    return QSize(140, QListView::sizeHint().height());
}

PatternDlg::PatternDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(tr("Pattern View"), parent), owner_(owner)
{
    auto* contents = new QWidget(this);
    list_ = new ListView(contents);
    model_ = new QStandardItemModel(this);
    list_->setModel(model_);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    insert_ = new QPushButton(tr("Insert"), contents);
    auto* column = new QVBoxLayout(contents);
    column->addWidget(new QLabel(tr("Pattern List"), contents));
    column->addWidget(list_, 1);
    column->addWidget(insert_);
    DockHelp::setUp(this, QStringLiteral("PatternView"), contents);
    DockHelp::watch(this, contents);

    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &PatternDlg::onChangeSelection);
    connect(insert_, &QPushButton::clicked, this, &PatternDlg::onInsert);
    // Any step may add, remove or retype a named pattern; the rows point at
    // waves, so they are rebuilt before one of them could be gone.
    connect(owner_->undoStack(), &QUndoStack::indexChanged, this, &PatternDlg::LoadData);
    connect(owner_, &VokGUI::activeWaveChanged, this, &PatternDlg::updateButton);
    insert_->setEnabled(false);
}

bool PatternDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (DockHelp::helpOnKeyRelease(event, QStringLiteral("insert_pattern")))
        return true;
    return QDockWidget::eventFilter(watched, event);
}

void PatternDlg::LoadData()
{
    // What was picked stays picked, so that a pattern goes in again and again.
    // By the rows' own text: the waves behind them may be gone already.
    QStringList picked;
    for (const QModelIndex& index : list_->selectionModel()->selectedIndexes())
        picked.append(index.data().toString());
    model_->clear();
    if (WaveformData* document = owner_->document()) {
        for (WaveData* wave : std::as_const(document->waves)) {
            if (wave->polarity != PatternKind)
                continue;
            auto* item = new WaveItem(wave->name, wave);
            item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
            model_->appendRow(item);
        }
    }
    setReadOnly();
    for (const QString& name : std::as_const(picked)) {
        const QList<QStandardItem*> found = model_->findItems(name);
        if (!found.isEmpty())
            list_->selectionModel()->select(found.first()->index(), QItemSelectionModel::Select);
    }
    updateButton();
}

void PatternDlg::setReadOnly()
{
    for (int row = 0; row < model_->rowCount(); ++row) {
        for (int column = 0; column < model_->columnCount(); ++column) {
            if (QStandardItem* item = model_->item(row, column))
                item->setFlags(item->flags() & ~Qt::ItemIsEditable);
        }
    }
}

QList<WaveData*> PatternDlg::chosenPatterns() const
{
    QList<WaveData*> chosen;
    for (const QModelIndex& index : list_->selectionModel()->selectedIndexes()) {
        if (auto* item = static_cast<WaveItem*>(model_->itemFromIndex(index)); item && item->wave)
            chosen.append(item->wave);
    }
    return chosen;
}

void PatternDlg::updateButton()
{
    const WaveData* active = owner_->activeWave();
    const QList<WaveData*> chosen = chosenPatterns();
    bool enable = !owner_->isReadOnly() && !owner_->selection().isEmpty() && active && !chosen.isEmpty()
        && active->polarity != PatternKind;
    for (const WaveData* pattern : chosen) {
        if (!enable)
            break;
        enable = pattern->isBus == active->isBus && (!active->isBus || pattern->busWidth == active->busWidth);
    }
    insert_->setEnabled(enable);
}

void PatternDlg::onChangeSelection(const QItemSelection&, const QItemSelection&)
{
    updateButton();
}

void PatternDlg::onInsert()
{
    WaveData* wave = owner_->activeWave();
    if (!wave || owner_->selection().isEmpty() || !insert_->isEnabled())
        return;
    const qsizetype at = wave->patterns.indexOf(owner_->selection().first());
    if (at < 0)
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave));
    // Copies of value and duration only: the forever mark stays behind.
    QList<Pattern*> copies;
    for (const WaveData* pattern : chosenPatterns()) {
        for (const Pattern* p : pattern->patterns) {
            auto* copy = new Pattern(p->value, p->duration);
            copy->wave = wave;
            copies.append(copy);
        }
    }
    // All in one insertion: a pulse at a time would move the rest of a long
    // wave once for each.
    wave->patterns.insert(at, copies.size(), nullptr);
    std::copy(copies.cbegin(), copies.cend(), wave->patterns.begin() + at);
    if (wave->foreverIndex >= at)
        wave->foreverIndex += static_cast<qint32>(copies.size());
    wave->segmentsChanged(static_cast<int>(at));
    owner_->selection().clear();
    owner_->mergeAfterEdit(wave);
    owner_->changeRange(-1, -1);
    owner_->undoStack()->push(new EditPatternCommand(wave, before.get(), owner_));
    owner_->LoadEditData();
    updateButton();
}

} // namespace kesu::toolvok
