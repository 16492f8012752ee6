// The waveform file reader. It never reports an error: a statement it cannot
// make sense of is skipped and a number it cannot convert counts as 0.
#include "wavereader.h"

#include "waveformdata.h"
#include "wdltext.h"

#include <QByteArrayView>
#include <QIODevice>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::toolvok {

using namespace wdltext;

namespace {

// How deep groups may nest, and how many segments repeat counts may lay down
// in one load. Real documents stay far below both; they keep a few bytes of
// hostile text from exhausting the stack or the memory.
constexpr int MaxGroupDepth = 64;
constexpr qint64 RepeatBudget = qint64(1) << 25;

// Gathers lines into statements and hands each finished one to the reader.
class StatementReader
{
public:
    explicit StatementReader(WaveReader& reader) : reader_(reader) {}

    // Feeds every whole line of data (those ended by "\n", or all of it when
    // last) and returns how many bytes it used; stopped() tells whether an
    // empty line ended the reading.
    size_t feed(const char* data, size_t size, bool last)
    {
        size_t pos = 0;
        while (pos < size && !stopped_) {
            const void* found = std::memchr(data + pos, '\n', size - pos);
            if (!found && !last)
                break;
            const size_t eol = found ? static_cast<size_t>(static_cast<const char*>(found) - data) : size;
            line(Bytes(data + pos, eol - pos));
            pos = found ? eol + 1 : size;
        }
        return pos;
    }

    bool stopped() const { return stopped_; }

