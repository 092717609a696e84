// Phases: VCO taps and counter starts, the reference on the feedback path, cascades, and the next
// and previous steps.
#include "error_guard.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// A PLL with its counters set by hand: M over N, every clock with a count of 4.
struct PLACED_PLL
{
    PLACED_PLL(int clocks, int m, int n) : m_pll(clocks, PLL_MAX_TAPS), m_request(clocks)
    {
        m_request.m_fin_period = 4000;
        m_pll.m_m.m_count = m;
        m_pll.m_n.m_count = n;
        for (int i = 0; i < clocks; ++i) {
            set_count(i, 2, 2);
        }
    }

    void set_count(int tap, int high, int low)
    {
        m_pll.m_taps[tap].m_count = high + low;
        m_pll.m_taps[tap].m_high = high;
        m_pll.m_taps[tap].m_low = low;
        m_pll.m_taps[tap].m_bypass = high + low == 1;
        m_pll.m_taps[tap].m_even = true;
        m_pll.m_taps[tap].m_previous_tap = PLL_ILLEGAL_TAP;
    }

    void set_sclkout(int clock, double phase)
    {
        m_request.m_taps[clock].m_has_sclkout_phase = true;
        m_request.m_taps[clock].m_sclkout_phase = phase;
    }

    bool place() { return m_pll.synthesize_best_phase_and_duty_cycle(&m_pll, m_request); }

    PLL_OUTPUT_TAP& tap(int index) { return m_pll.m_taps[index]; }

    PLL m_pll;
    PLL_PROP m_request;
};

void expect_reference(const PLL& pll, int vco_tap, int initial)
{
    EXPECT_EQ(vco_tap, pll.m_m.m_vco_tap);
    EXPECT_EQ(initial, pll.m_m.m_initial);
}

void expect_place(const PLL_OUTPUT_TAP& tap, int vco_tap, int initial)
{
    EXPECT_EQ(vco_tap, tap.m_vco_tap);
    EXPECT_EQ(initial, tap.m_initial);
}

struct PLACE_CASE
{
    const char* m_name;
    int m_m;
    int m_n;
    double m_phase;
    int m_vco_tap;
    int m_initial;
    double m_achieved;
};

// clang-format off
constexpr PLACE_CASE PLACE_CASES[] = {
    // name                              M  N  phase tap start achieved
    {"none",                             4, 1,   0.0, 0, 1,   0.0},
    {"one VCO tap",                      4, 1, 11.25, 1, 1, 11.25},
    {"a whole VCO period",               4, 1,  90.0, 0, 2,  90.0},
    {"a VCO period and three taps",      4, 1, 123.75, 3, 2, 123.75},
    {"N stretches the step",             4, 2,  22.5, 1, 1,  22.5},
    {"between two steps, nearer below",  4, 1,  16.5, 1, 1, 11.25},
    {"between two steps, nearer above",  4, 1,  17.0, 2, 1,  22.5},
    {"just below a whole VCO period",    4, 1,  85.0, 0, 2,  90.0},
};
// clang-format on

TEST(Phase, IsPlacedOnVcoTapAndCounterStart)
{
    for (const PLACE_CASE& c : PLACE_CASES) {
        SCOPED_TRACE(c.m_name);
        PLACED_PLL box(1, c.m_m, c.m_n);
        box.m_request.m_taps[0].m_phase = c.m_phase;
        EXPECT_TRUE(box.place());
        expect_reference(box.m_pll, 0, 1);
        expect_place(box.tap(0), c.m_vco_tap, c.m_initial);
        EXPECT_EQ(c.m_phase - c.m_achieved, box.tap(0).m_delta_phase);
        EXPECT_EQ(std::abs(c.m_phase - c.m_achieved), box.m_pll.m_delta_phase);
        EXPECT_EQ(std::abs(c.m_phase - c.m_achieved), box.m_pll.m_cost);
    }
}

