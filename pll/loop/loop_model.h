// What every stage takes a loop for: the division of its feedback, the pi of its filter, and the
// slowest that its VCO may run.
#pragma once

#include "pll.h"

namespace pll_internal {

// Pi as the formulas of the loop filter have it. Settings and reports are promised to the last
// digit of these formulas, so a better pi would be a worse one.
inline constexpr double FILTER_PI = 3.14;

// What the loop divides by, its effective M: M times the post-scale, times the count of the output
// `feedback_tap`, which is in the feedback path unless it is negative. Wraps like the counters do.
// The groups of a bandwidth table are counted by it.
int effective_feedback_division(const PLL& pll, int feedback_tap);

// The same for the feedback that `pll` itself is set to.
int effective_feedback_division(const PLL& pll);

// Whether the frequency of the VCO is modulated, which needs room below its nominal frequency.
enum class SPREAD
{
    OFF,
    DOWN
};

// The longest VCO period at `post_scale`, -1 for the current one, in ps. With a spread it is the
// one that the device has for that, if it can spread and says so.
int longest_vco_period(const PLL& pll, SPREAD spread, int post_scale);

}  // namespace pll_internal
