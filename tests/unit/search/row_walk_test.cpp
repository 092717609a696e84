// The walk over the rows of M: where it jumps to, and where it ends.
#include "search/evaluation.h"
#include "synthesis_builders.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

using namespace pll_internal;

namespace {

// One output at the frequency of the input, of an even count if possible. M 2 is the one setting of
// the first post-scale: exact, but with odd halves. Every M from 4 up would be cheaper at the
// second one, which is legal at one M only.
class ONE_M_EACH
{
public:
    // `vco_period` is that of the second post-scale, ps.
    explicit ONE_M_EACH(int vco_period) : m_box(1, 12, 1)
    {
        m_box.m_request.m_fin_period = 10000;
        m_box.m_request.m_bandwidth_type = 3;
        m_box.clock(0).m_use_even_counter_value = true;
        m_box.set_vco(5000, 5000, 5000);
        m_box.m_pll.m_max_vco_post_scale = 2;
        m_box.m_pll.m_vco_min_period[2] = vco_period;
        m_box.m_pll.m_vco_max_period[2] = vco_period;
    }

    void expect(int m, int post_scale)
    {
        EXPECT_TRUE(m_box.synthesize());
        EXPECT_EQ(m, m_box.m_pll.get_m());
        EXPECT_EQ(post_scale, m_box.m_pll.m_vco_post_scale);
    }

    SMALL_PLL m_box;
};

constexpr int VCO_AT_M_8 = 1250;
constexpr int VCO_AT_M_9 = 1111;
constexpr int VCO_AT_M_12 = 833;

TEST(RowWalk, GivesNoMoreToDebuggersThanTheCutOffAllows)
{
    const TEMP_WORKING_DIR here;
    for (const bool debug : {false, true}) {
        SCOPED_TRACE(debug);
        const auto expect = [=](int vco_period, int m, int post_scale) {
            ONE_M_EACH box(vco_period);
            box.m_box.m_pll.m_debug = debug;
            box.expect(m, post_scale);
        };
        expect(VCO_AT_M_8, 8, 2);
        expect(VCO_AT_M_9, 2, 1);
        expect(VCO_AT_M_12, 2, 1);
    }
}

// A phase that no clock asks for, but large enough that the walk alone serves the request.
TEST(RowWalk, AsksForTheCutOffWhereItJumpsTo)
{
    const auto expect = [](int vco_period, int m, int post_scale) {
        ONE_M_EACH box(vco_period);
        box.m_box.clock(0).m_sclkout_phase = 2e9;
        box.expect(m, post_scale);
    };
    expect(VCO_AT_M_8, 8, 2);
    expect(VCO_AT_M_9, 2, 1);
    expect(VCO_AT_M_12, 2, 1);
}

}  // namespace
