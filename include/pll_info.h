// What a device database knows of one kind of PLL: counter limits and loop-filter components, the
// timing limits of a part and speed grade, scan chains for reconfiguration, and the table of
// bandwidth settings. Periods are in ps, bandwidths in Hz, resistances in ohm, capacitances in pF,
// charge-pump currents in uA, phase margins in degrees, jitter peaking in dB.
#pragma once

#include "mem_alloc_sys.h"
#include "pll_export.h"

#include <cstddef>
#include <iosfwd>
#include <limits>

enum PLL_TYPE_ENUM
{
    ENHANCED_PLL,
    FAST_PLL,
    FAST_PLL_HIGH_SPEED,
    VESTRA_PLL,
    PLL_TYPE_MAX  // no type
};

enum PLL_RECONFIG_TYPE_ENUM
{
    PLL_RECONFIG_NONE,
    PLL_RECONFIG_SHORT,
    PLL_RECONFIG_LONG,
    PLL_RECONFIG_ENHANCED,
    PLL_RECONFIG_TYPE_MAX  // no such type
};

// Counters that can stand in a reconfiguration scan chain.
enum CDB_PLL_COUNTER_TYPE_ENUM
{
    CDB_PLL_COUNTER_L0,
    CDB_PLL_COUNTER_L1,
    CDB_PLL_COUNTER_G0,
    CDB_PLL_COUNTER_G1,
    CDB_PLL_COUNTER_G2,
    CDB_PLL_COUNTER_G3,
    CDB_PLL_COUNTER_E0,
    CDB_PLL_COUNTER_E1,
    CDB_PLL_COUNTER_E2,
    CDB_PLL_COUNTER_E3,
    CDB_PLL_COUNTER_C0,
    CDB_PLL_COUNTER_C1,
    CDB_PLL_COUNTER_C2,
    CDB_PLL_COUNTER_C3,
    CDB_PLL_COUNTER_C4,
    CDB_PLL_COUNTER_C5,
    CDB_PLL_COUNTER_M,
    CDB_PLL_COUNTER_N,
    CDB_PLL_COUNTER_L0TAP,
    CDB_PLL_COUNTER_L1TAP,
    CDB_PLL_COUNTER_TYPE_MAX  // no such counter
};

inline constexpr int PLL_MAX_TAPS = 10;                // output counters that a record can hold
inline constexpr int PLL_VCO_POST_SCALE_MAX = 2;       // VCO arrays have entries 0 to 2
inline constexpr int PLL_VCO_TAPS_NUMBER = 8;          // VCO phase taps of 45 VCO degrees
inline constexpr int MAX_DELAY_CHAIN_VALUE = 3000;     // ps
inline constexpr int PLL_ILLEGAL_TAP = -1;             // an index that names no tap
inline constexpr int PLL_UNSET_MINIMUM = -2147483647;  // 0x80000001: a limit that nobody gave
inline constexpr int PLL_UNSET_MAXIMUM = 2147483647;   // 0x7FFFFFFF: likewise, while limits combine

// One row of the table: loop-filter components and what they achieve. Results are -1.0 where the
// table's file gives none. Plain `new` and `new[]` take tracked memory and give null when it is
// exhausted.
struct PLL_API PLL_BANDWIDTH_SETTING
{
    int m_m = 0;                       // effective feedback multiplication of the row
    int m_charge_pump_current = 0;     // uA
    int m_loop_filter_resistor = 0;    // ohm
    int m_loop_filter_capacitor = 0;   // pF, -1 when the row is for any
    double m_typical_bandwidth = 0.0;  // Hz
    double m_typical_phase_margin = 0.0;
    double m_typical_jitter_peaking = 0.0;
    double m_fast_bandwidth = 0.0;
    double m_fast_phase_margin = 0.0;
    double m_fast_jitter_peaking = 0.0;
    double m_slow_bandwidth = 0.0;
    double m_slow_phase_margin = 0.0;
    double m_slow_jitter_peaking = 0.0;

    static void* operator new(std::size_t size) noexcept;
    static void* operator new[](std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;
    static void operator delete[](void* pointer) noexcept;
};

// The rows of one effective multiplication, in file order. The rows are released with the table
// (`pll_delete_bandwidth_settings_table`), not with the group.
class PLL_API PLL_BANDWIDTH_SETTING_GROUP
{
public:
    PLL_BANDWIDTH_SETTING_GROUP();

    MEM_VECTOR<PLL_BANDWIDTH_SETTING*> m_settings;

    static void* operator new(std::size_t size) noexcept;
    static void* operator new[](std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;
    static void operator delete[](void* pointer) noexcept;
};

// The table file of one PLL type; the name "unused", in any case, means that there is no table.
struct PLL_TYPE_BANDWIDTH_FILE_NAME
{
    PLL_TYPE_ENUM m_type;
    MEM_STRING m_file_name;
};
typedef MEM_VECTOR<PLL_TYPE_BANDWIDTH_FILE_NAME*> PLL_TYPE_BANDWIDTH_FILE_LIST;

// The scan chain of one reconfiguration type.
class PLL_API PLL_RECONFIG_INFO
{
public:
    explicit PLL_RECONFIG_INFO(PLL_RECONFIG_TYPE_ENUM reconfig_type);
    virtual ~PLL_RECONFIG_INFO();
    PLL_RECONFIG_INFO(const PLL_RECONFIG_INFO&) = delete;
    PLL_RECONFIG_INFO& operator=(const PLL_RECONFIG_INFO&) = delete;

