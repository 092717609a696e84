// The rules of lint: what each looks for, how grave it is, what causes it and what cures it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

enum class LINT_RULE : unsigned char
{
    PATH_FILE_NOT_OPENED,
    FILE_NOT_OPENED,
    NO_FAMILY,
    FAMILY_WITHOUT_FILE,
    FAMILY_FILE_NOT_OPENED,
    FAMILY_TWICE,
    BYTE_ORDER_MARK,
    UTF_16,
    NO_UTF_8,
    NO_STATEMENT,
    UNKNOWN_KEYWORD,
    UNKNOWN_PLL_TYPE,
    NAME_MISSING,
    NUMBER_EXPECTED,
    REAL_EXPECTED,
    LIST_EMPTY,
    INCLUDE_TOO_DEEP,
    TOO_MANY_FILES,
    INCLUDE_NOT_OPENED,
    OUT_OF_SCOPE,
    STALE_PART,
    FRAGMENT,
    UNKNOWN_RECONFIG_TYPE,
    QUOTED_RECONFIG_TYPE,
    UNKNOWN_COUNTER,
    UNKNOWN_FLAG,
    EXTRA_WORDS,
    COMMENT_IN_NAME,
    QUOTE_NOT_CLOSED,
    LIST_CUT_SHORT,
    NUMBER_CUT,
    POST_SCALE_TOO_LARGE,
    LINE_CUT,
    LINE_WITH_NUL,
    STATEMENT_TWICE,
    PART_IN_OTHER_GRADE,
    PART_TWICE,
    GRADE_WITHOUT_PART,
    TWO_FAMILIES,
    FOREIGN_FAMILY,
    FAMILY_NAME_DIFFERS,
    INIT_FAILS,
    VALUE_OUT_OF_RANGE,
    UNIT_DOUBTFUL,
    LIMITS_CROSSED,
    LIMITS_OUT_OF_ORDER,
    LIMIT_UNSET,
    CENTER_OUTSIDE,
    CENTER_MISSING,
    INPUT_PFD_EXCLUDE,
    VCO_PFD_EXCLUDE,
    DEFAULT_NOT_LISTED,
    NO_CHARGE_PUMP_CURRENT,
    LOOP_FILTER_VALUE_MISSING,
    NO_HIGH_LOW_MAX,
    PRESET_OUTSIDE_TABLE,
    MULTIPLIER_TOO_LARGE,
    TABLE_NOT_OPENED,
    TABLE_TOO_LARGE,
    TABLE_FORMAT_MISSING,
    TABLE_FORMAT_UNENDED,
    TABLE_FORMAT_UNKNOWN,
    TABLE_FORMAT_MISMATCH,
    TABLE_TITLE_MISSING,
    TABLE_NUMBER_EXPECTED,
    TABLE_LINE_UNFINISHED,
    TABLE_WITHOUT_ROWS,
    ROW_OVER_LINES,
    EXTRA_COLUMN,
    ROW_WITHOUT_GROUP,
    ROW_M_ZERO,
    ROW_TWICE,
    ROW_OUTSIDE_LISTS,
    CORNERS_OUT_OF_ORDER,
    RESULT_IMPLAUSIBLE,
    ROWS_AFTER_EMPTY_LINE,
    CARRIAGE_RETURN_LINE,
    UNKNOWN_RULE,
    DEVICE_SHEET
};

// What cannot work, what is doubtful, and the rest.
enum class LINT_SEVERITY : unsigned char
{
    ERROR,
    WARNING,
    NOTE
};

struct LINT_RULE_TEXT
{
    const char* m_name;  // stable
    LINT_SEVERITY m_severity;
    const char* m_description;
    const char* m_cause;
    const char* m_cure;
};

inline constexpr std::size_t NUMBER_OF_LINT_RULES =
    static_cast<std::size_t>(LINT_RULE::DEVICE_SHEET) + 1;

const LINT_RULE_TEXT& describe(LINT_RULE rule);

std::optional<LINT_RULE> find_rule(std::string_view name);
std::vector<std::string_view> list_rules();

// "error"
const char* name_of(LINT_SEVERITY severity);
