// Numbers as texts, the same everywhere and in every locale.
#pragma once

#include "advice/numbers/amount.h"

#include <string>

namespace advice {

// What a frequency was typed in; the last three are periods.
enum class FREQUENCY_UNIT
{
    HZ,
    KHZ,
    MHZ,
    GHZ,
    PS,
    NS,
    US
};

// "MHz"
const char* name_of(FREQUENCY_UNIT unit);

// Hertz in a unit, without it: at most six decimals, trailing zeros cut, "~" in front when that is
// rounded, as it is for what is no fraction; "-" for what is no frequency.
std::string write_frequency_number(const AMOUNT& hertz, FREQUENCY_UNIT unit);

// Likewise with the unit: "148.5 MHz".
std::string write_frequency(const AMOUNT& hertz, FREQUENCY_UNIT unit);

// At most `decimals` decimals, trailing zeros cut; "-" for what is not a number or infinite.
std::string write_number(double value, int decimals);

// A part of one: "exact", "+12.3 ppm", "-45 ppb", "+1.25 %"; "-" for what is not a number.
std::string write_part(double part);

// Likewise, without sign: "100 ppm", "0 ppm".
std::string write_tolerance(double part);

}  // namespace advice
