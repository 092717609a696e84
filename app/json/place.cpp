#include "app/json/place.h"

#include "app/json/numbers.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <algorithm>

namespace {

using advice::RATIONAL;

std::string name_of_type(const JSON& value)
{
    constexpr std::size_t LONGEST = 40;
    if (value.is_object()) {
        return "an object";
    }
    if (value.is_array()) {
        return "a list";
    }
    const std::string text = value.dump(-1, ' ', true, JSON::error_handler_t::replace);
    return text.size() <= LONGEST ? text : text.substr(0, LONGEST) + "...";
}

std::string join(const std::vector<std::string_view>& names)
{
    std::string text;
    for (const std::string_view name : names) {
        text += (text.empty() ? "" : ", ") + std::string(name);
    }
    return text;
}

}  // namespace

void PLACE::refuse(const std::string& expected) const
{
    throw USAGE_ERROR(m_path, "expected " + expected + "; found " + name_of_type(*m_value));
}

PLACE PLACE::member(const std::string& key) const
{
    return {m_path.empty() ? key : m_path + "." + key, m_value->at(key)};
}

std::string PLACE::read_text() const
{
    if (!m_value->is_string()) {
        refuse("a string");
    }
    return m_value->get<std::string>();
}

bool PLACE::read_bool() const
{
    if (!m_value->is_boolean()) {
        refuse("true or false");
    }
    return m_value->get<bool>();
}

int PLACE::read_int(int least, int most) const
{
    const std::string expected =
        "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    const bool is_too_large = m_value->is_number_unsigned() &&
                              m_value->get<std::uint64_t>() > static_cast<std::uint64_t>(most);
    if (!m_value->is_number_integer() || is_too_large) {
        refuse(expected);
    }
    const auto value = m_value->get<std::int64_t>();
    if (value < least || value > most) {
        refuse(expected);
    }
    return static_cast<int>(value);
}

double PLACE::read_number() const
{
    if (!m_value->is_number()) {
        refuse("a number");
    }
    return m_value->get<double>();
}

RATIONAL PLACE::read_fraction() const
{
    const char* const expected = "a number or fraction in a string, such as \"148500000/1001\"";
    if (!m_value->is_string()) {
        refuse(expected);
    }
    const auto value = RATIONAL::parse(m_value->get_ref<const std::string&>());
    if (!value) {
        refuse(expected);
    }
    return *value;
}

RATIONAL PLACE::read_exact() const
{
    const char* const expected = "a number of at most 18 digits, or a fraction in a string";
    if (m_value->is_string()) {
        const auto value = RATIONAL::parse(m_value->get_ref<const std::string&>());
        if (!value) {
            refuse(expected);
        }
        return *value;
    }
    if (!m_value->is_number()) {
        refuse(expected);
    }
    const auto value = exact_decimal(m_value->get<double>());
    if (!value) {
        refuse(expected);
    }
    return *value;
}

int PLACE::read_feedback(int outputs) const
{
    if (m_value->is_string() && m_value->get_ref<const std::string&>() == "m") {
        return 0;
    }
    if (!m_value->is_number_integer()) {
        refuse("\"m\" or the number of an output");
    }
    return read_int(1, outputs);
}

void PLACE::read_list(const std::function<void(const PLACE&)>& read) const
{
    if (!m_value->is_array()) {
        refuse("a list");
    }
    for (std::size_t i = 0; i < m_value->size(); ++i) {
        read({m_path + "[" + std::to_string(i) + "]", m_value->at(i)});
    }
}

PLACE PLACE::require(const char* key) const
{
    if (!m_value->is_object()) {
        refuse("an object");
    }
    if (!m_value->contains(key)) {
        throw USAGE_ERROR(m_path, "needs the key '" + std::string(key) + "'");
    }
    return member(key);
}

void PLACE::expect_keys(const std::vector<std::string_view>& legal) const
{
    if (!m_value->is_object()) {
        refuse("an object");
    }
    for (const auto& item : m_value->items()) {
        if (std::find(legal.begin(), legal.end(), item.key()) == legal.end()) {
            throw USAGE_ERROR(m_path, "unknown key '" + item.key() + "'; legal are " + join(legal) +
                                          suggest(item.key(), legal));
        }
    }
}
