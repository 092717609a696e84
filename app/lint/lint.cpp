#include "app/lint/lint.h"

#include "app/devices/database.h"
#include "app/lint/devices.h"
#include "app/lint/observer.h"
#include "app/lint/print.h"
#include "app/lint/sheets.h"
#include "app/output/input_file.h"
#include "app/output/internal_errors.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace {

// A table without its family: no list is known, and any M up to this one is taken.
constexpr int LARGEST_M_OF_LONE_TABLE = 65535;

// Reads the family files of a database one by one, each by a manager of its own, so that none is
// left out because another file has loaded its family.
void lint_families(const std::string& directory, LINT_OBSERVER* observer, LINT_MESSAGES* messages)
{
    int number_of_families = 1;
    for (int i = 0; i < number_of_families; ++i) {
        PLL_MANAGER manager;
        manager.set_observer(i == 0 ? observer : nullptr);  // of the path file, once
        if (!manager.read(directory.c_str())) {
            return;
        }
        manager.set_observer(observer);
        number_of_families = manager.get_number_of_families();
        const PLL_FAMILY_INFO* const named = manager.m_families[i];
        observer->read_next(named);
        const PLL_FAMILY_INFO* const family = manager.read_family_info(named->m_name);
        manager.set_observer(nullptr);
        for (int j = 0; family != nullptr && j < manager.get_number_of_families(); ++j) {
            const PLL_FAMILY_INFO& other = *manager.m_families[j];
            const bool has_no_file = other.m_file_name == nullptr && observer->is_described(other);
            if (&other == family || has_no_file) {
                check_family(&manager, other, *observer, messages);
            }
        }
    }
}

// Reads all families into one manager, as a host would: what one file changes of a family of
// another one shows in the end.
void lint_together(const std::string& directory, const LINT_OBSERVER& observer,
                   LINT_MESSAGES* messages)
{
    PLL_MANAGER manager;
    if (!manager.read(directory.c_str())) {
        return;
    }
    const int number_of_families = manager.get_number_of_families();
    bool are_read = true;
    for (int i = 0; i < number_of_families; ++i) {
        are_read = manager.read_family_info(manager.m_families[i]->m_name) != nullptr && are_read;
    }
    for (int i = 0; are_read && i < number_of_families; ++i) {
        check_table_sizes(*manager.m_families[i], observer, messages);
    }
}

void lint_directory(const std::string& directory, LINT_OBSERVER* observer, LINT_MESSAGES* messages)
{
    lint_families(directory, observer, messages);
    lint_together(directory, *observer, messages);
}

void lint_family_file(const std::filesystem::path& file, LINT_OBSERVER* observer,
                      LINT_MESSAGES* messages)
{
    const std::string directory = file.has_parent_path() ? file.parent_path().string() : ".";
    PLL_MANAGER manager;
    manager.set_observer(observer);
    const bool is_read =
        manager.read_family_info_from_file(directory.c_str(), file.filename().c_str());
    manager.set_observer(nullptr);
    for (int i = 0; is_read && i < manager.get_number_of_families(); ++i) {
        check_family(&manager, *manager.m_families[i], *observer, messages);
    }
}

void lint_table_file(const std::filesystem::path& file, LINT_OBSERVER* observer)
{
    // With its directory, a name is never the word that says that there is no table.
    const std::filesystem::path name = file.has_parent_path() ? file : "." / file;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("");
    if (family == nullptr) {
        throw std::bad_alloc();
    }
    PLL_BASIC_INFO& basic = family->m_basic_infos[ENHANCED_PLL];
    basic.m_vco_post_scale_counter_max = 1;
    basic.m_m_counter_max = LARGEST_M_OF_LONE_TABLE;
    pll_observe_bandwidth_settings_table_file(family, ENHANCED_PLL, name.c_str(), observer);
}

