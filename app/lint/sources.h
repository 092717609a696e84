// The files that messages are about, for showing their lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class LINT_SOURCES
{
public:
    // A line of a file, from 1; empty outside it. Lines are best asked for in their order: going
    // back reads the file anew.
    std::string_view line(const std::string& file, std::uint32_t line);

private:
    void open(const std::string& file);

    std::string m_file;
    std::string m_text;
    std::size_t m_at = 0;  // where m_line begins
    std::uint32_t m_line = 1;
};
