// The verifier accepts good results, and objects when any one promise is broken.
#include "verifier.h"

#include <gtest/gtest.h>

namespace {

// A request, its limits and a good result, to be spoiled.
struct GOOD_RESULT
{
    explicit GOOD_RESULT(int taps)
        : m_request(taps), m_before(taps, PLL_MAX_TAPS), m_result(taps, PLL_MAX_TAPS)
    {
        m_request.m_fin_period = 10000;
        for (int i = 0; i < taps; ++i) {
            m_request.m_taps[i].m_mult = 3 + i;
            m_request.m_taps[i].m_div = 2;
        }
    }

    bool synthesize()
    {
        m_result = m_before;
        return m_result.synthesize(m_request);
    }

    VERDICT judge() const { return verify_result(m_request, m_before, m_result); }

    std::string objections() const
    {
        std::string text;
        for (const std::string& objection : judge().m_objections) {
            text += objection + '\n';
        }
        return text;
    }

    std::string remarks() const
    {
        std::string text;
        for (const std::string& remark : judge().m_remarks) {
            text += remark + '\n';
        }
        return text;
    }

    PLL_PROP m_request;
    PLL m_before;
    PLL m_result;
};

// One way to break a good result of two clocks, and the objection that must follow.
struct SPOILING
{
    const char* m_name;
    const char* m_objection;
    void (*m_spoil)(GOOD_RESULT* good);
};

// clang-format off
const SPOILING SPOILINGS[] = {
    {"M too large", "M is outside its counter",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_count = 513; }},
    {"M of nothing", "M is outside its counter",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_count = 0; }},
    {"another M", "frequency off by a thousandth",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_count += 1; }},
    {"N too small", "N is outside its counter",
     [](GOOD_RESULT* g) { g->m_result.m_n.m_count = 0; }},
    {"N too large", "N is outside its counter",
     [](GOOD_RESULT* g) { g->m_before.m_n.m_max_count = 0; }},
    {"another N", "frequency off by a thousandth",
     [](GOOD_RESULT* g) { g->m_result.m_n.m_count += 1; }},
    {"start of M", "the start of M",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_initial = 0; }},
    {"VCO tap of M", "M is fed by a VCO tap",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_vco_tap = PLL_VCO_TAPS_NUMBER; }},
    {"VCO tap of M beyond its own limit", "M is fed by a VCO tap",
     [](GOOD_RESULT* g) { g->m_result.m_m.m_vco_tap = 3; g->m_before.m_m.m_max_vco_tap = 2; }},
    {"post-scale", "post-scale is none of the device's",
     [](GOOD_RESULT* g) { g->m_result.m_vco_post_scale = 2; }},
    {"feedback", "the feedback is not the one asked for",
     [](GOOD_RESULT* g) { g->m_result.m_feedback_tap = 1; }},
    {"too few taps", "number of taps in use",
     [](GOOD_RESULT* g) { g->m_result.m_total_taps_count = 1; }},
    {"too many taps", "number of taps in use",
     [](GOOD_RESULT* g) { g->m_result.m_total_taps_count = PLL_MAX_TAPS + 1; }},
    {"cascade from nowhere", "its source is no cascade tap",
     [](GOOD_RESULT* g) { g->m_result.m_taps[0].m_previous_tap = 1; }},
    {"cascade index", "its source is no cascade tap",
     [](GOOD_RESULT* g) { g->m_result.m_taps[0].m_previous_tap = 77; }},
    {"cascade on a device without", "cascaded on a device that cannot",
     [](GOOD_RESULT* g) {
         g->m_result.m_taps[0].m_previous_tap = 2;
         g->m_result.m_total_taps_count = 3;
     }},
    {"shared source", "its source feeds another output",
     [](GOOD_RESULT* g) {
         g->m_before.m_output_counter_cascade = true;
         g->m_result.m_total_taps_count = 3;
         g->m_result.m_taps[0].m_previous_tap = 2;
         g->m_result.m_taps[1].m_previous_tap = 2;
     }},
    {"cascade in a ring", "its source has a source",
     [](GOOD_RESULT* g) {
         g->m_before.m_output_counter_cascade = true;
         g->m_result.m_total_taps_count = 3;
         g->m_result.m_taps[0].m_previous_tap = 2;
         g->m_result.m_taps[2].m_previous_tap = 2;
     }},
    {"high count", "output 0: high or low count outside",
     [](GOOD_RESULT* g) { g->m_before.m_taps[0].m_max_count = 0; }},
    {"low count", "output 1: high or low count outside",
     [](GOOD_RESULT* g) { g->m_result.m_taps[1].m_low = 513; }},
    {"sum of halves", "output 1: high and low count do not add up",
     [](GOOD_RESULT* g) { g->m_result.m_taps[1].m_count += 1; }},
    {"bypass", "output 0: bypassed",
     [](GOOD_RESULT* g) { g->m_result.m_taps[0].m_bypass = !g->m_result.m_taps[0].m_bypass; }},
    {"never low", "output 0: never high or never low",
     [](GOOD_RESULT* g) {
         g->m_result.m_taps[0].m_high = g->m_result.m_taps[0].m_count;
         g->m_result.m_taps[0].m_low = 0;
     }},
    {"VCO tap", "output 1: fed by a VCO tap",
     [](GOOD_RESULT* g) { g->m_result.m_taps[1].m_vco_tap = -1; }},
    {"start", "output 1: start outside",
     [](GOOD_RESULT* g) { g->m_result.m_taps[1].m_initial = 513; }},
    {"score", "output 0: marked as missed",
     [](GOOD_RESULT* g) { g->m_result.m_taps[0].m_score = false; }},
    {"another count", "output 1: frequency off",
     [](GOOD_RESULT* g) { g->m_result.m_taps[1].m_high += 1; g->m_result.m_taps[1].m_count += 1; }},
    {"VCO too fast", "VCO or PFD outside its range",
     [](GOOD_RESULT* g) { g->m_before.m_vco_min_period[1] = 3333; }},
    {"VCO too slow", "VCO or PFD outside its range",
     [](GOOD_RESULT* g) { g->m_before.m_vco_max_period[1] = 1000; }},
    {"PFD too fast", "VCO or PFD outside its range",
     [](GOOD_RESULT* g) { g->m_before.m_pfd_min_period = 300000; }},
    {"PFD too slow", "VCO or PFD outside its range",
     [](GOOD_RESULT* g) { g->m_before.m_pfd_max_period = 9998; }},
    {"second input out of range", "VCO or PFD outside its range",
     [](GOOD_RESULT* g) { g->m_request.m_fin2_period = 400000; }},
    {"VCO period", "the VCO period is not the one",
     [](GOOD_RESULT* g) { g->m_result.m_vco_period += 1.0; }},
    {"VCO ratio", "the VCO does not run at the ratio",
     [](GOOD_RESULT* g) { g->m_request.m_vco_mult = 1; g->m_request.m_vco_div = 7; }},
    {"spread too high", "the down spread is too high",
     [](GOOD_RESULT* g) { g->m_request.m_down_spread = 0.007; }},
    {"spread missing", "M spreads by another amount",
     [](GOOD_RESULT* g) { g->m_request.m_down_spread = 0.005; g->m_result.m_m.m_ss_count = 1; }},
    {"spread of N", "N changes with the spread",
     [](GOOD_RESULT* g) { g->m_request.m_down_spread = 0.005; g->m_result.m_n.m_ss_count = 99; }},
    {"modulation period", "the modulation period is outside",
     [](GOOD_RESULT* g) { g->m_request.m_down_spread = 0.005; g->m_result.m_ss_cycles = 32769; }},
    {"input", "the input clock is too fast",
     [](GOOD_RESULT* g) { g->m_before.m_fin_min_period = 10001; }},
    {"second input", "the second input clock is too fast",
     [](GOOD_RESULT* g) { g->m_request.m_fin2_period = 9999; g->m_before.m_fin_min_period = 10000; }},
    {"resistor", "the loop-filter resistor is none",
     [](GOOD_RESULT* g) { g->m_request.m_bandwidth_type = 1; g->m_result.m_r = 1234.0; }},
    {"current", "the charge-pump current is none",
     [](GOOD_RESULT* g) { g->m_request.m_bandwidth_type = 1; g->m_result.m_i = 51.0; }},
    {"delay", "output 0: delay chain set beyond its end",
     [](GOOD_RESULT* g) { g->m_result.m_taps[0].m_delay = 3001; }},
};
// clang-format on

}  // namespace

