// Output counters of one candidate: counts, errors, feedback, cascades and clamps. With M 2 and N 1
// a clock of 2 / k asks for a count of k.
#include "error_guard.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();

struct COUNT_CASE
{
    const char* m_name;
    int m_mult;
    int m_div;
    int m_count;
    int m_high;
    int m_low;
    bool m_bypass;
    bool m_even;
};

// clang-format off
constexpr COUNT_CASE COUNT_CASES[] = {
    // name                     mult div count high low bypass even
    {"one is a bypass",            2,  1,   1,   1,  0, true,  false},
    {"two",                        1,  1,   2,   1,  1, false, true},
    {"odd",                        2,  3,   3,   2,  1, false, false},
    {"even",                       2,  4,   4,   2,  2, false, true},
    {"the largest for its halves", 2, 1024, 1024, 512, 512, false, true},
};
// clang-format on

TEST(CandidateCounter, DividesTheVcoToTheClock)
{
    for (const COUNT_CASE& c : COUNT_CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE box(1);
        box.set_ratio(0, c.m_mult, c.m_div);
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(c.m_count, box.tap(0).m_count);
        EXPECT_EQ(c.m_high, box.tap(0).m_high);
        EXPECT_EQ(c.m_low, box.tap(0).m_low);
        EXPECT_EQ(c.m_bypass, box.tap(0).m_bypass);
        EXPECT_EQ(c.m_even, box.tap(0).m_even);
        EXPECT_TRUE(box.tap(0).m_score);
        EXPECT_EQ(1, box.m_pll.m_total_taps_count);
        EXPECT_EQ(0.0, box.m_pll.m_cost);
    }
}

struct ERROR_CASE
{
    const char* m_name;
    int m_mult;
    int m_div;
    int m_count;  // after rounding to the nearest
};

// clang-format off
constexpr ERROR_CASE ERROR_CASES[] = {
    // name                          mult div count
    {"faster than the VCO",             5,  1, 1},
    {"2.33 rounds down",                6,  7, 2},
    {"3.67 rounds up",                  6, 11, 4},
    {"2.5 rounds up",                   4,  5, 3},
};
// clang-format on

TEST(CandidateCounter, IsTheNearestAndCountsItsError)
{
    for (const ERROR_CASE& c : ERROR_CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE box(1);
        box.set_ratio(0, c.m_mult, c.m_div);
        EXPECT_FALSE(box.synthesize());
        EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
        EXPECT_EQ(c.m_count, box.tap(0).m_count);
        EXPECT_FALSE(box.tap(0).m_score);
        EXPECT_EQ(std::fabs(2.0 / 1.0 / c.m_count - double(c.m_mult) / double(c.m_div)),
                  box.m_pll.m_cost);
    }
}

TEST(CandidateCounter, StopsAtTheLargestInt)
{
    ONE_CANDIDATE box(1);
    box.tap(0).m_max_count = INT_MAXIMUM;
    box.set_ratio(0, 1, INT_MAXIMUM);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(INT_MAXIMUM, box.tap(0).m_count);
    EXPECT_EQ(1073741824, box.tap(0).m_high);
    EXPECT_EQ(1073741823, box.tap(0).m_low);
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
}

TEST(CandidateCounter, CountsAClockWithinAThousandthAsMet)
{
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 2001, 2000);
    EXPECT_TRUE(box.synthesize());
    const double error = std::fabs(2.0 / 1.0 / 2 - 2001.0 / 2000.0);
    const double relative = std::fabs((2000.0 * error) / 2001.0);
    EXPECT_EQ(relative / 0.001 + 8192.0, box.m_pll.m_cost);
    EXPECT_TRUE(box.tap(0).m_score);
}

TEST(CandidateCounter, AddsUpRelativeErrors)
{
    ONE_CANDIDATE box(2);
    box.set_ratio(0, 2001, 2000);
    box.set_ratio(1, 1999, 2000);
    EXPECT_TRUE(box.synthesize());
    const double up = std::fabs((2000.0 * std::fabs(1.0 - 2001.0 / 2000.0)) / 2001.0);
    const double down = std::fabs((2000.0 * std::fabs(1.0 - 1999.0 / 2000.0)) / 1999.0);
    EXPECT_EQ((up + down) / 0.001 + 8192.0, box.m_pll.m_cost);
}

