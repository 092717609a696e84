// Verdicts on counters that are set by hand, border by border.

#include "builders.h"

#include <gtest/gtest.h>

namespace advice {
namespace {

// A PLL with one output of the built-in limits: 100 MHz x 6 / 12 = 50 MHz.
struct SETTING
{
    SETTING() : m_request(request_of("100", {"50"})), m_pll(1, PLL_MAX_TAPS)
    {
        m_limits.give_to(&m_pll, m_request);
        m_pll.m_m.m_count = 6;
        m_pll.m_n.m_count = 1;
        PLL_OUTPUT_TAP& tap = m_pll.m_taps[0];
        tap.m_bypass = false;
        tap.m_high = tap.m_low = 6;
        tap.m_count = 12;
    }

    // The misses and warnings but for that of the built-in limits, a line each.
    std::string judge()
    {
        PLL_PROP achieved(1);
        achieved.m_fin_period = m_request.m_input.m_library_period;
        achieved.set_properties_from_internals(m_pll);
        advice::judge(m_request, m_limits, m_pll, achieved, &m_verdict);
        return misses_of(m_request, m_verdict);
    }

    bool has_warning(WARNING_KIND kind) const
    {
        for (const WARNING& warning : m_verdict.m_warnings) {
            if (warning.m_kind == kind) {
                return true;
            }
        }
        return false;
    }

