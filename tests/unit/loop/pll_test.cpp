// Unit tests of the PLL object: defaults, shared lists, copies, error strings.
#include "pll.h"

#include "error_guard.h"
#include "failing_heap.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

constexpr const char* MAX_TAPS_CONDITION =
    "m_max_taps_count >= 0 && m_max_taps_count <= PLL_MAX_TAPS";
constexpr const char* USER_TAPS_CONDITION =
    "m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count";

const std::vector<int> CAPACITORS = {5, 10, 15, 20};
const std::vector<int> CURRENTS = {4,  10, 15, 20, 24, 30, 35,  40,  45,  50,  55,  60,
                                   65, 70, 75, 80, 85, 90, 100, 112, 135, 148, 164, 212};
const std::vector<int> RESISTORS = {1021,  2041,  3062,  4082,  7144,  8164,  9185,  10205,
                                    11226, 12246, 13266, 14287, 17349, 18369, 19390, 20410};

std::vector<int> to_vector(const MEM_VECTOR<int>& list)
{
    return {list.begin(), list.end()};
}

// Default limits of its own for one test.
class CHANGED_DEFAULTS
{
public:
    CHANGED_DEFAULTS() : m_m(PLL::m_default_m_counter_max_count)
    {
        for (int i = 0; i < 3; ++i) {
            PLL::m_default_vco_min_period[i] = 10 + i;
            PLL::m_default_vco_max_period[i] = 20 + i;
            PLL::m_default_vco_center_period[i] = 30 + i;
        }
        PLL::m_default_pfd_min_period = 40;
        PLL::m_default_pfd_max_period = 41;
        PLL::m_default_fin_min_period = 42;
        PLL::m_default_m_counter_max_count = 43;
        PLL::m_default_n_counter_max_count = 44;
        PLL::m_default_tap_counter_max_count = 45;
    }
    ~CHANGED_DEFAULTS()
    {
        for (int i = 0; i < 3; ++i) {
            PLL::m_default_vco_min_period[i] = 1000;
            PLL::m_default_vco_max_period[i] = 3334;
            PLL::m_default_vco_center_period[i] = 1666;
        }
        PLL::m_default_pfd_min_period = 1500;
        PLL::m_default_pfd_max_period = 333333;
        PLL::m_default_fin_min_period = 1000;
        PLL::m_default_m_counter_max_count = m_m;
        PLL::m_default_n_counter_max_count = 512;
        PLL::m_default_tap_counter_max_count = 512;
    }
    CHANGED_DEFAULTS(const CHANGED_DEFAULTS&) = delete;
    CHANGED_DEFAULTS& operator=(const CHANGED_DEFAULTS&) = delete;

private:
    int m_m;
};

}  // namespace

TEST(CounterM, HasItsDefaults)
{
    const PLL_COUNTER_M counter;
    EXPECT_EQ(1, counter.m_count);
    EXPECT_EQ(1, counter.m_ss_count);
    EXPECT_EQ(1, counter.m_initial);
    EXPECT_EQ(0, counter.m_delay);
    EXPECT_EQ(0, counter.m_vco_tap);
    EXPECT_EQ(9999, counter.m_max_vco_tap);
    EXPECT_EQ(1, counter.m_min_count);
    EXPECT_EQ(512, counter.m_max_count);
}

TEST(OutputTap, HasItsDefaults)
{
    const PLL_OUTPUT_TAP tap;
    EXPECT_FALSE(tap.m_score);
    EXPECT_EQ(0.0, tap.m_delta_phase);
    EXPECT_EQ(1, tap.m_count);
    EXPECT_EQ(0, tap.m_delay);
    EXPECT_TRUE(tap.m_even);
    EXPECT_TRUE(tap.m_bypass);
    EXPECT_EQ(1, tap.m_high);
    EXPECT_EQ(0, tap.m_low);
    EXPECT_EQ(512, tap.m_max_count);
    EXPECT_EQ(1, tap.m_initial);
    EXPECT_EQ(0, tap.m_vco_tap);
    EXPECT_EQ(-1, tap.m_previous_tap);
    EXPECT_EQ(2147483647.0, tap.m_next_phase_degree);
    EXPECT_EQ(-2147483648.0, tap.m_prev_phase_degree);
    EXPECT_EQ(100, tap.m_next_duty_cycle);
    EXPECT_EQ(0, tap.m_prev_duty_cycle);
    EXPECT_EQ(100, tap.m_smallest_duty_cycle_min);
    EXPECT_EQ(0, tap.m_largest_duty_cycle_max);
}

