// The legal settings of a request, in the order of a synthesis.
//
// A row (post-scale, M) has at most one window of legal N, found by a division, so counting them
// takes a few steps a row. What the outputs come to is looked at setting by setting.
#include "pll_settings.h"

#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "filter/loop_filter.h"
#include "platform/host_state.h"
#include "search/candidate.h"
#include "search/limits.h"
#include "search/region.h"
#include "search/window.h"

#include <algorithm>

using namespace pll_internal;

namespace {

std::int64_t size_of(N_RANGE range)
{
    return range.is_empty() ? 0 : range.m_last - range.m_first + 1;
}

N_RANGE overlap(N_RANGE a, N_RANGE b)
{
    return {std::max(a.m_first, b.m_first), std::min(a.m_last, b.m_last)};
}

// The windows of one row.
struct ROW_WINDOWS
{
    N_RANGE m_vco;
    N_RANGE m_pfd;
    N_RANGE m_both;
    N_RANGE m_second_input;  // of m_both, those legal with the second input too
    bool m_has_spread;       // M is large enough for the down spread
    bool m_has_bandwidth;    // the components can make the custom bandwidth

    bool is_legal() const { return m_has_spread && m_has_bandwidth; }
};

// Reads the windows of the rows of one post-scale.
class ROW_READER
{
public:
    ROW_READER(const PLL& pll, const SEARCH_LIMITS& limits, int post_scale)
        : m_limits(limits),
          m_vco_gain(pll.get_kvco(post_scale)),
          m_vco{limits.get_vco(pll, post_scale).m_min, limits.get_vco(pll, post_scale).m_max},
          m_pfd{limits.m_pfd_min, limits.m_pfd_max},
          m_first_m(first_m_of(limits))
    {
    }

    ROW_WINDOWS read(std::int64_t m) const
    {
        const N_RANGE all{m_limits.m_n_min, m_limits.m_n_max};
        ROW_WINDOWS row{};
        row.m_vco = window(m_limits.m_fin_period, m, m_vco, ANY_PERIOD, all);
        row.m_pfd = window(m_limits.m_fin_period, m, ANY_PERIOD, m_pfd, all);
        row.m_both = overlap(row.m_vco, row.m_pfd);
        row.m_second_input =
            m_limits.m_fin2_period > 0
                ? overlap(row.m_both, window(m_limits.m_fin2_period, m, m_vco, m_pfd, all))
                : row.m_both;
        row.m_has_spread = m >= m_first_m;
        row.m_has_bandwidth = has_bandwidth(m);
        return row;
    }

private:
    // Wider than any period of whole numbers.
    static constexpr PERIOD_RANGE ANY_PERIOD = {-1e300, 1e300};

    static N_RANGE window(int fin, std::int64_t m, PERIOD_RANGE vco, PERIOD_RANGE pfd, N_RANGE all)
    {
        return all.is_empty() ? all
                              : ROW_PERIODS(double(fin), double(m), vco, pfd).legal_window(all);
    }

    bool has_bandwidth(std::int64_t m) const
    {
        if (!m_limits.m_wish.is_custom()) {
            return true;
        }
        const int product =
            current_resistor_product(int(m), m_limits.m_wish.m_bandwidth, m_vco_gain);
        return m_limits.m_product_min <= product && product <= m_limits.m_product_max;
    }

    const SEARCH_LIMITS& m_limits;
    double m_vco_gain;
    PERIOD_RANGE m_vco;
    PERIOD_RANGE m_pfd;
    std::int64_t m_first_m;
};

constexpr std::int64_t SMALLEST_M = 2;

// The rows that can hold a legal setting; all where the region cannot tell.
M_RANGE legal_rows(const PLL& pll, const SEARCH_LIMITS& limits, int post_scale)
{
    if (!REGION::can_tell(pll, limits)) {
        return {first_m_of(limits), limits.m_m_max};
    }
    const REGION region(pll, limits, post_scale);
    return region.is_empty() ? M_RANGE{1, 0} : region.m_range();
}

PLL_SETTING setting_of(const SEARCH_LIMITS& limits, int post_scale, std::int64_t m, std::int64_t n)
{
    PLL_SETTING setting{};
    setting.m_post_scale = post_scale;
    setting.m_m = int(m);
    setting.m_n = int(n);
    setting.m_pfd_period = double(limits.m_fin_period) * double(n);
    setting.m_vco_period = setting.m_pfd_period / double(m);
    PLL_UTIL::normalize_fraction(&setting.m_vco_mult, &setting.m_vco_div, setting.m_m, setting.m_n);
    return setting;
}

// Returns false when the visitor ended the walk.
bool walk_row(const SEARCH_LIMITS& limits, int post_scale, std::int64_t m, N_RANGE window,
              PLL_SETTING_VISITOR visitor, void* context)
{
    for (std::int64_t n = window.m_first; n <= window.m_last; ++n) {
        if (!visitor(setting_of(limits, post_scale, m, n), context)) {
            return false;
        }
    }
    return true;
}

// Counts row by row, and looks at legal settings for the outputs that they meet.
class COUNTER
{
public:
    COUNTER(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits, std::int64_t most)
        : m_pll(pll),
          m_request(request),
          m_limits(limits),
          m_rows_left(most),
          m_settings_left(most),
          m_candidate(request.m_taps_count, PLL_MAX_TAPS)
    {
        m_candidate = pll;
    }

