#include "app/words/quantity.h"

#include "app/words/letter_case.h"
#include "app/words/usage_error.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

constexpr int MAX_DIGITS = 18;  // of a number, so that it fits 64 bits
constexpr int PERCENT_EXPONENT = 2;
constexpr int PPM_EXPONENT = 6;
constexpr int PPB_EXPONENT = 9;
constexpr int PS_EXPONENT = 12;
constexpr int FULL_TURN = 360;  // degrees

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
    advice::FREQUENCY_UNIT m_unit;
};

constexpr UNIT UNITS[] = {
    {"Hz", UNIT_KIND::FREQUENCY, 0, advice::FREQUENCY_UNIT::HZ},
    {"kHz", UNIT_KIND::FREQUENCY, 3, advice::FREQUENCY_UNIT::KHZ},
    {"MHz", UNIT_KIND::FREQUENCY, 6, advice::FREQUENCY_UNIT::MHZ},
    {"GHz", UNIT_KIND::FREQUENCY, 9, advice::FREQUENCY_UNIT::GHZ},
    {"ps", UNIT_KIND::TIME, 0, advice::FREQUENCY_UNIT::PS},
    {"ns", UNIT_KIND::TIME, 3, advice::FREQUENCY_UNIT::NS},
    {"us", UNIT_KIND::TIME, 6, advice::FREQUENCY_UNIT::US},
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
    while (take_character(&rest, ' ')) {
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

// Which units a frequency may have.
struct FREQUENCY_RULE
{
    const char* m_legal_units;
    bool m_period_is_legal;
    bool m_unit_is_needed;
};

constexpr FREQUENCY_RULE ANY_UNIT = {"Hz, kHz, MHz, GHz, or a period in ps, ns, us", true, true};
constexpr FREQUENCY_RULE NO_PERIOD = {"Hz, kHz, MHz, GHz", false, true};
constexpr FREQUENCY_RULE MEGAHERTZ = {"Hz, kHz, MHz, GHz, or a period in ps, ns, us", true, false};

const UNIT* find_frequency_unit(const std::string& argument, std::string_view text,
                                std::string_view name, const FREQUENCY_RULE& rule)
{
    if (name == "mHz") {
        throw USAGE_ERROR(argument, "'" + std::string(text) +
                                        "' is in millihertz; did you mean MHz, with a capital M?");
    }
    const UNIT* const unit = find_unit(name.empty() && !rule.m_unit_is_needed ? "MHz" : name);
    if (unit == nullptr || (unit->m_kind == UNIT_KIND::TIME && !rule.m_period_is_legal)) {
        const std::string unknown =
            name.empty() ? "has no unit" : "has the unknown unit '" + std::string(name) + "'";
        throw USAGE_ERROR(argument, "'" + std::string(text) + "' " + unknown + "; legal are " +
                                        rule.m_legal_units);
    }
    return unit;
}

CLOCK read_frequency_of(const std::string& argument, std::string_view text,
                        const FREQUENCY_RULE& rule)
{
    const MEASURE measure = read_measure(argument, text);
    const UNIT* const unit = find_frequency_unit(argument, text, measure.m_unit, rule);
    if (!measure.m_value.is_positive()) {
        refuse(argument, text, "a frequency above 0");
    }
    const RATIONAL hertz = convert_frequency(*unit, measure.m_value);
    if (!hertz.is_valid()) {
        refuse(argument, text, "a frequency that fits 64 bits");
    }
    return {hertz, unit->m_unit};
}

// The two ends of "A-B", "A..B", "A-", "-B" or "A", as texts; an end that is left out is empty.
struct ENDS
{
    std::string_view m_least;
    std::string_view m_most;
};

ENDS split_range(std::string_view text)
{
    const std::string_view dots = "..";
    std::size_t length = dots.size();
    std::size_t at = text.find(dots);
    if (at == std::string_view::npos) {
        at = text.find('-');
        length = 1;
    }
    if (at == std::string_view::npos) {
        return {text, text};
    }
    return {text.substr(0, at), text.substr(at + length)};
}

bool has_unit(std::string_view text)
{
    return text.find_first_of("Hhs") != std::string_view::npos;
}

}  // namespace

CLOCK read_clock(const std::string& argument, std::string_view text)
{
    return read_frequency_of(argument, text, MEGAHERTZ);
}

RATIONAL read_frequency(const std::string& argument, std::string_view text)
{
    return read_frequency_of(argument, text, ANY_UNIT).m_frequency;
}

RATIONAL read_frequency_in_hertz(const std::string& argument, std::string_view text)
{
    return read_frequency_of(argument, text, NO_PERIOD).m_frequency;
}

advice::RANGE read_frequency_range(const std::string& argument, std::string_view text)
{
    const ENDS ends = split_range(text);
    advice::RANGE range;
    if (!ends.m_most.empty()) {
        range.m_most = read_frequency_of(argument, ends.m_most, MEGAHERTZ).m_frequency;
    }
    if (!ends.m_least.empty()) {
        // In "600-1200MHz" the unit is that of both.
        std::string least(ends.m_least);
        if (!has_unit(least)) {
            const std::size_t unit = ends.m_most.find_first_not_of("0123456789./ ");
            least += unit == std::string_view::npos ? "" : ends.m_most.substr(unit);
        }
        range.m_least = read_frequency_of(argument, least, MEGAHERTZ).m_frequency;
    }
    const bool is_turned = range.m_least && range.m_most && *range.m_most < *range.m_least;
    if (!range.is_set() || is_turned) {
        refuse(argument, text, "a range such as 600-1200MHz, the lower end first");
    }
    return range;
}

advice::RANGE read_count_range(const std::string& argument, std::string_view text)
{
    constexpr int LARGEST = 1000000;
    const ENDS ends = split_range(text);
    advice::RANGE range;
    if (!ends.m_least.empty()) {
        range.m_least = RATIONAL(read_integer(argument, ends.m_least, 1, LARGEST));
    }
    if (!ends.m_most.empty()) {
        range.m_most = RATIONAL(read_integer(argument, ends.m_most, 1, LARGEST));
    }
    const bool is_turned = range.m_least && range.m_most && *range.m_most < *range.m_least;
    if (!range.is_set() || is_turned) {
        refuse(argument, text, "a range such as 1-128, the lower end first");
    }
    return range;
}

std::vector<int> read_integers(const std::string& argument, std::string_view text, int lowest,
                               int highest)
{
    std::vector<int> values;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const ENDS ends = split_range(text.substr(start, end - start));
        const int first = read_integer(argument, ends.m_least, lowest, highest);
        const int last = read_integer(argument, ends.m_most, lowest, highest);
        for (int value = first; value <= last; ++value) {
            values.push_back(value);
        }
        start = end + 1;
    }
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    if (values.empty()) {
        refuse(argument, text, "whole numbers such as 1,2 or 0-3, the lower end first");
    }
    return values;
}

RATIONAL read_amount(const std::string& argument, std::string_view text, std::string_view unit)
{
    const MEASURE measure = read_measure(argument, text);
    const bool is_unit = measure.m_unit.empty() || equal_but_for_case(measure.m_unit, unit);
    if (!is_unit || measure.m_value < RATIONAL()) {
        refuse(argument, text, "a number from 0 on, with " + std::string(unit) + " or no unit");
    }
    return measure.m_value;
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

RATIONAL read_tolerance(const std::string& argument, std::string_view text, const RATIONAL& most)
{
    const std::string legal = "0 to " +
                              (most * RATIONAL(power_of_ten(PERCENT_EXPONENT))).to_fraction() +
                              " %, as a number with ppm, ppb or %";
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
    if (!(part >= RATIONAL()) || most < part) {
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
