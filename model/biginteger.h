#pragma once

#include <gmpxx.h>
#include <string>

namespace kesu::toolvok {

// A non-negative integer of any width, read from and written to text in a
// radix; bus values are held as hexadecimal text and go through this class
// whenever they are shown or changed.
class BigInteger
{
public:
    BigInteger() = default;
    // Text that is not a number in the radix (empty, a stray character, a sign)
    // gives a BigInteger whose isNumber() is false.
    BigInteger(const std::string& text, int radix);
    explicit BigInteger(const mpz_class& value) : value_(value), number_(true) {}

    bool isNumber() const { return number_; }
    // The value is a number that fits in width bits.
    bool isValid(int width) const;
    bool bitAt(int bit) const;
    // The value plus or minus one, wrapping around within width bits.
    BigInteger plusOne(int width) const;
    BigInteger minusOne(int width) const;
    // Digits in the radix (2 to 36), hexadecimal letters in upper case. Text
    // that was not a number comes back as it was given.
    std::string toString(int radix) const;

    const mpz_class& value() const { return value_; }
    bool operator==(const BigInteger& other) const
    {
        return number_ == other.number_ && value_ == other.value_ && (number_ || text_ == other.text_);
    }
    bool operator!=(const BigInteger& other) const { return !(*this == other); }

private:
    BigInteger wrapped(const mpz_class& value, int width) const;

    mpz_class value_;
    std::string text_;
    bool number_ = true;
};

} // namespace kesu::toolvok
