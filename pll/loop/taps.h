// What all stages ask of the taps of a PLL.
#pragma once

#include "pll.h"

namespace pll_internal {

// Clocks to walk over: never more than a record holds, never less than none.
//
// Hosts set the count of a request by hand, and it may be any int. Whoever walks over outputs asks
// here first, so that a wrong count can neither read beyond a record nor make a loop long.
inline int clamp_taps(int count)
{
    return count < 0 ? 0 : (count > PLL_MAX_TAPS ? PLL_MAX_TAPS : count);
}

}  // namespace pll_internal
