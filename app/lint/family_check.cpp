#include "app/lint/family_check.h"

#include "app/lint/part_check.h"
#include "app/lint/table_check.h"
#include "app/lint/type_check.h"
#include "app/output/input_file.h"
#include "app/source/text_file.h"
#include "app/words/letter_case.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace {

constexpr double MOST_GROUPS = 4194304.0;  // of a table
constexpr char NO_TABLE[] = "unused";

// The shortest PFD period of the parts of a type; 0: none is given.
typedef std::map<std::uint32_t, double> FASTEST_PFDS;  // by the record of the type

class FAMILY_CHECK
{
public:
    FAMILY_CHECK(const FAMILY_FILE& file, READINGS* readings, LINT_MESSAGES* messages)
        : m_file(file),
          m_model(file.model()),
          m_readings(readings),
          m_messages(messages),
          m_is_complete(!file.has_lost_file())
    {
    }

    void check()
    {
        check_parts();
        for (std::size_t i = 0; i < m_model.families().size(); ++i) {
            if (!m_model.families()[i].m_is_foreign) {
                check_family(static_cast<std::uint32_t>(i));
            }
        }
        check_grades();
        m_messages->m_summary.m_families += m_model.families().size();
        m_messages->m_summary.m_parts += m_model.parts().size();
    }

private:
    RECORD_VIEW view(std::uint32_t record) const { return {m_model, record, m_is_complete}; }

    bool may_have_lost_part() const
    {
        return !m_is_complete || m_file.statements().has_lost_part();
    }

    // Parts of one type share the view of it while they stand together.
    void check_parts()
    {
        PART_CHECK check(m_messages);
        std::optional<RECORD_VIEW> type;
        std::uint32_t record = NO_RECORD;
        for (const SOURCE_PART& part : m_model.parts()) {
            const std::uint32_t next = m_model.families()[part.m_family].m_types[part.m_type];
            if (!type || next != record) {
                type.emplace(m_model, next, m_is_complete);
                record = next;
            }
            const RECORD_VIEW limits = view(part.m_record);
            check.check(part, limits, *type);
            if (const std::optional<double> pfd = limits.number(keyword("pfd_min"))) {
                double& fastest = m_pfds.emplace(record, *pfd).first->second;
                fastest = std::min(fastest, *pfd);
            }
        }
        check.finish();
    }

    void check_family(std::uint32_t index)
    {
        const SOURCE_FAMILY& family = m_model.families()[index];
        bool is_described = false;
        for (int i = ENHANCED_PLL; i < PLL_TYPE_MAX; ++i) {
            const auto type = static_cast<PLL_TYPE_ENUM>(i);
            const bool has_part = family.m_part_counts[type] > 0;
            is_described = is_described || has_part || family.m_types[type] != NO_RECORD;
            if (has_part || family.m_types[type] != NO_RECORD) {
                check_type_of(index, type);
            }
        }
        if (!is_described && !may_have_lost_part()) {
            m_messages->add(LINT_RULE::INIT_FAILS, family.m_place,
                            "family " + in_quotes(family.m_name) +
                                " has no part: see 'family' and 'part'");
        }
    }

    void check_type_of(std::uint32_t index, PLL_TYPE_ENUM type)
    {
        const SOURCE_FAMILY& family = m_model.families()[index];
        const std::string name = pll_get_word(PLL_VOCABULARY::PLL_TYPES, type);
        const RECORD_VIEW values = view(family.m_types[type]);
        const SOURCE_PLACE place = place_of_type(index, type);
        if (family.m_part_counts[type] == 0) {
            if (!may_have_lost_part() && !m_file.statements().has_lost_type()) {
                m_messages->add(LINT_RULE::INIT_FAILS, place,
                                "no " + name + " of family " + in_quotes(family.m_name) +
                                    " can be initialised: no part has one");
            }
            return;
        }
        const bool gets_tables = m_file.statements().get_family() == index;
        const NAMED_TABLE& table = m_file.statements().tables()[type];
        const bool has_table =
            gets_tables && !table.m_name.empty() && !equal_but_for_case(table.m_name, NO_TABLE);
        if (!values.is_empty() || !m_file.statements().has_lost_type()) {
            check_type(values, name, place, has_table, m_messages);
        }
        if (has_table) {
            check_table(values, table, family.m_types[type]);
        }
    }

