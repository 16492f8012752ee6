// The byte-level pieces of the waveform file reader: trimming, tokens,
// values and durations, attribute blocks, bus forms and group suffixes. The
// ones run for every segment are inline so that the reader keeps its speed.
#pragma once

#include "pattern.h"

#include <QString>

#include <string>
#include <string_view>

namespace kesu::toolvok {

class WaveData;

namespace wdltext {

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
char32_t firstChar(Bytes s, size_t& length);
char32_t lastChar(Bytes s, size_t& length);

// QStringView::trimmed on the UTF-8 form of the same text.
inline Bytes trimmed(Bytes s)
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

QString toQString(Bytes s);

// Hands out a segment list's tokens one at a time, so that no list of all of
// them is ever built. With no "(" in the text it cuts at every blank; with one,
// groups stay whole: only a blank or "(" outside every group cuts, and not one
// directly followed by "#", so that "(...) #3" keeps its suffix.
class Tokenizer
{
public:
    explicit Tokenizer(Bytes text)
        : text_(text), grouped_(contains(text, '(')), stray_(grouped_ ? Bytes::npos : text.find(')'))
    {
    }

    bool next(Bytes& token)
    {
        return grouped_ ? nextGrouped(token) : nextPlain(token);
    }
    // Whether the tokens handed out reach a ")" that closes no group: the
    // writer could not write such a text back as it was read.
    bool passedStray() const { return stray_ != Bytes::npos && pos_ > stray_; }
    const char* stray() const { return text_.data() + stray_; }
    // Whether a token that is no group starts with a "#" or took one in
    // after a blank or "(": only a group's suffix may, and the writer would
    // write it apart.
    bool holdsLooseHash(Bytes token) const
    {
        return token.front() == '#'
            || (grouped_ && token.front() != '(' && token.find_first_of("( \t") != Bytes::npos);
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
            else if (c == ')' && --depth_ < 0 && stray_ == Bytes::npos)
                stray_ = i;
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
    size_t stray_;
    size_t pos_ = 0;
    size_t start_ = 0;
    qint64 depth_ = 0;
};

inline std::string valueOf(Bytes token, bool bus)
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

inline qint32 durationOf(Bytes token)
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

void applyAttributes(WaveData* wave, QStringView block);

// The widest bus a declaration may expand into element names.
inline constexpr qint64 MaxBusWidth = 65536;

// Applies the bus forms of a declared name; false, and nothing applied, when
// a range or run asks for more than maxWidth elements. width: how many the
// name declares (a list names its own, and is never refused).
bool applyBusForm(WaveData* wave, qint64 maxWidth, qint64& width);

struct GroupSuffix {
    qint64 multiplier = 1;
    qint64 repeats = 1;
    bool forever = false;
};

GroupSuffix readSuffix(Bytes suffix);

} // namespace wdltext

} // namespace kesu::toolvok
