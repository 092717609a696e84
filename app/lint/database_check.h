// Looks at the files of databases: path files, the family files that they name, tables.
#pragma once

#include "app/lint/family_file.h"
#include "app/lint/messages.h"
#include "app/lint/path_file.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class DATABASE_CHECK
{
public:
    DATABASE_CHECK(READINGS* readings, LINT_MESSAGES* messages)
        : m_readings(readings), m_messages(messages), m_run{readings, messages, {}, {}, {}}
    {
    }

    // Each looks at one kind of target; false when it cannot be opened.
    bool check_directory(const std::string& directory);
    bool check_family_file(const std::string& file);
    bool check_table_file(const std::string& file);

    // A file of either kind, by what it holds.
    bool check_file(const std::string& file);

    // Tells of what only the whole decides: statements that have an effect in no place.
    void finish();

private:
    bool open(const std::string& file, std::uint32_t* reading, std::string* text);
    void check_family_text(std::uint32_t reading, const std::string& folder, std::string text,
                           const FAMILY_NAMES& names);
    void check_table_text(std::uint32_t reading, std::string_view text);
    // The families of files that were not looked at yet.
    typedef std::unordered_map<std::string, std::vector<std::string_view>> FAMILIES_OF_FILES;

    void check_path_family(const std::string& directory, PATH_FILE_READER* path_file,
                           const PATH_FAMILY& family, FAMILIES_OF_FILES* families);

    READINGS* m_readings;
    LINT_MESSAGES* m_messages;
    LINT_RUN m_run;
};
