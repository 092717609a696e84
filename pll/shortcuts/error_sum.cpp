#include "shortcuts/error_sum.h"

#include "search/candidate.h"
#include "search/limits.h"
#include "search/ratio_error.h"
#include "shortcuts/lanes.h"
#include "shortcuts/quick_counter.h"

#include <algorithm>

namespace pll_internal {

namespace {

constexpr double BELOW_MIDDLE = 0.75;  // of a count of 1, as all below

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

ERROR_SUM::ERROR_SUM(const PLL& pll, const SEARCH_LIMITS& limits, KEPT_CASCADES* cascades)
    : m_pll(pll), m_limits(limits), m_cascades(*cascades)
{
    constexpr double ROOM = 1e-9;  // for the rounding of the exact comparison
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = limits.m_wishes[i];
        const double met = MET_RELATIVE * wish.m_ratio;
        const int max_count = pll.m_taps[i].m_max_count;
        m_outputs[i] = {both(wish.m_ratio),
                        both(wish.m_inverse),
                        both(BELOW_MIDDLE),
                        both(met * (1.0 - ROOM)),
                        both(std::max(met, EXACT_RATIO) * (1.0 + ROOM)),
                        both(max_count == 1 ? 1.0 : 2.0 * max_count),
                        false};
    }
}

// Below the middle a counter passes the VCO on, which misses what is wished for by a quarter or
// more.
void ERROR_SUM::expect_ratios_up_to(double largest)
{
    constexpr double SMALLEST_SURE_RATIO = 1e-8;  // below it errors may count as rounding
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = m_limits.m_wishes[i];
        m_outputs[i].m_is_bypassed = largest <= BELOW_MIDDLE * wish.m_ratio &&
                                     wish.m_ratio > SMALLEST_SURE_RATIO &&
                                     m_pll.m_taps[i].m_max_count > 0;
    }
}

double ERROR_SUM::of(int m, int n, double limit) const
{
    const VCO_RATIO vco(m, n);
    CANDIDATE_SCORE score;
    int source_index = m_limits.m_taps_count;
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = m_limits.m_wishes[i];
        const int count = quick_counter_value(vco, wish);
        const double error = missed_error(vco, count, wish);
        score.m_error += error;
        add_vco_ratio_error(vco, m_limits.m_vco_wish, error, &score);
        if (i == m_pll.m_feedback_tap) {
            score.m_error += feedback_rest(m, count);
        }
        const int max_count = m_pll.m_taps[i].m_max_count;
        if (max_count != 1 && m_cascades.find(count, max_count, source_index) != 0) {
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

// Two settings, whose sums are added up side by side.
class ERROR_SUM::PAIR
{
public:
    PAIR(const SETTINGS& settings, int first, const RATIO_WISH& vco_wish)
        : m_m(read(settings.m_m, first)),
          m_ratio(m_m / read(settings.m_n, first)),
          m_vco_error{},
          m_sum{},
          m_farthest{},
          m_unsure{}
    {
        if (has_wish(vco_wish)) {
            const TWO error = distance(m_ratio, both(vco_wish.m_ratio));
            m_vco_error = error >= EXACT_RATIO ? error : both(0.0);
        }
    }

    // The expressions are those of one setting. Where a product of a rounded inverse might round to
    // another count, an error to another verdict, or a counter is too small, only it can tell.
    void add(const OUTPUT& output, bool is_feedback)
    {
        if (output.m_is_bypassed) {
            m_sum += distance(m_ratio, output.m_ratio);
            m_sum += m_vco_error;
            return;
        }
        const TWO quotient = larger(m_ratio * output.m_inverse, output.m_least);
        const TWO count = round_to_whole(quotient);
        m_farthest = larger(m_farthest, distance(quotient, count));
        const TWO error = distance(m_ratio / count, output.m_ratio);
        const FLAGS missed = error > output.m_surely_missed;
        m_sum += missed ? error : both(0.0);
        m_sum += m_vco_error;
        if (is_feedback) {
            m_sum += rest_of(m_m, count);
        }
        m_unsure |= (error >= output.m_surely_met) ^ missed;
        m_unsure |= count > output.m_largest_count;
    }

    bool is_sure(int lane) const
    {
        constexpr double SURELY_NEARER = 0.5 - 1e-6;
        return m_unsure[lane] == 0 && m_farthest[lane] < SURELY_NEARER;
    }
    double sum(int lane) const { return m_sum[lane]; }

private:
    using FLAGS = decltype(TWO{} < TWO{});

    static TWO read(const int (&counts)[LANES], int first)
    {
        return TWO{double(counts[first]), double(counts[first + 1])};
    }

    static TWO rest_of(TWO m, TWO count)
    {
        const TWO rest = m - round_to_whole(m / count) * count;
        return rest < 0.0 ? rest + count : rest;
    }

    TWO m_m;
    TWO m_ratio;
    TWO m_vco_error;
    TWO m_sum;
    TWO m_farthest;  // from the count chosen
    FLAGS m_unsure;
};

void ERROR_SUM::of(const SETTINGS& settings, double limit, double (&sums)[LANES]) const
{
    PAIR pairs[] = {PAIR(settings, 0, m_limits.m_vco_wish), PAIR(settings, 2, m_limits.m_vco_wish)};
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const bool is_feedback = i == m_pll.m_feedback_tap;
        pairs[0].add(m_outputs[i], is_feedback);
        pairs[1].add(m_outputs[i], is_feedback);
    }
    for (int i = 0; i < LANES; ++i) {
        const PAIR& pair = pairs[i / 2];
        sums[i] =
            pair.is_sure(i % 2) ? pair.sum(i % 2) : of(settings.m_m[i], settings.m_n[i], limit);
    }
}

}  // namespace pll_internal
