// What the readers of a device database see. To their callers they say only whether a file could be
// read; an observer hears of every line that holds something: where it stands, what became of it
// and, where that is not what its author can have meant, what would have been right.
//
//   class PRINTER : public PLL_READ_OBSERVER { ... };
//   PRINTER printer;
//   PLL_MANAGER manager;
//   manager.set_observer(&printer);
//   manager.read("devices");
//
// Reading gives the same result with an observer as without one.
#pragma once

#include "pll_export.h"
#include "pll_info.h"

class PLL_FAMILY_INFO;
class PLL_PART_INFO;

// What can be wrong with a file. Each has a name that does not change: pll_get_finding_name.
enum class PLL_FINDING
{
    // The file, or what it belongs to, cannot be read.
    PATH_FILE_NOT_OPENED,
    NO_FAMILY,            // a path file without a line that names one
    FAMILY_WITHOUT_FILE,  // the path file names the family, but no file of it
    FAMILY_FILE_NOT_OPENED,
    NO_STATEMENT,  // a family file of comments and blank lines
    UNKNOWN_KEYWORD,
    UNKNOWN_PLL_TYPE,  // or none
    NAME_MISSING,
    NUMBER_EXPECTED,   // digits only
    REAL_EXPECTED,     // any number but zero
    LIST_EMPTY,        // one value at least
    INCLUDE_TOO_DEEP,  // files that include each other, eight of them open
    TOO_MANY_FILES,    // a thousand files in one reading
    TABLE_NOT_OPENED,
    TABLE_TOO_LARGE,        // more groups than a table may have, or fewer than none
    TABLE_FORMAT_MISSING,   // no blank ends the format word
    TABLE_NUMBER_EXPECTED,  // a column that is missing, no number or too large
    TABLE_LINE_UNFINISHED,  // no line break after the last row
    TABLE_WITHOUT_ROWS,
    READ_FAILED,          // the system cannot read on in a file: what was read of it may be cut
    OUT_OF_MEMORY,        // nothing is wrong with the file
    TOO_MANY_BYTES,       // of all files of a reading: beyond the host's limit, PLL_READ_LIMITS
    TOO_MANY_STATEMENTS,  // likewise, of a family; table groups are TABLE_TOO_LARGE
    FILE_REFUSED,         // outside of the database's directory, to which the host confines us

    // The file is read, and this part of it has no effect or another one than it seems to have.
    OUT_OF_SCOPE,  // a keyword before the one that gives it a place
    INCLUDE_NOT_OPENED,
    UNKNOWN_RECONFIG_TYPE,
    QUOTED_RECONFIG_TYPE,  // which makes it unknown
    UNKNOWN_COUNTER,
    UNKNOWN_FLAG,          // counts as false
    EXTRA_WORDS,           // after the last operand
    LIST_CUT_SHORT,        // by a word that is no number
    NUMBER_CUT,            // to 32 bits
    POST_SCALE_TOO_LARGE,  // above PLL_VCO_POST_SCALE_MAX
    LINE_CUT,              // after 1023 characters
    LINE_WITH_NUL,         // where it ends
    PART_IN_OTHER_GRADE,   // known in another speed grade, whose limits are overwritten
    FOREIGN_FAMILY,        // gets a part, so that its own file will not be read
    TABLE_FORMAT_UNENDED,  // the format word runs on over a tab or a line break
    ROW_OVER_LINES,        // a row that takes its last columns from the next line
    ROW_WITHOUT_GROUP,     // for an M that the counters cannot make
    ROWS_AFTER_EMPTY_LINE,
    CARRIAGE_RETURN_LINE,  // looks empty, but does not end the table
    FILE_OUTSIDE,          // of the database's directory: other copies of that will lack it

    NONE
};

// The stable name of a finding, such as "unknown-keyword"; empty for NONE.
PLL_API const char* pll_get_finding_name(PLL_FINDING finding);

// True when the finding makes reading fail.
PLL_API bool pll_is_read_error(PLL_FINDING finding);