    // Replaces the orders by a copy of `count` entries; none when the count is below 1. The caller
    // keeps its array. Out of memory: no orders.
    void set_scan_chain_counter_orders(int count, CDB_PLL_COUNTER_TYPE_ENUM* orders);

    PLL_RECONFIG_TYPE_ENUM m_reconfig_type;
    int m_number_of_scan_chain_counter_orders;
    CDB_PLL_COUNTER_TYPE_ENUM* m_scan_chain_counter_orders;  // owned

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;
};

// Limits and components of one PLL type of a device family. Owns its arrays, its reconfiguration
// records and its bandwidth table.
class PLL_API PLL_BASIC_INFO
{
public:
    PLL_BASIC_INFO();
    virtual ~PLL_BASIC_INFO();
    PLL_BASIC_INFO(const PLL_BASIC_INFO&) = delete;
    PLL_BASIC_INFO& operator=(const PLL_BASIC_INFO&) = delete;

    // True when the output counters are limited by their high and low halves.
    bool is_output_counter_high_low() const;

    // Stores any value; one above PLL_VCO_POST_SCALE_MAX is an internal error.
    void set_vco_post_scale_counter_max(int value);

    // Each replaces its list by a copy of `count` values; empty and null when the count is below 1
    // (or memory is exhausted). The caller keeps its array. Plain lists are expected ascending.
    void set_charge_pump_currents(int count, const int* values);
    void set_charge_pump_current_bits(int count, const int* values);
    void set_loop_filter_resistors(int count, const int* values);
    void set_loop_filter_resistor_bits(int count, const int* values);
    void set_loop_filter_capacitors(int count, const int* values);
    void set_loop_filter_capacitor_bits(int count, const int* values);

    // Releases the present table and takes ownership of `table`, an array of `size` groups made
    // with new[] (null for none). m_use_bandwidth_settings_table is the caller's to set.
    void set_bandwidth_settings_table(int size, PLL_BANDWIDTH_SETTING_GROUP* table);

    // The record of a reconfiguration type, owned by this one; null when there is none.
    PLL_RECONFIG_INFO* find_reconfig_info(PLL_RECONFIG_TYPE_ENUM type) const;

    // Likewise, appended when there was none. Null when memory is exhausted.
    PLL_RECONFIG_INFO* create_reconfig_info(PLL_RECONFIG_TYPE_ENUM type);

    // 0 without a record of that type.
    int get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_TYPE_ENUM type) const;

    // CDB_PLL_COUNTER_TYPE_MAX without a record of that type or without orders; an index outside
    // the orders reads the nearest one.
    CDB_PLL_COUNTER_TYPE_ENUM get_reconfig_scan_chain_counter_order(PLL_RECONFIG_TYPE_ENUM type,
                                                                    int index) const;

    int m_number_of_output_counters;
    int m_m_counter_max;
    int m_m_counter_high_low_max;
    int m_m_counter_initial_max;
    int m_m_counter_preferred_min;  // -1: none
    int m_m_counter_preferred_max;  // -1: none
    int m_n_counter_max;
    int m_vco_post_scale_counter_max;  // 0 to PLL_VCO_POST_SCALE_MAX
    int m_output_counter_max;
    int m_output_counter_high_low_max;
    int m_output_counter_initial_max;
    bool m_output_counter_cascade;
    int m_m_counter_phase_tap_max;
    int m_m_counter_phase_tap_resolution;
    int m_output_counter_phase_tap_max;
    int m_output_counter_phase_tap_resolution;
    int m_time_delay_max;
    int m_time_delay_resolution;
    int m_ss_counter_max;
    int m_valid_lock_multiplier;
    int m_invalid_lock_multiplier;
    int m_gate_lock_counter_min;
    int m_gate_lock_counter_max;
    int m_switch_over_counter_min;
    int m_switch_over_counter_max;
    int m_charge_pump_current_default;  // uA
    int m_number_of_charge_pump_currents;
    int* m_charge_pump_currents;  // owned, ascending, uA
    int m_number_of_charge_pump_current_bits;
    int* m_charge_pump_current_bits;     // owned, weight of each bit
    int m_loop_filter_resistor_default;  // ohm
    int m_number_of_loop_filter_resistors;
    int* m_loop_filter_resistors;  // owned, ascending, ohm
    int m_number_of_loop_filter_resistor_bits;
    int* m_loop_filter_resistor_bits;     // owned, weight of each bit
    int m_loop_filter_capacitor_default;  // pF
    int m_number_of_loop_filter_capacitors;
    int* m_loop_filter_capacitors;  // owned, ascending, pF
    int m_number_of_loop_filter_capacitor_bits;
    int* m_loop_filter_capacitor_bits;             // owned, weight of each bit
    int m_loop_filter_fixed_capacitor;             // pF
    double m_ss_bandwidth;                         // Hz
    double m_ss_down_spread_min;                   // fraction
    double m_ss_down_spread_max;                   // fraction
    int m_ss_charge_pump_current;                  // uA
    int m_feedback_duty_cycle_min;                 // percent
    int m_feedback_duty_cycle_max;                 // percent
    int m_bandwidth_pfd_min_frequency_multiplier;  // PFD frequency over loop bandwidth, at least
    double m_bandwidth_low;                        // Hz
    double m_bandwidth_medium;                     // Hz
    double m_bandwidth_high;                       // Hz
    double m_bandwidth_relative_tolerance;
    bool m_use_bandwidth_settings_table;
    PLL_BANDWIDTH_SETTING_GROUP* m_bandwidth_settings_table;  // owned, indexed by effective M
    int m_bandwidth_settings_table_size;                      // groups
    double m_phase_absolute_tolerance;
    int m_number_of_reconfig_infos;
    PLL_RECONFIG_INFO** m_reconfig_infos;  // owned, in creation order
    bool m_is_pfd_bandwidth_rule_an_error;

