// The candidate with the smallest error sum, for a request that no candidate meets.
//
// The ratios of a post-scale are cut into cells, and each cell gets a lower bound of the error sums
// in it. The cell with the lowest bound is searched first; then every cell whose bound is not above
// the best sum found. Of equal sums the first in the order post-scale, M, N is kept.
#pragma once

#include "pll.h"

#include "search/limits.h"
#include "search/region.h"
#include "search/result.h"
#include "shortcuts/error_bound.h"
#include "shortcuts/error_sum.h"
#include "shortcuts/feedback_rest.h"

namespace pll_internal {

class NEAREST_SEARCH
{
public:
    struct BEST
    {
        double m_error = SEARCH_RESULT::WORST;
        int m_post_scale = 0;  // 0: none
        int m_m = 0;
        int m_n = 0;
    };

    NEAREST_SEARCH(const PLL& pll, const SEARCH_LIMITS& limits, KEPT_CASCADES* cascades);

    // To be called for each post-scale, in their order. Every region must outlive the search.
    void search(int post_scale, const REGION& region);

    const BEST& best() const { return m_best; }

private:
    static constexpr int MAX_CELLS = 1024;
    static constexpr int MOST_UNBOUNDED = 256;

    struct GRID
    {
        double m_low;
        double m_width;
        int m_cells;

        double edge(int cell) const { return m_low + cell * m_width; }
    };

    struct CELL_RANGE
    {
        int m_first;
        int m_last;
    };

    static GRID make_grid(const REGION& region, RATIO_RANGE ratios);
    RATIO_RANGE new_ratios_of(const REGION& region) const;
    void search_ratios(const REGION& region, RATIO_RANGE ratios);
    void search_low_cells(const REGION& region, const GRID& grid, const float* bounds);
    static bool is_crowded(const REGION& region, RATIO_RANGE ratios);
    void search_cells(const REGION& region, const GRID& grid, CELL_RANGE cells);
    void search_column(const REGION& region, M_RANGE column, std::int64_t n);
    bool repeats_legal(const REGION& region, std::int64_t m, std::int64_t n, int factor) const;
    void enter(const REGION& region, std::int64_t m, std::int64_t n);
    void bound_entered(const REGION& region);
    void wait(const REGION& region, int m, int n);
    void sum_waiting(const REGION& region);
    void finish_waiting(const REGION& region);
    void take_if_best(const REGION& region, int m, int n, double error);
    bool is_first(int m, int n) const;

    static constexpr int LANES = ERROR_SUM::LANES;
    static_assert(LANES == ERROR_BOUND::LANES);

    ERROR_BOUND m_bound;
    ERROR_SUM m_sum;
    FEEDBACK_REST m_rest;
    bool m_has_exact_products;
    const REGION* m_last_region;  // of the post-scale before; null: none
    BEST m_best;
    int m_post_scale;
    int m_entered_count;
    int m_waiting_count;
    int m_row_of_waiting;           // settings that had to wait without a break
    int m_unbounded;                // how many more of them wait without a bound
    ERROR_SUM::SETTINGS m_entered;  // to be bounded together
    double m_rests[LANES];          // of those, counted a little too small
    ERROR_SUM::SETTINGS m_waiting;  // to be summed together
};

}  // namespace pll_internal
