#include "loop/loop_model.h"

#include "pll_util.h"

#include "platform/arith.h"

namespace pll_internal {

int effective_feedback_division(const PLL& pll, int feedback_tap)
{
    int division = wrap_mul(pll.m_m.m_count, pll.m_vco_post_scale);
    if (feedback_tap >= 0) {
        division = wrap_mul(division, PLL_UTIL::get_tap_count(&pll, feedback_tap));
    }
    return division;
}

int effective_feedback_division(const PLL& pll)
{
    return effective_feedback_division(pll, pll.m_feedback_tap);
}

int longest_vco_period(const PLL& pll, SPREAD spread, int post_scale)
{
    if (spread == SPREAD::DOWN && pll.m_ss_supported) {
        const int period = pll.get_ss_vco_max_period(post_scale);
        if (period != PLL_UNSET_MINIMUM) {
            return period;
        }
    }
    return pll.get_vco_max_period(post_scale);
}

}  // namespace pll_internal
