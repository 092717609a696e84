#include "lint_sources.h"

#include "input_file.h"

#include <fstream>

namespace {

// None of what is no file: reading a pipe or a device need not end.
std::vector<std::string> read_lines(const std::string& file)
{
    std::vector<std::string> lines;
    if (why_unreadable(file)) {
        return lines;
    }
    std::ifstream stream(file, std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool is_control(char c)
{
    constexpr char DELETE = 127;
    return static_cast<unsigned char>(c) < ' ' || c == DELETE;
}

}  // namespace

const std::string& LINT_SOURCES::line(const std::string& file, int line)
{
    static const std::string NO_LINE;
    const auto known = m_lines.find(file);
    const std::vector<std::string>& lines =
        known != m_lines.end() ? known->second
                               : m_lines.emplace(file, read_lines(file)).first->second;
    const std::size_t index = static_cast<std::size_t>(line) - 1;
    return index < lines.size() ? lines[index] : NO_LINE;
}

std::string make_visible(const std::string& text)
{
    const char* const DIGITS = "0123456789abcdef";
    const int BITS_OF_DIGIT = 4;
    const unsigned LAST_DIGIT = 15;
    std::string visible;
    for (const char c : text) {
        if (is_control(c)) {
            const unsigned code = static_cast<unsigned char>(c);
            visible += "\\x";
            visible += DIGITS[code >> BITS_OF_DIGIT];
            visible += DIGITS[code & LAST_DIGIT];
        } else {
            visible += c;
        }
    }
    return visible;
}
