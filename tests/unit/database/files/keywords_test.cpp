// Every keyword of family files: what it stores, and that it needs its scope.
#include "database/files/family_file.h"
#include "error_guard.h"
#include "manager_builders.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <string>
#include <vector>

using namespace pll_internal;

namespace {

typedef PLL_BASIC_INFO BASIC;
typedef PLL_TIMING_INFO TIMING;

// ---- Fields that take one value

template <class RECORD, class VALUE>
struct FIELD_ROW
{
    const char* m_keyword;
    VALUE RECORD::*m_field;
};

// clang-format off
const FIELD_ROW<BASIC, int> INT_ROWS[] = {
    {"m_counter_max", &BASIC::m_m_counter_max},
    {"m_counter_preferred_min", &BASIC::m_m_counter_preferred_min},
    {"m_counter_preferred_max", &BASIC::m_m_counter_preferred_max},
    {"m_counter_high_low_max", &BASIC::m_m_counter_high_low_max},
    {"m_counter_initial_max", &BASIC::m_m_counter_initial_max},
    {"m_counter_phase_tap_max", &BASIC::m_m_counter_phase_tap_max},
    {"m_counter_phase_tap_resolution", &BASIC::m_m_counter_phase_tap_resolution},
    {"n_counter_max", &BASIC::m_n_counter_max},
    {"vco_post_scale_counter_max", &BASIC::m_vco_post_scale_counter_max},
    {"output_counter_max", &BASIC::m_output_counter_max},
    {"output_counter_high_low_max", &BASIC::m_output_counter_high_low_max},
    {"output_counter_initial_max", &BASIC::m_output_counter_initial_max},
    {"number_of_output_counters", &BASIC::m_number_of_output_counters},
    {"output_counter_phase_tap_max", &BASIC::m_output_counter_phase_tap_max},
    {"output_counter_phase_tap_resolution", &BASIC::m_output_counter_phase_tap_resolution},
    {"time_delay_max", &BASIC::m_time_delay_max},
    {"time_delay_resolution", &BASIC::m_time_delay_resolution},
    {"charge_pump_current_default", &BASIC::m_charge_pump_current_default},
    {"loop_filter_resistor_default", &BASIC::m_loop_filter_resistor_default},
    {"loop_filter_capacitor_default", &BASIC::m_loop_filter_capacitor_default},
    {"loop_filter_fixed_capacitor", &BASIC::m_loop_filter_fixed_capacitor},
    {"valid_lock_multiplier", &BASIC::m_valid_lock_multiplier},
    {"invalid_lock_multiplier", &BASIC::m_invalid_lock_multiplier},
    {"gate_lock_counter_min", &BASIC::m_gate_lock_counter_min},
    {"gate_lock_counter_max", &BASIC::m_gate_lock_counter_max},
    {"switch_over_counter_min", &BASIC::m_switch_over_counter_min},
    {"switch_over_counter_max", &BASIC::m_switch_over_counter_max},
    {"ss_counter_max", &BASIC::m_ss_counter_max},
    {"ss_charge_pump_current", &BASIC::m_ss_charge_pump_current},
    {"feedback_duty_cycle_min", &BASIC::m_feedback_duty_cycle_min},
    {"feedback_duty_cycle_max", &BASIC::m_feedback_duty_cycle_max},
    {"bandwidth_pfd_min_frequency_multiplier", &BASIC::m_bandwidth_pfd_min_frequency_multiplier},
};
const FIELD_ROW<BASIC, double> REAL_ROWS[] = {
    {"ss_bandwidth", &BASIC::m_ss_bandwidth},
    {"ss_down_spread_min", &BASIC::m_ss_down_spread_min},
    {"ss_down_spread_max", &BASIC::m_ss_down_spread_max},
    {"bandwidth_low", &BASIC::m_bandwidth_low},
    {"bandwidth_medium", &BASIC::m_bandwidth_medium},
    {"bandwidth_high", &BASIC::m_bandwidth_high},
    {"bandwidth_relative_tolerance", &BASIC::m_bandwidth_relative_tolerance},
    {"phase_absolute_tolerance", &BASIC::m_phase_absolute_tolerance},
    {"spe_ratio_constant_x", &BASIC::m_spe_ratio_constant_x},
    {"spe_push_out_constant_a", &BASIC::m_spe_push_out_constant_a},
    {"spe_push_out_constant_b", &BASIC::m_spe_push_out_constant_b},
    {"spe_push_out_constant_c", &BASIC::m_spe_push_out_constant_c},
    {"spe_pull_in_constant_d", &BASIC::m_spe_pull_in_constant_d},
    {"spe_pull_in_constant_e", &BASIC::m_spe_pull_in_constant_e},
    {"spe_pull_in_constant_f", &BASIC::m_spe_pull_in_constant_f},
    {"spe_lock_fail_ratio_constant", &BASIC::m_spe_lock_fail_ratio_constant},
};
const FIELD_ROW<BASIC, bool> FLAG_ROWS[] = {
    {"output_counter_cascade", &BASIC::m_output_counter_cascade},
    {"is_pfd_bandwidth_rule_an_error", &BASIC::m_is_pfd_bandwidth_rule_an_error},
};
const FIELD_ROW<TIMING, int> TIMING_ROWS[] = {
    {"pfd_min", &TIMING::m_pfd_min},
    {"pfd_max", &TIMING::m_pfd_max},
    {"input_min", &TIMING::m_input_min},
    {"input_max", &TIMING::m_input_max},
    {"output_min", &TIMING::m_output_min},
    {"output_max", &TIMING::m_output_max},
    {"external_output_min", &TIMING::m_external_output_min},
    {"external_output_max", &TIMING::m_external_output_max},
    {"ss_spread_min", &TIMING::m_ss_spread_min},
    {"ss_spread_max", &TIMING::m_ss_spread_max},
};
// clang-format on

template <class RECORD, class VALUE, std::size_t SIZE>
void expect_only_field(const FIELD_ROW<RECORD, VALUE> (&rows)[SIZE], const char* keyword,
                       const RECORD& record, VALUE expected)
{
    const RECORD fresh;
    for (const FIELD_ROW<RECORD, VALUE>& row : rows) {
        const bool is_set = std::string(keyword) == row.m_keyword;
        EXPECT_EQ(is_set ? expected : fresh.*row.m_field, record.*row.m_field) << row.m_keyword;
    }
}

bool sets_a_second_field(const std::string& keyword)
{
    return keyword == "m_counter_high_low_max" || keyword == "output_counter_high_low_max";
}

TEST(Keywords, StoreIntegersOfAPllType)
{
    for (const auto& row : INT_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " 2 77\n"));
        EXPECT_EQ(2, database.basic().*row.m_field);
        if (!sets_a_second_field(row.m_keyword)) {
            expect_only_field(INT_ROWS, row.m_keyword, database.basic(), 2);
        }
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + "\n"));
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + " -1\n"));
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + " 1.5\n"));
        EXPECT_EQ(2, database.basic().*row.m_field);
    }
}

