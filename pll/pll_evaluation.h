// The evaluation of candidates, one after the other: counters, then ranking, then the cut-off of
// an automatic bandwidth. All that a candidate leaves to the next is kept here and in the result.
#pragma once

#include "pll_candidate_sieve.h"
#include "pll_search.h"

#include <algorithm>
#include <cstdint>

class EVALUATION
{
public:
    EVALUATION(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
               SYNTHESIS_TRACE* trace, SEARCH_RESULT* result);

    // What a search knows of a legal setting.
    SEARCH_POINT point(int post_scale, int m, int n) const;

    // Offers the candidate to the ranking, whatever it misses.
    void evaluate(const SEARCH_POINT& point);

    // Offers a legal setting only when its error sum is 0.
    void evaluate_if_met(int post_scale, int m, int n);

    // Whether offering the setting, if met, would surely change nothing. With a trace every
    // candidate changes it.
    bool is_idle(int post_scale, int m, int n) const
    {
        return m_trace == nullptr && m_sieve.retains(post_scale, m, n, m_cut_off, *m_result);
    }

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
    CANDIDATE_SIEVE m_sieve;
    PLL m_candidate;
    std::int64_t m_cut_off;  // smallest M that was exact
};

// Walks over all rows (post-scale, M) as the definition of the search does, and evaluates every
// legal candidate; when there is none it finds the closest miss.
void walk_rows(EVALUATION* evaluation);

// The same result with less work. Returns false, with nothing done, when only the walk can tell:
// nothing is legal, or the request is an odd one.
bool search_by_ratio(EVALUATION* evaluation);