    // Where a type is selected; the first part of one that nothing is said of.
    SOURCE_PLACE place_of_type(std::uint32_t index, PLL_TYPE_ENUM type) const
    {
        const SOURCE_FAMILY& family = m_model.families()[index];
        if (family.m_types[type] != NO_RECORD) {
            return family.m_pll_places[type];
        }
        const auto part = std::find_if(
            m_model.parts().begin(), m_model.parts().end(), [&](const SOURCE_PART& candidate) {
                return candidate.m_family == index && candidate.m_type == type;
            });
        return part == m_model.parts().end() ? family.m_place : part->m_place;
    }

    bool is_size_legal(const RECORD_VIEW& type)
    {
        const SET_VALUE* const counter = find_largest_m(type);
        const double post_scale = type.number(keyword("vco_post_scale_counter_max")).value_or(0.0);
        const double groups = largest_m(type).value_or(0.0) * post_scale + 1.0;
        if (groups <= MOST_GROUPS || counter == nullptr) {
            return true;
        }
        m_messages->add(LINT_RULE::TABLE_TOO_LARGE, counter->m_place,
                        "vco_post_scale_counter_max x m_counter_max + 1 asks for a bandwidth "
                        "table of " +
                            std::to_string(static_cast<long long>(groups)) + " groups; 0 to " +
                            std::to_string(static_cast<long long>(MOST_GROUPS)) + " are possible");
        return false;
    }

    void check_table(const RECORD_VIEW& type, const NAMED_TABLE& table, std::uint32_t record)
    {
        const std::string file = tidy_path(m_file.folder() + "/" + table.m_name);
        if (!is_size_legal(type)) {
            return;
        }
        std::string reason;
        const std::optional<std::string> text = read_text(file, &reason);
        if (!text) {
            m_messages->add(LINT_RULE::TABLE_NOT_OPENED, table.m_place,
                            "cannot open the bandwidth table " + in_quotes(file) + ": " + reason +
                                "; a PLL type without one says 'unused'");
            return;
        }
        const std::uint32_t reading =
            m_readings->add_named(file, READING_KIND::TABLE, table.m_place);
        const std::size_t messages_before = m_messages->count_all();
        TABLE_CHECK check(&type, m_messages);
        TABLE_FILE(reading, m_messages, &check).read(*text);
        check.finish();
        const auto pfd = m_pfds.find(record);
        // Of rows that a message is about, nothing follows.
        if (m_messages->count_all() == messages_before) {
            check_presets(type, check.bandwidths(), pfd == m_pfds.end() ? 0.0 : pfd->second,
                          m_messages);
        }
    }

    void check_grades()
    {
        if (may_have_lost_part()) {
            return;
        }
        for (const SOURCE_GRADE& grade : m_model.grades()) {
            if (!grade.m_has_part && has_parts(grade.m_family)) {
                m_messages->add(LINT_RULE::GRADE_WITHOUT_PART, grade.m_place,
                                "no part stands in speed grade " + in_quotes(grade.m_name));
            }
        }
    }

    bool has_parts(std::uint32_t family) const
    {
        const auto& counts = m_model.families()[family].m_part_counts;
        return std::any_of(counts.begin(), counts.end(),
                           [](std::uint32_t count) { return count > 0; });
    }

    const FAMILY_FILE& m_file;
    const SOURCE_MODEL& m_model;
    READINGS* m_readings;
    LINT_MESSAGES* m_messages;
    bool m_is_complete;
    FASTEST_PFDS m_pfds;
};

}  // namespace

void check_families(const FAMILY_FILE& file, READINGS* readings, LINT_MESSAGES* messages)
{
    FAMILY_CHECK(file, readings, messages).check();
}
