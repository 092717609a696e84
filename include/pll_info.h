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

// One row of the bandwidth table: loop-filter components, and what a characterisation of the device
// found that they achieve. The three corners are those of process, voltage and temperature. A
// result is -1.0 where the format of the table's file does not carry it.
//
// Plain `new` and `new[]` take tracked memory, so a host can fill a table by hand. They give null
// when memory is exhausted.
struct PLL_API PLL_BANDWIDTH_SETTING
{
    // The division of the loop that the row is for: M x post-scale x count of a fed-back output.
    // Equals the index of the row's group; another value is a finding of the table's check.
    int m_m = 0;

    // The components. Each must be one of the device's list, or the check finds it.
    int m_charge_pump_current = 0;    // uA
    int m_loop_filter_resistor = 0;   // ohm
    int m_loop_filter_capacitor = 0;  // pF; -1 leaves the PLL's own capacitor in place

    // The loop at the typical corner. A bandwidth wish is compared with this bandwidth.
    double m_typical_bandwidth = 0.0;       // Hz
    double m_typical_phase_margin = 0.0;    // degrees
    double m_typical_jitter_peaking = 0.0;  // dB

    // At the fast corner. The PFD rule is applied to this bandwidth.
    double m_fast_bandwidth = 0.0;       // Hz
    double m_fast_phase_margin = 0.0;    // degrees
    double m_fast_jitter_peaking = 0.0;  // dB

    // At the slow corner.
    double m_slow_bandwidth = 0.0;       // Hz
    double m_slow_phase_margin = 0.0;    // degrees
    double m_slow_jitter_peaking = 0.0;  // dB

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

    // ---- Counters. M divides the feedback, N the input, the output counters the VCO. All counts
    // are 0 by default, which leaves a device that synthesises nothing.

    // Output counters of this PLL, those that a cascade takes included. Default 10.
    int m_number_of_output_counters;

    // Largest M that a search tries.
    int m_m_counter_max;

    // Largest high or low half of M. The keyword sets m_m_counter_max to twice its value, and that
    // of the other resets this to 0. A search reads m_m_counter_max alone.
    int m_m_counter_high_low_max;

    // Largest start count of M. For hosts: a search lets M start at up to m_m_counter_max.
    int m_m_counter_initial_max;

    // An M outside these costs 5, and 5 more for the M of a spread. -1, the default: no preference.
    int m_m_counter_preferred_min;
    int m_m_counter_preferred_max;

    // Largest N that a search tries.
    int m_n_counter_max;

    // Largest division behind the oscillator, 0 to PLL_VCO_POST_SCALE_MAX. 0 leaves nothing to try.
    int m_vco_post_scale_counter_max;

    // Largest division of an output counter. For hosts: a search reads the halves below.
    int m_output_counter_max;

    // Largest high or low half of an output counter. This is the limit that a search keeps. 0
    // leaves counters that cannot divide.
    int m_output_counter_high_low_max;

    // Largest start count of an output counter. For hosts: a search lets a counter start at up to
    // its largest half.
    int m_output_counter_initial_max;

    // Two output counters may divide in a row, for divisions above twice the largest half. Default
    // false.
    bool m_output_counter_cascade;

    // Largest VCO tap, 0 to 7, and step between taps in VCO degrees, of M and of the outputs.
    // Default 0. For hosts: a search uses all taps, 45 degrees apart.
    int m_m_counter_phase_tap_max;
    int m_m_counter_phase_tap_resolution;
    int m_output_counter_phase_tap_max;
    int m_output_counter_phase_tap_resolution;

    // Longest delay of a delay chain and its step, in ps. Default 0. For hosts: a search places
    // delays of up to MAX_DELAY_CHAIN_VALUE to the ps.
    int m_time_delay_max;
    int m_time_delay_resolution;

    // Most input periods of a spread-spectrum period. Longer wishes are cut to it. Default 0.
    int m_ss_counter_max;

    // ---- Lock detection and switch-over, in input periods. Default 0. For hosts.

    int m_valid_lock_multiplier;    // multiplies the time after which a lock counts as valid
    int m_invalid_lock_multiplier;  // multiplies the time after which it counts as lost
    int m_gate_lock_counter_min;    // shortest gating of the lock signal
    int m_gate_lock_counter_max;    // longest one
    int m_switch_over_counter_min;  // shortest delay of a switch to the second input clock
    int m_switch_over_counter_max;  // longest one

