// The reader of family files.
#pragma once

#include "pll_info.h"
#include "pll_manager.h"

#include "database/files/include_stack.h"
#include "database/files/keywords.h"
#include "database/files/read_budget.h"

namespace pll_internal {

// The statement under way, or carried out last.
struct PLL_STATEMENT
{
    const char* m_word = nullptr;            // its keyword as it is written, in the line
    const PLL_KEYWORD* m_keyword = nullptr;  // null: unknown
    bool m_is_in_scope = false;
};

// Whose a record is: statements on it may follow after another family was named.
struct PLL_RECORD_OWNER
{
    const PLL_FAMILY_INFO* m_family = nullptr;
    PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;
};

// Reads one family file with what it includes, and keeps what its statements refer to.
class PLL_FAMILY_FILE_READER
{
public:
    // `manager`, `path`, the family's directory, and `budget` must outlive the reader.
    PLL_FAMILY_FILE_READER(PLL_MANAGER* manager, const char* path, PLL_READ_BUDGET* budget);
    ~PLL_FAMILY_FILE_READER();
    PLL_FAMILY_FILE_READER(const PLL_FAMILY_FILE_READER&) = delete;
    PLL_FAMILY_FILE_READER& operator=(const PLL_FAMILY_FILE_READER&) = delete;

    // Carries out the statements of a file up to the first error, which it returns; NONE when there
    // is none. The numeric locale must be "C". `listener` may be null; it hears of all but the
    // names of tables, whose files are read afterwards.
    PLL_FINDING read(const char* file_name, PLL_LINE_LISTENER* listener);

    // The tables that were named, for the family that is current at the end: at most one for each
    // PLL type. They go with the reader.
    const PLL_TYPE_BANDWIDTH_FILE_LIST& table_files() const { return m_table_files; }

    bool is_in_scope(PLL_SCOPE scope) const;

    // The statement whose findings are told of now.
    const PLL_STATEMENT& statement() const { return m_statement; }

    // For the setters of keywords: what is not theirs to decide.

    // Opens the file of an include and reads on in it, or returns why not.
    PLL_FINDING include(const char* name);

    // Names the table file of the current PLL type; false when memory is exhausted.
    bool set_table_file(const char* name);

    // Tells what a statement on the current part says of other parts and families.
    void tell_of_part(const char* name);

    // The rest of the statement, which tells of what is wrong with it.
    PLL_WORDS* words() { return &m_words; }

    // The records that statements write to; only within their scopes.
    PLL_BASIC_INFO* basic_info() const { return &m_family->m_basic_infos[m_type]; }
    PLL_TIMING_INFO* timing_info() const { return &m_part->m_timing_info; }

    PLL_MANAGER* m_manager;
    PLL_FAMILY_INFO* m_family;  // each of these is set by its own statement and by no other
    PLL_TYPE_ENUM m_type;       // PLL_TYPE_MAX: none
    const char* m_speed_grade;
    PLL_PART_INFO* m_part;
    PLL_RECONFIG_INFO* m_reconfig;
    PLL_RECORD_OWNER m_part_owner;  // set with the record
    PLL_RECORD_OWNER m_reconfig_owner;

private:
    PLL_FINDING open_top_file(const char* file_name);
    PLL_FINDING read_statements();
    PLL_FINDING read_line(char* line, bool* has_statement);
    PLL_FINDING read_statement();
    PLL_FINDING refuse_scope(PLL_SCOPE scope);
    PLL_FINDING tell_of_file(const PLL_FAULT& fault);
    bool is_of_this_file(const PLL_FAMILY_INFO& family) const;

    PLL_INCLUDE_STACK m_files;
    PLL_READ_BUDGET* m_budget;
    PLL_LINE_LISTENER* m_listener;  // null: nobody
    PLL_WORDS m_words;
    PLL_STATEMENT m_statement;
    const char* m_path;
    const char* m_file_name;                  // of the file at the bottom; null before it is read
    const PLL_FAMILY_INFO* m_foreign_family;  // the last that was told of
    PLL_TYPE_BANDWIDTH_FILE_LIST m_table_files;  // owned
};

}  // namespace pll_internal
