#include "advice/why/table_choice.h"
#include "app/devices/origin.h"
#include "app/output/format.h"
#include "app/output/record_list.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

using advice::effective_m;
using advice::find_taken;
using advice::largest_bandwidth;
using advice::list_choices;
using advice::ROW_CHOICE;
using advice::uses_table;

namespace {

constexpr int KHZ_DECIMALS = 1;
constexpr int RESULT_DECIMALS = 2;
constexpr int COST_DECIMALS = 1;

// What a row gives at one corner of the process.
struct CORNER
{
    double m_bandwidth;
    double m_phase_margin;
    double m_jitter_peaking;
};

std::vector<CORNER> corners_of(const PLL_BANDWIDTH_SETTING& row)
{
    return {
        {row.m_typical_bandwidth, row.m_typical_phase_margin, row.m_typical_jitter_peaking},
        {row.m_fast_bandwidth, row.m_fast_phase_margin, row.m_fast_jitter_peaking},
        {row.m_slow_bandwidth, row.m_slow_phase_margin, row.m_slow_jitter_peaking},
    };
}

// Tables need not give capacitors or results.
RECORD_VALUE record_given(double value, int decimals)
{
    return value < 0.0 ? RECORD_VALUE::none() : RECORD_VALUE::number(value, decimals);
}

// Calls `use` with M, the number of the row in its group from 1, and the row.
template <class USE>
void for_each_row(const PLL_BASIC_INFO& info, std::optional<int> effective_m, USE use)
{
    for (int m = 0; m < info.m_bandwidth_settings_table_size; ++m) {
        int number = 0;
        for (const PLL_BANDWIDTH_SETTING* row : info.m_bandwidth_settings_table[m].m_settings) {
            ++number;
            if (row != nullptr && effective_m.value_or(m) == m) {
                use(m, number, *row);
            }
        }
    }
}

void append_line(const PLL_TABLE_FINDING& finding, void* context)
{
    std::ostringstream line;
    line.imbue(std::locale::classic());
    pll_write_table_finding(line, finding);
    static_cast<std::vector<std::string>*>(context)->push_back(line.str());
}

// The findings of the library's check, a line each.
std::vector<std::string> check_table(const PLL_INFO& info)
{
    std::vector<std::string> lines;
    info.check_bandwidth_settings_table(append_line, &lines);
    return lines;
}

std::string write_rows(const PLL_BASIC_INFO& info, std::optional<int> effective_m)
{
    TEXT_TABLE table({{"M", "", ALIGN::RIGHT},
                      {"row", "", ALIGN::RIGHT},
                      {"I", "uA", ALIGN::RIGHT},
                      {"R", "ohm", ALIGN::RIGHT},
                      {"C", "pF", ALIGN::RIGHT},
                      {"typical", "kHz", ALIGN::RIGHT},
                      {"margin", "deg", ALIGN::RIGHT},
                      {"peak", "dB", ALIGN::RIGHT},
                      {"fast", "kHz", ALIGN::RIGHT},
                      {"margin", "deg", ALIGN::RIGHT},
                      {"peak", "dB", ALIGN::RIGHT},
                      {"slow", "kHz", ALIGN::RIGHT},
                      {"margin", "deg", ALIGN::RIGHT},
                      {"peak", "dB", ALIGN::RIGHT}});
    int rows = 0;
    for_each_row(info, effective_m, [&](int m, int number, const PLL_BANDWIDTH_SETTING& row) {
        std::vector<std::string> cells = {std::to_string(m), std::to_string(number),
                                          std::to_string(row.m_charge_pump_current),
                                          std::to_string(row.m_loop_filter_resistor),
                                          format_given(row.m_loop_filter_capacitor, 0)};
        for (const CORNER& corner : corners_of(row)) {
            cells.push_back(format_given(corner.m_bandwidth / HZ_PER_KHZ, KHZ_DECIMALS));
            cells.push_back(format_given(corner.m_phase_margin, 1));
            cells.push_back(format_given(corner.m_jitter_peaking, RESULT_DECIMALS));
        }
        table.add_row(cells);
        ++rows;
    });
    std::string text;
    if (rows > 0) {
        table.append_to(&text);
    }
    return text;
}

RECORD_LIST list_rows(const PLL_BASIC_INFO& info, std::optional<int> effective_m)
{
    RECORD_LIST records({"m", "row", "charge_pump_current_ua", "loop_filter_resistor_ohm",
                         "loop_filter_capacitor_pf", "typical_bandwidth_hz",
                         "typical_phase_margin_deg", "typical_jitter_peaking_db",
                         "fast_bandwidth_hz", "fast_phase_margin_deg", "fast_jitter_peaking_db",
                         "slow_bandwidth_hz", "slow_phase_margin_deg", "slow_jitter_peaking_db"});
    for_each_row(info, effective_m, [&](int m, int number, const PLL_BANDWIDTH_SETTING& row) {
        constexpr int DECIMALS = 6;
        std::vector<RECORD_VALUE> values = {RECORD_VALUE::number(m), RECORD_VALUE::number(number),
                                            RECORD_VALUE::number(row.m_charge_pump_current),
                                            RECORD_VALUE::number(row.m_loop_filter_resistor),
                                            record_given(row.m_loop_filter_capacitor, 0)};
        for (const CORNER& corner : corners_of(row)) {
            values.push_back(record_given(corner.m_bandwidth, DECIMALS));
            values.push_back(record_given(corner.m_phase_margin, DECIMALS));
            values.push_back(record_given(corner.m_jitter_peaking, DECIMALS));
        }
        records.add(values);
    });
    return records;
}

// Why a row is taken or left, the one with index `taken` being taken.
std::string judge(const std::vector<ROW_CHOICE>& choices, std::size_t index, std::size_t taken)
{
    const ROW_CHOICE& choice = choices[index];
    if (std::isinf(choice.m_cost)) {
        return "too costly to take";
    }
    const std::string winner = "row " + std::to_string(taken + 1);
    if (index == taken) {
        return choice.m_cost > 0.0 ? "TAKEN: costs least" : "TAKEN: costs nothing";
    }
    if (!choice.m_looked_at) {
        return "not tried after " + winner;
    }
    if (!(choice.m_cost > choices[taken].m_cost)) {
        return "no cheaper than " + winner;
    }
    if (choice.m_pfd_cost > choices[taken].m_pfd_cost) {
        return "too fast for the PFD";
    }
    return "further from the wish";
}

// Costs of millions have no decimals, or the table would be too wide.
int cost_decimals(const std::vector<ROW_CHOICE>& choices)
{
    constexpr double LARGE_COST = 1e6;
    const bool is_large = std::any_of(choices.begin(), choices.end(), [](const ROW_CHOICE& choice) {
        return std::isfinite(choice.m_cost) && choice.m_cost >= LARGE_COST;
    });
    return is_large ? 0 : COST_DECIMALS;
}

std::string write_choices(const std::vector<ROW_CHOICE>& choices)
{
    const int decimals = cost_decimals(choices);
    TEXT_TABLE table({{"row", "", ALIGN::RIGHT},
                      {"I", "uA", ALIGN::RIGHT},
                      {"R", "ohm", ALIGN::RIGHT},
                      {"C", "pF", ALIGN::RIGHT},
                      {"typical", "kHz", ALIGN::RIGHT},
                      {"fast", "kHz", ALIGN::RIGHT},
                      {"PFD cost", "", ALIGN::RIGHT},
                      {"wish cost", "", ALIGN::RIGHT},
                      {"cost", "", ALIGN::RIGHT},
                      {"", "", ALIGN::LEFT}});
    const std::size_t taken = find_taken(choices);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const PLL_BANDWIDTH_SETTING& row = *choices[i].m_row;
        table.add_row({std::to_string(i + 1), std::to_string(row.m_charge_pump_current),
                       std::to_string(row.m_loop_filter_resistor),
                       format_given(row.m_loop_filter_capacitor, 0),
                       format_given(row.m_typical_bandwidth / HZ_PER_KHZ, KHZ_DECIMALS),
                       format_given(row.m_fast_bandwidth / HZ_PER_KHZ, KHZ_DECIMALS),
                       format_fixed(choices[i].m_pfd_cost, decimals),
                       format_fixed(choices[i].m_wish_cost, decimals),
                       format_fixed(choices[i].m_cost, decimals), judge(choices, i, taken)});
    }
    std::string text;
    table.append_to(&text);
    return text;
}

