#include "app/lint/plausible.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr double PS_PER_NS = 1e3;
constexpr double PS_PER_US = 1e6;
constexpr double MHZ_TIMES_PS = 1e6;
constexpr double KILO = 1e3;
constexpr double MEGA = 1e6;
constexpr double PERCENT = 100.0;
constexpr double THOUSANDTHS_OF_PERCENT = 10.0;

// A unit that may have been meant.
struct OTHER_UNIT
{
    const char* m_unit;  // of the keyword
    const char* m_other;
    double m_factor;       // gives the value in the unit of the keyword
    bool m_is_reciprocal;  // the factor over the value
};

const OTHER_UNIT OTHER_UNITS[] = {
    {"ps", "ns", PS_PER_NS, false},
    {"ps", "MHz", MHZ_TIMES_PS, true},
    {"ps", "us", PS_PER_US, false},
    {"ps", "GHz", KILO, true},
    {"Hz", "kHz", KILO, false},
    {"Hz", "MHz", MEGA, false},
    {"fraction", "percent", 1.0 / PERCENT, false},
    {"thousandths", "fractions", KILO, false},
    {"thousandths", "hundredths of a percent", 1.0 / THOUSANDTHS_OF_PERCENT, false},
    {"ohm", "kilohm", KILO, false},
    {"uA", "nA", 1.0 / KILO, false},
    {"pF", "fF", 1.0 / KILO, false},
    {"MHz/V", "GHz/V", KILO, false},
    {"MHz/V", "Hz/V", 1.0 / MEGA, false},
    {"MHz/V", "kHz/V", 1.0 / KILO, false},
};

bool is_plausible(const KEYWORD& keyword, double value)
{
    return value >= keyword.m_plausible.m_min && value <= keyword.m_plausible.m_max;
}

}  // namespace

std::string short_number(double value)
{
    constexpr std::size_t SIZE = 64;
    char text[SIZE];
    std::snprintf(text, SIZE, "%.10g", value);
    return text;
}

std::string describe_range(const KEYWORD& keyword)
{
    return keyword.m_range;
}

std::string doubt_unit(const KEYWORD& keyword, double value)
{
    std::string text = short_number(value) + (*keyword.m_unit == '\0' ? "" : " ") + keyword.m_unit +
                       " can hardly be meant by '" + keyword.m_name + "'";
    const char* separator = "; ";
    for (const OTHER_UNIT& other : OTHER_UNITS) {
        const double converted =
            other.m_is_reciprocal ? other.m_factor / value : other.m_factor * value;
        if (std::strcmp(other.m_unit, keyword.m_unit) == 0 && value != 0.0 &&
            is_plausible(keyword, converted)) {
            text += separator + short_number(value) + " " + other.m_other + " would be " +
                    short_number(converted);
            separator = ", ";
        }
    }
    return text;
}
