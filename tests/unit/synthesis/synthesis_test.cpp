// The frame of a synthesis: early results, error values and what stays behind in the PLL.
#include "error_guard.h"
#include "failing_heap.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

TEST(Synthesis, MeetsOneClockOnTheDefaultLimits)
{
    PLL pll(1, 10);
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    EXPECT_TRUE(pll.synthesize(request));
    // The VCO of M 6 runs 0.67 ps off its centre, nearer than any other that divides by N 1.
    EXPECT_EQ(6, pll.get_m());
    EXPECT_EQ(1, pll.get_n());
    EXPECT_EQ(6, pll.m_taps[0].m_count);
    EXPECT_EQ(3, pll.m_taps[0].m_high);
    EXPECT_EQ(3, pll.m_taps[0].m_low);
    EXPECT_TRUE(pll.m_taps[0].m_even);
    EXPECT_FALSE(pll.m_taps[0].m_bypass);
    EXPECT_TRUE(pll.m_taps[0].m_score);
    EXPECT_EQ(PLL_ILLEGAL_TAP, pll.m_taps[0].m_previous_tap);
    EXPECT_EQ(1, pll.m_vco_post_scale);
    EXPECT_EQ(10000.0 * 1 / 6, pll.get_vco_period());
    EXPECT_EQ(10000.0 * 1 / 6 - 1666, pll.m_delta_vco_period);
    EXPECT_EQ(0.0, pll.m_cost);
    EXPECT_EQ(PLL::PLL_NO_ERROR, pll.m_error);
}

TEST(Synthesis, MeetsARequestWithoutClocks)
{
    ONE_CANDIDATE box(0);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(0, box.m_pll.m_total_taps_count);
}

TEST(Synthesis, TakesTheFeedbackTapFromTheRequest)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_feedback_tap = 0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(PLL_ILLEGAL_TAP, box.m_pll.m_feedback_tap);
}

TEST(Synthesis, KeepsAnOldErrorWhenItSucceeds)
{
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 3, 7);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    box.set_ratio(0, 1, 1);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

TEST(Synthesis, ReplacesAnOldErrorWhenItFails)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_error = PLL::PLL_SS_TOO_HIGH;
    box.set_ratio(0, 3, 7);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

// ---- No candidate

TEST(SynthesisWithoutCandidate, LeavesTheClosestMissAndNeutralSteps)
{
    SMALL_PLL box(2, 4, 2);
    box.m_request.m_fin_period = 100000;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    EXPECT_EQ(4, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(25000.0, box.m_pll.get_vco_period());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(0.0, box.tap(i).m_next_phase_degree);
        EXPECT_EQ(0.0, box.tap(i).m_prev_phase_degree);
        EXPECT_EQ(50, box.tap(i).m_next_duty_cycle);
        EXPECT_EQ(50, box.tap(i).m_prev_duty_cycle);
        EXPECT_EQ(50, box.tap(i).m_smallest_duty_cycle_min);
        EXPECT_EQ(50, box.tap(i).m_largest_duty_cycle_max);
    }
    EXPECT_EQ(100, box.tap(2).m_next_duty_cycle);
}

TEST(SynthesisWithoutCandidate, ClearsANegativePhaseErrorOnly)
{
    SMALL_PLL box(1, 4, 2);
    box.set_pfd(1, 2);
    box.m_pll.m_delta_phase = -10.0;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    box.m_pll.m_delta_phase = 10.0;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(10.0, box.m_pll.m_delta_phase);
}

TEST(SynthesisWithoutCandidate, HappensOnADeviceWithoutLimits)
{
    SMALL_PLL box(1, 4, 2);
    box.set_vco(PLL_UNSET_MAXIMUM, 1666, PLL_UNSET_MINIMUM);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
}

TEST(SynthesisWithoutCandidate, HappensWithoutAPostScaleToTry)
{
    SMALL_PLL box(1, 4, 2);
    box.m_pll.m_max_vco_post_scale = 0;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(1000.0, box.m_pll.get_vco_period());
}

// ---- Candidates that miss a clock

