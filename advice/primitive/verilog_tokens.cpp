#include "advice/primitive/verilog_tokens.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>

namespace advice {

namespace {

// A source that macros blow up further than this is no design.
constexpr std::size_t MAX_TOKENS = 2000000;
constexpr int MAX_MACRO_DEPTH = 32;

constexpr const char* LONG_SYMBOLS[] = {
    "===", "!==", "<<<", ">>>", "**", "<<", ">>", "<=", ">=", "==", "!=", "&&", "||", "*)", "->"};

bool is_digit(char letter)
{
    return letter >= '0' && letter <= '9';
}

bool starts_word(char letter)
{
    return std::isalpha(static_cast<unsigned char>(letter)) != 0 || letter == '_' || letter == '$';
}

bool continues_word(char letter)
{
    return starts_word(letter) || is_digit(letter);
}

// Cuts a text into tokens. Directives are left in it as words that begin with a backquote, since
// where a line ends matters to them only.
class LEXER
{
public:
    explicit LEXER(const std::string& text) : m_text(text) {}

    void run(std::vector<TOKEN>* tokens, std::vector<COMMENT>* comments)
    {
        while (m_at < m_text.size()) {
            if (!skip_blank() && !take_comment(comments)) {
                tokens->push_back(take_token());
            }
        }
    }

private:
    char peek(std::size_t ahead = 0) const
    {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0';
    }

    bool skip_blank()
    {
        const char letter = peek();
        if (letter == '\n') {
            ++m_line;
        }
        if (std::isspace(static_cast<unsigned char>(letter)) == 0 && letter != '\0') {
            return false;
        }
        ++m_at;
        return true;
    }

    bool take_comment(std::vector<COMMENT>* comments)
    {
        const bool is_line = peek() == '/' && peek(1) == '/';
        if (!is_line && !(peek() == '/' && peek(1) == '*')) {
            return false;
        }
        std::size_t end = m_text.find(is_line ? "\n" : "*/", m_at + 2);
        end = std::min(end, m_text.size());
        const std::string body = m_text.substr(m_at + 2, end - std::min(end, m_at + 2));
        m_line += static_cast<int>(std::count(body.begin(), body.end(), '\n'));
        comments->push_back({body, m_line});
        m_at = is_line ? end : std::min(end + 2, m_text.size());
        return true;
    }

    TOKEN take_token()
    {
        const char letter = peek();
        if (letter == '"') {
            return take_text();
        }
        if (is_digit(letter) ||
            (letter == '\'' && std::isalpha(static_cast<unsigned char>(peek(1))) != 0)) {
            return take_number();
        }
        if (letter == '\\') {
            return take_escaped_word();
        }
        if (starts_word(letter) || letter == '`') {
            const std::size_t begin = m_at++;
            while (continues_word(peek())) {
                ++m_at;
            }
            return {TOKEN_KIND::WORD, m_text.substr(begin, m_at - begin), m_line};
        }
        return take_symbol();
    }

    TOKEN take_text()
    {
        const int line = m_line;
        std::string text;
        for (++m_at; m_at < m_text.size() && peek() != '"' && peek() != '\n'; ++m_at) {
            if (peek() == '\\' && m_at + 1 < m_text.size()) {
                ++m_at;
            }
            text += peek();
        }
        if (peek() == '"') {
            ++m_at;
        }
        return {TOKEN_KIND::TEXT, text, line};
    }

    TOKEN take_escaped_word()
    {
        const std::size_t begin = ++m_at;
        while (m_at < m_text.size() && std::isspace(static_cast<unsigned char>(peek())) == 0) {
            ++m_at;
        }
        return {TOKEN_KIND::WORD, m_text.substr(begin, m_at - begin), m_line};
    }

    void take_digits(std::string* text)
    {
        while (is_digit(peek()) || peek() == '_') {
            *text += peek();
            ++m_at;
        }
    }

    // 12, 2.5e-3, 4'b0101, 8 'hFF
    TOKEN take_number()
    {
        std::string text;
        take_digits(&text);
        std::size_t blanks = 0;
        while (peek(blanks) == ' ') {
            ++blanks;
        }
        if (peek(blanks) == '\'') {
            m_at += blanks + 1;
            text += '\'';
            while (continues_word(peek()) || peek() == '?') {
                text += peek();
                ++m_at;
            }
            return {TOKEN_KIND::NUMBER, text, m_line};
        }
        if (peek() == '.' && is_digit(peek(1))) {
            text += '.';
            ++m_at;
            take_digits(&text);
        }
        take_exponent(&text);
        return {TOKEN_KIND::NUMBER, text, m_line};
    }

    void take_exponent(std::string* text)
    {
        const std::size_t sign = peek(1) == '-' || peek(1) == '+' ? 1 : 0;
        if ((peek() == 'e' || peek() == 'E') && is_digit(peek(1 + sign))) {
            *text += 'e';
            ++m_at;
            if (sign == 1) {
                *text += peek();
                ++m_at;
            }
            take_digits(text);
        }
    }

