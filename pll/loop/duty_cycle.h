// Duty cycles of a counter, percent.
//
// A counter of K is high for m_high VCO periods, less half a one in odd mode. Hosts compare these
// figures with what they stored: each is computed in the order of its terms, and in single
// precision where it says so.
#pragma once

#include "pll.h"

#include "platform/arith.h"
#include "platform/report_error.h"

namespace pll_internal {

// A counter that divides by one passes the VCO's clock, which is high for half of its period.
inline constexpr double HALF_PERCENT = 50.0;

// What the counter divides by once its halves are set; its m_count may be that of a search.
inline int sum_of_halves(const PLL_OUTPUT_TAP& tap)
{
    return wrap_add(tap.m_high, tap.m_low);
}

// The largest high count that leaves a low one.
// A clock that never falls is none, and neither half can count beyond its maximum.
inline int largest_high_count(const PLL_OUTPUT_TAP& tap)
{
    return std::min(wrap_sub(tap.m_count, 1), tap.m_max_count);
}

// The step between duty cycles: half a VCO period in the count, by way of the odd mode. Infinite
// for a count of nothing.
inline double duty_cycle_resolution(const PLL_OUTPUT_TAP& tap)
{
    return HALF_PERCENT / sum_of_halves(tap);
}

// With the longest low half, and the high one half a period shorter than it counts. The high half
// of one period is what a longer low half would have to leave.
inline double smallest_duty_cycle(const PLL_OUTPUT_TAP& tap)
{
    const double count = tap.m_count;
    return (count - largest_high_count(tap) - 0.5) * 100.0 / count;
}

// Single precision on purpose: hosts compare the widened float with what they stored.
inline double largest_duty_cycle(const PLL_OUTPUT_TAP& tap)
{
    if (tap.m_count == 1) {
        return HALF_PERCENT;
    }
    const float high = static_cast<float>(largest_high_count(tap));
    return static_cast<double>(high * 100.0F / static_cast<float>(tap.m_count));
}

// The duty cycle of output `index`. Reports an index beyond the outputs and a count of nothing.
inline double checked_duty_cycle(const PLL_OUTPUT_TAP& tap, int index, int taps_count)
{
    check(index >= 0 && index < taps_count, "i >= 0 && i < m_total_taps_count", "pll");
    const int counter_sum = sum_of_halves(tap);
    const int out_count = tap.m_bypass ? 1 : counter_sum;
    check(out_count == 1 || counter_sum != 0, "out_count == 1 || counter_sum != 0", "pll");
    if (out_count == 1) {
        return HALF_PERCENT;
    }
    const double high = tap.m_even ? tap.m_high : tap.m_high - 0.5;
    return high * 100.0 / counter_sum;
}

}  // namespace pll_internal
