// Unit tests of the counter and phase arithmetic.
#include "pll_util.h"

#include "error_guard.h"
#include "pll.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

constexpr const char* TAP_CONDITION = "0 <= vco_tap && vco_tap <= PLL_VCO_TAPS_NUMBER - 1";
constexpr const char* GCD_CONDITION = "x > 0 && y > 0";

struct NEAREST_CASE
{
    const char* m_name;
    double m_phase;
    int m_max_start;
    int m_tap;
    int m_start;
    int m_realised;
};

// clang-format off
constexpr NEAREST_CASE NEAREST_CASES[] = {
    // name                                  phase   max start  tap  start  realised
    {"zero",                                   0.0,         10,   0,     1,        0},
    {"one tap",                               45.0,         10,   1,     1,       45},
    {"just below half a tap",                 22.0,         10,   0,     1,        0},
    {"half a tap is still cut to whole degrees", 22.9,      10,   0,     1,        0},
    {"just above half a tap",                 23.0,         10,   1,     1,       45},
    {"the last tap",                         315.0,         10,   7,     1,      315},
    {"the wrap just not reached",            337.0,         10,   7,     1,      315},
    {"the wrap is not allowed",              350.0,          1,   7,     1,      315},
    {"the wrap to the next start",           350.0,          2,   0,     2,      360},
    {"a whole period",                       360.0,         10,   0,     2,      360},
    {"rounds up to a whole period",          359.5,         10,   0,     2,      360},
    {"some periods",                         800.0,         10,   2,     3,      810},
    {"more periods than starts",            1000.0,          2,   6,     2,      630},
};

struct START_CASE
{
    const char* m_name;
    double m_phase;
    int m_tap;
    int m_max_start;
    int m_start;
    int m_realised;
};

constexpr START_CASE START_CASES[] = {
    // name                          phase   tap  max start  start  realised
    {"zero",                           0.0,    0,        10,     1,        0},
    {"below the tap",                 44.0,    1,        10,     1,       45},
    {"on the tap",                    45.0,    1,        10,     1,       45},
    {"just below half a period",     179.4,    0,        10,     1,        0},
    {"half a period rounds up",      179.5,    0,        10,     2,      360},
    {"one and a half",               540.0,    0,        10,     3,      720},
    {"half a period beyond a tap",   270.0,    2,        10,     2,      450},
    {"no more starts",              5000.0,    0,         3,     3,      720},
};

struct CASCADE_CASE
{
    const char* m_name;
    int m_count;
    int m_max;
    int m_factor;
};

constexpr CASCADE_CASE CASCADE_CASES[] = {
    // name                                        count  max  factor
    {"no divisor leaves a legal rest",                35,   6,  0},
    {"the smallest legal factor wins",                36,   6,  6},
    {"two",                                            8,   4,  2},
    {"a prime",                                       37,   6,  0},
    {"the factor itself is bounded",                  14,   4,  0},
    {"the rest just fits",                            15,   5,  3},
    {"the rest just does not fit",                    15,   4,  0},
    {"a large square",                            262144, 512, 512},
    {"beyond the square",                         262145, 512,  0},
    {"no factor below two",                            5,   1,  0},
    {"no factor at all",                               5,   0,  0},
    {"nor with a negative maximum",                    5,  -7,  0},
};
// clang-format on

// The factor by trying every number.
int plain_cascade_factor(int count, int max_count)
{
    for (int f = 2; f <= max_count; ++f) {
        if (count % f == 0 && count / f <= max_count) {
            return f;
        }
    }
    return 0;
}

}  // namespace

TEST(PhaseFromTapAndStart, CountsPeriodsAndTaps)
{
    EXPECT_EQ(0, PLL_UTIL::phase_from_vco_tap_and_counter_start(0, 1));
    EXPECT_EQ(315, PLL_UTIL::phase_from_vco_tap_and_counter_start(7, 1));
    EXPECT_EQ(360, PLL_UTIL::phase_from_vco_tap_and_counter_start(0, 2));
    EXPECT_EQ(-360, PLL_UTIL::phase_from_vco_tap_and_counter_start(0, 0));
}

TEST(HostilePhaseFromTapAndStart, Wraps)
{
    const auto wrapped = [](std::int64_t tap, std::int64_t start) {
        return static_cast<int>(static_cast<std::uint32_t>(360 * start + 45 * tap - 360));
    };
    for (const int tap : {SMALLEST, -1, 8, LARGEST}) {
        for (const int start : {SMALLEST, -1, 0, LARGEST}) {
            EXPECT_EQ(wrapped(tap, start),
                      PLL_UTIL::phase_from_vco_tap_and_counter_start(tap, start));
        }
    }
}