    // ---- Loop filter. Lists are owned, null and 0 by default, and ascending but for weights of
    // bits. The defaults stand until a bandwidth is chosen.

    int m_charge_pump_current_default;  // uA, default 0
    int m_number_of_charge_pump_currents;
    int* m_charge_pump_currents;  // uA; a device without any keeps the PLL's smallest current
    int m_number_of_charge_pump_current_bits;
    int* m_charge_pump_current_bits;  // uA, the weight of each control bit in file order

    int m_loop_filter_resistor_default;  // ohm, default 0
    int m_number_of_loop_filter_resistors;
    int* m_loop_filter_resistors;  // ohm
    int m_number_of_loop_filter_resistor_bits;
    int* m_loop_filter_resistor_bits;  // ohm, the weight of each control bit in file order

    int m_loop_filter_capacitor_default;  // pF, default 0; without a table it stays
    int m_number_of_loop_filter_capacitors;
    int* m_loop_filter_capacitors;  // pF, the small capacitor across the filter
    int m_number_of_loop_filter_capacitor_bits;
    int* m_loop_filter_capacitor_bits;  // pF, the weight of each control bit in file order

    int m_loop_filter_fixed_capacitor;  // pF, in series with the resistor; default 0

    // ---- Spread spectrum and feedback.

    double m_ss_bandwidth;          // Hz, of the loop with spread and without a table; default 0.0
    double m_ss_down_spread_min;    // fraction, default 0.0; for hosts
    double m_ss_down_spread_max;    // fraction, default 0.0; for hosts
    int m_ss_charge_pump_current;   // uA, forced with spread when 1 or more; default 0
    int m_feedback_duty_cycle_min;  // percent, of an external feedback; default 0; for hosts
    int m_feedback_duty_cycle_max;  // percent, likewise

    // ---- Bandwidth.

    // The PFD must run at this multiple of the loop bandwidth or faster: a sampled loop is stable
    // only well below its sampling rate (F. M. Gardner, "Charge-Pump Phase-Lock Loops", IEEE Trans.
    // Communications, 1980). 0, the default, asks for nothing. Used with a table.
    int m_bandwidth_pfd_min_frequency_multiplier;

    // What the presets mean, Hz. Default 0.0.
    double m_bandwidth_low;
    double m_bandwidth_medium;
    double m_bandwidth_high;

    double m_bandwidth_relative_tolerance;  // fraction, default 0.0; for hosts

    // True once a table was read. A PLL then takes its loop filter from the table alone. Default
    // false.
    bool m_use_bandwidth_settings_table;

    // Owned, indexed by the division of the loop, null and 0 by default.
    PLL_BANDWIDTH_SETTING_GROUP* m_bandwidth_settings_table;
    int m_bandwidth_settings_table_size;  // groups

    double m_phase_absolute_tolerance;  // degrees, default 0.0; for hosts

    // Scan chains, owned, in creation order, none by default. For hosts.
    int m_number_of_reconfig_infos;
    PLL_RECONFIG_INFO** m_reconfig_infos;

    // True: a setting of the table that breaks the PFD rule, and a division without a row, fail a
    // synthesis (errors 10 and 9). False, the default: they only cost.
    bool m_is_pfd_bandwidth_rule_an_error;

    // ---- Static phase error. The largest double, the default, means that none was given.

    // Limit of division over charge-pump current, per uA. A setting above it costs 32768 and the
    // quotient, so any other is preferred.
    double m_spe_ratio_constant_x;

    double m_spe_push_out_constant_a;  // of the push-out range; for hosts, as all below
    double m_spe_push_out_constant_b;
    double m_spe_push_out_constant_c;
    double m_spe_pull_in_constant_d;  // of the pull-in range
    double m_spe_pull_in_constant_e;
    double m_spe_pull_in_constant_f;
    double m_spe_lock_fail_ratio_constant;  // limit beyond which the loop fails to lock
};

