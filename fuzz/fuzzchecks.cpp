#include "fuzzchecks.h"

#include "documentjson.h"
#include "nodelist.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavereader.h"
#include "wavewriter.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>

namespace fuzzchecks {

using namespace kesu::toolvok;

namespace {
// A buffer over the bytes without copying them, as a file would hand them.
QByteArray view(const uint8_t* data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
}

// The reader may spend time and memory in proportion to the segments a file
// lays down, and a few bytes may lay down the full 67 million. libFuzzer
// allows each input 10 s and 2 GB under the sanitizers: with a limit of a
// million segments every input fits, and the limit is met more often.
constexpr qint64 SegmentLimit = qint64(1) << 20;
// The round trip reads three times and compares every segment as JSON, which
// costs a hundred times the reading: 100,000 segments took 17 s under the
// sanitizers. What it checks does not grow with the count.
constexpr qint64 RoundTripLimit = qint64(1) << 14;

void load(WaveformData& document, QByteArray bytes, qint64 limit = SegmentLimit)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    WaveReader(document, limit).readDevice(buffer);
}

// The waveforms the document draws: neighbouring segments of one value are
// one stretch of the signal, however the reader happened to lay them down.
QByteArray drawnWaveforms(const WaveformData& document)
{
    QJsonObject json = documentToJson(document);
    QJsonArray waves = json.value(QStringLiteral("waves")).toArray();
    for (QJsonValueRef waveRef : waves) {
        QJsonObject wave = waveRef.toObject();
        QJsonArray merged;
        for (const QJsonValue& value : wave.value(QStringLiteral("patterns")).toArray()) {
            QJsonObject segment = value.toObject();
            if (!merged.isEmpty() && !segment.value(QStringLiteral("forever")).toBool()) {
                QJsonObject last = merged.last().toObject();
                if (last.value(QStringLiteral("value")) == segment.value(QStringLiteral("value"))) {
                    last.insert(QStringLiteral("duration"), last.value(QStringLiteral("duration")).toInteger()
                                                                + segment.value(QStringLiteral("duration")).toInteger());
                    merged.replace(merged.size() - 1, last);
                    continue;
                }
            }
            merged.append(segment);
        }
        wave.insert(QStringLiteral("patterns"), merged);
        wave.remove(QStringLiteral("foreverIndex"));   // the tail's start is in the segments
        // The writer has always written group 0 as "A", group 1.
        if (wave.value(QStringLiteral("group")).toInt() == 0)
            wave.insert(QStringLiteral("group"), 1);
        waveRef = wave;
    }
    json.insert(QStringLiteral("waves"), waves);
    return QJsonDocument(json).toJson();
}

// Where two texts part, with a little of each, for the report.
QString firstDifference(const QByteArray& a, const QByteArray& b)
{
    qsizetype i = 0;
    while (i < a.size() && i < b.size() && a[i] == b[i])
        ++i;
    const qsizetype from = qMax<qsizetype>(0, i - 40);
    return QStringLiteral("at byte %1:\n  first:  %2\n  second: %3")
        .arg(i)
        .arg(QString::fromUtf8(a.mid(from, 120)), QString::fromUtf8(b.mid(from, 120)));
}
} // namespace

QString readWaveform(const uint8_t* data, size_t size)
{
    WaveformData document;
    load(document, view(data, size));
    // Every wave the reader keeps must be one the writer can walk.
    formatWaveform(document);
    return {};
}

QString readNodeList(const uint8_t* data, size_t size)
{
    QByteArray bytes = view(data, size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const NodeListRead read = kesu::toolvok::readNodeList(buffer);
    QString fault;
    if (read.status != NodeListRead::Read && !read.nodes.isEmpty())
        fault = QStringLiteral("nodes handed out with a failed read");
    for (const WaveData* node : read.nodes) {
        if (fault.isEmpty() && (node->name.isEmpty() || node->name.contains(u' ') || node->visible))
            fault = QStringLiteral("a node named \"%1\" that no line names, or shown").arg(node->name);
    }
    qDeleteAll(read.nodes);
    return fault;
}

QString roundTrip(const uint8_t* data, size_t size)
{
    WaveformData first;
    load(first, view(data, size), RoundTripLimit);
    const QByteArray written = formatWaveform(first);
    WaveformData second;
    load(second, written, RoundTripLimit);
    const QByteArray firstDrawn = drawnWaveforms(first);
    const QByteArray secondDrawn = drawnWaveforms(second);
    if (firstDrawn != secondDrawn)
        return QStringLiteral("the document read back draws other waves ") + firstDifference(firstDrawn, secondDrawn);
    // What the writer wrote reads back field for field, and writes the same text.
    const QByteArray rewritten = formatWaveform(second);
    WaveformData third;
    load(third, rewritten, RoundTripLimit);
    const QByteArray secondJson = QJsonDocument(documentToJson(second)).toJson();
    const QByteArray thirdJson = QJsonDocument(documentToJson(third)).toJson();
    if (secondJson != thirdJson)
        return QStringLiteral("a written document reads back changed ") + firstDifference(secondJson, thirdJson);
    if (formatWaveform(third) != rewritten)
        return QStringLiteral("a written document writes back changed ") + firstDifference(rewritten, formatWaveform(third));
    return {};
}

Check checkNamed(const QString& target)
{
    if (target == QLatin1String("reader"))
        return readWaveform;
    if (target == QLatin1String("nodelist"))
        return readNodeList;
    if (target == QLatin1String("roundtrip"))
        return roundTrip;
    return nullptr;
}

} // namespace fuzzchecks
