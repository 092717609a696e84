// What one reading of a database takes, and what it may take.
#pragma once

#include "pll_manager.h"

#include "database/files/fault.h"

namespace pll_internal {

// One reading: of a path file, or of a family file with its includes and tables. Limits that are 0
// are none.
class PLL_READ_BUDGET
{
public:
    // `directory` is that of the database, or of the family where that is not known; null: files
    // lie nowhere outside. It must outlive the budget.
    PLL_READ_BUDGET(const PLL_READ_LIMITS& limits, const char* directory);

    // Take what a file, a family or a table is about to need. False when the limit forbids it.
    bool take_bytes(long long bytes);
    bool take_statement();
    bool take_groups(long long groups);

    const PLL_READ_LIMITS& limits() const { return m_limits; }

    // Where a file lies: NONE inside of the directory, links followed, FILE_OUTSIDE or, where the
    // limits confine the reading, FILE_REFUSED outside. Files that do not exist are inside. Unless
    // confined, NONE at once when nobody is `heard`.
    PLL_FINDING judge_place(const char* file, bool is_heard) const;

private:
    PLL_READ_LIMITS m_limits;
    const char* m_directory;
    long long m_bytes = 0;
    long long m_statements = 0;
    long long m_groups = 0;
};

// What is wrong with a file that cannot be opened, or read on after the error of PLL_INPUT_FILE.
PLL_FAULT fault_of_system(PLL_FINDING finding, int error);
PLL_FAULT fault_of_reading(int error, const PLL_READ_BUDGET& budget);

}  // namespace pll_internal
