// Unit tests of the arithmetic on numbers of any size.
#include "platform/arith.h"

#include <gtest/gtest.h>

#include <cfenv>

using namespace pll_internal;

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();

}  // namespace

TEST(DivideByAny, IsADivision)
{
    EXPECT_EQ(2.5, divide_by_any(5.0, 2.0));
    EXPECT_EQ(1.0 / 3.0, divide_by_any(1.0, 3.0));
    EXPECT_EQ(0.0, divide_by_any(0.0, 7.0));
    EXPECT_EQ(0.0, divide_by_any(1.0, INFINITE));
    EXPECT_TRUE(std::isnan(divide_by_any(0.0, 0.0)));
    EXPECT_TRUE(std::isnan(divide_by_any(std::nan(""), 0.0)));
}

TEST(DivideByAny, GivesAnInfinityForZeroWithoutRaisingAFlag)
{
    std::feclearexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(INFINITE, divide_by_any(3.0, 0.0));
    EXPECT_EQ(-INFINITE, divide_by_any(-3.0, 0.0));
    EXPECT_EQ(-INFINITE, divide_by_any(3.0, -0.0));
    EXPECT_EQ(INFINITE, divide_by_any(-3.0, -0.0));
    EXPECT_EQ(INFINITE, divide_by_any(INFINITE, 0.0));
    EXPECT_EQ(0, std::fetestexcept(FE_DIVBYZERO | FE_INVALID));
}

TEST(TruncateToInt, SaturatesWithoutRaisingAFlag)
{
    constexpr int LARGEST = std::numeric_limits<int>::max();
    constexpr int SMALLEST = std::numeric_limits<int>::min();
    std::feclearexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(LARGEST, truncate_to_int(2147483647.0));
    EXPECT_EQ(LARGEST - 1, truncate_to_int(2147483646.9));
    EXPECT_EQ(LARGEST, truncate_to_int(1e300));
    EXPECT_EQ(LARGEST, truncate_to_int(INFINITE));
    EXPECT_EQ(SMALLEST, truncate_to_int(-2147483648.0));
    EXPECT_EQ(SMALLEST, truncate_to_int(-1e300));
    EXPECT_EQ(-1, truncate_to_int(-1.9));
    EXPECT_EQ(0, std::fetestexcept(FE_INVALID | FE_OVERFLOW));
    EXPECT_EQ(0, truncate_to_int(std::nan("")));
}