TEST(Pll, HasItsDefaultCountersAndLimits)
{
    const PLL pll(3, 10);
    EXPECT_EQ(1, pll.get_m());
    EXPECT_EQ(1, pll.get_n());
    EXPECT_EQ(1.0, pll.get_m_over_n());
    EXPECT_EQ(3, pll.m_user_taps_count);
    EXPECT_EQ(3, pll.m_total_taps_count);
    EXPECT_EQ(10, pll.m_max_taps_count);
    EXPECT_EQ(-1, pll.m_feedback_tap);
    EXPECT_EQ(512, pll.m_m.m_max_count);
    EXPECT_EQ(512, pll.m_n.m_max_count);
    EXPECT_EQ(9999, pll.m_m.m_max_vco_tap);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(1000, pll.m_vco_min_period[i]);
        EXPECT_EQ(3334, pll.m_vco_max_period[i]);
        EXPECT_EQ(1666, pll.m_vco_center_period[i]);
        EXPECT_EQ(1667, pll.m_ss_vco_max_period[i]);
        EXPECT_EQ(1880.0, pll.m_kvco[i]);
    }
    EXPECT_EQ(1500, pll.m_pfd_min_period);
    EXPECT_EQ(333333, pll.m_pfd_max_period);
    EXPECT_EQ(1000, pll.m_fin_min_period);
}

TEST(Pll, HasItsDefaultLoopAndState)
{
    const PLL pll(1, 10);
    EXPECT_EQ(0.0, pll.m_cost);
    EXPECT_EQ(0.0, pll.m_delta_phase);
    EXPECT_EQ(0.0, pll.m_delta_vco_period);
    EXPECT_EQ(0, pll.m_ss_cycles);
    EXPECT_EQ(32768, pll.m_ss_counter_max);
    EXPECT_EQ(90, pll.m_ss_charge_pump_current);
    EXPECT_TRUE(pll.m_ss_supported);
    EXPECT_FALSE(pll.m_output_counter_cascade);
    EXPECT_EQ(1, pll.m_vco_post_scale);
    EXPECT_EQ(1, pll.m_max_vco_post_scale);
    EXPECT_EQ(650.0, pll.m_c_fixed);
    EXPECT_EQ(1020.5, pll.m_r);
    EXPECT_EQ(10.0, pll.m_c_high);
    EXPECT_EQ(50.0, pll.m_i);
    EXPECT_EQ(4.0, pll.m_i_min);
    EXPECT_EQ(140000.0, pll.m_ss_bandwidth);
    EXPECT_EQ(150000.0, pll.m_low_bandwidth);
    EXPECT_EQ(800000.0, pll.m_medium_bandwidth);
    EXPECT_EQ(2000000.0, pll.m_high_bandwidth);
    EXPECT_EQ(1.0, pll.m_vco_period);
    EXPECT_TRUE(pll.m_bandwidth_legal_for_mult_div);
    EXPECT_TRUE(pll.m_bandwidth_legal_for_fin);
    EXPECT_FALSE(pll.m_info.has_info());
    EXPECT_FALSE(pll.m_debug);
    EXPECT_EQ(PLL::PLL_NO_ERROR, pll.m_error);
}

TEST(Pll, StartsFromTheClassWideDefaults)
{
    const CHANGED_DEFAULTS changed;
    const PLL pll(2, 10);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(10 + i, pll.m_vco_min_period[i]);
        EXPECT_EQ(20 + i, pll.m_vco_max_period[i]);
        EXPECT_EQ(30 + i, pll.m_vco_center_period[i]);
    }
    EXPECT_EQ(40, pll.m_pfd_min_period);
    EXPECT_EQ(41, pll.m_pfd_max_period);
    EXPECT_EQ(42, pll.m_fin_min_period);
    EXPECT_EQ(43, pll.m_m.m_max_count);
    EXPECT_EQ(44, pll.m_n.m_max_count);
    EXPECT_EQ(45, pll.m_taps[0].m_max_count);
    EXPECT_EQ(45, pll.m_taps[1].m_max_count);
    EXPECT_EQ(512, pll.m_taps[2].m_max_count);
}

