#include "loop/taps.h"

#include "pll_util.h"

#include "platform/arith.h"

namespace pll_internal {

int effective_feedback_division(const PLL& pll)
{
    int division = wrap_mul(pll.m_m.m_count, pll.m_vco_post_scale);
    if (pll.m_feedback_tap >= 0) {
        division = wrap_mul(division, PLL_UTIL::get_tap_count(&pll, pll.m_feedback_tap));
    }
    return division;
}

}  // namespace pll_internal
