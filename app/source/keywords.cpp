#include "app/source/keywords.h"

#include "app/words/letter_case.h"
#include "app/words/suggestion.h"

#include <cstdlib>
#include <string>
#include <unordered_map>

namespace {

// Longer words are misspelled keywords no more.
constexpr std::size_t LONGEST_GUESS = 60;

struct SCOPE_WORDS
{
    KEYWORD_SCOPE m_scope;
    const char* m_name;
    const char* m_selector;
};

const SCOPE_WORDS SCOPES[] = {
    {KEYWORD_SCOPE::ANYWHERE, "anywhere", ""},
    {KEYWORD_SCOPE::FAMILY, "in a family", "family"},
    {KEYWORD_SCOPE::GRADE, "in a family, a PLL type and a speed grade", "speed_grade"},
    {KEYWORD_SCOPE::TYPE, "in a PLL type", "pll"},
    {KEYWORD_SCOPE::RECONFIG, "in a reconfiguration type", "reconfig_type"},
    {KEYWORD_SCOPE::PART, "in a part", "part"},
};

struct OPERAND_WORDS
{
    OPERAND m_operand;
    const char* m_name;
};

const OPERAND_WORDS OPERANDS[] = {
    {OPERAND::NAME, "name"},
    {OPERAND::NUMBER, "number"},
    {OPERAND::REAL, "real"},
    {OPERAND::FLAG, "flag"},
    {OPERAND::LIST, "sorted list"},
    {OPERAND::BIT_LIST, "list"},
    {OPERAND::POST_SCALE_NUMBER, "post-scale number"},
    {OPERAND::WORD, "word"},
    {OPERAND::COUNTERS, "counters"},
};

// A hash of the letters in lower case; words of other lengths than keywords have need none.
struct WORD_HASH
{
    std::size_t operator()(std::string_view word) const
    {
        constexpr std::size_t FACTOR = 131;
        constexpr char TO_LOWER = 0x20;
        std::size_t hash = word.size();
        for (const char c : word) {
            hash = hash * FACTOR + static_cast<unsigned char>(c | TO_LOWER);
        }
        return hash;
    }
};

struct WORD_EQUAL
{
    bool operator()(std::string_view a, std::string_view b) const
    {
        return equal_but_for_case(a, b);
    }
};

typedef std::unordered_map<std::string_view, std::size_t, WORD_HASH, WORD_EQUAL> KEYWORD_MAP;

const KEYWORD_MAP& keyword_map()
{
    static const KEYWORD_MAP KEYWORDS = [] {
        KEYWORD_MAP map;
        for (std::size_t i = 0; i < NUMBER_OF_KEYWORDS; ++i) {
            map.emplace(get_keyword(i).m_name, i);
        }
        return map;
    }();
    return KEYWORDS;
}

}  // namespace

std::optional<std::size_t> find_keyword(std::string_view word)
{
    const KEYWORD_MAP& map = keyword_map();
    const auto found = map.find(word);
    return found == map.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

KEYWORD_GUESS guess_keyword(std::string_view word)
{
    if (word.size() > LONGEST_GUESS) {
        return {};
    }
    const std::string_view first = word.substr(0, word.find_first_of("=:#"));
    if (const std::optional<std::size_t> exact = find_keyword(first)) {
        return {exact, true};
    }
    const std::vector<std::string_view> keywords = list_keywords();
    const std::string_view nearest = nearest_word(word, keywords);
    if (nearest.empty()) {
        return {};
    }
    return {find_keyword(nearest), !close_word(word, keywords).empty()};
}

std::vector<std::string_view> list_keywords()
{
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < NUMBER_OF_KEYWORDS; ++i) {
        names.emplace_back(get_keyword(i).m_name);
    }
    return names;
}

const char* name_of(KEYWORD_SCOPE scope)
{
    return SCOPES[static_cast<std::size_t>(scope)].m_name;
}

const char* selector_of(KEYWORD_SCOPE scope)
{
    return SCOPES[static_cast<std::size_t>(scope)].m_selector;
}

const char* name_of(OPERAND operand)
{
    return OPERANDS[static_cast<std::size_t>(operand)].m_name;
}

std::optional<double> read_real(std::string_view word)
{
    const std::string text(word);
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    return end == text.c_str() ? std::nullopt : std::optional<double>(value);
}
