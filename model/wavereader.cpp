// The waveform file reader. It never reports an error: a statement it cannot
// make sense of is skipped and a number it cannot convert counts as 0.
#include "waveformdata.h"

#include <QByteArrayView>
#include <QHash>
#include <QIODevice>
#include <QRegularExpression>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::toolvok {

namespace {

// How deep groups may nest, and how many segments repeat counts may lay down
// in one load. Real documents stay far below both; they keep a few bytes of
// hostile text from exhausting the stack or the memory.
constexpr int MaxGroupDepth = 64;
constexpr qint64 RepeatBudget = qint64(1) << 25;
// The widest bus a declaration may expand into element names.
constexpr qint64 MaxBusWidth = 65536;

// The reader works on the file's UTF-8 bytes: every character that carries
// meaning in the format is ASCII, and UTF-8 never uses ASCII bytes inside a
// longer character, so structure can be found byte by byte. Only trimming has
// to know about characters beyond ASCII, since Qt counts Unicode spaces (the
// no-break space, say) as white space too.
using Bytes = std::string_view;

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

inline bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

// QChar::isSpace below 0x80.
inline bool isAsciiSpace(unsigned char c)
{
    return c == ' ' || (c >= 0x09 && c <= 0x0d);
}

// The character at the front (back) of valid UTF-8 text and its length in
// bytes; the text is never empty here.
char32_t firstChar(Bytes s, size_t& length)
{
    const auto lead = static_cast<unsigned char>(s.front());
    length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 1;
    length = std::min(length, s.size());
    char32_t c = length == 1 ? lead : lead & (0x7f >> length);
    for (size_t k = 1; k < length; ++k)
        c = (c << 6) | (static_cast<unsigned char>(s[k]) & 0x3f);
    return c;
}

char32_t lastChar(Bytes s, size_t& length)
{
    length = 1;
    while (length < 4 && length < s.size() && (static_cast<unsigned char>(s[s.size() - length]) & 0xc0) == 0x80)
        ++length;
    size_t decoded = 0;
    const char32_t c = firstChar(s.substr(s.size() - length), decoded);
    return decoded == length ? c : U'\xfffd';
}

// QStringView::trimmed on the UTF-8 form of the same text.
Bytes trimmed(Bytes s)
{
    while (!s.empty()) {
        const auto c = static_cast<unsigned char>(s.front());
        size_t length = 1;
        if (c < 0x80 ? !isAsciiSpace(c) : !QChar::isSpace(firstChar(s, length)))
            break;
        s.remove_prefix(length);
    }
    while (!s.empty()) {
        const auto c = static_cast<unsigned char>(s.back());
        size_t length = 1;
        if (c < 0x80 ? !isAsciiSpace(c) : !QChar::isSpace(lastChar(s, length)))
            break;
        s.remove_suffix(length);
    }
    return s;
}

inline bool startsWith(Bytes s, char c)
{
    return !s.empty() && s.front() == c;
}

inline bool startsWith(Bytes s, Bytes prefix)
{
    return s.substr(0, prefix.size()) == prefix;
}

inline bool contains(Bytes s, char c)
{
    return s.find(c) != Bytes::npos;
}

QString toQString(Bytes s)
{
    const QByteArrayView bytes(s.data(), static_cast<qsizetype>(s.size()));
    if (!startsWith(s, Bytes("\xEF\xBB\xBF")))
        return QString::fromUtf8(bytes);
    // QString::fromUtf8 would drop a byte order mark in front; inside a
    // statement it is an ordinary character.
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decode(bytes);
}

// Hands out a segment list's tokens one at a time, so that no list of all of
// them is ever built. With no "(" in the text it cuts at every blank; with one,
// groups stay whole: only a blank or "(" outside every group cuts, and not one
// directly followed by "#", so that "(...) #3" keeps its suffix.
class Tokenizer
{
public:
    explicit Tokenizer(Bytes text) : text_(text), grouped_(contains(text, '(')) {}

    bool next(Bytes& token)
    {
        return grouped_ ? nextGrouped(token) : nextPlain(token);
    }

private:
    bool nextPlain(Bytes& token)
    {
        const size_t n = text_.size();
        while (pos_ < n) {
            size_t end = pos_;
            while (end < n && !isBlank(text_[end]))
                ++end;
            Bytes piece = text_.substr(pos_, end - pos_);
            pos_ = end + 1;
            // Digits and letters on both ends, the usual case, need no trimming.
            if (!piece.empty() && (static_cast<unsigned char>(piece.front()) <= ' '
                                   || static_cast<unsigned char>(piece.back()) <= ' '
                                   || static_cast<unsigned char>(piece.front()) >= 0x80
                                   || static_cast<unsigned char>(piece.back()) >= 0x80))
                piece = trimmed(piece);
            if (!piece.empty()) {
                token = piece;
                return true;
            }
        }
        return false;
    }

