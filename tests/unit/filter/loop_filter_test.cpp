// The loop filter without a table: target resistor, common factor of M and N, current, and the
// second resistor. 3.14 stands for pi throughout.
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// M 13 and N 1 from 20000 ps alone win, with a custom bandwidth of 100 kHz. The target resistor is
// 19902 ohm, F x 6.28 x bandwidth / gain is 4342.55 for M 13; so the target current is 0.2128 uA.
struct FILTER_PLL : SMALL_PLL
{
    FILTER_PLL() : SMALL_PLL(1, 512, 512)
    {
        set_vco(1530, 1538, 1545);
        m_request.m_fin_period = 20000;
        m_request.m_bandwidth_type = 4;
        m_request.m_bandwidth = 100000.0;
    }

    void expect(int m, int n, double resistor, double current)
    {
        EXPECT_TRUE(synthesize());
        EXPECT_EQ(m, m_pll.get_m());
        EXPECT_EQ(n, m_pll.get_n());
        EXPECT_EQ(resistor, m_pll.m_r);
        EXPECT_EQ(current, m_pll.m_i);
    }
};

// M 20 and N 1 from 30000 ps alone win; the wishes are presets.
struct PRESET_PLL : SMALL_PLL
{
    explicit PRESET_PLL(int bandwidth_type) : SMALL_PLL(1, 512, 512)
    {
        set_vco(1490, 1500, 1510);
        m_request.m_fin_period = 30000;
        m_request.m_bandwidth_type = bandwidth_type;
    }
};

struct PRESET_CASE
{
    const char* m_name;
    int m_type;
    int m_m;
    int m_n;
    double m_resistor;
    double m_current;
};

// clang-format off
constexpr PRESET_CASE PRESET_CASES[] = {
    // name                                   type M    N resistor  current
    {"high, 2 MHz: 995 ohm, 131 uA",             0, 20,  1,  1021.0, 135.0},
    {"medium, 800 kHz: 2488 ohm, 26 uA",         1, 20,  1,  2041.0,  24.0},
    {"low, 150 kHz: 13268 ohm, 0.76 uA x 5",     2, 100, 5, 13266.0,   4.0},
    {"automatic: nothing is chosen",             3, 20,  1,  1020.5,  50.0},
    {"no such type: nothing is chosen",          5, 20,  1,  1020.5,  50.0},
    {"no such type: nothing is chosen",         -1, 20,  1,  1020.5,  50.0},
};
// clang-format on

TEST(LoopFilterPreset, StandsForItsBandwidth)
{
    for (const PRESET_CASE& c : PRESET_CASES) {
        SCOPED_TRACE(c.m_name);
        PRESET_PLL box(c.m_type);
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(c.m_m, box.m_pll.get_m());
        EXPECT_EQ(c.m_n, box.m_pll.get_n());
        EXPECT_EQ(c.m_resistor, box.m_pll.m_r);
        EXPECT_EQ(c.m_current, box.m_pll.m_i);
        EXPECT_EQ(10.0, box.m_pll.m_c_high);
        EXPECT_EQ(20, box.tap(0).m_count);
    }
}

TEST(LoopFilterPreset, IsTakenFromThePll)
{
    // With the medium value in its place, each preset gives the medium filter.
    PRESET_PLL high(0);
    high.m_pll.m_high_bandwidth = 800000.0;
    PRESET_PLL low(2);
    low.m_pll.m_low_bandwidth = 800000.0;
    PRESET_PLL medium(1);
    PRESET_PLL custom(4);
    custom.m_request.m_bandwidth = 800000.0;
    for (PRESET_PLL* box : {&high, &low, &medium, &custom}) {
        EXPECT_TRUE(box->synthesize());
        EXPECT_EQ(2041.0, box->m_pll.m_r);
        EXPECT_EQ(24.0, box->m_pll.m_i);
    }
    medium.m_pll.m_medium_bandwidth = 2000000.0;
    EXPECT_TRUE(medium.synthesize());
    EXPECT_EQ(1021.0, medium.m_pll.m_r);
}

