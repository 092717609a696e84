// The files that messages are about, for showing their lines.
#pragma once

#include <map>
#include <string>
#include <vector>

class LINT_SOURCES
{
public:
    // A line of a file, from 1; empty outside it. The file is read once.
    const std::string& line(const std::string& file, int line);

private:
    std::map<std::string, std::vector<std::string>> m_lines;  // by file
};