    bool nextGrouped(Bytes& token)
    {
        const size_t n = text_.size();
        while (pos_ < n) {
            const size_t i = pos_++;
            const char c = text_[i];
            const bool open = c == '(';
            const bool cut = (open || isBlank(c)) && depth_ <= 0 && !(i + 1 < n && text_[i + 1] == '#');
            if (open)
                ++depth_;
            else if (c == ')')
                --depth_;
            if (cut) {
                const Bytes piece = trimmed(text_.substr(start_, i - start_));
                start_ = open ? i : i + 1;
                if (!piece.empty()) {
                    token = piece;
                    return true;
                }
            }
        }
        if (!finished_) {
            finished_ = true;
            const Bytes piece = trimmed(text_.substr(start_));
            if (!piece.empty()) {
                token = piece;
                return true;
            }
        }
        return false;
    }

    Bytes text_;
    bool grouped_;
    bool finished_ = false;
    size_t pos_ = 0;
    size_t start_ = 0;
    qint64 depth_ = 0;
};

std::string valueOf(Bytes token, bool bus)
{
    if (bus) {
        if (token == "DonTCare")
            return Values::DontCare;
        if (token == "HighZ")
            return Values::HighZ;
    } else {
        if (token == "2")
            return Values::DontCare;
        if (token == "3")
            return Values::HighZ;
    }
    return std::string(token);
}

qint32 durationOf(Bytes token)
{
    // Plain digits, the common case, are read directly; anything else goes
    // through Qt's conversion, which gives the same result for them.
    if (!token.empty() && token.size() <= 18) {
        quint64 value = 0;
        bool digits = true;
        for (const char c : token) {
            if (c < '0' || c > '9') {
                digits = false;
                break;
            }
            value = value * 10 + quint64(c - '0');
        }
        if (digits)
            return static_cast<qint32>(value);
    }
    // Read as 64 bits and kept in 32, as the file has always been read.
    return static_cast<qint32>(static_cast<quint64>(toQString(token).toLongLong()));
}

QStringView word(const QList<QStringView>& words, qsizetype i)
{
    return i < words.size() ? words.at(i) : QStringView();
}

QList<QStringView> splitAtEachBlank(QStringView text)
{
    QList<QStringView> words;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isBlank(text[i])) {
            words.append(text.mid(start, i - start));
            start = i + 1;
        }
    }
    words.append(text.mid(start));
    return words;
}

void applyAttributes(WaveData* wave, QStringView block)
{
    const QList<QStringView> words = splitAtEachBlank(block);
    const QStringView groupWord = word(words, 0);
    const QChar g = groupWord.isEmpty() ? QChar() : groupWord.front();
    wave->group = (g >= QLatin1Char('A') && g <= QLatin1Char('H')) ? g.unicode() - 'A' + 1 : 0;

    const QStringView polarityWord = word(words, 1);
    const QChar p = polarityWord.isEmpty() ? QChar() : polarityWord.front();
    if (p == QLatin1Char('I'))
        wave->polarity = 0;
    else if (p == QLatin1Char('O'))
        wave->polarity = 1;
    else if (p == QLatin1Char('B'))
        wave->polarity = 2;
    else if (p == QLatin1Char('G'))
        wave->polarity = 4;
    else
        wave->polarity = 3;

    const QStringView type = word(words, 3);
    if (type == QLatin1String("NRZ"))
        wave->waveType = 1;
    else if (type == QLatin1String("RZ"))
        wave->waveType = 2;
    else if (type == QLatin1String("R1"))
        wave->waveType = 3;
    else if (type == QLatin1String("RC"))
        wave->waveType = 4;
    else
        wave->waveType = 0;

    wave->offset = word(words, 4).toULongLong();
    wave->formatValue = word(words, 5).toULongLong();
    wave->formatRatio = word(words, 6).toShort();
    wave->spareInt = 0;
}