TEST(CandidateCounter, DrawsTheLineAtAThousandth)
{
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 1001, 1000);  // misses by 0.000999
    EXPECT_TRUE(box.synthesize());
    box.set_ratio(0, 999, 1000);  // misses by 0.001001
    EXPECT_FALSE(box.synthesize());
    EXPECT_FALSE(box.tap(0).m_score);
}

// ---- VCO ratio

TEST(CandidateVcoRatio, CountsItsErrorOnceForEachClock)
{
    ONE_CANDIDATE box(2);
    box.m_request.m_vco_mult = 5;
    box.m_request.m_vco_div = 2;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(1.0, box.m_pll.m_cost);
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_FALSE(box.tap(0).m_score);
    EXPECT_FALSE(box.tap(1).m_score);
}

TEST(CandidateVcoRatio, DoesNotCountWithoutClocks)
{
    ONE_CANDIDATE box(0);
    box.m_request.m_vco_mult = 5;
    box.m_request.m_vco_div = 2;
    EXPECT_TRUE(box.synthesize());
}

TEST(CandidateVcoRatio, ChoosesAmongCandidates)
{
    SMALL_PLL box(1, 4, 2);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    box.m_request.m_vco_mult = 8;
    box.m_request.m_vco_div = 2;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(4, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
}

TEST(CandidateVcoRatio, IsNoWishUnlessBothPartsArePositive)
{
    for (int part : {0, -1}) {
        ONE_CANDIDATE box(1);
        box.m_request.m_vco_mult = part;
        box.m_request.m_vco_div = 2;
        EXPECT_TRUE(box.synthesize());
        box.m_request.m_vco_mult = 5;
        box.m_request.m_vco_div = part;
        EXPECT_TRUE(box.synthesize());
    }
}

TEST(CandidateVcoRatio, DecidesWhetherAClockScores)
{
    // The clock misses, but its own error gives way to that of the VCO ratio, which is met.
    ONE_CANDIDATE box(1);
    box.set_ratio(0, 6, 7);
    box.m_request.m_vco_mult = 2;
    box.m_request.m_vco_div = 1;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(std::fabs(1.0 - 6.0 / 7.0), box.m_pll.m_cost);
    EXPECT_TRUE(box.tap(0).m_score);
}

// ---- Feedback through an output counter

TEST(CandidateFeedback, TakesTheCounterOutOfM)
{
    ONE_CANDIDATE box(2);
    box.m_request.m_feedback_tap = 0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(2, box.tap(0).m_count);
    EXPECT_EQ(2, box.tap(1).m_count);
    EXPECT_EQ(0, box.m_pll.m_feedback_tap);
    EXPECT_TRUE(box.tap(0).m_score);
}

TEST(CandidateFeedback, CountsLaterClocksFromTheWholeM)
{
    SMALL_PLL box(2, 4, 1);
    box.set_vco(900, 1000, 1100);  // M 4 only
    box.m_request.m_feedback_tap = 0;
    box.set_ratio(0, 2, 1);
    box.set_ratio(1, 1, 2);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(2, box.tap(0).m_count);
    EXPECT_EQ(8, box.tap(1).m_count);
}

TEST(CandidateFeedback, CountsTheRemainderOfM)
{
    SMALL_PLL box(1, 4, 1);
    box.set_vco(900, 1000, 1100);  // M 4 only
    box.m_request.m_feedback_tap = 0;
    box.set_ratio(0, 4, 3);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_EQ(1.0, box.m_pll.m_cost);  // 4 mod 3
    EXPECT_EQ(1, box.m_pll.get_m());   // 4 / 3
    EXPECT_FALSE(box.tap(0).m_score);
}

TEST(CandidateFeedback, LeavesMOneBelowTheCounter)
{
    ONE_CANDIDATE box(1);
    box.m_request.m_feedback_tap = 0;
    box.set_ratio(0, 2, 3);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2.0, box.m_pll.m_cost);  // 2 mod 3
    EXPECT_EQ(1, box.m_pll.get_m());
}

