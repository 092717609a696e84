// The traces "debug.log" and "pdebug.log", and the files in the current directory that switch them.
#include "golden.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <locale>
#include <sys/stat.h>

namespace {

void switch_on()
{
    write_file("pll_debug", "");
}

// From 6000 ps, M 2 to 4 with N 1 all meet 1/1 at no cost: two ties.
struct TIES : SMALL_PLL
{
    TIES() : SMALL_PLL(1, 4, 1) { m_request.m_fin_period = 6000; }
};

TEST(GoldenTrace, ShowsTiesInTheUsersView)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    TIES box;
    EXPECT_TRUE(box.synthesize());
    EXPECT_TRUE(box.m_pll.m_debug);
    expect_golden(read_file("debug.log"), "trace_ties_debug.log");
    expect_golden(read_file("pdebug.log"), "trace_ties_pdebug.log");
}

TEST(GoldenTrace, ShowsMissesBeforeAndBehindTheBest)
{
    // Only M 3 meets 3/1.
    const TEMP_WORKING_DIR dir;
    switch_on();
    TIES box;
    box.set_ratio(0, 3, 1);
    EXPECT_TRUE(box.synthesize());
    expect_golden(read_file("debug.log"), "trace_miss_debug.log");
    EXPECT_FALSE(file_exists("pdebug.log"));
}

TEST(GoldenTrace, ShowsARequestWithoutCandidates)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    TIES box;
    box.m_request.m_fin_period = 100000;
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 1.5e6;
    EXPECT_FALSE(box.synthesize());
    expect_golden(read_file("debug.log"), "trace_none_debug.log");
}

TEST(GoldenTrace, ShowsCascadeFeedbackAndPostScale)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    SMALL_PLL box(2, 2, 1);
    box.m_pll.m_max_vco_post_scale = 2;
    box.m_pll.m_vco_min_period[1] = 3000;
    box.m_pll.m_output_counter_cascade = true;
    box.m_request.m_feedback_tap = 0;
    box.tap(1).m_max_count = 3;
    box.set_ratio(1, 1, 6);
    EXPECT_TRUE(box.synthesize());
    expect_golden(read_file("debug.log"), "trace_cascade_debug.log");
}

TEST(GoldenTrace, OfTheAchievedPropertiesShowsBothRecords)
{
    const TEMP_WORKING_DIR dir;
    TIES box;
    EXPECT_TRUE(box.synthesize());
    box.m_pll.m_debug = true;
    PLL_PROP result(1);
    result.m_fin_period = 6000;
    result.set_properties_from_internals(box.m_pll);
    expect_golden(read_file("pdebug.log"), "trace_achieved_pdebug.log");
    EXPECT_FALSE(file_exists("debug.log"));
}

TEST(GoldenTrace, OfTheAchievedPropertiesShowsTheFrequencyOfASpread)
{
    const TEMP_WORKING_DIR dir;
    PLL pll(1, 10);
    pll.m_debug = true;
    pll.m_m.m_count = 200;
    pll.m_m.m_ss_count = 199;
    pll.m_ss_cycles = 66;
    pll.m_taps[0].m_count = 200;
    pll.m_taps[0].m_high = 100;
    pll.m_taps[0].m_low = 100;
    pll.m_taps[0].m_bypass = false;
    PLL_PROP result(1);
    result.m_fin_period = 300000;
    result.set_properties_from_internals(pll);
    expect_golden(read_file("pdebug.log"), "trace_spread_pdebug.log");
}

// ---- Switches

TEST(GoldenTraceSwitch, WritesOnlyWithTheFirstFileAndWithoutTheSecond)
{
    for (bool with_debug : {false, true}) {
        for (bool with_no_debug : {false, true}) {
            SCOPED_TRACE(with_debug);
            SCOPED_TRACE(with_no_debug);
            const TEMP_WORKING_DIR dir;
            if (with_debug) {
                write_file("pll_debug", "");
            }
            if (with_no_debug) {
                write_file("pll_nodebug", "whatever it says");
            }
            TIES box;
            EXPECT_TRUE(box.synthesize());
            PLL_PROP result(1);
            result.set_properties_from_internals(box.m_pll);
            const bool on = with_debug && !with_no_debug;
            EXPECT_EQ(on, box.m_pll.m_debug);
            EXPECT_EQ(on, file_exists("debug.log"));
            EXPECT_EQ(on, file_exists("pdebug.log"));
        }
    }
}

