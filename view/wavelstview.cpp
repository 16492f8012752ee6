#include "wavelstview.h"

#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "wavekind.h"
#include "waveformdata.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QStandardItemModel>
#include <QUndoStack>

namespace kesu::toolvok {

WaveLstView::WaveLstView(VokGUI* owner, QWidget* parent)
    : QListView(parent), model_(new QStandardItemModel(this)), owner_(owner)
{
    setModel(model_);
    setWrapping(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // The tool window's own scroll bars drive the list.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Presses and double clicks are taken in the viewport's filter: a press
    // starts the row drag itself rather than the item view's own drag.
    viewport()->installEventFilter(this);
    setAcceptDrops(true);
    setDragEnabled(true);
    QPalette p = palette();
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        p.setBrush(group, QPalette::Base, owner->color_back);
        p.setBrush(group, QPalette::Text, owner->color_names);
        p.setBrush(group, QPalette::Highlight, owner->color_h);
    }
    setPalette(p);
    // Rebuilding the rows changes the current row without telling
    // currentChanged.
    connect(model_, &QStandardItemModel::modelReset, this, &WaveLstView::dropActiveWaveWithoutCurrentRow);
}

void WaveLstView::dropActiveWaveWithoutCurrentRow()
{
    if (!currentIndex().isValid() && owner_->activeWave()) {
        owner_->setActiveWave(nullptr);
        owner_->selection().clear();
        owner_->onEditDataChanged();
    }
}

QString WaveLstView::waveTitle(const WaveData* wave)
{
    // Indexed by the signal kinds, Input to Global.
    static const char* const kinds[] = {" I", " O", " B", " T", " G"};
    QString title = wave->name;
    if (WaveKind::isSignal(wave->polarity))
        title += QLatin1String(kinds[wave->polarity]);
    if (wave->isBus)
        title.prepend(wave->expandFlag ? QStringLiteral("(-) ") : QStringLiteral("(+) "));
    return title;
}

QStandardItem* WaveLstView::elementItem(const QString& element) const
{
    QFont small = font();
    small.setPointSize(8);
    auto* row = new WaveItem(element, nullptr);
    row->setFont(small);
    row->setSizeHint(QSize(row->sizeHint().width(), Viewport::RowHeight));
    row->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return row;
}

QList<QStandardItem*> WaveLstView::rowsFor(WaveData* wave) const
{
    QList<QStandardItem*> rows;
    auto* item = new WaveItem(waveTitle(wave), wave);
    item->setSizeHint(QSize(item->sizeHint().width(), Viewport::RowHeight));
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rows.append(item);
    if (wave->isBus && wave->expandFlag) {
        for (const QString& element : wave->elements)
            rows.append(elementItem(element));
    }
    return rows;
}

void WaveLstView::addWave(WaveData* wave)
{
    for (QStandardItem* item : rowsFor(wave))
        model_->appendRow(item);
}

void WaveLstView::insertWave(WaveData* wave, int row)
{
    for (QStandardItem* item : rowsFor(wave))
        model_->insertRow(row++, item);
}

void WaveLstView::removeWave(int row)
{
    const WaveData* wave = waveAt(row);
    if (!wave)
        return;
    int count = 1;
    // The element rows of an expanded bus follow it and go with it.
    while (row + count < model_->rowCount() && !waveAt(row + count))
        ++count;
    model_->removeRows(row, count);
}

void WaveLstView::removeWave(WaveData* wave)
{
    const int row = rowOf(wave);
    if (row >= 0)
        removeWave(row);
}

void WaveLstView::moveWave(WaveData* wave, int /*from*/, int /*to*/)
{
    // The caller moved the wave in the document already; its rows follow.
    const bool wasCurrent = waveOf(currentIndex()) == wave;
    {
        // Taking the current row out would make a neighbour the active wave.
        const QSignalBlocker quiet(selectionModel());
        removeWave(wave);
        insertWave(wave, rowForPlaceOf(wave));
    }
    if (wasCurrent)
        selectionModel()->setCurrentIndex(model_->index(rowOf(wave), 0), QItemSelectionModel::ClearAndSelect);
    viewport()->update();
}

void WaveLstView::updateWaveTitle(WaveData* wave)
{
    const int row = rowOf(wave);
    if (row >= 0)
        model_->item(row)->setText(waveTitle(wave));
}

void WaveLstView::clearWaves()
{
    model_->clear();
}

int WaveLstView::rowOf(const WaveData* wave) const
{
    for (int row = 0; row < model_->rowCount(); ++row) {
        if (static_cast<const WaveItem*>(model_->item(row))->wave == wave)
            return row;
    }
    return -1;
}

int WaveLstView::rowForPlaceOf(const WaveData* wave) const
{
    const QList<WaveData*>& waves = owner_->document()->waves;
    for (qsizetype i = waves.indexOf(wave) + 1; i > 0 && i < waves.size(); ++i) {
        const int row = rowOf(waves.at(i));
        if (row >= 0)
            return row;
    }
    return model_->rowCount();
}

WaveData* WaveLstView::waveAt(int row) const
{
    if (row < 0 || row >= model_->rowCount())
        return nullptr;
    return static_cast<const WaveItem*>(model_->item(row))->wave;
}

WaveData* WaveLstView::waveOf(const QModelIndex& index) const
{
    return index.isValid() && index.model() == model_ ? waveAt(index.row()) : nullptr;
}

void WaveLstView::expandBus(QModelIndex index)
{
    WaveData* wave = waveOf(index);
    if (!wave || !wave->isBus)
        return;
    const int row = index.row();
    QStandardItem* item = model_->item(row);
    // The first four characters are the old "(+) " or "(-) " mark.
    item->setText((wave->expandFlag ? QStringLiteral("(-) ") : QStringLiteral("(+) ")) + item->text().mid(4));
    for (int i = 0; i < wave->elements.size(); ++i) {
        if (wave->expandFlag)
            model_->insertRow(row + 1 + i, elementItem(wave->elements.at(i)));
        else
            model_->removeRow(row + 1);
    }
}

bool WaveLstView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != viewport())
        return QListView::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress) {
        auto* press = static_cast<QMouseEvent*>(event);
        if (press->button() == Qt::LeftButton && press->modifiers() == Qt::NoModifier && !owner_->isReadOnly()) {
            const QPoint pos = press->position().toPoint();
            const QModelIndex index = indexAt(pos);
            if (!selectionModel()->isSelected(index))
                selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
            moving = true;
            auto* drag = new QDrag(this);
            drag->setMimeData(new QMimeData);
            drag->setHotSpot(pos);
            // Changes of the drag's action are deliberately not followed (there
            // is no connection to cancelMove()): only the drop clears moving,
            // and every row step already made stays, each one undoable.
            drag->exec(Qt::MoveAction);
            return true;
        }
    } else if (event->type() == QEvent::MouseButtonDblClick) {
        const QModelIndex index = indexAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        if (WaveData* wave = waveOf(index); wave && wave->isBus) {
            wave->expandFlag = !wave->expandFlag;
            expandBus(index);
            owner_->Refresh();
        }
        return true;
    }
    return QListView::eventFilter(watched, event);
}

