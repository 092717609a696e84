// Unit tests of the walk over the legal settings and of the count of what each limit leaves.
#include "pll_settings.h"

#include "random_ratio_request.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

constexpr std::int64_t NO_BOUND = 1'000'000'000;

bool append_setting(const PLL_SETTING& setting, void* context)
{
    static_cast<std::vector<PLL_SETTING>*>(context)->push_back(setting);
    return true;
}

// Ends the walk at the third setting.
bool stop_at_third(const PLL_SETTING&, void* context)
{
    return ++*static_cast<int*>(context) < 3;
}

bool is_within(double value, int low, int high)
{
    return low - 1.0 <= value && value <= high + 1.0;
}

struct LEGALITY
{
    bool m_vco;
    bool m_pfd;
};

LEGALITY legality(const PLL& pll, int fin, int post_scale, int m, int n)
{
    return {is_within(double(fin) * n / m, pll.get_vco_min_period(post_scale),
                      pll.get_vco_max_period(post_scale)),
            is_within(double(fin) * n, pll.m_pfd_min_period, pll.m_pfd_max_period)};
}

bool has_bandwidth(const PLL& pll, const PLL_PROP& request, int post_scale, int m)
{
    if (request.m_bandwidth_type != PLL_BANDWIDTH_CUSTOM) {
        return true;
    }
    const auto& currents = PLL::m_impl->m_charge_pump_currents;
    const auto& resistors = PLL::m_impl->m_resistors;
    const double product = ((2.0 * m * request.m_bandwidth) * 3.14) / pll.get_kvco(post_scale);
    const int whole = product >= 2147483647.0 ? 2147483647 : int(product);
    return currents.front() * resistors.front() <= whole &&
           whole <= currents.back() * resistors.back();
}

// Every pair of counters, one after the other.
PLL_SETTING_COUNTS count_plainly(const PLL& pll, const PLL_PROP& request,
                                 std::vector<PLL_SETTING>* legal)
{
    PLL_SETTING_COUNTS counts;
    for (int post_scale = 1; post_scale <= pll.m_max_vco_post_scale; ++post_scale) {
        for (int m = 2; m <= pll.m_m.m_max_count; ++m) {
            for (int n = pll.m_n.m_min_count; n <= pll.m_n.m_max_count; ++n) {
                const LEGALITY first = legality(pll, request.m_fin_period, post_scale, m, n);
                LEGALITY second{true, true};
                if (request.m_fin2_period > 0) {
                    second = legality(pll, request.m_fin2_period, post_scale, m, n);
                }
                const bool both = first.m_vco && first.m_pfd;
                const bool bandwidth = has_bandwidth(pll, request, post_scale, m);
                ++counts.m_all;
                counts.m_vco += first.m_vco;
                counts.m_pfd += first.m_pfd;
                counts.m_vco_pfd += both;
                counts.m_second_input += both && second.m_vco && second.m_pfd;
                counts.m_spread += both;
                counts.m_bandwidth += both && bandwidth;
                if (both && second.m_vco && second.m_pfd && bandwidth) {
                    ++counts.m_legal;
                    legal->push_back({post_scale, m, n, double(request.m_fin_period) * n / m,
                                      double(request.m_fin_period) * n, m / std::gcd(m, n),
                                      n / std::gcd(m, n)});
                }
            }
        }
    }
    return counts;
}

