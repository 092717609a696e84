#include "app/json/json.h"

#include "app/words/usage_error.h"

#include <algorithm>

namespace {

// nlohmann-json reads nested values with its own stack, but frees them by recursion.
constexpr int MAX_DEPTH = 64;

std::string line_of(const std::string& text, std::size_t byte)
{
    const std::size_t end = std::min(byte, text.size());
    const auto lines =
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    return std::to_string(lines + 1);
}

bool is_too_deep(const std::string& text)
{
    int depth = 0;
    bool is_quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (is_quoted) {
            i += c == '\\' ? 1 : 0;
            is_quoted = c != '"';
        } else if (c == '"') {
            is_quoted = true;
        } else if (c == '{' || c == '[') {
            if (++depth > MAX_DEPTH) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

}  // namespace

JSON read_document(const std::string& source, const std::string& text)
{
    if (is_too_deep(text)) {
        throw USAGE_ERROR(source, "expected JSON of at most " + std::to_string(MAX_DEPTH) +
                                      " nested values");
    }
    try {
        return JSON::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        throw USAGE_ERROR(source + ":" + line_of(text, error.byte == 0 ? 0 : error.byte - 1),
                          "expected JSON; found something else at byte " +
                              std::to_string(error.byte));
    } catch (const nlohmann::json::exception&) {
        throw USAGE_ERROR(source, "expected JSON; a number in it is too large");
    }
}

std::string write_document(const JSON& document, int indent)
{
    return document.dump(indent, ' ', false, JSON::error_handler_t::replace) + "\n";
}
