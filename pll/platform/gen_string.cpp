#include "gen_string.h"

#include <cstring>

namespace {

// Only A to Z, whatever the locale.
int to_lower_ascii(char c)
{
    const int code = static_cast<unsigned char>(c);
    return 'A' <= code && code <= 'Z' ? code - 'A' + 'a' : code;
}

}  // namespace

std::size_t gen_strlen(const char* text)
{
    return text == nullptr ? 0 : std::strlen(text);
}

char* gen_strcpy(char* destination, const char* source)
{
    if (destination == nullptr || source == nullptr) {
        return destination;
    }
    // The texts may overlap: hosts shorten a text in place.
    std::memmove(destination, source, std::strlen(source) + 1);
    return destination;
}

char* gen_strcat(char* destination, const char* source)
{
    if (destination != nullptr) {
        gen_strcpy(destination + std::strlen(destination), source);
    }
    return destination;
}

int gen_stricmp(const char* a, const char* b)
{
    const char* left = a == nullptr ? "" : a;
    const char* right = b == nullptr ? "" : b;
    while (*left != '\0' && to_lower_ascii(*left) == to_lower_ascii(*right)) {
        ++left;
        ++right;
    }
    return to_lower_ascii(*left) - to_lower_ascii(*right);
}
