#pragma once

#include <QListView>
#include <QStandardItem>

class QStandardItemModel;
class QDragEnterEvent;
class QDragLeaveEvent;
class QDragMoveEvent;
class QDropEvent;

namespace kesu::toolvok {

class VokGUI;
class WaveData;

// One row of the name list: a wave, or (wave null) an element of an expanded
// bus.
class WaveItem : public QStandardItem
{
public:
    explicit WaveItem(const QString& text, WaveData* w = nullptr) : QStandardItem(text), wave(w) {}
    WaveData* wave;
};

// The column of wave names beside the drawing, one 40-pixel row per wave row.
class WaveLstView : public QListView
{
    Q_OBJECT
public:
    WaveLstView(VokGUI* owner, QWidget* parent);

    static QString waveTitle(const WaveData* wave);

    void addWave(WaveData* wave);
    void insertWave(WaveData* wave, int row);
    void removeWave(int row);
    void removeWave(WaveData* wave);
    void moveWave(WaveData* wave, int from, int to);
    void updateWaveTitle(WaveData* wave);
    void clearWaves();
    int rowOf(const WaveData* wave) const;
    // The row at which the wave's rows belong: before the rows of the next
    // shown wave of the document.
    int rowForPlaceOf(const WaveData* wave) const;
    WaveData* waveAt(int row) const;
    QStandardItemModel* itemModel() const { return model_; }

    // Shows or hides the element rows of the bus in that row after the
    // caller flipped its expandFlag, and re-marks its title to match.
    void expandBus(QModelIndex index);

    bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
    void cancelMove();

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void updateGeometries() override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QList<QStandardItem*> rowsFor(WaveData* wave) const;
    QStandardItem* elementItem(const QString& element) const;
    WaveData* waveOf(const QModelIndex& index) const;
    // A rebuilt list has no current row: nor has the tool an active wave.
    void dropActiveWaveWithoutCurrentRow();

    QStandardItemModel* model_;
    VokGUI* owner_;

public:
    // Drag state, open to the tool window and its tests like the other views'.
    // A row drag is under way; only a drop ends it.
    bool moving = false;
    // The row under the mouse during a drag.
    QModelIndex dragTarget;
    // The row to which the last drag step moved the wave.
    int lastTargetRow = -1;
};

} // namespace kesu::toolvok
