// The document as a VCD: every wave's value changes in time order, forever
// tails repeated up to the end time. It is worked out straight from the
// segments, apart from the HDL writers (bus values through GMP, not through
// valueBits), so that the tests can hold a simulation against it.
#include "writers.h"

#include "waveformdata.h"

#include <gmp.h>

#include <queue>

namespace kesu::toolvok {

namespace {

// One wave's course: its value from each segment's start on, in time order.
class Course
{
public:
    Course(const ExportSignal& signal, quint64 endTime)
        : wave_(*signal.wave), tailStart_(signal.tailStart), end_(endTime), next_(signal.wave->offset)
    {
        // Before the offset, and on a wave without segments, the value is unknown.
        if (next_ > 0 || !nextSegment()) {
            time_ = 0;
            value_ = nullptr;
        }
    }

    quint64 time() const { return time_; }
    bool done() const { return done_; }
    const std::string* value() const { return value_; }   // nullptr: don't care
    void step() { done_ = !nextSegment(); }

private:
    // The segment that begins at next_; false after the last, and after the
    // last repetition of a tail that begins before the end time.
    bool nextSegment()
    {
        const int count = int(wave_.patterns.size());
        for (;;) {
            if (index_ == count) {
                if (tailStart_ < 0 || next_ >= end_)
                    return false;
                index_ = tailStart_;
            }
            const Pattern* p = wave_.patterns.at(index_++);
            if (p->duration == 0)
                continue;
            time_ = next_;
            value_ = &p->value;
            next_ += quint64(p->duration);
            return true;
        }
    }

    const WaveData& wave_;
    int tailStart_;
    quint64 end_;
    quint64 next_;
    int index_ = 0;
    bool done_ = false;
    quint64 time_ = 0;
    const std::string* value_ = nullptr;
};

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

    // "b0101 " for a vector, "1" for a single bit; without the code.
    const std::string& operator()(const ExportSignal& signal, const std::string* value)
    {
        const size_t width = size_t(signal.width);
        text_.assign(signal.vector ? 1 : 0, 'b');
        if (!value || Values::isSpecial(*value)) {
            text_.append(width, !value || Values::isDontCare(*value) ? 'x' : 'z');
        } else if (!signal.wave->isBus) {
            text_ += *value;
        } else {
            mpz_set_str(number_, value->c_str(), 16);
            digits_.resize(mpz_sizeinbase(number_, 2) + 2);
            mpz_get_str(digits_.data(), 2, number_);
            const size_t length = std::char_traits<char>::length(digits_.data());
            text_.append(width - length, '0').append(digits_.data(), length);
        }
        if (signal.vector)
            text_.push_back(' ');
        return text_;
    }

private:
    mpz_t number_;
    std::string digits_;
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
    std::vector<Course> courses;
    courses.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const ExportSignal& signal = plan.signals[i];
        codes[i] = codeOf(i);
        out << "$var reg " << std::to_string(signal.width) << ' ' << codes[i] << ' ' << signal.id;
        if (signal.vector)
            out << " [" << std::to_string(signal.left) << ':' << std::to_string(signal.right) << ']';
        out << " $end\n";
        courses.emplace_back(signal, plan.endTime);
    }
    out << "$upscope $end\n$enddefinitions $end\n#0\n$dumpvars\n";

    ValueText valueText;
    std::vector<std::string> shown(count);
    using Entry = std::pair<quint64, size_t>;   // the time of a wave's next change, and the wave
    std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> pending;
    for (size_t i = 0; i < count; ++i) {
        shown[i] = valueText(plan.signals[i], courses[i].value());
        out << shown[i] << codes[i] << '\n';
        courses[i].step();
        if (!courses[i].done())
            pending.push({courses[i].time(), i});
    }
    out << "$end\n";
    std::string changes;
    while (!pending.empty()) {
        const quint64 time = pending.top().first;
        changes.clear();
        while (!pending.empty() && pending.top().first == time) {
            const size_t i = pending.top().second;
            pending.pop();
            const std::string& text = valueText(plan.signals[i], courses[i].value());
            if (text != shown[i]) {
                shown[i] = text;
                changes.append(text).append(codes[i]).push_back('\n');
            }
            courses[i].step();
            if (!courses[i].done())
                pending.push({courses[i].time(), i});
        }
        if (!changes.empty() && time < plan.endTime)
            out << '#' << std::to_string(time) << '\n' << changes;
    }
    out << '#' << std::to_string(plan.endTime) << '\n';
}

} // namespace kesu::toolvok
