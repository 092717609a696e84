// The walk that defines the answer of a search.
#pragma once

#include "search/evaluation.h"

namespace pll_internal {

// Walks over all rows (post-scale, M) as the definition of the search does, and evaluates every
// legal candidate; when there is none it finds the closest miss.
void walk_rows(EVALUATION* evaluation);

}  // namespace pll_internal
