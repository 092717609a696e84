// What earlier candidates leave behind in counters that only cascades use.
//
// A candidate that needs a cascade sets up a counter beyond those of the outputs. The next one does
// not clear it, so the best candidate shows, in counters that it does not use itself, the division
// of the last candidate before it that used them. A search that passes candidates over must find
// that one: it goes back from the best candidate, in the order of the search.
#pragma once

#include "search/evaluation.h"
#include "search/region.h"
#include "search/result.h"
#include "shortcuts/cascade_reaches.h"
#include "shortcuts/kept_cascades.h"

namespace pll_internal {

class CASCADE_LEFTOVERS
{
public:
    // Both must outlive the object.
    CASCADE_LEFTOVERS(const EVALUATION& evaluation, KEPT_CASCADES* cascades);

    // Of the next post-scale: what can be legal, and the largest M that the search went to.
    void add_post_scale(const REGION& region, std::int64_t last_m);

    // Fills the counters that the best candidate of `result` does not use.
    void restore(SEARCH_RESULT* result);

private:
    struct SCALE
    {
        const REGION* m_region;
        std::int64_t m_last_m;
    };

    void go_back(int post_scale, const SEARCH_POINT& from);
    void look_at(int post_scale, std::int64_t m, std::int64_t n);
    int count_sources(int m, int n) const;
    bool is_done() const { return m_next >= m_end; }
    double lowest_ratio() const;

    const EVALUATION& m_evaluation;
    KEPT_CASCADES& m_cascades;
    CASCADE_REACHES m_reaches;
    int m_next;  // the first counter that is not known
    int m_end;
    PLL* m_best;
    SCALE m_scales[PLL_VCO_POST_SCALE_MAX + 1];
    int m_scales_count;
};

}  // namespace pll_internal
