#include "app/primitive/verify.h"

#include "app/json/json.h"
#include "app/json/numbers.h"
#include "app/output/characters.h"
#include "app/output/text_table.h"
#include "app/primitive/figures.h"

#include <algorithm>

namespace {

using advice::JUDGED_FIGURE;
using advice::JUDGED_INSTANCE;
using advice::LEGALITY;
using advice::PRIMITIVE_OUTPUT;
using advice::PRIMITIVE_SETTING;
using advice::RATIONAL;

constexpr int ANGLE_DECIMALS = 3;
constexpr int INDENT = 2;

std::string name_devices(const JUDGED_INSTANCE& instance)
{
    std::string text;
    for (const advice::CANDIDATE_DEVICE& device : instance.m_devices) {
        const std::string grade = device.m_sheet->m_grades.size() > 1 ? ":" + device.m_grade : "";
        text += (text.empty() ? "" : ", ") + device.m_sheet->m_name + grade;
    }
    return text;
}

std::string headline(const advice::VERILOG_VERDICT& verdict)
{
    const auto count = [&](LEGALITY legality) {
        return std::count_if(
            verdict.m_instances.begin(), verdict.m_instances.end(),
            [&](const JUDGED_INSTANCE& each) { return each.m_legality == legality; });
    };
    const std::string total = " of " + std::to_string(verdict.m_instances.size());
    const auto illegal = count(LEGALITY::ILLEGAL);
    const auto depends = count(LEGALITY::DEPENDS);
    if (illegal > 0) {
        return "ILLEGAL: " + std::to_string(illegal) + total;
    }
    return depends > 0 ? "DEPENDS: " + std::to_string(depends) + total + ", none is illegal"
                       : "LEGAL: all" + total + " keep every limit";
}

std::string describe_loop(const PRIMITIVE_SETTING& setting)
{
    std::string text = "  " + format_megahertz(*setting.m_input) + " MHz / " +
                       setting.m_n.to_decimal(0) + " = PFD " + format_megahertz(setting.m_pfd) +
                       " MHz, x " + format_megahertz(setting.m_loop) + " = VCO " +
                       format_megahertz(setting.m_vco) + " MHz";
    if (!setting.m_fed_back.empty()) {
        text += ", fed back by " + make_visible(setting.m_fed_back);
    }
    return text + "\n";
}

std::string format_optional(const std::optional<RATIONAL>& value)
{
    return value ? value->to_decimal(ANGLE_DECIMALS) : "-";
}

void append_outputs(const PRIMITIVE_SETTING& setting, std::string* text)
{
    TEXT_TABLE table({{"  output", "", ALIGN::LEFT},
                      {"divides by", "", ALIGN::RIGHT},
                      {"frequency", "MHz", ALIGN::RIGHT},
                      {"phase", "deg", ALIGN::RIGHT},
                      {"duty", "%", ALIGN::RIGHT}});
    for (const PRIMITIVE_OUTPUT& output : setting.m_outputs) {
        table.add_row({"  " + output.m_name + (output.m_is_feedback_only ? ", feedback only" : ""),
                       format_megahertz(output.m_division), format_megahertz(output.m_frequency),
                       format_optional(output.m_phase), format_optional(output.m_duty)});
    }
    table.append_to(text);
}

void append_figures(const JUDGED_INSTANCE& instance, std::string* text)
{
    for (const JUDGED_FIGURE& figure : instance.m_figures) {
        if (!figure.m_kept || figure.sources_differ()) {
            *text += "  " + describe_figure(figure) + "\n";
        }
    }
    const auto kept = std::count_if(
        instance.m_figures.begin(), instance.m_figures.end(),
        [](const JUDGED_FIGURE& figure) { return figure.m_kept && !figure.sources_differ(); });
    *text += "  kept: " + std::to_string(kept) + " limits\n";
}

void append_instance(const JUDGED_INSTANCE& instance, const std::string& file, std::string* text)
{
    const PRIMITIVE_SETTING& setting = instance.m_setting;
    const std::string name = setting.m_name.empty() ? "(no name)" : setting.m_name;
    *text += "\n" + make_visible(name) + ", " + setting.m_primitive + " at " + make_visible(file) +
             ":" + std::to_string(setting.m_line) + ": " + advice::name_of(instance.m_legality) +
             " on " + name_devices(instance) + "\n";
    if (!setting.m_problem.empty()) {
        *text += "  cannot be computed: " + make_visible(setting.m_problem) + "\n";
    } else if (!setting.m_input) {
        *text += "  the input clock is not known; give it with --input\n";
    } else {
        *text += describe_loop(setting);
        append_outputs(setting, text);
    }
    append_figures(instance, text);
    for (const advice::PRIMITIVE_NOTE& note : setting.m_notes) {
        *text +=
            "  NOTE line " + std::to_string(note.m_line) + ": " + make_visible(note.m_text) + "\n";
    }
}

// ---- JSON

JSON write_hertz(const RATIONAL& megahertz)
{
    return write_product(megahertz, RATIONAL(HZ_PER_MHZ));
}

JSON write_angle(const std::optional<RATIONAL>& value)
{
    return value ? write_double(value->to_double()) : JSON(nullptr);
}

JSON write_outputs(const PRIMITIVE_SETTING& setting, bool is_computed)
{
    JSON outputs = JSON::array();
    for (const PRIMITIVE_OUTPUT& output : setting.m_outputs) {
        JSON object = JSON::object();
        object["name"] = output.m_name;
        object["frequency_hz"] = is_computed ? write_hertz(output.m_frequency) : JSON(nullptr);
        object["phase_deg"] = write_angle(output.m_phase);
        object["duty_percent"] = write_angle(output.m_duty);
        object["division"] = write_fraction(output.m_division);
        object["feedback_only"] = output.m_is_feedback_only;
        outputs.push_back(std::move(object));
    }
    return outputs;
}

JSON write_notes(const PRIMITIVE_SETTING& setting)
{
    JSON notes = JSON::array();
    for (const advice::PRIMITIVE_NOTE& note : setting.m_notes) {
        notes.push_back({{"line", note.m_line}, {"text", note.m_text}});
    }
    return notes;
}

JSON write_instance(const JUDGED_INSTANCE& instance)
{
    const PRIMITIVE_SETTING& setting = instance.m_setting;
    const bool is_computed = setting.m_problem.empty() && setting.m_input.has_value();
    JSON object = JSON::object();
    object["primitive"] = setting.m_primitive;
    object["name"] = setting.m_name;
    object["line"] = setting.m_line;
    object["legal"] = advice::name_of(instance.m_legality);
    object["devices"] = JSON::array();
    for (const advice::CANDIDATE_DEVICE& device : instance.m_devices) {
        object["devices"].push_back(device.m_sheet->m_name + ":" + device.m_grade);
    }
    object["problem"] = setting.m_problem.empty() ? JSON(nullptr) : JSON(setting.m_problem);
    object["input_hz"] = setting.m_input ? write_hertz(*setting.m_input) : JSON(nullptr);
    object["n"] = write_fraction(setting.m_n);
    object["m"] = write_fraction(setting.m_loop);
    object["feedback"] = setting.m_fed_back.empty() ? "m" : setting.m_fed_back;
    object["vco_hz"] = is_computed ? write_hertz(setting.m_vco) : JSON(nullptr);
    object["pfd_hz"] = is_computed ? write_hertz(setting.m_pfd) : JSON(nullptr);
    object["outputs"] = write_outputs(setting, is_computed);
    object["limits"] = write_json_figures(instance.m_figures);
    object["notes"] = write_notes(setting);
    return object;
}

}  // namespace

