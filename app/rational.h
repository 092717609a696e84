// Exact fractions. Frequencies are entered, divided and compared as fractions, so that a ratio such
// as 11/2 is never that of two rounded doubles.
#pragma once

#include <cstdint>
#include <string>

__extension__ typedef __int128 WIDE_INT;

// A reduced fraction of 64-bit numbers with a positive denominator. A result that does not fit, and
// whatever is computed from it, is invalid; nothing wraps.
class RATIONAL
{
public:
    RATIONAL() = default;  // 0
    RATIONAL(WIDE_INT numerator, WIDE_INT denominator);

    bool is_valid() const { return m_denominator != 0; }
    std::int64_t numerator() const { return m_numerator; }
    std::int64_t denominator() const { return m_denominator; }
    bool is_integer() const { return m_denominator == 1; }
    bool is_positive() const { return is_valid() && m_numerator > 0; }

    RATIONAL operator*(const RATIONAL& other) const;
    RATIONAL operator/(const RATIONAL& other) const;  // invalid by zero
    RATIONAL operator-(const RATIONAL& other) const;
    RATIONAL magnitude() const;
    bool operator==(const RATIONAL& other) const = default;
    bool operator<(const RATIONAL& other) const;  // of valid fractions

    // The nearest whole number, halves away from zero.
    RATIONAL rounded() const;
    double to_double() const;

    // The value with `decimals` digits behind the point, halves away from zero.
    std::string to_decimal(int decimals) const;
    // "11/2", or "3" for a whole number.
    std::string to_fraction() const;

private:
    std::int64_t m_numerator = 0;
    std::int64_t m_denominator = 1;  // 0: invalid
};

// 10 to the power of `exponent`, 0 to 18.
std::int64_t power_of_ten(int exponent);
