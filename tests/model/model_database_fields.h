// Walks over the fields of two records of the database at once, the library's or the model's:
// `visit(name, a.field, b.field)` for each. Lists and tables have other shapes and are left out.
#pragma once

#include "model_fields.h"

#define VISIT_FIELD(field) visit(FIELD_NAME{record, index, #field}, a.field, b.field)

template <class A, class B, class VISIT>
void visit_basic_counters(int index, A& a, B& b, VISIT& visit)
{
    const char* const record = "basic";
    VISIT_FIELD(m_number_of_output_counters);
    VISIT_FIELD(m_m_counter_max);
    VISIT_FIELD(m_m_counter_high_low_max);
    VISIT_FIELD(m_m_counter_initial_max);
    VISIT_FIELD(m_m_counter_preferred_min);
    VISIT_FIELD(m_m_counter_preferred_max);
    VISIT_FIELD(m_n_counter_max);
    VISIT_FIELD(m_vco_post_scale_counter_max);
    VISIT_FIELD(m_output_counter_max);
    VISIT_FIELD(m_output_counter_high_low_max);
    VISIT_FIELD(m_output_counter_initial_max);
    VISIT_FIELD(m_output_counter_cascade);
    VISIT_FIELD(m_m_counter_phase_tap_max);
    VISIT_FIELD(m_m_counter_phase_tap_resolution);
    VISIT_FIELD(m_output_counter_phase_tap_max);
    VISIT_FIELD(m_output_counter_phase_tap_resolution);
    VISIT_FIELD(m_time_delay_max);
    VISIT_FIELD(m_time_delay_resolution);
    VISIT_FIELD(m_ss_counter_max);
    VISIT_FIELD(m_valid_lock_multiplier);
    VISIT_FIELD(m_invalid_lock_multiplier);
    VISIT_FIELD(m_gate_lock_counter_min);
    VISIT_FIELD(m_gate_lock_counter_max);
    VISIT_FIELD(m_switch_over_counter_min);
    VISIT_FIELD(m_switch_over_counter_max);
}

template <class A, class B, class VISIT>
void visit_basic(int index, A& a, B& b, VISIT& visit)
{
    const char* const record = "basic";
    visit_basic_counters(index, a, b, visit);
    VISIT_FIELD(m_charge_pump_current_default);
    VISIT_FIELD(m_loop_filter_resistor_default);
    VISIT_FIELD(m_loop_filter_capacitor_default);
    VISIT_FIELD(m_loop_filter_fixed_capacitor);
    VISIT_FIELD(m_ss_bandwidth);
    VISIT_FIELD(m_ss_down_spread_min);
    VISIT_FIELD(m_ss_down_spread_max);
    VISIT_FIELD(m_ss_charge_pump_current);
    VISIT_FIELD(m_feedback_duty_cycle_min);
    VISIT_FIELD(m_feedback_duty_cycle_max);
    VISIT_FIELD(m_bandwidth_pfd_min_frequency_multiplier);
    VISIT_FIELD(m_bandwidth_low);
    VISIT_FIELD(m_bandwidth_medium);
    VISIT_FIELD(m_bandwidth_high);
    VISIT_FIELD(m_bandwidth_relative_tolerance);
    VISIT_FIELD(m_use_bandwidth_settings_table);
    VISIT_FIELD(m_phase_absolute_tolerance);
    VISIT_FIELD(m_is_pfd_bandwidth_rule_an_error);
    VISIT_FIELD(m_spe_ratio_constant_x);
    VISIT_FIELD(m_spe_push_out_constant_a);
    VISIT_FIELD(m_spe_push_out_constant_b);
    VISIT_FIELD(m_spe_push_out_constant_c);
    VISIT_FIELD(m_spe_pull_in_constant_d);
    VISIT_FIELD(m_spe_pull_in_constant_e);
    VISIT_FIELD(m_spe_pull_in_constant_f);
    VISIT_FIELD(m_spe_lock_fail_ratio_constant);
}

template <class A, class B, class VISIT>
void visit_timing(A& a, B& b, VISIT& visit)
{
    const char* const record = "timing";
    for (int index = 0; index < 3; ++index) {
        VISIT_FIELD(m_vco_min[index]);
        VISIT_FIELD(m_vco_max[index]);
        VISIT_FIELD(m_vco_center[index]);
        VISIT_FIELD(m_vco_gain[index]);
        VISIT_FIELD(m_ss_vco_max[index]);
    }
    const int index = -1;
    VISIT_FIELD(m_input_min);
    VISIT_FIELD(m_input_max);
    VISIT_FIELD(m_output_min);
    VISIT_FIELD(m_output_max);
    VISIT_FIELD(m_external_output_min);
    VISIT_FIELD(m_external_output_max);
    VISIT_FIELD(m_pfd_min);
    VISIT_FIELD(m_pfd_max);
    VISIT_FIELD(m_ss_spread_min);
    VISIT_FIELD(m_ss_spread_max);
}

#undef VISIT_FIELD
