// The word that was probably meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The word of `words` nearest to `word` in any case, the first of equals; empty when all are too
// far away.
std::string_view nearest_word(std::string_view word, const std::vector<std::string_view>& words);

// Likewise, but empty unless the word is so near that it can be taken for the other one.
std::string_view close_word(std::string_view word, const std::vector<std::string_view>& words);

// "; did you mean --out?" for the nearest word; empty when there is none.
std::string suggest(std::string_view word, const std::vector<std::string_view>& words);

// Whether a word differs from another by one letter more, less or replaced.
bool is_nearly(std::string_view word, std::string_view other);
