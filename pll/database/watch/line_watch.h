// Tells an observer what the readers do. A watch looks at its own copy of what is read, beside the
// reader, so that reading is the same with and without one.
#pragma once

#include "pll_observer.h"

#include "database/files/family_file.h"

#include <cstddef>

// Pass an event to an observer; what that throws is dropped.
void tell(PLL_READ_OBSERVER* observer, const PLL_READ_FINDING& finding) noexcept;
void tell(PLL_READ_OBSERVER* observer, const PLL_READ_STATEMENT& statement) noexcept;

// A finding on a file as a whole.
void tell_of_file(PLL_READ_OBSERVER* observer, PLL_FINDING finding, const char* file,
                  const PLL_FAMILY_INFO* family = nullptr) noexcept;

// One line of a file, cut into words like the reader's, with the place of each.
class PLL_LINE_WATCH
{
public:
    PLL_LINE_WATCH(PLL_READ_OBSERVER* observer, const PLL_MANAGER& manager);

    // Takes a copy of the line that the file read last.
    void copy(const char* line, const PLL_INPUT_FILE& file, const char* file_name);

    // The next word; null at the end of the line.
    char* next_word() { return m_manager.find_unquoted_string_token(&m_cursor); }
    char* next_name() { return m_manager.find_string_token(&m_cursor); }
    void drop_rest();

    // The place of a word of this line; for a null one, where it was looked for.
    PLL_SOURCE_PLACE place_of(const char* word) const;

    // A finding on a word of this line, null for one that is missing.
    PLL_READ_FINDING finding_on(PLL_FINDING finding, const char* word) const;

    // Tells of what the reader does not use: words from the cursor on, characters that it dropped.
    void tell_of_rest(const char* keyword);

    PLL_READ_OBSERVER* get_observer() const { return m_observer; }

private:
    PLL_READ_OBSERVER* m_observer;
    const PLL_MANAGER& m_manager;
    char m_line[PLL_LINE_SIZE];
    char* m_cursor;
    std::size_t m_kept_length;  // of the line, up to its end or a NUL
    std::size_t m_full_length;
    PLL_SOURCE_PLACE m_place;  // of the line
};

// Watches the reader of a family file.
class PLL_STATEMENT_WATCH
{
public:
    PLL_STATEMENT_WATCH(const PLL_FAMILY_FILE_READER& reader, PLL_READ_OBSERVER* observer);

    // A finding on the file that is read, as a whole.
    void tell_of_top_file(PLL_FINDING finding, const char* path, const char* file_name);

    // Before and after the reader carries out a statement; the latter only when the former gave
    // true: the line holds a statement.
    bool begin(const char* line);
    void end(bool is_ok);

private:
    // Whose a record is: statements on it may follow after another family was named.
    struct OWNER
    {
        const PLL_FAMILY_INFO* m_family = nullptr;
        PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;
    };

    void look_at_statement(bool is_ok);
    void look_at_operands();
    void look_at_name(bool is_ok);
    void look_at_number(char* word);
    void look_at_post_scale(const char* word);
    void look_at_real(char* word);
    void look_at_flag(const char* word);
    void look_at_numbers();
    void look_at_counters();
    void look_at_reconfig_type(const char* word);
    void look_at_part(const char* name);
    const char* needed_keyword() const;
    PLL_READ_STATEMENT statement() const;

    // `find` tells of a word of the statement, `refuse` of one that keeps it from having an effect.
    void find(PLL_FINDING finding, const char* word,
              PLL_VOCABULARY vocabulary = PLL_VOCABULARY::NONE);
    void refuse(PLL_FINDING finding, const char* word,
                PLL_VOCABULARY vocabulary = PLL_VOCABULARY::NONE);
    void find(PLL_READ_FINDING finding);
    bool is_keyword(const char* keyword) const;

    const PLL_FAMILY_FILE_READER& m_reader;
    PLL_LINE_WATCH m_line;

    // The statement.
    const char* m_keyword;     // as it is written
    const PLL_KEYWORD* m_row;  // null: unknown
    bool m_is_in_scope;
    bool m_was_full;     // the stack of files, before it
    int m_opened_files;  // before it
    PLL_FINDING m_reason;

    OWNER m_part_owner;
    OWNER m_reconfig_owner;
    const PLL_FAMILY_INFO* m_foreign_family;  // the last that was told of
};
