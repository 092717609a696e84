// Lower bounds of error sums, quick and a little too low.
//
// All of the error sum but what an output in the feedback path adds depends on r = M / N alone:
// output i with ratio q adds q x |x / K - 1|, with x = r / q and K the whole number nearest to x,
// and K beyond what its counter can count. Each bound leaves out what it cannot be sure of, so no
// setting has a smaller sum; a setting whose bound is above the best sum needs no exact look.
#pragma once

#include "pll.h"

#include "search/region.h"

namespace pll_internal {

struct SEARCH_LIMITS;

class ERROR_BOUND
{
public:
    static constexpr int LANES = 4;          // settings that are bounded in one go
    static constexpr int CELLS = 2 * LANES;  // cells that are

    ERROR_BOUND(const PLL& pll, const SEARCH_LIMITS& limits);

    // bounds[i] is a bound for all ratios from low + i x width to low + (i + 1) x width. `count` is
    // a multiple of CELLS.
    void bound_cells(double low, double width, int count, float* bounds) const;

    // bounds[i] is a bound for the ratio ratios[i].
    void bound_ratios(const float (&ratios)[LANES], float (&bounds)[LANES]) const;

private:
    class SUM;
    struct OUTPUT
    {
        float m_ratio;    // mult / div, counted a little too small
        float m_inverse;  // div / mult
        float m_reach;    // the largest count, and the fraction that may round down to it
    };

    int m_count;
    float m_vco_ratio;   // wished for
    float m_vco_weight;  // how often its error counts; 0: no wish
    float m_cascades;    // how many outputs may use a second counter
    OUTPUT m_outputs[PLL_MAX_TAPS];
};

}  // namespace pll_internal
