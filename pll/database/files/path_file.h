// The reader of path files.
#pragma once

#include "database/files/read_budget.h"

class PLL_MANAGER;
class PLL_FAMILY_INFO;

namespace pll_internal {

class PLL_PATH_LISTENER : public PLL_LINE_LISTENER
{
public:
    // The line names a family: its name as it is written, in the line, and its record.
    virtual void hear_of_family(const char* name, const PLL_FAMILY_INFO* family) = 0;
};

// Reads the path file of a directory, which ends with a slash, into the manager: the families that
// it names, their directories and files. Returns why it cannot be read, NONE when it names a
// family. `listener` may be null.
PLL_FINDING read_path_file(PLL_MANAGER* manager, const char* directory, PLL_READ_BUDGET* budget,
                           PLL_PATH_LISTENER* listener);

}  // namespace pll_internal
