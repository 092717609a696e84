#include "advice/primitive/comments.h"

#include <algorithm>
#include <cctype>

namespace advice {

namespace {

constexpr int KILO = 1000;
constexpr int MEGA = 1000000;
constexpr int MAX_DECIMALS = 6;

// A frequency as a comment names it.
struct CLAIM
{
    RATIONAL m_frequency;    // MHz
    RATIONAL m_uncertainty;  // half of its last digit
    std::string m_text;
};

struct UNIT
{
    const char* m_name;
    RATIONAL m_megahertz;
};

const UNIT UNITS[] = {{"mhz", RATIONAL(1)},
                      {"khz", RATIONAL(1, KILO)},
                      {"ghz", RATIONAL(KILO)},
                      {"hz", RATIONAL(1, MEGA)}};

bool is_digit(char letter)
{
    return letter >= '0' && letter <= '9';
}

std::string to_lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

// The unit that stands at a place of a text, as a word of its own; null for none.
const UNIT* unit_at(const std::string& text, std::size_t at)
{
    const std::string lower = to_lower(text.substr(at, 3));
    for (const UNIT& unit : UNITS) {
        const std::string name = unit.m_name;
        const std::size_t end = at + name.size();
        if (lower.compare(0, name.size(), name) == 0 &&
            (end >= text.size() || std::isalnum(static_cast<unsigned char>(text[end])) == 0)) {
            return &unit;
        }
    }
    return nullptr;
}

// The frequencies of a comment: a number and a unit.
std::vector<CLAIM> read_claims(const std::string& text)
{
    std::vector<CLAIM> claims;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool is_inside =
            at > 0 && (std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0 ||
                       text[at - 1] == '.' || text[at - 1] == '_');
        if (!is_digit(text[at]) || is_inside) {
            continue;
        }
        std::size_t end = at;
        while (end < text.size() &&
               (is_digit(text[end]) || text[end] == '.' ||
                (text[end] == '/' && end + 1 < text.size() && is_digit(text[end + 1])))) {
            ++end;
        }
        const std::string number = text.substr(at, end - at);
        std::size_t unit_begin = end;
        while (unit_begin < text.size() && text[unit_begin] == ' ') {
            ++unit_begin;
        }
        const UNIT* unit = unit_at(text, unit_begin);
        const std::optional<RATIONAL> value = RATIONAL::parse(number);
        if (unit != nullptr && value) {
            const std::size_t point = number.find('.');
            const bool is_fraction = number.find('/') != std::string::npos;
            const int decimals =
                is_fraction ? MAX_DECIMALS
                : point == std::string::npos
                    ? 0
                    : std::min(static_cast<int>(number.size() - point - 1), MAX_DECIMALS);
            claims.push_back(
                {*value * unit->m_megahertz,
                 RATIONAL(1, 2 * power_of_ten(decimals)) * unit->m_megahertz,
                 number + " " + text.substr(unit_begin, std::string(unit->m_name).size())});
        }
        at = end;
    }
    return claims;
}

bool agrees(const CLAIM& claim, const RATIONAL& frequency)
{
    return (claim.m_frequency - frequency).magnitude() <= claim.m_uncertainty;
}

bool contains(const std::vector<std::string>& words, const std::string& word)
{
    return !word.empty() && std::find(words.begin(), words.end(), word) != words.end();
}

// Whether a line is about an output: it names a parameter that begins with the output's name, or a
// port or net of the output.
bool is_about(const INSTANCE& instance, const SHEET& sheet, const PRIMITIVE_OUTPUT& output,
              const std::vector<std::string>& words)
{
    for (const PORT& port : sheet.m_ports) {
        const auto found = instance.m_ports.find(port.m_name);
        if (port.m_role == PORT_ROLE::OUTPUT && port.m_output == output.m_sheet_name &&
            found != instance.m_ports.end() &&
            (contains(words, port.m_name) || contains(words, found->second.m_text))) {
            return true;
        }
    }
    const std::string prefix = output.m_sheet_name + "_";
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
        return word.rfind(prefix, 0) == 0 && instance.m_parameters.count(word) > 0;
    });
}

bool is_of_the_instance(const CLAIM& claim, const PRIMITIVE_SETTING& setting)
{
    return agrees(claim, *setting.m_input) || agrees(claim, setting.m_vco) ||
           agrees(claim, setting.m_pfd) ||
           std::any_of(
               setting.m_outputs.begin(), setting.m_outputs.end(),
               [&](const PRIMITIVE_OUTPUT& output) { return agrees(claim, output.m_frequency); });
}

void compare_claim(const INSTANCE& instance, const SHEET& sheet, const BESIDE& comment,
                   const CLAIM& claim, PRIMITIVE_SETTING* setting)
{
    for (const PRIMITIVE_OUTPUT& output : setting->m_outputs) {
        if (is_about(instance, sheet, output, comment.m_words)) {
            if (!agrees(claim, output.m_frequency)) {
                setting->m_notes.push_back(
                    {comment.m_line, "the comment says " + claim.m_text + ", " + output.m_name +
                                         " is " + output.m_frequency.to_decimal(MAX_DECIMALS) +
                                         " MHz"});
            }
            return;
        }
    }
    if (!is_of_the_instance(claim, *setting)) {
        setting->m_notes.push_back({comment.m_line, "the comment says " + claim.m_text +
                                                        ", which is no clock of this PLL"});
    }
}

}  // namespace

void compare_comments(const INSTANCE& instance, const SHEET& sheet, PRIMITIVE_SETTING* setting)
{
    if (!setting->m_input || !setting->m_vco.is_valid()) {
        return;
    }
    for (const BESIDE& comment : instance.m_comments) {
        for (const CLAIM& claim : read_claims(comment.m_text)) {
            compare_claim(instance, sheet, comment, claim, setting);
        }
    }
}

}  // namespace advice