TEST(Verifier, AcceptsWhatWasSynthesised)
{
    GOOD_RESULT good(2);
    ASSERT_TRUE(good.synthesize());
    EXPECT_EQ("", good.objections());
    EXPECT_EQ("", good.remarks());
}

TEST(Verifier, ObjectsToEachBrokenPromise)
{
    for (const SPOILING& spoiling : SPOILINGS) {
        SCOPED_TRACE(spoiling.m_name);
        GOOD_RESULT good(2);
        ASSERT_TRUE(good.synthesize());
        spoiling.m_spoil(&good);
        EXPECT_NE(std::string::npos, good.objections().find(spoiling.m_objection))
            << good.objections();
    }
}

TEST(Verifier, ToleratesOnePicosecondOnEveryBound)
{
    GOOD_RESULT good(1);
    ASSERT_TRUE(good.synthesize());
    const double vco = good.m_result.get_vco_period();
    const int pfd = good.m_request.m_fin_period * good.m_result.get_n();
    good.m_before.m_vco_min_period[1] = static_cast<int>(vco) + 1;
    good.m_before.m_pfd_min_period = pfd + 1;
    EXPECT_EQ("", good.objections());
    good.m_before.m_pfd_min_period = pfd + 2;
    EXPECT_NE("", good.objections());
}

