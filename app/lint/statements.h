// Carries out the statements of a family file on a model, and goes on where the library would stop:
// what a misspelled word is probably meant for is carried out in its place, so that one mistake
// gives one message.
#pragma once

#include "app/lint/operands.h"
#include "app/lint/scopes.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// What is known of families beside the file that is read.
class FAMILY_NAMES
{
public:
    FAMILY_NAMES() = default;
    virtual ~FAMILY_NAMES();
    FAMILY_NAMES(const FAMILY_NAMES&) = delete;
    FAMILY_NAMES& operator=(const FAMILY_NAMES&) = delete;

    // The families that the path file names the file for; none when the file stands alone.
    virtual const std::vector<std::string_view>& expected() const = 0;

    // True for a family that the path file names another file for.
    virtual bool has_other_file(std::string_view name) const = 0;
};

// The table of a PLL type: the statement that named it last.
struct NAMED_TABLE
{
    SOURCE_PLACE m_place;  // of the name
    std::string m_name;    // empty: none
};

class STATEMENTS
{
public:
    STATEMENTS(const READINGS* readings, LINT_MESSAGES* messages, SOURCE_MODEL* model,
               SCOPES* scopes, const FAMILY_NAMES* names)
        : m_readings(*readings),
          m_messages(messages),
          m_model(model),
          m_scopes(scopes),
          m_names(*names)
    {
    }

    // Reads a line that holds a statement. Of "include", gives the name of the file.
    std::optional<TEXT_WORD> read(std::uint32_t reading, const TEXT_LINE& line);

    // The file ends.
    void finish();

    // What was selected last, and the tables, which go to its family.
    std::uint32_t get_family() const { return m_scopes->m_selection.m_family; }
    const std::array<NAMED_TABLE, PLL_TYPE_MAX>& tables() const { return m_tables; }

    // A part was meant to be there, though none was made.
    bool has_lost_part() const { return m_has_lost_part; }
    // A PLL type may have been meant to be selected, though it was not.
    bool has_lost_type() const { return m_has_lost_type; }
    // A family statement stands in the file.
    bool has_family() const { return m_has_family; }

private:
    // Statements that overwrite others, one behind the other: told of together.
    struct OVERWRITING
    {
        std::uint32_t m_record = NO_RECORD;
        SOURCE_PLACE m_place;
        SOURCE_PLACE m_earlier;
        std::string m_keyword;
        std::size_t m_others = 0;
    };

    // What was selected when the current part was.
    struct PART_CONTEXT
    {
        std::uint32_t m_family = NO_RECORD;
        PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;
        std::uint32_t m_grade = NO_RECORD;
        SOURCE_PLACE m_place;
    };

    std::optional<std::size_t> find_or_guess(const STATEMENT& statement, bool* is_guess);
    void spoil_selection();
    void carry_out(STATEMENT* statement);
    void select_family(STATEMENT* statement);
    void check_family(const TEXT_WORD& name, const SOURCE_PLACE& place, bool is_new,
                      std::uint32_t family, const STATEMENT& statement);
    void select_type(STATEMENT* statement);
    void select_grade(STATEMENT* statement);
    void select_part(STATEMENT* statement);
    void check_known_part(const SOURCE_PART& part, const SOURCE_PLACE& place,
                          const STATEMENT& statement);
    void select_reconfig(STATEMENT* statement);
    void set_type_value(STATEMENT* statement);
    void set_part_value(STATEMENT* statement);
    void store(std::uint32_t record, const SET_VALUE& value);
    void check_overwriting(std::uint32_t record, const SET_VALUE& value);
    void tell_of_overwriting();
    bool is_stale() const;
    void check_repetition(const STATEMENT& statement);
    void name_table(const SET_VALUE& value, const STATEMENT& statement);

    const READINGS& m_readings;
    LINT_MESSAGES* m_messages;
    SOURCE_MODEL* m_model;
    SCOPES* m_scopes;
    const FAMILY_NAMES& m_names;
    std::array<NAMED_TABLE, PLL_TYPE_MAX> m_tables;
    std::unordered_map<std::string, KEYWORD_GUESS> m_guesses;
    OVERWRITING m_overwriting;
    PART_CONTEXT m_part_context;
    bool m_is_stale_told = false;
    bool m_is_part_known = false;  // its overwriting was told of as a whole
    bool m_has_lost_part = false;
    bool m_has_lost_type = false;
    bool m_has_family = false;
    bool m_has_part = false;  // a "part" statement stands in the file, with an effect or without
    bool m_is_muted = false;  // carries out a guess
    std::uint32_t m_first_family = NO_RECORD;
    std::string m_last_selection;  // keyword and name of the statement before, if it selects
};