TEST(Phase, EndsAtTheLargestStartOfTheCounter)
{
    // Four VCO periods are asked, start 3 gives two.
    PLACED_PLL box(1, 4, 1);
    box.tap(0).m_max_count = 3;
    box.m_request.m_taps[0].m_phase = 360.0;
    EXPECT_TRUE(box.place());
    EXPECT_EQ(3, box.tap(0).m_initial);
    EXPECT_EQ(0, box.tap(0).m_vco_tap);
    EXPECT_EQ(360.0 - 180.0, box.tap(0).m_delta_phase);
}

TEST(Phase, HasNoStartBeyondOneOnABypassedCounter)
{
    PLACED_PLL box(1, 4, 1);
    box.set_count(0, 1, 0);
    box.m_request.m_taps[0].m_phase = 85.0;
    EXPECT_TRUE(box.place());
    expect_place(box.tap(0), 7, 1);  // 315 VCO degrees at most
    EXPECT_EQ(85.0 - 78.75, box.m_pll.m_delta_phase);
}

TEST(Phase, StartsFromZeroErrorButAddsToTheCost)
{
    PLACED_PLL box(2, 4, 1);
    box.m_pll.m_delta_phase = 99.0;
    box.m_pll.m_cost = 100.0;
    box.m_request.m_taps[0].m_phase = 12.25;
    box.m_request.m_taps[1].m_phase = 23.5;
    EXPECT_TRUE(box.place());
    EXPECT_EQ(2.0, box.m_pll.m_delta_phase);
    EXPECT_EQ(102.0, box.m_pll.m_cost);
}

// ---- Negative phases

TEST(PhaseReference, DelaysTheFeedbackForANegativePhase)
{
    PLACED_PLL box(2, 4, 1);
    box.m_request.m_taps[0].m_phase = -45.0;
    box.m_request.m_taps[1].m_phase = 45.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 4, 1);
    expect_place(box.tap(0), 0, 1);
    expect_place(box.tap(1), 0, 2);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
}

TEST(PhaseReference, TakesTheSmallestPhaseOfAll)
{
    PLACED_PLL box(3, 4, 1);
    box.m_request.m_taps[0].m_phase = -45.0;
    box.m_request.m_taps[1].m_phase = -90.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 2);
    expect_place(box.tap(0), 4, 1);
    expect_place(box.tap(1), 0, 1);
    expect_place(box.tap(2), 0, 2);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
}

TEST(PhaseReference, GoesBackToNoneWhenNoPhaseIsNegative)
{
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_m.m_initial = 5;
    box.m_pll.m_m.m_vco_tap = 3;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 1);
}

TEST(PhaseReference, RoundsUpWhereMHasNoSuchVcoTap)
{
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_m.m_max_vco_tap = 3;
    box.m_request.m_taps[0].m_phase = -45.0;  // tap 4
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 2);
    expect_place(box.tap(0), 4, 1);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    box.m_pll.m_m.m_max_vco_tap = 4;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 4, 1);
}

TEST(PhaseReference, StaysAtTheLargestStartOfM)
{
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_m.m_max_vco_tap = 3;
    box.m_pll.m_m.m_max_count = 1;
    box.m_request.m_taps[0].m_phase = -45.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 1);
    EXPECT_EQ(-45.0, box.tap(0).m_delta_phase);
}

TEST(PhaseReference, HasNoStartBeyondOneWhereMIsOne)
{
    PLACED_PLL box(1, 1, 1);
    box.m_request.m_taps[0].m_phase = -350.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 7, 1);
    expect_place(box.tap(0), 0, 1);
    EXPECT_EQ(-35.0, box.tap(0).m_delta_phase);
    EXPECT_EQ(35.0, box.m_pll.m_delta_phase);
    EXPECT_EQ(35.0, box.m_pll.m_cost);
}