TEST(CandidateFeedback, SpoilsTheScoreOfItsOwnClockOnly)
{
    ONE_CANDIDATE box(2);
    box.m_request.m_feedback_tap = 0;
    box.set_ratio(0, 2, 3);
    EXPECT_FALSE(box.synthesize());
    EXPECT_FALSE(box.tap(0).m_score);
    EXPECT_TRUE(box.tap(1).m_score);
}

TEST(CandidateFeedback, RefusesACountOfZero)
{
    // 0 / 0 leaves a count of 0, which M cannot be divided by.
    ONE_CANDIDATE box(1);
    box.m_request.m_feedback_tap = 0;
    box.set_ratio(0, 0, 0);
    EXPECTED_REPORTS reports;
    EXPECT_FALSE(box.synthesize());
    reports.expect_only("pll->m_taps[i].m_low + pll->m_taps[i].m_high == pll->m_taps[i].m_count",
                        "pll");
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_FALSE(box.tap(0).m_score);
}

// ---- Cascades

struct CASCADE_CASE
{
    const char* m_name;
    int m_count;   // that the clock needs; halves are limited to 3
    int m_factor;  // of the source
    int m_source_high;
    int m_source_low;
    int m_rest;
};

// clang-format off
constexpr CASCADE_CASE CASCADE_CASES[] = {
    // name                          count factor high low rest
    {"the smallest factor",             12,     2,   1,  1,   6},
    {"an odd factor",                    9,     3,   1,  2,   3},
    {"a factor that must be larger",    24,     4,   2,  2,   6},
    {"the largest of all",              36,     6,   3,  3,   6},
};
// clang-format on

TEST(CandidateCascade, SplitsACountThatIsTooLarge)
{
    for (const CASCADE_CASE& c : CASCADE_CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE box(1);
        box.m_pll.m_output_counter_cascade = true;
        box.tap(0).m_max_count = 3;
        box.set_ratio(0, 2, c.m_count);
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(4096.0, box.m_pll.m_cost);
        EXPECT_EQ(1, box.m_pll.m_user_taps_count);
        EXPECT_EQ(2, box.m_pll.m_total_taps_count);
        EXPECT_EQ(1, box.tap(0).m_previous_tap);
        EXPECT_EQ(c.m_rest, box.tap(0).m_count);
        EXPECT_TRUE(box.tap(0).m_score);
        EXPECT_EQ(PLL_ILLEGAL_TAP, box.tap(1).m_previous_tap);
        EXPECT_EQ(c.m_factor, box.tap(1).m_count);
        EXPECT_EQ(c.m_source_high, box.tap(1).m_high);
        EXPECT_EQ(c.m_source_low, box.tap(1).m_low);
        EXPECT_EQ(c.m_factor % 2 == 0, box.tap(1).m_even);
        EXPECT_FALSE(box.tap(1).m_bypass);
        EXPECT_TRUE(box.tap(1).m_score);
        EXPECT_EQ(3, box.tap(1).m_max_count);
        PLL_PROP result(1);
        result.set_properties_from_internals(box.m_pll);
        EXPECT_EQ(2 * result.m_taps[0].m_div, c.m_count * result.m_taps[0].m_mult);
    }
}

TEST(CandidateCascade, ChargesEachCascadeCounter)
{
    ONE_CANDIDATE box(2);
    box.m_pll.m_output_counter_cascade = true;
    box.tap(0).m_max_count = 3;
    box.tap(1).m_max_count = 3;
    box.set_ratio(0, 1, 6);
    box.set_ratio(1, 2, 9);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(8192.0, box.m_pll.m_cost);
    EXPECT_EQ(4, box.m_pll.m_total_taps_count);
    EXPECT_EQ(2, box.tap(0).m_previous_tap);
    EXPECT_EQ(3, box.tap(1).m_previous_tap);
}

TEST(CandidateCascade, NeedsAFreeCounter)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_output_counter_cascade = true;
    box.m_pll.m_max_taps_count = 1;
    box.tap(0).m_max_count = 3;
    box.set_ratio(0, 1, 6);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
    EXPECT_EQ(6.0, box.m_pll.m_cost);
    EXPECT_EQ(PLL_ILLEGAL_TAP, box.tap(0).m_previous_tap);
    box.m_pll.m_max_taps_count = 2;
    EXPECT_TRUE(box.synthesize());
}

