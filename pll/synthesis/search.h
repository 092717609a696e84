// The search of one synthesis: what it reads once, what it keeps, and its steps.
//
// Data goes one way: the limits are read from the PLL and the request, windows of N are found for
// every post-scale and M, each legal (post-scale, M, N) becomes a candidate with output counters,
// and the ranking keeps the best. Nothing here writes into the host's PLL.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/debug_log.h"
#include "search/limits.h"
#include "search/result.h"

namespace pll_internal {

// Visits every (post-scale, M, N) that is legal and fills `result`. `trace` is null while debugging
// is off.
void search(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
            SYNTHESIS_TRACE* trace, SEARCH_RESULT* result);

}  // namespace pll_internal
