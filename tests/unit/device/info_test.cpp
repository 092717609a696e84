// Unit tests of the records of the device description.
#include "pll_info.h"

#include "error_guard.h"
#include "failing_heap.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();
constexpr int UNSET = -2147483647;

constexpr const char* SCALE_CONDITION = "vco_post_scale <= PLL_VCO_POST_SCALE_MAX";

// The six lists of a basic info, to be treated alike.
struct VALUE_LIST
{
    const char* m_name;
    void (PLL_BASIC_INFO::*m_set)(int count, const int* values);
    int PLL_BASIC_INFO::*m_count;
    int* PLL_BASIC_INFO::*m_values;
};

const VALUE_LIST VALUE_LISTS[] = {
    {"currents", &PLL_BASIC_INFO::set_charge_pump_currents,
     &PLL_BASIC_INFO::m_number_of_charge_pump_currents, &PLL_BASIC_INFO::m_charge_pump_currents},
    {"current bits", &PLL_BASIC_INFO::set_charge_pump_current_bits,
     &PLL_BASIC_INFO::m_number_of_charge_pump_current_bits,
     &PLL_BASIC_INFO::m_charge_pump_current_bits},
    {"resistors", &PLL_BASIC_INFO::set_loop_filter_resistors,
     &PLL_BASIC_INFO::m_number_of_loop_filter_resistors, &PLL_BASIC_INFO::m_loop_filter_resistors},
    {"resistor bits", &PLL_BASIC_INFO::set_loop_filter_resistor_bits,
     &PLL_BASIC_INFO::m_number_of_loop_filter_resistor_bits,
     &PLL_BASIC_INFO::m_loop_filter_resistor_bits},
    {"capacitors", &PLL_BASIC_INFO::set_loop_filter_capacitors,
     &PLL_BASIC_INFO::m_number_of_loop_filter_capacitors,
     &PLL_BASIC_INFO::m_loop_filter_capacitors},
    {"capacitor bits", &PLL_BASIC_INFO::set_loop_filter_capacitor_bits,
     &PLL_BASIC_INFO::m_number_of_loop_filter_capacitor_bits,
     &PLL_BASIC_INFO::m_loop_filter_capacitor_bits},
};

// The five arrays of a timing info.
struct TIMING_ARRAY
{
    const char* m_name;
    int (PLL_TIMING_INFO::*m_get)(int vco_post_scale) const;
    void (PLL_TIMING_INFO::*m_set)(int value, int vco_post_scale);
    int (PLL_TIMING_INFO::*m_entries)[3];
    int m_factor;  // of entry 2 when a value is spread
};

const TIMING_ARRAY TIMING_ARRAYS[] = {
    {"min", &PLL_TIMING_INFO::get_vco_min_period, &PLL_TIMING_INFO::set_vco_min_period,
     &PLL_TIMING_INFO::m_vco_min, 2},
    {"max", &PLL_TIMING_INFO::get_vco_max_period, &PLL_TIMING_INFO::set_vco_max_period,
     &PLL_TIMING_INFO::m_vco_max, 2},
    {"center", &PLL_TIMING_INFO::get_vco_center_period, &PLL_TIMING_INFO::set_vco_center_period,
     &PLL_TIMING_INFO::m_vco_center, 2},
    {"gain", &PLL_TIMING_INFO::get_vco_gain, &PLL_TIMING_INFO::set_vco_gain,
     &PLL_TIMING_INFO::m_vco_gain, 1},
    {"spread", &PLL_TIMING_INFO::get_ss_vco_max_period, &PLL_TIMING_INFO::set_ss_vco_max_period,
     &PLL_TIMING_INFO::m_ss_vco_max, 2},
};

}  // namespace

