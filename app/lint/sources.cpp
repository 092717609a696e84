#include "app/lint/sources.h"

#include "app/output/input_file.h"

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
