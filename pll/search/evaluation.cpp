#include "search/evaluation.h"

#include "filter/loop_filter.h"
#include "search/candidate.h"
#include "search/debug_log.h"
#include "search/ratio_error.h"

#include <cfloat>

namespace pll_internal {

EVALUATION::EVALUATION(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
                       SYNTHESIS_TRACE* trace, SEARCH_RESULT* result)
    : m_pll(pll),
      m_request(request),
      m_limits(limits),
      m_result(result),
      m_trace(trace),
      m_ranking(pll, request, limits.m_wish.m_table_mode, limits.m_spread, trace),
      m_candidate(request.m_taps_count, PLL_MAX_TAPS),
      m_cut_off(std::int64_t{limits.m_m_max} + 1)
{
    m_candidate = pll;
}

SEARCH_POINT EVALUATION::point(int post_scale, int m, int n) const
{
    const double vco_period = double(m_limits.m_fin_period) * n / m;
    const int product =
        m_limits.m_wish.is_custom()
            ? current_resistor_product(m, m_limits.m_wish.m_bandwidth, m_pll.get_kvco(post_scale))
            : 0;
    return {post_scale, m, n, vco_period, m_pll.get_vco_center_period(post_scale), product};
}

CANDIDATE_SCORE EVALUATION::assign(const SEARCH_POINT& point)
{
    return assign_candidate(m_pll, m_request, m_limits, point, &m_candidate);
}

void EVALUATION::offer(const SEARCH_POINT& point, CANDIDATE_SCORE* score)
{
    if (m_ranking.offer(&m_candidate, score, m_result)) {
        m_result->m_best_point = point;
    }
    if (point.m_m < m_cut_off && score->m_error == 0.0 && score->m_may_lower_cut_off &&
        score->m_relative_error < DBL_EPSILON) {
        m_cut_off = point.m_m;
    }
}

void EVALUATION::evaluate(const SEARCH_POINT& point)
{
    CANDIDATE_SCORE score = assign(point);
    offer(point, &score);
}

void EVALUATION::give_row(int post_scale, int m, int n)
{
    m_candidate.m_vco_post_scale = post_scale;
    m_candidate.m_m.m_count = m;
    m_candidate.m_n.m_count = n;
    m_ranking.give_row(&m_candidate);
}

bool EVALUATION::evaluate_if_met(const SEARCH_POINT& point)
{
    CANDIDATE_SCORE score = assign(point);
    if (score.m_error != 0.0) {
        return false;
    }
    offer(point, &score);
    return score.m_error == 0.0;
}

}  // namespace pll_internal
