#pragma once

// Other programs, wdl above all, run as from a terminal without a display.
#include <QProcess>

namespace testprograms {

struct Run {
    int code = -1;          // -1 also when the program crashed or did not finish
    QByteArray out, err;    // err stays empty when merged into out
};

inline Run run(const QString& program, const QStringList& args, const QString& dir = {},
               QProcess::ProcessChannelMode channels = QProcess::SeparateChannels)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(dir);
    process.setProcessChannelMode(channels);
    process.start(program, args);
    Run result;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        result.code = process.exitCode();
    result.out = process.readAllStandardOutput();
    if (channels != QProcess::MergedChannels)
        result.err = process.readAllStandardError();
    return result;
}

inline Run wdl(const QStringList& args, const QString& dir = {})
{
    return run(QStringLiteral(VOK_WDL_PATH), args, dir);
}

} // namespace testprograms
