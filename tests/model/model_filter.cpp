// The loop filter: the row of a bandwidth table, or the nearest parts without one.
#include "model.h"
#include "model_util.h"

#include <cfloat>
#include <cmath>
#include <cstdint>

namespace {

constexpr double PFD_MISS = 8388608.0;
constexpr double PRESET_MISS = 131072.0;
constexpr double FAR = 999999999.0;

double distance_cost(double a, double b)
{
    return std::fabs(a - b) / 1000000 * 131072;
}

int effective_m(const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    int m = model_multiply(pll.m_m.m_count, pll.m_vco_post_scale);
    if (pll.m_feedback_tap >= 0) {
        m = model_multiply(m, model_tap_count(pll, pll.m_feedback_tap, reports));
    }
    return m;
}

double current_kvco(const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    return pll.m_kvco[model_current_post_scale(pll, reports)];
}

double preset_penalty(const MODEL_PLL& pll, const MODEL_PROP& request, double typical,
                      MODEL_REPORTS& reports)
{
    const double low = pll.m_low_bandwidth;
    const double high = pll.m_high_bandwidth;
    switch (request.m_bandwidth_type) {
    case 0:
        return typical < high ? PRESET_MISS + distance_cost(typical, high) : 0.0;
    case 1:
        if (typical < low) {
            return PRESET_MISS + distance_cost(typical, low);
        }
        return typical > high ? PRESET_MISS + distance_cost(typical, high) : 0.0;
    case 2:
        return typical > low ? PRESET_MISS + distance_cost(typical, low) : 0.0;
    case 3:
        return 0.0;
    case 4:
        return distance_cost(typical, request.m_bandwidth);
    default:
        reports.push_back("unknown bandwidth type");
        return 0.0;
    }
}

struct CHOICE
{
    double m_cost = 2147483647.0;
    const MODEL_ROW* m_row = nullptr;
    bool m_within = false;
};

CHOICE scan_rows(const MODEL_PLL& pll, const MODEL_PROP& request,
                 const std::vector<MODEL_ROW>& rows, MODEL_REPORTS& reports)
{
    const int divisor =
        model_multiply(pll.m_device->m_bandwidth_pfd_min_frequency_multiplier, pll.m_n.m_count);
    const double base = 1e12 / divisor;
    const double limit1 = base / request.m_fin_period;
    const double limit2 = request.m_fin2_period > 0 ? base / request.m_fin2_period : DBL_MAX;
    CHOICE choice;
    for (const MODEL_ROW& row : rows) {
        double cost = 0.0;
        bool within = true;
        if (row.m_fast_bandwidth > limit1) {
            within = false;
            cost = PFD_MISS + distance_cost(row.m_fast_bandwidth, limit1);
        }
        if (row.m_fast_bandwidth > limit2) {
            within = false;
            cost += PFD_MISS;
            cost += distance_cost(row.m_fast_bandwidth, limit2);
        }
        cost += preset_penalty(pll, request, row.m_typical_bandwidth, reports);
        if (cost < choice.m_cost) {
            choice = {cost, &row, within};
            if (cost <= DBL_EPSILON) {
                break;
            }
        }
    }
    return choice;
}

// The value nearest to `target` among those strictly between two bounds; `otherwise` when none is.
double nearest(const std::vector<int>& values, double target, double above, double below,
               double otherwise)
{
    double best = FAR;
    double chosen = otherwise;
    for (const int value : values) {
        const double difference = std::fabs(value - target);
        if (value > above && value < below && difference < best) {
            best = difference;
            chosen = value;
        }
    }
    return chosen;
}

double nearest_current(const std::vector<int>& currents, double target, double min)
{
    double best = FAR;
    double chosen = min;
    for (const int current : currents) {
        const double difference = std::fabs(current - target);
        if (!(current < min) && difference < best) {
            best = difference;
            chosen = current;
        }
    }
    return chosen;
}

// Multiplies M and N alike, so that the loop needs a current that the charge pump has.
void multiply_counters(MODEL_PLL* pll, const MODEL_WISH& wish, double target)
{
    const std::int64_t m = pll->m_m.m_count;
    const std::int64_t n = pll->m_n.m_count;
    int k = model_truncate(pll->m_i_min / target + 0.5);
    const int by_pfd = model_divide(pll->m_pfd_max_period, wish.m_request->m_fin_period);
    const int limit = pll->m_n.m_max_count < by_pfd ? pll->m_n.m_max_count : by_pfd;
    if (k * n > limit) {
        k = model_divide(limit, pll->m_n.m_count);
    }
    if (k * m > pll->m_m.m_max_count) {
        k = model_divide(pll->m_m.m_max_count, pll->m_m.m_count);
    }
    if (k < 1) {
        k = 1;
    }
    const bool spread_counts = pll->m_m.m_ss_count != 0 || wish.m_down_spread_active;
    for (MODEL_COUNTER* counter : {&pll->m_m, &pll->m_n}) {
        counter->m_count = model_multiply(counter->m_count, k);
        if (spread_counts) {
            counter->m_ss_count = model_multiply(counter->m_ss_count, k);
        }
    }
}

}  // namespace

