// The quick look at settings: what it lets pass, and why.
#include "search/evaluation.h"
#include "search/limits.h"
#include "search/result.h"
#include "search/row_walk.h"
#include "shortcuts/candidate_sieve.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

constexpr int NO_CUT_OFF = 2;

// One output at a quarter of the input. The best candidate is M 4, N 1 with a counter of 16; it has
// been told.
class QUARTER
{
public:
    QUARTER() : m_request(1), m_pll(1, PLL_MAX_TAPS), m_best_cost(0.0)
    {
        m_request.m_fin_period = 10000;
        m_request.m_bandwidth_type = 3;
        m_request.m_taps[0].m_div = 4;
    }

    // Whether (m, n) is retained, after the settings of `told`, each with its counter.
    bool retains(int m, int n, std::initializer_list<SEARCH_POINT> told, int post_scale = 1,
                 int cut_off = NO_CUT_OFF)
    {
        const SEARCH_LIMITS limits = read_search_limits(m_pll, m_request);
        CANDIDATE_SIEVE sieve(m_pll, m_request, limits);
        SEARCH_RESULT result(m_pll, m_request);
        result.m_best_cost = m_best_cost;
        result.m_best.m_n.m_count = 1;
        EVALUATION evaluation(m_pll, m_request, limits, nullptr, &result);
        ROW_BOUND rows(&evaluation);
        for (int few = 0; few < 64; ++few) {
            rows.of(1, 1);
        }
        for (const SEARCH_POINT& point : told) {
            PLL candidate(1, PLL_MAX_TAPS);
            candidate.m_taps[0].m_count = 4 * point.m_m / point.m_n;
            sieve.note_told(point, candidate);
        }
        const bool retained = sieve.retains(post_scale, m, n, cut_off, result);
        m_tells = sieve.look_at(post_scale, m, n, cut_off, &rows, &result) !=
                  CANDIDATE_SIEVE::LOOK::UNSURE;
        m_next_phase = result.m_neighbours[0].m_next_phase;
        m_previous_phase = result.m_neighbours[0].m_previous_phase;
        return retained;
    }

    PLL_PROP m_request;
    PLL m_pll;
    double m_best_cost;
    bool m_tells = false;
    double m_next_phase = 0.0;
    double m_previous_phase = 0.0;
};

constexpr SEARCH_POINT FOUR_ONE = {1, 4, 1, 2500.0, 2000, 0};
constexpr SEARCH_POINT SEVEN_TWO = {1, 7, 2, 2857.0, 2000, 0};

TEST(CandidateSieve, RetainsAMultipleOfTheBest)
{
    QUARTER box;
    EXPECT_TRUE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_FALSE(box.retains(8, 2, {}));          // nothing told
    EXPECT_FALSE(box.retains(4, 1, {FOUR_ONE}));  // of equal cost and equal N
}

TEST(CandidateSieve, RetainsWhatCostsMoreThanTheBest)
{
    QUARTER box;
    EXPECT_TRUE(box.retains(4, 1, {FOUR_ONE}, 2));
    box.m_best_cost = 65536.0;
    EXPECT_FALSE(box.retains(4, 1, {FOUR_ONE}, 2));
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_TRUE(box.retains(8, 2, {FOUR_ONE}, 2));
    box.m_best_cost = 65535.0;
    EXPECT_TRUE(box.retains(4, 1, {FOUR_ONE}, 2));
}

TEST(CandidateSieve, CountsWhatOutputsMissByLessThanAThousandth)
{
    // M 1601, N 400 has a counter of 16, off by 1 / 1600.
    QUARTER box;
    const SEARCH_POINT above = {1, 9, 2, 2222.0, 2000, 0};
    box.m_best_cost = 8192.0 + 1.0 / 1.6 - 1e-6;
    EXPECT_TRUE(box.retains(1601, 400, {FOUR_ONE, above}));
    box.m_best_cost = 8192.0 + 1.0 / 1.6 + 1e-6;
    EXPECT_FALSE(box.retains(1601, 400, {FOUR_ONE, above}));
}