TEST(BasicInfo, StartsEmpty)
{
    const PLL_BASIC_INFO info;
    EXPECT_EQ(10, info.m_number_of_output_counters);
    EXPECT_EQ(-1, info.m_m_counter_preferred_min);
    EXPECT_EQ(-1, info.m_m_counter_preferred_max);
    for (const int value : {info.m_m_counter_max,
                            info.m_m_counter_high_low_max,
                            info.m_m_counter_initial_max,
                            info.m_n_counter_max,
                            info.m_vco_post_scale_counter_max,
                            info.m_output_counter_max,
                            info.m_output_counter_high_low_max,
                            info.m_output_counter_initial_max,
                            info.m_m_counter_phase_tap_max,
                            info.m_m_counter_phase_tap_resolution,
                            info.m_output_counter_phase_tap_max,
                            info.m_output_counter_phase_tap_resolution,
                            info.m_time_delay_max,
                            info.m_time_delay_resolution,
                            info.m_ss_counter_max,
                            info.m_valid_lock_multiplier,
                            info.m_invalid_lock_multiplier,
                            info.m_gate_lock_counter_min,
                            info.m_gate_lock_counter_max,
                            info.m_switch_over_counter_min,
                            info.m_switch_over_counter_max,
                            info.m_charge_pump_current_default,
                            info.m_loop_filter_resistor_default,
                            info.m_loop_filter_capacitor_default,
                            info.m_loop_filter_fixed_capacitor,
                            info.m_ss_charge_pump_current,
                            info.m_feedback_duty_cycle_min,
                            info.m_feedback_duty_cycle_max,
                            info.m_bandwidth_pfd_min_frequency_multiplier,
                            info.m_bandwidth_settings_table_size,
                            info.m_number_of_reconfig_infos}) {
        EXPECT_EQ(0, value);
    }
    for (const double value :
         {info.m_ss_bandwidth, info.m_ss_down_spread_min, info.m_ss_down_spread_max,
          info.m_bandwidth_low, info.m_bandwidth_medium, info.m_bandwidth_high,
          info.m_bandwidth_relative_tolerance, info.m_phase_absolute_tolerance}) {
        EXPECT_EQ(0.0, value);
    }
    EXPECT_FALSE(info.m_output_counter_cascade);
    EXPECT_FALSE(info.m_use_bandwidth_settings_table);
    EXPECT_FALSE(info.m_is_pfd_bandwidth_rule_an_error);
    EXPECT_EQ(nullptr, info.m_bandwidth_settings_table);
    EXPECT_EQ(nullptr, info.m_reconfig_infos);
    for (const VALUE_LIST& list : VALUE_LISTS) {
        SCOPED_TRACE(list.m_name);
        EXPECT_EQ(0, info.*list.m_count);
        EXPECT_EQ(nullptr, info.*list.m_values);
    }
}

TEST(BasicInfo, HasNoStaticPhaseErrorConstants)
{
    const PLL_BASIC_INFO info;
    for (const double constant :
         {info.m_spe_ratio_constant_x, info.m_spe_push_out_constant_a,
          info.m_spe_push_out_constant_b, info.m_spe_push_out_constant_c,
          info.m_spe_pull_in_constant_d, info.m_spe_pull_in_constant_e,
          info.m_spe_pull_in_constant_f, info.m_spe_lock_fail_ratio_constant}) {
        EXPECT_EQ(std::numeric_limits<double>::max(), constant);
    }
}

TEST(BasicInfo, IsHighLowWithALimitOfTheHalves)
{
    PLL_BASIC_INFO info;
    EXPECT_FALSE(info.is_output_counter_high_low());
    info.m_output_counter_high_low_max = 1;
    EXPECT_TRUE(info.is_output_counter_high_low());
    info.m_output_counter_high_low_max = -1;
    EXPECT_FALSE(info.is_output_counter_high_low());
}

TEST(BasicInfo, StoresAnyPostScaleAndReportsOneAboveTwo)
{
    PLL_BASIC_INFO info;
    info.set_vco_post_scale_counter_max(2);
    EXPECT_EQ(2, info.m_vco_post_scale_counter_max);
    info.set_vco_post_scale_counter_max(SMALLEST);
    EXPECT_EQ(SMALLEST, info.m_vco_post_scale_counter_max);
    EXPECTED_REPORTS reports;
    info.set_vco_post_scale_counter_max(3);
    EXPECT_EQ(3, info.m_vco_post_scale_counter_max);
    reports.expect_only("m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX", "pll_info");
}

TEST(ValueList, IsReplacedByACopy)
{
    for (const VALUE_LIST& list : VALUE_LISTS) {
        SCOPED_TRACE(list.m_name);
        PLL_BASIC_INFO info;
        int values[] = {7, 3, 5};
        (info.*list.m_set)(3, values);
        values[0] = 0;
        ASSERT_EQ(3, info.*list.m_count);
        EXPECT_EQ(7, (info.*list.m_values)[0]);
        EXPECT_EQ(3, (info.*list.m_values)[1]);  // no sorting
        EXPECT_EQ(5, (info.*list.m_values)[2]);
        (info.*list.m_set)(1, values + 1);
        ASSERT_EQ(1, info.*list.m_count);
        EXPECT_EQ(3, (info.*list.m_values)[0]);
        EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("pll_info"));
    }
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll_info"));
}

