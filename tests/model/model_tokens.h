// Lines and words of the database's text files, as the model reads them.
#pragma once

#include <optional>
#include <string>
#include <vector>

// The lines of a text: up to 1023 characters of each, up to its first NUL.
std::vector<std::string> model_lines(const std::string& text);

// Takes words off the front of a line.
class MODEL_WORDS
{
public:
    explicit MODEL_WORDS(const std::string& line) : m_rest(line) {}

    std::optional<std::string> take_word();
    std::optional<std::string> take_name();  // a word that may stand in quotes
    std::optional<int> take_number();        // digits only; the word is gone in any case
    std::optional<double> take_real();       // never zero
    bool take_flag();

    // Numbers up to the first word that is none or is negative when cut to 32 bits.
    std::vector<int> take_numbers();

private:
    bool skip_to_word();
    std::string cut(const std::string& separators);

    std::string m_rest;
};
