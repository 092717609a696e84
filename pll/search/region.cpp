// What VCO, PFD, counters and bandwidth leave of one post-scale.
#include "search/region.h"

#include "pll.h"

#include "filter/loop_filter.h"
#include "loop/loop_model.h"
#include "platform/arith.h"
#include "search/limits.h"

#include <cfloat>
#include <cmath>

namespace pll_internal {

namespace {

constexpr int SMALLEST_M = 2;
constexpr double WIDER = 1.0 + 1e-9;  // makes room for the rounding of the exact tests

}  // namespace

std::int64_t first_m_of(const SEARCH_LIMITS& limits)
{
    if (!limits.m_spread) {
        return SMALLEST_M;
    }
    const double spread = limits.m_down_spread;
    return first_that_holds(SMALLEST_M, limits.m_m_max, 1.0 / spread, [&](std::int64_t m) {
        return truncate_to_int(double(m) * spread) > 0;
    });
}

bool REGION::can_tell(const PLL& pll, const SEARCH_LIMITS& limits)
{
    bool ordinary = limits.m_fin_period > 0 && limits.m_n_min >= 1;
    if (limits.m_wish.is_custom()) {
        const double bandwidth = limits.m_wish.m_bandwidth;
        ordinary =
            ordinary && bandwidth > 0.0 && bandwidth <= DBL_MAX && limits.m_first_resistor > 0;
        for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
            const double gain = pll.get_kvco(post_scale);
            ordinary = ordinary && gain > 0.0 && gain <= DBL_MAX;
        }
    }
    return ordinary;
}

REGION::REGION(const PLL& pll, const SEARCH_LIMITS& limits, int post_scale)
    : m_fin(limits.m_fin_period),
      m_fin2(std::max(limits.m_fin2_period, 0)),
      m_vco{limits.get_vco(pll, post_scale).m_min, limits.get_vco(pll, post_scale).m_max},
      m_pfd{limits.m_pfd_min, limits.m_pfd_max},
      m_allowed_m{},
      m_m{first_m_of(limits), limits.m_m_max},
      m_n{limits.m_n_min, limits.m_n_max},
      m_ratios{0.0, std::max(limits.m_m_max, 0) * WIDER}
{
    narrow_n_to_pfd(m_fin);
    narrow_ratios_to_vco(m_fin);
    if (m_fin2 > 0.0) {
        narrow_n_to_pfd(m_fin2);
        narrow_ratios_to_vco(m_fin2);
    }
    if (limits.m_wish.is_custom()) {
        narrow_m_to_bandwidth(limits, pll.get_kvco(post_scale));
    }
    m_allowed_m = m_m;
    if (!is_empty()) {
        narrow_counters_to_ratios();
    }
}

void REGION::narrow_n_to_pfd(double fin)
{
    const double smallest = m_pfd.m_min - PERIOD_TOLERANCE;
    const double largest = m_pfd.m_max + PERIOD_TOLERANCE;
    m_n.m_first = first_that_holds(m_n.m_first, m_n.m_last, smallest / fin,
                                   [&](std::int64_t n) { return fin * double(n) >= smallest; });
    m_n.m_last = first_that_holds(m_n.m_first, m_n.m_last, largest / fin + 1.0,
                                  [&](std::int64_t n) { return fin * double(n) > largest; }) -
                 1;
}

void REGION::narrow_ratios_to_vco(double fin)
{
    const double shortest = m_vco.m_min - PERIOD_TOLERANCE;
    const double longest = m_vco.m_max + PERIOD_TOLERANCE;
    if (!(longest > 0.0)) {
        m_ratios = {1.0, 0.0};  // no period is that short
        return;
    }
    m_ratios.m_low = std::max(m_ratios.m_low, fin / longest / WIDER);
    if (shortest > 0.0) {
        m_ratios.m_high = std::min(m_ratios.m_high, fin / shortest * WIDER);
    }
}

// The product of current and resistor that a bandwidth asks for grows with M, rounding included.
void REGION::narrow_m_to_bandwidth(const SEARCH_LIMITS& limits, double vco_gain)
{
    const double bandwidth = limits.m_wish.m_bandwidth;
    const auto product = [&](std::int64_t m) {
        return current_resistor_product(int(m), bandwidth, vco_gain);
    };
    const double products_per_m = 2.0 * bandwidth * FILTER_PI / vco_gain;
    m_m.m_first =
        first_that_holds(m_m.m_first, m_m.m_last, limits.m_product_min / products_per_m,
                         [&](std::int64_t m) { return product(m) >= limits.m_product_min; });
    m_m.m_last =
        first_that_holds(m_m.m_first, m_m.m_last, limits.m_product_max / products_per_m + 1.0,
                         [&](std::int64_t m) { return product(m) > limits.m_product_max; }) -
        1;
}

void REGION::narrow_counters_to_ratios()
{
    const M_RANGE smallest = m_between(m_ratios, m_n.m_first);
    const M_RANGE largest = m_between(m_ratios, m_n.m_last);
    const N_RANGE first = n_between(m_ratios, m_m.m_first);
    const N_RANGE last = n_between(m_ratios, m_m.m_last);
    m_m = {smallest.m_first, largest.m_last};
    m_n = {first.m_first, last.m_last};
}

bool REGION::is_legal(std::int64_t m, std::int64_t n) const
{
    const auto is_within = [&](double fin) {
        const ROW_PERIODS row = periods(fin, m);
        return !row.is_too_fast(n) && !row.is_too_slow(n);
    };
    return is_within(m_fin) && (m_fin2 == 0.0 || is_within(m_fin2));
}

M_RANGE REGION::m_between(RATIO_RANGE ratios, std::int64_t n) const
{
    return {std::max(m_m.m_first, ceil_to_count(ratios.m_low * double(n))),
            std::min(m_m.m_last, floor_to_count(ratios.m_high * double(n)))};
}

N_RANGE REGION::n_between(RATIO_RANGE ratios, std::int64_t m) const
{
    const double last = ratios.m_low > 0.0 ? double(m) / ratios.m_low : double(m_n.m_last);
    return {std::max(m_n.m_first, ceil_to_count(double(m) / ratios.m_high)),
            std::min(m_n.m_last, floor_to_count(last))};
}

double REGION::count_about(RATIO_RANGE ratios) const
{
    const double columns = double(m_n.m_last - m_n.m_first + 1);
    const double middle = 0.5 * double(m_n.m_last + m_n.m_first);
    return (ratios.m_high - ratios.m_low) * middle * columns;
}

}  // namespace pll_internal
