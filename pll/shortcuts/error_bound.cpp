#include "shortcuts/error_bound.h"

#include "search/limits.h"
#include "search/ratio_error.h"
#include "shortcuts/lanes.h"

#include <algorithm>

namespace pll_internal {

namespace {

// Bounds are off by rounding, so whatever is added to a sum is taken to be a little smaller than
// computed, and errors near the border of a met output are not counted at all.
constexpr float ROUNDING = 2e-6F;  // relative; several times that of the floats that lead to a term
constexpr float SURE_SHARE = 1.0F - ROUNDING;
constexpr float SURE_SHARE_OF_MANY = 1.0F - 10.0F * ROUNDING;  // of a sum that is subtracted from
constexpr float SURELY_NOT_MET = float(MET_RELATIVE) + 2.0F * ROUNDING;
constexpr float SURELY_BEYOND = 0.5F + 1e-3F;  // of a count, so that it rounds up
constexpr double SMALLEST_SURE_RATIO = 1e-8;   // below it errors may count as rounding

inline void store(FOUR values, float* to)
{
    for (int i = 0; i < 4; ++i) {
        to[i] = values[i];
    }
}

inline FOUR at_least_zero(FOUR value)
{
    return larger(value, all(0.0F));
}

// A bound of |x / K - 1| for every x in low..high, with K the counter nearest to x: 0 where a
// multiple lies within, else by the multiples on both sides, of which there is only the one above
// for an x below 1.
inline FOUR missed_between(FOUR low, FOUR high)
{
    const FOUR below = round_to_whole(low - 0.5F);
    const FOUR above = below + 1.0F;
    const FOUR from_above = above - high;
    const FOUR both_sides = smaller((low - below) * above, from_above * below);
    const auto is_below_one = below < 0.5F;
    const FOUR numerator = is_below_one ? from_above : both_sides;
    const FOUR denominator = is_below_one ? above : below * above;
    const FOUR missed = numerator / denominator;
    return missed < SURELY_NOT_MET ? all(0.0F) : missed - ROUNDING;
}

// The same for one x. Next to the middle of two whole numbers the upper one is off by less, so it
// is taken wherever rounding might have moved x across.
inline FOUR missed_at(FOUR x)
{
    const FOUR any_below_middle = all(0.75F);  // all of them count as 1
    const FOUR count = round_to_whole(larger(any_below_middle, x * (1.0F + ROUNDING)));
    const FOUR missed = distance(x, count) / count;
    return missed < SURELY_NOT_MET ? all(0.0F) : missed - ROUNDING;
}

// Up to where an output's counter can count without the help of a second one.
float reach_of(int max_count)
{
    return (max_count == 1 ? 1.0F : 2.0F * float(max_count)) + SURELY_BEYOND;
}

}  // namespace

ERROR_BOUND::ERROR_BOUND(const PLL& pll, const SEARCH_LIMITS& limits)
    : m_count(limits.m_taps_count), m_vco_ratio(0.0F), m_vco_weight(0.0F), m_cascades(0.0F)
{
    if (has_wish(limits.m_vco_wish)) {
        m_vco_ratio = float(limits.m_vco_wish.m_ratio);
        m_vco_weight = float(m_count) * SURE_SHARE;
    }
    if (limits.m_may_cascade) {
        m_cascades = float(std::min(pll.m_max_taps_count, PLL_MAX_TAPS) - m_count);
    }
    for (int i = 0; i < m_count; ++i) {
        const RATIO_WISH& wish = limits.m_wishes[i];
        const int max_count = pll.m_taps[i].m_max_count;
        m_outputs[i] = {wish.m_ratio < SMALLEST_SURE_RATIO ? 0.0F
                                                           : float(wish.m_ratio) * SURE_SHARE,
                        float(wish.m_div / wish.m_mult), reach_of(max_count)};
    }
}

// The sum for ratios from `low` to `high`.
class ERROR_BOUND::SUM
{
public:
    SUM(const ERROR_BOUND& bound, FOUR low, FOUR high)
        : m_cascades(bound.m_cascades), m_low(low), m_high(high), m_beyond{}, m_farthest{}
    {
        const FOUR missed = larger(low - bound.m_vco_ratio, bound.m_vco_ratio - high);
        m_sum = at_least_zero(missed - ROUNDING * (high + bound.m_vco_ratio)) * bound.m_vco_weight;
    }

    void add(const OUTPUT& output)
    {
        const FOUR low = m_low * output.m_inverse;
        add(output, low, missed_between(low, m_high * output.m_inverse));
    }

    // The same where both ends are one.
    void add_at(const OUTPUT& output)
    {
        const FOUR x = m_low * output.m_inverse;
        add(output, x, missed_at(x));
    }

    // Cascades help as many outputs as there are counters left, at best those that are farthest
    // beyond theirs.
    FOUR value() const
    {
        const FOUR beyond = m_beyond * SURE_SHARE_OF_MANY - m_farthest * m_cascades;
        return (m_sum + at_least_zero(beyond)) * SURE_SHARE;
    }

private:
    void add(const OUTPUT& output, FOUR low, FOUR missed)
    {
        const FOUR beyond = at_least_zero(low * SURE_SHARE - output.m_reach);
        m_sum += missed * output.m_ratio;
        m_beyond += beyond;
        m_farthest = larger(m_farthest, beyond);
    }

    float m_cascades;
    FOUR m_low;
    FOUR m_high;
    FOUR m_sum;
    FOUR m_beyond;    // counts, of all outputs
    FOUR m_farthest;  // of one
};

void ERROR_BOUND::bound_cells(double low, double width, int count, float* bounds) const
{
    const float start = float(low);
    const float step = float(width);
    const auto edges = [=](int first) {
        return start + (float(first) + FOUR{0.0F, 1.0F, 2.0F, 3.0F}) * step;
    };
    for (int i = 0; i < count; i += CELLS) {
        SUM near(*this, edges(i), edges(i + 1));
        SUM far(*this, edges(i + LANES), edges(i + LANES + 1));
        for (int output = 0; output < m_count; ++output) {
            near.add(m_outputs[output]);
            far.add(m_outputs[output]);
        }
        store(near.value(), bounds + i);
        store(far.value(), bounds + i + LANES);
    }
}

void ERROR_BOUND::bound_ratios(const float (&ratios)[LANES], float (&bounds)[LANES]) const
{
    const FOUR ends = {ratios[0], ratios[1], ratios[2], ratios[3]};
    SUM sum(*this, ends, ends);
    for (int output = 0; output < m_count; ++output) {
        sum.add_at(m_outputs[output]);
    }
    store(sum.value(), bounds);
}

}  // namespace pll_internal
