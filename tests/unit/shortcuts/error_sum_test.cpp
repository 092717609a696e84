// Error sums without counters, and their lower bounds, against the sums of assigned counters.
#include "random_ratio_request.h"
#include "search/candidate.h"
#include "search/limits.h"
#include "search/ratio_error.h"
#include "search/region.h"
#include "search/result.h"
#include "shortcuts/error_bound.h"
#include "shortcuts/error_sum.h"
#include "shortcuts/feedback_rest.h"
#include "shortcuts/met_ratios.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace pll_internal;

namespace {

constexpr int M_MAX = 60;
constexpr int N_MAX = 20;

// A request and what a search knows of it.
class SUBJECT
{
public:
    explicit SUBJECT(RANDOM_RATIOS* random)
        : m_request(random->request()), m_pll(random->pll(m_request, M_MAX, N_MAX))
    {
        m_pll->m_feedback_tap = m_request.m_feedback_tap;
        m_limits = read_search_limits(*m_pll, m_request);
    }

    const PLL& pll() const { return *m_pll; }
    const SEARCH_LIMITS& limits() const { return m_limits; }

    double assigned_sum(int m, int n) const
    {
        PLL candidate(m_request.m_taps_count, PLL_MAX_TAPS);
        candidate = *m_pll;
        const SEARCH_POINT point{1, m, n, 1000.0, 1000, 0};
        return assign_candidate(*m_pll, m_request, m_limits, point, &candidate).m_error;
    }

private:
    PLL_PROP m_request;
    std::unique_ptr<PLL> m_pll;
    SEARCH_LIMITS m_limits{};
};

template <class CHECK>
void for_all_settings(unsigned seed, int subjects, CHECK check_setting)
{
    RANDOM_RATIOS random(seed);
    for (int i = 0; i < subjects; ++i) {
        const SUBJECT subject(&random);
        for (int m = 2; m <= M_MAX; m += 3) {
            for (int n = 1; n <= N_MAX; n += 2) {
                check_setting(subject, m, n);
            }
        }
    }
}

TEST(ErrorSum, IsThatOfTheAssignedCountersToTheLastDigit)
{
    int missed = 0;
    for_all_settings(20, 60, [&](const SUBJECT& subject, int m, int n) {
        KEPT_CASCADES cascades(subject.pll(), subject.limits());
        const ERROR_SUM sum(subject.pll(), subject.limits(), &cascades);
        const double expected = subject.assigned_sum(m, n);
        ASSERT_EQ(expected, sum.of(m, n, expected)) << m << " / " << n;
        ASSERT_EQ(expected, sum.of(m, n, 1e300)) << m << " / " << n;
        missed += expected != 0.0 ? 1 : 0;
    });
    EXPECT_GT(missed, 1000);
}

TEST(ErrorSum, IsAboveEveryLimitThatItPasses)
{
    for_all_settings(21, 60, [&](const SUBJECT& subject, int m, int n) {
        KEPT_CASCADES cascades(subject.pll(), subject.limits());
        const ERROR_SUM sum(subject.pll(), subject.limits(), &cascades);
        const double expected = subject.assigned_sum(m, n);
        const double below = std::nextafter(expected, -1.0);
        ASSERT_GT(sum.of(m, n, below), below) << m << " / " << n;
    });
}

TEST(ErrorSum, OfFourSettingsIsThatOfEachToTheLastDigit)
{
    int missed = 0;
    for_all_settings(26, 100, [&](const SUBJECT& subject, int m, int n) {
        KEPT_CASCADES cascades(subject.pll(), subject.limits());
        const ERROR_SUM sum(subject.pll(), subject.limits(), &cascades);
        const ERROR_SUM::SETTINGS settings = {{m, m + 1, 3 * m, m}, {n, 7 * n, n + 1, 300}};
        double sums[ERROR_SUM::LANES];
        sum.of(settings, 1e300, sums);
        for (int i = 0; i < ERROR_SUM::LANES; ++i) {
            const int lane_m = settings.m_m[i];
            const int lane_n = settings.m_n[i];
            ASSERT_EQ(subject.assigned_sum(lane_m, lane_n), sums[i]) << lane_m << " / " << lane_n;
            missed += sums[i] != 0.0 ? 1 : 0;
        }
    });
    EXPECT_GT(missed, 4000);
}

TEST(ErrorSum, OfFourSettingsIsThatOfEachBelowALargestRatio)
{
    int missed = 0;
    for_all_settings(28, 100, [&](const SUBJECT& subject, int m, int n) {
        KEPT_CASCADES cascades(subject.pll(), subject.limits());
        ERROR_SUM sum(subject.pll(), subject.limits(), &cascades);
        sum.expect_ratios_up_to(double(m) / n);
        const ERROR_SUM::SETTINGS settings = {{m, m, m, m}, {n, n + 1, 2 * n, 9 * n}};
        double sums[ERROR_SUM::LANES];
        sum.of(settings, 1e300, sums);
        for (int i = 0; i < ERROR_SUM::LANES; ++i) {
            ASSERT_EQ(subject.assigned_sum(m, settings.m_n[i]), sums[i])
                << m << " / " << settings.m_n[i];
            missed += sums[i] != 0.0 ? 1 : 0;
        }
    });
    EXPECT_GT(missed, 4000);
}

// Ratios in the middle of two counts, a thousandth away, and next to both.
TEST(ErrorSum, OfFourSettingsIsExactWhereRoundingDecides)
{
    for (const int mult : {2, 6, 1000, 1001, 2001, 3003}) {
        PLL_PROP request(2);
        request.m_taps[0].m_mult = mult;
        request.m_taps[1].m_mult = mult;
        request.m_taps[1].m_div = 3;
        PLL pll(2, PLL_MAX_TAPS);
        const SEARCH_LIMITS limits = read_search_limits(pll, request);
        KEPT_CASCADES cascades(pll, limits);
        const ERROR_SUM sum(pll, limits, &cascades);
        for (int k = 1; k < 200; ++k) {
            const int m = mult * k / 2;
            const ERROR_SUM::SETTINGS settings = {{m, m + mult / 2, m + 1, m}, {1, 1, 3, 1000}};
            double sums[ERROR_SUM::LANES];
            sum.of(settings, 1e300, sums);
            for (int i = 0; i < ERROR_SUM::LANES; ++i) {
                ASSERT_EQ(sum.of(settings.m_m[i], settings.m_n[i], 1e300), sums[i])
                    << settings.m_m[i] << " / " << settings.m_n[i];
            }
        }
    }
}

TEST(FeedbackRest, IsWhatTheFeedbackOutputLeavesOver)
{
    PLL_PROP request(2);
    request.m_taps[1].m_div = 3;
    PLL pll(2, PLL_MAX_TAPS);
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    EXPECT_EQ(0.0, FEEDBACK_REST(pll, limits).of(8, 4));
    pll.m_feedback_tap = 1;
    EXPECT_EQ(8 % 6, FEEDBACK_REST(pll, limits).of(8, 4));  // K = 8 x 3 / 4
    pll.m_feedback_tap = 2;
    EXPECT_EQ(0.0, FEEDBACK_REST(pll, limits).of(8, 4));
}

TEST(FeedbackRest, IsAllOfEveryMWhereTheCounterIsLarger)
{
    int close = 0;
    for (int div = 1; div < 100; ++div) {
        PLL_PROP request(1);
        request.m_taps[0].m_mult = 2;
        request.m_taps[0].m_div = div;
        PLL pll(1, PLL_MAX_TAPS);
        pll.m_feedback_tap = 0;
        const SEARCH_LIMITS limits = read_search_limits(pll, request);
        const FEEDBACK_REST rest(pll, limits);
        const int first = int(rest.first_n_without());
        for (int n = 1; n < first; ++n) {
            for (int m = 2; m < 50; ++m) {
                ASSERT_EQ(m, rest.of(m, n)) << m << " / " << n << ", " << div;
            }
        }
        close += rest.of(2, first) == 0.0 || rest.of(2, first + 1) == 0.0 ? 1 : 0;
    }
    EXPECT_GT(close, 90);
    PLL_PROP request(1);
    request.m_taps[0].m_div = 1000;
    const PLL pll(1, PLL_MAX_TAPS);
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    EXPECT_EQ(1, FEEDBACK_REST(pll, limits).first_n_without());
}

TEST(FeedbackRest, IsThatOfTheCounter)
{
    RANDOM_RATIOS random(27);
    int left_over = 0;
    for (int i = 0; i < 20000; ++i) {
        PLL_PROP request(1);
        request.m_feedback_tap = 0;
        request.m_taps[0].m_mult = random.number(random.chance(50) ? 4 : 3000);
        request.m_taps[0].m_div = random.number(random.chance(50) ? 4 : 3000);
        PLL pll(1, PLL_MAX_TAPS);
        pll.m_feedback_tap = 0;
        const SEARCH_LIMITS limits = read_search_limits(pll, request);
        const int m = random.number(random.chance(90) ? 1000 : 1000000);
        const int n = random.number(1000);
        const int rest = feedback_rest(m, counter_value(VCO_RATIO(m, n), limits.m_wishes[0]));
        ASSERT_EQ(rest, FEEDBACK_REST(pll, limits).of(m, n)) << m << " / " << n;
        left_over += rest > 0 ? 1 : 0;
    }
    EXPECT_GT(left_over, 5000);
}

TEST(ErrorBound, OfARatioIsNeverAboveTheSumAndRarelyFarBelow)
{
    int close = 0;
    for_all_settings(22, 100, [&](const SUBJECT& subject, int m, int n) {
        const ERROR_BOUND bound(subject.pll(), subject.limits());
        const float ratio = float(double(m) / n);
        const float ratios[ERROR_BOUND::LANES] = {ratio, 1.0F, ratio, ratio};
        float bounds[ERROR_BOUND::LANES];
        bound.bound_ratios(ratios, bounds);
        const double expected = subject.assigned_sum(m, n);
        for (const int lane : {0, 2, 3}) {
            ASSERT_LE(bounds[lane], expected) << m << " / " << n;
        }
        close += expected > 0.01 && bounds[0] > 0.99 * expected ? 1 : 0;
    });
    EXPECT_GT(close, 8000);
}

// Where counts are far too large for the fractions of a float, every ratio is within a thousandth.
TEST(ErrorBound, IsZeroForVeryLargeCounts)
{
    PLL_PROP request(1);
    request.m_taps[0].m_div = 100000007;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_taps[0].m_max_count = 0x7FFFFFFF;
    const ERROR_BOUND bound(pll, read_search_limits(pll, request));
    for (int i = 1; i < 200; ++i) {
        const float ratios[ERROR_BOUND::LANES] = {0.5F + 0.01F * float(i), 1.0F, 2.0F, 3.3F};
        float bounds[ERROR_BOUND::LANES];
        bound.bound_ratios(ratios, bounds);
        for (const float value : bounds) {
            EXPECT_EQ(0.0F, value);
        }
    }
}

TEST(ErrorBound, OfACellIsNeverAboveASumInItAndOftenAboveNothing)
{
    constexpr int CELLS = 64;
    int above_nothing = 0;
    for_all_settings(23, 60, [&](const SUBJECT& subject, int m, int n) {
        const ERROR_BOUND bound(subject.pll(), subject.limits());
        const double low = 0.1;
        const double width = (double(M_MAX) + 0.1) / CELLS;
        float bounds[CELLS];
        bound.bound_cells(low, width, CELLS, bounds);
        const double ratio = double(m) / n;
        for (int cell = 0; cell < CELLS; ++cell) {
            if (low + cell * width <= ratio && ratio <= low + (cell + 1) * width) {
                ASSERT_LE(bounds[cell], subject.assigned_sum(m, n)) << m << " / " << n;
                above_nothing += bounds[cell] > 0.0F ? 1 : 0;
            }
        }
    });
    EXPECT_GT(above_nothing, 1000);
}

bool holds(const MET_RATIOS& met, double ratio)
{
    return std::any_of(met.begin(), met.end(), [=](const RATIO_RANGE& range) {
        return range.m_low <= ratio && ratio <= range.m_high;
    });
}

TEST(MetRatios, HoldEverySettingWithoutAnErrorAndFewOthers)
{
    int exact = 0;
    int others = 0;
    for_all_settings(24, 300, [&](const SUBJECT& subject, int m, int n) {
        const MET_RATIOS met(subject.pll(), subject.limits(), {0.01, 100.0});
        const bool is_exact = subject.assigned_sum(m, n) == 0.0;
        const bool is_held = holds(met, double(m) / n);
        ASSERT_TRUE(is_held || !is_exact) << m << " / " << n;
        exact += is_exact ? 1 : 0;
        others += is_held && !is_exact && subject.pll().m_feedback_tap < 0 ? 1 : 0;
    });
    EXPECT_GT(exact, 3000);
    EXPECT_LT(others, exact / 20);
}

TEST(MetRatios, AreDisjointAndAscending)
{
    RANDOM_RATIOS random(25);
    int ranges = 0;
    for (int i = 0; i < 300; ++i) {
        const SUBJECT subject(&random);
        const MET_RATIOS met(subject.pll(), subject.limits(), {0.01, 100.0});
        double last = 0.0;
        for (const RATIO_RANGE& range : met) {
            EXPECT_LT(last, range.m_low);
            EXPECT_LE(range.m_low, range.m_high);
            last = range.m_high;
            ++ranges;
        }
    }
    EXPECT_GT(ranges, 1000);
}

// 1000 multiples of the output's ratio are more than are told apart, and from 500 on every ratio
// is within a thousandth of one.
TEST(MetRatios, AreOneRangeWhereMultiplesAreDense)
{
    PLL_PROP request(1);
    request.m_taps[0].m_div = 2000;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_taps[0].m_max_count = 1000;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    const MET_RATIOS dense(pll, limits, {0.3, 0.9});
    ASSERT_EQ(1, dense.count());
    EXPECT_LE(dense.begin()->m_low, 0.3);
    EXPECT_GE(dense.begin()->m_high, 0.9);
    const MET_RATIOS many(pll, limits, {0.0004, 0.9});
    EXPECT_LT(400, many.count());
    EXPECT_TRUE(holds(many, 0.0005));
    EXPECT_FALSE(holds(many, 0.00075));  // between K = 1 and K = 2
}

TEST(MetRatios, EndWhereTheCounterDoes)
{
    PLL_PROP request(1);
    PLL pll(1, PLL_MAX_TAPS);
    const auto met_to = [&](int max_count, double ratio) {
        pll.m_taps[0].m_max_count = max_count;
        return holds(MET_RATIOS(pll, read_search_limits(pll, request), {0.5, 50.0}), ratio);
    };
    EXPECT_TRUE(met_to(3, 6.0));
    EXPECT_FALSE(met_to(3, 7.0));
    EXPECT_TRUE(met_to(1, 1.0));  // such a counter passes the VCO clock and no more
    EXPECT_FALSE(met_to(1, 2.0));
    EXPECT_FALSE(met_to(0, 1.0));
}

}  // namespace
