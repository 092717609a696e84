// What the watches share: the telling, and the words of a line with their places.
#include "database/watch/line_watch.h"

#include <algorithm>
#include <cstring>

PLL_READ_OBSERVER::~PLL_READ_OBSERVER() = default;

void tell(PLL_READ_OBSERVER* observer, const PLL_READ_FINDING& finding) noexcept
{
    try {
        observer->on_finding(finding);
    } catch (...) {
        return;  // the reader goes on as if nobody had listened
    }
}

void tell(PLL_READ_OBSERVER* observer, const PLL_READ_STATEMENT& statement) noexcept
{
    try {
        observer->on_statement(statement);
    } catch (...) {
        return;
    }
}

void tell_of_file(PLL_READ_OBSERVER* observer, PLL_FINDING finding, const char* file,
                  const PLL_FAMILY_INFO* family) noexcept
{
    PLL_READ_FINDING event;
    event.m_finding = finding;
    event.m_place.m_file = file;
    event.m_word = file;
    event.m_family = family;
    tell(observer, event);
}

PLL_LINE_WATCH::PLL_LINE_WATCH(PLL_READ_OBSERVER* observer, const PLL_MANAGER& manager)
    : m_observer(observer),
      m_manager(manager),
      m_line(),
      m_cursor(m_line),
      m_kept_length(0),
      m_full_length(0)
{
}

void PLL_LINE_WATCH::copy(const char* line, const PLL_INPUT_FILE& file, const char* file_name)
{
    m_kept_length = std::strlen(line);
    std::memcpy(m_line, line, m_kept_length + 1);
    m_cursor = m_line;
    m_full_length = file.line_length();
    m_place.m_file = file_name;
    m_place.m_line = file.line_number();
}

void PLL_LINE_WATCH::drop_rest()
{
    m_cursor = m_line + m_kept_length;
}

PLL_SOURCE_PLACE PLL_LINE_WATCH::place_of(const char* word) const
{
    const char* const start = word == nullptr ? m_cursor : word;
    PLL_SOURCE_PLACE place = m_place;
    place.m_column = static_cast<int>(start - m_line) + 1;
    place.m_length = word == nullptr ? 0 : static_cast<int>(std::strlen(word));
    return place;
}

PLL_READ_FINDING PLL_LINE_WATCH::finding_on(PLL_FINDING finding, const char* word) const
{
    PLL_READ_FINDING event;
    event.m_finding = finding;
    event.m_place = place_of(word);
    event.m_word = word == nullptr ? "" : word;
    return event;
}

void PLL_LINE_WATCH::tell_of_rest(const char* keyword)
{
    const std::size_t ROOM = PLL_LINE_SIZE - 1;
    const char* const end = m_line + m_kept_length;
    if (const char* const word = next_word(); word != nullptr) {
        PLL_READ_FINDING event = finding_on(PLL_FINDING::EXTRA_WORDS, word);
        event.m_keyword = keyword;
        tell(m_observer, event);
    }
    if (m_kept_length < std::min(m_full_length, ROOM)) {
        tell(m_observer, finding_on(PLL_FINDING::LINE_WITH_NUL, end));
    } else if (m_full_length > ROOM) {
        PLL_READ_FINDING event = finding_on(PLL_FINDING::LINE_CUT, end);
        event.m_value = static_cast<long long>(m_full_length);
        event.m_limit = static_cast<long long>(ROOM);
        tell(m_observer, event);
    }
}
