#include "advice/primitive/verilog_values.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace advice {

namespace {

constexpr int MAX_DEPTH = 200;
constexpr int MAX_EXPONENT = 1000;
constexpr int OCTAL = 8;
constexpr int DECIMAL = 10;
constexpr int HEXADECIMAL = 16;
constexpr int LETTER_A = 10;

struct OPERATOR
{
    const char* m_symbol;
    int m_binds;  // more binds tighter
};

constexpr OPERATOR OPERATORS[] = {
    {"||", 1},  {"&&", 2}, {"|", 3},  {"^", 4},  {"&", 5},  {"==", 6}, {"!=", 6},  {"===", 6},
    {"!==", 6}, {"<", 7},  {"<=", 7}, {">", 7},  {">=", 7}, {"<<", 8}, {">>", 8},  {"<<<", 8},
    {">>>", 8}, {"+", 9},  {"-", 9},  {"*", 10}, {"/", 10}, {"%", 10}, {"**", 11},
};

const OPERATOR* find_operator(const TOKEN& token)
{
    for (const OPERATOR& each : OPERATORS) {
        if (token.m_kind == TOKEN_KIND::SYMBOL && token.m_text == each.m_symbol) {
            return &each;
        }
    }
    return nullptr;
}

RATIONAL truncate(const RATIONAL& value)
{
    return value < RATIONAL(0) ? value.ceil() : value.floor();
}

VERILOG_VALUE from_bool(bool value)
{
    return VERILOG_VALUE::integer(RATIONAL(value ? 1 : 0));
}

// A result that does not fit is unknown.
VERILOG_VALUE make(bool is_real, const RATIONAL& value)
{
    if (!value.is_valid()) {
        return VERILOG_VALUE::unknown("a number that does not fit, or a division by zero");
    }
    return is_real ? VERILOG_VALUE::real(value) : VERILOG_VALUE::integer(value);
}

VERILOG_VALUE raise(bool is_real, const RATIONAL& base, const RATIONAL& exponent)
{
    if (!exponent.is_integer() || RATIONAL(MAX_EXPONENT) < exponent.magnitude()) {
        return VERILOG_VALUE::unknown("a power that cannot be computed exactly");
    }
    RATIONAL power(1);
    for (std::int64_t i = 0; i < exponent.magnitude().numerator() && power.is_valid(); ++i) {
        power = power * base;
    }
    if (exponent < RATIONAL(0)) {
        power = RATIONAL(1) / power;
        power = is_real ? power : truncate(power);
    }
    return make(is_real, power);
}

VERILOG_VALUE shift(const RATIONAL& value, const RATIONAL& by, bool to_left)
{
    const VERILOG_VALUE factor = raise(false, RATIONAL(2), by);
    if (!factor.is_known() || by < RATIONAL(0)) {
        return VERILOG_VALUE::unknown("a shift that does not fit");
    }
    return make(false, to_left ? value * factor.m_number : (value / factor.m_number).floor());
}

VERILOG_VALUE combine_bits(const std::string& symbol, const RATIONAL& a, const RATIONAL& b)
{
    if (!a.is_integer() || !b.is_integer()) {
        return VERILOG_VALUE::unknown("an operation on bits of a real number");
    }
    const std::int64_t left = a.numerator();
    const std::int64_t right = b.numerator();
    const std::int64_t bits = symbol == "|"   ? (left | right)
                              : symbol == "&" ? (left & right)
                                              : (left ^ right);
    return VERILOG_VALUE::integer(RATIONAL(bits));
}

VERILOG_VALUE compare_texts(const std::string& symbol, const VERILOG_VALUE& a,
                            const VERILOG_VALUE& b)
{
    if (symbol == "==" || symbol == "===") {
        return from_bool(a.m_text == b.m_text);
    }
    if (symbol == "!=" || symbol == "!==") {
        return from_bool(a.m_text != b.m_text);
    }
    return VERILOG_VALUE::unknown("'" + symbol + "' between strings");
}

std::optional<bool> compare(const std::string& symbol, const RATIONAL& a, const RATIONAL& b)
{
    if (symbol == "==" || symbol == "===") {
        return a == b;
    }
    if (symbol == "!=" || symbol == "!==") {
        return !(a == b);
    }
    if (symbol == "<") {
        return a < b;
    }
    if (symbol == "<=") {
        return a <= b;
    }
    if (symbol == ">") {
        return b < a;
    }
    if (symbol == ">=") {
        return b <= a;
    }
    return std::nullopt;
}

VERILOG_VALUE calculate(const std::string& symbol, bool is_real, const RATIONAL& a,
                        const RATIONAL& b)
{
    switch (symbol[0]) {
    case '+':
        return make(is_real, a + b);
    case '-':
        return make(is_real, a - b);
    case '/':
        return make(is_real, is_real ? a / b : truncate(a / b));
    case '%':
        return make(is_real, a - b * truncate(a / b));
    case '*':
        return symbol == "**" ? raise(is_real, a, b) : make(is_real, a * b);
    case '<':
    case '>':
        return shift(a, b, symbol[0] == '<');
    default:
        return combine_bits(symbol, a, b);
    }
}

VERILOG_VALUE apply(const std::string& symbol, const VERILOG_VALUE& a, const VERILOG_VALUE& b)
{
    if (!a.is_known() || !b.is_known()) {
        return a.is_known() ? b : a;
    }
    if (!a.is_number() || !b.is_number()) {
        return a.is_number() == b.is_number()
                   ? compare_texts(symbol, a, b)
                   : VERILOG_VALUE::unknown("'" + symbol + "' between a string and a number");
    }
    if (symbol == "&&") {
        return from_bool(!a.m_number.is_zero() && !b.m_number.is_zero());
    }
    if (symbol == "||") {
        return from_bool(!a.m_number.is_zero() || !b.m_number.is_zero());
    }
    if (const std::optional<bool> holds = compare(symbol, a.m_number, b.m_number)) {
        return from_bool(*holds);
    }
    const bool is_real =
        a.m_kind == VERILOG_VALUE::KIND::REAL || b.m_kind == VERILOG_VALUE::KIND::REAL;
    return calculate(symbol, is_real, a.m_number, b.m_number);
}

// How many bits the numbers below `value` need.
VERILOG_VALUE ceil_log2(const RATIONAL& value)
{
    int bits = 0;
    for (RATIONAL power(1); power < value && power.is_valid(); power = power * RATIONAL(2)) {
        ++bits;
    }
    return VERILOG_VALUE::integer(RATIONAL(bits));
}

VERILOG_VALUE call(const std::string& function, const VERILOG_VALUE& argument)
{
    if (!argument.is_known()) {
        return argument;
    }
    if (argument.is_number()) {
        if (function == "$clog2") {
            return ceil_log2(argument.m_number);
        }
        if (function == "$rtoi") {
            return make(false, truncate(argument.m_number));
        }
        if (function == "$itor") {
            return make(true, argument.m_number);
        }
        if (function == "$floor") {
            return make(true, argument.m_number.floor());
        }
        if (function == "$ceil") {
            return make(true, argument.m_number.ceil());
        }
    }
    return VERILOG_VALUE::unknown("the function " + function);
}

// Reads an expression by the binding of its operators.
class EXPRESSION
{
public:
    EXPRESSION(const std::vector<TOKEN>& tokens, std::size_t* at, const LOOK_UP& look_up)
        : m_tokens(tokens), m_at(at), m_look_up(look_up)
    {
    }