// Sets of words that the format knows.
enum class PLL_VOCABULARY
{
    NONE,
    KEYWORDS,
    PLL_TYPES,
    RECONFIG_TYPES,
    COUNTERS,
    FLAGS
};

// The words of a vocabulary as the format spells them; null outside it.
PLL_API const char* pll_get_word(PLL_VOCABULARY vocabulary, int index);

// A place in a file.
struct PLL_SOURCE_PLACE
{
    const char* m_file = "";  // as it was opened
    int m_line = 0;           // from 1; 0: the file as a whole
    int m_column = 0;         // from 1, in bytes; 0: the line as a whole
    int m_length = 0;         // of the word that stands there, in bytes

    // The file lies outside of the database's directory. It may be anyone's: findings on it come
    // without words and columns, and of what it holds nothing should be shown.
    bool m_is_outside = false;
};

struct PLL_READ_FINDING
{
    PLL_FINDING m_finding = PLL_FINDING::NONE;
    PLL_SOURCE_PLACE m_place;
    const char* m_keyword = "";  // of the statement, as the format spells it; empty elsewhere
    const char* m_word = "";     // as it is written, without quotes; empty where one is missing
    const char* m_needed = "";   // OUT_OF_SCOPE: the keyword that must come first
    PLL_VOCABULARY m_vocabulary = PLL_VOCABULARY::NONE;  // holds the words that would be right
    const PLL_FAMILY_INFO* m_family = nullptr;           // that it is about; null: none
    PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;                 // likewise
    const PLL_PART_INFO* m_part = nullptr;               // likewise
    long long m_value = 0;  // M of a row, groups of a table, number after it was cut
    long long m_limit = 0;  // what that must not exceed

    // Why a file cannot be opened or read: an error number of the system (errno.h), or
    // PLL_NOT_A_REGULAR_FILE; 0: it is not the system's doing.
    int m_system_error = 0;
};

// A directory, a pipe or a device: no database is read from one.
inline constexpr int PLL_NOT_A_REGULAR_FILE = -1;

// What a line was read as.
enum class PLL_READ_KIND
{
    PATH_LINE,  // of the path file
    STATEMENT,  // of a family file
    TABLE_ROW
};

// What became of it.
enum class PLL_READ_RESULT
{
    STORED,
    SKIPPED,
    FAILED  // ends the reading
};

struct PLL_READ_STATEMENT
{
    PLL_READ_KIND m_kind = PLL_READ_KIND::STATEMENT;
    PLL_READ_RESULT m_result = PLL_READ_RESULT::STORED;
    PLL_FINDING m_reason = PLL_FINDING::NONE;  // why it was skipped or failed
    PLL_SOURCE_PLACE m_place;
    const char* m_keyword = "";  // of a statement, as the format spells it

    // Where it went: the deepest of them. All are as the statement left them.
    const PLL_FAMILY_INFO* m_family = nullptr;
    PLL_TYPE_ENUM m_type = PLL_TYPE_MAX;
    const char* m_speed_grade = nullptr;
    const PLL_PART_INFO* m_part = nullptr;
    const PLL_BANDWIDTH_SETTING* m_row = nullptr;  // of a table, while it is stored
};

// Hears what the readers see, in the order of reading, the findings of a line before the line
// itself. Texts and places are valid during the call only, records as long as the manager. What it
// throws is dropped. It must not call the manager.
class PLL_API PLL_READ_OBSERVER
{
public:
    PLL_READ_OBSERVER() = default;
    virtual ~PLL_READ_OBSERVER();
    PLL_READ_OBSERVER(const PLL_READ_OBSERVER&) = delete;
    PLL_READ_OBSERVER& operator=(const PLL_READ_OBSERVER&) = delete;

    virtual void on_statement(const PLL_READ_STATEMENT& statement) = 0;
    virtual void on_finding(const PLL_READ_FINDING& finding) = 0;
};

// pll_read_bandwidth_settings_table_file (pll_manager.h) under the eyes of an observer; null: none.
PLL_API bool pll_observe_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                                       const char* file_name,
                                                       PLL_READ_OBSERVER* observer);
