// Reads a bandwidth table, row by row, and tells of what stands in the wrong place. Unlike the
// library, which takes the columns that a row lacks from the next line, this reader takes every
// line for a row.
#pragma once

#include "app/lint/messages.h"
#include "app/lint/words.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class TABLE_COLUMN_KIND
{
    CAPACITOR,
    M,
    CURRENT,
    RESISTOR,
    MARGIN,
    BANDWIDTH,
    PEAKING
};

inline constexpr std::size_t MOST_COLUMNS = 13;

// A row whose columns are all there.
struct TABLE_ROW
{
    TABLE_ROW() { m_values.fill(0.0); }

    std::array<double, MOST_COLUMNS> m_values;  // in the order of the format
    std::array<TEXT_WORD, MOST_COLUMNS> m_words;
    std::size_t m_count = 0;
};

struct TABLE_FORMAT
{
    const char* m_word;
    std::size_t m_columns;
    bool m_has_capacitor;
    bool m_has_results;
};

// Takes the rows that were read.
class TABLE_ROW_CHECK
{
public:
    TABLE_ROW_CHECK() = default;
    virtual ~TABLE_ROW_CHECK();
    TABLE_ROW_CHECK(const TABLE_ROW_CHECK&) = delete;
    TABLE_ROW_CHECK& operator=(const TABLE_ROW_CHECK&) = delete;

    virtual void check_row(const TABLE_FORMAT& format, const TABLE_ROW& row,
                           const OPERAND_WATCH& watch) = 0;
};

class TABLE_FILE
{
public:
    TABLE_FILE(std::uint32_t reading, LINT_MESSAGES* messages, TABLE_ROW_CHECK* check)
        : m_reading(reading), m_messages(messages), m_check(check)
    {
    }

    // False when what was told of makes the rows worth nothing.
    bool read(std::string_view text);

private:
    std::optional<TABLE_FORMAT> read_format(const TEXT_LINE& line, std::string_view rest);
    bool fits(const TABLE_FORMAT& format, const TEXT_LINE& line, std::string_view rest);
    void read_rows(const TABLE_FORMAT& format, TEXT_LINES lines);
    void read_row(const TABLE_FORMAT& format, const TEXT_LINE& line);
    bool read_columns(const TABLE_FORMAT& format, const OPERAND_WATCH& watch, TABLE_ROW* row);
    void check_behind(TEXT_LINES lines);
    void tell_of_end(std::uint32_t line);

    std::uint32_t m_reading;
    LINT_MESSAGES* m_messages;
    TABLE_ROW_CHECK* m_check;
    std::size_t m_rows = 0;
    bool m_is_row_short = false;  // that of the line above
    bool m_is_sound = true;
    std::optional<std::string_view> m_unknown_word;  // for the format
};

// True when a text is that of a table: it begins with a format word that is known, or its third
// line begins with as many numbers as the shortest row has.
bool is_table_text(std::string_view text);