// Applies the bus forms of a declared name; false when the declaration asks
// for more elements than any bus may have.
bool applyBusForm(WaveData* wave)
{
    const QString& name = wave->name;
    const qsizetype open = name.indexOf(QLatin1Char('['));
    if (open < 0)
        return true;
    const qsizetype close = name.lastIndexOf(QLatin1Char(']'));
    const QStringView inner = close > open ? QStringView(name).mid(open + 1, close - open - 1)
                                           : QStringView(name).mid(open + 1);
    auto widthOf = [](qint64 a, qint64 b) { return (a > b ? a - b : b - a) + 1; };

    const qsizetype dots = inner.indexOf(QLatin1String("..."));
    if (open == 0 && dots >= 0) {
        // "[a0...a3]": the number of each end starts at its first digit; the
        // letters in front of the last number are not looked at.
        static const QRegularExpression digit(QStringLiteral("[0-9]"));
        const QStringView first = inner.left(dots);
        const QStringView last = inner.mid(dots + 3);
        const qsizetype firstDigit = first.toString().indexOf(digit);
        const qsizetype lastDigit = last.toString().indexOf(digit);
        const int a = firstDigit < 0 ? 0 : first.mid(firstDigit).toInt();
        const int b = lastDigit < 0 ? 0 : last.mid(lastDigit).toInt();
        const qint64 width = widthOf(a, b);
        if (width > MaxBusWidth)
            return false;
        wave->isBus = true;
        wave->busWidth = static_cast<qint32>(width);
        WaveformData::genExpandWave(wave, (firstDigit < 0 ? first : first.left(firstDigit)).toString(), a, b);
        return true;
    }
    const qsizetype colon = inner.indexOf(QLatin1Char(':'));
    if (colon >= 0) {
        const int a = inner.left(colon).toInt();
        const int b = inner.mid(colon + 1).toInt();
        if (a == b)
            return true;   // "d[2:2]" is a single signal
        const qint64 width = widthOf(a, b);
        if (width > MaxBusWidth)
            return false;
        wave->isBus = true;
        wave->busWidth = static_cast<qint32>(width);
        WaveformData::genExpandWave(wave, name.left(open), a, b);
        return true;
    }
    if (inner.contains(QLatin1Char(','))) {
        const QStringList elements = inner.toString().split(QLatin1Char(','));
        wave->isBus = true;
        wave->elements = elements;
        wave->busWidth = static_cast<qint32>(elements.size());
    }
    return true;
}

struct GroupSuffix {
    qint64 multiplier = 1;
    qint64 repeats = 1;
    bool forever = false;
};

GroupSuffix readSuffix(Bytes suffix)
{
    GroupSuffix s;
    const size_t star = suffix.find('*');
    const size_t hash = suffix.find('#');
    if (star != Bytes::npos && (hash == Bytes::npos || star < hash)) {
        const size_t end = hash == Bytes::npos ? suffix.size() : hash;
        s.multiplier = toQString(trimmed(suffix.substr(star + 1, end - star - 1))).toInt();
    }
    if (hash != Bytes::npos) {
        const Bytes n = trimmed(suffix.substr(hash + 1));
        if (n == "#") {
            s.forever = true;
        } else {
            // No default: "#" alone or "#0" lays nothing down.
            s.repeats = qMax<qint64>(0, toQString(n).toLongLong());
        }
    }
    return s;
}

} // namespace

// ---------------------------------------------------------------------------

// Gathers lines into statements and hands each finished one to the document.
class StatementReader
{
public:
    explicit StatementReader(WaveformData& doc) : doc_(doc) {}

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
            doc_.compileStatement(text);
            return;
        }
        statement_.append(text);
        if (statement_.back() == ';') {
            doc_.compileStatement(statement_);
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

    WaveformData& doc_;
    std::string statement_;
    bool stopped_ = false;
};

void WaveformData::beginLoad()
{
    repeatBudget_ = RepeatBudget;
    placeholders_.clear();
}

void WaveformData::loadData(QIODevice& file)
{
    beginLoad();
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
        std::memmove(buffer.data(), buffer.data() + used, held - used);
        held -= used;
    }
    resolvePatternReferences();
}

void WaveformData::loadText(const QString& text)
{
    beginLoad();
    const QByteArray bytes = text.toUtf8();
    StatementReader reader(*this);
    reader.feed(bytes.constData(), size_t(bytes.size()), true);
    resolvePatternReferences();
}

void WaveformData::CompilerLine(const QString& statement)
{
    const QByteArray bytes = statement.toUtf8();
    compileStatement(Bytes(bytes.constData(), size_t(bytes.size())));
}

void WaveformData::compileStatement(Bytes statement)
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
            masterClockMult = number.toInt();
        else if (startsWith(left, "%SMALLESTUNIT"))
            smallestUnit = number.toInt();
        else if (startsWith(left, "%AUTOASSIGN"))
            autoAssign = number.toInt();
        else if (startsWith(left, "%DECIMALS"))
            decimals = number.toInt();
        else if (startsWith(left, "%ENDTIME"))
            endTime = number.toULongLong();
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
    addWave(wave);
}

QStringList WaveformData::parseValues(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    Tokenizer tokens(Bytes(bytes.constData(), size_t(bytes.size())));
    QStringList list;
    Bytes token;
    while (tokens.next(token))
        list.append(toQString(token));
    return list;
}

