// Settings that people really use, each written as an instance of its primitive: frequencies,
// phases and legality come out as they were worked out by other means.
#include "advice/primitive/judge.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <map>

namespace advice {
namespace {

using JSON = nlohmann::json;

const SHEET_CATALOG& catalog()
{
    static const SHEET_CATALOG CATALOG(PLL_DATA_DIR "/devices");
    return CATALOG;
}

JSON read_examples()
{
    std::ifstream stream(PLL_EXAMPLES);
    return JSON::parse(stream);
}

std::string to_verilog_value(const JSON& value)
{
    return value.is_string() ? "\"" + value.get<std::string>() + "\""
                             : std::to_string(value.get<long>());
}

// Numbers are strings in the examples of some families, though not in their primitives.
std::string to_verilog_value(const std::string& family, const std::string& name, const JSON& value)
{
    const bool is_number = value.is_string() && family.rfind("Gowin", 0) != 0 &&
                           value_of_number(value.get<std::string>()).is_known() &&
                           name.find("PATH") == std::string::npos;
    const bool is_negative = value.is_string() && value.get<std::string>().rfind('-', 0) == 0;
    return is_number || is_negative ? value.get<std::string>() : to_verilog_value(value);
}

std::string to_verilog(const JSON& example)
{
    const std::string family = example.at("family");
    std::string text;
    for (const auto& [name, value] : example.at("params").items()) {
        if (!value.is_null()) {
            text += (text.empty() ? "    ." : ",\n    .") + name + "(" +
                    to_verilog_value(family, name, value) + ")";
        }
    }
    for (const JSON& output : example.at("outputs")) {
        const std::string name = output.at("name");
        if (name.rfind("PLLOUT_B", 0) == 0) {
            text += ",\n    .PLLOUT_SELECT_PORTB(\"" + name.substr(10, name.size() - 11) + "\")";
        }
        if (output.contains("duty") && family.rfind("Xilinx7", 0) == 0) {
            text += ",\n    ." + name + "_DUTY_CYCLE(" + output.at("duty").get<std::string>() + ")";
        }
    }
    const std::string primitive = example.at("primitive");
    return "module top;\n" + primitive + " #(\n" + text + "\n) pll ();\nendmodule\n";
}

std::string sheet_of(const std::string& family)
{
    const std::map<std::string, std::string> names = {{"Xilinx7-PLLE2", "xc7-plle2"},
                                                      {"Xilinx7-MMCME2", "xc7-mmcme2"},
                                                      {"UltraScale-MMCME3", "xcu-mmcme3"},
                                                      {"UltraScale+-MMCME4", "xcup-mmcme4"},
                                                      {"Spartan6-PLL", "xc6-pll"},
                                                      {"ECP5", "ecp5"},
                                                      {"iCE40", "ice40"},
                                                      {"Nexus", "nexus"}};
    const auto found = names.find(family);
    return found == names.end() ? "" : found->second;
}

JUDGED_INSTANCE verify_example(const JSON& example)
{
    VERIFY_OPTIONS options;
    options.m_input = RATIONAL::parse(example.at("input_mhz").get<std::string>());
    std::string problem;
    const std::string sheet = sheet_of(example.at("family"));
    const JSON& grade = example.at("grade");
    if (!sheet.empty() && grade.is_string()) {
        options.m_device = catalog().choose(sheet + ":" + grade.get<std::string>(), &problem);
    }
    const VERILOG_VERDICT verdict = verify_verilog(to_verilog(example), catalog(), options);
    EXPECT_EQ(1U, verdict.m_instances.size()) << verdict.m_problem << problem;
    return verdict.m_instances.empty() ? JUDGED_INSTANCE() : verdict.m_instances.front();
}

void expect_outputs(const JSON& expected, const PRIMITIVE_SETTING& setting)
{
    ASSERT_EQ(expected.size(), setting.m_outputs.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const PRIMITIVE_OUTPUT& output = setting.m_outputs[i];
        EXPECT_EQ(expected[i].at("name"), output.m_name);
        EXPECT_EQ(*RATIONAL::parse(expected[i].at("mhz").get<std::string>()), output.m_frequency)
            << output.m_frequency.to_fraction();
        if (expected[i].contains("phase_deg")) {
            ASSERT_TRUE(output.m_phase.has_value());
            EXPECT_EQ(*RATIONAL::parse(expected[i].at("phase_deg").get<std::string>()),
                      *output.m_phase);
        }
        if (expected[i].contains("duty")) {
            EXPECT_EQ(*RATIONAL::parse(expected[i].at("duty").get<std::string>()) * RATIONAL(100),
                      *output.m_duty);
        }
    }
}

TEST(RealSettings, ComeToTheirFrequenciesAndLegality)
{
    int verified = 0;
    for (const JSON& example : read_examples()) {
        if (example.at("params").is_null()) {
            continue;
        }
        SCOPED_TRACE(example.at("id").get<std::string>());
        const JUDGED_INSTANCE judged = verify_example(example);
        EXPECT_EQ("", judged.m_setting.m_problem);
        const JSON& model = example.at("model");
        EXPECT_EQ(*RATIONAL::parse(model.at("vco_mhz").get<std::string>()), judged.m_setting.m_vco);
        EXPECT_EQ(*RATIONAL::parse(model.at("pfd_mhz").get<std::string>()), judged.m_setting.m_pfd);
        expect_outputs(example.at("outputs"), judged.m_setting);
        const std::string expected = example.at("verify_expected");
        EXPECT_EQ(expected.substr(0, expected.find(' ')), name_of(judged.m_legality));
        ++verified;
    }
    EXPECT_EQ(57, verified);
}

}  // namespace
}  // namespace advice
