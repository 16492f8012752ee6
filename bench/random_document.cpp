// Random documents with a hand-written-looking file for each. The document is
// built segment by segment next to its text, and every choice keeps the two
// in step: no neighbours that the reader would melt together, a reference
// only where its placeholder stays in the list (the pattern lands reversed),
// a repeated group only when its copies do not melt at the seams.
#include "random_document.h"

#include "wdltext.h"

#include <QRandomGenerator>

#include <array>

namespace kesu::toolvok {

namespace {

using Seed = std::array<quint32, 2>;
const char* const PolarityWords[] = {"I", "O", "B", "T", "G"};
const char* const TypeWords[] = {"None", "NRZ", "RZ", "R1", "RC"};

class Builder
{
public:
    explicit Builder(quint64 seed) : rng_(Seed{quint32(seed), quint32(seed >> 32)}.data(), 2) {}

    RandomDocument build()
    {
        out_.document = std::make_unique<WaveformData>();
        header();
        for (int count = below(7), i = 0; i < count; ++i)
            wave(below(100));
        return std::move(out_);
    }

private:
    int below(int n) { return int(rng_.bounded(quint32(n))); }
    bool chance(int percent) { return below(100) < percent; }

    void header()
    {
        WaveformData& doc = *out_.document;
        doc.masterClockMult = 1 + below(1000);
        doc.smallestUnit = 3 * (1 + below(4));
        doc.autoAssign = below(2);
        doc.decimals = below(7);
        doc.endTime = chance(10) ? ~quint64(0) : rng_.generate64() >> below(64);
        QList<QByteArray> lines{"%MASTERCLOCKMULT = " + QByteArray::number(doc.masterClockMult),
                                "%SMALLESTUNIT = " + QByteArray::number(doc.smallestUnit),
                                "%AUTOASSIGN = " + QByteArray::number(doc.autoAssign),
                                "%DECIMALS = " + QByteArray::number(doc.decimals),
                                "%ENDTIME = " + QByteArray::number(doc.endTime)};
        std::shuffle(lines.begin(), lines.end(), rng_);
        out_.text += lines.join(";\n") + ";\n";
    }

    QString letters(int n) const
    {
        QString s;
        do {
            s += QChar(u'a' + n % 26);
            n /= 26;
        } while (n > 0);
        return s;
    }

    QString declaredName(int kind, int serial)
    {
        if (kind < 25)
            return QStringLiteral("$pat%1").arg(serial);
        if (kind < 65)
            return QStringLiteral("sig%1").arg(serial);
        // Mostly narrow: wide buses cost their element names on every read.
        const int width = chance(5) ? 1 : chance(15) ? 2 + below(255) : 2 + below(15);
        const int form = below(3);
        if (form == 0) {
            const int low = below(8);
            return chance(50) ? QStringLiteral("bus%1[%2:%3]").arg(serial).arg(low + width - 1).arg(low)
                              : QStringLiteral("bus%1[%2:%3]").arg(serial).arg(low).arg(low + width - 1);
        }
        if (form == 1) {
            QStringList elements;
            for (int k = 0; k < std::min(width, 12); ++k)
                elements << QStringLiteral("e%1_%2").arg(serial).arg(k);
            return QStringLiteral("lst%1[%2]").arg(serial).arg(elements.join(QLatin1Char(',')));
        }
        const QString base = QStringLiteral("r") + letters(serial);
        return QStringLiteral("[%1%2...%1%3]").arg(base).arg(width - 1).arg(0);
    }

    void wave(int kind)
    {
        const int serial = serial_++;
        auto* wave = new WaveData(declaredName(kind, serial));
        qint64 width = 1;
        wdltext::applyBusForm(wave, wdltext::MaxBusWidth, width);
        QByteArray line = wave->name.toUtf8();
        if (kind < 25) {
            wave->isPattern = true;
            wave->polarity = 5;
            line += " =";
        } else {
            wave->group = 1 + below(8);
            wave->polarity = below(5);
            wave->waveType = below(5);
            wave->offset = rng_.generate64() >> below(64);
            wave->formatValue = rng_.generate64() >> below(64);
            wave->formatRatio = qint16(rng_.generate());
            line += QStringLiteral(" { %1 %2 Default %3 %4 %5 %6 } =")
                        .arg(QChar(u'A' + wave->group - 1))
                        .arg(PolarityWords[wave->polarity], TypeWords[wave->waveType])
                        .arg(wave->offset)
                        .arg(wave->formatValue)
                        .arg(wave->formatRatio)
                        .toUtf8();
        }
        wave_ = wave;
        width_ = width;
        prev_.clear();
        afterReference_ = false;
        for (int target = below(100) < 10 ? below(60) : below(16); wave->patterns.size() < target;) {
            if (chance(10))
                line += '\n';
            line += chunk(!wave->isBus && !wave->isPattern);
        }
        if (!wave->isPattern && chance(20)) {
            // The forever tail, as the writer brackets it.
            wave->foreverIndex = qint32(wave->patterns.size());
            line += '(';
            for (int k = 1 + below(4); k > 0; --k)
                line += plain(1);
            wave->patterns.at(wave->foreverIndex)->forever = true;
            line += ")##";
        }
        out_.text += line + ";\n";
        out_.document->addWave(wave);
        if (wave->isPattern && !wave->patterns.isEmpty())
            patterns_.push_back(wave);
    }

