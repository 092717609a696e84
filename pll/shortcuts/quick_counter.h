// The counter of an output, mostly without a division.
#pragma once

#include "search/ratio_error.h"
#include "shortcuts/lanes.h"

#include <cmath>

namespace pll_internal {

// The same as counter_value for counters up to 10^9, mostly without the division: a multiplication
// is off by a few roundings only, which matters near the middle of two whole numbers alone.
inline int quick_counter_value(const VCO_RATIO& vco, const RATIO_WISH& wish)
{
    constexpr double SURELY_NEARER = 0.5 - 1e-6;
    const double quotient = vco.m_ratio * wish.m_inverse;
    const double count = round_to_whole(quotient);
    return count >= 1.0 && std::fabs(quotient - count) < SURELY_NEARER ? int(count)
                                                                       : counter_value(vco, wish);
}

}  // namespace pll_internal
