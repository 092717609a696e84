// The reader of bandwidth settings table files.
#pragma once

#include "pll_info.h"

#include "database/files/fault.h"

#include <cstddef>

namespace pll_internal {

// In the place of a file name: there is no table.
inline constexpr char UNUSED_TABLE_FILE[] = "unused";

class PLL_READ_BUDGET;

// What the columns of one row came to.
struct PLL_TABLE_ROW
{
    PLL_FINDING m_reason;                // why it is not stored or fails, NONE when it is good
    int m_m;                             // its M; 0 when that cannot be read
    const PLL_BANDWIDTH_SETTING* m_row;  // where it is stored; null: it is not
};

// Listens to the reader of a table: sees every character once, in order, and between them what the
// reader makes of it.
class PLL_TABLE_LISTENER
{
public:
    PLL_TABLE_LISTENER() = default;
    virtual ~PLL_TABLE_LISTENER() = default;
    PLL_TABLE_LISTENER(const PLL_TABLE_LISTENER&) = delete;
    PLL_TABLE_LISTENER& operator=(const PLL_TABLE_LISTENER&) = delete;

    // The next characters of the file, which the reader has passed.
    virtual void see(const char* text, std::size_t size) = 0;

    // What is wrong with the table as a whole.
    virtual void hear_of_table(const PLL_FAULT& fault) = 0;

    // The format word up to the blank that ends it, or without one: MISSING, UNENDED or NONE.
    virtual void hear_of_format(PLL_FINDING finding, const char* word) = 0;

    // A row begins here, and its next column; blanks may come first. After the last column that
    // could be read, and after the rest of the line.
    virtual void begin_row() = 0;
    virtual void begin_column() = 0;
    virtual void end_columns() = 0;
    virtual void end_row(const PLL_TABLE_ROW& row, int largest_m) = 0;

    // The table ends here; what the listener sees from now on is not part of it.
    virtual void end_table(PLL_FINDING finding) = 0;
    virtual void end_file() = 0;
};

// Reads a table file into the record of a PLL type, as large as its counters ask for. Returns why
// it cannot be read, NONE when it can. `listener` may be null.
PLL_FINDING read_table_file(PLL_BASIC_INFO* info, const char* file_name, PLL_READ_BUDGET* budget,
                            PLL_TABLE_LISTENER* listener);

}  // namespace pll_internal