VERIFY_RESULT result_of(const advice::VERILOG_VERDICT& verdict)
{
    bool is_judged = false;
    for (const JUDGED_INSTANCE& instance : verdict.m_instances) {
        if (instance.m_legality == LEGALITY::ILLEGAL) {
            return VERIFY_RESULT::ILLEGAL;
        }
        is_judged =
            is_judged || (instance.m_setting.m_input && instance.m_setting.m_problem.empty());
    }
    return is_judged ? VERIFY_RESULT::CLEAN : VERIFY_RESULT::NO_SETTING;
}

std::string report_verilog(const advice::VERILOG_VERDICT& verdict, const std::string& file)
{
    if (verdict.m_instances.empty()) {
        return "";
    }
    std::string text = headline(verdict) + "\n";
    for (const JUDGED_INSTANCE& instance : verdict.m_instances) {
        append_instance(instance, file, &text);
    }
    return text;
}

std::string write_json_verilog(const advice::VERILOG_VERDICT& verdict, int exit_status)
{
    JSON document = JSON::object();
    document["schema_version"] = SCHEMA_VERSION;
    document["command"] = "verify";
    document["met"] = exit_status == 0;
    document["exit_status"] = exit_status;
    document["problem"] = verdict.m_problem.empty() ? JSON(nullptr) : JSON(verdict.m_problem);
    document["instances"] = JSON::array();
    for (const JUDGED_INSTANCE& instance : verdict.m_instances) {
        document["instances"].push_back(write_instance(instance));
    }
    return write_document(document, INDENT);
}
