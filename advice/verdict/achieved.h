// What the counters of a PLL make of its input, exactly.
//
// With M and N as the counts of feedback and input (M times the count of the feedback output, when
// an output is fed back), the VCO runs at fin x M / N behind its post-scale, and an output behind
// counters c1, c2, ... at fin x M / (N x c1 x c2 x ...). A VCO phase of p degrees is p / (c1 x c2 x
// ...) degrees of that output.
#pragma once

#include "advice/numbers/rational.h"
#include "advice/request/request.h"

#include "pll_info.h"

#include <array>
#include <cstdint>

class PLL;
class PLL_OUTPUT_TAP;
class PLL_PROP;

namespace advice {

struct ACHIEVED_OUTPUT
{
    RATIONAL m_ratio;      // to the input
    RATIONAL m_frequency;  // Hz; invalid when it does not fit
    RATIONAL m_division;   // of the VCO behind its post-scale, cascades multiplied
    RATIONAL m_phase;      // degrees of this output, against the input
    RATIONAL m_duty;       // percent; 50 where the counter is bypassed
};

struct ACHIEVED
{
    RATIONAL m_vco_ratio;    // VCO behind its post-scale, to the input
    RATIONAL m_spread;       // percent down; 0: off
    RATIONAL m_spread_rate;  // Hz; 0: off
    int m_outputs = 0;
    std::array<ACHIEVED_OUTPUT, PLL_MAX_TAPS> m_output;
};

// What an output counter divides by; hostile halves do not overflow.
std::int64_t count_of(const PLL_OUTPUT_TAP& tap);

// The exact figures of a setting for the request's input; phases and duty cycles too.
ACHIEVED find_achieved(const REQUEST& request, const PLL& pll);

// Phase margin of the loop in degrees, from its zero, pole and bandwidth, or the least that the
// table's row gives; not a number when neither is known.
double find_phase_margin(const PLL_PROP& achieved);

}  // namespace advice
