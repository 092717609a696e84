#include "app/lint/statements.h"

#include "app/words/letter_case.h"
#include "app/words/suggestion.h"

#include <algorithm>

namespace {

// Misspelled words that are compared with all keywords; others are unknown without a suggestion.
constexpr std::size_t MOST_GUESSES = 10000;
constexpr std::size_t LONGEST_SHOWN_WORD = 80;

bool selects(std::size_t index)
{
    return index == keyword("include") || index == keyword("family") || index == keyword("pll") ||
           index == keyword("speed_grade") || index == keyword("part") ||
           index == keyword("reconfig_type");
}

// Keywords that set what another one sets too.
struct KEYWORD_PAIR
{
    std::size_t m_earlier;
    std::size_t m_later;
};

constexpr KEYWORD_PAIR PAIRS[] = {
    {keyword("m_counter_max"), keyword("m_counter_high_low_max")},
    {keyword("m_counter_high_low_max"), keyword("m_counter_max")},
    {keyword("output_counter_max"), keyword("output_counter_high_low_max")},
    {keyword("output_counter_high_low_max"), keyword("output_counter_max")},
    {keyword("charge_pump_current"), keyword("charge_pump_current_bit")},
    {keyword("loop_filter_resistor"), keyword("loop_filter_resistor_bit")},
    {keyword("loop_filter_capacitor"), keyword("loop_filter_capacitor_bit")},
    {keyword("vco_min_post_scale"), keyword("vco_min")},
    {keyword("vco_max_post_scale"), keyword("vco_max")},
    {keyword("vco_center_post_scale"), keyword("vco_center")},
    {keyword("vco_gain_post_scale"), keyword("vco_gain")},
    {keyword("ss_vco_max_post_scale"), keyword("ss_vco_max")},
};

// What a keyword overwrites beside itself; itself when there is nothing.
std::size_t other_keyword(std::size_t later)
{
    for (const KEYWORD_PAIR& pair : PAIRS) {
        if (pair.m_later == later) {
            return pair.m_earlier;
        }
    }
    return later;
}

bool is_overwritten_by(const SET_VALUE& earlier, const SET_VALUE& later)
{
    return earlier.m_keyword == later.m_keyword
               ? earlier.m_post_scale == later.m_post_scale
               : earlier.m_keyword == other_keyword(later.m_keyword);
}

std::string shown(std::string_view word)
{
    return in_quotes(word.substr(0, LONGEST_SHOWN_WORD));
}

bool is_number(std::string_view word)
{
    return !word.empty() && word.find_first_not_of("0123456789+-.") == std::string_view::npos;
}

std::string text_of_unknown(std::string_view word, const std::optional<std::size_t>& guess)
{
    std::string text = "unknown keyword " + shown(word);
    const std::string_view meant = guess ? get_keyword(*guess).m_name : "";
    if (guess && word.size() > meant.size() &&
        std::string_view("=:#").find(word[meant.size()]) != std::string_view::npos) {
        return text + "; a blank has to stand behind " + in_quotes(meant);
    }
    if (guess) {
        return text.append("; did you mean ").append(meant).append("?");
    }
    return text +
           (is_number(word) ? "; a line begins with a keyword, rows belong into table files" : "");
}

}  // namespace

FAMILY_NAMES::~FAMILY_NAMES() = default;

std::optional<std::size_t> STATEMENTS::find_or_guess(const STATEMENT& statement, bool* is_guess)
{
    const std::string_view word = statement.m_word.m_text;
    *is_guess = false;
    if (const std::optional<std::size_t> known = find_keyword(word)) {
        return known;
    }
    *is_guess = true;
    KEYWORD_GUESS guess;
    const auto cached = m_guesses.find(std::string(word));
    if (cached != m_guesses.end()) {
        guess = cached->second;
    } else if (m_guesses.size() < MOST_GUESSES) {
        guess = guess_keyword(word);
        m_guesses.emplace(word, guess);
    }
    statement.m_watch.tell(LINT_RULE::UNKNOWN_KEYWORD, statement.m_word,
                           text_of_unknown(word, guess.m_keyword));
    return guess.m_is_close ? guess.m_keyword : std::nullopt;
}