TEST(PhaseReference, MovesToTheFeedbackCounter)
{
    PLACED_PLL box(2, 1, 1);  // M 1, counter 4
    box.m_pll.m_feedback_tap = 0;
    box.m_pll.m_m.m_max_vco_tap = 3;  // of M, which feeds nothing back itself
    box.m_request.m_taps[1].m_phase = -45.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 1);
    expect_place(box.tap(0), 4, 1);
    expect_place(box.tap(1), 0, 1);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
}

TEST(PhaseReference, CannotShiftTheFeedbackClockAgainstItself)
{
    PLACED_PLL box(1, 1, 1);
    box.m_pll.m_feedback_tap = 0;
    box.m_request.m_taps[0].m_phase = -45.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 0, 1);
    expect_place(box.tap(0), 0, 1);
    EXPECT_EQ(-45.0, box.tap(0).m_delta_phase);
}

TEST(PhaseReference, CountsABypassedFeedbackCounterAsOne)
{
    PLACED_PLL box(2, 4, 1);
    box.m_pll.m_feedback_tap = 0;
    box.set_count(0, 1, 0);
    box.m_request.m_taps[1].m_phase = 45.0;
    EXPECT_TRUE(box.place());
    expect_place(box.tap(1), 4, 1);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
}

TEST(PhaseReference, ReportsAFeedbackTapThatIsNoClock)
{
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_feedback_tap = 1;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.place());
    reports.expect_only("pll->m_feedback_tap < pll->m_user_taps_count", "pll");
}

// ---- Serial clocks

TEST(PhaseSerialClock, TakesTheVcoTapFromTheSerialClock)
{
    // 22.5 degrees of the serial clock are VCO tap 2; the clock itself starts a VCO period later.
    PLACED_PLL box(1, 4, 1);
    box.set_sclkout(0, 22.5);
    box.m_request.m_taps[0].m_phase = 112.5;
    EXPECT_TRUE(box.place());
    expect_place(box.tap(0), 2, 2);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    // Steps are whole VCO periods.
    EXPECT_EQ(202.5, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(22.5, box.tap(0).m_prev_phase_degree);
}

TEST(PhaseSerialClock, ChargesBothErrors)
{
    PLACED_PLL box(1, 4, 1);
    box.set_sclkout(0, 23.5);
    EXPECT_TRUE(box.place());
    expect_place(box.tap(0), 2, 1);
    EXPECT_EQ(-22.5, box.tap(0).m_delta_phase);
    EXPECT_EQ(22.5 + 1.0, box.m_pll.m_delta_phase);
    EXPECT_EQ(22.5 + 1.0, box.m_pll.m_cost);
}

TEST(PhaseSerialClock, DecidesTheReferenceInPlaceOfTheClock)
{
    PLACED_PLL box(1, 4, 1);
    box.set_sclkout(0, -45.0);
    box.m_request.m_taps[0].m_phase = 45.0;
    EXPECT_TRUE(box.place());
    expect_reference(box.m_pll, 4, 1);
    expect_place(box.tap(0), 0, 2);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);

    PLACED_PLL positive(1, 4, 1);
    positive.set_sclkout(0, 0.0);
    positive.m_request.m_taps[0].m_phase = -45.0;
    EXPECT_TRUE(positive.place());
    expect_reference(positive.m_pll, 0, 1);
    expect_place(positive.tap(0), 0, 1);
    EXPECT_EQ(-45.0, positive.tap(0).m_delta_phase);
}

// ---- Cascades: clock 0 is fed by counter 1. M 4, so that 90 degrees are a VCO period.

struct CASCADE_PHASE_CASE
{
    const char* m_name;
    int m_source_high;
    int m_source_low;
    int m_start;  // of the cascade, in VCO periods from 1
    int m_vco_tap;
    int m_source_start;
    int m_own_start;
};

