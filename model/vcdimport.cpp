#include "vcdimport.h"

#include "runlist.h"

#include "vcdreader.h"
#include "waveformdata.h"
#include "wavekind.h"
#include "wdltext.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace kesu::toolvok {

namespace {

using Wide = unsigned __int128;

// One chosen variable on its way into a wave: the value it holds since start.
struct Track {
    WaveData* wave = nullptr;
    int width = 1;
    quint64 start = 0;
    std::string value = Values::DontCare;   // unknown until the dump says
    int sameCode = -1;                      // the next track of the same code
    // Segments laid down but not made yet. A wave's segments are made in
    // runs so that they lie together in memory, not interleaved with every
    // other wave's, which each later walk along one wave would pay for.
    std::vector<std::pair<std::string, qint32>> staged;
};
constexpr size_t StagedRun = 256;

// The document's name for a variable: reference and range, a lone bit
// "d[3]" as the one-bit range "d[3:3]", a vector without range counting
// down to 0. Characters that would end a statement of the file become "_".
QString waveNameOf(const VcdVariable& var, bool withPath)
{
    QByteArray range = var.range;
    static const QRegularExpression bit(QStringLiteral("^\\[(-?[0-9]+)\\]$"));
    const QRegularExpressionMatch lone = bit.match(QString::fromLatin1(range));
    if (lone.hasMatch())
        range = QStringLiteral("[%1:%1]").arg(lone.captured(1)).toLatin1();
    else if (range.isEmpty() && var.width > 1)
        range = "[" + QByteArray::number(var.width - 1) + ":0]";
    QString name = QString::fromUtf8((withPath ? var.path() : var.reference) + range);
    for (QChar& c : name) {
        if (c == QLatin1Char('{') || c == QLatin1Char('}') || c == QLatin1Char('=') || c == QLatin1Char(';'))
            c = QLatin1Char('_');
    }
    if (name.startsWith(QLatin1Char('$')))
        name[0] = QLatin1Char('_');
    return name;
}

// A bit as 0, 1, x or z: std_logic's weak levels count as the levels, its
// uninitialised and don't-care states as unknown.
char bitOf(char c)
{
    switch (c | 0x20) {
    case '0':
    case 'l':
        return '0';
    case '1':
    case 'h':
        return '1';
    case 'z':
        return 'z';
    default:
        return 'x';
    }
}

// The value as the document holds it; false when it is wider than the variable.
bool documentValue(std::string_view bits, const Track& track, std::string& out)
{
    if (bits.size() > size_t(track.width))
        return false;
    // Shorter values are filled on the left with 0, or with their x or z.
    const char first = bitOf(bits[0]);
    const char fill = first == '1' ? '0' : first;
    if (!track.wave->isBus) {
        const char c = bits.size() == size_t(track.width) ? bitOf(bits.back()) : fill;
        out.assign(c == 'x' ? Values::DontCare : c == 'z' ? Values::HighZ : std::string(1, c));
        return true;
    }
    const bool filled = bits.size() < size_t(track.width);
    bool unknown = filled && fill != '0';
    bool allZ = !filled || fill == 'z';
    std::string& hex = out;
    hex.clear();
    int digit = 0;
    int weight = 1;
    for (size_t i = bits.size(); i-- > 0;) {
        const char bit = bitOf(bits[i]);
        unknown = unknown || bit == 'x' || bit == 'z';
        allZ = allZ && bit == 'z';
        digit += bit == '1' ? weight : 0;
        weight *= 2;
        if (weight == 16 || i == 0) {
            hex.push_back("0123456789ABCDEF"[digit]);
            digit = 0;
            weight = 1;
        }
    }
    if (unknown) {
        out.assign(allZ ? Values::HighZ : Values::DontCare);
        return true;
    }
    while (hex.size() > 1 && hex.back() == '0')
        hex.pop_back();
    std::reverse(hex.begin(), hex.end());
    return true;
}

class Importer
{
public:
    Importer(QIODevice& device, WaveformData& document) : reader_(device), document_(document) {}

    bool run(const VcdImportOptions& options, QStringList& notes, QString& error);

private:
    bool choose(const QStringList& names, QStringList& notes, QString& error);
    bool cropTimes(const VcdImportOptions& options, QString& error);
    bool ticksAt(quint64 time, quint64& ticks) const;
    void change(Track& track, quint64 at, const std::string& value);
    void close(Track& track, quint64 at, bool atEnd = false);
    void flush(Track& track);

