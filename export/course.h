// One wave's course for the writers that lay waves out in time: its value
// from each segment's start on, forever tails repeated up to the end time.
#pragma once

#include "exportplan.h"
#include "waveformdata.h"

namespace kesu::toolvok {

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

} // namespace kesu::toolvok
