#include "advice/numbers/rational.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace advice {
namespace {

constexpr std::int64_t LARGEST = std::numeric_limits<std::int64_t>::max();

TEST(Rational, IsReducedWithAPositiveDivisor)
{
    EXPECT_EQ(RATIONAL(11, 2), RATIONAL(-22, -4));
    EXPECT_EQ(-1, RATIONAL(3, -3).numerator());
    EXPECT_EQ(1, RATIONAL(3, -3).denominator());
}

TEST(Rational, IsInvalidWhereItDoesNotFitAndStaysSo)
{
    EXPECT_TRUE(RATIONAL(LARGEST, 1).is_valid());
    EXPECT_FALSE((RATIONAL(LARGEST, 1) + RATIONAL(1)).is_valid());
    EXPECT_FALSE((RATIONAL(LARGEST, 1) * RATIONAL(2) * RATIONAL()).is_valid());
    EXPECT_FALSE((RATIONAL(1) / RATIONAL()).is_valid());
    EXPECT_FALSE(-RATIONAL::invalid().is_valid());
    EXPECT_EQ("invalid", RATIONAL::invalid().to_fraction());
}

TEST(Rational, ComparesWithAnInvalidOneAsFalse)
{
    const RATIONAL none = RATIONAL::invalid();
    EXPECT_FALSE(none < RATIONAL(1));
    EXPECT_FALSE(RATIONAL(1) < none);
    EXPECT_FALSE(none <= none);
    EXPECT_FALSE(none >= RATIONAL());
    EXPECT_TRUE(std::isnan(none.to_double()));
}

TEST(Rational, ComparesExactlyWhereDoublesAreEqual)
{
    const RATIONAL a(LARGEST - 1, LARGEST);
    const RATIONAL b(LARGEST - 2, LARGEST - 1);
    EXPECT_EQ(a.to_double(), b.to_double());
    EXPECT_TRUE(b < a);
    EXPECT_TRUE(a > b);
    EXPECT_TRUE(a >= a);
    EXPECT_FALSE(a <= b);
}

struct ROUND_CASE
{
    std::int64_t m_numerator;
    std::int64_t m_denominator;
    int m_floor;
    int m_rounded;
    int m_ceil;
};

// clang-format off
constexpr ROUND_CASE ROUND_CASES[] = {
    // value   floor rounded ceil
    { 7, 2,    3,  4,  4},
    {-7, 2,   -4, -4, -3},
    { 5, 4,    1,  1,  2},
    {-5, 4,   -2, -1, -1},
    { 3, 1,    3,  3,  3},
    {-3, 1,   -3, -3, -3},
};
// clang-format on

TEST(Rational, RoundsDownUpAndToTheNearest)
{
    for (const ROUND_CASE& c : ROUND_CASES) {
        const RATIONAL value(c.m_numerator, c.m_denominator);
        SCOPED_TRACE(value.to_fraction());
        EXPECT_EQ(RATIONAL(c.m_floor), value.floor());
        EXPECT_EQ(RATIONAL(c.m_rounded), value.rounded());
        EXPECT_EQ(RATIONAL(c.m_ceil), value.ceil());
    }
}

TEST(Rational, ReadsDecimalsAndFractions)
{
    EXPECT_EQ(RATIONAL(27), RATIONAL::parse("27"));
    EXPECT_EQ(RATIONAL(-297, 2), RATIONAL::parse("-148.5"));
    EXPECT_EQ(RATIONAL(1001, 37), RATIONAL::parse("1001/37"));
    EXPECT_EQ(RATIONAL(148500, 1001), RATIONAL::parse("148.5/1.001"));
    EXPECT_EQ(RATIONAL(1, 2), RATIONAL::parse("+.5"));
}

TEST(Rational, RefusesWhatIsNoNumber)
{
    for (const char* text :
         {"", "-", ".", "1.2.3", "1/0", "1/", "/2", "27MHz", " 1", "1e3", "1234567890123456789"}) {
        EXPECT_EQ(std::nullopt, RATIONAL::parse(text)) << text;
    }
}

}  // namespace
}  // namespace advice