    REQUEST m_request;
    LIMITS m_limits;
    PLL m_pll;
    VERDICT m_verdict;
};

TEST(Verdict, IsMetForASettingThatKeepsAll)
{
    SETTING setting;
    EXPECT_EQ("", setting.judge());
    EXPECT_TRUE(setting.m_verdict.m_met);
}

TEST(Verdict, FindsEveryCounterThatIsChanged)
{
    SETTING m;
    m.m_pll.m_m.m_count = 7;
    EXPECT_NE("", m.judge());
    SETTING n;
    n.m_pll.m_n.m_count = 2;
    EXPECT_NE("", n.judge());
    SETTING high;
    high.m_pll.m_taps[0].m_high = 7;
    EXPECT_NE("", high.judge());
    SETTING low;
    low.m_pll.m_taps[0].m_low = 5;
    EXPECT_NE("", low.judge());
    SETTING initial;
    initial.m_pll.m_taps[0].m_initial = 2;
    EXPECT_EQ("MISSED phase of output 1: 30 deg for 0, steps of 3.75\n", initial.judge());
    SETTING tap;
    tap.m_pll.m_taps[0].m_vco_tap = 1;
    EXPECT_EQ("MISSED phase of output 1: 3.75 deg for 0, steps of 3.75\n", tap.judge());
    SETTING delay;
    delay.m_pll.m_taps[0].m_delay = 1;
    EXPECT_EQ("MISSED delay of output 1: 1 ps for 0\n", delay.judge());
    SETTING odd;
    odd.m_pll.m_taps[0].m_even = false;
    EXPECT_EQ("MISSED duty cycle of output 1: 45.833 % for 50, steps of 4.167\n", odd.judge());
}

TEST(Verdict, KeepsAToleranceToTheLastDigit)
{
    SETTING setting;
    setting.m_request.m_outputs[0].m_phase = RATIONAL(1);
    setting.m_request.m_tolerances.m_phase = RATIONAL(1);
    EXPECT_EQ("", setting.judge());
    setting.m_request.m_tolerances.m_phase = RATIONAL(999999999, 1000000000);
    EXPECT_NE("", setting.judge());
    setting.m_request.m_outputs[0].m_tolerances.m_phase = RATIONAL(2);
    EXPECT_EQ("", setting.judge());
}

TEST(Verdict, TakesAWholeTurnForNone)
{
    SETTING setting;
    for (const int phase : {360, -360}) {
        setting.m_request.m_outputs[0].m_phase = RATIONAL(phase);
        EXPECT_EQ("", setting.judge()) << phase;
    }
    setting.m_request.m_outputs[0].m_phase = RATIONAL(180);
    EXPECT_NE("", setting.judge());
}

struct LIMIT_CASE
{
    const char* m_name;
    LIMIT_KIND m_kind;
    int m_kept;    // the tightest value that is kept
    int m_broken;  // the next one
};

// clang-format off
constexpr LIMIT_CASE LIMIT_CASES[] = {
    // name            kind                            kept         broken
    {"output_max",     LIMIT_KIND::OUTPUT_MAX,         50000000,    49999999},
    {"output_min",     LIMIT_KIND::OUTPUT_MIN,         50000000,    50000001},
    {"input_max",      LIMIT_KIND::INPUT_MAX,          100000000,   99999999},
    {"input_min",      LIMIT_KIND::INPUT_MIN,          100000000,   100000001},
    {"pfd_max",        LIMIT_KIND::PFD_MAX,            100000000,   99999999},
    {"pfd_min",        LIMIT_KIND::PFD_MIN,            100000000,   100000001},
    {"vco_max",        LIMIT_KIND::VCO_MAX,            600000000,   599999999},
    {"vco_min",        LIMIT_KIND::VCO_MIN,            600000000,   600000001},
    {"m_max",          LIMIT_KIND::M_MAX,              6,           5},
    {"m_min",          LIMIT_KIND::M_MIN,              6,           7},
    {"n_max",          LIMIT_KIND::N_MAX,              1,           0},
    {"n_min",          LIMIT_KIND::N_MIN,              1,           2},
    {"k_max",          LIMIT_KIND::K_MAX,              12,          11},
    {"k_min",          LIMIT_KIND::K_MIN,              12,          13},
    {"half_max",       LIMIT_KIND::HALF_MAX,           6,           5},
    {"k_initial_max",  LIMIT_KIND::K_INITIAL_MAX,      1,           0},
    {"m_initial_max",  LIMIT_KIND::M_INITIAL_MAX,      1,           0},
    {"outputs_max",    LIMIT_KIND::OUTPUTS_MAX,        1,           0},
    {"post_scale_max", LIMIT_KIND::POST_SCALE_MAX,     1,           0},
};
// clang-format on

TEST(Verdict, KeepsEachLimitOnItsBorderAndNotBeyond)
{
    for (const LIMIT_CASE& c : LIMIT_CASES) {
        SCOPED_TRACE(c.m_name);
        SETTING setting;
        setting.m_limits.remove(c.m_kind);
        LIMIT limit;
        limit.m_kind = c.m_kind;
        limit.m_source = "test";
        limit.m_value = RATIONAL(c.m_kept);
        setting.m_limits.set(limit);
        EXPECT_EQ("", setting.judge());
        limit.m_value = RATIONAL(c.m_broken);
        setting.m_limits.set(limit);
        EXPECT_EQ(0U, setting.judge().find(std::string("BROKEN ") + c.m_name + ": "));
        EXPECT_FALSE(setting.m_verdict.m_met);
    }
}

TEST(Verdict, KeepsListsOfLegalCounts)
{
    SETTING setting;
    LIMIT limit;
    limit.m_kind = LIMIT_KIND::K_LEGAL;
    limit.m_source = "test";
    limit.m_legal = {2, 4, 8};
    setting.m_limits.set(limit);
    EXPECT_EQ("BROKEN k_legal: output counter (output 1) 12, legal are 2 4 8 (test)\n",
              setting.judge());
    limit.m_legal = {4, 12};
    setting.m_limits.set(limit);
    EXPECT_EQ("", setting.judge());
}

TEST(Verdict, TakesLimitsOfPinsForNotesOfOutputsWithoutTheWord)
{
    SETTING setting;
    LIMIT limit;
    limit.m_kind = LIMIT_KIND::PIN_MAX;
    limit.m_value = RATIONAL(40 * MEGA);
    limit.m_source = "test";
    setting.m_limits.set(limit);
    EXPECT_EQ("", setting.judge());
    EXPECT_TRUE(setting.m_verdict.m_met);
    EXPECT_TRUE(setting.has_warning(WARNING_KIND::NOTE));
    setting.m_request.m_outputs[0].m_pin = true;
    EXPECT_EQ("BROKEN external_output_max: output 1 50 MHz, legal is at most 40 MHz (test)\n",
              setting.judge());
}

TEST(Verdict, TellsTheSlackWhereItIsUsedAndNoFurther)
{
    SETTING setting;
    LIMIT limit;
    limit.m_kind = LIMIT_KIND::VCO_MAX;
    limit.m_has_slack = true;
    limit.m_source = "test";
    // The VCO's period is 1666.667 ps; 1667.667 ps is the last limit that it is within 1 ps of.
    limit.m_value = RATIONAL(power_of_ten(15), 1667666);
    setting.m_limits.remove(LIMIT_KIND::VCO_MAX);
    setting.m_limits.set(limit);
    EXPECT_EQ("", setting.judge());
    EXPECT_TRUE(setting.has_warning(WARNING_KIND::SLACK_USED));
    limit.m_value = RATIONAL(power_of_ten(15), 1667667);
    setting.m_limits.set(limit);
    EXPECT_NE("", setting.judge());
    limit.m_has_slack = false;
    limit.m_value = RATIONAL(599999999);
    setting.m_limits.set(limit);
    EXPECT_NE("", setting.judge());
    EXPECT_FALSE(setting.has_warning(WARNING_KIND::SLACK_USED));
}

TEST(Verdict, WarnsOfALimitThatIsNearerThanTheMargin)
{
    // The input runs at a tenth of its limit, the VCO at 60 % of its own.
    SETTING setting;
    setting.m_request.m_margins.m_limit_percent = 40.0;
    setting.judge();
    EXPECT_FALSE(setting.has_warning(WARNING_KIND::NEAR_LIMIT));
    setting.m_request.m_margins.m_limit_percent = 40.1;
    setting.judge();
    EXPECT_TRUE(setting.has_warning(WARNING_KIND::NEAR_LIMIT));
}

TEST(Verdict, CountsPhasesOfOneOutputFromAnother)
{
    REQUEST request = request_of("100", {"100", "100"});
    request.m_outputs[0].m_phase = RATIONAL(45);
    request.m_outputs[1].m_phase = RATIONAL(90);
    request.m_outputs[1].m_phase_to = 0;
    EXPECT_EQ(RATIONAL(135), phase_to_input(request, 1));
    const LIMITS limits;
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    EXPECT_TRUE(answer.is_met());
    EXPECT_DOUBLE_EQ(135.0, answer.get_outputs()[1].m_phase.m_achieved);
}

TEST(Request, TellsItsFirstProblem)
{
    const auto problem_of = [](auto change) {
        REQUEST request = request_of("100", {"50", "25"});
        change(&request);
        const auto problem = find_problem(request, PLL_MAX_TAPS);
        return problem ? problem->m_field : std::string();
    };
    EXPECT_EQ("", problem_of([](REQUEST*) {}));
    EXPECT_EQ("outputs", problem_of([](REQUEST* r) { r->m_outputs.clear(); }));
    EXPECT_EQ("input", problem_of([](REQUEST* r) { r->m_input = make_input(RATIONAL(1)); }));
    EXPECT_EQ("frequency",
              problem_of([](REQUEST* r) { r->m_outputs[1].m_ratio = RATIONAL(1, 3000000000); }));
    EXPECT_EQ("phase", problem_of([](REQUEST* r) { r->m_outputs[0].m_phase = RATIONAL(361); }));
    EXPECT_EQ("phase", problem_of([](REQUEST* r) { r->m_outputs[0].m_phase_to = 2; }));
    EXPECT_EQ("phase", problem_of([](REQUEST* r) {
                  r->m_outputs[0].m_phase_to = 1;
                  r->m_outputs[1].m_phase_to = 0;
              }));
    EXPECT_EQ("duty", problem_of([](REQUEST* r) { r->m_outputs[0].m_duty = RATIONAL(100); }));
    EXPECT_EQ("delay", problem_of([](REQUEST* r) { r->m_outputs[0].m_delay = 3001; }));
    EXPECT_EQ("spread", problem_of([](REQUEST* r) { r->m_spread = RATIONAL(1); }));
    EXPECT_EQ("feedback", problem_of([](REQUEST* r) { r->m_feedback = 2; }));
    EXPECT_EQ("vco_ratio", problem_of([](REQUEST* r) { r->m_vco_ratio = RATIONAL(3000000000); }));
}

}  // namespace
}  // namespace advice