TEST(Keywords, StoreRealsOfAPllType)
{
    for (const auto& row : REAL_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " 0.5Hz\n"));
        expect_only_field(REAL_ROWS, row.m_keyword, database.basic(), 0.5);
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + "\n"));
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + " 0.0\n"));
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + " word\n"));
        EXPECT_EQ(0.5, database.basic().*row.m_field);
    }
}

TEST(Keywords, StoreFlagsOfAPllType)
{
    for (const auto& row : FLAG_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " Yes\n"));
        expect_only_field(FLAG_ROWS, row.m_keyword, database.basic(), true);
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " maybe\n"));
        EXPECT_FALSE(database.basic().*row.m_field);
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " on\n" + row.m_keyword + "\n"));
        EXPECT_FALSE(database.basic().*row.m_field);
    }
}

TEST(Keywords, StoreIntegersOfAPart)
{
    for (const auto& row : TIMING_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(PART_HEAD + row.m_keyword + " 1234 77\n"));
        expect_only_field(TIMING_ROWS, row.m_keyword, database.timing(), 1234);
        EXPECT_FALSE(database.read(PART_HEAD + row.m_keyword + "\n"));
        EXPECT_FALSE(database.read(PART_HEAD + row.m_keyword + " x\n"));
        EXPECT_EQ(1234, database.timing().*row.m_field);
    }
}

TEST(Keywords, GoToTheTypeThatIsCurrent)
{
    DATABASE database;
    EXPECT_TRUE(database.read("family Fam\npll VESTRA_PLL\nn_counter_max 3\npll FAST_PLL\n"
                              "n_counter_max 4\n"));
    EXPECT_EQ(0, database.basic("Fam", ENHANCED_PLL).m_n_counter_max);
    EXPECT_EQ(4, database.basic("Fam", FAST_PLL).m_n_counter_max);
    EXPECT_EQ(3, database.basic("Fam", VESTRA_PLL).m_n_counter_max);
}

