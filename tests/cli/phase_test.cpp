// Phases are those of the clocks that leave the PLL: the counters that the program prints delay an
// output by as much of its period as the program says.
//
// Start s and VCO tap t delay a clock by s - 1 + t / 8 VCO periods. The loop makes the path that is
// fed back coincide with the input, so its delay counts against that of the others.
#include "program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace {

constexpr double FULL_TURN = 360.0;
constexpr double VCO_TAPS = 8.0;
constexpr double ROUNDING = 0.00051;  // of three decimals

double number_of(const std::string& cell)
{
    return std::atof(cell.c_str() + (cell[0] == '~' ? 1 : 0));
}

// The lines of the table whose heads contain `head`, as cells.
std::vector<std::vector<std::string>> read_table(const std::string& output, const std::string& head)
{
    std::vector<std::vector<std::string>> rows;
    bool inside = false;
    for (const std::string& line : split(output, '\n')) {
        inside = line.find(head) != std::string::npos || (inside && !line.empty());
        if (inside) {
            rows.push_back(words_of(line));
        }
    }
    return rows;
}

// What the program prints of an answer, and the phase that follows from its counters.
class ANSWERED
{
public:
    explicit ANSWERED(const std::string& request)
    {
        const RUN run = run_pllcalc("synth " + request);
        m_output = run.m_output + run.m_errors;
        m_status = run.m_status;
        const auto loop = read_table(m_output, "post-scale");
        m_frequencies = read_table(m_output, "ratio ");
        m_phases = read_table(m_output, "previous");
        m_counters = read_table(m_output, "fed by");
        m_vco = loop.size() > 2 ? number_of(loop[2][4]) : 0.0;
        m_feedback = loop.size() > 2 && loop[2][6] == "output" ? std::atoi(loop[2][7].c_str()) : 0;
    }

    // Degrees of output `number` that its counters make.
    double find_phase(std::size_t number) const
    {
        const std::size_t reference = m_feedback > 0 ? std::size_t(m_feedback) : 0;
        const double periods = find_delay(number) - find_delay(reference);  // of the VCO
        return periods / m_vco * number_of(m_frequencies[1 + number][2]) * FULL_TURN;
    }

    // A cell of the line of output `number`; 1 is the phase asked for, then achieved, previous,
    // next.
    double get_phase(std::size_t number, std::size_t cell) const
    {
        return number_of(m_phases[1 + number][cell]);
    }

    double find_step(std::size_t number) const
    {
        return FULL_TURN / VCO_TAPS / m_vco * number_of(m_frequencies[1 + number][2]);
    }

    const std::vector<std::string>& get_counter(std::size_t number) const
    {
        return m_counters[2 + number];
    }

    bool is_complete(std::size_t outputs) const
    {
        return m_frequencies.size() > 1 + outputs && m_phases.size() > 1 + outputs &&
               m_counters.size() > 2 + outputs && m_vco > 0.0;
    }

    int m_status;
    std::string m_output;

private:
    // VCO periods; number 0 is counter M. Its name is one word, those of the outputs are two.
    double find_delay(std::size_t number) const
    {
        const std::vector<std::string>& counter = get_counter(number);
        const std::size_t start = number == 0 ? 5 : 6;
        return number_of(counter[start]) - 1.0 + number_of(counter[start + 1]) / VCO_TAPS;
    }

    double m_vco;    // MHz
    int m_feedback;  // 0: counter M
    std::vector<std::vector<std::string>> m_frequencies;
    std::vector<std::vector<std::string>> m_phases;
    std::vector<std::vector<std::string>> m_counters;
};

struct PHASE_CASE
{
    const char* m_request;
    std::vector<double> m_asked;  // degrees of each output
};

// clang-format off
const PHASE_CASE PHASE_CASES[] = {
    {"--in 27MHz --out 148.5MHz,phase=90",                                       {90}},
    {"--in 27MHz --out 148.5MHz --out 148.5MHz,phase=90",                        {0, 90}},
    {"--in 27MHz --out ratio=11/2,phase=-90 --out ratio=11/4,phase=45",          {-90, 45}},
    {"--in 90MHz --out ratio=1/3,phase=90",                                      {90}},
    {"--in 90MHz --out ratio=1/3,phase=-120 --out 90MHz --out 180MHz,phase=180", {-120, 0, 180}},
    {"--in 90MHz --out ratio=1/3,phase=360 --out ratio=1/3,phase=-360",          {360, -360}},
    {"--in 100MHz --out 50MHz,phase=5ns",                                        {90}},
    {"--in 100MHz --out 250MHz,phase=1ns --out 50MHz,phase=-1ns",                {90, -18}},
    {"--in 27MHz --out 24.576MHz,phase=90 --out 24.576MHz,phase=-33",            {90, -33}},
    {"--in 100MHz --out 50MHz,phase=90 --out 200MHz --feedback 2",               {90, 0}},
    {"--in 100MHz --out 50MHz,phase=-90 --out 25MHz --out 100MHz,phase=17 --feedback 2", {-90, 0, 17}},
    {"--in 25MHz --out 125MHz,phase=72 --out 50MHz,phase=144 --out 5MHz,phase=-7", {72, 144, -7}},
};
// clang-format on

