// The search by VCO ratio.
//
// Whether a candidate meets its outputs, and by how much it misses them, depends on M / N. So the
// ratios at which all outputs are met are found first, and only the fractions near them evaluated,
// in the order of the search. When no candidate is exact, the one with the smallest error sum is
// looked for among the fractions of those ratios whose bound is low. When there is no candidate at
// all, a walk over the rows finds the closest miss.
#include "pll_arith.h"
#include "pll_evaluation.h"
#include "pll_met_search.h"
#include "pll_nearest_search.h"
#include "pll_region.h"

#include <cfloat>
#include <cmath>
#include <optional>

namespace {

constexpr double LARGEST_QUOTIENT = 1e9;  // of M / N and an output's ratio
constexpr double LARGEST_PHASE = 1e9;     // degrees

bool is_ordinary(double phase)
{
    return std::fabs(phase) <= LARGEST_PHASE;
}

// Whether ratio errors behave: they have no negative terms and are far from every overflow.
bool is_ordinary(const PLL_USER_TAP& wish, int max_count, int m_max)
{
    return wish.m_mult >= 1 && wish.m_div >= 1 && max_count >= 0 &&
           double(m_max) * wish.m_div / wish.m_mult < LARGEST_QUOTIENT &&
           is_ordinary(wish.m_phase) && is_ordinary(wish.m_sclkout_phase);
}

// Whether every exact candidate has a finite cost, so that the first of them is taken.
bool has_finite_costs(const PLL& pll, const SEARCH_LIMITS& limits)
{
    if (!pll.m_info.has_info() || pll.m_info.m_basic_info->m_spe_ratio_constant_x == DBL_MAX) {
        return true;
    }
    const double current = limits.m_wish.is_custom()
                               ? double(limits.m_product_min) / limits.m_first_resistor
                               : pll.m_i;
    return 1.0 / LARGEST_QUOTIENT < current && current < LARGEST_QUOTIENT;
}

// Whether the products that a custom bandwidth asks for grow with M.
bool has_ordinary_bandwidth(const PLL& pll, const SEARCH_LIMITS& limits)
{
    if (!limits.m_wish.is_custom()) {
        return true;
    }
    const double bandwidth = limits.m_wish.m_bandwidth;
    bool ordinary = bandwidth > 0.0 && bandwidth <= DBL_MAX && limits.m_first_resistor > 0;
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        const double gain = pll.get_kvco(post_scale);
        ordinary = ordinary && gain > 0.0 && gain <= DBL_MAX;
    }
    return ordinary;
}

bool is_ordinary(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits)
{
    bool ordinary = limits.m_fin_period > 0 && limits.m_n_min >= 1 &&
                    has_ordinary_bandwidth(pll, limits) && has_finite_costs(pll, limits);
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        ordinary =
            ordinary && is_ordinary(request.m_taps[i], pll.m_taps[i].m_max_count, limits.m_m_max);
    }
    return ordinary;
}

// Cascades leave traces in counters that later candidates inherit.
bool may_cascade(const PLL& pll, const PLL_PROP& request, const REGION& region)
{
    const bool has_free_counter =
        request.m_taps_count < std::min(pll.m_max_taps_count, PLL_MAX_TAPS);
    if (!pll.m_output_counter_cascade || !has_free_counter) {
        return false;
    }
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        const double largest = region.ratios().m_high * wish.m_div / wish.m_mult + 1.0;
        if (largest > wrap_mul(2, pll.m_taps[i].m_max_count)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool search_by_ratio(EVALUATION* evaluation)
{
    const PLL& pll = evaluation->pll();
    const PLL_PROP& request = evaluation->request();
    const SEARCH_LIMITS& limits = evaluation->limits();
    if (!is_ordinary(pll, request, limits)) {
        return false;
    }
    std::optional<REGION> regions[PLL_VCO_POST_SCALE_MAX + 1];
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        const REGION& region = regions[post_scale].emplace(pll, limits, post_scale);
        if (!region.is_empty() && may_cascade(pll, request, region)) {
            return false;
        }
    }
    MET_SEARCH met(evaluation);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        met.search(post_scale, *regions[post_scale]);
    }
    if (evaluation->result().m_found) {
        return true;
    }
    NEAREST_SEARCH nearest(pll, limits);
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
