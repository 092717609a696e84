// Whether a request counts as met, and what is said when it does not.

#include "program.h"

#include <gtest/gtest.h>

namespace {

struct VERDICT_CASE
{
    const char* m_request;
    int m_status;
    const char* m_text;
};

// 27 MHz gives 24.576 MHz as 223/245 at best: 223 x 1125 / (245 x 1024) - 1 = -5 / 250880, so
// -19929.8 ppb.
// clang-format off
constexpr VERDICT_CASE VERDICT_CASES[] = {
    // request                                                   status  text
    {"--in 27MHz --out 148.5MHz",                                     0, "MET: the output is exact; judged: frequency, phase, duty cycle and 10 limits\n"},
    {"--in 27MHz --out 148.5MHz --exact",                             0, "MET: the output is exact; judged: frequency, phase, duty cycle and 10 limits\n"},
    {"--in 27MHz --out 24.576MHz",                                    0, "MET: the output is off by -19.93 ppm; judged: "},
    {"--in 27MHz --out 24.576MHz",                                    0, "  -19.9 ppm\n"},
    {"--in 27MHz --out 24.576MHz --tolerance 50ppm",                  0, "MET: the output is off by -19.93 ppm; "},
    {"--in 27MHz --out 24.576MHz --tolerance 0.005%",                 0, "MET: the output is off by -19.93 ppm; "},
    {"--in 27MHz --out 24.576MHz --tolerance 5/250880000000000%",     1, "NOT MET: frequency of output 1\n"},
    {"--in 27MHz --out 24.576MHz --tolerance 5000000/250880ppm",      0, "MET: the output is off by -19.93 ppm; "},
    {"--in 27MHz --out 24.576MHz --tolerance 4999999/250880ppm",      1, "NOT MET: frequency of output 1\n"},
    {"--in 27MHz --out 24.576MHz --tolerance 19930ppb",               0, "MET: the output is off by -19.93 ppm; "},
    {"--in 27MHz --out 24.576MHz --tolerance 19929ppb",               1, "NOT MET: frequency of output 1\nMISSED frequency of output 1: ~24.57551 MHz for 24.576 MHz, -19.93 ppm, tolerance 19.929 ppm\n"},
    {"--in 27MHz --out 24.576MHz --tolerance 10ppm",                  1, "MISSED frequency of output 1: ~24.57551 MHz for 24.576 MHz, -19.93 ppm, tolerance 10 ppm\n"},
    {"--in 27MHz --out 24.576MHz --tolerance 0ppm",                   1, ", tolerance 0 ppm\n"},
    {"--in 27MHz --out 24.576MHz --exact",                            1, "-19.9 ppm  MISSED frequency\n"},
    {"--in 27MHz --out 148.5000001MHz --exact",                       1, "-0.7 ppb  MISSED frequency\n"},
    {"--in 27MHz --out 148.5MHz --out 24.576MHz",                     1, "error 4: Division and Multiplication cannot be achieved\noutput 2: 24.75 MHz instead of "},
    {"--in 100MHz --out 10kHz",                                       1, "error 3: Post divider maximum count value exceeded. (Reduce division value or Fin frequency)\noutput 1: 292.96875 kHz instead of "},
    {"--in 100MHz --out 10kHz",                                       1, "\n  its counter is at its largest count\n"},
    {"--in 100MHz --out 50MHz --vco-ratio 2001/2",                    1, "MISSED VCO ratio: 10 for 2001/2\n"},
    {"--in 100MHz --out 50MHz --vco-ratio 2001/2",                    1, "NOT MET: VCO ratio\n"},
    {"--in 89MHz --out 7021/149MHz --vco-ratio 33/4",                 1, "cannot be achieved\noutput 1: 45.890625 MHz instead of ~47.120805 MHz\n"},
    {"--in 89MHz --out 7021/149MHz --vco-ratio 33/4",                 1, "  -2.611 %  MISSED frequency\n"},
    {"--in 100MHz --out 700MHz --out 300MHz --feedback 2",            1, "\n  it is the feedback\n"},
    {"--in 1MHz --out 1kHz",                                          1, "error 1: No combination of counter values of M and the pre-divider N satisfy VCO and PFD ranges, for requested clock synthesis\nclosest: M 300, N 1, PFD 1 MHz, 2 MHz below its range 3 to 666.667 MHz\nmissed: all outputs"},
    {"--in 500kHz --out 1MHz",                                        1, ", VCO 256 MHz, 43.94 MHz below its range 299.94 to 1000 MHz\n"},
    {"--in 100MHz --in2 1MHz --out 50MHz",                            1, "missed: the second input; without it there are M and N for the VCO and PFD ranges\n"},
    {"--in 100MHz --out 50MHz --bandwidth 1GHz",                      1, "missed: the bandwidth; without it there are M and N for the VCO and PFD ranges\n"},
    {"--in 100MHz --in2 1MHz --out 50MHz --bandwidth 1GHz",           1, "missed: bandwidth, spread and second input taken together; without them there are M and N\n"},
    {"--in 100MHz --out 50MHz --spread 0.1%",                         1, "missed: the spread; M is at most 512 and M x spread at least 1, so it is 0.195 % or more\n"},
    {"--in 100MHz --out 50MHz,delay=-3000 --out 50MHz,delay=1",       1, "error 5: Maximum Delay differs too much from Minimum Delay\nmissed: output 2 is delayed by 3001 ps more than output 1, 1 ps beyond the 3000 ps of a chain"},
    {"--in 100MHz --out 50MHz,delay=-3000 --out 50MHz,delay=0",       0, "MET"},
    {"--in 100MHz --out 50MHz --spread 0.601%",                       1, "error 7: Requested Spread Spectrum value is too high\nmissed: a spread of 0.601 % is asked for, legal are at most 0.6 %\n"},
    {"--in 100MHz --out 50MHz --spread 0.6%",                         0, "MET"},
    {"--in 245MHz --out 27MHz --out ratio=18 --feedback 1 --database @DATA@/sample --family Lovage --type FAST_PLL", 1, "\noutput 1: 245 MHz instead of 27 MHz\n  it is the feedback\nNOTE: "},
    {"--in 100MHz --out 50MHz --out 10kHz --spread 0.601%",           1, "legal are at most 0.6 %\noutput 2: 585.9375 kHz instead of "},
    {"--in 500kHz --out 1MHz --spread 5%",                            1, "legal are at most 0.6 %\nclosest: M 512, N 1, VCO 256 MHz, 343.88 MHz below its range 599.88 to 1000 MHz\nmissed: all outputs; without a VCO frequency none of them could be tried\n\ninput  500 kHz, period 2000000 ps\n"},
    {"--in 1001MHz --out 50MHz",                                      1, "error 8: Requested input clock frequency does not satisfy the valid frequency range\nmissed: the input runs at 1001 MHz, legal are at most 1000 MHz\n"},
    {"--in 100MHz --in2 1001MHz --out 50MHz",                         1, "missed: "},
};
// clang-format on

TEST(CliVerdict, IsSaidWithItsReasons)
{
    for (const VERDICT_CASE& c : VERDICT_CASES) {
        SCOPED_TRACE(c.m_request);
        const RUN run = run_pllcalc(std::string("synth ") + c.m_request);
        EXPECT_EQ(c.m_status, run.m_status) << run.m_errors;
        EXPECT_NE(std::string::npos, run.m_output.find(c.m_text)) << run.m_output;
        EXPECT_EQ("", run.m_errors);
        EXPECT_EQ(0U, run.m_output.find(c.m_status == 0 ? "MET: " : "NOT MET: "))
            << "the verdict stands first";
    }
}

TEST(CliVerdict, ShowsNoSettingWhereNoneCouldBeTried)
{
    const std::string request = " --in 500kHz --out 1MHz --spread 5%";
    EXPECT_EQ(std::string::npos, run_pllcalc("synth" + request).m_output.find("post-scale"));
    EXPECT_EQ(std::string::npos, run_pllcalc("steps" + request).m_output.find("\noutput 1"));
    const std::string table =
        run_pllcalc("table --database @DATA@/sample --family Chervil" + request).m_output;
    EXPECT_NE(std::string::npos, table.find("\nno setting, so no row\n")) << table;
}

TEST(CliVerdict, IsTheSameForEveryCommandThatTakesARequest)
{
    for (const VERDICT_CASE& c : VERDICT_CASES) {
        SCOPED_TRACE(c.m_request);
        EXPECT_EQ(c.m_status, run_pllcalc(std::string("steps ") + c.m_request).m_status);
        EXPECT_EQ(c.m_status, run_pllcalc(std::string("dump ") + c.m_request).m_status);
    }
}

}  // namespace
