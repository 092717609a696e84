#include "shortcuts/row_bound.h"

#include "filter/table_row.h"
#include "platform/arith.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pll_internal {

namespace {

constexpr double NOT_SURE = std::numeric_limits<double>::quiet_NaN();

// Every row below them is cheaper than none, whatever the PFD allows.
constexpr double LARGEST_BANDWIDTH = 1e9;  // Hz
constexpr double LARGEST_PENALTY = 1e9;

// Whether passing over a row makes no report, and the row can be chosen.
bool is_plain(const PLL_BANDWIDTH_SETTING& row, int effective_m, double penalty)
{
    return row.m_m == effective_m && std::fabs(row.m_fast_bandwidth) <= LARGEST_BANDWIDTH &&
           penalty <= LARGEST_PENALTY;
}

}  // namespace

double ROW_BOUND::least_cost(int post_scale, int m)
{
    if (m_asked < FEW) {
        ++m_asked;
        return NOT_SURE;
    }
    const int effective_m = wrap_mul(m, post_scale);
    if (effective_m != m_group.m_effective_m) {
        m_group = read_group(effective_m);
    }
    return m_group.m_least_cost;
}

ROW_BOUND::GROUP ROW_BOUND::read_group(int effective_m) const
{
    const PLL& pll = m_evaluation.pll();
    const PLL_PROP& request = m_evaluation.request();
    GROUP group{effective_m, NO_ROW_COST, false, false};
    const PLL_BANDWIDTH_SETTING_GROUP* rows = find_row_group(pll, effective_m);
    if (request.m_bandwidth_type < PLL_BANDWIDTH_HIGH ||
        request.m_bandwidth_type > PLL_BANDWIDTH_CUSTOM ||
        pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier < 0) {
        group.m_least_cost = NOT_SURE;
    }
    if (rows == nullptr) {
        return group;
    }
    bool is_sure = group.m_least_cost == NO_ROW_COST;
    for (const PLL_BANDWIDTH_SETTING* row : rows->m_settings) {
        if (row == nullptr || !is_sure) {
            continue;
        }
        const double penalty = row_wish_penalty(pll, request, *row);
        const bool has_capacitor = row->m_loop_filter_capacitor >= 0;
        is_sure = is_plain(*row, effective_m, penalty) &&
                  (!group.m_has_rows || has_capacitor == group.m_has_capacitors);
        group.m_least_cost = std::min(group.m_least_cost, penalty);
        group.m_has_rows = true;
        group.m_has_capacitors = has_capacitor;
    }
    group.m_least_cost = is_sure ? group.m_least_cost : NOT_SURE;
    return group;
}

void ROW_BOUND::give_rows()
{
    for (const SETTING& setting : {m_last_capacitor, m_last_row}) {
        if (setting.m_post_scale != 0) {
            m_evaluation.give_row(setting.m_post_scale, setting.m_m, setting.m_n);
        }
    }
    m_last_row = {};
    m_last_capacitor = {};
}

}  // namespace pll_internal
