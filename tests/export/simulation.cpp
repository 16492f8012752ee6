#include "simulation.h"

#include "exportwaveforms.h"
#include "vcdreader.h"

#include <QBuffer>
#include <QDir>
#include <QRegularExpression>

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
            return step.join(' ') + '\n' + QString::fromLocal8Bit(run.out);
    }
    return {};
}

int exportFile(const char* option, const QString& input, const QString& output)
{
    QByteArray arguments[] = {option, input.toLocal8Bit(), "-out=" + output.toLocal8Bit()};
    char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data()};
    return kesu::toolvok::ExportWaveforms(3, argv);
}

Dump readVcd(const QByteArray& text, quint64 end, quint64* lastTime)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    kesu::toolvok::VcdReader reader(buffer);
    Dump dump;
    if (!reader.readHeader()) {
        qWarning("%s", qPrintable(reader.error()));
        return dump;
    }
    quint64 scale = quint64(reader.unitMagnitude());
    for (int e = reader.unitExponent(); e < 15; ++e)
        scale *= 10;
    // By code: the name as every dumper spells it (no escapes, blanks, case or one-bit range, which iverilog
    // drops), and the width.
    static const QRegularExpression oneBit(QStringLiteral("\\[(-?[0-9]+):\\1\\]$"));
    std::vector<std::pair<QByteArray, int>> vars(size_t(reader.codeCount()));
    for (const kesu::toolvok::VcdVariable& var : reader.variables())
        vars[size_t(var.code)] = {QString::fromLatin1((var.reference + var.range).toLower()).remove('\\').remove(' ')
                                      .remove(oneBit).toLatin1(), var.width};
    for (auto item = reader.next(); item != kesu::toolvok::VcdReader::End; item = reader.next()) {
        const quint64 time = reader.time() * scale;
        if (lastTime)
            *lastTime = time;
        if (item != kesu::toolvok::VcdReader::Change)
            continue;
        const auto& var = vars[size_t(reader.code())];
        Changes& changes = dump[var.first];
        if (time >= end)
            continue;
        if (!changes.empty() && changes.back().first == time)
            changes.pop_back();
        const QByteArray value = QByteArray(reader.value().data(), qsizetype(reader.value().size())).toLower();
        const QByteArray full = QByteArray(var.second - value.size(), value.startsWith('1') ? '0' : value.at(0)) + value;
        if (changes.empty() || changes.back().second != full)
            changes.emplace_back(time, full);
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
