// Counter and phase arithmetic. Phases are in VCO degrees (360 per VCO period) unless said
// otherwise; a counter start of s delays an output by s - 1 VCO periods, a VCO tap by 45 degrees.
#pragma once

#include "pll_export.h"

class PLL;

class PLL_API PLL_UTIL
{
public:
    // 360 x start + 45 x tap - 360. Tap 0 to 7, start from 1.
    static int phase_from_vco_tap_and_counter_start(int vco_tap, int counter_start);

    // The (tap, start) nearest to a phase, with a start of at most `max_counter_start`. Writes both
    // and returns the phase that they realise; with a null output nothing is written and it is 0.
    static int phase_to_vco_tap_and_counter_start(int* vco_tap, int* counter_start, double phase,
                                                  int max_counter_start);

    // Likewise with the tap given: rounds the start to the nearest whole VCO period.
    static int phase_to_counter_start(int* counter_start, double phase, int vco_tap,
                                      int max_counter_start);

    // Greatest common divisor (Euclid, Elements VII.2) of two positive numbers; anything else is an
    // internal error.
    static int gcd(int x, int y);

    // The reduced fraction; 0 / 0 when both parts are 0.
    static void normalize_fraction(int* numerator_out, int* denominator_out, int numerator,
                                   int denominator);

    // numerator x (phase of tap and start - phase of the PLL's feedback path) / denominator. With N
    // and M as the fraction: degrees of the PLL's input clock.
    static double user_phase(int numerator, int denominator, const PLL* pll, int vco_tap,
                             int counter_start);

    // The smallest factor of `count` in 2..max_count that leaves a quotient of at most `max_count`;
    // 0 when there is none. A count not above `max_count` is an internal error.
    static int cascade_factor(int count, int max_count);

    // What output counter `tap` divides by: 1 when bypassed, else high + low.
    static int get_tap_count(const PLL* pll, int tap);
};

// The smallest k with 2^k at least `value`; 0 below 2. A negative value is an internal error.
PLL_API int pll_ceil_log2(int value);

// destination[i] = source[i] for first <= i <= last.
PLL_API void pll_set_array(int* destination, int first, int last, const int* source);

// Exchanges the two marks of an absent limit (PLL_UNSET_MINIMUM, PLL_UNSET_MAXIMUM): a limit of a
// frequency that turns into one of a period changes sides. Other values pass.
PLL_API int pll_limit_switch(int value);

// Cost of missing bandwidth `a` by `b`, both in Hz: 131072 per MHz.
PLL_API double pll_get_bandwidth_diff_cost(double a, double b);