TEST(Pll, OfTheFirstBuildsTheSharedLists)
{
    ASSERT_EQ(0, PLL::m_id_count);
    ASSERT_EQ(nullptr, PLL::m_impl);
    {
        const PLL first(1, 10);
        EXPECT_EQ(0, first.m_id);
        ASSERT_NE(nullptr, PLL::m_impl);
        EXPECT_EQ(CAPACITORS, to_vector(PLL::m_impl->m_capacitors));
        EXPECT_EQ(CURRENTS, to_vector(PLL::m_impl->m_charge_pump_currents));
        EXPECT_EQ(RESISTORS, to_vector(PLL::m_impl->m_resistors));
        EXPECT_EQ(nullptr, PLL::m_impl->m_mults);
        EXPECT_EQ(nullptr, PLL::m_impl->m_divs);
        PLL::add_c(7);
        const PLL_IMPL* impl = PLL::m_impl;
        const PLL second(2, 10);
        EXPECT_EQ(1, second.m_id);
        EXPECT_EQ(2, PLL::m_id_count);
        EXPECT_EQ(impl, PLL::m_impl);
        EXPECT_EQ(CAPACITORS.size() + 1, PLL::m_impl->m_capacitors.size());
    }
    EXPECT_EQ(0, PLL::m_id_count);
    EXPECT_EQ(nullptr, PLL::m_impl);
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll"));
    const PLL again(1, 10);
    EXPECT_EQ(0, again.m_id);
    EXPECT_EQ(CAPACITORS, to_vector(PLL::m_impl->m_capacitors));
}

TEST(Pll, KeepsTheSharedListsUntilTheLastOneGoes)
{
    auto first = std::make_unique<PLL>(1, 10);
    auto second = std::make_unique<PLL>(1, 10);
    first.reset();
    EXPECT_EQ(1, PLL::m_id_count);
    ASSERT_NE(nullptr, PLL::m_impl);
    const PLL third(1, 10);
    EXPECT_EQ(1, third.m_id);  // as the second, which still lives
    EXPECT_EQ(1, second->m_id);
    second.reset();
    EXPECT_NE(nullptr, PLL::m_impl);
}

TEST(Pll, ReleasesTheScratchArraysWithTheLastOne)
{
    {
        const PLL pll(1, 10);
        for (int** array : {&PLL::m_impl->m_mults, &PLL::m_impl->m_divs}) {
            *array =
                static_cast<int*>(MEM_MANAGER::new_wrapper(8 * sizeof(int), MEM_TRACKER(), "pll"));
        }
        EXPECT_EQ(6U, MEM_MANAGER::get_live_blocks("pll"));
    }
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll"));
}

TEST(Pll, ReportsTapCountsOutOfRange)
{
    EXPECTED_REPORTS reports;
    const PLL too_large(3, 11);
    reports.expect_only(MAX_TAPS_CONDITION, "pll");
    const PLL too_many(5, 4);
    reports.expect_only(USER_TAPS_CONDITION, "pll");
    const PLL negative(-1, 4);
    reports.expect_only(USER_TAPS_CONDITION, "pll");
    const PLL both(12, 11);
    reports.expect_sequence({MAX_TAPS_CONDITION, USER_TAPS_CONDITION}, "pll");
    const PLL no_device(0, -1);
    reports.expect_only(USER_TAPS_CONDITION, "pll");
    const PLL all(10, 10);
    const PLL none(0, 0);
    reports.expect_none();
}

TEST(HostilePll, StoresTapCountsAsGivenAndWritesNoFurtherThanItsTaps)
{
    EXPECTED_REPORTS reports;
    PLL pll(LARGEST, LARGEST);
    reports.expect_only(MAX_TAPS_CONDITION, "pll");
    EXPECT_EQ(LARGEST, pll.m_user_taps_count);
    EXPECT_EQ(LARGEST, pll.m_total_taps_count);
    EXPECT_EQ(LARGEST, pll.m_max_taps_count);
    EXPECT_EQ(-1, pll.m_feedback_tap);
    pll.m_taps[9].m_high = 5;
    pll.set_output_counts_from_high_low();
    EXPECT_EQ(5, pll.m_taps[9].m_count);
    const PLL negative(SMALLEST, SMALLEST);
    reports.expect_only(USER_TAPS_CONDITION, "pll");
}