// Nothing is known of a statement that could not be understood: what it may have said of the
// current type and part is not missed later.
void STATEMENTS::spoil_selection()
{
    const SELECTION& selection = m_scopes->m_selection;
    if (selection.m_part != NO_RECORD) {
        m_model->spoil(m_model->parts()[selection.m_part].m_record);
    }
    if (selection.m_family != NO_RECORD && selection.m_type != PLL_TYPE_MAX) {
        m_model->spoil(
            m_model->add_type(selection.m_family, selection.m_type, selection.m_type_place));
    }
    m_has_lost_part = true;
}

std::optional<TEXT_WORD> STATEMENTS::read(std::uint32_t reading, const TEXT_LINE& line)
{
    STATEMENT statement = {
        0, TEXT_WORD(), WORD_READER(readable_part(line.m_text)), {reading, line, m_messages}};
    if (!statement.m_words.next_word(&statement.m_word)) {
        return std::nullopt;
    }
    ++m_messages->m_summary.m_statements;
    const std::optional<std::size_t> found = find_or_guess(statement, &m_is_muted);
    if (!found) {
        spoil_selection();
        return std::nullopt;
    }
    statement.m_keyword = *found;
    if (m_is_muted) {
        statement.m_watch.m_messages = nullptr;
    }
    check_repetition(statement);
    m_has_part = m_has_part || *found == keyword("part");
    const REACH reach = m_scopes->enter(*found, statement.place());
    if (reach != REACH::EFFECTIVE) {
        m_has_lost_part = m_has_lost_part || *found == keyword("part");
        m_has_lost_type = m_has_lost_type || statement.get_keyword().m_scope == KEYWORD_SCOPE::TYPE;
        return std::nullopt;
    }
    if (*found == keyword("include")) {
        TEXT_WORD name;
        WORD_READER words = statement.m_words;
        if (words.next_name(&name)) {
            return read_name(&statement);
        }
        statement.m_watch.tell(LINT_RULE::INCLUDE_NOT_OPENED, statement.m_word,
                               "'include' needs a file; nothing is included");
        return std::nullopt;
    }
    carry_out(&statement);
    return std::nullopt;
}

void STATEMENTS::carry_out(STATEMENT* statement)
{
    const std::size_t index = statement->m_keyword;
    if (index == keyword("family")) {
        select_family(statement);
    } else if (index == keyword("pll")) {
        select_type(statement);
    } else if (index == keyword("speed_grade")) {
        select_grade(statement);
    } else if (index == keyword("part")) {
        select_part(statement);
    } else if (index == keyword("reconfig_type")) {
        select_reconfig(statement);
    } else if (statement->get_keyword().m_scope == KEYWORD_SCOPE::PART) {
        set_part_value(statement);
    } else {
        set_type_value(statement);
    }
}

// The same selection in two lines, one behind the other.
void STATEMENTS::check_repetition(const STATEMENT& statement)
{
    if (!selects(statement.m_keyword)) {
        m_last_selection.clear();
        return;
    }
    tell_of_overwriting();
    WORD_READER words = statement.m_words;
    TEXT_WORD name;
    if (!words.next_name(&name)) {
        m_last_selection.clear();
        return;
    }
    std::string selection =
        std::string(statement.get_keyword().m_name) + " " + lower_case(name.m_text);
    const bool is_told_elsewhere =
        statement.m_keyword == keyword("part") || statement.m_keyword == keyword("family");
    if (selection == m_last_selection && !is_told_elsewhere) {
        statement.m_watch.tell(LINT_RULE::STATEMENT_TWICE, statement.m_word,
                               "the line above says the same");
    }
    m_last_selection = std::move(selection);
}

void STATEMENTS::select_family(STATEMENT* statement)
{
    SELECTION& selection = m_scopes->m_selection;
    const std::optional<TEXT_WORD> name = read_name(statement);
    m_scopes->select(SELECTOR::FAMILY, name.has_value(), m_messages);
    m_has_family = true;
    if (!name) {
        selection.m_family = NO_RECORD;
        return;
    }
    const SOURCE_PLACE place = statement->m_watch.place_of(*name);
    bool is_new = false;
    const std::uint32_t family = m_model->add_family(name->m_text, place, &is_new);
    check_family(*name, place, is_new, family, *statement);
    selection.m_family = family;
}

