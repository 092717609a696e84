#include "search/result.h"

#include <algorithm>
#include <iterator>

namespace pll_internal {

SEARCH_RESULT::SEARCH_RESULT(const PLL& pll, const PLL_PROP& request)
    : m_best(request.m_taps_count, PLL_MAX_TAPS)
{
    m_best = pll;
    std::transform(std::begin(pll.m_taps), std::end(pll.m_taps), m_neighbours, read_neighbours);
}

}  // namespace pll_internal
