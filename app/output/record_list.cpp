#include "app/output/record_list.h"

#include "app/output/format.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace {

typedef nlohmann::json JSON;

// A string with its quotes; bytes that are no UTF-8 are replaced.
std::string json_string(const std::string& text)
{
    return JSON(text).dump(-1, ' ', false, JSON::error_handler_t::replace);
}

}  // namespace

RECORD_VALUE RECORD_VALUE::number(double value, int decimals)
{
    return std::isfinite(value) ? number(format_short(value, decimals)) : none();
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
