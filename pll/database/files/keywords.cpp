// The keywords of family files: one row for each. A new keyword is a new row.
#include "gen_string.h"

#include "database/files/family_file.h"
#include "database/files/vocabulary.h"
#include "database/memory.h"
#include "platform/arith.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace pll_internal {

namespace {

typedef PLL_FAMILY_FILE_READER READER;
typedef PLL_OPERANDS OPERANDS;
typedef PLL_BASIC_INFO BASIC;
typedef PLL_TIMING_INFO TIMING;

// ---- Structure

const char QUOTE = '"';

PLL_FINDING none_unless_out_of_memory(bool is_done)
{
    return is_done ? PLL_FINDING::NONE : PLL_FINDING::OUT_OF_MEMORY;
}

PLL_FINDING refuse_missing_name(READER& reader)
{
    return reader.words()->tell(PLL_FINDING::NAME_MISSING, nullptr);
}

// An include without a name, or of a file that cannot be opened, has no effect.
PLL_FINDING include_file(READER& reader, const OPERANDS& operands)
{
    return reader.include(operands.m_word);
}

PLL_FINDING select_family(READER& reader, const OPERANDS& operands)
{
    reader.m_family = reader.m_manager->create_family_info(operands.m_word);
    return operands.m_word == nullptr ? refuse_missing_name(reader)
                                      : none_unless_out_of_memory(reader.m_family != nullptr);
}

PLL_FINDING select_speed_grade(READER& reader, const OPERANDS& operands)
{
    reader.m_speed_grade = nullptr;
    if (operands.m_word == nullptr) {
        return refuse_missing_name(reader);
    }
    reader.m_speed_grade = reader.m_manager->create_speed_grade(reader.m_family, operands.m_word);
    return none_unless_out_of_memory(reader.m_speed_grade != nullptr);
}

PLL_FINDING select_pll_type(READER& reader, const OPERANDS& operands)
{
    reader.m_type = pll_find_type(operands.m_word);
    return reader.m_type == PLL_TYPE_MAX
               ? reader.words()->tell(PLL_FINDING::UNKNOWN_PLL_TYPE, operands.m_word)
               : PLL_FINDING::NONE;
}

PLL_FINDING select_part(READER& reader, const OPERANDS& operands)
{
    reader.m_part = nullptr;
    if (operands.m_word == nullptr) {
        return refuse_missing_name(reader);
    }
    reader.m_part = reader.m_manager->create_part_info(reader.m_family, operands.m_word,
                                                       reader.m_speed_grade, reader.m_type);
    if (reader.m_part == nullptr) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    reader.m_part_owner = {reader.m_family, reader.m_type};
    reader.tell_of_part(operands.m_word);
    return PLL_FINDING::NONE;
}

PLL_FINDING select_table_file(READER& reader, const OPERANDS& operands)
{
    return operands.m_word == nullptr
               ? refuse_missing_name(reader)
               : none_unless_out_of_memory(reader.set_table_file(operands.m_word));
}

// Quotes make the name an unknown one, and what follows them part of the mistake.
PLL_FINDING refuse_reconfig_type(READER& reader, const char* name)
{
    if (name == nullptr || *name != QUOTE) {
        return reader.words()->tell(PLL_FINDING::UNKNOWN_RECONFIG_TYPE, name);
    }
    reader.words()->tell(PLL_FINDING::QUOTED_RECONFIG_TYPE, name);
    reader.words()->drop_rest();
    return PLL_FINDING::QUOTED_RECONFIG_TYPE;
}

// A name that is no reconfiguration type leaves none current; that is no error.
PLL_FINDING select_reconfig_type(READER& reader, const OPERANDS& operands)
{
    reader.m_reconfig = nullptr;
    reader.m_reconfig_owner = {reader.m_family, reader.m_type};
    const PLL_RECONFIG_TYPE_ENUM type = pll_find_reconfig_type(operands.m_word);
    if (type == PLL_RECONFIG_TYPE_MAX) {
        return refuse_reconfig_type(reader, operands.m_word);
    }
    reader.m_reconfig = reader.basic_info()->create_reconfig_info(type);
    return none_unless_out_of_memory(reader.m_reconfig != nullptr);
}

PLL_FINDING set_counter_orders(READER& reader, const OPERANDS& operands)
{
    reader.m_reconfig->set_scan_chain_counter_orders(operands.m_count, operands.m_counters);
    return none_unless_out_of_memory(reader.m_reconfig->m_number_of_scan_chain_counter_orders ==
                                     operands.m_count);
}

PLL_FINDING set_not_listed(READER& reader, const OPERANDS& operands)
{
    reader.m_part->m_not_listed = operands.m_flag;
    return PLL_FINDING::NONE;
}

// ---- Values. A list that a record could not take was too large for the memory.

void give(int* field, const OPERANDS& operands)
{
    *field = operands.m_number;
}

void give(double* field, const OPERANDS& operands)
{
    *field = operands.m_real;
}

void give(bool* field, const OPERANDS& operands)
{
    *field = operands.m_flag;
}

PLL_FINDING tell_of_post_scale(READER& reader, const char* word, int post_scale)
{
    return post_scale <= PLL_VCO_POST_SCALE_MAX
               ? PLL_FINDING::NONE
               : reader.words()->tell_limit(PLL_FINDING::POST_SCALE_TOO_LARGE, word, post_scale,
                                            PLL_VCO_POST_SCALE_MAX);
}

template <auto FIELD>
PLL_FINDING basic(READER& reader, const OPERANDS& operands)
{
    give(&(reader.basic_info()->*FIELD), operands);
    return PLL_FINDING::NONE;
}

// A post-scale that does not exist is stored all the same.
PLL_FINDING vco_post_scale_counter_max(READER& reader, const OPERANDS& operands)
{
    reader.basic_info()->set_vco_post_scale_counter_max(operands.m_number);
    tell_of_post_scale(reader, operands.m_word, operands.m_number);
    return PLL_FINDING::NONE;
}

// A limit of the whole count; there is none of its halves then.
template <int BASIC::*COUNT, int BASIC::*HALF>
PLL_FINDING whole_count(READER& reader, const OPERANDS& operands)
{
    reader.basic_info()->*COUNT = operands.m_number;
    reader.basic_info()->*HALF = 0;
    return PLL_FINDING::NONE;
}

// A limit of the high and the low half, hence of the count.
template <int BASIC::*COUNT, int BASIC::*HALF>
PLL_FINDING half_count(READER& reader, const OPERANDS& operands)
{
    reader.basic_info()->*COUNT = wrap_mul(2, operands.m_number);
    reader.basic_info()->*HALF = operands.m_number;
    return PLL_FINDING::NONE;
}

typedef void (BASIC::*LIST_SETTER)(int count, const int* values);

template <LIST_SETTER SET, int BASIC::*COUNT>
PLL_FINDING list(READER& reader, const OPERANDS& operands)
{
    (reader.basic_info()->*SET)(operands.m_count, operands.m_numbers);
    return none_unless_out_of_memory(reader.basic_info()->*COUNT == operands.m_count);
}

// Weights of bits, whose positive ones are the list too.
template <LIST_SETTER SET_BITS, int BASIC::*BIT_COUNT, LIST_SETTER SET, int BASIC::*COUNT>
PLL_FINDING bit_list(READER& reader, const OPERANDS& operands)
{
    if (list<SET_BITS, BIT_COUNT>(reader, operands) != PLL_FINDING::NONE) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    OPERANDS compacted;
    compacted.m_count = PLL_MANAGER::compact_int_array_from_bits_array_and_sort(
        operands.m_count, operands.m_numbers, &compacted.m_numbers);
    return compacted.m_numbers == nullptr ? PLL_FINDING::OUT_OF_MEMORY
                                          : list<SET, COUNT>(reader, compacted);
}

template <int TIMING::*FIELD>
PLL_FINDING timing(READER& reader, const OPERANDS& operands)
{
    reader.timing_info()->*FIELD = operands.m_number;
    return PLL_FINDING::NONE;
}

// A limit behind a post-scale that does not exist is not stored.
template <void (TIMING::*SET)(int value, int vco_post_scale)>
PLL_FINDING vco(READER& reader, const OPERANDS& operands)
{
    (reader.timing_info()->*SET)(operands.m_number, operands.m_post_scale);
    return tell_of_post_scale(reader, operands.m_word, operands.m_post_scale);
}

// The lists that a record holds as a count and an array.
constexpr PLL_KEYWORD::SETTER CURRENTS =
    list<&BASIC::set_charge_pump_currents, &BASIC::m_number_of_charge_pump_currents>;
constexpr PLL_KEYWORD::SETTER CURRENT_BITS =
    bit_list<&BASIC::set_charge_pump_current_bits, &BASIC::m_number_of_charge_pump_current_bits,
             &BASIC::set_charge_pump_currents, &BASIC::m_number_of_charge_pump_currents>;
constexpr PLL_KEYWORD::SETTER RESISTORS =
    list<&BASIC::set_loop_filter_resistors, &BASIC::m_number_of_loop_filter_resistors>;
constexpr PLL_KEYWORD::SETTER RESISTOR_BITS =
    bit_list<&BASIC::set_loop_filter_resistor_bits, &BASIC::m_number_of_loop_filter_resistor_bits,
             &BASIC::set_loop_filter_resistors, &BASIC::m_number_of_loop_filter_resistors>;
constexpr PLL_KEYWORD::SETTER CAPACITORS =
    list<&BASIC::set_loop_filter_capacitors, &BASIC::m_number_of_loop_filter_capacitors>;
constexpr PLL_KEYWORD::SETTER CAPACITOR_BITS =
    bit_list<&BASIC::set_loop_filter_capacitor_bits, &BASIC::m_number_of_loop_filter_capacitor_bits,
             &BASIC::set_loop_filter_capacitors, &BASIC::m_number_of_loop_filter_capacitors>;

// The counters whose limit is given whole or by halves.
constexpr PLL_KEYWORD::SETTER M_WHOLE =
    whole_count<&BASIC::m_m_counter_max, &BASIC::m_m_counter_high_low_max>;
constexpr PLL_KEYWORD::SETTER M_HALF =
    half_count<&BASIC::m_m_counter_max, &BASIC::m_m_counter_high_low_max>;
constexpr PLL_KEYWORD::SETTER OUTPUT_WHOLE =
    whole_count<&BASIC::m_output_counter_max, &BASIC::m_output_counter_high_low_max>;
constexpr PLL_KEYWORD::SETTER OUTPUT_HALF =
    half_count<&BASIC::m_output_counter_max, &BASIC::m_output_counter_high_low_max>;

constexpr PLL_SCOPE ANYWHERE = PLL_SCOPE::ANYWHERE;
constexpr PLL_SCOPE FAMILY = PLL_SCOPE::FAMILY;
constexpr PLL_SCOPE TYPE = PLL_SCOPE::PLL_TYPE;
constexpr PLL_SCOPE GRADE = PLL_SCOPE::SPEED_GRADE;
constexpr PLL_SCOPE PART = PLL_SCOPE::PART;
constexpr PLL_SCOPE RECONFIG = PLL_SCOPE::RECONFIG;

constexpr PLL_OPERAND_KIND NAME = PLL_OPERAND_KIND::NAME;
constexpr PLL_OPERAND_KIND WORD = PLL_OPERAND_KIND::WORD;
constexpr PLL_OPERAND_KIND INT = PLL_OPERAND_KIND::NUMBER;
constexpr PLL_OPERAND_KIND SCALED = PLL_OPERAND_KIND::POST_SCALE_NUMBER;
constexpr PLL_OPERAND_KIND REAL = PLL_OPERAND_KIND::REAL;
constexpr PLL_OPERAND_KIND FLAG = PLL_OPERAND_KIND::FLAG;
constexpr PLL_OPERAND_KIND LIST = PLL_OPERAND_KIND::SORTED_NUMBERS;
constexpr PLL_OPERAND_KIND BITS = PLL_OPERAND_KIND::NUMBERS;
constexpr PLL_OPERAND_KIND COUNTERS = PLL_OPERAND_KIND::COUNTERS;

// clang-format off
constexpr PLL_KEYWORD KEYWORDS[] = {
    // keyword                                 scope       kind    setter, and what it selects
    {"include",                                ANYWHERE, NAME,   include_file, PLL_SELECTION::INCLUDED_FILE},
    {"family",                                 ANYWHERE, NAME,   select_family, PLL_SELECTION::FAMILY},
    {"speed_grade",                            FAMILY,     NAME,   select_speed_grade, PLL_SELECTION::SPEED_GRADE},
    {"pll",                                    ANYWHERE, NAME,   select_pll_type, PLL_SELECTION::PLL_TYPE},
    {"m_counter_max",                          TYPE,       INT,    M_WHOLE},
    {"m_counter_preferred_min",                TYPE,       INT,    basic<&BASIC::m_m_counter_preferred_min>},
    {"m_counter_preferred_max",                TYPE,       INT,    basic<&BASIC::m_m_counter_preferred_max>},
    {"m_counter_high_low_max",                 TYPE,       INT,    M_HALF},
    {"m_counter_initial_max",                  TYPE,       INT,    basic<&BASIC::m_m_counter_initial_max>},
    {"m_counter_phase_tap_max",                TYPE,       INT,    basic<&BASIC::m_m_counter_phase_tap_max>},
    {"m_counter_phase_tap_resolution",         TYPE,       INT,    basic<&BASIC::m_m_counter_phase_tap_resolution>},
    {"n_counter_max",                          TYPE,       INT,    basic<&BASIC::m_n_counter_max>},
    {"vco_post_scale_counter_max",             TYPE,       INT,    vco_post_scale_counter_max},
    {"output_counter_max",                     TYPE,       INT,    OUTPUT_WHOLE},
    {"output_counter_high_low_max",            TYPE,       INT,    OUTPUT_HALF},
    {"output_counter_initial_max",             TYPE,       INT,    basic<&BASIC::m_output_counter_initial_max>},
    {"number_of_output_counters",              TYPE,       INT,    basic<&BASIC::m_number_of_output_counters>},
    {"output_counter_phase_tap_max",           TYPE,       INT,    basic<&BASIC::m_output_counter_phase_tap_max>},
    {"output_counter_phase_tap_resolution",    TYPE,       INT,    basic<&BASIC::m_output_counter_phase_tap_resolution>},
    {"output_counter_cascade",                 TYPE,       FLAG,   basic<&BASIC::m_output_counter_cascade>},
    {"time_delay_max",                         TYPE,       INT,    basic<&BASIC::m_time_delay_max>},
    {"time_delay_resolution",                  TYPE,       INT,    basic<&BASIC::m_time_delay_resolution>},
    {"charge_pump_current_default",            TYPE,       INT,    basic<&BASIC::m_charge_pump_current_default>},
    {"charge_pump_current",                    TYPE,       LIST,   CURRENTS},
    {"charge_pump_current_bit",                TYPE,       BITS,   CURRENT_BITS},
    {"loop_filter_resistor_default",           TYPE,       INT,    basic<&BASIC::m_loop_filter_resistor_default>},
    {"loop_filter_resistor",                   TYPE,       LIST,   RESISTORS},
    {"loop_filter_resistor_bit",               TYPE,       BITS,   RESISTOR_BITS},
    {"loop_filter_capacitor_default",          TYPE,       INT,    basic<&BASIC::m_loop_filter_capacitor_default>},
    {"loop_filter_capacitor",                  TYPE,       LIST,   CAPACITORS},
    {"loop_filter_capacitor_bit",              TYPE,       BITS,   CAPACITOR_BITS},
    {"loop_filter_fixed_capacitor",            TYPE,       INT,    basic<&BASIC::m_loop_filter_fixed_capacitor>},
    {"valid_lock_multiplier",                  TYPE,       INT,    basic<&BASIC::m_valid_lock_multiplier>},
    {"invalid_lock_multiplier",                TYPE,       INT,    basic<&BASIC::m_invalid_lock_multiplier>},
    {"gate_lock_counter_min",                  TYPE,       INT,    basic<&BASIC::m_gate_lock_counter_min>},
    {"gate_lock_counter_max",                  TYPE,       INT,    basic<&BASIC::m_gate_lock_counter_max>},
    {"switch_over_counter_min",                TYPE,       INT,    basic<&BASIC::m_switch_over_counter_min>},
    {"switch_over_counter_max",                TYPE,       INT,    basic<&BASIC::m_switch_over_counter_max>},
    {"ss_counter_max",                         TYPE,       INT,    basic<&BASIC::m_ss_counter_max>},
    {"ss_bandwidth",                           TYPE,       REAL,   basic<&BASIC::m_ss_bandwidth>},
    {"ss_down_spread_min",                     TYPE,       REAL,   basic<&BASIC::m_ss_down_spread_min>},
    {"ss_down_spread_max",                     TYPE,       REAL,   basic<&BASIC::m_ss_down_spread_max>},
    {"ss_charge_pump_current",                 TYPE,       INT,    basic<&BASIC::m_ss_charge_pump_current>},
    {"feedback_duty_cycle_min",                TYPE,       INT,    basic<&BASIC::m_feedback_duty_cycle_min>},
    {"feedback_duty_cycle_max",                TYPE,       INT,    basic<&BASIC::m_feedback_duty_cycle_max>},
    {"bandwidth_pfd_min_frequency_multiplier", TYPE,       INT,    basic<&BASIC::m_bandwidth_pfd_min_frequency_multiplier>},
    {"bandwidth_low",                          TYPE,       REAL,   basic<&BASIC::m_bandwidth_low>},
    {"bandwidth_medium",                       TYPE,       REAL,   basic<&BASIC::m_bandwidth_medium>},
    {"bandwidth_high",                         TYPE,       REAL,   basic<&BASIC::m_bandwidth_high>},
    {"bandwidth_relative_tolerance",           TYPE,       REAL,   basic<&BASIC::m_bandwidth_relative_tolerance>},
    {"bandwidth_settings_table_file",          TYPE,       NAME,   select_table_file},
    {"phase_absolute_tolerance",               TYPE,       REAL,   basic<&BASIC::m_phase_absolute_tolerance>},
    {"reconfig_type",                          TYPE,       WORD,   select_reconfig_type, PLL_SELECTION::RECONFIG},
    {"reconfig_scan_chain_counter_order",      RECONFIG,   COUNTERS, set_counter_orders},
    {"is_pfd_bandwidth_rule_an_error",         TYPE,       FLAG,   basic<&BASIC::m_is_pfd_bandwidth_rule_an_error>},
    {"part",                                   GRADE,      NAME,   select_part, PLL_SELECTION::PART},
    {"not_listed",                             PART,       FLAG,   set_not_listed},
    {"vco_min",                                PART,       INT,    vco<&TIMING::set_vco_min_period>},
    {"vco_max",                                PART,       INT,    vco<&TIMING::set_vco_max_period>},
    {"vco_center",                             PART,       INT,    vco<&TIMING::set_vco_center_period>},
    {"vco_gain",                               PART,       INT,    vco<&TIMING::set_vco_gain>},
    {"vco_min_post_scale",                     PART,       SCALED, vco<&TIMING::set_vco_min_period>},
    {"vco_max_post_scale",                     PART,       SCALED, vco<&TIMING::set_vco_max_period>},
    {"vco_center_post_scale",                  PART,       SCALED, vco<&TIMING::set_vco_center_period>},
    {"vco_gain_post_scale",                    PART,       SCALED, vco<&TIMING::set_vco_gain>},
    {"pfd_min",                                PART,       INT,    timing<&TIMING::m_pfd_min>},
    {"pfd_max",                                PART,       INT,    timing<&TIMING::m_pfd_max>},
    {"input_min",                              PART,       INT,    timing<&TIMING::m_input_min>},
    {"input_max",                              PART,       INT,    timing<&TIMING::m_input_max>},
    {"output_min",                             PART,       INT,    timing<&TIMING::m_output_min>},
    {"output_max",                             PART,       INT,    timing<&TIMING::m_output_max>},
    {"external_output_min",                    PART,       INT,    timing<&TIMING::m_external_output_min>},
    {"external_output_max",                    PART,       INT,    timing<&TIMING::m_external_output_max>},
    {"ss_spread_min",                          PART,       INT,    timing<&TIMING::m_ss_spread_min>},
    {"ss_spread_max",                          PART,       INT,    timing<&TIMING::m_ss_spread_max>},
    {"ss_vco_max",                             PART,       INT,    vco<&TIMING::set_ss_vco_max_period>},
    {"ss_vco_max_post_scale",                  PART,       SCALED, vco<&TIMING::set_ss_vco_max_period>},
    {"spe_ratio_constant_x",                   TYPE,       REAL,   basic<&BASIC::m_spe_ratio_constant_x>},
    {"spe_push_out_constant_a",                TYPE,       REAL,   basic<&BASIC::m_spe_push_out_constant_a>},
    {"spe_push_out_constant_b",                TYPE,       REAL,   basic<&BASIC::m_spe_push_out_constant_b>},
    {"spe_push_out_constant_c",                TYPE,       REAL,   basic<&BASIC::m_spe_push_out_constant_c>},
    {"spe_pull_in_constant_d",                 TYPE,       REAL,   basic<&BASIC::m_spe_pull_in_constant_d>},
    {"spe_pull_in_constant_e",                 TYPE,       REAL,   basic<&BASIC::m_spe_pull_in_constant_e>},
    {"spe_pull_in_constant_f",                 TYPE,       REAL,   basic<&BASIC::m_spe_pull_in_constant_f>},
    {"spe_lock_fail_ratio_constant",           TYPE,       REAL,   basic<&BASIC::m_spe_lock_fail_ratio_constant>},
};
// clang-format on

typedef std::array<PLL_KEYWORD, std::size(KEYWORDS)> SORTED_KEYWORDS;

// The rows by keyword, so that one is found in a few comparisons. Keywords are in lower case, which
// is how names are compared.
constexpr SORTED_KEYWORDS sort_keywords()
{
    SORTED_KEYWORDS sorted{};
    std::copy(std::begin(KEYWORDS), std::end(KEYWORDS), sorted.begin());
    std::sort(sorted.begin(), sorted.end(), [](const PLL_KEYWORD& a, const PLL_KEYWORD& b) {
        return std::string_view(a.m_keyword) < std::string_view(b.m_keyword);
    });
    return sorted;
}

constexpr SORTED_KEYWORDS BY_KEYWORD = sort_keywords();

}  // namespace

std::span<const PLL_KEYWORD> get_keywords()
{
    return BY_KEYWORD;
}

const PLL_KEYWORD* find_keyword(const char* name)
{
    const auto row = std::lower_bound(
        BY_KEYWORD.begin(), BY_KEYWORD.end(), name,
        [](const PLL_KEYWORD& a, const char* b) { return gen_stricmp(a.m_keyword, b) < 0; });
    return row != BY_KEYWORD.end() && gen_stricmp(row->m_keyword, name) == 0 ? &*row : nullptr;
}

const char* pll_keyword_of(PLL_SELECTION selection)
{
    const auto row = std::find_if(
        std::begin(KEYWORDS), std::end(KEYWORDS),
        [selection](const PLL_KEYWORD& keyword) { return keyword.m_selects == selection; });
    return row == std::end(KEYWORDS) ? "" : row->m_keyword;
}

}  // namespace pll_internal
