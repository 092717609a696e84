// The rows of a bandwidth table against the counters and components of their PLL type, and against
// each other.
#pragma once

#include "app/lint/record_view.h"
#include "app/lint/table_file.h"
#include "app/lint/type_check.h"
#include "app/source/hash_set.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class TABLE_CHECK : public TABLE_ROW_CHECK
{
public:
    // Null: a table without its family, whose counters and components are not known.
    TABLE_CHECK(const RECORD_VIEW* type, LINT_MESSAGES* messages);

    void check_row(const TABLE_FORMAT& format, const TABLE_ROW& row,
                   const OPERAND_WATCH& watch) override;

    // Tells of what several rows share.
    void finish();

    const TABLE_BANDWIDTHS& bandwidths() const { return m_bandwidths; }

private:
    // A list of components, and the values of rows that it lacks.
    struct COMPONENT_LIST
    {
        std::size_t m_keyword = 0;
        const SET_VALUE* m_statement = nullptr;  // null: the list is not known
        std::vector<int> m_values;               // sorted
        std::map<int, std::size_t> m_missing;    // rows by value
        SOURCE_PLACE m_place;                    // of the first
    };

    // Rows with the same mistake, one behind the other.
    struct RUN_OF_ROWS
    {
        SOURCE_PLACE m_place;
        std::string m_text;
        std::uint32_t m_last_line = 0;
        std::size_t m_others = 0;
    };

    COMPONENT_LIST find_list(std::size_t list, std::size_t bits) const;
    void check_component(COMPONENT_LIST* list, int value, const SOURCE_PLACE& place);
    void check_m(int m, const SOURCE_PLACE& place);
    void check_results(const TABLE_ROW& row, std::size_t first, const OPERAND_WATCH& watch);
    void note_bandwidths(int m, const TABLE_ROW& row, std::size_t first);
    void check_repetition(const TABLE_FORMAT& format, const TABLE_ROW& row,
                          const OPERAND_WATCH& watch);
    void add_to_run(LINT_RULE rule, const SOURCE_PLACE& place, const std::string& text);
    void tell_of_list(const COMPONENT_LIST& list);
    void tell_of_rows_without_group();

    const RECORD_VIEW* m_type;
    LINT_MESSAGES* m_messages;
    std::optional<double> m_largest_m;  // that has a group
    std::optional<double> m_low;
    std::optional<double> m_high;
    COMPONENT_LIST m_currents;
    COMPONENT_LIST m_resistors;
    COMPONENT_LIST m_capacitors;
    std::map<LINT_RULE, RUN_OF_ROWS> m_runs;
    HASH_SET m_rows;
    TABLE_BANDWIDTHS m_bandwidths;
    std::size_t m_without_group = 0;
    std::vector<std::pair<int, SOURCE_PLACE>> m_first_without_group;  // M, and where
};
