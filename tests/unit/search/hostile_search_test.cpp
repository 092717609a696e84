// Huge counters with few legal counts: time follows the candidates, not the box they stand in. A
// plain walk through these boxes takes hours or years, beyond what any test may take.
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "pll_prop.h"
#include "search/result.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <limits>

using namespace pll_internal;

namespace {

constexpr int MILLION = 1000000;
constexpr int INT_MINIMUM = std::numeric_limits<int>::min();
constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();

TEST(HostileSearch, FindsTheLegalFewAmongAMillionCounts)
{
    SMALL_PLL box(1, MILLION, MILLION);
    box.set_vco(1000, 1666, 3334);
    box.set_pfd(1500, 333333);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
}

TEST(HostileSearch, FindsALargeMAndN)
{
    // VCO 1.0001 ns from 1 ps: M stands at N / 1000, and only an N of a million meets the PFD
    // range.
    SMALL_PLL box(1, MILLION, MILLION);
    box.set_vco(1000, 1000, 1000);
    box.set_pfd(MILLION, MILLION);
    box.m_pll.m_fin_min_period = 1;
    box.m_request.m_fin_period = 1;
    box.set_ratio(0, 1, 1000);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1000, box.m_pll.get_m());
    EXPECT_EQ(MILLION, box.m_pll.get_n());
    EXPECT_TRUE(box.tap(0).m_bypass);
}

TEST(HostileSearch, FindsNothingInAMillionCounts)
{
    SMALL_PLL box(1, MILLION, MILLION);
    box.set_pfd(1, 3);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    // M 2 with N 1 is the first whose VCO is in range.
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(2000.0, box.m_pll.get_vco_period());
}

TEST(HostileSearch, FindsTheClosestMissInAMillionCounts)
{
    // From 100 us even M 1000000 leaves a VCO period of 100 ps, 90 too many; M 990100 is the first
    // of those that miss by 90 whole picoseconds.
    SMALL_PLL box(1, MILLION, MILLION);
    box.set_vco(1, 5, 10);
    box.set_pfd(1, 2000000000);
    box.m_request.m_fin_period = 100000000;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(990100, box.m_pll.get_m());
    EXPECT_EQ(100000000.0 * 1 / 990100, box.m_pll.get_vco_period());
}

TEST(HostileSearch, StartsAtTheSmallestN)
{
    SMALL_PLL box(1, 4, 4);
    box.m_pll.m_n.m_min_count = INT_MINIMUM;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
}

TEST(HostileSearch, TakesTheLargestCounters)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.set_vco(1990, 2000, 2010);
    box.set_pfd(1500, 5000);
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
}

TEST(HostileSearch, TakesTheLargestCountersWithoutALegalPair)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.set_vco(PLL_UNSET_MAXIMUM, 1, PLL_UNSET_MINIMUM);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
}

TEST(HostileSearch, TakesTheLargestCountersWithEveryMBarred)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.set_vco(1990, 2000, 2010);
    box.set_pfd(1500, 5000);
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 0.0;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
}

TEST(HostileSearch, TakesTheLargestCountersWithASpread)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.set_vco(1490, 1500, 1510);
    box.m_request.m_fin_period = 300000;
    box.m_request.m_down_spread = 0.005;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(200, box.m_pll.get_m());
    EXPECT_EQ(199, box.m_pll.m_m.m_ss_count);
}

TEST(HostileSearch, TakesTheLargestCountersOnSecondInputs)
{
    for (int fin2 : {4100, 1, INT_MAXIMUM}) {
        SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
        box.set_vco(1900, 2000, 2100);
        box.set_pfd(1500, 5000);
        box.m_request.m_fin2_period = fin2;
        EXPECT_EQ(fin2 == 4100, box.synthesize());
    }
}

// The closest miss of a box that nothing legal is in, with counters to `largest`.
CLOSEST_MISS miss_of(SMALL_PLL* box, int largest)
{
    box->m_pll.m_m.m_max_count = largest;
    EXPECT_FALSE(box->synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box->m_pll.m_error);
    return {0, box->m_pll.get_m(), box->m_pll.get_n(), box->m_pll.get_vco_period()};
}

