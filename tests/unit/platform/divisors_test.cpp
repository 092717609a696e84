// Divisors by way of prime factors, against a look at every number.
#include "platform/divisors.h"

#include <gtest/gtest.h>

#include <random>

using namespace pll_internal;

namespace {

std::uint32_t plain_divisor_from(std::uint32_t number, std::uint32_t least)
{
    for (std::uint64_t divisor = least; divisor * divisor <= number; ++divisor) {
        if (number % divisor == 0) {
            return std::uint32_t(divisor);
        }
    }
    return 0;
}

TEST(Divisors, AreThoseOfAPlainLookAtAllSmallNumbers)
{
    for (std::uint32_t number = 1; number <= 3000; ++number) {
        for (std::uint32_t least = 1; least * least <= number + 100; ++least) {
            ASSERT_EQ(plain_divisor_from(number, least), smallest_divisor_from(number, least))
                << number << " from " << least;
        }
    }
}

TEST(Divisors, AreThoseOfAPlainLookAtLargeNumbers)
{
    std::mt19937 random(1);
    int found = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::uint32_t number = 1 + std::uint32_t(random() % 0x80000000U);
        const std::uint32_t least = 1 + std::uint32_t(random() % 46341);
        const std::uint32_t divisor = smallest_divisor_from(number, least);
        ASSERT_EQ(plain_divisor_from(number, least), divisor) << number << " from " << least;
        found += divisor != 0 ? 1 : 0;
    }
    EXPECT_GT(found, 400);
}

struct DIVISOR_CASE
{
    const char* m_name;
    std::uint32_t m_number;
    std::uint32_t m_least;
    std::uint32_t m_divisor;
};

// clang-format off
constexpr DIVISOR_CASE DIVISOR_CASES[] = {
    // name                                       number  least  divisor
    {"the largest number",                   0x80000000U,  32769,      0},
    {"its square root is no whole number",   0x80000000U,  16385,  32768},
    {"the largest int, a prime",              2147483647,      2,      0},
    {"one divides everything",                2147483647,      1,      1},
    {"the largest square below 2^31",         2147395600,  46340,  46340},
    {"the square of the largest prime below", 2147117569,      2,  46337},
    {"and one beyond its root",               2147117569,  46338,      0},
    {"the product of the two largest primes", 2146654199,      2,  46327},
    {"the most divisors of all",              2095133040,  45000,  45045},
};
// clang-format on

TEST(Divisors, AreRightAtTheEndsOfTheirRange)
{
    for (const DIVISOR_CASE& c : DIVISOR_CASES) {
        SCOPED_TRACE(c.m_name);
        EXPECT_EQ(c.m_divisor, smallest_divisor_from(c.m_number, c.m_least));
        EXPECT_EQ(plain_divisor_from(c.m_number, c.m_least), c.m_divisor);
    }
}

}  // namespace
