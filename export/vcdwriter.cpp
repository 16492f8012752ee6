// The document as a VCD: every wave's value changes in time order, forever
// tails repeated up to the end time. It is worked out straight from the
// segments, apart from the HDL writers (bus values through GMP, not through
// valueBits), so that the tests can hold a simulation against it.
#include "course.h"
#include "writers.h"

#include "waveformdata.h"

#include <gmp.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace kesu::toolvok {

namespace {

std::string codeOf(size_t index)
{
    std::string code;
    do {
        code.push_back(char('!' + index % 94));
        index /= 94;
    } while (index > 0);
    return code;
}

class ValueText
{
public:
    ValueText() { mpz_init(number_); }
    ~ValueText() { mpz_clear(number_); }
    ValueText(const ValueText&) = delete;
    ValueText& operator=(const ValueText&) = delete;

    // Into text: "b0101 " for a vector, "1" for a single bit; without the code.
    void operator()(const ExportSignal& signal, const std::string* value, std::string& text)
    {
        const char special = !value || Values::isDontCare(*value) ? 'x' : Values::isHighZ(*value) ? 'z' : 0;
        if (!signal.vector) {
            text.assign(1, special ? special : (*value)[0]);
            return;
        }
        const size_t width = size_t(signal.width);
        text.assign(1, 'b');
        if (special) {
            text.append(width, special);
        } else if (!signal.wave->isBus) {
            text += *value;
        } else if (value->size() <= 16) {
            // Fits 64 bits: read as a number, written bit by bit.
            const quint64 number = std::strtoull(value->c_str(), nullptr, 16);
            for (size_t bit = width; bit-- > 0;)
                text.push_back(bit < 64 && (number >> bit & 1) ? '1' : '0');
        } else {
            mpz_set_str(number_, value->c_str(), 16);
            digits_.resize(mpz_sizeinbase(number_, 2) + 2);
            mpz_get_str(digits_.data(), 2, number_);
            const size_t length = std::char_traits<char>::length(digits_.data());
            text.append(width - length, '0').append(digits_.data(), length);
        }
        text.push_back(' ');
    }

private:
    mpz_t number_;
    std::string digits_;
};

// Whether two value texts are the same text; most are one or two characters.
bool sameText(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && (a.size() > 2 ? a == b : a.empty() || (a[0] == b[0] && a.back() == b.back()));
}

// One wave's changes: its course with what was last written of it.
class WaveChanges
{
public:
    WaveChanges(const ExportSignal& signal, quint64 endTime) : signal_(signal), course_(signal, endTime) {}

    // The value at time 0, with the code and a line end.
    void initial(ValueText& valueText, const std::string& code, std::string& text)
    {
        written_ = course_.value();
        valueText(signal_, written_, shown_);
        text.append(shown_).append(code).push_back('\n');
        course_.step();
    }

    // The time of the next segment, or NoTime.
    quint64 next(quint64 endTime) const { return course_.done() || course_.time() >= endTime ? NoTime : course_.time(); }

