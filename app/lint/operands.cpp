#include "app/lint/operands.h"

#include "app/lint/plausible.h"
#include "app/words/letter_case.h"
#include "app/words/suggestion.h"

#include "pll.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

constexpr double LARGEST_NUMBER = std::numeric_limits<int>::max();

bool is_digits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// The number of digits as the library cuts it to 32 bits.
int cut_number(std::string_view digits, bool* is_cut)
{
    const long long whole = std::strtoll(std::string(digits).c_str(), nullptr, 10);
    *is_cut = whole > static_cast<long long>(LARGEST_NUMBER);
    return static_cast<int>(static_cast<unsigned>(whole));
}

std::string keyword_of(const STATEMENT& statement)
{
    return in_quotes(statement.get_keyword().m_name);
}

void tell_of_missing(const STATEMENT& statement, LINT_RULE rule, const std::string& text)
{
    if (statement.m_watch.m_messages != nullptr) {
        statement.m_watch.m_messages->add(rule, statement.m_watch.place_behind(statement.m_word),
                                          text);
    }
}

void tell_of_cut(const STATEMENT& statement, const TEXT_WORD& word, int value)
{
    statement.m_watch.tell(LINT_RULE::NUMBER_CUT, word,
                           in_quotes(word.m_text) + " becomes " + std::to_string(value) +
                               ": the largest number is " +
                               std::to_string(std::numeric_limits<int>::max()));
}

// A counter that counts to nothing stands still.
bool is_needed_counter(std::size_t index)
{
    return index == keyword("m_counter_max") || index == keyword("m_counter_high_low_max") ||
           index == keyword("n_counter_max") || index == keyword("vco_post_scale_counter_max") ||
           index == keyword("output_counter_high_low_max") ||
           index == keyword("number_of_output_counters");
}

// Whether a value can be meant; if not, that is told of.
VALUE_STATE judge(const STATEMENT& statement, const TEXT_WORD& word, double value)
{
    const KEYWORD& keyword = statement.get_keyword();
    if (value == 0.0 && is_needed_counter(statement.m_keyword)) {
        statement.m_watch.tell(LINT_RULE::LIMIT_UNSET, word,
                               keyword_of(statement) + " of 0 leaves nothing legal");
        return VALUE_STATE::DOUBTFUL;
    }
    if (value < keyword.m_legal.m_min || value > keyword.m_legal.m_max || !std::isfinite(value)) {
        statement.m_watch.tell(LINT_RULE::VALUE_OUT_OF_RANGE, word,
                               in_quotes(word.m_text) + " is out of range: " +
                                   keyword_of(statement) + " is " + describe_range(keyword));
        return VALUE_STATE::DOUBTFUL;
    }
    if (value < keyword.m_plausible.m_min || value > keyword.m_plausible.m_max) {
        statement.m_watch.tell(LINT_RULE::UNIT_DOUBTFUL, word, doubt_unit(keyword, value));
        return VALUE_STATE::DOUBTFUL;
    }
    return VALUE_STATE::GIVEN;
}

// A number of digits; none when the word is another.
std::optional<int> read_digits(const STATEMENT& statement, const TEXT_WORD& word, bool* is_cut)
{
    if (!is_digits(word.m_text)) {
        const std::size_t comment = word.m_text.find('#');
        const bool is_stuck =
            comment != std::string_view::npos && is_digits(word.m_text.substr(0, comment));
        statement.m_watch.tell(
            LINT_RULE::NUMBER_EXPECTED, word,
            keyword_of(statement) + " takes a whole number of digits alone, not " +
                in_quotes(word.m_text) + (is_stuck ? "; a blank is missing before '#'" : ""));
        return std::nullopt;
    }
    const int value = cut_number(word.m_text, is_cut);
    if (*is_cut) {
        tell_of_cut(statement, word, value);
    }
    return value;
}

SET_VALUE read_number(STATEMENT* statement, TEXT_WORD* last)
{
    SET_VALUE result;
    result.m_state = VALUE_STATE::MALFORMED;
    if (!statement->m_words.next_word(last)) {
        tell_of_missing(*statement, LINT_RULE::NUMBER_EXPECTED,
                        keyword_of(*statement) + " needs a whole number");
        return result;
    }
    bool is_cut = false;
    const std::optional<int> number = read_digits(*statement, *last, &is_cut);
    if (!number) {
        return result;
    }
    result.m_value = *number;
    result.m_state = is_cut ? VALUE_STATE::DOUBTFUL : judge(*statement, *last, *number);
    return result;
}

