#include "shortcuts/candidate_sieve.h"

#include "pll.h"
#include "pll_prop.h"

#include "loop/vco_phase.h"
#include "placing/phase_steps.h"
#include "placing/placement.h"
#include "search/limits.h"
#include "search/ratio_error.h"
#include "search/result.h"
#include "shortcuts/lanes.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace pll_internal {

namespace {

constexpr double SMALLEST_SURE_RATIO = 1e-8;   // below it a thousandth may count as rounding
constexpr double LARGEST_TELLING_RATIO = 1e5;  // beyond it phase steps are too small to be told
constexpr int LARGEST_DUTY = 100;              // percent

// Relative errors here and in the exact expressions are off by a few roundings of 1.
constexpr double ROUNDING = 4e-15;
constexpr double SURELY_MISSED = MET_RELATIVE + ROUNDING;
constexpr double SURELY_MET = MET_RELATIVE - ROUNDING;
constexpr double SURELY_NEARER = 0.5 - 1e-6;  // of two counts

// Whether the output's duty cycle makes no reports.
bool is_plain(const PLL_USER_TAP& wish)
{
    return 0 <= wish.m_duty && wish.m_duty <= LARGEST_DUTY;
}

bool can_tell(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits)
{
    bool plain = pll.m_feedback_tap < 0;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        plain = plain && is_plain(request.m_taps[i]) &&
                limits.m_wishes[i].m_ratio > SMALLEST_SURE_RATIO;
    }
    return plain;
}

}  // namespace

CANDIDATE_SIEVE::CANDIDATE_SIEVE(const PLL& pll, const PLL_PROP& request,
                                 const SEARCH_LIMITS& limits)
    : m_pll(pll),
      m_request(request),
      m_limits(limits),
      m_rest(pll, limits),
      m_can_tell(can_tell(pll, request, limits)),
      m_has_vco_wish(limits.m_taps_count > 0 && has_wish(limits.m_vco_wish)),
      m_tells(false),
      m_largest_ratio(0.0),
      m_most_negative(0.0),
      m_most_start(std::numeric_limits<int>::max()),
      m_phased_count(0)
{
    constexpr double TWICE = 2.0;
    constexpr double NOTHING_TOLD = 0.0;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = limits.m_wishes[i];
        const int max_count = pll.m_taps[i].m_max_count;
        const double largest = max_count == 1 ? 1.0 : TWICE * max_count;
        m_outputs[i] = {wish.m_inverse,
                        std::max(TWICE * EXACT_RATIO / wish.m_ratio, TWICE * ROUNDING),
                        NOTHING_TOLD};
        m_most_counts[i] = largest;
        const PLL_USER_TAP& tap = request.m_taps[i];
        m_most_negative =
            std::min(m_most_negative, tap.m_has_sclkout_phase ? tap.m_sclkout_phase : tap.m_phase);
        if (tap.m_has_sclkout_phase || tap.m_phase != 0.0) {
            m_phased[m_phased_count++] = i;
        } else {
            m_most_start = std::min(m_most_start, max_count);
        }
    }
    m_tells = m_phased_count > 0 || limits.m_wish.m_table_mode;
}

// Sure of nothing when the setting may tell something new of duty cycles or around phases of 0, or
// may move the cut-off.
CANDIDATE_SIEVE::VERDICT CANDIDATE_SIEVE::measure(int m, int n, std::int64_t cut_off,
                                                  MEASURE* measured) const
{
    const double ratio = double(m) / double(n);
    if (!m_can_tell || ratio > m_largest_ratio) {
        return VERDICT::UNSURE;
    }
    if (m_has_vco_wish && vco_ratio_error(ratio, m_limits.m_vco_wish) != 0.0) {
        return VERDICT::MISSED;
    }
    double sum = 0.0;
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const OUTPUT& output = m_outputs[i];
        const double quotient = ratio * output.m_inverse;
        const double count = quotient < 1.0 ? 1.0 : round_to_whole(quotient);
        const double distance = std::fabs(quotient - count);
        const double relative = distance / count;
        if (distance >= SURELY_NEARER) {
            return VERDICT::UNSURE;
        }
        if (relative > SURELY_MISSED) {
            return VERDICT::MISSED;
        }
        if (relative > SURELY_MET || count > output.m_largest_count || !m_told[i].has(int(count))) {
            return VERDICT::UNSURE;
        }
        sum += relative > output.m_sure_error ? relative - ROUNDING : 0.0;
        measured->m_counts[i] = int(count);
    }
    measured->m_ratio = ratio;
    measured->m_relative_error = sum;
    const bool may_cut_off = m_limits.m_cut_off && m < cut_off && sum <= DBL_EPSILON;
    return may_cut_off ? VERDICT::UNSURE : VERDICT::MET;
}

