#include "advice/sheets/sheet_reader.h"

#include <charconv>
#include <limits>

namespace advice {

namespace {

constexpr int MAX_NUMBER_LENGTH = 64;

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

std::optional<RATIONAL> to_rational(const toml::node& node)
{
    if (const toml::value<std::int64_t>* whole = node.as_integer()) {
        return RATIONAL(whole->get());
    }
    if (const toml::value<double>* real = node.as_floating_point()) {
        return to_rational(real->get());
    }
    if (const toml::value<std::string>* text = node.as_string()) {
        return RATIONAL::parse(text->get());
    }
    return std::nullopt;
}

}  // namespace

std::string to_text(const SHEET_PROBLEM& problem)
{
    std::string text = problem.m_file;
    if (problem.m_line > 0) {
        text += ":" + std::to_string(problem.m_line);
    }
    if (problem.m_column > 0) {
        text += ":" + std::to_string(problem.m_column);
    }
    return text + ": " + problem.m_text;
}

void SHEET_READER::report(const toml::node& node, const std::string& text)
{
    const toml::source_position place = node.source().begin;
    m_problems->push_back(
        {m_file, static_cast<int>(place.line), static_cast<int>(place.column), text});
}

void SHEET_READER::read(const toml::node& node, std::string* value)
{
    if (const toml::value<std::string>* text = node.as_string()) {
        *value = text->get();
        return;
    }
    report(node, "a text in quotes is needed");
}

void SHEET_READER::read(const toml::node& node, int* value)
{
    const toml::value<std::int64_t>* whole = node.as_integer();
    if (whole != nullptr && whole->get() >= 0 && whole->get() <= std::numeric_limits<int>::max()) {
        *value = static_cast<int>(whole->get());
        return;
    }
    report(node, "a whole number from 0 to 2147483647 is needed");
}

void SHEET_READER::read(const toml::node& node, RATIONAL* value)
{
    if (const std::optional<RATIONAL> number = to_rational(node)) {
        *value = *number;
        return;
    }
    report(node, "a number is needed, such as 3.125 or \"1000/3\"");
}

void SHEET_READER::read(const toml::node& node, std::vector<std::string>* values)
{
    const toml::array* array = node.as_array();
    if (array == nullptr) {
        report(node, "a list of texts is needed");
        return;
    }
    for (const toml::node& entry : *array) {
        read(entry, &values->emplace_back());
    }
}

void SHEET_READER::read(const toml::node& node, std::vector<int>* values)
{
    const toml::array* array = node.as_array();
    if (array == nullptr) {
        report(node, "a list of whole numbers is needed");
        return;
    }
    for (const toml::node& entry : *array) {
        read(entry, &values->emplace_back());
    }
}

}  // namespace advice
