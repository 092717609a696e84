// The operands of statements: read as the library reads them, and told of where they cannot be
// meant.
#pragma once

#include "app/lint/words.h"
#include "app/source/keywords.h"
#include "app/source/model.h"

#include <optional>
#include <string_view>

// A statement behind its keyword.
struct STATEMENT
{
    std::size_t m_keyword;
    TEXT_WORD m_word;     // the keyword as it is written
    WORD_READER m_words;  // what follows it
    OPERAND_WATCH m_watch;

    const KEYWORD& get_keyword() const { return ::get_keyword(m_keyword); }
    SOURCE_PLACE place() const { return m_watch.place_of(m_word); }
};

// Reads the operands of a statement that gives a value. Lists and names go to the model.
SET_VALUE read_value(STATEMENT* statement, SOURCE_MODEL* model);

// The name behind a keyword; none when it is missing, which is told of.
std::optional<TEXT_WORD> read_name(STATEMENT* statement);

// The PLL type that a word names.
std::optional<PLL_TYPE_ENUM> find_pll_type(std::string_view word);

// The reconfiguration type behind "reconfig_type", from 1; 0 of an unknown one, which is told of.
int read_reconfig_type(STATEMENT* statement);

// The words of a vocabulary of the library.
std::vector<std::string_view> words_of(PLL_VOCABULARY vocabulary);
std::string list_words(PLL_VOCABULARY vocabulary);