TEST(GoldenTraceSwitch, LeavesASwitchThatTheHostSet)
{
    const TEMP_WORKING_DIR dir;
    TIES box;
    box.m_pll.m_debug = true;
    EXPECT_TRUE(box.synthesize());
    EXPECT_TRUE(box.m_pll.m_debug);
    expect_golden(read_file("debug.log"), "trace_ties_debug.log");
    write_file("pll_nodebug", "");
    EXPECT_TRUE(box.synthesize());
    EXPECT_FALSE(box.m_pll.m_debug);
    expect_golden(read_file("debug.log"), "trace_ties_debug.log");
}

TEST(GoldenTraceSwitch, IsNotLookedForByAHostThatDoesNotWantIt)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    PLL::obey_debug_switch(false);
    TIES quiet;
    EXPECT_TRUE(quiet.synthesize());
    EXPECT_FALSE(quiet.m_pll.m_debug);
    EXPECT_FALSE(file_exists("debug.log"));

    write_file("pll_nodebug", "");
    TIES debugged_by_host;
    debugged_by_host.m_pll.m_debug = true;
    EXPECT_TRUE(debugged_by_host.synthesize());
    EXPECT_TRUE(debugged_by_host.m_pll.m_debug);
    expect_golden(read_file("debug.log"), "trace_ties_debug.log");

    PLL::obey_debug_switch(true);
    EXPECT_TRUE(debugged_by_host.synthesize());
    EXPECT_FALSE(debugged_by_host.m_pll.m_debug);
}

TEST(GoldenTraceSwitch, WritesThroughNoLink)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    write_file("target", "theirs\n");
    std::filesystem::create_symlink("target", "debug.log");
    std::filesystem::create_symlink("target", "pdebug.log");
    TIES box;
    EXPECT_TRUE(box.synthesize());
    PLL_PROP result(1);
    result.set_properties_from_internals(box.m_pll);
    EXPECT_EQ("theirs\n", read_file("target"));
}

TEST(GoldenTraceSwitch, CanBeADirectory)
{
    const TEMP_WORKING_DIR dir;
    std::filesystem::create_directory("pll_debug");
    TIES box;
    EXPECT_TRUE(box.synthesize());
    EXPECT_TRUE(file_exists("debug.log"));
}

TEST(GoldenTraceSwitch, AppendsToWhatIsThere)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    write_file("debug.log", "what was there\n");
    write_file("pdebug.log", "here too\n");
    TIES first;
    EXPECT_TRUE(first.synthesize());
    const std::string debug = read_file(golden_path("trace_ties_debug.log"));
    const std::string pdebug = read_file(golden_path("trace_ties_pdebug.log"));
    EXPECT_EQ("what was there\n" + debug, read_file("debug.log"));
    EXPECT_EQ("here too\n" + pdebug, read_file("pdebug.log"));
    TIES second;
    EXPECT_TRUE(second.synthesize());
    EXPECT_EQ("what was there\n" + debug + debug, read_file("debug.log"));
    EXPECT_EQ("here too\n" + pdebug + pdebug, read_file("pdebug.log"));
}

TEST(GoldenTraceSwitch, MakesFilesThatEveryoneMayWriteButForTheMask)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    const mode_t mask = umask(0);
    TIES box;
    EXPECT_TRUE(box.synthesize());
    umask(mask);
    for (const char* name : {"debug.log", "pdebug.log"}) {
        struct stat status = {};
        ASSERT_EQ(0, stat(name, &status));
        EXPECT_EQ(0666U, status.st_mode & 07777U) << name;
    }
}

TEST(GoldenTraceSwitch, LosesTheTraceThatCannotBeWritten)
{
    const TEMP_WORKING_DIR dir;
    switch_on();
    std::filesystem::create_directory("debug.log");
    std::filesystem::create_directory("pdebug.log");
    TIES box;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(4, box.m_pll.get_m());
    EXPECT_TRUE(std::filesystem::is_empty("debug.log"));
}

TEST(GoldenTraceSwitch, ChangesNothingElse)
{
    const TEMP_WORKING_DIR dir;
    TIES silent;
    EXPECT_TRUE(silent.synthesize());
    switch_on();
    TIES traced;
    EXPECT_TRUE(traced.synthesize());
    EXPECT_EQ(silent.m_pll.get_m(), traced.m_pll.get_m());
    EXPECT_EQ(silent.m_pll.m_cost, traced.m_pll.m_cost);
    EXPECT_EQ(silent.tap(0).m_next_phase_degree, traced.tap(0).m_next_phase_degree);
    EXPECT_EQ(silent.tap(0).m_next_duty_cycle, traced.tap(0).m_next_duty_cycle);
}

}  // namespace
