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

// The quick test may be off by rounding: it counts every error a little too small, errors near the
// border of a met output and counters near the middle of two whole numbers not at all.
constexpr double SURE_SHARE = 1.0 - 1e-9;
constexpr double SURELY_NOT_MET = MET_RELATIVE * (1.0 + 1e-6);
constexpr double NEAR_MIDDLE = 1e-6;
constexpr double LARGEST_QUOTIENT = 1e9;  // beyond it a middle could be missed

constexpr std::uint32_t ALL_LANES = (1U << REJECTION::LANES) - 1U;

// The nearest whole number, for values far below 2^51: adding 1.5 x 2^52 leaves no room for a
// fraction.
inline double round_to_whole(double value)
{
    constexpr double NO_FRACTION = 6755399441055744.0;
    return (value + NO_FRACTION) - NO_FRACTION;
}

// A lower bound of |quotient / K - 1|, with K the counter nearest to `quotient`; 0 when unsure.
inline double surely_missed(double quotient)
{
    const double nearest = round_to_whole(quotient);
    const double count = nearest < 1.0 ? 1.0 : nearest;
    const double distance = std::fabs(quotient - count);
    const double relative = distance / count;
    const double from_middle = std::fabs(distance - 0.5);
    const double sure = relative < SURELY_NOT_MET ? 0.0 : relative;
    return from_middle < NEAR_MIDDLE ? 0.0 : sure;
}

}  // namespace

REJECTION::REJECTION(const PLL& pll, const PLL_PROP& request, int m_max)
    : m_pll(pll),
      m_request(request),
      m_taps_count(clamp_taps(request.m_taps_count)),
      m_can_tell(sums_tell_all(pll, request)),
      m_can_bound(m_can_tell && pll.m_n.m_min_count >= 1),
      m_wishes{}
{
    for (int i = 0; i < m_taps_count; ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        m_wishes[i] = {double(wish.m_mult) / wish.m_div, double(wish.m_div) / wish.m_mult};
        m_can_bound = m_can_bound && wish.m_mult >= 1 && wish.m_div >= 1 &&
                      m_max * m_wishes[i].m_inverse < LARGEST_QUOTIENT;
    }
}

std::uint32_t REJECTION::may_win(int m, std::int64_t n, double best_error) const
{
    if (!m_can_bound) {
        return ALL_LANES;
    }
    double ratio[LANES];
    double sum[LANES] = {};
    for (int lane = 0; lane < LANES; ++lane) {
        ratio[lane] = double(m) / double(n + lane);
    }
    for (int i = 0; i < m_taps_count; ++i) {
        const WISH wish = m_wishes[i];
        for (int lane = 0; lane < LANES; ++lane) {
            sum[lane] += wish.m_ratio * surely_missed(ratio[lane] * wish.m_inverse) * SURE_SHARE;
        }
        if (std::min(std::min(sum[0], sum[1]), std::min(sum[2], sum[3])) > best_error) {
            return 0;
        }
    }
    std::uint32_t alive = 0;
    for (int lane = 0; lane < LANES; ++lane) {
        alive |= sum[lane] > best_error ? 0U : 1U << lane;
    }
    return alive;
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
    for (int i = 0; i < m_taps_count; ++i) {
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
