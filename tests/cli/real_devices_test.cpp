// Real devices on the command line: lists, answers, and what primitives in Verilog come to.

#include "program.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace {

using testing::HasSubstr;
using JSON = nlohmann::json;

constexpr int MET = 0;
constexpr int NOT_MET = 1;
constexpr int USAGE = 2;

// A file of a test, by its path.
class VERILOG_FILE
{
public:
    explicit VERILOG_FILE(const std::string& text) : m_path(m_directory.file("top.v"))
    {
        std::ofstream(m_path) << text;
    }

    const std::string& path() const { return m_path; }

private:
    TEMP_DIR m_directory;
    std::string m_path;
};

constexpr const char* TWO_PLLS =
    "module top;\n"
    "SB_PLL40_CORE #(.DIVR(0), .DIVF(7'd66), .DIVQ(5)) good ();\n"
    "SB_PLL40_CORE #(.DIVR(1), .DIVF(7'd66), .DIVQ(4)) bad (); // 25.175 MHz\n"
    "endmodule\n";

TEST(RealDevices, AreListedWithoutADatabase)
{
    const RUN table = run_pllcalc("devices");
    EXPECT_EQ(MET, table.m_status);
    EXPECT_THAT(table.m_output, HasSubstr("xc7-plle2    7-series PLL      -1 -2 -3"));
    const RUN json = run_pllcalc("devices --format json");
    EXPECT_EQ(17U, JSON::parse(json.m_output).size());
}

TEST(RealDevices, AnswerExactly)
{
    const RUN run = run_pllcalc("synth --device ecp5 --in 25MHz --out pix=125MHz --out 250MHz@90");
    EXPECT_EQ(MET, run.m_status);
    EXPECT_THAT(run.m_output, HasSubstr("MET: every output is exact, every limit of ecp5 is kept"));
    EXPECT_THAT(run.m_output, HasSubstr("the spare output CLKOS2 is the M counter"));
    EXPECT_THAT(run.m_output, HasSubstr("not published for this device"));
}

TEST(RealDevices, ShowTheBorderingPhases)
{
    const RUN run = run_pllcalc("--device xc7-plle2:-1 -i 100 -o 10@270");
    EXPECT_EQ(MET, run.m_status);
    EXPECT_THAT(run.m_output, HasSubstr("270.000   269.438  270.562"));
}

TEST(RealDevices, SayWhatIsNotMet)
{
    const RUN run = run_pllcalc("--device ice40 -i 12 -o 25.175 --format json");
    EXPECT_EQ(NOT_MET, run.m_status);
    const JSON answer = JSON::parse(run.m_output);
    EXPECT_FALSE(answer.at("met"));
    EXPECT_EQ(NOT_MET, answer.at("exit_status"));
    EXPECT_EQ("804000000", answer.at("pll").at("vco_hz"));
    EXPECT_EQ("25125000", answer.at("outputs").at(0).at("frequency_hz"));
    EXPECT_EQ("frequency", answer.at("outputs").at(0).at("missed").at(0));
    EXPECT_EQ(NOT_MET, run_pllcalc("--device ice40 -i 5 -o 48 --summary").m_status);
}

// The exit status of verify for an answer.
int verify_answer(const JSON& answer)
{
    return run_pllcalc("verify " + VERILOG_FILE(answer.dump()).path()).m_status;
}

TEST(RealDevices, AnswersAreVerified)
{
    for (const char* const line :
         {"--device ecp5 -i 25 -o pix=125 -o 250@90", "--device xc7-plle2:-1 -i 100 -o 10@270",
          "--device xc7-mmcme2:-1 -i 100 -o 148.5", "--device nexus -i 24 -o 60 -o 48@90",
          "--device ice40 -i 12 -o 48 -o 24", "--device gw1nr-9 -i 27 -o 108@90 -o 54",
          "--device ecp5 -i 25 -o 100 -o 50 -o 25 -o 125"}) {
        const RUN run = run_pllcalc(std::string(line) + " --tolerance 1% --format json");
        ASSERT_EQ(MET, run.m_status) << line;
        EXPECT_EQ(MET, verify_answer(JSON::parse(run.m_output))) << line;
    }
}

TEST(RealDevices, AnswersThatAreChangedAreNotVerified)
{
    const RUN run = run_pllcalc("--device ecp5 -i 25 -o pix=125 -o 250@90 --format json");
    const JSON answer = JSON::parse(run.m_output);
    const JSON fields = answer.flatten();
    int changes = 0;
    for (const auto& field : fields.items()) {
        const std::string& path = field.key();
        const bool is_free =
            path.find("/request") == 0 || path.find("/offers") == 0 || path.find("/reasons") == 0;
        if (is_free || !field.value().is_primitive() || path == "/device") {
            continue;
        }
        JSON changed = answer;
        JSON& value = changed[JSON::json_pointer(path)];
        value = value.is_boolean()  ? JSON(!value.get<bool>())
                : value.is_number() ? JSON(value.get<double>() + 1.0)
                : value.is_string() ? JSON("1" + value.get<std::string>())
                                    : JSON("x");
        EXPECT_NE(MET, verify_answer(changed)) << path;
        ++changes;
    }
    EXPECT_LT(100, changes);
}