RECORD_LIST list_choice_records(int m, const std::vector<ROW_CHOICE>& choices)
{
    RECORD_LIST records({"m", "row", "charge_pump_current_ua", "loop_filter_resistor_ohm",
                         "loop_filter_capacitor_pf", "typical_bandwidth_hz", "fast_bandwidth_hz",
                         "pfd_cost", "wish_cost", "cost", "taken", "reason"});
    const std::size_t taken = find_taken(choices);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        constexpr int DECIMALS = 6;
        const ROW_CHOICE& choice = choices[i];
        records.add({RECORD_VALUE::number(m), RECORD_VALUE::number(static_cast<int>(i) + 1),
                     RECORD_VALUE::number(choice.m_row->m_charge_pump_current),
                     RECORD_VALUE::number(choice.m_row->m_loop_filter_resistor),
                     record_given(choice.m_row->m_loop_filter_capacitor, 0),
                     record_given(choice.m_row->m_typical_bandwidth, DECIMALS),
                     record_given(choice.m_row->m_fast_bandwidth, DECIMALS),
                     RECORD_VALUE::number(choice.m_pfd_cost, DECIMALS),
                     RECORD_VALUE::number(choice.m_wish_cost, DECIMALS),
                     RECORD_VALUE::number(choice.m_cost, DECIMALS), RECORD_VALUE::truth(i == taken),
                     RECORD_VALUE::text(judge(choices, i, taken))});
    }
    return records;
}

