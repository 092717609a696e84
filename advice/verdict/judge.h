// The two halves of a verdict, and what both look at.
#pragma once

#include "advice/verdict/achieved.h"
#include "advice/verdict/verdict.h"

#include <vector>

namespace advice {

struct JUDGE_INPUT
{
    const REQUEST& m_request;
    const LIMITS& m_limits;
    const PLL& m_pll;
    const PLL_PROP& m_prop;  // what the library says that the PLL achieves
    const ACHIEVED& m_achieved;
    bool m_has_setting;  // false: the counters are those of the nearest miss and mean nothing
};

// Appends a judgement for each wish, outputs first.
void judge_wishes(const JUDGE_INPUT& input, std::vector<JUDGED_WISH>* wishes);

// Appends a judgement for each limit; without a setting only for those of the inputs.
void judge_limits(const JUDGE_INPUT& input, std::vector<JUDGED_LIMIT>* limits);

}  // namespace advice
