// A database as its files say it, value by value, with the statements that set them.
#pragma once

#include "app/lint/family_file.h"
#include "app/lint/messages.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A value as it is written: "1000", "10 20 40", "yes".
std::string text_of_value(const SOURCE_MODEL& model, const SET_VALUE& value);

// A row of a table: the settings, and what they give.
struct TEXT_ROW
{
    std::string m_settings;  // "M 12, 20 uA, 2000 ohm, 10 pF"
    std::string m_results;
};

class TEXT_DATABASE
{
public:
    // Reads all of the families. Throws an INPUT_ERROR when the path file cannot be read. What is
    // wrong with the files is for lint to say.
    explicit TEXT_DATABASE(const std::string& directory);
    TEXT_DATABASE(const TEXT_DATABASE&) = delete;
    TEXT_DATABASE& operator=(const TEXT_DATABASE&) = delete;

    const std::vector<std::unique_ptr<FAMILY_FILE>>& files() const { return m_files; }
    const READINGS& readings() const { return m_readings; }

    // The rows of the table of a PLL type in the order of the file; none without one.
    std::vector<TEXT_ROW> read_table(const FAMILY_FILE& file, PLL_TYPE_ENUM type);

    // "sorrel/sorrel_pll.txt:12"
    std::string show_place(const SOURCE_PLACE& place) const;

private:
    READINGS m_readings;
    LINT_MESSAGES m_messages;
    LINT_RUN m_run;
    std::vector<std::unique_ptr<FAMILY_FILE>> m_files;
};