TEST(Pll, CopiesEveryFieldByAssignment)
{
    PLL_BASIC_INFO basic_info;
    const PLL filler(1, 10);
    PLL source(2, 9);
    source.m_cost = 1.5;
    source.m_m.m_count = 7;
    source.m_n.m_count = 3;
    source.m_feedback_tap = 1;
    source.m_taps[9].m_high = 12;
    source.m_taps[0].m_score = true;
    source.m_vco_min_period[2] = 77;
    source.m_kvco[1] = 2.5;
    source.m_debug = true;
    source.m_error = PLL::PLL_SS_TOO_HIGH;
    source.m_info.m_basic_info = &basic_info;
    source.m_info.m_timing_info.m_pfd_min = 5;
    PLL target(5, 10);
    const int live = PLL::m_id_count;
    EXPECT_EQ(2, target.m_id);
    EXPECT_EQ(&target, &(target = source));
    EXPECT_EQ(1, target.m_id);
    EXPECT_EQ(live, PLL::m_id_count);
    EXPECT_EQ(1.5, target.m_cost);
    EXPECT_EQ(7, target.get_m());
    EXPECT_EQ(3, target.get_n());
    EXPECT_EQ(7.0 / 3.0, target.get_m_over_n());
    EXPECT_EQ(2, target.m_user_taps_count);
    EXPECT_EQ(9, target.m_max_taps_count);
    EXPECT_EQ(1, target.m_feedback_tap);
    EXPECT_EQ(12, target.m_taps[9].m_high);
    EXPECT_TRUE(target.m_taps[0].m_score);
    EXPECT_EQ(77, target.m_vco_min_period[2]);
    EXPECT_EQ(2.5, target.m_kvco[1]);
    EXPECT_TRUE(target.m_debug);
    EXPECT_EQ(PLL::PLL_SS_TOO_HIGH, target.m_error);
    EXPECT_EQ(&basic_info, target.m_info.m_basic_info);
    EXPECT_EQ(5, target.m_info.m_timing_info.m_pfd_min);
}

TEST(ComponentLists, AppendAndClear)
{
    PLL pll(1, 10);
    PLL::add_i(1);
    PLL::add_r(2);
    PLL::add_c(3);
    PLL::add_c(3);
    EXPECT_EQ(1, PLL::m_impl->m_charge_pump_currents.back());
    EXPECT_EQ(2, PLL::m_impl->m_resistors.back());
    EXPECT_EQ(3, PLL::m_impl->m_capacitors.back());
    EXPECT_EQ(CAPACITORS.size() + 2, PLL::m_impl->m_capacitors.size());
    pll.m_r = 5.0;
    EXPECT_EQ(4U, MEM_MANAGER::get_live_blocks("pll"));
    pll.clear_rci();
    EXPECT_TRUE(PLL::m_impl->m_charge_pump_currents.empty());
    EXPECT_TRUE(PLL::m_impl->m_resistors.empty());
    EXPECT_TRUE(PLL::m_impl->m_capacitors.empty());
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("pll"));  // the lists gave their storage back
    EXPECT_EQ(5.0, pll.m_r);
    EXPECT_EQ(10.0, pll.m_c_high);
    EXPECT_EQ(50.0, pll.m_i);
    PLL::add_r(9);
    EXPECT_EQ(std::vector<int>{9}, to_vector(PLL::m_impl->m_resistors));
}

TEST(ComponentLists, NeedALivePll)
{
    ASSERT_EQ(nullptr, PLL::m_impl);
    PLL::add_i(1);
    PLL::add_r(1);
    PLL::add_c(1);
    EXPECT_EQ(nullptr, PLL::m_impl);
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll"));
}

