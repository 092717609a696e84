// Which counter or range ended, at which value, and which value the request needed. Only what the
// limits alone rule out is said: no search is asked.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include <string>
#include <vector>

namespace advice {

// A sentence for each counter that ends too early: "output 1 needs a division of the VCO by 300000
// or more; the largest is 1024". Empty when no single counter rules the request out.
std::vector<std::string> explain_needs(const REQUEST& request, const LIMITS& limits);

// The smallest or largest value of a kind of limit at any post-scale; invalid when there is none.
RATIONAL outermost(const LIMITS& limits, LIMIT_KIND kind);

}  // namespace advice
