#include "advice/why/miss.h"

#include "advice/numbers/text.h"
#include "advice/why/closest_rows.h"
#include "advice/why/table_choice.h"

#include "pll_outcome.h"

#include <algorithm>
#include <cmath>

namespace advice {

namespace {

constexpr int MHZ_DECIMALS = 3;
constexpr double PERCENT = 100.0;
constexpr double HZ_PER_KHZ = 1e3;
constexpr double PS_MHZ = 1e6;  // MHz = PS_MHZ / ps
constexpr int KHZ_DECIMALS = 3;
constexpr int PERCENT_DECIMALS = 3;
constexpr int BANDWIDTH_AUTO = static_cast<int>(BANDWIDTH_KIND::AUTO);

typedef std::vector<std::string> LINES;

std::string format_period_as_mhz(double period)
{
    return period > 0.0 ? write_number(PS_MHZ / period, MHZ_DECIMALS) : "-";
}

bool is_at_largest_count(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_high >= tap.m_max_count || tap.m_low >= tap.m_max_count;
}

// How far a period lies outside the VCO range of a post-scale; 0 inside.
double vco_distance(const REQUEST& request, const PLL& pll, int post_scale)
{
    const double period = pll.get_vco_period();
    return std::max({period - vco_max_period(request, pll, post_scale),
                     pll.get_vco_min_period(post_scale) - period, 0.0});
}

int nearest_post_scale(const REQUEST& request, const PLL& pll)
{
    int nearest = 1;
    for (int i = 2; i <= std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX); ++i) {
        if (vco_distance(request, pll, i) < vco_distance(request, pll, nearest)) {
            nearest = i;
        }
    }
    return nearest;
}

// A wish that can rule M and N out, and how to do without it.
struct OBSTACLE
{
    const char* m_name;
    void (*m_remove)(PLL_PROP* prop);
};

const OBSTACLE OBSTACLES[] = {
    {"the bandwidth", [](PLL_PROP* prop) { prop->m_bandwidth_type = BANDWIDTH_AUTO; }},
    {"the spread", [](PLL_PROP* prop) { prop->m_down_spread = 0.0; }},
    {"the second input", [](PLL_PROP* prop) { prop->m_fin2_period = 0; }},
};

bool can_try(const REQUEST& request, const LIMITS& limits, const PLL_PROP& prop)
{
    PLL pll(prop.m_taps_count, PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    return pll.synthesize(prop) || has_candidate(pll);
}

// Asks the library again without each of the wishes that can rule M and N out, then without any.
// False when that finds no M and N either.
bool explain_obstacles(const REQUEST& request, const LIMITS& limits, const PLL& pll, LINES* lines)
{
    const PLL_PROP prop = to_prop(request);
    const double spread = prop.m_down_spread;
    if (spread > 0.0 && spread * pll.m_m.m_max_count < 1.0) {
        lines->push_back("missed: the spread; M is at most " + std::to_string(pll.m_m.m_max_count) +
                         " and M x spread at least 1, so it is " +
                         write_number(PERCENT / pll.m_m.m_max_count, PERCENT_DECIMALS) +
                         " % or more");
        return true;
    }
    PLL_PROP without_any = prop;
    for (const OBSTACLE& obstacle : OBSTACLES) {
        PLL_PROP without = prop;
        obstacle.m_remove(&without);
        obstacle.m_remove(&without_any);
        if (can_try(request, limits, without)) {
            lines->push_back("missed: " + std::string(obstacle.m_name) +
                             "; without it there are M and N for the VCO and PFD ranges");
            return true;
        }
    }
    if (can_try(request, limits, without_any)) {
        lines->push_back("missed: bandwidth, spread and second input taken together; without them "
                         "there are M and N");
        return true;
    }
    return false;
}

// "10 MHz, 2 MHz below its range 12 to 100 MHz", of a period outside its range.
std::string miss_of_period(double period, int min_period, int max_period)
{
    const bool is_low = period > max_period;
    const double miss = std::abs(PS_MHZ / period - PS_MHZ / (is_low ? max_period : min_period));
    return format_period_as_mhz(period) + " MHz, " + write_number(miss, MHZ_DECIMALS) + " MHz " +
           (is_low ? "below" : "above") + " its range " + format_period_as_mhz(max_period) +
           " to " + format_period_as_mhz(min_period) + " MHz";
}

void explain_no_candidate(const REQUEST& request, const LIMITS& limits, const PLL& pll,
                          LINES* lines)
{
    if (explain_obstacles(request, limits, pll, lines)) {
        return;
    }
    const int post_scale = nearest_post_scale(request, pll);
    const int min_period = pll.get_vco_min_period(post_scale);
    const int max_period = vco_max_period(request, pll, post_scale);
    const double vco_period = pll.get_vco_period();
    const double pfd_period = double(request.m_input.m_library_period) * pll.get_n();
    const bool vco_misses = vco_period > max_period || vco_period < min_period;
    lines->push_back(
        "closest: M " + std::to_string(pll.get_m()) + ", N " + std::to_string(pll.get_n()) +
        (vco_misses
             ? ", VCO " + miss_of_period(vco_period, min_period, max_period)
             : ", PFD " + miss_of_period(pfd_period, pll.m_pfd_min_period, pll.m_pfd_max_period)));
    lines->push_back("missed: all outputs; without a VCO frequency none of them could be tried");
}

void explain_missed_outputs(const REQUEST& request, const ANSWER& answer, LINES* lines)
{
    const RATIONAL a_thousandth(1, 1000);
    for (std::size_t i = 0; i < answer.get_outputs().size(); ++i) {
        const OUTPUT_RESULT& output = answer.get_outputs()[i];
        const PLL_OUTPUT_TAP& tap = answer.get_pll().m_taps[i];
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const bool is_fed_back = static_cast<int>(i) == request.m_feedback;
        const bool is_far = !(output.m_error.magnitude() < a_thousandth);
        if (!is_far && (tap.m_score ||
                        (output.m_error.is_zero() && !is_fed_back && !is_at_largest_count(tap)))) {
            continue;
        }
        const std::string asked =
            write_frequency(product(request.m_input.m_frequency, wish.m_ratio), wish.m_unit);
        std::string line = name_of_output(request, i);
        if (output.m_error.is_zero()) {
            line += ": its counter does not fit the division that gives " + asked;
        } else {
            line +=
                ": " +
                write_frequency(product(request.m_input.m_frequency, output.m_ratio), wish.m_unit) +
                " instead of " + asked;
        }
        if (is_at_largest_count(tap)) {
            line += "\n  its counter is at its largest count";
        }
        if (is_fed_back) {
            line += "\n  it is the feedback";
        }
        lines->push_back(line);
    }
}

void explain_delays(const REQUEST& request, LINES* lines)
{
    std::size_t first = 0;
    std::size_t last = 0;
    for (std::size_t i = 1; i < request.m_outputs.size(); ++i) {
        const int delay = request.m_outputs[i].m_delay;
        first = delay < request.m_outputs[first].m_delay ? i : first;
        last = delay > request.m_outputs[last].m_delay ? i : last;
    }
    const int span = request.m_outputs[last].m_delay - request.m_outputs[first].m_delay;
    lines->push_back("missed: " + name_of_output(request, last) + " is delayed by " +
                     std::to_string(span) + " ps more than " + name_of_output(request, first) +
                     ", " + std::to_string(span - MAX_DELAY_CHAIN_VALUE) + " ps beyond the " +
                     std::to_string(MAX_DELAY_CHAIN_VALUE) + " ps of a chain");
}

void explain_input(const char* name, const INPUT_CLOCK& input, const PLL& pll, LINES* lines)
{
    if (input.m_library_period < pll.m_fin_min_period) {
        lines->push_back("missed: " + std::string(name) + " runs at " +
                         write_frequency(input.m_frequency, input.m_unit) + ", legal are at most " +
                         format_period_as_mhz(pll.m_fin_min_period) + " MHz");
    }
}

void append(const LINES& more, LINES* lines)
{
    lines->insert(lines->end(), more.begin(), more.end());
}

void explain_error(const REQUEST& request, const LIMITS& limits, const ANSWER& answer, LINES* lines)
{
    const PLL& pll = answer.get_pll();
    switch (pll.m_error) {
    case PLL::PLL_DELAY_RANGE_TOO_WIDE:
        explain_delays(request, lines);
        break;
    case PLL::PLL_SS_TOO_HIGH:
        lines->push_back("missed: a spread of " +
                         write_number(request.m_spread.to_double() * PERCENT, PERCENT_DECIMALS) +
                         " % is asked for, legal are at most " +
                         write_number(PLL_LARGEST_DOWN_SPREAD * PERCENT, PERCENT_DECIMALS) + " %");
        break;
    case PLL::PLL_FIN_OUT_OF_RANGE:
        explain_input("the input", request.m_input, pll, lines);
        if (request.m_input2) {
            explain_input("the second input", *request.m_input2, pll, lines);
        }
        break;
    case PLL::PLL_NO_BANDWIDTH_FOR_MULT_DIV:
        lines->push_back("missed: the loop filter; the table has no row for effective M " +
                         std::to_string(effective_m(pll)));
        append(list_rows_near_division(pll), lines);
        break;
    case PLL::PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV:
        lines->push_back(
            "missed: the loop filter; the best row has a bandwidth of up to " +
            write_number(answer.get_achieved().m_bandwidth_max / HZ_PER_KHZ, KHZ_DECIMALS) +
            " kHz, the PFD allows " +
            write_number(largest_bandwidth(request, pll) / HZ_PER_KHZ, KHZ_DECIMALS) + " kHz");
        append(list_rows_near_bandwidth(request, answer), lines);
        break;
    case PLL::PLL_NO_ERROR:
    case PLL::PLL_M_N_NOT_FOUND:
    case PLL::PLL_M_N_NOT_FOUND_2:
    case PLL::PLL_POST_DIVIDER_MAX_EXCEEDED:
    case PLL::PLL_MULT_DIV_NOT_ACHIEVED:
    case PLL::PLL_SS_REQUIRES_LOW_BANDWIDTH:
    case PLL::MAX_PLL_ERROR_TYPE:
        break;
    }
    // Behind its own reason: an error of a late check hides those of the search.
    if (answer.has_setting()) {
        explain_missed_outputs(request, answer, lines);
    } else {
        explain_no_candidate(request, limits, pll, lines);
    }
}

}  // namespace

int vco_max_period(const REQUEST& request, const PLL& pll, int post_scale)
{
    const int spread_max = pll.get_ss_vco_max_period(post_scale);
    const bool limited =
        request.m_spread.is_positive() && pll.m_ss_supported && spread_max != PLL_UNSET_MINIMUM;
    return limited ? spread_max : pll.get_vco_max_period(post_scale);
}

int settled_post_scale(const REQUEST& request, const ANSWER& answer)
{
    return answer.has_setting() ? answer.get_pll().m_vco_post_scale
                                : nearest_post_scale(request, answer.get_pll());
}

std::vector<std::string> explain_miss(const REQUEST& request, const LIMITS& limits,
                                      const ANSWER& answer)
{
    LINES lines;
    if (!answer.is_met_by_library()) {
        const PLL::PLL_ERROR_TYPE error = answer.get_pll().m_error;
        lines.push_back("error " + std::to_string(static_cast<int>(error)) + ": " +
                        PLL::get_error_string(error));
        explain_error(request, limits, answer, &lines);
    }
    return lines;
}

}  // namespace advice
