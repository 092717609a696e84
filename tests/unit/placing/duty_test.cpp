// Duty cycles: the split of a count into halves, even counters, and the next and previous steps.
#include "error_guard.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

namespace {

// A PLL with one counter set by hand.
struct SPLIT_PLL
{
    SPLIT_PLL(int count, int max_count, int duty) : m_pll(1, PLL_MAX_TAPS), m_request(1)
    {
        m_pll.m_m.m_count = 4;
        tap().m_count = count;
        tap().m_bypass = count == 1;
        tap().m_max_count = max_count;
        m_request.m_taps[0].m_duty = duty;
    }

    bool split() { return m_pll.synthesize_best_phase_and_duty_cycle(&m_pll, m_request); }

    void expect(int high, int low, bool even)
    {
        EXPECT_EQ(high, tap().m_high);
        EXPECT_EQ(low, tap().m_low);
        EXPECT_EQ(even, tap().m_even);
    }

    PLL_OUTPUT_TAP& tap() { return m_pll.m_taps[0]; }

    PLL m_pll;
    PLL_PROP m_request;
};

struct SPLIT_CASE
{
    const char* m_name;
    int m_count;
    int m_max_count;
    int m_duty;
    int m_high;
    int m_low;
    bool m_even;
    double m_cost;
};

// clang-format off
constexpr SPLIT_CASE SPLIT_CASES[] = {
    // name                                   count max duty high low even  cost
    {"half of an even count",                     4, 512, 50,  2,  2, true,  0.0},
    {"half of an odd count",                      3, 512, 50,  2,  1, false, 0.0},
    {"a quarter",                                 4, 512, 25,  1,  3, true,  0.0},
    {"a quarter of two",                          2, 512, 25,  1,  1, false, 0.0},
    {"nearer below",                              4, 512, 30,  1,  3, true,  5 / 100.0},
    {"nearer above",                             10, 512, 33,  4,  6, false, 2 / 100.0},
    {"none at all gives half a period",           4, 512,  0,  1,  3, false, 13 / 100.0},
    {"all leaves one period low",                 4, 512, 100, 3,  1, true,  25 / 100.0},
    {"three quarters of two are out of reach",    2, 512, 75,  1,  1, true,  25 / 100.0},
    {"one is a bypass with 50 percent",           1, 512, 50,  1,  0, true,  0.0},
    {"one whatever is asked",                     1, 512, 20,  1,  0, true,  30 / 100.0},
    {"a high half too large",                     6,   4, 90,  4,  2, true,  2.0 + 23 / 100.0},
    {"a low half too large",                      6,   4,  5,  2,  4, false, 1.0 + 20 / 100.0},
    {"both too large",                           10,   4, 50,  6,  4, false, 3.0 + 5 / 100.0},
};
// clang-format on

TEST(DutyCycle, SplitsTheCountIntoHalfPeriods)
{
    for (const SPLIT_CASE& c : SPLIT_CASES) {
        SCOPED_TRACE(c.m_name);
        SPLIT_PLL box(c.m_count, c.m_max_count, c.m_duty);
        EXPECT_TRUE(box.split());
        box.expect(c.m_high, c.m_low, c.m_even);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
        EXPECT_EQ(c.m_count, box.tap().m_count);
    }
}

TEST(DutyCycle, LeavesTheModeOfABypassAlone)
{
    SPLIT_PLL box(1, 512, 50);
    box.tap().m_even = false;
    EXPECT_TRUE(box.split());
    box.expect(1, 0, false);
}

TEST(DutyCycle, ReportsAHalfThatIsNotPositive)
{
    SPLIT_PLL negative(4, 512, -50);
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(negative.split());
    reports.expect_only("high > 0 && low > 0", "pll");
    negative.expect(-1, 5, false);  // -3 half periods, rounded up
    SPLIT_PLL beyond(4, 512, 150);
    EXPECT_TRUE(beyond.split());
    reports.expect_only("high > 0 && low > 0", "pll");
    beyond.expect(6, -2, true);
}

TEST(DutyCycle, ReportsASplitThatDoesNotAddUp)
{
    SPLIT_PLL box(0, 512, 50);
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.split());
    reports.expect_only("pll->m_taps[i].m_low + pll->m_taps[i].m_high == pll->m_taps[i].m_count",
                        "pll");
}

