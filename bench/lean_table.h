// The bandwidth table as the lean loop uses it: a walk over the rows of one effective M.
#pragma once

#include "pll.h"
#include "pll_prop.h"

struct LEAN_ROW_CHOICE
{
    const PLL_BANDWIDTH_SETTING* m_row;  // null: no row for this M
    double m_cost;
    bool m_within;  // inside the limits of the PFD
};

LEAN_ROW_CHOICE choose_lean_row(const PLL& limits, const PLL_PROP& request, int effective_m, int n);
