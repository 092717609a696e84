// The files of one family that are being read.
#pragma once

#include "database/files/input_file.h"

namespace pll_internal {

// A stack: an including file lies below the one that it includes.
class PLL_INCLUDE_STACK
{
public:
    PLL_INCLUDE_STACK();
    ~PLL_INCLUDE_STACK();
    PLL_INCLUDE_STACK(const PLL_INCLUDE_STACK&) = delete;
    PLL_INCLUDE_STACK& operator=(const PLL_INCLUDE_STACK&) = delete;

    // Why no further file may be opened, NONE when one may: INCLUDE_TOO_DEEP for files that include
    // each other, TOO_MANY_FILES when so many were read that they must.
    PLL_FINDING refuse_file() const;

    // Opens a file and reads on in it. Only legal while no file is refused. Takes the name over.
    // Returns 0, or why it cannot be opened, see PLL_INPUT_FILE::open.
    int open(char* name, PLL_READ_BUDGET* budget, bool is_outside);

    // Reads the next line, closing files that are at their end. False when all are, and when the
    // system cannot read on, which get_error() tells.
    bool read_line(char* line);
    int get_error() const { return m_depth == 0 ? 0 : current().get_error(); }

    // The file that the last line came from and its name, until a file is opened.
    const PLL_INPUT_FILE& current() const { return m_files[m_depth - 1]; }
    const char* current_name() const { return m_names[m_depth - 1]; }

private:
    static constexpr int MAX_DEPTH = 8;
    static constexpr int MAX_OPENED_FILES = 1000;

    int m_depth;
    int m_opened_files;
    PLL_INPUT_FILE m_files[MAX_DEPTH];
    char* m_names[MAX_DEPTH];  // owned
};

}  // namespace pll_internal
