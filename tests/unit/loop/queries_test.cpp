// Unit tests of the queries on phases, duty cycles, counts and VCO limits.
#include "pll.h"

#include "error_guard.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

constexpr const char* USER_TAP_CONDITION = "i >= 0 && i < m_user_taps_count";
constexpr const char* TAP_CONDITION = "i >= 0 && i < m_total_taps_count";
constexpr const char* SCALE_CONDITION =
    "vco_post_scale >= 0 && vco_post_scale <= PLL_VCO_POST_SCALE_MAX";
constexpr const char* SETTER_CONDITION = "vco_post_scale <= PLL_VCO_POST_SCALE_MAX";
constexpr const char* SUM_CONDITION = "out_count == 1 || counter_sum != 0";

void set_counter(PLL* pll, int tap, int high, int low)
{
    pll->m_taps[tap].m_high = high;
    pll->m_taps[tap].m_low = low;
    pll->m_taps[tap].m_count = high + low;
    pll->m_taps[tap].m_bypass = false;
}

}  // namespace

TEST(PhaseResolution, IsOneVcoTapSeenAtTheOutput)
{
    PLL pll(1, 10);
    EXPECT_EQ(45.0, pll.get_phase_degree_resolution());
    pll.m_m.m_count = 2;
    EXPECT_EQ(22.5, pll.get_phase_degree_resolution());
    EXPECT_EQ(500.0, pll.get_phase_ps_resolution(8000));
    pll.m_n.m_count = 4;
    EXPECT_EQ(90.0, pll.get_phase_degree_resolution());
    EXPECT_EQ(0.0, pll.get_phase_ps_resolution(0));
}

TEST(HostilePhaseResolution, IsInfiniteWithoutM)
{
    PLL pll(1, 10);
    pll.m_m.m_count = 0;
    EXPECT_TRUE(std::isinf(pll.get_phase_degree_resolution()));
    pll.m_n.m_count = 0;
    EXPECT_TRUE(std::isnan(pll.get_phase_degree_resolution()));
    EXPECT_TRUE(std::isnan(pll.get_phase_ps_resolution(SMALLEST)));
}

TEST(PhaseLimits, AreAFullTurnEitherWay)
{
    const PLL pll(1, 10);
    for (const int tap : {0, 1, 9, -1, LARGEST}) {
        EXPECT_EQ(-360.0, pll.get_phase_degree_min(tap));
        EXPECT_EQ(360.0, pll.get_phase_degree_max(tap));
        EXPECT_EQ(-8000.0, pll.get_phase_ps_min(tap, 8000));
        EXPECT_EQ(8000.0, pll.get_phase_ps_max(tap, 8000));
        EXPECT_EQ(-360.0, pll.get_sclkout_phase_degree_min_for_output(tap));
        EXPECT_EQ(360.0, pll.get_sclkout_phase_degree_max_for_output(tap));
        EXPECT_EQ(-8000.0, pll.get_sclkout_phase_ps_min_for_output(tap, 8000));
        EXPECT_EQ(8000.0, pll.get_sclkout_phase_ps_max_for_output(tap, 8000));
    }
}

TEST(NextAndPrevious, AreThoseOfTheTap)
{
    PLL pll(2, 10);
    PLL_OUTPUT_TAP& tap = pll.m_taps[1];
    tap.m_next_phase_degree = 90.0;
    tap.m_prev_phase_degree = 45.0;
    tap.m_next_duty_cycle = 60;
    tap.m_prev_duty_cycle = 40;
    tap.m_smallest_duty_cycle_min = 10;
    tap.m_largest_duty_cycle_max = 90;
    EXPECT_EQ(90.0, pll.get_next_phase_degree(1));
    EXPECT_EQ(45.0, pll.get_prev_phase_degree(1));
    EXPECT_EQ(2000.0, pll.get_next_phase_ps(1, 8000));
    EXPECT_EQ(1000.0, pll.get_prev_phase_ps(1, 8000));
    EXPECT_EQ(60, pll.get_next_duty_cycle(1));
    EXPECT_EQ(40, pll.get_prev_duty_cycle(1));
    EXPECT_EQ(10, pll.get_smallest_duty_cycle_min(1));
    EXPECT_EQ(90, pll.get_largest_duty_cycle_max(1));
}

