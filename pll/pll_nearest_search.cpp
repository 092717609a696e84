#include "pll_nearest_search.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double CELLS_PER_ROOT = 2.5;
constexpr double COLUMNS_PER_SETTING = 4.0;
constexpr double LARGEST_EXACT = 9007199254740992.0;  // 2^53: whole numbers below it are exact

// Whether settings of one ratio have one error sum, to the last digit: none is taken from M, and
// the products that counters are computed from are not rounded.
bool ratio_tells_all(const PLL& pll, const SEARCH_LIMITS& limits)
{
    bool tells = pll.m_feedback_tap < 0;
    for (int i = 0; i < limits.m_taps_count; ++i) {
        const RATIO_WISH& wish = limits.m_wishes[i];
        tells = tells && limits.m_m_max * wish.m_div < LARGEST_EXACT &&
                limits.m_n_max * wish.m_mult < LARGEST_EXACT;
    }
    return tells;
}

int lowest_of(const float* bounds, int count)
{
    int lowest = 0;
    float bound = bounds[0];
    for (int i = 1; i < count; ++i) {
        if (bounds[i] < bound) {
            bound = bounds[i];
            lowest = i;
        }
    }
    return lowest;
}

}  // namespace

NEAREST_SEARCH::NEAREST_SEARCH(const PLL& pll, const SEARCH_LIMITS& limits)
    : m_bound(pll, limits),
      m_sum(pll, limits),
      m_ratio_tells_all(ratio_tells_all(pll, limits)),
      m_post_scale(0),
      m_entered(0)
{
}

// Enough cells to leave few settings in each, but not so many that most columns of N have none in
// most cells.
NEAREST_SEARCH::GRID NEAREST_SEARCH::make_grid(const REGION& region)
{
    const RATIO_RANGE ratios = region.ratios();
    const double settings = region.count_about(ratios);
    const double columns = double(region.n_range().m_last - region.n_range().m_first + 1);
    const double wished =
        std::min(CELLS_PER_ROOT * std::sqrt(settings), settings * COLUMNS_PER_SETTING / columns);
    const int blocks = 1 + int(std::min(wished, double(MAX_CELLS - 1)) / ERROR_BOUND::CELLS);
    const int cells = blocks * ERROR_BOUND::CELLS;
    return {ratios.m_low, (ratios.m_high - ratios.m_low) / cells, cells};
}

void NEAREST_SEARCH::search(int post_scale, const REGION& region)
{
    if (region.is_empty()) {
        return;
    }
    m_post_scale = post_scale;
    const GRID grid = make_grid(region);
    m_bound.bound_cells(grid.m_low, grid.m_width, grid.m_cells, m_bounds);
    const int lowest = lowest_of(m_bounds, grid.m_cells);
    if (m_bounds[lowest] > m_best.m_error) {
        return;
    }
    search_cell(region, grid, lowest);
    test_entered(region);
    double limit = m_best.m_error;
    for (int cell = 0; cell < grid.m_cells; ++cell) {
        if (m_bounds[cell] <= limit && cell != lowest) {
            search_cell(region, grid, cell);
            limit = m_best.m_error;
        }
    }
    test_entered(region);
}

void NEAREST_SEARCH::search_cell(const REGION& region, const GRID& grid, int cell)
{
    const RATIO_RANGE ratios{grid.edge(cell), grid.edge(cell + 1)};
    const N_RANGE columns = region.n_range();
    for (std::int64_t n = columns.m_first; n <= columns.m_last; ++n) {
        const M_RANGE column = region.m_between(ratios, n);
        for (std::int64_t m = column.m_first; m <= column.m_last; ++m) {
            enter(region, m, n);
        }
    }
}

void NEAREST_SEARCH::enter(const REGION& region, std::int64_t m, std::int64_t n)
{
    m_entered_m[m_entered] = m;
    m_entered_n[m_entered] = n;
    if (++m_entered == ERROR_BOUND::LANES) {
        test_entered(region);
    }
}

void NEAREST_SEARCH::test_entered(const REGION& region)
{
    float ratios[ERROR_BOUND::LANES] = {1.0F, 1.0F, 1.0F, 1.0F};
    float bounds[ERROR_BOUND::LANES];
    for (int i = 0; i < m_entered; ++i) {
        ratios[i] = float(double(m_entered_m[i]) / double(m_entered_n[i]));
    }
    m_bound.bound_ratios(ratios, bounds);
    for (int i = 0; i < m_entered; ++i) {
        if (bounds[i] <= m_best.m_error) {
            test(region, m_entered_m[i], m_entered_n[i]);
        }
    }
    m_entered = 0;
}

bool NEAREST_SEARCH::is_first(std::int64_t m, std::int64_t n) const
{
    return m_post_scale == m_best.m_post_scale &&
           (m < m_best.m_m || (m == m_best.m_m && n < m_best.m_n));
}

// Whether (m, n) is the best setting again, multiplied. A ratio on the edge of two cells may show
// its multiples first.
bool NEAREST_SEARCH::repeats_best(std::int64_t m, std::int64_t n) const
{
    return m_ratio_tells_all && m_best.m_post_scale != 0 && m * m_best.m_n == n * m_best.m_m &&
           !is_first(m, n);
}

void NEAREST_SEARCH::test(const REGION& region, std::int64_t m, std::int64_t n)
{
    if (repeats_best(m, n)) {
        return;
    }
    const double error = m_sum.of(int(m), int(n), m_best.m_error);
    const bool wins = error < m_best.m_error || (error == m_best.m_error && is_first(m, n));
    if (wins && region.is_legal(m, n)) {
        m_best = {error, m_post_scale, int(m), int(n)};
    }
}