TEST(CliPhase, IsThatOfTheOutputWhoseCountersArePrinted)
{
    for (const PHASE_CASE& c : PHASE_CASES) {
        SCOPED_TRACE(c.m_request);
        const ANSWERED answer(c.m_request + std::string(" --phase-tolerance 12"));
        EXPECT_EQ(0, answer.m_status) << answer.m_output;
        ASSERT_TRUE(answer.is_complete(c.m_asked.size())) << answer.m_output;
        for (std::size_t i = 1; i <= c.m_asked.size(); ++i) {
            SCOPED_TRACE(i);
            EXPECT_NEAR(c.m_asked[i - 1], answer.get_phase(i, 1), ROUNDING);
            EXPECT_NEAR(answer.find_phase(i), answer.get_phase(i, 2), ROUNDING);
            // Two roundings to a tap, of the reference and of the output.
            EXPECT_NEAR(c.m_asked[i - 1], answer.find_phase(i), answer.find_step(i) + ROUNDING);
        }
    }
}

TEST(CliPhase, NeighboursLieOnBothSidesWithinAStepOfTheAnswer)
{
    for (const PHASE_CASE& c : PHASE_CASES) {
        SCOPED_TRACE(c.m_request);
        const ANSWERED answer(c.m_request);
        ASSERT_TRUE(answer.is_complete(c.m_asked.size())) << answer.m_output;
        const bool has_feedback =
            std::string(c.m_request).find("--feedback 2") != std::string::npos;
        for (std::size_t i = 1; i <= c.m_asked.size(); ++i) {
            if (has_feedback && i == 2) {
                continue;  // the loop holds it at 0
            }
            SCOPED_TRACE(i);
            EXPECT_LE(answer.get_phase(i, 3), answer.get_phase(i, 1));
            EXPECT_GE(answer.get_phase(i, 4), answer.get_phase(i, 1));
            EXPECT_LE(answer.get_phase(i, 2) - answer.get_phase(i, 3),
                      answer.find_step(i) + ROUNDING);
            EXPECT_LE(answer.get_phase(i, 4) - answer.get_phase(i, 2),
                      answer.find_step(i) + ROUNDING);
        }
    }
}

TEST(CliPhase, OfTheFedBackOutputIsHeldAtZero)
{
    const ANSWERED answer("--in 100MHz --out 50MHz --out 200MHz,phase=90 --feedback 2");
    ASSERT_TRUE(answer.is_complete(2)) << answer.m_output;
    EXPECT_NEAR(90.0, answer.get_phase(2, 1), ROUNDING);
    EXPECT_NEAR(0.0, answer.get_phase(2, 2), ROUNDING);
    EXPECT_NE(std::string::npos, answer.m_output.find("  90.000     0.000         -        -  "))
        << answer.m_output;
}

TEST(CliPhase, OfAQuarterIsAQuarterOfTheCount)
{
    const ANSWERED answer("--in 27MHz --out 148.5MHz,phase=90");
    ASSERT_TRUE(answer.is_complete(1)) << answer.m_output;
    const std::vector<std::string>& counter = answer.get_counter(1);
    const double count = number_of(counter[2]);
    const double delay = number_of(counter[6]) - 1.0 + number_of(counter[7]) / VCO_TAPS;
    EXPECT_EQ(count / 4.0, delay) << answer.m_output;
}

TEST(CliPhase, StepsAreVcoTapsOfTheOutput)
{
    // A VCO of 600 MHz: an eighth of its period is 45 / 12 degrees of 50 MHz, 45 / 6 of 100 MHz.
    const std::string output =
        run_pllcalc("steps --in 100MHz --out 50MHz,phase=45 --out 100MHz,phase=-45").m_output;
    EXPECT_NE(std::string::npos, output.find("\n   0  45.000  50.000  <- the answer\n")) << output;
    EXPECT_NE(std::string::npos, output.find("\n  +1  48.750  54.167\n")) << output;
    EXPECT_NE(std::string::npos, output.find("\n  -1  41.250  45.833\n")) << output;
    EXPECT_NE(std::string::npos, output.find("\n  +1  -37.500  58.333\n")) << output;
    const std::string fed_back =
        run_pllcalc("steps --in 100MHz --out 50MHz --out 100MHz --feedback 1").m_output;
    EXPECT_NE(std::string::npos, fed_back.find("\n   0  0.000  50.000  <- the answer\n"))
        << fed_back;
    EXPECT_NE(std::string::npos, fed_back.find("\n  +1      -  ")) << fed_back;
    EXPECT_NE(std::string::npos, fed_back.find("\n  -1   -7.500  41.667\n")) << fed_back;
}

}  // namespace
