// From a source to verdicts: which sheets an instance may belong to, and what its comments claim.

#include "advice/primitive/judge.h"

#include "advice/primitive/comments.h"

#include <algorithm>

namespace advice {

namespace {

bool contains(const std::vector<std::string>& list, const std::string& name)
{
    return std::find(list.begin(), list.end(), name) != list.end();
}

std::set<std::string> list_primitives(const SHEET_CATALOG& catalog)
{
    std::set<std::string> names;
    for (const SHEET* sheet : catalog.get_sheets()) {
        names.insert(sheet->m_primitives.begin(), sheet->m_primitives.end());
    }
    return names;
}

void add_grades(const SHEET& sheet, std::vector<CANDIDATE_DEVICE>* devices)
{
    for (const GRADE& grade : sheet.m_grades) {
        devices->push_back({&sheet, grade.m_name});
    }
}

// The value of the parameter that names the device; empty when there is none.
std::string device_word(const INSTANCE& instance, const SHEET& sheet)
{
    const PARAMETER* parameter =
        sheet.find_parameter(PARAMETER_ROLE::DEVICE, "", instance.m_primitive);
    const auto value = parameter == nullptr ? instance.m_parameters.end()
                                            : instance.m_parameters.find(parameter->m_name);
    return value == instance.m_parameters.end() ? "" : value->second.m_text;
}

// The devices that an instance may stand in: the one that the user names where it takes the
// primitive, else those that the source leaves open.
std::vector<CANDIDATE_DEVICE> find_devices(const INSTANCE& instance, const SHEET_CATALOG& catalog,
                                           const VERIFY_OPTIONS& options, std::string* note)
{
    std::vector<CANDIDATE_DEVICE> devices;
    if (options.m_device) {
        const SHEET& sheet = *options.m_device->m_sheet;
        if (contains(sheet.m_primitives, instance.m_primitive) ||
            contains(sheet.m_accepts, instance.m_primitive)) {
            if (options.m_device->m_grade_was_named) {
                devices.push_back({&sheet, options.m_device->m_grade});
            } else {
                add_grades(sheet, &devices);
            }
            return devices;
        }
        *note = sheet.m_name + " has no " + instance.m_primitive + ", so its own limits hold";
    }
    const std::vector<const SHEET*> sheets = catalog.find_primitive(instance.m_primitive);
    const std::string word = sheets.empty() ? "" : device_word(instance, *sheets.front());
    for (const SHEET* sheet : sheets) {
        if (contains(sheet->m_devices, word)) {
            add_grades(*sheet, &devices);
        }
    }
    if (devices.empty()) {
        for (const SHEET* sheet : sheets) {
            add_grades(*sheet, &devices);
        }
        if (!word.empty()) {
            *note = "no device sheet is about \"" + word + "\", so all of this primitive are tried";
        }
    }
    return devices;
}

JUDGED_INSTANCE judge_instance(const INSTANCE& instance, const SHEET_CATALOG& catalog,
                               const VERIFY_OPTIONS& options)
{
    JUDGED_INSTANCE judged;
    std::string note;
    judged.m_devices = find_devices(instance, catalog, options, &note);
    judged.m_setting =
        compute_setting(instance, *judged.m_devices.front().m_sheet, options.m_input);
    if (!note.empty()) {
        judged.m_setting.m_notes.push_back({instance.m_line, note});
    }
    compare_comments(instance, *judged.m_devices.front().m_sheet, &judged.m_setting);
    judge(&judged);
    return judged;
}

std::string join(const std::set<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

}  // namespace

VERILOG_VERDICT verify_verilog(const std::string& text, const SHEET_CATALOG& catalog,
                               const VERIFY_OPTIONS& options)
{
    VERILOG_VERDICT verdict;
    const std::set<std::string> primitives = list_primitives(catalog);
    const INSTANCES found = find_instances(text, primitives);
    verdict.m_problem = found.m_problem;
    for (const INSTANCE& instance : found.m_list) {
        if (!instance.m_parameters.empty()) {
            verdict.m_instances.push_back(judge_instance(instance, catalog, options));
        }
    }
    if (verdict.m_instances.empty() && verdict.m_problem.empty()) {
        verdict.m_problem =
            "there is no PLL primitive with parameters; known are " + join(primitives);
    }
    return verdict;
}

}  // namespace advice
