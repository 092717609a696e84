// The error sum of one setting, to the last digit, without assigning any counter.
//
// The sum grows from output to output and never shrinks, so it may be given up as soon as it has
// passed a limit.
#pragma once

#include "pll.h"

struct SEARCH_LIMITS;

class ERROR_SUM
{
public:
    ERROR_SUM(const PLL& pll, const SEARCH_LIMITS& limits);

    // What assigning the counters of (m, n) would measure; something above `limit` when the sum is.
    double of(int m, int n, double limit) const;

private:
    const PLL& m_pll;
    const SEARCH_LIMITS& m_limits;
};
