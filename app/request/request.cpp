#include "app/request/request.h"

#include "app/devices/device.h"
#include "app/request/output_words.h"
#include "app/words/quantity.h"
#include "app/words/usage_error.h"

#include "pll.h"
#include "pll_info.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace {

constexpr int PS_PER_SECOND_EXPONENT = 12;
constexpr int PERCENT_EXPONENT = 2;

RATIONAL period_in_ps(const RATIONAL& frequency)
{
    return RATIONAL(power_of_ten(PS_PER_SECOND_EXPONENT), 1) / frequency;
}

// The whole number of ps that the library takes for a period.
int round_period(const std::string& argument, const std::string& text, const RATIONAL& period)
{
    constexpr std::int64_t LARGEST = std::numeric_limits<int>::max();
    if (!period.is_valid()) {
        throw USAGE_ERROR(argument, "'" + text +
                                        "' is not legal; expected fewer digits: its "
                                        "period does not fit 64 bits");
    }
    const RATIONAL rounded = period.rounded();
    if (!rounded.is_positive() || rounded.numerator() > LARGEST) {
        throw USAGE_ERROR(argument, "'" + text + "' is not legal; expected a period of 1 to " +
                                        std::to_string(LARGEST) + " ps (465.7 Hz to 1000 GHz)");
    }
    return static_cast<int>(rounded.numerator());
}

void read_bandwidth(const std::string& text, PLL_PROP* prop)
{
    const auto* const word =
        std::find(std::begin(BANDWIDTH_WORDS), std::end(BANDWIDTH_WORDS), text);
    if (word != std::end(BANDWIDTH_WORDS)) {
        prop->m_bandwidth_type = static_cast<int>(word - std::begin(BANDWIDTH_WORDS));
        return;
    }
    const bool is_number = !text.empty() && text.front() >= '.' && text.front() <= '9';
    if (!is_number) {
        throw USAGE_ERROR("--bandwidth", "'" + text +
                                             "' is not legal; expected high, medium, low, auto or "
                                             "a frequency such as 1.2MHz");
    }
    prop->m_bandwidth_type = BANDWIDTH_CUSTOM;
    prop->m_bandwidth = read_frequency_in_hertz("--bandwidth", text).to_double();
}

void read_spread(const REQUEST_WORDS& words, PLL_PROP* prop)
{
    if (words.m_spread_rate && !words.m_spread) {
        throw USAGE_ERROR("--spread-rate", "only together with --spread");
    }
    if (!words.m_spread) {
        return;
    }
    const RATIONAL percent = read_percentage("--spread", *words.m_spread);
    const RATIONAL whole(power_of_ten(PERCENT_EXPONENT), 1);
    if (!percent.is_positive() || !(percent < whole)) {
        throw USAGE_ERROR("--spread", "'" + *words.m_spread +
                                          "' is not legal; expected a percentage above 0 and "
                                          "below 100");
    }
    prop->m_down_spread = (percent / whole).to_double();
    if (words.m_spread_rate) {
        const RATIONAL rate = read_frequency("--spread-rate", *words.m_spread_rate);
        prop->m_ss_period = round_period("--spread-rate", *words.m_spread_rate, period_in_ps(rate));
    }
}

void read_vco_ratio(const std::string& text, PLL_PROP* prop)
{
    const RATIONAL ratio = read_ratio("--vco-ratio", text);
    constexpr std::int64_t LARGEST = std::numeric_limits<int>::max();
    if (ratio.numerator() > LARGEST || ratio.denominator() > LARGEST) {
        throw USAGE_ERROR("--vco-ratio", "'" + text +
                                             "' is not legal; factor and divisor may be 1 to " +
                                             std::to_string(LARGEST) + " each");
    }
    prop->m_vco_mult = static_cast<int>(ratio.numerator());
    prop->m_vco_div = static_cast<int>(ratio.denominator());
}

int count_outputs(const REQUEST_WORDS& words, int max_outputs)
{
    const std::size_t count = words.m_outs.size();
    if (count == 0) {
        throw USAGE_ERROR("--out", "at least one output is needed, such as --out 148.5MHz");
    }
    if (count > static_cast<std::size_t>(max_outputs)) {
        throw USAGE_ERROR("--out", std::to_string(count) +
                                       " outputs are more than the device has; legal are 1 to " +
                                       std::to_string(max_outputs));
    }
    return static_cast<int>(count);
}

}  // namespace

INPUT_CLOCK read_input(const std::string& argument, const std::string& text)
{
    INPUT_CLOCK input;
    input.m_frequency = read_frequency(argument, text);
    input.m_period = period_in_ps(input.m_frequency);
    input.m_library_period = round_period(argument, text, input.m_period);
    return input;
}

REQUEST read_request(const REQUEST_WORDS& words, const DEVICE* device)
{
    if (!words.m_in) {
        throw USAGE_ERROR("--in", "the input clock is needed, such as --in 27MHz");
    }
    const int device_outputs = device != nullptr ? device->get_max_outputs() : PLL_MAX_TAPS;
    const int max_outputs =
        words.m_max_outputs ? read_integer("--max-outputs", *words.m_max_outputs, 1, device_outputs)
                            : device_outputs;
    const int count = count_outputs(words, max_outputs);
    REQUEST request{read_input("--in", *words.m_in),
                    std::nullopt,
                    {},
                    max_outputs,
                    std::nullopt,
                    PLL_PROP(count),
                    device};
    PLL_PROP* prop = &request.m_prop;
    prop->m_fin_period = request.m_input.m_library_period;
    if (words.m_in2) {
        request.m_input2 = read_input("--in2", *words.m_in2);
        prop->m_fin2_period = request.m_input2->m_library_period;
    }
    for (int i = 0; i < count; ++i) {
        const std::string argument = "--out " + std::to_string(i + 1);
        request.m_outputs.push_back(read_output(argument, words.m_outs[static_cast<std::size_t>(i)],
                                                request.m_input.m_frequency, &prop->m_taps[i]));
    }
    if (words.m_bandwidth) {
        read_bandwidth(*words.m_bandwidth, prop);
    }
    read_spread(words, prop);
    if (words.m_feedback) {
        prop->m_feedback_tap = read_integer("--feedback", *words.m_feedback, 1, count) - 1;
    }
    if (words.m_vco_ratio) {
        read_vco_ratio(*words.m_vco_ratio, prop);
    }
    prop->m_use_reconfig = words.m_reconfig;
    if (words.m_exact && words.m_tolerance) {
        throw USAGE_ERROR("--exact", "not together with --tolerance");
    }
    if (words.m_exact) {
        request.m_tolerance = RATIONAL();
    } else if (words.m_tolerance) {
        request.m_tolerance = read_tolerance("--tolerance", *words.m_tolerance);
    }
    return request;
}

void set_limits(const REQUEST& request, PLL* pll)
{
    if (request.m_device != nullptr) {
        request.m_device->init(pll);
        pll->m_max_taps_count = request.m_max_outputs;
    }
}
