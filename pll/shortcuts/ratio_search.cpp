// The search by VCO ratio.
//
// Whether a candidate meets its outputs, and by how much it misses them, depends on M / N. So the
// ratios at which all outputs are met are found first, and only the fractions near them evaluated,
// in the order of the search. When no candidate is exact, the one with the smallest error sum is
// looked for among the fractions of those ratios whose bound is low. When there is no candidate at
// all, a walk over the rows finds the closest miss.
#include "shortcuts/ratio_search.h"

#include "platform/arith.h"
#include "search/evaluation.h"
#include "search/limits.h"
#include "search/region.h"
#include "shortcuts/cascade_leftovers.h"
#include "shortcuts/met_search.h"
#include "shortcuts/nearest_search.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <optional>

namespace pll_internal {

namespace {

constexpr double LARGEST_QUOTIENT = 1e9;  // of M / N and an output's ratio
constexpr double LARGEST_PHASE = 1e9;     // degrees

bool is_ordinary(double phase)
{
    return std::fabs(phase) <= LARGEST_PHASE;
}

// Whether ratio errors behave: they have no negative terms and are far from every overflow.
bool is_ordinary(const PLL_USER_TAP& wish, int max_count, double largest_ratio)
{
    return wish.m_mult >= 1 && wish.m_div >= 1 && 0 <= max_count &&
           largest_ratio * wish.m_div / wish.m_mult < LARGEST_QUOTIENT &&
           is_ordinary(wish.m_phase) && is_ordinary(wish.m_sclkout_phase);
}

bool is_ordinary_current(double current)
{
    return 1.0 / LARGEST_QUOTIENT < current && current < LARGEST_QUOTIENT;
}

// Whether every row of the device's table has a current.
bool has_ordinary_rows(const PLL_BASIC_INFO& info)
{
    for (int m = 0;
         info.m_bandwidth_settings_table != nullptr && m < info.m_bandwidth_settings_table_size;
         ++m) {
        for (const PLL_BANDWIDTH_SETTING* row : info.m_bandwidth_settings_table[m].m_settings) {
            if (row != nullptr && !is_ordinary_current(row->m_charge_pump_current)) {
                return false;
            }
        }
    }
    return true;
}

// Whether phases can be told at every M: the M of the loop is never brought to 0. A feedback output
// that is none of the request's keeps its count, whatever that is; the products with it wrap.
bool has_ordinary_feedback(const PLL& pll, const SEARCH_LIMITS& limits)
{
    if (pll.m_feedback_tap < limits.m_taps_count) {
        return true;
    }
    const PLL_OUTPUT_TAP& tap = pll.m_taps[nearest_index(pll.m_feedback_tap, PLL_MAX_TAPS)];
    const double count = tap.m_bypass ? 1.0 : double(tap.m_high) + tap.m_low;
    return 1.0 <= count && count * limits.m_m_max <= std::numeric_limits<int>::max();
}

// Whether every exact candidate has a finite cost, so that the first of them is taken.
bool has_finite_costs(const PLL& pll, const SEARCH_LIMITS& limits)
{
    if (!has_ordinary_feedback(pll, limits)) {
        return false;
    }
    if (!pll.m_info.has_info() || pll.m_info.m_basic_info->m_spe_ratio_constant_x == DBL_MAX) {
        return true;
    }
    const double current = limits.m_wish.is_custom()
                               ? double(limits.m_product_min) / limits.m_first_resistor
                               : pll.m_i;
    return is_ordinary_current(current) &&
           (!limits.m_wish.m_table_mode || has_ordinary_rows(*pll.m_info.m_basic_info));
}

// Whether counters that only cascades use are never looked at: what they hold is left behind by
// other candidates, missed ones included.
bool has_ordinary_cascades(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits)
{
    return request.m_taps_count == limits.m_taps_count && pll.m_feedback_tap < limits.m_taps_count;
}

bool has_ordinary_limits(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits)
{
    return REGION::can_tell(pll, limits) && has_finite_costs(pll, limits) &&
           (!limits.m_may_cascade || has_ordinary_cascades(pll, request, limits));
}

using REGIONS = std::optional<REGION>[PLL_VCO_POST_SCALE_MAX + 1];

// Of M to N, of all that can be legal; 0 when nothing can.
double largest_ratio(const REGIONS& regions)
{
    double largest = 0.0;
    for (const std::optional<REGION>& region : regions) {
        if (region && !region->is_empty()) {
            largest = std::max(largest, region->ratios().m_high);
        }
    }
    return largest;
}

bool has_ordinary_wishes(const PLL& pll, const PLL_PROP& request, int count, double largest_ratio)
{
    for (int i = 0; i < count; ++i) {
        if (!is_ordinary(request.m_taps[i], pll.m_taps[i].m_max_count, largest_ratio)) {
            return false;
        }
    }
    return true;
}

// Evaluates the candidate that misses least. Returns false when there is none at all.
bool search_nearest(const REGIONS& regions, EVALUATION* evaluation, KEPT_CASCADES* cascades)
{
    const SEARCH_LIMITS& limits = evaluation->limits();
    NEAREST_SEARCH nearest(evaluation->pll(), limits, cascades);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        nearest.search(post_scale, *regions[post_scale]);
    }
    const NEAREST_SEARCH::BEST& best = nearest.best();
    if (best.m_post_scale == 0) {
        return false;
    }
    evaluation->evaluate(evaluation->point(best.m_post_scale, best.m_m, best.m_n));
    return true;
}

}  // namespace

RATIO_SEARCH search_by_ratio(EVALUATION* evaluation)
{
    const PLL& pll = evaluation->pll();
    const PLL_PROP& request = evaluation->request();
    const SEARCH_LIMITS& limits = evaluation->limits();
    if (!has_ordinary_limits(pll, request, limits)) {
        return RATIO_SEARCH::ODD_REQUEST;
    }
    REGIONS regions;
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        regions[post_scale].emplace(pll, limits, post_scale);
    }
    if (!has_ordinary_wishes(pll, request, limits.m_taps_count, largest_ratio(regions))) {
        return RATIO_SEARCH::ODD_REQUEST;
    }
    KEPT_CASCADES cascades(pll, limits);
    MET_SEARCH met(evaluation, &cascades);
    CASCADE_LEFTOVERS leftovers(*evaluation, &cascades);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        met.search(post_scale, *regions[post_scale]);
        leftovers.add_post_scale(*regions[post_scale], evaluation->last_m());
    }
    const bool found =
        evaluation->result().m_found || search_nearest(regions, evaluation, &cascades);
    if (found && limits.m_may_cascade) {
        leftovers.restore(&evaluation->result());
    }
    return found ? RATIO_SEARCH::DONE : RATIO_SEARCH::NOTHING_LEGAL;
}

}  // namespace pll_internal