void STATEMENTS::check_family(const TEXT_WORD& name, const SOURCE_PLACE& place, bool is_new,
                              std::uint32_t family, const STATEMENT& statement)
{
    const std::vector<std::string_view>& expected = m_names.expected();
    const bool is_expected =
        std::any_of(expected.begin(), expected.end(), [&](std::string_view candidate) {
            return equal_but_for_case(candidate, name.m_text);
        });
    const bool is_first = m_first_family == NO_RECORD;
    m_first_family = is_first ? family : m_first_family;
    if (!is_new) {
        const SOURCE_FAMILY& known = m_model->families()[family];
        if (m_scopes->m_selection.m_family == family &&
            known.m_place.m_reading == place.m_reading) {
            statement.m_watch.tell(LINT_RULE::FAMILY_TWICE, name,
                                   in_quotes(name.m_text) + " is selected in line " +
                                       std::to_string(known.m_place.m_line) + " already");
        }
        return;
    }
    if (is_expected || (is_first && expected.empty())) {
        return;
    }
    if (m_names.has_other_file(name.m_text)) {
        m_model->set_foreign(family);
        statement.m_watch.tell(LINT_RULE::FOREIGN_FAMILY, name,
                               "family " + in_quotes(name.m_text) +
                                   " has a file of its own, which will not be read once a part "
                                   "of it stands here");
    } else if (is_first) {
        statement.m_watch.tell(LINT_RULE::FAMILY_NAME_DIFFERS, name,
                               "the path file calls the family of this file " +
                                   in_quotes(expected.front()) + ", not " + in_quotes(name.m_text));
    } else {
        statement.m_watch.tell(LINT_RULE::TWO_FAMILIES, name,
                               "a second family in one file: tables and listed speed grades go to "
                               "the last one alone");
    }
}

void STATEMENTS::select_type(STATEMENT* statement)
{
    SELECTION& selection = m_scopes->m_selection;
    TEXT_WORD name;
    std::optional<PLL_TYPE_ENUM> type;
    const std::vector<std::string_view> names = words_of(PLL_VOCABULARY::PLL_TYPES);
    bool is_wrong = false;
    if (!statement->m_words.next_name(&name)) {
        is_wrong = true;
        if (statement->m_watch.m_messages != nullptr) {
            m_messages->add(
                LINT_RULE::UNKNOWN_PLL_TYPE, statement->m_watch.place_behind(statement->m_word),
                "'pll' needs a PLL type; legal are " + list_words(PLL_VOCABULARY::PLL_TYPES));
        }
    } else {
        type = find_pll_type(name.m_text);
        if (!type) {
            statement->m_watch.tell(LINT_RULE::UNKNOWN_PLL_TYPE, name,
                                    "unknown PLL type " + shown(name.m_text) + "; legal are " +
                                        list_words(PLL_VOCABULARY::PLL_TYPES) +
                                        suggest(name.m_text, names));
            is_wrong = true;
            type = find_pll_type(close_word(name.m_text, names));
        } else {
            statement->m_watch.check_name(name);
            statement->m_watch.check_end(name, &statement->m_words);
        }
    }
    m_scopes->select(SELECTOR::PLL, type.has_value(), m_messages);
    selection.m_type = type.value_or(PLL_TYPE_MAX);
    selection.m_type_place = statement->place();
    m_has_lost_part = m_has_lost_part || !type;
    m_has_lost_type = m_has_lost_type || is_wrong;
}

void STATEMENTS::select_grade(STATEMENT* statement)
{
    SELECTION& selection = m_scopes->m_selection;
    const std::optional<TEXT_WORD> name = read_name(statement);
    m_scopes->select(SELECTOR::SPEED_GRADE, name.has_value(), m_messages);
    selection.m_grade = NO_RECORD;
    if (name) {
        bool is_new = false;
        selection.m_grade = m_model->add_grade(selection.m_family, name->m_text,
                                               statement->m_watch.place_of(*name), &is_new);
    }
}

