#include "advice/limits/limits.h"

#include "pll.h"
#include "pll_manager.h"

#include <gtest/gtest.h>

namespace advice {
namespace {

constexpr int MEGA = 1000000;

REQUEST simple_request()
{
    REQUEST request;
    request.m_input = make_input(RATIONAL(100 * MEGA));
    request.m_outputs.resize(1);
    request.m_outputs[0].m_frequency = RATIONAL(50 * MEGA);
    request.m_outputs[0].m_ratio = RATIONAL(1, 2);
    return request;
}

// The first difference that a limit makes to a PLL, as text; empty when there is none.
std::string compare(const PLL& a, const PLL& b)
{
    std::string text;
    for (int i = 0; i <= PLL_VCO_POST_SCALE_MAX; ++i) {
        text += a.m_vco_min_period[i] != b.m_vco_min_period[i] ? "vco_min " : "";
        text += a.m_vco_max_period[i] != b.m_vco_max_period[i] ? "vco_max " : "";
        text += a.m_vco_center_period[i] != b.m_vco_center_period[i] ? "vco_center " : "";
        text += a.m_ss_vco_max_period[i] != b.m_ss_vco_max_period[i] ? "ss_vco_max " : "";
        text += a.m_kvco[i] != b.m_kvco[i] ? "kvco " : "";
    }
    for (int i = 0; i < PLL_MAX_TAPS; ++i) {
        text += a.m_taps[i].m_max_count != b.m_taps[i].m_max_count ? "tap " : "";
    }
    text += a.m_pfd_min_period != b.m_pfd_min_period ? "pfd_min " : "";
    text += a.m_pfd_max_period != b.m_pfd_max_period ? "pfd_max " : "";
    text += a.m_fin_min_period != b.m_fin_min_period ? "fin_min " : "";
    text += a.m_m.m_max_count != b.m_m.m_max_count ? "m " : "";
    text += a.m_n.m_max_count != b.m_n.m_max_count ? "n " : "";
    text += a.m_max_taps_count != b.m_max_taps_count ? "outputs " : "";
    text += a.m_max_vco_post_scale != b.m_max_vco_post_scale ? "post-scale " : "";
    text += a.m_ss_counter_max != b.m_ss_counter_max ? "ss_counter " : "";
    text += a.m_output_counter_cascade != b.m_output_counter_cascade ? "cascade " : "";
    text += a.m_i_min != b.m_i_min || a.m_i != b.m_i || a.m_r != b.m_r ? "i, r " : "";
    text += a.m_c_high != b.m_c_high || a.m_c_fixed != b.m_c_fixed ? "c " : "";
    text += a.m_ss_bandwidth != b.m_ss_bandwidth ? "ss_bandwidth " : "";
    text += a.m_low_bandwidth != b.m_low_bandwidth ? "low " : "";
    text += a.m_medium_bandwidth != b.m_medium_bandwidth ? "medium " : "";
    text += a.m_high_bandwidth != b.m_high_bandwidth ? "high " : "";
    text += a.m_info.m_basic_info != b.m_info.m_basic_info ? "info " : "";
    text += a.m_ss_charge_pump_current != b.m_ss_charge_pump_current ? "ss current " : "";
    return text;
}

class DeviceLimits : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_manager.read(PLL_DATA_DIR "/sample"));
        m_query.m_family = "Chervil";
        m_query.m_type = ENHANCED_PLL;
        m_query.m_part = "CH30-6";
    }

    PLL_MANAGER m_manager;
    PLL_QUERY m_query;
};

TEST(BuiltInLimits, LeaveAFreshPllAsItIs)
{
    const PLL fresh(1, PLL_MAX_TAPS);
    PLL pll(1, PLL_MAX_TAPS);
    const LIMITS limits;
    limits.give_to(&pll, simple_request());
    EXPECT_EQ("", compare(fresh, pll));
}

