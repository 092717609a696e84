// Which candidate wins: costs, ties and what is carried from candidate to candidate.
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double NO_LIMIT = std::numeric_limits<double>::max();

// ---- Ties

struct TIE_CASE
{
    const char* m_name;
    int m_fin;
    int m_vco_min;
    int m_vco_max;
    int m_center;
    int m_mult;
    int m_m;
};

// With N 1 throughout. 6000 ps make M 3 (2000 ps) and M 4 (1500 ps) legal; 10000 ps M 4 (2500 ps)
// and M 5 (2000 ps); of 8000 ps and a doubled clock only M 4 (2000 ps) and M 6 (1333.3 ps) are
// exact.
// clang-format off
constexpr TIE_CASE TIE_CASES[] = {
    // name                                    fin    min   max center mult M
    {"even after odd, less than 200 ps worse",  6000, 1400, 2100, 1849, 1, 4},
    {"even after odd, 200 ps worse",            6000, 1400, 2100, 1850, 1, 3},
    {"odd after even, more than 200 ps better", 10000, 1900, 2600, 2149, 1, 5},
    {"odd after even, 200 ps better",           10000, 1900, 2600, 2150, 1, 4},
    {"even after even, better",                 8000, 1300, 2100, 1666, 2, 6},
    {"even after even, worse",                  8000, 1300, 2100, 1667, 2, 4},
};
// clang-format on

TEST(RankingTie, IsDecidedByTheVcoCenterWithABonusForEvenM)
{
    for (const TIE_CASE& tie : TIE_CASES) {
        SCOPED_TRACE(tie.m_name);
        SMALL_PLL box(1, 6, 1);
        box.m_request.m_fin_period = tie.m_fin;
        box.set_vco(tie.m_vco_min, tie.m_center, tie.m_vco_max);
        box.set_ratio(0, tie.m_mult, 1);
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(tie.m_m, box.m_pll.get_m());
        EXPECT_EQ(1, box.m_pll.get_n());
    }
}

TEST(RankingTie, NeedsMoreThanAnEqualDistance)
{
    // M 4 and M 6 lie 250 ps above and below the center.
    SMALL_PLL box(1, 6, 1);
    box.m_request.m_fin_period = 6000;
    box.set_vco(1000, 1250, 1500);
    box.set_ratio(0, 2, 1);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(4, box.m_pll.get_m());
}

TEST(RankingTie, NeverTakesALargerN)
{
    // M 2 with N 1 runs at 2000 ps, M 2 with N 2 on the center at 4000 ps.
    SMALL_PLL box(1, 2, 2);
    box.set_vco(1000, 4000, 4000);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.get_n());
}

TEST(RankingTie, KeepsMAtFortyOrBelow)
{
    // The center draws to larger M; 15 to 50 are legal, then 42 to 50.
    SMALL_PLL box(1, 50, 1);
    box.m_request.m_fin_period = 40000;
    box.set_vco(500, 500, 2700);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(40, box.m_pll.get_m());
    box.set_vco(500, 500, 960);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(50, box.m_pll.get_m());
}

TEST(RankingTie, PrefersTheLowerCostToEverything)
{
    // M 4 lies on the center, but only counts of 3 make 33 percent.
    SMALL_PLL box(1, 4, 1);
    box.set_vco(1000, 1000, 4000);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(4, box.m_pll.get_m());
    box.clock(0).m_duty = 33;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(0.0, box.m_pll.m_cost);
}

TEST(RankingTie, LetsAnyExactCandidateBeatEveryMiss)
{
    // M 2, the only one at post-scale 1, misses; M 3 is exact at the cost of post-scale 2.
    SMALL_PLL box(1, 4, 1);
    box.set_ratio(0, 3, 1);
    box.set_vco(1900, 2000, 2100);
    box.m_pll.m_max_vco_post_scale = 2;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(2, box.m_pll.m_vco_post_scale);
    EXPECT_EQ(65536.0, box.m_pll.m_cost);
}

// ---- Preferred M

struct PREFERRED_CASE
{
    const char* m_name;
    int m_min;
    int m_max;
    int m_m;
    double m_cost;
};

// From 10000 ps, N 1: M 3 to 10 are legal, M 6 lies nearest to the center; above 12 is cut off.
// clang-format off
constexpr PREFERRED_CASE PREFERRED_CASES[] = {
    // name                                     min max  M cost
    {"none",                                     -1, -1, 6, 0.0},
    {"other negative values are none too",       -7, -7, 6, 0.0},
    {"a minimum within reach",                    8, -1, 8, 0.0},
    {"a maximum within reach",                   -1,  4, 4, 0.0},
    {"both ends are preferred themselves",        6,  6, 6, 0.0},
    {"a minimum out of reach costs all the same", 20, -1, 6, 5.0},
    {"a maximum out of reach likewise",          -1,  2, 6, 5.0},
    {"both missed",                              20,  2, 6, 10.0},
};
// clang-format on

TEST(RankingPreferredM, CostsFiveForEachEndMissed)
{
    for (const PREFERRED_CASE& c : PREFERRED_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(1, 10);
        PLL_PROP request(1);
        request.m_fin_period = 10000;
        DEVICE device(0);
        device.m_info.m_m_counter_preferred_min = c.m_min;
        device.m_info.m_m_counter_preferred_max = c.m_max;
        device.describe(pll);
        EXPECT_TRUE(pll.synthesize(request));
        EXPECT_EQ(c.m_m, pll.get_m());
        EXPECT_EQ(c.m_cost, pll.m_cost);
    }
}

