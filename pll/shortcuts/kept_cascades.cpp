#include "shortcuts/kept_cascades.h"

#include "platform/arith.h"
#include "search/ratio_error.h"
#include "shortcuts/quick_counter.h"

#include <cstring>

namespace pll_internal {

KEPT_CASCADES::KEPT_CASCADES(const PLL& pll, const SEARCH_LIMITS& limits)
    : m_pll(pll), m_limits(limits)
{
    if (limits.m_may_cascade) {
        std::memset(m_slots, 0, sizeof m_slots);
    }
}

int KEPT_CASCADES::factor_of(int count, int most)
{
    SLOT& slot = m_slots[unsigned(count) % SLOTS];
    if (slot.m_count != count || slot.m_most != most) {
        slot = {count, most, PLL_UTIL::cascade_factor(count, most)};
    }
    return slot.m_factor;
}

int KEPT_CASCADES::find(int count, int max_count, int source_index)
{
    const int most = wrap_mul(2, max_count);
    if (!m_limits.m_may_cascade || count <= most || m_pll.m_max_taps_count <= source_index ||
        source_index >= PLL_MAX_TAPS) {
        return 0;
    }
    return factor_of(count, most);
}

bool KEPT_CASCADES::has_short_output(int m, int n)
{
    const VCO_RATIO vco(m, n);
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const int max_count = m_pll.m_taps[i].m_max_count;
        const int count = quick_counter_value(vco, m_limits.m_wishes[i]);
        if (max_count != 1 && count - count / 2 > max_count &&
            factor_of(count, wrap_mul(2, max_count)) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace pll_internal
