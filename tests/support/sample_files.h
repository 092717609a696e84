// A database whose files use all that their formats have, for tests that break them.
#pragma once

#include <ostream>
#include <string>
#include <vector>

struct SAMPLE_FILE
{
    std::string m_name;  // in the database's directory
    std::string m_text;
};

// What googletest shows of a file.
inline void PrintTo(const SAMPLE_FILE& file, std::ostream* stream)
{
    *stream << file.m_name;
}

// The path file; a family file with every keyword, which names the tables; a file that it includes;
// a table of each format. The family is "Fam", each of its four types has the part "P1".
std::vector<SAMPLE_FILE> sample_files();

// The family file alone.
std::string sample_family_text();
