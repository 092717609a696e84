// The keywords of family files: operand, unit, range, default, scope and effect of each. What
// docs/database-format.md says of them in its tables stands here word for word.
#pragma once

#include <cstddef>
#include <limits>
#include <string_view>

// What must be selected before a keyword has an effect.
enum class KEYWORD_SCOPE
{
    ANYWHERE,
    FAMILY,
    GRADE,  // a family, a PLL type and a speed grade
    TYPE,   // a family and a PLL type
    RECONFIG,
    PART
};

enum class OPERAND
{
    NAME,
    NUMBER,
    REAL,
    FLAG,
    LIST,
    BIT_LIST,
    POST_SCALE_NUMBER,
    WORD,
    COUNTERS
};

struct VALUE_RANGE
{
    double m_min;
    double m_max;
};

struct KEYWORD
{
    const char* m_name;
    KEYWORD_SCOPE m_scope;
    OPERAND m_operand;
    const char* m_unit;       // empty: none
    const char* m_range;      // empty: none
    VALUE_RANGE m_legal;      // of each value
    VALUE_RANGE m_plausible;  // beyond it, another unit was meant
    const char* m_default;    // empty: none
    const char* m_effect;
};

namespace keyword_table {

inline constexpr double LEAST = std::numeric_limits<double>::lowest();
inline constexpr double LEAST_REAL = std::numeric_limits<double>::denorm_min();
inline constexpr double MOST = std::numeric_limits<double>::max();

// clang-format off
inline constexpr KEYWORD KEYWORDS[] = {
    {"include", KEYWORD_SCOPE::ANYWHERE, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Reads the file of that name now, and then goes on here. The name is relative to the family's folder, whichever file includes it. A file that cannot be opened is skipped in silence. Eight files may be open at a time, the family file among them, and a thousand may be opened in all; one more is an error."},
    {"family", KEYWORD_SCOPE::ANYWHERE, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Selects a family. Usually the first statement; may name a new one."},
    {"pll", KEYWORD_SCOPE::ANYWHERE, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Selects a PLL type: `ENHANCED_PLL`, `FAST_PLL`, `FAST_PLL_HIGH_SPEED` or `VESTRA_PLL`."},
    {"speed_grade", KEYWORD_SCOPE::FAMILY, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Selects a speed grade, and adds it to those of the family."},
    {"part", KEYWORD_SCOPE::GRADE, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Selects the part of that name in the current PLL type; a new one gets the current speed grade."},
    {"number_of_output_counters", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counters", "1 to 10", {1.0, 10.0}, {LEAST, MOST}, "10",
     "Output counters of the PLL, cascades included."},
    {"m_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {LEAST, MOST}, "0",
     "Largest M. Resets `m_counter_high_low_max` to 0."},
    {"m_counter_high_low_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {LEAST, MOST}, "0",
     "Largest half of M; makes twice that the largest M."},
    {"m_counter_initial_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "Largest start of M; for hosts."},
    {"m_counter_preferred_min", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "none",
     "A smaller M costs, but is legal."},
    {"m_counter_preferred_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "none",
     "A larger M costs, but is legal."},
    {"m_counter_phase_tap_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "taps", "0 to 7", {0.0, 7.0}, {LEAST, MOST}, "0",
     "Largest VCO tap of M; for hosts."},
    {"m_counter_phase_tap_resolution", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "VCO degrees", "45", {45.0, 45.0}, {LEAST, MOST}, "0",
     "Step of M's VCO taps; for hosts."},
    {"n_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "Largest N."},
    {"vco_post_scale_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "", "1 or 2", {1.0, 2.0}, {LEAST, MOST}, "0",
     "Largest division behind the oscillator. More than 2 is an internal error."},
    {"output_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "Largest division of an output counter; for hosts. Resets `output_counter_high_low_max` to 0, and with that no output counter can divide: use the other keyword."},
    {"output_counter_high_low_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "Largest half of an output counter, the limit that the synthesis keeps; makes twice that the largest division."},
    {"output_counter_initial_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "counts", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "Largest start of an output counter; for hosts."},
    {"output_counter_phase_tap_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "taps", "0 to 7", {0.0, 7.0}, {LEAST, MOST}, "0",
     "Largest VCO tap of an output counter; for hosts."},
    {"output_counter_phase_tap_resolution", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "VCO degrees", "45", {45.0, 45.0}, {LEAST, MOST}, "0",
     "Step of their VCO taps; for hosts."},
    {"output_counter_cascade", KEYWORD_SCOPE::TYPE, OPERAND::FLAG, "", "", {LEAST, MOST}, {LEAST, MOST}, "false",
     "Two output counters may divide in a row."},
    {"charge_pump_current", KEYWORD_SCOPE::TYPE, OPERAND::LIST, "uA", "1 and up", {1.0, MOST}, {0.0, 20000.0}, "none",
     "Currents to choose from. At least one is needed."},
    {"charge_pump_current_bit", KEYWORD_SCOPE::TYPE, OPERAND::BIT_LIST, "uA", "0 and up", {0.0, MOST}, {0.0, 20000.0}, "none",
     "The current of each control bit; also sets the currents."},
    {"charge_pump_current_default", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "uA", "1 and up", {1.0, MOST}, {0.0, 20000.0}, "0",
     "The current before a bandwidth is chosen."},
    {"loop_filter_resistor", KEYWORD_SCOPE::TYPE, OPERAND::LIST, "ohm", "1 and up", {1.0, MOST}, {10.0, 1e7}, "none",
     "Resistors to choose from."},
    {"loop_filter_resistor_bit", KEYWORD_SCOPE::TYPE, OPERAND::BIT_LIST, "ohm", "0 and up", {0.0, MOST}, {LEAST, MOST}, "none",
     "The resistor of each control bit; also sets the resistors."},
    {"loop_filter_resistor_default", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "ohm", "1 and up", {1.0, MOST}, {10.0, 1e7}, "0",
     "The resistor before a bandwidth is chosen."},
    {"loop_filter_capacitor", KEYWORD_SCOPE::TYPE, OPERAND::LIST, "pF", "1 and up", {1.0, MOST}, {0.0, 1e6}, "none",
     "Small (high-frequency) capacitors to choose from."},
    {"loop_filter_capacitor_bit", KEYWORD_SCOPE::TYPE, OPERAND::BIT_LIST, "pF", "0 and up", {0.0, MOST}, {0.0, 1e6}, "none",
     "The capacitor of each control bit; also sets the capacitors."},
    {"loop_filter_capacitor_default", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "pF", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "The small capacitor; without a table it stays."},
    {"loop_filter_fixed_capacitor", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "pF", "1 and up", {1.0, MOST}, {0.0, 1e6}, "0",
     "The fixed capacitor, in series with the resistor."},
    {"bandwidth_low", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "Hz", "above 0", {LEAST_REAL, MOST}, {5000.0, 1e8}, "0",
     "What a request for a low bandwidth means."},
    {"bandwidth_medium", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "Hz", "above 0", {LEAST_REAL, MOST}, {5000.0, 1e8}, "0",
     "Likewise for a medium one."},
    {"bandwidth_high", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "Hz", "above 0", {LEAST_REAL, MOST}, {5000.0, 1e8}, "0",
     "Likewise for a high one."},
    {"bandwidth_relative_tolerance", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "fraction", "above 0", {LEAST_REAL, MOST}, {0.0, 1.0}, "0",
     "Tolerance of a bandwidth; for hosts."},
    {"bandwidth_pfd_min_frequency_multiplier", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "", "1 and up", {1.0, MOST}, {0.0, 1000.0}, "0",
     "The PFD must run at this multiple of the bandwidth or faster; 0 asks for nothing. Used with a table."},
    {"is_pfd_bandwidth_rule_an_error", KEYWORD_SCOPE::TYPE, OPERAND::FLAG, "", "", {LEAST, MOST}, {LEAST, MOST}, "false",
     "Settings of the table that break that rule, and feedback divisions without a row, are illegal; when false they only cost. Used with a table."},
    {"bandwidth_settings_table_file", KEYWORD_SCOPE::TYPE, OPERAND::NAME, "", "", {LEAST, MOST}, {LEAST, MOST}, "none",
     "The table file of this PLL type, in the family's folder. `unused` says that there is no table. Of several, the last counts. Read when the family file ends."},
    {"ss_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "input periods", "1 and up", {1.0, MOST}, {LEAST, MOST}, "0",
     "Longest modulation period."},
    {"ss_bandwidth", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "Hz", "above 0", {LEAST_REAL, MOST}, {5000.0, 1e8}, "0",
     "Loop bandwidth with spread spectrum, without a table."},
    {"ss_down_spread_min", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "fraction", "above 0", {LEAST_REAL, MOST}, {0.0, 0.1}, "0",
     "Smallest down spread; for hosts."},
    {"ss_down_spread_max", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "fraction", "above 0", {LEAST_REAL, MOST}, {0.0, 0.1}, "0",
     "Largest down spread; for hosts."},
    {"ss_charge_pump_current", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "uA", "1 and up", {1.0, MOST}, {0.0, 20000.0}, "0",
     "Charge-pump current with spread spectrum."},
    {"feedback_duty_cycle_min", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "percent", "0 to 100", {0.0, 100.0}, {LEAST, MOST}, "0",
     "Duty cycle of an external feedback, at least; for hosts."},
    {"feedback_duty_cycle_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "percent", "0 to 100", {0.0, 100.0}, {LEAST, MOST}, "0",
     "Likewise, at most; for hosts."},
    {"valid_lock_multiplier", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Lock detection; for hosts."},
    {"invalid_lock_multiplier", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Lock detection; for hosts."},
    {"gate_lock_counter_min", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "input periods", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Shortest gating of the lock signal; for hosts."},
    {"gate_lock_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "input periods", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Longest gating of the lock signal; for hosts."},
    {"switch_over_counter_min", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "input periods", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Shortest delay of a switch-over; for hosts."},
    {"switch_over_counter_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "input periods", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Longest delay of a switch-over; for hosts."},
    {"time_delay_max", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "ps", "0 to 3000", {0.0, 3000.0}, {LEAST, MOST}, "0",
     "Longest delay of a delay chain; for hosts."},
    {"time_delay_resolution", KEYWORD_SCOPE::TYPE, OPERAND::NUMBER, "ps", "0 and up", {0.0, MOST}, {LEAST, MOST}, "0",
     "Step of a delay chain; for hosts."},
    {"phase_absolute_tolerance", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "degrees", "above 0", {LEAST_REAL, MOST}, {0.0, 90.0}, "0",
     "Tolerance of a phase; for hosts."},
    {"spe_ratio_constant_x", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "1/uA", "above 0", {LEAST_REAL, MOST}, {LEAST, MOST}, "none",
     "A total feedback division above this many times the charge-pump current costs."},
    {"spe_push_out_constant_a", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the push-out range."},
    {"spe_push_out_constant_b", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the push-out range."},
    {"spe_push_out_constant_c", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the push-out range."},
    {"spe_pull_in_constant_d", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the pull-in range."},
    {"spe_pull_in_constant_e", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the pull-in range."},
    {"spe_pull_in_constant_f", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Constant of the pull-in range."},
    {"spe_lock_fail_ratio_constant", KEYWORD_SCOPE::TYPE, OPERAND::REAL, "", "any", {LEAST, MOST}, {LEAST, MOST}, "none",
     "Limit for a failing lock."},
    {"reconfig_type", KEYWORD_SCOPE::TYPE, OPERAND::WORD, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "Selects a reconfiguration type of the PLL: `none`, `short`, `long` or `enhanced`, without quotes. Any other word selects nothing, in silence."},
    {"reconfig_scan_chain_counter_order", KEYWORD_SCOPE::RECONFIG, OPERAND::COUNTERS, "", "", {LEAST, MOST}, {LEAST, MOST}, "",
     "The counters in the order of the scan chain, up to the end of the line or the word `end`: `L0`, `L1`, `G0` to `G3`, `E0` to `E3`, `C0` to `C5`, `M`, `N`, `L0TAP`, `L1TAP`. A name that is none of these is stored as \"no such counter\"."},
    {"not_listed", KEYWORD_SCOPE::PART, OPERAND::FLAG, "", "", {LEAST, MOST}, {LEAST, MOST}, "false",
     "The part is there but its speed grade is not offered for its sake: listed speed grades are those of the other parts."},
    {"vco_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {50.0, 1e6}, "none",
     "Shortest VCO period."},
    {"vco_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e7}, "none",
     "Longest VCO period."},
    {"vco_center", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {50.0, 1e7}, "none",
     "The VCO period that costs nothing."},
    {"vco_gain", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "MHz/V", "1 and up", {1.0, MOST}, {5.0, 50000.0}, "none",
     "How strongly the VCO answers to its voltage."},
    {"vco_min_post_scale", KEYWORD_SCOPE::PART, OPERAND::POST_SCALE_NUMBER, "ps", "1 and up", {1.0, MOST}, {50.0, 1e6}, "none",
     "Shortest VCO period behind that post-scale."},
    {"vco_max_post_scale", KEYWORD_SCOPE::PART, OPERAND::POST_SCALE_NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e7}, "none",
     "Longest VCO period behind that post-scale."},
    {"vco_center_post_scale", KEYWORD_SCOPE::PART, OPERAND::POST_SCALE_NUMBER, "ps", "1 and up", {1.0, MOST}, {50.0, 1e7}, "none",
     "Its period that costs nothing."},
    {"vco_gain_post_scale", KEYWORD_SCOPE::PART, OPERAND::POST_SCALE_NUMBER, "MHz/V", "1 and up", {1.0, MOST}, {5.0, 50000.0}, "none",
     "Its gain."},
    {"pfd_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {200.0, 1e8}, "none",
     "Shortest period at the phase-frequency detector: input period times N."},
    {"pfd_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {1000.0, 2e9}, "none",
     "Longest period there."},
    {"input_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {20.0, 1e8}, "none",
     "Shortest period of the input clock."},
    {"input_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {500.0, 2e9}, "none",
     "Longest period of the input clock; for hosts."},
    {"output_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e8}, "none",
     "Shortest period of an output inside the device; for hosts."},
    {"output_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {500.0, 2147483647.0}, "none",
     "Longest period of such an output; for hosts."},
    {"external_output_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e8}, "none",
     "Shortest period of an output on a pin; for hosts."},
    {"external_output_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {500.0, 2147483647.0}, "none",
     "Longest period of such an output; for hosts."},
    {"ss_spread_min", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "thousandths", "0 and up", {0.0, MOST}, {0.0, 100.0}, "none",
     "Smallest spread of the part; for hosts."},
    {"ss_spread_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "thousandths", "0 and up", {0.0, MOST}, {0.0, 100.0}, "none",
     "Largest spread of the part; for hosts."},
    {"ss_vco_max", KEYWORD_SCOPE::PART, OPERAND::NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e7}, "none",
     "Longest VCO period with spread spectrum."},
    {"ss_vco_max_post_scale", KEYWORD_SCOPE::PART, OPERAND::POST_SCALE_NUMBER, "ps", "1 and up", {1.0, MOST}, {100.0, 1e7}, "none",
     "Likewise behind that post-scale."},
};
// clang-format on

}  // namespace keyword_table

inline constexpr std::size_t NUMBER_OF_KEYWORDS = sizeof(keyword_table::KEYWORDS) / sizeof(KEYWORD);

constexpr const KEYWORD& get_keyword(std::size_t index)
{
    return keyword_table::KEYWORDS[index];
}

// The index of a keyword that is in the table, for programs that name one.
consteval std::size_t keyword(std::string_view name)
{
    std::size_t index = 0;
    while (name != keyword_table::KEYWORDS[index].m_name) {
        ++index;
    }
    return index;
}