TEST(PhaseToTapAndStart, FindsTheNearest)
{
    for (const NEAREST_CASE& c : NEAREST_CASES) {
        SCOPED_TRACE(c.m_name);
        int tap = -5;
        int start = -5;
        EXPECT_EQ(c.m_realised, PLL_UTIL::phase_to_vco_tap_and_counter_start(
                                    &tap, &start, c.m_phase, c.m_max_start));
        EXPECT_EQ(c.m_tap, tap);
        EXPECT_EQ(c.m_start, start);
    }
}

TEST(PhaseToTapAndStart, ReturnsEveryPhaseThatItCanRealise)
{
    for (int start = 1; start <= 20; ++start) {
        for (int tap = 0; tap < PLL_VCO_TAPS_NUMBER; ++tap) {
            const int phase = PLL_UTIL::phase_from_vco_tap_and_counter_start(tap, start);
            int found_tap = -1;
            int found_start = -1;
            EXPECT_EQ(phase, PLL_UTIL::phase_to_vco_tap_and_counter_start(&found_tap, &found_start,
                                                                          phase, 20));
            EXPECT_EQ(tap, found_tap);
            EXPECT_EQ(start, found_start);
        }
    }
}

TEST(PhaseToTapAndStart, ReportsATapBelowZeroAndGoesOn)
{
    EXPECTED_REPORTS reports;
    int tap = 0;
    int start = 0;
    EXPECT_EQ(-45, PLL_UTIL::phase_to_vco_tap_and_counter_start(&tap, &start, -100.0, 10));
    EXPECT_EQ(-1, tap);
    EXPECT_EQ(1, start);
    reports.expect_only(TAP_CONDITION, "pll_util");
    EXPECT_EQ(0, PLL_UTIL::phase_to_vco_tap_and_counter_start(&tap, &start, -60.0, 10));
    reports.expect_none();
}

TEST(HostilePhaseToTapAndStart, EndsInDefinedValues)
{
    EXPECTED_REPORTS reports;
    int tap = -1;
    int start = -1;
    EXPECT_EQ(0, PLL_UTIL::phase_to_vco_tap_and_counter_start(&tap, &start, NOT_A_NUMBER, 10));
    EXPECT_EQ(0, tap);
    EXPECT_EQ(1, start);
    PLL_UTIL::phase_to_vco_tap_and_counter_start(&tap, &start, INFINITE, LARGEST);
    EXPECT_EQ(2147483647 / 360 + 1, start);
    EXPECT_EQ(3, tap);  // 2147483647 mod 360 is 127
    reports.expect_none();
    for (const double phase : {-INFINITE, -1e300, 1e300, 2147483647.0}) {
        for (const int max_start : {SMALLEST, -1, 0, 1, LARGEST}) {
            PLL_UTIL::phase_to_vco_tap_and_counter_start(&tap, &start, phase, max_start);
            EXPECT_LE(start, max_start);
            EXPECT_LE(tap, 7);
        }
    }
    reports.accept_all();
}

TEST(PhaseToTapAndStart, GivesZeroWithoutAnOutput)
{
    int value = 77;
    EXPECT_EQ(0, PLL_UTIL::phase_to_vco_tap_and_counter_start(nullptr, &value, 90.0, 10));
    EXPECT_EQ(0, PLL_UTIL::phase_to_vco_tap_and_counter_start(&value, nullptr, 90.0, 10));
    EXPECT_EQ(0, PLL_UTIL::phase_to_counter_start(nullptr, 720.0, 0, 10));
    EXPECT_EQ(77, value);
}

TEST(PhaseToStart, RoundsToWholePeriods)
{
    for (const START_CASE& c : START_CASES) {
        SCOPED_TRACE(c.m_name);
        int start = -5;
        EXPECT_EQ(c.m_realised,
                  PLL_UTIL::phase_to_counter_start(&start, c.m_phase, c.m_tap, c.m_max_start));
        EXPECT_EQ(c.m_start, start);
    }
}

