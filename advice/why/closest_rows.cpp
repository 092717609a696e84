#include "advice/why/closest_rows.h"

#include "advice/numbers/text.h"
#include "advice/why/table_choice.h"

#include <algorithm>

namespace advice {

namespace {

constexpr std::size_t MOST_ROWS = 3;
constexpr double HZ_PER_KHZ = 1e3;
constexpr int KHZ_DECIMALS = 3;

std::string write_khz(double hertz)
{
    return write_number(hertz / HZ_PER_KHZ, KHZ_DECIMALS) + " kHz";
}

// The rows of a group; a table that was filled by hand may lack some.
std::vector<const PLL_BANDWIDTH_SETTING*> rows_of(const PLL_BANDWIDTH_SETTING_GROUP& group)
{
    std::vector<const PLL_BANDWIDTH_SETTING*> rows;
    for (const PLL_BANDWIDTH_SETTING* row : group.m_settings) {
        if (row != nullptr) {
            rows.push_back(row);
        }
    }
    return rows;
}

// Adds a line and returns true when the table has rows for the division.
bool add_division(const PLL_BASIC_INFO& info, int division, std::vector<std::string>* lines)
{
    const std::vector<const PLL_BANDWIDTH_SETTING*> rows =
        rows_of(info.m_bandwidth_settings_table[division]);
    if (rows.empty()) {
        return false;
    }
    const auto [least, most] =
        std::minmax_element(rows.begin(), rows.end(),
                            [](const PLL_BANDWIDTH_SETTING* a, const PLL_BANDWIDTH_SETTING* b) {
                                return a->m_fast_bandwidth < b->m_fast_bandwidth;
                            });
    lines->push_back("closest rows: effective M " + std::to_string(division) + " has " +
                     std::to_string(rows.size()) + ", bandwidth up to " +
                     write_khz((*least)->m_fast_bandwidth) + " to " +
                     write_khz((*most)->m_fast_bandwidth));
    return true;
}

}  // namespace

std::vector<std::string> list_rows_near_bandwidth(const REQUEST& request, const ANSWER& answer)
{
    std::vector<ROW_CHOICE> choices = list_choices(request, answer);
    std::stable_sort(choices.begin(), choices.end(), [](const ROW_CHOICE& a, const ROW_CHOICE& b) {
        return a.m_row->m_fast_bandwidth < b.m_row->m_fast_bandwidth;
    });
    choices.resize(std::min(choices.size(), MOST_ROWS));

    const double largest = largest_bandwidth(request, answer.get_pll());
    std::vector<std::string> lines;
    for (const ROW_CHOICE& choice : choices) {
        const PLL_BANDWIDTH_SETTING& row = *choice.m_row;
        lines.push_back("closest row: " + std::to_string(row.m_charge_pump_current) + " uA, " +
                        std::to_string(row.m_loop_filter_resistor) + " ohm, bandwidth up to " +
                        write_khz(row.m_fast_bandwidth) + ", " +
                        write_khz(row.m_fast_bandwidth - largest) + " above what the PFD allows");
    }
    return lines;
}

std::vector<std::string> list_rows_near_division(const PLL& pll)
{
    std::vector<std::string> lines;
    if (!uses_table(pll) || pll.m_info.m_basic_info->m_bandwidth_settings_table == nullptr) {
        return lines;
    }
    const PLL_BASIC_INFO& info = *pll.m_info.m_basic_info;
    const int size = info.m_bandwidth_settings_table_size;
    const int division = effective_m(pll);
    for (int below = std::min(division, size) - 1; below >= 0; --below) {
        if (add_division(info, below, &lines)) {
            break;
        }
    }
    for (int above = std::max(division, -1); above < size - 1;) {
        ++above;
        if (add_division(info, above, &lines)) {
            break;
        }
    }
    return lines;
}

}  // namespace advice
