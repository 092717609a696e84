#include "advice/why/table_choice.h"

#include "pll.h"
#include "pll_cost.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace advice {

namespace {

// A row that costs as much as this is never taken.
constexpr double NEVER_TAKEN = 2147483647.0;

}  // namespace

bool uses_table(const PLL& pll)
{
    return pll.m_info.has_info() && pll.m_info.m_basic_info->m_use_bandwidth_settings_table;
}

int effective_m(const PLL& pll)
{
    return pll_get_effective_m(pll);
}

double largest_bandwidth(const REQUEST& request, const PLL& pll)
{
    return pll_get_largest_bandwidth(pll, to_prop(request));
}

const PLL_BANDWIDTH_SETTING* find_row(const PLL& pll)
{
    const int m = effective_m(pll);
    const PLL_BASIC_INFO* const info = uses_table(pll) ? pll.m_info.m_basic_info : nullptr;
    if (info == nullptr || m < 0 || m >= info->m_bandwidth_settings_table_size) {
        return nullptr;
    }
    for (const PLL_BANDWIDTH_SETTING* row : info->m_bandwidth_settings_table[m].m_settings) {
        const bool is_capacitor_any = row != nullptr && row->m_loop_filter_capacitor < 0;
        if (row != nullptr && row->m_charge_pump_current == pll.m_i &&
            row->m_loop_filter_resistor == pll.m_r &&
            (is_capacitor_any || row->m_loop_filter_capacitor == pll.m_c_high)) {
            return row;
        }
    }
    return nullptr;
}

std::vector<ROW_CHOICE> list_choices(const REQUEST& request, const ANSWER& answer)
{
    const PLL& pll = answer.get_pll();
    const PLL_PROP prop = to_prop(request);
    const int count = pll_get_row_costs(pll, prop, nullptr, 0);
    std::vector<PLL_ROW_COST> rows(static_cast<std::size_t>(count));
    pll_get_row_costs(pll, prop, rows.data(), count);

    std::vector<ROW_CHOICE> choices;
    for (const PLL_ROW_COST& row : rows) {
        const double cost =
            row.m_cost < NEVER_TAKEN ? row.m_cost : std::numeric_limits<double>::infinity();
        choices.push_back({row.m_row, row.m_pfd_cost, row.m_wish_cost, cost, row.m_is_looked_at});
    }
    return choices;
}

std::size_t find_taken(const std::vector<ROW_CHOICE>& choices)
{
    const auto cheapest = std::min_element(
        choices.begin(), choices.end(),
        [](const ROW_CHOICE& a, const ROW_CHOICE& b) { return a.m_cost < b.m_cost; });
    const bool is_taken = cheapest != choices.end() && std::isfinite(cheapest->m_cost);
    return is_taken ? static_cast<std::size_t>(cheapest - choices.begin()) : choices.size();
}

}  // namespace advice
