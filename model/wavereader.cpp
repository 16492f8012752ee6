// The waveform file reader. It never reports an error: a statement it cannot
// make sense of is skipped and a number it cannot convert counts as 0.
#include "waveformdata.h"

#include <QHash>
#include <QIODevice>
#include <QRegularExpression>

#include <functional>

namespace kesu::toolvok {

namespace {

// How deep groups may nest, and how many segments repeat counts may lay down
// in one load. Real documents stay far below both; they keep a few bytes of
// hostile text from exhausting the stack or the memory.
constexpr int MaxGroupDepth = 64;
constexpr qint64 RepeatBudget = qint64(1) << 25;
// The widest bus a declaration may expand into element names.
constexpr qint64 MaxBusWidth = 65536;

inline bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

using Tokens = QList<QStringView>;

Tokens tokenize(QStringView text)
{
    Tokens tokens;
    tokens.reserve(text.size() / 4);
    const qsizetype n = text.size();
    auto cut = [&](qsizetype from, qsizetype to) {
        const QStringView token = text.mid(from, to - from).trimmed();
        if (!token.isEmpty())
            tokens.append(token);
    };
    if (!text.contains(QLatin1Char('('))) {
        qsizetype start = 0;
        for (qsizetype i = 0; i < n; ++i) {
            if (isBlank(text[i])) {
                cut(start, i);
                start = i + 1;
            }
        }
        cut(start, n);
        return tokens;
    }
    // Groups stay whole: only a blank or "(" outside every group cuts, and not
    // one directly followed by "#", so that "(...) #3" keeps its suffix.
    qsizetype depth = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text[i];
        const bool open = c == QLatin1Char('(');
        if ((open || isBlank(c)) && depth <= 0
            && !(i + 1 < n && text[i + 1] == QLatin1Char('#'))) {
            cut(start, i);
            start = open ? i : i + 1;
        }
        if (open)
            ++depth;
        else if (c == QLatin1Char(')'))
            --depth;
    }
    cut(start, n);
    return tokens;
}

std::string toBytes(QStringView text)
{
    std::string bytes;
    bytes.reserve(static_cast<size_t>(text.size()));
    for (QChar c : text) {
        if (c.unicode() >= 0x80)
            return text.toUtf8().toStdString();
        bytes.push_back(static_cast<char>(c.unicode()));
    }
    return bytes;
}

std::string valueOf(QStringView token, bool bus)
{
    if (bus) {
        if (token == QLatin1String("DonTCare"))
            return Values::DontCare;
        if (token == QLatin1String("HighZ"))
            return Values::HighZ;
    } else {
        if (token == QLatin1String("2"))
            return Values::DontCare;
        if (token == QLatin1String("3"))
            return Values::HighZ;
    }
    return toBytes(token);
}

qint32 durationOf(QStringView token)
{
    // Plain digits, the common case, are read directly; anything else goes
    // through Qt's conversion, which gives the same result for them.
    if (!token.isEmpty() && token.size() <= 18) {
        quint64 value = 0;
        bool digits = true;
        for (QChar c : token) {
            const char16_t u = c.unicode();
            if (u < '0' || u > '9') {
                digits = false;
                break;
            }
            value = value * 10 + (u - '0');
        }
        if (digits)
            return static_cast<qint32>(value);
    }
    // Read as 64 bits and kept in 32, as the file has always been read.
    return static_cast<qint32>(static_cast<quint64>(token.toLongLong()));
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

GroupSuffix readSuffix(QStringView suffix)
{
    GroupSuffix s;
    const qsizetype star = suffix.indexOf(QLatin1Char('*'));
    const qsizetype hash = suffix.indexOf(QLatin1Char('#'));
    if (star >= 0 && (hash < 0 || star < hash)) {
        const qsizetype end = hash < 0 ? suffix.size() : hash;
        s.multiplier = suffix.mid(star + 1, end - star - 1).trimmed().toInt();
    }
    if (hash >= 0) {
        const QStringView n = suffix.mid(hash + 1).trimmed();
        if (n == QLatin1String("#")) {
            s.forever = true;
        } else {
            // No default: "#" alone or "#0" lays nothing down.
            s.repeats = qMax<qint64>(0, n.toLongLong());
        }
    }
    return s;
}

} // namespace

// ---------------------------------------------------------------------------

void WaveformData::loadData(QIODevice& file)
{
    loadText(QString::fromUtf8(file.readAll()));
}

void WaveformData::loadText(const QString& text)
{
    repeatBudget_ = RepeatBudget;
    placeholders_.clear();

    QStringView all(text);
    if (all.startsWith(QChar(0xFEFF)))
        all = all.mid(1);
    QString buffer;
    qsizetype pos = 0;
    const qsizetype n = all.size();
    while (pos < n) {
        qsizetype eol = all.indexOf(QLatin1Char('\n'), pos);
        if (eol < 0)
            eol = n;
        QStringView line = all.mid(pos, eol - pos);
        pos = eol + 1;
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        // A line of no characters at all ends the file for the reader; the
        // writer never writes one. A line of blanks is only skipped.
        if (line.isEmpty())
            break;
        if (line.trimmed().isEmpty())
            continue;
        // Lines join without a separator: a statement's later lines begin
        // with the blank or "(" that separates segments.
        if (buffer.isEmpty() && line.endsWith(QLatin1Char(';'))) {
            CompilerLine(line.toString());
            continue;
        }
        buffer.append(line);
        if (buffer.endsWith(QLatin1Char(';'))) {
            CompilerLine(buffer);
            buffer.clear();
        }
    }
    resolvePatternReferences();
}

void WaveformData::CompilerLine(const QString& statement)
{
    const QStringView s = QStringView(statement).trimmed();
    const qsizetype eq = s.indexOf(QLatin1Char('='));
    if (eq < 0 || s.indexOf(QLatin1Char('='), eq + 1) >= 0)
        return;
    const QStringView left = s.left(eq).trimmed();
    QStringView right = s.mid(eq + 1).trimmed();

    if (left.startsWith(QLatin1Char('%'))) {
        QStringView number = right;
        number.chop(1);
        if (left.startsWith(QLatin1String("%MASTERCLOCKMULT")))
            masterClockMult = number.toInt();
        else if (left.startsWith(QLatin1String("%SMALLESTUNIT")))
            smallestUnit = number.toInt();
        else if (left.startsWith(QLatin1String("%AUTOASSIGN")))
            autoAssign = number.toInt();
        else if (left.startsWith(QLatin1String("%DECIMALS")))
            decimals = number.toInt();
        else if (left.startsWith(QLatin1String("%ENDTIME")))
            endTime = number.toULongLong();
        return;
    }

    const bool isNamedPattern = left.startsWith(QLatin1Char('$'));
    const qsizetype open = left.indexOf(QLatin1Char('{'));
    const bool hasClose = left.contains(QLatin1Char('}'));
    if (isNamedPattern ? (open >= 0 || hasClose) : (open < 0 || !hasClose || !left.endsWith(QLatin1Char('}'))))
        return;

    auto* wave = new WaveData((isNamedPattern ? left : left.left(open).trimmed()).toString());
    if (isNamedPattern) {
        wave->isPattern = true;
        wave->polarity = 5;
    } else {
        applyAttributes(wave, left.mid(open + 1, left.size() - open - 2).trimmed());
    }
    if (!applyBusForm(wave)) {
        delete wave;
        return;
    }

    if (right.endsWith(QLatin1Char(';'))) {
        right.chop(1);
        right = right.trimmed();
    }
    QList<Pattern*> unused;
    readSegments(tokenize(right), unused, wave, true);
    addWave(wave);
}

QStringList WaveformData::parseValues(const QString& text)
{
    QStringList tokens;
    for (QStringView token : tokenize(text))
        tokens.append(token.toString());
    return tokens;
}

void WaveformData::processSubPattern(const QString& body, QList<Pattern*>& out, WaveData* wave)
{
    readSegments(tokenize(body), out, wave, false);
}

Pattern* WaveformData::newPlaceholder(WaveData* wave, const QString& reference)
{
    // A one-unit "0" stands for the named pattern until the end of the file.
    auto* p = new Pattern("0", 1);
    wave->patternNames.insert(p, reference);
    placeholders_.append({wave, p});
    return p;
}

void WaveformData::readSegments(const QList<QStringView>& tokens, QList<Pattern*>& out, WaveData* wave, bool topLevel)
{
    // At the top the segments go straight into the wave, merging as they come;
    // inside a group they are collected for the caller to lay down.
    auto lay = [&](Pattern* p, bool placeholder) {
        if (!topLevel)
            out.append(p);
        else if (!wave->addData(p) && !placeholder)
            delete p;
    };
    const qsizetype count = tokens.size();
    if (topLevel)
        wave->patterns.reserve(wave->patterns.size() + count / 2);
    for (qsizetype i = 0; i < count; ++i) {
        const QStringView token = tokens.at(i);
        if (token.startsWith(QLatin1Char('$'))) {
            lay(newPlaceholder(wave, token.toString()), true);
        } else if (token.startsWith(QLatin1Char('('))) {
            readGroup(token, wave, topLevel, lay);
        } else if (i + 1 < count) {
            lay(new Pattern(valueOf(token, wave->isBus), durationOf(tokens.at(i + 1))), false);
            ++i;
        }
    }
}

void WaveformData::readGroup(QStringView token, WaveData* wave, bool topLevel,
                             const std::function<void(Pattern*, bool)>& lay)
{
    const qsizetype close = token.lastIndexOf(QLatin1Char(')'));
    const QStringView body = close > 0 ? token.mid(1, close - 1) : token.mid(1);
    const GroupSuffix suffix = readSuffix(close > 0 ? token.mid(close + 1) : QStringView());
    if (groupDepth_ >= MaxGroupDepth)
        return;

    QList<Pattern*> group;
    ++groupDepth_;
    readSegments(tokenize(body), group, wave, false);
    --groupDepth_;

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
            lay(copy, placeholder);
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
