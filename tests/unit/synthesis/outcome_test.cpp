// Unit tests of what a synthesis says of itself: its outcome, and the grade of each output.
#include "pll_outcome.h"

#include "error_guard.h"
#include "random_ratio_request.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Outcome, OfAFreshPllIsNone)
{
    const PLL pll(1, PLL_MAX_TAPS);
    EXPECT_EQ(pll.m_outcome.m_kind, PLL_OUTCOME_KIND::NONE);
    EXPECT_EQ(pll.m_outcome.m_refused_by, PLL_CHECK::NONE);
    EXPECT_EQ(pll.m_outcome.m_m, 0);
}

TEST(Outcome, OfAMetRequestHasItsSetting)
{
    ONE_CANDIDATE one(1);
    one.set_ratio(0, 2, 1);
    ASSERT_TRUE(one.synthesize());
    EXPECT_EQ(one.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::MET);
    EXPECT_EQ(one.m_pll.m_outcome.m_refused_by, PLL_CHECK::NONE);
    EXPECT_EQ(one.m_pll.m_outcome.m_m, 2);
    EXPECT_EQ(one.m_pll.m_outcome.m_n, 1);
}

TEST(Outcome, OfAMissedRequestHasTheNearestSetting)
{
    ONE_CANDIDATE one(1);
    one.set_ratio(0, 3, 1);
    ASSERT_FALSE(one.synthesize());
    EXPECT_EQ(one.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::MISSED);
    EXPECT_EQ(one.m_pll.m_outcome.m_m, 2);
}

TEST(Outcome, SaysThatNothingWasTried)
{
    ONE_CANDIDATE one(1);
    one.set_vco(1000, 1000, 1100);
    ASSERT_FALSE(one.synthesize());
    EXPECT_EQ(one.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::NOTHING_TRIED);
    EXPECT_EQ(one.m_pll.m_outcome.m_m, 0);
    EXPECT_EQ(pll_get_output_outcome(one.m_pll, one.m_request, 0).m_grade, PLL_GRADE::UNKNOWN);
}

// A met request that a check turns down, and how.
struct REFUSAL_CASE
{
    const char* m_name;
    void (*m_change)(ONE_CANDIDATE* one);
    PLL_CHECK m_check;
    PLL::PLL_ERROR_TYPE m_error;
};

// clang-format off
const REFUSAL_CASE REFUSAL_CASES[] = {
    // name                      change                                    check              error
    {"delays too far apart",     [](ONE_CANDIDATE* one) { one->clock(0).m_delay = 3001; },
     PLL_CHECK::DELAYS, PLL::PLL_DELAY_RANGE_TOO_WIDE},
    {"input too fast",           [](ONE_CANDIDATE* one) { one->m_pll.m_fin_min_period = 4001; },
     PLL_CHECK::INPUT,  PLL::PLL_FIN_OUT_OF_RANGE},
};
// clang-format on

TEST(Outcome, NamesTheCheckThatRefused)
{
    for (const REFUSAL_CASE& c : REFUSAL_CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE one(2);
        c.m_change(&one);
        ASSERT_FALSE(one.synthesize());
        EXPECT_EQ(one.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::REFUSED);
        EXPECT_EQ(one.m_pll.m_outcome.m_refused_by, c.m_check);
        EXPECT_EQ(one.m_pll.m_error, c.m_error);
        EXPECT_EQ(one.m_pll.m_outcome.m_m, 2);
    }
}

TEST(Outcome, KeepsWhatTheSearchFoundBesideASpreadThatIsTooHigh)
{
    SMALL_PLL met(1, 400, 1);
    met.m_request.m_fin_period = 400000;
    met.set_pfd(1000, 400000);
    met.m_request.m_down_spread = 0.0061;
    ASSERT_FALSE(met.synthesize());
    EXPECT_EQ(met.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::REFUSED);
    EXPECT_EQ(met.m_pll.m_outcome.m_refused_by, PLL_CHECK::SPREAD);

    SMALL_PLL missed(1, 400, 1);
    missed.m_request.m_fin_period = 400000;
    missed.set_pfd(1000, 400000);
    missed.m_request.m_down_spread = 0.0061;
    missed.set_ratio(0, 667, 2);
    ASSERT_FALSE(missed.synthesize());
    EXPECT_EQ(missed.m_pll.m_outcome.m_kind, PLL_OUTCOME_KIND::MISSED);
    EXPECT_EQ(missed.m_pll.m_outcome.m_refused_by, PLL_CHECK::SPREAD);
}

