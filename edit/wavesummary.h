#pragma once

#include <QAbstractListModel>
#include <QListView>

namespace kesu::toolvok {

class WaveData;

// The lines of a wave's summary: its name and kind, then one line per
// pattern, with "(...) Repeat Forever" before the forever tail. Lines are
// made when the view asks for them, so a wave of any length loads at once;
// whoever changes the wave's patterns resets the model with setWave.
class WaveSummaryModel : public QAbstractListModel
{
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    void setWave(const WaveData* wave);
    const WaveData* wave() const { return wave_; }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QString line(int row) const;
    // The whole summary as text, one line each: for tests and copying.
    QString text() const;

private:
    // The first pattern of the forever tail, or -1.
    int tail() const;

    const WaveData* wave_ = nullptr;
};

// The read-only summary list: only the visible lines are ever drawn, and
// the dock starts narrow.
class TextEdit : public QListView
{
    Q_OBJECT
public:
    explicit TextEdit(QWidget* parent);
    QSize sizeHint() const override;
    WaveSummaryModel* summary() const { return model_; }

private:
    WaveSummaryModel* model_;
};

} // namespace kesu::toolvok
