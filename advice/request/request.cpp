#include "advice/request/request.h"

#include "pll_info.h"
#include "pll_prop.h"

#include <limits>

namespace advice {

namespace {

constexpr int PS_PER_SECOND_EXPONENT = 12;
constexpr std::int64_t LARGEST_INT = std::numeric_limits<int>::max();
constexpr int MAX_PHASE = 360;  // degrees of the output, either way

bool fits_int(const RATIONAL& value)
{
    return value.is_positive() && value.numerator() <= LARGEST_INT &&
           value.denominator() <= LARGEST_INT;
}

int to_int(const RATIONAL& value)
{
    const RATIONAL whole = value.rounded();
    if (!whole.is_valid() || whole.magnitude() > RATIONAL(LARGEST_INT)) {
        return 0;
    }
    return static_cast<int>(whole.numerator());
}

RATIONAL period_in_ps(const RATIONAL& frequency)
{
    return RATIONAL(power_of_ten(PS_PER_SECOND_EXPONENT)) / frequency;
}

// a / b, in doubles where the exact quotient does not fit.
double divide(const RATIONAL& a, const RATIONAL& b)
{
    const RATIONAL quotient = a / b;
    return quotient.is_valid() ? quotient.to_double() : a.to_double() / b.to_double();
}

std::optional<REQUEST_PROBLEM> find_input_problem(const char* field, const INPUT_CLOCK& input)
{
    if (input.m_library_period >= 1) {
        return std::nullopt;
    }
    return REQUEST_PROBLEM{field, NO_OUTPUT,
                           "expected a period of 1 to " + std::to_string(LARGEST_INT) +
                               " ps (465.7 Hz to 1000 GHz)"};
}

std::optional<REQUEST_PROBLEM> find_phase_problem(const REQUEST& request, std::size_t output)
{
    const int index = static_cast<int>(output);
    const OUTPUT_WISH& wish = request.m_outputs[output];
    if (!(wish.m_phase.magnitude() <= RATIONAL(MAX_PHASE))) {
        return REQUEST_PROBLEM{"phase", index, "expected -360 to 360 degrees of the output"};
    }
    std::size_t steps = 0;
    int to = wish.m_phase_to;
    while (to != NO_OUTPUT) {
        const bool is_output = to >= 0 && static_cast<std::size_t>(to) < request.m_outputs.size();
        if (!is_output) {
            return REQUEST_PROBLEM{"phase", index, "counts from an output that there is not"};
        }
        if (++steps > request.m_outputs.size()) {
            return REQUEST_PROBLEM{"phase", index, "counts from itself, by way of others"};
        }
        to = request.m_outputs[static_cast<std::size_t>(to)].m_phase_to;
    }
    return std::nullopt;
}

std::optional<REQUEST_PROBLEM> find_output_problem(const REQUEST& request, std::size_t output)
{
    const int index = static_cast<int>(output);
    const OUTPUT_WISH& wish = request.m_outputs[output];
    if (!fits_int(wish.m_ratio)) {
        const std::string ratio =
            wish.m_ratio.is_valid() ? ", " + wish.m_ratio.to_fraction() + "," : "";
        return REQUEST_PROBLEM{"frequency", index,
                               "its ratio to the input" + ratio +
                                   " does not fit; factor and divisor may be 1 to " +
                                   std::to_string(LARGEST_INT) + " each"};
    }
    if (!wish.m_duty.is_positive() || !(wish.m_duty < RATIONAL(100))) {
        return REQUEST_PROBLEM{"duty", index, "expected a percentage above 0 and below 100"};
    }
    if (wish.m_delay > MAX_DELAY_CHAIN_VALUE || wish.m_delay < -MAX_DELAY_CHAIN_VALUE) {
        return REQUEST_PROBLEM{"delay", index,
                               "expected whole picoseconds from -" +
                                   std::to_string(MAX_DELAY_CHAIN_VALUE) + " to " +
                                   std::to_string(MAX_DELAY_CHAIN_VALUE)};
    }
    return find_phase_problem(request, output);
}

std::optional<REQUEST_PROBLEM> find_loop_problem(const REQUEST& request)
{
    if (request.m_bandwidth_kind == BANDWIDTH_KIND::CUSTOM && !request.m_bandwidth.is_positive()) {
        return REQUEST_PROBLEM{"bandwidth", NO_OUTPUT, "expected a frequency above 0"};
    }
    if (!(request.m_spread >= RATIONAL()) || !(request.m_spread < RATIONAL(1))) {
        return REQUEST_PROBLEM{"spread", NO_OUTPUT, "expected a percentage above 0 and below 100"};
    }
    if (request.m_spread_rate && to_int(period_in_ps(*request.m_spread_rate)) < 1) {
        return REQUEST_PROBLEM{"spread_rate", NO_OUTPUT,
                               "expected a period of 1 to " + std::to_string(LARGEST_INT) + " ps"};
    }
    if (request.m_vco_ratio && !fits_int(*request.m_vco_ratio)) {
        return REQUEST_PROBLEM{"vco_ratio", NO_OUTPUT,
                               "factor and divisor may be 1 to " + std::to_string(LARGEST_INT) +
                                   " each"};
    }
    const int outputs = static_cast<int>(request.m_outputs.size());
    if (request.m_feedback != NO_OUTPUT &&
        (request.m_feedback < 0 || request.m_feedback >= outputs)) {
        return REQUEST_PROBLEM{"feedback", NO_OUTPUT,
                               "expected an output from 1 to " + std::to_string(outputs)};
    }
    return std::nullopt;
}

int duty_of(const RATIONAL& percent)
{
    const int whole = to_int(percent);
    return whole < 1 ? 1 : whole > 99 ? 99 : whole;
}

}  // namespace

INPUT_CLOCK make_input(const RATIONAL& frequency)
{
    INPUT_CLOCK input;
    input.m_frequency = frequency;
    input.m_period = period_in_ps(frequency);
    const int period = to_int(input.m_period);
    input.m_library_period = period < 0 ? 0 : period;
    return input;
}

TOLERANCES TOLERANCES::exact()
{
    const RATIONAL none;
    return {none, none, none, none, none, none, none};
}

RATIONAL max_frequency_tolerance()
{
    return {1, 10};
}

bool LIMITS_BY_HAND::is_set() const
{
    return m_vco.is_set() || m_pfd.is_set() || m_input.is_set() || m_output.is_set() ||
           m_m.is_set() || m_n.is_set() || m_k.is_set() || !m_post_scales.empty() ||
           !m_vco_taps.empty();
}

std::string name_of_output(const REQUEST& request, std::size_t output)
{
    const std::string& name = request.m_outputs[output].m_name;
    return name.empty() ? "output " + std::to_string(output + 1) : name;
}

TOLERANCES tolerances_of(const REQUEST& request, std::size_t output)
{
    TOLERANCES tolerances = request.m_tolerances;
    const OUTPUT_TOLERANCES& own = request.m_outputs[output].m_tolerances;
    tolerances.m_frequency = own.m_frequency.value_or(tolerances.m_frequency);
    tolerances.m_phase = own.m_phase.value_or(tolerances.m_phase);
    tolerances.m_duty = own.m_duty.value_or(tolerances.m_duty);
    tolerances.m_delay = own.m_delay.value_or(tolerances.m_delay);
    return tolerances;
}

RATIONAL frequency_of(const REQUEST& request, const RATIONAL& ratio)
{
    return request.m_input.m_frequency * ratio;
}

std::optional<REQUEST_PROBLEM> find_problem(const REQUEST& request, int max_outputs)
{
    const int outputs = static_cast<int>(request.m_outputs.size());
    if (outputs < 1 || outputs > max_outputs) {
        return REQUEST_PROBLEM{"outputs", NO_OUTPUT,
                               std::to_string(outputs) + " outputs; legal are 1 to " +
                                   std::to_string(max_outputs)};
    }
    auto problem = find_input_problem("input", request.m_input);
    if (!problem && request.m_input2) {
        problem = find_input_problem("input2", *request.m_input2);
    }
    for (std::size_t i = 0; i < request.m_outputs.size() && !problem; ++i) {
        problem = find_output_problem(request, i);
    }
    return problem ? problem : find_loop_problem(request);
}

// With r and s the ratios of the output and of the other, d degrees of the other are d x r / s of
// the output.
RATIONAL phase_to_input(const REQUEST& request, std::size_t output)
{
    RATIONAL phase = request.m_outputs[output].m_phase;
    int to = request.m_outputs[output].m_phase_to;
    for (std::size_t step = 0; to != NO_OUTPUT && step < request.m_outputs.size(); ++step) {
        const OUTPUT_WISH& other = request.m_outputs[static_cast<std::size_t>(to)];
        phase = phase + other.m_phase * request.m_outputs[output].m_ratio / other.m_ratio;
        to = other.m_phase_to;
    }
    return phase;
}

PLL_PROP to_prop(const REQUEST& request)
{
    PLL_PROP prop(static_cast<int>(request.m_outputs.size()));
    prop.m_fin_period = request.m_input.m_library_period;
    if (request.m_input2) {
        prop.m_fin2_period = request.m_input2->m_library_period;
    }
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        PLL_USER_TAP& tap = prop.m_taps[i];
        tap.m_mult = static_cast<int>(wish.m_ratio.numerator());
        tap.m_div = static_cast<int>(wish.m_ratio.denominator());
        tap.m_phase = divide(phase_to_input(request, i), wish.m_ratio);
        tap.m_duty = duty_of(wish.m_duty);
        tap.m_delay = wish.m_delay;
        tap.m_use_even_counter_mode = wish.m_even;
        tap.m_use_even_counter_value = wish.m_even_count;
    }
    prop.m_bandwidth_type = static_cast<int>(request.m_bandwidth_kind);
    if (request.m_bandwidth_kind == BANDWIDTH_KIND::CUSTOM) {
        prop.m_bandwidth = request.m_bandwidth.to_double();
    }
    prop.m_down_spread = request.m_spread.to_double();
    if (request.m_spread_rate) {
        prop.m_ss_period = to_int(period_in_ps(*request.m_spread_rate));
    }
    if (request.m_vco_ratio) {
        prop.m_vco_mult = static_cast<int>(request.m_vco_ratio->numerator());
        prop.m_vco_div = static_cast<int>(request.m_vco_ratio->denominator());
    }
    prop.m_feedback_tap = request.m_feedback;
    prop.m_use_reconfig = request.m_reconfig;
    return prop;
}

}  // namespace advice
