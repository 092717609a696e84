#include "app/lint/table_file.h"

#include "app/words/letter_case.h"
#include "app/words/suggestion.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t LEAST_COLUMNS = 3;  // of a row of any format
constexpr std::size_t SHOWN_WORD = 40;
constexpr std::size_t LINES_BEFORE_ROWS = 2;

constexpr TABLE_FORMAT V2 = {"V2", 13, true, true};
constexpr TABLE_FORMAT V1 = {"V1", 12, false, true};
constexpr TABLE_FORMAT SIMPLE_V1 = {"SIMPLE_V1", 3, false, false};
constexpr TABLE_FORMAT FORMATS[] = {V2, V1, SIMPLE_V1};

std::vector<std::string_view> format_words()
{
    std::vector<std::string_view> words;
    for (const TABLE_FORMAT& format : FORMATS) {
        words.emplace_back(format.m_word);
    }
    return words;
}

// A number as streams read it; nothing for a word that goes on behind it.
std::optional<double> read_number(std::string_view word)
{
    if (word.size() > 1 && word[0] == '+') {
        word.remove_prefix(1);
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    const bool is_whole = error == std::errc() && end == word.data() + word.size();
    return is_whole && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

std::optional<double> read_whole_number(std::string_view word)
{
    if (word.size() > 1 && word[0] == '+') {
        word.remove_prefix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    const bool is_whole = error == std::errc() && end == word.data() + word.size();
    return is_whole ? std::optional<double>(value) : std::nullopt;
}

bool is_number(std::string_view word)
{
    return read_number(word).has_value();
}

bool begins_like_number(std::string_view word)
{
    return word.find_first_of("0123456789+-") == 0;
}

// Words of a table end at blanks alone: a '#' is a letter like any other.
bool next_word(std::string_view line, std::size_t* at, TEXT_WORD* word)
{
    constexpr char BLANKS[] = " \t\r\v\f";
    const std::size_t start = line.find_first_not_of(BLANKS, *at);
    if (start == std::string_view::npos) {
        return false;
    }
    const std::size_t end = std::min(line.find_first_of(BLANKS, start), line.size());
    *word = {line.substr(start, end - start), start, end, false, true};
    *at = end;
    return true;
}

// The numbers at the front of a line, one more than a row can have at most.
std::size_t count_numbers(std::string_view line)
{
    std::size_t count = 0;
    std::size_t at = 0;
    for (TEXT_WORD word; count <= MOST_COLUMNS && next_word(line, &at, &word); ++count) {
        if (!is_number(word.m_text)) {
            break;
        }
    }
    return count;
}

bool is_row(std::string_view line)
{
    return count_numbers(line) >= LEAST_COLUMNS;
}

// What a column of a row is called.
const char* column_name(const TABLE_FORMAT& format, std::size_t column)
{
    static const char* const NAMES[] = {"capacitor",
                                        "M",
                                        "current",
                                        "resistor",
                                        "typical phase margin",
                                        "typical bandwidth",
                                        "typical jitter peaking",
                                        "fast phase margin",
                                        "fast bandwidth",
                                        "fast jitter peaking",
                                        "slow phase margin",
                                        "slow bandwidth",
                                        "slow jitter peaking"};
    return NAMES[column + (format.m_has_capacitor ? 0 : 1)];
}

bool is_whole_column(const TABLE_FORMAT& format, std::size_t column)
{
    return column < LEAST_COLUMNS + (format.m_has_capacitor ? 1 : 0);
}

const TABLE_FORMAT* find_format(std::size_t columns)
{
    for (const TABLE_FORMAT& format : FORMATS) {
        if (format.m_columns == columns) {
            return &format;
        }
    }
    return nullptr;
}

// The columns that the rows of a text have, when all have as many; 0 otherwise.
std::size_t common_columns(std::string_view rest)
{
    TEXT_LINES lines(rest);
    TEXT_LINE line;
    std::size_t common = 0;
    for (std::size_t i = 0; lines.next(&line); ++i) {
        if (i + 1 < LINES_BEFORE_ROWS) {
            continue;
        }
        const std::size_t count = count_numbers(line.m_text);
        if (count == 0 || (common != 0 && count != common)) {
            return line.m_text.empty() ? common : 0;
        }
        common = count;
    }
    return common;
}

}  // namespace

TABLE_ROW_CHECK::~TABLE_ROW_CHECK() = default;

bool is_table_text(std::string_view text)
{
    TEXT_LINES lines(text);
    TEXT_LINE line;
    TEXT_WORD word;
    std::size_t at = 0;
    if (!lines.next(&line)) {
        return false;
    }
    if (next_word(line.m_text, &at, &word)) {
        const std::vector<std::string_view> words = format_words();
        if (std::find(words.begin(), words.end(), word.m_text) != words.end()) {
            return true;
        }
    }
    return lines.next(&line) && lines.next(&line) && is_row(line.m_text);
}

bool TABLE_FILE::read(std::string_view text)
{
    if (!check_encoding(m_reading, &text, m_messages)) {
        return false;
    }
    TEXT_LINES lines(text);
    TEXT_LINE line;
    if (!lines.next(&line)) {
        m_messages->add(LINT_RULE::TABLE_FORMAT_MISSING, {m_reading, 1, 1, 1},
                        "no format word; line 1 begins with 'V2 ', 'SIMPLE_V1 ' or 'V1 '");
        return false;
    }
    const std::size_t first_end = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view rest = text.substr(first_end);
    const std::optional<TABLE_FORMAT> format = read_format(line, rest);
    if (!format || !fits(*format, line, rest)) {
        return false;
    }
    if (lines.next(&line) && is_row(line.m_text)) {
        m_messages->add(LINT_RULE::TABLE_TITLE_MISSING,
                        place_in_line(m_reading, line, 0, line.m_text.size()),
                        "this row is not read: line 2 holds the titles of the columns");
    }
    read_rows(*format, lines);
    return m_is_sound;
}

std::optional<TABLE_FORMAT> TABLE_FILE::read_format(const TEXT_LINE& line, std::string_view rest)
{
    const std::size_t end = line.m_text.find(' ');
    const std::string_view word = line.m_text.substr(0, end);
    const OPERAND_WATCH watch = {m_reading, line, m_messages};
    const bool has_tab = word.find('\t') != std::string_view::npos;
    if (end == std::string_view::npos || has_tab) {
        const std::string_view first = word.substr(0, word.find_first_of("\t\r"));
        const bool is_unended = rest.find(' ') != std::string_view::npos || has_tab;
        const TEXT_WORD shown = {first, 0, std::max<std::size_t>(first.size(), 1), false, true};
        watch.tell(
            is_unended ? LINT_RULE::TABLE_FORMAT_UNENDED : LINT_RULE::TABLE_FORMAT_MISSING, shown,
            is_unended ? in_quotes(first.substr(0, SHOWN_WORD)) +
                             " is not taken for the format word: that runs on to the next "
                             "blank, in line 1"
                       : "no blank ends the format word " + in_quotes(first.substr(0, SHOWN_WORD)) +
                             "; line 1 begins with 'V2 ', 'SIMPLE_V1 ' or 'V1 '");
        return std::nullopt;
    }
    for (const TABLE_FORMAT& format : FORMATS) {
        if (equal_but_for_case(word, format.m_word)) {
            return format;
        }
    }
    m_unknown_word = word;
    return V1;
}

// Of a table whose rows are all those of another format, this alone is told.
bool TABLE_FILE::fits(const TABLE_FORMAT& format, const TEXT_LINE& line, std::string_view rest)
{
    const std::size_t columns = common_columns(rest);
    const TABLE_FORMAT* const other = find_format(columns);
    const bool is_right = columns == 0 || columns == format.m_columns || other == nullptr;
    const SOURCE_PLACE place = place_in_line(m_reading, line, 0, line.m_text.find(' '));
    std::string text;
    if (m_unknown_word) {
        text = "unknown format word " + in_quotes(m_unknown_word->substr(0, SHOWN_WORD)) +
               ", which is read as V1" + suggest(*m_unknown_word, format_words());
    }
    if (!is_right) {
        text += (text.empty() ? "" : "; ") + std::string("the rows have ") +
                std::to_string(columns) + " columns, as those of " + other->m_word +
                " have; those of " + format.m_word + " have " + std::to_string(format.m_columns);
    }
    if (!text.empty()) {
        m_messages->add(is_right ? LINT_RULE::TABLE_FORMAT_UNKNOWN
                                 : LINT_RULE::TABLE_FORMAT_MISMATCH,
                        place, text);
    }
    return is_right;
}

void TABLE_FILE::read_rows(const TABLE_FORMAT& format, TEXT_LINES lines)
{
    TEXT_LINE line;
    bool is_open = false;  // a line of blanks or a carriage return waits for a row behind it
    TEXT_LINE blank;
    std::uint32_t last = LINES_BEFORE_ROWS;
    while (lines.next(&line)) {
        last = line.m_number;
        if (line.m_text.empty() && !line.m_has_return) {
            last = line.m_number;
            check_behind(lines);
            break;
        }
        if (line.m_text.find_first_not_of(" \t\r\v\f") == std::string_view::npos) {
            blank = line;
            is_open = true;
            continue;
        }
        if (is_open && blank.m_text.empty()) {
            m_messages->add(LINT_RULE::CARRIAGE_RETURN_LINE, {m_reading, blank.m_number, 1, 1},
                            "this line looks empty, but holds a carriage return and does not end "
                            "the table");
        }
        is_open = false;
        read_row(format, line);
    }
    if (is_open) {
        m_is_sound = false;
        m_messages->add(LINT_RULE::TABLE_NUMBER_EXPECTED, {m_reading, blank.m_number, 1, 1},
                        "a row is expected in this line: an empty line would end the table, a "
                        "line of blanks or of a carriage return does not");
    }
    if (m_rows == 0 && m_is_sound) {
        m_is_sound = false;
        tell_of_end(last);
    }
}

void TABLE_FILE::tell_of_end(std::uint32_t line)
{
    m_messages->add(LINT_RULE::TABLE_WITHOUT_ROWS, {m_reading, line, 1, 1},
                    "the table has no row; rows begin on line 3, and an empty line ends them");
}

// A line that begins like a number was meant as a row; other texts are notes.
void TABLE_FILE::check_behind(TEXT_LINES lines)
{
    TEXT_LINE line;
    while (lines.next(&line)) {
        std::size_t at = 0;
        TEXT_WORD word;
        const bool is_row = next_word(line.m_text, &at, &word) && begins_like_number(word.m_text);
        if (is_row && m_rows > 0) {
            m_messages->add(LINT_RULE::ROWS_AFTER_EMPTY_LINE,
                            place_in_line(m_reading, line, word.m_start, word.m_end),
                            "this row is not read: an empty line above ends the table");
            return;
        }
    }
}

void TABLE_FILE::read_row(const TABLE_FORMAT& format, const TEXT_LINE& line)
{
    const OPERAND_WATCH watch = {m_reading, line, m_messages};
    const std::size_t comment = line.m_text.find('#');
    if (comment != std::string_view::npos) {
        m_messages->heed_comment(m_reading, line, line.m_text.substr(comment));
    }
    // The library loses this line to the row above.
    const bool is_lost = m_is_row_short;
    m_is_row_short = false;
    if (is_lost) {
        return;
    }
    ++m_rows;
    ++m_messages->m_summary.m_rows;
    TABLE_ROW row;
    if (!read_columns(format, watch, &row)) {
        m_is_sound = false;
        return;
    }
    const std::size_t end = row.m_words[row.m_count - 1].m_end;
    if (!line.m_is_ended && end == line.m_text.size()) {
        m_is_sound = false;
        m_messages->add(LINT_RULE::TABLE_LINE_UNFINISHED,
                        place_in_line(m_reading, line, row.m_words[row.m_count - 1].m_start, end),
                        "no line break follows the last row");
    }
    m_check->check_row(format, row, watch);
}

bool TABLE_FILE::read_columns(const TABLE_FORMAT& format, const OPERAND_WATCH& watch,
                              TABLE_ROW* row)
{
    const std::string_view line = watch.m_line.m_text;
    std::size_t at = 0;
    for (; row->m_count < format.m_columns; ++row->m_count) {
        TEXT_WORD& word = row->m_words[row->m_count];
        const bool is_whole = is_whole_column(format, row->m_count);
        if (!next_word(line, &at, &word)) {
            const TEXT_WORD& last = row->m_words[row->m_count - 1];
            m_is_row_short = true;
            watch.tell(LINT_RULE::ROW_OVER_LINES, last,
                       "the row has " + std::to_string(row->m_count) + " columns of " +
                           std::to_string(format.m_columns) +
                           ": the library takes the others from the lines below");
            return false;
        }
        const std::optional<double> number =
            is_whole ? read_whole_number(word.m_text) : read_number(word.m_text);
        if (!number) {
            const bool is_comment = word.m_text[0] == '#';
            watch.tell(LINT_RULE::TABLE_NUMBER_EXPECTED, word,
                       in_quotes(word.m_text.substr(0, SHOWN_WORD)) + " is no " +
                           (is_whole ? "whole number" : "number") + " for the " +
                           column_name(format, row->m_count) +
                           (is_comment ? "; comments stand behind the last column alone" : ""));
            return false;
        }
        row->m_values[row->m_count] = *number;
    }
    TEXT_WORD extra;
    if (next_word(line, &at, &extra) && is_number(extra.m_text)) {
        const TABLE_FORMAT* const other = find_format(count_numbers(line));
        watch.tell(
            LINT_RULE::EXTRA_COLUMN, extra,
            in_quotes(extra.m_text) + " stands behind the last column and is not read" +
                (other == nullptr ? "" : std::string("; the row is one of ") + other->m_word));
        return false;
    }
    return true;
}
