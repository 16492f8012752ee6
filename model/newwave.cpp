#include "newwave.h"

#include "wavedata.h"
#include "waveformdata.h"

#include <QRegularExpression>

#include <memory>

namespace kesu::toolvok {

namespace {

constexpr int PatternPolarity = 5;

const QString kInvalidName = QStringLiteral("Invalid wave name.");
const QString kNameUsed = QStringLiteral("The name is used.");
const QString kInvalidBus = QStringLiteral("Invalid bus name.");
const QString kInvalidCharacter = QStringLiteral("The wave name contains invalid character.");

bool isIdentifier(const QString& text)
{
    static const QRegularExpression identifier(QStringLiteral("^[a-zA-Z_][a-zA-Z0-9_]*$"));
    return identifier.match(text).hasMatch();
}

bool isNumber(const QString& text)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]+$"));
    return digits.match(text).hasMatch();
}

// Parts that do not read as numbers count as 0, as everywhere in the tool.
qint64 number(const QString& text)
{
    return text.trimmed().toLongLong();
}

// The two range forms end here alike: the width limit, the base, the bits.
bool expandRange(WaveData& wave, const QString& base, qint64 first, qint64 second, QString& message)
{
    if (qAbs(first - second) + 1 > MaxNewBusBits) {
        message = QStringLiteral("Don't support bus over %1 bits.").arg(MaxNewBusBits);
        return false;
    }
    if (!isIdentifier(base)) {
        message = kInvalidCharacter;
        return false;
    }
    WaveformData::genExpandWave(&wave, base, int(first), int(second));
    return true;
}

// "[d0...d7]": the bit position comes from the left end alone; the right end
// only has to begin with the same prefix.
bool parseElementRange(WaveData& wave, const QString& name, QString& message)
{
    wave.isBus = true;
    const qsizetype dots = name.indexOf(QLatin1String("..."));
    const QString left = name.mid(1, dots - 1);
    const QString right = name.mid(dots + 3, name.size() - dots - 4);
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    const qsizetype firstDigit = left.indexOf(digit);
    const QString prefix = left.left(firstDigit);
    if (firstDigit < 0 || !right.startsWith(prefix)) {
        message = kInvalidBus;
        return false;
    }
    return expandRange(wave, prefix, number(left.mid(firstDigit)), number(right.mid(prefix.size())), message);
}

// "d[7:0]"; a one-bit range makes a single signal.
bool parseBitRange(WaveData& wave, const QString& name, QString& message)
{
    wave.isBus = true;
    const qsizetype open = name.indexOf(QLatin1Char('['));
    const QStringList parts = name.mid(open + 1, name.lastIndexOf(QLatin1Char(']')) - open - 1).split(QLatin1Char(':'));
    if (parts.size() != 2 || !isNumber(parts.at(0).trimmed()) || !isNumber(parts.at(1).trimmed())) {
        message = kInvalidBus;
        return false;
    }
    const qint64 first = number(parts.at(0));
    const qint64 second = number(parts.at(1));
    if (first == second)
        wave.isBus = false;
    return expandRange(wave, name.left(open), first, second, message);
}

// "a,b,c" or "x[a,b,c]": the listed names are the bits.
bool parseElementList(WaveData& wave, const QString& name, QString& message)
{
    wave.isBus = true;
    QString list = name;
    const qsizetype open = name.indexOf(QLatin1Char('['));
    const qsizetype close = name.indexOf(QLatin1Char(']'));
    if (open >= 0 && close > open)
        list = name.mid(open + 1, close - open - 1);
    const QStringList elements = list.split(QLatin1Char(','));
    for (const QString& element : elements) {
        if (!isIdentifier(element)) {
            message = kInvalidCharacter;
            return false;
        }
    }
    wave.elements = elements;
    return true;
}

bool parseName(WaveData& wave, const QString& name, QString& message)
{
    if (name.startsWith(QLatin1Char('[')) && name.contains(QLatin1String("...")) && name.endsWith(QLatin1Char(']')))
        return parseElementRange(wave, name, message);
    if (name.contains(QLatin1Char('[')) && name.contains(QLatin1Char(':')) && name.endsWith(QLatin1Char(']')))
        return parseBitRange(wave, name, message);
    if (name.contains(QLatin1Char(',')))
        return parseElementList(wave, name, message);
    if (!isIdentifier(name)) {
        message = kInvalidCharacter;
        return false;
    }
    return true;
}

} // namespace

WaveData* makeNewWave(const WaveformData& document, const QString& typed, int polarity, QString& message)
{
    if (typed.isEmpty()) {
        message = kInvalidName;
        return nullptr;
    }
    QString name = typed;
    const bool pattern = polarity == PatternPolarity;
    if (pattern && !name.startsWith(QLatin1Char('$')))
        name.prepend(QLatin1Char('$'));
    if (document.findWavebyName(name)) {
        message = kNameUsed;
        return nullptr;
    }
    auto wave = std::make_unique<WaveData>(name);
    QString parsed = name;
    if (pattern) {
        wave->isPattern = true;
        parsed.remove(0, 1);
    }
    if (!parseName(*wave, parsed, message))
        return nullptr;
    if (wave->isBus)
        wave->busWidth = qint32(wave->elements.size());
    wave->polarity = polarity;
    if (!document.checkBusElements(wave.get(), message))
        return nullptr;
    return wave.release();
}

} // namespace kesu::toolvok
