// One candidate: the output counters of a legal (post-scale, M, N).
//
// Output i asks for fin x mult / div. With M and N given its counter is the nearest whole number to
//     K = (M / N) x (div / mult)
// and the ratio error is |M / N / K - mult / div|. Two errors are summed: E, of what is missed by a
// thousandth or more plus penalties for impossible counters, decides whether a candidate is exact;
// Erel, of everything that is not exact to the last digit, later makes near misses dearer.
#include "search/candidate.h"

#include "pll_util.h"

#include "platform/arith.h"
#include "search/ratio_error.h"

#include <cmath>

namespace pll_internal {

namespace {

constexpr double CASCADE_PENALTY = 4096.0;

// What is being assigned, so that the steps below share it.
struct ASSIGNMENT
{
    const PLL& m_pll;
    const SEARCH_LIMITS& m_limits;
    const SEARCH_POINT& m_point;
    VCO_RATIO m_vco;
    PLL* m_candidate;
    CANDIDATE_SCORE m_score;
    int m_taps_in_use;
};

// The candidate starts as a copy of the PLL; a limit is only written where a step changes it.
void prepare(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
             const SEARCH_POINT& point, PLL* candidate)
{
    candidate->m_i = pll.m_i;
    candidate->m_m.m_count = point.m_m;
    candidate->m_n.m_count = point.m_n;
    candidate->m_vco_post_scale = point.m_post_scale;
    candidate->m_delta_vco_period = point.m_vco_period - point.m_vco_center;
    candidate->m_vco_period = point.m_vco_period;
    if (limits.m_wish.is_custom()) {
        candidate->m_r = limits.m_first_resistor;
        candidate->m_i = point.m_product / candidate->m_r;
    }
    candidate->m_total_taps_count = request.m_taps_count;
}

// An even split, or the low half one longer.
void split_count(int count, PLL_OUTPUT_TAP* tap)
{
    tap->m_count = count;
    tap->m_bypass = count == 1;
    tap->m_high = count / 2;
    tap->m_low = count - count / 2;
    tap->m_even = count % 2 == 0;
}

// The output in the feedback path takes its share of M. Returns whether nothing is left over.
bool divide_feedback(int count, ASSIGNMENT* a)
{
    const int m = a->m_point.m_m;
    const int rest = feedback_rest(m, count);
    a->m_score.m_error += rest;
    if (count != 0) {
        a->m_candidate->m_m.m_count = m >= count ? safe_div(m, count) : 1;
    }
    return rest == 0;
}

// Two counters in a row in the place of one that is too long. Returns whether it was done.
bool add_cascade(int index, int count, int max_count, ASSIGNMENT* a)
{
    const int source_index = a->m_taps_in_use;
    const int factor = find_cascade(a->m_pll, count, max_count, source_index);
    if (factor == 0) {
        return false;
    }
    PLL_OUTPUT_TAP& source = a->m_candidate->m_taps[source_index];
    split_count(factor, &source);
    source.m_score = true;
    source.m_max_count = max_count;
    source.m_previous_tap = PLL_ILLEGAL_TAP;

    PLL_OUTPUT_TAP& tap = a->m_candidate->m_taps[index];
    split_count(count / factor, &tap);
    tap.m_previous_tap = source_index;

    ++a->m_taps_in_use;
    a->m_candidate->m_total_taps_count = wrap_add(a->m_candidate->m_total_taps_count, 1);
    a->m_score.m_cascade_penalty += CASCADE_PENALTY;
    return true;
}

// Cuts the halves of a counter down to what the device has. Returns whether anything was cut.
bool clamp_halves(int max_count, PLL_OUTPUT_TAP* tap, CANDIDATE_SCORE* score)
{
    bool clamped = false;
    if (tap->m_high > max_count) {
        charge_impossible_counter(wrap_sub(tap->m_high, max_count), score);
        tap->m_high = max_count;
        tap->m_count = wrap_add(max_count, tap->m_low);
        clamped = true;
    }
    if (tap->m_low > max_count) {
        charge_impossible_counter(wrap_sub(tap->m_low, max_count), score);
        tap->m_low = max_count;
        tap->m_count = wrap_add(tap->m_high, max_count);
        clamped = true;
    }
    return clamped;
}

// A counter without a division: all that it can do is pass the VCO clock.
bool force_bypass(PLL_OUTPUT_TAP* tap, CANDIDATE_SCORE* score)
{
    if (tap->m_bypass) {
        return false;
    }
    charge_impossible_counter(wrap_add(tap->m_high, tap->m_low), score);
    tap->m_high = 1;
    tap->m_low = 0;
    tap->m_bypass = true;
    tap->m_count = 1;
    return true;
}

void assign_output(int index, ASSIGNMENT* a)
{
    const RATIO_WISH& wish = a->m_limits.m_wishes[index];
    const int max_count = a->m_pll.m_taps[index].m_max_count;
    const int count = counter_value(a->m_vco, wish);

    PLL_OUTPUT_TAP& tap = a->m_candidate->m_taps[index];
    split_count(count, &tap);
    tap.m_max_count = max_count;
    tap.m_previous_tap = PLL_ILLEGAL_TAP;

    const double tap_error = add_frequency_error(a->m_vco, count, wish, &a->m_score);
    const double error =
        add_vco_ratio_error(a->m_vco, a->m_limits.m_vco_wish, tap_error, &a->m_score);
    const bool feedback_exact = index != a->m_pll.m_feedback_tap || divide_feedback(count, a);

    bool impossible = false;
    if (max_count == 1) {
        impossible = force_bypass(&tap, &a->m_score);
    } else if (!add_cascade(index, count, max_count, a)) {
        impossible = clamp_halves(max_count, &tap, &a->m_score);
    }
    tap.m_score = error == 0.0 && feedback_exact && !impossible;
}

}  // namespace

int find_cascade(const PLL& pll, int count, int max_count, int source_index)
{
    const int max_total = wrap_mul(2, max_count);
    if (!pll.m_output_counter_cascade || count <= max_total ||
        pll.m_max_taps_count <= source_index || source_index < 0 || source_index >= PLL_MAX_TAPS) {
        return 0;
    }
    const int factor = PLL_UTIL::cascade_factor(count, max_total);
    return factor > 1 ? factor : 0;
}

CANDIDATE_SCORE assign_candidate(const PLL& pll, const PLL_PROP& request,
                                 const SEARCH_LIMITS& limits, const SEARCH_POINT& point,
                                 PLL* candidate)
{
    prepare(pll, request, limits, point, candidate);
    ASSIGNMENT assignment{
        pll, limits, point, VCO_RATIO(point.m_m, point.m_n), candidate, {}, request.m_taps_count};
    for (int i = 0; i < limits.m_taps_count; ++i) {
        assign_output(i, &assignment);
    }
    return assignment.m_score;
}

}  // namespace pll_internal
