#include "search/result.h"

SEARCH_RESULT::SEARCH_RESULT(const PLL& pll, const PLL_PROP& request)
    : m_best(request.m_taps_count, PLL_MAX_TAPS)
{
    m_best = pll;
}
