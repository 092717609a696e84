// Tells an observer what the reader of table files does. The reader knows how far it has read; the
// watch finds the places in the text, of which it opens the file once more.
#pragma once

#include "pll_observer.h"

#include "database/files/input_file.h"

#include <cstddef>
#include <cstdint>
#include <limits>

// A text file, walked through from its start.
class PLL_TEXT_WALK
{
public:
    explicit PLL_TEXT_WALK(const char* name);

    // Moves forward to the character at an offset, or to the end of the file.
    void go_to(std::int64_t offset);

    // The character here, AT_END at the end; `step` moves to the next.
    int peek();
    void step();

    std::int64_t offset() const { return m_offset; }
    int line() const { return m_line; }
    int column() const { return m_column; }

    static constexpr int AT_END = -1;

private:
    PLL_INPUT_FILE m_file;
    const char* m_block;
    std::size_t m_size;
    std::size_t m_next;
    std::int64_t m_offset;
    int m_line;
    int m_column;
};

// How far the reader got.
struct PLL_TABLE_POSITION
{
    std::int64_t m_offset;
    bool m_is_number_at_end;  // the last column is good, but the file ends right behind it
};

class PLL_TABLE_WATCH
{
public:
    PLL_TABLE_WATCH(PLL_READ_OBSERVER* observer, const PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                    const char* file_name);

    // A finding on the table as a whole.
    void tell_of_table(PLL_FINDING finding, long long value = 0, long long limit = 0);

    void set_largest_m(int largest_m) { m_largest_m = largest_m; }
    void format_word(const char* word, bool is_read);

    // Offsets where the reader is; it has not looked for the next word yet.
    void begin_row(std::int64_t offset) { m_row_offset = offset; }
    void begin_field(std::int64_t offset) { m_field_offset = offset; }

    // After a row: `row` is null when it was not stored.
    void end_row(const PLL_TABLE_POSITION& end, bool is_read, int m,
                 const PLL_BANDWIDTH_SETTING* row);

    // After the last row of a table whose rows are good.
    void end_table(std::int64_t offset, bool has_row);

private:
    static constexpr std::size_t WORD_SIZE = 64;  // of a word that is quoted, with the NUL

    void skip_to_word();
    void take_word(std::int64_t end = std::numeric_limits<std::int64_t>::max());
    PLL_FINDING refuse_row(const PLL_TABLE_POSITION& end);
    PLL_FINDING look_at_row(const PLL_TABLE_POSITION& end, int m, const PLL_BANDWIDTH_SETTING* row);
    PLL_READ_FINDING finding_here(PLL_FINDING finding) const;

    PLL_READ_OBSERVER* m_observer;
    const PLL_FAMILY_INFO* m_family;
    PLL_TYPE_ENUM m_type;
    PLL_TEXT_WALK m_text;
    int m_largest_m;
    std::int64_t m_row_offset;
    std::int64_t m_field_offset;
    PLL_SOURCE_PLACE m_place;  // of the word taken last
    char m_word[WORD_SIZE];
};
