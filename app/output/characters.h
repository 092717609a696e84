// The characters of texts that are not the program's own, such as names of a database.
#pragma once

#include <cstddef>
#include <string>

// Text with what would control a terminal made visible, such as "\x1b".
std::string make_visible(const std::string& text);

// Characters of an UTF-8 text, up to the byte at `end`; past the text, every byte counts as one.
std::size_t count_characters(const std::string& text, std::size_t end);
