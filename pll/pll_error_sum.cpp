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

// The same as counter_value(), mostly without its division: a multiplication is off by a few
// roundings only, which matters near the middle of two whole numbers alone.
int quick_counter_value(const VCO_RATIO& vco, const RATIO_WISH& wish)
{
    constexpr double SURE_BELOW = 1e6;
    constexpr double NEAR_MIDDLE = 1e-6;
    const double value = vco.m_ratio * wish.m_inverse + 0.5;
    if (1.0 + NEAR_MIDDLE < value && value < SURE_BELOW) {
        const int count = int(value);
        const double fraction = value - count;
        if (NEAR_MIDDLE < fraction && fraction < 1.0 - NEAR_MIDDLE) {
            return count;
        }
    }
    return counter_value(vco, wish);
}

// The error of one output as add_frequency_error() counts it, mostly without its second division:
// only whether the relative error reaches a thousandth matters here.
double missed_error(const VCO_RATIO& vco, int count, const RATIO_WISH& wish)
{
    constexpr double SURELY_MISSED = MET_RELATIVE * (1.0 + 1e-9);
    const double error = std::fabs(vco.m_ratio / count - wish.m_ratio);
    if (error >= EXACT_RATIO && wish.m_div * error > SURELY_MISSED * wish.m_mult) {
        return error;
    }
    CANDIDATE_SCORE score;
    return add_frequency_error(vco, count, wish, &score);
}

}  // namespace

ERROR_SUM::ERROR_SUM(const PLL& pll, const SEARCH_LIMITS& limits) : m_pll(pll), m_limits(limits) {}

double ERROR_SUM::of(int m, int n, double limit) const
{
    const VCO_RATIO vco(m, n);
    const int feedback = m_pll.m_feedback_tap;
    if (0 <= feedback && feedback < m_limits.m_taps_count) {
        // Nothing makes the sum smaller again.
        const double rest = feedback_rest(m, counter_value(vco, m_limits.m_wishes[feedback]));
        if (rest > limit) {
            return rest;
        }
    }
    CANDIDATE_SCORE score;
    int source_index = m_limits.m_taps_count;
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = m_limits.m_wishes[i];
        const int count = quick_counter_value(vco, wish);
        const double error = missed_error(vco, count, wish);
        score.m_error += error;
        add_vco_ratio_error(vco, m_limits.m_vco_wish, error, &score);
        if (i == feedback) {
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
