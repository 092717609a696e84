// Walks over the reduced fractions of a box.
#include "listing/farey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

using namespace pll_internal;

namespace {

typedef std::vector<FAREY_FRACTION> FRACTIONS;

FRACTIONS all_fractions(const FAREY_FRACTION& box)
{
    FRACTIONS fractions;
    for (std::uint32_t m = 1; m <= box.m_mult; ++m) {
        for (std::uint32_t n = 1; n <= box.m_div; ++n) {
            if (std::gcd(m, n) == 1) {
                fractions.push_back({m, n});
            }
        }
    }
    std::sort(fractions.begin(), fractions.end());
    return fractions;
}

FRACTIONS walk_from(const FAREY_FRACTION& box, const FAREY_FRACTION& first)
{
    FRACTIONS fractions;
    FAREY_WALK walk(box, first);
    do {
        fractions.push_back(walk.get());
    } while (walk.go_on());
    return fractions;
}

TEST(FareyWalk, MeetsEveryFractionOfABoxInOrder)
{
    constexpr std::uint32_t LARGEST_SIDE = 14;
    for (std::uint32_t m_max = 1; m_max <= LARGEST_SIDE; ++m_max) {
        for (std::uint32_t n_max = 1; n_max <= LARGEST_SIDE; ++n_max) {
            SCOPED_TRACE(std::to_string(m_max) + " x " + std::to_string(n_max));
            const FAREY_FRACTION box = {m_max, n_max};
            const FRACTIONS expected = all_fractions(box);
            for (std::size_t i = 0; i < expected.size(); ++i) {
                const FRACTIONS rest(expected.begin() + std::ptrdiff_t(i), expected.end());
                EXPECT_EQ(rest, walk_from(box, expected[i]));
            }
        }
    }
}

TEST(FareyWalk, StaysAtTheLastFraction)
{
    FAREY_WALK walk({3, 2}, {3, 1});
    EXPECT_FALSE(walk.go_on());
    EXPECT_EQ((FAREY_FRACTION{3, 1}), walk.get());
    EXPECT_FALSE(walk.go_on());
    EXPECT_EQ((FAREY_FRACTION{3, 1}), walk.get());
}

TEST(FareyWalk, StepsThroughTheLargestBox)
{
    constexpr std::uint32_t SIDE = std::numeric_limits<int>::max();
    FAREY_WALK walk({SIDE, SIDE}, {SIDE - 1, SIDE});
    EXPECT_TRUE(walk.go_on());
    EXPECT_EQ((FAREY_FRACTION{1, 1}), walk.get());
    EXPECT_TRUE(walk.go_on());
    EXPECT_EQ((FAREY_FRACTION{SIDE, SIDE - 1}), walk.get());
    EXPECT_TRUE(walk.go_on());
    EXPECT_EQ((FAREY_FRACTION{SIDE - 1, SIDE - 2}), walk.get());

    FAREY_WALK low({SIDE, SIDE}, {1, SIDE});
    EXPECT_TRUE(low.go_on());
    EXPECT_EQ((FAREY_FRACTION{1, SIDE - 1}), low.get());
}

}  // namespace
