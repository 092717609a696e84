// The search over (post-scale, M, N).
//
// In the order post-scale, M, N, each ascending, every setting with
//     vmin - 1 <= fin x N / M <= vmax + 1   and   pmin - 1 <= fin x N <= pmax + 1   (ps)
// is a candidate; so must be the second input's periods when there is one. A row (one post-scale
// and M) ends with the first N that is too slow. Only the window of legal N of each row is walked;
// until a candidate is found, the pairs outside that could be the closest miss are looked at as
// well.
#include "pll_search.h"

#include "pll_arith.h"
#include "pll_rejection.h"
#include "pll_report_error.h"
#include "pll_window.h"

#include <cfloat>

namespace {

constexpr int SMALLEST_M = 2;
constexpr int CUT_OFF_RATIO = 4;
constexpr double SETTLED_PERIOD = 0.5;  // ps

BANDWIDTH_WISH read_bandwidth_wish(const PLL& pll, const PLL_PROP& request, bool spread)
{
    BANDWIDTH_WISH wish{request.m_bandwidth_type, request.m_bandwidth, false};
    wish.m_table_mode =
        pll.m_info.has_info() && pll.m_info.m_basic_info->m_use_bandwidth_settings_table;
    if (wish.m_table_mode) {
        return wish;
    }
    if (spread) {
        return {BANDWIDTH_CUSTOM, pll.m_ss_bandwidth, false};
    }
    switch (wish.m_type) {
    case BANDWIDTH_HIGH:
        return {BANDWIDTH_CUSTOM, pll.m_high_bandwidth, false};
    case BANDWIDTH_MEDIUM:
        return {BANDWIDTH_CUSTOM, pll.m_medium_bandwidth, false};
    case BANDWIDTH_LOW:
        return {BANDWIDTH_CUSTOM, pll.m_low_bandwidth, false};
    default:
        return wish;
    }
}

int first_or_zero(const MEM_VECTOR<int>& values)
{
    return values.empty() ? 0 : values.front();
}

int last_or_zero(const MEM_VECTOR<int>& values)
{
    return values.empty() ? 0 : values.back();
}

// The search proper: the rows of all post-scales, with what carries over from row to row.
class SEARCH
{
public:
    SEARCH(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
           SYNTHESIS_TRACE* trace, SEARCH_RESULT* result)
        : m_pll(pll),
          m_request(request),
          m_limits(limits),
          m_result(result),
          m_ranking(pll, request, limits.m_wish.m_table_mode, limits.m_spread, trace),
          m_rejection(pll, request, limits.m_m_max),
          m_tracing(trace != nullptr),
          m_candidate(request.m_taps_count, PLL_MAX_TAPS),
          m_cut_off(std::int64_t{limits.m_m_max} + 1)
    {
        m_candidate = pll;
    }

    void search_post_scale(int post_scale);

private:
    std::int64_t first_m() const;
    ROW_PERIODS row_periods(int fin_period, std::int64_t m) const;
    bool is_cut_off(std::int64_t m) const;
    bool is_feasible(int m);
    bool is_past_the_end(const ROW_PERIODS& periods, const ROW& row) const;
    void visit_row(int m, const ROW_PERIODS& periods, const ROW& row);
    void visit_window(int m, const ROW_PERIODS& periods, N_RANGE window);
    void visit_block(int m, const ROW_PERIODS& periods, N_RANGE block);
    N_RANGE narrow_to_second_input(int m, N_RANGE window) const;
    void evaluate(int m, int n, double vco_period);
    void compete(int m, const ROW_PERIODS& periods, std::int64_t n);
    void compete_before_window(int m, const ROW_PERIODS& periods, N_RANGE range);
    int distance(const ROW_PERIODS& periods, std::int64_t n) const;
    int distance(double vco_period) const;
    bool is_settled(double vco_period) const;

