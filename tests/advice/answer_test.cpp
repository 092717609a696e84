#include "builders.h"

#include "pll_manager.h"

#include <gtest/gtest.h>

namespace advice {
namespace {

TEST(Answer, IsTheLibrarysOwnWhereThatIsMet)
{
    const REQUEST request = request_of("27", {"148.5", "74.25"});
    const LIMITS limits;
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    PLL pll(2, PLL_MAX_TAPS);
    ASSERT_TRUE(pll.synthesize(to_prop(request)));
    EXPECT_TRUE(answer.is_met());
    EXPECT_EQ(ORIGIN::FIRST_ANSWER, answer.get_origin());
    EXPECT_EQ(pll.get_m(), answer.get_pll().get_m());
    EXPECT_EQ(pll.get_n(), answer.get_pll().get_n());
    EXPECT_EQ(RATIONAL(148500000), answer.get_outputs()[0].m_frequency);
    EXPECT_EQ("MET: every output is exact; judged: frequency, phase, duty cycle and 10 limits",
              headline(request, answer.get_verdict()));
}

TEST(Answer, MissesWhatIsOffByAThousandth)
{
    REQUEST request = request_of("27", {"148.5/1.001"});
    const LIMITS limits;
    const ANSWER first = solve(request, limits, EFFORT::FIRST_ANSWER_ONLY);
    EXPECT_FALSE(first.is_met());
    EXPECT_TRUE(first.is_met_by_library());
    EXPECT_EQ(RATIONAL(1, 1000), first.get_outputs()[0].m_error);
    request.m_tolerances.m_frequency = RATIONAL(1, 1000);
    EXPECT_TRUE(solve(request, limits, EFFORT::FIRST_ANSWER_ONLY).is_met());
    request.m_tolerances.m_frequency = RATIONAL(999999, 1000000000);
    EXPECT_FALSE(solve(request, limits, EFFORT::FIRST_ANSWER_ONLY).is_met());
}

TEST(Answer, KeepsATightToleranceWithAPhase)
{
    REQUEST request = request_of("33.333", {"12.288", "12.288"});
    request.m_outputs[1].m_phase = RATIONAL(25, 2);
    request.m_tolerances.m_frequency = RATIONAL(5, MEGA);
    const LIMITS limits;
    EXPECT_FALSE(solve(request, limits, EFFORT::FIRST_ANSWER_ONLY).is_met());
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    EXPECT_TRUE(answer.is_met()) << misses_of(request, answer.get_verdict());
    EXPECT_EQ(RATIONAL(87, 4), RATIONAL(answer.get_pll().get_m(), answer.get_pll().get_n()));
}

TEST(Answer, TakesAWideToleranceForAnother)
{
    REQUEST request = request_of("27", {"148.5", "24.576"});
    const LIMITS limits;
    EXPECT_FALSE(solve(request, limits, EFFORT::THOROUGH).is_met());
    request.m_outputs[1].m_tolerances.m_frequency = RATIONAL(2, 100);
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    EXPECT_TRUE(answer.is_met()) << misses_of(request, answer.get_verdict());
}

TEST(Answer, JudgesThePhaseOfEveryOutput)
{
    REQUEST request = request_of("100", {"400"});
    request.m_outputs[0].m_phase = RATIONAL(10);
    const LIMITS limits;
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    EXPECT_FALSE(answer.is_met());
    EXPECT_EQ("MISSED phase of output 1: 0 deg for 10, steps of 22.5\n",
              misses_of(request, answer.get_verdict()));
    request.m_outputs[0].m_tolerances.m_phase = RATIONAL(10);
    EXPECT_TRUE(solve(request, limits, EFFORT::THOROUGH).is_met());
}

TEST(Answer, IsTheSameWhenTheLibraryIsAskedAgain)
{
    REQUEST request = request_of("33.333", {"12.288", "12.288"});
    request.m_outputs[1].m_phase = RATIONAL(25, 2);
    request.m_tolerances.m_frequency = RATIONAL(5, MEGA);
    const LIMITS limits;
    const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
    ASSERT_EQ(ORIGIN::FURTHER_SEARCH, answer.get_origin());
    PLL pll(2, PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    pll.m_n.m_min_count = std::max(1, answer.get_least_n());
    EXPECT_TRUE(pll.synthesize(answer.get_asked()));
    EXPECT_EQ(answer.get_pll().get_m(), pll.get_m());
    EXPECT_EQ(answer.get_pll().m_taps[1].m_high, pll.m_taps[1].m_high);
    EXPECT_EQ(answer.get_pll().m_taps[1].m_initial, pll.m_taps[1].m_initial);
}

class AnswerOfADevice : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_manager.read(PLL_DATA_DIR "/sample"));
        PLL_QUERY query;
        query.m_family = "Chervil";
        query.m_type = ENHANCED_PLL;
        query.m_part = "CH30-6";
        ASSERT_TRUE(m_limits.take_device(&m_manager, query));
    }

    PLL_MANAGER m_manager;
    LIMITS m_limits;
};

TEST_F(AnswerOfADevice, KeepsWhatTheSearchDoesNotKnow)
{
    REQUEST request = request_of("100", {"900"});
    const ANSWER answer = solve(request, m_limits, EFFORT::THOROUGH);
    EXPECT_FALSE(answer.is_met());
    EXPECT_TRUE(answer.is_met_by_library());
    EXPECT_EQ("BROKEN output_max: output 1 900 MHz, legal is at most ~454.545455 MHz (output_min, "
              "database)\n",
              misses_of(request, answer.get_verdict()));
}

TEST_F(AnswerOfADevice, JudgesDelayChains)
{
    REQUEST request = request_of("100", {"50", "50"});
    request.m_outputs[0].m_delay = 3000;
    request.m_outputs[1].m_delay = 123;
    const ANSWER answer = solve(request, m_limits, EFFORT::THOROUGH);
    EXPECT_FALSE(answer.is_met());
    const std::string misses = misses_of(request, answer.get_verdict());
    EXPECT_NE(std::string::npos, misses.find("BROKEN delay_max: ")) << misses;
    EXPECT_NE(std::string::npos, misses.find("BROKEN delay_resolution: ")) << misses;
}

}  // namespace
}  // namespace advice
