// Hosts are compiled against these names and types; a change of any of them is a change of the
// ABI. Compiled only: each line is a promise that the compiler checks.
#include "gen_string.h"
#include "mem_alloc_sys.h"
#include "msg_internal_error.h"
#include "pll.h"
#include "pll_info.h"
#include "pll_manager.h"
#include "pll_prop.h"
#include "pll_util.h"
#include <istream>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#define SAME(expr, ...) static_assert(std::is_same_v<decltype(expr), __VA_ARGS__>, #expr)

// h/
SAME(&MSG_INTERNAL_ERROR::report, void (*)(const char*, const char*, const char*, int));
SAME(&MSG_INTERNAL_ERROR::set_handler, void (*)(MSG_INTERNAL_ERROR::HANDLER, void*));
SAME(&MSG_INTERNAL_ERROR::get_report_count, unsigned long (*)());
static_assert(std::is_same_v<MSG_INTERNAL_ERROR::HANDLER,
                             void (*)(const char*, const char*, const char*, int, void*)>);
SAME(&MEM_MANAGER::new_wrapper, void* (*)(std::size_t, const MEM_TRACKER&, const char*));
SAME(&MEM_MANAGER::delete_wrapper, void (*)(void*, const char*));
SAME(&MEM_MANAGER::get_live_blocks, std::size_t (*)(const char*));
SAME(&MEM_MANAGER::get_live_bytes, std::size_t (*)(const char*));
static_assert(std::is_same_v<MEM_VECTOR<int>, std::vector<int, MEM_ALLOCATOR<int>>>);
static_assert(std::is_same_v<MEM_STRING,
                             std::basic_string<char, std::char_traits<char>, MEM_ALLOCATOR<char>>>);
static_assert(sizeof(MEM_INITIALIZER) > 0);
SAME(&gen_stricmp, int (*)(const char*, const char*));

// pll_info.h
static_assert(ENHANCED_PLL == 0 && FAST_PLL == 1 && FAST_PLL_HIGH_SPEED == 2 && VESTRA_PLL == 3 &&
              PLL_TYPE_MAX == 4);
SAME(PLL_MAX_TAPS, const int);
static_assert(PLL_MAX_TAPS == 10);
static_assert(PLL_VCO_POST_SCALE_MAX == 2 && PLL_VCO_TAPS_NUMBER == 8 &&
              MAX_DELAY_CHAIN_VALUE == 3000 && PLL_ILLEGAL_TAP == -1);
static_assert(std::is_enum_v<PLL_RECONFIG_TYPE_ENUM> && std::is_enum_v<CDB_PLL_COUNTER_TYPE_ENUM>);
SAME(PLL_BANDWIDTH_SETTING_GROUP::m_settings, MEM_VECTOR<PLL_BANDWIDTH_SETTING*>);
SAME(PLL_TYPE_BANDWIDTH_FILE_NAME::m_type, PLL_TYPE_ENUM);
SAME(PLL_TYPE_BANDWIDTH_FILE_NAME::m_file_name, MEM_STRING);
static_assert(
    std::is_same_v<PLL_TYPE_BANDWIDTH_FILE_LIST, MEM_VECTOR<PLL_TYPE_BANDWIDTH_FILE_NAME*>>);
static_assert(std::is_constructible_v<PLL_RECONFIG_INFO, PLL_RECONFIG_TYPE_ENUM>);
static_assert(!std::is_convertible_v<PLL_RECONFIG_TYPE_ENUM, PLL_RECONFIG_INFO>);
static_assert(std::has_virtual_destructor_v<PLL_RECONFIG_INFO> &&
              std::has_virtual_destructor_v<PLL_BASIC_INFO>);
SAME(&PLL_RECONFIG_INFO::set_scan_chain_counter_orders,
     void (PLL_RECONFIG_INFO::*)(int, CDB_PLL_COUNTER_TYPE_ENUM*));
SAME(&PLL_BASIC_INFO::is_output_counter_high_low, bool (PLL_BASIC_INFO::*)() const);
SAME(&PLL_BASIC_INFO::set_vco_post_scale_counter_max, void (PLL_BASIC_INFO::*)(int));
SAME(&PLL_BASIC_INFO::set_charge_pump_currents, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_charge_pump_current_bits, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_loop_filter_resistors, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_loop_filter_resistor_bits, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_loop_filter_capacitors, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_loop_filter_capacitor_bits, void (PLL_BASIC_INFO::*)(int, const int*));
SAME(&PLL_BASIC_INFO::set_bandwidth_settings_table,
     void (PLL_BASIC_INFO::*)(int, PLL_BANDWIDTH_SETTING_GROUP*));
