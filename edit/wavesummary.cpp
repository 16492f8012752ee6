#include "wavesummary.h"

#include "biginteger.h"
#include "wavedata.h"

namespace kesu::toolvok {

namespace {
const char* const Kinds[] = {" - Input", " - Output", " - Bidir", " - Test Pt", " - Global", " - Pattern"};

QString valueText(const std::string& value)
{
    if (Values::isDontCare(value))
        return QStringLiteral("X");
    if (Values::isHighZ(value))
        return QStringLiteral("Z");
    return QStringLiteral("0x") + QString::fromStdString(BigInteger(value, 16).toString(16));
}
} // namespace

void WaveSummaryModel::setWave(const WaveData* wave)
{
    beginResetModel();
    wave_ = wave;
    endResetModel();
}

int WaveSummaryModel::tail() const
{
    const qint32 f = wave_->foreverIndex;
    return f >= 0 && f < wave_->patterns.size() ? f : -1;
}

int WaveSummaryModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() || !wave_)
        return 0;
    return 1 + static_cast<int>(wave_->patterns.size()) + (tail() >= 0 ? 1 : 0);
}

QVariant WaveSummaryModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    return line(index.row());
}

QString WaveSummaryModel::line(int row) const
{
    if (!wave_ || row < 0 || row >= rowCount())
        return {};
    if (row == 0) {
        const int kind = wave_->polarity;
        return wave_->name + QLatin1String(kind >= 0 && kind <= 5 ? Kinds[kind] : "");
    }
    int index = row - 1;
    const int tail = this->tail();
    if (tail >= 0 && index >= tail) {
        if (index == tail)
            return QStringLiteral("(...) Repeat Forever");
        --index;
    }
    const Pattern* p = wave_->patterns.at(index);
    return QStringLiteral("Data - ") + valueText(p->value) + QStringLiteral(" - ") + QString::number(p->duration);
}

QString WaveSummaryModel::text() const
{
    QString all;
    for (int row = 0; row < rowCount(); ++row)
        all += line(row) + QLatin1Char('\n');
    return all;
}

TextEdit::TextEdit(QWidget* parent) : QListView(parent), model_(new WaveSummaryModel(this))
{
    setModel(model_);
    // Equal heights let the view place any line without asking the others.
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setLayoutMode(QListView::SinglePass);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

QSize TextEdit::sizeHint() const
{
    return QSize(140, QListView::sizeHint().height());
}

} // namespace kesu::toolvok
