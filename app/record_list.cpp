#include "record_list.h"

#include <cstdio>

namespace {

constexpr unsigned char FIRST_PRINTABLE = 0x20;
constexpr unsigned char FIRST_BEYOND_ASCII = 0x80;

bool is_continuation(const std::string& text, std::size_t index)
{
    constexpr unsigned char MASK = 0xC0;
    return index < text.size() &&
           (static_cast<unsigned char>(text[index]) & MASK) == FIRST_BEYOND_ASCII;
}

// Bytes of the UTF-8 sequence at `index`; 0 when there is none. Overlong forms and surrogates,
// which readers refuse, are none.
std::size_t utf8_length(const std::string& text, std::size_t index)
{
    struct FORM
    {
        unsigned m_first;
        unsigned m_last;
        unsigned m_second_first;
        unsigned m_second_last;
        std::size_t m_length;
    };
    constexpr FORM FORMS[] = {
        {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
        {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
        {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
    };
    const unsigned first = static_cast<unsigned char>(text[index]);
    for (const FORM& form : FORMS) {
        if (first < form.m_first || first > form.m_last || index + 1 >= text.size()) {
            continue;
        }
        const unsigned second = static_cast<unsigned char>(text[index + 1]);
        bool is_whole = second >= form.m_second_first && second <= form.m_second_last;
        for (std::size_t i = 2; i < form.m_length; ++i) {
            is_whole = is_whole && is_continuation(text, index + i);
        }
        return is_whole ? form.m_length : 0;
    }
    return 0;
}

void append_escape(unsigned char c, std::string* json)
{
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
    *json += escape;
}

}  // namespace

std::string json_string(const std::string& text)
{
    std::string json = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += text[i];
        } else if (c >= FIRST_PRINTABLE && c < FIRST_BEYOND_ASCII) {
            json += text[i];
        } else if (const std::size_t length = utf8_length(text, i)) {
            json += text.substr(i, length);
            i += length - 1;
        } else {
            append_escape(c, &json);
        }
    }
    return json + "\"";
}

std::string RECORD_VALUE::to_csv() const
{
    if (m_kind != KIND::TEXT || m_text.find_first_of(",\"\r\n") == std::string::npos) {
        return m_text;
    }
    std::string quoted = "\"";
    for (const char c : m_text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

std::string RECORD_VALUE::to_json() const
{
    if (m_kind == KIND::NONE) {
        return "null";
    }
    return m_kind == KIND::TEXT ? json_string(m_text) : m_text;
}

std::string RECORD_LIST::write(LIST_FORM form) const
{
    return form == LIST_FORM::CSV ? to_csv() : to_json();
}

std::string RECORD_LIST::to_csv() const
{
    std::string text;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        text += (i == 0 ? "" : ",") + m_keys[i];
    }
    text += "\n";
    for (const std::vector<RECORD_VALUE>& values : m_records) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            text += (i == 0 ? "" : ",") + values[i].to_csv();
        }
        text += "\n";
    }
    return text;
}

std::string RECORD_LIST::to_json() const
{
    std::string text = "[";
    const char* separator = "\n";
    for (const std::vector<RECORD_VALUE>& values : m_records) {
        text += separator;
        text += "  {";
        for (std::size_t i = 0; i < values.size(); ++i) {
            text += (i == 0 ? "" : ", ") + json_string(m_keys[i]) + ": " + values[i].to_json();
        }
        text += "}";
        separator = ",\n";
    }
    return text + "\n]\n";
}