// ---- Counters by halves

TEST(Keywords, OfHalvesSetTwiceTheCountAndThoseOfTheCountNoHalves)
{
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD + "m_counter_high_low_max 256\n"
                                          "output_counter_high_low_max 128\n"));
    EXPECT_EQ(512, database.basic().m_m_counter_max);
    EXPECT_EQ(256, database.basic().m_m_counter_high_low_max);
    EXPECT_EQ(256, database.basic().m_output_counter_max);
    EXPECT_EQ(128, database.basic().m_output_counter_high_low_max);
    EXPECT_TRUE(database.read(TYPE_HEAD + "m_counter_max 300\noutput_counter_max 200\n"));
    EXPECT_EQ(300, database.basic().m_m_counter_max);
    EXPECT_EQ(0, database.basic().m_m_counter_high_low_max);
    EXPECT_EQ(200, database.basic().m_output_counter_max);
    EXPECT_EQ(0, database.basic().m_output_counter_high_low_max);
}

TEST(Keywords, OfHalvesWrapWhenTheyAreHuge)
{
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD + "m_counter_high_low_max 2147483647\n"));
    EXPECT_EQ(-2, database.basic().m_m_counter_max);
    EXPECT_EQ(std::numeric_limits<int>::max(), database.basic().m_m_counter_high_low_max);
}

TEST(Keywords, OfAPostScaleAboveTheLargestAreReportedByTheRecords)
{
    EXPECTED_REPORTS reports;
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD + "vco_post_scale_counter_max 3\n"));
    EXPECT_EQ(3, database.basic().m_vco_post_scale_counter_max);
    reports.expect_only("m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX", "pll_info");
    EXPECT_TRUE(database.read(PART_HEAD + "vco_min_post_scale 3 500\n"));
    reports.expect_only("vco_post_scale <= PLL_VCO_POST_SCALE_MAX", "pll_info");
    EXPECT_EQ(PLL_UNSET_MINIMUM, database.timing().m_vco_min[2]);
}

// ---- Lists

struct LIST_ROW
{
    const char* m_keyword;  // of the list; the one of its bits ends in "_bit"
    int BASIC::*m_count;
    int* BASIC::*m_values;
    int BASIC::*m_bit_count;
    int* BASIC::*m_bits;
};

const LIST_ROW LIST_ROWS[] = {
    {"charge_pump_current", &BASIC::m_number_of_charge_pump_currents,
     &BASIC::m_charge_pump_currents, &BASIC::m_number_of_charge_pump_current_bits,
     &BASIC::m_charge_pump_current_bits},
    {"loop_filter_resistor", &BASIC::m_number_of_loop_filter_resistors,
     &BASIC::m_loop_filter_resistors, &BASIC::m_number_of_loop_filter_resistor_bits,
     &BASIC::m_loop_filter_resistor_bits},
    {"loop_filter_capacitor", &BASIC::m_number_of_loop_filter_capacitors,
     &BASIC::m_loop_filter_capacitors, &BASIC::m_number_of_loop_filter_capacitor_bits,
     &BASIC::m_loop_filter_capacitor_bits},
};

std::vector<int> values_of(const BASIC& basic, int BASIC::*count, int* BASIC::*values)
{
    return {basic.*values, basic.*values + basic.*count};
}

TEST(Keywords, StoreListsSorted)
{
    for (const LIST_ROW& row : LIST_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " 10 20 0 15 x 5\n"));
        EXPECT_EQ((std::vector<int>{0, 10, 15, 20}),
                  values_of(database.basic(), row.m_count, row.m_values));
        EXPECT_EQ(0, database.basic().*row.m_bit_count);
        EXPECT_FALSE(database.read(TYPE_HEAD + row.m_keyword + "\n"));
        EXPECT_TRUE(database.read(TYPE_HEAD + row.m_keyword + " 7\n"));
        EXPECT_EQ((std::vector<int>{7}), values_of(database.basic(), row.m_count, row.m_values));
    }
}

