// Small prime factors against divisions.
#include "shortcuts/small_factors.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

TEST(SmallFactors, AreThoseThatDivide)
{
    constexpr int PRIMES[] = {2, 3, 5, 7};
    for (int number = 0; number < 2000; ++number) {
        const unsigned set = SMALL_FACTORS::of(number);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(number % PRIMES[i] == 0, ((set >> i) & 1U) != 0) << number;
        }
        EXPECT_EQ(0U, set >> 4);
    }
    EXPECT_EQ(SMALL_FACTORS::of(6), SMALL_FACTORS::of(6 + 210LL * 1000000000000));
}

TEST(SmallFactors, HaveASmallestOne)
{
    for (int number = 1; number < 2000; ++number) {
        const unsigned set = SMALL_FACTORS::of(number);
        if (set != 0) {
            const int smallest = SMALL_FACTORS::smallest(set);
            EXPECT_EQ(0, number % smallest) << number;
            for (int smaller = 2; smaller < smallest; ++smaller) {
                EXPECT_NE(0, number % smaller) << number;
            }
        }
    }
}

}  // namespace
