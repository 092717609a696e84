// Lint: what is wrong with a device database, for those who write one. The readers of the library
// tell an observer what they see; that becomes messages here, to which the checks of what reads
// well but cannot work add theirs; a printer writes them.
#pragma once

#include <string>

enum class LINT_FORMAT
{
    TEXT,
    JSON,
    SARIF
};

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
    std::string m_path;  // a database directory, a family file or a table file
    LINT_TARGET m_target = LINT_TARGET::BY_CONTENT;  // of a file
    LINT_FORMAT m_format = LINT_FORMAT::TEXT;
    LINT_CARET m_caret = LINT_CARET::ON_TERMINALS;
    bool m_warnings_are_errors = false;
};

enum class LINT_VERDICT
{
    CLEAN,     // nothing that counts
    WARNINGS,  // which count as errors
    ERRORS,
    UNREADABLE  // nothing could be looked at
};

// Looks at a database. `text` receives the messages; of UNREADABLE, `problem` receives why.
LINT_VERDICT lint(const LINT_REQUEST& request, std::string* text, std::string* problem);
