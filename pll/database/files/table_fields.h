// The fields of table files.
#pragma once

#include <cstddef>
#include <istream>

namespace pll_internal {

inline constexpr int PLL_FORMAT_WORD_SIZE = 1024;  // characters that are read, with the NUL

// Reads the format word into `word`, which has that many characters; gives its length, which counts
// NULs that are part of it. The stream is good afterwards when a blank ended the word.
std::size_t extract_format_word(std::istream& stream, char* word);

}  // namespace pll_internal
