#include "nodelist.h"

#include "wavedata.h"

#include <QIODevice>
#include <QStringDecoder>

namespace kesu::toolvok {

int nodePolarity(QStringView letter)
{
    if (letter == u"i")
        return 0;
    if (letter == u"o")
        return 1;
    if (letter == u"b")
        return 2;
    if (letter == u"r")
        return 4;
    return 3;  // "n", and every letter the list's writer may add later
}

QList<WaveData*> parseNodeList(QStringView text)
{
    QList<WaveData*> nodes;
    for (QStringView line : text.tokenize(u'\n')) {
        line = line.trimmed();
        if (line.isEmpty())
            continue;
        QStringView name, kind;
        int parts = 0;
        for (QStringView part : line.tokenize(u' ', Qt::SkipEmptyParts)) {
            (parts == 0 ? name : kind) = part;
            if (++parts == 2)
                break;
        }
        if (parts < 2)
            continue;
        auto* wave = new WaveData(name.toString());
        wave->polarity = nodePolarity(kind);
        wave->visible = false;
        nodes.append(wave);
    }
    return nodes;
}

NodeListRead readNodeList(QIODevice& device, qint64 limit)
{
    // Read in pieces: one read of the whole limit would set aside all of
    // it for every file, however small.
    QByteArray bytes;
    while (bytes.size() <= limit) {
        const QByteArray piece = device.read(qMin<qint64>(limit + 1 - bytes.size(), 1 << 16));
        if (piece.isEmpty())
            break;
        bytes += piece;
    }
    NodeListRead result;
    if (bytes.size() > limit) {
        result.status = NodeListRead::TooLarge;
        return result;
    }
    if (bytes.contains('\0')) {
        result.status = NodeListRead::NotText;
        return result;
    }
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    if (utf8.hasError()) {
        result.status = NodeListRead::NotText;
        return result;
    }
    result.nodes = parseNodeList(text);
    return result;
}

} // namespace kesu::toolvok
