// The pieces every wdl command shares: exit codes, error output, reading a
// document and writing to standard output.
#pragma once

#include <QFile>
#include <QStringList>
#include <QTextStream>

class QCommandLineParser;

namespace kesu::toolvok {
class WaveformData;
}

namespace wdl {

enum Exit { Ok = 0, Failed = 1, Usage = 2 };

QTextStream& err();

// Opens and reads a document; on failure says why on stderr.
bool readDocument(const QString& path, kesu::toolvok::WaveformData& document);
// Opens file for reading; on failure says why on stderr.
bool openInput(QFile& file);

// Writes bytes to stdout; false when the output is gone (full disk, closed pipe).
bool writeOut(const QByteArray& bytes);

// Says what is wrong and prints the help text; returns Usage.
int usage(const QString& problem);

// args holds the command's own name first, then its arguments.
using Handler = int (*)(const QStringList& args);

struct Command {
    const char* name;
    Handler run;
    const char* help; // lines for the help text, each indented by two spaces
    // Draws text, which takes a GUI application (on the offscreen platform).
    bool draws = false;
};

// Each command lives in its own file and is listed once in main.cpp.
int dumpCommand(const QStringList& args);
int formatCommand(const QStringList& args);
int exportCommand(const QStringList& args);
int importVcdCommand(const QStringList& args);
int renderCommand(const QStringList& args);

} // namespace wdl
