#include "same_answer.h"

#include <algorithm>
#include <cstddef>

namespace {

bool is_same_counter(const PLL_OUTPUT_TAP& tap, const LEAN_COUNTER& counter)
{
    return tap.m_count == counter.m_count && tap.m_high == counter.m_high &&
           tap.m_low == counter.m_low && tap.m_even == counter.m_even &&
           tap.m_vco_tap == counter.m_vco_tap && tap.m_initial == counter.m_start &&
           tap.m_delta_phase == counter.m_delta_phase;
}

// The library brings the next duty cycles into what can be reached, at the end.
bool is_same_carried(const PLL_OUTPUT_TAP& tap, const LEAN_CARRIED& carried)
{
    const auto reachable = [&carried](int duty) {
        return duty > carried.m_largest_duty ? carried.m_largest_duty
                                             : std::max(duty, carried.m_smallest_duty);
    };
    return tap.m_next_phase_degree == carried.m_next_phase &&
           tap.m_prev_phase_degree == carried.m_prev_phase &&
           tap.m_next_duty_cycle == reachable(carried.m_next_duty) &&
           tap.m_prev_duty_cycle == reachable(carried.m_prev_duty) &&
           tap.m_smallest_duty_cycle_min == carried.m_smallest_duty &&
           tap.m_largest_duty_cycle_max == carried.m_largest_duty;
}

}  // namespace

bool is_same_answer(const PLL& pll, const LEAN_ANSWER& answer)
{
    if (pll.get_m() != answer.m_m || pll.get_n() != answer.m_n) {
        return false;
    }
    if (!answer.m_found) {
        return pll.m_error == PLL::PLL_M_N_NOT_FOUND;
    }
    if (pll.m_vco_post_scale != answer.m_post_scale) {
        return false;
    }
    if (!answer.m_exact) {
        return true;
    }
    bool same = pll.m_cost == answer.m_cost;
    for (int i = 0; i < pll.m_user_taps_count; ++i) {
        same = same && is_same_counter(pll.m_taps[i], answer.m_counters[i]) &&
               is_same_carried(pll.m_taps[i], answer.m_carried[i]);
    }
    return same;
}

bool is_same_list(int count, const int* mults, const int* divs,
                  const std::vector<LEAN_RATIO>& ratios)
{
    if (std::size_t(count) != ratios.size()) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const LEAN_RATIO& ratio = ratios[std::size_t(i)];
        if (mults[i] != ratio.m_mult || divs[i] != ratio.m_div) {
            return false;
        }
    }
    return true;
}