TEST(ValueList, MayBeSetFromItself)
{
    PLL_BASIC_INFO info;
    const int values[] = {1, 2, 3};
    info.set_charge_pump_currents(3, values);
    info.set_charge_pump_currents(2, info.m_charge_pump_currents + 1);
    ASSERT_EQ(2, info.m_number_of_charge_pump_currents);
    EXPECT_EQ(2, info.m_charge_pump_currents[0]);
    EXPECT_EQ(3, info.m_charge_pump_currents[1]);
}

TEST(HostileValueList, IsEmptyWithoutValues)
{
    const int values[] = {1, 2};
    for (const VALUE_LIST& list : VALUE_LISTS) {
        SCOPED_TRACE(list.m_name);
        PLL_BASIC_INFO info;
        for (const int count : {0, -1, SMALLEST}) {
            (info.*list.m_set)(2, values);
            (info.*list.m_set)(count, values);
            EXPECT_EQ(0, info.*list.m_count);
            EXPECT_EQ(nullptr, info.*list.m_values);
        }
        (info.*list.m_set)(2, nullptr);
        EXPECT_EQ(0, info.*list.m_count);
        EXPECT_EQ(nullptr, info.*list.m_values);
    }
}

TEST(ValueList, IsEmptyWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    const int values[] = {1, 2};
    for (const VALUE_LIST& list : VALUE_LISTS) {
        SCOPED_TRACE(list.m_name);
        PLL_BASIC_INFO info;
        (info.*list.m_set)(2, values);
        heap.fail_at(1);
        (info.*list.m_set)(2, values);
        heap.fail_none();
        EXPECT_EQ(0, info.*list.m_count);
        EXPECT_EQ(nullptr, info.*list.m_values);
    }
}

TEST(ReconfigInfo, IsCreatedOncePerType)
{
    PLL_BASIC_INFO info;
    EXPECT_EQ(nullptr, info.find_reconfig_info(PLL_RECONFIG_LONG));
    PLL_RECONFIG_INFO* first = info.create_reconfig_info(PLL_RECONFIG_LONG);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(PLL_RECONFIG_LONG, first->m_reconfig_type);
    EXPECT_EQ(0, first->m_number_of_scan_chain_counter_orders);
    EXPECT_EQ(nullptr, first->m_scan_chain_counter_orders);
    EXPECT_EQ(first, info.create_reconfig_info(PLL_RECONFIG_LONG));
    EXPECT_EQ(1, info.m_number_of_reconfig_infos);
    PLL_RECONFIG_INFO* second = info.create_reconfig_info(PLL_RECONFIG_NONE);
    EXPECT_EQ(2, info.m_number_of_reconfig_infos);
    EXPECT_EQ(first, info.m_reconfig_infos[0]);
    EXPECT_EQ(second, info.m_reconfig_infos[1]);
    EXPECT_EQ(first, info.find_reconfig_info(PLL_RECONFIG_LONG));
    EXPECT_EQ(second, info.find_reconfig_info(PLL_RECONFIG_NONE));
    EXPECT_EQ(nullptr, info.find_reconfig_info(PLL_RECONFIG_SHORT));
}

TEST(ReconfigInfo, KeepsACopyOfItsOrders)
{
    PLL_BASIC_INFO info;
    PLL_RECONFIG_INFO* reconfig = info.create_reconfig_info(PLL_RECONFIG_SHORT);
    CDB_PLL_COUNTER_TYPE_ENUM orders[] = {CDB_PLL_COUNTER_M, CDB_PLL_COUNTER_N, CDB_PLL_COUNTER_C5};
    reconfig->set_scan_chain_counter_orders(3, orders);
    orders[0] = CDB_PLL_COUNTER_L0;
    EXPECT_EQ(3, info.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_SHORT));
    EXPECT_EQ(CDB_PLL_COUNTER_M, info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_SHORT, 0));
    EXPECT_EQ(CDB_PLL_COUNTER_C5,
              info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_SHORT, 2));
    EXPECT_EQ(0, info.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_LONG));
    EXPECT_EQ(20, info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_LONG, 0));
    reconfig->set_scan_chain_counter_orders(0, orders);
    EXPECT_EQ(0, info.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_SHORT));
    EXPECT_EQ(nullptr, reconfig->m_scan_chain_counter_orders);
    EXPECT_EQ(20, info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_SHORT, 0));
}

