// Places in the lines that a reader reads, for an observer.
#pragma once

#include "database/files/fault.h"

#include <cstddef>

namespace pll_internal {

// Adds to what is wrong with a line where that stands. The watches of readers of lines have one.
class PLL_LINE_WATCH
{
public:
    // The observer must outlive the watch.
    explicit PLL_LINE_WATCH(PLL_READ_OBSERVER* observer);

    // A line, whole, that `file` read last; it is looked at while its words are cut.
    void begin(const char* line, const PLL_INPUT_FILE& file, const char* file_name);

    // The place of a word of this line.
    PLL_SOURCE_PLACE place_of(const char* word) const;

    // A fault with its place, as far as the fault itself says.
    PLL_READ_FINDING finding_of(const PLL_FAULT& fault) const;

    // Tells of what the reader left: a word, on which `finding` has all but place and word, and
    // characters that it dropped.
    void tell_of_rest(PLL_WORDS* rest, PLL_READ_FINDING finding) const;

    // Tells what is wrong with a file, or from `line` of it on; 0: as a whole.
    void tell_of_file(const PLL_FAULT& fault, const char* file, int line) const;

    PLL_READ_OBSERVER* get_observer() const { return m_observer; }

private:
    PLL_READ_OBSERVER* m_observer;
    const char* m_line;         // while it is read
    std::size_t m_kept_length;  // of the line, up to its end or a NUL
    std::size_t m_full_length;  // in the file
    PLL_SOURCE_PLACE m_place;   // of the line
};

}  // namespace pll_internal