    // Appends to text the lines of the changes before `until`; calls
    // changed(time, from, size) for each.
    template<typename Changed>
    void changesBefore(quint64 until, ValueText& valueText, const std::string& code, std::string& text, Changed changed)
    {
        for (; !course_.done() && course_.time() < until; course_.step()) {
            const std::string* value = course_.value();
            // Equal text is an equal value; other text may still be ("0A", "A").
            if (value == written_ || (value && written_ && sameText(*value, *written_)))
                continue;
            written_ = value;
            const size_t from = text.size();
            if (!signal_.vector) {
                // One character, and most of the changes: no string work.
                const char bit = !value || Values::isDontCare(*value) ? 'x' : Values::isHighZ(*value) ? 'z' : (*value)[0];
                if (bit == shown_[0])
                    continue;
                shown_[0] = bit;
                text.push_back(bit);
            } else {
                valueText(signal_, value, next_);
                if (next_ == shown_)
                    continue;
                shown_.swap(next_);
                text.append(shown_);
            }
            text.append(code).push_back('\n');
            changed(course_.time(), from, text.size() - from);
        }
    }

private:
    const ExportSignal& signal_;
    Course course_;
    const std::string* written_ = nullptr;   // the value text behind shown_
    std::string shown_;
    std::string next_;
};

// Changes are taken a time window at a time, wave after wave (which keeps
// each wave's segments in the cache, where a merge in time order would
// jump between waves at every change), and put in time order by counting.
// The window adapts so that it holds about a million changes at most.
class Windows
{
public:
    void write(std::vector<WaveChanges>& waves, const std::vector<std::string>& codes, quint64 endTime,
               ValueText& valueText, OutputStream& out)
    {
        quint64 width = 1024;
        while (out.ok()) {
            quint64 start = NoTime;
            for (const WaveChanges& wave : waves)
                start = std::min(start, wave.next(endTime));
            if (start == NoTime)
                return;
            const quint64 until = std::min(endTime, start + std::min(width, endTime - start));
            events_.clear();
            text_.clear();
            for (size_t i = 0; i < waves.size(); ++i) {
                waves[i].changesBefore(until, valueText, codes[i], text_, [&](quint64 time, size_t from, size_t size) {
                    events_.push_back({quint32(time - start), quint32(from), quint32(size)});
                });
            }
            writeInOrder(start, size_t(until - start), out);
            if (events_.size() < (1 << 18) && width < MaxWidth)
                width *= 2;
            else if (events_.size() > (1 << 20) && width > 1)
                width /= 2;
        }
    }

private:
    struct Event {
        quint32 at;     // from the window's start
        quint32 from;   // its line in text_
        quint32 size;
    };
    static constexpr quint64 MaxWidth = 1 << 16;

    // A stable counting sort: changes at one time stay in wave order.
    void writeInOrder(quint64 start, size_t width, OutputStream& out)
    {
        counts_.assign(width + 1, 0);
        for (const Event& e : events_)
            ++counts_[e.at + 1];
        for (size_t t = 1; t <= width; ++t)
            counts_[t] += counts_[t - 1];
        sorted_.resize(events_.size());
        for (const Event& e : events_)
            sorted_[counts_[e.at]++] = e;
        quint32 stamped = ~quint32(0);
        for (const Event& e : sorted_) {
            if (e.at != stamped) {
                out << '#';
                out.number(start + e.at) << '\n';
                stamped = e.at;
            }
            out.put(text_.data() + e.from, e.size);
        }
    }

    std::vector<Event> events_;
    std::vector<Event> sorted_;
    std::vector<quint32> counts_;
    std::string text_;
};

} // namespace

void writeVcd(const ExportPlan& plan, OutputStream& out)
{
    const TimeUnit tick = timeUnitOf(plan.tickExponent);
    out << "$comment\n  " << plan.source.toLatin1() << ": " << timeBaseText(plan) << "\n$end\n$version\n  waveform "
        << "editor " << VOK_VERSION << "\n$end\n$timescale " << std::to_string(tick.magnitude) << ' ' << tick.unit
        << " $end\n$scope module " << plan.design << " $end\n";
    const size_t count = plan.signals.size();
    std::vector<std::string> codes(count);
    std::vector<WaveChanges> waves;
    waves.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const ExportSignal& signal = plan.signals[i];
        codes[i] = codeOf(i);
        out << "$var reg " << std::to_string(signal.width) << ' ' << codes[i] << ' ' << signal.id;
        if (signal.vector)
            out << " [" << std::to_string(signal.left) << ':' << std::to_string(signal.right) << ']';
        out << " $end\n";
        waves.emplace_back(signal, plan.endTime);
    }
    out << "$upscope $end\n$enddefinitions $end\n#0\n$dumpvars\n";
    ValueText valueText;
    std::string initial;
    for (size_t i = 0; i < count; ++i)
        waves[i].initial(valueText, codes[i], initial);
    out << initial << "$end\n";
    Windows().write(waves, codes, plan.endTime, valueText, out);
    out << '#';
    out.number(plan.endTime) << '\n';
}

} // namespace kesu::toolvok
