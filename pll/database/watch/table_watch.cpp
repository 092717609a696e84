#include "database/watch/table_watch.h"

#include "database/watch/tell.h"

#include <cstring>

namespace pll_internal {

namespace {

const char DIGITS_AND_SIGNS[] = "0123456789+-";
const char BLANKS[] = " \t\n\v\f\r";  // white space as the number reader knows it

bool is_blank(char c)
{
    return c != '\0' && std::strchr(BLANKS, c) != nullptr;
}

}  // namespace

void PLL_TEXT_PLACE::pass(char c)
{
    m_line += c == '\n' ? 1 : 0;
    m_column = c == '\n' ? 1 : m_column + 1;
}

void PLL_PASSING_WORD::begin()
{
    m_state = STATE::BEFORE;
    m_length = 0;
    m_text[0] = '\0';
}

void PLL_PASSING_WORD::pass(char c, const PLL_TEXT_PLACE& place)
{
    if (m_state == STATE::ENDED || (m_state == STATE::BEFORE && is_blank(c))) {
        return;
    }
    if (m_state == STATE::BEFORE) {
        m_state = STATE::INSIDE;
        m_line = place.line();
        m_column = place.column();
    }
    if (is_blank(c)) {
        m_state = STATE::ENDED;
    } else if (m_length < SIZE - 1) {
        m_text[m_length] = c;
        ++m_length;
        m_text[m_length] = '\0';
    }
}

PLL_SOURCE_PLACE PLL_PASSING_WORD::place_in(const char* file, const PLL_TEXT_PLACE& here) const
{
    const bool is_there = m_state != STATE::BEFORE;
    PLL_SOURCE_PLACE place;
    place.m_file = file;
    place.m_line = is_there ? m_line : here.line();
    place.m_column = is_there ? m_column : here.column();
    place.m_length = m_length;
    return place;
}

PLL_TABLE_WATCH::PLL_TABLE_WATCH(PLL_READ_OBSERVER* observer, const PLL_FAMILY_INFO* family,
                                 PLL_TYPE_ENUM type, const char* file_name)
    : m_observer(observer),
      m_family(family),
      m_type(type),
      m_file_name(file_name),
      m_is_outside(false),
      m_part(PART::HEAD),
      m_columns(0),
      m_first_length(0),
      m_last_line(0),
      m_is_lone_return(false)
{
}

void PLL_TABLE_WATCH::see(const char* text, std::size_t size)
{
    for (const char* c = text; c != text + size; ++c) {
        switch (m_part) {
        case PART::HEAD:
        case PART::ALL_TOLD:
            break;
        case PART::REST_OF_LINE:
            m_first.pass(*c, m_here);
            break;
        case PART::COLUMNS:
            look_for_lone_return(*c);
            m_first.pass(*c, m_here);
            m_column.pass(*c, m_here);
            break;
        case PART::NOTES:
        case PART::REST_OF_NOTE:
            look_at_note(*c);
            break;
        }
        m_here.pass(*c);
    }
}

// A line of it looks empty, but does not end the table.
void PLL_TABLE_WATCH::look_for_lone_return(char c)
{
    if (c == '\n' && m_is_lone_return) {
        PLL_SOURCE_PLACE place;
        place.m_file = m_file_name;
        place.m_line = m_here.line();
        place.m_column = 1;
        place.m_length = 1;
        tell(m_observer, finding_at(PLL_FINDING::CARRIAGE_RETURN_LINE, place, "\r"));
    }
    m_is_lone_return = c == '\r' && m_here.column() == 1;
}

// A line that begins like a number was meant as a row; other texts are notes.
void PLL_TABLE_WATCH::look_at_note(char c)
{
    if (m_part == PART::NOTES) {
        m_column.pass(c, m_here);
        if (!m_column.has_ended()) {
            return;
        }
        end_file();
    }
    if (c == '\n' && m_part != PART::ALL_TOLD) {
        m_part = PART::NOTES;
        m_column.begin();
    }
}

void PLL_TABLE_WATCH::end_file()
{
    if (m_part != PART::NOTES) {
        return;
    }
    const bool is_row =
        m_column.length() > 0 && std::strchr(DIGITS_AND_SIGNS, *m_column.text()) != nullptr;
    m_part = is_row ? PART::ALL_TOLD : PART::REST_OF_NOTE;
    if (is_row) {
        tell(m_observer, finding_on(PLL_FINDING::ROWS_AFTER_EMPTY_LINE, m_column));
    }
}

PLL_SOURCE_PLACE PLL_TABLE_WATCH::shown(PLL_SOURCE_PLACE place) const
{
    place.m_is_outside = m_is_outside;
    place.m_column = m_is_outside ? 0 : place.m_column;
    place.m_length = m_is_outside ? 0 : place.m_length;
    return place;
}

PLL_READ_FINDING PLL_TABLE_WATCH::finding_at(PLL_FINDING finding, const PLL_SOURCE_PLACE& place,
                                             const char* word) const
{
    PLL_READ_FINDING event;
    event.m_finding = finding;
    event.m_place = shown(place);
    event.m_word = m_is_outside && word != m_file_name ? "" : word;
    event.m_family = m_family;
    event.m_type = m_type;
    return event;
}

PLL_READ_FINDING PLL_TABLE_WATCH::finding_on(PLL_FINDING finding,
                                             const PLL_PASSING_WORD& word) const
{
    return finding_at(finding, word.place_in(m_file_name, m_here), word.text());
}

// Where the reading broke off, the line is known.
void PLL_TABLE_WATCH::hear_of_table(const PLL_FAULT& fault)
{
    const bool has_line = fault.m_finding == PLL_FINDING::READ_FAILED ||
                          fault.m_finding == PLL_FINDING::TOO_MANY_BYTES;
    PLL_SOURCE_PLACE place;
    place.m_file = m_file_name;
    place.m_line = has_line ? m_here.line() : 0;
    PLL_READ_FINDING event = finding_at(fault.m_finding, place, has_line ? "" : m_file_name);
    event.m_value = fault.m_value;
    event.m_limit = fault.m_limit;
    event.m_system_error = fault.m_system_error;
    tell(m_observer, event);
    m_is_outside = m_is_outside || fault.m_finding == PLL_FINDING::FILE_OUTSIDE;
}

// The word that was meant ends at the first blank of any kind.
void PLL_TABLE_WATCH::hear_of_format(PLL_FINDING finding, const char* word)
{
    if (finding == PLL_FINDING::NONE) {
        return;
    }
    PLL_TEXT_PLACE place;
    m_column.begin();
    for (const char* c = word; *c != '\0' && !is_blank(*c); ++c) {
        m_column.pass(*c, place);
        place.pass(*c);
    }
    tell(m_observer,
         finding_at(finding, m_column.place_in(m_file_name, PLL_TEXT_PLACE()), m_column.text()));
}

void PLL_TABLE_WATCH::begin_row()
{
    m_part = PART::COLUMNS;
    m_first.begin();
    m_columns = 0;
    m_is_lone_return = false;
}

void PLL_TABLE_WATCH::begin_column()
{
    m_column.begin();
    m_first_length = m_first.length();
    ++m_columns;
}

void PLL_TABLE_WATCH::end_columns()
{
    m_part = PART::REST_OF_LINE;
    m_last_line = m_here.line();
}

// The column that failed is the one that was begun last.
void PLL_TABLE_WATCH::end_row(const PLL_TABLE_ROW& row, int largest_m)
{
    const bool is_read = !pll_is_read_error(row.m_reason);
    PLL_READ_STATEMENT event;
    event.m_kind = PLL_READ_KIND::TABLE_ROW;
    event.m_result = !is_read               ? PLL_READ_RESULT::FAILED
                     : row.m_row == nullptr ? PLL_READ_RESULT::SKIPPED
                                            : PLL_READ_RESULT::STORED;
    event.m_reason = row.m_reason;
    event.m_place = shown(place_of_row(is_read));
    event.m_family = m_family;
    event.m_type = m_type;
    event.m_row = row.m_row;
    if (is_read) {
        tell_of_stored_row(row, largest_m);
    } else {
        tell(m_observer, finding_on(row.m_reason, m_column));
    }
    tell(m_observer, event);
}

void PLL_TABLE_WATCH::tell_of_stored_row(const PLL_TABLE_ROW& row, int largest_m) const
{
    if (row.m_reason != PLL_FINDING::NONE) {
        PLL_READ_FINDING event = finding_on(row.m_reason, m_first);
        event.m_value = row.m_m;
        event.m_limit = largest_m;
        tell(m_observer, event);
    }
    if (m_last_line != place_of_row(true).m_line) {
        tell(m_observer, finding_on(PLL_FINDING::ROW_OVER_LINES, m_first));
    }
}

// Of a row that fails, the first word ends where the column that fails begins.
PLL_SOURCE_PLACE PLL_TABLE_WATCH::place_of_row(bool is_read) const
{
    if (!is_read && m_columns == 1) {
        return m_column.place_in(m_file_name, m_here);
    }
    PLL_SOURCE_PLACE place = m_first.place_in(m_file_name, m_here);
    place.m_length = is_read ? place.m_length : m_first_length;
    return place;
}

void PLL_TABLE_WATCH::end_table(PLL_FINDING finding)
{
    m_part = PART::NOTES;
    m_column.begin();
    if (finding != PLL_FINDING::NONE) {
        PLL_SOURCE_PLACE place;
        place.m_file = m_file_name;
        place.m_line = m_here.line();
        tell(m_observer, finding_at(finding, place, ""));
    }
}

}  // namespace pll_internal
