#include "pll_error_sum.h"

#include "pll_ratio_error.h"
#include "pll_search.h"

namespace {

// What clamping the halves of a counter, or forcing it to bypass, costs.
void add_impossible_counter_error(int count, int max_count, CANDIDATE_SCORE* score)
{
    if (max_count == 1) {
        score->m_error += count == 1 ? 0 : count;
        return;
    }
    const int high = count / 2;
    const int low = count - high;
    score->m_error += std::max(high - max_count, 0);
    score->m_error += std::max(low - max_count, 0);
}

}  // namespace

ERROR_SUM::ERROR_SUM(const PLL& pll, const SEARCH_LIMITS& limits) : m_pll(pll), m_limits(limits) {}

double ERROR_SUM::of(int m, int n, double limit) const
{
    const VCO_RATIO vco(m, n);
    CANDIDATE_SCORE score;
    int source_index = m_limits.m_taps_count;
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = m_limits.m_wishes[i];
        const int count = counter_value(vco, wish);
        const double error = add_frequency_error(vco, count, wish, &score);
        add_vco_ratio_error(vco, m_limits.m_vco_wish, error, &score);
        if (i == m_pll.m_feedback_tap) {
            score.m_error += feedback_rest(m, count);
        }
        const int max_count = m_pll.m_taps[i].m_max_count;
        if (max_count != 1 && find_cascade(m_pll, count, max_count, source_index) != 0) {
            ++source_index;
        } else {
            add_impossible_counter_error(count, max_count, &score);
        }
        if (score.m_error > limit) {
            break;
        }
    }
    return score.m_error;
}
