// What a PLL achieves, in terms of clocks.
#include "model.h"
#include "model_util.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14;  // deliberately: loop figures are quoted with it

struct RATIO
{
    int m_m;
    int m_n;
};

void describe_spread(MODEL_PROP* prop, const MODEL_PLL& pll, RATIO* used)
{
    if (pll.m_ss_cycles == 0) {
        prop->m_down_spread = 0.0;
        prop->m_ss_period = 0;
        return;
    }
    const double f = 1e6 / prop->m_fin_period;
    const double fa = pll.m_m.m_count * f / pll.m_n.m_count;
    const double fb = f * pll.m_m.m_ss_count / pll.m_n.m_ss_count;
    double fmax = fa;
    if (!(fa >= fb)) {
        fmax = fb;
        *used = {pll.m_m.m_ss_count, pll.m_n.m_ss_count};
    }
    prop->m_down_spread = std::fabs(fb - fa) / fmax;
    prop->m_ss_period = model_multiply(prop->m_fin_period, pll.m_ss_cycles);
}

int find_reference(const MODEL_PROP& prop, const MODEL_PLL& pll, RATIO* used,
                   MODEL_REPORTS& reports)
{
    if (prop.m_feedback_tap < 0) {
        return model_phase_of(pll.m_m.m_vco_tap, pll.m_m.m_initial);
    }
    if (prop.m_feedback_tap >= pll.m_user_taps_count) {
        reports.push_back("m_feedback_tap < p.m_user_taps_count");
    }
    const MODEL_TAP& tap = pll.m_taps[model_nearest_index(prop.m_feedback_tap, MODEL_MAX_TAPS)];
    used->m_m = model_multiply(used->m_m, model_output_count(tap));
    const int whole = model_subtract(model_multiply(pll.m_m.m_initial, 360), 360);
    return model_add(whole, model_phase_of(tap.m_vco_tap, tap.m_initial));
}

void describe_lock_range(MODEL_PROP* prop, const MODEL_PLL& pll, const RATIO& used,
                         MODEL_REPORTS& reports)
{
    const int min_period = pll.m_vco_min_period[model_current_post_scale(pll, reports)];
    const int low = model_divide(model_multiply(min_period, used.m_m), used.m_n);
    prop->m_lock_min_period = std::max(low, model_divide(pll.m_pfd_min_period, used.m_n));
    int max_period = MODEL_UNSET;
    if (pll.m_ss_cycles >= 1 && pll.m_ss_supported) {
        max_period = pll.m_ss_vco_max_period[model_current_post_scale(pll, reports)];
    }
    if (max_period == MODEL_UNSET) {
        max_period = pll.m_vco_max_period[model_current_post_scale(pll, reports)];
    }
    const int high = model_divide(model_multiply(max_period, used.m_m), used.m_n);
    prop->m_lock_max_period = std::min(high, model_divide(pll.m_pfd_max_period, used.m_n));
}

int describe_duty(const MODEL_TAP& tap, MODEL_REPORTS& reports)
{
    const int sum = model_add(tap.m_high, tap.m_low);
    const int out = tap.m_bypass ? 1 : sum;
    if (sum == 0 && out != 1) {
        reports.push_back("out_count == 1 || counter_sum != 0");
    }
    if (out == 1) {
        return 50;
    }
    const double high_time = tap.m_even ? tap.m_high : tap.m_high - 0.5;
    return model_truncate(high_time * 100 / sum + 0.5);
}

void describe_clock(MODEL_PROP* prop, const MODEL_PLL& pll, const RATIO& used, int reference, int i,
                    MODEL_REPORTS& reports)
{
    MODEL_CLOCK& clock = prop->m_taps[i];
    clock.m_duty = describe_duty(pll.m_taps[i], reports);
    int product = 1;
    int start = 1;
    int vco_tap = 0;
    int j = i;
    for (int step = 0; step < MODEL_MAX_TAPS && j >= 0 && j < MODEL_MAX_TAPS; ++step) {
        const MODEL_TAP& tap = pll.m_taps[j];
        const int count = model_output_count(tap);
        product = model_multiply(product, count);
        start = model_add(model_multiply(model_subtract(start, 1), count), tap.m_initial);
        vco_tap = tap.m_vco_tap;
        j = tap.m_previous_tap;
    }
    model_normalize(&clock.m_mult, &clock.m_div, used.m_m, model_multiply(product, used.m_n),
                    reports);
    const double n = used.m_n;
    const double m = used.m_m;
    clock.m_phase = n * model_subtract(model_phase_of(vco_tap, start), reference) / m;
    clock.m_sclkout_phase = n * model_subtract(model_phase_of(vco_tap, 1), reference) / m;
    clock.m_has_sclkout_phase = true;
    if (prop->m_feedback_tap < 0) {
        const double seen = model_user_phase(used.m_n, used.m_m, pll, vco_tap, start);
        if (!(static_cast<float>(seen) == static_cast<float>(clock.m_phase))) {
            reports.push_back("(float)u_phase == (float)phase");
        }
    }
}

