// The rules of lint: for each finding what it means and how a message says it.
#include "app/lint/messages.h"

#include "app/output/input_file.h"
#include "app/words/suggestion.h"

#include "pll_manager.h"

#include <iterator>

namespace {

// In texts, {word}, {keyword} and so on stand for what the finding holds; {suggestion} is the
// nearest word of the right ones, {words} are all of them. The second text is for a missing word.
struct READER_RULE
{
    PLL_FINDING m_finding;
    const char* m_description;
    const char* m_text;
    const char* m_text_without_word;
};

// clang-format off
const READER_RULE READER_RULES[] = {
    {PLL_FINDING::PATH_FILE_NOT_OPENED, "The path file of the database cannot be opened.",
     "cannot open the path file '{word}'", nullptr},
    {PLL_FINDING::NO_FAMILY, "The path file names no family.",
     "the path file names no family; a line holds a family, its sub-directory and its file", nullptr},
    {PLL_FINDING::FAMILY_WITHOUT_FILE, "The path file gives a family no file.",
     "family '{word}' has no file; a line holds a family, its sub-directory and its file", nullptr},
    {PLL_FINDING::FAMILY_FILE_NOT_OPENED, "A family file cannot be opened.",
     "cannot open the family file '{word}'", nullptr},
    {PLL_FINDING::NO_STATEMENT, "A family file holds no statement.",
     "the file holds no statement; a family file begins with 'family NAME'", nullptr},
    {PLL_FINDING::UNKNOWN_KEYWORD, "A statement begins with a word that is no keyword.",
     "unknown keyword '{word}'{suggestion}", nullptr},
    {PLL_FINDING::UNKNOWN_PLL_TYPE, "A PLL type is unknown or missing.",
     "unknown PLL type '{word}'; legal are {words}{suggestion}",
     "'{keyword}' needs a PLL type; legal are {words}"},
    {PLL_FINDING::NAME_MISSING, "A keyword lacks its name.",
     "'{keyword}' needs a name", "'{keyword}' needs a name"},
    {PLL_FINDING::NUMBER_EXPECTED, "A whole number is missing or malformed.",
     "'{keyword}' takes a whole number of digits alone, not '{word}'",
     "'{keyword}' needs a whole number"},
    {PLL_FINDING::REAL_EXPECTED, "A real number is missing, malformed or zero.",
     "'{keyword}' takes a number other than zero, not '{word}'",
     "'{keyword}' needs a number other than zero"},
    {PLL_FINDING::LIST_EMPTY, "A list holds no value.",
     "'{keyword}' takes one value or more, and '{word}' is none",
     "'{keyword}' needs one value or more"},
    {PLL_FINDING::INCLUDE_TOO_DEEP, "Files include each other too deep.",
     "'{word}' cannot be included: eight files are open already, each including the next",
     "a file cannot be included: eight files are open already, each including the next"},
    {PLL_FINDING::TOO_MANY_FILES, "One reading opens too many files.",
     "'{word}' cannot be included: a thousand files were read already",
     "a file cannot be included: a thousand files were read already"},
    {PLL_FINDING::TABLE_NOT_OPENED, "A bandwidth table cannot be opened.",
     "cannot open the bandwidth table '{word}'; a PLL type without one says 'unused'", nullptr},
    {PLL_FINDING::TABLE_TOO_LARGE, "The counters ask for a bandwidth table that cannot be.",
     "vco_post_scale_counter_max x m_counter_max + 1 asks for a bandwidth table of {value} groups; "
     "0 to {limit} are possible", nullptr},
    {PLL_FINDING::TABLE_FORMAT_MISSING, "No blank ends the format word of a bandwidth table.",
     "no blank ends the format word '{word}'; line 1 begins with 'V2 ', 'SIMPLE_V1 ' or 'V1 '",
     "no format word; line 1 begins with 'V2 ', 'SIMPLE_V1 ' or 'V1 '"},
    {PLL_FINDING::TABLE_NUMBER_EXPECTED, "A column of a bandwidth table is missing or no number.",
     "'{word}' is no number that this column can hold",
     "a row lacks columns; an empty line would end the table, a line of blanks does not"},
    {PLL_FINDING::TABLE_LINE_UNFINISHED, "The last row of a bandwidth table lacks its line break.",
     "no line break follows the last row", nullptr},
    {PLL_FINDING::TABLE_WITHOUT_ROWS, "A bandwidth table stores no row.",
     "the table has no row; rows begin on line 3, and an empty line ends them",
     "the table has no row; rows begin on line 3, and an empty line ends them"},
    {PLL_FINDING::READ_FAILED, "The system cannot read on in a file.",
     "the system cannot read on from this line: {reason}",
     "the system cannot read on from this line: {reason}"},
    {PLL_FINDING::OUT_OF_MEMORY, "Memory is exhausted.", "out of memory", nullptr},

    {PLL_FINDING::OUT_OF_SCOPE, "A keyword stands before the one that gives it a place.",
     "'{word}' has no effect here: no '{needed}' before it", nullptr},
    {PLL_FINDING::INCLUDE_NOT_OPENED, "A file to include cannot be opened.",
     "cannot open '{word}'; nothing is included",
     "'{keyword}' needs a file; nothing is included"},
    {PLL_FINDING::UNKNOWN_RECONFIG_TYPE, "A reconfiguration type is unknown or missing.",
     "unknown reconfiguration type '{word}'; legal are {words}{suggestion}",
     "'{keyword}' needs a reconfiguration type; legal are {words}"},
    {PLL_FINDING::QUOTED_RECONFIG_TYPE, "A reconfiguration type stands in quotes.",
     "{word} is unknown because of its quotes; a reconfiguration type stands without", nullptr},
    {PLL_FINDING::UNKNOWN_COUNTER, "A scan chain names a counter that does not exist.",
     "unknown counter '{word}'; legal are {words}{suggestion}", nullptr},
    {PLL_FINDING::UNKNOWN_FLAG, "A flag has a value that counts as false.",
     "'{word}' counts as false; write one of {words}",
     "no value counts as false; write one of {words}"},
    {PLL_FINDING::EXTRA_WORDS, "A line goes on after its last operand.",
     "'{word}' has no effect: it stands after the last operand; '#' begins a comment", nullptr},
    {PLL_FINDING::LIST_CUT_SHORT, "A word that is no number ends a list.",
     "'{word}' ends the list: it and what follows are dropped", nullptr},
    {PLL_FINDING::NUMBER_CUT, "A number does not fit 32 bits.",
     "'{word}' becomes {value}: the largest number is {limit}", nullptr},
    {PLL_FINDING::POST_SCALE_TOO_LARGE, "There is no such VCO post-scale.",
     "there is no VCO post-scale {value}: the largest is {limit}", nullptr},
    {PLL_FINDING::LINE_CUT, "A line is too long.",
     "the line is cut here: it has {value} characters, of which {limit} are read",
     "the line is cut here: it has {value} characters, of which {limit} are read"},
    {PLL_FINDING::LINE_WITH_NUL, "A NUL character ends a line.",
     "a NUL character ends the line here", "a NUL character ends the line here"},
    {PLL_FINDING::PART_IN_OTHER_GRADE, "A part is met again in another speed grade.",
     "part '{word}' is known in speed grade '{grade}' and stays there; the limits that follow "
     "overwrite its first ones", nullptr},
    {PLL_FINDING::FOREIGN_FAMILY, "A family is loaded through the file of another one.",
     "part '{word}' makes family '{family}' count as loaded: its own file will not be read", nullptr},
    {PLL_FINDING::TABLE_FORMAT_UNENDED, "The format word of a bandwidth table runs on.",
     "'{word}' is not taken for the format word: that runs on to the next blank, in line 1", nullptr},
    {PLL_FINDING::ROW_OVER_LINES, "A row of a bandwidth table goes on in the next line.",
     "the row lacks columns and takes them from the lines below", nullptr},
    {PLL_FINDING::ROW_WITHOUT_GROUP, "A row of a bandwidth table has an M that cannot be.",
     "the row is dropped: M is {value}, and vco_post_scale_counter_max x m_counter_max is {limit}",
     nullptr},
    {PLL_FINDING::ROWS_AFTER_EMPTY_LINE, "Rows stand after the empty line that ends a table.",
     "this row is not read: an empty line above ends the table", nullptr},
    {PLL_FINDING::CARRIAGE_RETURN_LINE, "A line of a carriage return does not end a table.",
     "this line looks empty, but holds a carriage return and does not end the table",
     "this line looks empty, but holds a carriage return and does not end the table"},
};

struct DEVICE_RULE
{
    DEVICE_FINDING m_finding;
    const char* m_name;
    const char* m_description;
};

const DEVICE_RULE DEVICE_RULES[] = {
    {DEVICE_FINDING::NO_CHARGE_PUMP_CURRENT, "no-charge-pump-current",
     "A PLL type lists no charge-pump current."},
    {DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING, "loop-filter-value-missing",
     "A PLL type lacks a value of its loop filter."},
    {DEVICE_FINDING::LIMIT_UNSET, "limit-unset", "A limit that a synthesis needs is not given."},
    {DEVICE_FINDING::LIMITS_CROSSED, "limits-crossed", "A lower limit lies above the upper one."},
    {DEVICE_FINDING::NO_HIGH_LOW_MAX, "no-high-low-max",
     "The halves of the output counters have no limit."},
    {DEVICE_FINDING::TABLE_SIZE, "table-size",
     "A bandwidth table does not have the size that the counters ask for."},
    {DEVICE_FINDING::PRESET_OUTSIDE_TABLE, "preset-outside-table",
     "No row of the bandwidth table reaches a preset."},
    {DEVICE_FINDING::ROW_OUTSIDE_LISTS, "row-outside-lists",
     "A row of a bandwidth table has a component that the PLL type does not list."},
    {DEVICE_FINDING::INIT_FAILS, "init-fails", "A PLL cannot be initialised."},
    {DEVICE_FINDING::DEVICE_SHEET, "device-sheet", "A device sheet cannot be used."},
};
// clang-format on

constexpr std::size_t NUMBER_OF_READER_RULES = static_cast<std::size_t>(PLL_FINDING::NONE);
static_assert(std::size(READER_RULES) == NUMBER_OF_READER_RULES);

std::vector<std::string_view> words_of(PLL_VOCABULARY vocabulary)
{
    std::vector<std::string_view> words;
    for (int i = 0; pll_get_word(vocabulary, i) != nullptr; ++i) {
        words.emplace_back(pll_get_word(vocabulary, i));
    }
    return words;
}

std::string join(const std::vector<std::string_view>& words)
{
    std::string text;
    for (const std::string_view word : words) {
        text.append(text.empty() ? "" : ", ").append(word);
    }
    return text;
}

// What a word stands for in a text.
std::string value_of(std::string_view name, const PLL_READ_FINDING& finding)
{
    const std::vector<std::string_view> words = words_of(finding.m_vocabulary);
    const std::pair<std::string_view, std::string> VALUES[] = {
        {"word", finding.m_word},
        {"keyword", finding.m_keyword},
        {"needed", finding.m_needed},
        {"value", std::to_string(finding.m_value)},
        {"limit", std::to_string(finding.m_limit)},
        {"family", finding.m_family == nullptr ? "" : finding.m_family->m_name},
        {"grade", finding.m_part == nullptr ? "" : finding.m_part->m_speed_grade},
        {"words", join(words)},
        {"suggestion", suggest(finding.m_word, words)},
        {"reason", describe_system_error(finding.m_system_error)},
    };
    for (const auto& [value_name, value] : VALUES) {
        if (value_name == name) {
            return value;
        }
    }
    return std::string();
}

// An editor's mark at the start of a file is part of its first word.
bool has_byte_order_mark(std::string_view word)
{
    return word.substr(0, 3) == "\xEF\xBB\xBF";
}

}  // namespace

