// Unit tests of what a setting and the rows of a bandwidth table cost.
#include "pll_cost.h"

#include "error_guard.h"
#include "random_ratio_request.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int MANY = 16;

// A request whose loop has rows at M 2, with a PFD of 250 MHz.
struct ROWS
{
    ROWS() : m_device(3), m_one(1)
    {
        m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 8;
        m_device.describe(m_one.m_pll);
        m_one.m_request.m_bandwidth_type = PLL_BANDWIDTH_CUSTOM;
        m_one.m_request.m_bandwidth = 2e6;
    }

    int cost(int most = MANY)
    {
        return pll_get_row_costs(m_one.m_pll, m_one.m_request, m_rows, most);
    }

    DEVICE m_device;
    ONE_CANDIDATE m_one;
    PLL_ROW_COST m_rows[MANY];
};

TEST(RowCosts, AreNoneWithoutATable)
{
    ONE_CANDIDATE one(1);
    EXPECT_EQ(pll_get_row_costs(one.m_pll, one.m_request, nullptr, 0), 0);
    EXPECT_EQ(pll_get_largest_bandwidth(one.m_pll, one.m_request), 0.0);
}

TEST(RowCosts, TellWishAndPfdApart)
{
    ROWS rows;
    rows.m_device.add_row(2, 1e6, 1e6);      // 1 MHz beside the wish
    rows.m_device.add_row(2, 2e6, 32.25e6);  // 1 MHz above 250 MHz / 8
    ASSERT_TRUE(rows.m_one.synthesize());
    ASSERT_EQ(rows.cost(), 2);
    EXPECT_EQ(pll_get_largest_bandwidth(rows.m_one.m_pll, rows.m_one.m_request), 31.25e6);
    EXPECT_EQ(rows.m_rows[0].m_wish_cost, 131072.0);
    EXPECT_EQ(rows.m_rows[0].m_pfd_cost, 0.0);
    EXPECT_EQ(rows.m_rows[0].m_cost, 131072.0);
    EXPECT_TRUE(rows.m_rows[0].m_is_taken);
    EXPECT_EQ(rows.m_rows[1].m_wish_cost, 0.0);
    EXPECT_EQ(rows.m_rows[1].m_pfd_cost, 8388608.0 + 131072.0);
    EXPECT_FALSE(rows.m_rows[1].m_is_taken);
    EXPECT_TRUE(rows.m_rows[1].m_is_looked_at);
    EXPECT_EQ(pll_get_effective_m(rows.m_one.m_pll), 2);
}

TEST(RowCosts, SayWhereTheSearchStopsLooking)
{
    ROWS rows;
    rows.m_device.add_row(2, 2e6, 1e6);
    rows.m_device.add_row(2, 2e6, 1e6);
    ASSERT_TRUE(rows.m_one.synthesize());
    ASSERT_EQ(rows.cost(), 2);
    EXPECT_TRUE(rows.m_rows[0].m_is_taken);
    EXPECT_FALSE(rows.m_rows[1].m_is_looked_at);
    EXPECT_FALSE(rows.m_rows[1].m_is_taken);
}

TEST(RowCosts, WriteNoMoreThanThereIsRoomFor)
{
    ROWS rows;
    rows.m_device.add_row(2, 1e6, 1e6);
    rows.m_device.add_row(2, 2e6, 1e6);
    ASSERT_TRUE(rows.m_one.synthesize());
    EXPECT_EQ(rows.cost(1), 2);
    EXPECT_NE(rows.m_rows[0].m_row, nullptr);
    EXPECT_FALSE(rows.m_rows[0].m_is_taken);
    EXPECT_EQ(rows.m_rows[1].m_row, nullptr);
    EXPECT_EQ(pll_get_row_costs(rows.m_one.m_pll, rows.m_one.m_request, nullptr, 0), 2);
}

// ---- Terms of a setting

