// The answer to a request: a setting of the PLL, what it achieves, and the verdict on it.
//
//   const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
//   if (answer.is_met()) use(answer.get_pll());
//
// The library's own answer comes first. When it misses a wish or a limit, the thorough search goes
// on among the VCO ratios that the counters can make, asks the library for each that keeps every
// output within its tolerance, and takes the cheapest whose verdict is met.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"
#include "advice/verdict/verdict.h"

#include "pll.h"
#include "pll_prop.h"

#include <vector>

namespace advice {

enum class EFFORT
{
    FIRST_ANSWER_ONLY,  // no further search, few allocations
    THOROUGH
};

// The phase of an output in degrees of that output: 360 are one of its periods. Not a number where
// there is none.
struct OUTPUT_PHASE
{
    double m_asked = 0.0;
    double m_achieved = 0.0;
    double m_previous = 0.0;  // the neighbours that this setting can be stepped to
    double m_next = 0.0;
    double m_step = 0.0;  // one VCO tap
};

// How an output comes out.
struct OUTPUT_RESULT
{
    RATIONAL m_ratio;      // achieved, to the input
    RATIONAL m_frequency;  // Hz; invalid when it does not fit
    RATIONAL m_error;      // achieved / asked - 1; invalid when it does not fit
    OUTPUT_PHASE m_phase;
    RATIONAL m_duty;        // percent
    bool m_missed = false;  // a wish of this output is not kept
};

}  // namespace advice