    VERILOG_VALUE read()
    {
        if (++m_depth > MAX_DEPTH) {
            return VERILOG_VALUE::unknown("an expression that is nested too deep");
        }
        VERILOG_VALUE value = read_binary(0);
        if (take("?")) {
            const VERILOG_VALUE first = read();
            if (!take(":")) {
                return VERILOG_VALUE::unknown("'?' without ':'");
            }
            const VERILOG_VALUE second = read();
            if (value.is_known()) {
                value = value.is_number() && !value.m_number.is_zero() ? first : second;
            }
        }
        --m_depth;
        return value;
    }

private:
    bool at_end() const { return *m_at >= m_tokens.size(); }

    bool take(const char* symbol)
    {
        if (at_end() || m_tokens[*m_at].m_kind != TOKEN_KIND::SYMBOL ||
            m_tokens[*m_at].m_text != symbol) {
            return false;
        }
        ++*m_at;
        return true;
    }

    VERILOG_VALUE read_binary(int least)
    {
        VERILOG_VALUE left = read_unary();
        while (!at_end()) {
            const OPERATOR* next = find_operator(m_tokens[*m_at]);
            if (next == nullptr || next->m_binds <= least) {
                break;
            }
            ++*m_at;
            left = apply(next->m_symbol, left, read_binary(next->m_binds));
        }
        return left;
    }

