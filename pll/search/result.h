// What a search finds: the point that won, the PLL it makes, and the closest miss when nothing is
// legal.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "placing/neighbours.h"

namespace pll_internal {

// One (post-scale, M, N) that the limits allow.
struct SEARCH_POINT
{
    int m_post_scale;
    int m_m;
    int m_n;
    double m_vco_period;  // ps
    int m_vco_center;     // ps
    int m_product;        // charge-pump current x resistor that a custom bandwidth asks for
};

// The illegal pair whose VCO period was nearest to the range, for when nothing is legal.
struct CLOSEST_MISS
{
    int m_distance = 0x40000000;
    int m_m = 1;
    int m_n = 1;
    double m_vco_period = 1000.0;  // ps
};

// What a search found.
struct SEARCH_RESULT
{
    explicit SEARCH_RESULT(const PLL& pll, const PLL_PROP& request);

    PLL m_best;  // its neighbours are those that the search started from
    NEIGHBOURS m_neighbours[PLL_MAX_TAPS];
    SEARCH_POINT m_best_point{};
    double m_best_error = WORST;
    double m_best_cost = WORST;
    double m_best_vco_deviation = WORST;  // ps
    bool m_found = false;                 // some candidate was better than none
    bool m_taken = false;                 // some exact candidate was taken into m_best
    bool m_clamped = false;               // of the best inexact one
    CLOSEST_MISS m_miss;

    static constexpr double WORST = 1e300;
};

}  // namespace pll_internal
