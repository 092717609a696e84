// Messages on a database and the rules that they follow.
#pragma once

#include "pll_observer.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// What reads well but cannot work.
enum class DEVICE_FINDING
{
    NO_CHARGE_PUMP_CURRENT,
    LOOP_FILTER_VALUE_MISSING,
    LIMIT_UNSET,
    LIMITS_CROSSED,
    NO_HIGH_LOW_MAX,
    TABLE_SIZE,
    PRESET_OUTSIDE_TABLE,
    ROW_OUTSIDE_LISTS,
    INIT_FAILS,
    DEVICE_SHEET
};

// A kind of message. Rules are known by their index: first those of the library's findings, then
// those above.
struct LINT_RULE
{
    std::string_view m_name;  // stable
    bool m_is_error;
    const char* m_description;
};

const std::vector<LINT_RULE>& lint_rules();

std::size_t rule_of(PLL_FINDING finding);
std::size_t rule_of(DEVICE_FINDING finding);

// A place as it is shown.
struct LINT_PLACE
{
    std::string m_file;
    int m_line = 1;    // from 1
    int m_column = 1;  // from 1, in bytes
    int m_length = 1;  // in bytes, at least 1
};

struct LINT_MESSAGE
{
    std::size_t m_rule;
    LINT_PLACE m_place;
    std::string m_text;
};

// The text of a message on what the reader found.
std::string text_of(const PLL_READ_FINDING& finding);

// Messages in the order of files as they were met, lines and columns, each once.
class LINT_MESSAGES
{
public:
    // Gives a file its place in the order; `add` does so too.
    void meet(const std::string& file);

    void add(std::size_t rule, const LINT_PLACE& place, std::string text);

    void remove_if(const std::function<bool(const LINT_MESSAGE&)>& is_unwanted);

    // Puts them in order; call it before they are read.
    void sort();

    const std::vector<LINT_MESSAGE>& get() const { return m_messages; }
    std::size_t count_errors() const;
    bool has(std::size_t rule) const;

private:
    std::vector<LINT_MESSAGE> m_messages;
    std::map<std::string, std::size_t> m_files;  // by name, the place in the order of meeting
};
