// The program's tables, its output device, and internal errors of the library.

#include "comma_locale.h"
#include "program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr std::size_t TABLE_WIDTH = 100;

const char* const WIDE_REQUESTS[] = {
    "--in 27MHz --out 148.5MHz --out 74.25MHz,phase=90,duty=40 --out 24.576MHz",
    "--in 100MHz --out 50MHz,phase=-360,delay=-1500,duty=99 --out 50MHz,phase=360,delay=1500",
    "--in 1000MHz --out 1000MHz,phase=-123.456,duty=1,delay=-3000 --in2 999.999999MHz",
    "--in 1001/37MHz --out ratio=2147483647/2147483646 --bandwidth 999.999MHz",
    "--in 100MHz --out 50MHz,even,even-count,duty=37 --spread 0.5% --feedback 1",
    "--in 3.5MHz --out ratio=11/2 --out 1kHz --feedback 2",
    "--in 1ps --in2 30MHz --out 13.5MHz",
    "--in 100MHz --out 50MHz,delay=-3000 --out 50MHz,delay=3000",
    "--in 100MHz --in2 1MHz --out 50MHz --bandwidth 1GHz",
    "--in 100MHz --out 50MHz --spread 0.1%",
};

// All but the texts of the library, which are quoted as they are, and offered commands, which stay
// on one line.
void expect_width(const std::string& output)
{
    for (const std::string& line : split(output, '\n')) {
        const bool is_quoted = line.rfind("error ", 0) == 0 || line.rfind("  pllcalc ", 0) == 0;
        EXPECT_TRUE(is_quoted || line.size() <= TABLE_WIDTH) << line;
        EXPECT_TRUE(line.empty() || line.back() != ' ') << '"' << line << '"';
    }
}

TEST(CliTable, FitsAHundredColumnsButForTheLibrarysTexts)
{
    for (const char* request : WIDE_REQUESTS) {
        SCOPED_TRACE(request);
        const RUN run = run_pllcalc(std::string("synth ") + request);
        EXPECT_GE(1, run.m_status);
        expect_width(run.m_output);
        expect_width(run_pllcalc(std::string("steps ") + request).m_output);
    }
    for (const char* command : {"--help", "synth --help", "steps --help", "dump --help",
                                "ratios --help", "errors --help", "ratios --in 100MHz"}) {
        expect_width(run_pllcalc(command).m_output);
    }
}

// The cells of the first row, `heads` lines below the line that contains `head`.
std::vector<std::string> first_row(const std::string& output, const std::string& head,
                                   std::size_t heads)
{
    const std::vector<std::string> lines = split(output, '\n');
    std::size_t line = 0;
    while (line < lines.size() && lines[line].find(head) == std::string::npos) {
        ++line;
    }
    if (line + heads >= lines.size()) {
        return {};
    }
    return words_of(lines[line + heads]);
}

TEST(CliTable, FrequenciesFollowFromTheCountersThatItShows)
{
    for (const char* request :
         {"--in 27MHz --out 148.5MHz", "--in 10ns --out 33MHz", "--in 19.2MHz --out 61.44MHz",
          "--in 100MHz --out 50MHz --feedback 1", "--in 66.666MHz --out 1.5MHz"}) {
        SCOPED_TRACE(request);
        const std::string output = run_pllcalc(std::string("synth ") + request).m_output;
        const std::vector<std::string> loop = first_row(output, "post-scale", 2);
        const std::vector<std::string> clock = first_row(output, "ratio ", 2);
        const std::vector<std::string> counter = first_row(output, "fed by", 3);
        ASSERT_LE(6U, loop.size());
        ASSERT_LE(5U, clock.size());
        ASSERT_LE(3U, counter.size());
        const double vco = std::atof(loop[4].c_str() + (loop[4][0] == '~' ? 1 : 0));
        const double achieved = std::atof(clock[2].c_str() + (clock[2][0] == '~' ? 1 : 0));
        EXPECT_NEAR(achieved, vco / std::atoi(counter[2].c_str()), 1e-6);
        const double pfd = std::atof(loop[3].c_str() + (loop[3][0] == '~' ? 1 : 0));
        const int feedback =
            loop.size() > 6 && loop[6] == "output" ? std::atoi(counter[2].c_str()) : 1;
        EXPECT_NEAR(vco, pfd * std::atoi(loop[1].c_str()) * feedback, 1e-3);
    }
}

TEST(CliSteps, StayWithinTheirBounds)
{
    const RUN run = run_pllcalc("steps --in 100MHz --out 100MHz,phase=352.5,duty=75");
    EXPECT_NE(std::string::npos, run.m_output.find("\n   0  352.500  75.000  <- the answer\n"));
    EXPECT_NE(std::string::npos, run.m_output.find("\n  +1  360.000  83.333\n"));
    EXPECT_NE(std::string::npos, run.m_output.find("\n  +2        -       -\n")) << run.m_output;
}

