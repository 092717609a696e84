#include "database/files/words.h"

#include <cstring>

namespace pll_internal {

namespace {

const char WHITESPACES[] = " \t\n\r";
const char QUOTES[] = "\"";
const char COMMENT = '#';

// Moves to the next word; false when a comment or the end of the line comes first.
bool skip_to_word(char** cursor)
{
    *cursor += std::strspn(*cursor, WHITESPACES);
    return **cursor != '\0' && **cursor != COMMENT;
}

// Ends a word in the line itself, so that no word needs memory of its own.
char* cut(char** cursor, const char* separators)
{
    char* const word = *cursor;
    *cursor += std::strcspn(word, separators);
    if (**cursor != '\0') {
        **cursor = '\0';
        ++*cursor;
    }
    return word;
}

}  // namespace

char* pll_cut_word(char** cursor)
{
    return skip_to_word(cursor) ? cut(cursor, WHITESPACES) : nullptr;
}

char* pll_cut_name(char** cursor)
{
    if (!skip_to_word(cursor)) {
        return nullptr;
    }
    if (**cursor != *QUOTES) {
        return cut(cursor, WHITESPACES);
    }
    ++*cursor;
    return cut(cursor, QUOTES);
}

void PLL_WORDS::drop_rest()
{
    m_cursor += std::strlen(m_cursor);
}

PLL_FINDING PLL_WORDS::tell_limit(PLL_FINDING finding, const char* word, long long value,
                                  long long limit) const
{
    PLL_FAULT fault{finding, word};
    fault.m_value = value;
    fault.m_limit = limit;
    return tell_fault(fault);
}

PLL_FINDING PLL_WORDS::tell_fault(PLL_FAULT fault) const
{
    if (m_listener != nullptr) {
        fault.m_at = m_cursor;
        m_listener->hear(fault);
    }
    return fault.m_finding;
}

}  // namespace pll_internal
