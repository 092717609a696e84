// What the database's readers do with its records beyond the public operations.
#pragma once

class PLL_FAMILY_INFO;

namespace pll_internal {

// Rebuilds the list of speed grades that have a listed part; false, with an empty list, when memory
// is exhausted.
bool rebuild_listed_speed_grades(PLL_FAMILY_INFO* family);

}  // namespace pll_internal
