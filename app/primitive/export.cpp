#include "app/primitive/export.h"

#include "advice/devices/write_hdl.h"
#include "advice/sheets/catalog.h"
#include "app/output/input_error.h"
#include "app/output/input_file.h"
#include "app/words/usage_error.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using advice::HDL_LANGUAGE;
using advice::HDL_MODULE;
using advice::HDL_NET;
using advice::HDL_PORT;
using advice::PARAMETER_TYPE;

struct EXPORT_FORM
{
    const char* m_name;
    HDL_LANGUAGE m_language;
};

constexpr EXPORT_FORM FORMS[] = {
    {"verilog", HDL_LANGUAGE::VERILOG}, {"systemverilog", HDL_LANGUAGE::SYSTEM_VERILOG},
    {"vhdl", HDL_LANGUAGE::VHDL},       {"xdc", HDL_LANGUAGE::VERILOG},
    {"lpf", HDL_LANGUAGE::VERILOG},     {"pcf", HDL_LANGUAGE::VERILOG},
    {"cst", HDL_LANGUAGE::VERILOG},     {"sdc", HDL_LANGUAGE::VERILOG},
};

const EXPORT_FORM& find_form(const PRIMITIVE_WORDS& words)
{
    const std::string name = words.m_as.value_or(FORMS[0].m_name);
    std::string legal;
    for (const EXPORT_FORM& form : FORMS) {
        if (name == form.m_name) {
            return form;
        }
        legal += (legal.empty() ? "" : ", ") + std::string(form.m_name);
    }
    throw USAGE_ERROR("--as", "'" + name + "' is not legal; expected one of " + legal);
}

std::string read_template(const std::string& file)
{
    if (const std::optional<std::string> reason = why_unreadable(file)) {
        throw INPUT_ERROR("cannot read the template " + file + ": " + *reason);
    }
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Templates lie beside the devices.
std::string find_template(const std::string& form)
{
    const std::filesystem::path devices = advice::find_devices_directory();
    return (devices.parent_path() / "templates" / (form + ".txt")).string();
}

void add_number(const std::string& name, int value, HDL_MODULE* hdl)
{
    hdl->m_parameters.push_back({name, PARAMETER_TYPE::INTEGER, 0, std::to_string(value)});
}

void add_port(const std::string& name, bool is_output, const std::string& comment,
              const std::string& pin, HDL_MODULE* hdl)
{
    hdl->m_ports.push_back({name, is_output, comment});
    HDL_PORT port;
    port.m_name = pin;
    port.m_is_output = is_output;
    port.m_net = HDL_NET::SIGNAL;
    port.m_signal = name;
    hdl->m_connections.push_back(port);
}

void add_output(const PLL_OUTPUT_TAP& tap, const std::string& prefix, HDL_MODULE* hdl)
{
    add_number(prefix + "_HIGH", tap.m_high, hdl);
    add_number(prefix + "_LOW", tap.m_low, hdl);
    add_number(prefix + "_EVEN", tap.m_even ? 1 : 0, hdl);
    add_number(prefix + "_BYPASS", tap.m_bypass ? 1 : 0, hdl);
    add_number(prefix + "_INITIAL", tap.m_initial, hdl);
    add_number(prefix + "_TAP", tap.m_vco_tap, hdl);
    add_number(prefix + "_FED_BY", tap.m_previous_tap + 1, hdl);
}

}  // namespace

HDL_MODULE make_generic_hdl(const advice::REQUEST& request, const advice::ANSWER& answer,
                            const std::string& module)
{
    constexpr int HZ_PER_MHZ = 1000000;
    const PLL& pll = answer.get_pll();
    HDL_MODULE hdl;
    hdl.m_name = module;
    hdl.m_primitive = "GENERIC_PLL";
    hdl.m_input = request.m_input.m_frequency / advice::RATIONAL(HZ_PER_MHZ);
    hdl.m_input_name = "clk_in";
    hdl.m_comments.push_back("A PLL of no real device; phases and delays count VCO periods.");
    add_number("N", pll.m_n.m_count, &hdl);
    add_number("M", pll.m_m.m_count, &hdl);
    add_number("M_INITIAL", pll.m_m.m_initial, &hdl);
    add_number("M_TAP", pll.m_m.m_vco_tap, &hdl);
    add_number("POST_SCALE", pll.m_vco_post_scale, &hdl);
    add_number("FED_BACK_BY", pll.m_feedback_tap + 1, &hdl);
    add_port("clk_in", false, hdl.m_input.to_fraction() + " MHz", "CLKIN", &hdl);
    add_port("reset", false, "active when high", "RESET", &hdl);
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        const std::string name =
            advice::to_identifier(request.m_outputs[i].m_name, "clk_out" + number);
        add_output(pll.m_taps[i], "OUT" + number, &hdl);
        add_port(
            name, true,
            (answer.get_outputs()[i].m_frequency / advice::RATIONAL(HZ_PER_MHZ)).to_fraction() +
                " MHz",
            "CLKOUT" + number, &hdl);
    }
    add_port("locked", true, "", "LOCKED", &hdl);
    return hdl;
}

std::string name_of_module(const PRIMITIVE_WORDS& words)
{
    std::string name = words.m_module.value_or("pll_clocks");
    if (advice::to_identifier(name, "") != name) {
        throw USAGE_ERROR("--module", "'" + name +
                                          "' is no name of a module: letters, digits and "
                                          "single underscores, a letter first");
    }
    return name;
}

std::string write_export(const PRIMITIVE_WORDS& words, const HDL_MODULE& hdl)
{
    const EXPORT_FORM& form = find_form(words);
    const std::string file = words.m_template.value_or(find_template(form.m_name));
    std::string unknown;
    const std::optional<std::string> text = advice::fill_template(
        read_template(file), advice::list_fields(hdl, form.m_language, words.m_with_body),
        &unknown);
    if (!text) {
        throw INPUT_ERROR("the template " + file + " names the unknown field '" + unknown + "'");
    }
    return *text;
}
