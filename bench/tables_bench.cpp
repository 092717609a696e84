// Syntheses with a bandwidth table of 512 groups of 20 rows, for every bandwidth type.
#include "bench_case.h"
#include "same_answer.h"
#include "sections.h"
#include "stopwatch.h"

namespace {

constexpr int GROUPS = 512;
constexpr int ROWS = 20;
constexpr int OUTPUTS = 5;
constexpr int FIN_PERIOD = 10000;  // ps
constexpr int PFD_MULTIPLIER = 10;
constexpr double LEAST_RATIO = 8.0;
constexpr double US_PER_S = 1e6;
constexpr double NS_PER_S = 1e9;
constexpr double LONGEST_NS = 40.0;         // of a candidate that is met
constexpr double SLOWEST_BANDWIDTH = 50e3;  // Hz, of a group's first row
constexpr double ROW_FACTOR = 1.3;          // from one row to the next
constexpr double FAST_FACTOR = 1.5;         // from the typical corner to the fast one
constexpr double CUSTOM_BANDWIDTH = 1e6;    // Hz

const char* const TYPE_NAMES[] = {"high", "medium", "low", "auto", "custom"};

// Bandwidths fall with the feedback division and rise from row to row, so that every preset is in
// some row and the fastest ones break the rule of the PFD.
void fill_table(PLL_BASIC_INFO* info)
{
    auto* groups = new PLL_BANDWIDTH_SETTING_GROUP[GROUPS];
    for (int m = 1; m < GROUPS; ++m) {
        double bandwidth = SLOWEST_BANDWIDTH * (1.0 + 1.0 / m);
        for (int i = 0; i < ROWS; ++i, bandwidth *= ROW_FACTOR) {
            auto* row = new PLL_BANDWIDTH_SETTING;
            row->m_m = m;
            row->m_charge_pump_current = i + 1;
            row->m_loop_filter_resistor = m;
            row->m_loop_filter_capacitor = -1;
            row->m_typical_bandwidth = bandwidth;
            row->m_fast_bandwidth = bandwidth * FAST_FACTOR;
            groups[m].m_settings.push_back(row);
        }
    }
    info->set_bandwidth_settings_table(GROUPS, groups);
    info->m_use_bandwidth_settings_table = true;
    info->m_bandwidth_pfd_min_frequency_multiplier = PFD_MULTIPLIER;
}

struct TABLE_CASE
{
    const char* m_name;
    BENCH_DEMAND m_demand;
    int m_outputs;
    bool m_is_wanted;  // more than a figure
};

constexpr TABLE_CASE TABLE_CASES[] = {
    {"exact", BENCH_DEMAND::EXACT, OUTPUTS, true},
    {"near", BENCH_DEMAND::NEAR, OUTPUTS, true},
    {"missed", BENCH_DEMAND::MISSED, OUTPUTS, true},
    {"crowded", BENCH_DEMAND::CROWDED, 1, false},
};

void measure(const TABLE_CASE& table_case, int type, PLL_BASIC_INFO* info, TARGET_TABLE* table)
{
    const auto pll = make_pll(BENCH_LIMITS::BUILT_IN, table_case.m_outputs);
    pll->m_info.m_basic_info = info;
    PLL_PROP request = make_request({BENCH_LIMITS::BUILT_IN, BENCH_BANDWIDTH::AUTO,
                                     table_case.m_demand, table_case.m_outputs, FIN_PERIOD},
                                    *pll);
    request.m_bandwidth_type = type;
    request.m_bandwidth = CUSTOM_BANDWIDTH;
    const std::string work = std::string("bandwidth table, ") + TYPE_NAMES[type] + ' ' +
                             table_case.m_name + ' ' + std::to_string(table_case.m_outputs) +
                             (table_case.m_outputs == 1 ? " output" : " outputs");
    LEAN_ANSWER answer = {};
    const double lean = best_seconds([&] { answer = lean_synthesis(*pll, request); });
    const double library = best_seconds([&] { pll->synthesize(request); });
    const bool is_same_row =
        answer.m_row == nullptr || (answer.m_row->m_charge_pump_current == pll->m_i &&
                                    answer.m_row->m_loop_filter_resistor == pll->m_r);
    if (!is_same_answer(*pll, answer) || !is_same_row) {
        table->add_error(work, "the library and the lean loop answer differently");
        return;
    }
    char note[96];
    std::snprintf(note, sizeof(note), "lean loop %.1f us, library %.1f us, %d candidates costed",
                  lean * US_PER_S, library * US_PER_S, answer.m_met);
    if (table_case.m_is_wanted) {
        table->add_least(work, lean / library, LEAST_RATIO, "times", note);
    } else {
        table->add_most(work + ", a candidate", library / answer.m_met * NS_PER_S, LONGEST_NS, "ns",
                        note);
    }
}

}  // namespace

void measure_tables(TARGET_TABLE* table)
{
    PLL_BASIC_INFO info;
    fill_table(&info);
    for (const TABLE_CASE& table_case : TABLE_CASES) {
        for (int type = 0; type < int(std::size(TYPE_NAMES)); ++type) {
            measure(table_case, type, &info, table);
        }
    }
}
