// What the program refuses: exit status 2 and one line that names the argument and what is legal.

#include "program.h"

#include <gtest/gtest.h>

namespace {

struct USAGE_CASE
{
    const char* m_line;
    const char* m_message;
};

// clang-format off
constexpr USAGE_CASE USAGE_CASES[] = {
    // words                                            message
    {"",                                                "command: missing; legal are synth, explain, alternatives, crystal, steps, dump, ratios, devices, device, table, limits, new-device, errors, lint, keywords, diff, verify, export"},
    {"sinth",                                           "sinth: unknown command; legal are synth, explain, alternatives, crystal, steps, dump, ratios, devices, device, table, limits, new-device, errors, lint, keywords, diff, verify, export; did you mean synth?"},
    {"ratio --in 5MHz",                                 "did you mean ratios?"},
    {"--hepl",                                          "--hepl: unknown option"},
    {"--hepl",                                          "did you mean --help?"},
    {"synth --in 27MHz --otu 5MHz",                     "--otu: unknown option; did you mean --out?"},
    {"synth --in 27MHz --bandwith=high --out 5MHz",     "--bandwith: unknown option; did you mean --bandwidth?"},
    {"steps --in 27MHz --out 5MHz --tolerence 5ppm",    "--tolerence: unknown option; did you mean --tolerance?"},
    {"synth --in 27MHz --out 5MHz --spred-rate 30kHz",  "--spred-rate: unknown option; did you mean --spread-rate?"},
    {"dump --in 27MHz --out 5MHz --compat",             "--compat: unknown option; did you mean --compact?"},
    {"ratios --in 27MHz --fromat csv",                  "--fromat: unknown option; did you mean --format?"},
    {"ratios --in 27MHz --out 5MHz",                    "--out: unknown option"},
    {"synth --in 27MHz --out 5MHz,pase=90",             "--out 1: unknown word 'pase=90'; legal are a frequency, NAME=frequency, ratio=, phase=, to=, duty=, delay=, even, even-count, pin, name=, tolerance=, phase-tolerance=, duty-tolerance=, delay-tolerance=; did you mean phase?"},
    {"synth --in 27MHz --out 5MHz,evn",                 "did you mean even?"},
    {"synth --in 27MHz extra --out 5MHz",               "'extra': unexpected"},
    {"synth --out 5MHz",                                "--in: the input clock is needed"},
    {"ratios",                                          "--in: the input clock is needed"},
    {"synth --in 5MHz",                                 "--out: at least one output is needed"},
    {"synth --in 5MHz --out",                           "--out: needs a value"},
    {"synth --in 5MHz --in 6MHz --out 5MHz",            "--in: may be given once"},
    {"synth --in 5MHz --out 5MHz --exact=3",            "--exact: takes no value"},
    {"synth --in 27mHz --out 5MHz",                     "--in: '27mHz' is in millihertz; did you mean MHz, with a capital M?"},
    {"-i 27 -o 5mHz",                                   "--out 1: '5mHz' is in millihertz; did you mean MHz"},
    {"-i 27 -o 5 --phase 90",                           "--phase: unknown option; a phase stands with its output: --out 100MHz,phase=90"},
    {"-i 27 -o 5 --duty 40",                            "--duty: unknown option; a duty cycle stands with its output: --out 100MHz,duty=40"},
    {"-i 27 -o 5 --format csv",                         "--format: 'csv' is not legal for one answer; expected table or json"},
    {"help sinth",                                      "sinth: unknown command; legal are"},
    {"-i 27 -o phas=90",                                "unknown word 'phas=90'"},
    {"-i 27 -o a=5 -o a=6",                             "--out 2: the name 'a' is that of output 1"},
    {"-i 27 -o 5,name=1x",                              "--out 1 name: '1x' is not legal"},
    {"-i 27 -o 5@90,phase=90",                          "--out 1: 'phase' is given twice"},
    {"-i 27 -o 5,phase=90,to=2",                        "--out 1 to: '2' is not legal"},
    {"-i 27 -o 5,to=1",                                 "--out 1 phase: counts from itself"},
    {"-i 27 -o 5 --vco 1200-600MHz",                    "--vco: '1200-600MHz' is not legal; expected a range such as 600-1200MHz, the lower end first"},
    {"-i 27 -o 5 --m 0-5",                              "--m: '0' is not legal; expected a whole number from 1 to 1000000"},
    {"-i 27 -o 5 --post-scales 3",                      "--post-scales: '3' is not legal; expected a whole number from 1 to 2"},
    {"-i 27 -o 5 --taps 0-8",                           "--taps: '8' is not legal; expected a whole number from 0 to 7"},
    {"new-device 1/2",                                  "NAME: '1/2' is not legal; expected 1 to 64 letters, digits"},
    {"new-device",                                      "NAME: '' is not legal"},
    {"synth --in 27furlong --out 5MHz",                 "--in: '27furlong' has the unknown unit 'furlong'; legal are Hz, kHz, MHz, GHz, or a period in ps, ns, us"},
    {"synth --in 27MHz --out 5 MHz",                    "'MHz': unexpected"},
    {"synth --in 27MHz --out 5M",                       "--out 1: '5M' has the unknown unit 'M'"},
    {"synth --in MHz --out 5MHz",                       "--in: 'MHz' is not legal; expected a number such as 27, 148.5 or 1001/37"},
    {"synth --in 2.7.0MHz --out 5MHz",                  "has the unknown unit '.0MHz'"},
    {"synth --in 1/0MHz --out 5MHz",                    "--in: '1/0MHz' is not legal; expected a fraction with a divisor above 0"},
    {"synth --in 1/MHz --out 5MHz",                     "--in: '1/MHz' is not legal; expected a number"},
    {"synth --in 0MHz --out 5MHz",                      "--in: '0MHz' is not legal; expected a frequency above 0"},
    {"synth --in -5MHz --out 5MHz",                     "--in: '-5MHz' is not legal; expected a frequency above 0"},
    {"synth --in nanMHz --out 5MHz",                    "--in: 'nanMHz' is not legal"},
    {"synth --in 1234567890123456789Hz --out 5MHz",     "of at most 18 digits"},
    {"synth --in 999999999999999999GHz --out 5MHz",     "expected a frequency that fits 64 bits"},
    {"synth --in 465Hz --out 5MHz",                     "--in: '465Hz' is not legal; expected a period of 1 to 2147483647 ps"},
    {"synth --in 123.456789012345678MHz --out 5MHz",    "--in: '123.456789012345678MHz' is not legal; expected fewer digits: its period does not fit 64 bits"},
    {"synth --in 2147483648ps --out 5MHz",              "expected a period of 1 to 2147483647 ps"},
    {"synth --in 0.49ps --out 5MHz",                    "expected a period of 1 to 2147483647 ps"},
    {"ratios --in 465Hz",                               "--in: '465Hz' is not legal; expected a period of 1 to 2147483647 ps"},
    {"synth --in 5MHz --in2 1Hz --out 5MHz",            "--in2: '1Hz' is not legal; expected a period of 1 to 2147483647 ps"},
    {"synth --in 27MHz --out 148.50000012345MHz",       "--out 1: its ratio to the input, 990000000823/180000000000, does not fit; factor and divisor may be 1 to 2147483647 each"},
    {"synth --in 1MHz --out ratio=2147483648",          "--out 1: its ratio to the input, 2147483648, does not fit"},
    {"synth --in 1MHz --out ratio=1/2147483648",        "does not fit; factor and divisor may be 1 to 2147483647 each"},
    {"synth --in 1MHz --out ratio=0",                   "--out 1 ratio: '0' is not legal; expected a ratio above 0"},
    {"synth --in 1MHz --out ratio=11/2MHz",             "--out 1 ratio: '11/2MHz' is not legal"},
    {"synth --in 1MHz --out ratio=",                    "--out 1: 'ratio' needs a value"},
    {"synth --in 1MHz --out phase=90",                  "--out 1: needs one of a frequency and ratio="},
    {"synth --in 1MHz --out 5MHz,ratio=5",              "--out 1: needs one of a frequency and ratio="},
    {"synth --in 1MHz --out 5MHz,6MHz",                 "--out 1: two frequencies, '5MHz' and '6MHz'"},
    {"synth --in 1MHz --out 5MHz,duty=5,duty=6",        "--out 1: 'duty' is given twice"},
    {"synth --in 1MHz --out 5MHz,",                     "--out 1: unknown word ''"},
    {"synth --in 1MHz --out 5MHz,even=yes",             "--out 1: 'even' takes no value"},
    {"synth --in 1MHz --out 5MHz --out 5MHz,duty=0",    "--out 2 duty: '0' is not legal; expected a percentage above 0 and below 100"},
    {"synth --in 1MHz --out 5MHz,duty=100",             "--out 1 duty: '100' is not legal; expected a percentage above 0 and below 100"},
    {"synth --in 1MHz --out 5MHz,duty=-5",              "--out 1 duty: '-5' is not legal"},
    {"synth --in 1MHz --out 5MHz,delay=3001",           "--out 1 delay: '3001' is not legal; expected whole picoseconds from -3000 to 3000"},
    {"synth --in 1MHz --out 5MHz,delay=-3001ps",        "expected whole picoseconds from -3000 to 3000"},
    {"synth --in 1MHz --out 5MHz,delay=0.5",            "expected whole picoseconds from -3000 to 3000"},
    {"synth --in 1MHz --out 5MHz,delay=1MHz",           "expected whole picoseconds from -3000 to 3000"},
    {"synth --in 1MHz --out 5MHz,phase=360.001",        "--out 1 phase: '360.001' is not legal; expected degrees of the output from -360 to 360, or a time in ps, ns or us of at most its period"},
    {"synth --in 1MHz --out 5MHz,phase=-361",           "expected degrees of the output from -360 to 360"},
    {"synth --in 1MHz --out 5MHz,phase=201ns",          "--out 1 phase: '201ns' is not legal; expected degrees of the output from -360 to 360"},
    {"synth --in 1MHz --out 5MHz,phase=1rad",           "--out 1 phase: '1rad' is not legal"},
    {"synth --in 1MHz --out 5MHz --bandwidth hgh",      "--bandwidth: 'hgh' is not legal; expected high, medium, low, auto or a frequency such as 1.2MHz"},
    {"synth --in 1MHz --out 5MHz --bandwidth 5ns",      "--bandwidth: '5ns' has the unknown unit 'ns'; legal are Hz, kHz, MHz, GHz"},
    {"synth --in 1MHz --out 5MHz --bandwidth 0Hz",      "--bandwidth: '0Hz' is not legal; expected a frequency above 0"},
    {"synth --in 1MHz --out 5MHz --spread 0%",          "--spread: '0%' is not legal; expected a percentage above 0 and below 100"},
    {"synth --in 1MHz --out 5MHz --spread 100%",        "--spread: '100%' is not legal; expected a percentage above 0 and below 100"},
    {"synth --in 1MHz --out 5MHz --spread 5kHz",        "--spread: '5kHz' is not legal; expected a percentage"},
    {"synth --in 1MHz --out 5MHz --spread-rate 5kHz",   "--spread-rate: only together with --spread"},
    {"synth --in 1MHz --out 5MHz --spread 1 --spread-rate 5Hz", "--spread-rate: expected a period of 1 to 2147483647 ps"},
    {"synth --in 1MHz --out 5MHz --feedback 0",         "--feedback: '0' is not legal; expected 1"},
    {"synth --in 1MHz --out 5MHz --out 6MHz --feedback 3", "--feedback: '3' is not legal; expected a whole number from 1 to 2"},
    {"synth --in 1MHz --out 5MHz --out 6MHz --feedback x", "--feedback: 'x' is not legal"},
    {"synth --in 1MHz --out 5MHz --vco-ratio 0",        "--vco-ratio: '0' is not legal; expected a ratio above 0"},
    {"synth --in 1MHz --out 5MHz --vco-ratio 3000000000", "--vco-ratio: factor and divisor may be 1 to 2147483647 each"},
    {"synth --in 1MHz --out 5MHz --max-outputs 11",     "--max-outputs: '11' is not legal; expected a whole number from 1 to 10"},
    {"synth --in 1MHz --out 5MHz --max-outputs 0",      "--max-outputs: '0' is not legal; expected a whole number from 1 to 10"},
    {"synth --in 1MHz --out 5MHz --out 6MHz --max-outputs 1", "--out: 2 outputs are more than the device has; legal are 1 to 1"},
    {"synth --in 1MHz --out 5MHz --tolerance 50",       "--tolerance: '50' is not legal; expected 0 to 10 %, as a number with ppm, ppb or %"},
    {"synth --in 1MHz --out 5MHz --tolerance 10.01%",   "--tolerance: '10.01%' is not legal; expected 0 to 10 %"},
    {"synth --in 1MHz --out 5MHz --tolerance -1ppm",    "--tolerance: '-1ppm' is not legal"},
    {"synth --in 1MHz --out 5MHz --tolerance 5ppm --exact", "--exact: not together with --tolerance"},
    {"synth --in 1MHz --out 5MHz --famly Sorrel",        "--famly: unknown option; did you mean --family?"},
    {"devices --part SR20-6",                           "--part: unknown option"},
    {"lint @DATA@/sample --fromat json",                "--fromat: unknown option; did you mean --format?"},
    {"lint --fromat",                                   "--fromat: unknown option; did you mean --format?"},
    {"lint",                                            "PATH: needed; a database directory, a family file or a table file"},
    {"lint  --format json",                             "PATH: needed; a database directory, a family file or a table file"},
    {"synth --in= --out 5MHz",                          "--in: needs a value"},
    {"synth --in 5MHz --out=",                          "--out: needs a value"},
    {"devices --database= --family Sorrel",             "--database: needs a value"},
    {"lint @DATA@/sample --format=",                    "--format: needs a value"},
    {"devices --database  --family Sorrel",             "--database: '' is not legal; expected a directory"},
    {" --in 5MHz",                                      "'': unknown command"},
    {"table --database @DATA@/sample --family Chervil --bandwidth high", "--in: the input clock is needed"},
    {"table --database @DATA@/sample --family Chervil --m 5 --exact", "--m: not together with a request"},
    {"synth --in 1MHz -x",                              "-x: unknown option"},
    {"device --speed-grad 6",                           "did you mean --speed-grade?"},
    {"device --family",                                 "--family: needs a value"},
    {"device --family A --family B",                    "--family: may be given once"},
    {"errors --database x",                             "--database: unknown option"},
    {"devices --format yaml",                           "--format: 'yaml' is not legal; expected table, csv or json"},
    {"DEVICE --family A",                               "DEVICE: unknown command"},
    {"ratios --in 1MHz --format xml",                   "--format: 'xml' is not legal; expected table, csv or json"},
};
// clang-format on

TEST(CliUsage, RefusalNamesTheArgumentAndWhatIsLegal)
{
    for (const USAGE_CASE& c : USAGE_CASES) {
        SCOPED_TRACE(c.m_line);
        const RUN run = run_pllcalc(c.m_line);
        EXPECT_EQ(2, run.m_status);
        EXPECT_EQ("", run.m_output);
        EXPECT_EQ(0U, run.m_errors.find("pllcalc: ")) << run.m_errors;
        EXPECT_NE(std::string::npos, run.m_errors.find(c.m_message)) << run.m_errors;
        EXPECT_EQ(run.m_errors.size() - 1, run.m_errors.find('\n')) << "more than one line";
    }
}

TEST(CliUsage, RefusalOfWordsThatControlATerminalIsOneLine)
{
    const RUN run = run_program(PLLCALC, {"synth", "--in", "27\nM\x1b[2JHz", "--out", "5MHz"});
    EXPECT_EQ(2, run.m_status);
    EXPECT_EQ(0U, run.m_errors.find("pllcalc: --in: '27\\x0aM\\x1b[2JHz' has the unknown unit"))
        << run.m_errors;
    EXPECT_EQ(run.m_errors.size() - 1, run.m_errors.find('\n'));
}

TEST(CliUsage, MoreOutputsThanAnyDeviceHasAreRefused)
{
    std::string line = "synth --in 100MHz";
    for (int i = 0; i < 10; ++i) {
        line += " --out 50MHz";
    }
    EXPECT_EQ(0, run_pllcalc(line).m_status);
    const RUN run = run_pllcalc(line + " --out 50MHz");
    EXPECT_EQ(2, run.m_status);
    EXPECT_EQ("pllcalc: --out: 11 outputs are more than the device has; legal are 1 to 10\n",
              run.m_errors);
}

TEST(CliUsage, HelpOfEachCommandStartsWithExamplesThatWork)
{
    for (const char* command : {"", "synth ", "steps ", "dump ", "ratios ", "devices ", "device ",
                                "table ", "limits ", "new-device ", "errors "}) {
        SCOPED_TRACE(command);
        const RUN help = run_pllcalc(std::string(command) + "--help");
        EXPECT_EQ(0, help.m_status);
        const std::vector<std::string> lines = split(help.m_output, '\n');
        ASSERT_LT(1U, lines.size());
        EXPECT_EQ("Examples:", lines[0]);
        int examples = 0;
        for (std::size_t i = 1; lines[i].rfind("  pllcalc ", 0) == 0; ++i, ++examples) {
            SCOPED_TRACE(lines[i]);
            const RUN run =
                run_pllcalc(from_anywhere(lines[i].substr(std::string("  pllcalc ").size())));
            EXPECT_EQ(0, run.m_status) << run.m_output;
            EXPECT_EQ("", run.m_errors);
            EXPECT_NE("", run.m_output);
        }
        EXPECT_LT(0, examples);
        EXPECT_EQ(help.m_output, run_pllcalc(std::string(command) + "-h").m_output);
    }
}

TEST(CliUsage, HelpOfACommandIsThatOfItsOption)
{
    const RUN help = run_pllcalc("help synth");
    EXPECT_EQ(0, help.m_status);
    EXPECT_EQ(run_pllcalc("synth --help").m_output, help.m_output);
}

TEST(CliUsage, VersionIsPrinted)
{
    for (const char* word : {"--version", "-V"}) {
        const RUN run = run_pllcalc(word);
        EXPECT_EQ(0, run.m_status);
        EXPECT_EQ(0U, run.m_output.find("pllcalc 0."));
    }
}

struct HABIT_CASE
{
    const char* m_typed;
    const char* m_meant;
};

// clang-format off
constexpr HABIT_CASE HABIT_CASES[] = {
    // typed                               meant
    {"--in 27MHz --out 148.5MHz",          "synth --in 27MHz --out 148.5MHz"},
    {"-i 27 -o 148.5",                     "synth --in 27MHz --out 148.5MHz"},
    {"synth -i 27 -o 148.5",               "synth --in 27MHz --out 148.5MHz"},
    {"-i 27mhz -o 148.5",                  "synth --in 27MHz --out 148.5MHz"},
    {"-i 27 -o 148.5@90",                  "synth --in 27MHz --out 148.5MHz,phase=90"},
    {"-i 27 -o a=148.5@90",                "synth --in 27MHz --out 148.5MHz,phase=90,name=a"},
    {"-i 27 -o 24.576 --tolerance 1%",     "synth --in 27MHz --out 24.576MHz --tolerance 10000ppm"},
    {"-i 27 -o 148.5 --vco 600-900",       "synth --in 27MHz --out 148.5MHz --vco 600MHz..900MHz"},
    {"-i 27 -o 148.5 --post-scales 1,2",   "synth --in 27MHz --out 148.5MHz --post-scales 1-2"},
};
// clang-format on

TEST(CliUsage, HabitsMeanWhatIsSpelledOut)
{
    for (const HABIT_CASE& c : HABIT_CASES) {
        SCOPED_TRACE(c.m_typed);
        const RUN meant = run_pllcalc(c.m_meant);
        EXPECT_EQ(0, meant.m_status) << meant.m_errors;
        EXPECT_EQ(meant.m_output, run_pllcalc(c.m_typed).m_output);
    }
    const RUN blank = run_program(PLLCALC, {"--in", "27 MHz", "--out", "148.5 MHz"});
    EXPECT_EQ(run_pllcalc("-i 27 -o 148.5").m_output, blank.m_output);
}

}  // namespace
