// How frequencies, ratios, phases, duty cycles and delays are read; what the library is asked for
// is seen in its own report of the request.

#include "program.h"

#include <gtest/gtest.h>

namespace {

struct OUTPUT_CASE
{
    const char* m_input;
    const char* m_output;
    const char* m_asked;  // the library's report of the clock
};

// clang-format off
constexpr OUTPUT_CASE OUTPUT_CASES[] = {
    // input            output                        what the library is asked for
    {"27MHz",           "148.5MHz",                   "mult  11  div   2  duty  50  phase 0  delay 0"},
    {"27000000Hz",      "148500kHz",                  "mult  11  div   2  duty  50  phase 0  delay 0"},
    {"0.027GHz",        ".1485ghz",                   "mult  11  div   2  duty  50  phase 0  delay 0"},
    {"10ns",            "50MHz",                      "mult  1  div   2  duty  50  phase 0  delay 0"},
    {"100MHz",          "20ns",                       "mult  1  div   2  duty  50  phase 0  delay 0"},
    {"10000ps",         "0.02us",                     "mult  1  div   2  duty  50  phase 0  delay 0"},
    {"100mhz",          "1/3GHz",                     "mult  10  div   3  duty  50  phase 0  delay 0"},
    {"1001/37MHz",      "1001/74MHz",                 "mult  1  div   2  duty  50  phase 0  delay 0"},
    {"27MHz",           "148.5/1.001MHz",             "mult  500  div   91  duty  50  phase 0  delay 0"},
    {"1001/37MHz",      "27MHz",                      "mult  999  div   1001  duty  50  phase 0  delay 0"},
    {"37037ps",         "27MHz",                      "mult  999999  div   1000000  duty  50  phase 0  delay 0"},
    {"27MHz",           "24.576MHz",                  "mult  1024  div   1125  duty  50  phase 0  delay 0"},
    {"27MHz",           "ratio=11/2",                 "mult  11  div   2  duty  50  phase 0  delay 0"},
    {"27MHz",           "ratio=5.5",                  "mult  11  div   2  duty  50  phase 0  delay 0"},
    {"27MHz",           "duty=40,ratio=22/4",         "mult  11  div   2  duty  40  phase 0  delay 0"},
    {"100MHz",          "ratio=2147483647/2147483646", "mult  2147483647  div   2147483646  duty  50"},
    {"100MHz",          "100MHz,phase=-22.5",         "mult  1  div   1  duty  50  phase -22.5  delay 0"},
    {"100MHz",          "100MHz,phase=+90deg",        "mult  1  div   1  duty  50  phase 90  delay 0"},
    {"100MHz",          "100MHz,phase=45/4",          "mult  1  div   1  duty  50  phase 11.25  delay 0"},
    {"100MHz",          "100MHz,phase=2.5ns",         "mult  1  div   1  duty  50  phase 90  delay 0"},
    {"100MHz",          "100MHz,phase=-1250ps",       "mult  1  div   1  duty  50  phase -45  delay 0"},
    {"100MHz",          "50MHz,phase=0.005us",        "mult  1  div   2  duty  50  phase 180  delay 0"},
    {"100MHz",          "50MHz,phase=-360",           "mult  1  div   2  duty  50  phase -720  delay 0"},
    {"100MHz",          "50MHz,phase=360",            "mult  1  div   2  duty  50  phase 720  delay 0"},
    {"27MHz",           "148.5MHz,phase=99",          "mult  11  div   2  duty  50  phase 18  delay 0"},
    {"27MHz",           "9MHz,phase=-60",             "mult  1  div   3  duty  50  phase -180  delay 0"},
    {"100MHz",          "50MHz,duty=1",               "mult  1  div   2  duty  1  phase 0  delay 0"},
    {"100MHz",          "50MHz,duty=99%",             "mult  1  div   2  duty  99  phase 0  delay 0"},
    {"100MHz",          "50MHz,delay=-3000",          "mult  1  div   2  duty  50  phase 0  delay -3000"},
    {"100MHz",          "50MHz,delay=3ns",            "mult  1  div   2  duty  50  phase 0  delay 3000"},
    {"100MHz",          "50MHz,delay=0.25ns",         "mult  1  div   2  duty  50  phase 0  delay 250"},
    {"100MHz",          "50MHz,even",                 "delay 0  use_even_counter_mode 1\n"},
    {"100MHz",          "50MHz,even-count",           "delay 0  use_even_counter_value 1\n"},
};
// clang-format on

TEST(CliOutput, AsksTheLibraryForTheExactRatio)
{
    for (const OUTPUT_CASE& c : OUTPUT_CASES) {
        SCOPED_TRACE(std::string(c.m_input) + " -> " + c.m_output);
        const RUN run = run_program(PLLCALC, {"dump", "--in", c.m_input, "--out", c.m_output});
        const std::string asked = run.m_output.substr(0, run.m_output.find("\nM "));
        EXPECT_NE(std::string::npos, asked.find(c.m_asked)) << asked << run.m_errors;
        EXPECT_EQ("", run.m_errors);
    }
}

struct REQUEST_CASE
{
    const char* m_options;
    const char* m_asked;  // a line of the library's report of the request
};

// clang-format off
constexpr REQUEST_CASE REQUEST_CASES[] = {
    // options                                        what the library is asked for
    {"--in 27MHz",                                    "Nominal fin 37037 ps "},
    {"--in 30MHz",                                    "Nominal fin 33333 ps "},
    {"--in 60MHz",                                    "Nominal fin 16667 ps "},
    {"--in 0.5ps",                                    "Nominal fin 1 ps "},
    {"--in 2147483647ps",                             "Nominal fin 2147483647 ps "},
    {"--in 100MHz --in2 105MHz",                      "fin2 9524 ps "},
    {"--in 100MHz",                                   "Requested bandwidth auto\n"},
    {"--in 100MHz --bandwidth auto",                  "Requested bandwidth auto\n"},
    {"--in 100MHz --bandwidth high",                  "Requested bandwidth high\n"},
    {"--in 100MHz --bandwidth medium",                "Requested bandwidth medium\n"},
    {"--in 100MHz --bandwidth low",                   "Requested bandwidth low\n"},
    {"--in 100MHz --bandwidth 1.2MHz",                "Requested bandwidth custom at 1.2e+06\n"},
    {"--in 100MHz --bandwidth 250kHz",                "Requested bandwidth custom at 250000\n"},
    {"--in 100MHz --spread 0.5% --spread-rate 30kHz", "Down Spread 0.5 % \nSpread Frequency 30 kHz\n"},
    {"--in 100MHz --spread 1/4",                      "Down Spread 0.25 % \nSpread Frequency 50 kHz\n"},
    {"--in 100MHz --spread 0.5 --spread-rate 25us",   "Down Spread 0.5 % \nSpread Frequency 40 kHz\n"},
    {"--in 100MHz --reconfig",                        "\nusing reconfig\n"},
    {"--in 100MHz",                                   "\nnot using reconfig\n"},
    {"--in 100MHz --feedback 1",                      "\nfeedback 0\n"},
    {"--in 100MHz --out 100MHz --feedback 2",         "\nfeedback 1\n"},
    {"--in 100MHz --vco-ratio 11/2",                  "\nVCO mult 11\nVCO div 2\n"},
};
// clang-format on

TEST(CliRequest, AsksTheLibraryForWhatTheOptionsSay)
{
    for (const REQUEST_CASE& c : REQUEST_CASES) {
        SCOPED_TRACE(c.m_options);
        const RUN run = run_pllcalc(std::string("dump --out 50MHz ") + c.m_options);
        const std::string asked = run.m_output.substr(0, run.m_output.find("\nM "));
        EXPECT_NE(std::string::npos, asked.find(c.m_asked)) << asked << run.m_errors;
        EXPECT_EQ("", run.m_errors);
    }
}

TEST(CliRequest, KeepsTheRatioExactWhereThePeriodIsRounded)
{
    const RUN run = run_pllcalc("synth --in 27MHz --out 148.5MHz");
    EXPECT_EQ(0, run.m_status);
    EXPECT_NE(std::string::npos, run.m_output.find("period 37037.037 ps, taken as 37037 ps"));
    EXPECT_NE(std::string::npos, run.m_output.find("11/2  exact"));
    EXPECT_EQ(std::string::npos,
              run_pllcalc("synth --in 100MHz --out 50MHz").m_output.find("taken"));
}

}  // namespace
