#include "advice/sheets/catalog.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>

namespace advice {

namespace {

namespace fs = std::filesystem;

constexpr const char* DEVICES_VARIABLE = "PLL_DEVICES";
constexpr const char* PROGRAM_LINK = "/proc/self/exe";
constexpr const char* SHEET_SUFFIX = ".toml";

std::string to_lower(std::string text)
{
    for (char& letter : text) {
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return text;
}

std::vector<std::string> list_folders(const std::string& directory)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator at(directory, error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (fs::is_regular_file(at->path() / (name + SHEET_SUFFIX), error)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool folder_exists(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string join(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

std::string list_grades(const SHEET& sheet)
{
    std::string text;
    for (const GRADE& grade : sheet.m_grades) {
        text += (text.empty() ? "" : ", ") + grade.m_name;
    }
    return text;
}

}  // namespace

SHEET_CATALOG::SHEET_CATALOG(const std::string& directory)
    : m_directory(directory), m_names(list_folders(directory))
{
}

std::vector<const SHEET*> SHEET_CATALOG::get_sheets() const
{
    std::vector<const SHEET*> sheets;
    for (const std::string& name : m_names) {
        if (const SHEET* sheet = find(name)) {
            sheets.push_back(sheet);
        }
    }
    return sheets;
}

const SHEET* SHEET_CATALOG::find(const std::string& name) const
{
    const std::string wanted = to_lower(name);
    if (const auto known = m_read.find(wanted); known != m_read.end()) {
        return known->second.get();
    }
    for (const std::string& folder : m_names) {
        if (to_lower(folder) == wanted) {
            SHEET_FILE file =
                read_sheet((fs::path(m_directory) / folder / (folder + SHEET_SUFFIX)).string());
            m_problems.insert(m_problems.end(), file.m_problems.begin(), file.m_problems.end());
            std::unique_ptr<SHEET>& sheet = m_read[wanted];
            if (file.m_problems.empty()) {
                sheet = std::make_unique<SHEET>(std::move(file.m_sheet));
            }
            return sheet.get();
        }
    }
    return nullptr;
}

std::optional<DEVICE_CHOICE> SHEET_CATALOG::choose(const std::string& word,
                                                   std::string* problem) const
{
    const std::size_t colon = word.find(':');
    const SHEET* sheet = find(word.substr(0, colon));
    if (sheet == nullptr && !m_problems.empty()) {
        *problem = to_text(m_problems.front());
        return std::nullopt;
    }
    if (sheet == nullptr) {
        *problem =
            "unknown device '" + word.substr(0, colon) +
            (m_names.empty() ? "'; no device sheet was found" : "'; legal are " + join(m_names));
        return std::nullopt;
    }
    if (colon == std::string::npos) {
        return DEVICE_CHOICE{sheet, sheet->m_grades.front().m_name, false};
    }
    const std::string wanted = to_lower(word.substr(colon + 1));
    for (const GRADE& grade : sheet->m_grades) {
        const std::string name = to_lower(grade.m_name);
        if (name == wanted || name == "-" + wanted) {
            return DEVICE_CHOICE{sheet, grade.m_name, true};
        }
    }
    *problem = sheet->m_name + " has no grade '" + word.substr(colon + 1) + "'; legal are " +
               list_grades(*sheet);
    return std::nullopt;
}

std::vector<const SHEET*> SHEET_CATALOG::find_primitive(const std::string& primitive) const
{
    std::vector<const SHEET*> found;
    for (const SHEET* sheet : get_sheets()) {
        if (std::find(sheet->m_primitives.begin(), sheet->m_primitives.end(), primitive) !=
            sheet->m_primitives.end()) {
            found.push_back(sheet);
        }
    }
    return found;
}

std::string find_devices_directory()
{
    if (const char* named = std::getenv(DEVICES_VARIABLE); named != nullptr && *named != '\0') {
        return named;
    }
    std::error_code error;
    const fs::path program = fs::read_symlink(PROGRAM_LINK, error);
    if (error) {
        return "";
    }
    const fs::path installed = program.parent_path() / ".." / "share" / "libpll" / "devices";
    if (folder_exists(installed)) {
        return installed.lexically_normal().string();
    }
    for (fs::path folder = program.parent_path(); folder.has_relative_path();
         folder = folder.parent_path()) {
        if (folder_exists(folder / "data" / "devices")) {
            return (folder / "data" / "devices").string();
        }
    }
    return "";
}

}  // namespace advice
