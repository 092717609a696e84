// Numbers as texts, the same everywhere and in every locale.
#pragma once

#include "app/numbers/rational.h"

#include <string>

constexpr double PERCENT = 100.0;
constexpr double HZ_PER_KHZ = 1e3;
constexpr double PS_MHZ = 1e6;  // MHz = PS_MHZ / ps

// Fixed decimals, at most 9; an exponent from 1e15 on; "-" for what is not a number or infinite.
std::string format_fixed(double value, int decimals);

// Likewise with trailing zeros cut.
std::string format_short(double value, int decimals);

// Fixed decimals; "-" for a negative number too, which stands for one that is not given.
std::string format_given(double value, int decimals);

// Hertz, or a multiple of them, as MHz with six decimals, so to the hertz; "~" in front when that
// is rounded. The product need not fit a RATIONAL.
std::string format_mhz(const RATIONAL& hertz, const RATIONAL& ratio = RATIONAL(1, 1));

// "27", "148.5" or "~27.027027": as above with trailing zeros cut.
std::string format_mhz_short(const RATIONAL& hertz, const RATIONAL& ratio = RATIONAL(1, 1));

// As above without "~".
std::string format_mhz_number(const RATIONAL& hertz, const RATIONAL& ratio);

// A period in ps as MHz; "-" when there is none.
std::string format_period_as_mhz(double period);

constexpr int PHASE_DECIMALS = 3;

// Degrees with PHASE_DECIMALS; "-" for the huge ones that stand for none.
std::string format_phase(double degrees);

// A relative error: "exact", "+12.3 ppm", "-45 ppb", "+1.25 %"; "-" when invalid.
std::string format_error(const RATIONAL& error);

// Likewise, without sign.
std::string format_part(const RATIONAL& part);
