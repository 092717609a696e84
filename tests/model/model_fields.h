// Walks over the fields of two records of the same shape at once, the library's or the model's:
// `visit(name, a.field, b.field)` for each. Copying, comparing and printing are all such walks.
#pragma once

// What a field is called; the index is that of the output or array entry, -1 where there is none.
struct FIELD_NAME
{
    const char* m_record;
    int m_index;
    const char* m_name;
};

#define VISIT_FIELD(field) visit(FIELD_NAME{record, index, #field}, a.field, b.field)

template <class A, class B, class VISIT>
void visit_counter(const char* record, A& a, B& b, VISIT& visit)
{
    const int index = -1;
    VISIT_FIELD(m_count);
    VISIT_FIELD(m_ss_count);
    VISIT_FIELD(m_initial);
    VISIT_FIELD(m_delay);
    VISIT_FIELD(m_vco_tap);
    VISIT_FIELD(m_max_vco_tap);
    VISIT_FIELD(m_min_count);
    VISIT_FIELD(m_max_count);
}

template <class A, class B, class VISIT>
void visit_tap(int index, A& a, B& b, VISIT& visit)
{
    const char* const record = "m_taps";
    VISIT_FIELD(m_score);
    VISIT_FIELD(m_delta_phase);
    VISIT_FIELD(m_count);
    VISIT_FIELD(m_delay);
    VISIT_FIELD(m_even);
    VISIT_FIELD(m_bypass);
    VISIT_FIELD(m_high);
    VISIT_FIELD(m_low);
    VISIT_FIELD(m_max_count);
    VISIT_FIELD(m_initial);
    VISIT_FIELD(m_vco_tap);
    VISIT_FIELD(m_previous_tap);
    VISIT_FIELD(m_next_phase_degree);
    VISIT_FIELD(m_prev_phase_degree);
    VISIT_FIELD(m_next_duty_cycle);
    VISIT_FIELD(m_prev_duty_cycle);
    VISIT_FIELD(m_smallest_duty_cycle_min);
    VISIT_FIELD(m_largest_duty_cycle_max);
}

template <class A, class B, class VISIT>
void visit_pll_limits(A& a, B& b, VISIT& visit)
{
    const char* const record = "pll";
    for (int index = 0; index < 3; ++index) {
        VISIT_FIELD(m_vco_min_period[index]);
        VISIT_FIELD(m_vco_max_period[index]);
        VISIT_FIELD(m_vco_center_period[index]);
        VISIT_FIELD(m_ss_vco_max_period[index]);
        VISIT_FIELD(m_kvco[index]);
    }
    const int index = -1;
    VISIT_FIELD(m_pfd_min_period);
    VISIT_FIELD(m_pfd_max_period);
    VISIT_FIELD(m_fin_min_period);
    VISIT_FIELD(m_ss_charge_pump_current);
    VISIT_FIELD(m_ss_supported);
    VISIT_FIELD(m_output_counter_cascade);
    VISIT_FIELD(m_vco_post_scale);
    VISIT_FIELD(m_max_vco_post_scale);
    VISIT_FIELD(m_c_fixed);
    VISIT_FIELD(m_r);
    VISIT_FIELD(m_c_high);
    VISIT_FIELD(m_i);
    VISIT_FIELD(m_i_min);
    VISIT_FIELD(m_ss_bandwidth);
    VISIT_FIELD(m_low_bandwidth);
    VISIT_FIELD(m_medium_bandwidth);
    VISIT_FIELD(m_high_bandwidth);
}

template <class A, class B, class VISIT>
void visit_pll(A& a, B& b, VISIT& visit)
{
    const char* const record = "pll";
    const int index = -1;
    VISIT_FIELD(m_cost);
    VISIT_FIELD(m_delta_phase);
    VISIT_FIELD(m_delta_vco_period);
    VISIT_FIELD(m_ss_cycles);
    VISIT_FIELD(m_ss_counter_max);
    visit_counter("m_n", a.m_n, b.m_n, visit);
    visit_counter("m_m", a.m_m, b.m_m, visit);
    VISIT_FIELD(m_user_taps_count);
    VISIT_FIELD(m_total_taps_count);
    VISIT_FIELD(m_max_taps_count);
    for (int i = 0; i < 10; ++i) {
        visit_tap(i, a.m_taps[i], b.m_taps[i], visit);
    }
    VISIT_FIELD(m_feedback_tap);
    visit_pll_limits(a, b, visit);
    VISIT_FIELD(m_vco_period);
    VISIT_FIELD(m_bandwidth_legal_for_mult_div);
    VISIT_FIELD(m_bandwidth_legal_for_fin);
    VISIT_FIELD(m_id);
    VISIT_FIELD(m_debug);
    VISIT_FIELD(m_error);
}