// The VCO post-scale keeps a finding of its own, as the library reports it.
SET_VALUE read_post_scale_max(STATEMENT* statement, TEXT_WORD* last)
{
    WORD_READER ahead = statement->m_words;
    TEXT_WORD word;
    bool is_cut = false;
    const bool is_number = ahead.next_word(&word) && is_digits(word.m_text);
    if (is_number && cut_number(word.m_text, &is_cut) > PLL_VCO_POST_SCALE_MAX && !is_cut) {
        statement->m_words = ahead;
        *last = word;
        statement->m_watch.tell(LINT_RULE::POST_SCALE_TOO_LARGE, word,
                                "there is no VCO post-scale " + std::string(word.m_text) +
                                    ": the largest is " + std::to_string(PLL_VCO_POST_SCALE_MAX));
        SET_VALUE result;
        result.m_state = VALUE_STATE::DOUBTFUL;
        result.m_value = cut_number(word.m_text, &is_cut);
        return result;
    }
    return read_number(statement, last);
}

// What follows the number in the word of a real number.
void check_tail(const STATEMENT& statement, const TEXT_WORD& word)
{
    const std::string text(word.m_text);
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    const std::string tail = end;
    if (!tail.empty()) {
        const char* const unit = statement.get_keyword().m_unit;
        statement.m_watch.tell(LINT_RULE::EXTRA_WORDS, word,
                               in_quotes(tail) + " behind the number is ignored" +
                                   (*unit == '\0' ? "" : std::string("; the unit is ") + unit) +
                                   (tail[0] == ',' ? "; decimals stand behind a point" : ""));
    }
}

SET_VALUE read_real_number(STATEMENT* statement, TEXT_WORD* last)
{
    SET_VALUE result;
    result.m_state = VALUE_STATE::MALFORMED;
    if (!statement->m_words.next_word(last)) {
        tell_of_missing(*statement, LINT_RULE::REAL_EXPECTED,
                        keyword_of(*statement) + " needs a number other than zero");
        return result;
    }
    const std::optional<double> number = read_real(last->m_text);
    if (!number || *number == 0.0) {
        statement->m_watch.tell(LINT_RULE::REAL_EXPECTED, *last,
                                keyword_of(*statement) + " takes a number other than zero, not " +
                                    in_quotes(last->m_text));
        return result;
    }
    result.m_value = *number;
    result.m_state = judge(*statement, *last, *number);
    if (result.m_state == VALUE_STATE::GIVEN) {
        check_tail(*statement, *last);
    }
    return result;
}

bool is_true(std::string_view word)
{
    return equal_but_for_case(word, "true") || equal_but_for_case(word, "yes") ||
           equal_but_for_case(word, "on");
}

SET_VALUE read_flag(STATEMENT* statement, TEXT_WORD* last)
{
    SET_VALUE result;
    if (!statement->m_words.next_word(last)) {
        tell_of_missing(*statement, LINT_RULE::UNKNOWN_FLAG,
                        "no value counts as false; write one of " +
                            list_words(PLL_VOCABULARY::FLAGS));
        return result;
    }
    for (const std::string_view word : words_of(PLL_VOCABULARY::FLAGS)) {
        if (equal_but_for_case(word, last->m_text)) {
            result.m_value = is_true(word) ? 1.0 : 0.0;
            return result;
        }
    }
    if (statement->m_watch.check_name(*last)) {
        statement->m_watch.tell(LINT_RULE::UNKNOWN_FLAG, *last,
                                in_quotes(last->m_text) + " counts as false; write one of " +
                                    list_words(PLL_VOCABULARY::FLAGS));
    }
    return result;
}