const std::vector<LINT_RULE>& lint_rules()
{
    static const std::vector<LINT_RULE> RULES = [] {
        std::vector<LINT_RULE> rules;
        for (const READER_RULE& rule : READER_RULES) {
            rules.push_back({pll_get_finding_name(rule.m_finding),
                             pll_is_read_error(rule.m_finding), rule.m_description});
        }
        for (const DEVICE_RULE& rule : DEVICE_RULES) {
            rules.push_back(
                {rule.m_name, rule.m_finding == DEVICE_FINDING::DEVICE_SHEET, rule.m_description});
        }
        return rules;
    }();
    return RULES;
}

std::size_t rule_of(PLL_FINDING finding)
{
    return static_cast<std::size_t>(finding);
}

std::size_t rule_of(DEVICE_FINDING finding)
{
    return NUMBER_OF_READER_RULES + static_cast<std::size_t>(finding);
}

std::string text_of(const PLL_READ_FINDING& finding)
{
    if (finding.m_finding == PLL_FINDING::UNKNOWN_KEYWORD && has_byte_order_mark(finding.m_word)) {
        return "the file begins with a byte-order mark, which makes its first keyword unknown";
    }
    const READER_RULE& rule = READER_RULES[rule_of(finding.m_finding)];
    const bool has_word = *finding.m_word != '\0' || rule.m_text_without_word == nullptr;
    const std::string_view pattern = has_word ? rule.m_text : rule.m_text_without_word;
    std::string text;
    std::size_t done = 0;
    for (std::size_t open = pattern.find('{'); open != std::string_view::npos;
         open = pattern.find('{', done)) {
        const std::size_t close = pattern.find('}', open);
        text += pattern.substr(done, open - done);
        text += value_of(pattern.substr(open + 1, close - open - 1), finding);
        done = close + 1;
    }
    return text.append(pattern.substr(done));
}
