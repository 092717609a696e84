// What a setting costs, term by term.
//
// Of settings that meet every output a synthesis takes the cheapest. The weights order the
// criteria: post-scale, near misses, cascades, then the rest. The weights and the order of the sum
// are part of the answer; see docs/search.md.
#pragma once

#include "pll_export.h"

class PLL;
class PLL_PROP;
struct PLL_BANDWIDTH_SETTING;

// The terms of PLL::m_cost. All are 0 or more; a smaller sum is better.
struct PLL_COST_TERMS
{
    double m_cascades = 0.0;  // 4096 for each pair of counters in a row
    double m_near_misses =
        0.0;                    // 8192 and the relative errors in thousandths, unless all are exact
    double m_post_scale = 0.0;  // 65536 for each step above 1
    double m_table_row = 0.0;   // of the row that was taken: bandwidth wish and PFD rule
    double m_phases = 0.0;      // degrees of the input clock that the phases miss
    double m_duty_cycles = 0.0;  // parts of one that the duty cycles miss, counts cut off
    double m_even_counts = 0.0;  // 262144 for each output with odd halves that wishes for even ones
    double m_preferred_m = 0.0;  // 5 for each M outside the device's preferred range
    double m_ratio_limit = 0.0;  // division over current where the device limits it, and 32768

    // The sum of the terms. Equals PLL::m_cost to rounding: a synthesis adds in another order.
    double total() const;
};

// The terms for a PLL whose last synthesis met `request`. All 0 unless the outcome's kind is MET or
// REFUSED: other settings are ranked by their error alone. A loop filter that multiplied M and N
// after the search changes no term.
PLL_API PLL_COST_TERMS pll_get_cost_terms(const PLL& pll, const PLL_PROP& request);

// What one row of the bandwidth table costs a setting.
struct PLL_ROW_COST
{
    const PLL_BANDWIDTH_SETTING* m_row = nullptr;  // owned by the device record
    double m_pfd_cost = 0.0;      // fast bandwidth above what the PFD of an input clock allows
    double m_wish_cost = 0.0;     // distance from the bandwidth asked for
    double m_cost = 0.0;          // of both; a row of 2147483647 or more is never taken
    bool m_is_looked_at = false;  // the search stops at the first row that costs nothing
    bool m_is_taken = false;
};

// Writes the costs of the rows for the division that the loop of `pll` has, in the order of the
// table, to at most `most` entries of `rows`. Returns how many rows there are, which may be more;
// 0 without a table or without rows for the division. `rows` may be null when `most` is 0.
PLL_API int pll_get_row_costs(const PLL& pll, const PLL_PROP& request, PLL_ROW_COST* rows,
                              int most);

// The largest bandwidth that a row may have at its fast corner, in Hz: the PFD frequency of the
// slower input clock over the device's multiplier. Infinite where there is no multiplier; 0 without
// a device.
PLL_API double pll_get_largest_bandwidth(const PLL& pll, const PLL_PROP& request);

// What the loop of `pll` divides by: M x post-scale x the count of the output in the feedback. The
// bandwidth table is indexed by it. Computed modulo 2^32.
PLL_API int pll_get_effective_m(const PLL& pll);