TEST(RealDevices, AnswersAreVerifiedByWishAndLimitToo)
{
    JSON answer = JSON::parse(run_pllcalc("--device ecp5 -i 25 -o pix=125 --format json").m_output);
    answer["request"]["outputs"][0]["frequency_hz"] = "126000000";
    EXPECT_EQ(NOT_MET, verify_answer(answer));
    answer["device"] = "no-such";
    EXPECT_EQ(USAGE, verify_answer(answer));
}

TEST(RealDevices, TakeAnObjective)
{
    const std::string request =
        "--device xc7-plle2:-2 -i 200 -o 200 -o 800 -o 800 -o 200 -o 148.5 --format json";
    const auto worst = [](const std::string& line) {
        const JSON answer = JSON::parse(run_pllcalc(line).m_output);
        double largest = 0.0;
        for (const JSON& output : answer.at("outputs")) {
            largest = std::max(largest, std::abs(output.at("error_ppb").get<double>()));
        }
        return largest;
    };
    EXPECT_NEAR(2.051e7, worst(request), 1e4);
    EXPECT_NEAR(1.786e7, worst(request + " --objective worst"), 1e4);
    EXPECT_EQ(USAGE, run_pllcalc(request + " --objective best").m_status);
}

TEST(RealDevices, RefuseWhatIsNotPublished)
{
    for (const char* option :
         {"--bandwidth low", "--spread 0.5%", "--in2 26MHz", "--reconfig", "--vco 600-700MHz"}) {
        const RUN run = run_pllcalc(std::string("--device ecp5 -i 25 -o 125 ") + option);
        EXPECT_EQ(USAGE, run.m_status) << option;
        EXPECT_THAT(run.m_errors, HasSubstr("not together with")) << option;
    }
    const RUN unknown = run_pllcalc("--device ecp6 -i 25 -o 125");
    EXPECT_EQ(USAGE, unknown.m_status);
    EXPECT_THAT(unknown.m_errors, HasSubstr("unknown device 'ecp6'; legal are ecp5"));
}

TEST(VerifyVerilog, JudgesEveryInstance)
{
    const VERILOG_FILE file(TWO_PLLS);
    const RUN run = run_pllcalc("verify " + file.path() + " --input 12MHz");
    EXPECT_EQ(NOT_MET, run.m_status);
    EXPECT_THAT(run.m_output, HasSubstr("ILLEGAL: 1 of 2\n"));
    EXPECT_THAT(run.m_output, HasSubstr("top.v:2: legal on ice40"));
    EXPECT_THAT(run.m_output, HasSubstr("top.v:3: illegal on ice40"));
    EXPECT_THAT(run.m_output,
                HasSubstr("pfd 6 MHz: BROKEN, 4 MHz below 10 to 133 (icestorm, litex)"));
    EXPECT_THAT(run.m_output, HasSubstr("the comment says 25.175 MHz"));
}

TEST(VerifyVerilog, WritesJson)
{
    const VERILOG_FILE file(TWO_PLLS);
    const RUN run = run_pllcalc("verify " + file.path() + " --input 12MHz --format json");
    EXPECT_EQ(NOT_MET, run.m_status);
    const JSON answer = JSON::parse(run.m_output);
    EXPECT_EQ(1, answer.at("schema_version"));
    EXPECT_EQ("verify", answer.at("command"));
    EXPECT_FALSE(answer.at("met"));
    EXPECT_EQ(NOT_MET, answer.at("exit_status"));
    const JSON& good = answer.at("instances").at(0);
    EXPECT_EQ("SB_PLL40_CORE", good.at("primitive"));
    EXPECT_EQ("good", good.at("name"));
    EXPECT_EQ(2, good.at("line"));
    EXPECT_EQ("legal", good.at("legal"));
    EXPECT_EQ("804000000", good.at("vco_hz"));
    EXPECT_EQ("PLLOUT", good.at("outputs").at(0).at("name"));
    EXPECT_EQ("25125000", good.at("outputs").at(0).at("frequency_hz"));
    EXPECT_EQ("illegal", answer.at("instances").at(1).at("legal"));
}

TEST(VerifyVerilog, NeedsASettingAndItsInput)
{
    const VERILOG_FILE two(TWO_PLLS);
    const RUN unknown = run_pllcalc("verify " + two.path());
    EXPECT_EQ(USAGE, unknown.m_status);
    EXPECT_THAT(unknown.m_output, HasSubstr("give it with --input"));
    const VERILOG_FILE none("module top; endmodule\n");
    const RUN nothing = run_pllcalc("verify " + none.path());
    EXPECT_EQ(USAGE, nothing.m_status);
    EXPECT_THAT(nothing.m_errors, HasSubstr("there is no PLL primitive with parameters"));
    EXPECT_EQ(USAGE, run_pllcalc("verify").m_status);
    EXPECT_EQ(4, run_pllcalc("verify /nowhere/top.v").m_status);
}

TEST(RealDevices, LintCleanAndTheirSheetsAreLinted)
{
    const RUN clean = run_pllcalc("lint -Werror @DATA@/devices");
    EXPECT_EQ(MET, clean.m_status) << clean.m_output;
    EXPECT_THAT(clean.m_output, HasSubstr("nothing wrong in "));
    EXPECT_EQ(MET, run_pllcalc("lint @DATA@/devices/ecp5/ecp5.toml").m_status);
    EXPECT_EQ(3, run_pllcalc("lint @DATA@/broken/device-sheet/small/small.toml").m_status);
}

}  // namespace
