// What a search reads of the PLL and the request, read once: nothing later asks them again for a
// limit or a ratio.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/ratio_error.h"

namespace pll_internal {

// The request's loop bandwidth as the search uses it.
struct BANDWIDTH_WISH
{
    int m_type;          // PLL_BANDWIDTH_TYPE, or what the request holds instead
    double m_bandwidth;  // Hz, of a custom wish
    bool m_table_mode;   // the device's table decides, so the search itself asks for nothing

    bool is_custom() const { return m_type == PLL_BANDWIDTH_CUSTOM && !m_table_mode; }
};

// The periods that a VCO may have at one post-scale, in ps, before the tolerance.
struct VCO_LIMITS
{
    double m_min;
    double m_max;
    int m_center;
};

// All that the search reads of the PLL and the request, read once.
struct SEARCH_LIMITS
{
    int m_fin_period;   // ps
    int m_fin2_period;  // ps; 0 or less: none
    int m_m_max;
    int m_n_min;
    int m_n_max;
    int m_max_post_scale;
    double m_pfd_min;  // ps
    double m_pfd_max;  // ps
    double m_down_spread;
    bool m_spread;   // down spread is asked for
    bool m_cut_off;  // automatic bandwidth: M need not exceed four times the smallest exact one
    BANDWIDTH_WISH m_wish;
    int m_product_min;  // charge-pump current x resistor
    int m_product_max;
    int m_first_resistor;  // ohm
    int m_taps_count;      // of the request, as many as a record holds
    RATIO_WISH m_wishes[PLL_MAX_TAPS];
    bool m_may_cascade;     // candidates may use counters beyond those of the outputs
    RATIO_WISH m_vco_wish;  // 0 / 0 or less: none

    VCO_LIMITS get_vco(const PLL& pll, int post_scale) const;
};

// Reads what the search needs. Reports the counters that a search cannot start from.
SEARCH_LIMITS read_search_limits(const PLL& pll, const PLL_PROP& request);

}  // namespace pll_internal