void expect_same_miss(SMALL_PLL* box)
{
    constexpr int ENOUGH = 3000;  // rows, to come by the closest miss
    const CLOSEST_MISS few = miss_of(box, ENOUGH);
    const CLOSEST_MISS many = miss_of(box, INT_MAXIMUM);
    EXPECT_EQ(few.m_m, many.m_m);
    EXPECT_EQ(few.m_n, many.m_n);
    EXPECT_EQ(few.m_vco_period, many.m_vco_period);
}

TEST(HostileSearch, EndsAtAMissOfThePfdAlone)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.m_request.m_fin_period = 2097152;
    box.set_vco(1, 1000, 32768);
    box.set_pfd(33753, 383);
    expect_same_miss(&box);
    EXPECT_EQ(64, box.m_pll.get_m());
}

TEST(HostileSearch, EndsAtTheLeastMissOfLimitsThatCross)
{
    for (const int vco_max : {282, 1, -5}) {
        SMALL_PLL box(1, INT_MAXIMUM, 27948);
        box.m_request.m_fin_period = 131072;
        box.set_vco(1935, 1000, vco_max);
        box.set_pfd(1, INT_MAXIMUM);
        expect_same_miss(&box);
    }
}

TEST(HostileSearch, TakesNoPlaceForARowOfAnEmptyRange)
{
    SMALL_PLL box(1, INT_MAXIMUM, 8546);
    box.m_request.m_fin_period = 69368;
    box.set_vco(1422, 2000, 10081);
    box.set_pfd(INT_MAXIMUM, INT_MAXIMUM);
    box.m_request.m_down_spread = 0.005;
    expect_same_miss(&box);
}

// ---- The list of ratios

TEST(HostileRatios, TakeTimeByTheirOwnNumber)
{
    SMALL_PLL box(1, INT_MAXIMUM, INT_MAXIMUM);
    box.set_vco(1990, 2000, 2010);
    box.set_pfd(1500, 5000);
    int* mults = nullptr;
    int* divs = nullptr;
    ASSERT_EQ(1, box.m_pll.find_vco_mult_div_values(&mults, &divs, 4000));
    EXPECT_EQ(2, mults[0]);
    EXPECT_EQ(1, divs[0]);
}

void list_ratios(int fin, int field, int limit)
{
    SMALL_PLL box(1, 6, 4);
    int* const fields[] = {&box.m_pll.m_vco_min_period[1],  &box.m_pll.m_vco_max_period[1],
                           &box.m_pll.m_pfd_min_period,     &box.m_pll.m_pfd_max_period,
                           &box.m_pll.m_max_vco_post_scale, &box.m_pll.m_n.m_min_count,
                           &box.m_pll.m_m.m_min_count};
    *fields[field] = limit;
    int* mults = nullptr;
    int* divs = nullptr;
    const int count = box.m_pll.find_vco_mult_div_values(&mults, &divs, fin);
    EXPECT_LE(0, count);
    for (int i = 1; i < count; ++i) {
        EXPECT_LE(1.0 * mults[i - 1] / divs[i - 1], 1.0 * mults[i] / divs[i]);
    }
}

TEST(HostileRatios, TakeAnyInputAndLimits)
{
    const int hostile[] = {0, 1, -1, 2, 4000, INT_MAXIMUM, INT_MINIMUM, INT_MINIMUM + 1};
    EXPECTED_REPORTS reports;
    reports.accept_all();
    const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
    for (int fin : hostile) {
        for (int limit : hostile) {
            for (int field = 0; field < 7; ++field) {
                list_ratios(fin, field, limit);
            }
        }
    }
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
}

TEST(HostileRatios, NeedBothOutputs)
{
    SMALL_PLL box(1, 4, 2);
    int* list = nullptr;
    EXPECTED_REPORTS reports;
    reports.accept_all();
    EXPECT_EQ(0, box.m_pll.find_vco_mult_div_values(nullptr, &list, 4000));
    EXPECT_EQ(0, box.m_pll.find_vco_mult_div_values(&list, nullptr, 4000));
    EXPECT_EQ(0, box.m_pll.find_vco_mult_div_values(nullptr, nullptr, 4000));
    EXPECT_EQ(nullptr, list);
}

}  // namespace