void WaveformData::processSubPattern(const QString& body, QList<Pattern*>& out, WaveData* wave)
{
    const QByteArray bytes = body.toUtf8();
    readSegments(Bytes(bytes.constData(), size_t(bytes.size())), &out, wave);
}

Pattern* WaveformData::newPlaceholder(WaveData* wave, const QString& reference)
{
    // A one-unit "0" stands for the named pattern until the end of the file.
    auto* p = new Pattern("0", 1);
    wave->patternNames.insert(p, reference);
    placeholders_.append({wave, p});
    return p;
}

void WaveformData::lay(Pattern* p, bool placeholder, WaveData* wave, QList<Pattern*>* out)
{
    // At the top the segments go straight into the wave, merging as they come;
    // inside a group they are collected for the caller to lay down.
    if (out)
        out->append(p);
    else if (!wave->addData(p) && !placeholder)
        delete p;
}

void WaveformData::readSegments(Bytes text, QList<Pattern*>* out, WaveData* wave)
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

void WaveformData::readGroup(Bytes token, WaveData* wave, QList<Pattern*>* out)
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

void WaveformData::resolvePatternReferences()
{
    QHash<QString, WaveData*> byName;
    for (WaveData* wave : std::as_const(waves)) {
        if (!byName.contains(wave->name))
            byName.insert(wave->name, wave);
    }
    QHash<WaveData*, QList<Pattern*>> perWave;
    for (const auto& [wave, placeholder] : std::as_const(placeholders_))
        perWave[wave].append(placeholder);
    placeholders_.clear();

    for (WaveData* wave : std::as_const(waves)) {
        const auto found = perWave.constFind(wave);
        if (found == perWave.cend())
            continue;
        QHash<Pattern*, const WaveData*> listed;
        QList<Pattern*> detached;
        for (Pattern* placeholder : *found) {
            const WaveData* source = byName.value(wave->patternNames.value(placeholder), nullptr);
            if (placeholder->wave)
                listed.insert(placeholder, source);
            else
                detached.append(placeholder);
        }
        expandListedReferences(wave, listed);
        // A placeholder that merged into the segment before it is no longer in
        // the wave: it takes the pattern's first segment and the rest lands,
        // reversed, at the end of the wave.
        for (Pattern* placeholder : std::as_const(detached)) {
            if (const WaveData* source = byName.value(wave->patternNames.value(placeholder), nullptr))
                wave->insertPattern(placeholder, source);
            delete placeholder;
        }
        // The placeholders are resolved; keep no pointers that may dangle later.
        wave->patternNames.clear();
    }
}

void WaveformData::expandListedReferences(WaveData* wave, const QHash<Pattern*, const WaveData*>& listed)
{
    if (listed.isEmpty())
        return;
    // One pass over the wave does what expanding each placeholder in turn with
    // insertPattern (or dropping it with removeData) would, without walking
    // the list once per reference.
    using Segments = std::vector<std::pair<std::string, qint32>>;
    QHash<const WaveData*, Segments> snapshots;
    for (const WaveData* source : listed) {
        if (source && !snapshots.contains(source)) {
            Segments copy;
            copy.reserve(static_cast<size_t>(source->patterns.size()));
            for (const Pattern* s : source->patterns)
                copy.emplace_back(s->value, s->duration);
            snapshots.insert(source, std::move(copy));
        }
    }
    QList<Pattern*> rebuilt;
    rebuilt.reserve(wave->patterns.size());
    QList<Pattern*> dropped;
    const qsizetype oldForever = wave->foreverIndex;
    qsizetype newForever = oldForever;
    bool foreverDropped = false;
    for (qsizetype i = 0; i < wave->patterns.size(); ++i) {
        Pattern* segment = wave->patterns.at(i);
        const auto found = listed.constFind(segment);
        if (found == listed.cend()) {
            rebuilt.append(segment);
        } else if (!found.value()) {
            dropped.append(segment);
            if (i == oldForever) {
                newForever = rebuilt.size();
                foreverDropped = true;
            }
            continue;
        } else {
            const Segments& source = snapshots[found.value()];
            for (size_t k = source.size(); k-- > 1;) {
                auto* q = new Pattern(source[k].first, source[k].second);
                q->wave = wave;
                rebuilt.append(q);
            }
            if (!source.empty()) {
                segment->value = source.front().first;
                segment->duration = source.front().second;
            }
            rebuilt.append(segment);
        }
        if (i == oldForever)
            newForever = rebuilt.size() - 1;
    }
    // A dropped forever segment hands the tail to the segment after it, or
    // ends the tail when it was the last.
    if (foreverDropped && newForever >= rebuilt.size())
        newForever = -1;
    wave->patterns.swap(rebuilt);
    wave->foreverIndex = static_cast<qint32>(newForever);
    qDeleteAll(dropped);
}
} // namespace kesu::toolvok
