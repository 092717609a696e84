// The smallest conflict of a request that is not met: wishes and limits that cannot be kept
// together, though any of them can be dropped and the others be kept.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include <string>
#include <vector>

namespace advice {

// The wishes and limits of a conflict, as texts: "output 1 at 148.5 MHz", "vco_max, 1000 MHz (built
// in)". Empty when the request is met, or when something that cannot be dropped rules it out. Each
// step asks the library; their number is bounded.
std::vector<std::string> find_conflict(const REQUEST& request, const LIMITS& limits);

// As one sentence; empty for no conflict.
std::string describe_conflict(const std::vector<std::string>& conflict);

}  // namespace advice