    TOKEN take_symbol()
    {
        // "(*)" is the list of all signals, not an attribute.
        if (peek() == '(' && peek(1) == '*' && peek(2) != ')') {
            m_at += 2;
            return {TOKEN_KIND::SYMBOL, "(*", m_line};
        }
        for (const char* symbol : LONG_SYMBOLS) {
            const std::size_t length = std::strlen(symbol);
            if (m_text.compare(m_at, length, symbol) == 0) {
                m_at += length;
                return {TOKEN_KIND::SYMBOL, symbol, m_line};
            }
        }
        return {TOKEN_KIND::SYMBOL, std::string(1, m_text[m_at++]), m_line};
    }

    const std::string& m_text;
    std::size_t m_at = 0;
    int m_line = 1;
};

// Carries out the directives of a list of tokens.
class PREPROCESSOR
{
public:
    PREPROCESSOR(const std::vector<TOKEN>& tokens, VERILOG_SOURCE* source)
        : m_tokens(tokens), m_source(source)
    {
    }

    void run()
    {
        while (m_at < m_tokens.size() && m_source->m_problem.empty()) {
            const TOKEN& token = m_tokens[m_at++];
            if (token.m_kind == TOKEN_KIND::WORD && token.m_text[0] == '`') {
                take_directive(token);
            } else if (is_taken()) {
                emit(token);
            }
        }
    }

private:
    bool is_taken() const
    {
        return std::all_of(m_branches.begin(), m_branches.end(),
                           [](const BRANCH& branch) { return branch.m_taken; });
    }

    // The tokens up to the end of the line of `token`.
    std::vector<TOKEN> take_line(const TOKEN& token)
    {
        std::vector<TOKEN> line;
        while (m_at < m_tokens.size() && m_tokens[m_at].m_line == token.m_line) {
            line.push_back(m_tokens[m_at++]);
        }
        return line;
    }

    // A name behind a directive; empty when there is none in its line.
    std::string take_name(const TOKEN& token)
    {
        if (m_at < m_tokens.size() && m_tokens[m_at].m_line == token.m_line) {
            return m_tokens[m_at++].m_text;
        }
        return "";
    }

    void take_directive(const TOKEN& token)
    {
        const std::string& name = token.m_text;
        if (name == "`ifdef" || name == "`ifndef") {
            const bool is_defined = m_macros.count(take_name(token)) > 0;
            const bool taken = is_defined == (name == "`ifdef");
            m_branches.push_back({taken, taken});
        } else if (name == "`elsif" || name == "`else") {
            const bool holds = name == "`else" || m_macros.count(take_name(token)) > 0;
            if (!m_branches.empty()) {
                BRANCH& branch = m_branches.back();
                branch.m_taken = holds && !branch.m_had_taken;
                branch.m_had_taken = branch.m_had_taken || branch.m_taken;
            }
        } else if (name == "`endif") {
            if (!m_branches.empty()) {
                m_branches.pop_back();
            }
        } else if (is_taken()) {
            take_plain_directive(token);
        }
    }

    void take_plain_directive(const TOKEN& token)
    {
        const std::string& name = token.m_text;
        if (name == "`define") {
            const std::string macro = take_name(token);
            m_macros[macro] = take_line(token);
        } else if (name == "`undef") {
            m_macros.erase(take_name(token));
        } else if (const auto macro = m_macros.find(name.substr(1)); macro != m_macros.end()) {
            expand(macro->second, token.m_line, 0);
        } else {
            take_line(token);
        }
    }

    void expand(const std::vector<TOKEN>& body, int line, int depth)
    {
        for (const TOKEN& token : body) {
            const auto macro = token.m_kind == TOKEN_KIND::WORD && token.m_text[0] == '`'
                                   ? m_macros.find(token.m_text.substr(1))
                                   : m_macros.end();
            if (macro == m_macros.end()) {
                TOKEN placed = token;
                placed.m_line = line;
                emit(placed);
            } else if (depth >= MAX_MACRO_DEPTH) {
                m_source->m_problem = "macros are nested too deep";
            } else {
                expand(macro->second, line, depth + 1);
            }
            if (!m_source->m_problem.empty()) {
                return;
            }
        }
    }

    void emit(const TOKEN& token)
    {
        if (m_source->m_tokens.size() >= MAX_TOKENS) {
            m_source->m_problem = "the source is too large";
            return;
        }
        m_source->m_tokens.push_back(token);
    }

    struct BRANCH
    {
        bool m_taken;
        bool m_had_taken;  // this branch of the condition or an earlier one
    };

    const std::vector<TOKEN>& m_tokens;
    VERILOG_SOURCE* m_source;
    std::size_t m_at = 0;
    std::map<std::string, std::vector<TOKEN>> m_macros;
    std::vector<BRANCH> m_branches;
};

}  // namespace

VERILOG_SOURCE read_verilog(const std::string& text)
{
    VERILOG_SOURCE source;
    std::vector<TOKEN> tokens;
    LEXER(text).run(&tokens, &source.m_comments);
    PREPROCESSOR(tokens, &source).run();
    return source;
}

}  // namespace advice
