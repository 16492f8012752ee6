#pragma once

#include "waveformdata.h"

#include <QStringList>

#include <memory>

namespace modeltest {

using namespace kesu::toolvok;

// The attribute block of a plain input wave, up to its "=".
inline const QString Attr = QStringLiteral(" { A I Default NRZ 0 1 50 } = ");

// "value:duration" per segment, blank-separated; "(" in front of a forever mark.
inline QString segments(const WaveData* wave)
{
    QStringList out;
    for (const Pattern* p : wave->patterns)
        out << QString(p->forever ? "(%1:%2" : "%1:%2").arg(QString::fromStdString(p->value)).arg(p->duration);
    return out.join(' ');
}

// A wave from segments() text, unmerged so that equal neighbours can be made; "(" sets foreverIndex.
inline std::unique_ptr<WaveData> makeWave(const QString& name, const QString& text, quint64 offset = 0,
                                          bool bus = false)
{
    auto wave = std::make_unique<WaveData>(name);
    wave->offset = offset;
    wave->isBus = bus;
    for (QString item : text.split(' ', Qt::SkipEmptyParts)) {
        const bool forever = item.startsWith('(');
        const QStringList parts = item.mid(forever ? 1 : 0).split(':');
        auto* p = new Pattern(parts[0].toStdString(), parts[1].toInt());
        p->forever = forever;
        wave->insertData(p, nullptr);
        if (forever)
            wave->foreverIndex = qint32(wave->patterns.size() - 1);
    }
    return wave;
}

inline std::unique_ptr<WaveformData> load(const QString& text)
{
    auto doc = std::make_unique<WaveformData>();
    doc->loadText(text);
    return doc;
}

} // namespace modeltest
