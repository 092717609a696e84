// The closest miss, by columns.
//
// The walk visits (M, N) when no smaller N of its row is too slow: from some M on, the later the
// larger N is. In a column of one N the VCO period falls as M grows. So the distance to the VCO's
// window falls towards it, is 0 in it and grows behind it, and of all M of a column two can be the
// miss: the first of those that come as near as the last one that is too slow, and the first one
// behind it. The pairs in the window itself are legal, or fail for the second input or the
// bandwidth alone, and then they do not compete; but where N is illegal for the PFD all do.
#include "shortcuts/closest_miss.h"

#include "platform/arith.h"
#include "search/limits.h"
#include "search/region.h"
#include "search/result.h"
#include "search/window.h"

#include <algorithm>

namespace pll_internal {

namespace {

constexpr std::int64_t ROWS_PER_COLUMN = 64;  // what a look at a column may cost in vain
constexpr int LEAST_DISTANCE = 1;             // of a pair that the VCO alone refuses

class COLUMNS
{
public:
    COLUMNS(const SEARCH_LIMITS& limits, const VCO_LIMITS& vco, CLOSEST_MISS* miss)
        : m_fin(limits.m_fin_period),
          m_vco(vco),
          m_pfd_min(limits.m_pfd_min - PERIOD_TOLERANCE),
          m_pfd_max(limits.m_pfd_max + PERIOD_TOLERANCE),
          m_rows{first_m_of(limits), limits.m_m_max},
          m_columns{limits.m_n_min, limits.m_n_max},
          m_miss(*miss)
    {
    }

    // Returns false when `budget` columns are not enough.
    bool search(std::int64_t budget);

private:
    double vco(std::int64_t m, std::int64_t n) const { return m_fin * double(n) / double(m); }
    bool is_pfd_too_slow(std::int64_t n) const { return m_fin * double(n) > m_pfd_max; }
    bool is_pfd_illegal(std::int64_t n) const
    {
        return is_pfd_too_slow(n) || m_fin * double(n) < m_pfd_min;
    }
    int over(double vco) const { return std::max(truncate_to_int(vco - m_vco.m_max), 0); }
    int under(double vco) const { return std::max(truncate_to_int(m_vco.m_min - vco), 0); }
    std::int64_t first_visited(std::int64_t first_m, std::int64_t n) const;
    std::int64_t last_before_pfd_ends(std::int64_t n) const;
    void search_column(std::int64_t first_m, std::int64_t n);
    void compete(std::int64_t m, std::int64_t n);

    double m_fin;  // ps, as in the next four
    VCO_LIMITS m_vco;
    double m_pfd_min;  // tolerance included
    double m_pfd_max;
    M_RANGE m_rows;
    N_RANGE m_columns;
    CLOSEST_MISS& m_miss;
};

bool COLUMNS::search(std::int64_t budget)
{
    std::int64_t first_m = m_rows.m_first;
    for (std::int64_t n = m_columns.m_first; n <= m_columns.m_last && first_m <= m_rows.m_last;
         ++n) {
        if (budget-- == 0) {
            return false;
        }
        search_column(first_m, n);
        if (is_pfd_too_slow(n)) {
            return true;
        }
        first_m = first_visited(first_m, n + 1);
        if (m_miss.m_distance <= LEAST_DISTANCE && first_m > m_miss.m_m && !is_pfd_illegal(n)) {
            n = last_before_pfd_ends(n);
            first_m = first_visited(first_m, n + 1);
        }
    }
    return true;
}

// The first row that gets as far as column `n`, from `first_m` on.
std::int64_t COLUMNS::first_visited(std::int64_t first_m, std::int64_t n) const
{
    const double longest = m_vco.m_max + PERIOD_TOLERANCE;
    return first_that_holds(first_m, m_rows.m_last,
                            longest > 0.0 ? m_fin * double(n - 1) / longest : 0.0,
                            [&](std::int64_t m) { return vco(m, n - 1) <= longest; });
}

// Only where the PFD refuses it can a later column come nearer than the least distance.
std::int64_t COLUMNS::last_before_pfd_ends(std::int64_t n) const
{
    return first_that_holds(n, m_columns.m_last, m_pfd_max / m_fin,
                            [&](std::int64_t later) { return is_pfd_too_slow(later); }) -
           1;
}

void COLUMNS::search_column(std::int64_t first_m, std::int64_t n)
{
    const M_RANGE rows{first_m, m_rows.m_last};
    const bool all_compete = is_pfd_illegal(n);
    const std::int64_t near = first_that_holds(
        rows.m_first, rows.m_last, m_vco.m_max > 0.0 ? m_fin * double(n) / m_vco.m_max : 0.0,
        [&](std::int64_t m) {
            return all_compete ? over(vco(m, n)) == 0 : vco(m, n) <= m_vco.m_max + PERIOD_TOLERANCE;
        });
    if (near > rows.m_first) {
        const int least = over(vco(near - 1, n));
        compete(first_that_holds(rows.m_first, near - 1, double(near - 1),
                                 [&](std::int64_t m) { return over(vco(m, n)) <= least; }),
                n);
    }
    const std::int64_t behind =
        all_compete ? near : first_that_holds(near, rows.m_last, double(near), [&](std::int64_t m) {
            return vco(m, n) < m_vco.m_min - PERIOD_TOLERANCE;
        });
    if (behind <= rows.m_last) {
        compete(behind, n);
    }
}

// Rows come before columns, so of equal distances the smaller M stays, and of one M the smaller N.
void COLUMNS::compete(std::int64_t m, std::int64_t n)
{
    const double period = vco(m, n);
    const int distance = wrap_add(over(period), under(period));
    if (distance < m_miss.m_distance || (distance == m_miss.m_distance && m < m_miss.m_m)) {
        m_miss = {distance, int(m), int(n), period};
    }
}

}  // namespace

bool find_closest_miss(EVALUATION* evaluation)
{
    const SEARCH_LIMITS& limits = evaluation->limits();
    CLOSEST_MISS best;
    const std::int64_t budget = limits.m_m_max / ROWS_PER_COLUMN + 1;
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        const VCO_LIMITS vco = limits.get_vco(evaluation->pll(), post_scale);
        CLOSEST_MISS miss;
        if (vco.m_min > vco.m_max || !COLUMNS(limits, vco, &miss).search(budget)) {
            return false;
        }
        if (miss.m_distance < best.m_distance) {
            best = miss;
        }
    }
    evaluation->result().m_miss = best;
    return true;
}

}  // namespace pll_internal
