// What all stages take a loop for.
#include "loop/loop_model.h"
#include "pll.h"

#include <gtest/gtest.h>

#include <limits>

using namespace pll_internal;

namespace {

// ---- Effective M

struct DIVISION_CASE
{
    const char* m_name;
    int m_m;
    int m_post_scale;
    int m_feedback_tap;
    int m_division;
};

constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();

// Output 1 counts to 5.
// clang-format off
constexpr DIVISION_CASE DIVISION_CASES[] = {
    // name                                        M  scale  tap  division
    {"M alone",                                    7,     1,  -1,        7},
    {"the post-scale divides too",                 7,     2,  -1,       14},
    {"the output in the feedback divides too",     7,     2,   1,       70},
    {"an output that divides by one does not",     7,     2,   0,       14},
    {"what no int holds wraps",          INT_MAXIMUM,     2,  -1,       -2},
};
// clang-format on

void set_count(int count, PLL_OUTPUT_TAP* tap)
{
    tap->m_count = count;
    tap->m_bypass = count == 1;
    tap->m_high = count - count / 2;
    tap->m_low = count / 2;
}

TEST(EffectiveFeedbackDivision, IsAllThatStandsBetweenVcoAndPfd)
{
    for (const DIVISION_CASE& c : DIVISION_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(2, PLL_MAX_TAPS);
        pll.m_m.m_count = c.m_m;
        pll.m_vco_post_scale = c.m_post_scale;
        set_count(1, &pll.m_taps[0]);
        set_count(5, &pll.m_taps[1]);
        EXPECT_EQ(c.m_division, effective_feedback_division(pll, c.m_feedback_tap));
        pll.m_feedback_tap = c.m_feedback_tap;
        EXPECT_EQ(c.m_division, effective_feedback_division(pll));
    }
}

// ---- The slowest VCO

struct VCO_CASE
{
    const char* m_name;
    SPREAD m_spread;
    bool m_is_supported;
    int m_of_spread;
    int m_longest;
};

// clang-format off
constexpr VCO_CASE VCO_CASES[] = {
    // name                              spread        supported  of spread          longest
    {"no spread",                        SPREAD::OFF,  true,      2000,              3000},
    {"a spread has its own limit",       SPREAD::DOWN, true,      2000,              2000},
    {"which may be the longer one",      SPREAD::DOWN, true,      4000,              4000},
    {"where the device can spread",      SPREAD::DOWN, false,     2000,              3000},
    {"and says so",                      SPREAD::DOWN, true,      PLL_UNSET_MINIMUM, 3000},
};
// clang-format on

TEST(LongestVcoPeriod, IsThatOfASpreadWhereThereIsOne)
{
    for (const VCO_CASE& c : VCO_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(1, PLL_MAX_TAPS);
        pll.m_ss_supported = c.m_is_supported;
        pll.set_vco_max_period(3000, 2);
        pll.set_ss_vco_max_period(c.m_of_spread, 2);
        pll.set_vco_max_period(1, 1);
        pll.set_ss_vco_max_period(1, 1);
        EXPECT_EQ(c.m_longest, longest_vco_period(pll, c.m_spread, 2));
        pll.m_vco_post_scale = 2;
        EXPECT_EQ(c.m_longest, longest_vco_period(pll, c.m_spread, -1));
    }
}

// ---- Pi

// Formulas were written with 3.14, with 6.28 and with 10^12 / 6.28: all three must be one pi.
TEST(FilterPi, IsOneInAllFormsOfTheFormulas)
{
    EXPECT_EQ(3.14, FILTER_PI);
    EXPECT_EQ(6.28, 2.0 * FILTER_PI);
    EXPECT_EQ(159235668789.8089, 1e12 / (2.0 * FILTER_PI));
}

}  // namespace
