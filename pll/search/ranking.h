// The ranking of candidates whose counters stand.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "filter/table_row.h"
#include "placing/placement.h"
#include "search/debug_log.h"
#include "search/ratio_error.h"
#include "search/result.h"

namespace pll_internal {

// Adds to the cost of `candidate` what its M, and that of a spread, miss of the device's preferred
// range.
void add_preferred_m_penalties(bool spread, const PLL_BASIC_INFO& info, PLL* candidate);

// Adds what a division above the device's limit over the charge-pump current costs. The penalty is
// larger than all but a post-scale, so the candidate serves only where no other one does.
void add_ratio_limit_penalty(const PLL_BASIC_INFO& info, PLL* candidate);

// Costs `candidate`, whose counters stand, and keeps it in `result` when it beats the best.
class RANKING
{
public:
    RANKING(const PLL& pll, const PLL_PROP& request, bool table_mode, bool spread,
            SYNTHESIS_TRACE* trace)
        : m_pll(pll),
          m_request(request),
          m_table_mode(table_mode),
          m_spread(spread),
          m_trace(trace),
          m_placement(pll, request),
          m_chooser(request)
    {
    }

    // Returns whether the candidate was taken as the best.
    bool offer(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result);

    // Gives the candidate the row of the device's table that its counters call for.
    void give_row(PLL* candidate) { m_chooser.choose(candidate); }

private:
    bool offer_inexact(const PLL& candidate, const CANDIDATE_SCORE& score,
                       SEARCH_RESULT* result) const;
    bool offer_exact(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result);
    void add_device_penalties(PLL* candidate) const;
    bool take_if_cheaper(const PLL& candidate, SEARCH_RESULT* result) const;

    const PLL& m_pll;
    const PLL_PROP& m_request;
    bool m_table_mode;
    bool m_spread;
    SYNTHESIS_TRACE* m_trace;
    PLACEMENT m_placement;
    PLL_BANDWIDTH_CHOOSER m_chooser;
};

}  // namespace pll_internal