SAME(&PLL_BASIC_INFO::find_reconfig_info,
     PLL_RECONFIG_INFO* (PLL_BASIC_INFO::*)(PLL_RECONFIG_TYPE_ENUM) const);
SAME(&PLL_BASIC_INFO::create_reconfig_info,
     PLL_RECONFIG_INFO* (PLL_BASIC_INFO::*)(PLL_RECONFIG_TYPE_ENUM));
SAME(&PLL_BASIC_INFO::get_number_of_reconfig_scan_chain_counter_orders,
     int (PLL_BASIC_INFO::*)(PLL_RECONFIG_TYPE_ENUM) const);
SAME(&PLL_BASIC_INFO::get_reconfig_scan_chain_counter_order,
     CDB_PLL_COUNTER_TYPE_ENUM (PLL_BASIC_INFO::*)(PLL_RECONFIG_TYPE_ENUM, int) const);
SAME(&PLL_TIMING_INFO::get_vco_min_period, int (PLL_TIMING_INFO::*)(int) const);
SAME(&PLL_TIMING_INFO::get_vco_max_period, int (PLL_TIMING_INFO::*)(int) const);
SAME(&PLL_TIMING_INFO::get_vco_center_period, int (PLL_TIMING_INFO::*)(int) const);
SAME(&PLL_TIMING_INFO::get_vco_gain, int (PLL_TIMING_INFO::*)(int) const);
SAME(&PLL_TIMING_INFO::get_ss_vco_max_period, int (PLL_TIMING_INFO::*)(int) const);
SAME(&PLL_TIMING_INFO::set_vco_min_period, void (PLL_TIMING_INFO::*)(int, int));
SAME(&PLL_TIMING_INFO::set_vco_gain, void (PLL_TIMING_INFO::*)(int, int));
static_assert(!std::is_polymorphic_v<PLL_TIMING_INFO>);
SAME(PLL_INFO::m_basic_info, PLL_BASIC_INFO*);
SAME(PLL_INFO::m_timing_info, PLL_TIMING_INFO);
SAME(&PLL_INFO::has_info, bool (PLL_INFO::*)() const);
SAME(&PLL_INFO::is_bandwidth_settings_table_valid, bool (PLL_INFO::*)() const);
SAME(&PLL_INFO::dump_bandwidth_settings_table, void (PLL_INFO::*)(std::ostream&) const);
SAME(&pll_copy_value_array, int* (*)(int, const int*));
SAME(&pll_array_value_exists, bool (*)(int, const int*, int));
SAME(&pll_delete_bandwidth_settings_table, void (*)(PLL_BANDWIDTH_SETTING_GROUP*&, int&));

// pll_util.h
SAME(&PLL_UTIL::phase_from_vco_tap_and_counter_start, int (*)(int, int));
SAME(&PLL_UTIL::phase_to_vco_tap_and_counter_start, int (*)(int*, int*, double, int));
SAME(&PLL_UTIL::phase_to_counter_start, int (*)(int*, double, int, int));
SAME(&PLL_UTIL::gcd, int (*)(int, int));
SAME(&PLL_UTIL::normalize_fraction, void (*)(int*, int*, int, int));
SAME(&PLL_UTIL::user_phase, double (*)(int, int, const PLL*, int, int));
SAME(&PLL_UTIL::cascade_factor, int (*)(int, int));
SAME(&PLL_UTIL::get_tap_count, int (*)(const PLL*, int));
SAME(&pll_ceil_log2, int (*)(int));
SAME(&pll_set_array, void (*)(int*, int, int, const int*));
SAME(&pll_limit_switch, int (*)(int));
SAME(&pll_get_bandwidth_diff_cost, double (*)(double, double));

// pll_prop.h
SAME(&PLL_USER_TAP::dump, void (PLL_USER_TAP::*)(std::ostream&, bool) const);
static_assert(std::has_virtual_destructor_v<PLL_USER_TAP> &&
              std::has_virtual_destructor_v<PLL_PROP>);