TEST(SynthesisOfAMiss, IsErrorFourWithTheSmallestErrorSum)
{
    // Of the ratios M / N / K, 3/4 comes nearest to 5/7; M 3 with N 1 and K 4 is the first of two.
    SMALL_PLL box(1, 4, 2);
    box.set_ratio(0, 5, 7);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(4, box.tap(0).m_count);
    EXPECT_FALSE(box.tap(0).m_score);
    EXPECT_EQ(std::fabs(3.0 / 1.0 / 4 - 5.0 / 7.0), box.m_pll.m_cost);
}

TEST(SynthesisOfAMiss, PlacesPhaseAndDutyCycleAllTheSame)
{
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 3, 7);  // K 5 gives 2/5
    box.clock(0).m_phase = 45.0;
    box.clock(0).m_duty = 40;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(5, box.tap(0).m_count);
    EXPECT_EQ(2, box.tap(0).m_high);
    EXPECT_EQ(3, box.tap(0).m_low);
    EXPECT_EQ(2, box.tap(0).m_vco_tap);
    EXPECT_EQ(67.5, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(22.5, box.tap(0).m_prev_phase_degree);
    EXPECT_EQ(50, box.tap(0).m_next_duty_cycle);
    EXPECT_EQ(30, box.tap(0).m_prev_duty_cycle);
}

TEST(SynthesisOfAMiss, LeavesDelaysAndSpreadAlone)
{
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 3, 7);
    box.clock(0).m_delay = 500;
    box.m_pll.m_ss_cycles = 7;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(0, box.tap(0).m_delay);
    EXPECT_EQ(0, box.m_pll.m_n.m_delay);
    EXPECT_EQ(7, box.m_pll.m_ss_cycles);
}

TEST(SynthesisOfAMiss, LeavesThePreparedLoopFilter)
{
    // The product of current and resistor is set up before a loop filter is chosen:
    // 2 x 2 x 2 MHz x 3.14 / 1880 = 13361.
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 3, 7);
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 2000000.0;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(1021.0, box.m_pll.m_r);
    EXPECT_EQ(13361 / 1021.0, box.m_pll.m_i);
}

TEST(SynthesisOfAMiss, IsErrorThreeWhenAClampCameFirst)
{
    // Clock 0 would need a count of 100.
    ONE_CANDIDATE box(2);
    box.tap(0).m_max_count = 4;
    box.set_ratio(0, 1, 50);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
    box.set_ratio(1, 3, 7);  // a miss behind the clamp changes nothing
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
}

TEST(SynthesisOfAMiss, IsErrorFourWhenAnotherMissCameBeforeTheClamp)
{
    ONE_CANDIDATE box(2);
    box.tap(1).m_max_count = 4;
    box.set_ratio(0, 3, 7);
    box.set_ratio(1, 1, 50);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

TEST(SynthesisOfAMiss, TakesTheClampFlagOfTheBestCandidate)
{
    // Halves up to 4: M 2 is exact but its count of 9 clamped by 1; M 3 misses the ratio, and its
    // count of 14 is clamped by 6. Halves up to 5 leave M 2 as it is.
    SMALL_PLL box(1, 3, 1);
    box.tap(0).m_max_count = 4;
    box.set_ratio(0, 2, 9);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
    SMALL_PLL wide(1, 3, 1);
    wide.tap(0).m_max_count = 5;
    wide.set_ratio(0, 2, 9);
    EXPECT_TRUE(wide.synthesize());
    EXPECT_EQ(2, wide.m_pll.get_m());
}

// ---- Final checks

TEST(SynthesisFinalChecks, RefuseAnInputShorterThanTheDeviceTakes)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_fin_min_period = 4000;
    EXPECT_TRUE(box.synthesize());
    box.m_pll.m_fin_min_period = 4001;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_FIN_OUT_OF_RANGE, box.m_pll.m_error);
    EXPECT_EQ(2, box.m_pll.get_m());  // what was computed stays
}

TEST(SynthesisFinalChecks, RefuseASecondInputShorterThanTheDeviceTakes)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_fin_min_period = 3000;
    box.m_request.m_fin2_period = 3000;
    EXPECT_TRUE(box.synthesize());
    box.m_request.m_fin2_period = 2999;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_FIN_OUT_OF_RANGE, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, DoNotReplaceAnEarlierFailure)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_fin_min_period = 4001;
    box.set_ratio(0, 3, 7);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, ReportDelaysThatLieTooFarApart)
{
    ONE_CANDIDATE box(2);
    box.clock(1).m_delay = 3001;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_DELAY_RANGE_TOO_WIDE, box.m_pll.m_error);
    box.clock(1).m_delay = 3000;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(3000, box.tap(1).m_delay);
}