TEST(HostileNextAndPrevious, ReportAnIndexOutOfRangeAndReadTheNearest)
{
    PLL pll(2, 10);
    pll.m_taps[0].m_next_duty_cycle = 1;
    pll.m_taps[2].m_next_duty_cycle = 2;
    pll.m_taps[9].m_next_duty_cycle = 3;
    EXPECTED_REPORTS reports;
    EXPECT_EQ(1, pll.get_next_duty_cycle(-1));
    EXPECT_EQ(1, pll.get_next_duty_cycle(SMALLEST));
    EXPECT_EQ(2, pll.get_next_duty_cycle(2));
    EXPECT_EQ(3, pll.get_next_duty_cycle(10));
    EXPECT_EQ(3, pll.get_next_duty_cycle(LARGEST));
    reports.expect_only(USER_TAP_CONDITION, "pll", 5);
    pll.get_prev_duty_cycle(2);
    pll.get_smallest_duty_cycle_min(2);
    pll.get_largest_duty_cycle_max(2);
    pll.get_next_phase_degree(2);
    pll.get_prev_phase_degree(2);
    pll.get_next_phase_ps(2, 1);
    pll.get_prev_phase_ps(2, 1);
    pll.get_next_sclkout_phase_degree(2);
    pll.get_prev_sclkout_phase_degree(2);
    pll.get_next_sclkout_phase_ps(2, 1);
    pll.get_prev_sclkout_phase_ps(2, 1);
    reports.expect_only(USER_TAP_CONDITION, "pll", 11);
}

TEST(NextSclkoutPhase, IsOneResolutionOnExceptAtTheEnd)
{
    PLL pll(1, 10);
    pll.m_m.m_count = 2;  // a VCO degree is half a degree of the clock
    pll.m_taps[0].m_vco_tap = 6;
    EXPECT_EQ(135.0 + 22.5, pll.get_next_sclkout_phase_degree(0));
    pll.m_taps[0].m_vco_tap = 7;
    EXPECT_EQ(157.5, pll.get_next_sclkout_phase_degree(0));
    EXPECT_EQ(157.5 * 8000 / 360, pll.get_next_sclkout_phase_ps(0, 8000));
    pll.m_m.m_initial = 2;
    EXPECT_EQ(157.5 - 180.0 + 22.5, pll.get_next_sclkout_phase_degree(0));
    pll.m_m.m_initial = 1;
    pll.m_m.m_vco_tap = 1;
    EXPECT_EQ(157.5 - 22.5 + 22.5, pll.get_next_sclkout_phase_degree(0));
}

TEST(PreviousSclkoutPhase, IsOneResolutionBackWhileTheFeedbackCanMove)
{
    PLL pll(1, 10);
    pll.m_m.m_count = 2;
    pll.m_taps[0].m_vco_tap = 1;
    EXPECT_EQ(22.5 - 22.5, pll.get_prev_sclkout_phase_degree(0));
    pll.m_taps[0].m_vco_tap = 0;
    EXPECT_EQ(-22.5, pll.get_prev_sclkout_phase_degree(0));
    EXPECT_EQ(-500.0, pll.get_prev_sclkout_phase_ps(0, 8000));
    // At the last tap that M may take, its start has to move.
    pll.m_m.m_max_vco_tap = 0;
    pll.m_m.m_max_count = 6;
    pll.m_m.m_initial = 1;
    EXPECT_EQ(-22.5, pll.get_prev_sclkout_phase_degree(0));
    pll.m_m.m_initial = 2;
    EXPECT_EQ(-180.0 - 22.5, pll.get_prev_sclkout_phase_degree(0));
    pll.m_m.m_initial = 3;
    EXPECT_EQ(-360.0, pll.get_prev_sclkout_phase_degree(0));
    pll.m_m.m_max_count = 7;  // half of it, in whole numbers, is still 3
    EXPECT_EQ(-360.0, pll.get_prev_sclkout_phase_degree(0));
    pll.m_m.m_max_count = 8;
    EXPECT_EQ(-360.0 - 22.5, pll.get_prev_sclkout_phase_degree(0));
}

