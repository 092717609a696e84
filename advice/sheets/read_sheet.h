// Reads device sheets from their text form.
#pragma once

#include "advice/sheets/sheet.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace advice {

// What is wrong with a sheet and where.
struct SHEET_PROBLEM
{
    std::string m_file;
    int m_line = 0;    // from 1; 0: of the whole file
    int m_column = 0;  // from 1; 0: of the whole line
    std::string m_text;
};

// "FILE:LINE:COLUMN: text", without what is not known.
std::string to_text(const SHEET_PROBLEM& problem);

// A sheet that was read as far as it could be, and all that is wrong with it. A sheet with problems
// is no sheet to compute with.
struct SHEET_FILE
{
    SHEET m_sheet;
    std::vector<SHEET_PROBLEM> m_problems;
};

// Reads a sheet and the one that it includes. A file that cannot be opened is a problem.
SHEET_FILE read_sheet(const std::string& path);

// Likewise from a text; `path` names it in problems and is where includes are relative to.
SHEET_FILE parse_sheet(const std::string& text, const std::string& path);

}  // namespace advice
