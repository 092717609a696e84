// The closest miss by columns, against the walk over the rows.
#include "random_ratio_request.h"
#include "search/row_walk.h"
#include "shortcuts/closest_miss.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

struct MISSES
{
    MISSES(const PLL& pll, const PLL_PROP& request)
        : m_by_columns(pll, request), m_walked(pll, request)
    {
        const SEARCH_LIMITS limits = read_search_limits(pll, request);
        EVALUATION walk(pll, request, limits, nullptr, &m_walked);
        walk_rows(&walk);
        EVALUATION columns(pll, request, limits, nullptr, &m_by_columns);
        m_told = !m_walked.m_found && find_closest_miss(&columns);
    }

    void expect_same() const
    {
        ASSERT_EQ(m_walked.m_miss.m_distance, m_by_columns.m_miss.m_distance);
        ASSERT_EQ(m_walked.m_miss.m_m, m_by_columns.m_miss.m_m);
        ASSERT_EQ(m_walked.m_miss.m_n, m_by_columns.m_miss.m_n);
        ASSERT_EQ(m_walked.m_miss.m_vco_period, m_by_columns.m_miss.m_vco_period);
    }

    SEARCH_RESULT m_by_columns;
    SEARCH_RESULT m_walked;
    bool m_told;
};

TEST(ClosestMissByColumns, IsThatOfTheWalkInRandomBoxes)
{
    RANDOM_RATIOS random(41);
    int told = 0;
    int of_second = 0;
    int at_zero = 0;
    for (int i = 0; i < 30000; ++i) {
        PLL_PROP request(1);
        request.m_fin_period = random.number(random.chance(50) ? 100 : 30000);
        request.m_fin2_period = random.chance(20) ? random.number(30000) : 0;
        request.m_down_spread = random.chance(10) ? 0.006 : 0.0;
        const auto pll = random.pll(request, 20 + random.number(random.chance(80) ? 400 : 4000),
                                    random.number(30));
        for (int post_scale = 1; post_scale <= 2; ++post_scale) {
            const int shortest = random.number(random.chance(50) ? 60 : 3000) - 5;
            pll->m_vco_min_period[post_scale] = shortest;
            pll->m_vco_max_period[post_scale] =
                shortest + (random.chance(60) ? random.number(3) - 1 : random.number(900));
            pll->m_ss_vco_max_period[post_scale] = shortest + 1;
        }
        pll->m_pfd_min_period = random.number(30000);
        pll->m_pfd_max_period = pll->m_pfd_min_period + random.number(60000);
        const MISSES misses(*pll, request);
        if (misses.m_told) {
            SCOPED_TRACE(i);
            misses.expect_same();
            ++told;
            of_second += request.m_fin2_period > 0 ? 1 : 0;
            at_zero += misses.m_walked.m_miss.m_distance == 0 ? 1 : 0;
        }
    }
    EXPECT_GT(told, 5000);
    EXPECT_GT(of_second, 1000);
    EXPECT_GT(at_zero, 500);
}

// VCOs that are too fast come nearer from column to column.
TEST(ClosestMissByColumns, LeavesManyColumnsToTheWalk)
{
    SMALL_PLL box(1, 640, 1000);
    box.set_vco(1000, 1000, 1001);
    box.set_pfd(1, 2000000000);
    box.m_request.m_fin_period = 5;
    box.m_request.m_fin2_period = 1;
    EXPECT_FALSE(MISSES(box.m_pll, box.m_request).m_told);
    box.m_pll.m_n.m_max_count = 11;
    const MISSES few(box.m_pll, box.m_request);
    EXPECT_TRUE(few.m_told);
    few.expect_same();
    box.m_pll.m_n.m_max_count = 12;
    EXPECT_FALSE(MISSES(box.m_pll, box.m_request).m_told);
}

TEST(ClosestMissByColumns, LeavesLimitsThatCrossToTheWalk)
{
    SMALL_PLL box(1, 100, 2);
    box.set_vco(1000, 1000, 999);
    box.set_pfd(100000, 200000);
    EXPECT_FALSE(MISSES(box.m_pll, box.m_request).m_told);
    box.set_vco(1000, 1000, 1000);
    EXPECT_TRUE(MISSES(box.m_pll, box.m_request).m_told);
}

}  // namespace
