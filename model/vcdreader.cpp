#include "vcdreader.h"

#include <QIODevice>
#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace kesu::toolvok {

namespace {

constexpr size_t Piece = 1 << 20;
constexpr int FirstCodeChar = 33;   // identifier codes are printable ASCII, '!' to '~'
constexpr int CodeChars = 94;

// Bits as VCD writes them, with the other states of VHDL's std_logic.
constexpr const char* BitChars = "01xXzZuUwWlLhH-";

bool isBit(char c)
{
    return c != 0 && std::strchr(BitChars, c) != nullptr;
}

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

QString quoted(std::string_view text)
{
    return QLatin1Char('"') + QString::fromUtf8(text.data(), qsizetype(text.size())) + QLatin1Char('"');
}

} // namespace

bool VcdVariable::holdsBits() const
{
    return type != "real" && type != "realtime" && type != "string" && type != "event";
}

VcdReader::VcdReader(QIODevice& device)
    : device_(device), buffer_(new char[Piece]), capacity_(Piece), shortCodes_(CodeChars * (CodeChars + 1), -1)
{
}

VcdReader::~VcdReader() = default;

VcdReader::Item VcdReader::fail(const QString& problem)
{
    error_ = QStringLiteral("line %1: %2").arg(wordLine_).arg(problem);
    return Failed;
}

// Moves what is left to the front and reads on behind it; false at the end.
bool VcdReader::refill()
{
    if (atEnd_)
        return false;
    const size_t left = end_ - begin_;
    if (left == capacity_) {
        // One word fills the buffer: make room rather than cut it.
        std::unique_ptr<char[]> larger(new char[capacity_ * 2]);
        std::memcpy(larger.get(), buffer_.get() + begin_, left);
        buffer_ = std::move(larger);
        capacity_ *= 2;
    } else if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, left);
    }
    begin_ = 0;
    end_ = left;
    const qint64 got = device_.read(buffer_.get() + end_, qint64(capacity_ - end_));
    if (got <= 0) {
        atEnd_ = true;
        return false;
    }
    end_ += size_t(got);
    return true;
}

bool VcdReader::word(std::string_view& out)
{
    for (;;) {
        const char* p = buffer_.get();
        while (begin_ < end_ && isSpace(p[begin_])) {
            line_ += p[begin_] == '\n';
            ++begin_;
        }
        if (begin_ < end_)
            break;
        if (!refill()) {
            wordLine_ = line_;
            return false;
        }
    }
    size_t stop = begin_;
    for (;;) {
        const char* p = buffer_.get();
        while (stop < end_ && !isSpace(p[stop]))
            ++stop;
        if (stop < end_ || atEnd_)
            break;
        const size_t length = stop - begin_;
        if (!refill())
            break;
        stop = begin_ + length;
    }
    out = std::string_view(buffer_.get() + begin_, stop - begin_);
    begin_ = stop;
    wordLine_ = line_;
    return true;
}

bool VcdReader::skipSection(const char* what)
{
    const qint64 start = wordLine_;
    std::string_view w;
    while (word(w)) {
        if (w == "$end")
            return true;
    }
    wordLine_ = start;
    fail(QStringLiteral("%1 has no $end").arg(QLatin1String(what)));
    return false;
}

bool VcdReader::readTimescale()
{
    std::string text;
    std::string_view w;
    while (word(w) && w != "$end")
        text.append(w);
    if (w != "$end") {
        fail(QStringLiteral("$timescale has no $end"));
        return false;
    }
    const size_t digits = text.find_first_not_of("0123456789");
    const std::string number = text.substr(0, digits);
    const std::string unit = digits == std::string::npos ? std::string() : text.substr(digits);
    magnitude_ = number == "1" ? 1 : number == "10" ? 10 : number == "100" ? 100 : 0;
    exponent_ = -1;
    for (int i = 0; i < int(std::size(VcdUnits)); ++i) {
        if (unit == VcdUnits[i])
            exponent_ = 3 * i;
    }
    if (magnitude_ == 0 || exponent_ < 0) {
        fail(QStringLiteral("the timescale %1 is not 1, 10 or 100 of s, ms, us, ns, ps or fs").arg(quoted(text)));
        return false;
    }
    return true;
}

