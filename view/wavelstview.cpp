#include "wavelstview.h"

#include "vokgui.h"
#include "wavedata.h"

#include <QStandardItemModel>

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
    QPalette p = palette();
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        p.setBrush(group, QPalette::Base, owner->color_back);
        p.setBrush(group, QPalette::Text, owner->color_names);
        p.setBrush(group, QPalette::Highlight, owner->color_h);
    }
    setPalette(p);
}

QString WaveLstView::waveTitle(const WaveData* wave)
{
    static const char* const kinds[] = {" I", " O", " B", " T", " G"};
    QString title = wave->name;
    if (wave->polarity >= 0 && wave->polarity <= 4)
        title += QLatin1String(kinds[wave->polarity]);
    if (wave->isBus)
        title.prepend(wave->expandFlag ? QStringLiteral("(-) ") : QStringLiteral("(+) "));
    return title;
}

QList<QStandardItem*> WaveLstView::rowsFor(WaveData* wave) const
{
    QList<QStandardItem*> rows;
    auto* item = new WaveItem(waveTitle(wave), wave);
    item->setSizeHint(QSize(item->sizeHint().width(), 40));
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rows.append(item);
    if (wave->isBus && wave->expandFlag) {
        QFont small = font();
        small.setPointSize(8);
        for (const QString& element : wave->elements) {
            auto* row = new WaveItem(element, nullptr);
            row->setFont(small);
            row->setSizeHint(QSize(row->sizeHint().width(), 40));
            row->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            rows.append(row);
        }
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

void WaveLstView::moveWave(WaveData* wave, int from, int to)
{
    Q_UNUSED(from);
    removeWave(wave);
    insertWave(wave, qBound(0, to, model_->rowCount()));
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

WaveData* WaveLstView::waveAt(int row) const
{
    if (row < 0 || row >= model_->rowCount())
        return nullptr;
    return static_cast<const WaveItem*>(model_->item(row))->wave;
}

} // namespace kesu::toolvok
