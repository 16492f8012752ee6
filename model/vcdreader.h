// A value change dump read as it streams past: the declarations first, then
// one time stamp or value change at a time, so that a dump of any size costs
// no more memory than one buffer of it. Shared by the VCD import and by the
// tests that hold simulations against our own exports.
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class QIODevice;

namespace kesu::toolvok {

// The units of a dump's time scale, each a thousand times finer than the one
// before: unit i is 10^-3i s.
inline constexpr const char* VcdUnits[] = {"s", "ms", "us", "ns", "ps", "fs"};

struct VcdVariable {
    QByteArray type;        // "wire", "reg", "real", "string", ...
    int width = 1;
    int code = 0;           // its identifier code, numbered in order of first use
    QByteArray scope;       // the enclosing scopes joined by ".", "top.dut"
    QByteArray reference;   // without an escape's backslash
    QByteArray range;       // "[7:0]", "[3]" or empty

    // Variables whose values are bits: not real, string or event ones.
    bool holdsBits() const;
    QByteArray path() const { return scope.isEmpty() ? reference : scope + '.' + reference; }
};

class VcdReader
{
public:
    explicit VcdReader(QIODevice& device);
    ~VcdReader();
    VcdReader(const VcdReader&) = delete;
    VcdReader& operator=(const VcdReader&) = delete;

    // Reads up to $enddefinitions; false with error() set.
    bool readHeader();
    const std::vector<VcdVariable>& variables() const { return variables_; }
    int codeCount() const { return codeCount_; }
    // One unit of the dump's times is unitMagnitude (1, 10 or 100) times
    // 10^-unitExponent s: "10 ns" is 10 and 9.
    int unitMagnitude() const { return magnitude_; }
    int unitExponent() const { return exponent_; }

    enum Item { Time, Change, End, Failed };
    // The next time stamp or value change after the header.
    Item next();
    // The latest time stamp (0 before the first).
    quint64 time() const { return time_; }
    // After Change: the code, and the value as written, its kind letter
    // ('b', 'r' or 's') taken off; kind() is 0 for a scalar change. Bits
    // are 0, 1, x and z in either case, or std_logic's u, w, l, h and -.
    int code() const { return changed_; }
    char kind() const { return kind_; }
    std::string_view value() const { return value_; }
    // "line 12: ..." after Failed.
    const QString& error() const { return error_; }

    // Fails with the current word's line number.
    Item fail(const QString& problem);

private:
    bool word(std::string_view& out);
    bool refill();
    bool skipSection(const char* what);
    bool readTimescale();
    bool readVariable();
    int codeOf(std::string_view text, bool declare);
    Item changeOf(std::string_view w);

    QIODevice& device_;
    std::unique_ptr<char[]> buffer_;
    size_t capacity_;
    size_t begin_ = 0;
    size_t end_ = 0;
    bool atEnd_ = false;
    qint64 line_ = 1;
    qint64 wordLine_ = 1;

    std::vector<VcdVariable> variables_;
    std::vector<QByteArray> scopes_;
    int codeCount_ = 0;
    std::vector<int> shortCodes_;   // codes of one and two characters, by their characters
    std::unordered_map<std::string, int> longCodes_;
    int magnitude_ = 1;
    int exponent_ = 9;

    quint64 time_ = 0;
    int changed_ = -1;
    char kind_ = 0;
    std::string_view value_;
    std::string scratch_;
    QString error_;
};

// text as a number of the dump's units (one is magnitude x 10^-exponent s);
// false when it is no time or no whole number of them.
bool vcdTimeOf(const QString& text, int magnitude, int exponent, quint64& units);

} // namespace kesu::toolvok