TEST(CliRatios, AreSortedReducedAndComplete)
{
    const RUN run = run_pllcalc("ratios --in 100MHz --format csv");
    EXPECT_EQ(0, run.m_status);
    const std::vector<std::string> lines = split(run.m_output, '\n');
    ASSERT_LT(2U, lines.size());
    EXPECT_EQ("vco_mult,vco_div,vco_mhz", lines[0]);
    EXPECT_EQ("3,1,300.000000", lines[1]);
    EXPECT_EQ("10,1,1000.000000", lines.back());
    double last = 0.0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ',');
        ASSERT_EQ(3U, cells.size());
        const double ratio = std::atof(cells[0].c_str()) / std::atof(cells[1].c_str());
        EXPECT_LT(last, ratio);
        EXPECT_NEAR(100.0 * ratio, std::atof(cells[2].c_str()), 1e-6);
        last = ratio;
    }
    const std::string table = run_pllcalc("ratios --in 100MHz").m_output;
    EXPECT_NE(std::string::npos, table.find(std::to_string(lines.size() - 1) + " ratios\n"));
}

// 10^18 / 12345678901 Hz times 63/17 is no fraction of 64-bit numbers.
TEST(CliRatios, FrequencyThatIsNoFractionIsRounded)
{
    const std::string input = " --in 12345.678901ps";
    const std::string csv = run_pllcalc("ratios --format csv" + input).m_output;
    EXPECT_NE(std::string::npos, csv.find("\n63,17,300.176473\n")) << csv;
    const std::string table = run_pllcalc("ratios" + input).m_output;
    EXPECT_NE(std::string::npos, table.find("  ~300.176473\n")) << table;
    const RUN run = run_pllcalc("synth --out ratio=63/17 --out ratio=63/34" + input);
    EXPECT_EQ(0, run.m_status) << run.m_errors;
    EXPECT_EQ("~600.352947", first_row(run.m_output, "post-scale", 2).at(4));
    EXPECT_EQ("~300.176473", first_row(run.m_output, "ratio ", 2).at(1));
    EXPECT_EQ("~300.176473", first_row(run.m_output, "ratio ", 2).at(2));
    EXPECT_EQ("~150.088237", first_row(run.m_output, "ratio ", 3).at(2));
}

TEST(CliRatios, NoneIsNotMet)
{
    const RUN run = run_pllcalc("ratios --in 1MHz");
    EXPECT_EQ(1, run.m_status);
    EXPECT_EQ("pllcalc: no VCO ratio can be realised from this input clock\n", run.m_errors);
}

TEST(CliOutputDevice, ReaderThatWentAwayIsNoError)
{
    const RUN met = run_program(PLLCALC, {"ratios", "--in", "100MHz"}, OUTPUT_TO::READER_GONE);
    EXPECT_EQ(0, met.m_status);
    EXPECT_EQ("", met.m_errors);
    const RUN not_met =
        run_program(PLLCALC, {"synth", "--in", "1MHz", "--out", "1kHz"}, OUTPUT_TO::READER_GONE);
    EXPECT_EQ(1, not_met.m_status);
    EXPECT_EQ("", not_met.m_errors);
}

TEST(CliOutputDevice, FailureIsToldByStatusFour)
{
    for (const char* command : {"errors", "--help", "--version"}) {
        SCOPED_TRACE(command);
        const RUN full = run_program(PLLCALC, {command}, OUTPUT_TO::FULL_DEVICE);
        EXPECT_EQ(4, full.m_status);
        EXPECT_EQ("pllcalc: cannot write the output: No space left on device\n", full.m_errors);
        EXPECT_EQ(4, run_program(PLLCALC, {command}, OUTPUT_TO::CLOSED).m_status);
    }
}

TEST(CliInternalErrors, ArePrintedWithTheirFourItemsAndWinOverMetAndNotMet)
{
    const std::string reports =
        "pllcalc: internal error: first condition (component PLL, source pll, line 11)\n"
        "pllcalc: internal error: second condition (component PLL, source pll_util, line 22)\n";
    const RUN met =
        run_program(PLLCALC_ON_BROKEN_LIBRARY, {"synth", "--in", "500MHz", "--out", "500MHz"});
    EXPECT_EQ(5, met.m_status);
    EXPECT_EQ(reports, met.m_errors);
    EXPECT_EQ(0U, met.m_output.find("MET: "));
    const RUN not_met = run_program(PLLCALC_ON_BROKEN_LIBRARY, {"synth", "--in", "100MHz", "--out",
                                                                "100MHz", "--out", "50MHz"});
    EXPECT_EQ(5, not_met.m_status);
    EXPECT_EQ(0U, not_met.m_errors.find(reports));
    EXPECT_EQ(0U, not_met.m_output.find("NOT MET: "));
}

TEST(CliInternalErrors, YieldToUsageAndOutputFailures)
{
    EXPECT_EQ(2, run_program(PLLCALC_ON_BROKEN_LIBRARY, {"synth", "--in", "100MHz"}).m_status);
    EXPECT_EQ(4, run_program(PLLCALC_ON_BROKEN_LIBRARY,
                             {"synth", "--in", "500MHz", "--out", "500MHz"}, OUTPUT_TO::FULL_DEVICE)
                     .m_status);
}

TEST(CliLocale, DoesNotMatter)
{
    const std::string words = "synth --in 27MHz --out 24.576MHz,phase=22.5";
    const RUN plain = run_pllcalc(words);
    EXPECT_EQ(0, plain.m_status) << plain.m_errors;
    const COMMA_LOCALE comma;
    EXPECT_EQ(plain.m_output, run_pllcalc(words).m_output);
}

}  // namespace
