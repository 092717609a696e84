#include "rational.h"

#include <limits>

namespace {

WIDE_INT magnitude_of(WIDE_INT value)
{
    return value < 0 ? -value : value;
}

WIDE_INT greatest_common_divisor(WIDE_INT a, WIDE_INT b)
{
    while (b != 0) {
        const WIDE_INT rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

WIDE_INT divide_to_nearest(WIDE_INT numerator, WIDE_INT denominator)
{
    const WIDE_INT quotient = (2 * magnitude_of(numerator) + denominator) / (2 * denominator);
    return numerator < 0 ? -quotient : quotient;
}

std::string digits_of(WIDE_INT value)
{
    constexpr int BASE = 10;
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % BASE)));
        value /= BASE;
    } while (value != 0);
    return digits;
}

}  // namespace

RATIONAL::RATIONAL(WIDE_INT numerator, WIDE_INT denominator)
{
    constexpr WIDE_INT LARGEST = std::numeric_limits<std::int64_t>::max();
    m_denominator = 0;
    if (denominator == 0) {
        return;
    }
    const WIDE_INT divisor =
        greatest_common_divisor(magnitude_of(numerator), magnitude_of(denominator));
    const WIDE_INT sign = denominator < 0 ? -1 : 1;
    numerator = sign * numerator / divisor;
    denominator = sign * denominator / divisor;
    if (magnitude_of(numerator) > LARGEST || denominator > LARGEST) {
        return;
    }
    m_numerator = static_cast<std::int64_t>(numerator);
    m_denominator = static_cast<std::int64_t>(denominator);
}

RATIONAL RATIONAL::operator*(const RATIONAL& other) const
{
    return {WIDE_INT(m_numerator) * other.m_numerator,
            WIDE_INT(m_denominator) * other.m_denominator};
}

RATIONAL RATIONAL::operator/(const RATIONAL& other) const
{
    if (!is_valid() || !other.is_valid()) {
        return {0, 0};
    }
    return {WIDE_INT(m_numerator) * other.m_denominator,
            WIDE_INT(m_denominator) * other.m_numerator};
}

RATIONAL RATIONAL::operator-(const RATIONAL& other) const
{
    return {WIDE_INT(m_numerator) * other.m_denominator -
                WIDE_INT(other.m_numerator) * m_denominator,
            WIDE_INT(m_denominator) * other.m_denominator};
}

RATIONAL RATIONAL::magnitude() const
{
    return {magnitude_of(m_numerator), m_denominator};
}

bool RATIONAL::operator<(const RATIONAL& other) const
{
    return WIDE_INT(m_numerator) * other.m_denominator <
           WIDE_INT(other.m_numerator) * m_denominator;
}

RATIONAL RATIONAL::rounded() const
{
    if (!is_valid()) {
        return *this;
    }
    return {divide_to_nearest(m_numerator, m_denominator), 1};
}

double RATIONAL::to_double() const
{
    return static_cast<double>(m_numerator) / static_cast<double>(m_denominator);
}

std::string RATIONAL::to_decimal(int decimals) const
{
    const WIDE_INT scaled =
        divide_to_nearest(WIDE_INT(m_numerator) * power_of_ten(decimals), m_denominator);
    std::string text = digits_of(magnitude_of(scaled));
    const std::size_t width = static_cast<std::size_t>(decimals);
    if (text.size() <= width) {
        text.insert(0, width + 1 - text.size(), '0');
    }
    if (decimals > 0) {
        text.insert(text.size() - width, 1, '.');
    }
    if (scaled < 0) {
        text.insert(0, 1, '-');
    }
    return text;
}

std::string RATIONAL::to_fraction() const
{
    const std::string numerator = std::to_string(m_numerator);
    return is_integer() ? numerator : numerator + "/" + std::to_string(m_denominator);
}

std::int64_t power_of_ten(int exponent)
{
    constexpr std::int64_t BASE = 10;
    std::int64_t power = 1;
    for (int i = 0; i < exponent; ++i) {
        power *= BASE;
    }
    return power;
}