int VcdReader::codeOf(std::string_view text, bool declare)
{
    int* slot = nullptr;
    if (text.size() <= 2) {
        const int a = static_cast<unsigned char>(text[0]) - FirstCodeChar;
        const int b = text.size() == 2 ? static_cast<unsigned char>(text[1]) - FirstCodeChar + 1 : 0;
        if (a >= 0 && a < CodeChars && b >= 0 && b <= CodeChars)
            slot = &shortCodes_[size_t(a * (CodeChars + 1) + b)];
    }
    if (!slot) {
        const auto found = longCodes_.find(std::string(text));
        if (found != longCodes_.end())
            return found->second;
        if (!declare)
            return -1;
        slot = &longCodes_[std::string(text)];
        *slot = -1;
    }
    if (*slot < 0 && declare)
        *slot = codeCount_++;
    return *slot;
}

bool VcdReader::readVariable()
{
    std::string_view w;
    std::vector<QByteArray> words;
    while (word(w) && w != "$end")
        words.emplace_back(w.data(), qsizetype(w.size()));
    if (w != "$end") {
        fail(QStringLiteral("$var has no $end"));
        return false;
    }
    bool numeric = false;
    VcdVariable var;
    if (words.size() >= 4) {
        var.type = words[0];
        var.width = words[1].toInt(&numeric);
    }
    if (!numeric || var.width < 1) {
        fail(QStringLiteral("$var needs a type, a width of at least 1, a code and a name"));
        return false;
    }
    var.code = codeOf(std::string_view(words[2].constData(), size_t(words[2].size())), true);
    var.scope = scopes_.empty() ? QByteArray() : scopes_.back();
    // "d [7:0]", "d[7:0]" and "\d[7:0] [7:0]" all name d with its range.
    QByteArray name = words[3];
    for (size_t i = 4; i < words.size(); ++i)
        name += words[i];
    if (name.startsWith('\\'))
        name.remove(0, 1);
    if (name.endsWith(']') && name.indexOf('[') > 0) {
        const qsizetype open = name.lastIndexOf('[');
        var.range = name.mid(open);
        name.truncate(open);
    }
    var.reference = name;
    variables_.push_back(var);
    return true;
}

bool VcdReader::readHeader()
{
    std::string_view w;
    while (word(w)) {
        if (w == "$enddefinitions")
            return skipSection("$enddefinitions");
        if (w == "$var") {
            if (!readVariable())
                return false;
        } else if (w == "$scope") {
            std::string_view kind, name;
            if (!word(kind) || !word(name) || name == "$end") {
                fail(QStringLiteral("$scope needs a kind and a name"));
                return false;
            }
            const QByteArray scope(name.data(), qsizetype(name.size()));
            scopes_.push_back(scopes_.empty() ? scope : scopes_.back() + '.' + scope);
            if (!skipSection("$scope"))
                return false;
        } else if (w == "$upscope") {
            if (!scopes_.empty())
                scopes_.pop_back();
            if (!skipSection("$upscope"))
                return false;
        } else if (w == "$timescale") {
            if (!readTimescale())
                return false;
        } else if (w.front() == '$') {
            // $date, $version, $comment and what other tools add.
            if (!skipSection(std::string(w).c_str()))
                return false;
        } else {
            fail(QStringLiteral("%1 where a declaration was expected").arg(quoted(w)));
            return false;
        }
    }
    fail(QStringLiteral("the file ends before $enddefinitions"));
    return false;
}

