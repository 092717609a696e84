// A plain second implementation of the device database: the files are texts in memory, records are
// looked up by walking along lists, and what several devices allow is combined one rule after the
// other. It shares no code with the library.
#pragma once

#include "model_records.h"

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

inline constexpr int MODEL_TYPES = 4;  // and the value that says that there is none
inline constexpr int MODEL_RECONFIG_TYPES = 4;
inline constexpr int MODEL_COUNTER_TYPES = 20;
inline constexpr int MODEL_NO_UPPER = 2147483647;  // a limit that nobody gave, while limits combine

typedef std::map<std::string, std::string> MODEL_FILES;  // texts by full name

struct MODEL_RECONFIG
{
    int m_type;
    std::vector<int> m_counters;
};

// Limits and components of one PLL type of a family; fields as in the public record.
struct MODEL_BASIC
{
    int m_number_of_output_counters = 10;
    int m_m_counter_max = 0;
    int m_m_counter_high_low_max = 0;
    int m_m_counter_initial_max = 0;
    int m_m_counter_preferred_min = -1;
    int m_m_counter_preferred_max = -1;
    int m_n_counter_max = 0;
    int m_vco_post_scale_counter_max = 0;
    int m_output_counter_max = 0;
    int m_output_counter_high_low_max = 0;
    int m_output_counter_initial_max = 0;
    bool m_output_counter_cascade = false;
    int m_m_counter_phase_tap_max = 0;
    int m_m_counter_phase_tap_resolution = 0;
    int m_output_counter_phase_tap_max = 0;
    int m_output_counter_phase_tap_resolution = 0;
    int m_time_delay_max = 0;
    int m_time_delay_resolution = 0;
    int m_ss_counter_max = 0;
    int m_valid_lock_multiplier = 0;
    int m_invalid_lock_multiplier = 0;
    int m_gate_lock_counter_min = 0;
    int m_gate_lock_counter_max = 0;
    int m_switch_over_counter_min = 0;
    int m_switch_over_counter_max = 0;
    int m_charge_pump_current_default = 0;
    std::vector<int> m_currents;
    std::vector<int> m_current_bits;
    int m_loop_filter_resistor_default = 0;
    std::vector<int> m_resistors;
    std::vector<int> m_resistor_bits;
    int m_loop_filter_capacitor_default = 0;
    std::vector<int> m_capacitors;
    std::vector<int> m_capacitor_bits;
    int m_loop_filter_fixed_capacitor = 0;
    double m_ss_bandwidth = 0.0;
    double m_ss_down_spread_min = 0.0;
    double m_ss_down_spread_max = 0.0;
    int m_ss_charge_pump_current = 0;
    int m_feedback_duty_cycle_min = 0;
    int m_feedback_duty_cycle_max = 0;
    int m_bandwidth_pfd_min_frequency_multiplier = 0;
    double m_bandwidth_low = 0.0;
    double m_bandwidth_medium = 0.0;
    double m_bandwidth_high = 0.0;
    double m_bandwidth_relative_tolerance = 0.0;
    bool m_use_bandwidth_settings_table = false;
    std::vector<std::vector<MODEL_ROW>> m_table;
    double m_phase_absolute_tolerance = 0.0;
    std::vector<MODEL_RECONFIG> m_reconfigs;
    bool m_is_pfd_bandwidth_rule_an_error = false;
    double m_spe_ratio_constant_x = DBL_MAX;
    double m_spe_push_out_constant_a = DBL_MAX;
    double m_spe_push_out_constant_b = DBL_MAX;
    double m_spe_push_out_constant_c = DBL_MAX;
    double m_spe_pull_in_constant_d = DBL_MAX;
    double m_spe_pull_in_constant_e = DBL_MAX;
    double m_spe_pull_in_constant_f = DBL_MAX;
    double m_spe_lock_fail_ratio_constant = DBL_MAX;
};

