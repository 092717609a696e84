// Unit tests of what the counters of a PLL achieve, expected values worked out by hand or written
// out in the order in which they are computed.
#include "pll_prop.h"

#include "error_guard.h"
#include "golden.h"
#include "pll.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <string>
#include <sys/stat.h>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();
constexpr int UNSET = -2147483647;

constexpr const char* GCD_CONDITION = "x > 0 && y > 0";

void set_counter(PLL* pll, int tap, int high, int low)
{
    pll->m_taps[tap].m_high = high;
    pll->m_taps[tap].m_low = low;
    pll->m_taps[tap].m_count = high + low;
    pll->m_taps[tap].m_bypass = false;
}

// M = 10, N = 2, one output that divides by 5: 2.5 ns from 2.5 ns, VCO at 500 ps.
class ACHIEVED : public testing::Test
{
protected:
    ACHIEVED() : m_pll(1, 10), m_prop(1)
    {
        m_pll.m_m.m_count = 10;
        m_pll.m_n.m_count = 2;
        m_prop.m_fin_period = 10000;
        set_counter(&m_pll, 0, 3, 2);
    }

    void compute() { m_prop.set_properties_from_internals(m_pll); }

    PLL m_pll;
    PLL_PROP m_prop;
};

class Achieved : public ACHIEVED
{
};
class HostileAchieved : public ACHIEVED
{
};
class GoldenPropTrace : public ACHIEVED
{
};

// A device with a bandwidth table, M = 4 behind it.
class TABLE : public testing::Test
{
protected:
    TABLE() : m_pll(1, 10), m_prop(1)
    {
        m_basic_info.set_bandwidth_settings_table(5, new PLL_BANDWIDTH_SETTING_GROUP[5]);
        m_basic_info.m_use_bandwidth_settings_table = true;
        m_pll.m_info.m_basic_info = &m_basic_info;
        m_pll.m_m.m_count = 4;
        m_pll.m_i = 20;
        m_pll.m_r = 1000;
        m_pll.m_c_high = 5;
        m_prop.m_f_zero = 7.0;
        m_prop.m_f_pole = 8.0;
    }

    PLL_BANDWIDTH_SETTING* add_row(int m, int current, int resistor, int capacitor)
    {
        auto* row = new PLL_BANDWIDTH_SETTING;
        row->m_m = m;
        row->m_charge_pump_current = current;
        row->m_loop_filter_resistor = resistor;
        row->m_loop_filter_capacitor = capacitor;
        row->m_typical_bandwidth = 1e6;
        row->m_fast_bandwidth = 2e6;
        row->m_slow_bandwidth = 5e5;
        row->m_typical_phase_margin = 60;
        row->m_fast_phase_margin = 50;
        row->m_slow_phase_margin = 70;
        row->m_typical_jitter_peaking = 0.5;
        row->m_fast_jitter_peaking = 0.25;
        row->m_slow_jitter_peaking = 0.75;
        m_basic_info.m_bandwidth_settings_table[m].m_settings.push_back(row);
        return row;
    }

    bool found()
    {
        m_prop.m_bandwidth = 0.0;
        m_prop.compute_bandwidth(m_pll);
        return m_prop.m_bandwidth == 1e6;
    }

    double modelled(int m) const { return m_pll.m_i * m_pll.m_r * 1880.0 / m * 0.5 / 3.14; }

    PLL_BASIC_INFO m_basic_info;
    PLL m_pll;
    PLL_PROP m_prop;
};

class AchievedBandwidth : public TABLE
{
};
class HostileAchievedBandwidth : public TABLE
{
};

}  // namespace

