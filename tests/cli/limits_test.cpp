// Limits by hand, the list of limits, and the family that is written to start from.

#include "program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

const std::string CHERVIL = " --database @DATA@/sample --family Chervil --part CH30-6";

// What `limits` says of one, as CSV: name,unit,limit,side,post_scale,with_spread,keyword,source.
std::string line_of(const std::string& words, const std::string& start)
{
    for (const std::string& line :
         split(run_pllcalc("limits --format csv" + words).m_output, '\n')) {
        if (line.rfind(start, 0) == 0) {
            return hide_data_folder(line);
        }
    }
    return "";
}

TEST(CliLimits, SayWhereTheyComeFrom)
{
    EXPECT_EQ("vco_max,hz,1000000000,most,1,false,,built in", line_of("", "vco_max"));
    EXPECT_EQ("output_max,hz,454545454.545455,most,0,false,output_min,"
              "@DATA@/sample/chervil/timing.txt:12",
              line_of(CHERVIL, "output_max"));
    EXPECT_EQ("vco_max,hz,1052631578.947368,most,1,false,vco_min_post_scale 1,"
              "@DATA@/sample/chervil/chervil_pll.txt:59",
              line_of(CHERVIL, "vco_max"));
    EXPECT_EQ("m_max,count,64,most,0,false,m_counter_max,"
              "@DATA@/sample/chervil/chervil_pll.txt:12",
              line_of(CHERVIL, "m_max"));
}

TEST(CliLimits, ByHandReplaceThoseOfTheDevice)
{
    EXPECT_EQ("vco_max,hz,1200000000,most,1,false,,option --vco",
              line_of(CHERVIL + " --vco 600-1200MHz", "vco_max"));
    EXPECT_EQ("m_max,count,128,most,0,false,,option --m", line_of(CHERVIL + " --m 1-128", "m_max"));
    EXPECT_EQ("", line_of(CHERVIL + " --k 1-256", "half_max"));
}

TEST(CliLimits, OfCombinedDevicesAreThoseOfTheOneThatSetsThem)
{
    // Of the two, Chervil has the narrower PFD and Sorrel the slower VCO.
    const std::string both = CHERVIL + " --migrate Sorrel:SR20-7";
    EXPECT_NE(std::string::npos, line_of(both, "pfd_max").find("/chervil/"))
        << line_of(both, "pfd_max");
    EXPECT_NE(std::string::npos, line_of(both, "vco_max").find("/sorrel/"))
        << line_of(both, "vco_max");
}

TEST(CliNewDevice, ReadsAndLintsCleanAndIsSynthesised)
{
    const TEMP_DIR folder;
    const std::string place = folder.path() + "/mallow";
    const RUN written = run_program(PLLCALC, {"new-device", "Mallow", "--directory", place});
    EXPECT_EQ(0, written.m_status) << written.m_errors;
    EXPECT_EQ(0, run_program(PLLCALC, {"lint", "-Werror", place}).m_status);
    const RUN run = run_program(PLLCALC, {"--database", place, "-i", "100", "-o", "50,pin"});
    EXPECT_EQ(0, run.m_status) << run.m_output << run.m_errors;
    const RUN again = run_program(PLLCALC, {"new-device", "Mallow", "--directory", place});
    EXPECT_EQ(2, again.m_status);
    EXPECT_NE(std::string::npos, again.m_errors.find("is there already")) << again.m_errors;
}

TEST(CliNewDevice, ThatCannotBeWrittenIsTold)
{
    const RUN run = run_program(PLLCALC, {"new-device", "Mallow", "--directory", "/proc/none"});
    EXPECT_EQ(4, run.m_status);
    EXPECT_EQ(0U, run.m_errors.find("pllcalc: cannot make the directory /proc/none: "))
        << run.m_errors;
}

TEST(CliEnvironment, DatabaseThatIsNotThereIsTold)
{
    ::setenv("PLL_DATABASE", "/nowhere", 1);
    const RUN run = run_pllcalc("-i 27 -o 148.5");
    ::setenv("PLL_DATABASE", "", 1);
    EXPECT_EQ(0, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_output.find("NOTE: PLL_DATABASE is set to /nowhere, which does not exist\n"))
        << run.m_output;
}

}  // namespace