struct MODEL_TIMING
{
    int m_vco_min[3] = {MODEL_UNSET, MODEL_UNSET, MODEL_UNSET};
    int m_vco_max[3] = {MODEL_UNSET, MODEL_UNSET, MODEL_UNSET};
    int m_vco_center[3] = {MODEL_UNSET, MODEL_UNSET, MODEL_UNSET};
    int m_vco_gain[3] = {MODEL_UNSET, MODEL_UNSET, MODEL_UNSET};
    int m_ss_vco_max[3] = {MODEL_UNSET, MODEL_UNSET, MODEL_UNSET};
    int m_input_min = MODEL_UNSET;
    int m_input_max = MODEL_UNSET;
    int m_output_min = MODEL_UNSET;
    int m_output_max = MODEL_UNSET;
    int m_external_output_min = MODEL_UNSET;
    int m_external_output_max = MODEL_UNSET;
    int m_pfd_min = MODEL_UNSET;
    int m_pfd_max = MODEL_UNSET;
    int m_ss_spread_min = MODEL_UNSET;
    int m_ss_spread_max = MODEL_UNSET;
};

struct MODEL_PART
{
    std::string m_name;
    std::string m_speed_grade;
    bool m_not_listed = false;
    int m_type = MODEL_TYPES;
    MODEL_TIMING m_timing;
};

struct MODEL_FAMILY
{
    std::string m_name;
    std::optional<std::string> m_path;
    std::optional<std::string> m_file_name;
    std::deque<MODEL_PART> m_parts;  // a deque keeps its entries where they are
    std::deque<std::string> m_speed_grades;
    std::vector<std::string> m_listed_speed_grades;
    MODEL_BASIC m_basics[MODEL_TYPES];
};

struct MODEL_DATABASE
{
    MODEL_FILES m_files;
    std::deque<MODEL_FAMILY> m_families;
};

// One device that a query selects; an empty part or speed grade selects all of them.
struct MODEL_ENTRY
{
    std::string m_family;
    std::optional<std::string> m_part;
    std::optional<std::string> m_speed_grade;
};

struct MODEL_QUERY
{
    MODEL_ENTRY m_own;
    int m_type = MODEL_TYPES;
    std::vector<MODEL_ENTRY> m_migration;
};

// What a query selected.
struct MODEL_INFO
{
    const MODEL_FAMILY* m_family = nullptr;  // whose description of the type holds; null: none
    MODEL_TIMING m_timing;
};

// The file of a full name; null when there is none. "." and empty steps of a path go nowhere.
const std::string* model_find_file(const MODEL_DATABASE& database, const std::string& name);

bool model_same_name(const std::string& a, const std::string& b);

MODEL_FAMILY* model_find_or_create_family(MODEL_DATABASE* database, const std::string& name);

// Each as the operation of the manager with that name.
bool model_read(MODEL_DATABASE* database, const std::string& directory);
MODEL_FAMILY* model_read_family(MODEL_DATABASE* database, const std::string& name,
                                MODEL_REPORTS& reports);
bool model_read_family_file(MODEL_DATABASE* database, const std::string& path,
                            const std::string& file_name, MODEL_REPORTS& reports);
bool model_init_info(MODEL_DATABASE* database, const MODEL_QUERY& query, MODEL_INFO* info,
                     MODEL_REPORTS& reports);

// Reads a table's text into the description of a PLL type; a null text stands for a file that
// cannot be opened.
bool model_read_table(MODEL_BASIC* basic, const std::string* text, MODEL_REPORTS& reports);

// What a PLL gets besides its limits: what its synthesis reads of the description, and components.
struct MODEL_COMPONENTS
{
    MODEL_DEVICE m_device;
    MODEL_PARTS m_parts;
    std::vector<int> m_capacitors = {5, 10, 15, 20};
};

// Gives limits and components to a PLL, which then refers to their m_device.
bool model_init_pll(MODEL_DATABASE* database, const MODEL_QUERY& query, MODEL_INFO* info,
                    MODEL_PLL* pll, MODEL_COMPONENTS* components, MODEL_REPORTS& reports);
