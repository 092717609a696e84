#include "app/lint/observer.h"

#include "app/output/input_file.h"
#include "app/words/letter_case.h"

#include <algorithm>
#include <exception>
#include <tuple>

namespace {

const char TABLE_KEYWORD[] = "bandwidth_settings_table_file";
const char FAMILY_KEYWORD[] = "family";
const char PLL_KEYWORD[] = "pll";

}  // namespace

LINT_SUBJECT::LINT_SUBJECT(const PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                           const PLL_PART_INFO* part)
    : m_family(lower_case(family->m_name)),
      m_type(type),
      m_part(part == nullptr ? std::string() : lower_case(part->m_name))
{
}

bool LINT_SUBJECT::operator<(const LINT_SUBJECT& other) const
{
    return std::tie(m_family, m_type, m_part) <
           std::tie(other.m_family, other.m_type, other.m_part);
}

LINT_PLACE lint_place(const PLL_SOURCE_PLACE& place)
{
    return {tidy_path(place.m_file), std::max(place.m_line, 1), std::max(place.m_column, 1),
            std::max(place.m_length, 1)};
}

void LINT_OBSERVER::on_statement(const PLL_READ_STATEMENT& statement)
{
    try {
        store_statement(statement);
    } catch (const std::exception&) {
        m_is_complete = false;
    }
}

void LINT_OBSERVER::on_finding(const PLL_READ_FINDING& finding)
{
    if (finding.m_finding == PLL_FINDING::OUT_OF_MEMORY) {
        m_is_complete = false;
        return;
    }
    try {
        store_finding(finding);
    } catch (const std::exception&) {
        m_is_complete = false;
    }
}

void LINT_OBSERVER::store_statement(const PLL_READ_STATEMENT& statement)
{
    const LINT_PLACE place = lint_place(statement.m_place);
    m_messages->meet(place.m_file);
    if (statement.m_kind == PLL_READ_KIND::PATH_LINE) {
        m_path_lines[lower_case(statement.m_family->m_name)] = place;
        return;
    }
    if (statement.m_kind == PLL_READ_KIND::TABLE_ROW) {
        if (statement.m_row != nullptr) {
            m_rows.push_back({statement.m_family, statement.m_type, *statement.m_row, place});
        }
        return;
    }
    if (statement.m_result != PLL_READ_RESULT::STORED) {
        return;
    }
    const std::string keyword = statement.m_keyword;
    if (keyword == FAMILY_KEYWORD) {
        m_families.emplace(lower_case(statement.m_family->m_name), place);
    }
    if (keyword == PLL_KEYWORD) {
        m_pll_place = place;
    }
    if (keyword == TABLE_KEYWORD) {
        m_table_names[statement.m_type] = place;
    }
    if (statement.m_family == nullptr || statement.m_type == PLL_TYPE_MAX) {
        return;
    }
    const LINT_SUBJECT subject(statement.m_family, statement.m_type, statement.m_part);
    m_subjects.emplace(LINT_SUBJECT(statement.m_family, statement.m_type), m_pll_place);
    m_subjects.emplace(subject, place);
    ++m_number_of_statements;
    m_statements[{subject, keyword}] = {m_number_of_statements, place};
}

void LINT_OBSERVER::store_finding(const PLL_READ_FINDING& finding)
{
    const std::size_t rule = rule_of(finding.m_finding);
    if (finding.m_place.m_line > 0) {
        m_messages->add(rule, lint_place(finding.m_place), text_of(finding));
        return;
    }
    PLL_READ_FINDING tidy_finding = finding;
    const std::string file = tidy_path(finding.m_word);
    tidy_finding.m_word = file.c_str();
    m_messages->add(rule, place_of_file(finding), text_of(tidy_finding));
}

// What cannot be opened is told of where it is named.
LINT_PLACE LINT_OBSERVER::place_of_file(const PLL_READ_FINDING& finding) const
{
    std::optional<LINT_PLACE> place;
    if (finding.m_finding == PLL_FINDING::TABLE_NOT_OPENED ||
        finding.m_finding == PLL_FINDING::TABLE_TOO_LARGE) {
        const auto name = m_table_names.find(finding.m_type);
        if (name != m_table_names.end()) {
            place = name->second;
        }
    } else if (finding.m_finding == PLL_FINDING::FAMILY_FILE_NOT_OPENED ||
               finding.m_finding == PLL_FINDING::FAMILY_WITHOUT_FILE) {
        place = place_of_family(m_family);
    }
    return place ? *place : lint_place(finding.m_place);
}

LINT_PLACE LINT_OBSERVER::place_of(const LINT_SUBJECT& subject) const
{
    const auto place = m_subjects.find(subject);
    return place == m_subjects.end() ? LINT_PLACE() : place->second;
}

LINT_PLACE LINT_OBSERVER::place_of(const LINT_SUBJECT& subject,
                                   std::initializer_list<const char*> keywords) const
{
    std::optional<ORDERED_PLACE> last;
    for (const char* const keyword : keywords) {
        const auto statement = m_statements.find({subject, keyword});
        if (statement != m_statements.end() && (!last || last->first < statement->second.first)) {
            last = statement->second;
        }
    }
    return last ? last->second : place_of(subject);
}

std::optional<LINT_PLACE> LINT_OBSERVER::place_of_family(const PLL_FAMILY_INFO* family) const
{
    const std::string name = family == nullptr ? std::string() : lower_case(family->m_name);
    for (const auto* const places : {&m_path_lines, &m_families}) {
        const auto place = places->find(name);
        if (place != places->end()) {
            return place->second;
        }
    }
    return std::nullopt;
}

bool LINT_OBSERVER::is_described(const PLL_FAMILY_INFO& family) const
{
    return m_families.count(lower_case(family.m_name)) != 0;
}