TEST(HostileReconfigInfo, ReadsTheNearestOrder)
{
    PLL_BASIC_INFO info;
    PLL_RECONFIG_INFO* reconfig = info.create_reconfig_info(PLL_RECONFIG_SHORT);
    CDB_PLL_COUNTER_TYPE_ENUM orders[] = {CDB_PLL_COUNTER_M, CDB_PLL_COUNTER_N};
    reconfig->set_scan_chain_counter_orders(2, orders);
    for (const int index : {-1, SMALLEST}) {
        EXPECT_EQ(CDB_PLL_COUNTER_M,
                  info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_SHORT, index));
    }
    for (const int index : {2, LARGEST}) {
        EXPECT_EQ(CDB_PLL_COUNTER_N,
                  info.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_SHORT, index));
    }
    reconfig->set_scan_chain_counter_orders(SMALLEST, orders);
    EXPECT_EQ(0, reconfig->m_number_of_scan_chain_counter_orders);
    reconfig->set_scan_chain_counter_orders(2, nullptr);
    EXPECT_EQ(0, reconfig->m_number_of_scan_chain_counter_orders);
}

TEST(ReconfigInfo, IsNotCreatedWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    {
        PLL_BASIC_INFO info;
        PLL_RECONFIG_INFO* present = info.create_reconfig_info(PLL_RECONFIG_SHORT);
        for (const long nth : {1L, 2L}) {
            heap.fail_at(nth);
            EXPECT_EQ(nullptr, info.create_reconfig_info(PLL_RECONFIG_LONG));
            EXPECT_EQ(1, heap.get_failures());
            EXPECT_EQ(1, info.m_number_of_reconfig_infos);
            EXPECT_EQ(present, info.find_reconfig_info(PLL_RECONFIG_SHORT));
        }
        heap.fail_at(1);
        CDB_PLL_COUNTER_TYPE_ENUM orders[] = {CDB_PLL_COUNTER_M};
        present->set_scan_chain_counter_orders(1, orders);
        EXPECT_EQ(0, present->m_number_of_scan_chain_counter_orders);
        heap.fail_none();
        EXPECT_NE(nullptr, info.create_reconfig_info(PLL_RECONFIG_LONG));
    }
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll_info"));
}

TEST(TimingInfo, StartsUnset)
{
    const PLL_TIMING_INFO info;
    for (const TIMING_ARRAY& array : TIMING_ARRAYS) {
        SCOPED_TRACE(array.m_name);
        for (const int entry : info.*array.m_entries) {
            EXPECT_EQ(UNSET, entry);
        }
    }
    for (const int value :
         {info.m_input_min, info.m_input_max, info.m_output_min, info.m_output_max,
          info.m_external_output_min, info.m_external_output_max, info.m_pfd_min, info.m_pfd_max,
          info.m_ss_spread_min, info.m_ss_spread_max}) {
        EXPECT_EQ(UNSET, value);
    }
}

TEST(TimingInfo, SetsOneEntryOrSpreadsTheValue)
{
    for (const TIMING_ARRAY& array : TIMING_ARRAYS) {
        SCOPED_TRACE(array.m_name);
        for (const int negative : {-1, -2, SMALLEST}) {
            PLL_TIMING_INFO info;
            (info.*array.m_set)(1000, negative);
            EXPECT_EQ(UNSET, (info.*array.m_entries)[0]);
            EXPECT_EQ(1000, (info.*array.m_entries)[1]);
            EXPECT_EQ(1000 * array.m_factor, (info.*array.m_entries)[2]);
            EXPECT_EQ(1000, (info.*array.m_get)(negative));
        }
        for (int s = 0; s <= 2; ++s) {
            PLL_TIMING_INFO info;
            (info.*array.m_set)(50, s);
            for (int i = 0; i <= 2; ++i) {
                EXPECT_EQ(i == s ? 50 : UNSET, (info.*array.m_get)(i));
            }
        }
    }
}

