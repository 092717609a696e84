// Duty cycles that are placed from plans kept of earlier candidates, against fresh ones.
#include "placing/placement.h"

#include "random_ratio_request.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

using namespace pll_internal;

namespace {

constexpr int OUTPUTS = 4;

// Wishes that share plans, and some that must not.
PLL_PROP mixed_request(RANDOM_RATIOS* random)
{
    PLL_PROP request(OUTPUTS);
    for (int i = 0; i < OUTPUTS; ++i) {
        request.m_taps[i].m_duty = random->chance(50) ? 50 : random->number(101) - 1;
        request.m_taps[i].m_use_even_counter_mode = random->chance(20);
        request.m_taps[i].m_use_even_counter_value = random->chance(30);
    }
    return request;
}

void set_counts(RANDOM_RATIOS* random, int largest, PLL* pll)
{
    for (int i = 0; i < OUTPUTS; ++i) {
        const int count = random->number(largest);
        pll->m_taps[i].m_count = count;
        pll->m_taps[i].m_bypass = count == 1;
        pll->m_taps[i].m_even = count % 2 == 0;
        pll->m_taps[i].m_high = count / 2;
        pll->m_taps[i].m_low = count - count / 2;
    }
    pll->m_cost = 0.0;
}

// A PLL with its outputs placed, and what that made of neighbours far away.
struct PLACED
{
    PLACED(const PLL& start, PLACEMENT* placement) : m_pll(OUTPUTS, PLL_MAX_TAPS)
    {
        m_pll = start;
        std::fill(std::begin(m_neighbours), std::end(m_neighbours),
                  read_neighbours(PLL_OUTPUT_TAP()));
        placement->place(&m_pll, m_neighbours);
    }

    PLL m_pll;
    NEIGHBOURS m_neighbours[PLL_MAX_TAPS];
};

void expect_same(const NEIGHBOURS& expected, const NEIGHBOURS& neighbours)
{
    EXPECT_EQ(expected.m_next_duty, neighbours.m_next_duty);
    EXPECT_EQ(expected.m_previous_duty, neighbours.m_previous_duty);
    EXPECT_EQ(expected.m_smallest_duty, neighbours.m_smallest_duty);
    EXPECT_EQ(expected.m_largest_duty, neighbours.m_largest_duty);
}

void expect_same(const PLL& expected, const PLL& pll)
{
    EXPECT_EQ(expected.m_cost, pll.m_cost);
    for (int i = 0; i < OUTPUTS; ++i) {
        const PLL_OUTPUT_TAP& a = expected.m_taps[i];
        const PLL_OUTPUT_TAP& b = pll.m_taps[i];
        EXPECT_EQ(a.m_high, b.m_high);
        EXPECT_EQ(a.m_low, b.m_low);
        EXPECT_EQ(a.m_even, b.m_even);
    }
}

TEST(Placement, FromKeptPlansIsThatOfFreshOnes)
{
    RANDOM_RATIOS random(40);
    for (int round = 0; round < 40; ++round) {
        const PLL_PROP request = mixed_request(&random);
        PLL limits(OUTPUTS, PLL_MAX_TAPS);
        limits.m_total_taps_count = OUTPUTS;
        limits.m_m.m_count = 7;
        for (PLL_OUTPUT_TAP& tap : limits.m_taps) {
            tap.m_max_count = random.chance(70) ? 40 : 20 + random.number(40);
        }
        PLACEMENT kept(limits, request);
        for (int i = 0; i < 300; ++i) {
            PLL pll(OUTPUTS, PLL_MAX_TAPS);
            pll = limits;
            set_counts(&random, 80, &pll);
            PLACEMENT fresh(limits, request);
            const PLACED expected(pll, &fresh);
            const PLACED placed(pll, &kept);
            expect_same(expected.m_pll, placed.m_pll);
            for (int output = 0; output < OUTPUTS; ++output) {
                expect_same(expected.m_neighbours[output], placed.m_neighbours[output]);
            }
        }
    }
}

}  // namespace
