#include "simulation.h"

#include "exportwaveforms.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

Run runProgram(const QString& dir, const QString& program, const QStringList& args)
{
    QProcess process;
    process.setWorkingDirectory(dir);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, args);
    Run run;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        run.code = process.exitCode();
    run.output = process.readAll();
    return run;
}

QString runGhdl(const QString& dir, const QString& std, const QStringList& files, const QString& top,
                const QStringList& runOptions, Run& run)
{
    const QStringList options{"--std=" + std, "--workdir=work" + std};
    if (!QDir(dir).mkpath("work" + std))
        return QStringLiteral("no work folder");
    for (const QStringList& step : {QStringList{"-a"} + options + files, QStringList{"-e"} + options + QStringList{top},
                                    QStringList{"-r"} + options + QStringList{top} + runOptions}) {
        run = runProgram(dir, QStringLiteral("ghdl"), step);
        if (run.code != 0)
            return step.join(' ') + '\n' + QString::fromLocal8Bit(run.output);
    }
    return {};
}

int exportFile(const char* option, const QString& input, const QString& output)
{
    QByteArray arguments[] = {option, input.toLocal8Bit(), "-out=" + output.toLocal8Bit()};
    char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data()};
    return kesu::toolvok::ExportWaveforms(3, argv);
}

namespace {

// "100ps" or "1 fs" in femtoseconds.
quint64 femtosecondsPer(const QByteArray& timescale)
{
    static const QStringList units{"fs", "ps", "ns", "us", "ms", "s"};
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("^([0-9]+)([a-z]+)$")).match(QString::fromLatin1(timescale).remove(' '));
    quint64 scale = match.captured(1).toULongLong();
    for (qsizetype i = units.indexOf(match.captured(2)); i > 0; --i)
        scale *= 1000;
    return scale;
}

// Names as both simulators and our own VCD spell them, vector ranges
// included: escapes, blanks and case left out, and the range of one bit,
// which iverilog leaves out.
QByteArray nameKey(const QByteArray& name)
{
    static const QRegularExpression oneBit(QStringLiteral("\\[(-?[0-9]+):\\1\\]$"));
    return QString::fromLatin1(name.toLower()).remove('\\').remove(' ').remove(oneBit).toLatin1();
}

QByteArray fullWidth(QByteArray value, int width)
{
    value = value.toLower();
    if (value.startsWith('b'))
        value.remove(0, 1);
    const char fill = value.startsWith('1') ? '0' : value.at(0);
    return QByteArray(width - value.size(), fill) + value;
}

} // namespace

Dump readVcd(const QByteArray& text, quint64 end, quint64* lastTime)
{
    const QList<QByteArray> words = text.simplified().split(' ');
    QMap<QByteArray, std::pair<QByteArray, int>> vars;   // code -> name, width
    Dump dump;
    quint64 scale = 1;
    quint64 time = 0;
    auto change = [&](const QByteArray& code, const QByteArray& value) {
        const auto var = vars.value(code);
        Changes& changes = dump[var.first];
        if (time >= end)
            return;
        if (!changes.empty() && changes.back().first == time)
            changes.pop_back();
        const QByteArray full = fullWidth(value, var.second);
        if (changes.empty() || changes.back().second != full)
            changes.emplace_back(time, full);
    };
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QByteArray& w = words.at(i);
        if (w == "$timescale") {
            QByteArray scaleText;
            while (words.at(++i) != "$end")
                scaleText += words.at(i);
            scale = femtosecondsPer(scaleText);
        } else if (w == "$var") {
            const int width = words.at(i + 2).toInt();
            const QByteArray code = words.at(i + 3);
            QByteArray name;
            for (i += 4; words.at(i) != "$end"; ++i)
                name += words.at(i);
            vars.insert(code, {nameKey(name), width});
        } else if (w == "$comment" || w == "$version" || w == "$date") {
            while (words.at(i) != "$end")
                ++i;
        } else if (w.startsWith('#')) {
            time = w.mid(1).toULongLong() * scale;
            if (lastTime)
                *lastTime = time;
        } else if (w.startsWith('b') || w.startsWith('B')) {
            change(words.at(i + 1), w);
            ++i;
        } else if (!w.isEmpty() && !w.startsWith('$') && vars.contains(w.mid(1))) {
            change(w.mid(1), w.left(1));
        }
    }
    return dump;
}

QString differenceOf(const Dump& expected, const Dump& actual)
{
    if (expected.keys() != actual.keys())
        return QString::fromLatin1("signals " + expected.keys().join(' ') + " against " + actual.keys().join(' '));
    auto text = [](const Changes& c, size_t k) {
        return k < c.size() ? QStringLiteral("%1 fs: %2").arg(c[k].first).arg(QString::fromLatin1(c[k].second))
                            : QStringLiteral("nothing");
    };
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        const Changes& got = actual.value(it.key());
        for (size_t i = 0; i < std::max(it->size(), got.size()); ++i) {
            if (i >= it->size() || i >= got.size() || it->at(i) != got[i])
                return QStringLiteral("%1, change %2: expected %3, simulated %4")
                    .arg(QString::fromLatin1(it.key())).arg(i).arg(text(*it, i), text(got, i));
        }
    }
    return {};
}