// Of equal costs a larger N loses.
bool CANDIDATE_SIEVE::loses(double cost, int n, const SEARCH_RESULT& result)
{
    // A cost that is no number loses to none, and the plain > would raise the flag of invalid
    // arithmetic for it.
    return std::isgreater(cost, result.m_best_cost) ||
           (cost == result.m_best_cost && n > result.m_best.m_n.m_count);
}

bool CANDIDATE_SIEVE::is_in_vain(int post_scale, int m, int n, std::int64_t cut_off,
                                 const SEARCH_RESULT& result) const
{
    MEASURE measured;
    const VERDICT verdict = measure(m, n, cut_off, &measured);
    return verdict == VERDICT::MISSED ||
           (verdict == VERDICT::MET &&
            loses(add_frequency_cost(measured.m_relative_error, post_scale, 0.0), n, result));
}

CANDIDATE_SIEVE::LOOK CANDIDATE_SIEVE::look_at(int post_scale, int m, int n, std::int64_t cut_off,
                                               ROW_BOUND* rows, SEARCH_RESULT* result) const
{
    MEASURE measured;
    const VERDICT verdict = m_tells ? measure(m, n, cut_off, &measured) : VERDICT::UNSURE;
    if (verdict != VERDICT::MET) {
        return verdict == VERDICT::MISSED ? LOOK::MISSED : LOOK::UNSURE;
    }
    const PHASE_FRAME frame = frame_without_feedback(m_pll.m_m, m_most_negative, m, n);
    if (frame.m_reference != 0 && !places_zero_phases(frame, measured)) {
        return LOOK::UNSURE;
    }
    double achieved[PLL_MAX_TAPS];
    double cost =
        add_frequency_cost(measured.m_relative_error, post_scale, 0.0) + rows->of(post_scale, m);
    for (int i = 0; i < m_phased_count; ++i) {
        const int output = m_phased[i];
        const int max_start = measured.m_counts[output] == 1 ? 1 : m_pll.m_taps[output].m_max_count;
        const PLL_USER_TAP& wish = m_request.m_taps[output];
        const PLACED_PHASE placed = wish.m_has_sclkout_phase
                                        ? place_serial_phase(wish, frame, max_start)
                                        : place_parallel_phase(wish, frame, max_start);
        achieved[i] = placed.m_achieved;
        cost += placed.m_miss;
    }
    if (!loses(cost, n, *result)) {
        return LOOK::UNSURE;
    }
    for (int i = 0; i < m_phased_count; ++i) {
        const int output = m_phased[i];
        const PLL_USER_TAP& wish = m_request.m_taps[output];
        narrow_phases(wish, achieved[i],
                      wish.m_has_sclkout_phase ? frame.m_turn_step : frame.m_tap_step,
                      &result->m_neighbours[output]);
    }
    return LOOK::TOLD;
}

// Whether every output with a phase of 0 starts with the feedback path, which may be delayed for
// phases below 0.
bool CANDIDATE_SIEVE::places_zero_phases(const PHASE_FRAME& frame, const MEASURE& measured) const
{
    const int start = frame.m_reference / DEGREES_PER_VCO_PERIOD + 1;
    const int* const end = measured.m_counts + m_limits.m_taps_count;
    return 0 <= frame.m_reference && start <= m_most_start &&
           (start == 1 || std::find(measured.m_counts, end, 1) == end);
}

void CANDIDATE_SIEVE::note_told(const SEARCH_POINT& point, const PLL& candidate)
{
    const double ratio = double(point.m_m) / double(point.m_n);
    if (!m_can_tell || ratio > LARGEST_TELLING_RATIO) {
        return;
    }
    bool has_zero_phases = true;
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const PLL_OUTPUT_TAP& tap = candidate.m_taps[i];
        const PLL_USER_TAP& wish = m_request.m_taps[i];
        has_zero_phases = has_zero_phases && (wish.m_has_sclkout_phase || wish.m_phase != 0.0 ||
                                              tap.m_delta_phase == 0.0);
        if (tap.m_count <= TOLD_COUNTS::MOST) {
            m_told[i].add(tap.m_count);
            m_outputs[i].m_largest_count = std::min(m_most_counts[i], m_told[i].end() - 1.0);
        }
    }
    if (has_zero_phases) {
        m_largest_ratio = std::max(m_largest_ratio, ratio);
    }
}

}  // namespace pll_internal