TEST(SynthesisFinalChecks, RefuseClocksWithoutAPositiveRatio)
{
    // -1/-1 counts like 1/1 all the way, but is no clock.
    ONE_CANDIDATE box(1);
    box.set_ratio(0, -1, -1);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_EQ(2, box.tap(0).m_count);
    EXPECT_EQ(0.0, box.m_pll.m_cost);
}

TEST(SynthesisFinalChecks, RefuseAResultThatNoCandidateBacks)
{
    // A cost above 1e300 never beats the start of the comparison.
    ONE_CANDIDATE box(1);
    DEVICE device(0);
    device.m_info.m_spe_ratio_constant_x = 1.0;
    device.describe(box.m_pll);
    box.m_pll.m_i = 1e-307;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, ClearAPhaseErrorBelowHalfAPicosecond)
{
    // From an input of 4000 ps half a picosecond is 0.045 degrees.
    ONE_CANDIDATE box(1);
    box.clock(0).m_phase = 22.54;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    EXPECT_EQ(22.54 - 22.5, box.tap(0).m_delta_phase);
    box.clock(0).m_phase = 22.55;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(22.55 - 22.5, box.m_pll.m_delta_phase);
}

TEST(SynthesisFinalChecks, ReportTheBandwidthRuleOnlyWhenItIsAnError)
{
    ONE_CANDIDATE box(1);
    DEVICE device(2);  // no group for M 2
    device.describe(box.m_pll);
    EXPECT_TRUE(box.synthesize());
    EXPECT_FALSE(box.m_pll.m_bandwidth_legal_for_mult_div);
    EXPECT_EQ(2147483647.0, box.m_pll.m_cost);
    device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_NO_BANDWIDTH_FOR_MULT_DIV, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, ReportTheInputFrequencyBeforeTheRatio)
{
    ONE_CANDIDATE box(1);
    DEVICE device(2);
    device.describe(box.m_pll);
    device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
    box.m_pll.m_bandwidth_legal_for_fin = false;  // stays, since no row is found
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, ReportARowThatBreaksThePfdRule)
{
    // PFD 250 MHz over 100: bandwidths up to 2.5 MHz.
    ONE_CANDIDATE box(1);
    DEVICE device(3);
    device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 100;
    device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
    device.add_row(2, 1e6, 3.5e6);
    device.describe(box.m_pll);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV, box.m_pll.m_error);
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_mult_div);
    EXPECT_FALSE(box.m_pll.m_bandwidth_legal_for_fin);
    EXPECT_EQ(8388608.0 + 131072.0, box.m_pll.m_cost);
}

TEST(SynthesisFinalChecks, TestTheInputRangeBeforeTheBandwidthRule)
{
    ONE_CANDIDATE box(1);
    DEVICE device(2);
    device.describe(box.m_pll);
    device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
    box.m_pll.m_fin_min_period = 5000;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_FIN_OUT_OF_RANGE, box.m_pll.m_error);
}

TEST(SynthesisFinalChecks, RunTheTableForAMissToo)
{
    ONE_CANDIDATE box(1);
    DEVICE device(3);
    PLL_BANDWIDTH_SETTING* row = device.add_row(2, 1e6, 1e6);
    row->m_loop_filter_capacitor = 20;
    device.describe(box.m_pll);
    box.set_ratio(0, 3, 7);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2000.0, box.m_pll.m_r);
    EXPECT_EQ(40.0, box.m_pll.m_i);
    EXPECT_EQ(20.0, box.m_pll.m_c_high);
}

// ---- Spread spectrum

// M 200 from 300 ns: the smallest M that a down spread of 0.5 % can tell apart.
struct SPREAD_PLL : SMALL_PLL
{
    explicit SPREAD_PLL(int m_max) : SMALL_PLL(1, m_max, 1)
    {
        m_request.m_fin_period = 300000;
        m_request.m_down_spread = 0.005;
    }
};