// ---- Common factor of M and N

TEST(LoopFilterFactor, EndsAtThePfdMaximum)
{
    FILTER_PLL box;  // wants 19; 333333 / 20000 allows 16
    box.expect(208, 16, 20410.0, 4.0);
    EXPECT_EQ(13, box.tap(0).m_count);
}

TEST(LoopFilterFactor, MultipliesUpToTheSmallestCurrent)
{
    FILTER_PLL box;
    box.set_pfd(1500, 1000000);
    box.expect(247, 19, 20410.0, 4.0);
}

TEST(LoopFilterFactor, EndsAtTheLargestM)
{
    // 100 / 13 allows 7, which leaves 1.49 uA: less than half the smallest current, so a second
    // resistor is chosen for that one.
    FILTER_PLL box;
    box.m_pll.m_m.m_max_count = 100;
    box.expect(91, 7, 7144.0, 4.0);
}

TEST(LoopFilterFactor, EndsAtTheLargestN)
{
    FILTER_PLL box;
    box.m_pll.m_n.m_max_count = 5;
    box.expect(65, 5, 4082.0, 4.0);
}

TEST(LoopFilterFactor, IsAtLeastOne)
{
    // The tolerance of 1 ps admits an input that leaves no room for any N.
    FILTER_PLL box;
    box.set_pfd(1500, 19999);
    box.expect(13, 1, 3062.0, 4.0);
}

TEST(LoopFilterFactor, IsNotUsedFromHalfTheSmallestCurrentOn)
{
    FILTER_PLL box;
    box.m_pll.m_i_min = 0.4;
    set_components(box.m_pll, {1}, {1021, 20410});
    box.expect(13, 1, 20410.0, 1.0);
    box.m_pll.m_i_min = 0.44;  // 0.2128 is below half of it; 2.6 rounds to 2
    box.expect(26, 2, 20410.0, 1.0);
}

TEST(LoopFilterFactor, MultipliesTheSecondCountsOfASpread)
{
    // M 200 and N 1 with a gain of 10000: 1.23 uA asks for a factor of 3, M allows 2.
    SMALL_PLL box(1, 512, 512);
    box.set_vco(490, 500, 510);
    box.m_request.m_fin_period = 100000;
    box.m_request.m_down_spread = 0.005;
    box.m_pll.m_kvco[1] = 10000.0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(400, box.m_pll.m_m.m_count);
    EXPECT_EQ(2, box.m_pll.m_n.m_count);
    EXPECT_EQ(398, box.m_pll.m_m.m_ss_count);
    EXPECT_EQ(2, box.m_pll.m_n.m_ss_count);
    EXPECT_EQ(90.0, box.m_pll.m_i);
    EXPECT_EQ(2041.0, box.m_pll.m_r);
}

TEST(LoopFilterFactor, MultipliesSecondCountsThatAreThere)
{
    FILTER_PLL box;
    box.m_pll.m_m.m_ss_count = 3;
    box.m_pll.m_n.m_ss_count = 2;
    box.expect(208, 16, 20410.0, 4.0);
    EXPECT_EQ(48, box.m_pll.m_m.m_ss_count);
    EXPECT_EQ(32, box.m_pll.m_n.m_ss_count);
    FILTER_PLL none;
    none.m_pll.m_m.m_ss_count = 0;
    none.m_pll.m_n.m_ss_count = 2;
    none.expect(208, 16, 20410.0, 4.0);
    EXPECT_EQ(0, none.m_pll.m_m.m_ss_count);
    EXPECT_EQ(2, none.m_pll.m_n.m_ss_count);
}

// ---- Feedback division

