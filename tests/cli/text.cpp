#include "text.h"

#include <sstream>

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

std::vector<std::string> words_of(const std::string& line)
{
    std::vector<std::string> words = split(line, ' ');
    std::erase(words, std::string());
    return words;
}

std::string replace_all(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}
