#include "app/devices/limits.h"

#include "pll_observer.h"

#include <cstdio>

namespace {

typedef PLL_BASIC_INFO BASIC;
typedef PLL_TIMING_INFO TIMING;

template <auto FIELD, int POST_SCALE>
int read_scaled(const TIMING& timing)
{
    return (timing.*FIELD)[POST_SCALE];
}

template <auto FIELD>
int read_plain(const TIMING& timing)
{
    return timing.*FIELD;
}

const DEVICE_LIMIT LIMITS[] = {
    {"vco_min_post_scale 1", "ps", LIMIT_KIND::SMALLEST, read_scaled<&TIMING::m_vco_min, 1>},
    {"vco_max_post_scale 1", "ps", LIMIT_KIND::LARGEST, read_scaled<&TIMING::m_vco_max, 1>},
    {"vco_center_post_scale 1", "ps", LIMIT_KIND::AVERAGE, read_scaled<&TIMING::m_vco_center, 1>},
    {"vco_gain_post_scale 1", "MHz/V", LIMIT_KIND::AVERAGE, read_scaled<&TIMING::m_vco_gain, 1>},
    {"ss_vco_max_post_scale 1", "ps", LIMIT_KIND::LARGEST, read_scaled<&TIMING::m_ss_vco_max, 1>},
    {"vco_min_post_scale 2", "ps", LIMIT_KIND::SMALLEST, read_scaled<&TIMING::m_vco_min, 2>},
    {"vco_max_post_scale 2", "ps", LIMIT_KIND::LARGEST, read_scaled<&TIMING::m_vco_max, 2>},
    {"vco_center_post_scale 2", "ps", LIMIT_KIND::AVERAGE, read_scaled<&TIMING::m_vco_center, 2>},
    {"vco_gain_post_scale 2", "MHz/V", LIMIT_KIND::AVERAGE, read_scaled<&TIMING::m_vco_gain, 2>},
    {"ss_vco_max_post_scale 2", "ps", LIMIT_KIND::LARGEST, read_scaled<&TIMING::m_ss_vco_max, 2>},
    {"pfd_min", "ps", LIMIT_KIND::SMALLEST, read_plain<&TIMING::m_pfd_min>},
    {"pfd_max", "ps", LIMIT_KIND::LARGEST, read_plain<&TIMING::m_pfd_max>},
    {"input_min", "ps", LIMIT_KIND::SMALLEST, read_plain<&TIMING::m_input_min>},
    {"input_max", "ps", LIMIT_KIND::LARGEST, read_plain<&TIMING::m_input_max>},
    {"output_min", "ps", LIMIT_KIND::SMALLEST, read_plain<&TIMING::m_output_min>},
    {"output_max", "ps", LIMIT_KIND::LARGEST, read_plain<&TIMING::m_output_max>},
    {"external_output_min", "ps", LIMIT_KIND::SMALLEST, read_plain<&TIMING::m_external_output_min>},
    {"external_output_max", "ps", LIMIT_KIND::LARGEST, read_plain<&TIMING::m_external_output_max>},
    {"ss_spread_min", "thousandths", LIMIT_KIND::SMALLEST, read_plain<&TIMING::m_ss_spread_min>},
    {"ss_spread_max", "thousandths", LIMIT_KIND::LARGEST, read_plain<&TIMING::m_ss_spread_max>},
};

typedef std::optional<std::string> (*READ_VALUE)(const BASIC& info);

const BASIC& defaults()
{
    static const BASIC DEFAULTS;
    return DEFAULTS;
}

std::string write(int value)
{
    return std::to_string(value);
}

std::string write(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

template <auto FIELD>
std::optional<std::string> read_flag(const BASIC& info)
{
    return info.*FIELD ? "yes" : "no";
}

// A value that is still its default was left out, or might have been.
template <auto FIELD>
std::optional<std::string> read(const BASIC& info)
{
    if (info.*FIELD == defaults().*FIELD) {
        return std::nullopt;
    }
    return write(info.*FIELD);
}

template <auto COUNT, auto VALUES>
std::optional<std::string> read_list(const BASIC& info)
{
    std::string text;
    for (int i = 0; i < info.*COUNT && info.*VALUES != nullptr; ++i) {
        text += (i == 0 ? "" : " ") + std::to_string((info.*VALUES)[i]);
    }
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

// A table may be used and hold nothing.
std::optional<std::string> read_table(const BASIC& info)
{
    if (!info.m_use_bandwidth_settings_table) {
        return std::nullopt;
    }
    int rows = 0;
    for (int m = 0; m < info.m_bandwidth_settings_table_size; ++m) {
        rows += static_cast<int>(info.m_bandwidth_settings_table[m].m_settings.size());
    }
    return std::to_string(rows) + " rows for M below " +
           std::to_string(info.m_bandwidth_settings_table_size);
}

struct VALUE_ROW
{
    const char* m_keyword;  // null: m_unit is the title of a section
    const char* m_unit;
    READ_VALUE m_read;
};

constexpr VALUE_ROW section(const char* title)
{
    return {nullptr, title, nullptr};
}

const VALUE_ROW VALUE_ROWS[] = {
    section("counters"),
    {"number_of_output_counters", "", read<&BASIC::m_number_of_output_counters>},
    {"m_counter_max", "", read<&BASIC::m_m_counter_max>},
    {"m_counter_high_low_max", "", read<&BASIC::m_m_counter_high_low_max>},
    {"m_counter_initial_max", "", read<&BASIC::m_m_counter_initial_max>},
    {"m_counter_preferred_min", "", read<&BASIC::m_m_counter_preferred_min>},
    {"m_counter_preferred_max", "", read<&BASIC::m_m_counter_preferred_max>},
    {"m_counter_phase_tap_max", "", read<&BASIC::m_m_counter_phase_tap_max>},
    {"m_counter_phase_tap_resolution", "", read<&BASIC::m_m_counter_phase_tap_resolution>},
    {"n_counter_max", "", read<&BASIC::m_n_counter_max>},
    {"vco_post_scale_counter_max", "", read<&BASIC::m_vco_post_scale_counter_max>},
    {"output_counter_max", "", read<&BASIC::m_output_counter_max>},
    {"output_counter_high_low_max", "", read<&BASIC::m_output_counter_high_low_max>},
    {"output_counter_initial_max", "", read<&BASIC::m_output_counter_initial_max>},
    {"output_counter_phase_tap_max", "", read<&BASIC::m_output_counter_phase_tap_max>},
    {"output_counter_phase_tap_resolution", "",
     read<&BASIC::m_output_counter_phase_tap_resolution>},
    {"output_counter_cascade", "", read_flag<&BASIC::m_output_counter_cascade>},
    {"time_delay_max", "ps", read<&BASIC::m_time_delay_max>},
    {"time_delay_resolution", "ps", read<&BASIC::m_time_delay_resolution>},

    section("loop filter"),
    {"charge_pump_current_default", "uA", read<&BASIC::m_charge_pump_current_default>},
    {"charge_pump_current", "uA",
     read_list<&BASIC::m_number_of_charge_pump_currents, &BASIC::m_charge_pump_currents>},
    {"charge_pump_current_bit", "uA",
     read_list<&BASIC::m_number_of_charge_pump_current_bits, &BASIC::m_charge_pump_current_bits>},
    {"loop_filter_resistor_default", "ohm", read<&BASIC::m_loop_filter_resistor_default>},
    {"loop_filter_resistor", "ohm",
     read_list<&BASIC::m_number_of_loop_filter_resistors, &BASIC::m_loop_filter_resistors>},
    {"loop_filter_resistor_bit", "ohm",
     read_list<&BASIC::m_number_of_loop_filter_resistor_bits, &BASIC::m_loop_filter_resistor_bits>},
    {"loop_filter_capacitor_default", "pF", read<&BASIC::m_loop_filter_capacitor_default>},
    {"loop_filter_capacitor", "pF",
     read_list<&BASIC::m_number_of_loop_filter_capacitors, &BASIC::m_loop_filter_capacitors>},
    {"loop_filter_capacitor_bit", "pF",
     read_list<&BASIC::m_number_of_loop_filter_capacitor_bits,
               &BASIC::m_loop_filter_capacitor_bits>},
    {"loop_filter_fixed_capacitor", "pF", read<&BASIC::m_loop_filter_fixed_capacitor>},

    section("loop bandwidth"),
    {"bandwidth_pfd_min_frequency_multiplier", "",
     read<&BASIC::m_bandwidth_pfd_min_frequency_multiplier>},
    {"is_pfd_bandwidth_rule_an_error", "", read_flag<&BASIC::m_is_pfd_bandwidth_rule_an_error>},
    {"bandwidth_low", "Hz", read<&BASIC::m_bandwidth_low>},
    {"bandwidth_medium", "Hz", read<&BASIC::m_bandwidth_medium>},
    {"bandwidth_high", "Hz", read<&BASIC::m_bandwidth_high>},
    {"bandwidth_relative_tolerance", "", read<&BASIC::m_bandwidth_relative_tolerance>},
    {"bandwidth_settings_table_file", "", read_table},
    {"phase_absolute_tolerance", "deg", read<&BASIC::m_phase_absolute_tolerance>},

    section("spread spectrum"),
    {"ss_counter_max", "", read<&BASIC::m_ss_counter_max>},
    {"ss_bandwidth", "Hz", read<&BASIC::m_ss_bandwidth>},
    {"ss_down_spread_min", "", read<&BASIC::m_ss_down_spread_min>},
    {"ss_down_spread_max", "", read<&BASIC::m_ss_down_spread_max>},
    {"ss_charge_pump_current", "uA", read<&BASIC::m_ss_charge_pump_current>},

    section("lock and switch-over"),
    {"valid_lock_multiplier", "", read<&BASIC::m_valid_lock_multiplier>},
    {"invalid_lock_multiplier", "", read<&BASIC::m_invalid_lock_multiplier>},
    {"gate_lock_counter_min", "", read<&BASIC::m_gate_lock_counter_min>},
    {"gate_lock_counter_max", "", read<&BASIC::m_gate_lock_counter_max>},
    {"switch_over_counter_min", "", read<&BASIC::m_switch_over_counter_min>},
    {"switch_over_counter_max", "", read<&BASIC::m_switch_over_counter_max>},
    {"feedback_duty_cycle_min", "%", read<&BASIC::m_feedback_duty_cycle_min>},
    {"feedback_duty_cycle_max", "%", read<&BASIC::m_feedback_duty_cycle_max>},

    section("static phase error"),
    {"spe_ratio_constant_x", "", read<&BASIC::m_spe_ratio_constant_x>},
    {"spe_push_out_constant_a", "", read<&BASIC::m_spe_push_out_constant_a>},
    {"spe_push_out_constant_b", "", read<&BASIC::m_spe_push_out_constant_b>},
    {"spe_push_out_constant_c", "", read<&BASIC::m_spe_push_out_constant_c>},
    {"spe_pull_in_constant_d", "", read<&BASIC::m_spe_pull_in_constant_d>},
    {"spe_pull_in_constant_e", "", read<&BASIC::m_spe_pull_in_constant_e>},
    {"spe_pull_in_constant_f", "", read<&BASIC::m_spe_pull_in_constant_f>},
    {"spe_lock_fail_ratio_constant", "", read<&BASIC::m_spe_lock_fail_ratio_constant>},
};

std::string word_of(PLL_VOCABULARY vocabulary, int index)
{
    const char* const word = pll_get_word(vocabulary, index);
    return word == nullptr ? "?" : word;
}

// The counters of a scan chain in their order.
DEVICE_VALUE describe_chain(const PLL_RECONFIG_INFO& chain)
{
    std::string counters;
    for (int i = 0; i < chain.m_number_of_scan_chain_counter_orders; ++i) {
        counters += (i == 0 ? "" : " ");
        counters += word_of(PLL_VOCABULARY::COUNTERS, chain.m_scan_chain_counter_orders[i]);
    }
    return {"reconfiguration",
            "reconfig_scan_chain_counter_order " +
                word_of(PLL_VOCABULARY::RECONFIG_TYPES, chain.m_reconfig_type),
            counters.empty() ? std::nullopt : std::optional<std::string>(counters), ""};
}

}  // namespace

std::span<const DEVICE_LIMIT> list_limits()
{
    return LIMITS;
}

std::vector<DEVICE_VALUE> list_values(const PLL_BASIC_INFO& info)
{
    std::vector<DEVICE_VALUE> values;
    const char* title = "";
    for (const VALUE_ROW& row : VALUE_ROWS) {
        if (row.m_keyword == nullptr) {
            title = row.m_unit;
        } else {
            values.push_back({title, row.m_keyword, row.m_read(info), row.m_unit});
        }
    }
    for (int i = 0; i < info.m_number_of_reconfig_infos; ++i) {
        values.push_back(describe_chain(*info.m_reconfig_infos[i]));
    }
    return values;
}
