#pragma once

#include <QtGlobal>
#include <cstddef>
#include <string>

namespace kesu::toolvok {

class WaveData;

// One segment of a wave: a value held for a duration. The value is byte text:
// "0"/"1" on a single signal, hexadecimal digits on a bus, "-1" for don't care
// and "-2" for high impedance.
class Pattern
{
public:
    Pattern() = default;
    Pattern(std::string v, qint32 d) : value(std::move(v)), duration(d) {}

    // A document holds segments by the ten million: they come from large
    // blocks, without the general allocator's header in front of each and
    // without a page fault every few dozen of them (see patternpool.cpp).
    static void* operator new(std::size_t size);
    static void operator delete(void* p, std::size_t size) noexcept;

    WaveData* wave = nullptr;   // not owning; set when the segment enters a list
    std::string value;
    qint32 duration = 0;
    bool spare = false;         // kept only so that clipboard copies stay field-for-field equal
    bool forever = false;       // first segment of the wave's forever tail
};

namespace Values {
inline constexpr const char* DontCare = "-1";
inline constexpr const char* HighZ = "-2";
// Compared by hand: these run for every segment drawn, merged and written.
inline bool isDontCare(const std::string& v) { return v.size() == 2 && v[0] == '-' && v[1] == '1'; }
inline bool isHighZ(const std::string& v) { return v.size() == 2 && v[0] == '-' && v[1] == '2'; }
inline bool isSpecial(const std::string& v) { return isDontCare(v) || isHighZ(v); }
// Most neighbours differ in their length or first digit: no library call then.
inline bool same(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && (a.empty() || (a[0] == b[0] && a.compare(b) == 0));
}
// Whether a segment of value v melts into a last segment of value last: a
// bus keeps its written segmentation, but don't-care and high-impedance runs
// always melt together.
inline bool melts(const std::string& last, const std::string& v, bool bus)
{
    return same(last, v) && (!bus || isSpecial(last));
}
}

// The all-ones time: "no time".
inline constexpr quint64 NoTime = ~quint64(0);

} // namespace kesu::toolvok
