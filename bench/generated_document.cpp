// The benchmarks' document: large, varied and reproducible wave by wave.
#include "generated_document.h"

#include "waveformdata.h"
#include "wavewriter.h"

#include <QFile>

#include <algorithm>
#include <charconv>

namespace kesu::toolvok {

void sandboxToolSettings(const QString& config)
{
    qputenv("XDG_CONFIG_HOME", config.toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

namespace {

// splitmix64: tiny, and every wave can be regenerated on its own from its
// index, which is what lets the reader check the document without a copy.
class Rng
{
public:
    explicit Rng(quint64 seed) : state_(seed) {}
    quint64 next()
    {
        quint64 z = (state_ += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    quint64 below(quint64 n) { return next() % n; }

private:
    quint64 state_;
};

// One wave in four is a bus; about one in a hundred ends in a forever tail.
bool isBusWave(qint64 index) { return index % 4 == 3; }
bool hasForeverTail(qint64 index) { return index % 100 == 42 || index == 1; }

std::string hexOf(quint64 v)
{
    char digits[20];
    const auto r = std::to_chars(digits, digits + sizeof digits, v, 16);
    return std::string(digits, r.ptr);
}

// Builds wave `index` exactly as the file must read back: equal neighbours
// are avoided (a single signal, and special values on a bus, would merge on
// reading), bus elements are those the reader expands from the name.
} // namespace

std::unique_ptr<WaveData> makeGeneratedWave(quint64 seed, qint64 index, qint64 segments)
{
    Rng rng(seed * 0x100000001b3ULL ^ (quint64(index) + 1) * 0xd6e8feb86659fd93ULL);
    const bool bus = isBusWave(index);
    const int width = bus ? 8 + int(rng.below(57)) : 1;
    std::unique_ptr<WaveData> wave;
    if (bus) {
        const QString base = QStringLiteral("data%1").arg(index);
        wave = std::make_unique<WaveData>(QStringLiteral("%1[%2:0]").arg(base).arg(width - 1));
        wave->isBus = true;
        wave->busWidth = width;
        WaveformData::genExpandWave(wave.get(), base, width - 1, 0);
    } else {
        wave = std::make_unique<WaveData>(QStringLiteral("sig%1").arg(index));
    }
    wave->group = 1 + int(rng.below(8));
    wave->polarity = int(rng.below(5));
    wave->waveType = 1 + int(rng.below(4));
    wave->offset = rng.below(1000);
    wave->formatValue = 1 + rng.below(100);
    wave->formatRatio = qint16(rng.below(101));

    const quint64 mask = width >= 64 ? ~quint64(0) : (quint64(1) << width) - 1;
    const qint64 count = segments;
    const qint64 foreverAt = hasForeverTail(index) ? count - 1 - qint64(rng.below(quint64(std::min<qint64>(count, 64))))
                                                   : -1;
    wave->patterns.reserve(count);
    std::string previous;
    for (qint64 k = 0; k < count; ++k) {
        std::string value;
        do {
            const quint64 pick = rng.below(100);
            if (pick < 3)
                value = Values::DontCare;
            else if (pick < 5)
                value = Values::HighZ;
            else if (!bus)
                value = pick & 1 ? "1" : "0";
            else
                value = hexOf(rng.next() & mask);
        } while (value == previous);
        auto* p = new Pattern(value, qint32(1 + rng.below(1000)));
        p->forever = k == foreverAt;
        wave->insertData(p, nullptr);
        previous = std::move(value);
    }
    wave->foreverIndex = qint32(foreverAt);
    return wave;
}

bool writeGeneratedDocument(const QString& path, quint64 seed, qint64 waves, qint64 segments)
{
    WaveformData document;
    document.endTime = quint64(segments + 1) * 1000;
    for (qint64 i = 0; i < waves; ++i)
        document.addWave(makeGeneratedWave(seed, i, segments).release());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && writeWaveform(document, file);
}

} // namespace kesu::toolvok