const MODEL_ROW* find_row(const MODEL_PLL& pll, int m)
{
    if (m < 0 || static_cast<std::size_t>(m) >= pll.m_device->m_table.size()) {
        return nullptr;
    }
    for (const MODEL_ROW& row : pll.m_device->m_table[static_cast<std::size_t>(m)]) {
        const bool capacitor_fits =
            row.m_loop_filter_capacitor < 0 || row.m_loop_filter_capacitor == pll.m_c_high;
        if (row.m_charge_pump_current == pll.m_i && row.m_loop_filter_resistor == pll.m_r &&
            capacitor_fits) {
            return &row;
        }
    }
    return nullptr;
}

void copy_row(MODEL_PROP* prop, const MODEL_ROW& row)
{
    prop->m_bandwidth = row.m_typical_bandwidth;
    prop->m_phase_margin = row.m_typical_phase_margin;
    prop->m_jitter_peak = row.m_typical_jitter_peaking;
    prop->m_bandwidth_max = std::max(row.m_fast_bandwidth, row.m_slow_bandwidth);
    prop->m_bandwidth_min = std::min(row.m_fast_bandwidth, row.m_slow_bandwidth);
    prop->m_phase_margin_max = std::max(row.m_fast_phase_margin, row.m_slow_phase_margin);
    prop->m_phase_margin_min = std::min(row.m_fast_phase_margin, row.m_slow_phase_margin);
    prop->m_jitter_peak_max = std::max(row.m_fast_jitter_peaking, row.m_slow_jitter_peaking);
    prop->m_jitter_peak_min = std::min(row.m_fast_jitter_peaking, row.m_slow_jitter_peaking);
}

void cut_lock_range(MODEL_PROP* prop, const MODEL_PLL& pll)
{
    if (pll.m_device == nullptr || !pll.m_device->m_is_pfd_bandwidth_rule_an_error) {
        return;
    }
    const double w = prop->m_bandwidth_max > 0 ? prop->m_bandwidth_max : prop->m_bandwidth;
    const int q =
        model_truncate(1e12 / w / pll.m_device->m_bandwidth_pfd_min_frequency_multiplier + 0.5);
    const int longest = model_divide(q, pll.m_n.m_count);
    prop->m_lock_max_period = std::min(prop->m_lock_max_period, longest);
}

void describe_loop(MODEL_PROP* prop, const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    int m = model_multiply(pll.m_m.m_count, pll.m_vco_post_scale);
    if (prop->m_feedback_tap >= 0) {
        m = model_multiply(m, model_tap_count(pll, prop->m_feedback_tap, reports));
    }
    const double r = pll.m_r;
    const double c1 = pll.m_c_fixed;
    const double c2 = pll.m_c_high;
    const MODEL_ROW* row = nullptr;
    if (pll.m_device == nullptr || !pll.m_device->m_use_bandwidth_settings_table) {
        prop->m_f_zero = 1 / (2 * PI * r * c1 * 1e-12);
        prop->m_f_pole = 1 / (2 * PI * r * (c1 * c2 / (c1 + c2)) * 1e-12);
    } else {
        row = find_row(pll, m);
    }
    if (row != nullptr) {
        copy_row(prop, *row);
    } else {
        const double kvco = pll.m_kvco[model_current_post_scale(pll, reports)];
        prop->m_bandwidth = pll.m_i * r * kvco / m * 0.5 / PI;
    }
    cut_lock_range(prop, pll);
}

void describe_delays(MODEL_PROP* prop, const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    int base = model_subtract(pll.m_n.m_delay, pll.m_m.m_delay);
    if (prop->m_feedback_tap >= 0) {
        if (prop->m_feedback_tap >= prop->m_taps_count) {
            reports.push_back("m_feedback_tap < m_taps_count");
        }
        const int index = model_nearest_index(prop->m_feedback_tap, MODEL_MAX_TAPS);
        base = model_subtract(base, pll.m_taps[index].m_delay);
    }
    for (int i = 0; i < model_taps_to_walk(prop->m_taps_count); ++i) {
        prop->m_taps[i].m_delay = model_add(base, pll.m_taps[i].m_delay);
    }
}

}  // namespace

void model_set_properties(MODEL_PROP* prop, const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    if (prop->m_taps_count != pll.m_user_taps_count) {
        reports.push_back("m_taps_count == p.m_user_taps_count");
    }
    prop->m_feedback_tap = pll.m_feedback_tap;
    RATIO used = {pll.m_m.m_count, pll.m_n.m_count};
    describe_spread(prop, pll, &used);
    const int reference = find_reference(*prop, pll, &used, reports);
    describe_lock_range(prop, pll, used, reports);
    model_normalize(&prop->m_vco_mult, &prop->m_vco_div, used.m_m, used.m_n, reports);
    for (int i = 0; i < model_taps_to_walk(prop->m_taps_count); ++i) {
        describe_clock(prop, pll, used, reference, i, reports);
    }
    describe_loop(prop, pll, reports);
    describe_delays(prop, pll, reports);
}
