// The evaluation of candidates, one after the other: counters, then ranking, then the cut-off of
// an automatic bandwidth. All that a candidate leaves to the next is kept here and in the result.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/debug_log.h"
#include "search/limits.h"
#include "search/ranking.h"
#include "search/ratio_error.h"
#include "search/result.h"

#include <algorithm>
#include <cstdint>

namespace pll_internal {

class EVALUATION
{
public:
    EVALUATION(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
               SYNTHESIS_TRACE* trace, SEARCH_RESULT* result);

    // What a search knows of a legal setting.
    SEARCH_POINT point(int post_scale, int m, int n) const;

    // Offers the candidate to the ranking, whatever it misses.
    void evaluate(const SEARCH_POINT& point);

    // Offers a legal setting only when its error sum is 0. Returns whether it still is after the
    // ranking looked at it; `candidate` then is that setting.
    bool evaluate_if_met(const SEARCH_POINT& point);

    // Gives the next candidate what a setting that is met would leave to it of the device's table.
    void give_row(int post_scale, int m, int n);

    // Automatic bandwidth: nothing beyond four times the smallest M that was exact.
    bool is_cut_off(std::int64_t m) const
    {
        return m_limits.m_cut_off && CUT_OFF_RATIO * m_cut_off < m;
    }

    // The largest M that is not cut off by what is known now.
    std::int64_t last_m() const
    {
        return m_limits.m_cut_off
                   ? std::min<std::int64_t>(m_limits.m_m_max, CUT_OFF_RATIO * m_cut_off)
                   : m_limits.m_m_max;
    }

    // The smallest M that was exact; above all M while there was none.
    std::int64_t cut_off() const { return m_cut_off; }

    // Whether every candidate is shown in a trace.
    bool is_traced() const { return m_trace != nullptr; }

    // The last setting that was evaluated.
    const PLL& candidate() const { return m_candidate; }

    const PLL& pll() const { return m_pll; }
    const PLL_PROP& request() const { return m_request; }
    const SEARCH_LIMITS& limits() const { return m_limits; }
    SEARCH_RESULT& result() const { return *m_result; }

private:
    static constexpr int CUT_OFF_RATIO = 4;

    CANDIDATE_SCORE assign(const SEARCH_POINT& point);
    void offer(const SEARCH_POINT& point, CANDIDATE_SCORE* score);

    const PLL& m_pll;
    const PLL_PROP& m_request;
    const SEARCH_LIMITS& m_limits;
    SEARCH_RESULT* m_result;
    const SYNTHESIS_TRACE* m_trace;
    RANKING m_ranking;
    PLL m_candidate;
    std::int64_t m_cut_off;
};

}  // namespace pll_internal
