#include "app/output/characters.h"

namespace {

bool is_control(char c)
{
    constexpr char DELETE = 127;
    return static_cast<unsigned char>(c) < ' ' || c == DELETE;
}

bool is_continuation(char c)
{
    constexpr unsigned CONTINUATION_MASK = 0xC0;
    constexpr unsigned CONTINUATION = 0x80;
    return (static_cast<unsigned char>(c) & CONTINUATION_MASK) == CONTINUATION;
}

}  // namespace

std::string make_visible(const std::string& text)
{
    const char* const DIGITS = "0123456789abcdef";
    const int BITS_OF_DIGIT = 4;
    const unsigned LAST_DIGIT = 15;
    std::string visible;
    for (const char c : text) {
        if (is_control(c)) {
            const unsigned code = static_cast<unsigned char>(c);
            visible += "\\x";
            visible += DIGITS[code >> BITS_OF_DIGIT];
            visible += DIGITS[code & LAST_DIGIT];
        } else {
            visible += c;
        }
    }
    return visible;
}

std::size_t count_characters(const std::string& text, std::size_t end)
{
    std::size_t characters = 0;
    for (std::size_t i = 0; i < end; ++i) {
        const bool counts = i >= text.size() || !is_continuation(text[i]);
        characters += counts ? 1U : 0U;
    }
    return characters;
}
