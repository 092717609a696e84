// The rows of a bandwidth table that come closest to a loop for which none can be taken.
#pragma once

#include "advice/answer/answer.h"

#include <string>
#include <vector>

namespace advice {

// The rows of the loop's division that exceed the largest bandwidth least, at most three, with by
// how much. Empty without rows.
std::vector<std::string> list_rows_near_bandwidth(const REQUEST& request, const ANSWER& answer);

// The nearest divisions below and above the loop's that the table has rows for, with how many and
// their bandwidths. Empty without a table.
std::vector<std::string> list_rows_near_division(const PLL& pll);

}  // namespace advice
