#include "search/result.h"

namespace pll_internal {

SEARCH_RESULT::SEARCH_RESULT(const PLL& pll, const PLL_PROP& request)
    : m_best(request.m_taps_count, PLL_MAX_TAPS)
{
    m_best = pll;
}

}  // namespace pll_internal
