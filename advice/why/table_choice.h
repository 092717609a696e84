// How the library chooses a row of the bandwidth settings table.
#pragma once

#include "advice/answer/answer.h"

#include "pll_info.h"

#include <vector>

namespace advice {

// Whether a PLL takes its loop filter from a table.
bool uses_table(const PLL& pll);

// The multiplication that the loop has and the table is indexed by: M, the post-scale and the
// output in the feedback.
int effective_m(const PLL& pll);

// The largest loop bandwidth that the table's rows may have at their fast corner, Hz.
double largest_bandwidth(const REQUEST& request, const PLL& pll);

// The row that a PLL has its loop filter from; null when there is none. Owned by the device.
const PLL_BANDWIDTH_SETTING* find_row(const PLL& pll);

// One row that the library could take.
struct ROW_CHOICE
{
    const PLL_BANDWIDTH_SETTING* m_row;
    double m_pfd_cost;   // for a bandwidth too large for the PFD
    double m_wish_cost;  // for missing the bandwidth asked for
    double m_cost;       // of both; infinite: never taken
    bool m_looked_at;    // the library stops at the first row that costs nothing
};

// The rows of the answer's effective M in their order, each with the cost that the library gives it
// when it is alone. Empty without rows.
std::vector<ROW_CHOICE> list_choices(const REQUEST& request, const ANSWER& answer);

// The index of the row that is taken: the first of the cheapest. The number of choices when none
// is.
std::size_t find_taken(const std::vector<ROW_CHOICE>& choices);

}  // namespace advice
