// What can be told of a statement. It is looked at after the reader has carried it out: the records
// are as it left them, and its words are cut out of the watch's own copy of the line.
#include "gen_string.h"

#include "database/memory.h"
#include "database/watch/line_watch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

const char QUOTE = '"';
const int DECIMAL = 10;

bool is_number(const char* word)
{
    return word != nullptr &&
           std::all_of(word, word + std::strlen(word), [](char c) { return c >= '0' && c <= '9'; });
}

// Numbers of more than 64 bits are the largest of them.
long long number_of(const char* word)
{
    return std::strtoll(word, nullptr, DECIMAL);
}

// What 32 bits keep of it.
int kept_number_of(const char* word)
{
    return static_cast<int>(static_cast<unsigned>(number_of(word)));
}

bool is_in(PLL_VOCABULARY vocabulary, const char* word)
{
    int index = 0;
    const char* legal = pll_get_word(vocabulary, index);
    while (legal != nullptr && gen_stricmp(legal, word) != 0) {
        ++index;
        legal = pll_get_word(vocabulary, index);
    }
    return legal != nullptr;
}

}  // namespace

PLL_STATEMENT_WATCH::PLL_STATEMENT_WATCH(const PLL_FAMILY_FILE_READER& reader,
                                         PLL_READ_OBSERVER* observer)
    : m_reader(reader),
      m_line(observer, *reader.m_manager),
      m_keyword(nullptr),
      m_row(nullptr),
      m_is_in_scope(false),
      m_was_full(false),
      m_opened_files(0),
      m_reason(PLL_FINDING::NONE),
      m_foreign_family(nullptr)
{
}

void PLL_STATEMENT_WATCH::tell_of_top_file(PLL_FINDING finding, const char* path,
                                           const char* file_name)
{
    const PLL_MANAGER_TEXT name(manager_join(path, "/", file_name));
    tell_of_file(m_line.get_observer(), finding, name.get() == nullptr ? file_name : name.get());
}

bool PLL_STATEMENT_WATCH::begin(const char* line)
{
    m_line.copy(line, m_reader.m_files.current(), m_reader.m_files.current_name());
    m_keyword = m_line.next_word();
    if (m_keyword == nullptr) {
        return false;
    }
    m_row = find_keyword(m_keyword);
    m_is_in_scope = m_row != nullptr && m_reader.is_in_scope(m_row->m_scope);
    m_was_full = m_reader.m_files.is_full();
    m_opened_files = m_reader.m_files.opened_files();
    m_reason = PLL_FINDING::NONE;
    return true;
}

void PLL_STATEMENT_WATCH::end(bool is_ok)
{
    look_at_statement(is_ok);
    PLL_READ_STATEMENT event = statement();
    event.m_result = !is_ok                          ? PLL_READ_RESULT::FAILED
                     : m_reason == PLL_FINDING::NONE ? PLL_READ_RESULT::STORED
                                                     : PLL_READ_RESULT::SKIPPED;
    event.m_reason = m_reason;
    tell(m_line.get_observer(), event);
}

void PLL_STATEMENT_WATCH::look_at_statement(bool is_ok)
{
    if (m_row == nullptr) {
        refuse(PLL_FINDING::UNKNOWN_KEYWORD, m_keyword, PLL_VOCABULARY::KEYWORDS);
        return;
    }
    if (!m_is_in_scope) {
        PLL_READ_FINDING event = m_line.finding_on(PLL_FINDING::OUT_OF_SCOPE, m_keyword);
        event.m_needed = needed_keyword();
        m_reason = event.m_finding;
        find(event);
        return;
    }
    if (m_row->m_kind == PLL_OPERAND_KIND::NAME) {
        look_at_name(is_ok);
    } else {
        look_at_operands();
    }
    if (is_ok) {
        m_line.tell_of_rest(m_row->m_keyword);
    }
}

// The first keyword that is missing on the way to this one's place.
const char* PLL_STATEMENT_WATCH::needed_keyword() const
{
    switch (m_row->m_scope) {
    case PLL_SCOPE::ANYWHERE:
        return "";
    case PLL_SCOPE::FAMILY:
    case PLL_SCOPE::PLL_TYPE:
    case PLL_SCOPE::SPEED_GRADE:
        return m_reader.m_family == nullptr      ? "family"
               : m_reader.m_type == PLL_TYPE_MAX ? "pll"
                                                 : "speed_grade";
    case PLL_SCOPE::PART:
        return "part";
    case PLL_SCOPE::RECONFIG:
        return "reconfig_type";
    }
    return "";
}

