// Watches the reader of a table file for an observer.
#pragma once

#include "database/files/table_file.h"

namespace pll_internal {

// The place in a text, as its characters pass.
class PLL_TEXT_PLACE
{
public:
    void pass(char c);

    int line() const { return m_line; }
    int column() const { return m_column; }

private:
    int m_line = 1;
    int m_column = 1;
};

// One word as it passes: the blanks before it, its place, and its beginning.
class PLL_PASSING_WORD
{
public:
    // The next character may be a blank before the word, or its first.
    void begin();

    void pass(char c, const PLL_TEXT_PLACE& place);

    // Where the word is; where it was looked for while it has not come.
    PLL_SOURCE_PLACE place_in(const char* file, const PLL_TEXT_PLACE& here) const;
    const char* text() const { return m_text; }
    int length() const { return m_length; }

    bool has_ended() const { return m_state == STATE::ENDED; }

private:
    static constexpr int SIZE = 64;  // of a word that is quoted, with the NUL

    enum class STATE
    {
        BEFORE,
        INSIDE,
        ENDED
    };

    STATE m_state = STATE::ENDED;
    int m_line = 0;
    int m_column = 0;
    int m_length = 0;
    char m_text[SIZE] = "";
};

// The reader knows what is wrong; the watch counts lines and columns, and keeps the first word of
// the row and the word of the column that is read. It sees each character once.
class PLL_TABLE_WATCH : public PLL_TABLE_LISTENER
{
public:
    // All must outlive the watch.
    PLL_TABLE_WATCH(PLL_READ_OBSERVER* observer, const PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                    const char* file_name);

    void see(const char* text, std::size_t size) override;
    void hear_of_table(const PLL_FAULT& fault) override;
    void hear_of_format(PLL_FINDING finding, const char* word) override;
    void begin_row() override;
    void begin_column() override;
    void end_columns() override;
    void end_row(const PLL_TABLE_ROW& row, int largest_m) override;
    void end_table(PLL_FINDING finding) override;
    void end_file() override;

private:
    // Where in the file the characters are.
    enum class PART
    {
        HEAD,
        COLUMNS,
        REST_OF_LINE,
        NOTES,  // after the table, at the start of a line
        REST_OF_NOTE,
        ALL_TOLD
    };

    void look_for_lone_return(char c);
    void look_at_note(char c);
    PLL_READ_FINDING finding_at(PLL_FINDING finding, const PLL_SOURCE_PLACE& place,
                                const char* word) const;
    PLL_READ_FINDING finding_on(PLL_FINDING finding, const PLL_PASSING_WORD& word) const;
    void tell_of_stored_row(const PLL_TABLE_ROW& row, int largest_m) const;
    PLL_SOURCE_PLACE place_of_row(bool is_read) const;

    // As much of a place as may be told.
    PLL_SOURCE_PLACE shown(PLL_SOURCE_PLACE place) const;

    PLL_READ_OBSERVER* m_observer;
    const PLL_FAMILY_INFO* m_family;
    PLL_TYPE_ENUM m_type;
    const char* m_file_name;
    bool m_is_outside;  // of the database: nothing of the file is told but what is wrong
    PLL_TEXT_PLACE m_here;
    PART m_part;
    PLL_PASSING_WORD m_first;   // of the row
    PLL_PASSING_WORD m_column;  // of the column, and of notes
    int m_columns;              // of the row, begun
    int m_first_length;         // of m_first, before the column
    int m_last_line;            // of the last column
    bool m_is_lone_return;      // all that the line holds so far
};

}  // namespace pll_internal
