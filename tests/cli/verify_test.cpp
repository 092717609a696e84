// synth --format json into verify, as a user types it.
#include "program.h"
#include "temp_dir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace {

std::string answer_to(const std::string& request)
{
    return run_pllcalc("synth " + request + " --format json").m_output;
}

RUN verify(const std::string& answer, const std::string& options = "")
{
    const TEMP_DIR directory;
    const std::string file = directory.file("answer.json");
    std::ofstream(file) << answer;
    return run_pllcalc("verify " + file + options);
}

const char* const REQUESTS[] = {
    "--in 27MHz --out pix=148.5MHz,phase=90",
    "--in 27MHz --out 148.5MHz --out 74.25MHz,duty=40,delay=250 --out 24.75MHz@45",
    "--in 27MHz --out 74.25/1.001MHz",
    "--in 100MHz --out 50MHz --spread 0.5% --spread-rate 40kHz --spread-tolerance 100%",
    "--in 100MHz --out 25MHz --out 50MHz,phase=90,to=1 --feedback 1",
    "--in 100MHz --out 50MHz --vco 600-1200MHz --m 1-128",
    "--database @DATA@/sample --family Sorrel --type ENHANCED_PLL --part SR20-7 --migrate "
    "Chervil:CH30-6 --in 27MHz --out 40.5MHz",
};

TEST(Verify, IsCleanForWhatSynthWrites)
{
    for (const char* const request : REQUESTS) {
        SCOPED_TRACE(request);
        const RUN run = verify(answer_to(request));
        EXPECT_EQ(0, run.m_status) << run.m_output;
        EXPECT_EQ("CLEAN", run.m_output.substr(0, 5)) << run.m_output;
        EXPECT_EQ("", run.m_errors);
    }
}

TEST(Verify, NamesALimitThatIsBroken)
{
    nlohmann::ordered_json answer =
        nlohmann::ordered_json::parse(answer_to("--in 27MHz --out 148.5MHz"));
    answer["pll"]["m"] = 44;
    const RUN run = verify(answer.dump());
    EXPECT_EQ(1, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_output.find("limits: BROKEN vco_max: VCO 1188 MHz, legal is at most 1000 MHz "
                                "(built in)\n"))
        << run.m_output;
    EXPECT_NE(std::string::npos, run.m_output.find("outputs[0].ratio: is \"11/2\"; it should be "
                                                   "\"11\"\n"))
        << run.m_output;
}

TEST(Verify, JudgesWithinTheDeviceThatTheCommandLineNames)
{
    const std::string answer = answer_to("--in 27MHz --out 148.5MHz");
    const RUN run = verify(
        answer, " --database @DATA@/sample --family Sorrel --type ENHANCED_PLL --part SR20-7");
    EXPECT_EQ(1, run.m_status);
    EXPECT_NE(std::string::npos, run.m_output.find("limits: has ")) << run.m_output;
}

TEST(Verify, HasAStatusOfItsOwnForNoSetting)
{
    const RUN run = verify(answer_to("--in 1kHz --out 1MHz"));
    EXPECT_EQ(2, run.m_status);
    EXPECT_EQ("NO SETTING: the answer holds no counters\n", run.m_output);
}

TEST(Verify, RefusesWhatIsNoAnswer)
{
    const RUN cut = verify("{\n\"met\": ");
    EXPECT_EQ(2, cut.m_status);
    EXPECT_NE(std::string::npos, cut.m_errors.find("expected JSON")) << cut.m_errors;
    const RUN empty = verify("{}");
    EXPECT_EQ(2, empty.m_status);
    EXPECT_NE(std::string::npos, empty.m_errors.find("needs the key 'request'")) << empty.m_errors;
    EXPECT_EQ(4, run_pllcalc("verify /nonexistent/answer.json").m_status);
    EXPECT_EQ(2, run_pllcalc("verify").m_status);
}

TEST(Verify, SpeaksJsonItself)
{
    const RUN run = verify(answer_to("--in 27MHz --out 148.5MHz"), " --format json");
    const nlohmann::json result = nlohmann::json::parse(run.m_output);
    EXPECT_EQ("verify", result.at("command"));
    EXPECT_TRUE(result.at("clean").get<bool>());
    EXPECT_EQ(0, result.at("exit_status"));
    EXPECT_TRUE(result.at("findings").empty());
}

}  // namespace
