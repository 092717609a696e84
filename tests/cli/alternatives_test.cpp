// Other settings, other inputs and several PLLs: every one is what it says.
#include "program.h"
#include "temp_dir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

json run_json(const std::string& line, int status = 0)
{
    const RUN run = run_pllcalc(line + " --format json");
    EXPECT_EQ(status, run.m_status) << line << "\n" << run.m_errors;
    return json::parse(run.m_output);
}

RUN verify(const json& document)
{
    const TEMP_DIR directory;
    const std::string file = directory.file("answer.json");
    write_file(file, document.dump());
    return run_pllcalc("verify " + file);
}

TEST(Alternatives, BeginWithTheAnswerAndAreAllClean)
{
    const std::string request = "--in 27MHz --out 148.5MHz --out 74.25MHz,phase=90";
    const json list = run_json("alternatives " + request + " --top 4");
    ASSERT_EQ(4U, list.at("alternatives").size());
    json answer = run_json("synth " + request);
    EXPECT_EQ(answer.at("pll"), list.at("alternatives")[0].at("pll"));
    EXPECT_EQ(0, verify(list).m_status);
}

TEST(Alternatives, AreDistinctAndRankedByTheirCriterion)
{
    const json list = run_json("alternatives --in 27MHz --out 148.5MHz --by vco-lowest --top 4");
    double previous = 0.0;
    for (const json& alternative : list.at("alternatives")) {
        const double vco = std::stod(alternative.at("pll").at("vco_hz").get<std::string>());
        EXPECT_LT(previous, vco);
        previous = vco;
    }
    EXPECT_LT(0.0, previous);
}

TEST(Alternatives, StandBehindSynthToo)
{
    EXPECT_EQ(run_pllcalc("alternatives --in 27MHz --out 148.5MHz --top 2").m_output,
              run_pllcalc("synth --in 27MHz --out 148.5MHz --top 2").m_output);
    EXPECT_EQ(1, run_pllcalc("alternatives --in 27MHz --out 148.5MHz --out 24.576MHz").m_status);
    EXPECT_EQ(2, run_pllcalc("alternatives --in 27MHz --out 5MHz --by luck").m_status);
}

TEST(Crystal, RanksThoseThatMeetTheRequestFirst)
{
    const json list = run_json("crystal --out 125MHz --inputs 14.31818MHz,25MHz,24MHz");
    ASSERT_EQ(3U, list.at("crystals").size());
    EXPECT_TRUE(list.at("crystals")[0].at("met").get<bool>());
    EXPECT_FALSE(list.at("crystals")[2].at("met").get<bool>());
    EXPECT_EQ("14318180", list.at("crystals")[2].at("input_hz"));
}

TEST(Crystal, WalksARange)
{
    const json list = run_json("crystal --out 125MHz --inputs 24-26MHz --step 1MHz");
    EXPECT_EQ(3U, list.at("crystals").size());
    EXPECT_EQ(2, run_pllcalc("crystal --out 125MHz --inputs 24-26MHz --step 1Hz").m_status);
}

TEST(SeveralPlls, ShareWhatOneCannotMake)
{
    const RUN run = run_pllcalc("synth --in 27MHz --out a=148.5MHz --out b=24.576MHz --plls 2");
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ("MET with 2 PLLs\n"
              "PLL 1: a\n  pllcalc synth --in 27MHz --out 148.5MHz,name=a\n"
              "PLL 2: b\n  pllcalc synth --in 27MHz --out 24.576MHz,name=b\n",
              run.m_output);
    EXPECT_EQ(1, run_pllcalc("synth --in 27MHz --out 148.5MHz --out 24.576MHz --plls 1").m_status);
}

}  // namespace
