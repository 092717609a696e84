#include "pll_error_bound.h"

#include "pll_ratio_error.h"
#include "pll_search.h"

namespace {

// Two doubles that the processor works on at once.
using PAIR = double __attribute__((vector_size(16)));

// Bounds are off by rounding: errors count a little too small, and those near the border of a met
// output not at all.
constexpr double SURE_SHARE = 1.0 - 1e-9;
constexpr double SURELY_NOT_MET = MET_RELATIVE * (1.0 + 1e-6);
constexpr double SURELY_BEYOND = 0.5 + 1e-6;  // of a count, so that it rounds up
constexpr double SAME_VCO_RATIO = 1e-11;
constexpr double SMALLEST_SURE_RATIO = 1e-8;  // below it errors may count as rounding

inline PAIR both(double value)
{
    return PAIR{value, value};
}

inline void store(PAIR values, double* to)
{
    to[0] = values[0];
    to[1] = values[1];
}

inline PAIR smaller(PAIR a, PAIR b)
{
    return a < b ? a : b;
}

inline PAIR larger(PAIR a, PAIR b)
{
    return a > b ? a : b;
}

// A whole number nearest to the value, for values far below 2^51: adding 1.5 x 2^52 leaves no room
// for a fraction.
inline PAIR round_to_whole(PAIR value)
{
    constexpr double NO_FRACTION = 6755399441055744.0;
    return (value + NO_FRACTION) - NO_FRACTION;
}

// A bound of |x / K - 1| for every x in low..high, with K the counter nearest to x: 0 where a
// multiple lies within, else by the multiples on both sides.
inline PAIR missed_between(PAIR low, PAIR high)
{
    const PAIR below = round_to_whole(low - 0.5);
    const PAIR above = below + 1.0;
    // One division for both: (low - below) / below and (above - high) / above.
    const PAIR from_below = (low - below) * above;
    const PAIR from_above = (above - high) * below;
    const PAIR relative = smaller(from_below, from_above) / (below * above);
    // Below 1 there is only the multiple above.
    const PAIR missed = below < 0.5 ? (above - high) / above : relative;
    return missed < SURELY_NOT_MET ? both(0.0) : missed;
}

inline PAIR at_least_zero(PAIR value)
{
    return larger(value, both(0.0));
}

}  // namespace

ERROR_BOUND::ERROR_BOUND(const PLL& pll, const PLL_PROP& request)
    : m_count(clamp_taps(request.m_taps_count)), m_vco_ratio(0.0), m_vco_weight(0.0)
{
    if (request.m_vco_mult >= 1 && request.m_vco_div >= 1) {
        m_vco_ratio = double(request.m_vco_mult) / request.m_vco_div;
        m_vco_weight = m_count * SURE_SHARE;
    }
    for (int i = 0; i < m_count; ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        const double ratio = double(wish.m_mult) / wish.m_div;
        const int max_count = pll.m_taps[i].m_max_count;
        m_outputs[i] = {ratio < SMALLEST_SURE_RATIO ? 0.0 : ratio * SURE_SHARE,
                        double(wish.m_div) / wish.m_mult,
                        (max_count == 1 ? 1.0 : 2.0 * max_count) + SURELY_BEYOND};
    }
}

// The sum for ratios from `low` to `high`.
class ERROR_BOUND::SUM
{
public:
    SUM(const ERROR_BOUND& bound, PAIR low, PAIR high)
        : m_low(low),
          m_high(high),
          m_sum(at_least_zero(larger(low - bound.m_vco_ratio, bound.m_vco_ratio - high) -
                              SAME_VCO_RATIO) *
                bound.m_vco_weight)
    {
    }

    void add(const OUTPUT& output)
    {
        const PAIR low = m_low * output.m_inverse;
        const PAIR missed = missed_between(low, m_high * output.m_inverse);
        m_sum += missed * output.m_ratio + at_least_zero(low - output.m_reach) * SURE_SHARE;
    }

    PAIR value() const { return m_sum; }

private:
    PAIR m_low;
    PAIR m_high;
    PAIR m_sum;
};

void ERROR_BOUND::bound_cells(double low, double width, int count, double* bounds) const
{
    for (int i = 0; i < count; i += LANES) {
        // Edges are computed as their users do, so that cells leave no gaps.
        const PAIR first = {double(i), double(i + 1)};
        const PAIR edges[] = {low + first * width, low + (first + 1.0) * width,
                              low + (first + 2.0) * width, low + (first + 3.0) * width};
        SUM near(*this, edges[0], edges[1]);
        SUM far(*this, edges[2], edges[3]);
        for (int output = 0; output < m_count; ++output) {
            near.add(m_outputs[output]);
            far.add(m_outputs[output]);
        }
        store(near.value(), bounds + i);
        store(far.value(), bounds + i + 2);
    }
}

void ERROR_BOUND::bound_ratios(const double (&ratios)[LANES], double (&bounds)[LANES]) const
{
    const PAIR first = {ratios[0], ratios[1]};
    const PAIR second = {ratios[2], ratios[3]};
    SUM near(*this, first, first);
    SUM far(*this, second, second);
    for (int output = 0; output < m_count; ++output) {
        near.add(m_outputs[output]);
        far.add(m_outputs[output]);
    }
    store(near.value(), bounds);
    store(far.value(), bounds + 2);
}
