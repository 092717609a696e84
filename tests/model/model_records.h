// The records of the plain second implementation of the synthesis. They mirror the fields of the
// public records, with the same names and the same defaults, written down a second time; nothing
// here calls the library. Units are those of the public headers.
#pragma once

#include <cfloat>
#include <string>
#include <vector>

inline constexpr int MODEL_MAX_TAPS = 10;
inline constexpr int MODEL_MAX_POST_SCALE = 2;
inline constexpr int MODEL_NO_TAP = -1;
inline constexpr int MODEL_UNSET = -2147483647;
inline constexpr int MODEL_MAX_DELAY = 3000;

// The internal errors that a run reported, as condition texts in their order.
typedef std::vector<std::string> MODEL_REPORTS;

struct MODEL_COUNTER
{
    int m_count = 1;
    int m_ss_count = 1;
    int m_initial = 1;
    int m_delay = 0;
    int m_vco_tap = 0;
    int m_max_vco_tap = 9999;
    int m_min_count = 1;
    int m_max_count = 512;
};

struct MODEL_TAP
{
    bool m_score = false;
    double m_delta_phase = 0.0;
    int m_count = 1;
    int m_delay = 0;
    bool m_even = true;
    bool m_bypass = true;
    int m_high = 1;
    int m_low = 0;
    int m_max_count = 512;
    int m_initial = 1;
    int m_vco_tap = 0;
    int m_previous_tap = MODEL_NO_TAP;
    double m_next_phase_degree = 2147483647.0;
    double m_prev_phase_degree = -2147483648.0;
    int m_next_duty_cycle = 100;
    int m_prev_duty_cycle = 0;
    int m_smallest_duty_cycle_min = 100;
    int m_largest_duty_cycle_max = 0;
};

struct MODEL_ROW
{
    int m_m = 0;
    int m_charge_pump_current = 0;
    int m_loop_filter_resistor = 0;
    int m_loop_filter_capacitor = 0;
    double m_typical_bandwidth = 0.0;
    double m_typical_phase_margin = 0.0;
    double m_typical_jitter_peaking = 0.0;
    double m_fast_bandwidth = 0.0;
    double m_fast_phase_margin = 0.0;
    double m_fast_jitter_peaking = 0.0;
    double m_slow_bandwidth = 0.0;
    double m_slow_phase_margin = 0.0;
    double m_slow_jitter_peaking = 0.0;
};

// What the synthesis reads of a device description.
struct MODEL_DEVICE
{
    bool m_use_bandwidth_settings_table = false;
    std::vector<std::vector<MODEL_ROW>> m_table;
    int m_bandwidth_pfd_min_frequency_multiplier = 0;
    bool m_is_pfd_bandwidth_rule_an_error = false;
    int m_m_counter_preferred_min = -1;
    int m_m_counter_preferred_max = -1;
    double m_spe_ratio_constant_x = DBL_MAX;
};

// The candidate components of a loop filter that all PLLs share.
struct MODEL_PARTS
{
    std::vector<int> m_currents = {4,  10, 15, 20, 24, 30, 35,  40,  45,  50,  55,  60,
                                   65, 70, 75, 80, 85, 90, 100, 112, 135, 148, 164, 212};
    std::vector<int> m_resistors = {1021,  2041,  3062,  4082,  7144,  8164,  9185,  10205,
                                    11226, 12246, 13266, 14287, 17349, 18369, 19390, 20410};
};

struct MODEL_PLL
{
    double m_cost = 0.0;
    double m_delta_phase = 0.0;
    double m_delta_vco_period = 0.0;
    int m_ss_cycles = 0;
    int m_ss_counter_max = 32768;
    MODEL_COUNTER m_n;
    MODEL_COUNTER m_m;
    int m_user_taps_count = 0;
    int m_total_taps_count = 0;
    int m_max_taps_count = 0;
    MODEL_TAP m_taps[MODEL_MAX_TAPS];
    int m_feedback_tap = MODEL_NO_TAP;
    int m_vco_min_period[3] = {1000, 1000, 1000};
    int m_vco_max_period[3] = {3334, 3334, 3334};
    int m_vco_center_period[3] = {1666, 1666, 1666};
    int m_ss_vco_max_period[3] = {1667, 1667, 1667};
    double m_kvco[3] = {1880.0, 1880.0, 1880.0};
    int m_pfd_min_period = 1500;
    int m_pfd_max_period = 333333;
    int m_fin_min_period = 1000;
    int m_ss_charge_pump_current = 90;
    bool m_ss_supported = true;
    bool m_output_counter_cascade = false;
    int m_vco_post_scale = 1;
    int m_max_vco_post_scale = 1;
    double m_c_fixed = 650.0;
    double m_r = 1020.5;
    double m_c_high = 10.0;
    double m_i = 50.0;
    double m_i_min = 4.0;
    double m_ss_bandwidth = 140000.0;
    double m_low_bandwidth = 150000.0;
    double m_medium_bandwidth = 800000.0;
    double m_high_bandwidth = 2000000.0;
    double m_vco_period = 1.0;
    bool m_bandwidth_legal_for_mult_div = true;
    bool m_bandwidth_legal_for_fin = true;
    int m_id = 0;
    bool m_debug = false;
    int m_error = 0;

    const MODEL_DEVICE* m_device = nullptr;  // not owned; null: nothing is known of the device
};

struct MODEL_CLOCK
{
    int m_delay = 0;
    int m_mult = 1;
    int m_div = 1;
    double m_phase = 0.0;
    int m_duty = 50;
    double m_sclkout_phase = 0.0;
    bool m_has_sclkout_phase = false;
    bool m_use_even_counter_mode = false;
    bool m_use_even_counter_value = false;
};

struct MODEL_PROP
{
    int m_bandwidth_type = 3;
    int m_fin_period = 0;
    int m_fin2_period = 0;
    int m_ss_period = 20000000;
    int m_feedback_tap = MODEL_NO_TAP;
    int m_lock_min_period = 0;
    int m_lock_max_period = 0;
    MODEL_CLOCK m_taps[MODEL_MAX_TAPS];
    int m_taps_count = 0;
    int m_vco_mult = 0;
    int m_vco_div = 0;
    double m_down_spread = 0.0;
    double m_bandwidth = 0.0;
    double m_bandwidth_max = -1.0;
    double m_bandwidth_min = -1.0;
    double m_f_zero = 0.0;
    double m_f_pole = 0.0;
    double m_phase_margin = -1.0;
    double m_phase_margin_max = -1.0;
    double m_phase_margin_min = -1.0;
    double m_jitter_peak = -1.0;
    double m_jitter_peak_max = -1.0;
    double m_jitter_peak_min = -1.0;
    bool m_use_reconfig = false;
};