TEST(CandidateCascade, NeedsAFactorThatFits)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_output_counter_cascade = true;
    box.tap(0).m_max_count = 3;
    box.set_ratio(0, 1, 7);  // 14 = 2 x 7
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
    EXPECT_EQ(8.0, box.m_pll.m_cost);
    EXPECT_EQ(1, box.m_pll.m_total_taps_count);
}

TEST(CandidateCascade, IsTheDevicesToAllow)
{
    ONE_CANDIDATE box(1);
    box.tap(0).m_max_count = 3;
    box.set_ratio(0, 1, 6);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
}

TEST(CandidateCascade, IsNotUsedForACountThatFits)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_output_counter_cascade = true;
    box.tap(0).m_max_count = 3;
    box.set_ratio(0, 1, 3);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(0.0, box.m_pll.m_cost);
    EXPECT_EQ(1, box.m_pll.m_total_taps_count);
    EXPECT_EQ(6, box.tap(0).m_count);
}

TEST(CandidateCascade, StaysWithinTheRecord)
{
    // A device cannot have more counters than the record; the last free one is number 9.
    ONE_CANDIDATE box(10);
    box.m_pll.m_max_taps_count = 12;
    box.m_pll.m_output_counter_cascade = true;
    box.tap(0).m_max_count = 3;
    box.set_ratio(0, 1, 6);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(10, box.m_pll.m_total_taps_count);
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
}

// ---- Clamps

struct CLAMP_CASE
{
    const char* m_name;
    int m_count;  // that the clock needs; halves are limited to 4
    double m_cost;
    int m_clamped;  // the count that is left
};

// clang-format off
constexpr CLAMP_CASE CLAMP_CASES[] = {
    // name                       count  cost clamped
    {"the low half alone",            9,  1.0,  8},
    {"both halves by one",           10,  2.0,  8},
    {"both halves by far",          100, 92.0,  8},
};
// clang-format on

TEST(CandidateClamp, CutsBothHalvesAndCountsWhatIsCut)
{
    for (const CLAMP_CASE& c : CLAMP_CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE box(1);
        box.tap(0).m_max_count = 4;
        box.set_ratio(0, 2, c.m_count);
        EXPECT_FALSE(box.synthesize());
        EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
        EXPECT_EQ(c.m_clamped, box.tap(0).m_count);
        EXPECT_EQ(4, box.tap(0).m_high);
        EXPECT_EQ(4, box.tap(0).m_low);
        EXPECT_FALSE(box.tap(0).m_score);
    }
}

TEST(CandidateClamp, ForcesABypassWhereTheMaximumIsOne)
{
    ONE_CANDIDATE box(1);
    box.tap(0).m_max_count = 1;
    box.set_ratio(0, 2, 3);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_POST_DIVIDER_MAX_EXCEEDED, box.m_pll.m_error);
    EXPECT_EQ(3.0, box.m_pll.m_cost);
    EXPECT_TRUE(box.tap(0).m_bypass);
    EXPECT_EQ(1, box.tap(0).m_count);
    EXPECT_EQ(1, box.tap(0).m_high);
    EXPECT_EQ(0, box.tap(0).m_low);
    EXPECT_FALSE(box.tap(0).m_score);
}

TEST(CandidateClamp, LeavesABypassAloneWhereTheMaximumIsOne)
{
    ONE_CANDIDATE box(1);
    box.tap(0).m_max_count = 1;
    box.set_ratio(0, 2, 1);
    EXPECT_TRUE(box.synthesize());
    EXPECT_TRUE(box.tap(0).m_bypass);
}

TEST(CandidateClamp, NeverCascadesWhereTheMaximumIsOne)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_output_counter_cascade = true;
    box.tap(0).m_max_count = 1;
    box.set_ratio(0, 2, 4);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(4.0, box.m_pll.m_cost);
    EXPECT_EQ(1, box.m_pll.m_total_taps_count);
}

}  // namespace
