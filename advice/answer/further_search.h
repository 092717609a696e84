// VCO ratios that keep every output within its tolerance, for a library that is asked for each.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"

#include <vector>

class PLL;
class PLL_PROP;

namespace advice {

// A VCO ratio M / N, reduced, and what it makes of the outputs.
struct VCO_CANDIDATE
{
    int m_mult;
    int m_div;
    int m_least_n;              // the smallest multiple of m_div that N and PFD limits allow
    std::vector<int> m_counts;  // division of each output
    double m_least_cost;        // what the library's cost is at least
    double m_error;             // sum of the relative errors
};

// The candidates by ascending least cost, at most `most` of them. The walk is bounded whatever the
// counters are.
std::vector<VCO_CANDIDATE> list_candidates(const REQUEST& request, const LIMITS& limits,
                                           const PLL& pll, std::size_t most);

// The request with the ratios that a candidate makes in the place of those asked for.
PLL_PROP to_prop(const REQUEST& request, const VCO_CANDIDATE& candidate);

}  // namespace advice
