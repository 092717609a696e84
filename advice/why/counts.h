// What each limit leaves of the settings that the counters can make, and how many of those meet
// each output.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include <string>
#include <vector>

namespace advice {

// A line for each limit and for each output, in the order in which a search meets them. Limits of
// the second input clock, the spread and the bandwidth appear when they are asked for. Counts at
// most 2,000,000 rows and settings, and says when that was too few.
std::vector<std::string> count_settings(const REQUEST& request, const LIMITS& limits);

}  // namespace advice
