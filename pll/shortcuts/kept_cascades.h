// Cascade factors, of which those of many counts are kept: settings of like ratios ask for the same
// counts, and so do outputs of like ratios.
#pragma once

#include "pll.h"
#include "pll_util.h"

#include "search/limits.h"

#include <cstdint>

namespace pll_internal {

class KEPT_CASCADES
{
public:
    // Both must outlive the object, and the limits of `pll` stay as they are.
    KEPT_CASCADES(const PLL& pll, const SEARCH_LIMITS& limits);

    // What find_cascade() gives for an output of `max_count` other than 1.
    int find(int count, int max_count, int source_index);

    // Whether some output of (m, n) surely cannot divide by its count, not even with a second
    // counter. `m` and `n` make counts up to 10^9.
    bool is_short(int m, int n) { return m_limits.m_may_cascade && has_short_output(m, n); }

private:
    static constexpr int SLOTS = 512;

    // The factor of a count where a counter divides by `m_most`; 0: there is none.
    struct SLOT
    {
        int m_count;  // 0: none is kept
        int m_most;
        int m_factor;
    };

    int factor_of(int count, int most);
    bool has_short_output(int m, int n);

    const PLL& m_pll;
    const SEARCH_LIMITS& m_limits;
    SLOT m_slots[SLOTS];  // unused, and not set up, where nothing may cascade
};

}  // namespace pll_internal
