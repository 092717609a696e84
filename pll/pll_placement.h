// The placing of a candidate's clocks: VCO taps and counter starts for the phases, high and low
// halves for the duty cycles, and what both miss of the request.
#pragma once

#include "pll.h"
#include "pll_prop.h"

// Where a candidate's clocks are placed: what all its outputs share.
struct PHASE_FRAME
{
    double m_m;  // M times the count of the feedback output
    int m_m_count;
    int m_n;
    bool m_ordinary;     // both are positive: a phase of 0 stays 0
    int m_reference;     // VCO degrees
    double m_tap_step;   // one VCO tap, in degrees of the input clock
    double m_turn_step;  // one VCO period
};

// Places the phases of one candidate, output after output.
class PHASE_PLACING
{
public:
    // `may_be_negative` tells whether any phase of the request can be below 0.
    PHASE_PLACING(const PLL_PROP& request, bool may_be_negative, PLL* pll);

    // Charges what output `index` misses.
    void place(int index);

private:
    const PLL_PROP& m_request;
    PLL* m_pll;
    PHASE_FRAME m_frame;
};

// What a counter does for the duty cycle wished of it, and what the host will be told.
struct DUTY_PLAN
{
    static constexpr int MAX_CHARGES = 4;

    int m_count;
    int m_max_count;
    int m_high;
    int m_low;
    bool m_even;
    int m_charges_count;
    double m_charges[MAX_CHARGES];  // added to the cost one after the other
    int m_smallest;                 // percent, as the next four
    int m_largest;
    int m_next;      // the largest int: no larger duty cycle
    int m_previous;  // the smallest int: no smaller one
};

// Places duty cycles. One counter often has the same value in many candidates, and one wish is
// often that of many outputs, so the last plan of each output is kept and shared with the next one.
class DUTY_PLACING
{
public:
    explicit DUTY_PLACING(const PLL_PROP& request);

    // Charges what output `index` misses.
    void place(int index, PLL* pll);

private:
    bool is_ordinary(int index, const PLL& pll) const;
    const DUTY_PLAN& plan_of(int index, const PLL& pll);
    void make_plan(int index, const PLL& pll, DUTY_PLAN* plan) const;
    static void carry_out(const DUTY_PLAN& plan, PLL_OUTPUT_TAP* tap, double* cost);

    const PLL_PROP& m_request;
    bool m_is_shared[PLL_MAX_TAPS];  // the output before asks for the same
    DUTY_PLAN m_plans[PLL_MAX_TAPS];
};

// Places the clocks of one candidate after the other.
class PLACEMENT
{
public:
    explicit PLACEMENT(const PLL_PROP& request);

    // Gives the outputs of `pll` their VCO taps, counter starts and high/low splits, and charges
    // what the request misses.
    void place(PLL* pll);

private:
    const PLL_PROP& m_request;
    int m_taps;
    bool m_may_be_negative;
    DUTY_PLACING m_duties;
};
