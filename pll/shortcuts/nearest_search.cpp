#include "shortcuts/nearest_search.h"

#include "search/limits.h"
#include "shortcuts/lanes.h"
#include "shortcuts/small_factors.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pll_internal {

namespace {

constexpr double CELLS_PER_ROOT = 2.5;
constexpr double COLUMNS_PER_SETTING = 4.0;
constexpr double SURE_SHARE = 1.0 - 1e-9;  // more than the rounding of a sum
constexpr int FLOATS = 4;                  // in a vector of floats

// Whether no product of a counter and a factor of a request is rounded, so that settings of one
// ratio have the same counters and errors, to the last digit.
bool has_exact_products(const SEARCH_LIMITS& limits)
{
    constexpr int LARGEST_EXACT = 1 << 22;  // times an int it is below 2^53
    return limits.m_m_max <= LARGEST_EXACT && limits.m_n_max <= LARGEST_EXACT;
}

inline FOUR load(const float* from)
{
    return FOUR{from[0], from[1], from[2], from[3]};
}

float lowest_of(const float* bounds, int count)
{
    FOUR lowest = load(bounds);
    for (int i = FLOATS; i < count; i += FLOATS) {
        lowest = smaller(lowest, load(bounds + i));
    }
    return std::min(std::min(lowest[0], lowest[1]), std::min(lowest[2], lowest[3]));
}

// The first from `at` on that is not above `limit`; `count`, a multiple of FLOATS, when there is
// none.
int find_low(const float* bounds, int at, int count, float limit)
{
    const auto is_above = [=](int i) { return i < count && bounds[i] > limit; };
    while (at % FLOATS != 0 && is_above(at)) {
        ++at;
    }
    const auto are_above = [=](int i) {
        const auto above = load(bounds + i) > limit;
        return (above[0] & above[1] & above[2] & above[3]) != 0;
    };
    while (at % FLOATS == 0 && at < count && are_above(at)) {
        at += FLOATS;
    }
    while (is_above(at)) {
        ++at;
    }
    return at;
}

// A float that is not below the value.
float round_up(double value)
{
    constexpr float LARGEST = std::numeric_limits<float>::max();
    return value < LARGEST ? std::nextafter(float(value), LARGEST) : LARGEST;
}

}  // namespace

NEAREST_SEARCH::NEAREST_SEARCH(const PLL& pll, const SEARCH_LIMITS& limits, KEPT_CASCADES* cascades)
    : m_bound(pll, limits),
      m_sum(pll, limits, cascades),
      m_rest(pll, limits),
      m_has_exact_products(has_exact_products(limits)),
      m_last_region(nullptr),
      m_post_scale(0),
      m_entered_count(0),
      m_waiting_count(0),
      m_row_of_waiting(0),
      m_unbounded(0)
{
}

// Enough cells to leave few settings in each, but not so many that most columns of N have none in
// most cells.
NEAREST_SEARCH::GRID NEAREST_SEARCH::make_grid(const REGION& region, RATIO_RANGE ratios)
{
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
    const RATIO_RANGE ratios = new_ratios_of(region);
    m_last_region = &region;
    if (ratios.is_empty()) {
        return;
    }
    m_sum.expect_ratios_up_to(ratios.m_high);
    search_ratios(region, ratios);
}

void NEAREST_SEARCH::search_ratios(const REGION& region, RATIO_RANGE ratios)
{
    const GRID grid = make_grid(region, ratios);
    float bounds[MAX_CELLS];
    m_bound.bound_cells(grid.m_low, grid.m_width, grid.m_cells, bounds);
    const float lowest = lowest_of(bounds, grid.m_cells);
    if (lowest > m_best.m_error) {
        return;
    }
    const int first = find_low(bounds, 0, grid.m_cells, lowest);
    search_cells(region, grid, {first, first});
    finish_waiting(region);
    bounds[first] = std::numeric_limits<float>::infinity();
    search_low_cells(region, grid, bounds);
    finish_waiting(region);
}

// What is legal at the post-scale before misses by the same there, and comes first.
RATIO_RANGE NEAREST_SEARCH::new_ratios_of(const REGION& region) const
{
    constexpr double SURELY_WITHIN = 1e-8;
    RATIO_RANGE ratios = region.ratios();
    if (m_last_region == nullptr || !m_last_region->allows_m(region)) {
        return ratios;
    }
    const RATIO_RANGE known = {m_last_region->ratios().m_low * (1.0 + SURELY_WITHIN),
                               m_last_region->ratios().m_high * (1.0 - SURELY_WITHIN)};
    if (known.m_low <= ratios.m_high && ratios.m_high <= known.m_high) {
        ratios.m_high = known.m_low;
    } else if (known.m_low <= ratios.m_low && ratios.m_low <= known.m_high) {
        ratios.m_low = known.m_high;
    }
    return ratios;
}

// Neighbours are searched together, which spares looks at columns; the more cells have been
// searched, the fewer will be found not to be worth it on the way.
void NEAREST_SEARCH::search_low_cells(const REGION& region, const GRID& grid, const float* bounds)
{
    int searched = 1;
    float limit = round_up(m_best.m_error);
    for (int first = find_low(bounds, 0, grid.m_cells, limit); first < grid.m_cells;) {
        int last = first;
        const int end = std::min(first + searched, grid.m_cells);
        while (last + 1 < end && bounds[last + 1] <= limit) {
            ++last;
        }
        search_cells(region, grid, {first, last});
        searched += last - first + 1;
        limit = round_up(m_best.m_error);
        first = find_low(bounds, last + 1, grid.m_cells, limit);
    }
}

