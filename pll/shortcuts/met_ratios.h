// The VCO ratios at which every output is met.
//
// An output with ratio q is met, within a thousandth, only where M / N is near a multiple K x q
// that its counter can divide by. The ranges around the multiples are found without looking at any
// M or N, output after output: what is left at the end holds every exact candidate. The ranges are
// a little too wide, so that rounding cannot lose one.
#pragma once

#include "pll.h"

#include "search/region.h"

namespace pll_internal {

struct SEARCH_LIMITS;

class MET_RATIOS
{
public:
    // Of the ratios in `within`.
    MET_RATIOS(const PLL& pll, const SEARCH_LIMITS& limits, RATIO_RANGE within);

    // Disjoint and ascending.
    const RATIO_RANGE* begin() const { return m_ranges; }
    const RATIO_RANGE* end() const { return m_ranges + m_count; }
    int count() const { return m_count; }

private:
    // More ranges than this are not told apart: the output that would make them is left out.
    static constexpr int CAPACITY = 512;

    class BUILDER;

    RATIO_RANGE m_ranges[CAPACITY];
    int m_count;
};

}  // namespace pll_internal