TEST(SynthesisWithSpread, SetsTheSecondCountsAndTheCycles)
{
    SPREAD_PLL box(200);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(200, box.m_pll.m_m.m_count);
    EXPECT_EQ(199, box.m_pll.m_m.m_ss_count);
    EXPECT_EQ(1, box.m_pll.m_n.m_ss_count);
    EXPECT_EQ(66, box.m_pll.m_ss_cycles);  // 20 us over 300 ns
}

TEST(SynthesisWithSpread, CapsTheCycles)
{
    SPREAD_PLL box(200);
    box.m_pll.m_ss_counter_max = 65;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(65, box.m_pll.m_ss_cycles);
}

TEST(SynthesisWithSpread, SkipsAnMThatItCannotTellApart)
{
    SPREAD_PLL box(199);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    // Not even the closest miss was looked for.
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(1000.0, box.m_pll.get_vco_period());
}

TEST(SynthesisWithSpread, FailsAboveSixThousandths)
{
    SPREAD_PLL box(167);
    box.m_request.m_fin_period = 250500;
    box.m_request.m_down_spread = 0.006;
    EXPECT_TRUE(box.synthesize());
    SPREAD_PLL over(143);
    over.m_request.m_fin_period = 214500;
    over.m_request.m_down_spread = 0.007;
    EXPECT_FALSE(over.synthesize());
    EXPECT_EQ(PLL::PLL_SS_TOO_HIGH, over.m_pll.m_error);
    EXPECT_EQ(143, over.m_pll.get_m());
    EXPECT_EQ(142, over.m_pll.m_m.m_ss_count);
}

TEST(SynthesisWithSpread, LetsTheSpreadErrorReplaceEveryOther)
{
    SMALL_PLL box(1, 4, 1);
    box.m_request.m_down_spread = 0.007;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_SS_TOO_HIGH, box.m_pll.m_error);
}

TEST(SynthesisWithSpread, FindsNothingForANegativeSpreadOrNone)
{
    for (double spread : {-0.005, NOT_A_NUMBER}) {
        SPREAD_PLL box(200);
        box.m_request.m_down_spread = spread;
        EXPECT_FALSE(box.synthesize());
        EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    }
}

// ---- Internal errors

TEST(SynthesisReports, AnMMinimumOtherThanOne)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_m.m_min_count = 2;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.synthesize());
    reports.expect_only("this->m_m.m_min_count == 1", "pll");
}

TEST(SynthesisReports, APostScaleBeyondTheLast)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_max_vco_post_scale = 3;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.synthesize());
    reports.expect_only("max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX", "pll");
}

TEST(SynthesisReports, ClocksOutOfRangeOnceForEachWorkingPll)
{
    for (int count : {-1, 11}) {
        SMALL_PLL box(1, 2, 1);
        box.m_request.m_fin_period = 1;  // no candidate
        box.m_request.m_taps_count = count;
        EXPECTED_REPORTS reports;
        EXPECT_FALSE(box.synthesize());
        reports.expect_only("m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count",
                            "pll", 2);
    }
}

// ---- Memory

TEST(SynthesisWithoutMemory, NeedsNone)
{
    FAILING_HEAP heap;
    ONE_CANDIDATE box(1);
    heap.fail_from(1);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.tap(0).m_count);
    EXPECT_EQ(0, heap.get_allocations());
}

TEST(SynthesisWithoutMemory, TakesAPllThatFoundNoneAtItsBirth)
{
    FAILING_HEAP heap;
    long failures = 0;
    long nth = 0;
    do {
        heap.fail_from(++nth);
        ONE_CANDIDATE box(1);
        failures = heap.get_failures();
        heap.fail_none();
        // The automatic bandwidth needs no components, only the place that they are kept in.
        const bool is_usable = PLL::m_impl != nullptr;
        EXPECT_EQ(is_usable, box.synthesize());
        int* mults = nullptr;
        int* divs = nullptr;
        EXPECT_EQ(is_usable ? 1 : 0, box.m_pll.find_vco_mult_div_values(&mults, &divs, 4000));
    } while (failures != 0);
    EXPECT_LT(2, nth);
}

}  // namespace
