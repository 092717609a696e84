#include "advice/numbers/rational.h"

#include <limits>
#include <numeric>

namespace advice {

namespace {

constexpr int BASE = 10;
constexpr int MAX_DIGITS = 18;  // of a number that is read, so that it fits 64 bits

WIDE_INT magnitude_of(WIDE_INT value)
{
    return value < 0 ? -value : value;
}

// Euclid's, in 64 bits as soon as both fit: nearly always from the start.
WIDE_INT greatest_common_divisor(WIDE_INT a, WIDE_INT b)
{
    constexpr WIDE_INT LARGEST = std::numeric_limits<std::int64_t>::max();
    while (b != 0 && (a > LARGEST || b > LARGEST)) {
        const WIDE_INT rest = a % b;
        a = b;
        b = rest;
    }
    if (b == 0) {
        return a;
    }
    return std::gcd(static_cast<std::int64_t>(a), static_cast<std::int64_t>(b));
}

// A 64-bit division takes a fraction of the time of one of 128 bits.
WIDE_INT divide(WIDE_INT a, WIDE_INT b)
{
    const auto short_a = static_cast<std::int64_t>(a);
    const auto short_b = static_cast<std::int64_t>(b);
    return short_a == a && short_b == b && short_b > 0 ? short_a / short_b : a / b;
}

WIDE_INT divide_to_nearest(WIDE_INT numerator, WIDE_INT denominator)
{
    const WIDE_INT quotient = (2 * magnitude_of(numerator) + denominator) / (2 * denominator);
    return numerator < 0 ? -quotient : quotient;
}

std::string digits_of(WIDE_INT value)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % BASE)));
        value /= BASE;
    } while (value != 0);
    return digits;
}

bool take_character(std::string_view* text, char c)
{
    if (text->empty() || text->front() != c) {
        return false;
    }
    text->remove_prefix(1);
    return true;
}

// Takes digits with at most one point off the front of `text`.
std::optional<RATIONAL> take_decimal(std::string_view* text)
{
    WIDE_INT value = 0;
    int digits = 0;
    int decimals = 0;
    bool has_point = false;
    while (!text->empty()) {
        const char c = text->front();
        if (c == '.' && !has_point) {
            has_point = true;
        } else if (c >= '0' && c <= '9') {
            value = value * BASE + (c - '0');
            decimals += has_point ? 1 : 0;
            if (++digits > MAX_DIGITS) {
                return std::nullopt;
            }
        } else {
            break;
        }
        text->remove_prefix(1);
    }
    if (digits == 0) {
        return std::nullopt;
    }
    return RATIONAL(value, power_of_ten(decimals));
}

}  // namespace

std::optional<RATIONAL> RATIONAL::parse(std::string_view text)
{
    const bool is_negative = take_character(&text, '-');
    if (!is_negative) {
        take_character(&text, '+');
    }
    std::optional<RATIONAL> value = take_decimal(&text);
    if (value && take_character(&text, '/')) {
        const std::optional<RATIONAL> divisor = take_decimal(&text);
        value = divisor ? std::optional(*value / *divisor) : std::nullopt;
    }
    if (!value || !value->is_valid() || !text.empty()) {
        return std::nullopt;
    }
    return is_negative ? -*value : *value;
}

RATIONAL::RATIONAL(WIDE_INT numerator, WIDE_INT denominator)
{
    constexpr WIDE_INT LARGEST = std::numeric_limits<std::int64_t>::max();
    m_denominator = 0;
    if (denominator == 0) {
        return;
    }
    if (denominator < 0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    if (denominator != 1) {
        const WIDE_INT divisor = greatest_common_divisor(magnitude_of(numerator), denominator);
        if (divisor != 1) {
            numerator = divide(numerator, divisor);
            denominator = divide(denominator, divisor);
        }
    }
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

RATIONAL RATIONAL::operator+(const RATIONAL& other) const
{
    return {WIDE_INT(m_numerator) * other.m_denominator +
                WIDE_INT(other.m_numerator) * m_denominator,
            WIDE_INT(m_denominator) * other.m_denominator};
}

RATIONAL RATIONAL::operator-(const RATIONAL& other) const
{
    return *this + -other;
}

RATIONAL RATIONAL::operator-() const
{
    return {-WIDE_INT(m_numerator), m_denominator};
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

bool RATIONAL::operator<=(const RATIONAL& other) const
{
    return is_valid() && other.is_valid() && !(other < *this);
}

RATIONAL RATIONAL::rounded() const
{
    if (!is_valid()) {
        return *this;
    }
    return {divide_to_nearest(m_numerator, m_denominator), 1};
}

RATIONAL RATIONAL::floor() const
{
    if (!is_valid()) {
        return *this;
    }
    const std::int64_t quotient = m_numerator / m_denominator;
    const bool is_cut_up = m_numerator < 0 && m_numerator % m_denominator != 0;
    return {WIDE_INT(quotient) - (is_cut_up ? 1 : 0)};
}

RATIONAL RATIONAL::ceil() const
{
    return -(-*this).floor();
}

double RATIONAL::to_double() const
{
    return static_cast<double>(m_numerator) / static_cast<double>(m_denominator);
}

std::string RATIONAL::to_decimal(int decimals) const
{
    if (!is_valid()) {
        return "invalid";
    }
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
    if (!is_valid()) {
        return "invalid";
    }
    const std::string numerator = std::to_string(m_numerator);
    return is_integer() ? numerator : numerator + "/" + std::to_string(m_denominator);
}

std::int64_t power_of_ten(int exponent)
{
    std::int64_t power = 1;
    for (int i = 0; i < exponent; ++i) {
        power *= BASE;
    }
    return power;
}

}  // namespace advice