    VERILOG_VALUE read_unary()
    {
        if (++m_depth > MAX_DEPTH) {
            return VERILOG_VALUE::unknown("an expression that is nested too deep");
        }
        VERILOG_VALUE value;
        if (take("-")) {
            value = apply("-", VERILOG_VALUE::integer(RATIONAL(0)), read_unary());
        } else if (take("+")) {
            value = read_unary();
        } else if (take("!")) {
            value = apply("==", read_unary(), VERILOG_VALUE::integer(RATIONAL(0)));
        } else {
            value = read_primary();
        }
        --m_depth;
        return value;
    }

    VERILOG_VALUE read_primary()
    {
        if (take("(")) {
            VERILOG_VALUE value = read();
            return take(")") ? value : VERILOG_VALUE::unknown("a missing ')'");
        }
        if (at_end()) {
            return VERILOG_VALUE::unknown("a missing value");
        }
        const TOKEN& token = m_tokens[*m_at];
        switch (token.m_kind) {
        case TOKEN_KIND::NUMBER:
            ++*m_at;
            return value_of_number(token.m_text);
        case TOKEN_KIND::TEXT:
            ++*m_at;
            return VERILOG_VALUE::text(token.m_text);
        case TOKEN_KIND::WORD:
            ++*m_at;
            return read_word(token);
        case TOKEN_KIND::SYMBOL:
            break;
        }
        return VERILOG_VALUE::unknown("'" + token.m_text + "' where a value is needed");
    }

    VERILOG_VALUE read_word(const TOKEN& token)
    {
        if (token.m_text[0] != '$') {
            return m_look_up(token.m_text);
        }
        if (!take("(")) {
            return VERILOG_VALUE::unknown(token.m_text + " without an argument");
        }
        const VERILOG_VALUE argument = read();
        return take(")") ? call(token.m_text, argument)
                         : VERILOG_VALUE::unknown("a missing ')' behind " + token.m_text);
    }

    const std::vector<TOKEN>& m_tokens;
    std::size_t* m_at;
    const LOOK_UP& m_look_up;
    int m_depth = 0;
};

int base_of(char letter)
{
    switch (letter) {
    case 'b':
    case 'B':
        return 2;
    case 'o':
    case 'O':
        return OCTAL;
    case 'h':
    case 'H':
        return HEXADECIMAL;
    case 'd':
    case 'D':
        return DECIMAL;
    default:
        return 0;
    }
}

int digit_of(char letter)
{
    if (letter >= '0' && letter <= '9') {
        return letter - '0';
    }
    if (letter >= 'a' && letter <= 'f') {
        return letter - 'a' + LETTER_A;
    }
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + LETTER_A : -1;
}

VERILOG_VALUE value_of_sized(std::string_view text)
{
    std::size_t at = text.find('\'') + 1;
    if (at < text.size() && (text[at] == 's' || text[at] == 'S')) {
        ++at;
    }
    const int base = at < text.size() ? base_of(text[at]) : 0;
    RATIONAL value(0);
    for (const char letter : text.substr(std::min(at + 1, text.size()))) {
        const int digit = digit_of(letter);
        if (base == 0 || digit < 0 || digit >= base) {
            return VERILOG_VALUE::unknown("the number " + std::string(text));
        }
        value = value * RATIONAL(base) + RATIONAL(digit);
    }
    return at + 1 < text.size() ? make(false, value)
                                : VERILOG_VALUE::unknown("the number " + std::string(text));
}

}  // namespace

VERILOG_VALUE value_of_number(const std::string& text)
{
    std::string digits = text;
    digits.erase(std::remove(digits.begin(), digits.end(), '_'), digits.end());
    if (digits.find('\'') != std::string::npos) {
        return value_of_sized(digits);
    }
    const std::size_t exponent_at = digits.find('e');
    const std::optional<RATIONAL> mantissa = RATIONAL::parse(digits.substr(0, exponent_at));
    if (!mantissa) {
        return VERILOG_VALUE::unknown("the number " + text);
    }
    if (exponent_at == std::string::npos) {
        const bool is_real = digits.find('.') != std::string::npos;
        return make(is_real, *mantissa);
    }
    std::string exponent = digits.substr(exponent_at + 1);
    if (exponent[0] == '+') {
        exponent.erase(0, 1);
    }
    const std::optional<RATIONAL> power = RATIONAL::parse(exponent);
    if (!power) {
        return VERILOG_VALUE::unknown("the number " + text);
    }
    const VERILOG_VALUE factor = raise(true, RATIONAL(DECIMAL), *power);
    return factor.is_known() ? make(true, *mantissa * factor.m_number) : factor;
}

VERILOG_VALUE evaluate(const std::vector<TOKEN>& tokens, std::size_t* at, const LOOK_UP& look_up)
{
    return EXPRESSION(tokens, at, look_up).read();
}

}  // namespace advice
