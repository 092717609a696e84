// The reader of family files and the keywords that it knows.
#pragma once

#include "pll_info.h"
#include "pll_manager.h"

#include "database/files/input_file.h"

#include <span>

// What must have been said before a statement can have an effect; without it the statement is
// skipped, operands unseen.
enum class PLL_SCOPE
{
    ANYWHERE,     // nothing
    FAMILY,       // a family
    PLL_TYPE,     // a family and a PLL type
    SPEED_GRADE,  // a family, a PLL type and a speed grade
    PART,         // a part
    RECONFIG      // a reconfiguration type
};

// The operands of a statement. A statement whose operands are missing or malformed is an error,
// except that names, words and flags may be missing here.
enum class PLL_OPERAND_KIND
{
    NAME,               // a word that may be quoted
    WORD,               // a word without quotes
    NUMBER,             // a decimal integer
    POST_SCALE_NUMBER,  // two of them: VCO post-scale and value
    REAL,               // a real number that is not zero
    FLAG,               // true, yes or on; anything else is false
    SORTED_NUMBERS,     // one or more integers, sorted ascending
    NUMBERS,            // one or more integers in file order
    COUNTERS            // one or more names of counters up to "end"
};

// The operands that were read; which of them are set follows from their kind.
struct PLL_OPERANDS
{
    PLL_OPERANDS() = default;
    ~PLL_OPERANDS();
    PLL_OPERANDS(const PLL_OPERANDS&) = delete;
    PLL_OPERANDS& operator=(const PLL_OPERANDS&) = delete;

    const char* m_name = nullptr;
    int m_number = 0;
    int m_post_scale = -1;  // of a value without one: all of them
    double m_real = 0.0;
    bool m_flag = false;
    int m_count = 0;  // of m_numbers or m_counters
    int* m_numbers = nullptr;
    CDB_PLL_COUNTER_TYPE_ENUM* m_counters = nullptr;
};

// The files being read, the including ones below the included one.
class PLL_INCLUDE_STACK
{
public:
    PLL_INCLUDE_STACK();
    ~PLL_INCLUDE_STACK();
    PLL_INCLUDE_STACK(const PLL_INCLUDE_STACK&) = delete;
    PLL_INCLUDE_STACK& operator=(const PLL_INCLUDE_STACK&) = delete;

    // True when no further file may be opened: the stack is full, or so many files were read that
    // they must include each other.
    bool is_full() const;

    // True when it is for the depth of the stack.
    bool is_deep() const { return m_depth >= MAX_DEPTH; }

    // Opens a file and reads on in it; false when it cannot be opened. Only legal while not full.
    // Takes the name over.
    bool open(char* name);

    // Reads the next line, closing files that are at their end; false when all are.
    bool read_line(char* line);

    // The file that the last line came from and its name, until a file is opened.
    const PLL_INPUT_FILE& current() const { return m_files[m_depth - 1]; }
    const char* current_name() const { return m_names[m_depth - 1]; }

    int opened_files() const { return m_opened_files; }

private:
    static constexpr int MAX_DEPTH = 8;
    static constexpr int MAX_OPENED_FILES = 1000;

    int m_depth;
    int m_opened_files;
    PLL_INPUT_FILE m_files[MAX_DEPTH];
    char* m_names[MAX_DEPTH];  // owned
};

class PLL_STATEMENT_WATCH;

// Reads one family file with what it includes, and keeps what its statements refer to.
class PLL_FAMILY_FILE_READER
{
public:
    // `manager` and `path`, the family's directory, must outlive the reader.
    PLL_FAMILY_FILE_READER(PLL_MANAGER* manager, const char* path);
    ~PLL_FAMILY_FILE_READER();
    PLL_FAMILY_FILE_READER(const PLL_FAMILY_FILE_READER&) = delete;
    PLL_FAMILY_FILE_READER& operator=(const PLL_FAMILY_FILE_READER&) = delete;

    // Reads the file and the bandwidth tables that it names; false at the first error.
    bool read(const char* file_name);

    // Opens `name` in the family's directory and reads on in it. False when it cannot be opened,
    // which `is_out_of_memory` tells from exhausted memory.
    bool open(const char* name, bool* is_out_of_memory);

    // Names the table file of the current PLL type; false when memory is exhausted.
    bool set_table_file(const char* name);

    bool is_in_scope(PLL_SCOPE scope) const;

    // True for the family's directory and file that are being read.
    bool is_reading(const char* path, const char* file_name) const;

    // The records that statements write to; only within their scopes.
    PLL_BASIC_INFO* basic_info() const { return &m_family->m_basic_infos[m_type]; }
    PLL_TIMING_INFO* timing_info() const { return &m_part->m_timing_info; }

    PLL_MANAGER* m_manager;
    PLL_INCLUDE_STACK m_files;
    PLL_FAMILY_INFO* m_family;  // each of these is set by its own statement and by no other
    PLL_TYPE_ENUM m_type;       // PLL_TYPE_MAX: none
    const char* m_speed_grade;
    PLL_PART_INFO* m_part;
    PLL_RECONFIG_INFO* m_reconfig;

private:
    bool read_file(PLL_STATEMENT_WATCH* watch);
    bool read_statements(PLL_STATEMENT_WATCH* watch);
    bool read_statement(const char* keyword, char* operands);
    bool finish_family();

    const char* m_path;
    const char* m_file_name;  // of the file at the bottom; null before it is read
    PLL_TYPE_BANDWIDTH_FILE_LIST m_table_files;  // at most one entry for each PLL type; owned
};

// One keyword: where it may stand, what follows it and what it does. The setter gives false when
// the statement is an error.
struct PLL_KEYWORD
{
    typedef bool (*SETTER)(PLL_FAMILY_FILE_READER& reader, const PLL_OPERANDS& operands);

    const char* m_keyword;
    PLL_SCOPE m_scope;
    PLL_OPERAND_KIND m_kind;
    SETTER m_set;
};

// All keywords, in alphabetical order.
std::span<const PLL_KEYWORD> get_keywords();

// The keyword `name`, whatever its case; null when there is none.
const PLL_KEYWORD* find_keyword(const char* name);

// Ends a list of counters before its line does.
inline constexpr char END_OF_LIST[] = "end";

// Reads operands from the rest of a line; false when they are missing or malformed.
bool read_operands(const PLL_MANAGER& manager, PLL_OPERAND_KIND kind, char* line,
                   PLL_OPERANDS* operands);
