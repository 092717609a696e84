// Unit tests of the properties record.
#include "pll_prop.h"

#include "error_guard.h"

#include <gtest/gtest.h>

#include <limits>

TEST(UserTap, HasItsDefaults)
{
    const PLL_USER_TAP tap;
    EXPECT_EQ(0, tap.m_delay);
    EXPECT_EQ(1, tap.m_mult);
    EXPECT_EQ(1, tap.m_div);
    EXPECT_EQ(0.0, tap.m_phase);
    EXPECT_EQ(50, tap.m_duty);
    EXPECT_EQ(0.0, tap.m_sclkout_phase);
    EXPECT_FALSE(tap.m_has_sclkout_phase);
    EXPECT_FALSE(tap.m_use_even_counter_mode);
    EXPECT_FALSE(tap.m_use_even_counter_value);
}

TEST(Prop, HasItsDefaults)
{
    const PLL_PROP prop(3);
    EXPECT_EQ(3, prop.m_taps_count);
    EXPECT_EQ(3, prop.m_bandwidth_type);
    EXPECT_EQ(0, prop.m_fin_period);
    EXPECT_EQ(0, prop.m_fin2_period);
    EXPECT_EQ(20000000, prop.m_ss_period);
    EXPECT_EQ(-1, prop.m_feedback_tap);
    EXPECT_EQ(0, prop.m_lock_min_period);
    EXPECT_EQ(0, prop.m_lock_max_period);
    EXPECT_EQ(0, prop.m_vco_mult);
    EXPECT_EQ(0, prop.m_vco_div);
    EXPECT_EQ(0.0, prop.m_down_spread);
    EXPECT_EQ(0.0, prop.m_bandwidth);
    EXPECT_EQ(0.0, prop.m_f_zero);
    EXPECT_EQ(0.0, prop.m_f_pole);
    for (const double unknown :
         {prop.m_bandwidth_max, prop.m_bandwidth_min, prop.m_phase_margin, prop.m_phase_margin_max,
          prop.m_phase_margin_min, prop.m_jitter_peak, prop.m_jitter_peak_max,
          prop.m_jitter_peak_min}) {
        EXPECT_EQ(-1.0, unknown);
    }
    EXPECT_FALSE(prop.m_use_reconfig);
    for (const PLL_USER_TAP& tap : prop.m_taps) {
        EXPECT_EQ(1, tap.m_mult);
        EXPECT_EQ(1, tap.m_div);
        EXPECT_EQ(0.0, tap.m_phase);
        EXPECT_EQ(50, tap.m_duty);
    }
}

TEST(Prop, ReportsMoreThanTenClocks)
{
    const PLL_PROP none(0);
    const PLL_PROP all(10);
    EXPECT_EQ(0, none.m_taps_count);
    EXPECTED_REPORTS reports;
    const PLL_PROP too_many(11);
    reports.expect_only("m_taps_count <= PLL_MAX_TAPS", "pll_prop");
    EXPECT_EQ(11, too_many.m_taps_count);
    const PLL_PROP negative(std::numeric_limits<int>::min());
    reports.expect_none();
    EXPECT_EQ(std::numeric_limits<int>::min(), negative.m_taps_count);
}

TEST(Prop, IsCopiedWithEveryClock)
{
    PLL_PROP source(2);
    source.m_fin_period = 10000;
    source.m_taps[9].m_mult = 7;
    source.m_jitter_peak_min = 0.5;
    source.m_use_reconfig = true;
    const PLL_PROP copy(source);
    PLL_PROP target(0);
    target = source;
    for (const PLL_PROP* prop : {&copy, static_cast<const PLL_PROP*>(&target)}) {
        EXPECT_EQ(2, prop->m_taps_count);
        EXPECT_EQ(10000, prop->m_fin_period);
        EXPECT_EQ(7, prop->m_taps[9].m_mult);
        EXPECT_EQ(0.5, prop->m_jitter_peak_min);
        EXPECT_TRUE(prop->m_use_reconfig);
    }
}
