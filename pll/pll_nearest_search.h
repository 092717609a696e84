// The candidate with the smallest error sum, for a request that no candidate meets.
//
// The ratios of a post-scale are cut into cells, and each cell gets a lower bound of the error sums
// in it. The cell with the lowest bound is searched first; then every cell whose bound is not above
// the best sum found. Of equal sums the first in the order post-scale, M, N is kept.
#pragma once

#include "pll_error_bound.h"
#include "pll_error_sum.h"
#include "pll_region.h"
#include "pll_search.h"

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

    NEAREST_SEARCH(const PLL& pll, const SEARCH_LIMITS& limits);

    // To be called for each post-scale, in their order.
    void search(int post_scale, const REGION& region);

    const BEST& best() const { return m_best; }

private:
    static constexpr int MAX_CELLS = 1024;

    struct GRID
    {
        double m_low;
        double m_width;
        int m_cells;

        double edge(int cell) const { return m_low + cell * m_width; }
    };

    static GRID make_grid(const REGION& region);
    void search_cell(const REGION& region, const GRID& grid, int cell);
    void enter(const REGION& region, std::int64_t m, std::int64_t n);
    void test_entered(const REGION& region);
    void test(const REGION& region, std::int64_t m, std::int64_t n);
    bool repeats_best(std::int64_t m, std::int64_t n) const;
    bool is_first(std::int64_t m, std::int64_t n) const;

    ERROR_BOUND m_bound;
    ERROR_SUM m_sum;
    bool m_ratio_tells_all;
    BEST m_best;
    int m_post_scale;
    int m_entered;  // settings that wait to be bounded together
    std::int64_t m_entered_m[ERROR_BOUND::LANES];
    std::int64_t m_entered_n[ERROR_BOUND::LANES];
    float m_bounds[MAX_CELLS];
};
