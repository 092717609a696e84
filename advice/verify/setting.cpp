#include "advice/verify/setting.h"

#include "pll.h"
#include "pll_prop.h"

#include <algorithm>

namespace advice {

namespace {

LOOP_COUNTER loop_counter_of(const PLL_COUNTER_M& counter)
{
    return {counter.m_count, counter.m_initial, counter.m_vco_tap, counter.m_delay,
            counter.m_ss_count};
}

OUTPUT_COUNTER output_counter_of(const PLL_OUTPUT_TAP& tap)
{
    return {tap.m_high,    tap.m_low,     tap.m_even,         tap.m_bypass,
            tap.m_initial, tap.m_vco_tap, tap.m_previous_tap, tap.m_delay};
}

void put_loop_counter(const LOOP_COUNTER& from, PLL_COUNTER_M* to)
{
    to->m_count = from.m_count;
    to->m_initial = from.m_initial;
    to->m_vco_tap = from.m_vco_tap;
    to->m_delay = from.m_delay;
    to->m_ss_count = from.m_spread_count;
}

void put_output_counter(const OUTPUT_COUNTER& from, PLL_OUTPUT_TAP* to)
{
    to->m_high = from.m_high;
    to->m_low = from.m_low;
    to->m_even = from.m_even;
    to->m_bypass = from.m_bypass;
    to->m_initial = from.m_initial;
    to->m_vco_tap = from.m_vco_tap;
    to->m_previous_tap = from.m_fed_by;
    to->m_delay = from.m_delay;
    to->m_count = from.m_high + from.m_low;
}

}  // namespace

SETTING setting_of(const PLL& pll)
{
    SETTING setting;
    setting.m_m = loop_counter_of(pll.m_m);
    setting.m_n = loop_counter_of(pll.m_n);
    setting.m_post_scale = pll.m_vco_post_scale;
    setting.m_feedback = pll.m_feedback_tap < 0 ? NO_OUTPUT : pll.m_feedback_tap;
    setting.m_spread_cycles = pll.m_ss_cycles;
    setting.m_components = {pll.m_i, pll.m_r, pll.m_c_fixed, pll.m_c_high};
    const int counters = std::clamp(pll.m_total_taps_count, 0, PLL_MAX_TAPS);
    for (int i = 0; i < counters; ++i) {
        setting.m_counters.push_back(output_counter_of(pll.m_taps[i]));
    }
    return setting;
}

void put_into(const SETTING& setting, const REQUEST& request, const LIMITS& limits, PLL* pll)
{
    limits.give_to(pll, request);
    put_loop_counter(setting.m_m, &pll->m_m);
    put_loop_counter(setting.m_n, &pll->m_n);
    pll->m_vco_post_scale = setting.m_post_scale;
    pll->m_feedback_tap = setting.m_feedback;
    pll->m_ss_cycles = setting.m_spread_cycles;
    pll->m_i = setting.m_components.m_i;
    pll->m_r = setting.m_components.m_r;
    pll->m_c_fixed = setting.m_components.m_c_fixed;
    pll->m_c_high = setting.m_components.m_c_high;
    pll->m_user_taps_count = static_cast<int>(request.m_outputs.size());
    pll->m_total_taps_count = static_cast<int>(setting.m_counters.size());
    for (std::size_t i = 0; i < setting.m_counters.size(); ++i) {
        put_output_counter(setting.m_counters[i], &pll->m_taps[i]);
    }
}

void find_properties(const REQUEST& request, const PLL& pll, PLL_PROP* achieved)
{
    achieved->m_fin_period = request.m_input.m_library_period;
    achieved->m_use_reconfig = request.m_reconfig;
    achieved->set_properties_from_internals(pll);
}

}  // namespace advice