// ---- Even counters

struct EVEN_CASE
{
    const char* m_name;
    int m_count;
    int m_max_count;
    int m_duty;
    int m_high;
    int m_low;
    bool m_even;
    double m_cost;
};

// clang-format off
constexpr EVEN_CASE EVEN_MODE_CASES[] = {
    // name                                count max duty high low even cost
    {"even already",                           4, 512, 50,  2,  2, true, 0.0},
    {"the lower high half is nearer",         10, 512, 33,  3,  7, true, 3 / 100.0},
    {"the upper one is nearer",               10, 512, 37,  4,  6, true, 3 / 100.0},
    {"equally near: the upper one",            3, 512, 50,  2,  1, true, 17 / 100.0},
    {"no high half below one",                10, 512,  3,  1,  9, true, 7 / 100.0},
    {"no low half above its maximum",         10,   6, 33,  4,  6, true, 7 / 100.0},
};
constexpr EVEN_CASE EVEN_VALUE_CASES[] = {
    // name                                count max duty high low even  cost
    {"even already",                           4, 512, 50,  2,  2, true,  0.0},
    {"half a period up",                       6, 512, 50,  4,  2, false, 8 / 100.0},
    {"a period down",                          6, 512, 40,  2,  4, true,  7 / 100.0},
    {"even halves with a half period",         6, 512, 55,  4,  2, false, 3 / 100.0},
    {"no way up past the maximum",             6,   3, 50,  3,  3, true,  262144.0},
    {"no way from one and one",                2, 512, 50,  1,  1, true,  262144.0},
    {"an odd count cannot be helped",          5, 512, 50,  3,  2, false, 262144.0},
    {"neither can a bypass",                   1, 512, 50,  1,  0, true,  262144.0},
};
constexpr EVEN_CASE EVEN_BOTH_CASES[] = {
    // name                                count max duty high low even  cost
    {"whole periods only",                     6, 512, 50,  4,  2, true, 17 / 100.0},
    {"down",                                   6, 512, 45,  2,  4, true, 12 / 100.0},
    {"made even first",                        6, 512, 40,  2,  4, true, 7 / 100.0},
};
// clang-format on

TEST(DutyCycleEvenMode, DropsTheHalfPeriod)
{
    for (const EVEN_CASE& c : EVEN_MODE_CASES) {
        SCOPED_TRACE(c.m_name);
        SPLIT_PLL box(c.m_count, c.m_max_count, c.m_duty);
        box.m_request.m_taps[0].m_use_even_counter_mode = true;
        EXPECT_TRUE(box.split());
        box.expect(c.m_high, c.m_low, c.m_even);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
    }
}

TEST(DutyCycleEvenValue, MovesOddHalvesToTheNearestEvenOnes)
{
    for (const EVEN_CASE& c : EVEN_VALUE_CASES) {
        SCOPED_TRACE(c.m_name);
        SPLIT_PLL box(c.m_count, c.m_max_count, c.m_duty);
        box.m_request.m_taps[0].m_use_even_counter_value = true;
        EXPECT_TRUE(box.split());
        box.expect(c.m_high, c.m_low, c.m_even);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
    }
}

TEST(DutyCycleEvenValue, KeepsTheEvenModeWhereThatIsAskedToo)
{
    for (const EVEN_CASE& c : EVEN_BOTH_CASES) {
        SCOPED_TRACE(c.m_name);
        SPLIT_PLL box(c.m_count, c.m_max_count, c.m_duty);
        box.m_request.m_taps[0].m_use_even_counter_mode = true;
        box.m_request.m_taps[0].m_use_even_counter_value = true;
        EXPECT_TRUE(box.split());
        box.expect(c.m_high, c.m_low, c.m_even);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
    }
}

// ---- Next and previous duty cycle

struct STEP_CASE
{
    const char* m_name;
    int m_requested;
    double m_achieved;
    int m_next;
    int m_prev;
};