void STATEMENTS::select_part(STATEMENT* statement)
{
    SELECTION& selection = m_scopes->m_selection;
    const std::optional<TEXT_WORD> name = read_name(statement);
    m_scopes->select(SELECTOR::PART, name.has_value(), m_messages);
    selection.m_part = NO_RECORD;
    m_is_stale_told = false;
    m_is_part_known = false;
    if (!name) {
        m_has_lost_part = true;
        return;
    }
    const SOURCE_PLACE place = statement->m_watch.place_of(*name);
    const SOURCE_GRADE& grade = m_model->grades()[selection.m_grade];
    if (grade.m_family != selection.m_family) {
        // The name of the grade outlives a change of the family.
        bool is_new_grade = false;
        selection.m_grade =
            m_model->add_grade(selection.m_family, grade.m_name, grade.m_place, &is_new_grade);
    }
    const SOURCE_PART part = {selection.m_family, selection.m_grade, NO_RECORD,
                              selection.m_type,   name->m_text,      place};
    bool is_new = false;
    selection.m_part = m_model->add_part(part, &is_new);
    m_part_context = {selection.m_family, selection.m_type, selection.m_grade, place};
    if (!is_new) {
        check_known_part(part, place, *statement);
    }
}

void STATEMENTS::check_known_part(const SOURCE_PART& part, const SOURCE_PLACE& place,
                                  const STATEMENT& statement)
{
    const SOURCE_PART& known = m_model->parts()[m_scopes->m_selection.m_part];
    const bool is_same_line =
        known.m_place.m_line == place.m_line &&
        m_readings.file_of(known.m_place.m_reading) == m_readings.file_of(place.m_reading);
    if (is_same_line || statement.m_watch.m_messages == nullptr) {
        return;
    }
    m_is_part_known = true;
    if (known.m_grade != part.m_grade) {
        m_messages->add(LINT_RULE::PART_IN_OTHER_GRADE, place,
                        "part " + in_quotes(part.m_name) + " is known in speed grade " +
                            in_quotes(m_model->grades()[known.m_grade].m_name) +
                            " and stays there; the limits that follow overwrite its first ones");
    } else {
        m_messages->add(LINT_RULE::PART_TWICE, place,
                        "part " + in_quotes(part.m_name) + " stands in line " +
                            std::to_string(known.m_place.m_line) +
                            " already; the limits that follow overwrite its first ones");
    }
}

void STATEMENTS::select_reconfig(STATEMENT* statement)
{
    const int type = read_reconfig_type(statement);
    m_scopes->select(SELECTOR::RECONFIG_TYPE, type != 0, m_messages);
    m_scopes->m_selection.m_reconfig_type = type;
    const SELECTION& selection = m_scopes->m_selection;
    m_model->add_type(selection.m_family, selection.m_type, selection.m_type_place);
}

void STATEMENTS::set_type_value(STATEMENT* statement)
{
    const SELECTION& selection = m_scopes->m_selection;
    SET_VALUE value = read_value(statement, m_model);
    const std::uint32_t record =
        m_model->add_type(selection.m_family, selection.m_type, selection.m_type_place);
    if (statement->m_keyword == keyword("reconfig_scan_chain_counter_order")) {
        value.m_post_scale = static_cast<std::uint8_t>(selection.m_reconfig_type);
    }
    if (statement->m_keyword == keyword("bandwidth_settings_table_file")) {
        name_table(value, *statement);
    }
    store(record, value);
}

void STATEMENTS::name_table(const SET_VALUE& value, const STATEMENT& statement)
{
    NAMED_TABLE& table = m_tables[m_scopes->m_selection.m_type];
    table.m_name = value.m_count == 0 ? "" : std::string(m_model->text_of(value));
    WORD_READER words(readable_part(statement.m_watch.m_line.m_text));
    TEXT_WORD name;
    words.next_word(&name);
    words.next_name(&name);
    table.m_place = statement.m_watch.place_of(name);
}

bool STATEMENTS::is_stale() const
{
    const SELECTION& selection = m_scopes->m_selection;
    return selection.m_part != NO_RECORD && (m_part_context.m_family != selection.m_family ||
                                             m_part_context.m_type != selection.m_type ||
                                             m_part_context.m_grade != selection.m_grade);
}

