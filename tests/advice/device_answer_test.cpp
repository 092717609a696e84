// Exact answers for real devices: every wish that people had of their settings is answered as well
// as it can be, and what is answered keeps every limit.
#include "advice/answer/answer.h"
#include "advice/devices/device_answer.h"

#include "pll_manager.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace advice {
namespace {

using JSON = nlohmann::json;

const SHEET_CATALOG& catalog()
{
    static const SHEET_CATALOG CATALOG(PLL_DATA_DIR "/devices");
    return CATALOG;
}

// Frequencies in MHz.
DEVICE_REQUEST make_request(const char* device, const char* input,
                            const std::vector<std::string>& outputs)
{
    std::string problem;
    const std::optional<DEVICE_CHOICE> choice = catalog().choose(device, &problem);
    EXPECT_EQ("", problem);
    DEVICE_REQUEST request;
    request.m_device = {choice->m_sheet, choice->m_grade};
    const RATIONAL mega(1000000);
    request.m_request.m_input = make_input(*RATIONAL::parse(input) * mega);
    for (const std::string& output : outputs) {
        OUTPUT_WISH wish;
        wish.m_frequency = *RATIONAL::parse(output) * mega;
        wish.m_ratio = wish.m_frequency / request.m_request.m_input.m_frequency;
        request.m_request.m_outputs.push_back(wish);
    }
    return request;
}

void expect_legal(const DEVICE_ANSWER& answer)
{
    for (const JUDGED_FIGURE& figure : answer.m_figures) {
        EXPECT_TRUE(figure.m_kept) << name_of(figure.m_figure.m_kind) << " " << figure.m_output
                                   << " " << figure.m_value.to_fraction();
    }
}

double worst_ppm(const DEVICE_ANSWER& answer)
{
    double worst = 0.0;
    for (const DEVICE_CLOCK& clock : answer.m_clocks) {
        worst = std::max(worst, std::abs(clock.m_error.to_double()) * 1e6);
    }
    return worst;
}

std::string device_of(const JSON& example)
{
    const std::string family = example.at("family");
    const JSON& best = example.at("best_possible");
    const std::string grade = best.contains("grade") ? best.at("grade").get<std::string>() : "";
    const std::string word = example.at("grade").is_string() ? example.at("grade") : "";
    if (family == "Gowin-rPLL") {
        for (const SHEET* sheet : catalog().get_sheets()) {
            for (const std::string& device : sheet->m_devices) {
                if (device == word) {
                    return sheet->m_name;
                }
            }
        }
    }
    const std::map<std::string, std::string> names = {{"Xilinx7-PLLE2", "xc7-plle2:"},
                                                      {"Xilinx7-MMCME2", "xc7-mmcme2:"},
                                                      {"UltraScale-MMCME3", "xcu-mmcme3:"},
                                                      {"UltraScale+-MMCME4", "xcup-mmcme4:"},
                                                      {"Spartan6-PLL", "xc6-pll:"},
                                                      {"ECP5", "ecp5"},
                                                      {"iCE40", "ice40"},
                                                      {"Nexus", "nexus"}};
    return names.at(family) + grade;
}

TEST(DeviceAnswer, IsTheBestPossibleForEveryRealWish)
{
    std::ifstream stream(PLL_EXAMPLES);
    int answered = 0;
    for (const JSON& example : JSON::parse(stream)) {
        const JSON& best = example.at("best_possible");
        if (best.is_null()) {
            continue;
        }
        SCOPED_TRACE(example.at("id").get<std::string>());
        DEVICE_REQUEST request = make_request(
            device_of(example).c_str(), example.at("input_mhz").get<std::string>().c_str(),
            example.at("requested_mhz").get<std::vector<std::string>>());
        request.m_objective = OBJECTIVE::WORST;
        const DEVICE_ANSWER answer = answer_for_device(request);
        ASSERT_TRUE(answer.m_has_setting);
        const bool asks_for_the_illegal = example.at("id") == "ecp5-003";  // 540 of 400 MHz
        if (!asks_for_the_illegal) {
            expect_legal(answer);
        }
        const char* kind = best.contains("strict")       ? "strict"
                           : best.contains("fractional") ? "fractional"
                                                         : "integer";
        // 16 MHz is exact behind the divider of a second output.
        const bool is_better_by_a_detour = example.at("id") == "gowin-rpll-034";
        const double expected =
            is_better_by_a_detour ? 0.0 : best.at(kind).at("max_error_ppm").get<double>();
        EXPECT_NEAR(expected, worst_ppm(answer), expected * 1e-6 + 0.001);
        ++answered;
    }
    EXPECT_EQ(55, answered);
}

TEST(DeviceAnswer, MinimisesTheLargestErrorOnWish)
{
    DEVICE_REQUEST request =
        make_request("xc7-plle2:-2", "200", {"200", "800", "800", "200", "148.5"});
    EXPECT_NEAR(20510.0, worst_ppm(answer_for_device(request)), 5.0);
    request.m_objective = OBJECTIVE::WORST;
    EXPECT_NEAR(17860.0, worst_ppm(answer_for_device(request)), 5.0);
}

TEST(DeviceAnswer, IsExactAtTheBorder)
{
    const DEVICE_ANSWER answer = answer_for_device(make_request("gw1nr-9", "24", {"9"}));
    EXPECT_TRUE(answer.m_met);
    EXPECT_EQ(RATIONAL(8), answer.m_n);
    EXPECT_EQ(RATIONAL(3), answer.m_pfd);
    // 1866 MHz and no more.
    EXPECT_TRUE(answer_for_device(make_request("xc7-plle2:-2", "933", {"1866"})).m_met);
    EXPECT_FALSE(answer_for_device(make_request("xc7-plle2:-2", "933", {"1867"})).m_met);
}

TEST(DeviceAnswer, ToAnIllegalClockIsNotMetAndSaysSo)
{
    const DEVICE_ANSWER answer = answer_for_device(make_request("ecp5", "25", {"500"}));
    EXPECT_EQ(RATIONAL(500), answer.m_clocks.at(0).m_frequency);
    EXPECT_FALSE(answer.m_met);
    ASSERT_EQ(1U, answer.m_reasons.size());
    EXPECT_EQ("BROKEN limit output of CLKOP: 500.000000 MHz, legal are 3.125 to 400",
              answer.m_reasons[0]);
    EXPECT_TRUE(answer_for_device(make_request("ecp5", "25", {"400"})).m_met);
}

TEST(DeviceAnswer, TellsTheStepsOfAPhase)
{
    DEVICE_REQUEST request = make_request("xc7-plle2:-1", "100", {"10"});
    request.m_request.m_outputs[0].m_phase = RATIONAL(270);
    const DEVICE_ANSWER answer = answer_for_device(request);
    ASSERT_TRUE(answer.m_met);
    EXPECT_EQ(RATIONAL(270), answer.m_clocks[0].m_phase);
    EXPECT_EQ(RATIONAL(9, 16), answer.m_clocks[0].m_phase_step);
}

TEST(DeviceAnswer, FeedsASpareOutputBackOrTheOneThatErrsLeast)
{
    const DEVICE_ANSWER spare = answer_for_device(make_request("ecp5", "25", {"125", "250", "25"}));
    EXPECT_TRUE(spare.m_met);
    EXPECT_EQ("CLKOS3", spare.m_spare);
    EXPECT_EQ("INT_OS3", spare.m_path);
    DEVICE_REQUEST full = make_request("ecp5", "25", {"125", "250", "25", "62.5"});
    const DEVICE_ANSWER fed_back = answer_for_device(full);
    EXPECT_TRUE(fed_back.m_met);
    EXPECT_EQ("", fed_back.m_spare);
    full.m_request.m_feedback = 2;
    EXPECT_EQ("CLKOS2", answer_for_device(full).m_path);
}

TEST(DeviceAnswer, CountsInEighthsWhereWholeNumbersMiss)
{
    DEVICE_REQUEST request = make_request("xc7-mmcme2:-1", "100", {"88.8"});
    const DEVICE_ANSWER fractional = answer_for_device(request);
    EXPECT_TRUE(fractional.m_has_fractions);
    request.m_fractions = false;
    const DEVICE_ANSWER whole = answer_for_device(request);
    EXPECT_FALSE(whole.m_has_fractions);
    EXPECT_LT(worst_ppm(fractional), worst_ppm(whole));
    request.m_fractions = true;
    request.m_request.m_outputs[0].m_phase = RATIONAL(90);
    EXPECT_TRUE(answer_for_device(request).m_clocks[0].m_count.is_integer());
    EXPECT_FALSE(answer_for_device(make_request("xc7-mmcme2:-1", "100", {"50"})).m_has_fractions);
}

TEST(DeviceAnswer, UsesTheSecondaryOutputs)
{
    DEVICE_REQUEST gowin = make_request("gw1nr-9c", "27", {"126", "126", "42", "63"});
    gowin.m_request.m_outputs[1].m_phase = RATIONAL(45, 2);
    gowin.m_request.m_outputs[1].m_duty = RATIONAL(25);
    const DEVICE_ANSWER tables = answer_for_device(gowin);
    EXPECT_TRUE(tables.m_met);
    EXPECT_EQ("CLKOUT", tables.m_clocks[0].m_output);
    EXPECT_EQ("CLKOUTP", tables.m_clocks[1].m_output);
    EXPECT_EQ("CLKOUTD3", tables.m_clocks[2].m_output);
    EXPECT_EQ("CLKOUTD", tables.m_clocks[3].m_output);

    const DEVICE_ANSWER half = answer_for_device(make_request("ice40", "12", {"24", "48"}));
    EXPECT_TRUE(half.m_met);
    EXPECT_EQ("PLLOUT_B", half.m_clocks[0].m_output);
    EXPECT_EQ("GENCLK_HALF", half.m_clocks[0].m_select);
    DEVICE_REQUEST quarter = make_request("ice40", "12", {"48", "48"});
    quarter.m_request.m_outputs[1].m_phase = RATIONAL(90);
    const DEVICE_ANSWER shifted = answer_for_device(quarter);
    EXPECT_TRUE(shifted.m_met);
    EXPECT_EQ("SHIFTREG_90deg", shifted.m_clocks[1].m_select);
    EXPECT_EQ("PHASE_AND_DELAY", shifted.m_path);
}

TEST(DeviceAnswer, SaysWhyThereIsNone)
{
    const DEVICE_ANSWER input = answer_for_device(make_request("ice40", "5", {"48"}));
    EXPECT_FALSE(input.m_has_setting);
    ASSERT_FALSE(input.m_reasons.empty());
    EXPECT_EQ("the input of 5 MHz is out of its range, 10 to 133 MHz", input.m_reasons[0]);
    const DEVICE_ANSWER outputs =
        answer_for_device(make_request("ice40", "12", {"48", "20", "16"}));
    EXPECT_FALSE(outputs.m_has_setting);
    ASSERT_FALSE(outputs.m_reasons.empty());
    EXPECT_EQ("iCE40 PLL has no way to make 3 outputs", outputs.m_reasons[0]);
    DEVICE_REQUEST feedback = make_request("xc7-plle2", "25", {"125"});
    feedback.m_request.m_feedback = 0;
    const DEVICE_ANSWER fed_back = answer_for_device(feedback);
    EXPECT_FALSE(fed_back.m_has_setting);
    EXPECT_EQ("7-series PLL cannot feed that output back", fed_back.m_reasons.at(0));
}

// The slow and obvious search: every N, M and count.
double plain_error(const SHEET& sheet, const std::string& grade, double input, double wanted)
{
    const auto most = [&](FIGURE_KIND kind) {
        return sheet.find_figure(kind, grade, "", "")->m_range.m_most->to_double();
    };
    const auto least = [&](FIGURE_KIND kind) {
        return sheet.find_figure(kind, grade, "", "")->m_range.m_least->to_double();
    };
    double best = HUGE_VAL;
    for (double n = 1; n <= most(FIGURE_KIND::N); ++n) {
        for (double m = least(FIGURE_KIND::M); m <= most(FIGURE_KIND::M); ++m) {
            const double pfd = input / n;
            const double vco = pfd * m;
            if (pfd < least(FIGURE_KIND::PFD) || pfd > most(FIGURE_KIND::PFD) ||
                vco < least(FIGURE_KIND::VCO) || vco > most(FIGURE_KIND::VCO)) {
                continue;
            }
            for (double k = 1; k <= most(FIGURE_KIND::COUNT); ++k) {
                best = std::min(best, std::abs(vco / k / wanted - 1.0));
            }
        }
    }
    return best;
}

TEST(DeviceAnswer, IsThatOfThePlainSearch)
{
    std::mt19937 random(7);
    for (int i = 0; i < 40; ++i) {
        const int input = std::uniform_int_distribution<int>(20, 300)(random);
        const int wanted = std::uniform_int_distribution<int>(7000, 600000)(random);
        SCOPED_TRACE(std::to_string(input) + " to " + std::to_string(wanted) + "/1000");
        const DEVICE_REQUEST request = make_request("xc7-plle2:-1", std::to_string(input).c_str(),
                                                    {std::to_string(wanted) + "/1000"});
        EXPECT_NEAR(plain_error(*request.m_device.m_sheet, "-1", input, wanted / 1000.0) * 1e6,
                    worst_ppm(answer_for_device(request)), 1e-6);
    }
}

// The library's own answer, within its whole picoseconds.
TEST(DeviceAnswer, IsTheLibrarysWhereThatIsLegal)
{
    PLL_MANAGER manager;
    ASSERT_TRUE(manager.read(PLL_DATA_DIR "/devices"));
    PLL_QUERY query;
    query.m_family = "xc7-plle2";
    query.m_type = PLL_TYPE_ENUM::ENHANCED_PLL;
    query.m_part = "xc7-plle2-1";
    query.m_speed_grade = "-1";
    LIMITS limits;
    ASSERT_TRUE(limits.take_device(&manager, query));
    std::mt19937 random(11);
    int compared = 0;
    int same = 0;
    for (int i = 0; i < 200; ++i) {
        // Clocks that some VCO of 800 MHz and more can make.
        const int input = std::uniform_int_distribution<int>(20, 200)(random);
        const int vco = (800 + input) / input * input;
        const int first = std::uniform_int_distribution<int>(2, 40)(random);
        const int second = std::uniform_int_distribution<int>(2, 40)(random);
        const DEVICE_REQUEST request =
            make_request("xc7-plle2:-1", std::to_string(input).c_str(),
                         {std::to_string(vco) + "/" + std::to_string(first),
                          std::to_string(vco) + "/" + std::to_string(second)});
        const ANSWER library(request.m_request, limits, EFFORT::FIRST_ANSWER_ONLY);
        const DEVICE_ANSWER ours = answer_for_device(request);
        if (!library.is_met() || !ours.m_met) {
            EXPECT_FALSE(library.is_met() && !ours.m_met) << input << " " << first << " " << second;
            continue;
        }
        ++compared;
        same += RATIONAL(library.get_pll().m_n.m_count) == ours.m_n &&
                        RATIONAL(library.get_pll().m_m.m_count) == ours.m_m
                    ? 1
                    : 0;
    }
    EXPECT_GT(compared, 20);
    EXPECT_EQ(compared, same);
}

}  // namespace
}  // namespace advice
