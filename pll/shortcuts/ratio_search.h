// The same answer as that of the walk over the rows, with less work.
#pragma once

#include "search/evaluation.h"

namespace pll_internal {

// Searches the legal settings by their VCO ratio. Returns false, with nothing done, when only the
// walk can tell: nothing is legal, or the request is an odd one.
bool search_by_ratio(EVALUATION* evaluation);

}  // namespace pll_internal
