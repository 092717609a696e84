// The walk over the rows (post-scale, M).
//
// In the order post-scale, M, N, each ascending, every setting with
//     vmin - 1 <= fin x N / M <= vmax + 1   and   pmin - 1 <= fin x N <= pmax + 1   (ps)
// is a candidate; so must be the second input's periods when there is one. A row ends with the
// first N that is too slow. Only the window of legal N of each row is walked; until a candidate is
// found, the pairs outside that could be the closest miss are looked at as well.
#include "search/row_walk.h"

#include "filter/loop_filter.h"
#include "platform/arith.h"
#include "search/evaluation.h"
#include "search/limits.h"
#include "search/region.h"
#include "search/result.h"
#include "search/window.h"

namespace pll_internal {

namespace {

constexpr double SETTLED_PERIOD = 0.5;  // ps

// The rows of all post-scales, with what carries over from row to row.
class ROW_WALK
{
public:
    explicit ROW_WALK(EVALUATION* evaluation)
        : m_evaluation(evaluation),
          m_pll(evaluation->pll()),
          m_limits(evaluation->limits()),
          m_result(evaluation->result())
    {
    }

    void walk_post_scale(int post_scale);

private:
    M_RANGE legal_rows() const;
    bool is_miss_settled() const;
    ROW_PERIODS row_periods(int fin_period, std::int64_t m) const;
    bool is_feasible(int m) const;
    bool is_past_the_end(const ROW_PERIODS& periods, const ROW& row) const;
    void visit_row(int m, const ROW_PERIODS& periods, const ROW& row);
    void visit_window(int m, N_RANGE window);
    N_RANGE narrow_to_second_input(int m, N_RANGE window) const;
    void compete(int m, const ROW_PERIODS& periods, std::int64_t n);
    void compete_before_window(int m, const ROW_PERIODS& periods, N_RANGE range);
    int distance(const ROW_PERIODS& periods, std::int64_t n) const;
    int distance(double vco_period) const;
    bool is_settled(double vco_period) const;

