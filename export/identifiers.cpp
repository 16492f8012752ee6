#include "identifiers.h"

#include <QRegularExpression>
#include <QSet>

namespace kesu::toolvok {

namespace {

QSet<QByteArray> wordSet(const char* text)
{
    QSet<QByteArray> words;
    for (const QByteArray& word : QByteArray(text).simplified().split(' '))
        words.insert(word);
    return words;
}

// Verilog-2005 and SystemVerilog keywords: Verilator reads the vectors as
// SystemVerilog, so its words must be escaped too.
const QSet<QByteArray>& verilogKeywords()
{
    static const QSet<QByteArray> words = wordSet(
        "accept_on alias always always_comb always_ff always_latch and assert assign assume automatic before begin "
        "bind bins binsof bit break buf bufif0 bufif1 byte case casex casez cell chandle checker class clocking cmos "
        "config const constraint context continue cover covergroup coverpoint cross deassign default defparam design "
        "disable dist do edge else end endcase endchecker endclass endclocking endconfig endfunction endgenerate "
        "endgroup endinterface endmodule endpackage endprimitive endprogram endproperty endspecify endsequence "
        "endtable endtask enum event eventually expect export extends extern final first_match for force foreach "
        "forever fork forkjoin function generate genvar global highz0 highz1 if iff ifnone ignore_bins illegal_bins "
        "implements implies import incdir include initial inout input inside instance int integer interconnect "
        "interface intersect join join_any join_none large let liblist library local localparam logic longint "
        "macromodule matches medium modport module nand negedge nettype new nexttime nmos nor noshowcancelled not "
        "notif0 notif1 null or output package packed parameter pmos posedge primitive priority program property "
        "protected pull0 pull1 pulldown pullup pulsestyle_ondetect pulsestyle_onevent pure rand randc randcase "
        "randsequence rcmos real realtime ref reg reject_on release repeat restrict return rnmos rpmos rtran "
        "rtranif0 rtranif1 s_always s_eventually s_nexttime s_until s_until_with scalared sequence shortint "
        "shortreal showcancelled signed small soft solve specify specparam static string strong strong0 strong1 "
        "struct super supply0 supply1 sync_accept_on sync_reject_on table tagged task this throughout time "
        "timeprecision timeunit tran tranif0 tranif1 tri tri0 tri1 triand trior trireg type typedef union unique "
        "unique0 unsigned until until_with untyped use uwire var vectored virtual void wait wait_order wand weak "
        "weak0 weak1 while wildcard wire with within wor xnor xor");
    return words;
}

// VHDL-2008 reserved words, a superset of VHDL-93's.
const QSet<QByteArray>& vhdlKeywords()
{
    static const QSet<QByteArray> words = wordSet(
        "abs access after alias all and architecture array assert assume assume_guarantee attribute begin block "
        "body buffer bus case component configuration constant context cover default disconnect downto else elsif "
        "end entity exit fairness file for force function generate generic group guarded if impure in inertial "
        "inout is label library linkage literal loop map mod nand new next nor not null of on open or others out "
        "package parameter port postponed procedure process property protected pure range record register reject "
        "release rem report restrict restrict_guarantee return rol ror select sequence severity shared signal sla "
        "sll sra srl strong subtype then to transport type unaffected units until use variable vmode vprop vunit "
        "wait when while with xnor xor");
    return words;
}

bool printableAscii(const QString& name, bool blankAllowed)
{
    if (name.isEmpty())
        return false;
    for (const QChar c : name) {
        if (c.unicode() > 126 || c.unicode() < (blankAllowed ? 32 : 33))
            return false;
    }
    return true;
}

} // namespace

QByteArray identifierFor(const QString& name, Language language)
{
    static const QRegularExpression verilogPlain(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_$]*\\z"));
    static const QRegularExpression vhdlBasic(QStringLiteral("\\A[A-Za-z](_?[A-Za-z0-9])*\\z"));
    const QByteArray bytes = name.toLatin1();
    if (language == Language::Vhdl) {
        if (vhdlBasic.match(name).hasMatch() && !vhdlKeywords().contains(bytes.toLower()))
            return bytes;
        if (!printableAscii(name, true))
            return {};
        return '\\' + QByteArray(bytes).replace('\\', "\\\\") + '\\';
    }
    if (verilogPlain.match(name).hasMatch() && !verilogKeywords().contains(bytes))
        return bytes;
    if (!printableAscii(name, false))
        return {};
    return language == Language::Verilog ? '\\' + bytes + ' ' : '\\' + bytes;
}

QByteArray identifierKey(const QByteArray& identifier, Language language)
{
    if (!identifier.startsWith('\\'))
        return language == Language::Vhdl ? identifier.toLower() : identifier;
    if (language == Language::Vhdl)
        return identifier;
    const QByteArray plain = identifier.mid(1).trimmed();
    return identifierFor(QString::fromLatin1(plain), language) == plain ? plain : identifier.trimmed();
}

QByteArray designName(const QString& baseName)
{
    static const QRegularExpression others(QStringLiteral("[^A-Za-z0-9]+"));
    QByteArray name = QString(baseName).replace(others, QStringLiteral("_")).toLatin1();
    while (name.startsWith('_'))
        name.remove(0, 1);
    while (name.endsWith('_'))
        name.chop(1);
    if (name.isEmpty())
        return "waveforms";
    if ((name.at(0) >= '0' && name.at(0) <= '9') || verilogKeywords().contains(name)
        || vhdlKeywords().contains(name.toLower()))
        name.prepend("w_");
    return name;
}

} // namespace kesu::toolvok
