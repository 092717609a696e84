// The cost of a setting, term by term.
//
// The ranking adds all terms to one number. Here the setting that the search chose is built again
// from M and N, and each step of the ranking adds to a cost of its own.
#include "pll_cost.h"

#include "pll.h"
#include "pll_outcome.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "filter/loop_filter.h"
#include "loop/taps.h"
#include "placing/placement.h"
#include "platform/host_state.h"
#include "search/candidate.h"
#include "search/limits.h"
#include "search/ranking.h"
#include "search/ratio_error.h"

#include <cmath>

using namespace pll_internal;

namespace {

bool was_ranked_by_cost(const PLL_OUTCOME& outcome)
{
    return outcome.m_kind == PLL_OUTCOME_KIND::MET || outcome.m_kind == PLL_OUTCOME_KIND::REFUSED;
}

SEARCH_POINT chosen_point(const PLL& pll, const SEARCH_LIMITS& limits)
{
    const int post_scale = pll.m_vco_post_scale;
    const int m = pll.m_outcome.m_m;
    const int n = pll.m_outcome.m_n;
    const int product =
        limits.m_wish.is_custom()
            ? current_resistor_product(m, limits.m_wish.m_bandwidth, pll.get_kvco(post_scale))
            : 0;
    return {post_scale,
            m,
            n,
            double(limits.m_fin_period) * n / m,
            pll.get_vco_center_period(post_scale),
            product};
}

// What the step `add` adds to the cost of the candidate.
template <class STEP>
double cost_of(PLL* candidate, STEP add)
{
    candidate->m_cost = 0.0;
    add(candidate);
    return candidate->m_cost;
}

// Taken from the outputs as they were placed. Placing them again may give another sum: an output in
// the feedback keeps the start that an earlier candidate left it until its own turn comes.
double phase_cost(const PLL& pll, const PLL_PROP& request)
{
    double cost = 0.0;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        const PLL_OUTPUT_TAP& tap = pll.m_taps[i];
        const PLL_USER_TAP& wish = request.m_taps[i];
        cost += std::fabs(tap.m_delta_phase);
        if (wish.m_has_sclkout_phase) {
            cost += std::fabs(wish.m_sclkout_phase - PLL_UTIL::user_phase(pll.get_n(), pll.get_m(),
                                                                          &pll, tap.m_vco_tap, 1));
        }
    }
    return cost;
}

double even_count_cost(const PLL& candidate, const PLL_PROP& request)
{
    double cost = 0.0;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        const PLL_OUTPUT_TAP& tap = candidate.m_taps[i];
        const bool is_odd = tap.m_high % 2 != 0 || tap.m_low % 2 != 0;
        if (request.m_taps[i].m_use_even_counter_value && is_odd) {
            cost += ODD_HALF_PENALTY;
        }
    }
    return cost;
}

}  // namespace

double PLL_COST_TERMS::total() const
{
    const HOST_STATE state;
    return state.keep(m_cascades + m_near_misses + m_post_scale + m_table_row + m_phases +
                      m_duty_cycles + m_even_counts + m_preferred_m + m_ratio_limit);
}

PLL_COST_TERMS pll_get_cost_terms(const PLL& pll, const PLL_PROP& request)
{
    const HOST_STATE state;
    PLL_COST_TERMS terms;
    if (!was_ranked_by_cost(pll.m_outcome)) {
        return terms;
    }
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    PLL candidate(request.m_taps_count, PLL_MAX_TAPS);
    candidate = pll;
    const CANDIDATE_SCORE score =
        assign_candidate(pll, request, limits, chosen_point(pll, limits), &candidate);

    terms.m_cascades = score.m_cascade_penalty;
    terms.m_near_misses = near_miss_cost(score.m_relative_error);
    terms.m_post_scale = post_scale_cost(pll.m_vco_post_scale);
    if (limits.m_wish.m_table_mode) {
        terms.m_table_row = cost_of(&candidate, [&](PLL* setting) {
            PLL::synthesize_best_bandwidth_using_table(setting, request);
        });
    }
    const double placement = cost_of(&candidate, [&](PLL* setting) {
        setting->synthesize_best_phase_and_duty_cycle(setting, request);
    });
    terms.m_phases = phase_cost(pll, request);
    terms.m_even_counts = even_count_cost(candidate, request);
    terms.m_duty_cycles = placement - terms.m_even_counts - candidate.m_delta_phase;
    if (pll.m_info.has_info()) {
        const PLL_BASIC_INFO& info = *pll.m_info.m_basic_info;
        terms.m_preferred_m = cost_of(&candidate, [&](PLL* setting) {
            add_preferred_m_penalties(limits.m_spread, info, setting);
        });
        terms.m_ratio_limit =
            cost_of(&candidate, [&](PLL* setting) { add_ratio_limit_penalty(info, setting); });
    }
    return terms;
}
