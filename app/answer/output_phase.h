// The phase of an output in its own degrees.
#pragma once

#include "app/answer/answer.h"

// `achieved` holds what the counters of `pll` achieve for the request.
OUTPUT_PHASE find_phase(const REQUEST& request, const PLL& pll, const PLL_PROP& achieved,
                        std::size_t output);
