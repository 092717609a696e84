// Cascades as the shortcuts look at them: factors that are kept, and from which ratio on counters
// are too small.
#include "random_ratio_request.h"
#include "search/candidate.h"
#include "shortcuts/cascade_reaches.h"
#include "shortcuts/kept_cascades.h"
#include "shortcuts/met_ratios.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

// A PLL whose `outputs` clocks are at 1 / `div` of the input, with halves of `max_count` each.
struct CASCADES
{
    CASCADES(int outputs, int div, int max_count) : m_pll(outputs, PLL_MAX_TAPS), m_request(outputs)
    {
        m_pll.m_output_counter_cascade = true;
        for (int i = 0; i < outputs; ++i) {
            m_request.m_taps[i].m_div = div;
            m_pll.m_taps[i].m_max_count = max_count;
        }
    }

    SEARCH_LIMITS limits() const { return read_search_limits(m_pll, m_request); }

    PLL m_pll;
    PLL_PROP m_request;
};

TEST(KeptCascades, AreThoseOfEveryCountAndCounter)
{
    const CASCADES box(4, 1, 8);
    const SEARCH_LIMITS limits = box.limits();
    KEPT_CASCADES kept(box.m_pll, limits);
    int found = 0;
    for (int turn = 0; turn < 2; ++turn) {
        for (int count = 1; count < 3000; count += 1 + turn) {
            for (const int max_count : {0, 2, 8, 20, 2147483647}) {
                const int source = 4 + count % 7;
                const int expected = find_cascade(box.m_pll, count, max_count, source);
                ASSERT_EQ(expected, kept.find(count, max_count, source)) << count;
                found += expected != 0 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(found, 500);
}

TEST(KeptCascades, AreNoneWithoutACounterToSpare)
{
    const CASCADES box(PLL_MAX_TAPS, 1, 8);
    const SEARCH_LIMITS limits = box.limits();
    KEPT_CASCADES kept(box.m_pll, limits);
    EXPECT_EQ(0, kept.find(32, 8, PLL_MAX_TAPS));
    EXPECT_FALSE(kept.is_short(32, 1));
}

struct SHORT_CASE
{
    const char* m_name;
    int m_count;
    int m_max_count;
    bool m_short;
};

// clang-format off
constexpr SHORT_CASE SHORT_CASES[] = {
    // name                                        count  max count   short
    {"the counter is long enough",                    16,         8,  false},
    {"17 is a prime",                                 17,         8,  true},
    {"18 is 2 x 9",                                   18,         8,  false},
    {"256 is 16 x 16",                               256,         8,  false},
    {"257 is more than 16 x 16",                     257,         8,  true},
    {"a counter that passes the VCO on",              17,         1,  false},
    {"a counter of nothing",                           1,         0,  true},
    {"twice as much as the largest int",         1000003, 2147483647, false},
};
// clang-format on

TEST(KeptCascades, KnowWhereNoTwoCountersAreEnough)
{
    for (const SHORT_CASE& c : SHORT_CASES) {
        SCOPED_TRACE(c.m_name);
        CASCADES box(2, 1, c.m_max_count);
        box.m_pll.m_taps[0].m_max_count = 2147483647;
        const SEARCH_LIMITS limits = box.limits();
        KEPT_CASCADES kept(box.m_pll, limits);
        EXPECT_EQ(c.m_short, kept.is_short(c.m_count, 1));
        EXPECT_EQ(c.m_short, kept.is_short(c.m_count, 1));
    }
}

// A count halfway between 2c and 2c + 1 rounds up to the first that is too large. As a product of
// rounded numbers the ratio there may come out a little larger, or smaller.
TEST(CascadeReaches, HaveRoomForTheRoundingOfCounts)
{
    for (int max_count = 2; max_count <= 40; ++max_count) {
        for (int mult = 1; mult <= 20; ++mult) {
            CASCADES box(1, 1000 + mult, max_count);
            box.m_request.m_taps[0].m_mult = mult;
            const CASCADE_REACHES reaches(box.m_pll, box.limits());
            const double middle = double(mult * (4 * max_count + 1)) / double(2 * (1000 + mult));
            ASSERT_EQ(1, reaches.count());
            ASSERT_LT(reaches.lowest_for(1), middle);
            ASSERT_GT(reaches.surely_for(1), middle);
        }
    }
}

// Of seven outputs three may cascade. Where the counter of the fourth ends, at 40, nothing is met
// any more; with one counter less that is so at 30.
TEST(CascadeReaches, EndTheRatiosThatCanBeMet)
{
    constexpr double A_THOUSANDTH_MORE = 1.001;
    CASCADES box(7, 10, 1);
    for (int i = 0; i < 7; ++i) {
        box.m_pll.m_taps[i].m_max_count = 5 * (i + 1);
    }
    const auto last = [&] {
        const MET_RATIOS ratios(box.m_pll, box.limits(), {0.1, 20.0});
        return ratios.count() == 0 ? 0.0 : (ratios.end() - 1)->m_high;
    };
    EXPECT_NEAR(4.0 * A_THOUSANDTH_MORE, last(), 1e-6);
    box.m_pll.m_max_taps_count = 9;
    EXPECT_NEAR(3.0 * A_THOUSANDTH_MORE, last(), 1e-6);
}

// Two counters in a row divide by the product of what each can.
TEST(CascadeReaches, EndAtTheSquareOfWhatACounterDividesBy)
{
    const CASCADES box(1, 10, 5);
    const MET_RATIOS ratios(box.m_pll, box.limits(), {0.1, 20.0});
    ASSERT_GT(ratios.count(), 0);
    EXPECT_NEAR(10.0, (ratios.end() - 1)->m_high, 0.02);
}

}  // namespace
