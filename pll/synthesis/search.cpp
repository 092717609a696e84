#include "synthesis/search.h"

#include "search/evaluation.h"
#include "search/row_walk.h"
#include "shortcuts/ratio_search.h"

namespace pll_internal {

void search(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
            SYNTHESIS_TRACE* trace, SEARCH_RESULT* result)
{
    EVALUATION evaluation(pll, request, limits, trace, result);
    // A trace shows the walk itself, candidate by candidate.
    if (trace != nullptr || !search_by_ratio(&evaluation)) {
        walk_rows(&evaluation);
    }
}

}  // namespace pll_internal