    const PLL& m_pll;
    const PLL_PROP& m_request;
    const SEARCH_LIMITS& m_limits;
    SEARCH_RESULT* m_result;
    RANKING m_ranking;
    REJECTION m_rejection;
    bool m_tracing;
    PLL m_candidate;
    std::int64_t m_cut_off;  // smallest M that was exact
    int m_post_scale = 1;
    VCO_LIMITS m_vco{};
    int m_product = 0;
};

ROW_PERIODS SEARCH::row_periods(int fin_period, std::int64_t m) const
{
    return ROW_PERIODS(double(fin_period), double(m), {m_vco.m_min, m_vco.m_max},
                       {m_limits.m_pfd_min, m_limits.m_pfd_max});
}

// The smallest M that down spread can change by a whole count.
std::int64_t SEARCH::first_m() const
{
    if (!m_limits.m_spread) {
        return SMALLEST_M;
    }
    const double spread = m_limits.m_down_spread;
    return first_that_holds(SMALLEST_M, m_limits.m_m_max, 1.0 / spread, [&](std::int64_t m) {
        return truncate_to_int(double(m) * spread) > 0;
    });
}

bool SEARCH::is_cut_off(std::int64_t m) const
{
    return m_limits.m_cut_off && CUT_OFF_RATIO * m_cut_off < m;
}

// Whether the device's components can make the custom bandwidth at this M.
bool SEARCH::is_feasible(int m)
{
    if (!m_limits.m_wish.is_custom()) {
        return true;
    }
    m_product =
        current_resistor_product(m, m_limits.m_wish.m_bandwidth, m_pll.get_kvco(m_post_scale));
    return m_limits.m_product_min <= m_product && m_product <= m_limits.m_product_max;
}

void SEARCH::search_post_scale(int post_scale)
{
    m_post_scale = post_scale;
    m_vco = m_limits.get_vco(m_pll, post_scale);
    const N_RANGE all{m_limits.m_n_min, m_limits.m_n_max};
    if (all.is_empty()) {
        return;
    }
    for (std::int64_t m = first_m(); m <= m_limits.m_m_max && !is_cut_off(m); ++m) {
        const ROW_PERIODS periods = row_periods(m_limits.m_fin_period, m);
        const ROW row = m_limits.m_fin_period > 0 ? split_growing_row(periods, all)
                                                  : split_falling_row(periods, all);
        visit_row(int(m), periods, row);
        if (is_past_the_end(periods, row)) {
            break;
        }
    }
}

// True when every N that later rows visit makes a VCO that is too fast, and faster from row to row:
// nothing legal and no closer miss can follow.
bool SEARCH::is_past_the_end(const ROW_PERIODS& periods, const ROW& row) const
{
    if (m_limits.m_fin_period <= 0 || !row.m_legal.is_empty()) {
        return false;
    }
    const std::int64_t last = row.m_behind.is_empty() ? row.m_before.m_last : row.m_behind.m_last;
    if (m_vco.m_min > m_vco.m_max + PERIOD_TOLERANCE) {
        return m_result->m_found || is_settled(periods.vco(last));
    }
    return 0.0 <= periods.vco(last) && periods.is_vco_too_fast(last);
}

void SEARCH::visit_row(int m, const ROW_PERIODS& periods, const ROW& row)
{
    if (!m_result->m_found) {
        compete_before_window(m, periods, row.m_before);
    }
    if (is_feasible(m)) {
        visit_window(m, periods, row.m_legal);
    }
    // Behind the window misses grow from the second N on at the latest.
    for (std::int64_t n = row.m_behind.m_first;
         n <= row.m_behind.m_last && n <= row.m_behind.m_first + 1 && !m_result->m_found; ++n) {
        compete(m, periods, n);
    }
}

void SEARCH::visit_window(int m, const ROW_PERIODS& periods, N_RANGE window)
{
    if (m_limits.m_fin2_period > 0) {
        window = narrow_to_second_input(m, window);
    }
    if (m_tracing) {
        for (std::int64_t n = window.m_first; n <= window.m_last; ++n) {
            evaluate(m, int(n), periods.vco(n));
        }
        return;
    }
    for (std::int64_t n = window.m_first; n <= window.m_last; n += REJECTION::LANES) {
        visit_block(m, periods, {n, std::min(window.m_last, n + REJECTION::LANES - 1)});
    }
}

void SEARCH::visit_block(int m, const ROW_PERIODS& periods, N_RANGE block)
{
    std::uint32_t alive = m_rejection.may_win(m, block.m_first, m_result->m_best_error);
    for (std::int64_t n = block.m_first; alive != 0 && n <= block.m_last; ++n, alive >>= 1U) {
        if ((alive & 1U) != 0 && !m_rejection.rejects(m, int(n), m_result->m_best_error)) {
            evaluate(m, int(n), periods.vco(n));
        }
    }
}

N_RANGE SEARCH::narrow_to_second_input(int m, N_RANGE window) const
{
    return row_periods(m_limits.m_fin2_period, m).legal_window(window);
}

void SEARCH::evaluate(int m, int n, double vco_period)
{
    const SEARCH_POINT point{m_post_scale, m, n, vco_period, m_vco.m_center, m_product};
    CANDIDATE_SCORE score =
        assign_candidate(m_pll, m_request, m_limits, point, m_result->m_best, &m_candidate);
    m_ranking.offer(&m_candidate, &score, m_result);
    if (m < m_cut_off && score.m_error == 0.0 && score.m_may_lower_cut_off &&
        score.m_relative_error < DBL_EPSILON) {
        m_cut_off = m;
    }
}

int SEARCH::distance(const ROW_PERIODS& periods, std::int64_t n) const
{
    return distance(periods.vco(n));
}

int SEARCH::distance(double vco_period) const
{
    const int over = truncate_to_int(vco_period - m_vco.m_max);
    const int under = truncate_to_int(m_vco.m_min - vco_period);
    return wrap_add(std::max(over, 0), std::max(under, 0));
}

// For VCO limits that cross, so that nothing is legal: true when `vco_period`, the longest of a
// row, is so short that every later row visits the same N at the same distances, or at the one that
// rounding gives a period of 0, and that is no closer miss.
bool SEARCH::is_settled(double vco_period) const
{
    return m_limits.m_n_min >= 0 && vco_period <= SETTLED_PERIOD &&
           distance(0.0) >= m_result->m_miss.m_distance;
}

void SEARCH::compete(int m, const ROW_PERIODS& periods, std::int64_t n)
{
    const int miss = distance(periods, n);
    if (miss < m_result->m_miss.m_distance) {
        m_result->m_miss = {miss, m, int(n), periods.vco(n)};
    }
}

// Distances fall towards the window, so only the last ones can matter: the last itself, and the
// first of those as near as the last but one (a VCO right on the widened limit may still count as
// over).
void SEARCH::compete_before_window(int m, const ROW_PERIODS& periods, N_RANGE range)
{
    const std::int64_t near = range.m_last - 1;
    if (near >= range.m_first) {
        const int miss = distance(periods, near);
        if (miss < m_result->m_miss.m_distance) {
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

VCO_LIMITS SEARCH_LIMITS::get_vco(const PLL& pll, int post_scale) const
{
    const int ss_max = pll.get_ss_vco_max_period(post_scale);
    const bool use_ss_max = m_spread && ss_max != PLL_UNSET_MINIMUM && pll.m_ss_supported;
    return {double(pll.get_vco_min_period(post_scale)),
            double(use_ss_max ? ss_max : pll.get_vco_max_period(post_scale)),
            pll.get_vco_center_period(post_scale)};
}

SEARCH_RESULT::SEARCH_RESULT(const PLL& pll, const PLL_PROP& request)
    : m_best(request.m_taps_count, PLL_MAX_TAPS)
{
    m_best = pll;
}

SEARCH_LIMITS read_search_limits(const PLL& pll, const PLL_PROP& request)
{
    const MEM_VECTOR<int>& currents = PLL::m_impl->m_charge_pump_currents;
    const MEM_VECTOR<int>& resistors = PLL::m_impl->m_resistors;
    SEARCH_LIMITS limits{};
    limits.m_fin_period = request.m_fin_period;
    limits.m_fin2_period = request.m_fin2_period;
    limits.m_m_max = pll.m_m.m_max_count;
    limits.m_n_min = pll.m_n.m_min_count;
    limits.m_n_max = pll.m_n.m_max_count;
    limits.m_max_post_scale = std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX);
    limits.m_pfd_min = pll.m_pfd_min_period;
    limits.m_pfd_max = pll.m_pfd_max_period;
    limits.m_down_spread = request.m_down_spread;
    limits.m_spread = request.m_down_spread != 0.0;
    limits.m_cut_off = request.m_bandwidth_type == BANDWIDTH_AUTO && !limits.m_spread;
    limits.m_wish = read_bandwidth_wish(pll, request, limits.m_spread);
    limits.m_first_resistor = first_or_zero(resistors);
    limits.m_product_min = wrap_mul(first_or_zero(currents), first_or_zero(resistors));
    limits.m_product_max = wrap_mul(last_or_zero(currents), last_or_zero(resistors));
    check(pll.m_m.m_min_count == 1, "this->m_m.m_min_count == 1", "pll");
    check(pll.m_max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX,
          "max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX", "pll");
    return limits;
}

void search(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
            SYNTHESIS_TRACE* trace, SEARCH_RESULT* result)
{
    SEARCH rows(pll, request, limits, trace, result);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        rows.search_post_scale(post_scale);
    }
}
