// Exact fractions. Frequencies are entered, divided and compared as fractions, so that a ratio such
// as 11/2 is never that of two rounded doubles.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace advice {

__extension__ typedef __int128 WIDE_INT;

// A reduced fraction of 64-bit numbers with a positive denominator. A result that does not fit, and
// whatever is computed from it, is invalid; nothing wraps. Comparisons are exact, in 128 bits; all
// but == and != are false when a side is invalid.
class RATIONAL
{
public:
    constexpr RATIONAL() = default;  // 0
    RATIONAL(WIDE_INT numerator, WIDE_INT denominator = 1);

    // Reads "27", "-148.5", "1001/37" or "148.5/1.001": decimals of at most 18 digits. None for
    // anything else, a division by zero and what does not fit.
    static std::optional<RATIONAL> parse(std::string_view text);

    // A fraction that is none: every comparison but == is false.
    static RATIONAL invalid() { return {0, 0}; }

    bool is_valid() const { return m_denominator != 0; }
    std::int64_t numerator() const { return m_numerator; }
    std::int64_t denominator() const { return m_denominator; }
    bool is_integer() const { return m_denominator == 1; }
    bool is_zero() const { return is_valid() && m_numerator == 0; }
    bool is_positive() const { return is_valid() && m_numerator > 0; }

    RATIONAL operator*(const RATIONAL& other) const;
    RATIONAL operator/(const RATIONAL& other) const;  // invalid by zero
    RATIONAL operator+(const RATIONAL& other) const;
    RATIONAL operator-(const RATIONAL& other) const;
    RATIONAL operator-() const;

    bool operator==(const RATIONAL& other) const = default;
    bool operator<(const RATIONAL& other) const;
    bool operator>(const RATIONAL& other) const { return other < *this; }
    bool operator<=(const RATIONAL& other) const;
    bool operator>=(const RATIONAL& other) const { return other <= *this; }

    // Without the sign.
    RATIONAL magnitude() const;

    // The nearest whole number, halves away from zero; the next one below and above.
    RATIONAL rounded() const;
    RATIONAL floor() const;
    RATIONAL ceil() const;

    // The nearest double; not a number when invalid.
    double to_double() const;

    // The value with `decimals` digits (0 to 18) behind the point, halves away from zero.
    std::string to_decimal(int decimals) const;

    // "11/2", or "3" for a whole number; "invalid" for what is none.
    std::string to_fraction() const;

private:
    std::int64_t m_numerator = 0;
    std::int64_t m_denominator = 1;  // 0: invalid
};

inline RATIONAL abs(const RATIONAL& value)
{
    return value.magnitude();
}

// 10 to the power of `exponent`, 0 to 18.
std::int64_t power_of_ten(int exponent);

}  // namespace advice
