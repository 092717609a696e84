// What the library is measured against: the search as a calculator program would write it, a loop
// over post-scale, M and N that tries every pair. It is not slow on purpose: limits and request are
// plain numbers, nothing is allocated or copied per candidate, and the loops end where the periods
// or the automatic bandwidth let them.
//
// It answers requests whose phases are 0 and whose duty cycles are 50 percent, without feedback
// through an output, cascades, second input, wish for a VCO ratio, spread spectrum or table. Of
// those it chooses the same counters as the library.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include <vector>

struct LEAN_ANSWER
{
    bool m_found;  // some counters are legal
    bool m_exact;  // every clock is met within a thousandth
    int m_post_scale;
    int m_m;
    int m_n;
    double m_error;  // sum of the errors of the frequency ratios
    int m_met;       // candidates that meet every clock within a thousandth
    double m_cost;   // of the clocks that are met, but not to the last digit
};

struct LEAN_RATIO
{
    int m_mult;
    int m_div;
};

// The best counters within the limits of `limits`.
LEAN_ANSWER lean_synthesis(const PLL& limits, const PLL_PROP& request);

// Every VCO ratio within the limits, reduced, by ascending ratio: all are collected, then sorted.
// Replaces what `ratios` held and keeps its memory.
void lean_vco_ratios(const PLL& limits, int fin_period, std::vector<LEAN_RATIO>* ratios);
