#include "app/lint/sheets.h"

#include "advice/sheets/catalog.h"

#include <algorithm>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* SHEET_SUFFIX = ".toml";
constexpr const char* NOT_PUBLISHED = "not published";

bool is_about_the_filter(const LINT_MESSAGE& message)
{
    return message.m_rule == rule_of(DEVICE_FINDING::NO_CHARGE_PUMP_CURRENT) ||
           message.m_rule == rule_of(DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING);
}

void add_problems(const std::vector<advice::SHEET_PROBLEM>& problems, LINT_MESSAGES* messages)
{
    for (const advice::SHEET_PROBLEM& problem : problems) {
        LINT_PLACE place;
        place.m_file = problem.m_file;
        place.m_line = std::max(problem.m_line, 1);
        place.m_column = std::max(problem.m_column, 1);
        messages->add(rule_of(DEVICE_FINDING::DEVICE_SHEET), place, problem.m_text);
    }
}

}  // namespace

bool is_sheet(const std::string& file)
{
    return fs::path(file).extension() == SHEET_SUFFIX;
}

void lint_sheet(const std::string& file, LINT_MESSAGES* messages)
{
    add_problems(advice::read_sheet(file).m_problems, messages);
}

void lint_sheets(const std::string& directory, LINT_MESSAGES* messages)
{
    const advice::SHEET_CATALOG catalog(directory);
    for (const advice::SHEET* sheet : catalog.get_sheets()) {
        const fs::path folder = fs::path(sheet->m_file).parent_path().lexically_normal();
        if (sheet->m_filter == NOT_PUBLISHED) {
            messages->remove_if([&](const LINT_MESSAGE& message) {
                return is_about_the_filter(message) &&
                       fs::path(message.m_place.m_file).parent_path().lexically_normal() == folder;
            });
        }
    }
    add_problems(catalog.get_problems(), messages);
}