    VcdReader reader_;
    WaveformData& document_;
    std::vector<Track> tracks_;
    std::vector<int> firstTrack_;   // by code, -1 for a code not taken
    quint64 scale_ = 1;             // ticks per unit of the dump
    quint64 from_ = 0;
    quint64 to_ = NoTime;
    QString tooLong_;   // a value that no document can hold
};

bool Importer::choose(const QStringList& names, QStringList& notes, QString& error)
{
    const std::vector<VcdVariable>& vars = reader_.variables();
    std::vector<const VcdVariable*> chosen;
    QSet<QString> wanted(names.begin(), names.end());
    const QSet<QString> asked = wanted;
    for (const VcdVariable& var : vars) {
        const QString keys[] = {QString::fromUtf8(var.reference), QString::fromUtf8(var.path()),
                                QString::fromUtf8(var.reference + var.range), QString::fromUtf8(var.path() + var.range)};
        bool named = false, again = false;
        for (const QString& key : keys) {
            named = wanted.remove(key) || named;
            again = again || asked.contains(key);
        }
        // A name asked for that an earlier declaration took already.
        if (!names.isEmpty() && !named && again)
            notes << QStringLiteral("skipped %1, declared twice").arg(QString::fromUtf8(var.path() + var.range));
        if (!names.isEmpty() && !named)
            continue;
        if (var.holdsBits())
            chosen.push_back(&var);
        else
            notes << QStringLiteral("skipped the %1 variable %2").arg(QString::fromUtf8(var.type), QString::fromUtf8(var.path()));
    }
    if (!wanted.isEmpty()) {
        QStringList missing = wanted.values();
        missing.sort();
        error = QStringLiteral("the dump has no variable %1").arg(missing.join(QStringLiteral(", ")));
        return false;
    }
    if (chosen.empty()) {
        error = QStringLiteral("the dump has no variable of bits to import");
        return false;
    }
    // A reference declared in several scopes takes its path.
    QHash<QString, int> uses;
    for (const VcdVariable* var : chosen)
        ++uses[waveNameOf(*var, false)];
    firstTrack_.assign(size_t(reader_.codeCount()), -1);
    tracks_.reserve(chosen.size());
    QSet<QString> taken;   // a design's dump may declare a hundred thousand variables
    for (const VcdVariable* var : chosen) {
        const QString name = waveNameOf(*var, uses.value(waveNameOf(*var, false)) > 1);
        if (taken.contains(name)) {
            notes << QStringLiteral("skipped %1, declared twice").arg(name);
            continue;
        }
        auto* wave = new WaveData(name);
        wave->polarity = WaveKind::Input;
        wave->waveType = WaveType::NRZ;
        qint64 width = 0;
        if (!wdltext::applyBusForm(wave, wdltext::MaxBusWidth, width)) {
            notes << QStringLiteral("skipped %1, a bus too wide").arg(name);
            delete wave;
            continue;
        }
        document_.addWave(wave);
        taken.insert(name);
        Track track;
        track.wave = wave;
        track.width = var->width;
        track.sameCode = std::exchange(firstTrack_[size_t(var->code)], int(tracks_.size()));
        tracks_.push_back(track);
    }
    return true;
}

bool Importer::cropTimes(const VcdImportOptions& options, QString& error)
{
    const int magnitude = reader_.unitMagnitude();
    const int exponent = reader_.unitExponent();
    // Times show in the dump's own unit; s and fs, which the document has no
    // unit for, in ms and in ps with three decimals.
    document_.smallestUnit = exponent == 0 ? 3 : exponent == 15 ? 12 : exponent;
    document_.decimals = exponent == 15 ? 3 : 0;
    scale_ = quint64(magnitude) * (exponent == 0 ? 1000 : 1);
    const std::pair<const QString*, quint64*> limits[] = {{&options.from, &from_}, {&options.to, &to_}};
    for (const auto& [text, time] : limits) {
        if (!text->isEmpty() && !vcdTimeOf(*text, magnitude, exponent, *time)) {
            error = QStringLiteral("%1 is no time in whole units of the dump (%2 %3)")
                        .arg(*text).arg(magnitude).arg(QLatin1String(VcdUnits[exponent / 3]));
            return false;
        }
    }
    if (from_ >= to_) {
        error = QStringLiteral("--from must come before --to");
        return false;
    }
    return true;
}

bool Importer::ticksAt(quint64 time, quint64& ticks) const
{
    const Wide wide = Wide(time > from_ ? time - from_ : 0) * scale_;
    ticks = quint64(wide);
    return wide <= Wide(std::numeric_limits<quint64>::max() - 1);
}

void Importer::change(Track& track, quint64 at, const std::string& value)
{
    if (at == track.start) {
        // Several changes at one time count as the last; one that goes back
        // to the value before resumes its segment.
        track.value = value;
        WaveData* wave = track.wave;
        if (!track.staged.empty()) {
            if (Values::same(track.staged.back().first, value)) {
                track.start -= quint64(track.staged.back().second);
                track.staged.pop_back();
            }
        } else if (!wave->patterns.isEmpty() && Values::same(wave->patterns.last()->value, value)) {
            Pattern* last = wave->patterns.takeLast();
            wave->segmentsChanged(int(wave->patterns.size()));
            track.start -= quint64(last->duration);
            delete last;
        }
        return;
    }
    if (Values::same(track.value, value))
        return;
    close(track, at);
    track.start = at;
    track.value = value;
}

// Lays the value down from its start to at, in pieces a duration can hold;
// the track's value is used up.
void Importer::close(Track& track, quint64 at, bool atEnd)
{
    constexpr quint64 Longest = quint64(std::numeric_limits<qint32>::max());
    quint64 left = at - track.start;
    WaveData* wave = track.wave;
    const bool leading = wave->patterns.isEmpty() && track.staged.empty() && Values::isDontCare(track.value);
    // Pieces that melt back into one when the document is read would lose
    // every wave after them; unknown before the first value becomes the
    // offset, and a value held to the end holds all the same after a cut.
    if (left > Longest && !leading && melts(track.value, track.value, wave->isBus)) {
        if (!atEnd) {
            tooLong_ = QStringLiteral("%1 keeps one value for %2 time units from %3 on; a segment lasts at most %4")
                           .arg(wave->name).arg(left).arg(track.start).arg(Longest);
            return;
        }
        left = Longest;
    }
    while (left > 0) {
        const qint32 piece = qint32(std::min(left, Longest));
        left -= quint64(piece);
        track.staged.emplace_back(left > 0 ? track.value : std::move(track.value), piece);
    }
    if (track.staged.size() >= StagedRun)
        flush(track);
}

void Importer::flush(Track& track)
{
    for (auto& [value, duration] : track.staged)
        track.wave->insertData(new Pattern(std::move(value), duration), nullptr);
    track.staged.clear();
}

bool Importer::run(const VcdImportOptions& options, QStringList& notes, QString& error)
{
    if (!reader_.readHeader()) {
        error = reader_.error();
        return false;
    }
    if (!cropTimes(options, error) || !choose(options.signalNames, notes, error))
        return false;
    quint64 now = 0;
    std::string value;
    for (bool reading = true; reading;) {
        switch (reader_.next()) {
        case VcdReader::End:
            reading = false;
            break;
        case VcdReader::Failed:
            error = reader_.error();
            return false;
        case VcdReader::Time:
            // Nothing after --to counts: the rest need not be read.
            reading = reader_.time() < to_;
            if (reading && !ticksAt(reader_.time(), now)) {
                reader_.fail(QStringLiteral("the time %1 is beyond a document's time axis").arg(reader_.time()));
                error = reader_.error();
                return false;
            }
            break;
        case VcdReader::Change:
            for (int t = firstTrack_[size_t(reader_.code())]; t >= 0; t = tracks_[size_t(t)].sameCode) {
                Track& track = tracks_[size_t(t)];
                if (reader_.kind() == 'r' || reader_.kind() == 's' || !documentValue(reader_.value(), track, value)) {
                    reader_.fail(QStringLiteral("%1 is no value of the %2-bit %3")
                                     .arg(QString::fromLatin1(reader_.value().data(), qsizetype(reader_.value().size())))
                                     .arg(track.width).arg(track.wave->name));
                    error = reader_.error();
                    return false;
                }
                change(track, now, value);
            }
            if (!tooLong_.isEmpty()) {
                error = tooLong_;
                return false;
            }
            break;
        }
    }
    quint64 end = 0;
    if (!ticksAt(to_ != NoTime ? to_ : reader_.time(), end)) {
        error = QStringLiteral("the end, %1, is beyond a document's time axis").arg(to_);
        return false;
    }
    document_.endTime = end;
    for (Track& track : tracks_) {
        close(track, end, true);
        flush(track);
        track.staged.shrink_to_fit();
        // Unknown until the first value: the wave starts there.
        WaveData* wave = track.wave;
        while (wave->patterns.size() > 1 && Values::isDontCare(wave->patterns.first()->value)) {
            Pattern* first = wave->patterns.first();
            wave->offset += quint64(first->duration);
            wave->removeData(first);
            delete first;
        }
    }
    return true;
}

} // namespace

bool importVcd(QIODevice& device, const VcdImportOptions& options, WaveformData& document, QStringList& notes,
               QString& error)
{
    return Importer(device, document).run(options, notes, error);
}

} // namespace kesu::toolvok
