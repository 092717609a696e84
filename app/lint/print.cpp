#include "app/lint/print.h"

#include "app/lint/sources.h"
#include "app/output/characters.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

typedef nlohmann::ordered_json JSON;

constexpr int INDENT = 2;
constexpr char INDENT_CHARACTER = ' ';

const char* severity_of(const LINT_RULE& rule)
{
    return rule.m_is_error ? "error" : "warning";
}

// ---- Text

// What of a long line is shown, and where.
struct EXCERPT
{
    std::string m_text;
    std::size_t m_start;  // in the line
};

EXCERPT cut_out(const std::string& line, std::size_t column)
{
    constexpr std::size_t WIDTH = 100;
    constexpr std::size_t BEFORE = 60;
    const std::size_t start = column > WIDTH ? column - BEFORE : 0;
    return {start < line.size() ? line.substr(start, WIDTH) : std::string(), start};
}

// The line, and a caret with tildes below the word; tabs stay tabs, so that it stands there.
std::string show_source(const LINT_PLACE& place, LINT_SOURCES* sources)
{
    const std::size_t column = static_cast<std::size_t>(place.m_column) - 1;
    const EXCERPT excerpt = cut_out(sources->line(place.m_file, place.m_line), column);
    std::string shown = "  ";
    std::string marks = "  ";
    for (std::size_t i = 0; i < excerpt.m_text.size(); ++i) {
        const std::string character = excerpt.m_text.substr(i, 1);
        const bool is_tab = character == "\t";
        const std::string visible = is_tab ? character : make_visible(character);
        const bool is_before = excerpt.m_start + i < column;
        shown += visible;
        if (is_before) {
            marks += is_tab ? visible : std::string(visible.size(), ' ');
        }
    }
    const std::size_t room = excerpt.m_start + excerpt.m_text.size();
    const std::size_t end =
        std::min(column + static_cast<std::size_t>(place.m_length), std::max(room, column + 1));
    return shown + "\n" + marks + "^" + std::string(end - column - 1, '~') + "\n";
}

// ---- JSON

// Bytes that are no UTF-8 become the replacement character.
std::string dump(const JSON& json)
{
    return json.dump(INDENT, INDENT_CHARACTER, false, JSON::error_handler_t::replace) + "\n";
}

// ---- SARIF

// A file name as a reference: relative ones stay relative.
std::string uri_of(const std::string& file)
{
    const std::string LEGAL = "-._~/";
    const char* const DIGITS = "0123456789ABCDEF";
    std::string uri = file.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : file) {
        const unsigned code = static_cast<unsigned char>(c);
        const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (is_letter || (c >= '0' && c <= '9') || LEGAL.find(c) != std::string::npos) {
            uri += c;
        } else {
            uri += '%';
            uri += DIGITS[code / 16];
            uri += DIGITS[code % 16];
        }
    }
    return uri;
}

JSON sarif_rule(const LINT_RULE& rule)
{
    JSON json;
    json["id"] = rule.m_name;
    json["shortDescription"]["text"] = rule.m_description;
    json["defaultConfiguration"]["level"] = severity_of(rule);
    return json;
}

JSON sarif_result(const LINT_MESSAGE& message, LINT_SOURCES* sources)
{
    const LINT_RULE& rule = lint_rules()[message.m_rule];
    const LINT_PLACE& place = message.m_place;
    const std::string& line = sources->line(place.m_file, place.m_line);
    const auto column = static_cast<std::size_t>(place.m_column);
    const auto length = static_cast<std::size_t>(place.m_length);
    JSON region;
    region["startLine"] = place.m_line;
    region["startColumn"] = count_characters(line, column - 1) + 1;
    region["endColumn"] = count_characters(line, column - 1 + length) + 1;
    JSON location;
    location["physicalLocation"]["artifactLocation"]["uri"] = uri_of(place.m_file);
    location["physicalLocation"]["region"] = region;
    JSON json;
    json["ruleId"] = rule.m_name;
    json["ruleIndex"] = message.m_rule;
    json["level"] = severity_of(rule);
    json["message"]["text"] = message.m_text;
    json["locations"] = JSON::array({location});
    return json;
}

}  // namespace

std::string print_as_text(const LINT_MESSAGES& messages, bool carets)
{
    LINT_SOURCES sources;
    std::string text;
    for (const LINT_MESSAGE& message : messages.get()) {
        const LINT_RULE& rule = lint_rules()[message.m_rule];
        const LINT_PLACE& place = message.m_place;
        text += make_visible(place.m_file) + ":" + std::to_string(place.m_line) + ":" +
                std::to_string(place.m_column) + ": " + severity_of(rule) + ": " +
                make_visible(message.m_text) + " [" + std::string(rule.m_name) + "]\n";
        if (carets) {
            text += show_source(place, &sources);
        }
    }
    return text;
}

std::string print_as_json(const LINT_MESSAGES& messages)
{
    JSON json;
    json["errors"] = messages.count_errors();
    json["warnings"] = messages.get().size() - messages.count_errors();
    json["messages"] = JSON::array();
    for (const LINT_MESSAGE& message : messages.get()) {
        const LINT_RULE& rule = lint_rules()[message.m_rule];
        JSON entry;
        entry["file"] = message.m_place.m_file;
        entry["line"] = message.m_place.m_line;
        entry["column"] = message.m_place.m_column;
        entry["length"] = message.m_place.m_length;
        entry["severity"] = severity_of(rule);
        entry["name"] = rule.m_name;
        entry["text"] = message.m_text;
        json["messages"].push_back(entry);
    }
    return dump(json);
}

std::string print_as_sarif(const LINT_MESSAGES& messages)
{
    LINT_SOURCES sources;
    JSON driver;
    driver["name"] = "pllcalc";
    driver["version"] = PLLCALC_VERSION;
    driver["rules"] = JSON::array();
    for (const LINT_RULE& rule : lint_rules()) {
        driver["rules"].push_back(sarif_rule(rule));
    }
    JSON run;
    run["tool"]["driver"] = driver;
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = JSON::array();
    for (const LINT_MESSAGE& message : messages.get()) {
        run["results"].push_back(sarif_result(message, &sources));
    }
    JSON json;
    json["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
    json["version"] = "2.1.0";
    json["runs"] = JSON::array({run});
    return dump(json);
}
