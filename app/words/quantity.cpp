#include "app/words/quantity.h"

#include "app/words/letter_case.h"
#include "app/words/usage_error.h"

#include <cstddef>
#include <optional>

namespace {

constexpr int MAX_DIGITS = 18;  // of a number, so that it fits 64 bits
constexpr int PERCENT_EXPONENT = 2;
constexpr int PPM_EXPONENT = 6;
constexpr int PPB_EXPONENT = 9;
constexpr int PS_EXPONENT = 12;
constexpr int FULL_TURN = 360;  // degrees
constexpr int MAX_TOLERANCE_PPM = 1000;

const char* const NUMBER_EXPECTED = "a number such as 27, 148.5 or 1001/37";

enum class UNIT_KIND
{
    FREQUENCY,
    TIME
};

struct UNIT
{
    std::string_view m_name;
    UNIT_KIND m_kind;
    int m_exponent;  // the unit is 10 to this power of Hz, or of 1 ps
};

constexpr UNIT UNITS[] = {
    {"Hz", UNIT_KIND::FREQUENCY, 0},  {"kHz", UNIT_KIND::FREQUENCY, 3},
    {"MHz", UNIT_KIND::FREQUENCY, 6}, {"GHz", UNIT_KIND::FREQUENCY, 9},
    {"ps", UNIT_KIND::TIME, 0},       {"ns", UNIT_KIND::TIME, 3},
    {"us", UNIT_KIND::TIME, 6},
};

struct MEASURE
{
    RATIONAL m_value;
    std::string_view m_unit;  // what follows the number
};

const UNIT* find_unit(std::string_view name)
{
    for (const UNIT& unit : UNITS) {
        if (equal_but_for_case(unit.m_name, name)) {
            return &unit;
        }
    }
    return nullptr;
}

[[noreturn]] void refuse(const std::string& argument, std::string_view text,
                         const std::string& legal)
{
    throw USAGE_ERROR(argument, "'" + std::string(text) + "' is not legal; expected " + legal);
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// Takes digits with at most one point off the front of `text`; none when there is no digit or there
// are more than fit.
std::optional<RATIONAL> take_decimal(std::string_view* text)
{
    constexpr int BASE = 10;
    WIDE_INT value = 0;
    int digits = 0;
    int decimals = -1;  // -1: no point yet
    std::size_t length = 0;
    for (; length < text->size(); ++length) {
        const char c = (*text)[length];
        if (c == '.' && decimals < 0) {
            decimals = 0;
        } else if (is_digit(c)) {
            value = value * BASE + (c - '0');
            decimals += decimals < 0 ? 0 : 1;
            if (++digits > MAX_DIGITS) {
                return std::nullopt;
            }
        } else {
            break;
        }
    }
    if (digits == 0) {
        return std::nullopt;
    }
    text->remove_prefix(length);
    return RATIONAL(value, power_of_ten(decimals < 0 ? 0 : decimals));
}

bool take_character(std::string_view* text, char c)
{
    if (text->empty() || text->front() != c) {
        return false;
    }
    text->remove_prefix(1);
    return true;
}

MEASURE read_measure(const std::string& argument, std::string_view text)
{
    std::string_view rest = text;
    const bool negative = take_character(&rest, '-');
    if (!negative) {
        take_character(&rest, '+');
    }
    std::optional<RATIONAL> value = take_decimal(&rest);
    if (value && take_character(&rest, '/')) {
        const std::optional<RATIONAL> divisor = take_decimal(&rest);
        value = divisor ? std::optional(*value / *divisor) : std::nullopt;
    }
    if (!value) {
        refuse(argument, text, std::string(NUMBER_EXPECTED) + " of at most 18 digits");
    }
    if (!value->is_valid()) {
        refuse(argument, text, "a fraction with a divisor above 0 that fits 64 bits");
    }
    if (negative) {
        value = RATIONAL() - *value;
    }
    return {*value, rest};
}

RATIONAL convert_frequency(const UNIT& unit, const RATIONAL& value)
{
    const RATIONAL scale(power_of_ten(unit.m_exponent), 1);
    if (unit.m_kind == UNIT_KIND::FREQUENCY) {
        return value * scale;
    }
    return RATIONAL(power_of_ten(PS_EXPONENT), 1) / (value * scale);
}

RATIONAL read_frequency_of(const std::string& argument, std::string_view text,
                           const std::string& legal_units, bool period_is_legal)
{
    const MEASURE measure = read_measure(argument, text);
    const UNIT* unit = find_unit(measure.m_unit);
    if (unit == nullptr || (unit->m_kind == UNIT_KIND::TIME && !period_is_legal)) {
        const std::string unknown =
            measure.m_unit.empty() ? "has no unit"
                                   : "has the unknown unit '" + std::string(measure.m_unit) + "'";
        throw USAGE_ERROR(argument,
                          "'" + std::string(text) + "' " + unknown + "; legal are " + legal_units);
    }
    if (!measure.m_value.is_positive()) {
        refuse(argument, text, "a frequency above 0");
    }
    const RATIONAL hertz = convert_frequency(*unit, measure.m_value);
    if (!hertz.is_valid()) {
        refuse(argument, text, "a frequency that fits 64 bits");
    }
    return hertz;
}

}  // namespace

RATIONAL read_frequency(const std::string& argument, std::string_view text)
{
    return read_frequency_of(argument, text, "Hz, kHz, MHz, GHz, or a period in ps, ns, us", true);
}

RATIONAL read_frequency_in_hertz(const std::string& argument, std::string_view text)
{
    return read_frequency_of(argument, text, "Hz, kHz, MHz, GHz", false);
}

RATIONAL read_ratio(const std::string& argument, std::string_view text)
{
    const MEASURE measure = read_measure(argument, text);
    if (!measure.m_unit.empty() || !measure.m_value.is_positive()) {
        refuse(argument, text, "a ratio above 0 such as 11/2");
    }
    return measure.m_value;
}

RATIONAL read_phase(const std::string& argument, std::string_view text, const RATIONAL& frequency,
                    int lowest, int highest)
{
    const std::string legal = "degrees of the output from " + std::to_string(lowest) + " to " +
                              std::to_string(highest) +
                              ", or a time in ps, ns or us of at most its period";
    const MEASURE measure = read_measure(argument, text);
    RATIONAL degrees = measure.m_value;
    if (!measure.m_unit.empty() && !equal_but_for_case(measure.m_unit, "deg")) {
        const UNIT* unit = find_unit(measure.m_unit);
        if (unit == nullptr || unit->m_kind != UNIT_KIND::TIME) {
            refuse(argument, text, legal);
        }
        const RATIONAL seconds =
            measure.m_value * RATIONAL(power_of_ten(unit->m_exponent), power_of_ten(PS_EXPONENT));
        degrees = seconds * frequency * RATIONAL(FULL_TURN, 1);
    }
    if (!degrees.is_valid() || degrees < RATIONAL(lowest, 1) || RATIONAL(highest, 1) < degrees) {
        refuse(argument, text, legal);
    }
    return degrees;
}

RATIONAL read_percentage(const std::string& argument, std::string_view text)
{
    const MEASURE measure = read_measure(argument, text);
    if (!measure.m_unit.empty() && measure.m_unit != "%") {
        refuse(argument, text, "a percentage");
    }
    return measure.m_value;
}

RATIONAL read_tolerance(const std::string& argument, std::string_view text)
{
    const std::string legal =
        "0 to " + std::to_string(MAX_TOLERANCE_PPM) + " ppm, as a number with ppm, ppb or %";
    const MEASURE measure = read_measure(argument, text);
    int exponent = 0;
    if (equal_but_for_case(measure.m_unit, "ppm")) {
        exponent = PPM_EXPONENT;
    } else if (equal_but_for_case(measure.m_unit, "ppb")) {
        exponent = PPB_EXPONENT;
    } else if (measure.m_unit == "%") {
        exponent = PERCENT_EXPONENT;
    } else {
        refuse(argument, text, legal);
    }
    const RATIONAL part = measure.m_value / RATIONAL(power_of_ten(exponent), 1);
    if (!part.is_valid() || part.numerator() < 0 ||
        RATIONAL(MAX_TOLERANCE_PPM, power_of_ten(PPM_EXPONENT)) < part) {
        refuse(argument, text, legal);
    }
    return part;
}

int read_delay(const std::string& argument, std::string_view text, int largest)
{
    const std::string legal =
        "whole picoseconds from -" + std::to_string(largest) + " to " + std::to_string(largest);
    const MEASURE measure = read_measure(argument, text);
    RATIONAL ps = measure.m_value;
    if (!measure.m_unit.empty()) {
        const UNIT* unit = find_unit(measure.m_unit);
        if (unit == nullptr || unit->m_kind != UNIT_KIND::TIME) {
            refuse(argument, text, legal);
        }
        ps = ps * RATIONAL(power_of_ten(unit->m_exponent), 1);
    }
    if (!ps.is_valid() || !ps.is_integer() || RATIONAL(largest, 1) < ps.magnitude()) {
        refuse(argument, text, legal);
    }
    return static_cast<int>(ps.numerator());
}

int read_integer(const std::string& argument, std::string_view text, int lowest, int highest)
{
    std::string legal = std::to_string(lowest);
    if (lowest < highest) {
        legal = "a whole number from " + legal + " to " + std::to_string(highest);
    }
    const MEASURE measure = read_measure(argument, text);
    const RATIONAL value = measure.m_value;
    if (!measure.m_unit.empty() || !value.is_integer() || value < RATIONAL(lowest, 1) ||
        RATIONAL(highest, 1) < value) {
        refuse(argument, text, legal);
    }
    return static_cast<int>(value.numerator());
}