void STATEMENTS::set_part_value(STATEMENT* statement)
{
    const SET_VALUE value = read_value(statement, m_model);
    const SOURCE_PART& part = m_model->parts()[m_scopes->m_selection.m_part];
    if (!is_stale()) {
        store(part.m_record, value);
        return;
    }
    if (!m_is_stale_told) {
        const SOURCE_PLACE place =
            seen_from(m_readings, m_part_context.m_place.m_reading, value.m_place);
        m_messages->add(LINT_RULE::STALE_PART, place,
                        in_quotes(statement->get_keyword().m_name) + " changes part " +
                            in_quotes(part.m_name) + " of line " +
                            std::to_string(m_part_context.m_place.m_line) +
                            ": no 'part' follows the last 'speed_grade', 'pll' or 'family'");
    }
    m_is_stale_told = true;
    m_model->spoil(part.m_record);
    m_has_lost_part = true;
}

void STATEMENTS::store(std::uint32_t record, const SET_VALUE& value)
{
    check_overwriting(record, value);
    m_model->add_value(record, value);
}

// What an included file sets may be overwritten by the file that includes it; within one file, and
// by a file that is included later, nobody means it.
void STATEMENTS::check_overwriting(std::uint32_t record, const SET_VALUE& value)
{
    const SET_VALUE* earlier = nullptr;
    const bool is_known = m_model->has_value(record, value.m_keyword) ||
                          m_model->has_value(record, other_keyword(value.m_keyword));
    if (is_known && !m_is_muted && !m_is_part_known) {
        earlier = m_model->find_latest(
            record, [&](const SET_VALUE& known) { return is_overwritten_by(known, value); });
    }
    const std::uint32_t reading = value.m_place.m_reading;
    const bool is_same_file = earlier != nullptr && earlier->m_place.m_reading == reading;
    const bool is_included =
        earlier != nullptr && !is_same_file &&
        m_readings.file_of(earlier->m_place.m_reading) != m_readings.file_of(reading) &&
        seen_from(m_readings, earlier->m_place.m_reading, value.m_place).m_reading ==
            earlier->m_place.m_reading;
    if (!is_same_file && !is_included) {
        tell_of_overwriting();
        return;
    }
    if (m_overwriting.m_record == record) {
        ++m_overwriting.m_others;
        m_has_lost_type = true;
        return;
    }
    tell_of_overwriting();
    m_overwriting = {record, is_same_file ? value.m_place : earlier->m_place,
                     is_same_file ? earlier->m_place : value.m_place,
                     get_keyword(value.m_keyword).m_name, 0};
}

void STATEMENTS::tell_of_overwriting()
{
    const OVERWRITING told = m_overwriting;
    m_overwriting = OVERWRITING();
    if (told.m_record == NO_RECORD) {
        return;
    }
    const bool is_included = told.m_place.m_reading != told.m_earlier.m_reading;
    const std::string line = "line " + std::to_string(told.m_earlier.m_line);
    std::string text = in_quotes(told.m_keyword);
    if (is_included) {
        text += " has no effect: " + line + " of " + m_readings.name_of(told.m_earlier.m_reading) +
                ", which is included below, sets it again";
    } else if (told.m_others == 0) {
        text += " overwrites what " + line + " sets";
    } else {
        text += " and " + std::to_string(told.m_others) + " more overwrite what the lines from " +
                std::to_string(told.m_earlier.m_line) +
                " on set; is a 'part' or 'pll' missing before them?";
    }
    m_messages->add(LINT_RULE::STATEMENT_TWICE, told.m_place, text);
}

void STATEMENTS::finish()
{
    tell_of_overwriting();
    if (m_names.expected().empty() && !m_has_family && !m_has_part) {
        if (const std::optional<SOURCE_PLACE> place = m_scopes->forget(SELECTOR::FAMILY)) {
            m_messages->add(LINT_RULE::FRAGMENT, *place,
                            "the file selects no family: look at it with --within FAMILY_FILE if "
                            "it is one to include");
        }
    }
    m_scopes->finish(m_messages);
}