TEST(PhaseToStart, ReportsATapOutOfRangeAndGoesOn)
{
    EXPECTED_REPORTS reports;
    int start = 0;
    EXPECT_EQ(360, PLL_UTIL::phase_to_counter_start(&start, 360.0, 8, 10));
    EXPECT_EQ(1, start);
    reports.expect_only(TAP_CONDITION, "pll_util");
    EXPECT_EQ(-45 + 360, PLL_UTIL::phase_to_counter_start(&start, 360.0, -1, 10));
    EXPECT_EQ(2, start);
    reports.expect_only(TAP_CONDITION, "pll_util");
    PLL_UTIL::phase_to_counter_start(&start, 360.0, 0, 10);
    PLL_UTIL::phase_to_counter_start(&start, 360.0, 7, 10);
    reports.expect_none();
}

TEST(HostilePhaseToStart, EndsInDefinedValues)
{
    int start = -1;
    PLL_UTIL::phase_to_counter_start(&start, NOT_A_NUMBER, 0, 10);
    EXPECT_EQ(1, start);
    PLL_UTIL::phase_to_counter_start(&start, -INFINITE, 0, 10);
    EXPECT_EQ(1, start);
    // The half period that rounds wraps beyond the largest int.
    PLL_UTIL::phase_to_counter_start(&start, INFINITE, 0, 10);
    EXPECT_EQ((SMALLEST + 179) / 360 + 1, start);
    EXPECTED_REPORTS reports;
    PLL_UTIL::phase_to_counter_start(&start, 0.0, SMALLEST, 10);
    PLL_UTIL::phase_to_counter_start(&start, 0.0, LARGEST, SMALLEST);
    reports.expect_only(TAP_CONDITION, "pll_util", 2);
}

TEST(Gcd, AgreesWithTheStandardLibraryOnSmallNumbers)
{
    EXPECT_EQ(6, PLL_UTIL::gcd(12, 18));
    EXPECT_EQ(1, PLL_UTIL::gcd(7, 5));
    for (int x = 1; x <= 60; ++x) {
        for (int y = 1; y <= 60; ++y) {
            EXPECT_EQ(std::gcd(x, y), PLL_UTIL::gcd(x, y));
        }
    }
    EXPECT_EQ(LARGEST, PLL_UTIL::gcd(LARGEST, LARGEST));
}

TEST(Gcd, ReportsOncePerCallOfItself)
{
    EXPECTED_REPORTS reports;
    EXPECT_EQ(5, PLL_UTIL::gcd(0, 5));
    reports.expect_only(GCD_CONDITION, "pll_util", 1);
    EXPECT_EQ(5, PLL_UTIL::gcd(5, 0));
    reports.expect_only(GCD_CONDITION, "pll_util", 2);
    EXPECT_EQ(0, PLL_UTIL::gcd(0, 0));
    reports.expect_only(GCD_CONDITION, "pll_util", 1);
    EXPECT_EQ(6, PLL_UTIL::gcd(-4, 6));
    reports.expect_only(GCD_CONDITION, "pll_util", 1);
    EXPECT_EQ(LARGEST, PLL_UTIL::gcd(LARGEST, SMALLEST));
    reports.expect_only(GCD_CONDITION, "pll_util", 2);
}

TEST(NormalizeFraction, Reduces)
{
    int numerator = 0;
    int denominator = 0;
    PLL_UTIL::normalize_fraction(&numerator, &denominator, 12, 18);
    EXPECT_EQ(2, numerator);
    EXPECT_EQ(3, denominator);
    PLL_UTIL::normalize_fraction(&numerator, &denominator, 7, 5);
    EXPECT_EQ(7, numerator);
    EXPECT_EQ(5, denominator);
    PLL_UTIL::normalize_fraction(&numerator, nullptr, 12, 18);
    PLL_UTIL::normalize_fraction(nullptr, &denominator, 12, 18);
    EXPECT_EQ(7, numerator);
    EXPECT_EQ(5, denominator);
}

TEST(HostileNormalizeFraction, DividesByZeroAsZero)
{
    EXPECTED_REPORTS reports;
    int numerator = 7;
    int denominator = 7;
    PLL_UTIL::normalize_fraction(&numerator, &denominator, 0, 0);
    EXPECT_EQ(0, numerator);
    EXPECT_EQ(0, denominator);
    PLL_UTIL::normalize_fraction(&numerator, &denominator, 0, 9);
    EXPECT_EQ(0, numerator);
    EXPECT_EQ(1, denominator);
    PLL_UTIL::normalize_fraction(&numerator, &denominator, SMALLEST, -1);
    EXPECT_EQ(SMALLEST, numerator);  // the gcd is -1, and the quotient wraps
    EXPECT_EQ(1, denominator);
    reports.accept_all();
}

