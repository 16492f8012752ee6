// Wave names as identifiers of the languages the exports are written in.
#pragma once

#include <QByteArray>
#include <QString>

namespace kesu::toolvok {

enum class Language { Verilog, Vhdl, Vcd };

// The name as an identifier of the language: as it stands when it is a legal
// one, else escaped (Verilog "\name ", VCD the same without the blank) or
// extended (VHDL "\name\"). Empty when no identifier can carry the name
// (white space or characters outside printable ASCII).
QByteArray identifierFor(const QString& name, Language language);

// Two identifiers name the same thing when their keys are equal: VHDL basic
// identifiers ignore case, escaped Verilog ones equal their plain spelling.
QByteArray identifierKey(const QByteArray& identifier, Language language);

// A file's base name made into an identifier that is legal, and no keyword,
// in Verilog and in VHDL alike: for module and entity names, which the
// user did not write and which may therefore be changed.
QByteArray designName(const QString& baseName);

} // namespace kesu::toolvok