TEST(CostTerms, AreNoneOfAMissedRequest)
{
    ONE_CANDIDATE one(1);
    one.set_ratio(0, 3, 1);
    ASSERT_FALSE(one.synthesize());
    EXPECT_EQ(pll_get_cost_terms(one.m_pll, one.m_request).total(), 0.0);
}

TEST(CostTerms, NameWhatIsNearlyMet)
{
    ONE_CANDIDATE one(1);
    one.set_ratio(0, 4001, 2000);
    ASSERT_TRUE(one.synthesize());
    const PLL_COST_TERMS terms = pll_get_cost_terms(one.m_pll, one.m_request);
    EXPECT_NEAR(terms.m_near_misses, 8192.25, 0.001);
    EXPECT_EQ(terms.total(), terms.m_near_misses);
}

TEST(CostTerms, NamePhasesDutyCyclesAndEvenCounts)
{
    ONE_CANDIDATE one(1);
    one.clock(0).m_phase = 10.0;  // a VCO tap is 22.5 degrees of the input
    one.clock(0).m_duty = 40;     // halves of 2: 25 or 50 percent
    one.clock(0).m_use_even_counter_value = true;
    ASSERT_TRUE(one.synthesize());
    const PLL_COST_TERMS terms = pll_get_cost_terms(one.m_pll, one.m_request);
    EXPECT_DOUBLE_EQ(terms.m_phases, 10.0);
    EXPECT_NEAR(terms.m_duty_cycles, 0.1, 1e-9);
    EXPECT_EQ(terms.m_even_counts, 262144.0);
    EXPECT_DOUBLE_EQ(terms.total(), one.m_pll.m_cost);
}

TEST(CostTerms, NameWhatTheDevicePrefers)
{
    DEVICE device(0);
    device.m_info.m_m_counter_preferred_min = 3;
    device.m_info.m_spe_ratio_constant_x = 0.01;
    ONE_CANDIDATE one(1);
    device.describe(one.m_pll);
    ASSERT_TRUE(one.synthesize());
    const PLL_COST_TERMS terms = pll_get_cost_terms(one.m_pll, one.m_request);
    EXPECT_EQ(terms.m_preferred_m, 5.0);
    EXPECT_EQ(terms.m_ratio_limit, 32768.0 + 2 / 50.0);
    EXPECT_DOUBLE_EQ(terms.total(), one.m_pll.m_cost);
}

TEST(CostTerms, NamePostScaleAndCascades)
{
    SMALL_PLL small(1, 2, 1);
    small.m_pll.m_max_vco_post_scale = 2;
    small.set_vco(100, 100, 200);
    small.m_pll.m_vco_min_period[2] = 1000;
    small.m_pll.m_vco_max_period[2] = 4000;
    small.m_pll.m_output_counter_cascade = true;
    small.tap(0).m_max_count = 2;
    small.set_ratio(0, 2, 8);
    ASSERT_TRUE(small.synthesize());
    const PLL_COST_TERMS terms = pll_get_cost_terms(small.m_pll, small.m_request);
    EXPECT_EQ(terms.m_post_scale, 65536.0);
    EXPECT_EQ(terms.m_cascades, 4096.0);
    EXPECT_DOUBLE_EQ(terms.total(), small.m_pll.m_cost);
}

// Their sum is what the search ranked with.
TEST(CostTerms, AddUpToTheCostOfRandomRequests)
{
    EXPECTED_REPORTS reports;  // of counters without counts
    reports.accept_all();
    RANDOM_RATIOS random(17);
    int met = 0;
    for (int i = 0; i < 3000; ++i) {
        const PLL_PROP request = random.request();
        const std::unique_ptr<PLL> pll = random.pll(request, 12, 6);
        if (!pll->synthesize(request)) {
            continue;
        }
        ++met;
        const double total = pll_get_cost_terms(*pll, request).total();
        EXPECT_NEAR(total, pll->m_cost, 1e-9 * std::fabs(pll->m_cost)) << "request " << i;
    }
    EXPECT_GT(met, 300);
}

}  // namespace