// Timing limits of a part and speed grade. A fast clock has a short period, so a "min" limits the
// frequency from above. Arrays are indexed by VCO post-scale; their entry 0 is not used by the
// database. Periods of the VCO are those behind the post-scale.
//
// PLL_UNSET_MINIMUM, the default of every member, means that nobody gave the limit. That is no
// freedom: in a synthesis it takes part in comparisons as the number that it is, and a device
// without VCO and PFD limits synthesises nothing. Only m_ss_vco_max is tested against the mark.
struct PLL_API PLL_TIMING_INFO
{
    // Shortest and longest VCO period, ps. A search widens both by PLL_PERIOD_TOLERANCE.
    int m_vco_min[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};
    int m_vco_max[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};

    // The VCO period that a search prefers among equals, ps.
    int m_vco_center[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};

    // Gain of the VCO, MHz/V. It turns a bandwidth into current and resistor.
    int m_vco_gain[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};

    // Longest VCO period with spread spectrum, ps, in the place of m_vco_max where given.
    int m_ss_vco_max[3] = {PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM};

    // Period of an input clock, ps. A faster one fails a synthesis (error 8); the longest is for
    // hosts.
    int m_input_min = PLL_UNSET_MINIMUM;
    int m_input_max = PLL_UNSET_MINIMUM;

    // Period of an output inside the device, and of one on a pin, ps. For hosts.
    int m_output_min = PLL_UNSET_MINIMUM;
    int m_output_max = PLL_UNSET_MINIMUM;
    int m_external_output_min = PLL_UNSET_MINIMUM;
    int m_external_output_max = PLL_UNSET_MINIMUM;

    // Period at the PFD, input period times N, ps. A search widens both by PLL_PERIOD_TOLERANCE.
    int m_pfd_min = PLL_UNSET_MINIMUM;
    int m_pfd_max = PLL_UNSET_MINIMUM;

    // Spread of the part, thousandths. For hosts.
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

// What the check of a bandwidth table can find.
enum class PLL_TABLE_FINDING_KIND
{
    NO_TABLE,
    TABLE_NOT_USED,       // there is one, and its switch is off
    SIZE_TOO_SMALL,       // no group at all
    SIZE_DIFFERS,         // from the largest division that post-scale and M can make
    ROW_OF_OTHER_M,       // the row's M is not that of its group
    CURRENT_NOT_LISTED,   // the component is none of the device's list
    RESISTOR_NOT_LISTED,  // likewise
    CAPACITOR_NOT_LISTED  // likewise; -1 is listed everywhere
};

struct PLL_TABLE_FINDING
{
    PLL_TABLE_FINDING_KIND m_kind = PLL_TABLE_FINDING_KIND::NO_TABLE;

    // The group; with SIZE_DIFFERS the largest division of the device. 0 where neither applies.
    int m_m = 0;

    // What stands in the row: its M, uA, ohm or pF. With SIZE_DIFFERS the size of the table.
    int m_value = 0;
};

// Hears of one finding, which is valid during the call. `context` is the caller's.
typedef void (*PLL_TABLE_FINDING_HANDLER)(const PLL_TABLE_FINDING& finding, void* context);

// Writes a finding as PLL_INFO::is_bandwidth_settings_table_valid does, without the line break:
// "Error: M=7 has setting with illegal charge_pump_current: 3". Numbers follow the stream's locale.
PLL_API void pll_write_table_finding(std::ostream& stream, const PLL_TABLE_FINDING& finding);

// A PLL's view of its device. Copies share the basic information, which the database owns and which
// must outlive them.
class PLL_API PLL_INFO
{
public:
    PLL_INFO();

    PLL_BASIC_INFO* m_basic_info;  // not owned; null: nothing is known
    PLL_TIMING_INFO m_timing_info;

    bool has_info() const;

    // Checks the bandwidth table against the device's lists and sizes, and writes every finding as
    // a line to the standard output: the one place where the library writes there. Returns true
    // when there was none. Without a device that is an internal error, and a finding.
    bool is_bandwidth_settings_table_valid() const;

    // The same check for hosts that have a place of their own for the findings. Hands each to
    // `handler` in the order of the lines; a null handler is legal. Returns true when there was
    // none. Writes nothing, reports no internal error.
    bool check_bandwidth_settings_table(PLL_TABLE_FINDING_HANDLER handler, void* context) const;

    // Lists the table, one line a row. Uses the stream's own format for numbers.
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