// clang-format off
constexpr CASCADE_PHASE_CASE CASCADE_PHASE_CASES[] = {
    // name                                       high low start tap source own
    {"no phase",                                     1,  1,   1,   0,   1,   1},
    {"a VCO tap alone",                              1,  1,   1,   3,   1,   1},
    {"within the source's own starts",               1,  1,   3,   1,   3,   1},
    {"beyond them: as late as the source allows",    1,  1,   5,   2,   3,   2},
    {"with nothing left over",                       1,  1,   6,   0,   2,   3},
    {"a rest beyond the source's largest start",     3,  2,   4,   0,   3,   1},
    {"likewise, one turn of the source later",       3,  2,   9,   0,   3,   2},
    {"a rest within it",                             3,  2,   7,   0,   2,   2},
};
// clang-format on

TEST(PhaseCascade, IsSharedBetweenTheSourceAndTheClock)
{
    for (const CASCADE_PHASE_CASE& c : CASCADE_PHASE_CASES) {
        SCOPED_TRACE(c.m_name);
        PLACED_PLL box(1, 4, 1);
        box.m_pll.m_total_taps_count = 2;
        box.set_count(1, c.m_source_high, c.m_source_low);
        box.tap(0).m_max_count = 3;
        box.tap(0).m_previous_tap = 1;
        box.tap(0).m_vco_tap = 5;
        box.tap(1).m_max_count = 3;
        box.m_request.m_taps[0].m_phase = (c.m_start - 1) * 90.0 + c.m_vco_tap * 11.25;
        EXPECT_TRUE(box.place());
        expect_place(box.tap(1), c.m_vco_tap, c.m_source_start);
        expect_place(box.tap(0), 0, c.m_own_start);
        EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    }
}

TEST(PhaseCascade, EndsWhereBothCountersDo)
{
    // A source of 2 with starts up to 3, before a clock with starts up to 3: 7 in all.
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_total_taps_count = 2;
    box.set_count(1, 1, 1);
    box.tap(0).m_max_count = 3;
    box.tap(0).m_previous_tap = 1;
    box.tap(1).m_max_count = 3;
    box.m_request.m_taps[0].m_phase = 6 * 90.0;
    EXPECT_TRUE(box.place());
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
    box.m_request.m_taps[0].m_phase = 7 * 90.0;
    EXPECT_TRUE(box.place());
    EXPECT_EQ(90.0, box.m_pll.m_delta_phase);
}

TEST(PhaseCascade, LeavesBypassedCountersAtStartOne)
{
    PLACED_PLL source(1, 4, 1);
    source.m_pll.m_total_taps_count = 2;
    source.set_count(1, 1, 0);
    source.tap(0).m_previous_tap = 1;
    source.m_request.m_taps[0].m_phase = 180.0;  // start 3
    EXPECT_TRUE(source.place());
    expect_place(source.tap(1), 0, 1);
    expect_place(source.tap(0), 0, 3);

    PLACED_PLL own(1, 4, 1);
    own.m_pll.m_total_taps_count = 2;
    own.set_count(0, 1, 0);
    own.set_count(1, 1, 1);
    own.tap(0).m_previous_tap = 1;
    own.tap(1).m_max_count = 3;
    own.m_request.m_taps[0].m_phase = 180.0;
    EXPECT_TRUE(own.place());
    expect_place(own.tap(1), 0, 3);
    expect_place(own.tap(0), 0, 1);
}

TEST(PhaseCascade, ReportsASourceThatIsFedByAnother)
{
    PLACED_PLL box(1, 4, 1);
    box.m_pll.m_total_taps_count = 3;
    box.set_count(1, 1, 1);
    box.set_count(2, 1, 1);
    box.tap(0).m_previous_tap = 1;
    box.tap(1).m_previous_tap = 2;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.place());
    reports.expect_only("pll->m_taps[phase_tap].m_previous_tap == PLL_ILLEGAL_TAP", "pll");
}

// ---- Next and previous phase

struct STEP_CASE
{
    const char* m_name;
    double m_requested;
    double m_achieved;
    double m_next;
    double m_prev;
};

