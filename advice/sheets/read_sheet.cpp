// The text form is TOML. A sheet may include another, whose lists come before its own and whose
// other values it overrides.

#include "advice/sheets/read_sheet.h"

#include "advice/sheets/sheet_reader.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace advice {

namespace {

constexpr const char* ROLE_NAMES[] = {"fixed",
                                      "n",
                                      "m",
                                      "path",
                                      "count",
                                      "degrees",
                                      "coarse_phase",
                                      "fine_phase",
                                      "sixteenths_phase",
                                      "duty_share",
                                      "sixteenths_duty",
                                      "enable",
                                      "select",
                                      "shift_mode",
                                      "filter_range",
                                      "period_ns",
                                      "input_mhz",
                                      "device"};
constexpr const char* TYPE_NAMES[] = {"integer", "real", "string", "bits", "digits"};
constexpr const char* CODE_NAMES[] = {"count", "count-1", "log2"};
constexpr const char* PORT_NAMES[] = {"input",
                                      "output",
                                      "feedback_in",
                                      "feedback_out",
                                      "internal_feedback_out",
                                      "internal_feedback_of",
                                      "lock",
                                      "reset",
                                      "reset_low",
                                      "standby",
                                      "standby_low",
                                      "low",
                                      "high"};

constexpr SHEET_KEY<SHEET_OUTPUT> OUTPUT_KEYS[] = {
    {"name", read_member<SHEET_OUTPUT, &SHEET_OUTPUT::m_name>, true},
    {"of", read_member<SHEET_OUTPUT, &SHEET_OUTPUT::m_of>},
    {"divides", read_member<SHEET_OUTPUT, &SHEET_OUTPUT::m_divides>},
    {"primitives", read_member<SHEET_OUTPUT, &SHEET_OUTPUT::m_primitives>},
};

void read_role(SHEET_READER& reader, const SHEET_NODE& node, PARAMETER* parameter)
{
    read_name(reader, node, ROLE_NAMES, &parameter->m_role);
}

void read_type(SHEET_READER& reader, const SHEET_NODE& node, PARAMETER* parameter)
{
    read_name(reader, node, TYPE_NAMES, &parameter->m_type);
}

void read_code(SHEET_READER& reader, const SHEET_NODE& node, PARAMETER* parameter)
{
    read_name(reader, node, CODE_NAMES, &parameter->m_code);
}

constexpr SHEET_KEY<PARAMETER> PARAMETER_KEYS[] = {
    {"name", read_member<PARAMETER, &PARAMETER::m_name>, true},
    {"is", read_role, true},
    {"type", read_type, true},
    {"as", read_code},
    {"output", read_member<PARAMETER, &PARAMETER::m_output>},
    {"absent", read_optional<PARAMETER, &PARAMETER::m_absent>},
    {"value", read_member<PARAMETER, &PARAMETER::m_value>},
    {"width", read_member<PARAMETER, &PARAMETER::m_width>},
    {"other_names", read_member<PARAMETER, &PARAMETER::m_other_names>},
    {"primitives", read_member<PARAMETER, &PARAMETER::m_primitives>},
};

void read_port_role(SHEET_READER& reader, const SHEET_NODE& node, PORT* port)
{
    read_name(reader, node, PORT_NAMES, &port->m_role);
}

constexpr SHEET_KEY<PORT> PORT_KEYS[] = {
    {"name", read_member<PORT, &PORT::m_name>, true},
    {"is", read_port_role, true},
    {"output", read_member<PORT, &PORT::m_output>},
    {"width", read_member<PORT, &PORT::m_width>},
    {"other_names", read_member<PORT, &PORT::m_other_names>},
    {"primitives", read_member<PORT, &PORT::m_primitives>},
};

constexpr SHEET_KEY<GRADE> GRADE_KEYS[] = {
    {"name", read_member<GRADE, &GRADE::m_name>, true},
    {"part", read_member<GRADE, &GRADE::m_part>, true},
};

constexpr SHEET_KEY<FILTER_RANGE> FILTER_RANGE_KEYS[] = {
    {"below", read_optional<FILTER_RANGE, &FILTER_RANGE::m_below>},
    {"code", read_member<FILTER_RANGE, &FILTER_RANGE::m_code>, true},
};

template <auto MEMBER, const auto& KEYS>
void read_list(SHEET_READER& reader, const SHEET_NODE& node, SHEET* sheet)
{
    read_tables(reader, node, KEYS, &(sheet->*MEMBER));
}

void read_sheet_figures(SHEET_READER& reader, const SHEET_NODE& node, SHEET* sheet)
{
    read_figures(reader, node, &sheet->m_figures);
}

// A table of free keys.
bool is_table(SHEET_READER& reader, const SHEET_NODE& node)
{
    if (node.m_kind != SHEET_NODE::KIND::TABLE) {
        reader.report(node, "a table is needed");
    }
    return node.m_kind == SHEET_NODE::KIND::TABLE;
}

template <auto MEMBER>
void read_texts(SHEET_READER& reader, const SHEET_NODE& node, SHEET* sheet)
{
    if (is_table(reader, node)) {
        for (const auto& [name, entry] : node.m_table) {
            reader.read(entry, &(sheet->*MEMBER)[name]);
        }
    }
}

void read_shift_register(SHEET_READER& reader, const SHEET_NODE& node, SHEET* sheet)
{
    if (!is_table(reader, node)) {
        return;
    }
    for (const auto& [name, entry] : node.m_table) {
        const char* const last = name.data() + name.size();
        int mode = 0;
        const auto [end, error] = std::from_chars(name.data(), last, mode);
        if (error != std::errc() || end != last) {
            reader.report(entry, "the key must be a whole number");
            continue;
        }
        reader.read(entry, &sheet->m_shift_register[mode]);
    }
}

// Read before everything else.
void skip(SHEET_READER& /*reader*/, const SHEET_NODE& /*node*/, SHEET* /*sheet*/) {}

constexpr const char* INCLUDE_KEY = "include";

constexpr SHEET_KEY<SHEET> SHEET_KEYS[] = {
    {INCLUDE_KEY, skip},
    {"name", read_member<SHEET, &SHEET::m_name>},
    {"title", read_member<SHEET, &SHEET::m_title>},
    {"family", read_member<SHEET, &SHEET::m_family>},
    {"filter", read_member<SHEET, &SHEET::m_filter>},
    {"constraints", read_member<SHEET, &SHEET::m_constraints>},
    {"input_attribute", read_member<SHEET, &SHEET::m_input_attribute>},
    {"feedback", read_member<SHEET, &SHEET::m_feedback>},
    {"primitives", read_member<SHEET, &SHEET::m_primitives>},
    {"accepts", read_member<SHEET, &SHEET::m_accepts>},
    {"devices", read_member<SHEET, &SHEET::m_devices>},
    {"eighths", read_member<SHEET, &SHEET::m_eighths>},
    {"output", read_list<&SHEET::m_outputs, OUTPUT_KEYS>},
    {"parameter", read_list<&SHEET::m_parameters, PARAMETER_KEYS>},
    {"port", read_list<&SHEET::m_ports, PORT_KEYS>},
    {"grade", read_list<&SHEET::m_grades, GRADE_KEYS>},
    {"filter_range", read_list<&SHEET::m_filter_ranges, FILTER_RANGE_KEYS>},
    {"figure", read_sheet_figures},
    {"paths", read_texts<&SHEET::m_paths>},
    {"sources", read_texts<&SHEET::m_sources>},
    {"shift_register", read_shift_register},
};

bool read_file(const std::string& path, std::string* text)
{
    std::error_code error;
    std::ifstream stream(path, std::ios::binary);
    if (!std::filesystem::is_regular_file(path, error) || !stream) {
        return false;
    }
    text->assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    return !stream.bad();
}

// What is included comes first, so that the sheet's own values override it. An included sheet
// includes nothing itself.
void take_included(const std::string& name, const std::string& path, SHEET_FILE* file)
{
    const std::string target =
        (std::filesystem::path(path).parent_path() / name).lexically_normal().string();
    std::string text;
    if (!read_file(target, &text)) {
        file->m_problems.push_back({path, 0, 0, "cannot read the included '" + target + "'"});
        return;
    }
    SHEET_NODE table;
    if (!parse_toml(text, target, &table, &file->m_problems)) {
        return;
    }
    SHEET_READER reader(target, &file->m_problems);
    if (const SHEET_NODE* node = table.find(INCLUDE_KEY)) {
        reader.report(*node, "an included sheet cannot include another");
    }
    read_table(reader, table, SHEET_KEYS, &file->m_sheet);
}

void take_text(const std::string& text, const std::string& path, SHEET_FILE* file)
{
    SHEET_NODE table;
    if (!parse_toml(text, path, &table, &file->m_problems)) {
        return;
    }
    SHEET_READER reader(path, &file->m_problems);
    if (const SHEET_NODE* node = table.find(INCLUDE_KEY)) {
        std::string name;
        reader.read(*node, &name);
        take_included(name, path, file);
    }
    read_table(reader, table, SHEET_KEYS, &file->m_sheet);
}

}  // namespace

SHEET_FILE parse_sheet(const std::string& text, const std::string& path)
{
    SHEET_FILE file;
    take_text(text, path, &file);
    file.m_sheet.m_file = path;
    if (file.m_sheet.m_family.empty()) {
        file.m_sheet.m_family = file.m_sheet.m_name;
    }
    if (file.m_problems.empty()) {
        check_sheet(file.m_sheet, &file.m_problems);
    }
    return file;
}

SHEET_FILE read_sheet(const std::string& path)
{
    std::string text;
    if (!read_file(path, &text)) {
        SHEET_FILE file;
        file.m_problems.push_back({path, 0, 0, "cannot read the device sheet"});
        return file;
    }
    return parse_sheet(text, path);
}

}  // namespace advice