SET_VALUE read_list(STATEMENT* statement, SOURCE_MODEL* model, TEXT_WORD* last)
{
    SET_VALUE result;
    TEXT_WORD word;
    while (statement->m_words.next_word(&word)) {
        bool is_cut = false;
        if (!is_digits(word.m_text)) {
            const bool is_first = result.m_count == 0;
            statement->m_watch.tell(
                is_first ? LINT_RULE::LIST_EMPTY : LINT_RULE::LIST_CUT_SHORT, word,
                is_first
                    ? keyword_of(*statement) + " takes one value or more, and " +
                          in_quotes(word.m_text) + " is none"
                    : in_quotes(word.m_text) + " ends the list: it and what follows are dropped");
            result.m_state = is_first ? VALUE_STATE::MALFORMED : VALUE_STATE::DOUBTFUL;
            statement->m_words = WORD_READER("");
            return result;
        }
        const int number = cut_number(word.m_text, &is_cut);
        if (is_cut) {
            tell_of_cut(*statement, word, number);
            result.m_state = VALUE_STATE::DOUBTFUL;
        } else if (result.m_state == VALUE_STATE::GIVEN) {
            result.m_state = judge(*statement, word, number);
        }
        const std::uint32_t at = model->add_number(number);
        result.m_first = result.m_count == 0 ? at : result.m_first;
        ++result.m_count;
        *last = word;
    }
    if (result.m_count == 0) {
        tell_of_missing(*statement, LINT_RULE::LIST_EMPTY,
                        keyword_of(*statement) + " needs one value or more");
        result.m_state = VALUE_STATE::MALFORMED;
    }
    return result;
}

SET_VALUE read_counters(STATEMENT* statement, TEXT_WORD* last)
{
    SET_VALUE result;
    const std::vector<std::string_view> counters = words_of(PLL_VOCABULARY::COUNTERS);
    TEXT_WORD word;
    while (statement->m_words.next_name(&word)) {
        *last = word;
        if (equal_but_for_case(word.m_text, "end")) {
            break;
        }
        bool is_counter = false;
        for (const std::string_view counter : counters) {
            is_counter = is_counter || equal_but_for_case(counter, word.m_text);
        }
        if (!is_counter && statement->m_watch.check_name(word)) {
            statement->m_watch.tell(LINT_RULE::UNKNOWN_COUNTER, word,
                                    "unknown counter " + in_quotes(word.m_text) + "; legal are " +
                                        list_words(PLL_VOCABULARY::COUNTERS) +
                                        suggest(word.m_text, counters));
        }
        ++result.m_count;
    }
    if (result.m_count == 0) {
        tell_of_missing(*statement, LINT_RULE::LIST_EMPTY,
                        keyword_of(*statement) + " needs one value or more");
        result.m_state = VALUE_STATE::MALFORMED;
    }
    return result;
}

// A post-scale and the number for it.
SET_VALUE read_scaled(STATEMENT* statement, TEXT_WORD* last)
{
    SET_VALUE result;
    result.m_state = VALUE_STATE::MALFORMED;
    if (!statement->m_words.next_word(last)) {
        tell_of_missing(*statement, LINT_RULE::NUMBER_EXPECTED,
                        keyword_of(*statement) + " needs a whole number");
        return result;
    }
    bool is_cut = false;
    const std::optional<int> post_scale = read_digits(*statement, *last, &is_cut);
    if (!post_scale || is_cut) {
        return result;
    }
    if (*post_scale < 1 || *post_scale > PLL_VCO_POST_SCALE_MAX) {
        const bool is_large = *post_scale > PLL_VCO_POST_SCALE_MAX;
        statement->m_watch.tell(
            is_large ? LINT_RULE::POST_SCALE_TOO_LARGE : LINT_RULE::VALUE_OUT_OF_RANGE, *last,
            "there is no VCO post-scale " + std::to_string(*post_scale) +
                (is_large ? ": the largest is " + std::to_string(PLL_VCO_POST_SCALE_MAX)
                          : ": the smallest is 1"));
        statement->m_words = WORD_READER("");
        return result;
    }
    const TEXT_WORD post_scale_word = *last;
    result = read_number(statement, last);
    if (last->m_start == post_scale_word.m_start) {
        result.m_state = VALUE_STATE::MALFORMED;
    }
    result.m_post_scale = static_cast<std::uint8_t>(*post_scale);
    return result;
}

SET_VALUE read_text_value(STATEMENT* statement, SOURCE_MODEL* model, TEXT_WORD* last)
{
    SET_VALUE result;
    const std::optional<TEXT_WORD> name = read_name(statement);
    result.m_state = name ? VALUE_STATE::GIVEN : VALUE_STATE::MALFORMED;
    if (name) {
        *last = *name;
        result.m_first = model->add_text(name->m_text);
        result.m_count = 1;
    }
    return result;
}

