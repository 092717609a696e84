// TOML as a tree of our own, so that no other file needs the library that reads it.

#include "advice/sheets/sheet_reader.h"

#include <toml++/toml.h>

#include <charconv>

namespace advice {

namespace {

constexpr int MAX_NUMBER_LENGTH = 400;

// A number as its file writes it: the shortest digits that read back as the same double.
std::optional<RATIONAL> to_rational(double value)
{
    char digits[MAX_NUMBER_LENGTH];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed);
    if (error != std::errc()) {
        return std::nullopt;
    }
    return RATIONAL::parse(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

SHEET_NODE to_node(const toml::node& from);

void take_number(const std::optional<RATIONAL>& number, SHEET_NODE* node)
{
    if (number) {
        node->m_kind = SHEET_NODE::KIND::NUMBER;
        node->m_number = *number;
    }
}

void take_value(const toml::node& from, SHEET_NODE* node)
{
    if (const toml::value<std::string>* text = from.as_string()) {
        node->m_kind = SHEET_NODE::KIND::TEXT;
        node->m_text = text->get();
    } else if (const toml::value<std::int64_t>* whole = from.as_integer()) {
        take_number(RATIONAL(whole->get()), node);
    } else if (const toml::value<double>* real = from.as_floating_point()) {
        take_number(to_rational(real->get()), node);
    } else if (const toml::value<bool>* truth = from.as_boolean()) {
        node->m_kind = SHEET_NODE::KIND::BOOLEAN;
        node->m_number = RATIONAL(truth->get() ? 1 : 0);
    }
}

SHEET_NODE to_node(const toml::node& from)
{
    SHEET_NODE node;
    node.m_line = static_cast<int>(from.source().begin.line);
    node.m_column = static_cast<int>(from.source().begin.column);
    if (const toml::table* table = from.as_table()) {
        node.m_kind = SHEET_NODE::KIND::TABLE;
        for (const auto& [key, value] : *table) {
            node.m_table[std::string(key.str())] = to_node(value);
        }
    } else if (const toml::array* array = from.as_array()) {
        node.m_kind = SHEET_NODE::KIND::LIST;
        for (const toml::node& value : *array) {
            node.m_list.push_back(to_node(value));
        }
    } else {
        take_value(from, &node);
    }
    return node;
}

}  // namespace

bool parse_toml(const std::string& text, const std::string& path, SHEET_NODE* table,
                std::vector<SHEET_PROBLEM>* problems)
{
    try {
        *table = to_node(toml::parse(text, path));
        return true;
    } catch (const toml::parse_error& error) {
        const toml::source_position place = error.source().begin;
        problems->push_back({path, static_cast<int>(place.line), static_cast<int>(place.column),
                             std::string(error.description())});
        return false;
    }
}

}  // namespace advice
