// Verilog sources as words, as far as instances of primitives need: no elaboration, but macros and
// conditional compilation.
#pragma once

#include <string>
#include <vector>

namespace advice {

enum class TOKEN_KIND
{
    WORD,    // an identifier, a keyword, or a system function such as $clog2
    NUMBER,  // as written: "12", "2.5e3", "4'b0101"
    TEXT,    // a string without its quotes
    SYMBOL   // "(", "**", "(*" ...
};

struct TOKEN
{
    TOKEN_KIND m_kind = TOKEN_KIND::SYMBOL;
    std::string m_text;
    int m_line = 0;  // from 1

    bool is(const char* symbol_or_word) const
    {
        return m_kind != TOKEN_KIND::TEXT && m_text == symbol_or_word;
    }
};

struct COMMENT
{
    std::string m_text;
    int m_line = 0;  // of the last line that it stands in
};

struct VERILOG_SOURCE
{
    std::vector<TOKEN> m_tokens;  // macros replaced, the branches not taken left out
    std::vector<COMMENT> m_comments;
    std::string m_problem;  // why reading ended early, empty when it did not
};

// Reads a source. Whatever is no Verilog gives tokens too.
VERILOG_SOURCE read_verilog(const std::string& text);

}  // namespace advice
