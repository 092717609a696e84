// Error sums of settings, to the last digit, without assigning any counter.
#pragma once

#include "pll.h"

#include "shortcuts/kept_cascades.h"
#include "shortcuts/lanes.h"

namespace pll_internal {

class ERROR_SUM
{
public:
    static constexpr int LANES = 4;  // settings that are summed in one go

    struct SETTINGS
    {
        int m_m[LANES];
        int m_n[LANES];
    };

    ERROR_SUM(const PLL& pll, const SEARCH_LIMITS& limits, KEPT_CASCADES* cascades);

    // What assigning the counters of (m, n) would measure; something above `limit` when the sum is:
    // it grows from output to output and never shrinks.
    double of(int m, int n, double limit) const;

    // Limits the ratios of settings that are summed together from now on; at first there is no
    // limit.
    void expect_ratios_up_to(double largest);

    // The same for all settings.
    void of(const SETTINGS& settings, double limit, double (&sums)[LANES]) const;

private:
    class PAIR;

    // What the sums of many settings need to know of an output, worked out once.
    struct OUTPUT
    {
        TWO m_ratio;
        TWO m_inverse;
        TWO m_least;          // a quotient that counts as 1, as all below do
        TWO m_surely_met;     // an error below it is not counted
        TWO m_surely_missed;  // an error above it is
        TWO m_largest_count;
        bool m_is_bypassed;  // at every ratio, and far too fast even then
    };

    const PLL& m_pll;
    const SEARCH_LIMITS& m_limits;
    KEPT_CASCADES& m_cascades;
    OUTPUT m_outputs[PLL_MAX_TAPS];
};

}  // namespace pll_internal
