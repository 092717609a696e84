// What an output in the feedback path leaves over of M, which its error sum gets.
#pragma once

#include "pll.h"

#include "search/limits.h"
#include "search/ratio_error.h"
#include "shortcuts/lanes.h"
#include "shortcuts/quick_counter.h"

#include <cstdint>

namespace pll_internal {

class FEEDBACK_REST
{
public:
    // The limits must outlive the object.
    FEEDBACK_REST(const PLL& pll, const SEARCH_LIMITS& limits)
        : m_wish(0 <= pll.m_feedback_tap && pll.m_feedback_tap < limits.m_taps_count
                     ? &limits.m_wishes[pll.m_feedback_tap]
                     : nullptr)
    {
    }

    // Of (m, n); 0 when there is no such output.
    double of(int m, int n) const
    {
        if (m_wish == nullptr) {
            return 0.0;
        }
        const VCO_RATIO vco(m, n);
        const double count = quick_counter_value(vco, *m_wish);
        const double rest = vco.m_m - round_to_whole(vco.m_m / count) * count;
        return rest < 0.0 ? rest + count : rest;
    }

    // An N below which all is left over of every M above 1, by a counter that is larger than M; 1
    // when there is no such output.
    std::int64_t first_n_without() const
    {
        constexpr double ROOM =
            1.25 * (1.0 + 1e-6);  // for the half of 2 that rounds a counter down
        return m_wish == nullptr ? 1 : 1 + std::int64_t(m_wish->m_inverse / ROOM);
    }

private:
    const RATIO_WISH* m_wish;
};

}  // namespace pll_internal