double spread_cost(int preferred_min, int preferred_max, int ss_count)
{
    SMALL_PLL box(1, 200, 1);
    box.m_request.m_fin_period = 300000;
    box.m_request.m_down_spread = 0.005;
    box.m_pll.m_m.m_ss_count = ss_count;
    DEVICE device(0);
    device.m_info.m_m_counter_preferred_min = preferred_min;
    device.m_info.m_m_counter_preferred_max = preferred_max;
    device.describe(box.m_pll);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(200, box.m_pll.get_m());
    return box.m_pll.m_cost;
}

TEST(RankingPreferredM, CountsTheSecondCountWithSpreadToo)
{
    // While candidates compete, the second count is still that of the last synthesis.
    EXPECT_EQ(10.0, spread_cost(201, -1, 1));
    EXPECT_EQ(5.0, spread_cost(200, -1, 1));
    EXPECT_EQ(0.0, spread_cost(200, -1, 200));
    EXPECT_EQ(5.0, spread_cost(-1, 199, 199));
    EXPECT_EQ(10.0, spread_cost(-1, 199, 200));
}

// ---- Ratio of M to the charge-pump current

double ratio_cost(double limit, double current, int feedback_tap)
{
    ONE_CANDIDATE box(1);
    DEVICE device(0);
    device.m_info.m_spe_ratio_constant_x = limit;
    device.describe(box.m_pll);
    box.m_pll.m_i = current;
    box.m_request.m_feedback_tap = feedback_tap;
    EXPECT_TRUE(box.synthesize());
    return box.m_pll.m_cost;
}

TEST(RankingRatioLimit, ChargesARatioAboveTheLimit)
{
    EXPECT_EQ(0.0, ratio_cost(0.04, 50.0, -1));  // 2 / 50 is the limit
    EXPECT_EQ(2 / 50.0 + 32768.0, ratio_cost(0.039, 50.0, -1));
    EXPECT_EQ(0.0, ratio_cost(0.039, 100.0, -1));
}

TEST(RankingRatioLimit, TakesTheFeedbackCounterIn)
{
    EXPECT_EQ(2 / 50.0 + 32768.0, ratio_cost(0.039, 50.0, 0));  // M 1, counter 2
}

TEST(RankingRatioLimit, TakesThePostScaleIn)
{
    ONE_CANDIDATE box(1);
    DEVICE device(0);
    device.m_info.m_spe_ratio_constant_x = 0.05;
    device.describe(box.m_pll);
    box.m_pll.m_max_vco_post_scale = 2;
    box.m_pll.m_vco_min_period[1] = 3000;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(65536 + (4 / 50.0 + 32768.0), box.m_pll.m_cost);
}

TEST(RankingRatioLimit, IsNoneAtTheLargestDouble)
{
    EXPECT_EQ(0.0, ratio_cost(NO_LIMIT, 0.0, -1));
    EXPECT_EQ(0.0, ratio_cost(NO_LIMIT, 1e-300, -1));
}

TEST(RankingRatioLimit, ChoosesAmongCandidates)
{
    // From 10000 ps the center would draw to M 6; 5 / 50 is within the limit.
    PLL pll(1, 10);
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    DEVICE device(0);
    device.m_info.m_spe_ratio_constant_x = 0.1;
    device.describe(pll);
    EXPECT_TRUE(pll.synthesize(request));
    EXPECT_EQ(5, pll.get_m());
    EXPECT_EQ(0.0, pll.m_cost);
}

// ---- Table

TEST(RankingTable, ChoosesAmongCandidatesByTheRow)
{
    // M 2 wins without a table; its row misses the high preset of 2 MHz, that of M 3 meets it.
    SMALL_PLL box(1, 4, 1);
    DEVICE device(5);
    device.add_row(2, 1e6, 1e6);
    device.add_row(3, 2e6, 2e6)->m_charge_pump_current = 80;
    device.add_row(4, 1e6, 1e6);
    device.describe(box.m_pll);
    box.m_request.m_bandwidth_type = 0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(0.0, box.m_pll.m_cost);
    EXPECT_EQ(80.0, box.m_pll.m_i);
    EXPECT_EQ(2000.0, box.m_pll.m_r);
}

// ---- What user interfaces offer

TEST(RankingCarriedValues, NarrowOverAllExactCandidates)
{
    // M 2 wins; its own steps are 22.5 degrees and 25 percent, but M 4 was seen as well.
    SMALL_PLL box(1, 4, 1);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(11.25, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(-11.25, box.tap(0).m_prev_phase_degree);
    EXPECT_EQ(63, box.tap(0).m_next_duty_cycle);
    EXPECT_EQ(38, box.tap(0).m_prev_duty_cycle);
    EXPECT_EQ(13, box.tap(0).m_smallest_duty_cycle_min);
    EXPECT_EQ(75, box.tap(0).m_largest_duty_cycle_max);
}

TEST(RankingCarriedValues, LeaveOutCandidatesThatMiss)
{
    // Only M 3 meets 3/2.
    SMALL_PLL box(1, 4, 1);
    box.set_ratio(0, 3, 2);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(15.0, box.tap(0).m_next_phase_degree);
    EXPECT_EQ(-15.0, box.tap(0).m_prev_phase_degree);
    EXPECT_EQ(25, box.tap(0).m_smallest_duty_cycle_min);
    EXPECT_EQ(50, box.tap(0).m_largest_duty_cycle_max);
}

TEST(RankingCarriedValues, StayFromAnEarlierSynthesis)
{
    SMALL_PLL box(1, 4, 1);
    EXPECT_TRUE(box.synthesize());
    box.m_pll.m_m.m_max_count = 2;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(11.25, box.tap(0).m_next_phase_degree);
}

}  // namespace
