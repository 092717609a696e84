// Numbers in JSON. Frequencies and ratios are fractions in strings, always exact. What else is
// exact is a number where the shortest digits of a double give it back, and a fraction in a string
// where they do not.
#pragma once

#include "app/json/json.h"

#include "advice/numbers/rational.h"

#include <optional>

// "27000000" or "148500000/1001"; null for what is no number.
JSON write_fraction(const advice::RATIONAL& value);

// The product of two as a fraction in a string, even where it fits no RATIONAL.
JSON write_product(const advice::RATIONAL& a, const advice::RATIONAL& b);

// A double; null for what is not a number or infinite, which JSON does not have.
JSON write_double(double value);

// The decimal that the shortest digits of a double spell; none when it has too many.
std::optional<advice::RATIONAL> exact_decimal(double value);

// Whether a double spells the value.
bool is_exact_double(const advice::RATIONAL& value);

// A number where that is exact, else a fraction in a string.
JSON write_exact(const advice::RATIONAL& value);
