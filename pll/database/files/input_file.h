// Input of the database's text files.
#pragma once

#include "pll_observer.h"

#include <cstddef>

namespace pll_internal {

inline constexpr int PLL_LINE_SIZE = 1024;  // characters of a line that are kept, with the NUL

// An open file, read through a buffer of its own. Only regular files can be opened, links followed:
// a database never waits for a pipe or a terminal. Where the system cannot read on, the file seems
// to end, and get_error() tells it from one that does.
class PLL_INPUT_FILE
{
public:
    PLL_INPUT_FILE();
    ~PLL_INPUT_FILE();
    PLL_INPUT_FILE(const PLL_INPUT_FILE&) = delete;
    PLL_INPUT_FILE& operator=(const PLL_INPUT_FILE&) = delete;

    // Returns 0, or why the file cannot be opened: an error number of the system, or
    // PLL_NOT_A_REGULAR_FILE.
    int open(const char* name);
    void close();

    // True when nothing is left to read.
    bool is_at_end();

    // The error number of the system that ended the file early; 0: none did.
    int get_error() const { return m_error; }

    // Reads the next line, without its line break and a carriage return right before that, into
    // `line`, which has PLL_LINE_SIZE characters. What a longer line has beyond them is dropped.
    // False when the system cannot read it to its end; `line` is of no use then.
    bool read_line(char* line);

    // Of the line read last: its number, from 1, and its characters, those that were dropped too.
    int line_number() const { return m_line_number; }
    std::size_t line_length() const { return m_line_length; }

    // Hands out what is buffered, reading on when that is nothing: `size` characters, valid until
    // the next call; 0 at the end.
    char* take_block(std::size_t* size);

private:
    static constexpr std::size_t BLOCK_SIZE = 4096;

    bool fill();

    int m_descriptor;  // -1: not open
    int m_error;
    std::size_t m_next;
    std::size_t m_end;
    int m_line_number;
    std::size_t m_line_length;
    char m_block[BLOCK_SIZE];
};

}  // namespace pll_internal
