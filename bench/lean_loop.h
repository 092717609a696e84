// What the library is measured against: the search as a calculator program would write it, a loop
// over post-scale, M and N that tries every pair. It is not slow on purpose: limits and request are
// plain numbers, nothing is allocated or copied per candidate, and the loops end where the periods
// or the automatic bandwidth let them.
//
// It does the whole work of a synthesis for requests without negative phases, serial clocks, even
// counters, feedback through an output, cascades, second input, wish for a VCO ratio, spread
// spectrum or delays, and comes to the same counters as the library. Of a custom bandwidth it tests
// whether an M is feasible, but does not choose resistor and current at the end.
#pragma once

#include "lean_candidate.h"

#include <cstddef>
#include <memory>
#include <vector>

struct LEAN_ANSWER
{
    bool m_found;  // some counters are legal; if not, m_m and m_n came closest
    bool m_exact;  // every clock is met within a thousandth
    int m_post_scale;
    int m_m;
    int m_n;
    double m_error;                      // sum of the errors of the frequency ratios
    double m_cost;                       // of an exact one
    int m_met;                           // candidates that meet every clock within a thousandth
    const PLL_BANDWIDTH_SETTING* m_row;  // of the bandwidth table; null without one
    LEAN_COUNTER m_counters[PLL_MAX_TAPS];
    LEAN_CARRIED m_carried[PLL_MAX_TAPS];
};

struct LEAN_RATIO
{
    int m_mult;
    int m_div;
};

// The best counters within the limits of `limits`.
LEAN_ANSWER lean_synthesis(const PLL& limits, const PLL_PROP& request);

// Every VCO ratio within the limits, reduced, by ascending ratio: all are collected, then sorted.
// Replaces what `ratios` held and keeps its memory.
void lean_vco_ratios(const PLL& limits, int fin_period, std::vector<LEAN_RATIO>* ratios);

// The same by insertion: each ratio is looked for in the list and, when it is new, put in its place
// of two new arrays that are one element longer.
class INSERTED_RATIOS
{
public:
    INSERTED_RATIOS() : m_count(0) {}

    void list(const PLL& limits, int fin_period);

    std::size_t get_count() const { return m_count; }
    const int* get_mults() const { return m_mults.get(); }
    const int* get_divs() const { return m_divs.get(); }

private:
    typedef std::unique_ptr<int[]> ARRAY;

    void insert(const LEAN_RATIO& ratio);
    ARRAY with_one_more(const ARRAY& array, std::size_t place, int value) const;

    ARRAY m_mults;
    ARRAY m_divs;
    std::size_t m_count;
};
