#include "documentjson.h"

#include "waveformdata.h"

#include <QJsonArray>

#include <limits>

namespace kesu::toolvok {

namespace {
QJsonValue integer(quint64 value)
{
    // JSON numbers in Qt are 64-bit signed; beyond that only a double remains.
    if (value <= static_cast<quint64>(std::numeric_limits<qint64>::max()))
        return QJsonValue(static_cast<qint64>(value));
    return QJsonValue(static_cast<double>(value));
}

QJsonObject waveToJson(const WaveData& wave)
{
    QJsonArray segments;
    for (const Pattern* p : wave.patterns) {
        segments.append(QJsonObject{
            {QStringLiteral("value"), QString::fromStdString(p->value)},
            {QStringLiteral("duration"), p->duration},
            {QStringLiteral("forever"), p->forever},
        });
    }
    return QJsonObject{
        {QStringLiteral("name"), wave.name},
        {QStringLiteral("group"), wave.group},
        {QStringLiteral("polarity"), wave.polarity},
        {QStringLiteral("spareInt"), wave.spareInt},
        {QStringLiteral("waveType"), wave.waveType},
        {QStringLiteral("offset"), integer(wave.offset)},
        {QStringLiteral("formatValue"), integer(wave.formatValue)},
        {QStringLiteral("formatRatio"), wave.formatRatio},
        {QStringLiteral("isBus"), wave.isBus},
        {QStringLiteral("isPattern"), wave.isPattern},
        {QStringLiteral("busWidth"), wave.busWidth},
        {QStringLiteral("elements"), QJsonArray::fromStringList(wave.elements)},
        {QStringLiteral("visible"), wave.visible},
        {QStringLiteral("foreverIndex"), wave.foreverIndex},
        {QStringLiteral("patterns"), segments},
    };
}
} // namespace

QJsonObject documentToJson(const WaveformData& document)
{
    QJsonArray waves;
    for (const WaveData* wave : document.waves)
        waves.append(waveToJson(*wave));
    return QJsonObject{
        {QStringLiteral("masterClockMult"), document.masterClockMult},
        {QStringLiteral("smallestUnit"), document.smallestUnit},
        {QStringLiteral("autoAssign"), document.autoAssign},
        {QStringLiteral("decimals"), document.decimals},
        {QStringLiteral("endTime"), integer(document.endTime)},
        {QStringLiteral("waves"), waves},
    };
}

} // namespace kesu::toolvok
