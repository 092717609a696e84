// What an output could have instead of its phase and duty cycle.
//
// A host offers the neighbours to its user. They are those of all candidates of a search, not of
// the one that wins: a counter value that loses today is still one that the device can count. So
// they stand beside the best candidate, every candidate that is placed narrows them, and the
// finishing steps copy them into the host's PLL.
#pragma once

#include "pll.h"

namespace pll_internal {

struct NEIGHBOURS
{
    double m_next_phase;  // degrees of the input clock, above the phase wished for
    double m_previous_phase;
    int m_next_duty;  // percent, as the next three
    int m_previous_duty;
    int m_smallest_duty;  // that a counter value in reach can make
    int m_largest_duty;
};

// Those that `tap` shows. A search starts from them, so a PLL that was used before may show closer
// ones than a fresh PLL.
inline NEIGHBOURS read_neighbours(const PLL_OUTPUT_TAP& tap)
{
    return {tap.m_next_phase_degree, tap.m_prev_phase_degree,       tap.m_next_duty_cycle,
            tap.m_prev_duty_cycle,   tap.m_smallest_duty_cycle_min, tap.m_largest_duty_cycle_max};
}

// Shows them in `tap`.
inline void write_neighbours(const NEIGHBOURS& neighbours, PLL_OUTPUT_TAP* tap)
{
    tap->m_next_phase_degree = neighbours.m_next_phase;
    tap->m_prev_phase_degree = neighbours.m_previous_phase;
    tap->m_next_duty_cycle = neighbours.m_next_duty;
    tap->m_prev_duty_cycle = neighbours.m_previous_duty;
    tap->m_smallest_duty_cycle_min = neighbours.m_smallest_duty;
    tap->m_largest_duty_cycle_max = neighbours.m_largest_duty;
}

}  // namespace pll_internal
