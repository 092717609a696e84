// The figures of a setting, from the definitions, with M, N and K the counts of feedback, input and
// one output:
//
//   VCO    = fin x M x F / N, F the count of the output in the feedback (1 without one)
//   output = fin x M x F / (N x K), K the product along a cascade
//
// The library's own figures of the same counters must say the same.
#include "advice/verdict/achieved.h"
#include "advice/verify/verify.h"

#include <algorithm>

namespace advice {

namespace {

int count_of(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_bypass ? 1 : tap.m_high + tap.m_low;
}

RATIONAL division_of(const PLL& pll, int output)
{
    RATIONAL division(1);
    int tap = output;
    for (int step = 0; step < PLL_MAX_TAPS && tap >= 0 && tap < PLL_MAX_TAPS; ++step) {
        division = division * RATIONAL(count_of(pll.m_taps[tap]));
        tap = pll.m_taps[tap].m_previous_tap;
    }
    return division;
}

RATIONAL vco_ratio_of(const PLL& pll)
{
    RATIONAL first(pll.get_m(), pll.get_n());
    if (pll.m_ss_cycles > 0) {
        const RATIONAL second(pll.m_m.m_ss_count, pll.m_n.m_ss_count);
        first = first < second ? second : first;
    }
    return pll.m_feedback_tap < 0
               ? first
               : first *
                     RATIONAL(count_of(pll.m_taps[std::min(pll.m_feedback_tap, PLL_MAX_TAPS - 1)]));
}

std::string place_of(std::size_t output, const char* key)
{
    return "outputs[" + std::to_string(output) + "]." + key;
}

void compare_ratios(const PLL& pll, const PLL_PROP& achieved, std::vector<BROKEN_RULE>* broken)
{
    const RATIONAL vco = vco_ratio_of(pll);
    if (!(RATIONAL(achieved.m_vco_mult, achieved.m_vco_div) == vco)) {
        broken->push_back({"pll.vco_ratio", "the counters make " + vco.to_fraction()});
    }
    const int outputs = std::clamp(achieved.m_taps_count, 0, PLL_MAX_TAPS);
    for (int i = 0; i < outputs; ++i) {
        const RATIONAL ratio = vco / division_of(pll, i);
        if (!(RATIONAL(achieved.m_taps[i].m_mult, achieved.m_taps[i].m_div) == ratio)) {
            broken->push_back({place_of(static_cast<std::size_t>(i), "ratio"),
                               "the counters make " + ratio.to_fraction()});
        }
    }
}

template <class LIST>
bool is_listed(const LIST& list, double value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

// Components stay as the device has them, or are chosen from its lists.
void check_components(const LIMITS& limits, const REQUEST& request, const PLL& pll,
                      std::vector<BROKEN_RULE>* broken)
{
    PLL device(static_cast<int>(request.m_outputs.size()), PLL_MAX_TAPS);
    limits.give_to(&device, request);
    const PLL_BASIC_INFO* const info = device.m_info.m_basic_info;
    const bool has_table = info != nullptr && info->m_use_bandwidth_settings_table;
    if (pll.m_c_fixed != device.m_c_fixed) {
        broken->push_back({"loop_filter.c_pf", "is none of the device's"});
    }
    if (has_table) {
        return;
    }
    const PLL_IMPL& parts = *PLL::m_impl;
    const bool is_special = pll.m_i == device.m_i || pll.m_i == device.m_i_min ||
                            pll.m_i == device.m_ss_charge_pump_current;
    if (!is_special && !is_listed(parts.m_charge_pump_currents, pll.m_i)) {
        broken->push_back({"loop_filter.i_ua", "is none of the device's currents"});
    }
    if (pll.m_r != device.m_r && !is_listed(parts.m_resistors, pll.m_r)) {
        broken->push_back({"loop_filter.r_ohm", "is none of the device's resistors"});
    }
    if (pll.m_c_high != device.m_c_high && !is_listed(parts.m_capacitors, pll.m_c_high)) {
        broken->push_back({"loop_filter.c_high_pf", "is none of the device's capacitors"});
    }
}

}  // namespace

std::vector<BROKEN_RULE> find_broken_figures(const REQUEST& request, const LIMITS& limits,
                                             const PLL& pll, const PLL_PROP& achieved,
                                             COMPONENT_SOURCE components)
{
    std::vector<BROKEN_RULE> broken;
    compare_ratios(pll, achieved, &broken);
    if (components == COMPONENT_SOURCE::LISTS) {
        check_components(limits, request, pll, &broken);
    }
    return broken;
}

VERIFICATION::VERIFICATION(const REQUEST& request, const LIMITS& limits, const SETTING& setting,
                           COMPONENT_SOURCE components)
    : m_rules(find_broken_rules(request, setting,
                                request.m_max_outputs.value_or(limits.get_max_outputs()))),
      m_pll(static_cast<int>(request.m_outputs.size()), PLL_MAX_TAPS),
      m_achieved(static_cast<int>(request.m_outputs.size()))
{
    if (!m_rules.empty()) {
        judge_without_setting(request, limits, m_pll, &m_verdict);
        return;
    }
    m_is_possible = true;
    put_into(setting, request, limits, &m_pll);
    find_properties(request, m_pll, &m_achieved);
    judge(request, limits, m_pll, m_achieved, &m_verdict);
    m_rules = find_broken_figures(request, limits, m_pll, m_achieved, components);
}

}  // namespace advice