TEST(PreviousSclkoutPhase, StaysWithoutACounterToMove)
{
    PLL pll(1, 10);
    pll.m_m.m_vco_tap = 7;
    EXPECT_EQ(-315.0, pll.get_prev_sclkout_phase_degree(0));  // M is 1
    pll.m_m.m_count = 3;
    pll.m_m.m_max_count = 512;
    EXPECT_EQ(-105.0 - 15.0, pll.get_prev_sclkout_phase_degree(0));
    pll.m_m.m_vco_tap = 6;
    EXPECT_EQ(-90.0 - 15.0, pll.get_prev_sclkout_phase_degree(0));
}

TEST(DutyCycleLimits, OfACountOfOne)
{
    PLL pll(1, 10);
    EXPECT_EQ(50.0, pll.get_duty_cycle_max(0));
    EXPECT_EQ(50.0, pll.get_duty_cycle_min(0));
    EXPECT_EQ(50.0, pll.find_duty_cycle(0));
    EXPECT_EQ(50.0, pll.get_duty_cycle_resolution(0));
}

TEST(DutyCycleLimits, AreBoundByTheLargestHalf)
{
    PLL pll(1, 10);
    set_counter(&pll, 0, 2, 1);
    EXPECT_EQ(66.66666412353516, pll.get_duty_cycle_max(0));  // a float, widened
    EXPECT_EQ((3 - 2 - 0.5) * 100 / 3, pll.get_duty_cycle_min(0));
    EXPECT_EQ(50.0 / 3, pll.get_duty_cycle_resolution(0));
    set_counter(&pll, 0, 6, 4);
    pll.m_taps[0].m_max_count = 7;
    EXPECT_EQ(70.0, pll.get_duty_cycle_max(0));
    EXPECT_EQ(25.0, pll.get_duty_cycle_min(0));
    pll.m_taps[0].m_max_count = 9;
    EXPECT_EQ(90.0, pll.get_duty_cycle_max(0));
    EXPECT_EQ(5.0, pll.get_duty_cycle_min(0));
    pll.m_taps[0].m_max_count = 10;
    EXPECT_EQ(90.0, pll.get_duty_cycle_max(0));
}

TEST(HostileDutyCycleLimits, EndInDefinedValuesWithoutReports)
{
    PLL pll(1, 10);
    for (const int count : {SMALLEST, -1, 0, LARGEST}) {
        for (const int max_count : {SMALLEST, 0, LARGEST}) {
            pll.m_taps[0].m_count = count;
            pll.m_taps[0].m_max_count = max_count;
            pll.m_taps[0].m_high = count;
            pll.m_taps[0].m_low = 0;
            const bool divides = count != 0;
            EXPECT_EQ(divides, std::isfinite(pll.get_duty_cycle_min(0)));
            EXPECT_EQ(divides, std::isfinite(pll.get_duty_cycle_max(0)));
            EXPECT_EQ(divides, std::isfinite(pll.get_duty_cycle_resolution(0)));
        }
    }
    pll.m_taps[9].m_count = 2;
    EXPECT_EQ(50.0, pll.get_duty_cycle_max(LARGEST));
    pll.m_taps[0].m_count = 1;
    EXPECT_EQ(50.0, pll.get_duty_cycle_max(SMALLEST));
}

TEST(FindDutyCycle, IsWhatTheHalvesGive)
{
    PLL pll(1, 10);
    set_counter(&pll, 0, 3, 1);
    EXPECT_EQ(75.0, pll.find_duty_cycle(0));
    pll.m_taps[0].m_even = false;
    EXPECT_EQ(62.5, pll.find_duty_cycle(0));
    pll.m_taps[0].m_bypass = true;
    EXPECT_EQ(50.0, pll.find_duty_cycle(0));
    set_counter(&pll, 0, 1, 0);
    EXPECT_EQ(50.0, pll.find_duty_cycle(0));
}

