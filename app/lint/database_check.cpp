#include "app/lint/database_check.h"

#include "app/lint/family_check.h"
#include "app/lint/sheets.h"
#include "app/lint/table_check.h"
#include "app/output/input_file.h"
#include "app/source/text_file.h"
#include "app/words/letter_case.h"

#include <filesystem>
#include <optional>

namespace {

// The families that a path file names.
class NAMES_OF_PATH_FILE : public FAMILY_NAMES
{
public:
    NAMES_OF_PATH_FILE(PATH_FILE_READER* path_file, std::vector<std::string_view> expected)
        : m_path_file(path_file), m_expected(std::move(expected))
    {
    }

    const std::vector<std::string_view>& expected() const override { return m_expected; }

    bool has_other_file(std::string_view name) const override
    {
        const std::uint32_t family = m_path_file->find(name);
        return family != NO_RECORD && m_path_file->families()[family].m_has_file;
    }

private:
    PATH_FILE_READER* m_path_file;
    std::vector<std::string_view> m_expected;
};

// Of a file that stands alone, nothing is expected.
class NO_NAMES : public FAMILY_NAMES
{
public:
    const std::vector<std::string_view>& expected() const override { return m_none; }
    bool has_other_file(std::string_view) const override { return false; }

private:
    std::vector<std::string_view> m_none;
};

std::string folder_of(const std::string& file)
{
    const std::filesystem::path path = file;
    return path.has_parent_path() ? path.parent_path().string() : ".";
}

std::string file_of(const std::string& directory, const PATH_FAMILY& family)
{
    return tidy_path(directory + "/" + std::string(family.m_folder) + "/" +
                     std::string(family.m_file));
}

}  // namespace

bool DATABASE_CHECK::open(const std::string& file, std::uint32_t* reading, std::string* text)
{
    *reading = m_readings->add(tidy_path(file));
    std::string reason;
    std::optional<std::string> content = read_text(file, &reason);
    if (!content) {
        m_messages->add(LINT_RULE::FILE_NOT_OPENED, {*reading, 1, 1, 1},
                        "cannot read " + in_quotes(file) + ": " + reason);
        return false;
    }
    *text = std::move(*content);
    return true;
}

bool DATABASE_CHECK::check_directory(const std::string& directory)
{
    PATH_FILE_READER path_file(m_readings, m_messages);
    if (!path_file.read(directory)) {
        return false;
    }
    lint_sheets(directory, m_readings, m_messages);
    FAMILIES_OF_FILES families;
    for (const PATH_FAMILY& family : path_file.families()) {
        if (family.m_has_file) {
            families[file_of(directory, family)].push_back(family.m_name);
        }
    }
    for (const PATH_FAMILY& family : path_file.families()) {
        check_path_family(directory, &path_file, family, &families);
    }
    return true;
}

void DATABASE_CHECK::check_path_family(const std::string& directory, PATH_FILE_READER* path_file,
                                       const PATH_FAMILY& family, FAMILIES_OF_FILES* families)
{
    if (!family.m_has_file) {
        m_messages->add(LINT_RULE::FAMILY_WITHOUT_FILE, family.m_place,
                        "family " + in_quotes(family.m_name) +
                            " has no file; a line holds a family, its sub-directory and its file");
        return;
    }
    const std::string file = file_of(directory, family);
    const auto entry = families->find(file);
    if (entry == families->end()) {
        return;  // looked at for another family
    }
    const NAMES_OF_PATH_FILE names(path_file, std::move(entry->second));
    families->erase(entry);
    std::string reason;
    std::optional<std::string> text = read_text(file, &reason);
    const std::string folder = tidy_path(directory + "/" + std::string(family.m_folder));
    if (!text) {
        std::error_code ignored;
        const bool has_folder = std::filesystem::is_directory(folder, ignored);
        m_messages->add(LINT_RULE::FAMILY_FILE_NOT_OPENED,
                        has_folder ? family.m_file_place : family.m_folder_place,
                        "cannot open the family file " + in_quotes(file) + ": " + reason);
        return;
    }
    check_family_text(m_readings->add(file), folder, std::move(*text), names);
}

void DATABASE_CHECK::check_family_text(std::uint32_t reading, const std::string& folder,
                                       std::string text, const FAMILY_NAMES& names)
{
    FAMILY_FILE file(&m_run, &names, folder);
    file.read(reading, std::move(text));
    check_families(file, m_readings, m_messages);
    const bool is_alone = names.expected().empty();
    if (!file.statements().has_family() && !is_alone && !file.has_lost_file() &&
        !file.statements().has_lost_part() && file.has_statements()) {
        m_messages->add(LINT_RULE::INIT_FAILS, {reading, 1, 1, 1},
                        "family " + in_quotes(names.expected().front()) +
                            " has no part: see 'family' and 'part'");
    }
}

bool DATABASE_CHECK::check_family_file(const std::string& file)
{
    std::uint32_t reading = 0;
    std::string text;
    if (!open(file, &reading, &text)) {
        return false;
    }
    check_family_text(reading, folder_of(file), std::move(text), NO_NAMES());
    return true;
}

void DATABASE_CHECK::check_table_text(std::uint32_t reading, std::string_view text)
{
    TABLE_CHECK check(nullptr, m_messages);
    TABLE_FILE reader(reading, m_messages, &check);
    reader.read(text);
    check.finish();
}

bool DATABASE_CHECK::check_table_file(const std::string& file)
{
    std::uint32_t reading = 0;
    std::string text;
    if (!open(file, &reading, &text)) {
        return false;
    }
    check_table_text(reading, text);
    return true;
}

bool DATABASE_CHECK::check_file(const std::string& file)
{
    if (is_sheet(file)) {
        lint_sheet(file, m_readings, m_messages);
        return true;
    }
    std::uint32_t reading = 0;
    std::string text;
    if (!open(file, &reading, &text)) {
        return false;
    }
    if (is_table_text(text)) {
        check_table_text(reading, text);
    } else {
        check_family_text(reading, folder_of(file), std::move(text), NO_NAMES());
    }
    return true;
}

void DATABASE_CHECK::finish()
{
    for (const WAITING& waiting : m_run.m_undecided) {
        const std::uint32_t file = m_readings->file_of(waiting.m_place.m_reading);
        if (!m_run.m_lines.has(file, waiting.m_place.m_line)) {
            tell_of_waiting(waiting, m_messages);
        }
    }
    m_run.m_undecided.clear();
    m_messages->finish();
}
