#include "pll_rejection.h"

#include "pll_ratio_error.h"
#include "pll_search.h"

namespace {

// Cascades leave their traces in counters that later candidates inherit, and limits below 0 would
// let sums shrink: such requests are assigned in full.
bool sums_tell_all(const PLL& pll, const PLL_PROP& request)
{
    if (pll.m_output_counter_cascade) {
        return false;
    }
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        if (pll.m_taps[i].m_max_count < 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

REJECTION::REJECTION(const PLL& pll, const PLL_PROP& request)
    : m_pll(pll), m_request(request), m_can_tell(sums_tell_all(pll, request))
{
}

// Adds what clamping the halves of a counter, or forcing it to bypass, costs.
void REJECTION::add_impossible_counter_error(int index, int count, CANDIDATE_SCORE* score) const
{
    const int max_count = m_pll.m_taps[index].m_max_count;
    if (max_count == 1) {
        score->m_error += count == 1 ? 0 : count;
        return;
    }
    const int high = count / 2;
    const int low = count - high;
    score->m_error += std::max(high - max_count, 0);
    score->m_error += std::max(low - max_count, 0);
}

bool REJECTION::rejects(int m, int n, double best_error) const
{
    if (!m_can_tell) {
        return false;
    }
    CANDIDATE_SCORE score;
    for (int i = 0; i < clamp_taps(m_request.m_taps_count); ++i) {
        const int count = counter_value(m, n, m_request.m_taps[i]);
        const double error = add_frequency_error(m, n, count, m_request.m_taps[i], &score);
        add_vco_ratio_error(m, n, m_request, error, &score);
        if (i == m_pll.m_feedback_tap) {
            return false;
        }
        add_impossible_counter_error(i, count, &score);
        if (score.m_error != 0.0 && score.m_error >= best_error) {
            return true;
        }
    }
    return false;
}
