// Lint: what is wrong with a device database, for those who write one. Its readers know the format
// as the library does, but go on after a mistake and keep no more than they need, so that one run
// finds every mistake in files of any size.
#pragma once

#include "app/lint/messages.h"
#include "app/lint/print.h"
#include "app/output/output.h"

#include <optional>
#include <string>
#include <vector>

// Whether the source line stands below a message, with a caret at the place.
enum class LINT_CARET
{
    ON_TERMINALS,
    ALWAYS,
    NEVER
};

// What to look at.
enum class LINT_TARGET
{
    BY_CONTENT,
    FAMILY_FILE,
    TABLE_FILE
};

struct LINT_REQUEST
{
    std::vector<std::string> m_paths;  // database directories, family files, table files, "-"
    LINT_TARGET m_target = LINT_TARGET::BY_CONTENT;  // of a file
    LINT_FORMAT m_format = LINT_FORMAT::TEXT;
    LINT_CARET m_caret = LINT_CARET::ON_TERMINALS;
    LINT_FILTER m_filter;
    bool m_warnings_are_errors = false;
    std::optional<std::string> m_within;   // the family file that includes the files to look at
    std::optional<std::string> m_explain;  // the rule that is asked for; empty: all
};

enum class LINT_VERDICT
{
    CLEAN,     // nothing that counts
    WARNINGS,  // which count as errors
    ERRORS,
    UNREADABLE  // something could not be looked at
};

// Looks at a database and writes the messages while it does. Of UNREADABLE, `problem` receives why.
LINT_VERDICT lint(const LINT_REQUEST& request, OUTPUT_STREAM* output, std::string* problem);

// What a rule is about, what causes it and what cures it; of an empty name, all rules in a list.
// Throws a USAGE_ERROR for an unknown name.
std::string explain_rule(const std::string& name);
