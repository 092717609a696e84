// Other settings that meet a request, best first.
//
// Each is the library's answer to the request with a wish for its VCO ratio besides, so the command
// that asks for that ratio gives it again.
#pragma once

#include "advice/answer/answer.h"

#include <memory>
#include <string>
#include <vector>

namespace advice {

// What settings are ranked by.
enum class CRITERION
{
    LIBRARY,      // the library's cost
    WORST_ERROR,  // the largest error of an output, least first
    VCO_HIGHEST,
    VCO_LOWEST,
    PFD_HIGHEST,
    FEWEST_COUNTERS,
    PHASE_STEP,    // the coarsest phase step of an output, finest first
    BANDWIDTH,     // nearest to the one asked for, else narrowest
    PHASE_MARGIN,  // largest first
    COUNT
};

// "library", "worst-error", "vco-highest" ...: as an option names it.
const char* name_of(CRITERION criterion);

struct ALTERNATIVE
{
    REQUEST m_request;                 // the request, with the VCO ratio of the setting
    std::unique_ptr<ANSWER> m_answer;  // met
    double m_rank = 0.0;               // what it is ranked by; less is better
    std::string m_reason;              // why it comes after the first; empty for the first
};

// The best `most` settings with distinct VCO ratios. In the library's order the answer to the
// request itself is the first. Empty when the request is not met.
std::vector<ALTERNATIVE> find_alternatives(const REQUEST& request, const LIMITS& limits,
                                           CRITERION criterion, std::size_t most);

}  // namespace advice
