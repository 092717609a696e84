#include "app/request/request.h"

#include "app/devices/device.h"
#include "app/request/output_words.h"
#include "app/words/quantity.h"
#include "app/words/usage_error.h"

#include "pll.h"
#include "pll_info.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int PERCENT_EXPONENT = 2;

void read_bandwidth(const std::string& text, advice::REQUEST* request)
{
    const auto* const word =
        std::find(std::begin(BANDWIDTH_WORDS), std::end(BANDWIDTH_WORDS), text);
    if (word != std::end(BANDWIDTH_WORDS)) {
        request->m_bandwidth_kind =
            static_cast<advice::BANDWIDTH_KIND>(word - std::begin(BANDWIDTH_WORDS));
        return;
    }
    const bool is_number = !text.empty() && text.front() >= '.' && text.front() <= '9';
    if (!is_number) {
        throw USAGE_ERROR("--bandwidth", "'" + text +
                                             "' is not legal; expected high, medium, low, auto or "
                                             "a frequency such as 1.2MHz");
    }
    request->m_bandwidth_kind = advice::BANDWIDTH_KIND::CUSTOM;
    request->m_bandwidth = read_frequency_in_hertz("--bandwidth", text);
}

void read_spread(const REQUEST_WORDS& words, advice::REQUEST* request)
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
    request->m_spread = percent / whole;
    if (words.m_spread_rate) {
        request->m_spread_rate = read_frequency("--spread-rate", *words.m_spread_rate);
    }
}

// A wish beside the tolerance that it may be missed by.
struct TOLERANCE_OPTION
{
    const char* m_name;
    const char* m_unit;  // null: a part, with ppm, ppb or %
    std::optional<std::string> REQUEST_WORDS::*m_word;
    RATIONAL advice::TOLERANCES::*m_tolerance;
};

const TOLERANCE_OPTION TOLERANCE_OPTIONS[] = {
    {"--tolerance", nullptr, &REQUEST_WORDS::m_tolerance, &advice::TOLERANCES::m_frequency},
    {"--phase-tolerance", "deg", &REQUEST_WORDS::m_phase_tolerance, &advice::TOLERANCES::m_phase},
    {"--duty-tolerance", "%", &REQUEST_WORDS::m_duty_tolerance, &advice::TOLERANCES::m_duty},
    {"--delay-tolerance", "ps", &REQUEST_WORDS::m_delay_tolerance, &advice::TOLERANCES::m_delay},
    {"--bandwidth-tolerance", nullptr, &REQUEST_WORDS::m_bandwidth_tolerance,
     &advice::TOLERANCES::m_bandwidth},
    {"--spread-tolerance", nullptr, &REQUEST_WORDS::m_spread_tolerance,
     &advice::TOLERANCES::m_spread},
    {"--spread-tolerance", nullptr, &REQUEST_WORDS::m_spread_tolerance,
     &advice::TOLERANCES::m_spread_rate},
};

// Of what may be missed by as much as it is: a bandwidth, a spread.
RATIONAL largest_part(const TOLERANCE_OPTION& option)
{
    const bool is_of_frequencies = option.m_word == &REQUEST_WORDS::m_tolerance;
    return is_of_frequencies ? advice::max_frequency_tolerance() : RATIONAL(1);
}

void read_tolerances(const REQUEST_WORDS& words, advice::REQUEST* request)
{
    if (words.m_exact) {
        request->m_tolerances = advice::TOLERANCES::exact();
    }
    for (const TOLERANCE_OPTION& option : TOLERANCE_OPTIONS) {
        const std::optional<std::string>& word = words.*option.m_word;
        if (!word) {
            continue;
        }
        if (words.m_exact) {
            throw USAGE_ERROR("--exact", std::string("not together with ") + option.m_name);
        }
        request->m_tolerances.*option.m_tolerance =
            option.m_unit != nullptr ? read_amount(option.m_name, *word, option.m_unit)
                                     : read_tolerance(option.m_name, *word, largest_part(option));
    }
    if (words.m_margin) {
        request->m_margins.m_limit_percent =
            read_amount("--margin", *words.m_margin, "%").to_double();
    }
    if (words.m_phase_margin) {
        request->m_margins.m_phase_degrees =
            read_amount("--phase-margin", *words.m_phase_margin, "deg").to_double();
    }
}

void require_outputs(const REQUEST_WORDS& words, int max_outputs)
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
}

// The option that a problem is about.
std::string option_of(const advice::REQUEST_PROBLEM& problem)
{
    if (problem.m_output != advice::NO_OUTPUT) {
        const bool is_frequency = problem.m_field == "frequency";
        return "--out " + std::to_string(problem.m_output + 1) +
               (is_frequency ? "" : " " + problem.m_field);
    }
    if (problem.m_field == "input" || problem.m_field == "input2") {
        return problem.m_field == "input" ? "--in" : "--in2";
    }
    std::string option = "--" + problem.m_field;
    std::replace(option.begin(), option.end(), '_', '-');
    return option;
}