TEST(Settings, AreThoseOfAPlainCount)
{
    RANDOM_RATIOS random(5);
    std::int64_t legal_in_all = 0;
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const PLL_PROP request = random.request();
        const std::unique_ptr<PLL> pll = random.pll(request, 12, 8);
        std::vector<PLL_SETTING> expected;
        const PLL_SETTING_COUNTS plain = count_plainly(*pll, request, &expected);
        std::vector<PLL_SETTING> settings;
        EXPECT_TRUE(pll_walk_settings(*pll, request, append_setting, &settings));
        ASSERT_EQ(settings.size(), expected.size());
        for (std::size_t at = 0; at < settings.size(); ++at) {
            EXPECT_EQ(settings[at].m_post_scale, expected[at].m_post_scale);
            EXPECT_EQ(settings[at].m_m, expected[at].m_m);
            EXPECT_EQ(settings[at].m_n, expected[at].m_n);
            EXPECT_EQ(settings[at].m_vco_period, expected[at].m_vco_period);
            EXPECT_EQ(settings[at].m_pfd_period, expected[at].m_pfd_period);
            EXPECT_EQ(settings[at].m_vco_mult, expected[at].m_vco_mult);
            EXPECT_EQ(settings[at].m_vco_div, expected[at].m_vco_div);
        }
        const PLL_SETTING_COUNTS counts = pll_count_settings(*pll, request, NO_BOUND);
        EXPECT_EQ(counts.m_all, plain.m_all);
        EXPECT_EQ(counts.m_vco, plain.m_vco);
        EXPECT_EQ(counts.m_pfd, plain.m_pfd);
        EXPECT_EQ(counts.m_vco_pfd, plain.m_vco_pfd);
        EXPECT_EQ(counts.m_second_input, plain.m_second_input);
        EXPECT_EQ(counts.m_spread, plain.m_spread);
        EXPECT_EQ(counts.m_bandwidth, plain.m_bandwidth);
        EXPECT_EQ(counts.m_legal, plain.m_legal);
        EXPECT_TRUE(counts.m_is_complete);
        legal_in_all += counts.m_legal;
    }
    EXPECT_GT(legal_in_all, 1000);
}

TEST(Settings, EndWhereTheVisitorEndsThem)
{
    SMALL_PLL small(1, 4, 2);
    int visited = 0;
    EXPECT_FALSE(pll_walk_settings(small.m_pll, small.m_request, stop_at_third, &visited));
    EXPECT_EQ(visited, 3);
}

TEST(SettingCounts, SayWhichOutputsAreMet)
{
    SMALL_PLL small(2, 4, 1);
    small.set_ratio(0, 3, 1);
    small.set_ratio(1, 1, 1);
    const PLL_SETTING_COUNTS counts = pll_count_settings(small.m_pll, small.m_request, NO_BOUND);
    EXPECT_EQ(counts.m_legal, 3);
    EXPECT_EQ(counts.m_output_met[0], 1);
    EXPECT_EQ(counts.m_output_met[1], 3);
    EXPECT_EQ(counts.m_all_met, 1);
}

// Down spread must change M by a whole count: at 0.5 percent from 200 on.
TEST(SettingCounts, CountWhatTheSpreadLeaves)
{
    SMALL_PLL small(1, 201, 1);
    small.m_request.m_fin_period = 400000;
    small.set_pfd(1000, 400000);
    small.m_request.m_down_spread = 0.005;
    small.m_pll.set_ss_vco_max_period(4000, 1);
    const PLL_SETTING_COUNTS counts = pll_count_settings(small.m_pll, small.m_request, NO_BOUND);
    EXPECT_EQ(counts.m_vco_pfd, 102);  // M 100 to 201
    EXPECT_EQ(counts.m_spread, 2);
    EXPECT_EQ(counts.m_legal, 2);
}

TEST(SettingCounts, AreCutAtTheirBound)
{
    SMALL_PLL small(1, 4, 2);
    const PLL_SETTING_COUNTS all = pll_count_settings(small.m_pll, small.m_request, NO_BOUND);
    ASSERT_GT(all.m_legal, 3);
    ASSERT_GT(all.m_output_met[0], 3);
    const PLL_SETTING_COUNTS cut = pll_count_settings(small.m_pll, small.m_request, 3);
    EXPECT_FALSE(cut.m_is_complete);
    EXPECT_EQ(cut.m_legal, all.m_legal);
    EXPECT_EQ(cut.m_output_met[0], 3);
    EXPECT_FALSE(pll_count_settings(small.m_pll, small.m_request, 1).m_is_complete);
}

// Counters of two thousand million take a few steps where little is legal.
TEST(HostileSettings, NeedNoMoreStepsThanTheyHaveSettings)
{
    SMALL_PLL small(1, 2147483647, 2147483647);
    small.set_pfd(1500, 8000);
    std::vector<PLL_SETTING> settings;
    EXPECT_TRUE(pll_walk_settings(small.m_pll, small.m_request, append_setting, &settings));
    EXPECT_EQ(settings.size(), 10u);  // N 1 with M 2 to 4, N 2 with M 2 to 8
    EXPECT_FALSE(pll_count_settings(small.m_pll, small.m_request, 1000).m_is_complete);
}

}  // namespace