    void count_post_scale(int post_scale);
    const PLL_SETTING_COUNTS& counts() const { return m_counts; }

private:
    void count_row(const ROW_WINDOWS& row);
    void look_at_row(int post_scale, std::int64_t m, N_RANGE window);
    void look_at(int post_scale, std::int64_t m, std::int64_t n);

    const PLL& m_pll;
    const PLL_PROP& m_request;
    const SEARCH_LIMITS& m_limits;
    std::int64_t m_rows_left;
    std::int64_t m_settings_left;
    PLL m_candidate;
    PLL_SETTING_COUNTS m_counts;
};

void COUNTER::count_post_scale(int post_scale)
{
    const ROW_READER reader(m_pll, m_limits, post_scale);
    for (std::int64_t m = SMALLEST_M; m <= m_limits.m_m_max; ++m) {
        if (--m_rows_left < 0) {
            m_counts.m_is_complete = false;
            return;
        }
        const ROW_WINDOWS row = reader.read(m);
        count_row(row);
        if (row.is_legal()) {
            look_at_row(post_scale, m, row.m_second_input);
        }
    }
}

void COUNTER::count_row(const ROW_WINDOWS& row)
{
    m_counts.m_all += size_of({m_limits.m_n_min, m_limits.m_n_max});
    m_counts.m_vco += size_of(row.m_vco);
    m_counts.m_pfd += size_of(row.m_pfd);
    const std::int64_t both = size_of(row.m_both);
    m_counts.m_vco_pfd += both;
    m_counts.m_second_input += size_of(row.m_second_input);
    m_counts.m_spread += row.m_has_spread ? both : 0;
    m_counts.m_bandwidth += row.m_has_bandwidth ? both : 0;
    m_counts.m_legal += row.is_legal() ? size_of(row.m_second_input) : 0;
}

void COUNTER::look_at_row(int post_scale, std::int64_t m, N_RANGE window)
{
    const std::int64_t size = size_of(window);
    if (size > m_settings_left) {
        m_counts.m_is_complete = false;
    }
    const std::int64_t looked_at = std::min(size, m_settings_left);
    m_settings_left -= looked_at;
    for (std::int64_t i = 0; i < looked_at; ++i) {
        look_at(post_scale, m, window.m_first + i);
    }
}

void COUNTER::look_at(int post_scale, std::int64_t m, std::int64_t n)
{
    const PLL_SETTING setting = setting_of(m_limits, post_scale, m, n);
    const SEARCH_POINT point{post_scale,
                             setting.m_m,
                             setting.m_n,
                             setting.m_vco_period,
                             m_pll.get_vco_center_period(post_scale),
                             0};
    const CANDIDATE_SCORE score = assign_candidate(m_pll, m_request, m_limits, point, &m_candidate);
    for (int i = 0; i < m_limits.m_taps_count; ++i) {
        m_counts.m_output_met[i] += m_candidate.m_taps[i].m_score ? 1 : 0;
    }
    m_counts.m_all_met += score.m_error == 0.0 ? 1 : 0;
}

}  // namespace

bool pll_walk_settings(const PLL& pll, const PLL_PROP& request, PLL_SETTING_VISITOR visitor,
                       void* context)
{
    const HOST_STATE state;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        const ROW_READER reader(pll, limits, post_scale);
        const M_RANGE rows = legal_rows(pll, limits, post_scale);
        for (std::int64_t m = rows.m_first; m <= rows.m_last; ++m) {
            const ROW_WINDOWS row = reader.read(m);
            if (row.is_legal() &&
                !walk_row(limits, post_scale, m, row.m_second_input, visitor, context)) {
                return false;
            }
        }
    }
    return true;
}

PLL_SETTING_COUNTS pll_count_settings(const PLL& pll, const PLL_PROP& request, std::int64_t most)
{
    const HOST_STATE state;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    COUNTER counter(pll, request, limits, most);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        counter.count_post_scale(post_scale);
    }
    return counter.counts();
}