TEST(Outcome, NamesTheTableThatHasNoRow)
{
    DEVICE device(8);
    device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
    ONE_CANDIDATE without_row(1);
    device.describe(without_row.m_pll);
    ASSERT_FALSE(without_row.synthesize());
    EXPECT_EQ(without_row.m_pll.m_outcome.m_refused_by, PLL_CHECK::TABLE);

    device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 8;
    device.add_row(2, 1e6, 1e9);
    ONE_CANDIDATE too_fast(1);
    device.describe(too_fast.m_pll);
    ASSERT_FALSE(too_fast.synthesize());
    EXPECT_EQ(too_fast.m_pll.m_outcome.m_refused_by, PLL_CHECK::TABLE_FOR_INPUT);
}

TEST(Outcome, RefusesAFactorThatNoClockCanHave)
{
    ONE_CANDIDATE one(1);
    one.set_ratio(0, -2, -1);
    ASSERT_FALSE(one.synthesize());
    EXPECT_EQ(one.m_pll.m_outcome.m_refused_by, PLL_CHECK::RATIOS);
}

// ---- Outputs

PLL_OUTPUT_OUTCOME outcome_of(SMALL_PLL* small, int output)
{
    small->synthesize();
    return pll_get_output_outcome(small->m_pll, small->m_request, output);
}

TEST(OutputOutcome, GradesBothSidesOfAThousandth)
{
    struct
    {
        const char* m_name;
        int m_mult;
        int m_div;
        PLL_GRADE m_grade;
    } const CASES[] = {
        {"exact", 2, 1, PLL_GRADE::EXACT},
        {"a thousandth and a hair less", 20019, 10000, PLL_GRADE::NEARLY_MET},
        {"a thousandth and a hair more", 20021, 10000, PLL_GRADE::MISSED},
    };
    for (const auto& c : CASES) {
        SCOPED_TRACE(c.m_name);
        ONE_CANDIDATE one(1);
        one.set_ratio(0, c.m_mult, c.m_div);
        const PLL_OUTPUT_OUTCOME output = outcome_of(&one, 0);
        EXPECT_EQ(output.m_grade, c.m_grade);
        EXPECT_EQ(output.m_needed_count, 1);
        const double asked = double(c.m_mult) / c.m_div;
        EXPECT_DOUBLE_EQ(output.m_ratio_error, std::fabs(2.0 - asked));
        EXPECT_NEAR(output.m_relative_error, std::fabs(2.0 - asked) / asked, 1e-15);
    }
}

TEST(OutputOutcome, SaysWhatWasClamped)
{
    ONE_CANDIDATE halves(1);
    halves.set_ratio(0, 2, 9);
    halves.tap(0).m_max_count = 4;
    const PLL_OUTPUT_OUTCOME cut = outcome_of(&halves, 0);
    EXPECT_EQ(cut.m_clamp, PLL_CLAMP::HALVES);
    EXPECT_EQ(cut.m_needed_count, 9);
    EXPECT_EQ(cut.m_ratio_error, 0.0);
    EXPECT_EQ(cut.m_grade, PLL_GRADE::MISSED);

    ONE_CANDIDATE bypass(1);
    bypass.set_ratio(0, 2, 3);
    bypass.tap(0).m_max_count = 1;
    EXPECT_EQ(outcome_of(&bypass, 0).m_clamp, PLL_CLAMP::BYPASS);

    ONE_CANDIDATE fits(1);
    fits.set_ratio(0, 2, 8);
    fits.tap(0).m_max_count = 4;
    EXPECT_EQ(outcome_of(&fits, 0).m_clamp, PLL_CLAMP::NONE);
}

TEST(OutputOutcome, SaysWhatTheFeedbackLeavesOver)
{
    SMALL_PLL small(1, 3, 1);
    small.set_vco(1000, 1333, 1500);  // M 3 alone
    small.set_ratio(0, 3, 2);
    small.m_request.m_feedback_tap = 0;
    const PLL_OUTPUT_OUTCOME output = outcome_of(&small, 0);
    EXPECT_EQ(small.m_pll.m_outcome.m_m, 3);
    EXPECT_EQ(output.m_feedback_rest, 1);
    EXPECT_EQ(output.m_ratio_error, 0.0);
    EXPECT_EQ(output.m_grade, PLL_GRADE::MISSED);
}