TEST(Verifier, AcceptsErrorsBelowAThousandthOnly)
{
    GOOD_RESULT good(1);
    good.m_request.m_taps[0].m_mult = 3000;
    good.m_request.m_taps[0].m_div = 2000;
    ASSERT_TRUE(good.synthesize());
    good.m_request.m_taps[0].m_mult = 3002;
    EXPECT_EQ("", good.objections());
    good.m_request.m_taps[0].m_mult = 3004;
    EXPECT_NE("", good.objections());
}

TEST(Verifier, SeesThroughTheCommonFactorOfTheLoopFilter)
{
    GOOD_RESULT good(1);
    ASSERT_TRUE(good.synthesize());
    const int pfd = good.m_request.m_fin_period * good.m_result.get_n();
    good.m_before.m_pfd_max_period = pfd;
    good.m_result.m_m.m_count *= 2;
    good.m_result.m_n.m_count *= 2;
    EXPECT_NE("", good.objections()) << "nothing multiplies without a bandwidth";
    good.m_request.m_bandwidth_type = 1;
    good.m_result.m_r = 1021.0;
    good.m_result.m_i = 4.0;
    EXPECT_EQ("", good.objections());
}

TEST(Verifier, CountsTheOutputInTheFeedback)
{
    GOOD_RESULT good(2);
    good.m_request.m_feedback_tap = 0;
    good.m_request.m_taps[0].m_mult = 1;
    good.m_request.m_taps[0].m_div = 1;
    ASSERT_TRUE(good.synthesize());
    EXPECT_EQ("", good.objections());
    good.m_result.m_m.m_count += 1;
    EXPECT_NE("", good.objections());
}

TEST(Verifier, CountsCascades)
{
    GOOD_RESULT good(1);
    good.m_before.m_output_counter_cascade = true;
    good.m_before.m_taps[0].m_max_count = 4;
    good.m_request.m_taps[0].m_mult = 1;
    good.m_request.m_taps[0].m_div = 4;
    ASSERT_TRUE(good.synthesize());
    ASSERT_EQ(1, good.m_result.m_taps[0].m_previous_tap);
    EXPECT_EQ("", good.objections());
    good.m_result.m_taps[1].m_low += 1;
    good.m_result.m_taps[1].m_count += 1;
    EXPECT_NE("", good.objections());
}

TEST(Verifier, HoldsTheRuleOfThePfd)
{
    GOOD_RESULT good(1);
    PLL_BASIC_INFO info;
    info.m_is_pfd_bandwidth_rule_an_error = true;
    good.m_before.m_info.m_basic_info = &info;
    ASSERT_TRUE(good.synthesize());
    EXPECT_EQ("", good.objections());
    good.m_result.m_bandwidth_legal_for_fin = false;
    EXPECT_NE("", good.objections());
}

TEST(Verifier, RemarksOnMissedWishesWithoutObjecting)
{
    GOOD_RESULT good(1);
    ASSERT_TRUE(good.synthesize());
    good.m_request.m_taps[0].m_phase = 40.0;
    good.m_request.m_taps[0].m_duty = 20;
    good.m_result.m_n.m_delay = -1;
    EXPECT_EQ("", good.objections());
    const std::string remarks = good.remarks();
    EXPECT_NE(std::string::npos, remarks.find("output 0: phase off by 40 degrees"));
    EXPECT_NE(std::string::npos, remarks.find("output 0: duty cycle off by 30 percent"));
    EXPECT_NE(std::string::npos, remarks.find("delay chain of M or N set outside its range"));
}
