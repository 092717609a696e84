#include "shortcuts/candidate_sieve.h"

#include "pll.h"
#include "pll_prop.h"

#include "placing/placement.h"
#include "search/limits.h"
#include "search/ratio_error.h"
#include "search/result.h"
#include "shortcuts/lanes.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

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

// Whether the output's phase needs no delay of the feedback path, and its duty cycle makes no
// reports.
bool is_plain(const PLL_USER_TAP& wish)
{
    return wish.m_phase >= 0.0 && !wish.m_has_sclkout_phase && 0 <= wish.m_duty &&
           wish.m_duty <= LARGEST_DUTY;
}

bool can_tell(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits)
{
    bool plain = pll.m_feedback_tap < 0 && !limits.m_wish.m_table_mode;
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
      m_has_phases(false),
      m_largest_ratio(0.0)
{
    constexpr double TWICE = 2.0;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = limits.m_wishes[i];
        const int max_count = pll.m_taps[i].m_max_count;
        const double largest = max_count == 1 ? 1.0 : TWICE * max_count;
        m_outputs[i] = {wish.m_inverse,
                        std::max(TWICE * EXACT_RATIO / wish.m_ratio, TWICE * ROUNDING),
                        std::min(largest, TOLD_COUNTS - 1.0)};
        m_has_phases = m_has_phases || request.m_taps[i].m_phase != 0.0;
        std::memset(m_told[i], 0, sizeof m_told[i]);
    }
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
    if (m_limits.m_taps_count > 0 && misses_vco_wish(ratio, m_limits.m_vco_wish)) {
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
        if (relative > SURELY_MET || count > output.m_largest_count || !is_told(i, int(count))) {
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
    return cost > result.m_best_cost ||
           (cost == result.m_best_cost && n > result.m_best.m_n.m_count);
}

bool CANDIDATE_SIEVE::retains(int post_scale, int m, int n, std::int64_t cut_off,
                              const SEARCH_RESULT& result) const
{
    if (m_rest.of(m, n) != 0.0) {
        return true;
    }
    MEASURE measured;
    const VERDICT verdict = m_has_phases ? VERDICT::UNSURE : measure(m, n, cut_off, &measured);
    return verdict == VERDICT::MISSED ||
           (verdict == VERDICT::MET &&
            loses(add_frequency_cost(measured.m_relative_error, post_scale, 0.0), n, result));
}

bool CANDIDATE_SIEVE::tells(int post_scale, int m, int n, std::int64_t cut_off,
                            SEARCH_RESULT* result) const
{
    MEASURE measured;
    const VERDICT verdict = m_has_phases ? measure(m, n, cut_off, &measured) : VERDICT::UNSURE;
    if (verdict != VERDICT::MET) {
        return verdict == VERDICT::MISSED;
    }
    double achieved[PLL_MAX_TAPS];
    double cost = add_frequency_cost(measured.m_relative_error, post_scale, 0.0);
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const int max_start = measured.m_counts[i] == 1 ? 1 : m_pll.m_taps[i].m_max_count;
        achieved[i] = achieved_phase(m_request.m_taps[i], m, n, max_start);
        cost += std::fabs(m_request.m_taps[i].m_phase - achieved[i]);
    }
    if (!loses(cost, n, *result)) {
        return false;
    }
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        narrow_phases_around(m_request.m_taps[i], measured.m_ratio, achieved[i],
                             &result->m_neighbours[i]);
    }
    return true;
}

void CANDIDATE_SIEVE::note_told(const SEARCH_POINT& point, const PLL& candidate)
{
    const double ratio = double(point.m_m) / double(point.m_n);
    if (!m_can_tell || ratio > LARGEST_TELLING_RATIO) {
        return;
    }
    m_largest_ratio = std::max(m_largest_ratio, ratio);
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        const int count = candidate.m_taps[i].m_count;
        if (count < TOLD_COUNTS) {
            m_told[i][count / WORD_BITS] |= std::uint64_t{1} << (count % WORD_BITS);
        }
    }
}

}  // namespace pll_internal