TEST(FindDutyCycle, ChecksItsIndexAndTheSum)
{
    PLL pll(2, 10);
    pll.m_total_taps_count = 3;
    EXPECT_EQ(50.0, pll.find_duty_cycle(2));
    EXPECTED_REPORTS reports;
    EXPECT_EQ(50.0, pll.find_duty_cycle(3));
    EXPECT_EQ(50.0, pll.find_duty_cycle(-1));
    reports.expect_only(TAP_CONDITION, "pll", 2);
    set_counter(&pll, 0, 0, 0);
    EXPECT_TRUE(std::isnan(pll.find_duty_cycle(0)));
    reports.expect_only(SUM_CONDITION, "pll");
    pll.m_taps[0].m_bypass = true;
    EXPECT_EQ(50.0, pll.find_duty_cycle(0));
    reports.expect_none();
}

TEST(GetK, IsTheSumOfTheHalves)
{
    PLL pll(2, 10);
    set_counter(&pll, 1, 3, 4);
    pll.m_taps[1].m_bypass = true;
    EXPECT_EQ(7, pll.get_k(1));
    EXPECTED_REPORTS reports;
    EXPECT_EQ(1, pll.get_k(2));
    EXPECT_EQ(1, pll.get_k(-1));
    EXPECT_EQ(1, pll.get_k(LARGEST));
    reports.expect_only(TAP_CONDITION, "pll", 3);
}

TEST(CombinedCount, IsTheProductOfTheChain)
{
    PLL pll(3, 10);
    set_counter(&pll, 1, 2, 1);
    set_counter(&pll, 2, 3, 2);
    pll.m_taps[2].m_previous_tap = 1;
    EXPECT_EQ(1, pll.get_combined_count(-1));
    EXPECT_EQ(3, pll.get_combined_count(1));
    EXPECT_EQ(15, pll.get_combined_count(2));
}

TEST(CombinedCount, GoesByTheBypassOfTheFirst)
{
    PLL pll(3, 10);
    set_counter(&pll, 1, 2, 1);
    set_counter(&pll, 2, 3, 2);
    pll.m_taps[2].m_previous_tap = 1;
    pll.m_taps[2].m_bypass = true;
    EXPECT_EQ(1, pll.get_combined_count(2));
    pll.m_taps[2].m_bypass = false;
    pll.m_taps[1].m_bypass = true;
    EXPECT_EQ(15, pll.get_combined_count(2));
}

TEST(HostileCombinedCount, EndsAfterTenStepsOrOutsideTheTaps)
{
    PLL pll(1, 10);
    set_counter(&pll, 0, 1, 1);
    pll.m_taps[0].m_previous_tap = 0;
    EXPECT_EQ(1024, pll.get_combined_count(0));
    for (const int previous : {-2, 10, LARGEST, SMALLEST}) {
        pll.m_taps[0].m_previous_tap = previous;
        EXPECT_EQ(2, pll.get_combined_count(0));
    }
    set_counter(&pll, 9, 2, 1);
    EXPECT_EQ(3, pll.get_combined_count(LARGEST));
    EXPECT_EQ(2, pll.get_combined_count(SMALLEST));
}

TEST(Ratios, AreThoseOfTheCounters)
{
    PLL pll(1, 10);
    pll.m_m.m_count = 7;
    pll.m_n.m_count = 2;
    pll.m_vco_period = 1234.5;
    EXPECT_EQ(7, pll.get_m());
    EXPECT_EQ(2, pll.get_n());
    EXPECT_EQ(3.5, pll.get_m_over_n());
    EXPECT_EQ(1234.5, pll.get_vco_period());
}

