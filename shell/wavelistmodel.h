// The wave lists of the Import Wave and Show/Remove Waves dialogs.
#pragma once

#include <QList>
#include <QStandardItemModel>

class QItemSelectionModel;

namespace kesu::toolvok {

class WaveData;

// One non-editable WaveItem per wave, named with its kind letter. A node list
// can hold a hundred thousand waves, so rows come and go in batches, never
// one signal per row.
class WaveListModel : public QStandardItemModel
{
public:
    explicit WaveListModel(QObject* parent);

    static QString title(const WaveData* wave);

    // The waves whose polarity has its flag set (flags indexed by polarity;
    // others never shown), in the given order, replacing every row.
    void setWaves(const QList<WaveData*>& waves, const QList<bool>& shown);
    void appendWaves(const QList<WaveData*>& waves);
    WaveData* waveAt(int row) const;
    // The selected rows, in ascending order.
    static QList<int> selectedRows(const QItemSelectionModel* selection);
    void removeRowList(const QList<int>& ascending);
    // Every row, dropped at once.
    void clearRows();
};

} // namespace kesu::toolvok
