#include "timetext.h"

#include "biginteger.h"
#include "waveformdata.h"

#include <QRegularExpression>

#include <cmath>

namespace kesu::toolvok::TimeText {

QString unitText(int smallestUnit)
{
    switch (smallestUnit) {
    case 3: return QStringLiteral(" ms");
    case 6: return QStringLiteral(" us");
    case 9: return QStringLiteral(" ns");
    case 12: return QStringLiteral(" ps");
    default: return QString();
    }
}

QString timeString(quint64 ticks, bool withUnit, int smallestUnit, int decimals)
{
    const QString fixed = QString::number(static_cast<double>(ticks) / std::pow(10.0, decimals), 'f', 3);
    const QString integer = fixed.left(fixed.size() - 4);
    const QString fraction = fixed.right(4);

    QString text;
    text.reserve(fixed.size() + fixed.size() / 3 + 4);
    const qsizetype n = integer.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0)
            text.append(QLatin1Char(','));
        text.append(integer.at(i));
    }
    if (fraction.endsWith(QLatin1String("000")))
        ;
    else if (fraction.endsWith(QLatin1String("00")))
        text.append(fraction.left(2));
    else if (fraction.endsWith(QLatin1Char('0')))
        text.append(fraction.left(3));
    else
        text.append(fraction);
    if (withUnit)
        text.append(unitText(smallestUnit));
    return text;
}

namespace {

// The number as an exact decimal: sign, digits and a power of ten, so that
// "1.1 ns" comes to exactly 1100 ticks where a double would not.
struct Decimal {
    bool negative = false;
    mpz_class digits;
    qint64 exponent = 0;
};

bool readDecimal(const QString& text, Decimal& out)
{
    static const QRegularExpression number(
        QStringLiteral("\\A([+-]?)([0-9]*)(?:\\.([0-9]*))?(?:[eE]([+-]?[0-9]+))?\\z"));
    const QRegularExpressionMatch m = number.match(text);
    if (!m.hasMatch() || (m.capturedLength(2) == 0 && m.capturedLength(3) == 0))
        return false;
    const QString digits = m.captured(2) + m.captured(3);
    out.negative = m.captured(1) == QLatin1String("-");
    out.digits.set_str(digits.toStdString(), 10);
    bool expOk = true;
    const qint64 exp = m.capturedLength(4) ? m.captured(4).toLongLong(&expOk) : 0;
    if (!expOk || exp > 100000 || exp < -100000)
        return false;
    out.exponent = exp - m.capturedLength(3);
    return true;
}

} // namespace

quint64 parseTime(bool& ok, const QString& input, int smallestUnit, int decimals)
{
    QString text = input.trimmed();
    text.remove(QLatin1Char(','));
    ok = true;

    qint64 e = 0;
    static const struct { const char* unit; int exponent; } units[] = {
        {"ps", 12}, {"ms", 3}, {"ns", 9}, {"us", 6}};
    for (const auto& u : units) {
        if (text.endsWith(QLatin1String(u.unit))) {
            text.chop(2);
            text = text.trimmed();
            e = qint64(u.exponent) - (qint64(smallestUnit) + decimals);
            break;
        }
    }

    bool converted = false;
    text.toDouble(&converted);
    Decimal d;
    if (!converted || !readDecimal(text, d)) {
        ok = false;
        return 0;
    }
    if (sgn(d.digits) == 0 || d.negative)
        return 0;   // negative times count as 0

    // ticks = digits * 10^(exponent - e)
    const qint64 scale = d.exponent - e;
    mpz_class ticks = d.digits;
    if (scale >= 0) {
        if (scale > 40) {
            ok = false;
            return 0;
        }
        mpz_class power;
        mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(scale));
        ticks *= power;
    } else {
        if (-scale > static_cast<qint64>(mpz_sizeinbase(d.digits.get_mpz_t(), 10)) + 1) {
            ok = false;   // a fraction of one tick
            return 0;
        }
        mpz_class power, remainder;
        mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(-scale));
        mpz_tdiv_qr(ticks.get_mpz_t(), remainder.get_mpz_t(), d.digits.get_mpz_t(), power.get_mpz_t());
        if (sgn(remainder) != 0)
            ok = false;
    }
    static const mpz_class largest("18446744073709551615");
    if (ticks > largest) {
        ok = false;
        return 0;
    }
    return ticks.get_ui();
}

int radixBase(int radixSetting)
{
    switch (radixSetting) {
    case 0: return 2;
    case 1: return 8;
    case 2: return 10;
    default: return 16;
    }
}

QString busValueString(const std::string& hexValue, int width, int radixSetting)
{
    const int base = radixBase(radixSetting);
    QString digits = QString::fromStdString(BigInteger(hexValue, 16).toString(base));
    // Only binary is padded to show every bit; octal and hexadecimal keep
    // their natural length and decimal is never padded.
    qsizetype count = 0;
    if (base == 2)
        count = width;
    else if (base != 10)
        count = width > 0 ? 1 : 0;
    if (digits.size() < count)
        digits.prepend(QString(count - digits.size(), QLatin1Char('0')));
    return digits;
}

quint64 maxEnd(const WaveformData& document)
{
    quint64 end = 0;
    for (const WaveData* wave : document.waves)
        end = qMax(end, wave->getEndTime());
    return end;
}

} // namespace kesu::toolvok::TimeText