TEST(VcoGetters, ReadTheCurrentPostScaleForMinusOne)
{
    PLL pll(1, 10);
    for (int s = 0; s <= 2; ++s) {
        pll.set_vco_min_period(10 + s, s);
        pll.set_vco_max_period(20 + s, s);
        pll.set_vco_center_period(30 + s, s);
        pll.set_ss_vco_max_period(40 + s, s);
        pll.set_kvco(50.5 + s, s);
    }
    for (int s = 0; s <= 2; ++s) {
        pll.m_vco_post_scale = s;
        for (const int asked : {s, -1}) {
            EXPECT_EQ(10 + s, pll.get_vco_min_period(asked));
            EXPECT_EQ(20 + s, pll.get_vco_max_period(asked));
            EXPECT_EQ(30 + s, pll.get_vco_center_period(asked));
            EXPECT_EQ(40 + s, pll.get_ss_vco_max_period(asked));
            EXPECT_EQ(50.5 + s, pll.get_kvco(asked));
        }
    }
}

TEST(HostileVcoGetters, ReportAPostScaleOutOfRangeAndReadTheNearest)
{
    PLL pll(1, 10);
    pll.set_vco_min_period(7, 0);
    pll.set_vco_min_period(9, 2);
    EXPECTED_REPORTS reports;
    EXPECT_EQ(9, pll.get_vco_min_period(3));
    EXPECT_EQ(9, pll.get_vco_min_period(LARGEST));
    EXPECT_EQ(7, pll.get_vco_min_period(-2));
    EXPECT_EQ(7, pll.get_vco_min_period(SMALLEST));
    pll.m_vco_post_scale = 3;
    EXPECT_EQ(9, pll.get_vco_min_period(-1));
    pll.m_vco_post_scale = -1;
    EXPECT_EQ(7, pll.get_vco_min_period(-1));
    reports.expect_only(SCALE_CONDITION, "pll", 6);
    pll.get_vco_max_period(3);
    pll.get_vco_center_period(3);
    pll.get_ss_vco_max_period(3);
    pll.get_kvco(3);
    reports.expect_only(SCALE_CONDITION, "pll", 4);
}

TEST(VcoSetters, SpreadANegativePostScale)
{
    PLL pll(1, 10);
    pll.set_vco_min_period(5, 0);
    pll.set_vco_min_period(1000, -1);
    EXPECT_EQ(5, pll.m_vco_min_period[0]);
    EXPECT_EQ(1000, pll.m_vco_min_period[1]);
    EXPECT_EQ(2000, pll.m_vco_min_period[2]);
    pll.set_vco_max_period(1100, -2);
    EXPECT_EQ(3334, pll.m_vco_max_period[0]);
    EXPECT_EQ(1100, pll.m_vco_max_period[1]);
    EXPECT_EQ(2200, pll.m_vco_max_period[2]);
    pll.set_vco_center_period(1200, -1);
    EXPECT_EQ(1200, pll.m_vco_center_period[1]);
    EXPECT_EQ(2400, pll.m_vco_center_period[2]);
    pll.set_ss_vco_max_period(LARGEST, SMALLEST);
    EXPECT_EQ(LARGEST, pll.m_ss_vco_max_period[1]);
    EXPECT_EQ(-2, pll.m_ss_vco_max_period[2]);  // wraps
    pll.set_kvco(7.5, -1);
    EXPECT_EQ(1880.0, pll.m_kvco[0]);
    EXPECT_EQ(7.5, pll.m_kvco[1]);
    EXPECT_EQ(7.5, pll.m_kvco[2]);
}

TEST(HostileVcoSetters, ReportAPostScaleAboveTwoAndStoreNothing)
{
    PLL pll(1, 10);
    EXPECTED_REPORTS reports;
    pll.set_vco_min_period(7, 3);
    pll.set_vco_max_period(7, 3);
    pll.set_vco_center_period(7, 3);
    pll.set_ss_vco_max_period(7, LARGEST);
    pll.set_kvco(7.0, 3);
    reports.expect_only(SETTER_CONDITION, "pll", 5);
    for (int s = 0; s <= 2; ++s) {
        EXPECT_EQ(1000, pll.m_vco_min_period[s]);
        EXPECT_EQ(3334, pll.m_vco_max_period[s]);
        EXPECT_EQ(1666, pll.m_vco_center_period[s]);
        EXPECT_EQ(1667, pll.m_ss_vco_max_period[s]);
        EXPECT_EQ(1880.0, pll.m_kvco[s]);
    }
    EXPECT_EQ(9999, pll.m_m.m_max_vco_tap);
}