    QByteArray chunk(bool referencesFit)
    {
        const int pick = below(100);
        if (pick < 10 && referencesFit && !patterns_.empty())
            return reference(patterns_[size_t(below(int(patterns_.size())))]);
        if (pick < 25)
            return repeated();
        if (pick < 32)
            return " (" + plain(1 + below(3)) + ")";
        return plain(1);
    }

    // Reads back reversed, in place of a one-unit "0" that must neither melt
    // into the segment before it nor take in the one after it.
    QByteArray reference(const WaveData* pattern)
    {
        // Right after another reference, the placeholder before is a "0" too.
        const std::string& first = pattern->patterns.last()->value;
        if (afterReference_ || prev_ == "0" || first == prev_)
            return plain(1);
        for (qsizetype k = pattern->patterns.size(); k-- > 0;)
            append(pattern->patterns.at(k)->value, pattern->patterns.at(k)->duration);
        afterReference_ = true;
        return " " + pattern->name.toUtf8();
    }

    QByteArray repeated()
    {
        const int times = 2 + below(3);
        const int factor = chance(40) ? 2 + below(4) : 1;
        std::vector<std::pair<std::string, qint32>> body;
        std::string last = prev_;
        for (int k = 2 + below(2); k > 0; --k) {
            body.emplace_back(value(last, afterReference_ && body.empty()), qint32(chance(10) ? -1 - below(99) : 1 + below(500)));
            last = body.back().first;
        }
        if (melts(body.back().first, body.front().first))
            return plain(1);
        QByteArray text = " (";
        for (const auto& [v, d] : body)
            text += token(v) + " " + QByteArray::number(d) + " ";
        text.chop(1);
        text += ")" + (factor > 1 ? "*" + QByteArray::number(factor) : QByteArray()) + "#" + QByteArray::number(times);
        for (int r = 0; r < times; ++r) {
            for (const auto& [v, d] : body)
                append(v, d * factor);
        }
        afterReference_ = false;
        return text;
    }

    QByteArray plain(int count)
    {
        QByteArray text;
        for (int k = 0; k < count; ++k) {
            const std::string v = value(prev_, afterReference_);
            const int kind = below(100);
            const qint32 d = kind < 85 ? 1 + below(1000) : kind < 95 ? qint32(1 + rng_.bounded(INT32_MAX)) : -1 - below(1000);
            text += " " + token(v) + " " + QByteArray::number(d);
            append(v, d);
            afterReference_ = false;
        }
        return text;
    }

    bool melts(const std::string& a, const std::string& b) const
    {
        return a == b && (!wave_->isBus || Values::isSpecial(a));
    }

    std::string value(const std::string& before, bool afterPlaceholder)
    {
        for (;;) {
            std::string v;
            const int pick = below(100);
            if (pick < 8)
                v = Values::DontCare;
            else if (pick < 14)
                v = Values::HighZ;
            else if (!wave_->isBus)
                v = pick % 2 ? "1" : "0";
            else
                v = QByteArray::number(rng_.generate64() >> below(64), 16).left(1 + below(int(width_ + 3) / 4)).toStdString();
            if (chance(20) && wave_->isBus)
                v = QByteArray::fromStdString(v).toUpper().toStdString();
            if (!melts(before, v) && !(afterPlaceholder && v == "0"))
                return v;
        }
    }

    QByteArray token(const std::string& v) const
    {
        if (Values::isDontCare(v))
            return wave_->isBus ? "DonTCare" : "2";
        if (Values::isHighZ(v))
            return wave_->isBus ? "HighZ" : "3";
        return QByteArray::fromStdString(v);
    }

    void append(const std::string& v, qint32 d)
    {
        wave_->insertData(new Pattern(v, d), nullptr);
        prev_ = v;
    }

    QRandomGenerator rng_;
    RandomDocument out_;
    std::vector<const WaveData*> patterns_;
    WaveData* wave_ = nullptr;
    qint64 width_ = 1;
    std::string prev_;
    bool afterReference_ = false;
    int serial_ = 0;
};

} // namespace

RandomDocument makeRandomDocument(quint64 seed)
{
    return Builder(seed).build();
}

} // namespace kesu::toolvok