TEST(HostileTimingInfo, ReportsAPostScaleAboveTwo)
{
    EXPECTED_REPORTS reports;
    for (const TIMING_ARRAY& array : TIMING_ARRAYS) {
        SCOPED_TRACE(array.m_name);
        PLL_TIMING_INFO info;
        (info.*array.m_set)(5, 2);
        for (const int s : {3, LARGEST}) {
            (info.*array.m_set)(7, s);
            EXPECT_EQ(5, (info.*array.m_get)(s));
        }
        reports.expect_only(SCALE_CONDITION, "pll_info", 4);
        EXPECT_EQ(UNSET, info.m_input_min);
        (info.*array.m_set)(LARGEST, -1);
        EXPECT_EQ(array.m_factor == 2 ? -2 : LARGEST, (info.*array.m_entries)[2]);
    }
    reports.expect_none();
}

TEST(Info, SharesTheBasicInfo)
{
    PLL_INFO info;
    EXPECT_FALSE(info.has_info());
    EXPECT_EQ(nullptr, info.m_basic_info);
    EXPECT_EQ(UNSET, info.m_timing_info.m_pfd_min);
    PLL_BASIC_INFO basic_info;
    info.m_basic_info = &basic_info;
    info.m_timing_info.m_pfd_min = 3;
    const PLL_INFO copy = info;
    EXPECT_TRUE(copy.has_info());
    EXPECT_EQ(&basic_info, copy.m_basic_info);
    EXPECT_EQ(3, copy.m_timing_info.m_pfd_min);
}

TEST(ValueArray, IsCopied)
{
    const int values[] = {4, 5, 6};
    int* copy = pll_copy_value_array(3, values);
    ASSERT_NE(nullptr, copy);
    EXPECT_NE(values, copy);
    EXPECT_EQ(4, copy[0]);
    EXPECT_EQ(6, copy[2]);
    EXPECT_EQ(3 * sizeof(int), MEM_MANAGER::get_live_bytes("pll_info"));
    MEM_MANAGER::delete_wrapper(copy, "pll_info");
    for (const int count : {0, -1, SMALLEST}) {
        EXPECT_EQ(nullptr, pll_copy_value_array(count, values));
    }
    EXPECT_EQ(nullptr, pll_copy_value_array(3, nullptr));
    FAILING_HEAP heap;
    heap.fail_at(1);
    EXPECT_EQ(nullptr, pll_copy_value_array(3, values));
}

TEST(ValueArray, IsSearched)
{
    const int values[] = {4, 5, 6};
    EXPECT_TRUE(pll_array_value_exists(4, values, 3));
    EXPECT_TRUE(pll_array_value_exists(6, values, 3));
    EXPECT_FALSE(pll_array_value_exists(6, values, 2));
    EXPECT_FALSE(pll_array_value_exists(7, values, 3));
    EXPECT_FALSE(pll_array_value_exists(4, values, 0));
    EXPECT_FALSE(pll_array_value_exists(4, values, SMALLEST));
    EXPECT_FALSE(pll_array_value_exists(4, nullptr, 3));
}

TEST(BandwidthSetting, TakesTrackedMemory)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks("pll_info");
    auto* one = new PLL_BANDWIDTH_SETTING;
    auto* some = new PLL_BANDWIDTH_SETTING[3];
    auto* group = new PLL_BANDWIDTH_SETTING_GROUP;
    auto* groups = new PLL_BANDWIDTH_SETTING_GROUP[2];
    auto* reconfig = new PLL_RECONFIG_INFO(PLL_RECONFIG_NONE);
    EXPECT_EQ(blocks + 5, MEM_MANAGER::get_live_blocks("pll_info"));
    EXPECT_EQ(0, one->m_m);
    EXPECT_EQ(0.0, some[2].m_slow_jitter_peaking);
    group->m_settings.push_back(one);
    EXPECT_EQ(blocks + 6, MEM_MANAGER::get_live_blocks("pll_info"));
    delete group;  // its rows stay
    EXPECT_EQ(blocks + 4, MEM_MANAGER::get_live_blocks("pll_info"));
    delete one;
    delete[] some;
    delete[] groups;
    delete reconfig;
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks("pll_info"));
}

TEST(BandwidthSetting, IsNullWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    heap.fail_from(1);
    const auto* const row = new PLL_BANDWIDTH_SETTING;
    const auto* const rows = new PLL_BANDWIDTH_SETTING[3];
    const auto* const group = new PLL_BANDWIDTH_SETTING_GROUP;
    const auto* const groups = new PLL_BANDWIDTH_SETTING_GROUP[3];
    EXPECT_EQ(nullptr, row);
    EXPECT_EQ(nullptr, rows);
    EXPECT_EQ(nullptr, group);
    EXPECT_EQ(nullptr, groups);
    EXPECT_EQ(4, heap.get_failures());
}
