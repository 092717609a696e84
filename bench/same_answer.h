// Whether the library and the lean loop come to the same.
#pragma once

#include "lean_loop.h"

// After a synthesis: counters, post-scale and, of an exact answer, cost, the halves and phases of
// all outputs and what lies next to them.
bool is_same_answer(const PLL& pll, const LEAN_ANSWER& answer);

// After a listing.
bool is_same_list(int count, const int* mults, const int* divs,
                  const std::vector<LEAN_RATIO>& ratios);
