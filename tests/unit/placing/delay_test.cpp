// Delay chains: N delays all clocks, M advances them, each output has a chain of its own.
#include "error_guard.h"
#include "pll.h"
#include "pll_prop.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int LEFT = 77;  // what M held before

struct DELAY_CASE
{
    const char* m_name;
    std::vector<int> m_requested;
    bool m_reconfig;
    int m_feedback_tap;
    int m_n;
    int m_m;
    std::vector<int> m_delays;
};

const DELAY_CASE LEGAL_CASES[] = {
    // requested, reconfiguration, feedback, N, M, delays
    {"none", {0, 0}, false, -1, 0, 0, {0, 0}},
    {"the longest span", {0, 3000}, false, -1, 0, 0, {0, 3000}},
    {"a common delay goes to N", {500, 800}, false, -1, 500, 0, {0, 300}},
    {"but not with reconfiguration", {500, 800}, true, -1, 0, 0, {500, 800}},
    {"a negative delay goes to M", {-500, 0}, false, -1, 0, 500, {0, 500}},
    {"with reconfiguration too", {-500, 0}, true, -1, 0, 500, {0, 500}},
    {"the largest negative delay", {-3000, -3000}, false, -1, 0, 3000, {0, 0}},
    {"more than one chain", {3500, 1000}, false, -1, 1000, 0, {2500, 0}},
    {"more than one chain, reconfigured", {3500, 1000}, true, -1, 500, 0, {3000, 500}},
    {"N at its maximum", {5000, 4000}, false, -1, 3000, 0, {2000, 1000}},
    {"two full chains", {6000, 5000}, false, -1, 3000, 0, {3000, 2000}},
    {"two full chains, reconfigured", {6000, 5000}, true, -1, 3000, 0, {3000, 2000}},
    {"a feedback clock that is late leaves M", {500, 1000}, false, 0, 500, LEFT, {0, 500}},
    {"a feedback clock in time leaves M", {0, 1000}, false, 0, 0, LEFT, {0, 1000}},
    {"a feedback clock that is early", {-500, 0}, false, 0, 0, 500, {0, 500}},
    {"the second clock fed back", {0, -500}, false, 1, 0, 500, {500, 0}},
    {"an early clock beside the feedback", {0, -500}, false, 0, 0, LEFT, {500, 0}},
};

void prepare(PLL& pll, PLL_PROP& request, const DELAY_CASE& c)
{
    pll.m_m.m_delay = LEFT;
    pll.m_n.m_delay = LEFT;
    pll.m_feedback_tap = c.m_feedback_tap;
    request.m_use_reconfig = c.m_reconfig;
    for (std::size_t i = 0; i < c.m_requested.size(); ++i) {
        request.m_taps[i].m_delay = c.m_requested[i];
    }
}

void expect_chains(const PLL& pll, const DELAY_CASE& c)
{
    EXPECT_EQ(c.m_n, pll.m_n.m_delay);
    EXPECT_EQ(c.m_m, pll.m_m.m_delay);
    for (std::size_t i = 0; i < c.m_delays.size(); ++i) {
        EXPECT_EQ(c.m_delays[i], pll.m_taps[i].m_delay);
    }
}

int count_clocks(const DELAY_CASE& c)
{
    return static_cast<int>(c.m_requested.size());
}

TEST(DelayChains, ShareTheRequestedDelays)
{
    for (const DELAY_CASE& c : LEGAL_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(count_clocks(c), 10);
        PLL_PROP request(count_clocks(c));
        prepare(pll, request, c);
        EXPECT_TRUE(pll.synthesize_delay_chains(request));
        expect_chains(pll, c);
        EXPECT_EQ(PLL::PLL_NO_ERROR, pll.m_error);
    }
}

TEST(DelayChains, StayUntouchedWithoutClocks)
{
    PLL pll(0, 10);
    pll.m_n.m_delay = LEFT;
    pll.m_m.m_delay = LEFT;
    EXPECT_TRUE(pll.synthesize_delay_chains(PLL_PROP(0)));
    EXPECT_EQ(LEFT, pll.m_n.m_delay);
    EXPECT_EQ(LEFT, pll.m_m.m_delay);
}

