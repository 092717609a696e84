// The characters of texts that are not the program's own, such as names of a database.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text with what would control a terminal made visible, such as "\x1b".
std::string make_visible(const std::string& text);

// Characters of an UTF-8 text, up to the byte at `end`; past the text, every byte counts as one.
std::size_t count_characters(std::string_view text, std::size_t end);

// The byte at which a character of an UTF-8 text begins, counted from 0; its size past the text.
std::size_t byte_of_character(std::string_view text, std::size_t character);

// The columns that an UTF-8 text takes on a terminal: East Asian characters take two, marks that
// are put onto the character before them none.
std::size_t width_of_text(std::string_view text);

// The first byte that is no UTF-8; npos when all of it is.
std::size_t find_no_utf_8(std::string_view text);
