// The waveform file reader: lines into statements, statements into waves. It
// is forgiving about what a statement says (a statement it cannot make sense
// of is skipped and a number it cannot convert counts as 0), but says when it
// could not take in the whole file: a limit, a failing read, text after an
// empty line, or a last statement without its ";".
#include "wavereader.h"

#include "waveformdata.h"
#include "wdltext.h"

#include <QBuffer>
#include <QByteArrayView>
#include <QIODevice>
#include <QStringConverter>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::toolvok {

using namespace wdltext;

namespace {

// Whether bytes hold anything but white space.
bool hasText(const char* p, size_t size)
{
    return std::any_of(p, p + size, [](char c) { return !isAsciiSpace(static_cast<unsigned char>(c)); });
}

// A UTF-16 or UTF-32 file as UTF-8, decoded whole. A read failing part way
// keeps what came before and fails where the file failed.
class Utf8Copy : public QBuffer
{
public:
    Utf8Copy(QIODevice& file, QStringConverter::Encoding encoding)
    {
        QStringDecoder decoder(encoding);
        QString text;
        QByteArray raw(qsizetype(1) << 20, Qt::Uninitialized);
        qint64 got = 0;
        while ((got = file.read(raw.data(), raw.size())) > 0)
            text += decoder(QByteArrayView(raw.constData(), got));
        setData(text.toUtf8());
        open(ReadOnly);
        failed_ = got < 0;
        setErrorString(file.errorString());
    }

protected:
    qint64 readData(char* data, qint64 max) override
    {
        const qint64 got = QBuffer::readData(data, max);
        return got == 0 && failed_ ? -1 : got;
    }

private:
    bool failed_ = false;
};

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
        while (pos < size && !stopped()) {
            const void* found = std::memchr(data + pos, '\n', size - pos);
            if (!found && !last)
                break;
            const size_t eol = found ? static_cast<size_t>(static_cast<const char*>(found) - data) : size;
            line(Bytes(data + pos, eol - pos));
            pos = found ? eol + 1 : size;
        }
        return pos;
    }

    // An empty line ended the reading, or a problem did.
    bool stopped() const { return stopped_ || reader_.failed(); }
    bool stoppedAtEmptyLine() const { return stopped_; }
    qint64 lineCount() const { return lineNo_; }

    // After the last line: says what was left unread.
    void finish(bool textAfterStop)
    {
        if (reader_.failed())
            return;
        if (stopped_ && textAfterStop)
            reader_.fail(stopLine_, QStringLiteral("the reading stops at this empty line, but text follows it"));
        else if (!statement_.empty())
            reader_.fail(statementLine_, QStringLiteral("the file ends inside this statement: its \";\" is missing"));
    }

    // Byte order marks to skip in front of the first line.
    int marksToSkip = 1;

private:
    void line(Bytes text)
    {
        ++lineNo_;
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
            stopLine_ = lineNo_;
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
            reader_.compileStatement(text, lineNo_);
            return;
        }
        if (statement_.empty()) {
            statementLine_ = lineNo_;
            lineStarts_.clear();
        }
        lineStarts_.push_back(statement_.size());
        statement_.append(text);
        if (statement_.back() == ';') {
            reader_.compileStatement(statement_, statementLine_, &lineStarts_);
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
    std::vector<size_t> lineStarts_;   // where each line of the statement begins in it
    qint64 statementLine_ = 0;
    qint64 lineNo_ = 0;
    qint64 stopLine_ = 0;
    bool stopped_ = false;
};

} // namespace

WaveReader::WaveReader(WaveformData& doc, qint64 segmentLimit)
    : doc_(doc), segmentLimit_(segmentLimit), budget_(segmentLimit)
{
}

WaveReader::~WaveReader() = default;

void WaveReader::fail(qint64 line, const QString& reason)
{
    if (failed_)
        return;
    failed_ = true;
    if (!doc_.loadError.isSet())
        doc_.loadError = {line, reason};
}

qint64 WaveReader::lineOf(const char* at) const
{
    const auto base = reinterpret_cast<quintptr>(statement_.data());
    const auto p = reinterpret_cast<quintptr>(at);
    if (!lineStarts_ || p < base || p > base + statement_.size())
        return firstLine_;
    const auto next = std::upper_bound(lineStarts_->begin(), lineStarts_->end(), size_t(p - base));
    return firstLine_ + qint64(next - lineStarts_->begin()) - 1;
}