TEST(UserPhase, IsMeasuredFromTheFeedbackCounter)
{
    PLL pll(1, 10);
    pll.m_m.m_vco_tap = 2;
    pll.m_m.m_initial = 2;
    // The feedback path stands at 360 + 90.
    EXPECT_EQ(0.0, PLL_UTIL::user_phase(1, 4, &pll, 2, 2));
    EXPECT_EQ((315 - 450) * 3 / 4.0, PLL_UTIL::user_phase(3, 4, &pll, 7, 1));
}

TEST(UserPhase, IsMeasuredFromTheFeedbackOutput)
{
    PLL pll(2, 10);
    pll.m_m.m_vco_tap = 7;  // plays no part
    pll.m_m.m_initial = 3;
    pll.m_taps[1].m_vco_tap = 1;
    pll.m_taps[1].m_initial = 2;
    pll.m_feedback_tap = 1;
    // Start 2 + 3 - 1, tap 1.
    EXPECT_EQ((0 - (3 * 360 + 45)) * 2 / 5.0, PLL_UTIL::user_phase(2, 5, &pll, 0, 1));
}

TEST(HostileUserPhase, EndsInDefinedValues)
{
    PLL pll(1, 10);
    EXPECT_EQ(0.0, PLL_UTIL::user_phase(1, 1, nullptr, 1, 1));
    EXPECT_EQ(INFINITE, PLL_UTIL::user_phase(1, 0, &pll, 1, 1));
    EXPECT_TRUE(std::isnan(PLL_UTIL::user_phase(0, 0, &pll, 1, 1)));
    pll.m_taps[9].m_vco_tap = 3;
    for (const int feedback : {9, 10, LARGEST}) {
        pll.m_feedback_tap = feedback;
        EXPECT_EQ(-135.0, PLL_UTIL::user_phase(1, 1, &pll, 0, 1));
    }
    pll.m_taps[9].m_initial = SMALLEST;
    pll.m_m.m_initial = SMALLEST;
    EXPECT_TRUE(std::isfinite(PLL_UTIL::user_phase(LARGEST, SMALLEST, &pll, LARGEST, SMALLEST)));
}

TEST(CascadeFactor, IsTheSmallestThatLeavesALegalCount)
{
    for (const CASCADE_CASE& c : CASCADE_CASES) {
        SCOPED_TRACE(c.m_name);
        EXPECT_EQ(c.m_factor, PLL_UTIL::cascade_factor(c.m_count, c.m_max));
    }
}

TEST(CascadeFactor, AgreesWithThePlainSearch)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();  // of counts that need no cascade
    for (int max_count = -1; max_count <= 40; ++max_count) {
        for (int count = -100; count <= 1700; ++count) {
            EXPECT_EQ(plain_cascade_factor(count, max_count),
                      PLL_UTIL::cascade_factor(count, max_count))
                << count << " " << max_count;
        }
    }
}

TEST(CascadeFactor, ReportsACountThatNeedsNoneAndGoesOn)
{
    EXPECTED_REPORTS reports;
    EXPECT_EQ(2, PLL_UTIL::cascade_factor(6, 6));
    reports.expect_only("count > max_count", "pll_util");
    EXPECT_EQ(2, PLL_UTIL::cascade_factor(0, 6));
    reports.expect_only("count > max_count", "pll_util");
    EXPECT_EQ(0, PLL_UTIL::cascade_factor(1, 6));
    reports.expect_only("count > max_count", "pll_util");
    EXPECT_EQ(3, PLL_UTIL::cascade_factor(-9, 6));
    reports.expect_only("count > max_count", "pll_util");
    EXPECT_EQ(2, PLL_UTIL::cascade_factor(7 * 2, 7));
    reports.expect_none();
}

TEST(HostileCascadeFactor, EndsSoon)
{
    EXPECTED_REPORTS reports;
    EXPECT_EQ(LARGEST, PLL_UTIL::cascade_factor(LARGEST, LARGEST));  // a prime
    EXPECT_EQ(2, PLL_UTIL::cascade_factor(SMALLEST, LARGEST));
    EXPECT_EQ(0, PLL_UTIL::cascade_factor(SMALLEST, SMALLEST));
    reports.expect_only("count > max_count", "pll_util", 3);
    EXPECT_EQ(0, PLL_UTIL::cascade_factor(LARGEST, LARGEST - 1));
    EXPECT_EQ(0, PLL_UTIL::cascade_factor(LARGEST, SMALLEST));
    reports.expect_none();
}

