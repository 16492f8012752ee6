#pragma once

#include <QListView>
#include <QStandardItem>

class QStandardItemModel;

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
    WaveData* waveAt(int row) const;
    QStandardItemModel* itemModel() const { return model_; }

private:
    QList<QStandardItem*> rowsFor(WaveData* wave) const;

    QStandardItemModel* model_;
    VokGUI* owner_;
};

} // namespace kesu::toolvok
