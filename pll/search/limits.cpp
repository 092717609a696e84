// What a search reads of the PLL and the request.
#include "search/limits.h"

#include "loop/loop_model.h"
#include "loop/taps.h"
#include "platform/arith.h"
#include "platform/report_error.h"

#include <algorithm>

namespace pll_internal {

namespace {

BANDWIDTH_WISH read_bandwidth_wish(const PLL& pll, const PLL_PROP& request, bool spread)
{
    BANDWIDTH_WISH wish{request.m_bandwidth_type, request.m_bandwidth, false};
    wish.m_table_mode =
        pll.m_info.has_info() && pll.m_info.m_basic_info->m_use_bandwidth_settings_table;
    if (wish.m_table_mode) {
        return wish;
    }
    if (spread) {
        return {PLL_BANDWIDTH_CUSTOM, pll.m_ss_bandwidth, false};
    }
    switch (wish.m_type) {
    case PLL_BANDWIDTH_HIGH:
        return {PLL_BANDWIDTH_CUSTOM, pll.m_high_bandwidth, false};
    case PLL_BANDWIDTH_MEDIUM:
        return {PLL_BANDWIDTH_CUSTOM, pll.m_medium_bandwidth, false};
    case PLL_BANDWIDTH_LOW:
        return {PLL_BANDWIDTH_CUSTOM, pll.m_low_bandwidth, false};
    default:
        return wish;
    }
}

int first_or_zero(const MEM_VECTOR<int>& values)
{
    return values.empty() ? 0 : values.front();
}

int last_or_zero(const MEM_VECTOR<int>& values)
{
    return values.empty() ? 0 : values.back();
}

}  // namespace

VCO_LIMITS SEARCH_LIMITS::get_vco(const PLL& pll, int post_scale) const
{
    return {double(pll.get_vco_min_period(post_scale)),
            double(longest_vco_period(pll, m_spread ? SPREAD::DOWN : SPREAD::OFF, post_scale)),
            pll.get_vco_center_period(post_scale)};
}

SEARCH_LIMITS read_search_limits(const PLL& pll, const PLL_PROP& request)
{
    const MEM_VECTOR<int>& currents = PLL::m_impl->m_charge_pump_currents;
    const MEM_VECTOR<int>& resistors = PLL::m_impl->m_resistors;
    SEARCH_LIMITS limits{};
    limits.m_fin_period = request.m_fin_period;
    limits.m_fin2_period = request.m_fin2_period;
    limits.m_m_max = pll.m_m.m_max_count;
    limits.m_n_min = pll.m_n.m_min_count;
    limits.m_n_max = pll.m_n.m_max_count;
    limits.m_max_post_scale = std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX);
    limits.m_pfd_min = pll.m_pfd_min_period;
    limits.m_pfd_max = pll.m_pfd_max_period;
    limits.m_down_spread = request.m_down_spread;
    limits.m_spread = request.m_down_spread != 0.0;
    limits.m_cut_off = request.m_bandwidth_type == PLL_BANDWIDTH_AUTO && !limits.m_spread;
    limits.m_wish = read_bandwidth_wish(pll, request, limits.m_spread);
    limits.m_first_resistor = first_or_zero(resistors);
    limits.m_product_min = wrap_mul(first_or_zero(currents), first_or_zero(resistors));
    limits.m_product_max = wrap_mul(last_or_zero(currents), last_or_zero(resistors));
    limits.m_taps_count = clamp_taps(request.m_taps_count);
    for (int i = 0; i < limits.m_taps_count; ++i) {
        limits.m_wishes[i] = read_ratio_wish(request.m_taps[i].m_mult, request.m_taps[i].m_div);
    }
    limits.m_may_cascade = pll.m_output_counter_cascade &&
                           limits.m_taps_count < std::min(pll.m_max_taps_count, PLL_MAX_TAPS);
    if (request.m_vco_mult >= 1 && request.m_vco_div >= 1) {  // 0 / 0 is a wish for none
        limits.m_vco_wish = read_ratio_wish(request.m_vco_mult, request.m_vco_div);
    }
    check(pll.m_m.m_min_count == 1, "this->m_m.m_min_count == 1", "pll");
    check(pll.m_max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX,
          "max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX", "pll");
    return limits;
}

}  // namespace pll_internal