template <class A, class B, class VISIT>
void visit_clock(int index, A& a, B& b, VISIT& visit)
{
    const char* const record = "clock";
    VISIT_FIELD(m_delay);
    VISIT_FIELD(m_mult);
    VISIT_FIELD(m_div);
    VISIT_FIELD(m_phase);
    VISIT_FIELD(m_duty);
    VISIT_FIELD(m_sclkout_phase);
    VISIT_FIELD(m_has_sclkout_phase);
    VISIT_FIELD(m_use_even_counter_mode);
    VISIT_FIELD(m_use_even_counter_value);
}

template <class A, class B, class VISIT>
void visit_prop(A& a, B& b, VISIT& visit)
{
    const char* const record = "prop";
    const int index = -1;
    VISIT_FIELD(m_bandwidth_type);
    VISIT_FIELD(m_fin_period);
    VISIT_FIELD(m_fin2_period);
    VISIT_FIELD(m_ss_period);
    VISIT_FIELD(m_feedback_tap);
    VISIT_FIELD(m_lock_min_period);
    VISIT_FIELD(m_lock_max_period);
    for (int i = 0; i < 10; ++i) {
        visit_clock(i, a.m_taps[i], b.m_taps[i], visit);
    }
    VISIT_FIELD(m_taps_count);
    VISIT_FIELD(m_vco_mult);
    VISIT_FIELD(m_vco_div);
    VISIT_FIELD(m_down_spread);
    VISIT_FIELD(m_bandwidth);
    VISIT_FIELD(m_bandwidth_max);
    VISIT_FIELD(m_bandwidth_min);
    VISIT_FIELD(m_f_zero);
    VISIT_FIELD(m_f_pole);
    VISIT_FIELD(m_phase_margin);
    VISIT_FIELD(m_phase_margin_max);
    VISIT_FIELD(m_phase_margin_min);
    VISIT_FIELD(m_jitter_peak);
    VISIT_FIELD(m_jitter_peak_max);
    VISIT_FIELD(m_jitter_peak_min);
    VISIT_FIELD(m_use_reconfig);
}

template <class A, class B, class VISIT>
void visit_row(A& a, B& b, VISIT& visit)
{
    const char* const record = "row";
    const int index = -1;
    VISIT_FIELD(m_m);
    VISIT_FIELD(m_charge_pump_current);
    VISIT_FIELD(m_loop_filter_resistor);
    VISIT_FIELD(m_loop_filter_capacitor);
    VISIT_FIELD(m_typical_bandwidth);
    VISIT_FIELD(m_typical_phase_margin);
    VISIT_FIELD(m_typical_jitter_peaking);
    VISIT_FIELD(m_fast_bandwidth);
    VISIT_FIELD(m_fast_phase_margin);
    VISIT_FIELD(m_fast_jitter_peaking);
    VISIT_FIELD(m_slow_bandwidth);
    VISIT_FIELD(m_slow_phase_margin);
    VISIT_FIELD(m_slow_jitter_peaking);
}

template <class A, class B, class VISIT>
void visit_device(A& a, B& b, VISIT& visit)
{
    const char* const record = "device";
    const int index = -1;
    VISIT_FIELD(m_use_bandwidth_settings_table);
    VISIT_FIELD(m_bandwidth_pfd_min_frequency_multiplier);
    VISIT_FIELD(m_is_pfd_bandwidth_rule_an_error);
    VISIT_FIELD(m_m_counter_preferred_min);
    VISIT_FIELD(m_m_counter_preferred_max);
    VISIT_FIELD(m_spe_ratio_constant_x);
}

#undef VISIT_FIELD
