#include "app/output/json_text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

// Most texts need no escapes at all.
bool is_plain(std::string_view text)
{
    constexpr char FIRST_PRINTED = ' ';
    constexpr char LAST_PRINTED = '~';
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= FIRST_PRINTED && c <= LAST_PRINTED && c != '"' && c != '\\';
    });
}

}  // namespace

std::string json_text(std::string_view text)
{
    typedef nlohmann::json JSON;
    if (is_plain(text)) {
        return std::string("\"").append(text).append("\"");
    }
    return JSON(std::string(text)).dump(-1, ' ', false, JSON::error_handler_t::replace);
}