void PLL_STATEMENT_WATCH::look_at_operands()
{
    switch (m_row->m_kind) {
    case PLL_OPERAND_KIND::NAME:
        break;
    case PLL_OPERAND_KIND::WORD:
        look_at_reconfig_type(m_line.next_word());
        break;
    case PLL_OPERAND_KIND::NUMBER:
        look_at_number(m_line.next_word());
        break;
    case PLL_OPERAND_KIND::POST_SCALE_NUMBER:
        if (char* const post_scale = m_line.next_word(); is_number(post_scale)) {
            look_at_post_scale(post_scale);
            look_at_number(m_line.next_word());
        } else {
            refuse(PLL_FINDING::NUMBER_EXPECTED, post_scale);
        }
        break;
    case PLL_OPERAND_KIND::REAL:
        look_at_real(m_line.next_word());
        break;
    case PLL_OPERAND_KIND::FLAG:
        look_at_flag(m_line.next_word());
        break;
    case PLL_OPERAND_KIND::SORTED_NUMBERS:
    case PLL_OPERAND_KIND::NUMBERS:
        look_at_numbers();
        break;
    case PLL_OPERAND_KIND::COUNTERS:
        look_at_counters();
        break;
    }
}

void PLL_STATEMENT_WATCH::look_at_name(bool is_ok)
{
    const char* const name = m_line.next_name();
    if (is_keyword("include")) {
        if (!is_ok && m_was_full) {
            refuse(m_reader.m_files.is_deep() ? PLL_FINDING::INCLUDE_TOO_DEEP
                                              : PLL_FINDING::TOO_MANY_FILES,
                   name);
        } else if (is_ok && m_opened_files == m_reader.m_files.opened_files()) {
            refuse(PLL_FINDING::INCLUDE_NOT_OPENED, name);
        }
    } else if (is_keyword("pll")) {
        if (m_reader.m_type == PLL_TYPE_MAX) {
            refuse(PLL_FINDING::UNKNOWN_PLL_TYPE, name, PLL_VOCABULARY::PLL_TYPES);
        }
    } else if (name == nullptr) {
        refuse(PLL_FINDING::NAME_MISSING, name);
    } else if (is_keyword("part") && is_ok) {
        m_part_owner = {m_reader.m_family, m_reader.m_type};
        look_at_part(name);
    }
}

void PLL_STATEMENT_WATCH::look_at_number(char* word)
{
    if (!is_number(word)) {
        refuse(PLL_FINDING::NUMBER_EXPECTED, word);
        return;
    }
    if (number_of(word) > std::numeric_limits<int>::max()) {
        PLL_READ_FINDING event = m_line.finding_on(PLL_FINDING::NUMBER_CUT, word);
        event.m_value = kept_number_of(word);
        event.m_limit = std::numeric_limits<int>::max();
        find(event);
    }
    if (is_keyword("vco_post_scale_counter_max")) {
        look_at_post_scale(word);
    }
}

void PLL_STATEMENT_WATCH::look_at_post_scale(const char* word)
{
    if (kept_number_of(word) > PLL_VCO_POST_SCALE_MAX) {
        PLL_READ_FINDING event = m_line.finding_on(PLL_FINDING::POST_SCALE_TOO_LARGE, word);
        event.m_value = kept_number_of(word);
        event.m_limit = PLL_VCO_POST_SCALE_MAX;
        // A limit of a post-scale that does not exist is not stored; the largest post-scale is.
        if (m_row->m_kind == PLL_OPERAND_KIND::POST_SCALE_NUMBER) {
            m_reason = event.m_finding;
        }
        find(event);
    }
}

// What follows the number in the same word is not read.
void PLL_STATEMENT_WATCH::look_at_real(char* word)
{
    char* end = nullptr;
    if (word == nullptr || std::strtod(word, &end) == 0.0) {
        refuse(PLL_FINDING::REAL_EXPECTED, word);
    } else if (*end != '\0') {
        find(PLL_FINDING::EXTRA_WORDS, end);
    }
}

void PLL_STATEMENT_WATCH::look_at_flag(const char* word)
{
    if (word == nullptr || !is_in(PLL_VOCABULARY::FLAGS, word)) {
        find(PLL_FINDING::UNKNOWN_FLAG, word, PLL_VOCABULARY::FLAGS);
    }
}

// The first word that is no number, or one that is negative once it is cut, ends the list.
void PLL_STATEMENT_WATCH::look_at_numbers()
{
    int count = 0;
    char* word = m_line.next_word();
    while (is_number(word) && kept_number_of(word) >= 0) {
        look_at_number(word);
        ++count;
        word = m_line.next_word();
    }
    if (count == 0) {
        refuse(PLL_FINDING::LIST_EMPTY, word);
    } else if (word != nullptr) {
        find(PLL_FINDING::LIST_CUT_SHORT, word);
        m_line.drop_rest();
    }
}