// The step is 11.25 degrees.
// clang-format off
constexpr STEP_CASE STEP_CASES[] = {
    // name                          requested achieved next   prev
    {"met",                             45.0,    45.0,  56.25, 33.75},
    {"met within a ten-thousandth",     45.0,    45.00005, 56.25005, 33.75005},
    {"achieved above",                  45.0,    50.0,  50.0,  38.75},
    {"achieved below",                  45.0,    40.0,  51.25, 40.0},
};
// clang-format on

TEST(PhaseSteps, LieOneStepAroundTheAchievedPhase)
{
    for (const STEP_CASE& c : STEP_CASES) {
        SCOPED_TRACE(c.m_name);
        PLACED_PLL box(1, 4, 1);
        box.m_request.m_taps[0].m_phase = c.m_requested;
        box.m_pll.compute_phase_for_ui(&box.m_pll, box.m_request, 0, c.m_achieved);
        EXPECT_DOUBLE_EQ(c.m_next, box.tap(0).m_next_phase_degree);
        EXPECT_DOUBLE_EQ(c.m_prev, box.tap(0).m_prev_phase_degree);
    }
}

TEST(PhaseSteps, OnlyNarrow)
{
    PLACED_PLL box(1, 4, 1);
    box.tap(0).m_next_phase_degree = 5.0;
    box.tap(0).m_prev_phase_degree = -5.0;
    box.m_pll.compute_phase_for_ui(&box.m_pll, box.m_request, 0, 0.0);
    EXPECT_EQ(5.0, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(-5.0, box.tap(0).m_prev_phase_degree);
}

TEST(PhaseSteps, NeverOfferTheRequestItself)
{
    // One step up from 33.75 is what was asked for.
    PLACED_PLL box(1, 4, 1);
    box.m_request.m_taps[0].m_phase = 45.0;
    box.m_pll.compute_phase_for_ui(&box.m_pll, box.m_request, 0, 33.75);
    EXPECT_EQ(2147483647.0, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(33.75, box.tap(0).m_prev_phase_degree);
    PLACED_PLL down(1, 4, 1);
    down.m_request.m_taps[0].m_phase = 45.0;
    down.m_pll.compute_phase_for_ui(&down.m_pll, down.m_request, 0, 56.25);
    EXPECT_EQ(56.25, down.tap(0).m_next_phase_degree);
    EXPECT_EQ(-2147483648.0, down.tap(0).m_prev_phase_degree);
}

TEST(PhaseSteps, AreThoseOfTheGivenCandidate)
{
    PLACED_PLL box(1, 4, 1);
    const PLL other(1, 10);  // M 1: steps of 45 degrees
    other.compute_phase_for_ui(&box.m_pll, box.m_request, 0, 0.0);
    EXPECT_EQ(11.25, box.tap(0).m_next_phase_degree);
}

// ---- The object itself

TEST(PhaseAndDutyCycle, RebuildTheCountsOfTheObjectNotOfTheCandidate)
{
    PLACED_PLL box(1, 4, 1);
    PLL object(1, 10);
    object.m_taps[0].m_high = 5;
    object.m_taps[0].m_low = 2;
    EXPECT_TRUE(object.synthesize_best_phase_and_duty_cycle(&box.m_pll, box.m_request));
    EXPECT_EQ(7, object.m_taps[0].m_count);
    EXPECT_EQ(4, box.tap(0).m_count);
    EXPECT_EQ(1, object.m_taps[1].m_count);
}

TEST(PhaseAndDutyCycle, RebuildTheCountsWithoutClocksToo)
{
    PLACED_PLL box(0, 4, 1);
    box.m_pll.m_delta_phase = 3.0;
    box.m_pll.m_total_taps_count = 1;
    box.tap(0).m_high = 3;
    box.tap(0).m_low = 4;
    EXPECT_TRUE(box.place());
    EXPECT_EQ(7, box.tap(0).m_count);
    EXPECT_EQ(0.0, box.m_pll.m_delta_phase);
}

}  // namespace
