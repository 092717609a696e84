// The rejection of candidates that cannot win, against their error sums added up in full.
#include "pll_rejection.h"

#include "pll_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr int M_MAX = 60;
constexpr int N_MAX = 20;

double error_sum(const PLL& pll, const PLL_PROP& request, int m, int n)
{
    PLL candidate(request.m_taps_count, PLL_MAX_TAPS);
    candidate = pll;
    PLL best(request.m_taps_count, PLL_MAX_TAPS);
    best = pll;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    const SEARCH_POINT point{1, m, n, 1000.0, 1000, 0};
    return assign_candidate(pll, request, limits, point, best, &candidate).m_error;
}

// Requests whose ratios are exact, nearly exact and missed at one setting or other.
PLL_PROP random_request(std::mt19937& numbers)
{
    const auto number = [&](int largest) { return 1 + int(numbers() % unsigned(largest)); };
    PLL_PROP request(number(4));
    const int largest = number(3) == 1 ? 30 : 4;
    request.m_fin_period = 10000;
    for (int i = 0; i < request.m_taps_count; ++i) {
        request.m_taps[i].m_mult = number(largest);
        request.m_taps[i].m_div = number(largest);
    }
    if (number(3) == 1) {
        request.m_vco_mult = number(M_MAX);
        request.m_vco_div = number(N_MAX);
    }
    return request;
}

bool is_alive(const REJECTION& rejection, int m, int n, double best)
{
    return (rejection.may_win(m, n, best) & 1U) != 0 && !rejection.rejects(m, n, best);
}

TEST(Rejection, SparesExactlyTheCandidatesThatReachTheBestError)
{
    std::mt19937 numbers(20);
    int rejected = 0;
    int kept = 0;
    for (int i = 0; i < 40; ++i) {
        const PLL_PROP request = random_request(numbers);
        PLL pll(request.m_taps_count, PLL_MAX_TAPS);
        for (PLL_OUTPUT_TAP& tap : pll.m_taps) {
            tap.m_max_count = 1 + int(numbers() % 20U);
        }
        const REJECTION rejection(pll, request, M_MAX);
        for (int m = 2; m <= M_MAX; m += 3) {
            for (int n = 1; n <= N_MAX; n += 2) {
                const double sum = error_sum(pll, request, m, n);
                const double above = std::nextafter(sum, 1e300);
                EXPECT_TRUE(is_alive(rejection, m, n, above)) << m << " / " << n;
                if (sum != 0.0) {
                    EXPECT_TRUE(rejection.rejects(m, n, sum)) << m << " / " << n;
                    EXPECT_TRUE(rejection.rejects(m, n, 0.0)) << m << " / " << n;
                    ++rejected;
                } else {
                    EXPECT_TRUE(is_alive(rejection, m, n, 0.0)) << m << " / " << n;
                    ++kept;
                }
            }
        }
    }
    EXPECT_GT(rejected, 1000);
    EXPECT_GT(kept, 10);
}

TEST(Rejection, OfFourAtOnceNeverTakesAWinner)
{
    std::mt19937 numbers(21);
    int spared = 0;
    for (int i = 0; i < 40; ++i) {
        const PLL_PROP request = random_request(numbers);
        const PLL pll(request.m_taps_count, PLL_MAX_TAPS);
        const REJECTION rejection(pll, request, M_MAX);
        for (int m = 2; m <= M_MAX; m += 5) {
            for (int n = 1; n <= N_MAX; n += REJECTION::LANES) {
                const double best = 0.001 * double(numbers() % 2000U);
                const std::uint32_t alive = rejection.may_win(m, n, best);
                for (int lane = 0; lane < REJECTION::LANES; ++lane) {
                    const bool may_win = ((alive >> unsigned(lane)) & 1U) != 0;
                    const double sum = error_sum(pll, request, m, n + lane);
                    EXPECT_TRUE(may_win || (sum != 0.0 && sum >= best));
                    spared += may_win ? 0 : 1;
                }
            }
        }
    }
    EXPECT_GT(spared, 1000);
}

TEST(Rejection, LeavesCountersInTheMiddleOfTwoWholeNumbersToTheExactTest)
{
    // M / N = 5 / 2 for an output at the input's frequency: 2 and 3 are equally far.
    PLL_PROP request(1);
    const PLL pll(1, PLL_MAX_TAPS);
    const REJECTION rejection(pll, request, M_MAX);
    EXPECT_EQ(1U, rejection.may_win(5, 2, 0.1) & 1U);
    EXPECT_EQ(0U, rejection.may_win(5, 2, 0.1) & 2U);  // 5 / 3 is surely missed
    EXPECT_TRUE(rejection.rejects(5, 2, 0.1));
}

TEST(Rejection, NeverSparesWhereCascadesLeaveTraces)
{
    PLL_PROP request(1);
    request.m_taps[0].m_mult = 1;
    request.m_taps[0].m_div = 7;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_output_counter_cascade = true;
    const REJECTION rejection(pll, request, M_MAX);
    EXPECT_GT(error_sum(pll, request, 3, 2), 0.0);
    EXPECT_TRUE(is_alive(rejection, 3, 2, 0.0));
}

TEST(Rejection, NeverSparesWhereLimitsBelowZeroMakeSumsShrink)
{
    PLL_PROP request(2);
    request.m_taps[0].m_mult = 7;
    PLL pll(2, PLL_MAX_TAPS);
    pll.m_taps[1].m_max_count = -5;
    const REJECTION rejection(pll, request, M_MAX);
    EXPECT_TRUE(is_alive(rejection, 3, 2, 0.0));
}

}  // namespace