void PLL_STATEMENT_WATCH::look_at_counters()
{
    int count = 0;
    const char* word = m_line.next_name();
    while (word != nullptr && gen_stricmp(word, END_OF_LIST) != 0) {
        if (!is_in(PLL_VOCABULARY::COUNTERS, word)) {
            find(PLL_FINDING::UNKNOWN_COUNTER, word, PLL_VOCABULARY::COUNTERS);
        }
        ++count;
        word = m_line.next_name();
    }
    if (count == 0) {
        refuse(PLL_FINDING::LIST_EMPTY, word, PLL_VOCABULARY::COUNTERS);
    }
}

void PLL_STATEMENT_WATCH::look_at_reconfig_type(const char* word)
{
    m_reconfig_owner = {m_reader.m_family, m_reader.m_type};
    if (word != nullptr && *word == QUOTE) {
        refuse(PLL_FINDING::QUOTED_RECONFIG_TYPE, word, PLL_VOCABULARY::RECONFIG_TYPES);
        m_line.drop_rest();
    } else if (word == nullptr || !is_in(PLL_VOCABULARY::RECONFIG_TYPES, word)) {
        refuse(PLL_FINDING::UNKNOWN_RECONFIG_TYPE, word, PLL_VOCABULARY::RECONFIG_TYPES);
    }
}

// Its name may be known already, in another speed grade, and its family may have another file.
void PLL_STATEMENT_WATCH::look_at_part(const char* name)
{
    const PLL_FAMILY_INFO* const family = m_reader.m_family;
    const PLL_PART_INFO* const part = m_reader.m_part;
    if (gen_stricmp(part->m_speed_grade, m_reader.m_speed_grade) != 0) {
        find(PLL_FINDING::PART_IN_OTHER_GRADE, name);
    }
    if (family->m_file_name != nullptr && family != m_foreign_family &&
        !m_reader.is_reading(family->m_path, family->m_file_name)) {
        m_foreign_family = family;
        find(PLL_FINDING::FOREIGN_FAMILY, name);
    }
}

PLL_READ_STATEMENT PLL_STATEMENT_WATCH::statement() const
{
    PLL_READ_STATEMENT event;
    event.m_place = m_line.place_of(m_keyword);
    if (m_row == nullptr) {
        return event;
    }
    event.m_keyword = m_row->m_keyword;
    if (!m_is_in_scope) {
        return event;
    }
    event.m_family = is_keyword("include") || is_keyword("pll") ? nullptr : m_reader.m_family;
    event.m_type = is_keyword("pll") ? m_reader.m_type : PLL_TYPE_MAX;
    switch (m_row->m_scope) {
    case PLL_SCOPE::ANYWHERE:
        break;
    case PLL_SCOPE::PLL_TYPE:
        event.m_type = m_reader.m_type;
        break;
    case PLL_SCOPE::FAMILY:
        event.m_speed_grade = m_reader.m_speed_grade;
        break;
    case PLL_SCOPE::SPEED_GRADE:
        event.m_type = m_reader.m_type;
        event.m_speed_grade = m_reader.m_speed_grade;
        event.m_part = m_reader.m_part;
        break;
    case PLL_SCOPE::PART:
        event.m_family = m_part_owner.m_family;
        event.m_type = m_part_owner.m_type;
        event.m_part = m_reader.m_part;
        event.m_speed_grade = m_reader.m_part->m_speed_grade;
        break;
    case PLL_SCOPE::RECONFIG:
        event.m_family = m_reconfig_owner.m_family;
        event.m_type = m_reconfig_owner.m_type;
        break;
    }
    return event;
}

bool PLL_STATEMENT_WATCH::is_keyword(const char* keyword) const
{
    return std::strcmp(m_row->m_keyword, keyword) == 0;
}

void PLL_STATEMENT_WATCH::find(PLL_READ_FINDING finding)
{
    if (m_row != nullptr) {
        finding.m_keyword = m_row->m_keyword;
    }
    finding.m_family = m_reader.m_family;
    finding.m_type = m_reader.m_type;
    finding.m_part = m_reader.m_part;
    tell(m_line.get_observer(), finding);
}

void PLL_STATEMENT_WATCH::find(PLL_FINDING finding, const char* word, PLL_VOCABULARY vocabulary)
{
    PLL_READ_FINDING event = m_line.finding_on(finding, word);
    event.m_vocabulary = vocabulary;
    find(event);
}

void PLL_STATEMENT_WATCH::refuse(PLL_FINDING finding, const char* word, PLL_VOCABULARY vocabulary)
{
    m_reason = finding;
    find(finding, word, vocabulary);
}
