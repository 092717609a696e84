// Quantities as an engineer types them:
//
//   number     27   148.5   1001/37   148.5/1.001   -90
//   frequency  number and Hz, kHz, MHz or GHz, or the period in ps, ns or us
//
// Units are read without regard to case. Each reader throws a USAGE_ERROR that names the argument
// and what is legal.
#pragma once

#include "app/numbers/rational.h"

#include <string>
#include <string_view>

// A frequency in Hz, above 0.
RATIONAL read_frequency(const std::string& argument, std::string_view text);

// Likewise, but not as a period.
RATIONAL read_frequency_in_hertz(const std::string& argument, std::string_view text);

// A positive ratio, no unit.
RATIONAL read_ratio(const std::string& argument, std::string_view text);

// Degrees of a clock of `frequency`, no unit or "deg", or a time that is taken as a part of its
// period. Within `lowest` and `highest`, degrees.
RATIONAL read_phase(const std::string& argument, std::string_view text, const RATIONAL& frequency,
                    int lowest, int highest);

// A percentage with or without "%".
RATIONAL read_percentage(const std::string& argument, std::string_view text);

// A part of one, typed in ppm, ppb or %.
RATIONAL read_tolerance(const std::string& argument, std::string_view text);

// Whole picoseconds, no unit or ps, ns or us, within `largest` either way.
int read_delay(const std::string& argument, std::string_view text, int largest);

// A whole number from `lowest` to `highest`.
int read_integer(const std::string& argument, std::string_view text, int lowest, int highest);
