// Passing events to an observer.
#pragma once

#include "pll_observer.h"

namespace pll_internal {

// What the observer throws is dropped: the reader goes on as if nobody had listened.
void tell(PLL_READ_OBSERVER* observer, const PLL_READ_FINDING& finding) noexcept;
void tell(PLL_READ_OBSERVER* observer, const PLL_READ_STATEMENT& statement) noexcept;

}  // namespace pll_internal