TEST(Keywords, StoreBitsInFileOrderAndThePositiveOnesAsTheList)
{
    for (const LIST_ROW& row : LIST_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        const std::string keyword = row.m_keyword + std::string("_bit ");
        EXPECT_TRUE(database.read(TYPE_HEAD + keyword + "8 0 2 4 0\n"));
        EXPECT_EQ((std::vector<int>{8, 0, 2, 4, 0}),
                  values_of(database.basic(), row.m_bit_count, row.m_bits));
        EXPECT_EQ((std::vector<int>{2, 4, 8}),
                  values_of(database.basic(), row.m_count, row.m_values));
        EXPECT_FALSE(database.read(TYPE_HEAD + keyword + "x\n"));
        EXPECT_TRUE(database.read(TYPE_HEAD + keyword + "0 0\n"));
        EXPECT_EQ(2, database.basic().*row.m_bit_count);
        EXPECT_EQ(0, database.basic().*row.m_count);
        EXPECT_EQ(nullptr, database.basic().*row.m_values);
    }
}

// ---- VCO limits

struct VCO_ROW
{
    const char* m_keyword;  // for every post-scale; the one for a single ends in "_post_scale"
    int (TIMING::*m_field)[3];
    int m_factor;  // of the value for post-scale 2
};

const VCO_ROW VCO_ROWS[] = {
    {"vco_min", &TIMING::m_vco_min, 2},       {"vco_max", &TIMING::m_vco_max, 2},
    {"vco_center", &TIMING::m_vco_center, 2}, {"vco_gain", &TIMING::m_vco_gain, 1},
    {"ss_vco_max", &TIMING::m_ss_vco_max, 2},
};

void expect_vco(const TIMING& timing, const VCO_ROW& row, int at_1, int at_2)
{
    for (const VCO_ROW& other : VCO_ROWS) {
        const bool is_set = other.m_field == row.m_field;
        EXPECT_EQ(PLL_UNSET_MINIMUM, (timing.*other.m_field)[0]);
        EXPECT_EQ(is_set ? at_1 : PLL_UNSET_MINIMUM, (timing.*other.m_field)[1]);
        EXPECT_EQ(is_set ? at_2 : PLL_UNSET_MINIMUM, (timing.*other.m_field)[2]);
    }
}

TEST(Keywords, StoreVcoLimitsOfEveryPostScale)
{
    for (const VCO_ROW& row : VCO_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        EXPECT_TRUE(database.read(PART_HEAD + row.m_keyword + " 700\n"));
        expect_vco(database.timing(), row, 700, 700 * row.m_factor);
        EXPECT_FALSE(database.read(PART_HEAD + row.m_keyword + " -5\n"));
    }
}

TEST(Keywords, StoreVcoLimitsOfOnePostScale)
{
    for (const VCO_ROW& row : VCO_ROWS) {
        SCOPED_TRACE(row.m_keyword);
        DATABASE database;
        const std::string keyword = row.m_keyword + std::string("_post_scale ");
        EXPECT_TRUE(database.read(PART_HEAD + keyword + "2 700\n"));
        expect_vco(database.timing(), row, PLL_UNSET_MINIMUM, 700);
        EXPECT_TRUE(database.read(PART_HEAD + keyword + "1 300\n"));
        expect_vco(database.timing(), row, 300, 700);
        EXPECT_TRUE(database.read(PART_HEAD + keyword + "0 200\n"));
        EXPECT_EQ(200, (database.timing().*row.m_field)[0]);
        EXPECT_EQ(300, (database.timing().*row.m_field)[1]);
        EXPECT_EQ(700, (database.timing().*row.m_field)[2]);
        EXPECT_FALSE(database.read(PART_HEAD + keyword + "1\n"));
        EXPECT_FALSE(database.read(PART_HEAD + keyword + "x 1\n"));
    }
}

// ---- The rest

TEST(Keywords, OfReconfigurationStoreScanChains)
{
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD +
                              "reconfig_type ENHANCED\n"
                              "reconfig_scan_chain_counter_order \"L0\" c5 what M end N\n"
                              "reconfig_type none\n"
                              "reconfig_scan_chain_counter_order N\n"
                              "reconfig_type enhanced\n"));
    const BASIC& basic = database.basic();
    EXPECT_EQ(2, basic.m_number_of_reconfig_infos);
    ASSERT_EQ(4, basic.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_ENHANCED));
    const CDB_PLL_COUNTER_TYPE_ENUM EXPECTED[] = {CDB_PLL_COUNTER_L0, CDB_PLL_COUNTER_C5,
                                                  CDB_PLL_COUNTER_TYPE_MAX, CDB_PLL_COUNTER_M};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(EXPECTED[i],
                  basic.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_ENHANCED, i));
    }
    EXPECT_EQ(1, basic.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_NONE));
}

