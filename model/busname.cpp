#include "busname.h"

#include "waveformdata.h"

#include <QRegularExpression>

namespace kesu::toolvok {

namespace {

// The number in a run's end starts at its first digit; no digit reads as 0,
// and then the whole end is the base.
int runNumber(QStringView end, QString* base)
{
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    const qsizetype at = end.toString().indexOf(digit);
    if (base)
        *base = (at < 0 ? end : end.left(at)).toString();
    return at < 0 ? 0 : end.mid(at).toInt();
}

// 0 is "a", 25 "z", 26 "aa": a copy number without digits.
QString letters(int n)
{
    QString text;
    for (++n; n > 0; n = (n - 1) / 26)
        text.prepend(QChar(u'a' + (n - 1) % 26));
    return text;
}

} // namespace

qint64 BusName::width() const
{
    switch (form) {
    case Range:
    case Run:
        return (from > to ? qint64(from) - to : qint64(to) - from) + 1;
    case List:
        return elements.size();
    case Single:
        break;
    }
    return 1;
}

BusName parseBusName(const QString& name)
{
    BusName bus;
    const qsizetype open = name.indexOf(QLatin1Char('['));
    if (open < 0)
        return bus;
    const qsizetype close = name.lastIndexOf(QLatin1Char(']'));
    const QStringView inner = close > open ? QStringView(name).mid(open + 1, close - open - 1)
                                           : QStringView(name).mid(open + 1);

    const qsizetype dots = inner.indexOf(QLatin1String("..."));
    if (open == 0 && dots >= 0) {
        // The letters in front of the last number are not looked at.
        bus.form = BusName::Run;
        bus.from = runNumber(inner.left(dots), &bus.base);
        bus.to = runNumber(inner.mid(dots + 3), nullptr);
        return bus;
    }
    const qsizetype colon = inner.indexOf(QLatin1Char(':'));
    if (colon >= 0) {
        bus.from = inner.left(colon).toInt();
        bus.to = inner.mid(colon + 1).toInt();
        if (bus.from != bus.to) {
            bus.form = BusName::Range;
            bus.base = name.left(open);
        }
        return bus;
    }
    if (inner.contains(QLatin1Char(','))) {
        bus.form = BusName::List;
        bus.elements = inner.toString().split(QLatin1Char(','));
    }
    return bus;
}

QString duplicateWaveName(const WaveformData& document, const QString& name)
{
    const BusName bus = parseBusName(name);
    const qsizetype bracket = name.indexOf(QLatin1Char('['));
    const QString base = bracket < 0 ? name : name.left(bracket);
    const QString suffix = bracket < 0 ? QString() : name.mid(bracket);
    for (int n = 0;; ++n) {
        QString copy;
        if (bus.form == BusName::Run) {
            const QString copyBase = bus.base + QLatin1Char('_') + letters(n);
            copy = QStringLiteral("[%1%2...%1%3]").arg(copyBase, QString::number(bus.from), QString::number(bus.to));
        } else {
            copy = base + QLatin1Char('_') + QString::number(n) + suffix;
        }
        if (!document.findWavebyName(copy))
            return copy;
    }
}

} // namespace kesu::toolvok
