#include "advice/why/table_choice.h"

#include "pll.h"
#include "pll_util.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>

namespace advice {

namespace {

constexpr double HZ_PS = 1e12;  // frequency in Hz x period in ps

// The library's cost of a row: it is asked with a table that holds nothing else. Infinite for a row
// that the library would not even take then.
double cost_alone(const PLL& answer, const PLL_PROP& prop, const PLL_BANDWIDTH_SETTING& row)
{
    PLL_BASIC_INFO info;
    info.m_bandwidth_pfd_min_frequency_multiplier =
        answer.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
    const int size = effective_m(answer) + 1;
    PLL_BANDWIDTH_SETTING_GROUP* const table =
        new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(size)];
    if (table == nullptr) {
        throw std::bad_alloc();
    }
    info.set_bandwidth_settings_table(size, table);
    PLL_BANDWIDTH_SETTING* const copy = new PLL_BANDWIDTH_SETTING(row);
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    table[effective_m(answer)].m_settings.push_back(copy);

    PLL pll(answer.m_user_taps_count, PLL_MAX_TAPS);
    pll = answer;
    pll.m_info.m_basic_info = &info;
    pll.m_cost = 0.0;
    const bool is_taken = PLL::synthesize_best_bandwidth_using_table(&pll, prop);
    return is_taken ? pll.m_cost : std::numeric_limits<double>::infinity();
}

}  // namespace

bool uses_table(const PLL& pll)
{
    return pll.m_info.has_info() && pll.m_info.m_basic_info->m_use_bandwidth_settings_table;
}

int effective_m(const PLL& pll)
{
    constexpr int BEYOND = std::numeric_limits<int>::max();
    const std::int64_t scaled = std::int64_t{pll.get_m()} * pll.m_vco_post_scale;
    const std::int64_t count =
        pll.m_feedback_tap < 0 ? 1 : PLL_UTIL::get_tap_count(&pll, pll.m_feedback_tap);
    return scaled > BEYOND || scaled * count > BEYOND ? BEYOND : static_cast<int>(scaled * count);
}

double largest_bandwidth(const REQUEST& request, const PLL& pll)
{
    const double pfd_period =
        double(std::max(request.m_input.m_library_period,
                        request.m_input2 ? request.m_input2->m_library_period : 0)) *
        pll.get_n();
    return HZ_PS / pfd_period / pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
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
    std::vector<ROW_CHOICE> choices;
    const PLL& pll = answer.get_pll();
    const PLL_BASIC_INFO& info = *pll.m_info.m_basic_info;
    const int m = effective_m(pll);
    if (m < 0 || m >= info.m_bandwidth_settings_table_size) {
        return choices;
    }
    const PLL_PROP prop = to_prop(request);
    PLL_PROP without_wish = prop;
    without_wish.m_bandwidth_type = static_cast<int>(BANDWIDTH_KIND::AUTO);
    bool is_open = true;
    for (const PLL_BANDWIDTH_SETTING* row : info.m_bandwidth_settings_table[m].m_settings) {
        const double cost = cost_alone(pll, prop, *row);
        const double pfd_cost = cost_alone(pll, without_wish, *row);
        choices.push_back({row, pfd_cost, cost - pfd_cost, cost, is_open});
        is_open = is_open && cost > DBL_EPSILON;
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
