// Finds keywords by their words, and says what their tables mean.
#pragma once

#include "app/source/keyword_table.h"

#include <optional>
#include <string_view>
#include <vector>

// The keyword that a word is, in any case.
std::optional<std::size_t> find_keyword(std::string_view word);

// The keyword that a misspelled word is probably meant for.
struct KEYWORD_GUESS
{
    std::optional<std::size_t> m_keyword;  // none: every one is too far away
    bool m_is_close = false;               // so that it can be taken for the word
};

KEYWORD_GUESS guess_keyword(std::string_view word);

std::vector<std::string_view> list_keywords();

// "in a PLL type", "number".
const char* name_of(KEYWORD_SCOPE scope);
const char* name_of(OPERAND operand);

// The keyword that selects what a scope needs: "part"; empty of ANYWHERE.
const char* selector_of(KEYWORD_SCOPE scope);

// A real number of the format at the front of a word: none when there is none.
std::optional<double> read_real(std::string_view word);