void WaveLstView::cancelMove()
{
    moving = false;
}

void WaveLstView::dragEnterEvent(QDragEnterEvent* event)
{
    event->setDropAction(Qt::MoveAction);
    event->accept();
}

void WaveLstView::dragLeaveEvent(QDragLeaveEvent* event)
{
    event->accept();
}

void WaveLstView::dropEvent(QDropEvent* event)
{
    event->accept();
    moving = false;
}

void WaveLstView::dragMoveEvent(QDragMoveEvent* event)
{
    dragTarget = indexAt(event->position().toPoint());
    WaveData* target = waveOf(dragTarget);
    // Element rows and the space below the last row take no wave.
    if (!target) {
        event->ignore();
        return;
    }
    const QModelIndex current = currentIndex();
    WaveData* dragged = waveOf(current);
    if (dragged && current.row() != dragTarget.row()) {
        // A bus must be collapsed to be moved or to be moved across.
        if ((dragged->isBus && dragged->expandFlag) || (target->isBus && target->expandFlag)) {
            event->ignore();
            return;
        }
        const int targetRow = dragTarget.row();
        // One undoable step for every row the drag crosses; the command moves
        // the row itself when it is pushed.
        owner_->undoStack()->push(new moveWaveCommand(dragged, current.row(), targetRow, owner_));
        lastTargetRow = targetRow;
        const QModelIndex moved = model_->index(rowOf(dragged), 0);
        if (moved != currentIndex())
            selectionModel()->setCurrentIndex(moved, QItemSelectionModel::ClearAndSelect);
    }
    event->acceptProposedAction();
}

void WaveLstView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    if (current == previous)
        return;
    if (!current.isValid()) {
        owner_->setActiveWave(nullptr);
        owner_->selection().clear();
        owner_->onEditDataChanged();
    } else {
        owner_->selection().clear();
        owner_->changeRange(-1.0, -1.0);
        WaveData* wave = waveOf(current);
        if (wave)
            wave->selected = true;
        owner_->setActiveWave(wave);
        owner_->DisplayData();
        owner_->LoadEditData();
        owner_->onEditDataChanged();
    }
    if (WaveData* old = waveOf(previous))
        old->selected = false;
    QListView::currentChanged(current, previous);
}

void WaveLstView::updateGeometries()
{
    QListView::updateGeometries();
    owner_->setBar();
}

} // namespace kesu::toolvok
