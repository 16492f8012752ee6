// The document as WaveJSON, for documentation drawn by WaveDrom: one
// character of a wave per step, the step being the largest time that every
// segment, offset and the end are whole multiples of.
#include "course.h"
#include "writers.h"

#include <numeric>

namespace kesu::toolvok {

namespace {

quint64 commonStep(const ExportPlan& plan)
{
    quint64 step = plan.endTime;
    for (const ExportSignal& signal : plan.signals) {
        step = std::gcd(step, signal.wave->offset);
        for (const Pattern* p : signal.wave->patterns)
            step = std::gcd(step, quint64(p->duration));
    }
    return step == 0 ? 1 : step;
}

std::string jsonString(const QString& text)
{
    std::string out = "\"";
    for (const char c : text.toStdString()) {
        if (c == '"' || c == '\\') {
            out.push_back('\\');
            out.push_back(c);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            static const char hex[] = "0123456789abcdef";
            out.append("\\u00").append(1, hex[c >> 4]).append(1, hex[c & 15]);
        } else {
            out.push_back(c);
        }
    }
    return out + '"';
}

// One wave's characters: its state at each step, "." where it goes on, and
// "=" for each bus segment with its value in data.
void writeWave(const ExportSignal& signal, quint64 endTime, quint64 step, OutputStream& out)
{
    out << "  {\"name\": " << jsonString(signal.wave->name) << ", \"wave\": \"";
    std::string data;
    char last = 0;
    Course course(signal, endTime);
    while (!course.done() && course.time() < endTime) {
        const quint64 start = course.time();
        const std::string* value = course.value();
        course.step();
        const quint64 end = course.done() ? endTime : std::min(course.time(), endTime);
        const char state = !value || Values::isDontCare(*value) ? 'x'
            : Values::isHighZ(*value)                          ? 'z'
            : signal.wave->isBus                               ? '='
                                                               : (*value)[0];
        if (state == '=')
            data.append(data.empty() ? "" : ", ").append(jsonString(QString::fromStdString(*value)));
        out << (state == last && state != '=' ? '.' : state);
        for (quint64 n = (end - start) / step; n > 1; --n)
            out << '.';
        last = state;
    }
    out << '"';
    if (!data.empty())
        out << ", \"data\": [" << data << ']';
    out << '}';
}

} // namespace

void writeWaveJson(const ExportPlan& plan, OutputStream& out)
{
    const quint64 step = commonStep(plan);
    out << "{\"signal\": [\n";
    for (size_t i = 0; i < plan.signals.size(); ++i) {
        writeWave(plan.signals[i], plan.endTime, step, out);
        out << (i + 1 < plan.signals.size() ? ",\n" : "\n");
    }
    out << "],\n\"foot\": {\"text\": \"step " << vhdlTime(step, plan.tickExponent) << "\"}}\n";
}

} // namespace kesu::toolvok
