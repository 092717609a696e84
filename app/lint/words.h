// Checks of files, lines and words that do not depend on what they mean.
#pragma once

#include "app/lint/messages.h"
#include "app/source/lines.h"

#include <string>
#include <string_view>

// "'Basil'"
std::string in_quotes(std::string_view text);

// Tells of an encoding that no reader takes. A byte-order mark is cut from the text; false when the
// rest cannot be read either.
bool check_encoding(std::uint32_t reading, std::string_view* text, LINT_MESSAGES* messages);

// Heeds the comment of a line of a path or family file, and tells of what of it is not read.
void check_line(std::uint32_t reading, const TEXT_LINE& line, LINT_MESSAGES* messages);

// Tells of words as they are written.
struct OPERAND_WATCH
{
    std::uint32_t m_reading;
    const TEXT_LINE& m_line;
    LINT_MESSAGES* m_messages;  // null: nobody is told

    SOURCE_PLACE place_of(const TEXT_WORD& word) const;
    SOURCE_PLACE place_behind(const TEXT_WORD& word) const;
    void tell(LINT_RULE rule, const TEXT_WORD& word, const std::string& text) const;

    // An open quote, or a comment that no blank sets apart; true when there is neither.
    bool check_name(const TEXT_WORD& word) const;

    // Words behind the last operand.
    void check_end(const TEXT_WORD& last, WORD_READER* words) const;
};