TEST(BuiltInLimits, AreFrequenciesThatSayWhereTheyComeFrom)
{
    const LIMITS limits;
    const LIMIT* const vco = limits.find(LIMIT_KIND::VCO_MAX, 1);
    ASSERT_NE(nullptr, vco);
    EXPECT_EQ(RATIONAL(1000 * MEGA), vco->m_value.m_exact);
    EXPECT_EQ("vco_max at post-scale 1 = 1000 MHz (built in)", to_text(*vco));
    EXPECT_EQ(RATIONAL(power_of_ten(12), 3334),
              limits.find(LIMIT_KIND::VCO_MIN, 1)->m_value.m_exact);
    EXPECT_FALSE(limits.has_device());
}

TEST_F(DeviceLimits, GiveAPllWhatTheDatabaseGivesIt)
{
    PLL expected(1, PLL_MAX_TAPS);
    ASSERT_TRUE(m_manager.init_pll(&expected, m_query));
    LIMITS limits;
    ASSERT_TRUE(limits.take_device(&m_manager, m_query));
    PLL pll(1, PLL_MAX_TAPS);
    limits.give_to(&pll, simple_request());
    EXPECT_EQ("", compare(expected, pll));
}

TEST_F(DeviceLimits, BringTheirComponentsBackAfterThoseOfOthers)
{
    const LIMITS built_in;
    LIMITS limits;
    ASSERT_TRUE(limits.take_device(&m_manager, m_query));
    PLL pll(1, PLL_MAX_TAPS);
    limits.give_to(&pll, simple_request());
    const std::size_t of_device = PLL::m_impl->m_charge_pump_currents.size();
    built_in.give_to(&pll, simple_request());
    const std::size_t of_library = PLL::m_impl->m_charge_pump_currents.size();
    limits.give_to(&pll, simple_request());
    EXPECT_NE(of_library, of_device);
    EXPECT_EQ(of_device, PLL::m_impl->m_charge_pump_currents.size());
}

TEST_F(DeviceLimits, HoldWhatTheSearchDoesNotKnow)
{
    LIMITS limits;
    ASSERT_TRUE(limits.take_device(&m_manager, m_query));
    ASSERT_NE(nullptr, limits.find(LIMIT_KIND::OUTPUT_MAX));
    EXPECT_EQ(RATIONAL(power_of_ten(12), 2200),
              limits.find(LIMIT_KIND::OUTPUT_MAX)->m_value.m_exact);
    EXPECT_EQ("output_min", limits.find(LIMIT_KIND::OUTPUT_MAX)->m_keyword);
    EXPECT_EQ(RATIONAL(1500), limits.find(LIMIT_KIND::DELAY_MAX)->m_value.m_exact);
}

TEST_F(DeviceLimits, StayWhenAQueryFindsNothing)
{
    LIMITS limits;
    m_query.m_part = "none";
    EXPECT_FALSE(limits.take_device(&m_manager, m_query));
    EXPECT_FALSE(limits.has_device());
    EXPECT_NE(nullptr, limits.find(LIMIT_KIND::VCO_MAX, 1));
}

TEST(LimitsByHand, ReplaceThoseInForceAndAreNoNarrowerForTheSearch)
{
    REQUEST request = simple_request();
    request.m_by_hand.m_vco = {RATIONAL(600 * MEGA), RATIONAL(1200 * MEGA)};
    request.m_by_hand.m_m = {std::nullopt, RATIONAL(128)};
    request.m_by_hand.m_k = {std::nullopt, RATIONAL(63)};
    LIMITS limits;
    limits.take(request.m_by_hand);
    EXPECT_EQ(RATIONAL(1200 * MEGA), limits.find(LIMIT_KIND::VCO_MAX, 1)->m_value.m_exact);
    EXPECT_EQ(RATIONAL(600 * MEGA), limits.find(LIMIT_KIND::VCO_MAX, 2)->m_value.m_exact);
    EXPECT_EQ("option --vco", limits.find(LIMIT_KIND::VCO_MAX, 1)->m_source);
    EXPECT_TRUE(limits.has_options());
    PLL pll(1, PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    EXPECT_EQ(833, pll.get_vco_min_period(1));   // 1200.48 MHz
    EXPECT_EQ(1667, pll.get_vco_max_period(1));  // 599.88 MHz
    EXPECT_EQ(128, pll.m_m.m_max_count);
    EXPECT_EQ(32, pll.m_taps[0].m_max_count);
}

}  // namespace
}  // namespace advice
