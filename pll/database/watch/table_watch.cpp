#include "database/watch/table_watch.h"

#include "database/watch/line_watch.h"

#include <cstring>

namespace {

const char DIGITS_AND_SIGNS[] = "0123456789+-";

// White space as the number reader knows it.
bool is_blank(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

PLL_TEXT_WALK::PLL_TEXT_WALK(const char* name)
    : m_block(nullptr), m_size(0), m_next(0), m_offset(0), m_line(1), m_column(1)
{
    m_file.open(name);
}

void PLL_TEXT_WALK::go_to(std::int64_t offset)
{
    while (m_offset < offset && peek() != AT_END) {
        step();
    }
}

int PLL_TEXT_WALK::peek()
{
    if (m_next == m_size) {
        m_block = m_file.take_block(&m_size);
        m_next = 0;
    }
    return m_size == 0 ? AT_END : static_cast<unsigned char>(m_block[m_next]);
}

void PLL_TEXT_WALK::step()
{
    const int c = peek();
    if (c == AT_END) {
        return;
    }
    ++m_next;
    ++m_offset;
    m_line += c == '\n' ? 1 : 0;
    m_column = c == '\n' ? 1 : m_column + 1;
}

PLL_TABLE_WATCH::PLL_TABLE_WATCH(PLL_READ_OBSERVER* observer, const PLL_FAMILY_INFO* family,
                                 PLL_TYPE_ENUM type, const char* file_name)
    : m_observer(observer),
      m_family(family),
      m_type(type),
      m_text(file_name),
      m_largest_m(0),
      m_row_offset(0),
      m_field_offset(0),
      m_word()
{
    m_place.m_file = file_name;
}

void PLL_TABLE_WATCH::tell_of_table(PLL_FINDING finding, long long value, long long limit)
{
    PLL_READ_FINDING event;
    event.m_finding = finding;
    event.m_place.m_file = m_place.m_file;
    event.m_word = m_place.m_file;
    event.m_family = m_family;
    event.m_type = m_type;
    event.m_value = value;
    event.m_limit = limit;
    tell(m_observer, event);
}

void PLL_TABLE_WATCH::format_word(const char* word, bool is_read)
{
    take_word();
    if (!is_read) {
        tell(m_observer, finding_here(PLL_FINDING::TABLE_FORMAT_MISSING));
    } else if (std::strpbrk(word, "\t\r\n") != nullptr) {
        tell(m_observer, finding_here(PLL_FINDING::TABLE_FORMAT_UNENDED));
    }
}

// Moves to the next word. On the way, lines of a lone carriage return are told of.
void PLL_TABLE_WATCH::skip_to_word()
{
    bool is_lone = false;
    while (is_blank(m_text.peek())) {
        const int c = m_text.peek();
        if (c == '\n' && is_lone) {
            PLL_READ_FINDING event = finding_here(PLL_FINDING::CARRIAGE_RETURN_LINE);
            event.m_place.m_line = m_text.line();
            event.m_place.m_column = 1;
            event.m_place.m_length = 1;
            event.m_word = "\r";
            tell(m_observer, event);
        }
        is_lone = c == '\r' && m_text.column() == 1;
        m_text.step();
    }
}

// Takes the word here, up to an offset at most; its beginning is kept.
void PLL_TABLE_WATCH::take_word(std::int64_t end)
{
    m_place.m_line = m_text.line();
    m_place.m_column = m_text.column();
    std::size_t length = 0;
    while (m_text.offset() < end && m_text.peek() != PLL_TEXT_WALK::AT_END &&
           !is_blank(m_text.peek())) {
        if (length < WORD_SIZE - 1) {
            m_word[length] = static_cast<char>(m_text.peek());
            ++length;
        }
        m_text.step();
    }
    m_word[length] = '\0';
    m_place.m_length = static_cast<int>(length);
}

PLL_READ_FINDING PLL_TABLE_WATCH::finding_here(PLL_FINDING finding) const
{
    PLL_READ_FINDING event;
    event.m_finding = finding;
    event.m_place = m_place;
    event.m_word = m_word;
    event.m_family = m_family;
    event.m_type = m_type;
    return event;
}

// The column that failed is the one that was begun last.
PLL_FINDING PLL_TABLE_WATCH::refuse_row(const PLL_TABLE_POSITION& end)
{
    m_text.go_to(m_field_offset);
    skip_to_word();
    take_word();
    const PLL_FINDING reason = end.m_is_number_at_end ? PLL_FINDING::TABLE_LINE_UNFINISHED
                                                      : PLL_FINDING::TABLE_NUMBER_EXPECTED;
    tell(m_observer, finding_here(reason));
    return reason;
}

void PLL_TABLE_WATCH::end_row(const PLL_TABLE_POSITION& end, bool is_read, int m,
                              const PLL_BANDWIDTH_SETTING* row)
{
    PLL_READ_STATEMENT event;
    event.m_kind = PLL_READ_KIND::TABLE_ROW;
    event.m_result = !is_read         ? PLL_READ_RESULT::FAILED
                     : row == nullptr ? PLL_READ_RESULT::SKIPPED
                                      : PLL_READ_RESULT::STORED;
    event.m_family = m_family;
    event.m_type = m_type;
    event.m_row = row;
    m_text.go_to(m_row_offset);
    skip_to_word();
    if (is_read) {
        take_word();
        event.m_place = m_place;
        event.m_reason = look_at_row(end, m, row);
    } else {
        if (m_field_offset > m_row_offset) {
            take_word(m_field_offset);
            event.m_place = m_place;
        }
        event.m_reason = refuse_row(end);
        event.m_place = event.m_place.m_line == 0 ? m_place : event.m_place;
    }
    tell(m_observer, event);
}

// Gives why a good row is not stored.
PLL_FINDING PLL_TABLE_WATCH::look_at_row(const PLL_TABLE_POSITION& end, int m,
                                         const PLL_BANDWIDTH_SETTING* row)
{
    PLL_FINDING reason = PLL_FINDING::NONE;
    if (row == nullptr) {
        reason = PLL_FINDING::ROW_WITHOUT_GROUP;
        PLL_READ_FINDING finding = finding_here(reason);
        finding.m_value = m;
        finding.m_limit = m_largest_m;
        tell(m_observer, finding);
    }
    m_text.go_to(end.m_offset);
    if (m_text.line() != m_place.m_line) {
        tell(m_observer, finding_here(PLL_FINDING::ROW_OVER_LINES));
    }
    return reason;
}

// A line that begins like a number was meant as a row; other texts are notes.
void PLL_TABLE_WATCH::end_table(std::int64_t offset, bool has_row)
{
    m_text.go_to(offset);
    m_place.m_line = m_text.line();
    m_place.m_column = 0;
    m_place.m_length = 0;
    m_word[0] = '\0';
    if (!has_row) {
        tell(m_observer, finding_here(PLL_FINDING::TABLE_WITHOUT_ROWS));
    }
    while (m_text.peek() != PLL_TEXT_WALK::AT_END) {
        while (is_blank(m_text.peek())) {
            m_text.step();
        }
        take_word();
        if (m_word[0] != '\0' && std::strchr(DIGITS_AND_SIGNS, m_word[0]) != nullptr) {
            tell(m_observer, finding_here(PLL_FINDING::ROWS_AFTER_EMPTY_LINE));
            return;
        }
        while (m_text.peek() != PLL_TEXT_WALK::AT_END && m_text.peek() != '\n') {
            m_text.step();
        }
    }
}
