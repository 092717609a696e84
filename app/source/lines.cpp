#include "app/source/lines.h"

#include "app/output/characters.h"

#include <algorithm>
#include <cstring>

namespace {

bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
}

std::size_t find_blank(std::string_view line, std::size_t start)
{
    std::size_t end = start;
    while (end < line.size() && !is_blank(line[end])) {
        ++end;
    }
    return end;
}

std::uint32_t count(std::string_view text, std::size_t end)
{
    return static_cast<std::uint32_t>(count_characters(text, end));
}

}  // namespace

bool TEXT_LINES::next(TEXT_LINE* line)
{
    if (m_rest.empty()) {
        return false;
    }
    const std::size_t end = m_rest.find('\n');
    line->m_is_ended = end != std::string_view::npos;
    line->m_text = m_rest.substr(0, end);
    line->m_has_return = !line->m_text.empty() && line->m_text.back() == '\r';
    if (line->m_has_return && line->m_is_ended) {
        line->m_text.remove_suffix(1);
    }
    ++m_number;
    line->m_number = m_number;
    m_rest.remove_prefix(line->m_is_ended ? end + 1 : m_rest.size());
    return true;
}

std::string_view readable_part(std::string_view line)
{
    const std::string_view part = line.substr(0, LINE_MAX_CHARACTERS);
    return part.substr(0, part.find('\0'));
}

bool WORD_READER::skip_blanks()
{
    while (m_at < m_line.size() && is_blank(m_line[m_at])) {
        ++m_at;
    }
    return m_at < m_line.size() && m_line[m_at] != '#';
}

bool WORD_READER::next_word(TEXT_WORD* word)
{
    if (!skip_blanks()) {
        return false;
    }
    const std::size_t end = find_blank(m_line, m_at);
    *word = {m_line.substr(m_at, end - m_at), m_at, end, false, true};
    m_at = std::min(end + 1, m_line.size());
    return true;
}

bool WORD_READER::next_name(TEXT_WORD* word)
{
    if (!skip_blanks()) {
        return false;
    }
    if (m_line[m_at] != '"') {
        return next_word(word);
    }
    const std::size_t start = m_at + 1;
    const std::size_t close = m_line.find('"', start);
    const bool is_closed = close != std::string_view::npos;
    const std::size_t end = is_closed ? close : m_line.size();
    *word = {m_line.substr(start, end - start), m_at, is_closed ? end + 1 : end, true, is_closed};
    m_at = word->m_end;
    return true;
}

std::string_view comment_of(std::string_view line)
{
    if (line.find('#') == std::string_view::npos) {
        return line.substr(line.size());
    }
    WORD_READER words(line);
    std::size_t end = 0;
    for (TEXT_WORD word; words.next_name(&word);) {
        end = word.m_end;
    }
    while (end < line.size() && line[end] != '#') {
        ++end;
    }
    return line.substr(end);
}

SOURCE_PLACE place_in_line(std::uint32_t reading, const TEXT_LINE& line, std::size_t start,
                           std::size_t end)
{
    SOURCE_PLACE place;
    place.m_reading = reading;
    place.m_line = line.m_number;
    const bool is_plain = is_ascii(line.m_text.substr(0, end));
    const std::uint32_t before =
        is_plain ? static_cast<std::uint32_t>(start) : count(line.m_text, start);
    const std::uint32_t behind =
        is_plain ? static_cast<std::uint32_t>(end) : count(line.m_text, end);
    place.m_column = before + 1;
    place.m_length = std::max<std::uint32_t>(behind - before, 1);
    return place;
}