bool model_choose_row(MODEL_PLL* pll, const MODEL_PROP& request, MODEL_REPORTS& reports)
{
    const int m = effective_m(*pll, reports);
    CHOICE choice;
    if (pll->m_device != nullptr && m >= 0 &&
        static_cast<std::size_t>(m) < pll->m_device->m_table.size()) {
        choice =
            scan_rows(*pll, request, pll->m_device->m_table[static_cast<std::size_t>(m)], reports);
    }
    pll->m_bandwidth_legal_for_mult_div = choice.m_row != nullptr;
    if (choice.m_row != nullptr) {
        if (choice.m_row->m_m != m) {
            reports.push_back("m == best_setting->m_m");
        }
        pll->m_r = choice.m_row->m_loop_filter_resistor;
        pll->m_i = choice.m_row->m_charge_pump_current;
        if (choice.m_row->m_loop_filter_capacitor >= 0) {
            pll->m_c_high = choice.m_row->m_loop_filter_capacitor;
        }
        pll->m_bandwidth_legal_for_fin = choice.m_within;
    }
    pll->m_cost += choice.m_cost;
    return choice.m_row != nullptr;
}

void model_choose_loop_filter(MODEL_PLL* pll, const MODEL_WISH& wish, MODEL_REPORTS& reports)
{
    if (wish.m_bandwidth_type == 0 || wish.m_bandwidth_type == 2) {
        reports.push_back("Only CUSTOM bandwidth supported at this point");
    }
    if (wish.m_bandwidth_type != 4) {
        return;
    }
    const double bw = wish.m_bandwidth;
    const double cf = pll->m_c_fixed;
    const double ch = pll->m_c_high;
    const double i_min = pll->m_i_min;
    const std::vector<int>& resistors = wish.m_parts->m_resistors;
    const std::vector<int>& currents = wish.m_parts->m_currents;
    const double r0 = resistors.empty() ? 0.0 : resistors.front();
    const double target_r = 159235668789.8089 / bw / cf * std::sqrt((cf + ch) / ch);
    double r = nearest(resistors, target_r, -HUGE_VAL, HUGE_VAL, r0);
    int f = effective_m(*pll, reports);
    double target_i = f * 6.28 * bw / current_kvco(*pll, reports) / r;
    if (target_i < i_min * 0.5) {
        multiply_counters(pll, wish, target_i);
        f = effective_m(*pll, reports);
        target_i = f * 6.28 * bw / current_kvco(*pll, reports) / r;
    }
    double i = nearest_current(currents, target_i, i_min);
    const bool spread = wish.m_down_spread_active;
    const int ss_current = pll->m_ss_charge_pump_current;
    if (target_i < i_min * 0.5 || (spread && pll->m_ss_supported && ss_current >= 1)) {
        i = spread && ss_current >= 1 ? ss_current : i_min;
        const double target_r2 = 6.28 * f * bw / current_kvco(*pll, reports) / i;
        const double above = 1e12 / (cf * 6.28 * bw);
        const double below = 1e12 / ((cf * ch / (cf + ch)) * 6.28 * bw);
        r = nearest(resistors, target_r2, above, below, r0);
    }
    pll->m_r = r;
    pll->m_i = i;
}
