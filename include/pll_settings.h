// The settings that are legal for a request: listed one by one, and counted limit by limit.
//
// A setting is a VCO post-scale, an M and an N. Limits of the VCO, the PFD and the second input
// clock bind it, and so do down spread and a custom bandwidth. Outputs do not: whether the counters
// meet them is a property of a legal setting. The order is always that of a synthesis: post-scale,
// then M, then N, each ascending.
#pragma once

#include "pll_export.h"
#include "pll_info.h"

#include <cstdint>

class PLL;
class PLL_PROP;

// One legal setting.
struct PLL_SETTING
{
    int m_post_scale;
    int m_m;
    int m_n;
    double m_vco_period;  // ps, behind the post-scale: input period x N / M
    double m_pfd_period;  // ps: input period x N
    int m_vco_mult;       // M / N reduced: VCO frequency over input frequency
    int m_vco_div;
};

// Hears of one setting. `context` is the caller's. Returns false to end the walk.
typedef bool (*PLL_SETTING_VISITOR)(const PLL_SETTING& setting, void* context);

// Visits every setting that PLL::synthesize may try for `request`. It leaves out the cut-off of an
// automatic bandwidth, which depends on what was met on the way. Returns false when the visitor
// ended the walk, true at the end. Costs a step per legal setting and a few per M; allocates
// nothing. What the visitor throws passes through.
PLL_API bool pll_walk_settings(const PLL& pll, const PLL_PROP& request, PLL_SETTING_VISITOR visitor,
                               void* context);

// How many settings each limit leaves, of all that the counters can make.
struct PLL_SETTING_COUNTS
{
    std::int64_t m_all = 0;      // post-scales x M (from 2) x N
    std::int64_t m_vco = 0;      // VCO period in its range, whatever the rest
    std::int64_t m_pfd = 0;      // PFD period in its range, whatever the rest
    std::int64_t m_vco_pfd = 0;  // both

    // Of those in m_vco_pfd, each alone:
    std::int64_t m_second_input = 0;  // VCO and PFD legal with the second input clock too
    std::int64_t m_spread = 0;        // M large enough for the down spread to change it
    std::int64_t m_bandwidth = 0;     // components can make the custom bandwidth at this M

    std::int64_t m_legal = 0;  // all of the above together

    // Of those in m_legal: output i is met within a thousandth, its counter in range, cascades and
    // feedback included; and all outputs are.
    std::int64_t m_output_met[PLL_MAX_TAPS] = {};
    std::int64_t m_all_met = 0;

    // False when `most` cut the counting short: the counts of met outputs are then those of the
    // first `most` legal settings, the others those of the first `most` rows.
    bool m_is_complete = true;
};

// Counts the settings for `request`. Looks at no more than `most` rows (post-scale and M) and at no
// more than `most` legal settings. Costs a few steps per row, and one per output of a legal
// setting. Allocates nothing. M and PFD ranges that no request can fill count as 0, never as an
// error.
PLL_API PLL_SETTING_COUNTS pll_count_settings(const PLL& pll, const PLL_PROP& request,
                                              std::int64_t most);
