#include "wavewriter.h"

#include "waveformdata.h"

#include <QIODevice>
#include <QString>

#include <charconv>

namespace kesu::toolvok {

namespace {

class Sink
{
public:
    explicit Sink(QIODevice* device) : device_(device) { buffer_.reserve(FlushAt + 4096); }

    template<typename Int>
    void number(Int value)
    {
        char digits[24];
        const auto result = std::to_chars(digits, digits + sizeof digits, value);
        buffer_.append(digits, result.ptr - digits);
    }
    void text(const char* s) { buffer_.append(s); }
    void text(const char* s, qsizetype n) { buffer_.append(s, n); }
    void text(const QByteArray& s) { buffer_.append(s); }
    void put(char c) { buffer_.append(c); }

    // Hands a full buffer to the device; without one the text stays in memory.
    void maybeFlush()
    {
        if (device_ && buffer_.size() >= FlushAt)
            flush();
    }
    bool flush()
    {
        if (device_ && !buffer_.isEmpty()) {
            ok_ = ok_ && device_->write(buffer_) == buffer_.size();
            buffer_.resize(0);
        }
        return ok_;
    }
    QByteArray take() { return std::move(buffer_); }

private:
    static constexpr qsizetype FlushAt = 1 << 20;
    QIODevice* device_;
    QByteArray buffer_;
    bool ok_ = true;
};

void writeAttributes(Sink& out, const WaveData& wave)
{
    out.text(" { ");
    // Group 0 is written "A", like group 1; any other group is the character
    // at its code, even where the reader would not take it back.
    const qint64 code = qint64(wave.group) + 64;
    if (wave.group == 0)
        out.put('A');
    else if (code >= 0 && code < 0x80)
        out.put(static_cast<char>(code));
    else if (code < 0x110000 && !QChar::isSurrogate(static_cast<char32_t>(code)))
        out.text(QStringView(QChar::fromUcs4(static_cast<char32_t>(code))).toUtf8());
    else
        out.put('?');
    out.put(' ');
    static const char* const polarities[] = {"I ", "O ", "B ", "T ", "G "};
    if (wave.polarity >= 0 && wave.polarity <= 4)
        out.text(polarities[wave.polarity]);
    out.text("Default ");
    static const char* const types[] = {"None ", "NRZ ", "RZ ", "R1 ", "RC "};
    out.text(wave.waveType >= 1 && wave.waveType <= 4 ? types[wave.waveType] : types[0]);
    out.number(wave.offset);
    out.put(' ');
    out.number(wave.formatValue);
    out.put(' ');
    out.number(static_cast<int>(wave.formatRatio));
    out.text(" }");
}

void writeValue(Sink& out, const std::string& value, bool bus)
{
    if (Values::isDontCare(value))
        out.text(bus ? "DonTCare" : "2");
    else if (Values::isHighZ(value))
        out.text(bus ? "HighZ" : "3");
    else
        out.text(value.data(), static_cast<qsizetype>(value.size()));
}

void writeDocument(Sink& out, const WaveformData& doc)
{
    out.text("%MASTERCLOCKMULT = ");
    out.number(doc.masterClockMult);
    out.text(";\n%SMALLESTUNIT = ");
    out.number(doc.smallestUnit);
    out.text(";\n%AUTOASSIGN = ");
    out.number(doc.autoAssign);
    out.text(";\n%DECIMALS = ");
    out.number(doc.decimals);
    out.text(";\n%ENDTIME = ");
    out.number(doc.endTime);
    out.text(";\n");

    for (const WaveData* wave : doc.waves) {
        out.text(wave->name.toUtf8());
        if (!wave->isPattern)
            writeAttributes(out, *wave);
        out.text(" =");
        const qsizetype count = wave->patterns.size();
        for (qsizetype i = 0; i < count; ++i) {
            const Pattern* p = wave->patterns.at(i);
            // The forever tail opens with "(" in place of the separating blank.
            out.put(p->forever ? '(' : ' ');
            writeValue(out, p->value, wave->isBus);
            out.put(' ');
            out.number(p->duration);
            // Eleven segments on the first line and ten on each later one: a
            // line never comes out empty, and the next one starts with a
            // separator so the reader's joining of lines stays exact.
            if (i != 0 && i % 10 == 0) {
                out.put('\n');
                out.maybeFlush();
            }
        }
        if (wave->foreverIndex != -1)
            out.text(")##");
        out.text(";\n");
        out.maybeFlush();
    }
}

} // namespace

QByteArray formatWaveform(const WaveformData& document)
{
    Sink out(nullptr);
    writeDocument(out, document);
    return out.take();
}

bool writeWaveform(const WaveformData& document, QIODevice& device)
{
    Sink out(&device);
    writeDocument(out, document);
    return out.flush();
}

} // namespace kesu::toolvok
