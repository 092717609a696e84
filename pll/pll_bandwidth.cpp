// The choice of a row of the bandwidth settings table.
//
// Each row of the candidate's effective M is costed; weights order the criteria: a bandwidth too
// fast for the PFD (2^23) outweighs a missed preset (2^17), which outweighs a small distance,
// counted in MHz.
#include "pll_arith.h"
#include "pll_report_error.h"
#include "pll_search.h"
#include "pll_util.h"

#include <cfloat>

namespace {

constexpr double HERTZ_PER_INVERSE_PICOSECOND = 1e12;
constexpr double NO_ROW_COST = 2147483647.0;
constexpr double PFD_RULE_PENALTY = 8388608.0;
constexpr double PRESET_PENALTY = 131072.0;

// The largest loop bandwidth that each input clock allows, Hz.
struct PFD_BANDWIDTH_LIMITS
{
    double m_first;
    double m_second;
};

struct ROW_CHOICE
{
    const PLL_BANDWIDTH_SETTING* m_row = nullptr;
    double m_cost = NO_ROW_COST;
    bool m_within = false;  // inside the limits of the PFD
};

PFD_BANDWIDTH_LIMITS pfd_limits(const PLL& pll, const PLL_PROP& request)
{
    const int multiplier = pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
    const double base = HERTZ_PER_INVERSE_PICOSECOND / wrap_mul(multiplier, pll.m_n.m_count);
    return {base / request.m_fin_period,
            request.m_fin2_period > 0 ? base / request.m_fin2_period : DBL_MAX};
}

double preset_miss(double bandwidth, double preset)
{
    return PRESET_PENALTY + pll_get_bandwidth_diff_cost(bandwidth, preset);
}

double wish_penalty(const PLL& pll, const PLL_PROP& request, double bandwidth)
{
    switch (request.m_bandwidth_type) {
    case BANDWIDTH_HIGH:
        return bandwidth < pll.m_high_bandwidth ? preset_miss(bandwidth, pll.m_high_bandwidth)
                                                : 0.0;
    case BANDWIDTH_MEDIUM:
        if (bandwidth < pll.m_low_bandwidth) {
            return preset_miss(bandwidth, pll.m_low_bandwidth);
        }
        return bandwidth > pll.m_high_bandwidth ? preset_miss(bandwidth, pll.m_high_bandwidth)
                                                : 0.0;
    case BANDWIDTH_LOW:
        return bandwidth > pll.m_low_bandwidth ? preset_miss(bandwidth, pll.m_low_bandwidth) : 0.0;
    case BANDWIDTH_AUTO:
        return 0.0;
    case BANDWIDTH_CUSTOM:
        return pll_get_bandwidth_diff_cost(bandwidth, request.m_bandwidth);
    default:
        report_error("unknown bandwidth type", "pll");
        return 0.0;
    }
}

ROW_CHOICE cost_row(const PLL& pll, const PLL_PROP& request, const PFD_BANDWIDTH_LIMITS& limits,
                    const PLL_BANDWIDTH_SETTING& row)
{
    const double fast = row.m_fast_bandwidth;
    ROW_CHOICE choice{&row, 0.0, true};
    if (fast > limits.m_first) {
        choice.m_within = false;
        choice.m_cost = PFD_RULE_PENALTY + pll_get_bandwidth_diff_cost(fast, limits.m_first);
    }
    if (fast > limits.m_second) {
        choice.m_within = false;
        choice.m_cost += PFD_RULE_PENALTY;
        choice.m_cost += pll_get_bandwidth_diff_cost(fast, limits.m_second);
    }
    choice.m_cost += wish_penalty(pll, request, row.m_typical_bandwidth);
    return choice;
}

ROW_CHOICE choose_row(const PLL& pll, const PLL_PROP& request, int effective_m)
{
    ROW_CHOICE best;
    if (!pll.m_info.has_info()) {
        return best;
    }
    const PLL_BASIC_INFO& info = *pll.m_info.m_basic_info;
    if (effective_m < 0 || effective_m >= info.m_bandwidth_settings_table_size ||
        info.m_bandwidth_settings_table == nullptr) {
        return best;
    }
    const PFD_BANDWIDTH_LIMITS limits = pfd_limits(pll, request);
    for (const PLL_BANDWIDTH_SETTING* row :
         info.m_bandwidth_settings_table[effective_m].m_settings) {
        if (row == nullptr) {
            continue;
        }
        const ROW_CHOICE choice = cost_row(pll, request, limits, *row);
        if (choice.m_cost < best.m_cost) {
            best = choice;
            if (best.m_cost <= DBL_EPSILON) {
                break;
            }
        }
    }
    return best;
}

void take_row(const ROW_CHOICE& choice, int effective_m, PLL* pll)
{
    const PLL_BANDWIDTH_SETTING& row = *choice.m_row;
    pll->m_bandwidth_legal_for_mult_div = true;
    check(effective_m == row.m_m, "m == best_setting->m_m", "pll");
    pll->m_r = row.m_loop_filter_resistor;
    pll->m_i = row.m_charge_pump_current;
    if (row.m_loop_filter_capacitor >= 0) {
        pll->m_c_high = row.m_loop_filter_capacitor;
    }
    pll->m_bandwidth_legal_for_fin = choice.m_within;
}

}  // namespace

bool PLL::synthesize_best_bandwidth_using_table(PLL* pll, const PLL_PROP& request)
{
    if (pll == nullptr) {
        return false;
    }
    const int effective_m = effective_feedback_division(*pll);
    const ROW_CHOICE choice = choose_row(*pll, request, effective_m);
    if (choice.m_row != nullptr) {
        take_row(choice, effective_m, pll);
    } else {
        pll->m_bandwidth_legal_for_mult_div = false;
    }
    pll->m_cost += choice.m_cost;
    return choice.m_row != nullptr;
}