    // Byte order marks to skip in front of the first line.
    int marksToSkip = 1;

private:
    void line(Bytes text)
    {
        if (marksToSkip > 0) {
            for (; marksToSkip > 0 && startsWith(text, Bytes("\xEF\xBB\xBF")); --marksToSkip)
                text.remove_prefix(3);
            marksToSkip = 0;
        }
        if (!text.empty() && text.back() == '\r')
            text.remove_suffix(1);
        // A line of no characters at all ends the file for the reader; the
        // writer never writes one. A line of blanks is only skipped.
        if (text.empty()) {
            stopped_ = true;
            return;
        }
        // Bytes that are not UTF-8 read as U+FFFD each, as Qt decodes them.
        // Decoding line by line gives what decoding the whole file would: a
        // broken sequence never swallows the ASCII byte after it.
        QByteArray repaired;
        if (!isAscii(text) && !QByteArrayView(text.data(), qsizetype(text.size())).isValidUtf8()) {
            QStringDecoder decode(QStringDecoder::Utf8,
                                  QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
            repaired = QString(decode(QByteArrayView(text.data(), qsizetype(text.size())))).toUtf8();
            text = Bytes(repaired.constData(), size_t(repaired.size()));
        }
        if (trimmed(text).empty())
            return;
        // Lines join without a separator: a statement's later lines begin
        // with the blank or "(" that separates segments.
        if (statement_.empty() && text.back() == ';') {
            reader_.compileStatement(text);
            return;
        }
        statement_.append(text);
        if (statement_.back() == ';') {
            reader_.compileStatement(statement_);
            statement_.clear();
        }
    }

    static bool isAscii(Bytes text)
    {
        const char* p = text.data();
        const char* const end = p + text.size();
        quint64 any = 0;
        for (; end - p >= 8; p += 8) {
            quint64 word;
            std::memcpy(&word, p, 8);
            any |= word;
        }
        for (; p < end; ++p)
            any |= static_cast<unsigned char>(*p);
        return (any & 0x8080808080808080ULL) == 0;
    }

    WaveReader& reader_;
    std::string statement_;
    bool stopped_ = false;
};

} // namespace

WaveReader::WaveReader(WaveformData& doc) : doc_(doc), repeatBudget_(RepeatBudget) {}

bool WaveReader::readDevice(QIODevice& file, const Progress& progress)
{
    bool stopped = false;
    StatementReader reader(*this);
    // Qt's decoding drops one byte order mark, and the reader another.
    reader.marksToSkip = 2;
    // The file is read in pieces through one buffer, so that the text never
    // has to be in memory at once; a line longer than the buffer grows it.
    std::vector<char> buffer(size_t(1) << 20);
    size_t held = 0;
    for (;;) {
        if (held == buffer.size())
            buffer.resize(buffer.size() * 2);
        const qint64 got = file.read(buffer.data() + held, qint64(buffer.size() - held));
        const bool last = got <= 0;
        if (!last)
            held += size_t(got);
        const size_t used = reader.feed(buffer.data(), held, last);
        if (last || reader.stopped())
            break;
        if (progress && !progress(file.pos(), file.size())) {
            stopped = true;
            break;
        }
        std::memmove(buffer.data(), buffer.data() + used, held - used);
        held -= used;
    }
    // Also when stopped: the placeholders belong to their waves only then.
    resolvePatternReferences();
    return !stopped;
}

void WaveReader::readText(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    StatementReader reader(*this);
    reader.feed(bytes.constData(), size_t(bytes.size()), true);
    resolvePatternReferences();
}

void WaveReader::compileStatement(Bytes statement)
{
    const Bytes s = trimmed(statement);
    const size_t eq = s.find('=');
    if (eq == Bytes::npos || s.find('=', eq + 1) != Bytes::npos)
        return;
    const Bytes left = trimmed(s.substr(0, eq));
    Bytes right = trimmed(s.substr(eq + 1));

    if (startsWith(left, '%')) {
        // Dropping the last character (the ";") is done on the text as Qt
        // holds it, so that a statement without one converts as it always did.
        QString number = toQString(right);
        number.chop(1);
        if (startsWith(left, "%MASTERCLOCKMULT"))
            doc_.masterClockMult = number.toInt();
        else if (startsWith(left, "%SMALLESTUNIT"))
            doc_.smallestUnit = number.toInt();
        else if (startsWith(left, "%AUTOASSIGN"))
            doc_.autoAssign = number.toInt();
        else if (startsWith(left, "%DECIMALS"))
            doc_.decimals = number.toInt();
        else if (startsWith(left, "%ENDTIME"))
            doc_.endTime = number.toULongLong();
        return;
    }

    const bool isNamedPattern = startsWith(left, '$');
    const size_t open = left.find('{');
    const bool hasOpen = open != Bytes::npos;
    const bool hasClose = contains(left, '}');
    if (isNamedPattern ? (hasOpen || hasClose) : (!hasOpen || !hasClose || left.back() != '}'))
        return;

    auto* wave = new WaveData(toQString(isNamedPattern ? left : trimmed(left.substr(0, open))));
    if (isNamedPattern) {
        wave->isPattern = true;
        wave->polarity = 5;
    } else {
        const QString block = toQString(left.substr(open + 1, left.size() - open - 2));
        applyAttributes(wave, QStringView(block).trimmed());
    }
    if (!applyBusForm(wave)) {
        delete wave;
        return;
    }

    if (!right.empty() && right.back() == ';') {
        right.remove_suffix(1);
        right = trimmed(right);
    }
    // Two blanks per segment in what the writer produces: room for the
    // segments without growing the list again and again.
    const auto blanks = std::count(right.begin(), right.end(), ' ');
    wave->patterns.reserve(wave->patterns.size() + qsizetype(blanks / 2) + 1);
    readSegments(right, nullptr, wave);
    doc_.addWave(wave);
}

QStringList WaveReader::tokens(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    Tokenizer tokens(Bytes(bytes.constData(), size_t(bytes.size())));
    QStringList list;
    Bytes token;
    while (tokens.next(token))
        list.append(toQString(token));
    return list;
}

void WaveReader::readGroupBody(const QString& body, QList<Pattern*>& out, WaveData* wave)
{
    const QByteArray bytes = body.toUtf8();
    readSegments(Bytes(bytes.constData(), size_t(bytes.size())), &out, wave);
}

Pattern* WaveReader::newPlaceholder(WaveData* wave, const QString& reference)
{
    // A one-unit "0" stands for the named pattern until the end of the file.
    auto* p = new Pattern("0", 1);
    wave->patternNames.insert(p, reference);
    placeholders_.append({wave, p});
    return p;
}

void WaveReader::lay(Pattern* p, bool placeholder, WaveData* wave, QList<Pattern*>* out)
{
    // At the top the segments go straight into the wave, merging as they come;
    // inside a group they are collected for the caller to lay down.
    if (out)
        out->append(p);
    else if (!wave->addData(p) && !placeholder)
        delete p;
}

void WaveReader::readSegments(Bytes text, QList<Pattern*>* out, WaveData* wave)
{
    Tokenizer tokens(text);
    Bytes token;
    while (tokens.next(token)) {
        if (token.front() == '$') {
            lay(newPlaceholder(wave, toQString(token)), true, wave, out);
        } else if (token.front() == '(') {
            readGroup(token, wave, out);
        } else {
            // A value without a duration after it is dropped.
            Bytes duration;
            if (!tokens.next(duration))
                break;
            lay(new Pattern(valueOf(token, wave->isBus), durationOf(duration)), false, wave, out);
        }
    }
}

void WaveReader::readGroup(Bytes token, WaveData* wave, QList<Pattern*>* out)
{
    const size_t close = token.rfind(')');
    const bool closed = close != Bytes::npos && close > 0;
    const Bytes body = closed ? token.substr(1, close - 1) : token.substr(1);
    const GroupSuffix suffix = readSuffix(closed ? token.substr(close + 1) : Bytes());
    if (groupDepth_ >= MaxGroupDepth)
        return;

    QList<Pattern*> group;
    ++groupDepth_;
    readSegments(body, &group, wave);
    --groupDepth_;

    const bool topLevel = !out;
    qint64 repeats = suffix.repeats;
    if (repeats > 1) {
        if (repeats > repeatBudget_ || repeats * group.size() > repeatBudget_)
            repeats = 0;
        else
            repeatBudget_ -= repeats * group.size();
    }
    for (qint64 r = 0; r < repeats; ++r) {
        for (qsizetype k = 0; k < group.size(); ++k) {
            const Pattern* segment = group.at(k);
            const auto name = wave->patternNames.constFind(const_cast<Pattern*>(segment));
            const bool placeholder = name != wave->patternNames.cend();
            Pattern* copy = placeholder ? newPlaceholder(wave, *name) : new Pattern;
            copy->value = segment->value;
            copy->duration = static_cast<qint32>(static_cast<quint64>(segment->duration * suffix.multiplier));
            // "##" marks the start of the forever tail only at the top level.
            copy->forever = topLevel && suffix.forever && r == 0 && k == 0;
            lay(copy, placeholder, wave, out);
        }
    }
    for (Pattern* segment : std::as_const(group)) {
        if (wave->patternNames.remove(segment) > 0)
            placeholders_.removeOne({wave, segment});
        delete segment;
    }
}

} // namespace kesu::toolvok
