// Which input clocks meet a request, and which outputs go together when one PLL cannot make all.
#pragma once

#include "advice/answer/answer.h"

#include <cstdint>
#include <vector>

namespace advice {

// The frequencies in Hz that crystals and oscillators are sold in, ascending.
std::vector<RATIONAL> standard_crystals();

struct CRYSTAL
{
    RATIONAL m_frequency;                            // Hz
    bool m_met = false;                              // by the PLLs that it may take
    double m_worst_error = 0.0;                      // of an output, a part of it
    double m_cost = 0.0;                             // the library's
    std::vector<std::vector<std::size_t>> m_groups;  // outputs of each PLL; empty: not met
};

// The outputs of each of at most `plls` PLLs that together meet a request, as few PLLs as can be;
// empty when they cannot. Outputs stay together with those that their phase counts from.
std::vector<std::vector<std::size_t>> find_groups(const REQUEST& request, const LIMITS& limits,
                                                  int plls);

// Each of the frequencies, those that meet the request first, then by number of PLLs, worst error
// and cost.
std::vector<CRYSTAL> rank_crystals(const REQUEST& request, const LIMITS& limits,
                                   const std::vector<RATIONAL>& frequencies, int plls);

}  // namespace advice