std::vector<std::string> words_of(const std::string& line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

bool is_number(const std::string& word)
{
    return word.find_first_not_of("0123456789+-.eE") == std::string::npos;
}

// A table begins with a format word that is known, or its third line begins with as many numbers
// as the shortest row has. Lines of a family file begin with keywords.
bool is_table_file(const std::string& file)
{
    constexpr std::size_t COLUMNS = 3;
    std::ifstream stream(file, std::ios::binary);
    std::string first;
    std::string line;
    std::getline(stream, first);
    std::getline(stream, line);
    std::getline(stream, line);
    std::vector<std::string> words = words_of(first);
    const std::string format = words.empty() ? std::string() : words.front();
    words = words_of(line);
    return format == "V1" || format == "V2" || format == "SIMPLE_V1" ||
           (words.size() >= COLUMNS &&
            std::all_of(words.begin(), words.begin() + COLUMNS, is_number));
}

// What to open, and how.
struct TARGET
{
    std::string m_path;
    enum
    {
        DIRECTORY,
        FAMILY_FILE,
        TABLE_FILE,
        SHEET
    } m_kind;
};

// Of a file that can be read.
TARGET find_target(const LINT_REQUEST& request)
{
    const std::filesystem::path path = request.m_path;
    if (std::filesystem::is_directory(path)) {
        return {request.m_path, TARGET::DIRECTORY};
    }
    if (path.filename() == PATH_FILE) {
        return {path.has_parent_path() ? path.parent_path().string() : ".", TARGET::DIRECTORY};
    }
    if (request.m_target == LINT_TARGET::BY_CONTENT && is_sheet(request.m_path)) {
        return {request.m_path, TARGET::SHEET};
    }
    const bool is_table =
        request.m_target == LINT_TARGET::TABLE_FILE ||
        (request.m_target == LINT_TARGET::BY_CONTENT && is_table_file(request.m_path));
    return {request.m_path, is_table ? TARGET::TABLE_FILE : TARGET::FAMILY_FILE};
}

void look_at(const TARGET& target, LINT_MESSAGES* messages)
{
    const DATABASE_REPORTS reports;
    LINT_OBSERVER observer(messages);
    switch (target.m_kind) {
    case TARGET::DIRECTORY:
        lint_directory(target.m_path, &observer, messages);
        lint_sheets(target.m_path, messages);
        break;
    case TARGET::SHEET:
        lint_sheet(target.m_path, messages);
        break;
    case TARGET::FAMILY_FILE:
        lint_family_file(target.m_path, &observer, messages);
        break;
    case TARGET::TABLE_FILE:
        lint_table_file(target.m_path, &observer);
        break;
    }
    if (!observer.is_complete()) {
        throw std::bad_alloc();
    }
    messages->sort();
}

std::string print(const LINT_MESSAGES& messages, const LINT_REQUEST& request)
{
    const bool carets = request.m_caret == LINT_CARET::ALWAYS ||
                        (request.m_caret == LINT_CARET::ON_TERMINALS && isatty(STDOUT_FILENO) == 1);
    switch (request.m_format) {
    case LINT_FORMAT::TEXT:
        return print_as_text(messages, carets);
    case LINT_FORMAT::JSON:
        return print_as_json(messages);
    case LINT_FORMAT::SARIF:
        return print_as_sarif(messages);
    }
    return std::string();
}

}  // namespace

LINT_VERDICT lint(const LINT_REQUEST& request, std::string* text, std::string* problem)
{
    std::error_code ignored;
    if (!std::filesystem::is_directory(request.m_path, ignored)) {
        if (const std::optional<std::string> reason = why_unreadable(request.m_path)) {
            *problem = "cannot read " + request.m_path + ": " + *reason;
            return LINT_VERDICT::UNREADABLE;
        }
    }
    LINT_MESSAGES messages;
    look_at(find_target(request), &messages);
    *text = print(messages, request);
    if (messages.has(rule_of(PLL_FINDING::PATH_FILE_NOT_OPENED))) {
        *problem = "cannot read a database from " + request.m_path;
        return LINT_VERDICT::UNREADABLE;
    }
    if (messages.count_errors() > 0) {
        return LINT_VERDICT::ERRORS;
    }
    return messages.get().empty() || !request.m_warnings_are_errors ? LINT_VERDICT::CLEAN
                                                                    : LINT_VERDICT::WARNINGS;
}
