// The setting of a PLL as plain data: every counter, tap, delay and component, and nothing that
// follows from them. A setting that somebody hands over is put into a PLL to be judged.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include <string>
#include <vector>

class PLL;
class PLL_PROP;

namespace advice {

constexpr int FED_BY_VCO = -1;

// The M or the N counter.
struct LOOP_COUNTER
{
    int m_count = 1;
    int m_initial = 1;       // start count, from 1
    int m_vco_tap = 0;       // phase tap, 0 to 7
    int m_delay = 0;         // ps, of the delay chain
    int m_spread_count = 1;  // the second count of a spread
};

// An output counter, or one that a cascade takes.
struct OUTPUT_COUNTER
{
    int m_high = 1;
    int m_low = 0;
    bool m_even = true;  // false: the high phase is half a VCO period shorter
    bool m_bypass = true;
    int m_initial = 1;
    int m_vco_tap = 0;
    int m_fed_by = FED_BY_VCO;  // index of the counter that feeds it
    int m_delay = 0;            // ps, of the delay chain
};

// uA, ohm, pF, pF.
struct COMPONENTS
{
    double m_i = 0.0;
    double m_r = 0.0;
    double m_c_fixed = 0.0;
    double m_c_high = 0.0;
};

struct SETTING
{
    LOOP_COUNTER m_m;
    LOOP_COUNTER m_n;
    int m_post_scale = 1;
    int m_feedback = NO_OUTPUT;              // index of the output that is fed back; NO_OUTPUT: M
    int m_spread_cycles = 0;                 // input periods of one modulation period; 0: no spread
    std::vector<OUTPUT_COUNTER> m_counters;  // outputs first, then the counters of cascades
    COMPONENTS m_components;
};

// The setting that a PLL has.
SETTING setting_of(const PLL& pll);

// Gives the limits and a setting without a problem to a PLL that was made for the outputs of the
// request.
void put_into(const SETTING& setting, const REQUEST& request, const LIMITS& limits, PLL* pll);

// Fills in what the library says that a PLL achieves for a request.
void find_properties(const REQUEST& request, const PLL& pll, PLL_PROP* achieved);

}  // namespace advice