TEST(CandidateSieve, LetsPassWhatTellsSomethingNew)
{
    QUARTER box;
    EXPECT_FALSE(box.retains(14, 4, {FOUR_ONE}));  // a counter of 14
    EXPECT_TRUE(box.retains(14, 4, {FOUR_ONE, SEVEN_TWO}));
    EXPECT_FALSE(box.retains(8, 2, {SEVEN_TWO}));      // a larger ratio
    EXPECT_FALSE(box.retains(1601, 400, {FOUR_ONE}));  // barely
}

TEST(CandidateSieve, RetainsWhatMissesAnOutput)
{
    QUARTER box;
    EXPECT_TRUE(box.retains(18, 5, {FOUR_ONE}));   // 14.4 periods
    EXPECT_FALSE(box.retains(29, 8, {FOUR_ONE}));  // 14.5, a matter of rounding
}

TEST(CandidateSieve, LetsPassWhatMovesTheCutOff)
{
    QUARTER box;
    EXPECT_TRUE(box.retains(8, 2, {FOUR_ONE}, 1, 8));
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}, 1, 9));
    box.m_request.m_bandwidth_type = 4;  // which knows no cut-off
    EXPECT_TRUE(box.retains(8, 2, {FOUR_ONE}, 1, 9));
}

TEST(CandidateSieve, LetsPassCountersThatAreTooLong)
{
    QUARTER box;
    box.m_pll.m_taps[0].m_max_count = 8;
    EXPECT_TRUE(box.retains(8, 2, {FOUR_ONE}));
    box.m_pll.m_taps[0].m_max_count = 7;
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
}

TEST(CandidateSieve, TellsPhasesAtOnce)
{
    // A VCO tap is 11.25 degrees at M 4, N 1, and 12.857 at M 7, N 2.
    QUARTER box;
    box.m_request.m_taps[0].m_phase = 11.25;
    EXPECT_FALSE(box.retains(7, 2, {FOUR_ONE, SEVEN_TWO}));
    EXPECT_TRUE(box.m_tells);
    EXPECT_EQ(90.0 / 7, box.m_next_phase);
    EXPECT_DOUBLE_EQ(0.0, box.m_previous_phase);
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_TRUE(box.m_tells);
    box.m_best_cost = 90.0 / 7 - 11.25 + 1e-6;
    box.retains(7, 2, {FOUR_ONE, SEVEN_TWO});
    EXPECT_FALSE(box.m_tells);
    EXPECT_GT(box.m_next_phase, 1e9);  // nothing told
}

// A setting that misses the ratio wished for is inexact however cheap it looks, and tells nothing.
TEST(CandidateSieve, TellsNoPhasesBesideTheVcoRatioWishedFor)
{
    QUARTER box;
    box.m_request.m_taps[0].m_phase = 11.25;
    box.m_request.m_vco_mult = 7;
    box.m_request.m_vco_div = 2;
    box.retains(7, 2, {FOUR_ONE, SEVEN_TWO});
    EXPECT_EQ(90.0 / 7, box.m_next_phase);
    box.m_request.m_vco_mult = 4;
    box.m_request.m_vco_div = 1;
    box.retains(7, 2, {FOUR_ONE, SEVEN_TWO});
    EXPECT_TRUE(box.m_tells);
    EXPECT_GT(box.m_next_phase, 1e9);
}

// The wish and M 844069, N 844068 differ by 7e-13, the other two by that and 1.4e-12.
TEST(CandidateSieve, TellsNoPhasesAHairBesideTheVcoRatioWishedFor)
{
    SMALL_PLL box(1, 844070, 844069);
    box.m_pll.m_n.m_min_count = 844068;
    box.set_vco(1998, 1999, 2000);
    box.set_pfd(1, 2147483647);
    box.m_request.m_fin_period = 2000;
    box.m_request.m_vco_mult = 657529975;
    box.m_request.m_vco_div = 657529196;
    box.set_ratio(0, 844069, 844068);
    box.clock(0).m_phase = 252.0;
    const SEARCH_LIMITS limits = read_search_limits(box.m_pll, box.m_request);
    SEARCH_RESULT walked(box.m_pll, box.m_request);
    EVALUATION evaluation(box.m_pll, box.m_request, limits, nullptr, &walked);
    walk_rows(&evaluation);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(walked.m_neighbours[0].m_previous_phase, box.tap(0).m_prev_phase_degree);
    EXPECT_EQ(walked.m_neighbours[0].m_next_phase, box.tap(0).m_next_phase_degree);
}

