// Where the settings of a post-scale can be legal, against every pair of counters.
#include "filter/loop_filter.h"
#include "random_ratio_request.h"
#include "search/limits.h"
#include "search/region.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

constexpr int M_MAX = 40;
constexpr int N_MAX = 24;

bool is_within(double fin, int m, int n, const VCO_LIMITS& vco, const SEARCH_LIMITS& limits)
{
    const double pfd = fin * n;
    const double period = pfd / m;
    return vco.m_min - 1.0 <= period && period <= vco.m_max + 1.0 &&
           limits.m_pfd_min - 1.0 <= pfd && pfd <= limits.m_pfd_max + 1.0;
}

// By the definition.
bool is_candidate(const PLL& pll, const SEARCH_LIMITS& limits, int post_scale, int m, int n)
{
    const VCO_LIMITS vco = limits.get_vco(pll, post_scale);
    bool legal = m >= 2 && n >= limits.m_n_min && is_within(limits.m_fin_period, m, n, vco, limits);
    if (limits.m_spread) {
        legal = legal && int(m * limits.m_down_spread) > 0;
    }
    if (limits.m_fin2_period > 0) {
        legal = legal && is_within(limits.m_fin2_period, m, n, vco, limits);
    }
    if (limits.m_wish.is_custom()) {
        const int product =
            current_resistor_product(m, limits.m_wish.m_bandwidth, pll.get_kvco(post_scale));
        legal = legal && limits.m_product_min <= product && product <= limits.m_product_max;
    }
    return legal;
}

// As the searches find a setting: by its column, by its row, and by the exact test.
bool is_in(const REGION& region, int m, int n)
{
    if (region.is_empty() || n < region.n_range().m_first || n > region.n_range().m_last) {
        return false;
    }
    const M_RANGE column = region.m_between(region.ratios(), n);
    const N_RANGE row = region.n_between(region.ratios(), m);
    return column.m_first <= m && m <= column.m_last && row.m_first <= n && n <= row.m_last &&
           region.is_legal(m, n);
}

void expect_the_definition(const PLL& pll, const PLL_PROP& request, int* legal)
{
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    for (int post_scale = 1; post_scale <= limits.m_max_post_scale; ++post_scale) {
        const REGION region(pll, limits, post_scale);
        for (int m = 1; m <= M_MAX; ++m) {
            for (int n = 1; n <= N_MAX; ++n) {
                const bool expected = is_candidate(pll, limits, post_scale, m, n);
                ASSERT_EQ(expected, is_in(region, m, n)) << m << " / " << n;
                *legal += expected ? 1 : 0;
            }
        }
    }
}

TEST(Region, HoldsExactlyTheLegalSettings)
{
    RANDOM_RATIOS random(1);
    int legal = 0;
    for (int i = 0; i < 400; ++i) {
        PLL_PROP request = random.request();
        if (random.chance(20)) {
            request.m_down_spread = 0.001 * random.number(400);
        }
        const auto pll = random.pll(request, M_MAX, N_MAX);
        expect_the_definition(*pll, request, &legal);
    }
    EXPECT_GT(legal, 5000);
}

// The VCO period is the input's x N / M: with both limits 1 ps off, only the tolerance lets it in.
TEST(Region, HasTheToleranceOfOnePicosecondOnEverySide)
{
    PLL_PROP request(0);
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_m.m_max_count = M_MAX;
    pll.m_n.m_max_count = N_MAX;
    request.m_fin_period = 4000;
    pll.m_pfd_min_period = 4001;
    pll.m_pfd_max_period = 4001;
    pll.m_vco_min_period[1] = 2001;
    pll.m_vco_max_period[1] = 2001;
    EXPECT_TRUE(is_in(REGION(pll, read_search_limits(pll, request), 1), 2, 1));
    pll.m_vco_min_period[1] = 2002;
    pll.m_vco_max_period[1] = 2002;
    EXPECT_FALSE(is_in(REGION(pll, read_search_limits(pll, request), 1), 2, 1));
    pll.m_vco_min_period[1] = 1999;
    pll.m_vco_max_period[1] = 1999;
    EXPECT_TRUE(is_in(REGION(pll, read_search_limits(pll, request), 1), 2, 1));
    pll.m_pfd_max_period = 3999;
    pll.m_pfd_min_period = 3000;
    EXPECT_TRUE(is_in(REGION(pll, read_search_limits(pll, request), 1), 2, 1));
    pll.m_pfd_max_period = 3998;
    EXPECT_TRUE(REGION(pll, read_search_limits(pll, request), 1).is_empty());
}

// The largest M over the smallest N is itself the end of the range of ratios.
TEST(Region, ReachesTheLargestMWhereNoPeriodIsTooShort)
{
    PLL_PROP request(0);
    PLL pll(1, PLL_MAX_TAPS);
    request.m_fin_period = 236;
    pll.m_m.m_max_count = 6;
    pll.m_pfd_min_period = 1;
    pll.m_vco_min_period[1] = -6;
    pll.m_vco_max_period[1] = 2442;
    const REGION region(pll, read_search_limits(pll, request), 1);
    EXPECT_TRUE(is_in(region, 6, 1));
    EXPECT_GT(region.ratios().m_high, 6.0);
}

TEST(Region, HoldsTheMThatNeedExactlyTheSmallestAndTheLargestProduct)
{
    PLL_PROP request(0);
    PLL pll(1, PLL_MAX_TAPS);
    request.m_fin_period = 10000;
    request.m_bandwidth_type = 4;
    request.m_bandwidth = 1e6;
    SEARCH_LIMITS limits = read_search_limits(pll, request);
    limits.m_product_min = current_resistor_product(12, 1e6, pll.get_kvco(1));
    limits.m_product_max = current_resistor_product(31, 1e6, pll.get_kvco(1));
    const REGION region(pll, limits, 1);
    EXPECT_EQ(12, region.m_range().m_first);
    EXPECT_EQ(31, region.m_range().m_last);
}

// 2^31 - 1 periods of 1 ps over 10^9 are a VCO period so close above the limit that only the exact
// test tells.
TEST(Region, HoldsTheSecondInputToItsExactPeriod)
{
    PLL_PROP request(0);
    PLL pll(1, PLL_MAX_TAPS);
    request.m_fin_period = 1;
    request.m_fin2_period = 2;
    pll.m_m.m_max_count = 1000000000;
    pll.m_n.m_max_count = 2000000001;
    pll.m_pfd_min_period = 1;
    pll.m_pfd_max_period = 0x7FFFFFFF;
    pll.m_vco_min_period[1] = 1;
    pll.m_vco_max_period[1] = 1;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    const REGION region(pll, limits, 1);
    EXPECT_TRUE(region.is_legal(1000000000, 1000000000));
    EXPECT_FALSE(region.is_legal(1000000000, 1000000001));
}

TEST(Region, IsEmptyWhenNoPeriodIsShortEnough)
{
    PLL_PROP request(0);
    PLL pll(1, PLL_MAX_TAPS);
    request.m_fin_period = 1000;
    pll.m_vco_min_period[1] = -10;
    pll.m_vco_max_period[1] = -1;
    EXPECT_TRUE(REGION(pll, read_search_limits(pll, request), 1).is_empty());
}

TEST(Region, EndsOfRangesAreWholeNumbers)
{
    EXPECT_EQ(3, ceil_to_count(3.0));
    EXPECT_EQ(4, ceil_to_count(3.0000001));
    EXPECT_EQ(3, floor_to_count(3.9999999));
    EXPECT_EQ(4, floor_to_count(4.0));
}

}  // namespace
