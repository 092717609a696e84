#include "app/words/letter_case.h"

#include <algorithm>

namespace {

char lower_case(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string lower_case(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower) {
        c = lower_case(c);
    }
    return lower;
}

bool equal_but_for_case(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return lower_case(x) == lower_case(y);
           });
}