TEST_F(Achieved, RatiosDutyAndPhaseOfAPlainOutput)
{
    m_pll.m_taps[0].m_initial = 2;
    m_pll.m_taps[0].m_vco_tap = 4;
    m_pll.m_m.m_initial = 1;
    m_pll.m_m.m_vco_tap = 2;
    compute();
    EXPECT_EQ(5, m_prop.m_vco_mult);
    EXPECT_EQ(1, m_prop.m_vco_div);
    const PLL_USER_TAP& clock = m_prop.m_taps[0];
    EXPECT_EQ(1, clock.m_mult);
    EXPECT_EQ(1, clock.m_div);
    EXPECT_EQ(60, clock.m_duty);
    EXPECT_EQ(2.0 * (360 + 180 - 90) / 10.0, clock.m_phase);
    EXPECT_EQ(2.0 * (180 - 90) / 10.0, clock.m_sclkout_phase);
    EXPECT_TRUE(clock.m_has_sclkout_phase);
    EXPECT_EQ(-1, m_prop.m_feedback_tap);
}

TEST_F(Achieved, LeavesTheRequestAlone)
{
    m_prop.m_fin2_period = 4711;
    m_prop.m_bandwidth_type = 2;
    m_prop.m_taps[0].m_use_even_counter_mode = true;
    m_prop.m_taps[1].m_mult = 9;
    m_prop.m_use_reconfig = true;
    compute();
    EXPECT_EQ(10000, m_prop.m_fin_period);
    EXPECT_EQ(4711, m_prop.m_fin2_period);
    EXPECT_EQ(2, m_prop.m_bandwidth_type);
    EXPECT_TRUE(m_prop.m_taps[0].m_use_even_counter_mode);
    EXPECT_EQ(9, m_prop.m_taps[1].m_mult);
    EXPECT_TRUE(m_prop.m_use_reconfig);
}

TEST_F(Achieved, ReportsADifferentNumberOfClocks)
{
    EXPECTED_REPORTS reports;
    m_prop.m_taps_count = 2;
    compute();
    reports.expect_only("m_taps_count == p.m_user_taps_count", "pll_prop");
    EXPECT_EQ(5, m_prop.m_taps[1].m_mult);  // bypassed: the VCO itself
    EXPECT_EQ(1, m_prop.m_taps[1].m_div);
}

TEST_F(Achieved, DutyRoundsAndOddModeTakesHalfAPeriod)
{
    set_counter(&m_pll, 0, 1, 2);
    compute();
    EXPECT_EQ(33, m_prop.m_taps[0].m_duty);
    set_counter(&m_pll, 0, 2, 1);
    compute();
    EXPECT_EQ(67, m_prop.m_taps[0].m_duty);
    m_pll.m_taps[0].m_even = false;
    compute();
    EXPECT_EQ(50, m_prop.m_taps[0].m_duty);
    m_pll.m_taps[0].m_bypass = true;
    m_pll.m_taps[0].m_even = true;
    compute();
    EXPECT_EQ(50, m_prop.m_taps[0].m_duty);
}

TEST_F(Achieved, ReportsACounterWithoutACount)
{
    EXPECTED_REPORTS reports;
    set_counter(&m_pll, 0, 0, 0);
    compute();
    EXPECT_EQ(1U, reports.count("out_count == 1 || counter_sum != 0"));
    EXPECT_EQ(2U, reports.count(GCD_CONDITION));
    EXPECT_EQ(0, m_prop.m_taps[0].m_duty);
}

