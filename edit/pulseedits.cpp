#include "pulseedits.h"

#include "pattern.h"
#include "wavedata.h"

#include <QRegularExpression>

#include <limits>

namespace kesu::toolvok::PulseEdits {

namespace {
constexpr qint64 MaxDuration = std::numeric_limits<qint32>::max();
// Beyond this a repeat would take gigabytes; nobody draws it by hand.
constexpr qint64 MaxNewPulses = 10'000'000;
} // namespace

BigInteger readNumber(const QString& text, int base)
{
    if (text.startsWith(QLatin1String("0x")))
        return BigInteger(text.mid(2).toStdString(), 16);
    return BigInteger(text.toStdString(), base);
}

Outcome scaleDurations(const QList<Pattern*>& selection, const QString& text, quint64& total)
{
    const BigInteger typed = readNumber(text, 10);
    if (!typed.isNumber() || text.isEmpty())
        return Outcome::Invalid;
    if (typed.value() == 1)
        return Outcome::Unchanged;
    // Any scale past 32 bits overflows a duration of 1 already.
    const bool huge = !typed.value().fits_slong_p() || typed.value() > static_cast<long>(MaxDuration);
    const qint64 scale = huge ? MaxDuration + 1 : typed.value().get_si();
    for (const Pattern* p : selection) {
        const qint64 product = qint64(p->duration) * scale;
        if ((huge && p->duration != 0) || product < 0 || product > MaxDuration || product < p->duration)
            return Outcome::Overflow;
    }
    total = 0;
    for (Pattern* p : selection) {
        p->duration = static_cast<qint32>(qint64(p->duration) * scale);
        total += quint64(qint64(p->duration));
    }
    if (WaveData* wave = selection.isEmpty() ? nullptr : selection.first()->wave)
        wave->segmentsChanged(static_cast<int>(wave->patterns.indexOf(selection.first())));
    return Outcome::Done;
}

qint64 readRepeatCount(const QString& text, bool& tooLarge)
{
    bool ok = false;
    const qint64 n = text.toLongLong(&ok, 10);
    static const QRegularExpression digits(QStringLiteral("\\A[0-9]+\\z"));
    tooLarge = !ok && digits.match(text).hasMatch();
    return ok ? n : 0;
}

Outcome repeatSelection(WaveData* wave, const QList<Pattern*>& selection, qint64 count, QList<Pattern*>& added,
                        quint64& total)
{
    const qsizetype k = selection.size();
    if (k == 0 || count == 1)
        return Outcome::Unchanged;
    Pattern* last = selection.last();
    const qsizetype lastIndex = wave->patterns.indexOf(last);
    if (lastIndex < 0)
        return Outcome::Unchanged;

    // Everything is checked before anything changes.
    QList<qint32> durations;
    qint64 span = 0;
    for (const Pattern* p : selection) {
        durations.append(p->duration);
        span += p->duration;
    }
    const qint64 copies = qMax<qint64>(count - 1, 0);
    if (copies > MaxNewPulses || k * copies > MaxNewPulses)
        return Outcome::TooMany;
    if (span < 0 || (span > 0 && quint64(count > 0 ? count : 0) > std::numeric_limits<quint64>::max() / quint64(span)))
        return Outcome::Overflow;
    // A copy's first pulse joins the pulse before it when their values agree:
    // that pulse is the last selected one, then the newest copy of it.
    // A single pulse joins itself on every copy.
    const std::string& head = selection.first()->value;
    const qint64 joins = k == 1 ? copies : qMin<qint64>(copies, 1);
    if (copies > 0 && head == last->value
        && (qint64(last->duration) + qint64(durations.first()) * joins > MaxDuration
            || (copies > 1 && k > 1 && qint64(durations.last()) + durations.first() > MaxDuration)))
        return Outcome::Overflow;
    total = quint64(span) * quint64(count > 0 ? count : 0);

    Pattern* tail = last;
    QList<Pattern*> fresh;
    fresh.reserve(static_cast<qsizetype>(k * copies));
    for (qint64 n = 0; n < copies; ++n) {
        for (qsizetype j = 0; j < k; ++j) {
            const Pattern* source = selection.at(j);
            if (j == 0 && source->value == tail->value) {
                tail->duration += durations.first();
                continue;
            }
            auto* p = new Pattern(source->value, durations.at(j));
            p->wave = wave;
            fresh.append(p);
        }
        if (!fresh.isEmpty())
            tail = fresh.last();
    }
    // One insertion for all copies: a pulse at a time would move the rest of
    // a long wave once per pulse.
    const qsizetype at = lastIndex + 1;
    wave->patterns.insert(at, fresh.size(), nullptr);
    std::copy(fresh.cbegin(), fresh.cend(), wave->patterns.begin() + at);
    if (wave->foreverIndex >= at)
        wave->foreverIndex += static_cast<qint32>(fresh.size());
    wave->segmentsChanged(static_cast<int>(lastIndex));
    added.append(fresh);
    return Outcome::Done;
}

} // namespace kesu::toolvok::PulseEdits