void require_legal(const advice::REQUEST& request, int max_outputs)
{
    if (const auto problem = advice::find_problem(request, max_outputs)) {
        throw USAGE_ERROR(option_of(*problem), problem->m_text);
    }
}

}  // namespace

REQUEST::REQUEST(advice::REQUEST request)
    : advice::REQUEST(std::move(request)), m_prop(advice::to_prop(*this))
{
}

INPUT_CLOCK read_input(const std::string& argument, const std::string& text)
{
    const CLOCK clock = read_clock(argument, text);
    INPUT_CLOCK input = advice::make_input(clock.m_frequency);
    input.m_unit = clock.m_unit;
    if (!input.m_period.is_valid()) {
        throw USAGE_ERROR(argument, "'" + text +
                                        "' is not legal; expected fewer digits: its "
                                        "period does not fit 64 bits");
    }
    if (input.m_library_period < 1) {
        throw USAGE_ERROR(argument, "'" + text +
                                        "' is not legal; expected a period of 1 to 2147483647 ps "
                                        "(465.7 Hz to 1000 GHz)");
    }
    return input;
}

advice::LIMITS_BY_HAND read_limits(const LIMIT_WORDS& words)
{
    constexpr int LAST_VCO_TAP = PLL_VCO_TAPS_NUMBER - 1;
    advice::LIMITS_BY_HAND limits;
    const auto read_frequencies = [](const char* option, const std::optional<std::string>& word,
                                     advice::RANGE* range) {
        *range = word ? read_frequency_range(option, *word) : advice::RANGE();
    };
    const auto read_counts = [](const char* option, const std::optional<std::string>& word,
                                advice::RANGE* range) {
        *range = word ? read_count_range(option, *word) : advice::RANGE();
    };
    read_frequencies("--vco", words.m_vco, &limits.m_vco);
    read_frequencies("--pfd", words.m_pfd, &limits.m_pfd);
    read_frequencies("--input-range", words.m_input_range, &limits.m_input);
    read_frequencies("--output-range", words.m_output_range, &limits.m_output);
    read_counts("--m", words.m_m, &limits.m_m);
    read_counts("--n", words.m_n, &limits.m_n);
    read_counts("--k", words.m_k, &limits.m_k);
    if (words.m_post_scales) {
        limits.m_post_scales =
            read_integers("--post-scales", *words.m_post_scales, 1, PLL_VCO_POST_SCALE_MAX);
    }
    if (words.m_taps) {
        limits.m_vco_taps = read_integers("--taps", *words.m_taps, 0, LAST_VCO_TAP);
    }
    return limits;
}

std::unique_ptr<advice::LIMITS> make_limits(const DEVICE* device,
                                            const advice::LIMITS_BY_HAND& by_hand)
{
    auto limits = std::make_unique<advice::LIMITS>();
    if (device != nullptr) {
        device->give_to(limits.get());
    }
    limits->take(by_hand);
    return limits;
}

REQUEST read_request(const REQUEST_WORDS& words, const LIMIT_WORDS& limits, const DEVICE* device)
{
    if (!words.m_in) {
        throw USAGE_ERROR("--in", "the input clock is needed, such as --in 27MHz");
    }
    const int device_outputs = device != nullptr ? device->get_max_outputs() : PLL_MAX_TAPS;
    advice::REQUEST request;
    if (words.m_max_outputs) {
        request.m_max_outputs =
            read_integer("--max-outputs", *words.m_max_outputs, 1, device_outputs);
    }
    const int max_outputs = request.m_max_outputs.value_or(device_outputs);
    require_outputs(words, max_outputs);
    request.m_input = read_input("--in", *words.m_in);
    if (words.m_in2) {
        request.m_input2 = read_input("--in2", *words.m_in2);
    }
    request.m_outputs = read_outputs(words.m_outs, request.m_input);
    if (words.m_bandwidth) {
        read_bandwidth(*words.m_bandwidth, &request);
    }
    read_spread(words, &request);
    if (words.m_feedback) {
        request.m_feedback = find_output("--feedback", *words.m_feedback, request.m_outputs);
    }
    if (words.m_vco_ratio) {
        request.m_vco_ratio = read_ratio("--vco-ratio", *words.m_vco_ratio);
    }
    request.m_reconfig = words.m_reconfig;
    read_tolerances(words, &request);
    request.m_by_hand = read_limits(limits);
    require_legal(request, max_outputs);
    REQUEST result(std::move(request));
    result.m_device_outputs = max_outputs;
    result.m_device = device;
    result.m_limits = make_limits(device, result.m_by_hand);
    return result;
}
