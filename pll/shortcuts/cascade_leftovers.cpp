#include "shortcuts/cascade_leftovers.h"

#include "platform/arith.h"
#include "search/candidate.h"
#include "search/limits.h"
#include "search/ratio_error.h"
#include "search/result.h"
#include "shortcuts/quick_counter.h"

#include <algorithm>

namespace pll_internal {

namespace {

// Everything but the place to start at, which only exact candidates set.
void copy_division(const PLL_OUTPUT_TAP& from, PLL_OUTPUT_TAP* to)
{
    to->m_score = from.m_score;
    to->m_count = from.m_count;
    to->m_bypass = from.m_bypass;
    to->m_high = from.m_high;
    to->m_low = from.m_low;
    to->m_even = from.m_even;
    to->m_max_count = from.m_max_count;
    to->m_previous_tap = from.m_previous_tap;
}

}  // namespace

CASCADE_LEFTOVERS::CASCADE_LEFTOVERS(const EVALUATION& evaluation, KEPT_CASCADES* cascades)
    : m_evaluation(evaluation),
      m_cascades(*cascades),
      m_reaches(evaluation.pll(), evaluation.limits()),
      m_next(0),
      m_end(0),
      m_best(nullptr),
      m_scales{},
      m_scales_count(0)
{
}

void CASCADE_LEFTOVERS::add_post_scale(const REGION& region, std::int64_t last_m)
{
    m_scales[++m_scales_count] = {&region, last_m};
}

void CASCADE_LEFTOVERS::restore(SEARCH_RESULT* result)
{
    const PLL& pll = m_evaluation.pll();
    const SEARCH_LIMITS& limits = m_evaluation.limits();
    m_best = &result->m_best;
    m_next = m_best->m_total_taps_count;
    const int end = std::min(pll.m_max_taps_count, PLL_MAX_TAPS);
    for (int i = m_next; i < end; ++i) {
        copy_division(pll.m_taps[i], &m_best->m_taps[i]);
    }
    m_end = std::min(end, limits.m_taps_count + m_reaches.count());
    for (int post_scale = result->m_best_point.m_post_scale; post_scale >= 1; --post_scale) {
        go_back(post_scale, result->m_best_point);
    }
}

// The lowest ratio of a candidate that sets up the next counter. While the search is not done there
// is an output for it.
double CASCADE_LEFTOVERS::lowest_ratio() const
{
    return m_reaches.lowest_for(m_next - m_evaluation.limits().m_taps_count + 1);
}

void CASCADE_LEFTOVERS::go_back(int post_scale, const SEARCH_POINT& from)
{
    const REGION& region = *m_scales[post_scale].m_region;
    if (region.is_empty()) {
        return;
    }
    const bool is_last = post_scale == from.m_post_scale;
    const M_RANGE rows = region.m_range();
    std::int64_t m = is_last ? from.m_m : std::min(rows.m_last, m_scales[post_scale].m_last_m);
    for (; m >= rows.m_first && !is_done(); --m) {
        const RATIO_RANGE ratios{std::max(region.ratios().m_low, lowest_ratio()),
                                 region.ratios().m_high};
        if (ratios.is_empty()) {
            return;
        }
        const N_RANGE row = region.n_between(ratios, m);
        const std::int64_t last = is_last && m == from.m_m
                                      ? std::min<std::int64_t>(row.m_last, from.m_n - 1)
                                      : row.m_last;
        for (std::int64_t n = last; n >= row.m_first && !is_done(); --n) {
            look_at(post_scale, m, n);
        }
    }
}

void CASCADE_LEFTOVERS::look_at(int post_scale, std::int64_t m, std::int64_t n)
{
    const int sources = count_sources(int(m), int(n));
    if (sources <= m_next || !m_scales[post_scale].m_region->is_legal(m, n)) {
        return;
    }
    const PLL& pll = m_evaluation.pll();
    PLL candidate(0, PLL_MAX_TAPS);
    candidate = pll;
    assign_candidate(pll, m_evaluation.request(), m_evaluation.limits(),
                     m_evaluation.point(post_scale, int(m), int(n)), &candidate);
    for (; m_next < sources; ++m_next) {
        copy_division(candidate.m_taps[m_next], &m_best->m_taps[m_next]);
    }
}

// The first counter that the candidate (m, n) leaves alone.
int CASCADE_LEFTOVERS::count_sources(int m, int n) const
{
    const PLL& pll = m_evaluation.pll();
    const SEARCH_LIMITS& limits = m_evaluation.limits();
    const VCO_RATIO vco(m, n);
    int next = limits.m_taps_count;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const int max_count = pll.m_taps[i].m_max_count;
        const int count = quick_counter_value(vco, limits.m_wishes[i]);
        if (max_count != 1 && m_cascades.find(count, max_count, next) != 0) {
            ++next;
        }
    }
    return next;
}

}  // namespace pll_internal
