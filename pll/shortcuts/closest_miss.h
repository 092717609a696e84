// The closest miss of a search in which nothing is legal, by columns of N.
#pragma once

#include "search/evaluation.h"

namespace pll_internal {

// Finds the pair that the walk over the rows keeps, and puts it into the result. Input period and
// minimum of N are positive, and no setting is legal. Returns false, with nothing done, when the
// walk is the shorter way: few M beside many N, or VCO limits that cross.
bool find_closest_miss(EVALUATION* evaluation);

}  // namespace pll_internal
