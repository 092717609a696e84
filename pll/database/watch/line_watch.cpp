#include "database/watch/line_watch.h"

#include "database/files/words.h"
#include "database/watch/tell.h"

#include <algorithm>
#include <cstring>

namespace pll_internal {

PLL_LINE_WATCH::PLL_LINE_WATCH(PLL_READ_OBSERVER* observer)
    : m_observer(observer), m_line(nullptr), m_kept_length(0), m_full_length(0)
{
}

void PLL_LINE_WATCH::begin(const char* line, const PLL_INPUT_FILE& file, const char* file_name)
{
    m_line = line;
    m_kept_length = std::strlen(line);
    m_full_length = file.line_length();
    m_place.m_file = file_name;
    m_place.m_line = file.line_number();
    m_place.m_is_outside = file.is_outside();
}

PLL_SOURCE_PLACE PLL_LINE_WATCH::place_of(const char* word) const
{
    PLL_SOURCE_PLACE place = m_place;
    if (place.m_is_outside) {
        return place;
    }
    place.m_column = static_cast<int>(word - m_line) + 1;
    place.m_length = static_cast<int>(std::strlen(word));
    return place;
}

PLL_READ_FINDING PLL_LINE_WATCH::finding_of(const PLL_FAULT& fault) const
{
    const bool is_missing = fault.m_word == nullptr;
    PLL_READ_FINDING event;
    event.m_finding = fault.m_finding;
    event.m_place = place_of(is_missing ? fault.m_at : fault.m_word);
    event.m_place.m_length = is_missing ? 0 : event.m_place.m_length;
    event.m_word = is_missing || m_place.m_is_outside ? "" : fault.m_word;
    event.m_needed = fault.m_needed;
    event.m_value = fault.m_value;
    event.m_limit = fault.m_limit;
    event.m_system_error = fault.m_system_error;
    return event;
}

// A NUL ends the line for the reader, which keeps what follows it all the same.
void PLL_LINE_WATCH::tell_of_rest(PLL_WORDS* rest, PLL_READ_FINDING finding) const
{
    const std::size_t ROOM = PLL_LINE_SIZE - 1;
    if (const char* const word = rest->next_word(); word != nullptr) {
        finding.m_finding = PLL_FINDING::EXTRA_WORDS;
        finding.m_place = place_of(word);
        finding.m_word = m_place.m_is_outside ? "" : word;
        tell(m_observer, finding);
    }
    PLL_FAULT fault;
    fault.m_at = m_line + m_kept_length;
    if (m_kept_length < std::min(m_full_length, ROOM)) {
        fault.m_finding = PLL_FINDING::LINE_WITH_NUL;
        tell(m_observer, finding_of(fault));
    } else if (m_full_length > ROOM) {
        fault.m_finding = PLL_FINDING::LINE_CUT;
        fault.m_value = static_cast<long long>(m_full_length);
        fault.m_limit = static_cast<long long>(ROOM);
        tell(m_observer, finding_of(fault));
    }
}

void PLL_LINE_WATCH::tell_of_file(const PLL_FAULT& fault, const char* file, int line) const
{
    PLL_READ_FINDING event;
    event.m_finding = fault.m_finding;
    event.m_place.m_file = file;
    event.m_place.m_line = line;
    event.m_word = line == 0 ? file : "";
    event.m_limit = fault.m_limit;
    event.m_system_error = fault.m_system_error;
    tell(m_observer, event);
}

}  // namespace pll_internal