// What the effective M and the limit of the bandwidth are made of.
std::string describe_search(const REQUEST& request, const PLL& pll)
{
    std::string text = "effective M " + std::to_string(effective_m(pll)) + ": M " +
                       std::to_string(pll.get_m()) + " x post-scale " +
                       std::to_string(pll.m_vco_post_scale);
    if (pll.m_feedback_tap >= 0) {
        text += " x output " + std::to_string(pll.m_feedback_tap + 1);
    }
    const int multiplier = pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
    if (multiplier > 0) {
        text += "\nlargest bandwidth " +
                format_fixed(largest_bandwidth(request, pll) / HZ_PER_KHZ, KHZ_DECIMALS) +
                " kHz: the PFD frequency over " + std::to_string(multiplier);
    }
    return text + "\n";
}

}  // namespace

std::string report_table(const DEVICE& device, std::optional<int> effective_m, LIST_FORM form,
                         std::vector<std::string>* findings)
{
    const PLL_BASIC_INFO& info = device.get_basic_info();
    // A family file that says 'unused', or names no table, wants none.
    const bool has_table = info.m_use_bandwidth_settings_table;
    *findings = has_table ? check_table(device.get_info()) : std::vector<std::string>();
    if (form != LIST_FORM::TABLE) {
        return list_rows(info, effective_m).write(form);
    }
    std::string text = list_devices(device);
    if (!has_table) {
        return text + "no table: the family file names none for this PLL type, or says 'unused'\n";
    }
    text += findings->empty() ? "check  no findings\n" : "check\n";
    for (const std::string& finding : *findings) {
        text += "  " + finding + "\n";
    }
    const std::string rows = write_rows(info, effective_m);
    if (!rows.empty()) {
        return text + "\n" + rows;
    }
    return text + (effective_m ? "no row for M " + std::to_string(*effective_m) : "no rows") + "\n";
}

std::string report_choices(const REQUEST& request, const ANSWER& answer, LIST_FORM form)
{
    const PLL& pll = answer.get_pll();
    std::vector<ROW_CHOICE> choices;
    if (uses_table(pll) && answer.has_setting()) {
        choices = list_choices(request, answer);
    }
    if (form != LIST_FORM::TABLE) {
        return list_choice_records(effective_m(pll), choices).write(form);
    }
    std::string text = report_verdict(request, answer) + "\n" + report_origins(request, answer);
    if (!uses_table(pll)) {
        return text + "no table: the loop filter is computed\n";
    }
    if (!answer.has_setting()) {
        return text + "no setting, so no row\n";
    }
    text += describe_search(request, pll) + "\n";
    return text + (choices.empty() ? "no row for this M\n" : write_choices(choices));
}
