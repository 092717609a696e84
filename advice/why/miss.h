// Why the library found no setting, or none that it takes for met: its own text, what stood in the
// way and by how much.
#pragma once

#include "advice/answer/answer.h"

#include <string>
#include <vector>

namespace advice {

// A line each, most important first. Empty when the library takes the request for met.
std::vector<std::string> explain_miss(const REQUEST& request, const LIMITS& limits,
                                      const ANSWER& answer);

// The longest VCO period of a post-scale, which a spread may shorten.
int vco_max_period(const REQUEST& request, const PLL& pll, int post_scale);

// The post-scale of the answer; without one, that which the closest miss comes closest in.
int settled_post_scale(const REQUEST& request, const ANSWER& answer);

}  // namespace advice
