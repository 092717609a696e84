// How the outputs of a synthesised PLL come out. The counters alone cannot tell: an output in the
// feedback takes its share of M, and a clamped counter hides the division that was wanted. So the
// errors are computed again from the setting that the search chose, with the search's expressions.
#include "pll_outcome.h"

#include "pll.h"
#include "pll_prop.h"

#include "loop/taps.h"
#include "platform/host_state.h"
#include "search/ratio_error.h"

#include <cmath>

using namespace pll_internal;

namespace {

bool has_setting(const PLL_OUTCOME& outcome)
{
    return outcome.m_kind == PLL_OUTCOME_KIND::MISSED || outcome.m_kind == PLL_OUTCOME_KIND::MET ||
           outcome.m_kind == PLL_OUTCOME_KIND::REFUSED;
}

// A counter that divides by what the output needs was not clamped, cascade or not. One without any
// counts cannot even pass the VCO clock.
PLL_CLAMP clamp_of(const PLL& pll, int output, int needed_count)
{
    if (pll.get_combined_count(output) == needed_count && pll.m_taps[output].m_max_count >= 1) {
        return PLL_CLAMP::NONE;
    }
    return pll.m_taps[output].m_bypass ? PLL_CLAMP::BYPASS : PLL_CLAMP::HALVES;
}

PLL_GRADE grade(const PLL_OUTPUT_OUTCOME& output)
{
    const bool is_met = output.m_relative_error < PLL_MET_TOLERANCE &&
                        output.m_clamp == PLL_CLAMP::NONE && output.m_feedback_rest == 0;
    if (!is_met) {
        return PLL_GRADE::MISSED;
    }
    return output.m_ratio_error == 0.0 ? PLL_GRADE::EXACT : PLL_GRADE::NEARLY_MET;
}

}  // namespace

PLL_OUTPUT_OUTCOME pll_get_output_outcome(const PLL& pll, const PLL_PROP& request, int output)
{
    const HOST_STATE state;
    PLL_OUTPUT_OUTCOME result;
    if (!has_setting(pll.m_outcome) || output < 0 || output >= clamp_taps(request.m_taps_count)) {
        return result;
    }
    const PLL_USER_TAP& tap = request.m_taps[output];
    const VCO_RATIO vco(pll.m_outcome.m_m, pll.m_outcome.m_n);
    const RATIO_WISH wish = read_ratio_wish(tap.m_mult, tap.m_div);
    result.m_needed_count = counter_value(vco, wish);
    CANDIDATE_SCORE score;
    add_frequency_error(vco, result.m_needed_count, wish, &score);
    const double error = std::fabs(vco.m_ratio / result.m_needed_count - wish.m_ratio);
    result.m_ratio_error = error < PLL_EXACT_RATIO ? 0.0 : error;
    result.m_relative_error = score.m_relative_error;
    result.m_clamp = clamp_of(pll, output, result.m_needed_count);
    if (output == pll.m_feedback_tap) {
        result.m_feedback_rest = feedback_rest(pll.m_outcome.m_m, result.m_needed_count);
    }
    result.m_grade = grade(result);
    return result;
}

bool pll_is_vco_ratio_met(const PLL& pll, const PLL_PROP& request)
{
    const HOST_STATE state;
    if (!has_setting(pll.m_outcome)) {
        return false;
    }
    const RATIO_WISH wish = read_ratio_wish(request.m_vco_mult, request.m_vco_div);
    const VCO_RATIO vco(pll.m_outcome.m_m, pll.m_outcome.m_n);
    return state.keep(!has_wish(wish) || std::fabs(vco.m_ratio - wish.m_ratio) < PLL_EXACT_RATIO);
}
