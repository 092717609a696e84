#include "lean_table.h"

#include <cfloat>
#include <cmath>

namespace {

constexpr double NO_ROW_COST = 2147483647.0;
constexpr double PFD_RULE_PENALTY = 8388608.0;
constexpr double PRESET_PENALTY = 131072.0;
constexpr double HERTZ_PER_MEGAHERTZ = 1000000;
constexpr double HERTZ_PER_INVERSE_PICOSECOND = 1e12;

enum BANDWIDTH
{
    HIGH,
    MEDIUM,
    LOW,
    AUTO,
    CUSTOM
};

double distance_cost(double a, double b)
{
    return std::fabs(a - b) / HERTZ_PER_MEGAHERTZ * PRESET_PENALTY;
}

double wish_cost(const PLL& limits, const PLL_PROP& request, double typical)
{
    const double low = limits.m_low_bandwidth;
    const double high = limits.m_high_bandwidth;
    const int type = request.m_bandwidth_type;
    if (type == CUSTOM) {
        return distance_cost(typical, request.m_bandwidth);
    }
    if ((type == HIGH && typical < high) || (type == MEDIUM && typical > high)) {
        return PRESET_PENALTY + distance_cost(typical, high);
    }
    if ((type == MEDIUM && typical < low) || (type == LOW && typical > low)) {
        return PRESET_PENALTY + distance_cost(typical, low);
    }
    return 0.0;
}

}  // namespace

LEAN_ROW_CHOICE choose_lean_row(const PLL& limits, const PLL_PROP& request, int effective_m, int n)
{
    const PLL_BASIC_INFO& info = *limits.m_info.m_basic_info;
    LEAN_ROW_CHOICE best = {nullptr, NO_ROW_COST, false};
    if (effective_m >= info.m_bandwidth_settings_table_size) {
        return best;
    }
    const double base =
        HERTZ_PER_INVERSE_PICOSECOND / (info.m_bandwidth_pfd_min_frequency_multiplier * n);
    const double first = base / request.m_fin_period;
    const double second = request.m_fin2_period > 0 ? base / request.m_fin2_period : DBL_MAX;
    for (const PLL_BANDWIDTH_SETTING* row :
         info.m_bandwidth_settings_table[effective_m].m_settings) {
        const double fast = row->m_fast_bandwidth;
        double cost = 0.0;
        if (fast > first) {
            cost = PFD_RULE_PENALTY + distance_cost(fast, first);
        }
        if (fast > second) {
            cost += PFD_RULE_PENALTY;
            cost += distance_cost(fast, second);
        }
        cost += wish_cost(limits, request, row->m_typical_bandwidth);
        if (cost < best.m_cost) {
            best = {row, cost, fast <= first && fast <= second};
            if (cost <= DBL_EPSILON) {
                break;
            }
        }
    }
    return best;
}
