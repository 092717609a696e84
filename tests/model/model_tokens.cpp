#include "model_tokens.h"

#include "model_database.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t LONGEST_LINE = 1023;
const std::string BLANKS = " \t\n\r";

}  // namespace

std::vector<std::string> model_lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        std::string line = text.substr(start, end - start);
        if (end != std::string::npos && !line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        line.resize(std::min(line.size(), LONGEST_LINE));
        lines.push_back(line.substr(0, line.find('\0')));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

bool MODEL_WORDS::skip_to_word()
{
    while (!m_rest.empty() && BLANKS.find(m_rest.front()) != std::string::npos) {
        m_rest.erase(0, 1);
    }
    return !m_rest.empty() && m_rest.front() != '#';
}

std::string MODEL_WORDS::cut(const std::string& separators)
{
    const std::size_t end = m_rest.find_first_of(separators);
    std::string word = m_rest.substr(0, end);
    m_rest = end == std::string::npos ? "" : m_rest.substr(end + 1);
    return word;
}

std::optional<std::string> MODEL_WORDS::take_word()
{
    if (!skip_to_word()) {
        return std::nullopt;
    }
    return cut(BLANKS);
}

std::optional<std::string> MODEL_WORDS::take_name()
{
    if (!skip_to_word()) {
        return std::nullopt;
    }
    if (m_rest.front() != '"') {
        return cut(BLANKS);
    }
    m_rest.erase(0, 1);
    return cut("\"");
}

std::optional<int> MODEL_WORDS::take_number()
{
    const std::optional<std::string> word = take_word();
    if (!word || word->find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char digit : *word) {
        const std::uint64_t added = static_cast<std::uint64_t>(digit - '0');
        const bool is_too_large = value > (INT64_MAX - added) / 10;
        value = is_too_large ? INT64_MAX : value * 10 + added;
        if (is_too_large) {
            break;
        }
    }
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

std::optional<double> MODEL_WORDS::take_real()
{
    const std::optional<std::string> word = take_word();
    const double value = word ? std::strtod(word->c_str(), nullptr) : 0.0;
    return value == 0.0 ? std::nullopt : std::optional<double>(value);
}

bool MODEL_WORDS::take_flag()
{
    const std::string word = take_word().value_or("");
    return model_same_name(word, "true") || model_same_name(word, "yes") ||
           model_same_name(word, "on");
}

std::vector<int> MODEL_WORDS::take_numbers()
{
    std::vector<int> numbers;
    for (std::optional<int> number = take_number(); number && *number >= 0;
         number = take_number()) {
        numbers.push_back(*number);
    }
    return numbers;
}