    EVALUATION* m_evaluation;
    const PLL& m_pll;
    const SEARCH_LIMITS& m_limits;
    SEARCH_RESULT& m_result;
    int m_post_scale = 1;
    VCO_LIMITS m_vco{};
};

ROW_PERIODS ROW_WALK::row_periods(int fin_period, std::int64_t m) const
{
    return ROW_PERIODS(double(fin_period), double(m), {m_vco.m_min, m_vco.m_max},
                       {m_limits.m_pfd_min, m_limits.m_pfd_max});
}

// Whether the device's components can make the custom bandwidth at this M.
bool ROW_WALK::is_feasible(int m) const
{
    if (!m_limits.m_wish.is_custom()) {
        return true;
    }
    const int product =
        current_resistor_product(m, m_limits.m_wish.m_bandwidth, m_pll.get_kvco(m_post_scale));
    return m_limits.m_product_min <= product && product <= m_limits.m_product_max;
}

void ROW_WALK::walk_post_scale(int post_scale)
{
    m_post_scale = post_scale;
    m_vco = m_limits.get_vco(m_pll, post_scale);
    const N_RANGE all{m_limits.m_n_min, m_limits.m_n_max};
    if (all.is_empty()) {
        return;
    }
    const M_RANGE legal = legal_rows();
    std::int64_t last = m_limits.m_m_max;
    for (std::int64_t m = first_m_of(m_limits); m <= last && !m_evaluation->is_cut_off(m); ++m) {
        if (is_miss_settled()) {
            m = std::max(m, legal.m_first);
            last = legal.m_last;
            if (m > last || m_evaluation->is_cut_off(m)) {
                break;
            }
        }
        const ROW_PERIODS periods = row_periods(m_limits.m_fin_period, m);
        const ROW row = m_limits.m_fin_period > 0 ? split_growing_row(periods, all)
                                                  : split_falling_row(periods, all);
        visit_row(int(m), periods, row);
        if (is_past_the_end(periods, row)) {
            break;
        }
    }
}

// The rows that can hold a candidate; all where that cannot be told.
M_RANGE ROW_WALK::legal_rows() const
{
    const std::int64_t first = first_m_of(m_limits);
    if (!REGION::can_tell(m_pll, m_limits)) {
        return {first, m_limits.m_m_max};
    }
    const REGION region(m_pll, m_limits, m_post_scale);
    return region.is_empty() ? M_RANGE{first, first - 1} : region.m_range();
}

// Whether no pair can be a closer miss. Between limits that cross, the whole picoseconds over one
// and under the other add up to their distance or to one less; around 0 they may be too many for an
// int.
bool ROW_WALK::is_miss_settled() const
{
    const double least = std::max(m_vco.m_min - m_vco.m_max - 1.0, 0.0);
    const bool is_countable = m_vco.m_min <= m_vco.m_max || m_vco.m_max >= 0.0;
    return m_result.m_found || (is_countable && m_result.m_miss.m_distance <= least);
}

// True when every N that later rows visit makes a VCO that is too fast, and faster from row to row:
// nothing legal and no closer miss can follow.
bool ROW_WALK::is_past_the_end(const ROW_PERIODS& periods, const ROW& row) const
{
    if (m_limits.m_fin_period <= 0 || !row.m_legal.is_empty()) {
        return false;
    }
    const std::int64_t last = row.m_behind.is_empty() ? row.m_before.m_last : row.m_behind.m_last;
    if (m_vco.m_min > m_vco.m_max + PERIOD_TOLERANCE) {
        return m_result.m_found || is_settled(periods.vco(last));
    }
    return 0.0 <= periods.vco(last) && periods.is_vco_too_fast(last);
}

void ROW_WALK::visit_row(int m, const ROW_PERIODS& periods, const ROW& row)
{
    if (!m_result.m_found) {
        compete_before_window(m, periods, row.m_before);
    }
    if (is_feasible(m)) {
        visit_window(m, row.m_legal);
    }
    // Behind the window misses grow from the second N on at the latest.
    for (std::int64_t n = row.m_behind.m_first;
         n <= row.m_behind.m_last && n <= row.m_behind.m_first + 1 && !m_result.m_found; ++n) {
        compete(m, periods, n);
    }
}

void ROW_WALK::visit_window(int m, N_RANGE window)
{
    if (m_limits.m_fin2_period > 0) {
        window = narrow_to_second_input(m, window);
    }
    for (std::int64_t n = window.m_first; n <= window.m_last; ++n) {
        m_evaluation->evaluate(m_evaluation->point(m_post_scale, m, int(n)));
    }
}

N_RANGE ROW_WALK::narrow_to_second_input(int m, N_RANGE window) const
{
    return row_periods(m_limits.m_fin2_period, m).legal_window(window);
}

int ROW_WALK::distance(const ROW_PERIODS& periods, std::int64_t n) const
{
    return distance(periods.vco(n));
}

int ROW_WALK::distance(double vco_period) const
{
    const int over = truncate_to_int(vco_period - m_vco.m_max);
    const int under = truncate_to_int(m_vco.m_min - vco_period);
    return wrap_add(std::max(over, 0), std::max(under, 0));
}

// For VCO limits that cross, so that nothing is legal: true when `vco_period`, the longest of a
// row, is so short that every later row visits the same N at the same distances, or at the one that
// rounding gives a period of 0, and that is no closer miss.
bool ROW_WALK::is_settled(double vco_period) const
{
    return m_limits.m_n_min >= 0 && vco_period <= SETTLED_PERIOD &&
           distance(0.0) >= m_result.m_miss.m_distance;
}

void ROW_WALK::compete(int m, const ROW_PERIODS& periods, std::int64_t n)
{
    const int miss = distance(periods, n);
    if (miss < m_result.m_miss.m_distance) {
        m_result.m_miss = {miss, m, int(n), periods.vco(n)};
    }
}

// Distances fall towards the window, so only the last ones can matter: the last itself, and the
// first of those as near as the last but one (a VCO right on the widened limit may still count as
// over).
void ROW_WALK::compete_before_window(int m, const ROW_PERIODS& periods, N_RANGE range)
{
    const std::int64_t near = range.m_last - 1;
    if (near >= range.m_first) {
        const int miss = distance(periods, near);
        if (miss < m_result.m_miss.m_distance) {
            compete(m, periods,
                    first_that_holds(range.m_first, near, double(near),
                                     [&](std::int64_t n) { return distance(periods, n) <= miss; }));
        }
    }
    if (!range.is_empty()) {
        compete(m, periods, range.m_last);
    }
}

}  // namespace

void walk_rows(EVALUATION* evaluation)
{
    ROW_WALK walk(evaluation);
    for (int post_scale = 1; post_scale <= evaluation->limits().m_max_post_scale; ++post_scale) {
        walk.walk_post_scale(post_scale);
    }
}

}  // namespace pll_internal
