// The words of a line, cut one by one in place.
//
// A line is words between blanks, tabs, carriage returns and line feeds; a '#' where a word would
// start begins a comment. A word that may be quoted runs from its double quote to the next one.
#pragma once

#include "database/files/fault.h"

namespace pll_internal {

// Cut the next word at a cursor, which moves behind it; null, with the cursor in front of what is
// there instead, when the line has no further one. A name may be quoted, a word may not.
char* pll_cut_word(char** cursor);
char* pll_cut_name(char** cursor);

class PLL_WORDS
{
public:
    // `line` is written to. `listener` may be null: nobody listens.
    PLL_WORDS(char* line, PLL_LINE_LISTENER* listener) : m_cursor(line), m_listener(listener) {}

    char* next_word() { return pll_cut_word(&m_cursor); }
    char* next_name() { return pll_cut_name(&m_cursor); }

    // Leaves no word: what is there has been told of.
    void drop_rest();

    // Where the next word is looked for.
    char* cursor() const { return m_cursor; }

    bool is_heard() const { return m_listener != nullptr; }

    // Tell what is wrong with a word, null for one that is missing here. All give the finding back.
    PLL_FINDING tell(PLL_FINDING finding, const char* word) const
    {
        return m_listener == nullptr ? finding : tell_fault({finding, word});
    }
    PLL_FINDING tell_limit(PLL_FINDING finding, const char* word, long long value,
                           long long limit) const;
    PLL_FINDING tell_fault(PLL_FAULT fault) const;

private:
    char* m_cursor;
    PLL_LINE_LISTENER* m_listener;
};

}  // namespace pll_internal
