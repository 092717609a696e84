// Quantities as an engineer types them:
//
//   number     27   148.5   1001/37   148.5/1.001   -90
//   frequency  number and Hz, kHz, MHz or GHz, or the period in ps, ns or us
//
// Blanks may stand before the unit. Units are read without regard to case, but for mHz: nobody
// means millihertz. Each reader throws a USAGE_ERROR that names the argument and what is legal.
#pragma once

#include "advice/numbers/text.h"
#include "advice/request/request.h"
#include "app/numbers/rational.h"

#include <string>
#include <string_view>
#include <vector>

struct CLOCK
{
    RATIONAL m_frequency;           // Hz
    advice::FREQUENCY_UNIT m_unit;  // that it was typed in
};

// A frequency above 0; one without a unit is in MHz.
CLOCK read_clock(const std::string& argument, std::string_view text);

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

// A part of one, typed in ppm, ppb or %, at most `most`.
RATIONAL read_tolerance(const std::string& argument, std::string_view text, const RATIONAL& most);

// A number of at least 0 with one of two units or none: "1", "1deg".
RATIONAL read_amount(const std::string& argument, std::string_view text, std::string_view unit);

// "600-1200MHz", "600MHz..1.2GHz", "600MHz-" or "-1200MHz": both ends count.
advice::RANGE read_frequency_range(const std::string& argument, std::string_view text);

// "1-128", "4-" or "-128", whole numbers from 1 on; "8" is the range of that number alone.
advice::RANGE read_count_range(const std::string& argument, std::string_view text);

// "1,2" or "0-3": whole numbers from `lowest` to `highest`, ascending.
std::vector<int> read_integers(const std::string& argument, std::string_view text, int lowest,
                               int highest);

// Whole picoseconds, no unit or ps, ns or us, within `largest` either way.
int read_delay(const std::string& argument, std::string_view text, int largest);

// A whole number from `lowest` to `highest`.
int read_integer(const std::string& argument, std::string_view text, int lowest, int highest);