    // Static phase error constants; the largest double means that none was given.
    double m_spe_ratio_constant_x;  // limit of effective M over charge-pump current
    double m_spe_push_out_constant_a;
    double m_spe_push_out_constant_b;
    double m_spe_push_out_constant_c;
    double m_spe_pull_in_constant_d;
    double m_spe_pull_in_constant_e;
    double m_spe_pull_in_constant_f;
    double m_spe_lock_fail_ratio_constant;
};

// Timing limits of a part and speed grade. Arrays are indexed by VCO post-scale; entry 0 is not
// used by the database. A value that nobody gave is PLL_UNSET_MINIMUM.
struct PLL_API PLL_TIMING_INFO
{
    int m_vco_min[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};     // ps
    int m_vco_max[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};     // ps
    int m_vco_center[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};  // ps
    int m_vco_gain[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};
    int m_ss_vco_max[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};  // ps
    int m_input_min = PLL_UNSET_MINIMUM;                                              // ps
    int m_input_max = PLL_UNSET_MINIMUM;                                              // ps
    int m_output_min = PLL_UNSET_MINIMUM;                                             // ps
    int m_output_max = PLL_UNSET_MINIMUM;                                             // ps
    int m_external_output_min = PLL_UNSET_MINIMUM;                                    // ps
    int m_external_output_max = PLL_UNSET_MINIMUM;                                    // ps
    int m_pfd_min = PLL_UNSET_MINIMUM;                                                // ps
    int m_pfd_max = PLL_UNSET_MINIMUM;                                                // ps
    int m_ss_spread_min = PLL_UNSET_MINIMUM;
    int m_ss_spread_max = PLL_UNSET_MINIMUM;

    // The entry of a post-scale; a negative one reads entry 1. One above PLL_VCO_POST_SCALE_MAX is
    // an internal error and reads the last entry.
    int get_vco_min_period(int vco_post_scale) const;
    int get_vco_max_period(int vco_post_scale) const;
    int get_vco_center_period(int vco_post_scale) const;
    int get_vco_gain(int vco_post_scale) const;
    int get_ss_vco_max_period(int vco_post_scale) const;

    // Sets the entry of a post-scale. A negative one sets entries 1 and 2, periods as value x 1 and
    // value x 2, gains alike. One above PLL_VCO_POST_SCALE_MAX is an internal error: nothing is
    // set.
    void set_vco_min_period(int value, int vco_post_scale);
    void set_vco_max_period(int value, int vco_post_scale);
    void set_vco_center_period(int value, int vco_post_scale);
    void set_vco_gain(int value, int vco_post_scale);
    void set_ss_vco_max_period(int value, int vco_post_scale);
};

// A PLL's view of its device. Copies share the basic information, which the database owns and which
// must outlive them.
class PLL_API PLL_INFO
{
public:
    PLL_INFO();

    PLL_BASIC_INFO* m_basic_info;  // not owned; null: nothing is known
    PLL_TIMING_INFO m_timing_info;

    bool has_info() const;

    // Checks the bandwidth table against the device's lists and sizes; every finding is a line on
    // the standard output. True when there was none.
    bool is_bandwidth_settings_table_valid() const;

    // Lists the table, one line a row.
    void dump_bandwidth_settings_table(std::ostream& stream) const;
};

// A new array with a copy of `count` values, owned by the caller and released with
// MEM_MANAGER::delete_wrapper(array, "pll_info"); null when the count is below 1, the values are
// null or memory is exhausted.
PLL_API int* pll_copy_value_array(int count, const int* values);

// True when `value` is one of `count` values.
PLL_API bool pll_array_value_exists(int value, const int* values, int count);

// Releases the rows of `size` groups and the groups, and leaves null and 0 behind.
PLL_API void pll_delete_bandwidth_settings_table(PLL_BANDWIDTH_SETTING_GROUP*& table, int& size);
