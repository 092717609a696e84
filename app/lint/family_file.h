// Reads a family file and what it includes, line by line, to its end.
#pragma once

#include "app/lint/scopes.h"
#include "app/lint/statements.h"
#include "app/source/text_file.h"

#include <memory>
#include <string>
#include <vector>

// What the files of a run share.
struct LINT_RUN
{
    READINGS* m_readings;
    LINT_MESSAGES* m_messages;
    EFFECTIVE_LINES m_lines;
    std::vector<WAITING> m_undecided;  // may have an effect in a file to come
    TEXT_CACHE m_texts;                // of included files
};

class FAMILY_FILE
{
public:
    // `folder` is that of the family, to which the names of files are relative.
    FAMILY_FILE(LINT_RUN* run, const FAMILY_NAMES* names, const std::string& folder);

    // Reads a text, whose reading is known.
    void read(std::uint32_t reading, std::string text);

    const SOURCE_MODEL& model() const { return m_model; }
    const STATEMENTS& statements() const { return m_statements; }
    const std::string& folder() const { return m_folder; }
    std::uint32_t reading() const { return m_reading; }

    // Statements were read.
    bool has_statements() const { return m_has_statements; }
    // A file could not be included: nothing is known of what it says.
    bool has_lost_file() const { return m_has_lost_file; }

private:
    // A file that is read, behind those that it includes.
    struct OPEN_FILE
    {
        std::uint32_t m_reading;
        std::string m_shown;  // as it is named
        std::shared_ptr<const std::string> m_text;
        TEXT_LINES m_lines;
    };

    void open(std::uint32_t reading, const std::string& shown,
              std::shared_ptr<const std::string> text);
    void include(const TEXT_WORD& name, const OPERAND_WATCH& watch);
    bool refuse_include(const std::string& file, const TEXT_WORD& name, const OPERAND_WATCH& watch);
    void read_line(const TEXT_LINE& line);

    TEXT_CACHE* m_texts;
    READINGS* m_readings;
    LINT_MESSAGES* m_messages;
    std::string m_folder;
    SOURCE_MODEL m_model;
    SCOPES m_scopes;
    STATEMENTS m_statements;
    std::vector<OPEN_FILE> m_stack;
    std::uint32_t m_reading = 0;
    int m_number_of_files = 0;
    bool m_has_statements = false;
    bool m_has_lost_file = false;
    bool m_includes = true;  // until files include each other without end
};