TEST(LoopFilterDivision, TakesTheFeedbackCounterIn)
{
    // M 20 turns into M 1 and a counter of 20; the filter stays.
    PRESET_PLL box(0);
    box.m_request.m_feedback_tap = 0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(1021.0, box.m_pll.m_r);
    EXPECT_EQ(135.0, box.m_pll.m_i);
}

TEST(LoopFilterDivision, TakesThePostScaleIn)
{
    // 262 uA, beyond the largest current.
    PRESET_PLL box(0);
    box.m_pll.m_max_vco_post_scale = 2;
    box.m_pll.m_vco_min_period[1] = 2000000;
    box.m_pll.m_vco_min_period[2] = 1490;
    box.m_pll.m_vco_max_period[2] = 1510;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.m_vco_post_scale);
    EXPECT_EQ(20, box.m_pll.get_m());
    EXPECT_EQ(212.0, box.m_pll.m_i);
}

// ---- Choice among components

TEST(LoopFilterChoice, KeepsTheFirstOfEquallyNearCurrents)
{
    // 26.19 uA of 2041 ohm are the medium filter; 20 and 32.38 would be as near, 26 nearer.
    PRESET_PLL box(1);
    set_components(box.m_pll, {4, 26, 26, 90}, {1021, 2041});
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(26.0, box.m_pll.m_i);
}

TEST(LoopFilterChoice, TakesNoCurrentBelowTheSmallest)
{
    PRESET_PLL box(1);
    box.m_pll.m_i_min = 25.0;  // 24 would be nearer to 26.19 than 30
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(30.0, box.m_pll.m_i);
}

TEST(LoopFilterChoice, TakesTheSmallestCurrentWhereNoneQualifies)
{
    FILTER_PLL box;
    set_components(box.m_pll, {2, 3}, {1000, 40000});
    box.expect(13, 1, 1000.0, 4.0);
}

// ---- Spread spectrum: M 200, 140 kHz, 14216 ohm and 6.5 uA without its own current

struct SPREAD_CASE
{
    const char* m_name;
    bool m_supported;
    int m_current;
    double m_resistor;
    double m_chosen;
};

// clang-format off
constexpr SPREAD_CASE SPREAD_CASES[] = {
    // name                                       supported current resistor chosen
    {"its own current: 1039 ohm is out of bounds",   true,   90,  2041.0, 90.0},
    {"a smaller one: 9353 ohm",                      true,   10,  9185.0, 10.0},
    {"not supported",                                false,  90, 14287.0,  4.0},
    {"no current",                                   true,    0, 14287.0,  4.0},
    {"a negative current",                           true,   -1, 14287.0,  4.0},
};
// clang-format on

TEST(LoopFilterSpread, ForcesItsOwnCurrent)
{
    for (const SPREAD_CASE& c : SPREAD_CASES) {
        SCOPED_TRACE(c.m_name);
        SMALL_PLL box(1, 200, 1);
        box.m_request.m_fin_period = 300000;
        box.m_request.m_down_spread = 0.005;
        box.m_pll.m_ss_supported = c.m_supported;
        box.m_pll.m_ss_charge_pump_current = c.m_current;
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(c.m_resistor, box.m_pll.m_r);
        EXPECT_EQ(c.m_chosen, box.m_pll.m_i);
    }
}

TEST(LoopFilterSpread, TakesTheFirstResistorWhereNoneLiesWithinBounds)
{
    SMALL_PLL box(1, 200, 1);
    box.m_request.m_fin_period = 300000;
    box.m_request.m_down_spread = 0.005;
    set_components(box.m_pll, {4, 1000}, {1000, 1749, 115490});
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1000.0, box.m_pll.m_r);
    EXPECT_EQ(90.0, box.m_pll.m_i);
}

TEST(LoopFilterSpread, ReplacesAnyOtherWish)
{
    SMALL_PLL box(1, 200, 1);
    box.m_request.m_fin_period = 300000;
    box.m_request.m_down_spread = 0.005;
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 1.0;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2041.0, box.m_pll.m_r);
}

}  // namespace