TEST(Keywords, OfListingFlagThePart)
{
    DATABASE database;
    EXPECT_TRUE(database.read("not_listed true\n" + PART_HEAD + "not_listed TRUE\npart P2\n"));
    EXPECT_TRUE(database.family("Fam").m_parts[0]->m_not_listed);
    EXPECT_FALSE(database.family("Fam").m_parts[1]->m_not_listed);
    EXPECT_TRUE(database.read(PART_HEAD + "not_listed\n"));
    EXPECT_FALSE(database.family("Fam").m_parts[0]->m_not_listed);
}

// ---- Scopes

struct SCOPE_ROW
{
    const char* m_keyword;
    PLL_SCOPE m_scope;
};

const SCOPE_ROW STRUCTURE_ROWS[] = {
    {"include", PLL_SCOPE::ANYWHERE},
    {"family", PLL_SCOPE::ANYWHERE},
    {"pll", PLL_SCOPE::ANYWHERE},
    {"speed_grade", PLL_SCOPE::FAMILY},
    {"part", PLL_SCOPE::SPEED_GRADE},
    {"not_listed", PLL_SCOPE::PART},
    {"bandwidth_settings_table_file", PLL_SCOPE::PLL_TYPE},
    {"reconfig_type", PLL_SCOPE::PLL_TYPE},
    {"reconfig_scan_chain_counter_order", PLL_SCOPE::RECONFIG},
};

std::vector<SCOPE_ROW> all_keywords()
{
    std::vector<SCOPE_ROW> rows(std::begin(STRUCTURE_ROWS), std::end(STRUCTURE_ROWS));
    static std::vector<std::string> names;
    names.clear();
    for (const LIST_ROW& row : LIST_ROWS) {
        names.push_back(row.m_keyword + std::string("_bit"));
    }
    for (const VCO_ROW& row : VCO_ROWS) {
        names.push_back(row.m_keyword + std::string("_post_scale"));
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool is_list = i < std::size(LIST_ROWS);
        rows.push_back({names[i].c_str(), is_list ? PLL_SCOPE::PLL_TYPE : PLL_SCOPE::PART});
    }
    const auto add = [&rows](const auto& from, PLL_SCOPE scope) {
        for (const auto& row : from) {
            rows.push_back({row.m_keyword, scope});
        }
    };
    add(INT_ROWS, PLL_SCOPE::PLL_TYPE);
    add(REAL_ROWS, PLL_SCOPE::PLL_TYPE);
    add(FLAG_ROWS, PLL_SCOPE::PLL_TYPE);
    add(LIST_ROWS, PLL_SCOPE::PLL_TYPE);
    add(TIMING_ROWS, PLL_SCOPE::PART);
    add(VCO_ROWS, PLL_SCOPE::PART);
    return rows;
}

TEST(Keywords, AreFoundInAnyCaseWithTheirScopes)
{
    const std::vector<SCOPE_ROW> rows = all_keywords();
    EXPECT_EQ(85U, rows.size());  // four structure keywords, "part" and 80 others
    for (const SCOPE_ROW& row : rows) {
        SCOPED_TRACE(row.m_keyword);
        std::string name = row.m_keyword;
        name[0] = static_cast<char>(name[0] - 'a' + 'A');
        const PLL_KEYWORD* const keyword = find_keyword(name.c_str());
        ASSERT_NE(nullptr, keyword);
        EXPECT_STREQ(row.m_keyword, keyword->m_keyword);
        EXPECT_EQ(row.m_scope, keyword->m_scope);
    }
}

TEST(Keywords, AreNoOtherWords)
{
    for (const char* word : {"", "m_counter", "m_counter_maxx", "zzz", "\xFF", "_", "Famil", "~"}) {
        EXPECT_EQ(nullptr, find_keyword(word)) << word;
    }
}

TEST(Keywords, OutOfScopeAreSkippedWithTheirOperands)
{
    for (const SCOPE_ROW& row : all_keywords()) {
        SCOPED_TRACE(row.m_keyword);
        if (row.m_scope == PLL_SCOPE::ANYWHERE) {
            continue;
        }
        DATABASE database;
        EXPECT_TRUE(database.read(row.m_keyword + std::string(" -x 0\n")));
        EXPECT_EQ(0, database.m_manager.get_number_of_families());
        if (row.m_scope != PLL_SCOPE::FAMILY) {
            EXPECT_TRUE(database.read("family Fam\n" + std::string(row.m_keyword) + "\n"));
            EXPECT_EQ(0, database.family("Fam").m_number_of_parts);
        }
    }
}

}  // namespace
