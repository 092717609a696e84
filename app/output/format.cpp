#include "app/output/format.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr int MHZ_EXPONENT = 6;
constexpr double HZ_PER_MHZ = 1e6;

// Larger numbers, which only a faulty database holds, take an exponent to fit a column.
constexpr double LARGEST_FIXED = 1e15;

std::string without_trailing_zeros(std::string text)
{
    if (text.find('.') == std::string::npos || text.find('e') != std::string::npos) {
        return text;
    }
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

struct ERROR_UNIT
{
    std::int64_t m_parts;  // how many make one
    int m_decimals;
    const char* m_name;
    RATIONAL m_from;  // the least part that is given in this unit
};

// The unit that leaves one to three digits before the point, and a percentage beyond a thousandth.
const ERROR_UNIT ERROR_UNITS[] = {
    {100, 3, " %", RATIONAL(1, 1000)},          {1000000, 1, " ppm", RATIONAL(1, 100000)},
    {1000000, 3, " ppm", RATIONAL(1, 1000000)}, {1000000000, 1, " ppb", RATIONAL(1, 10000000000)},
    {1000000000, 7, " ppb", RATIONAL()},
};

}  // namespace

std::string format_fixed(double value, int decimals)
{
    if (!std::isfinite(value)) {
        return "-";
    }
    char text[32];
    if (std::abs(value) >= LARGEST_FIXED) {
        std::snprintf(text, sizeof text, "%.9g", value);
        return text;
    }
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    const bool is_zero = std::string(text).find_first_of("123456789") == std::string::npos;
    return is_zero && text[0] == '-' ? std::string(text + 1) : std::string(text);
}

std::string format_short(double value, int decimals)
{
    return without_trailing_zeros(format_fixed(value, decimals));
}

std::string format_given(double value, int decimals)
{
    return value < 0.0 ? "-" : format_fixed(value, decimals);
}

std::string format_mhz(const RATIONAL& hertz, const RATIONAL& ratio)
{
    if (!hertz.is_valid() || !ratio.is_valid()) {
        return "-";
    }
    std::string text((hertz * ratio).is_integer() ? 0 : 1, '~');
    text += format_mhz_number(hertz, ratio);
    return text;
}

std::string format_mhz_short(const RATIONAL& hertz, const RATIONAL& ratio)
{
    return without_trailing_zeros(format_mhz(hertz, ratio));
}

std::string format_mhz_number(const RATIONAL& hertz, const RATIONAL& ratio)
{
    const RATIONAL product = hertz * ratio;
    if (!product.is_valid()) {
        return format_fixed(hertz.to_double() * ratio.to_double() / HZ_PER_MHZ, MHZ_EXPONENT);
    }
    const RATIONAL mhz(product.rounded().numerator(), power_of_ten(MHZ_EXPONENT));
    return mhz.to_decimal(MHZ_EXPONENT);
}

std::string format_period_as_mhz(double period)
{
    constexpr int DECIMALS = 3;
    return period > 0.0 ? format_short(PS_MHZ / period, DECIMALS) : "-";
}

std::string format_phase(double degrees)
{
    constexpr double LARGEST = 1e6;
    const bool is_phase = degrees < LARGEST && degrees > -LARGEST;
    return is_phase ? format_fixed(degrees, PHASE_DECIMALS) : "-";
}

std::string format_part(const RATIONAL& part)
{
    if (!part.is_valid()) {
        return "-";
    }
    const RATIONAL size = part.magnitude();
    if (size == RATIONAL()) {
        return "0";
    }
    for (const ERROR_UNIT& unit : ERROR_UNITS) {
        if (!(size < unit.m_from)) {
            const double value = size.to_double() * static_cast<double>(unit.m_parts);
            return format_short(value, unit.m_decimals) + unit.m_name;
        }
    }
    return "-";
}

std::string format_error(const RATIONAL& error)
{
    if (error == RATIONAL()) {
        return "exact";
    }
    if (!error.is_valid()) {
        return "-";
    }
    std::string text(1, error.is_positive() ? '+' : '-');
    text += format_part(error);
    return text;
}
