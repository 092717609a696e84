// The same answer as that of the walk over the rows, with less work.
#pragma once

#include "search/evaluation.h"

namespace pll_internal {

enum class RATIO_SEARCH
{
    DONE,
    NOTHING_LEGAL,
    ODD_REQUEST  // only the walk can tell
};

// Searches the legal settings by their VCO ratio. Does nothing unless it is done.
RATIO_SEARCH search_by_ratio(EVALUATION* evaluation);

}  // namespace pll_internal
