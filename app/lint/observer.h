// Hears the readers of a database: makes messages of what they find, and remembers where things
// stand, for messages on what they stored.
#pragma once

#include "app/lint/messages.h"

#include "pll_manager.h"
#include "pll_observer.h"

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// A PLL type of a family, or a part of it, by name.
struct LINT_SUBJECT
{
    LINT_SUBJECT(const PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                 const PLL_PART_INFO* part = nullptr);

    bool operator<(const LINT_SUBJECT& other) const;

    std::string m_family;
    PLL_TYPE_ENUM m_type;
    std::string m_part;  // empty: the type itself
};

// A row of a bandwidth table.
struct LINT_ROW
{
    const PLL_FAMILY_INFO* m_family;
    PLL_TYPE_ENUM m_type;
    PLL_BANDWIDTH_SETTING m_row;
    LINT_PLACE m_place;
};

class LINT_OBSERVER : public PLL_READ_OBSERVER
{
public:
    explicit LINT_OBSERVER(LINT_MESSAGES* messages) : m_messages(messages) {}

    void on_statement(const PLL_READ_STATEMENT& statement) override;
    void on_finding(const PLL_READ_FINDING& finding) override;

    // Where a subject is first met, and the last statement with one of the keywords on it.
    LINT_PLACE place_of(const LINT_SUBJECT& subject) const;
    LINT_PLACE place_of(const LINT_SUBJECT& subject,
                        std::initializer_list<const char*> keywords) const;

    // The line of the path file on a family, or its first "family" statement.
    std::optional<LINT_PLACE> place_of_family(const PLL_FAMILY_INFO* family) const;

    // True for a family that a "family" statement named.
    bool is_described(const PLL_FAMILY_INFO& family) const;

    // True when every call was carried out to its end, as far as memory goes.
    bool is_complete() const { return m_is_complete; }

    const std::vector<LINT_ROW>& rows() const { return m_rows; }

    // The PLL types and families that a statement was stored in.
    const std::map<LINT_SUBJECT, LINT_PLACE>& subjects() const { return m_subjects; }

    // The family that is being read: findings on its file as a whole go to its line.
    void read_next(const PLL_FAMILY_INFO* family) { m_family = family; }

private:
    typedef std::pair<std::size_t, LINT_PLACE> ORDERED_PLACE;

    void store_statement(const PLL_READ_STATEMENT& statement);
    void store_finding(const PLL_READ_FINDING& finding);
    LINT_PLACE place_of_file(const PLL_READ_FINDING& finding) const;

    LINT_MESSAGES* m_messages;
    const PLL_FAMILY_INFO* m_family = nullptr;
    LINT_PLACE m_pll_place;                          // of the last "pll"
    std::map<std::string, LINT_PLACE> m_path_lines;  // by family
    std::map<std::string, LINT_PLACE> m_families;    // likewise, the first "family"
    std::map<LINT_SUBJECT, LINT_PLACE> m_subjects;   // first met
    std::map<std::pair<LINT_SUBJECT, std::string>, ORDERED_PLACE> m_statements;
    std::map<PLL_TYPE_ENUM, LINT_PLACE> m_table_names;  // the last "bandwidth_settings_table_file"
    std::size_t m_number_of_statements = 0;
    std::vector<LINT_ROW> m_rows;
    bool m_is_complete = true;
};

LINT_PLACE lint_place(const PLL_SOURCE_PLACE& place);