static_assert(std::is_constructible_v<PLL_PROP, int> && !std::is_convertible_v<int, PLL_PROP>);
static_assert(std::is_copy_constructible_v<PLL_PROP> && std::is_copy_assignable_v<PLL_PROP>);
SAME(&PLL_PROP::set_properties_from_internals, void (PLL_PROP::*)(const PLL&));
SAME(&PLL_PROP::compute_bandwidth, void (PLL_PROP::*)(const PLL&));
SAME(&PLL_PROP::compute_user_delay_chains, void (PLL_PROP::*)(const PLL&));
SAME(&PLL_PROP::dump, void (PLL_PROP::*)(std::ostream&, bool, bool) const);
SAME(PLL_PROP::m_bandwidth_type, int);
SAME(PLL_PROP::m_taps, PLL_USER_TAP[PLL_MAX_TAPS]);
SAME(PLL_PROP::m_use_reconfig, bool);

// pll.h
static_assert(std::has_virtual_destructor_v<PLL_COUNTER_M> &&
              std::has_virtual_destructor_v<PLL_OUTPUT_TAP> && std::has_virtual_destructor_v<PLL>);
SAME(&PLL_OUTPUT_TAP::dump, void (PLL_OUTPUT_TAP::*)(std::ostream&, bool, bool) const);
SAME(PLL_IMPL::m_charge_pump_currents, MEM_VECTOR<int>);
SAME(PLL_IMPL::m_capacitors, MEM_VECTOR<int>);
SAME(PLL_IMPL::m_resistors, MEM_VECTOR<int>);
SAME(PLL_IMPL::m_mults, int*);
SAME(PLL_IMPL::m_divs, int*);
static_assert(PLL::PLL_NO_ERROR == 0 && PLL::MAX_PLL_ERROR_TYPE == 11);
static_assert(PLL::PLL_M_N_NOT_FOUND == 1 && PLL::PLL_M_N_NOT_FOUND_2 == 2 &&
              PLL::PLL_POST_DIVIDER_MAX_EXCEEDED == 3 && PLL::PLL_MULT_DIV_NOT_ACHIEVED == 4 &&
              PLL::PLL_DELAY_RANGE_TOO_WIDE == 5 && PLL::PLL_SS_REQUIRES_LOW_BANDWIDTH == 6 &&
              PLL::PLL_SS_TOO_HIGH == 7 && PLL::PLL_FIN_OUT_OF_RANGE == 8 &&
              PLL::PLL_NO_BANDWIDTH_FOR_MULT_DIV == 9 &&
              PLL::PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV == 10);
static_assert(PLL::ENHANCED_PLL == 0 && PLL::FAST_PLL == 1 && PLL::FAST_PLL_HIGH_SPEED == 2 &&
              PLL::VESTRA_PLL == 3 && PLL::PLL_TYPE_MAX == 4);
static_assert(std::is_constructible_v<PLL, int, int> && !std::is_copy_constructible_v<PLL> &&
              std::is_copy_assignable_v<PLL>);
