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

// Lengths of a character by its first byte, in bytes; 0: no character begins with it.
std::size_t length_of_character(unsigned char first)
{
    constexpr unsigned char TWO_BYTES = 0xC2;
    constexpr unsigned char THREE_BYTES = 0xE0;
    constexpr unsigned char FOUR_BYTES = 0xF0;
    constexpr unsigned char TOO_LARGE = 0xF5;
    constexpr unsigned char FIRST_NO_ASCII = 0x80;
    if (first < FIRST_NO_ASCII) {
        return 1;
    }
    if (first < TWO_BYTES || first >= TOO_LARGE) {
        return 0;
    }
    const std::size_t more = first >= FOUR_BYTES ? 2 : first >= THREE_BYTES ? 1 : 0;
    return 2 + more;
}

// The code of the character that a text begins with.
char32_t code_of(std::string_view text)
{
    constexpr int BITS_OF_BYTE = 6;
    constexpr unsigned BITS = 0x3F;
    constexpr unsigned FIRST_BITS[] = {0x7F, 0x7F, 0x1F, 0x0F, 0x07};
    const std::size_t length = length_of_character(static_cast<unsigned char>(text[0]));
    char32_t code = static_cast<unsigned char>(text[0]) & FIRST_BITS[length];
    for (std::size_t i = 1; i < length && i < text.size(); ++i) {
        code = (code << BITS_OF_BYTE) | (static_cast<unsigned char>(text[i]) & BITS);
    }
    return code;
}

struct CODE_RANGE
{
    char32_t m_first;
    char32_t m_last;
    std::size_t m_width;
};

// Characters that do not take one column, as far as names and comments hold them.
const CODE_RANGE WIDTHS[] = {
    {0x0300, 0x036F, 0},   {0x1AB0, 0x1AFF, 0}, {0x20D0, 0x20FF, 0},   {0x200B, 0x200F, 0},
    {0xFE00, 0xFE0F, 0},   {0xFE20, 0xFE2F, 0}, {0x1100, 0x115F, 2},   {0x2E80, 0x303E, 2},
    {0x3041, 0xA4CF, 2},   {0xAC00, 0xD7A3, 2}, {0xF900, 0xFAFF, 2},   {0xFE30, 0xFE6F, 2},
    {0xFF00, 0xFF60, 2},   {0xFFE0, 0xFFE6, 2}, {0x1F300, 0x1F64F, 2}, {0x1F900, 0x1F9FF, 2},
    {0x20000, 0x3FFFD, 2},
};

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

std::size_t count_characters(std::string_view text, std::size_t end)
{
    std::size_t characters = 0;
    for (std::size_t i = 0; i < end; ++i) {
        const bool counts = i >= text.size() || !is_continuation(text[i]);
        characters += counts ? 1U : 0U;
    }
    return characters;
}

std::size_t byte_of_character(std::string_view text, std::size_t character)
{
    std::size_t at = 0;
    for (; at < text.size() && (character > 0 || is_continuation(text[at])); ++at) {
        character -= is_continuation(text[at]) ? 0U : 1U;
    }
    return at;
}

std::size_t width_of_text(std::string_view text)
{
    std::size_t width = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_continuation(text[i])) {
            continue;
        }
        const char32_t code = code_of(text.substr(i));
        std::size_t own_width = 1;
        for (const CODE_RANGE& range : WIDTHS) {
            own_width = code >= range.m_first && code <= range.m_last ? range.m_width : own_width;
        }
        width += own_width;
    }
    return width;
}

std::size_t find_no_utf_8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = length_of_character(static_cast<unsigned char>(text[at]));
        if (length == 0 || length > text.size() - at) {
            return at;
        }
        for (std::size_t i = 1; i < length; ++i) {
            if (!is_continuation(text[at + i])) {
                return at;
            }
        }
        at += length;
    }
    return std::string_view::npos;
}
