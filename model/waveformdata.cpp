#include "waveformdata.h"

#include "wavereader.h"

namespace kesu::toolvok {

WaveformData::~WaveformData()
{
    qDeleteAll(waves);
}

void WaveformData::takeFrom(WaveformData&& other)
{
    qDeleteAll(waves);
    waves.clear();
    *this = std::move(other);
    // A moved-from list need not be empty: the waves have one owner only.
    other.waves.clear();
}

void WaveformData::addWave(WaveData* wave)
{
    waves.append(wave);
}

int WaveformData::removeWave(WaveData* wave)
{
    const qsizetype index = waves.indexOf(wave);
    if (index < 0)
        return -1;
    waves.removeAt(index);
    delete wave;
    return static_cast<int>(index);
}

WaveData* WaveformData::findWavebyName(const QString& name) const
{
    for (WaveData* wave : waves) {
        if (wave->name == name)
            return wave;
    }
    return nullptr;
}

void WaveformData::ClearAll()
{
    // The header settings stay: a cleared document keeps its time base.
    qDeleteAll(waves);
    waves.clear();
    loadError = {};
}

bool WaveformData::checkBusElements(const WaveData* wave, QString& message) const
{
    if (!wave->isBus) {
        for (const WaveData* w : waves) {
            if (w->isBus && w->elements.contains(wave->name)) {
                message = QStringLiteral("The wave you are adding conflicts to an existing wave. "
                                         "It is element of the exsited bus wave.");
                return false;
            }
        }
        return true;
    }
    for (const WaveData* w : waves) {
        bool conflict = wave->elements.contains(w->name);
        if (!conflict && w->isBus) {
            for (const QString& element : w->elements) {
                if (wave->elements.contains(element)) {
                    conflict = true;
                    break;
                }
            }
        }
        if (conflict) {
            message = QStringLiteral("The wave you are adding conflicts to an existing wave. "
                                     "Some elements of the bus wave have been added.");
            return false;
        }
    }
    return true;
}

void WaveformData::genExpandWave(WaveData* wave, const QString& base, int from, int to)
{
    const QString open = base + QLatin1Char('[');
    if (from >= to) {
        for (qint64 i = from; i >= to; --i)
            wave->elements.append(open + QString::number(i) + QLatin1Char(']'));
    } else {
        for (qint64 i = from; i <= to; ++i)
            wave->elements.append(open + QString::number(i) + QLatin1Char(']'));
    }
}

void WaveformData::loadData(QIODevice& file)
{
    loadError = {};
    WaveReader(*this).readDevice(file);
}

void WaveformData::loadText(const QString& text)
{
    loadError = {};
    WaveReader(*this).readText(text);
}

void WaveformData::CompilerLine(const QString& statement)
{
    const QByteArray bytes = statement.toUtf8();
    WaveReader reader(*this);
    reader.compileStatement(std::string_view(bytes.constData(), size_t(bytes.size())));
    reader.publishPlaceholders();
}

QStringList WaveformData::parseValues(const QString& text)
{
    return WaveReader::tokens(text);
}

void WaveformData::processSubPattern(const QString& body, QList<Pattern*>& out, WaveData* wave)
{
    WaveReader(*this).readGroupBody(body, out, wave);
}

} // namespace kesu::toolvok
