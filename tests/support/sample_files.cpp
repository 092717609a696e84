#include "sample_files.h"

std::string sample_family_text()
{
    return "family Fam # every keyword once, most of them\n"
           "pll ENHANCED_PLL\r\n"
           "m_counter_max 9\nm_counter_preferred_min 1\nm_counter_preferred_max 8\n"
           "m_counter_high_low_max 4\nm_counter_initial_max 7\nm_counter_phase_tap_max 7\n"
           "m_counter_phase_tap_resolution 1\nn_counter_max 6\nvco_post_scale_counter_max 2\n"
           "output_counter_max 9\noutput_counter_high_low_max 4\noutput_counter_initial_max 5\n"
           "number_of_output_counters 3\noutput_counter_phase_tap_max 7\n"
           "output_counter_phase_tap_resolution 1\noutput_counter_cascade on\n"
           "time_delay_max 3000\ntime_delay_resolution 250\n"
           "charge_pump_current_default 2\ncharge_pump_current 3 1 2\n"
           "charge_pump_current_bit 4 0 1 2\n"
           "loop_filter_resistor_default 1500\nloop_filter_resistor 2000 1000\n"
           "loop_filter_resistor_bit 0 4 2\n"
           "loop_filter_capacitor_default 9\nloop_filter_capacitor 7\n"
           "loop_filter_capacitor_bit 1 2\nloop_filter_fixed_capacitor 77\n"
           "valid_lock_multiplier 1\ninvalid_lock_multiplier 2\n"
           "gate_lock_counter_min 1\ngate_lock_counter_max 99\n"
           "switch_over_counter_min 0\nswitch_over_counter_max 31\n"
           "ss_counter_max 32\nss_bandwidth 1.5e5\nss_down_spread_min .001\n"
           "ss_down_spread_max 5e-3\nss_charge_pump_current 33\n"
           "feedback_duty_cycle_min 40\nfeedback_duty_cycle_max 60\n"
           "bandwidth_pfd_min_frequency_multiplier 10\n"
           "bandwidth_low 1e5\nbandwidth_medium 1e6\nbandwidth_high 4e6\n"
           "bandwidth_relative_tolerance 0.1\n"
           "bandwidth_settings_table_file \"my table.txt\"\nphase_absolute_tolerance 0.5\n"
           "reconfig_type long\nreconfig_scan_chain_counter_order C0 \"M\" n end C1\n"
           "is_pfd_bandwidth_rule_an_error no\n"
           "spe_ratio_constant_x 9.5\nspe_push_out_constant_a 1\nspe_push_out_constant_b 2\n"
           "spe_push_out_constant_c 3\nspe_pull_in_constant_d 4\nspe_pull_in_constant_e 5\n"
           "spe_pull_in_constant_f 6\nspe_lock_fail_ratio_constant 7\n"
           "include \"more limits.txt\"\n"
           "speed_grade \"6 x\"\npart P1\nnot_listed no\n"
           "vco_min 500 # ps\nvco_max 900\nvco_center 700\nvco_gain 800\n"
           "vco_min_post_scale 2 1000\nvco_max_post_scale 2 1800\nvco_center_post_scale 1 690\n"
           "vco_gain_post_scale 2 810\npfd_min 3\npfd_max 30\ninput_min 2\ninput_max 40\n"
           "output_min 600\noutput_max 90000\nexternal_output_min 700\n"
           "external_output_max 80000\nss_spread_min 1\nss_spread_max 9\nss_vco_max 890\n"
           "ss_vco_max_post_scale 2 1700\n"
           "PLL fast_pll\nm_counter_max 5\nvco_post_scale_counter_max 1\n"
           "output_counter_high_low_max 4\n"
           "bandwidth_settings_table_file simple.txt\npart P1\nspeed_grade 7\npart P2\n"
           "pll FAST_PLL_HIGH_SPEED\nm_counter_max 5\nvco_post_scale_counter_max 1\n"
           "bandwidth_settings_table_file other.txt\npart P1\n"
           "pll VESTRA_PLL\nbandwidth_settings_table_file UNUSED\npart P1\n";
}

std::vector<SAMPLE_FILE> sample_files()
{
    return {
        {"ddb_pll_path.txt",
         "# families\nFam . family.txt # one\n\n\t\"Other 1\" \"sub\" \"o.txt\" word\n"},
        {"family.txt", sample_family_text()},
        {"more limits.txt", "# more\nn_counter_max 5\ninclude nowhere.txt\n"},
        {"my table.txt", "V2 x\ntitles\n5 1 20 100 60 1.2 0.1 55 1.5 0.2 65 0.9 0.05 z\n"
                         "5 2 30 100 6e1 12 -.1 5 1 2 6 9 5\n\nend\n"},
        {"simple.txt", "simple_V1 x\ntitles\n1 20 100\n 3\t+20 100 a note\n1 20 100\n"},
        {"other.txt", "V1 x\ntitles\n1 20 100 60 1.2 0.1 55 1.5 0.2 65 0.9 0.05\n"
                      "2 30\n100 6e1 12 -.1 5 1 2 6 9 5\r\n5 1 1 1 1 1 1 1 1 1 1 1\n"},
    };
}
