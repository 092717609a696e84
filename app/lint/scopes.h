// What the statements of a family file have selected, and which of them have no effect, or another
// one than it seems, because a selection is missing.
#pragma once

#include "app/lint/messages.h"
#include "app/source/keyword_table.h"
#include "app/source/model.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

// The statements that select.
enum class SELECTOR : unsigned char
{
    FAMILY,
    PLL,
    SPEED_GRADE,
    PART,
    RECONFIG_TYPE
};
inline constexpr std::size_t NUMBER_OF_SELECTORS = 5;

const char* name_of(SELECTOR selector);

// What is selected. After a selection that could not be made, what depends on it is not told of.
struct SELECTION
{
    std::uint32_t m_family = NO_RECORD;
    PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;
    SOURCE_PLACE m_type_place;
    std::uint32_t m_grade = NO_RECORD;
    std::uint32_t m_part = NO_RECORD;
    int m_reconfig_type = 0;  // from 1; 0: none
    std::array<bool, NUMBER_OF_SELECTORS> m_is_unknown = {};
};

enum class REACH
{
    EFFECTIVE,
    UNKNOWN,  // depends on a selection that could not be made
    NONE      // a selection is missing
};

// The lines of included files whose statements had an effect in one place at least.
class EFFECTIVE_LINES
{
public:
    void add(std::uint32_t file, std::uint32_t line);
    bool has(std::uint32_t file, std::uint32_t line) const;

private:
    std::map<std::uint32_t, std::vector<bool>> m_lines;  // by file
};

// Statements without effect; those behind the first that wait for the same selection only count.
struct WAITING
{
    SELECTOR m_needed;
    SOURCE_PLACE m_place;
    std::string m_word;        // a keyword, or the name of an included file
    std::size_t m_others = 0;  // behind the first
};

class SCOPES
{
public:
    SCOPES(const READINGS* readings, EFFECTIVE_LINES* lines, std::vector<WAITING>* undecided)
        : m_readings(*readings), m_lines(lines), m_undecided(undecided)
    {
    }

    // Whether a statement has an effect. One that has none is kept in mind, and a selection that
    // it would make counts as unknown.
    REACH enter(std::size_t keyword, const SOURCE_PLACE& place);

    // A selection was made, or could not be: what waited for it is told of.
    void select(SELECTOR selector, bool is_known, LINT_MESSAGES* messages);

    // An included file is read; `shown` is its name.
    void leave_file(std::uint32_t reading, const std::string& shown);

    // Tells of all that still waits.
    void finish(LINT_MESSAGES* messages);

    // Forgets what waits for a selection; gives where it begins.
    std::optional<SOURCE_PLACE> forget(SELECTOR selector);

    SELECTION m_selection;

private:
    struct FILE_COUNTS
    {
        std::size_t m_effective = 0;
        std::size_t m_waiting = 0;
    };

    std::optional<SELECTOR> find_missing(KEYWORD_SCOPE scope) const;
    bool is_selected(SELECTOR selector) const;
    void tell(SELECTOR selector, LINT_MESSAGES* messages);

    const READINGS& m_readings;
    EFFECTIVE_LINES* m_lines;
    std::vector<WAITING>* m_undecided;  // in included files: those may have an effect elsewhere
    std::array<std::optional<WAITING>, NUMBER_OF_SELECTORS> m_waiting;
    std::map<std::uint32_t, FILE_COUNTS> m_counts;  // by reading, of the open ones
};

// The message on statements without effect.
void tell_of_waiting(const WAITING& waiting, LINT_MESSAGES* messages);
