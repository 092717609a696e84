#include "app/words/letter_case.h"

std::string lower_case(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

bool equal_but_for_case(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && lower_case(a) == lower_case(b);
}
