#include "wavelistmodel.h"

#include "wavedata.h"
#include "wavelstview.h"

#include <QItemSelectionModel>

#include <algorithm>

namespace kesu::toolvok {

WaveListModel::WaveListModel(QObject* parent) : QStandardItemModel(0, 1, parent) {}

QString WaveListModel::title(const WaveData* wave)
{
    static const QLatin1String kinds[] = {QLatin1String(" (I)"), QLatin1String(" (O)"), QLatin1String(" (B)"),
                                          QLatin1String(" (T)"), QLatin1String(" (G)")};
    return wave->polarity >= 0 && wave->polarity <= 4 ? wave->name + kinds[wave->polarity] : wave->name;
}

void WaveListModel::setWaves(const QList<WaveData*>& waves, const QList<bool>& shown)
{
    clearRows();
    QList<WaveData*> kept;
    kept.reserve(waves.size());
    for (WaveData* wave : waves) {
        if (wave->polarity >= 0 && wave->polarity < shown.size() && shown.at(wave->polarity))
            kept.append(wave);
    }
    appendWaves(kept);
}

void WaveListModel::appendWaves(const QList<WaveData*>& waves)
{
    if (waves.isEmpty())
        return;
    QList<QStandardItem*> items;
    items.reserve(waves.size());
    for (WaveData* wave : waves) {
        auto* item = new WaveItem(title(wave), wave);
        item->setEditable(false);
        items.append(item);
    }
    invisibleRootItem()->appendRows(items);
}

WaveData* WaveListModel::waveAt(int row) const
{
    const auto* item = static_cast<const WaveItem*>(this->item(row));
    return item ? item->wave : nullptr;
}

QList<int> WaveListModel::selectedRows(const QItemSelectionModel* selection)
{
    QList<int> rows;
    for (const QItemSelectionRange& range : selection->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void WaveListModel::removeRowList(const QList<int>& ascending)
{
    // From the bottom up, a run of neighbouring rows at a time, so the rows
    // still to go keep their numbers.
    qsizetype end = ascending.size();
    while (end > 0) {
        qsizetype begin = end - 1;
        while (begin > 0 && ascending.at(begin - 1) == ascending.at(begin) - 1)
            --begin;
        removeRows(ascending.at(begin), int(end - begin));
        end = begin;
    }
}

void WaveListModel::clearRows()
{
    removeRows(0, rowCount());
}

} // namespace kesu::toolvok