// The feedback path is delayed by the 8 taps of 90 degrees at M 4, N 1, which is one period of the
// VCO; at M 7, N 2 by 7 taps. Both outputs start with it.
TEST(CandidateSieve, TellsPhasesBelowZeroAtOnce)
{
    QUARTER box;
    box.m_request.m_taps[0].m_phase = -90.0;
    EXPECT_FALSE(box.retains(7, 2, {FOUR_ONE, SEVEN_TWO}));
    EXPECT_TRUE(box.m_tells);
    EXPECT_DOUBLE_EQ(-90.0 + 90.0 / 7, box.m_next_phase);
    EXPECT_DOUBLE_EQ(-90.0 - 90.0 / 7, box.m_previous_phase);
}

// A serial clock moves in whole periods of the VCO.
TEST(CandidateSieve, TellsPhasesOfSerialClocksAtOnce)
{
    QUARTER box;
    box.m_request.m_taps[0].m_has_sclkout_phase = true;
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_TRUE(box.m_tells);
    EXPECT_EQ(90.0, box.m_next_phase);
    EXPECT_EQ(-90.0, box.m_previous_phase);
}

TEST(CandidateSieve, KeepsCountsOfAnySizeUpToItsEnd)
{
    for (const int count : {1023, 1024, 16383, 16384}) {
        QUARTER box;
        box.m_pll.m_taps[0].m_max_count = 10000;
        const SEARCH_POINT told = {1, count, 4, 2000.0, 2000, 0};
        EXPECT_EQ(count <= 16383, box.retains(2 * count, 8, {told})) << count;
    }
}

// With a bandwidth table a candidate leaves the row that it would have been given: it is never just
// passed over, and what the row costs at least is part of its cost.
TEST(CandidateSieve, CountsWhatARowOfTheTableCosts)
{
    constexpr double TYPICAL = 1e6;
    QUARTER box;
    DEVICE device(20);
    PLL_BANDWIDTH_SETTING* row = device.add_row(8, TYPICAL, TYPICAL);
    device.describe(box.m_pll);
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = TYPICAL - 1e6 / 131072 * 100;  // costs 100
    box.m_best_cost = 100.0;
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_TRUE(box.m_tells);
    box.m_best_cost = 101.0;
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_FALSE(box.m_tells);
    box.m_best_cost = 1.0;
    row->m_m = 7;  // which is reported
    EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
    EXPECT_FALSE(box.m_tells);
}

TEST(CandidateSieve, HasNothingToSayOfOddRequests)
{
    const auto expect_passed = [](auto change) {
        QUARTER box;
        change(&box);
        EXPECT_FALSE(box.retains(8, 2, {FOUR_ONE}));
        EXPECT_FALSE(box.m_tells);
    };
    expect_passed([](QUARTER* box) { box->m_request.m_taps[0].m_duty = 101; });
    expect_passed([](QUARTER* box) { box->m_request.m_taps[0].m_duty = -1; });
    expect_passed([](QUARTER* box) { box->m_pll.m_feedback_tap = 5; });
}

TEST(CandidateSieve, RetainsWhatLeavesARestInTheFeedbackPath)
{
    QUARTER box;
    box.m_pll.m_feedback_tap = 0;
    EXPECT_FALSE(box.retains(16, 4, {}));  // a counter of 16
    EXPECT_TRUE(box.retains(20, 5, {}));   // which leaves 4 of M 20
}

}  // namespace