VcdReader::Item VcdReader::changeOf(std::string_view w)
{
    std::string_view code;
    const char first = w.front();
    if (first == 'b' || first == 'B' || first == 'r' || first == 'R' || first == 's' || first == 'S') {
        kind_ = char(first | 0x20);
        value_ = w.substr(1);
        if (kind_ == 'b' && (value_.empty() || value_.find_first_not_of(BitChars) != std::string_view::npos))
            return fail(QStringLiteral("%1 is no binary value").arg(quoted(w)));
        const qint64 valueLine = wordLine_;
        // The value's text moves when the next word refills the buffer.
        scratch_.assign(value_);
        if (!word(code) || wordLine_ != valueLine) {
            wordLine_ = valueLine;
            return fail(QStringLiteral("the value %1 names no variable").arg(quoted(kind_ + scratch_)));
        }
        value_ = scratch_;
    } else if (isBit(first)) {
        kind_ = 0;
        value_ = w.substr(0, 1);
        code = w.substr(1);
        if (code.empty())
            return fail(QStringLiteral("the value %1 names no variable").arg(quoted(w)));
    } else {
        return fail(QStringLiteral("%1 is no time stamp or value change").arg(quoted(w)));
    }
    changed_ = codeOf(code, false);
    if (changed_ < 0)
        return fail(QStringLiteral("no variable has the code %1").arg(quoted(code)));
    return Change;
}

VcdReader::Item VcdReader::next()
{
    std::string_view w;
    for (;;) {
        if (!word(w))
            return End;
        if (w.front() == '#') {
            quint64 t = 0;
            bool ok = w.size() > 1 && w.size() <= 20;
            for (size_t i = 1; ok && i < w.size(); ++i) {
                const unsigned digit = unsigned(w[i] - '0');
                ok = digit < 10 && t <= (~quint64(0) - digit) / 10;
                t = t * 10 + digit;
            }
            if (!ok)
                return fail(QStringLiteral("%1 is no time stamp").arg(quoted(w)));
            if (t < time_)
                return fail(QStringLiteral("the time goes back from %1 to %2").arg(time_).arg(t));
            time_ = t;
            return Time;
        }
        if (w.front() != '$')
            return changeOf(w);
        if (w == "$comment") {
            if (!skipSection("$comment"))
                return Failed;
        } else if (w != "$dumpvars" && w != "$dumpall" && w != "$dumpon" && w != "$dumpoff" && w != "$end") {
            return fail(QStringLiteral("%1 among the value changes").arg(quoted(w)));
        }
    }
}

// Times in femtoseconds may pass 64 bits on the way.
using Wide = unsigned __int128;

bool vcdTimeOf(const QString& text, int magnitude, int exponent, quint64& units)
{
    static const QRegularExpression time(QStringLiteral("^([0-9]{1,20})(?:\\.([0-9]{1,15}))? *(s|ms|us|ns|ps|fs)?$"));
    const QRegularExpressionMatch match = time.match(text.trimmed());
    if (!match.hasMatch())
        return false;
    // Everything in femtoseconds, where all the units are whole.
    const QString digits = match.captured(1) + match.captured(2);
    Wide number = 0;
    for (const QChar c : digits)
        number = number * 10 + Wide(c.unicode() - '0');
    int shift = -int(match.captured(2).size());
    Wide unit = 1;   // a bare number counts the dump's units
    if (match.capturedLength(3) > 0) {
        const auto named = std::find_if(std::begin(VcdUnits), std::end(VcdUnits),
                                        [&](const char* u) { return match.captured(3) == QLatin1String(u); });
        shift += 15 - 3 * int(named - std::begin(VcdUnits));
        unit = Wide(magnitude);
        for (int e = exponent; e < 15; ++e)
            unit *= 10;
    }
    for (; shift > 0; --shift)
        number *= 10;
    for (; shift < 0; ++shift) {
        if (number % 10 != 0)
            return false;
        number /= 10;
    }
    if (number % unit != 0 || number / unit > Wide(std::numeric_limits<quint64>::max() - 1))
        return false;
    units = quint64(number / unit);
    return true;
}

} // namespace kesu::toolvok