bool WaveReader::readDevice(QIODevice& file, const Progress& progress)
{
    bool stopped = false;
    StatementReader reader(*this);
    // Behind a mark of UTF-16 or UTF-32 the text is decoded as a text stream
    // would decode it, once, and read as UTF-8 from memory; anything else is
    // read as UTF-8 straight from the file.
    const auto encoding = QStringConverter::encodingForData(file.peek(4));
    std::optional<Utf8Copy> utf8;
    if (encoding && *encoding != QStringConverter::Utf8)
        utf8.emplace(file, *encoding);
    QIODevice& in = utf8 ? *utf8 : file;
    // Qt's decoding drops one byte order mark, and the reader another.
    reader.marksToSkip = utf8 ? 1 : 2;
    // A UTF-8 file is read in pieces through one buffer, so that its text
    // never has to be in memory at once; a line longer than the buffer grows it.
    constexpr qint64 Piece = qint64(1) << 20;
    std::vector<char> buffer(static_cast<size_t>(Piece));
    size_t held = 0;
    // The next piece behind what the buffer holds: its size, 0 at the end,
    // -1 when the device fails.
    auto readPiece = [&]() -> qint64 {
        if (buffer.size() - held < size_t(Piece))
            buffer.resize(std::max(buffer.size() * 2, held + size_t(Piece)));
        const qint64 got = in.read(buffer.data() + held, Piece);
        held += size_t(std::max<qint64>(got, 0));
        return got;
    };
    bool textAfterStop = false;
    for (;;) {
        const qint64 got = readPiece();
        if (got < 0) {
            fail(reader.lineCount() + 1, QStringLiteral("the file could not be read: %1").arg(in.errorString()));
            break;
        }
        const size_t used = reader.feed(buffer.data(), held, got == 0);
        if (reader.stoppedAtEmptyLine()) {
            // What follows an empty line is not read; it must not be lost
            // without a word.
            textAfterStop = hasText(buffer.data() + used, held - used);
            while (!textAfterStop) {
                held = 0;
                if (readPiece() <= 0)
                    break;
                textAfterStop = hasText(buffer.data(), held);
            }
            break;
        }
        if (got == 0 || reader.stopped())
            break;
        if (progress && !progress(in.pos(), in.size())) {
            stopped = true;
            break;
        }
        std::memmove(buffer.data(), buffer.data() + used, held - used);
        held -= used;
    }
    // Also when stopped: the placeholders belong to their waves only then.
    reader.finish(textAfterStop);
    resolvePatternReferences();
    return !stopped;
}

void WaveReader::readText(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    StatementReader reader(*this);
    const size_t used = reader.feed(bytes.constData(), size_t(bytes.size()), true);
    reader.finish(reader.stoppedAtEmptyLine() && hasText(bytes.constData() + used, size_t(bytes.size()) - used));
    resolvePatternReferences();
}

void WaveReader::compileStatement(Bytes statement, qint64 firstLine, const std::vector<size_t>* lineStarts)
{
    if (failed_)
        return;
    statement_ = statement;
    firstLine_ = firstLine;
    lineStarts_ = lineStarts;
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
    qint64 width = 0;
    if (!applyBusForm(wave, std::min(MaxBusWidth, elementBudget_), width)) {
        delete wave;
        failAt(s.data(), width > MaxBusWidth ? QStringLiteral("%1 declares a bus of %2 bits; the widest bus read has %3")
                                                   .arg(toQString(left.substr(0, open)).trimmed())
                                                   .arg(width)
                                                   .arg(MaxBusWidth)
                                             : QStringLiteral("the buses of the file declare more than %1 bits in all")
                                                   .arg(readlimits::MaxBusElements));
        return;
    }
    elementBudget_ -= wave->elements.size();

    if (!right.empty() && right.back() == ';') {
        right.remove_suffix(1);
        right = trimmed(right);
    }
    // Two blanks per segment in what the writer produces: room for the
    // segments without growing the list again and again.
    const auto blanks = std::count(right.begin(), right.end(), ' ');
    wave->patterns.reserve(wave->patterns.size() + qsizetype(blanks / 2) + 1);
    const bool voids = layStatement(right, wave);
    // After a problem the wave keeps what was laid down before it.
    doc_.addWave(wave);
    laidWaves_.push_back({wave, firstLine, voids});
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

} // namespace kesu::toolvok
