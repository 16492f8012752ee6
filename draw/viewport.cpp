#include "viewport.h"

#include <QString>

namespace kesu::toolvok {

namespace {
bool leadingDigitIs(quint64 value, char digit)
{
    return QString::number(value).startsWith(QLatin1Char(digit));
}
} // namespace

quint64 Viewport::zoomedIn(quint64 step)
{
    if (step <= 1)
        return 1;
    // 5 -> 2 takes a factor of 2.5, every other step halves.
    const quint64 next = leadingDigitIs(step, '5') ? static_cast<quint64>(step / 2.5) : step / 2;
    return qMax<quint64>(1, next);
}

quint64 Viewport::zoomedOut(quint64 step)
{
    if (step == MaxStep)
        return step;
    const quint64 next = leadingDigitIs(step, '2') ? static_cast<quint64>(step * 2.5) : step * 2;
    return qMin(MaxStep, next);
}

quint64 Viewport::fittingStep(quint64 range, int width)
{
    const quint64 raw = range * PixelsPerStep / static_cast<quint64>(qMax(1, width));
    if (raw > MaxStep)
        return MaxStep;
    if (raw == 0)
        return 1;
    const QString digits = QString::number(raw);
    const int first = digits.at(0).digitValue();
    quint64 power = 1;
    for (int i = 1; i < digits.size(); ++i)
        power *= 10;
    if (first >= 5)
        return power * 10;
    if (first >= 2)
        return power * 5;
    return power * 2;
}

} // namespace kesu::toolvok