const std::vector<int> TOO_WIDE[] = {{0, 3001},     {-1, 3000}, {-3001, 0},
                                     {-9999, 9999}, {20000},    {-20000}};

TEST(DelayChains, RefuseASpanOfMoreThanOneChainAndChangeNothing)
{
    for (const std::vector<int>& requested : TOO_WIDE) {
        const DELAY_CASE c = {"", requested, false, -1, LEFT, LEFT, {}};
        PLL pll(count_clocks(c), 10);
        PLL_PROP request(count_clocks(c));
        prepare(pll, request, c);
        pll.m_taps[0].m_delay = LEFT;
        EXPECT_FALSE(pll.synthesize_delay_chains(request));
        expect_chains(pll, c);
        EXPECT_EQ(LEFT, pll.m_taps[0].m_delay);
        EXPECT_EQ(PLL::PLL_DELAY_RANGE_TOO_WIDE, pll.m_error);
    }
}

const DELAY_CASE CAPPED_CASES[] = {
    {"beyond two chains", {6001, 5000}, false, -1, 3000, 0, {3000, 2000}},
    {"beyond two chains, reconfigured", {7000, 6000}, true, -1, 3000, 0, {3000, 3000}},
    {"beyond what is looked at", {10000}, false, -1, 3000, 0, {3000}},
};

TEST(DelayChains, CapAClockBeyondReach)
{
    for (const DELAY_CASE& c : CAPPED_CASES) {
        SCOPED_TRACE(c.m_name);
        PLL pll(count_clocks(c), 10);
        PLL_PROP request(count_clocks(c));
        prepare(pll, request, c);
        EXPECT_FALSE(pll.synthesize_delay_chains(request));
        expect_chains(pll, c);
        EXPECT_EQ(PLL::PLL_DELAY_RANGE_TOO_WIDE, pll.m_error);
    }
}

struct REPORT_CASE
{
    DELAY_CASE m_case;
    std::vector<std::string> m_reports;
};

const char* const TAP_REPORT = "0 <= this->m_taps[i].m_delay";
const char* const M_REPORT = "0 <= this->m_m.m_delay && this->m_m.m_delay <= MAX_DELAY_CHAIN_VALUE";
const char* const FEEDBACK_REPORT = "this->m_feedback_tap <= this->m_user_taps_count";

const REPORT_CASE REPORT_CASES[] = {
    {{"earlier than M allows", {-3500, -1000}, false, -1, 0, 3000, {-500, 2000}}, {TAP_REPORT}},
    {{"two clocks too early", {-3500, -3600}, false, -1, 0, 3000, {-500, -600}},
     {TAP_REPORT, TAP_REPORT}},
    {{"a feedback clock too early", {-4000, -2000}, false, 0, 0, 4000, {-1000, 1000}},
     {M_REPORT, TAP_REPORT}},
    {{"a feedback tap beyond the clocks", {0, 0}, false, 3, 0, LEFT, {0, 0}}, {FEEDBACK_REPORT}},
    {{"a feedback tap just beyond the clocks", {0, 0}, false, 2, 0, LEFT, {0, 0}}, {}},
};

TEST(DelayChains, ReportWhatNoChainCanDoAndGoOn)
{
    for (const REPORT_CASE& r : REPORT_CASES) {
        const DELAY_CASE& c = r.m_case;
        SCOPED_TRACE(c.m_name);
        PLL pll(count_clocks(c), 10);
        PLL_PROP request(count_clocks(c));
        prepare(pll, request, c);
        EXPECTED_REPORTS reports;
        EXPECT_TRUE(pll.synthesize_delay_chains(request));
        reports.expect_sequence(r.m_reports, "pll");
        expect_chains(pll, c);
    }
}

TEST(DelayChains, ReportADelayOfMThatWasThereBefore)
{
    PLL pll(1, 10);
    PLL_PROP request(1);
    pll.m_feedback_tap = 0;
    pll.m_m.m_delay = -1;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(pll.synthesize_delay_chains(request));
    reports.expect_only(M_REPORT, "pll");
    EXPECT_EQ(-1, pll.m_m.m_delay);
}

}  // namespace