// A count of 4: steps of 12.5 percent from 12.5 to 75.
// clang-format off
constexpr STEP_CASE STEP_CASES[] = {
    // name                       requested achieved next prev
    {"met",                            50,    50.0,   63,  38},
    {"met when rounded",               38,    37.5,   50,  25},
    {"achieved below",                 55,    50.0,   63,  50},
    {"achieved above",                 45,    50.0,   50,  38},
    {"nothing above the largest",      75,    75.0,  100,  63},
    {"nothing below the smallest",     13,    12.5,   25,   0},
    {"the request beyond the largest", 90,    75.0,  100,  75},
    {"the request below the smallest",  5,    12.5,   13,   0},
};
// clang-format on

TEST(DutyCycleSteps, LieOneStepAroundTheAchievedDutyCycle)
{
    for (const STEP_CASE& c : STEP_CASES) {
        SCOPED_TRACE(c.m_name);
        SPLIT_PLL box(4, 512, c.m_requested);
        box.tap().m_high = 2;
        box.tap().m_low = 2;
        box.m_pll.compute_duty_cycle_for_ui(&box.m_pll, box.m_request, 0, c.m_achieved);
        EXPECT_EQ(c.m_next, box.tap().m_next_duty_cycle);
        EXPECT_EQ(c.m_prev, box.tap().m_prev_duty_cycle);
        EXPECT_EQ(13, box.tap().m_smallest_duty_cycle_min);
        EXPECT_EQ(75, box.tap().m_largest_duty_cycle_max);
    }
}

TEST(DutyCycleSteps, OnlyNarrowWhileTheReachWidens)
{
    SPLIT_PLL box(4, 512, 50);
    box.tap().m_high = 2;
    box.tap().m_low = 2;
    box.tap().m_next_duty_cycle = 55;
    box.tap().m_prev_duty_cycle = 45;
    box.tap().m_smallest_duty_cycle_min = 10;
    box.tap().m_largest_duty_cycle_max = 80;
    box.m_pll.compute_duty_cycle_for_ui(&box.m_pll, box.m_request, 0, 50.0);
    EXPECT_EQ(55, box.tap().m_next_duty_cycle);
    EXPECT_EQ(45, box.tap().m_prev_duty_cycle);
    EXPECT_EQ(10, box.tap().m_smallest_duty_cycle_min);
    EXPECT_EQ(80, box.tap().m_largest_duty_cycle_max);
}

struct CORRECTION_CASE
{
    const char* m_name;
    int m_smallest;
    int m_largest;
    int m_value;
    int m_corrected;
};

// clang-format off
constexpr CORRECTION_CASE CORRECTION_CASES[] = {
    // name                           smallest largest value corrected
    {"within",                             20,    70,    50,  50},
    {"the largest",                        20,    70,    70,  70},
    {"above the largest",                  20,    70,    71,  70},
    {"the smallest",                       20,    70,    20,  20},
    {"below the smallest",                 20,    70,    19,  20},
    {"between bounds that cross: above",   70,    20,    50,  20},
    {"between bounds that cross: below",   70,    20,    10,  70},
};
// clang-format on

TEST(DutyCycleCorrection, ClampsIntoTheReach)
{
    for (const CORRECTION_CASE& c : CORRECTION_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(2, 10);
        for (int i = 0; i < 3; ++i) {
            pll.m_taps[i].m_smallest_duty_cycle_min = c.m_smallest;
            pll.m_taps[i].m_largest_duty_cycle_max = c.m_largest;
            pll.m_taps[i].m_next_duty_cycle = c.m_value;
            pll.m_taps[i].m_prev_duty_cycle = c.m_value;
        }
        pll.correct_next_and_previous_values_for_ui();
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(c.m_corrected, pll.m_taps[i].m_next_duty_cycle);
            EXPECT_EQ(c.m_corrected, pll.m_taps[i].m_prev_duty_cycle);
        }
        EXPECT_EQ(c.m_value, pll.m_taps[2].m_next_duty_cycle);  // no clock
    }
}

}  // namespace