// Whether the bounds of smaller cells would tell more, and spare a look at many settings.
bool NEAREST_SEARCH::is_crowded(const REGION& region, RATIO_RANGE ratios)
{
    constexpr double MANY_SETTINGS = 20000.0;
    constexpr double LEAST_WIDTH = 1e-4;  // of the ratio; bounds are off by a tenth of it
    return region.count_about(ratios) > MANY_SETTINGS &&
           ratios.m_high - ratios.m_low > LEAST_WIDTH * ratios.m_high;
}

void NEAREST_SEARCH::search_cells(const REGION& region, const GRID& grid, CELL_RANGE cells)
{
    const RATIO_RANGE ratios{grid.edge(cells.m_first), grid.edge(cells.m_last + 1)};
    if (cells.m_first == cells.m_last && is_crowded(region, ratios)) {
        search_ratios(region, ratios);
        return;
    }
    const N_RANGE columns = region.n_range();
    for (std::int64_t n = columns.m_first; n <= columns.m_last; ++n) {
        search_column(region, region.m_between(ratios, n), n);
    }
}

void NEAREST_SEARCH::search_column(const REGION& region, M_RANGE column, std::int64_t n)
{
    const unsigned factors = m_has_exact_products ? SMALL_FACTORS::of(n) : 0;
    for (std::int64_t m = column.m_first; m <= column.m_last; ++m) {
        const unsigned common = factors != 0 ? factors & SMALL_FACTORS::of(m) : 0;
        if (common == 0 || !repeats_legal(region, m, n, SMALL_FACTORS::smallest(common))) {
            enter(region, m, n);
        }
    }
}

// Whether (m, n) is a multiple of another setting that misses by the same and is legal when it is:
// the VCO is the same, and what bounds M and N is in their ranges. Where nothing of that setting's
// M is left over in the feedback path, nothing is of its multiples.
bool NEAREST_SEARCH::repeats_legal(const REGION& region, std::int64_t m, std::int64_t n,
                                   int factor) const
{
    return m >= factor * region.m_range().m_first && n >= factor * region.n_range().m_first &&
           m_rest.of(int(m / factor), int(n / factor)) == 0.0;
}

void NEAREST_SEARCH::enter(const REGION& region, std::int64_t m, std::int64_t n)
{
    const double rest = m_rest.of(int(m), int(n)) * SURE_SHARE;
    if (rest > m_best.m_error) {
        return;
    }
    if (m_unbounded > 0) {
        --m_unbounded;
        wait(region, int(m), int(n));
        return;
    }
    m_rests[m_entered_count] = rest;
    m_entered.m_m[m_entered_count] = int(m);
    m_entered.m_n[m_entered_count] = int(n);
    if (++m_entered_count == LANES) {
        bound_entered(region);
    }
}

// Lets those wait whose bound does not tell that they miss by more than the best. Where bounds tell
// nothing, because all ratios miss by the same, ever more settings wait without one.
void NEAREST_SEARCH::bound_entered(const REGION& region)
{
    float ratios[LANES] = {1.0F, 1.0F, 1.0F, 1.0F};
    float bounds[LANES];
    for (int i = 0; i < m_entered_count; ++i) {
        ratios[i] = float(double(m_entered.m_m[i]) / double(m_entered.m_n[i]));
    }
    m_bound.bound_ratios(ratios, bounds);
    int waiting = 0;
    for (int i = 0; i < m_entered_count; ++i) {
        if (bounds[i] * SURE_SHARE + m_rests[i] <= m_best.m_error) {
            wait(region, m_entered.m_m[i], m_entered.m_n[i]);
            ++waiting;
        }
    }
    m_row_of_waiting =
        waiting == LANES ? std::min(2 * m_row_of_waiting + LANES, MOST_UNBOUNDED) : 0;
    m_unbounded = m_row_of_waiting;
    m_entered_count = 0;
}

void NEAREST_SEARCH::wait(const REGION& region, int m, int n)
{
    m_waiting.m_m[m_waiting_count] = m;
    m_waiting.m_n[m_waiting_count] = n;
    if (++m_waiting_count == LANES) {
        sum_waiting(region);
    }
}

void NEAREST_SEARCH::sum_waiting(const REGION& region)
{
    if (m_waiting_count == LANES) {
        double sums[LANES];
        m_sum.of(m_waiting, m_best.m_error, sums);
        for (int i = 0; i < LANES; ++i) {
            take_if_best(region, m_waiting.m_m[i], m_waiting.m_n[i], sums[i]);
        }
    } else {
        for (int i = 0; i < m_waiting_count; ++i) {
            const int m = m_waiting.m_m[i];
            const int n = m_waiting.m_n[i];
            take_if_best(region, m, n, m_sum.of(m, n, m_best.m_error));
        }
    }
    m_waiting_count = 0;
}

void NEAREST_SEARCH::finish_waiting(const REGION& region)
{
    bound_entered(region);
    sum_waiting(region);
}

bool NEAREST_SEARCH::is_first(int m, int n) const
{
    return m_post_scale == m_best.m_post_scale &&
           (m < m_best.m_m || (m == m_best.m_m && n < m_best.m_n));
}

void NEAREST_SEARCH::take_if_best(const REGION& region, int m, int n, double error)
{
    const bool wins = error < m_best.m_error || (error == m_best.m_error && is_first(m, n));
    if (wins && region.is_legal(m, n)) {
        m_best = {error, m_post_scale, m, n};
    }
}

}  // namespace pll_internal