TEST(OutputOutcome, IsUnknownBesideTheRequest)
{
    ONE_CANDIDATE one(1);
    ASSERT_TRUE(one.synthesize());
    for (const int output : {-1, 1, PLL_MAX_TAPS}) {
        EXPECT_EQ(pll_get_output_outcome(one.m_pll, one.m_request, output).m_grade,
                  PLL_GRADE::UNKNOWN);
    }
}

TEST(VcoRatio, IsMetToTheLastDigitOnly)
{
    ONE_CANDIDATE one(1);
    one.m_request.m_vco_mult = 2;
    one.m_request.m_vco_div = 1;
    one.synthesize();
    EXPECT_TRUE(pll_is_vco_ratio_met(one.m_pll, one.m_request));
    one.m_request.m_vco_mult = 3;
    one.synthesize();
    EXPECT_FALSE(pll_is_vco_ratio_met(one.m_pll, one.m_request));
    one.m_request.m_vco_div = 0;
    EXPECT_TRUE(pll_is_vco_ratio_met(one.m_pll, one.m_request)) << "there is no wish";
}

// The grades are computed after the search and agree with what it noted on the way.
TEST(OutputOutcome, AgreesWithTheScoresOfRandomRequests)
{
    EXPECTED_REPORTS reports;  // of counters without counts
    reports.accept_all();
    RANDOM_RATIOS random(11);
    int graded = 0;
    for (int i = 0; i < 3000; ++i) {
        PLL_PROP request = random.request();
        request.m_vco_mult = 0;
        const std::unique_ptr<PLL> pll = random.pll(request, 12, 6);
        pll->m_output_counter_cascade = random.chance(30);
        const bool met = pll->synthesize(request);
        EXPECT_EQ(met, pll->m_outcome.m_kind == PLL_OUTCOME_KIND::MET);
        for (int output = 0; output < request.m_taps_count; ++output) {
            const PLL_GRADE grade = pll_get_output_outcome(*pll, request, output).m_grade;
            if (grade == PLL_GRADE::UNKNOWN) {
                continue;
            }
            ++graded;
            EXPECT_EQ(grade != PLL_GRADE::MISSED, pll->m_taps[output].m_score)
                << "request " << i << ", output " << output << ", count "
                << pll->get_combined_count(output);
        }
    }
    EXPECT_GT(graded, 1000);
}

// ---- What an earlier synthesis leaves behind

TEST(UsedPll, KeepsTheNeighboursOfAnEarlierRequest)
{
    PLL_PROP earlier(1);
    earlier.m_fin_period = 10000;
    earlier.m_taps[0].m_div = 4;
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    request.m_taps[0].m_div = 2;

    PLL fresh(1, PLL_MAX_TAPS);
    ASSERT_TRUE(fresh.synthesize(request));
    PLL used(1, PLL_MAX_TAPS);
    ASSERT_TRUE(used.synthesize(earlier));
    ASSERT_TRUE(used.synthesize(request));

    EXPECT_LT(used.m_taps[0].m_next_duty_cycle, fresh.m_taps[0].m_next_duty_cycle);
    EXPECT_EQ(used.m_m.m_count, fresh.m_m.m_count);
    EXPECT_EQ(used.m_taps[0].m_count, fresh.m_taps[0].m_count);
}

TEST(UsedPll, RanksWithTheCurrentThatItHas)
{
    DEVICE device(0);
    device.m_info.m_spe_ratio_constant_x = 1.0;
    const auto choose_m = [&device](double current) {
        SMALL_PLL small(1, 4, 1);
        small.m_request.m_fin_period = 4000;
        small.set_vco(1000, 1000, 2000);
        device.describe(small.m_pll);
        small.m_pll.m_i = current;
        EXPECT_TRUE(small.synthesize());
        return small.m_pll.m_m.m_count;
    };
    EXPECT_EQ(choose_m(50.0), 4);
    EXPECT_EQ(choose_m(2.5), 2);
}

}  // namespace
