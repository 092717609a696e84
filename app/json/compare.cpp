#include "app/json/compare.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double SAME = 1e-12;  // part of the larger of two numbers

std::string write_short(const JSON& value)
{
    constexpr std::size_t LONGEST = 60;
    const std::string text = value.dump(-1, ' ', false, JSON::error_handler_t::replace);
    return text.size() <= LONGEST ? text : text.substr(0, LONGEST) + "...";
}

bool are_same_numbers(const JSON& said, const JSON& right)
{
    const double a = said.get<double>();
    const double b = right.get<double>();
    return std::fabs(a - b) <= SAME * std::max(std::fabs(a), std::fabs(b));
}

bool are_same(const JSON& said, const JSON& right)
{
    return said.is_number() && right.is_number() ? are_same_numbers(said, right) : said == right;
}

void compare_lists(const std::string& place, const JSON& said, const JSON& right,
                   std::vector<JSON_DIFFERENCE>* differences)
{
    if (said.size() != right.size()) {
        differences->push_back({place, "has " + std::to_string(said.size()) +
                                           " entries; there should be " +
                                           std::to_string(right.size())});
        return;
    }
    for (std::size_t i = 0; i < right.size(); ++i) {
        compare_documents(place + "[" + std::to_string(i) + "]", said[i], right[i], differences);
    }
}

}  // namespace

void compare_documents(const std::string& place, const JSON& said, const JSON& right,
                       std::vector<JSON_DIFFERENCE>* differences)
{
    if (said.is_array() && right.is_array()) {
        compare_lists(place, said, right, differences);
    } else if (said.is_object() && right.is_object()) {
        for (const auto& item : right.items()) {
            if (said.contains(item.key())) {
                compare_documents(place.empty() ? item.key() : place + "." + item.key(),
                                  said.at(item.key()), item.value(), differences);
            }
        }
    } else if (!are_same(said, right)) {
        differences->push_back(
            {place, "is " + write_short(said) + "; it should be " + write_short(right)});
    }
}
