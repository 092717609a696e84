// Where counters become too small for their outputs.
//
// An output of ratio q whose counter has halves of c each divides by up to 2c. It needs a second
// counter from M / N = (2c + 0.5) x q on, where its count rounds to 2c + 1.
#pragma once

#include "pll.h"

#include "search/limits.h"

#include <algorithm>

namespace pll_internal {

class CASCADE_REACHES
{
public:
    CASCADE_REACHES(const PLL& pll, const SEARCH_LIMITS& limits);

    // Outputs that may need a second counter; those that pass the VCO on may not.
    int count() const { return m_count; }

    // A ratio below which the counters of fewer than `outputs` outputs, 1 to count(), are too
    // small.
    double lowest_for(int outputs) const { return m_ratios[outputs - 1] * (1.0 - ROOM); }

    // A ratio from which on those of `outputs` outputs or more surely are.
    double surely_for(int outputs) const { return m_ratios[outputs - 1] * (1.0 + ROOM); }

private:
    static constexpr double ROOM = 1e-9;  // for the rounding of counts

    int m_count;
    double m_ratios[PLL_MAX_TAPS];  // ascending
};

inline CASCADE_REACHES::CASCADE_REACHES(const PLL& pll, const SEARCH_LIMITS& limits) : m_count(0)
{
    constexpr double TWICE = 2.0;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const int max_count = pll.m_taps[i].m_max_count;
        if (max_count != 1) {
            m_ratios[m_count++] = (TWICE * max_count + 0.5) * limits.m_wishes[i].m_ratio;
        }
    }
    std::sort(m_ratios, m_ratios + m_count);
}

}  // namespace pll_internal
