// One candidate of the lean loop: its output counters, how far they are from the request, and what
// phases and duty cycles cost. Every record is plain numbers, written in place.
#pragma once

#include "pll.h"
#include "pll_prop.h"

// A clock of the request and the limits of its counter, read once.
struct LEAN_CLOCK
{
    double m_mult;
    double m_div;
    double m_ratio;  // of the frequencies, output / input
    double m_phase;  // degrees
    int m_duty;      // percent
    int m_max_count;
};

struct LEAN_COUNTER
{
    int m_count;
    int m_high;
    int m_low;
    bool m_even;
    bool m_bypass;
    bool m_met;
    int m_vco_tap;
    int m_start;
    double m_delta_phase;  // degrees
};

// The next phases and duty cycles on either side of a wish, over all exact candidates.
struct LEAN_CARRIED
{
    double m_next_phase;  // degrees
    double m_prev_phase;
    int m_next_duty;  // percent
    int m_prev_duty;
    int m_smallest_duty;
    int m_largest_duty;
};

struct LEAN_SCORE
{
    double m_error = 0.0;     // of the clocks that miss
    double m_relative = 0.0;  // of all clocks
    bool m_clamped = false;   // a counter was cut before any other error arose
};

inline constexpr double LEAN_MET = 0.001;  // relative error below which a clock is met

// A job's clocks and the state of the search that candidates narrow.
struct LEAN_CLOCKS
{
    int m_count;
    LEAN_CLOCK m_clocks[PLL_MAX_TAPS];
    LEAN_CARRIED m_carried[PLL_MAX_TAPS];
};

LEAN_CLOCKS read_lean_clocks(const PLL& limits, const PLL_PROP& request);

// Gives every clock its counter.
LEAN_SCORE assign_lean_counters(const LEAN_CLOCKS& clocks, int m, int n, LEAN_COUNTER* counters);

// Places phases and duty cycles on the counters of an exact candidate. Returns what they cost on
// top of `cost`.
double place_lean_phases(LEAN_CLOCKS* clocks, int m, int n, double cost, LEAN_COUNTER* counters);
