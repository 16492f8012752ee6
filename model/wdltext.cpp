#include "wdltext.h"

#include "busname.h"
#include "waveformdata.h"

#include <QByteArrayView>
#include <QStringDecoder>

#include <algorithm>

namespace kesu::toolvok::wdltext {

namespace {

QStringView word(const QList<QStringView>& words, qsizetype i)
{
    return i < words.size() ? words.at(i) : QStringView();
}

QList<QStringView> splitAtEachBlank(QStringView text)
{
    QList<QStringView> words;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isBlank(text[i])) {
            words.append(text.mid(start, i - start));
            start = i + 1;
        }
    }
    words.append(text.mid(start));
    return words;
}

} // namespace

char32_t firstChar(Bytes s, size_t& length)
{
    const auto lead = static_cast<unsigned char>(s.front());
    length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 1;
    length = std::min(length, s.size());
    char32_t c = length == 1 ? lead : lead & (0x7f >> length);
    for (size_t k = 1; k < length; ++k)
        c = (c << 6) | (static_cast<unsigned char>(s[k]) & 0x3f);
    return c;
}

char32_t lastChar(Bytes s, size_t& length)
{
    length = 1;
    while (length < 4 && length < s.size() && (static_cast<unsigned char>(s[s.size() - length]) & 0xc0) == 0x80)
        ++length;
    size_t decoded = 0;
    const char32_t c = firstChar(s.substr(s.size() - length), decoded);
    return decoded == length ? c : U'\xfffd';
}

QString toQString(Bytes s)
{
    const QByteArrayView bytes(s.data(), static_cast<qsizetype>(s.size()));
    if (!startsWith(s, Bytes("\xEF\xBB\xBF")))
        return QString::fromUtf8(bytes);
    // QString::fromUtf8 would drop a byte order mark in front; inside a
    // statement it is an ordinary character.
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decode(bytes);
}

void applyAttributes(WaveData* wave, QStringView block)
{
    const QList<QStringView> words = splitAtEachBlank(block);
    const QStringView groupWord = word(words, 0);
    const QChar g = groupWord.isEmpty() ? QChar() : groupWord.front();
    wave->group = (g >= QLatin1Char('A') && g <= QLatin1Char('H')) ? g.unicode() - 'A' + 1 : 0;

    const QStringView polarityWord = word(words, 1);
    const QChar p = polarityWord.isEmpty() ? QChar() : polarityWord.front();
    if (p == QLatin1Char('I'))
        wave->polarity = 0;
    else if (p == QLatin1Char('O'))
        wave->polarity = 1;
    else if (p == QLatin1Char('B'))
        wave->polarity = 2;
    else if (p == QLatin1Char('G'))
        wave->polarity = 4;
    else
        wave->polarity = 3;

    const QStringView type = word(words, 3);
    if (type == QLatin1String("NRZ"))
        wave->waveType = 1;
    else if (type == QLatin1String("RZ"))
        wave->waveType = 2;
    else if (type == QLatin1String("R1"))
        wave->waveType = 3;
    else if (type == QLatin1String("RC"))
        wave->waveType = 4;
    else
        wave->waveType = 0;

    wave->offset = word(words, 4).toULongLong();
    wave->formatValue = word(words, 5).toULongLong();
    wave->formatRatio = word(words, 6).toShort();
    wave->spareInt = 0;
}

bool applyBusForm(WaveData* wave, qint64 maxWidth, qint64& width)
{
    const BusName bus = parseBusName(wave->name);
    width = bus.form == BusName::Single ? 1 : bus.width();
    if (bus.form == BusName::Single)
        return true;
    // A list names its elements itself; a range or run would have them made.
    if (bus.form != BusName::List && bus.width() > maxWidth)
        return false;
    wave->isBus = true;
    wave->busWidth = static_cast<qint32>(bus.width());
    if (bus.form == BusName::List)
        wave->elements = bus.elements;
    else
        WaveformData::genExpandWave(wave, bus.base, bus.from, bus.to);
    return true;
}

GroupSuffix readSuffix(Bytes suffix)
{
    GroupSuffix s;
    const size_t star = suffix.find('*');
    const size_t hash = suffix.find('#');
    if (star != Bytes::npos && (hash == Bytes::npos || star < hash)) {
        const size_t end = hash == Bytes::npos ? suffix.size() : hash;
        s.multiplier = toQString(trimmed(suffix.substr(star + 1, end - star - 1))).toInt();
    }
    if (hash != Bytes::npos) {
        const Bytes n = trimmed(suffix.substr(hash + 1));
        if (n == "#") {
            s.forever = true;
        } else {
            // No default: "#" alone or "#0" lays nothing down.
            s.repeats = qMax<qint64>(0, toQString(n).toLongLong());
        }
    }
    return s;
}

} // namespace kesu::toolvok::wdltext
