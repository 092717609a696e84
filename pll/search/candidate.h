// A candidate: the counters of one setting, and what they miss.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/limits.h"
#include "search/ratio_error.h"
#include "search/result.h"

namespace pll_internal {

// Turns `candidate` into the setting of `point`: counters, cascades, feedback. Returns what
// it measures.
CANDIDATE_SCORE assign_candidate(const PLL& pll, const PLL_PROP& request,
                                 const SEARCH_LIMITS& limits, const SEARCH_POINT& point,
                                 PLL* candidate);

// The division of the first of two counters that share `count`, with the counter `source_index` as
// the first one; 0 when they cannot, or need not.
int find_cascade(const PLL& pll, int count, int max_count, int source_index);

}  // namespace pll_internal
