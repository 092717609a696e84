#include "app/json/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace {

using advice::RATIONAL;
using advice::WIDE_INT;

// Up to 128 bits, without a sign.
std::string to_digits(WIDE_INT value)
{
    constexpr int BASE = 10;
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % BASE)));
        value /= BASE;
    } while (value > 0);
    return digits;
}

WIDE_INT greatest_divisor(WIDE_INT a, WIDE_INT b)
{
    while (b != 0) {
        const WIDE_INT rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

}  // namespace

JSON write_fraction(const RATIONAL& value)
{
    return value.is_valid() ? JSON(value.to_fraction()) : JSON(nullptr);
}

JSON write_product(const RATIONAL& a, const RATIONAL& b)
{
    if (!a.is_valid() || !b.is_valid()) {
        return nullptr;
    }
    WIDE_INT numerator = WIDE_INT{a.numerator()} * b.numerator();
    WIDE_INT denominator = WIDE_INT{a.denominator()} * b.denominator();
    const bool is_negative = numerator < 0;
    numerator = is_negative ? -numerator : numerator;
    const WIDE_INT divisor = greatest_divisor(numerator, denominator);
    numerator /= divisor;
    denominator /= divisor;
    return (is_negative ? "-" : "") + to_digits(numerator) +
           (denominator == 1 ? "" : "/" + to_digits(denominator));
}

JSON write_double(double value)
{
    return std::isfinite(value) ? JSON(value) : JSON(nullptr);
}

std::optional<RATIONAL> exact_decimal(double value)
{
    constexpr std::size_t LONGEST = 400;  // the smallest double has about 340 digits
    std::array<char, LONGEST> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed);
    if (end.ec != std::errc()) {
        return std::nullopt;
    }
    return RATIONAL::parse({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
}

bool is_exact_double(const RATIONAL& value)
{
    return value.is_valid() && exact_decimal(value.to_double()) == value;
}

JSON write_exact(const RATIONAL& value)
{
    return is_exact_double(value) ? JSON(value.to_double()) : write_fraction(value);
}
