#include "app/output/record_list.h"

#include "app/output/characters.h"
#include "app/output/format.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace {

typedef nlohmann::json JSON;

// A string with its quotes; bytes that are no UTF-8 are replaced.
std::string json_string(const std::string& text)
{
    return JSON(text).dump(-1, ' ', false, JSON::error_handler_t::replace);
}

bool is_digit(char c)
{
    return '0' <= c && c <= '9';
}

// A sign, digits and at most one point.
bool is_plain_number(const std::string& text)
{
    const std::size_t sign = text[0] == '+' || text[0] == '-' ? 1 : 0;
    const auto digits = std::count_if(text.begin(), text.end(), is_digit);
    const auto points = std::count(text.begin(), text.end(), '.');
    return digits > 0 && points <= 1 &&
           text.size() == sign + static_cast<std::size_t>(digits + points);
}

// Whether a spreadsheet would compute a cell instead of showing it. It does so behind quotes too;
// an apostrophe in front keeps it from that. A speed grade such as -6 is a number to it.
bool looks_like_formula(const std::string& text)
{
    return text.find_first_of("=+-@") == 0 && !is_plain_number(text);
}

std::string quote(const std::string& text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

}  // namespace

RECORD_VALUE RECORD_VALUE::number(double value, int decimals)
{
    return std::isfinite(value) ? number(format_short(value, decimals)) : none();
}

std::string RECORD_VALUE::to_csv() const
{
    if (m_kind != KIND::TEXT) {
        return m_text;
    }
    const std::string visible = make_visible(m_text);
    if (looks_like_formula(visible)) {
        return quote("'" + visible);
    }
    // Some spreadsheets take a semicolon for the end of a cell.
    return visible.find_first_of(",;\"") == std::string::npos ? visible : quote(visible);
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
