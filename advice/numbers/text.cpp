#include "advice/numbers/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace advice {

namespace {

constexpr int FREQUENCY_DECIMALS = 6;
constexpr double PPB = 1e-9;
constexpr double PPM = 1e-6;
constexpr double PERCENT = 1e-2;
constexpr double SMALLEST_IN_PERCENT = 1e-3;
constexpr int PERCENT_DECIMALS = 3;
constexpr int PART_DECIMALS = 3;

struct UNIT
{
    const char* m_name;
    int m_exponent;  // 10 to its power: Hz in the unit, or the unit in 1 / s
    bool m_is_period;
};

// In the order of FREQUENCY_UNIT.
constexpr UNIT UNITS[] = {
    {"Hz", 0, false}, {"kHz", 3, false}, {"MHz", 6, false}, {"GHz", 9, false},
    {"ps", 12, true}, {"ns", 9, true},   {"us", 6, true},
};

const UNIT& facts_of(FREQUENCY_UNIT unit)
{
    return UNITS[static_cast<std::size_t>(unit) % std::size(UNITS)];
}

void cut_zeros(std::string* text)
{
    if (text->find('.') == std::string::npos) {
        return;
    }
    text->erase(text->find_last_not_of('0') + 1);
    if (text->back() == '.') {
        text->pop_back();
    }
}

}  // namespace

const char* name_of(FREQUENCY_UNIT unit)
{
    return facts_of(unit).m_name;
}

std::string write_frequency_number(const AMOUNT& hertz, FREQUENCY_UNIT unit)
{
    const UNIT& facts = facts_of(unit);
    const RATIONAL scale(power_of_ten(facts.m_exponent));
    const RATIONAL value = facts.m_is_period ? scale / hertz.m_exact : hertz.m_exact / scale;
    if (!value.is_valid()) {
        const double rounded = facts.m_is_period ? scale.to_double() / hertz.m_value
                                                 : hertz.m_value / scale.to_double();
        const std::string text = write_number(rounded, FREQUENCY_DECIMALS);
        return text == "-" ? text : "~" + text;
    }
    const RATIONAL smallest(1, power_of_ten(FREQUENCY_DECIMALS));
    const bool is_exact = (value / smallest).is_integer();
    std::string text = value.to_decimal(FREQUENCY_DECIMALS);
    cut_zeros(&text);
    return (is_exact ? "" : "~") + text;
}

std::string write_frequency(const AMOUNT& hertz, FREQUENCY_UNIT unit)
{
    return write_frequency_number(hertz, unit) + " " + name_of(unit);
}

std::string write_number(double value, int decimals)
{
    constexpr int MOST_DECIMALS = 9;
    constexpr double LARGEST_FIXED = 1e15;
    if (!std::isfinite(value)) {
        return "-";
    }
    char text[64];
    const bool is_large = std::fabs(value) >= LARGEST_FIXED;
    std::snprintf(text, sizeof text, is_large ? "%.*e" : "%.*f",
                  std::clamp(decimals, 0, MOST_DECIMALS), value);
    std::string result = text;
    if (!is_large) {
        cut_zeros(&result);
    }
    return result == "-0" ? "0" : result;
}

std::string write_tolerance(double part)
{
    if (!std::isfinite(part)) {
        return "-";
    }
    const double size = std::fabs(part);
    if (size >= SMALLEST_IN_PERCENT) {
        return write_number(size / PERCENT, PERCENT_DECIMALS) + " %";
    }
    if (size >= PPM || size == 0.0) {
        return write_number(size / PPM, PART_DECIMALS) + " ppm";
    }
    return write_number(size / PPB, PART_DECIMALS) + " ppb";
}

std::string write_part(double part)
{
    if (part == 0.0) {
        return "exact";
    }
    return (part < 0.0 ? "-" : part > 0.0 ? "+" : "") + write_tolerance(part);
}

}  // namespace advice