TEST_F(Achieved, CascadesMultiplyTheirCountsAndCarryTheirStarts)
{
    set_counter(&m_pll, 0, 2, 1);
    set_counter(&m_pll, 1, 2, 2);
    m_pll.m_total_taps_count = 2;
    m_pll.m_taps[0].m_previous_tap = 1;
    m_pll.m_taps[0].m_initial = 3;
    m_pll.m_taps[0].m_vco_tap = 6;  // plays no part
    m_pll.m_taps[1].m_initial = 2;
    m_pll.m_taps[1].m_vco_tap = 1;
    compute();
    EXPECT_EQ(5, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(12, m_prop.m_taps[0].m_div);
    // The walk starts at 1, so the first counter's start stands for itself: (3 - 1) x 4 + 2.
    EXPECT_EQ(2.0 * (9 * 360 + 45) / 10.0, m_prop.m_taps[0].m_phase);
    EXPECT_EQ(2.0 * 45 / 10.0, m_prop.m_taps[0].m_sclkout_phase);
    m_pll.m_taps[1].m_bypass = true;
    compute();
    EXPECT_EQ(5, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(3, m_prop.m_taps[0].m_div);
    EXPECT_EQ(2.0 * (3 * 360 + 45) / 10.0, m_prop.m_taps[0].m_phase);
}

TEST_F(Achieved, LockRangeIsTheNarrowerOfVcoAndPfd)
{
    compute();
    EXPECT_EQ(1000 * 10 / 2, m_prop.m_lock_min_period);
    EXPECT_EQ(3334 * 10 / 2, m_prop.m_lock_max_period);
    m_pll.m_pfd_min_period = 10002;
    m_pll.m_pfd_max_period = 33339;
    compute();
    EXPECT_EQ(5001, m_prop.m_lock_min_period);
    EXPECT_EQ(16669, m_prop.m_lock_max_period);
}

TEST_F(Achieved, LockRangeUsesTheLimitsOfTheCurrentPostScale)
{
    m_pll.m_vco_post_scale = 2;
    m_pll.set_vco_min_period(2000, 2);
    m_pll.set_vco_max_period(4000, 2);
    compute();
    EXPECT_EQ(10000, m_prop.m_lock_min_period);
    EXPECT_EQ(20000, m_prop.m_lock_max_period);
}

TEST_F(Achieved, FeedbackOutputMultipliesMAndSetsTheReference)
{
    m_pll.m_user_taps_count = 2;
    m_prop.m_taps_count = 2;
    set_counter(&m_pll, 1, 2, 1);
    m_pll.m_taps[1].m_initial = 2;
    m_pll.m_taps[1].m_vco_tap = 3;
    m_pll.m_m.m_initial = 2;
    m_pll.m_m.m_vco_tap = 5;  // plays no part
    m_pll.m_feedback_tap = 1;
    compute();
    EXPECT_EQ(1, m_prop.m_feedback_tap);
    EXPECT_EQ(15, m_prop.m_vco_mult);
    EXPECT_EQ(3, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(1, m_prop.m_taps[0].m_div);
    EXPECT_EQ(2.0 * (0 - (360 + 360 + 135)) / 30.0, m_prop.m_taps[0].m_phase);
    EXPECT_EQ(1000 * 30 / 2, m_prop.m_lock_min_period);
    m_pll.m_taps[1].m_bypass = true;
    compute();
    EXPECT_EQ(5, m_prop.m_vco_mult);
}

TEST_F(Achieved, WithoutSpreadTheWishIsCleared)
{
    m_prop.m_down_spread = 0.005;
    compute();
    EXPECT_EQ(0.0, m_prop.m_down_spread);
    EXPECT_EQ(0, m_prop.m_ss_period);
}

TEST_F(Achieved, SpreadIsTheDistanceOfTheTwoEnds)
{
    m_pll.m_ss_cycles = 300;
    m_pll.m_m.m_count = 200;
    m_pll.m_n.m_count = 40;
    m_pll.m_m.m_ss_count = 199;
    m_pll.m_n.m_ss_count = 40;
    m_pll.m_pfd_max_period = LARGEST;
    compute();
    const double fa = 200 * (1e6 / 10000) / 40;
    const double fb = (1e6 / 10000) * 199 / 40;
    EXPECT_EQ(std::fabs(fb - fa) / fa, m_prop.m_down_spread);
    EXPECT_EQ(3000000, m_prop.m_ss_period);
    EXPECT_EQ(5, m_prop.m_vco_mult);
    EXPECT_EQ(1, m_prop.m_vco_div);
    EXPECT_EQ(1667 * 200 / 40, m_prop.m_lock_max_period);
}

TEST_F(Achieved, SpreadTakesTheFasterEndForTheRatios)
{
    m_pll.m_ss_cycles = 300;
    m_pll.m_m.m_ss_count = 12;
    m_pll.m_n.m_ss_count = 2;
    EXPECTED_REPORTS reports;
    compute();
    // The check of the phases takes the counts of the same end.
    reports.expect_none();
    EXPECT_EQ(std::fabs(600.0 - 500.0) / 600.0, m_prop.m_down_spread);
    EXPECT_EQ(6, m_prop.m_vco_mult);
    EXPECT_EQ(6, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(5, m_prop.m_taps[0].m_div);
    EXPECT_EQ(1000 * 12 / 2, m_prop.m_lock_min_period);
}

TEST_F(Achieved, SpreadUsesItsOwnVcoLimitWhereThereIsOne)
{
    m_pll.m_ss_cycles = 1;
    m_pll.m_m.m_ss_count = 10;
    m_pll.m_n.m_ss_count = 2;
    compute();
    EXPECT_EQ(1667 * 10 / 2, m_prop.m_lock_max_period);
    m_pll.m_ss_supported = false;
    compute();
    EXPECT_EQ(3334 * 10 / 2, m_prop.m_lock_max_period);
    m_pll.m_ss_supported = true;
    m_pll.set_ss_vco_max_period(UNSET, 1);
    compute();
    EXPECT_EQ(3334 * 10 / 2, m_prop.m_lock_max_period);
    m_pll.set_ss_vco_max_period(1500, 1);
    m_pll.m_ss_cycles = -1;  // a spread, but none that runs
    compute();
    EXPECT_EQ(3334 * 10 / 2, m_prop.m_lock_max_period);
    EXPECT_EQ(-10000, m_prop.m_ss_period);
}

TEST_F(Achieved, DefaultLoopFilter)
{
    m_pll.m_n.m_count = 1;
    compute();
    EXPECT_EQ(1 / (2 * 3.14 * 1020.5 * 650.0 * 1e-12), m_prop.m_f_zero);
    EXPECT_EQ(1 / (2 * 3.14 * 1020.5 * (650.0 * 10.0 / (650.0 + 10.0)) * 1e-12), m_prop.m_f_pole);
    EXPECT_EQ(50.0 * 1020.5 * 1880.0 / 10 * 0.5 / 3.14, m_prop.m_bandwidth);
    EXPECT_EQ(-1.0, m_prop.m_bandwidth_max);
    EXPECT_EQ(-1.0, m_prop.m_phase_margin);
}

TEST_F(Achieved, BandwidthCountsPostScaleAndFeedbackOutput)
{
    m_pll.m_vco_post_scale = 2;
    m_pll.set_kvco(1000.0, 2);
    m_prop.m_feedback_tap = 0;  // the record's, whatever the PLL says
    m_prop.compute_bandwidth(m_pll);
    EXPECT_EQ(50.0 * 1020.5 * 1000.0 / 100 * 0.5 / 3.14, m_prop.m_bandwidth);
}

TEST_F(Achieved, DelaysAreRelativeToTheFeedback)
{
    m_pll.m_n.m_delay = 700;
    m_pll.m_m.m_delay = 200;
    m_pll.m_taps[0].m_delay = 50;
    m_prop.compute_user_delay_chains(m_pll);
    EXPECT_EQ(550, m_prop.m_taps[0].m_delay);
    m_prop.m_feedback_tap = 0;
    m_prop.compute_user_delay_chains(m_pll);
    EXPECT_EQ(500, m_prop.m_taps[0].m_delay);
    m_pll.m_taps[1].m_delay = 25;
    m_prop.m_feedback_tap = 1;
    EXPECTED_REPORTS reports;
    m_prop.compute_user_delay_chains(m_pll);
    reports.expect_only("m_feedback_tap < m_taps_count", "pll_prop");
    EXPECT_EQ(525, m_prop.m_taps[0].m_delay);
}

TEST_F(HostileAchieved, FeedbackOutOfRangeIsReportedAndReadsTheNearest)
{
    EXPECTED_REPORTS reports;
    set_counter(&m_pll, 9, 2, 1);
    m_pll.m_taps[9].m_delay = 5;
    m_pll.m_feedback_tap = LARGEST;
    compute();
    EXPECT_EQ(3U, reports.count());
    EXPECT_EQ(1U, reports.count("m_feedback_tap < p.m_user_taps_count"));
    EXPECT_EQ(1U, reports.count("tap < pll->m_user_taps_count"));
    EXPECT_EQ(1U, reports.count("m_feedback_tap < m_taps_count"));
    EXPECT_EQ(15, m_prop.m_vco_mult);
    EXPECT_EQ(-5, m_prop.m_taps[0].m_delay);
}

TEST_F(HostileAchieved, ZeroCountsGiveZeroRatios)
{
    EXPECTED_REPORTS reports;
    m_pll.m_m.m_count = 0;
    m_pll.m_n.m_count = 0;
    compute();
    EXPECT_EQ(0, m_prop.m_vco_mult);
    EXPECT_EQ(0, m_prop.m_vco_div);
    EXPECT_EQ(0, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(0, m_prop.m_taps[0].m_div);
    EXPECT_EQ(0, m_prop.m_lock_min_period);
    EXPECT_EQ(0, m_prop.m_lock_max_period);
    EXPECT_TRUE(std::isnan(m_prop.m_taps[0].m_phase));
    EXPECT_EQ(1U, reports.count("(float)u_phase == (float)phase"));
    EXPECT_EQ(2U, reports.count(GCD_CONDITION));
}

TEST_F(HostileAchieved, LockRangeWraps)
{
    EXPECTED_REPORTS reports;
    m_pll.m_m.m_count = LARGEST;
    m_pll.m_n.m_count = 1;
    m_pll.m_pfd_min_period = SMALLEST;
    m_pll.m_pfd_max_period = LARGEST;
    compute();
    EXPECT_EQ(-1000, m_prop.m_lock_min_period);
    EXPECT_EQ(-3334, m_prop.m_lock_max_period);
    m_pll.m_m.m_count = 1;
    m_pll.m_n.m_count = -1;
    m_pll.m_pfd_max_period = SMALLEST;  // over -1: itself
    compute();
    EXPECT_EQ(SMALLEST, m_prop.m_lock_max_period);
    reports.accept_all();
}

TEST_F(HostileAchieved, ChainsEndAfterTenStepsOrOutsideTheTaps)
{
    set_counter(&m_pll, 0, 1, 1);
    m_pll.m_taps[0].m_previous_tap = 0;
    m_pll.m_n.m_count = 1;
    compute();
    EXPECT_EQ(5, m_prop.m_taps[0].m_mult);
    EXPECT_EQ(512, m_prop.m_taps[0].m_div);  // 10 / 1024
    for (const int previous : {-2, 10, LARGEST, SMALLEST}) {
        m_pll.m_taps[0].m_previous_tap = previous;
        compute();
        EXPECT_EQ(5, m_prop.m_taps[0].m_mult);
        EXPECT_EQ(1, m_prop.m_taps[0].m_div);
    }
}

TEST_F(HostileAchieved, EveryExtremeEndsInADefinedResult)
{
    EXPECTED_REPORTS reports;
    const int extremes[] = {SMALLEST, -1, 0, 1, LARGEST};
    for (const int a : extremes) {
        for (const int b : extremes) {
            m_pll.m_m.m_count = a;
            m_pll.m_n.m_count = b;
            m_pll.m_m.m_ss_count = b;
            m_pll.m_n.m_ss_count = a;
            m_pll.m_ss_cycles = b;
            m_pll.m_feedback_tap = a;
            m_pll.m_vco_post_scale = b;
            m_pll.m_m.m_initial = a;
            m_pll.m_m.m_delay = a;
            m_pll.m_n.m_delay = b;
            m_pll.m_taps[0].m_high = a;
            m_pll.m_taps[0].m_low = b;
            m_pll.m_taps[0].m_previous_tap = b;
            m_pll.m_taps[0].m_initial = b;
            m_pll.m_taps[0].m_vco_tap = a;
            m_prop.m_fin_period = b;
            m_prop.m_taps_count = a;
            m_pll.m_r = std::numeric_limits<double>::quiet_NaN();
            m_pll.m_i = std::numeric_limits<double>::infinity();
            compute();
            EXPECT_EQ(a, m_prop.m_feedback_tap);
            EXPECT_EQ(a, m_prop.m_taps_count);
            EXPECT_TRUE(std::isnan(m_prop.m_f_zero));
        }
    }
    reports.accept_all();
}

TEST_F(AchievedBandwidth, TakesTheFirstFittingRow)
{
    add_row(4, 10, 1000, 5);
    add_row(4, 20, 2000, 5);
    add_row(4, 20, 1000, 7);
    EXPECT_FALSE(found());
    EXPECT_EQ(modelled(4), m_prop.m_bandwidth);
    PLL_BANDWIDTH_SETTING* any_capacitor = add_row(4, 20, 1000, -1);
    EXPECT_TRUE(found());
    add_row(4, 20, 1000, 5)->m_typical_bandwidth = 9e6;
    EXPECT_TRUE(found());  // of two, the earlier
    any_capacitor->m_loop_filter_capacitor = 5;
    EXPECT_TRUE(found());
    any_capacitor->m_loop_filter_capacitor = 0;
    EXPECT_FALSE(found());
    EXPECT_EQ(9e6, m_prop.m_bandwidth);
}

TEST_F(AchievedBandwidth, OfARowComesWithItsRangesAndLeavesZeroAndPole)
{
    add_row(4, 20, 1000, 5);
    ASSERT_TRUE(found());
    EXPECT_EQ(2e6, m_prop.m_bandwidth_max);
    EXPECT_EQ(5e5, m_prop.m_bandwidth_min);
    EXPECT_EQ(60, m_prop.m_phase_margin);
    EXPECT_EQ(70, m_prop.m_phase_margin_max);
    EXPECT_EQ(50, m_prop.m_phase_margin_min);
    EXPECT_EQ(0.5, m_prop.m_jitter_peak);
    EXPECT_EQ(0.75, m_prop.m_jitter_peak_max);
    EXPECT_EQ(0.25, m_prop.m_jitter_peak_min);
    EXPECT_EQ(7.0, m_prop.m_f_zero);
    EXPECT_EQ(8.0, m_prop.m_f_pole);
}

TEST_F(AchievedBandwidth, WithoutARowIsModelled)
{
    EXPECT_FALSE(found());
    EXPECT_EQ(modelled(4), m_prop.m_bandwidth);
    EXPECT_EQ(7.0, m_prop.m_f_zero);
    EXPECT_EQ(-1.0, m_prop.m_bandwidth_max);
    m_pll.m_m.m_count = 5;  // the table ends at 4
    EXPECT_FALSE(found());
    EXPECT_EQ(modelled(5), m_prop.m_bandwidth);
}

TEST_F(AchievedBandwidth, WithoutTheTableHasAZeroAndAPole)
{
    add_row(4, 20, 1000, 5);
    m_basic_info.m_use_bandwidth_settings_table = false;
    EXPECT_FALSE(found());
    EXPECT_EQ(modelled(4), m_prop.m_bandwidth);
    EXPECT_EQ(1 / (2 * 3.14 * 1000.0 * 650.0 * 1e-12), m_prop.m_f_zero);
}

TEST_F(AchievedBandwidth, LooksUpTheEffectiveM)
{
    add_row(4, 20, 1000, 5);
    m_pll.m_m.m_count = 2;
    m_pll.m_vco_post_scale = 2;
    EXPECT_TRUE(found());
    m_pll.m_vco_post_scale = 1;
    EXPECT_FALSE(found());
    set_counter(&m_pll, 0, 1, 1);
    m_prop.m_feedback_tap = 0;
    EXPECT_TRUE(found());
    m_pll.m_taps[0].m_bypass = true;
    EXPECT_FALSE(found());
}

TEST_F(AchievedBandwidth, PfdRuleShortensTheLongestInputPeriod)
{
    add_row(4, 20, 1000, 5);
    m_basic_info.m_bandwidth_pfd_min_frequency_multiplier = 10;
    m_pll.m_n.m_count = 3;
    m_prop.m_lock_max_period = 100000;
    ASSERT_TRUE(found());
    EXPECT_EQ(100000, m_prop.m_lock_max_period);  // no rule
    m_basic_info.m_is_pfd_bandwidth_rule_an_error = true;
    ASSERT_TRUE(found());
    EXPECT_EQ(50000 / 3, m_prop.m_lock_max_period);  // 1e12 / 2e6 / 10
    m_prop.m_lock_max_period = 50000 / 3 - 1;
    ASSERT_TRUE(found());
    EXPECT_EQ(50000 / 3 - 1, m_prop.m_lock_max_period);
}

TEST_F(AchievedBandwidth, PfdRuleTakesTheBandwidthWithoutARange)
{
    m_basic_info.m_use_bandwidth_settings_table = false;
    m_basic_info.m_is_pfd_bandwidth_rule_an_error = true;
    m_basic_info.m_bandwidth_pfd_min_frequency_multiplier = 10;
    m_prop.m_lock_max_period = LARGEST;
    EXPECT_FALSE(found());
    EXPECT_EQ(std::lround(1e12 / modelled(4) / 10), m_prop.m_lock_max_period);
}

TEST_F(HostileAchievedBandwidth, NeedsNoTableBehindItsSwitch)
{
    m_basic_info.set_bandwidth_settings_table(5, nullptr);
    EXPECT_FALSE(found());
    EXPECT_EQ(modelled(4), m_prop.m_bandwidth);
    m_basic_info.m_bandwidth_settings_table_size = 0;
}

TEST_F(HostileAchievedBandwidth, FindsNoRowForANegativeM)
{
    add_row(4, 20, 1000, 5);
    for (const int m : {-1, SMALLEST, LARGEST}) {
        m_pll.m_m.m_count = m;
        EXPECT_FALSE(found());
        EXPECT_EQ(modelled(m), m_prop.m_bandwidth);
    }
    m_pll.m_m.m_count = 0;
    EXPECT_FALSE(found());
    EXPECT_TRUE(std::isinf(m_prop.m_bandwidth));
}

TEST_F(HostileAchievedBandwidth, SkipsRowsThatAreNull)
{
    m_basic_info.m_bandwidth_settings_table[4].m_settings.push_back(nullptr);
    EXPECT_FALSE(found());
    add_row(4, 20, 1000, 5);
    EXPECT_TRUE(found());
}

TEST_F(HostileAchievedBandwidth, PfdRuleSaturates)
{
    add_row(4, 20, 1000, 5);
    m_basic_info.m_is_pfd_bandwidth_rule_an_error = true;
    m_basic_info.m_bandwidth_pfd_min_frequency_multiplier = 0;
    m_prop.m_lock_max_period = 1000;
    ASSERT_TRUE(found());
    EXPECT_EQ(1000, m_prop.m_lock_max_period);
    m_pll.m_n.m_count = 0;
    ASSERT_TRUE(found());
    EXPECT_EQ(0, m_prop.m_lock_max_period);
}

TEST_F(GoldenPropTrace, AppendsCountersAndProperties)
{
    const TEMP_WORKING_DIR dir;
    m_pll.m_debug = true;
    compute();
    m_pll.m_ss_cycles = 300;
    m_pll.m_m.m_ss_count = 9;
    m_pll.m_n.m_ss_count = 2;
    compute();
    expect_golden(read_file("pdebug.log"), "pdebug_log.txt");
}

TEST_F(GoldenPropTrace, DoesNotFollowTheGlobalLocale)
{
    class GROUPS_OF_THREE : public std::numpunct<char>
    {
    protected:
        char do_thousands_sep() const override { return '\''; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const TEMP_WORKING_DIR dir;
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new GROUPS_OF_THREE));
    m_pll.m_debug = true;
    compute();
    std::locale::global(previous);
    const std::string trace = read_file("pdebug.log");
    EXPECT_NE(std::string::npos, trace.find("Lock range 5000-16670 ps"));
    EXPECT_EQ(std::string::npos, trace.find('\''));
}

TEST_F(Achieved, WithoutDebuggingThereIsNoTrace)
{
    const TEMP_WORKING_DIR dir;
    compute();
    EXPECT_FALSE(file_exists("pdebug.log"));
}

TEST_F(Achieved, TraceThatCannotBeOpenedIsIgnored)
{
    const TEMP_WORKING_DIR dir;
    ASSERT_EQ(0, mkdir("pdebug.log", 0700));
    m_pll.m_debug = true;
    compute();
    EXPECT_EQ(5, m_prop.m_vco_mult);
}
