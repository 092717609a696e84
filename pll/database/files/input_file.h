// Input of the database's text files.
#pragma once

#include "pll_observer.h"

#include <cstddef>

namespace pll_internal {

class PLL_READ_BUDGET;

// In the place of an error number: the file is longer than the reading may take.
inline constexpr int PLL_OVER_BUDGET = -2;

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
    // PLL_NOT_A_REGULAR_FILE. What is read of it goes to the account of `budget`, which must
    // outlive the file.
    int open(const char* name, PLL_READ_BUDGET* budget);
    void close();

    // True for a file outside of the database's directory, as whoever opened it has found.
    bool is_outside() const { return m_is_outside; }
    void set_outside(bool is_outside) { m_is_outside = is_outside; }

    // True when nothing is left to read.
    bool is_at_end();

    // The error number of the system that ended the file early, or PLL_OVER_BUDGET; 0: none did.
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
    PLL_READ_BUDGET* m_budget;
    bool m_is_outside;
    std::size_t m_next;
    std::size_t m_end;
    int m_line_number;
    std::size_t m_line_length;
    char m_block[BLOCK_SIZE];
};

}  // namespace pll_internal
