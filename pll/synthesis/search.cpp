#include "synthesis/search.h"

#include "search/evaluation.h"
#include "search/row_walk.h"
#include "shortcuts/closest_miss.h"
#include "shortcuts/ratio_search.h"

namespace pll_internal {

void search(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
            SYNTHESIS_TRACE* trace, SEARCH_RESULT* result)
{
    EVALUATION evaluation(pll, request, limits, trace, result);
    // A trace shows the walk itself, candidate by candidate.
    const RATIO_SEARCH by_ratio =
        trace != nullptr ? RATIO_SEARCH::ODD_REQUEST : search_by_ratio(&evaluation);
    if (by_ratio == RATIO_SEARCH::DONE ||
        (by_ratio == RATIO_SEARCH::NOTHING_LEGAL && find_closest_miss(&evaluation))) {
        return;
    }
    walk_rows(&evaluation);
}

}  // namespace pll_internal