SAME(&PLL::operator=, PLL& (PLL::*)(const PLL&));
SAME(&PLL::synthesize, bool (PLL::*)(const PLL_PROP&));
SAME(&PLL::find_vco_mult_div_values, int (PLL::*)(int**, int**, int));
SAME(&PLL::synthesize_best_phase_and_duty_cycle, bool (PLL::*)(PLL*, const PLL_PROP&));
SAME(&PLL::compute_phase_for_ui, void (PLL::*)(PLL*, const PLL_PROP&, int, double) const);
SAME(&PLL::compute_duty_cycle_for_ui, void (PLL::*)(PLL*, const PLL_PROP&, int, double) const);
SAME(&PLL::correct_next_and_previous_values_for_ui, void (PLL::*)());
SAME(&PLL::synthesize_delay_chains, bool (PLL::*)(const PLL_PROP&));
SAME(&PLL::synthesize_best_bandwidth_using_table, bool (*)(PLL*, const PLL_PROP&));
SAME(&PLL::clear_rci, void (PLL::*)());
SAME(&PLL::add_i, void (*)(int));
SAME(&PLL::add_r, void (*)(int));
SAME(&PLL::add_c, void (*)(int));
SAME(&PLL::set_output_counts_from_high_low, void (PLL::*)());
SAME(&PLL::get_m, int (PLL::*)() const);
SAME(&PLL::get_n, int (PLL::*)() const);
SAME(&PLL::get_m_over_n, double (PLL::*)() const);
SAME(&PLL::get_vco_min_period, int (PLL::*)(int) const);
SAME(&PLL::get_vco_max_period, int (PLL::*)(int) const);
SAME(&PLL::get_vco_center_period, int (PLL::*)(int) const);
SAME(&PLL::get_ss_vco_max_period, int (PLL::*)(int) const);
SAME(&PLL::get_kvco, double (PLL::*)(int) const);
SAME(&PLL::set_vco_min_period, void (PLL::*)(int, int));
SAME(&PLL::set_vco_max_period, void (PLL::*)(int, int));
SAME(&PLL::set_vco_center_period, void (PLL::*)(int, int));
SAME(&PLL::set_ss_vco_max_period, void (PLL::*)(int, int));
SAME(&PLL::dump, void (PLL::*)(std::ostream&, bool, bool) const);
SAME(&PLL::init_family_info, bool (*)(const char*));
SAME(&PLL::delete_family_info, void (*)());
SAME(&PLL::read_parameters, bool (*)(const char*, PLL::PLL_TYPE));
SAME(&PLL::get_error_string, const char* (*)(PLL::PLL_ERROR_TYPE));
SAME(PLL::m_taps, PLL_OUTPUT_TAP[PLL_MAX_TAPS]);
SAME(PLL::m_m, PLL_COUNTER_M);
SAME(PLL::m_n, PLL_COUNTER_M);
SAME(PLL::m_error, PLL::PLL_ERROR_TYPE);
SAME(PLL::m_info, PLL_INFO);
SAME(PLL::m_impl, PLL_IMPL*);
SAME(PLL::m_pll_manager, PLL_MANAGER*);

// pll_manager.h
SAME(PLL_PART_INFO::m_name, char*);
SAME(PLL_PART_INFO::m_speed_grade, const char*);
SAME(PLL_PART_INFO::m_not_listed, bool);
SAME(PLL_PART_INFO::m_type, PLL_TYPE_ENUM);
SAME(PLL_PART_INFO::m_timing_info, PLL_TIMING_INFO);
SAME(PLL_FAMILY_INFO::m_name, char*);
SAME(PLL_FAMILY_INFO::m_path, char*);
SAME(PLL_FAMILY_INFO::m_file_name, char*);
SAME(PLL_FAMILY_INFO::m_parts, PLL_PART_INFO**);
SAME(PLL_FAMILY_INFO::m_speed_grades, char**);
SAME(PLL_FAMILY_INFO::m_listed_speed_grades, const char**);
SAME(PLL_FAMILY_INFO::m_basic_infos, PLL_BASIC_INFO[PLL_TYPE_MAX]);
SAME(PLL_MIGRATION_PART_INFO::m_family, const char*);
SAME(PLL_MIGRATION_INFO::m_parts, MEM_VECTOR<PLL_MIGRATION_PART_INFO>);
SAME(PLL_QUERY::m_migration_info, PLL_MIGRATION_INFO*);
SAME(&PLL_QUERY::add_migration_part, void (PLL_QUERY::*)(const char*, const char*, const char*));
SAME(&PLL_QUERY::get_number_of_migration_parts, unsigned (PLL_QUERY::*)() const);
SAME(&PLL_QUERY::get_migration_part_info,
     void (PLL_QUERY::*)(unsigned, const char**, const char**, const char**) const);
static_assert(std::is_copy_constructible_v<PLL_QUERY> && std::is_copy_assignable_v<PLL_QUERY>);
static_assert(
    std::is_constructible_v<PLL_MIGRATION_PART_INFO_COMPARE, PLL_MANAGER*, PLL_TYPE_ENUM>);
SAME(&PLL_MIGRATION_PART_INFO_COMPARE::operator(),
     bool (PLL_MIGRATION_PART_INFO_COMPARE::*)(const PLL_MIGRATION_PART_INFO&,
                                               const PLL_MIGRATION_PART_INFO&) const);