TEST(TapCount, IsOneWhenBypassed)
{
    PLL pll(2, 10);
    pll.m_taps[1].m_high = 3;
    pll.m_taps[1].m_low = 4;
    EXPECT_EQ(1, PLL_UTIL::get_tap_count(&pll, 1));
    pll.m_taps[1].m_bypass = false;
    EXPECT_EQ(7, PLL_UTIL::get_tap_count(&pll, 1));
}

TEST(HostileTapCount, ReportsAnIndexOutOfRangeAndReadsTheNearest)
{
    PLL pll(2, 10);
    EXPECTED_REPORTS reports;
    for (const int tap : {0, 2, 9}) {
        pll.m_taps[tap].m_bypass = false;
        pll.m_taps[tap].m_high = 10 + tap;
    }
    EXPECT_EQ(10, PLL_UTIL::get_tap_count(&pll, -1));
    EXPECT_EQ(10, PLL_UTIL::get_tap_count(&pll, SMALLEST));
    reports.expect_only("tap >= 0", "pll_util", 2);
    EXPECT_EQ(12, PLL_UTIL::get_tap_count(&pll, 2));
    EXPECT_EQ(19, PLL_UTIL::get_tap_count(&pll, 10));
    EXPECT_EQ(19, PLL_UTIL::get_tap_count(&pll, LARGEST));
    reports.expect_only("tap < pll->m_user_taps_count", "pll_util", 3);
    EXPECT_EQ(0, PLL_UTIL::get_tap_count(nullptr, 0));
    pll.m_taps[0].m_high = LARGEST;
    pll.m_taps[0].m_low = 1;
    EXPECT_EQ(SMALLEST, PLL_UTIL::get_tap_count(&pll, 0));
    reports.expect_none();
}

TEST(CeilLog2, RoundsUp)
{
    EXPECT_EQ(0, pll_ceil_log2(0));
    EXPECT_EQ(0, pll_ceil_log2(1));
    EXPECT_EQ(1, pll_ceil_log2(2));
    EXPECT_EQ(2, pll_ceil_log2(3));
    EXPECT_EQ(3, pll_ceil_log2(8));
    EXPECT_EQ(4, pll_ceil_log2(9));
    EXPECT_EQ(30, pll_ceil_log2(1 << 30));
    EXPECT_EQ(31, pll_ceil_log2((1 << 30) + 1));
    EXPECT_EQ(31, pll_ceil_log2(LARGEST));
}

TEST(CeilLog2, ReportsANegativeValue)
{
    EXPECTED_REPORTS reports;
    EXPECT_EQ(0, pll_ceil_log2(-1));
    EXPECT_EQ(0, pll_ceil_log2(SMALLEST));
    reports.expect_only("value == 0", "pll_util", 2);
}

TEST(SetArray, CopiesTheRange)
{
    const int source[4] = {1, 2, 3, 4};
    int destination[4] = {0, 0, 0, 0};
    pll_set_array(destination, 1, 2, source);
    EXPECT_EQ(0, destination[0]);
    EXPECT_EQ(2, destination[1]);
    EXPECT_EQ(3, destination[2]);
    EXPECT_EQ(0, destination[3]);
    pll_set_array(destination, 2, 1, source);
    EXPECT_EQ(2, destination[1]);
    pll_set_array(destination, 0, 0, source);
    EXPECT_EQ(1, destination[0]);
    pll_set_array(nullptr, 0, 3, source);
    pll_set_array(destination, 0, 3, nullptr);
    EXPECT_EQ(0, destination[3]);
}

TEST(LimitSwitch, ExchangesTheUnsetMarks)
{
    EXPECT_EQ(LARGEST, pll_limit_switch(SMALLEST + 1));
    EXPECT_EQ(SMALLEST + 1, pll_limit_switch(LARGEST));
    for (const int value : {SMALLEST, SMALLEST + 2, -1, 0, 1, LARGEST - 1}) {
        EXPECT_EQ(value, pll_limit_switch(value));
    }
}

TEST(BandwidthDiffCost, Is131072PerMegahertz)
{
    EXPECT_EQ(131072.0, pll_get_bandwidth_diff_cost(2e6, 1e6));
    EXPECT_EQ(131072.0, pll_get_bandwidth_diff_cost(1e6, 2e6));
    EXPECT_EQ(0.0, pll_get_bandwidth_diff_cost(5.0, 5.0));
    EXPECT_EQ(1e5 / 1000000 * 131072, pll_get_bandwidth_diff_cost(0.9e6, 1e6));
    EXPECT_TRUE(std::isnan(pll_get_bandwidth_diff_cost(INFINITE, INFINITE)));
}
