// What is offered in the place of a request that is not met is met when it is asked for.
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>

namespace {

const char* const MISSED[] = {
    "--in 25MHz --out 1kHz",
    "--in 27MHz --out 148.5MHz --out 24.576MHz",
    "--in 27MHz --out 148.5/1.001MHz",
    "--in 100MHz --out 300MHz,phase=20",
    "--in 100MHz --out 300MHz,duty=37",
    "--in 100MHz --out 50MHz --spread 0.8%",
    "--in 100MHz --out 50MHz,delay=2000 --out 25MHz,delay=-2000",
    "--in 100MHz --out 50MHz --bandwidth 50MHz",
    "--in 27MHz --out 148.5MHz --vco-ratio 25",
    "--in 200MHz --out 200MHz --out 800MHz --out 148.5MHz",
    "--in 10MHz --out a=40MHz --out b=99MHz,phase=90,to=a",
    "--database @DATA@/sample --family Chervil --part CH30-6 --in 27MHz --out 500MHz",
};

// The command lines that an answer offers, without the program's name.
std::vector<std::string> list_commands(const std::string& text)
{
    const std::string start = "  pllcalc ";
    std::vector<std::string> commands;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.substr(0, start.size()) == start) {
            commands.push_back(line.substr(start.size()));
        }
    }
    return commands;
}

TEST(Explain, OffersWhatIsMetWhenItIsAskedFor)
{
    std::size_t offers = 0;
    for (const char* const request : MISSED) {
        SCOPED_TRACE(request);
        const RUN run = run_pllcalc(std::string("explain ") + request);
        EXPECT_EQ(1, run.m_status);
        EXPECT_EQ("", run.m_errors);
        const std::vector<std::string> commands = list_commands(run.m_output);
        EXPECT_FALSE(commands.empty()) << run.m_output;
        for (const std::string& command : commands) {
            EXPECT_EQ(0, run_pllcalc(command).m_status) << command;
            ++offers;
        }
    }
    EXPECT_LT(25U, offers);
}

TEST(Explain, OffersTheSameInJson)
{
    for (const char* const request : MISSED) {
        SCOPED_TRACE(request);
        const RUN run = run_pllcalc(std::string("synth ") + request + " --format json");
        const nlohmann::json answer = nlohmann::json::parse(run.m_output);
        EXPECT_FALSE(answer.at("met").get<bool>());
        EXPECT_EQ(1, answer.at("exit_status"));
        const std::vector<std::string> commands =
            list_commands(run_pllcalc(std::string("explain ") + request).m_output);
        ASSERT_EQ(commands.size(), answer.at("offers").size());
        for (std::size_t i = 0; i < commands.size(); ++i) {
            EXPECT_EQ("pllcalc " + commands[i], answer.at("offers")[i].at("command"));
        }
    }
}

TEST(Explain, NamesTheCounterThatEndedAndTheConflict)
{
    const RUN run = run_pllcalc("explain --in 25MHz --out 1kHz --tolerance 0ppm");
    EXPECT_EQ(0U, run.m_output.find("output 1 needs a division of the VCO by 299941 or more"))
        << run.m_output;
    EXPECT_NE(std::string::npos, run.m_output.find("; the largest is 1024\n")) << run.m_output;
    EXPECT_NE(std::string::npos,
              run.m_output.find("output 1 at 1 kHz and the limit half_max = 512 (built in) exclude "
                                "one another"))
        << run.m_output;
}

// A device that wants a PFD of 100000 times the bandwidth has rows, and can take none.
TEST(Explain, NamesTheRowsThatCameClosest)
{
    const TEMP_DIR dir;
    std::filesystem::copy(std::string(PLL_DATA_DIR) + "/sample", dir.file("data"),
                          std::filesystem::copy_options::recursive);
    const std::string family = dir.file("data/chervil/chervil_pll.txt");
    std::string text = read_file(family);
    const std::string multiplier = "bandwidth_pfd_min_frequency_multiplier  8";
    const std::size_t at = text.find(multiplier);
    ASSERT_NE(std::string::npos, at);
    write_file(family, text.replace(at, multiplier.size(),
                                    multiplier.substr(0, multiplier.size() - 1) + "100000"));

    const RUN run = run_pllcalc("explain --database " + dir.file("data") +
                                " --family Chervil --part CH30-6 --in 27MHz --out 40.5MHz");
    EXPECT_EQ(1, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_output.find("closest row: 10 uA, 6000 ohm, bandwidth up to 404 kHz, 403.73 kHz "
                                "above what the PFD allows\nclosest row: 45 uA, 3000 ohm, "))
        << run.m_output;
}

TEST(Explain, HasNothingToSayOfWhatIsMet)
{
    const RUN run = run_pllcalc("explain --in 27MHz --out 148.5MHz");
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ("MET", run.m_output.substr(0, 3));
    EXPECT_EQ(std::string::npos, run.m_output.find("instead"));
}

TEST(Explain, StandsInShortUnderAnAnswerThatIsNotMet)
{
    const std::string text =
        run_pllcalc("synth --in 27MHz --out 148.5MHz --out 24.576MHz").m_output;
    EXPECT_NE(std::string::npos, text.find("What can be had instead:\n")) << text;
    EXPECT_EQ(3U, list_commands(text).size());
}

}  // namespace
