#include "advice/devices/hdl_values.h"

#include <algorithm>

namespace advice {

namespace {

const RATIONAL KILO(1000);
const RATIONAL PERCENT(100);
const RATIONAL EIGHTHS(8);
const RATIONAL SIXTEENTHS(16);
const RATIONAL TURN(360);
constexpr int DECIMALS = 6;
constexpr int LEAST_DECIMALS = 3;

// As many decimals as are needed, three at least.
std::string format_real(const RATIONAL& value)
{
    std::string text = value.to_decimal(DECIMALS);
    const std::size_t least = text.find('.') + LEAST_DECIMALS + 1;
    while (text.size() > least && text.back() == '0') {
        text.pop_back();
    }
    return text;
}

std::string to_binary(std::int64_t value, int width)
{
    std::string digits;
    for (int bit = width - 1; bit >= 0; --bit) {
        digits += ((value >> bit) & 1) != 0 ? '1' : '0';
    }
    return digits;
}

class HDL_VALUES
{
public:
    HDL_VALUES(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
        : m_answer(answer),
          m_sheet(*request.m_device.m_sheet),
          m_input(request.m_request.m_input.m_frequency / (KILO * KILO))
    {
    }

    std::string value_of(const PARAMETER& parameter) const
    {
        const DEVICE_CLOCK* clock = find_clock(parameter.m_output);
        switch (parameter.m_role) {
        case PARAMETER_ROLE::FIXED:
            return format(parameter, parameter.m_value);
        case PARAMETER_ROLE::N:
            return format_count(parameter, m_answer.m_n);
        case PARAMETER_ROLE::M:
            return format_count(parameter, m_answer.m_spare.empty() ? m_answer.m_m : RATIONAL(1));
        case PARAMETER_ROLE::COUNT:
            return format_count(parameter, count_of(parameter));
        case PARAMETER_ROLE::PATH:
            return m_answer.m_path;
        case PARAMETER_ROLE::DEGREES:
            return format_real(clock == nullptr ? RATIONAL(0) : clock->m_phase);
        case PARAMETER_ROLE::COARSE_PHASE:
        case PARAMETER_ROLE::FINE_PHASE:
            return format_delay(parameter);
        case PARAMETER_ROLE::SIXTEENTHS_PHASE:
            return format_number(parameter, clock == nullptr ? RATIONAL(0)
                                                             : clock->m_phase / TURN * SIXTEENTHS);
        case PARAMETER_ROLE::DUTY_SHARE:
            return format_real(clock == nullptr ? RATIONAL(1, 2) : clock->m_duty / PERCENT);
        case PARAMETER_ROLE::SIXTEENTHS_DUTY:
            return format_number(
                parameter, clock == nullptr ? RATIONAL(8) : clock->m_duty / PERCENT * SIXTEENTHS);
        case PARAMETER_ROLE::ENABLE:
            return clock != nullptr || parameter.m_output == m_answer.m_spare ? "ENABLED"
                                                                              : "DISABLED";
        case PARAMETER_ROLE::SELECT:
            return clock != nullptr && !clock->m_select.empty() ? clock->m_select
                                                                : parameter.m_absent.value_or("");
        case PARAMETER_ROLE::SHIFT_MODE:
            return format_number(parameter, RATIONAL(0));
        case PARAMETER_ROLE::FILTER_RANGE:
            return format_number(parameter, RATIONAL(filter_code()));
        case PARAMETER_ROLE::PERIOD_NS:
            return format_real(KILO / m_input);
        case PARAMETER_ROLE::INPUT_MHZ:
            return format_decimal(rounded_megahertz(m_input));
        case PARAMETER_ROLE::DEVICE:
            return m_sheet.m_devices.empty() ? "" : m_sheet.m_devices.front();
        }
        return "";
    }

private:
    // The clock that an output makes; null when it makes none.
    const DEVICE_CLOCK* find_clock(const std::string& output) const
    {
        for (const DEVICE_CLOCK& clock : m_answer.m_clocks) {
            if (clock.m_output == output) {
                return &clock;
            }
        }
        return nullptr;
    }

    // The division of an output by its own parameter, in use or not.
    RATIONAL count_of(const PARAMETER& parameter) const
    {
        if (parameter.m_output == m_answer.m_spare) {
            return m_answer.m_m;
        }
        const DEVICE_CLOCK* clock = find_clock(parameter.m_output);
        const SHEET_OUTPUT* output = m_sheet.find_output(parameter.m_output);
        if (!output->m_of.empty()) {
            return clock == nullptr ? RATIONAL(2) : clock->m_division / clock->m_count;
        }
        if (clock != nullptr) {
            return clock->m_count;
        }
        // One counter makes all clocks, or this one makes none.
        return m_answer.m_fed_back == parameter.m_output && !m_answer.m_clocks.empty()
                   ? m_answer.m_clocks.front().m_count
                   : one_counter_or_least();
    }

    RATIONAL one_counter_or_least() const
    {
        const auto own = std::count_if(m_sheet.m_outputs.begin(), m_sheet.m_outputs.end(),
                                       [](const SHEET_OUTPUT& each) { return each.m_of.empty(); });
        return own == 1 && !m_answer.m_clocks.empty() ? m_answer.m_clocks.front().m_count
                                                      : RATIONAL(1);
    }

    // No delay is the count less one; what is fed back has none.
    std::string format_delay(const PARAMETER& parameter) const
    {
        const DEVICE_CLOCK* clock = find_clock(parameter.m_output);
        const bool is_spare = parameter.m_output == m_answer.m_spare;
        const RATIONAL count = is_spare           ? m_answer.m_m
                               : clock == nullptr ? RATIONAL(1)
                                                  : clock->m_count;
        const RATIONAL delay = clock == nullptr || is_spare ? RATIONAL(0) : clock->m_delay;
        const RATIONAL whole = delay.floor();
        return parameter.m_role == PARAMETER_ROLE::COARSE_PHASE
                   ? format_number(parameter, count - RATIONAL(1) + whole)
                   : format_number(parameter, (delay - whole) * EIGHTHS);
    }

    int filter_code() const
    {
        for (const FILTER_RANGE& range : m_sheet.m_filter_ranges) {
            if (!range.m_below || m_answer.m_pfd < *range.m_below) {
                return range.m_code;
            }
        }
        return 0;
    }

    static std::string format_count(const PARAMETER& parameter, const RATIONAL& count)
    {
        switch (parameter.m_code) {
        case PARAMETER_CODE::COUNT:
            return format_number(parameter, count);
        case PARAMETER_CODE::COUNT_LESS_1:
            return format_number(parameter, count - RATIONAL(1));
        case PARAMETER_CODE::LOG2:
            break;
        }
        int bits = 0;
        for (RATIONAL power(1); power < count; power = power * RATIONAL(2)) {
            ++bits;
        }
        return format_number(parameter, RATIONAL(bits));
    }

    static std::string format_number(const PARAMETER& parameter, const RATIONAL& value)
    {
        switch (parameter.m_type) {
        case PARAMETER_TYPE::REAL:
            return format_real(value);
        case PARAMETER_TYPE::BITS:
        case PARAMETER_TYPE::DIGITS:
            return to_binary(value.rounded().numerator(), parameter.m_width);
        case PARAMETER_TYPE::INTEGER:
        case PARAMETER_TYPE::STRING:
            break;
        }
        return format_decimal(value);
    }

    // A fixed value as the sheet writes it.
    static std::string format(const PARAMETER& parameter, const std::string& value)
    {
        const std::optional<RATIONAL> number = RATIONAL::parse(value);
        const bool is_text = parameter.m_type == PARAMETER_TYPE::STRING || !number;
        return is_text ? value : format_number(parameter, *number);
    }

    const DEVICE_ANSWER& m_answer;
    const SHEET& m_sheet;
    RATIONAL m_input;  // MHz
};

}  // namespace

std::string format_decimal(const RATIONAL& value)
{
    if (!(value * KILO * KILO).is_integer()) {
        return value.to_fraction();
    }
    std::string text = value.to_decimal(DECIMALS);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

RATIONAL rounded_megahertz(const RATIONAL& value)
{
    return (value * KILO * KILO).rounded() / (KILO * KILO);
}

std::string hdl_value(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer,
                      const PARAMETER& parameter)
{
    return HDL_VALUES(request, answer).value_of(parameter);
}

}  // namespace advice