SET_VALUE read_operands(STATEMENT* statement, SOURCE_MODEL* model, TEXT_WORD* last)
{
    switch (statement->get_keyword().m_operand) {
    case OPERAND::NAME:
    case OPERAND::WORD:
        return read_text_value(statement, model, last);
    case OPERAND::NUMBER:
        return statement->m_keyword == keyword("vco_post_scale_counter_max")
                   ? read_post_scale_max(statement, last)
                   : read_number(statement, last);
    case OPERAND::REAL:
        return read_real_number(statement, last);
    case OPERAND::FLAG:
        return read_flag(statement, last);
    case OPERAND::LIST:
    case OPERAND::BIT_LIST:
        return read_list(statement, model, last);
    case OPERAND::POST_SCALE_NUMBER:
        return read_scaled(statement, last);
    case OPERAND::COUNTERS:
        return read_counters(statement, last);
    }
    return SET_VALUE();
}

}  // namespace

std::vector<std::string_view> words_of(PLL_VOCABULARY vocabulary)
{
    std::vector<std::string_view> words;
    for (int i = 0; pll_get_word(vocabulary, i) != nullptr; ++i) {
        words.emplace_back(pll_get_word(vocabulary, i));
    }
    return words;
}

std::string list_words(PLL_VOCABULARY vocabulary)
{
    std::string text;
    for (const std::string_view word : words_of(vocabulary)) {
        text.append(text.empty() ? "" : ", ").append(word);
    }
    return text;
}

std::optional<TEXT_WORD> read_name(STATEMENT* statement)
{
    TEXT_WORD name;
    if (!statement->m_words.next_name(&name)) {
        tell_of_missing(*statement, LINT_RULE::NAME_MISSING,
                        keyword_of(*statement) + " needs a name");
        return std::nullopt;
    }
    statement->m_watch.check_name(name);
    statement->m_watch.check_end(name, &statement->m_words);
    return name;
}

std::optional<PLL_TYPE_ENUM> find_pll_type(std::string_view word)
{
    const std::vector<std::string_view> names = words_of(PLL_VOCABULARY::PLL_TYPES);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (equal_but_for_case(names[i], word)) {
            return static_cast<PLL_TYPE_ENUM>(i);
        }
    }
    return std::nullopt;
}

int read_reconfig_type(STATEMENT* statement)
{
    const std::vector<std::string_view> names = words_of(PLL_VOCABULARY::RECONFIG_TYPES);
    TEXT_WORD word;
    if (!statement->m_words.next_word(&word)) {
        tell_of_missing(*statement, LINT_RULE::UNKNOWN_RECONFIG_TYPE,
                        keyword_of(*statement) + " needs a reconfiguration type; legal are " +
                            list_words(PLL_VOCABULARY::RECONFIG_TYPES));
        return 0;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (equal_but_for_case(names[i], word.m_text)) {
            statement->m_watch.check_end(word, &statement->m_words);
            return static_cast<int>(i) + 1;
        }
    }
    const bool is_quoted = word.m_text.front() == '"';
    statement->m_watch.tell(
        is_quoted ? LINT_RULE::QUOTED_RECONFIG_TYPE : LINT_RULE::UNKNOWN_RECONFIG_TYPE, word,
        is_quoted ? std::string(word.m_text) +
                        " is unknown because of its quotes; a reconfiguration type stands without"
                  : "unknown reconfiguration type " + in_quotes(word.m_text) + "; legal are " +
                        list_words(PLL_VOCABULARY::RECONFIG_TYPES) + suggest(word.m_text, names));
    return 0;
}

SET_VALUE read_value(STATEMENT* statement, SOURCE_MODEL* model)
{
    TEXT_WORD last = statement->m_word;
    SET_VALUE value = read_operands(statement, model, &last);
    value.m_place = statement->place();
    value.m_keyword = static_cast<std::uint8_t>(statement->m_keyword);
    if (value.m_state == VALUE_STATE::GIVEN) {
        statement->m_watch.check_end(last, &statement->m_words);
    }
    return value;
}
