// The lines of a text and the words of a line, as the readers of the library take them.
#pragma once

#include "app/source/place.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// Characters of a line that the library reads.
inline constexpr std::size_t LINE_MAX_CHARACTERS = 1023;

struct TEXT_LINE
{
    std::string_view m_text;  // without its line end
    std::uint32_t m_number = 0;
    bool m_is_ended = false;    // by a line feed
    bool m_has_return = false;  // a carriage return before it
};

class TEXT_LINES
{
public:
    explicit TEXT_LINES(std::string_view text) : m_rest(text) {}

    // False behind the last line.
    bool next(TEXT_LINE* line);

private:
    std::string_view m_rest;
    std::uint32_t m_number = 0;
};

// What of a line the library reads: up to a NUL, and no more than it has room for.
std::string_view readable_part(std::string_view line);

struct TEXT_WORD
{
    std::string_view m_text;  // without quotes
    std::size_t m_start = 0;  // in the line, in bytes, quotes included
    std::size_t m_end = 0;
    bool m_is_quoted = false;
    bool m_is_closed = true;  // false: no quote follows the first
};

// Cuts words from the front of a line. A '#' where a word could begin ends the line.
class WORD_READER
{
public:
    explicit WORD_READER(std::string_view line) : m_line(line) {}

    // A word up to the next blank; quotes are letters like any other.
    bool next_word(TEXT_WORD* word);

    // A word that may stand in quotes.
    bool next_name(TEXT_WORD* word);

private:
    bool skip_blanks();

    std::string_view m_line;
    std::size_t m_at = 0;
};

// Where the comment of a line begins, its '#' included; the end of the line when it has none.
// Quotes are known only at the start of words.
std::string_view comment_of(std::string_view line);

// The place of the bytes from `start` to `end` of a line.
SOURCE_PLACE place_in_line(std::uint32_t reading, const TEXT_LINE& line, std::size_t start,
                           std::size_t end);