TEST(ComponentLists, StayEmptyWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    long nth = 1;
    for (;; ++nth) {
        heap.fail_at(nth);
        PLL pll(1, 10);
        if (heap.get_failures() == 0) {
            break;
        }
        heap.fail_none();
        if (nth == 1) {
            EXPECT_EQ(nullptr, PLL::m_impl);
            PLL::add_i(1);
            pll.clear_rci();
            continue;
        }
        ASSERT_NE(nullptr, PLL::m_impl);
        EXPECT_TRUE(PLL::m_impl->m_charge_pump_currents.empty());
        EXPECT_TRUE(PLL::m_impl->m_resistors.empty());
        EXPECT_TRUE(PLL::m_impl->m_capacitors.empty());
        EXPECT_EQ(1000, pll.m_vco_min_period[0]);
    }
    EXPECT_GT(nth, 4);
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("pll"));
}

TEST(ComponentLists, KeepTheirValuesWhenAppendingFails)
{
    FAILING_HEAP heap;
    {
        PLL pll(1, 10);
        pll.clear_rci();
        heap.fail_from(1);
        PLL::add_i(1);
        PLL::add_r(1);
        PLL::add_c(1);
        EXPECT_EQ(3, heap.get_failures());
        EXPECT_TRUE(PLL::m_impl->m_charge_pump_currents.empty());
        EXPECT_TRUE(PLL::m_impl->m_resistors.empty());
        EXPECT_TRUE(PLL::m_impl->m_capacitors.empty());
        heap.fail_none();
        PLL::add_i(1);
        EXPECT_EQ(1U, PLL::m_impl->m_charge_pump_currents.size());
    }
}

TEST(OutputCounts, AreTheSumOfTheHalvesOfEveryTapInUse)
{
    PLL pll(2, 10);
    pll.m_total_taps_count = 3;
    for (PLL_OUTPUT_TAP& tap : pll.m_taps) {
        tap.m_high = 3;
        tap.m_low = 4;
    }
    pll.set_output_counts_from_high_low();
    EXPECT_EQ(7, pll.m_taps[0].m_count);
    EXPECT_EQ(7, pll.m_taps[2].m_count);
    EXPECT_EQ(1, pll.m_taps[3].m_count);
    pll.m_total_taps_count = SMALLEST;
    pll.m_taps[0].m_high = 9;
    pll.set_output_counts_from_high_low();
    EXPECT_EQ(7, pll.m_taps[0].m_count);
}

TEST(HostileOutputCounts, Wrap)
{
    PLL pll(1, 10);
    pll.m_taps[0].m_high = LARGEST;
    pll.m_taps[0].m_low = 1;
    pll.set_output_counts_from_high_low();
    EXPECT_EQ(SMALLEST, pll.m_taps[0].m_count);
}

TEST(ErrorString, OfEveryValue)
{
    const char* const not_found =
        "No combination of counter values of M and the pre-divider N satisfy VCO and PFD ranges, "
        "for requested clock synthesis";
    const char* const not_at_this_input =
        "Cannot find legal bandwidth settings for requested input frequency, multiplication and "
        "division";
    const char* const texts[] = {
        "No error",
        not_found,
        not_found,
        "Post divider maximum count value exceeded. (Reduce division value or Fin frequency)",
        "Division and Multiplication cannot be achieved",
        "Maximum Delay differs too much from Minimum Delay",
        "Spread Spectrum requires a low bandwidth setting",
        "Requested Spread Spectrum value is too high",
        "Requested input clock frequency does not satisfy the valid frequency range",
        "Cannot find legal bandwidth settings for requested multiplication and division",
        not_at_this_input,
    };
    static_assert(std::size(texts) == PLL::MAX_PLL_ERROR_TYPE);
    for (std::size_t error = 0; error < std::size(texts); ++error) {
        EXPECT_STREQ(texts[error], PLL::get_error_string(static_cast<PLL::PLL_ERROR_TYPE>(error)));
        EXPECT_STREQ(texts[error], PLL::m_error_strings[error]);
    }
}

TEST(HostileErrorString, IsEmptyWithoutAMessage)
{
    EXPECTED_REPORTS reports;
    EXPECT_STREQ("", PLL::get_error_string(PLL::MAX_PLL_ERROR_TYPE));
    reports.expect_only("error != MAX_PLL_ERROR_TYPE", "pll");
    EXPECT_STREQ("", PLL::get_error_string(static_cast<PLL::PLL_ERROR_TYPE>(12)));
    EXPECT_STREQ("", PLL::get_error_string(static_cast<PLL::PLL_ERROR_TYPE>(15)));
    reports.expect_none();
}
