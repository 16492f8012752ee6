// The document as WaveJSON, for documentation drawn by WaveDrom: one
// character of a wave per step, the step being the largest time that every
// segment, offset and the end are whole multiples of.
#include "course.h"
#include "writers.h"

#include <QJsonArray>
#include <QJsonDocument>

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

// The text as a JSON string, quotes included.
QByteArray jsonString(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

// One wave's characters: its state at each step, "." where it goes on, and
// "=" for each bus segment with its value in data.
void writeWave(const ExportSignal& signal, quint64 endTime, quint64 step, OutputStream& out)
{
    out << "  {\"name\": " << jsonString(signal.wave->name) << ", \"wave\": \"";
    QByteArray data;
    char last = 0;
    Course course(signal, endTime);
    while (out.ok() && !course.done() && course.time() < endTime) {
        const quint64 start = course.time();
        const std::string* value = course.value();
        course.step();
        const quint64 end = course.done() ? endTime : std::min(course.time(), endTime);
        const char state = !value || Values::isDontCare(*value) ? 'x'
            : Values::isHighZ(*value)                          ? 'z'
            : signal.wave->isBus                               ? '='
                                                               : (*value)[0];
        if (state == '=')
            data.append(data.isEmpty() ? "" : ", ").append(jsonString(QString::fromStdString(*value)));
        out << (state == last && state != '=' ? '.' : state);
        for (quint64 n = (end - start) / step; n > 1; --n)
            out << '.';
        last = state;
    }
    out << '"';
    if (!data.isEmpty())
        out << ", \"data\": [" << data << ']';
    out << '}';
}

} // namespace

void writeWaveJson(const ExportPlan& plan, OutputStream& out)
{
    const quint64 step = commonStep(plan);
    out << "{\"signal\": [\n";
    // A stopped stream writes nothing more: the waves left are not worked out.
    for (size_t i = 0; i < plan.signals.size() && out.ok(); ++i) {
        writeWave(plan.signals[i], plan.endTime, step, out);
        out << (i + 1 < plan.signals.size() ? ",\n" : "\n");
    }
    out << "],\n\"foot\": {\"text\": \"step " << vhdlTime(step, plan.tickExponent) << "\"}}\n";
}

} // namespace kesu::toolvok
