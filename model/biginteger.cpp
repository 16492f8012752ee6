#include "biginteger.h"

#include <algorithm>
#include <cctype>

namespace kesu::toolvok {

namespace {
int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return 99;
}
} // namespace

BigInteger::BigInteger(const std::string& text, int radix)
{
    // GMP skips white space inside the text and reads signs; a bus value has
    // neither, so the digits are checked here first.
    const bool digitsOnly = radix >= 2 && radix <= 36 && !text.empty()
        && std::all_of(text.begin(), text.end(), [radix](char c) { return digitValue(c) < radix; });
    number_ = digitsOnly && value_.set_str(text, radix) == 0;
    if (!number_) {
        value_ = 0;
        text_ = text;
    }
}

bool BigInteger::isValid(int width) const
{
    if (!number_ || width < 0)
        return false;
    return sgn(value_) == 0 || mpz_sizeinbase(value_.get_mpz_t(), 2) <= static_cast<size_t>(width);
}

bool BigInteger::bitAt(int bit) const
{
    return number_ && bit >= 0 && mpz_tstbit(value_.get_mpz_t(), static_cast<mp_bitcnt_t>(bit)) != 0;
}

BigInteger BigInteger::wrapped(const mpz_class& value, int width) const
{
    mpz_class result;
    if (width <= 0)
        return BigInteger(result);
    // Reduces modulo 2^width, also for values that went below zero.
    mpz_fdiv_r_2exp(result.get_mpz_t(), value.get_mpz_t(), static_cast<mp_bitcnt_t>(width));
    return BigInteger(result);
}

BigInteger BigInteger::plusOne(int width) const
{
    return wrapped(value_ + 1, width);
}

BigInteger BigInteger::minusOne(int width) const
{
    return wrapped(value_ - 1, width);
}

std::string BigInteger::toString(int radix) const
{
    if (!number_)
        return text_;
    if (radix < 2 || radix > 36)
        radix = 16;
    std::string digits = value_.get_str(radix);
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return digits;
}

} // namespace kesu::toolvok
