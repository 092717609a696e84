// Texts that tests take apart and put together.
#pragma once

#include <string>
#include <vector>

std::vector<std::string> split(const std::string& text, char separator);

// The words of a line, without the blanks between them.
std::vector<std::string> words_of(const std::string& line);

// The text with every `from`, which is not empty, replaced by `to`.
std::string replace_all(std::string text, const std::string& from, const std::string& to);
