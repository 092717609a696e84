#include "app/lint/sheets.h"

#include "advice/sheets/catalog.h"

#include <algorithm>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* SHEET_SUFFIX = ".toml";
constexpr const char* NOT_PUBLISHED = "not published";

void add_problems(const std::vector<advice::SHEET_PROBLEM>& problems, READINGS* readings,
                  LINT_MESSAGES* messages)
{
    for (const advice::SHEET_PROBLEM& problem : problems) {
        SOURCE_PLACE place;
        place.m_reading = readings->add(problem.m_file);
        place.m_line = static_cast<std::uint32_t>(std::max(problem.m_line, 1));
        place.m_column = static_cast<std::uint32_t>(std::max(problem.m_column, 1));
        messages->add(LINT_RULE::DEVICE_SHEET, place, problem.m_text);
    }
}

}  // namespace

bool is_sheet(const std::string& file)
{
    return fs::path(file).extension() == SHEET_SUFFIX;
}

void lint_sheet(const std::string& file, READINGS* readings, LINT_MESSAGES* messages)
{
    readings->add(file);
    add_problems(advice::read_sheet(file).m_problems, readings, messages);
}

void lint_sheets(const std::string& directory, READINGS* readings, LINT_MESSAGES* messages)
{
    const advice::SHEET_CATALOG catalog(directory);
    for (const advice::SHEET* sheet : catalog.get_sheets()) {
        const std::string folder = fs::path(sheet->m_file).parent_path().lexically_normal();
        if (sheet->m_filter == NOT_PUBLISHED) {
            messages->allow_in_folder(folder, LINT_RULE::NO_CHARGE_PUMP_CURRENT);
            messages->allow_in_folder(folder, LINT_RULE::LOOP_FILTER_VALUE_MISSING);
            messages->allow_in_folder(folder, LINT_RULE::CENTER_MISSING);
        }
    }
    add_problems(catalog.get_problems(), readings, messages);
}