SAME(PLL_MANAGER::m_families, PLL_FAMILY_INFO**);
static_assert(std::has_virtual_destructor_v<PLL_MANAGER>);
SAME(&PLL_MANAGER::read, bool (PLL_MANAGER::*)(const char*));
SAME(&PLL_MANAGER::read_family_info, PLL_FAMILY_INFO* (PLL_MANAGER::*)(const char*));
SAME(&PLL_MANAGER::read_family_info_from_file, bool (PLL_MANAGER::*)(const char*, const char*));
SAME(&PLL_MANAGER::get_number_of_families, int (PLL_MANAGER::*)() const);
SAME(&PLL_MANAGER::get_family, const char* (PLL_MANAGER::*)(int) const);
SAME(&PLL_MANAGER::get_number_of_speed_grades, int (PLL_MANAGER::*)(const char*));
SAME(&PLL_MANAGER::get_speed_grade, const char* (PLL_MANAGER::*)(const char*, int));
SAME(&PLL_MANAGER::get_number_of_listed_speed_grades, int (PLL_MANAGER::*)(const char*));
SAME(&PLL_MANAGER::get_listed_speed_grade, const char* (PLL_MANAGER::*)(const char*, int));
SAME(&PLL_MANAGER::create_family_info, PLL_FAMILY_INFO* (PLL_MANAGER::*)(const char*));
SAME(&PLL_MANAGER::create_speed_grade, const char* (PLL_MANAGER::*)(PLL_FAMILY_INFO*, const char*));
SAME(&PLL_MANAGER::create_part_info,
     PLL_PART_INFO* (PLL_MANAGER::*)(PLL_FAMILY_INFO*, const char*, const char*, PLL_TYPE_ENUM));
SAME(&PLL_MANAGER::create_listed_speed_grades, void (PLL_MANAGER::*)(PLL_FAMILY_INFO*));
SAME(&PLL_MANAGER::init_pll_info, bool (PLL_MANAGER::*)(PLL_INFO*, const PLL_QUERY&));
SAME(&PLL_MANAGER::init_pll, bool (PLL_MANAGER::*)(PLL*, const PLL_QUERY&));
SAME(&PLL_MANAGER::find_unquoted_string_token, char* (PLL_MANAGER::*)(char**) const);
SAME(&PLL_MANAGER::find_string_token, char* (PLL_MANAGER::*)(char**) const);
SAME(&PLL_MANAGER::find_number_token, bool (PLL_MANAGER::*)(char**, int*) const);
SAME(&PLL_MANAGER::find_float_token, bool (PLL_MANAGER::*)(char**, double*) const);
SAME(&PLL_MANAGER::find_int_array, int (PLL_MANAGER::*)(char**, int**) const);
SAME(&PLL_MANAGER::find_int_array_and_sort, int (PLL_MANAGER::*)(char**, int**) const);
SAME(&PLL_MANAGER::compact_int_array_from_bits_array_and_sort, int (*)(int, const int*, int**));
SAME(&PLL_MANAGER::find_counter_type_array,
     int (PLL_MANAGER::*)(char**, CDB_PLL_COUNTER_TYPE_ENUM**) const);
SAME(&PLL_MANAGER::find_bool_token, bool (PLL_MANAGER::*)(char**) const);
SAME(&PLL_MANAGER::find_pll_type_enum, PLL_TYPE_ENUM (PLL_MANAGER::*)(const char*) const);
SAME(&PLL_MANAGER::find_reconfig_type_enum,
     PLL_RECONFIG_TYPE_ENUM (PLL_MANAGER::*)(const char*) const);
SAME(&PLL_MANAGER::find_counter_type_enum,
     CDB_PLL_COUNTER_TYPE_ENUM (PLL_MANAGER::*)(const char*) const);
SAME(&pll_read_bandwidth_settings_table_files,
     bool (*)(PLL_FAMILY_INFO*, PLL_TYPE_BANDWIDTH_FILE_LIST*));
SAME(&pll_read_bandwidth_settings_table_file,
     bool (*)(PLL_FAMILY_INFO*, PLL_TYPE_ENUM, const char*));
static_assert(std::is_same_v<decltype(static_cast<bool (*)(std::istream&, int&)>(&pll_read_field)),
                             bool (*)(std::istream&, int&)>);
static_assert(
    std::is_same_v<decltype(static_cast<bool (*)(std::istream&, double&)>(&pll_read_field)),
                   bool (*)(std::istream&, double&)>);
static_assert(
    std::is_same_v<decltype(static_cast<bool (*)(std::istream&, MEM_STRING&)>(&pll_read_field)),
                   bool (*)(std::istream&, MEM_STRING&)>);
